// SettingsApplication: the QML engine and the window of the Settings application.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QSize>
#include <QtQml/QQmlApplicationEngine>

class QQuickWindow;

class SettingsApplication : public QObject
{
    Q_OBJECT

public:
    struct Options
    {
        int tab = 0; ///< the tab that shows first
        QSize size = {800, 480};
        bool animated = true; ///< false: every state is reached at once
    };

    explicit SettingsApplication(QObject *parent = nullptr);

    /// Makes and shows the window. False when it cannot be made: the QML engine has then said why on stderr.
    bool show(const Options &options);

    /// Null before show().
    QQuickWindow *window() const;

private:
    QQmlApplicationEngine m_engine;
};
