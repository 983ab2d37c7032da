// The line drawings of the user interface. Each is a path on a ground of 24 by 24 units.
#include "iconprovider.h"

#include <QtCore/QHash>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include <initializer_list>

namespace {

constexpr double ground = 24;
constexpr double lineWidth = 1.8;
const QPointF middle(12, 12);

void addLine(QPainterPath &path, std::initializer_list<QPointF> points)
{
    path.moveTo(*points.begin());
    for (const QPointF &point : points)
        path.lineTo(point);
}

QPainterPath general()
{
    QPainterPath path;
    addLine(path, {{4, 7}, {11.2, 7}});
    addLine(path, {{16.8, 7}, {20, 7}});
    path.addEllipse(QPointF(14, 7), 2.8, 2.8);
    addLine(path, {{4, 17}, {7.2, 17}});
    addLine(path, {{12.8, 17}, {20, 17}});
    path.addEllipse(QPointF(10, 17), 2.8, 2.8);
    return path;
}

QPainterPath clock()
{
    QPainterPath path;
    path.addEllipse(middle, 8.8, 8.8);
    addLine(path, {{12, 7.4}, {12, 12}, {15.2, 14}});
    return path;
}

QPainterPath globe()
{
    QPainterPath path;
    path.addEllipse(middle, 8.8, 8.8);
    path.addEllipse(middle, 4, 8.8);
    addLine(path, {{3.2, 12}, {20.8, 12}});
    return path;
}

QPainterPath update()
{
    QPainterPath path;
    addLine(path, {{12, 4}, {12, 14.5}});
    addLine(path, {{7.8, 10.4}, {12, 14.6}, {16.2, 10.4}});
    path.moveTo(4, 15.5);
    path.lineTo(4, 18.2);
    path.quadTo(4, 20, 5.8, 20);
    path.lineTo(18.2, 20);
    path.quadTo(20, 20, 20, 18.2);
    path.lineTo(20, 15.5);
    return path;
}

QPainterPath user()
{
    QPainterPath path;
    path.addEllipse(QPointF(12, 7.7), 3.7, 3.7);
    path.arcMoveTo(QRectF(4.8, 14, 14.4, 12), 180);
    path.arcTo(QRectF(4.8, 14, 14.4, 12), 180, -180);
    return path;
}

QPainterPath keyboard()
{
    QPainterPath path;
    path.addRoundedRect(QRectF(3, 6, 18, 12), 2.4, 2.4);
    for (const double x : {7.0, 10.4, 13.8, 17.2})
        addLine(path, {{x - 0.1, 10}, {x + 0.1, 10}});
    addLine(path, {{8, 14.2}, {16, 14.2}});
    return path;
}

QPainterPath information()
{
    QPainterPath path;
    path.addEllipse(middle, 8.8, 8.8);
    addLine(path, {{12, 11.2}, {12, 16.2}});
    addLine(path, {{12, 7.8}, {12, 8}});
    return path;
}

QPainterPath search()
{
    QPainterPath path;
    path.addEllipse(QPointF(10.6, 10.6), 6, 6);
    addLine(path, {{15, 15}, {20, 20}});
    return path;
}

QPainterPath chevron()
{
    QPainterPath path;
    addLine(path, {{9, 5.5}, {15.5, 12}, {9, 18.5}});
    return path;
}

QPainterPath unfold()
{
    QPainterPath path;
    addLine(path, {{7.5, 9.5}, {12, 5}, {16.5, 9.5}});
    addLine(path, {{7.5, 14.5}, {12, 19}, {16.5, 14.5}});
    return path;
}

QPainterPath check()
{
    QPainterPath path;
    addLine(path, {{5, 12.5}, {10, 17.5}, {19, 7}});
    return path;
}

QPainterPath warning()
{
    QPainterPath path;
    addLine(path, {{12, 4.2}, {21, 19.5}, {3, 19.5}, {12, 4.2}});
    path.closeSubpath();
    addLine(path, {{12, 10}, {12, 14}});
    addLine(path, {{12, 16.6}, {12, 16.8}});
    return path;
}

QPainterPath dim()
{
    QPainterPath path;
    path.addEllipse(middle, 3, 3);
    return path;
}

QPainterPath bright()
{
    QPainterPath path;
    path.addEllipse(middle, 3.8, 3.8);
    for (int ray = 0; ray < 8; ++ray) {
        QTransform turn;
        turn.translate(middle.x(), middle.y());
        turn.rotate(45 * ray);
        addLine(path, {turn.map(QPointF(0, -7.2)), turn.map(QPointF(0, -9.2))});
    }
    return path;
}

QPainterPath printer()
{
    QPainterPath path;
    addLine(path, {{7, 8.5}, {7, 3.8}, {17, 3.8}, {17, 8.5}});
    path.addRoundedRect(QRectF(3.5, 8.5, 17, 8), 2, 2);
    path.addRect(QRectF(7, 13.4, 10, 6.8));
    return path;
}

QPainterPath align()
{
    QPainterPath path;
    path.addEllipse(middle, 4.6, 4.6);
    addLine(path, {{12, 2.8}, {12, 21.2}});
    addLine(path, {{2.8, 12}, {21.2, 12}});
    return path;
}

QPainterPath preset()
{
    QPainterPath path;
    addLine(path, {{6.5, 20}, {6.5, 4}, {17.5, 4}, {17.5, 20}, {12, 15.6}, {6.5, 20}});
    path.closeSubpath();
    return path;
}

QPainterPath wrench()
{
    QPainterPath path;
    path.arcMoveTo(QRectF(11, 3.4, 9.6, 9.6), 95);
    path.arcTo(QRectF(11, 3.4, 9.6, 9.6), 95, 260);
    path.lineTo(16.2, 9.4);
    path.lineTo(14.6, 7.8);
    path.closeSubpath();
    addLine(path, {{12.2, 11.8}, {4.4, 19.6}});
    return path;
}

QPainterPath minus()
{
    QPainterPath path;
    addLine(path, {{5, 12}, {19, 12}});
    return path;
}

QPainterPath plus()
{
    QPainterPath path;
    addLine(path, {{5, 12}, {19, 12}});
    addLine(path, {{12, 5}, {12, 19}});
    return path;
}

QPainterPath history()
{
    QPainterPath path;
    path.arcMoveTo(QRectF(3.4, 3.4, 17.2, 17.2), 160);
    path.arcTo(QRectF(3.4, 3.4, 17.2, 17.2), 160, -325);
    addLine(path, {{3.2, 4.6}, {3.8, 9.2}, {8.4, 8.6}});
    addLine(path, {{12, 7.6}, {12, 12}, {15, 13.8}});
    return path;
}

QPainterPath picture()
{
    QPainterPath path;
    path.addRoundedRect(QRectF(3.5, 4.5, 17, 15), 2, 2);
    path.addEllipse(QPointF(8.6, 9.4), 1.6, 1.6);
    addLine(path, {{4, 17}, {9.4, 12.4}, {12.6, 15.2}, {15.8, 11.6}, {20, 15.6}});
    return path;
}

QPainterPath pause()
{
    QPainterPath path;
    path.addEllipse(middle, 8.8, 8.8);
    addLine(path, {{9.6, 8.6}, {9.6, 15.4}});
    addLine(path, {{14.4, 8.6}, {14.4, 15.4}});
    return path;
}

QPainterPath cross()
{
    QPainterPath path;
    path.addEllipse(middle, 8.8, 8.8);
    addLine(path, {{9, 9}, {15, 15}});
    addLine(path, {{15, 9}, {9, 15}});
    return path;
}

QPainterPath drawing(const QString &name)
{
    static const QHash<QString, QPainterPath (*)()> drawings = {{QStringLiteral("general"), general},
                                                                {QStringLiteral("clock"), clock},
                                                                {QStringLiteral("globe"), globe},
                                                                {QStringLiteral("update"), update},
                                                                {QStringLiteral("user"), user},
                                                                {QStringLiteral("chevron"), chevron},
                                                                {QStringLiteral("unfold"), unfold},
                                                                {QStringLiteral("check"), check},
                                                                {QStringLiteral("warning"), warning},
                                                                {QStringLiteral("dim"), dim},
                                                                {QStringLiteral("bright"), bright},
                                                                {QStringLiteral("keyboard"), keyboard},
                                                                {QStringLiteral("information"), information},
                                                                {QStringLiteral("search"), search},
                                                                {QStringLiteral("printer"), printer},
                                                                {QStringLiteral("align"), align},
                                                                {QStringLiteral("preset"), preset},
                                                                {QStringLiteral("wrench"), wrench},
                                                                {QStringLiteral("minus"), minus},
                                                                {QStringLiteral("plus"), plus},
                                                                {QStringLiteral("history"), history},
                                                                {QStringLiteral("picture"), picture},
                                                                {QStringLiteral("pause"), pause},
                                                                {QStringLiteral("cross"), cross}};
    const auto draw = drawings.value(name);
    return draw ? draw() : QPainterPath();
}

} // namespace

IconProvider::IconProvider()
    : QQuickImageProvider(QQuickImageProvider::Image)
{
}

QImage IconProvider::requestImage(const QString &id, QSize *size, const QSize &requestedSize)
{
    const QString name = id.section(QLatin1Char('/'), 0, 0);
    const QColor colour(id.section(QLatin1Char('/'), 1));

    const int side =
        requestedSize.isEmpty() ? int(ground) : qMin(requestedSize.width(), requestedSize.height());
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(side / ground, side / ground);
    painter.setPen(QPen(colour, lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(drawing(name));
    *size = image.size();
    return image;
}
