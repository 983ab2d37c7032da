// zbtextfield: a Wayland client with one text field, which prints what each key gives it as a line.
#include <QtGui/QGuiApplication>
#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <QtGui/QRasterWindow>

#include <cstdio>

namespace {

void say(const QString &line)
{
    std::printf("%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

class TextField : public QRasterWindow
{
protected:
    void focusInEvent(QFocusEvent *) override { say(QStringLiteral("focus")); }

    void keyPressEvent(QKeyEvent *event) override
    {
        say(QStringLiteral("text ") + event->text());
        m_text += event->text();
        update();
    }

    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.fillRect(0, 0, width(), height(), QColor(0xf4, 0xf5, 0xf7));
        QRect field(40, 0, width() - 80, 96);
        field.moveTop((height() - field.height()) / 2);
        painter.fillRect(field, Qt::white);
        painter.setPen(QColor(0x35, 0x70, 0xc4));
        painter.drawRect(field);
        QFont font(QStringLiteral("Inter"));
        font.setPixelSize(56);
        painter.setFont(font);
        painter.setPen(QColor(0x1c, 0x1f, 0x24));
        painter.drawText(field.adjusted(20, 0, -20, 0), Qt::AlignVCenter | Qt::AlignLeft, m_text);
    }

private:
    QString m_text;
};

} // namespace

int main(int argumentCount, char **arguments)
{
    const QGuiApplication application(argumentCount, arguments);
    TextField field;
    field.resize(800, 480);
    field.setTitle(QStringLiteral("Keyboard"));
    field.show();
    return QGuiApplication::exec();
}
