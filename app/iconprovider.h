// IconProvider: the line drawings of the user interface, drawn in the size and the colour that are asked for.
#pragma once

#include <QtQuick/QQuickImageProvider>

/// Serves `image://icons/NAME/COLOUR`, for example `image://icons/globe/#0b7a75`. An unknown name gives an
/// empty picture.
class IconProvider : public QQuickImageProvider
{
public:
    IconProvider();

    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;
};
