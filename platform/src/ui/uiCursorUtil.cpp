#include <gfx/wsCursorRegistry.h>
#include <ui/uiCursorUtil.h>

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace {

// A dropper, 24 pixels, tip at the lower left; with a plus at the upper left
// for picking that adds.
QPixmap drawDropper(bool plus) {
    QPixmap pixmap(24, 24);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    QPainterPath body;
    body.moveTo(1, 23);
    body.lineTo(4, 16);
    body.lineTo(14, 6);
    body.lineTo(18, 10);
    body.lineTo(8, 20);
    body.closeSubpath();
    p.setPen(QPen(Qt::black, 2.5));
    p.drawPath(body);
    p.setPen(QPen(Qt::white, 1.0));
    p.setBrush(Qt::white);
    p.drawPath(body);
    p.setPen(QPen(Qt::black, 1.0));
    p.setBrush(Qt::black);
    p.drawEllipse(QPointF(18, 6), 4.5, 4.5);
    if (plus) {
        p.setPen(QPen(Qt::black, 3.0));
        p.drawLine(QPointF(5, 1), QPointF(5, 9));
        p.drawLine(QPointF(1, 5), QPointF(9, 5));
        p.setPen(QPen(Qt::white, 1.0));
        p.drawLine(QPointF(5, 2), QPointF(5, 8));
        p.drawLine(QPointF(2, 5), QPointF(8, 5));
    }
    return pixmap;
}

} // namespace

QCursor UiCursorUtil::toQCursor(const WsCursor& cursor) {
    const LiString& name = cursor.getName();
    if (name == WsCursorRegistry::Pick || name == WsCursorRegistry::PickPlus) {
        const bool plus = name == WsCursorRegistry::PickPlus;
        static const QPixmap dropper = drawDropper(false);
        static const QPixmap dropperPlus = drawDropper(true);
        return QCursor(plus ? dropperPlus : dropper, cursor.getHotSpot().x, cursor.getHotSpot().y);
    }
    if (name == WsCursorRegistry::Cross) {
        return QCursor(Qt::CrossCursor);
    }
    if (name == WsCursorRegistry::Move) {
        return QCursor(Qt::SizeAllCursor);
    }
    if (name == WsCursorRegistry::SizeHor) {
        return QCursor(Qt::SizeHorCursor);
    }
    if (name == WsCursorRegistry::Hand) {
        return QCursor(Qt::OpenHandCursor);
    }
    return QCursor(Qt::ArrowCursor);
}
