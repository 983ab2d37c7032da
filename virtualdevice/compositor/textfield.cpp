// zbtextfield [--report]: a Wayland client with one text field. With --report it prints a line for what
// happens to it: "focus", "text T" for a key that gives the text T, and "shown T" when the whole text T is on
// the screen.
#include <QtGui/QGuiApplication>
#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <QtGui/QRasterWindow>

#include <cstdio>

namespace {

class TextField : public QRasterWindow
{
public:
    explicit TextField(bool reports)
        : m_reports(reports)
    {
    }

protected:
    void focusInEvent(QFocusEvent *) override { report(QStringLiteral("focus")); }

    void keyPressEvent(QKeyEvent *event) override
    {
        report(QStringLiteral("text ") + event->text());
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

        // The compositor asks for another frame only once it has shown the one before.
        if (m_text == m_paintedText)
            report(QStringLiteral("shown ") + m_text);
        else
            update();
        m_paintedText = m_text;
    }

private:
    void report(const QString &line) const
    {
        if (!m_reports)
            return;
        std::printf("%s\n", line.toUtf8().constData());
        std::fflush(stdout);
    }

    const bool m_reports;
    QString m_text;
    QString m_paintedText;
};

} // namespace

int main(int argumentCount, char **arguments)
{
    const QGuiApplication application(argumentCount, arguments);
    TextField field(QCoreApplication::arguments().contains(QStringLiteral("--report")));
    field.resize(800, 480);
    field.setTitle(QStringLiteral("Keyboard"));
    field.show();
    return QGuiApplication::exec();
}
