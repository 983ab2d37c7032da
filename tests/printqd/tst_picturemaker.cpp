// The pictures of jobs: which documents have one, how large it is, and what documents that mean harm can do.
#include "limitedprocess.h"
#include "picturemaker.h"

#include "smalldisk.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <atomic>
#include <csignal>
#include <sys/mount.h>
#include <unistd.h>

class PictureMakerTest : public QObject
{
    Q_OBJECT

private slots:
    void documentsHaveAPictureOfTheirFirstPage_data();
    void documentsHaveAPictureOfTheirFirstPage();
    void otherDocumentsHaveNone_data();
    void otherDocumentsHaveNone();
    void pictureThatIsThereStaysWhenThereIsNoNewOne();
    void pictureWaitsForTheDisk();
    void pictureIsOnTheDiskBeforeItIsTold();
    void oneToolRunsAtATimeAndTheCallsDoNotWait();
    void tooManyAreRefused();
    void toolEndsWithTheMaker();

private:
    QTemporaryDir m_folder;
};

namespace {

QByteArray pdf(const QByteArray &size, const QByteArray &content = "0 0 1 rg 0 0 10 10 re f")
{
    QByteArray text = "%PDF-1.4\n"
                      "1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
                      "2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
                      "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 "
        + size + "]/Contents 4 0 R/Resources<<>>>>endobj\n";
    text += "4 0 obj<</Length " + QByteArray::number(content.size()) + ">>stream\n" + content
        + "\nendstream endobj\ntrailer<</Root 1 0 R/Size 5>>\n%%EOF\n";
    return text;
}

// By another tool than the one under test, from no file.
QByteArray raster(const QString &size, const QString &format)
{
    QProcess gm;
    gm.start(QStringLiteral("gm"),
             {QStringLiteral("convert"), QStringLiteral("-size"), size, QStringLiteral("xc:red"),
              format + QStringLiteral(":-")});
    gm.waitForFinished();
    return gm.readAllStandardOutput();
}

bool write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

/// A folder on a disk of its own, where this machine allows one.
QString smallDisk;
std::atomic<int> folderSyncs{0};

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Width and height as the file's header has them.
QByteArray sizeOf(const QString &path)
{
    QProcess gm;
    gm.start(QStringLiteral("gm"),
             {QStringLiteral("identify"), QStringLiteral("-format"), QStringLiteral("%m %wx%h"), path});
    gm.waitForFinished();
    return gm.readAllStandardOutput().trimmed();
}

} // namespace

/// In place of the C library's.
extern "C" int fsync(int file)
{
    ++folderSyncs;
    return fdatasync(file);
}

void PictureMakerTest::documentsHaveAPictureOfTheirFirstPage_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("size");
    QTest::newRow("PDF, 4 by 4 inches") << pdf("288 288") << QByteArray("PNG 480x480");
    QTest::newRow("PDF, wide") << pdf("576 288") << QByteArray("PNG 480x240");
    QTest::newRow("PDF after printer commands")
        << "\x1b%-12345X@PJL\n" + pdf("288 576") << QByteArray("PNG 240x480");
    QTest::newRow("PNG, large") << raster(QStringLiteral("1200x600"), QStringLiteral("png"))
                                << QByteArray("PNG 480x240");
    QTest::newRow("PNG, small, is not blown up")
        << raster(QStringLiteral("30x20"), QStringLiteral("png")) << QByteArray("PNG 30x20");
    QTest::newRow("JPEG") << raster(QStringLiteral("900x1800"), QStringLiteral("jpeg"))
                          << QByteArray("PNG 240x480");
}

void PictureMakerTest::documentsHaveAPictureOfTheirFirstPage()
{
    QFETCH(QByteArray, document);
    // The tools take each of these characters for something else, or for the beginning of an option.
    const QString path = m_folder.filePath(QStringLiteral("-o %d[1] @x.txt"));
    const QString picture = m_folder.filePath(QStringLiteral("a picture.png"));
    QVERIFY(write(path, document));
    PictureMaker maker;
    QSignalSpy made(&maker, &PictureMaker::made);
    QSignalSpy notMade(&maker, &PictureMaker::notMade);
    maker.make(QStringLiteral("guid"), path, picture);
    QVERIFY(!QFileInfo::exists(picture));
    QTRY_COMPARE_WITH_TIMEOUT(made.size() + notMade.size(), 1, 15000);
    QVERIFY2(!made.isEmpty(), qPrintable(notMade.value(0).value(1).toString()));
    QCOMPARE(made.first(), (QVariantList{QStringLiteral("guid"), picture}));
    QTEST(sizeOf(picture), "size");
    QCOMPARE(QFileInfo(picture).permissions() & (QFile::WriteGroup | QFile::WriteOther),
             QFile::Permissions());
    QVERIFY(!QFileInfo::exists(picture + QStringLiteral(".new")));
    QVERIFY(QFile::remove(picture));
}

