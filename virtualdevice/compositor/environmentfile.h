// The environment that the compositor's file describes.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QProcessEnvironment>

/// What stands in the file that the Settings application rewrites and the compositor is started from.
constexpr char waylandEnvironmentFile[] = "/etc/corvanta/wayland.env";

/// \a base with the variables of \a content, one KEY=VALUE a line as in an EnvironmentFile of systemd.exec(5)
/// without quotes. Lines that are empty, begin with "#" or ";" or hold no "=" are passed over.
QProcessEnvironment withVariables(QProcessEnvironment base, const QByteArray &content);
