#include "colourSpaceDock.h"

#include "host/hostSession.h"

#include <base/vwUtils.h>
#include <base/vwView.h>
#include <pluginAPI/piNodeController.h>
#include <ui/uiViewer.h>

#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

// How near the pointer a point must be to be hovered or clicked, in pixels.
constexpr float PickRadius = 6.0f;

} // namespace

// --- the view

ColourSpaceView::ColourSpaceView(HostSession& session, QWidget* parent)
    : QWidget(parent)
    , _session(session) {
    setObjectName("colourSpaceView");
    setMouseTracking(true);
    setMinimumSize(240, 200);
}

void ColourSpaceView::keyChanged() {
    if (_pending) {
        return;
    }
    _pending = true;
    QTimer::singleShot(0, this, [this] {
        _pending = false;
        if (isVisible()) {
            refresh();
        }
    });
}

void ColourSpaceView::refresh() {
    if (!_picture.follow(_session)) {
        return;
    }
    const void* plate = _picture.getPlate().get();
    if (plate != _framedPlate) {
        _framedPlate = plate;
        _picture.camera.width = std::max(width(), 1);
        _picture.camera.height = std::max(height(), 1);
        _picture.frame();
    }
    update();
}

void ColourSpaceView::lookAlong(int axis) {
    const TsCsScene& scene = _picture.getScene();
    if (scene.hasAxes && axis >= 0 && axis < 3) {
        _picture.camera.lookAlong(scene.axes[axis]);
        update();
    }
}

void ColourSpaceView::fit() {
    _picture.frame();
    update();
}

void ColourSpaceView::showEvent(QShowEvent*) {
    refresh();
}

void ColourSpaceView::paintEvent(QPaintEvent*) {
    _picture.follow(_session);
    TsCsCamera& camera = _picture.camera;
    if (camera.width != width() || camera.height != height()) {
        // Keep the scale to the smaller side, as framing does.
        const int before = std::max(std::min(camera.width, camera.height), 1);
        camera.scale *= static_cast<float>(std::min(width(), height())) / before;
        camera.width = width();
        camera.height = height();
    }
    if (_image.size() != size()) {
        _image = QImage(size(), QImage::Format_RGB32);
    }
    _picture.draw(_image);
    QPainter(this).drawImage(0, 0, _image);
}

int ColourSpaceView::pointAt(const QPointF& at) const {
    return _picture.getCloud().pick(TsCsProjection(_picture.camera), static_cast<float>(at.x()),
                                    static_cast<float>(at.y()), PickRadius);
}

void ColourSpaceView::mousePressEvent(QMouseEvent* event) {
    _last = event->position();
    _buttons = event->buttons();
    _panning = event->button() != Qt::LeftButton || (event->modifiers() & Qt::ShiftModifier);
    _moved = false;
}

void ColourSpaceView::mouseMoveEvent(QMouseEvent* event) {
    const QPointF at = event->position();
    if (!(event->buttons() & (Qt::LeftButton | Qt::RightButton | Qt::MiddleButton))) {
        const int point = pointAt(at);
        if (point != _picture.markedPoint) {
            _picture.markedPoint = point;
            update();
        }
        if (hovered) {
            hovered(point);
        }
        return;
    }
    const QPointF d = at - _last;
    _last = at;
    _moved = true;
    TsCsCamera& camera = _picture.camera;
    if (_panning) {
        camera.panX += static_cast<float>(d.x());
        camera.panY += static_cast<float>(d.y());
    } else {
        camera.azimuth = std::remainder(camera.azimuth - 0.5 * d.x(), 360.0);
        camera.elevation = std::clamp(camera.elevation + 0.5 * d.y(), -90.0, 90.0);
    }
    update();
}

void ColourSpaceView::mouseReleaseEvent(QMouseEvent* event) {
    if (!_moved && event->button() == Qt::LeftButton) {
        const int point = pointAt(event->position());
        _picture.markedPoint = point;
        update();
        if (point >= 0 && clicked) {
            clicked(point);
        }
    }
    _moved = false;
}

