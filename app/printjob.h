// What the print system says of options and jobs, from the texts that its tools print.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QMap>
#include <QtCore/QString>

/// The options in the output of `lpoptions -p QUEUE`, values without their quotes.
QMap<QString, QString> optionsByTool(const QString &output);

/// The attributes in the output of `ipptool -tv`; of several with the same name the last.
QMap<QString, QString> attributesByTool(const QString &output);

/// A request for ipptool that asks for all attributes of the job with this number.
QByteArray jobRequest(int job);

/// The number of the job that the printer has kept as a file of this name, 0 for other files.
int jobOfDocument(const QString &fileName);
