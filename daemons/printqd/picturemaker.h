// Makes the small picture of a job from its document, in the background.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QQueue>
#include <QtCore/QString>
#include <QtCore/QTimer>

#include <memory>

class LimitedProcess;
class QThread;

/**
 * A document comes from anybody, so another program reads it: pdftoppm (Debian: poppler-utils) the first page
 * of a PDF, gm (Debian: graphicsmagick) a PNG or JPEG picture. It runs without a shell, at low priority, with
 * limits of memory, processor time, time and size of what it writes; see picturemaker.cpp. What kind a
 * document is, its first bytes say. Other kinds have no picture.
 *
 * One tool runs at a time; all calls are for the object's thread and return at once. The answer always comes
 * by a signal, from the event loop, one for each make(). Where there was no picture because the disk was
 * full, it is tried again, in a second and then after twice as long each time, mostTries times in a quarter
 * of an hour; the others wait meanwhile.
 */
class PictureMaker : public QObject
{
    Q_OBJECT

public:
    /// The longer side of a picture in pixels, at most.
    static constexpr int longestSide = 480;
    /// So many wait for their turn. Who comes later is told notMade().
    static constexpr int mostWaiting = 1000;
    static constexpr int mostTries = 20;

    explicit PictureMaker(QObject *parent = nullptr);
    /// Ends the tool that runs.
    ~PictureMaker() override;

    /// Instead of a second, before the first new try.
    void setRest(int milliseconds) { m_firstRest = milliseconds; }

    /**
     * Makes a PNG file at \a picturePath from the document at \a documentPath; both are absolute. It appears
     * there whole, and is on the disk, in place of what is there, readable for whoever may enter the folder
     * (mode 0644). \a guid only comes back with the signals.
     */
    void make(const QString &guid, const QString &documentPath, const QString &picturePath);

Q_SIGNALS:
    void made(const QString &guid, const QString &picturePath);
    /// There is no new file at the picture's path. \a reason is a sentence for the log.
    void notMade(const QString &guid, const QString &reason);

private:
    struct Work
    {
        QString guid;
        QString documentPath;
        QString picturePath;
        int tries = 0;
    };

    void next();
    void begin(const Work &work);
    void finish(const QString &reason);
    void answer(const Work &work, const QString &reason);
    QString takePicture();
    void end(const QString &reason);
    void syncFolder();
    bool hasRoom() const;
    void tryAgainLater();

    QQueue<Work> m_waiting;
    Work m_work;
    LimitedProcess *m_tool = nullptr;
    QTimer m_limit;
    QTimer m_rest;
    int m_firstRest = 1000;
    std::unique_ptr<QThread> m_sync;
};
