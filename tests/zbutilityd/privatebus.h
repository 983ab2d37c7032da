// A message bus of the test's own, with the rules of a distribution's system bus.
#pragma once

#include "childprocess.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

/**
 * A dbus-daemon of the type "system".
 *
 * Its rules are those that a system bus starts from: nobody may own a name or call a method unless a rule
 * that is added allows it. It ends with this object.
 */
class PrivateBus
{
public:
    /// Adds rules: the elements that come last in the configuration, for instance an <include>.
    explicit PrivateBus(const QString &rules);
    ~PrivateBus();

    /// Starts the bus and waits until it listens.
    bool start();
    /// Kills the bus.
    void kill();

    QString address() const;
    QString errorText() const;

private:
    QString m_rules;
    QTemporaryDir m_directory;
    ChildProcess m_process;
    QString m_address;
    QString m_errorText;
};

/// Rules that allow everything to everybody.
QString openRules();
