// One QML engine with the module Corvanta.Settings, as a test uses it.
#include "qmlsession.h"

#include <zbsettingsmain.h>

#include <QtCore/QDir>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlError>

QmlSession::QmlSession()
    : m_engine(std::make_unique<QQmlEngine>())
{
    m_engine->addImportPath(QStringLiteral(ZB_QML_DIRECTORY));
    m_engine->setOutputWarningsToStandardError(false);
    QObject::connect(m_engine.get(), &QQmlEngine::warnings, m_engine.get(),
                     [this](const QList<QQmlError> &errors) {
                         for (const QQmlError &error : errors)
                             m_warnings += error.description();
                     });
}

QmlSession::~QmlSession() = default;

QQmlEngine &QmlSession::engine()
{
    return *m_engine;
}

std::unique_ptr<QObject> QmlSession::make(const QString &content)
{
    QQmlComponent component(m_engine.get());
    component.setData("import QtQml 2.15\nimport Corvanta.Settings 1.0\n" + content.toUtf8(),
                      QUrl::fromLocalFile(QDir::temp().filePath(QStringLiteral("Test.qml"))));
    std::unique_ptr<QObject> object(component.create());
    m_errorText = component.errorString();
    return object;
}

QString QmlSession::errorText() const
{
    return m_errorText;
}

QVariant QmlSession::run(const QString &body)
{
    const std::unique_ptr<QObject> object =
        make(QStringLiteral("QtObject { function run() { %1 } }").arg(body));
    if (!object)
        return m_errorText;
    QVariant result;
    QMetaObject::invokeMethod(object.get(), "run", Q_RETURN_ARG(QVariant, result));
    return result;
}

QVariant QmlSession::value(const QString &expression)
{
    return run(QStringLiteral("return %1").arg(expression));
}

ZBSettingsMain *QmlSession::settings()
{
    return qobject_cast<ZBSettingsMain *>(value(QStringLiteral("ZBSettingsMain")).value<QObject *>());
}

QStringList QmlSession::takeWarnings()
{
    QStringList warnings;
    warnings.swap(m_warnings);
    return warnings;
}
