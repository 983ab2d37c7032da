// ZBSettingsPrinter: the print options of the printer, named presets of them, and the test page.
#pragma once

#include "zbsettings_export.h"

#include <QtCore/QObject>
#include <QtCore/QStringList>

#include <memory>

struct ZBSettingsPrinterPrivate;

/**
 * The print options of the printer "BrackenXL" for QML.
 *
 * Options are kept by the printer-option library (CupsSupport) and presets by the preset library; this object
 * keeps neither. Every setter hands its value on at once, unchecked: ranges are the page's and the library's
 * business.
 *
 * \par Properties
 * All are read-only and hold what the options were when the object was made, or when a preset was loaded
 * last. Setters do not change them, with two exceptions: setPrintOrientation() changes `orientationEnum` and
 * setCutOption() changes `cutEnum`. Of the change signals the object emits one, orientationEnumChanged(). A
 * page keeps its own view of what it has set. Options that another program changes later do not show.
 *
 * \par Names
 * Orientations, cut modes and dithering methods go by their translated names. A translator that shall be
 * heard has to be installed before the object is made. A name that is not in the model counts as 0: no
 * orientation, "No Cut", or the threshold method.
 *
 * \par Numbers
 * Offsets are in the printer's position steps, -2000 to 2000, heat offsets in its heat steps, -50 to 50, and
 * tensions in its tension steps, -10 to 10, as the reference library has them (`cupssupport.h`); it takes the
 * nearest number inside. What a step is in millimetres is the printer's business.
 *
 * \par Threads and blocking
 * Everything runs on the thread that created the object. With the reference libraries a setter waits for the
 * disk (normally less than a millisecond), a preset that is loaded for each option that it changes, and
 * neither for the print scheduler, whether it runs, hangs or is not there. A process that hangs while it
 * changes the options or the presets costs 1.5 s at the first change of either, 20 ms at each later one, and
 * half a second when the object is made. printTestPage() waits for nothing.
 *
 * \par Errors
 * No slot returns an error, and nothing is logged here; the libraries log what they cannot write.
 *
 * The objects of the two libraries are never deleted: they live as long as the process.
 */
class ZBSETTINGS_EXPORT ZBSettingsPrinter : public QObject
{
    Q_OBJECT

    /// Display name of the print orientation; empty while none is set, and for one without a name.
    Q_PROPERTY(QString orientationOption READ orientationOption NOTIFY orientationOptionChanged)
    /// Display name of the cut mode; empty for one without a name.
    Q_PROPERTY(QString cutOption READ cutOption NOTIFY cutOptionChanged)
    /// Display name of the dithering method; empty for one without a name. After loadPreset() of a preset
    /// with the Bayer method it is a name that is not in the model.
    Q_PROPERTY(QString ditheringMethod READ ditheringMethod NOTIFY ditheringMethodChanged)
    /// Print orientation, QMLCupsEnums::Orientation; 0 for none.
    Q_PROPERTY(int orientationEnum READ orientationEnum NOTIFY orientationEnumChanged)
    /// Cut mode, QMLCupsEnums::CutMedia.
    Q_PROPERTY(int cutEnum READ cutEnum NOTIFY cutEnumChanged)
    /// Heat offset of print head 1.
    Q_PROPERTY(int head1HeatOffset READ head1HeatOffset NOTIFY head1HeatOffsetChanged)
    /// Heat offset of print head 2.
    Q_PROPERTY(int head2HeatOffset READ head2HeatOffset NOTIFY head2HeatOffsetChanged)
    /// Mirror printing.
    Q_PROPERTY(bool mirror READ mirror NOTIFY mirrorChanged)
    /// Negative printing.
    Q_PROPERTY(bool negative READ negative NOTIFY negativeChanged)
    /// Overprint.
    Q_PROPERTY(bool overprint READ overprint NOTIFY overprintChanged)
    /// White base.
    Q_PROPERTY(bool whitebase READ whitebase NOTIFY whitebaseChanged)
    /// Ribbon saver.
    Q_PROPERTY(bool ribbonSaver READ ribbonSaver NOTIFY ribbonSaverChanged)
    /// Names of the orientations, in the order of their texts.
    Q_PROPERTY(QStringList orientationComboBoxModel READ orientationComboBoxModel NOTIFY
                   orientationComboBoxModelChanged)
    /// Names of the cut modes, in the order of their texts.
    Q_PROPERTY(QStringList cutComboBoxModel READ cutComboBoxModel NOTIFY cutComboBoxModelChanged)
    /// Names of the dithering methods, in the order of their texts.
    Q_PROPERTY(
        QStringList ditheringComboBoxModel READ ditheringComboBoxModel NOTIFY ditheringComboBoxModelChanged)
    /// Backfeed offset, the printer's stop without its fraction.
    Q_PROPERTY(int backfeedOffset READ backfeedOffset NOTIFY backfeedOffsetChanged)
    /// Feed offset.
    Q_PROPERTY(int feedOffset READ feedOffset NOTIFY feedOffsetChanged)
    /// Horizontal offset of print head 1.
    Q_PROPERTY(int horizontal1Offset READ horizontal1Offset NOTIFY horizontal1OffsetChanged)
    /// Horizontal offset of print head 2.
    Q_PROPERTY(int horizontal2Offset READ horizontal2Offset NOTIFY horizontal2OffsetChanged)
    /// Vertical offset of print head 1.
    Q_PROPERTY(int vertical1Offset READ vertical1Offset NOTIFY vertical1OffsetChanged)
    /// Vertical offset of print head 2.
    Q_PROPERTY(int vertical2Offset READ vertical2Offset NOTIFY vertical2OffsetChanged)
    /// Adjustment of ribbon tension R1.
    Q_PROPERTY(int r1Tension READ r1Tension NOTIFY r1TensionChanged)
    /// Adjustment of ribbon tension R2.
    Q_PROPERTY(int r2Tension READ r2Tension NOTIFY r2TensionChanged)

public:
    explicit ZBSettingsPrinter(QObject *parent = nullptr);
    ~ZBSettingsPrinter() override;

