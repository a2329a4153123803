#include "colourSpacePicture.h"

#include "hostSession.h"

#include <tesseraCore/colourspace/tsCsMatte.h>

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

using Colour = CoRgbColorTyped<float>;

// Only what the matte depends on.
bool sameKey(const TsKeyerSettings& a, const TsKeyerSettings& b) {
    if (a.matte != b.matte || a.keyColors != b.keyColors || a.degrainOn != b.degrainOn ||
        a.degrainBox != b.degrainBox || a.patches.size() != b.patches.size()) {
        return false;
    }
    for (std::size_t k = 0; k < a.patches.size(); ++k) {
        const TsKeyerSettings::Patch& p = a.patches[k];
        const TsKeyerSettings::Patch& q = b.patches[k];
        if (p.box != q.box || p.mode != q.mode || p.range != q.range || p.softness != q.softness) {
            return false;
        }
    }
    return true;
}

QColor shown(const Colour& c) {
    return QColor::fromRgb(
        TsCsRaster::pointColour(c.r, c.g, c.b, 0.0f, TsCsRaster::Colouring::Own));
}

QColor boxColour(int mode) {
    switch (mode) {
    case 1:
        return QColor(255, 170, 0); // edge
    case 2:
        return QColor(255, 80, 80); // foreground
    case 3:
        return QColor(90, 160, 255); // background
    default:
        return QColor(0, 220, 200); // the degrain box
    }
}

class Pen {
public:
    Pen(QPainter& painter, const TsCsProjection& projection)
        : _painter(painter)
        , _projection(projection) {}

    QPointF at(const Colour& c) const {
        const TsCsProjection::Point p = _projection(c);
        return {p.x, p.y};
    }
    void line(const Colour& a, const Colour& b) const { _painter.drawLine(at(a), at(b)); }
    void box(const std::array<Colour, 8>& corners) const {
        for (const auto& edge : TsCsScene::boxEdges()) {
            line(corners[edge[0]], corners[edge[1]]);
        }
    }
    void label(const Colour& c, const QString& text) const {
        _painter.drawText(at(c) + QPointF(4.0, -4.0), text);
    }

private:
    QPainter& _painter;
    const TsCsProjection& _projection;
};

} // namespace

bool ColourSpacePicture::follow(const HostSession& session) {
    const RCShdPtr<TsKeyerNode> node = session.getShownNode();
    const PiClipPtr& clip = session.getPlate();
    const bool newPick = picked != session.getLastPicked();
    if (newPick) {
        picked = session.getLastPicked();
    }
    return follow(clip ? clip->getImageAt(session.getFrame()) : PiImagePtr(),
                  node ? node->getSettings(session.getFrame()) : TsKeyerSettings()) ||
           newPick;
}

bool ColourSpacePicture::follow(const PiImagePtr& plate, const TsKeyerSettings& settings) {
    bool changed = false;
    if (plate.get() != _plate.get() || budget != _builtBudget) {
        _plate = plate;
        _builtBudget = budget;
        if (plate) {
            _cloud.build(*plate, budget);
        } else {
            _cloud = TsCsCloud();
        }
        _settings.reset();
        markedPoint = -1;
        changed = true;
    }
    if (!_settings || !sameKey(*_settings, settings) || sliceNormal != _builtSlice) {
        const TsCsMatte matte(settings);
        Colour lo{0.0f, 0.0f, 0.0f}, hi{1.0f, 1.0f, 1.0f};
        if (_cloud.size() > 0) {
            for (int i = 0; i < 3; ++i) {
                lo[i] = std::min(lo[i], _cloud.getLow()[i]);
                hi[i] = std::max(hi[i], _cloud.getHigh()[i]);
            }
        }
        _scene = TsCsScene::build(settings, matte, lo, hi, sliceNormal);
        _cloud.computeMatte(matte);
        _settings = settings;
        _builtSlice = sliceNormal;
        changed = true;
    }
    return changed;
}

void ColourSpacePicture::frame() {
    if (_cloud.size() == 0) {
        camera.frame({0.0f, 0.0f, 0.0f}, {1.0f, 1.0f, 1.0f});
        return;
    }
    Colour lo = _cloud.getLow(), hi = _cloud.getHigh();
    for (const Colour& c : {_scene.keyColours[0], _scene.keyColours[1], _scene.key}) {
        for (int i = 0; i < 3; ++i) {
            lo[i] = std::min(lo[i], c[i]);
            hi[i] = std::max(hi[i], c[i]);
        }
    }
    camera.frame(lo, hi);
}

