#include "timeline.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr int Margin = 12;

} // namespace

Timeline::Timeline(QWidget* parent)
    : QWidget(parent) {
    setObjectName("timeline");
    setMinimumHeight(40);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void Timeline::setRange(int first, int last) {
    _first = first;
    _last = std::max(first, last);
    update();
}

void Timeline::setFrame(int frame) {
    if (frame != _frame) {
        _frame = frame;
        update();
    }
}

void Timeline::setCached(std::vector<int> frames) {
    if (frames != _cached) {
        _cached = std::move(frames);
        update();
    }
}

void Timeline::setKeys(std::vector<int> frames) {
    if (frames != _keys) {
        _keys = std::move(frames);
        update();
    }
}

int Timeline::xOf(int frame) const {
    const int span = std::max(1, _last - _first);
    const int width = std::max(1, this->width() - 2 * Margin);
    return Margin + static_cast<int>(std::lround(double(frame - _first) * width / span));
}

int Timeline::frameAt(int x) const {
    const int span = std::max(1, _last - _first);
    const int width = std::max(1, this->width() - 2 * Margin);
    const int frame = _first + static_cast<int>(std::lround(double(x - Margin) * span / width));
    return std::clamp(frame, _first, _last);
}

void Timeline::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.fillRect(rect(), QColor(32, 32, 34));
    const int h = height();
    // The scale: a tick per frame when they have room, else per step.
    const int span = std::max(1, _last - _first);
    const double perFrame = double(width() - 2 * Margin) / span;
    int step = 1;
    for (int s : {1, 2, 5, 10, 20, 50, 100, 200, 500, 1000}) {
        step = s;
        if (perFrame * s >= 48) {
            break;
        }
    }
    p.setPen(QColor(90, 90, 96));
    p.drawLine(Margin, h / 2, width() - Margin, h / 2);
    QFont font = p.font();
    font.setPixelSize(10);
    p.setFont(font);
    for (int f = _first - (_first % step + step) % step; f <= _last; f += step) {
        if (f < _first) {
            continue;
        }
        const int x = xOf(f);
        p.setPen(QColor(110, 110, 118));
        p.drawLine(x, h / 2 - 4, x, h / 2 + 4);
        p.setPen(QColor(150, 150, 158));
        p.drawText(x + 2, h / 2 + 14, QString::number(f));
    }
    // Cached frames: a green strip along the bottom.
    const int cell = std::max(1, static_cast<int>(std::ceil(perFrame)));
    for (int f : _cached) {
        p.fillRect(xOf(f) - cell / 2, h - 4, cell, 3, QColor(80, 170, 90));
    }
    // Keys: yellow ticks along the top.
    p.setPen(QPen(QColor(240, 190, 60), 2));
    for (int f : _keys) {
        const int x = xOf(f);
        p.drawLine(x, 2, x, 10);
    }
    // The current frame.
    const int x = xOf(_frame);
    p.setPen(QPen(QColor(230, 70, 60), 2));
    p.drawLine(x, 0, x, h);
    p.setPen(QColor(240, 240, 240));
    p.drawText(x + 4, 12, QString::number(_frame));
}

void Timeline::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        return;
    }
    _dragging = true;
    if (onScrub) {
        onScrub(frameAt(static_cast<int>(event->position().x())), false);
    }
}

void Timeline::mouseMoveEvent(QMouseEvent* event) {
    if (_dragging && onScrub) {
        onScrub(frameAt(static_cast<int>(event->position().x())), false);
    }
}

void Timeline::mouseReleaseEvent(QMouseEvent* event) {
    if (_dragging && event->button() == Qt::LeftButton) {
        _dragging = false;
        if (onScrub) {
            onScrub(frameAt(static_cast<int>(event->position().x())), true);
        }
    }
}