    QString orientationOption() const;
    QString cutOption() const;
    QString ditheringMethod() const;
    int orientationEnum() const;
    int cutEnum() const;
    int head1HeatOffset() const;
    int head2HeatOffset() const;
    bool mirror() const;
    bool negative() const;
    bool overprint() const;
    bool whitebase() const;
    bool ribbonSaver() const;
    QStringList orientationComboBoxModel() const;
    QStringList cutComboBoxModel() const;
    QStringList ditheringComboBoxModel() const;
    int backfeedOffset() const;
    int feedOffset() const;
    int horizontal1Offset() const;
    int horizontal2Offset() const;
    int vertical1Offset() const;
    int vertical2Offset() const;
    int r1Tension() const;
    int r2Tension() const;

Q_SIGNALS:
    void orientationOptionChanged(QString orientationOption);
    void cutOptionChanged(QString cutOption);
    void ditheringMethodChanged(QString ditheringMethod);
    void orientationEnumChanged(int orientationEnum);
    void cutEnumChanged(int cutEnum);
    void head1HeatOffsetChanged(int head1HeatOffset);
    void head2HeatOffsetChanged(int head2HeatOffset);
    void mirrorChanged(bool mirror);
    void negativeChanged(bool negative);
    void overprintChanged(bool overprint);
    void whitebaseChanged(bool whitebase);
    void ribbonSaverChanged(bool ribbonSaver);
    void orientationComboBoxModelChanged(QStringList orientationComboBoxModel);
    void cutComboBoxModelChanged(QStringList cutComboBoxModel);
    void ditheringComboBoxModelChanged(QStringList ditheringComboBoxModel);
    void backfeedOffsetChanged(int backfeedOffset);
    void feedOffsetChanged(int feedOffset);
    void horizontal1OffsetChanged(int horizontal1Offset);
    void horizontal2OffsetChanged(int horizontal2Offset);
    void vertical1OffsetChanged(int vertical1Offset);
    void vertical2OffsetChanged(int vertical2Offset);
    void r1TensionChanged(int r1Tension);
    void r2TensionChanged(int r2Tension);

public Q_SLOTS:
    /**
     * Prints the test page for a supply of this width, in inches, with lp(1), and does not wait for it: the
     * page of 9 inches above 6.0, that of 6 inches above 4.0, otherwise that of 4 inches.
     */
    void printTestPage(double supplyWidth);
    void setBackfeedOffset(int backfeedOffset);
    /// Sets the cut mode by its name and `cutEnum` with it; 0 for an unknown name. No signal follows.
    void setCutOption(QString cutOptionName);
    /// Sets the dithering method by its name; 0, the threshold method, for an unknown name.
    void setDitheringMethod(QString ditheringName);
    void setFeedOffset(int feedOffset);
    void setHead1HeatOffset(int heatOffset);
    void setHead2HeatOffset(int heatOffset);
    void setHorizontal1Offset(int horizontal1Offset);
    void setHorizontal2Offset(int horizontal2Offset);
    void setMirror(bool mirror);
    void setNegative(bool negative);
    void setOverprint(bool overprint);
    void setWhitebase(bool whitebase);
    /// Sets the orientation by its name and `orientationEnum` with it; 0 for an unknown name.
    /// orientationEnumChanged() follows in any case.
    void setPrintOrientation(QString orientationName);
    void setVertical1Offset(int vertical1Offset);
    void setVertical2Offset(int vertical2Offset);
    void setR1Tension(int r1Tension);
    void setR2Tension(int r2Tension);
    void setRibbonSaver(bool ribbonSaver);
    /**
     * Saves the options as they are now as a preset of this name and makes it the current one. A name that
     * exists is not looked for: there are then two. Always true.
     */
    bool addPreset(QString presetName);
    /// Deletes the preset of this name; the one that the preset library names becomes current. Nothing
    /// happens for an empty name.
    void deletePreset(QString presetName);
    /// The names for the list of presets: the first of the predefined ones, if there are more than two, then
    /// the user's without "Sample Preset". With the reference library the first is "<Current Settings>",
    /// which has no options.
    QStringList populatePresetList();
    /**
     * Sets the options to those of the preset of this name, except for the ribbon saver, and makes it
     * current. An option that the preset does not have gets its default. Changes the properties without their
     * signals, but for orientationEnumChanged().
     *
     * \return the preset's keys and values in turn ("Feed", "12", "MirrorPrint", "True" ...); empty, and
     * nothing is changed, when it has none or there is no such preset
     */
    QStringList loadPreset(QString presetName);

private Q_SLOTS:
    void populateOrientationMap();
    void populateDitheringMap();
    void populateCutOptionsMap();

private:
    Q_DISABLE_COPY(ZBSettingsPrinter)
    const std::unique_ptr<ZBSettingsPrinterPrivate> d;
};
