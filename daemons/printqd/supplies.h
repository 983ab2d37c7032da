// What is loaded in the printer, as the device's supply reader last wrote it.
#pragma once

#include "printjobmetadata.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

/**
 * Takes heats, supply and ribbons of a job from the text of "supplies.json": an object with the members
 * heat1, heat2, supplySKU, supplyColor, supplyMileage, ribbon1SKU, ribbon1Color, ribbon1Mileage, ribbon2SKU,
 * ribbon2Color and ribbon2Mileage. What is missing, or not of its type, is 0 or empty; texts are cut at 100
 * characters.
 */
void putSupplies(const QByteArray &text, PrintJobMetaData *job);

/// The file's text; empty where it is missing, no file, or larger than 64 KiB.
QByteArray readSupplies(const QString &path);