void ColourSpaceView::wheelEvent(QWheelEvent* event) {
    const double steps = event->angleDelta().y() / 120.0;
    _picture.camera.scale *= static_cast<float>(std::pow(1.15, steps));
    update();
}

// --- the mark in the viewer: a square round the pixel, over the image

class ColourSpaceDock::ViewerMark : public QWidget {
public:
    explicit ViewerMark(UiViewer& viewer)
        : QWidget(&viewer)
        , _viewer(viewer) {
        setObjectName("colourSpaceMark");
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setAttribute(Qt::WA_NoSystemBackground);
        setGeometry(viewer.rect());
        show();
    }

    void setPixel(const QPoint& pixel) {
        _pixel = pixel;
        update();
    }
    const QPoint& getPixel() const { return _pixel; }

protected:
    void paintEvent(QPaintEvent*) override {
        if (_pixel.x() < 0) {
            return;
        }
        const VwView& view = _viewer.getView();
        const GePoint2<float> centre = VwUtils::worldToWindowOrtho(
            view, {static_cast<float>(_pixel.x()) + 0.5f, static_cast<float>(_pixel.y()) + 0.5f});
        const double half = std::max(6.0, 0.5 * view.getZoom() + 3.0);
        QPainter painter(this);
        painter.setPen(QPen(QColor(255, 0, 255), 2.0));
        painter.drawRect(QRectF(centre.x - half, centre.y - half, 2 * half, 2 * half));
    }

private:
    UiViewer& _viewer;
    QPoint _pixel{-1, -1};
};

// --- the dock

ColourSpaceDock::ColourSpaceDock(HostSession& session, QWidget* parent)
    : QDockWidget("Colour Space", parent)
    , _session(session) {
    setObjectName("colourSpaceDock");
    auto* body = new QWidget(this);
    auto* layout = new QVBoxLayout(body);
    layout->setContentsMargins(2, 2, 2, 2);
    _view = new ColourSpaceView(session, body);
    layout->addWidget(_view, 1);

    auto* controls = new QHBoxLayout();
    auto* preset = new QComboBox(body);
    preset->setObjectName("colourSpacePreset");
    preset->addItems({"Free", "Along 1", "Along 2", "Along 3", "Fit"});
    connect(preset, &QComboBox::activated, this, [this, preset](int index) {
        if (index >= 1 && index <= 3) {
            _view->lookAlong(index - 1);
        } else if (index == 4) {
            _view->fit();
        }
        preset->setCurrentIndex(0);
    });
    auto* budget = new QSpinBox(body);
    budget->setObjectName("colourSpaceBudget");
    budget->setRange(1, 1024);
    budget->setSuffix("k points");
    budget->setValue(TsCsCloud::DefaultBudget / 1024);
    connect(budget, &QSpinBox::valueChanged, this, [this](int k) {
        _view->getPicture().budget = 1024 * k;
        _view->refresh();
    });
    auto* size = new QSpinBox(body);
    size->setObjectName("colourSpacePointSize");
    size->setRange(1, 8);
    size->setPrefix("size ");
    size->setValue(_view->getPicture().style.pointSize);
    connect(size, &QSpinBox::valueChanged, this, [this](int s) {
        _view->getPicture().style.pointSize = s;
        _view->update();
    });
    auto* colouring = new QComboBox(body);
    colouring->setObjectName("colourSpaceColouring");
    colouring->addItems({"Own colour", "Matte"});
    connect(colouring, &QComboBox::activated, this, [this](int index) {
        _view->getPicture().style.colouring =
            index == 1 ? TsCsRaster::Colouring::Matte : TsCsRaster::Colouring::Own;
        _view->update();
    });
    auto* slice = new QComboBox(body);
    slice->setObjectName("colourSpaceSlice");
    slice->addItems({"Slice 1-2", "Slice 1-3", "Slice 2-3"});
    connect(slice, &QComboBox::activated, this, [this](int index) {
        _view->getPicture().sliceNormal = 2 - index;
        _view->refresh();
    });
    for (QWidget* w : std::initializer_list<QWidget*>{preset, budget, size, colouring, slice}) {
        controls->addWidget(w);
    }
    layout->addLayout(controls);
    _line = new QLabel(body);
    _line->setObjectName("colourSpaceLine");
    layout->addWidget(_line);
    setWidget(body);

    _view->hovered = [this](int point) {
        const TsCsCloud& cloud = _view->getPicture().getCloud();
        _line->setText(point < 0 ? QString()
                                 : QString("%1 %2 %3  matte %4  pixel %5 %6")
                                       .arg(cloud.r[point], 0, 'g', 4)
                                       .arg(cloud.g[point], 0, 'g', 4)
                                       .arg(cloud.b[point], 0, 'g', 4)
                                       .arg(cloud.alpha[point], 0, 'f', 3)
                                       .arg(cloud.pixelX[point])
                                       .arg(cloud.pixelY[point]));
    };
    _view->clicked = [this](int point) {
        const TsCsCloud& cloud = _view->getPicture().getCloud();
        _mark->setPixel({cloud.pixelX[point], cloud.pixelY[point]});
    };
    _viewer = &session.getViewer();
    _mark = new ViewerMark(*_viewer);
    _viewer->installEventFilter(this);
    attach();
}