void PictureMakerTest::otherDocumentsHaveNone_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray(
        "push graphic-context\nimage over 0,0 0,0 'https://example.invalid'\n");
    QTest::newRow("PostScript") << QByteArray("%!PS\nshowpage\n");
    QTest::newRow("SVG") << QByteArray("<svg xmlns='http://www.w3.org/2000/svg'/>");
    QTest::newRow("label data") << QByteArray("\x1b"
                                              "A1\n\0\0",
                                              6);
    QTest::newRow("broken PDF") << QByteArray("%PDF-1.4\nnothing");
    QTest::newRow("broken PNG") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16);
    QTest::newRow("broken JPEG") << QByteArray("\xff\xd8\xff\xe0\0\x10JFIF\0", 11);
    // 100,000 by 100,000 pixels would be 80 GB in the tool.
    QTest::newRow("PNG that would not fit into the memory")
        << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\1\x86\xa0\0\1\x86\xa0\x8\2\0\0\0\0\0\0\0", 33);
    QTest::newRow("absent") << QByteArray("absent");
}

void PictureMakerTest::otherDocumentsHaveNone()
{
    QFETCH(QByteArray, document);
    const QString path = m_folder.filePath(QStringLiteral("document.pdf"));
    QFile::remove(path);
    if (document != "absent")
        QVERIFY(write(path, document));
    const QString picture = m_folder.filePath(QStringLiteral("none.png"));
    PictureMaker maker;
    QSignalSpy notMade(&maker, &PictureMaker::notMade);
    maker.make(QStringLiteral("guid"), path, picture);
    QTRY_COMPARE_WITH_TIMEOUT(notMade.size(), 1, 15000);
    QCOMPARE(notMade.first().first().toString(), QStringLiteral("guid"));
    QVERIFY(!notMade.first().at(1).toString().isEmpty());
    QVERIFY(!QFileInfo::exists(picture) && !QFileInfo::exists(picture + QStringLiteral(".new")));
}

void PictureMakerTest::pictureThatIsThereStaysWhenThereIsNoNewOne()
{
    const QString path = m_folder.filePath(QStringLiteral("broken"));
    const QString picture = m_folder.filePath(QStringLiteral("there.png"));
    QVERIFY(write(path, "%PDF-1.4\nnothing") && write(picture, "the picture"));
    PictureMaker maker;
    QSignalSpy notMade(&maker, &PictureMaker::notMade);
    maker.make(QStringLiteral("guid"), path, picture);
    QTRY_COMPARE_WITH_TIMEOUT(notMade.size(), 1, 15000);
    QCOMPARE(contentOf(picture), QByteArray("the picture"));
    maker.make(QStringLiteral("guid"), path, m_folder.filePath(QStringLiteral("no/such/folder.png")));
    QTRY_COMPARE_WITH_TIMEOUT(notMade.size(), 2, 15000);
}

void PictureMakerTest::pictureWaitsForTheDisk()
{
    if (smallDisk.isEmpty())
        QSKIP("This machine allows no disk of one's own.");
    const QString path = m_folder.filePath(QStringLiteral("page"));
    QVERIFY(write(path, pdf("288 288")));
    const QString picture = smallDisk + QStringLiteral("/page.png");
    QVERIFY(SmallDisk::fill(smallDisk, 0));
    PictureMaker maker;
    maker.setRest(60);
    QSignalSpy made(&maker, &PictureMaker::made);
    QSignalSpy notMade(&maker, &PictureMaker::notMade);
    int runs = 0;
    maker.make(QStringLiteral("guid"), path, picture);
    const auto isToolThere = [&] { return maker.findChild<LimitedProcess *>() != nullptr; };
    for (; runs < 2; ++runs) {
        QTRY_VERIFY(isToolThere());
        QTRY_VERIFY(!isToolThere());
    }
    QVERIFY(!QFileInfo::exists(picture) && !QFileInfo::exists(picture + QStringLiteral(".new")));
    QVERIFY(SmallDisk::clear(smallDisk));
    QTRY_COMPARE(made.size(), 1);
    QCOMPARE(notMade.size(), 0);
    QCOMPARE(sizeOf(picture), QByteArray("PNG 480x480"));

    // Though not for ever.
    QVERIFY(QFile::remove(picture) && SmallDisk::fill(smallDisk, 0));
    maker.setRest(0);
    maker.make(QStringLiteral("guid"), m_folder.filePath(QStringLiteral("page")), picture);
    QTRY_COMPARE(notMade.size(), 1);
    QVERIFY(SmallDisk::clear(smallDisk));
}

