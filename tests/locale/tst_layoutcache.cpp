// The file that keeps the finished list: what it gives back, and that nothing but a whole file of the same
// sources is taken for one.
#include "layoutcache.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

namespace {

const char fingerprint[] = "registry 1";

QByteArray somePacked()
{
    return QByteArray("Deutsch\0Zulu\0de\0de\0\0German\0zu\0za\0x\0Zulu\0", 39);
}

} // namespace

class LayoutCacheTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_home.reset(new QTemporaryDir);
        QVERIFY(m_home->isValid());
        qputenv("XDG_CACHE_HOME", QFile::encodeName(m_home->path()));
        m_made = 0;
    }

    void cleanup()
    {
        qputenv("HOME", m_userHome);
        QVERIFY(QDir::setCurrent(m_workingFolder));
    }

    void cleanupTestCase() { m_home.reset(); }

    void wholeFileGivesBackWhatWasKept()
    {
        QCOMPARE(layoutsIn(cacheOf(somePacked(), fingerprint), fingerprint), somePacked());
        QCOMPARE(layoutsIn(cacheOf(somePacked(), "two\nlines"), "two\nlines"), somePacked());
    }

    void otherSourcesGiveNothing()
    {
        const QByteArray cache = cacheOf(somePacked(), fingerprint);
        for (const char *other : {"registry 2", "registry", "registry 1 ", "registry 1\n", ""})
            QVERIFY2(layoutsIn(cache, other).isEmpty(), other);
    }

    void cutFileGivesNothing()
    {
        const QByteArray cache = cacheOf(somePacked(), fingerprint);
        for (int size = 0; size < cache.size(); ++size)
            QVERIFY2(layoutsIn(cache.left(size), fingerprint).isEmpty(), qPrintable(QString::number(size)));
        QVERIFY(layoutsIn(cache + '\0', fingerprint).isEmpty());
    }

    void fileThatAPowerCutFilledWithZerosGivesNothing()
    {
        const QByteArray cache = cacheOf(somePacked(), fingerprint);
        for (int start = 0; start < cache.size(); ++start) {
            QByteArray damaged = cache;
            std::fill(damaged.begin() + start, damaged.end(), '\0');
            if (damaged != cache)
                QVERIFY2(layoutsIn(damaged, fingerprint).isEmpty(), qPrintable(QString::number(start)));
        }
    }

    void rubbishGivesNothing()
    {
        for (const QByteArray &bytes :
             {QByteArray(), QByteArray("x"), QByteArray("\n\n\n"), QByteArray(100000, 'x'),
              QByteArray(100000, '\0'), QByteArray(100000, '\n')})
            QVERIFY(layoutsIn(bytes, fingerprint).isEmpty());
    }

    void listIsMadeOnceForTheSameSources()
    {
        QCOMPARE(kept(fingerprint), somePacked());
        QCOMPARE(kept(fingerprint), somePacked());
        QCOMPARE(m_made, 1);
        QCOMPARE(kept("registry 2"), somePacked());
        QCOMPARE(m_made, 2);
        QCOMPARE(kept("registry 2"), somePacked());
        QCOMPARE(m_made, 2);
    }

    void onlyTheCacheIsLeftInItsFolder()
    {
        kept(fingerprint);
        kept("registry 2");
        QCOMPARE(QDir(m_home->filePath(QStringLiteral("Corvanta/ZBLocaleLanguages"))).entryList(QDir::Files),
                 QStringList(QStringLiteral("keyboard-layouts")));
    }

    void damagedFileIsMadeAnew()
    {
        kept(fingerprint);
        QVERIFY(QFile::resize(cachePath(), 50));
        QCOMPARE(kept(fingerprint), somePacked());
        QCOMPARE(m_made, 2);
        QCOMPARE(kept(fingerprint), somePacked());
        QCOMPARE(m_made, 2);
    }

    void folderInPlaceOfTheFileIsNoFailure()
    {
        QVERIFY(QDir().mkpath(cachePath() + QStringLiteral("/x")));
        QCOMPARE(kept(fingerprint), somePacked());
        QCOMPARE(QDir(cachePath() + QStringLiteral("/..")).entryList(QDir::Files), QStringList());
    }

    void fileInPlaceOfTheFolderIsNoFailure()
    {
        QFile file(m_home->filePath(QStringLiteral("Corvanta")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        QCOMPARE(kept(fingerprint), somePacked());
        QVERIFY(QFileInfo(file.fileName()).isFile());
    }

    void emptyListIsNotKept()
    {
        QVERIFY(cachedLayouts(fingerprint, [] { return QByteArray(); }).isEmpty());
        QVERIFY(!QFile::exists(cachePath()));
    }

    void processWithoutAHomeKeepsNothing()
    {
        qunsetenv("HOME");
        qunsetenv("XDG_CACHE_HOME");
        kept(fingerprint);
        kept(fingerprint);
        QCOMPARE(m_made, 2);
    }

    void relativeCacheFolderIsIgnored_data()
    {
        QTest::addColumn<QByteArray>("folder");
        for (const char *const folder : {"", "cache", "./cache", "../cache", ":/cache", "~/cache"})
            QTest::newRow(folder) << QByteArray(folder);
    }

    void relativeCacheFolderIsIgnored()
    {
        QFETCH(QByteArray, folder);
        // A folder down, so that ".." is the test's own as well.
        QVERIFY(QDir(m_home->path()).mkpath(QStringLiteral("here")));
        QVERIFY(QDir::setCurrent(m_home->filePath(QStringLiteral("here"))));
        qputenv("HOME", QFile::encodeName(m_home->filePath(QStringLiteral("home"))));
        qputenv("XDG_CACHE_HOME", folder);
        QCOMPARE(kept(fingerprint), somePacked());
        QCOMPARE(QDir(m_home->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList({QStringLiteral("here"), QStringLiteral("home")}));
        QVERIFY(QFile::exists(
            m_home->filePath(QStringLiteral("home/.cache/Corvanta/ZBLocaleLanguages/keyboard-layouts"))));
        QVERIFY(QDir().isEmpty());

        // A home that is relative is none.
        qputenv("HOME", "home");
        QCOMPARE(kept(fingerprint), somePacked());
        QCOMPARE(m_made, 2);
        QVERIFY(QDir().isEmpty());
    }

    void fingerprintTellsFilesApart()
    {
        const QByteArray path = QFile::encodeName(m_home->filePath(QStringLiteral("registry")));
        QVERIFY(fingerprintOf({path}).isEmpty());
        write(path, "abc");
        const QByteArray first = fingerprintOf({path});
        QVERIFY(!first.isEmpty());
        QCOMPARE(fingerprintOf({path}), first);
        QCOMPARE(fingerprintOf({"/no/such/file", path}), first);

        write(path, "abcd");
        const QByteArray longer = fingerprintOf({path});
        QVERIFY(longer != first);

        // Another file of the same size and with the same time of change in its place, as an image update
        // leaves it.
        const QByteArray other = path + ".new";
        write(other, "xyzw");
        QFile copy(QFile::decodeName(other));
        QVERIFY(copy.open(QIODevice::ReadWrite));
        QVERIFY(copy.setFileTime(QFileInfo(QFile::decodeName(path)).lastModified(),
                                 QFileDevice::FileModificationTime));
        copy.close();
        QVERIFY(QFile::remove(QFile::decodeName(path)));
        QVERIFY(QFile::rename(QFile::decodeName(other), QFile::decodeName(path)));
        QVERIFY(fingerprintOf({path}) != longer);
    }

private:
    QByteArray kept(const QByteArray &sources)
    {
        return cachedLayouts(sources, [this] {
            ++m_made;
            return somePacked();
        });
    }

    QString cachePath() const
    {
        return m_home->filePath(QStringLiteral("Corvanta/ZBLocaleLanguages/keyboard-layouts"));
    }

    static void write(const QByteArray &path, const QByteArray &bytes)
    {
        QFile file(QFile::decodeName(path));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), qint64(bytes.size()));
    }

    const QByteArray m_userHome = qgetenv("HOME");
    const QString m_workingFolder = QDir::currentPath();
    QScopedPointer<QTemporaryDir> m_home;
    int m_made = 0;
};

QTEST_GUILESS_MAIN(LayoutCacheTest)
#include "tst_layoutcache.moc"