// The session (and its viewer, with the mark) may be gone by now: the window
// deletes it before its children.
ColourSpaceDock::~ColourSpaceDock() {
    _historyChanged.reset();
    _valueChanged.reset();
}

QPoint ColourSpaceDock::getMarkedPixel() const {
    return _mark->getPixel();
}

QString ColourSpaceDock::getHoverText() const {
    return _line->text();
}

void ColourSpaceDock::attach() {
    PiCommandStack* stack = &_session.getCommandStack();
    if (stack != _stack || !_historyChanged.isConnected()) {
        _historyChanged.reset();
        stack->addChangedCb(&_historyChanged);
        _stack = stack;
    }
    const RCShdPtr<TsKeyerNode> node = _session.getShownNode();
    const RCShdPtr<PiNodeController> controller =
        node ? node->getController() : RCShdPtr<PiNodeController>();
    if (controller.get() != _controller || !_valueChanged.isConnected()) {
        _valueChanged.reset();
        if (controller) {
            controller->addCallback<PiNodeEvent::ValueChanged>(&_valueChanged);
        }
        _controller = controller.get();
    }
}

void ColourSpaceDock::keyChanged() {
    attach();
    _view->keyChanged();
}

bool ColourSpaceDock::eventFilter(QObject* watched, QEvent* event) {
    if (watched == _viewer) {
        if (event->type() == QEvent::Resize) {
            _mark->setGeometry(_viewer->rect());
        } else if (event->type() == QEvent::MouseMove) {
            viewerHover(static_cast<QMouseEvent*>(event)->position());
        } else if (event->type() == QEvent::Leave) {
            _view->getPicture().markedColour.reset();
            _view->update();
        }
    }
    return QDockWidget::eventFilter(watched, event);
}

void ColourSpaceDock::viewerHover(const QPointF& window) {
    const GePoint2<float> world = VwUtils::windowToWorldOrtho(
        _viewer->getView(), {static_cast<float>(window.x()), static_cast<float>(window.y())});
    const PiClipPtr& clip = _session.getPlate();
    const PiImagePtr plate = clip ? clip->getImageAt(_session.getFrame()) : PiImagePtr();
    const int i = static_cast<int>(std::floor(world.x));
    const int j = static_cast<int>(std::floor(world.y));
    std::optional<CoRgbColorTyped<float>>& marked = _view->getPicture().markedColour;
    if (plate && plate->contains(i, j)) {
        const CoRgbaColorTyped<float> c = plate->getPixel(i, j);
        marked = CoRgbColorTyped<float>{c.r, c.g, c.b};
    } else {
        marked.reset();
    }
    _view->update();
}
