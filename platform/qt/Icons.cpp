#include "Icons.h"

#include <QGuiApplication>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QSvgRenderer>

#include <windows/Icons.h>

// The drawings' lines have the colour of text, and their accent is lighter on dark ground. They are drawn anew for each size, so that lines stay
// sharp on every screen.

namespace {

QByteArray Coloured(QByteArray svg, QIcon::Mode mode)
{
    const QPalette::ColorGroup group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
    const QColor text = QGuiApplication::palette().color(group, mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::WindowText);
    svg.replace("currentColor", text.name().toLatin1());
    if (mode == QIcon::Disabled || mode == QIcon::Selected)    // the ground of what is selected has a colour of its own
        svg.replace("#3584e4", text.name().toLatin1());
    else if (text.lightness() > 128)
        svg.replace("#3584e4", "#78aeed");
    return svg;
}

class CDrawingEngine : public QIconEngine {
public:
    explicit CDrawingEngine(const char* svg) : m_svg(svg) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        QSvgRenderer drawing(Coloured(m_svg, mode));
        const int side = std::min(rect.width(), rect.height());
        drawing.render(painter, QRectF(rect.x() + (rect.width() - side) / 2.0, rect.y() + (rect.height() - side) / 2.0, side, side));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        const QColor text = QGuiApplication::palette().color(QPalette::WindowText);
        if (text != m_text)    // the desktop has become dark, or light
            m_kept.clear();
        m_text = text;
        QPixmap& kept = m_kept[(quint64(size.width()) << 32 | quint64(size.height()) << 8) | quint64(mode)];
        if (kept.isNull()) {
            kept = QPixmap(size);
            kept.fill(Qt::transparent);
            QPainter painter(&kept);
            paint(&painter, QRect(QPoint(), size), mode, state);
        }
        return kept;
    }

    QIconEngine* clone() const override { return new CDrawingEngine(m_svg); }

private:
    const char* m_svg;
    QHash<quint64, QPixmap> m_kept;
    QColor m_text;    ///< that they are drawn with
};

QHash<unsigned int, QIcon>& Kept()
{
    static QHash<unsigned int, QIcon> kept;
    return kept;
}

// A pointer's middle is its hot spot.
QCursor DrawCursor(unsigned int id)
{
    constexpr int SIDE = 28;
    const char* const svg = FindIcon(id);
    if (!svg)
        return Qt::ArrowCursor;
    const qreal ratio = qGuiApp->devicePixelRatio();
    QPixmap pixels(qRound(SIDE * ratio), qRound(SIDE * ratio));
    pixels.fill(Qt::transparent);
    QPainter painter(&pixels);
    QSvgRenderer(QByteArray(svg)).render(&painter);
    painter.end();
    pixels.setDevicePixelRatio(ratio);
    return QCursor(pixels, SIDE / 2, SIDE / 2);
}

}

QIcon GetIcon(unsigned int id)
{
    const char* const svg = FindIcon(id);
    if (!svg)
        return {};
    QIcon& icon = Kept()[id];
    if (icon.isNull())
        icon = QIcon(new CDrawingEngine(svg));
    return icon;
}

QCursor GetCursor(MouseCursor cursor)
{
    switch (cursor) {
    case CURSOR_ARROW: return Qt::ArrowCursor;
    case CURSOR_WAIT: return Qt::WaitCursor;
    case CURSOR_CROSS: return Qt::CrossCursor;
    case CURSOR_HAND: return Qt::PointingHandCursor;
    case CURSOR_HELP: return Qt::WhatsThisCursor;
    default: break;
    }
    static QHash<int, QCursor> drawn;
    if (!drawn.contains(cursor))
        drawn.insert(cursor, DrawCursor(cursor));
    return drawn.value(cursor);
}
