// A home folder of the test's own with the presets folder in it, as other programs see it.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

/// While it lives, QDir::homePath() is an empty temporary folder.
class PresetHome
{
public:
    PresetHome();
    ~PresetHome();

    bool isValid() const { return m_home.isValid(); }
    QString path() const { return m_home.path(); }
    QString folder() const { return m_home.path() + QStringLiteral("/.cups/Presets/"); }
    /// Names of everything in the presets folder, hidden or not, sorted.
    QStringList names() const;
    QByteArray content(const char *name) const;
    /// Makes or replaces a file in the presets folder, and the folder where it is missing.
    bool write(const char *name, const QByteArray &content) const;
    bool remove(const char *name) const;

private:
    Q_DISABLE_COPY(PresetHome)
    QTemporaryDir m_home;
    const QByteArray m_before;
};

/// The file of a preset of the model "BrackenXL" with one option.
QByteArray presetFile(const QByteArray &name, int index, const QByteArray &option = "Feed: 1");
