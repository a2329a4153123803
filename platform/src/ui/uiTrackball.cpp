#include <ui/uiQtEvents.h>
#include <ui/uiTrackball.h>
#include <ui/uiTrackballWidget.h>
#include <ui/uiWidgetEvent.h>

#include <base/rcCast.h>

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPalette>

#include <algorithm>

namespace {

GePoint2<float> at(const QMouseEvent& event) {
    return {static_cast<float>(event.position().x()), static_cast<float>(event.position().y())};
}

EvKeyboardState keysOf(const QMouseEvent& event) {
    EvKeyboardState keys = UiWidgetAdapter::currentKeyboardState();
    keys.setModifierMask(UiQtEvents::toModifierMask(event.modifiers()));
    return keys;
}

} // namespace

UiTrackballWidget::UiTrackballWidget(QWidget* parent)
    : QWidget(parent) {
    setCursor(Qt::SizeAllCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize UiTrackballWidget::sizeHint() const {
    return {72, 72};
}

QSize UiTrackballWidget::minimumSizeHint() const {
    return {40, 40};
}

RCShdPtr<UiTrackball> UiTrackballWidget::trackball() {
    return rcTestCast<UiTrackball>(UiWidgetAdapter::of(this));
}

void UiTrackballWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int side = std::min(width(), height()) - 2;
    const QRectF disc((width() - side) / 2.0, (height() - side) / 2.0, side, side);
    const QPalette& p = palette();
    QRadialGradient shade(disc.center() - QPointF(side / 6.0, side / 6.0), side * 0.7);
    shade.setColorAt(0.0, p.color(QPalette::Light));
    shade.setColorAt(1.0, p.color(QPalette::Dark));
    painter.setPen(QPen(p.color(QPalette::Shadow), 1.0));
    painter.setBrush(shade);
    painter.drawEllipse(disc);
    painter.setPen(QPen(p.color(QPalette::Mid), 1.0, Qt::DotLine));
    painter.drawLine(QPointF(disc.left(), disc.center().y()),
                     QPointF(disc.right(), disc.center().y()));
    painter.drawLine(QPointF(disc.center().x(), disc.top()),
                     QPointF(disc.center().x(), disc.bottom()));
    // While dragged, a dot shows how far the pointer went (y up).
    const UiTrackball* ball = dynamic_cast<UiTrackball*>(UiWidgetAdapter::find(this));
    if (ball && ball->isDragging()) {
        float dx = 0.0f;
        float dy = 0.0f;
        ball->getDelta(dx, dy);
        const double r = side / 2.0 - 4.0;
        const QPointF dot(disc.center().x() + std::clamp<double>(dx, -r, r),
                          disc.center().y() - std::clamp<double>(dy, -r, r));
        painter.setPen(Qt::NoPen);
        painter.setBrush(p.color(QPalette::Highlight));
        painter.drawEllipse(dot, 3.5, 3.5);
    }
}

void UiTrackballWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    if (const RCShdPtr<UiTrackball> ball = trackball()) {
        ball->press(at(*event), keysOf(*event));
    }
}

void UiTrackballWidget::mouseMoveEvent(QMouseEvent* event) {
    if (const RCShdPtr<UiTrackball> ball = trackball()) {
        ball->move(at(*event), keysOf(*event));
    }
}

void UiTrackballWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        QWidget::mouseReleaseEvent(event);
        return;
    }
    if (const RCShdPtr<UiTrackball> ball = trackball()) {
        ball->release(at(*event), keysOf(*event));
    }
}

UiTrackball::UiTrackball(UiTrackballWidget* widget)
    : UiWidgetAdapter(widget) {}

void UiTrackball::getDelta(float& dx, float& dy) const {
    dx = _dx;
    dy = _dy;
}

void UiTrackball::step(int kind, const GePoint2<float>& at, const EvKeyboardState& keys) {
    _dx = at.x - _pressedAt.x;
    _dy = _pressedAt.y - at.y;
    if (QWidget* widget = getLiveWidget()) {
        widget->update();
    }
    UiWidgetEvent event(kind, getName(), keys, at);
    fire(kind, event);
}

void UiTrackball::press(const GePoint2<float>& at, const EvKeyboardState& keys) {
    QWidget* widget = getLiveWidget();
    if (!widget || !widget->isEnabled() || _dragging) {
        return;
    }
    const RCShdPtr<UiWidgetAdapter> keep(this);
    _dragging = true;
    _pressedAt = at;
    step(PiWidget::DragBegin, at, keys);
}

void UiTrackball::move(const GePoint2<float>& at, const EvKeyboardState& keys) {
    if (_dragging) {
        const RCShdPtr<UiWidgetAdapter> keep(this);
        step(PiWidget::DragMove, at, keys);
    }
}

void UiTrackball::release(const GePoint2<float>& at, const EvKeyboardState& keys) {
    if (_dragging) {
        const RCShdPtr<UiWidgetAdapter> keep(this);
        _dragging = false;
        step(PiWidget::DragEnd, at, keys);
    }
}

void UiTrackball::drag(float dx, float dy, int steps, const EvKeyboardState& keys) {
    const RCShdPtr<UiWidgetAdapter> keep(this);
    const GePoint2<float> from(0.0f, 0.0f);
    press(from, keys);
    if (!_dragging) {
        return;
    }
    steps = std::max(steps, 1);
    for (int k = 1; k <= steps; ++k) {
        const float f = static_cast<float>(k) / static_cast<float>(steps);
        move({dx * f, -dy * f}, keys);
    }
    release({dx, -dy}, keys);
}
