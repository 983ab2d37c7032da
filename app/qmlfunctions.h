// ToolOutput, KeyboardLayouts, ListSearch, PresetNames and PrinterFiles: functions of this program in the
// form in which QML can call them.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QStringList>
#include <QtCore/QVariantList>
#include <QtCore/QVariantMap>

class ToolOutput : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Objects with the members of StorageRow.
    Q_INVOKABLE QVariantList storageRows(const QString &table) const;
    Q_INVOKABLE QStringList valueLines(const QString &output, int count) const;
    Q_INVOKABLE QStringList offsetValues(const QString &line, int count) const;
};

class KeyboardLayouts : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// The text to store for the layout at this position of the back end's list; empty outside the list.
    Q_INVOKABLE QString codeAt(int position) const;
    /// The position of the layout with this code, -1 when there is none.
    Q_INVOKABLE int positionOf(const QString &code) const;
    /// Whether the compositor's environment file holds this layout. It does not where it is missing, or is no
    /// file that can be read.
    Q_INVOKABLE bool isWritten(const QString &code) const;
};

class ListSearch : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Positions of the names that fit what a person typed.
    Q_INVOKABLE QVariantList positions(const QStringList &names, const QString &text) const;
};

class PresetNames : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// One line of what of the text can be seen.
    Q_INVOKABLE QString visibleName(const QString &text) const;
    Q_INVOKABLE QString shortened(const QString &text, int characters) const;
};

/// What other programs find of what the back end was told, which does not report whether it could write it.
class PrinterFiles : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// How many of the user's presets on the disk have this name; -1 where their folder cannot be read. Logs
    /// what is wrong with any of them, each time, and takes half a second while a process that hangs holds
    /// the folder.
    Q_INVOKABLE int presetsNamed(const QString &name) const;
    /// The options by the names of the back end's properties, all but the dithering method and the ribbon
    /// saver. The backfeed offset is with its fraction.
    Q_INVOKABLE QVariantMap options() const;
};
