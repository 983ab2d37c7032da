// CupsSupport: the print options of the device's printer, kept where every program that prints finds them.
#pragma once

#include "cupssupport_export.h"

/// The way up of a page: IPP's "orientation-requested" (RFC 8011, section 5.2.10). A value that somebody else
/// stored and that is not named here is handed over as it is.
enum _CupsOrientation : int {
    CupsOrientationNone = 0, ///< not set: the printer decides
    CupsOrientationPortrait = 3,
    CupsOrientationLandscape = 4,
    CupsOrientationReverseLandscape = 5,
    CupsOrientationReversePortrait = 6
};

/**
 * Reads and changes the options of the CUPS destination "BrackenXL" of the user who runs the program: its
 * line in that user's lpoptions file (lpoptions(1)). lp, and whatever else prints over CUPS as that user,
 * takes them from there. README.md beside this header says where the file is, which option a value is, and
 * how it is written.
 *
 * Nothing here talks to the scheduler, so it works alike with a scheduler that runs, hangs or is not there.
 *
 * A getter costs one look at the file's properties; the file is read only after it changed, whoever changed
 * it, and again by each call until the change is some 20 ms old; README.md says which files are read for
 * longer, and when a call waits up to 100 ms for another program's writing. So a getter never gives an older
 * value than the file held when it was called, and several objects, also of other processes, see each other's
 * changes. An option that is not in the user's file has the value of the system's file /etc/cups/lpoptions,
 * and where that has none either, false, 0 or CupsOrientationNone.
 *
 * A setter returns when its change is on the disk; it then outlives a power cut. A value that the user's file
 * holds already is not written again. A number outside its range counts as the nearest one inside; that is
 * one warning in the log for each option and process. A change that cannot be written (full disk, home folder
 * that cannot be written, folder held by another process for a second and a half) leaves the file as it was
 * and is one warning in the log until a change can be written again; nothing else tells the caller.
 *
 * To be used from one thread. No file stays open between two calls.
 */
class CUPSSUPPORT_EXPORT CupsSupport
{
public:
    CupsSupport();
    ~CupsSupport();

    /// Negative print, black for white. Option NegativePrint.
    bool getInverse() const;
    void setInverse(bool inverse);

    /// Mirrored print, left for right. Option MirrorPrint.
    bool getMirror() const;
    void setMirror(bool mirror);

    /// Option Overprint.
    bool getOverprint() const;
    void setOverprint(bool overprint);

    /// A base of white under the picture. Option WhiteBase.
    bool getWhiteBase() const;
    void setWhiteBase(bool whiteBase);

    /// Option RibbonSaver.
    bool getRibbonSaver() const;
    void setRibbonSaver(bool ribbonSaver);

    /// Option orientation-requested. CupsOrientationNone, and every value outside 3 to 6, takes the option
    /// out of the user's file; an orientation that the system's file has then counts, which so cannot be
    /// overridden with none.
    _CupsOrientation getOrientation() const;
    void setOrientation(_CupsOrientation orientation);

    /// Dithering code: 0 (threshold), 16, 17, 18, 20, 21, 24, 25, 32, 33, 65 or 66; any other code is set as
    /// 0. Option Dithering.
    int getDithering() const;
    void setDithering(int dithering);

    /// When the cutter cuts: 0 never, 1 after each page, 2 after the job. Option CutMedia.
    int getCut() const;
    void setCut(int cut);

    /// Heat offset of colour head \a head, 1 or 2, in the printer's heat steps, -50 to 50. Options
    /// head1Offset and head2Offset. Another head reads as 0, and setting it does nothing but warn in the log
    /// once.
    int getColorHeadOffset(int head) const;
    void setColorHeadOffset(int value, int head);

    /// Correction of the feed, in the printer's position steps, -2000 to 2000. Option Feed.
    int getFeed() const;
    void setFeed(int feed);

    /// Correction of the backfeed, in the printer's position steps and parts of them, -2000 to 2000. A value
    /// that is not finite is set as 0. It reads back exactly. Option Stop.
    double getStop() const;
    void setStop(double stop);

    /// Place of the picture across the media, of head 1 and head 2, in the printer's position steps, -2000 to
    /// 2000. Options Hoffset1 and Hoffset2.
    int getOffsetH1() const;
    void setOffsetH1(int offset);
    int getOffsetH2() const;
    void setOffsetH2(int offset);

    /// Place of the picture along the media, as above. Options Voffset1 and Voffset2.
    int getOffsetV1() const;
    void setOffsetV1(int offset);
    int getOffsetV2() const;
    void setOffsetV2(int offset);

    /// Tension of the ribbon's two sides, in the printer's tension steps, -10 to 10. Options R1TensionAdjust
    /// and R2TensionAdjust.
    int getR1Tension() const;
    void setR1Tension(int tension);
    int getR2Tension() const;
    void setR2Tension(int tension);

private:
    CupsSupport(const CupsSupport &) = delete;
    CupsSupport &operator=(const CupsSupport &) = delete;
    struct Private;
    Private *d;
};
