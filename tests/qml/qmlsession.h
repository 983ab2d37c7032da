// One QML engine with the module Corvanta.Settings, as a test uses it.
#pragma once

#include <QtCore/QStringList>
#include <QtCore/QVariant>
#include <QtQml/QQmlEngine>

#include <memory>

class ZBSettingsMain;

class QmlSession
{
public:
    QmlSession();
    ~QmlSession();

    QQmlEngine &engine();

    /// The object that a QML file with this content makes, its imports included; null when it cannot be made.
    std::unique_ptr<QObject> make(const QString &content);
    /// Why the last make() gave no object.
    QString errorText() const;

    /// What the body of a JavaScript function returns that stands in a QML file.
    QVariant run(const QString &body);
    /// What the JavaScript expression is worth.
    QVariant value(const QString &expression);

    /// The back-end object that QML sees.
    ZBSettingsMain *settings();

    /// The warnings of the engine since the start or the last call, one line each.
    QStringList takeWarnings();

private:
    std::unique_ptr<QQmlEngine> m_engine;
    QString m_errorText;
    QStringList m_warnings;
};
