// Keeps the daemon's values in a file, so that they survive a restart and a power cut.
#pragma once

#include "statedocument.h"

#include <QtCore/QString>

/**
 * The state file "state.json" in the state folder.
 *
 * The file is replaced as a whole: whoever reads it, also after a power cut, finds the values of before or
 * those of after a change. One process at a time may use a folder; the daemon sees to that by its name on the
 * bus.
 */
class StateStore
{
public:
    explicit StateStore(const QString &directory);

    /**
     * Reads the file. A file that cannot be used is set aside, under its name with ".damaged-1" to
     * ".damaged-5", of which the last is replaced, and logged; the values are then the initial ones, as they
     * are without a file.
     */
    void load();

    QVariant value(Value value) const;

    /**
     * Changes one value, of the right type and checked already, and returns once it is on the disk. If that
     * fails, the value stays what it was and the text says why; otherwise the text is empty.
     */
    QString change(Value value, const QVariant &newValue);

private:
    QString write(const StateValues &values) const;
    void setAside(const QString &complaint) const;

    QString m_directory;
    QString m_path;
    StateValues m_values;
};
