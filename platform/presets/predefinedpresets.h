// The presets that come with the device.
#pragma once

#include "presettext.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

/**
 * The predefined presets of \a modelName in their order:
 *
 * - "<Current Settings>" stands for what is set now. It has no options, so loading it changes nothing.
 * - "<System Settings>" is what the device's maker ships: the options of the preset file \a systemPreset.
 *   Where that file is missing, or is no preset of this model, it has the options of the default one.
 * - "<Default Settings>" has the options "orientation-requested" 5 and "copies" 1.
 *
 * A system preset that is there and cannot be used adds one line to \a complaints.
 */
QVector<PresetRecord> predefinedPresets(const QString &modelName, const QString &systemPreset,
                                        QStringList *complaints);