void PictureMakerTest::pictureIsOnTheDiskBeforeItIsTold()
{
    const QString path = m_folder.filePath(QStringLiteral("page"));
    QVERIFY(write(path, pdf("288 288")));
    PictureMaker maker;
    QSignalSpy made(&maker, &PictureMaker::made);
    folderSyncs = 0;
    maker.make(QStringLiteral("guid"), path, m_folder.filePath(QStringLiteral("synced.png")));
    QTRY_COMPARE(made.size(), 1);
    QCOMPARE(folderSyncs, 1);
}

void PictureMakerTest::oneToolRunsAtATimeAndTheCallsDoNotWait()
{
    const QString path = m_folder.filePath(QStringLiteral("page"));
    QVERIFY(write(path, pdf("288 288")));
    PictureMaker maker;
    QStringList order;
    int running = 0;
    int most = 0;
    connect(&maker, &PictureMaker::made, this, [&](const QString &guid) { order += guid; });
    QElapsedTimer sinceBegin;
    sinceBegin.start();
    for (int index = 0; index < 5; ++index)
        maker.make(QString::number(index), path, m_folder.filePath(QStringLiteral("%1.png").arg(index)));
    QVERIFY2(sinceBegin.elapsed() < 50, "making one takes longer than that");
    while (order.size() < 5 && sinceBegin.elapsed() < 15000) {
        QTest::qWait(1);
        running = 0;
        const auto tools = maker.findChildren<LimitedProcess *>();
        for (const LimitedProcess *const tool : tools)
            running += tool->processId() > 0 ? 1 : 0;
        most = qMax(most, running);
    }
    QCOMPARE(order.join(QLatin1Char(' ')), QStringLiteral("0 1 2 3 4"));
    QCOMPARE(most, 1);
}

void PictureMakerTest::tooManyAreRefused()
{
    const QString path = m_folder.filePath(QStringLiteral("text"));
    QVERIFY(write(path, "text"));
    PictureMaker maker;
    QSignalSpy notMade(&maker, &PictureMaker::notMade);
    for (int index = 0; index < 1001; ++index)
        maker.make(QString::number(index), path, m_folder.filePath(QStringLiteral("x.png")));
    QTRY_COMPARE(notMade.size(), 1001);
    QCOMPARE(notMade.first().first().toString(), QStringLiteral("1000"));
}

void PictureMakerTest::toolEndsWithTheMaker()
{
    const QString path = m_folder.filePath(QStringLiteral("endless"));
    // Much to draw, a curve a line.
    QByteArray content;
    for (int index = 0; index < 200000; ++index)
        content += "0 0 m 9 999 500 -999 288 288 c 0 288 m 100 999 -500 7 288 0 c f*\n";
    QVERIFY(write(path, pdf("288 288", content)));
    qint64 tool = 0;
    {
        PictureMaker maker;
        maker.make(QStringLiteral("guid"), path, m_folder.filePath(QStringLiteral("endless.png")));
        QTRY_VERIFY(maker.findChild<LimitedProcess *>());
        tool = maker.findChild<LimitedProcess *>()->processId();
        QVERIFY(kill(pid_t(tool), 0) == 0);
        // They stand once the programs that set them have become the tool.
        const auto limits = [tool] {
            QFile file(QStringLiteral("/proc/%1/limits").arg(tool));
            return file.open(QIODevice::ReadOnly) ? file.readAll().simplified() : QByteArray();
        };
        QTRY_VERIFY2(limits().contains("Max cpu time 10 10 seconds"), limits().constData());
        QTRY_VERIFY2(limits().contains("Max address space 536870912 536870912 bytes"), limits().constData());
    }
    QVERIFY(kill(pid_t(tool), 0) != 0);
    QVERIFY(!QFileInfo::exists(m_folder.filePath(QStringLiteral("endless.png.new"))));
}

int main(int argc, char **argv)
{
    QTemporaryDir disk;
    // Before there is any thread.
    if (SmallDisk::mountOn(QFile::encodeName(disk.path())))
        smallDisk = disk.path();
    QCoreApplication application(argc, argv);
    PictureMakerTest test;
    const int failures = QTest::qExec(&test, argc, argv);
    if (!smallDisk.isEmpty())
        umount2(QFile::encodeName(smallDisk).constData(), MNT_DETACH);
    return failures;
}

#include "tst_picturemaker.moc"