QImage ColourSpacePicture::draw() const {
    QImage image(camera.width, camera.height, QImage::Format_RGB32);
    draw(image);
    return image;
}

void ColourSpacePicture::draw(QImage& image) const {
    image.fill(QColor(28, 28, 32));
    const TsCsProjection projection(camera);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        const Pen pen(painter, projection);
        // The unit cube, for bearings.
        painter.setPen(QPen(QColor(80, 80, 90), 1.0));
        std::array<Colour, 8> cube;
        for (int k = 0; k < 8; ++k) {
            cube[k] = {(k & 1) ? 1.0f : 0.0f, (k & 2) ? 1.0f : 0.0f, (k & 4) ? 1.0f : 0.0f};
        }
        pen.box(cube);
        painter.setPen(QColor(150, 150, 160));
        pen.label({1.0f, 0.0f, 0.0f}, "R");
        pen.label({0.0f, 1.0f, 0.0f}, "G");
        pen.label({0.0f, 0.0f, 1.0f}, "B");
    }
    TsCsRaster::drawPoints(reinterpret_cast<std::uint32_t*>(image.bits()), image.width(),
                           image.height(), static_cast<int>(image.bytesPerLine() / 4), projection,
                           _cloud, style, _depth);

    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const Pen pen(painter, projection);
    const std::array<QColor, 3> levelColours = {QColor(80, 200, 255), QColor(255, 225, 0),
                                                QColor(245, 245, 245)};
    for (std::size_t l = 0; l < _scene.levels.size(); ++l) {
        painter.setPen(QPen(levelColours[l], 1.5));
        for (const TsCsScene::Segment& s : _scene.levels[l]) {
            pen.line(s.a, s.b);
        }
    }
    for (const TsCsScene::Box& box : _scene.boxes) {
        QPen line(boxColour(box.mode), 1.5);
        if (box.mode < 0) {
            line.setStyle(Qt::DashLine);
        }
        painter.setPen(line);
        pen.box(box.corners);
    }
    if (_scene.hasAxes) {
        const std::array<QColor, 3> axisColours = {QColor(255, 120, 60), QColor(220, 90, 255),
                                                   QColor(150, 255, 90)};
        for (int k = 0; k < 3; ++k) {
            painter.setPen(QPen(axisColours[k], 2.0));
            pen.line(_scene.key, _scene.key + _scene.axes[k]);
            pen.label(_scene.key + _scene.axes[k], QString::number(k + 1));
        }
    }
    // The last pick's colours: an outlined square each, at most MaxPicked
    // of them evenly through the pick (a box sweep takes many thousands).
    constexpr std::size_t MaxPicked = 2048;
    const std::size_t stride = picked.size() / MaxPicked + 1;
    for (std::size_t i = 0; i < picked.size(); i += stride) {
        painter.setPen(QPen(Qt::white, 1.0));
        painter.setBrush(shown(picked[i]));
        painter.drawRect(QRectF(pen.at(picked[i]) - QPointF(3, 3), QSizeF(6, 6)));
    }
    painter.setPen(QPen(Qt::white, 1.0));
    for (const Colour& c : _scene.keyColours) {
        painter.setBrush(shown(c));
        painter.drawEllipse(pen.at(c), 5.0, 5.0);
    }
    painter.setBrush(shown(_scene.key));
    const QPointF k = pen.at(_scene.key);
    painter.drawPolygon(
        QPolygonF({k + QPointF(0, -8), k + QPointF(8, 0), k + QPointF(0, 8), k + QPointF(-8, 0)}));
    painter.setBrush(Qt::NoBrush);
    painter.setBrush(Qt::NoBrush);
    if (markedPoint >= 0 && markedPoint < _cloud.size()) {
        painter.setPen(QPen(Qt::white, 2.0));
        painter.drawEllipse(pen.at(_cloud.colour(markedPoint)), 7.0, 7.0);
    }
    if (markedColour) {
        const QPointF m = pen.at(*markedColour);
        painter.setPen(QPen(QColor(255, 0, 255), 2.0));
        painter.drawLine(m + QPointF(-9, 0), m + QPointF(9, 0));
        painter.drawLine(m + QPointF(0, -9), m + QPointF(0, 9));
    }
    painter.setPen(QColor(170, 170, 180));
    painter.drawText(QPointF(8.0, image.height() - 8.0),
                     QString("azimuth %1  elevation %2  %3 points")
                         .arg(camera.azimuth, 0, 'f', 1)
                         .arg(camera.elevation, 0, 'f', 1)
                         .arg(_cloud.size()));
}
