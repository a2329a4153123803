#include <ui/uiApplication.h>
#include <ui/uiCursorUtil.h>
#include <ui/uiGrab.h>
#include <ui/uiQtEvents.h>
#include <ui/uiViewer.h>
#include <ui/uiViewerKeys.h>

#include <base/exReporter.h>
#include <base/vwUtils.h>
#include <gfx/mfCurrentToolEventHandler.h>
#include <gfx/mfEventHandlerUtil.h>
#include <gfx/wsCursorRegistry.h>
#include <pluginAPI/piCurrentToolEventHandler.h>
#include <pluginAPI/piEventContext.h>
#include <pluginAPI/piEventHandlingInterface.h>
#include <pluginAPI/piImageModifier.h>
#include <pluginAPI/piNode.h>
#include <pluginAPI/piPath.h>
#include <pluginAPI/piViewerStageInterface.h>

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

const GePoint2<float> toPoint(const QPointF& p) {
    return {static_cast<float>(p.x()), static_cast<float>(p.y())};
}

constexpr int OverlayTextSize = 12;

QColor toQColor(const CoRgbaColorTyped<float>& c) {
    return QColor::fromRgbF(std::clamp(c.r, 0.0f, 1.0f), std::clamp(c.g, 0.0f, 1.0f),
                            std::clamp(c.b, 0.0f, 1.0f), std::clamp(c.a, 0.0f, 1.0f));
}

QRectF toQRect(const WsRecordingPainter::Item& item) {
    return QRectF(QPointF(item.x0, item.y0), QPointF(item.x1, item.y1));
}

PiViewRenderInterface* viewsOf(const RCShdPtr<PiNode>& node) {
    return node ? dynamic_cast<PiViewRenderInterface*>(node->getController().get()) : nullptr;
}

PiViewerStageInterface* stagesOf(const RCShdPtr<PiNode>& node) {
    return node ? dynamic_cast<PiViewerStageInterface*>(node->getController().get()) : nullptr;
}

// A text field the user is typing into: its text changed and is not
// committed yet.
bool isTyping(const QWidget* focus) {
    const QLineEdit* edit = qobject_cast<const QLineEdit*>(focus);
    if (!edit && focus &&
        (qobject_cast<const QAbstractSpinBox*>(focus) || qobject_cast<const QComboBox*>(focus))) {
        edit = focus->findChild<const QLineEdit*>();
    }
    return edit && edit->isModified();
}

} // namespace

UiViewer::UiViewer(QWidget* parent, const LiString& name)
    : QWidget(parent)
    , UiWidget(this, name) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(64, 64);
    _view.setViewportSize(width(), height());
    PiEventHandlingInterface::getInstance().viewerCreated(*this);
}

UiViewer::~UiViewer() {
    // A drag under way ends here (its undo step closed), while its tool can
    // still ask this viewer for a redraw: someone else may hold the handler.
    if (auto* current = dynamic_cast<MfCurrentToolEventHandler*>(_handler.get())) {
        if (const RCShdPtr<MfTool> tool = current->getCurrentMfTool()) {
            exContain("viewer " + getName() + ": closing", [&] { tool->interruptManipulation(); });
        }
    }
    // The handler goes while the viewer is whole: it unregisters its hotkeys
    // from this widget's handler.
    RCShdPtr<PiEventHandler> handler;
    handler.swap(_handler);
    handler.reset();
    PiEventHandlingInterface::getInstance().viewerDestroyed(*this);
}

void UiViewer::setNode(const RCShdPtr<PiNode>& node) {
    releaseHandler();
    _node = node;
    _path = node ? rcMake<PiPath>(node) : RCShdPtr<PiPath>();
    _shown = Shown();
    _wipeShown = Shown();
    _renderer.reset();
    _wipeRenderer.reset();
    _matteRenderer.reset();
    if (PiViewRenderInterface* views = viewsOf(node)) {
        exContain("viewer " + getName() + ": the node's views", [&] {
            const std::vector<std::string> names = views->getViews();
            if (std::find(names.begin(), names.end(), _viewMode) == names.end()) {
                _viewMode = views->getDefaultView();
            }
            _renderer = views->createViewRenderer();
            // The wipe's compare view and the readout's matte have renderers
            // of their own: each keeps the one view it renders.
            _wipeRenderer = views->createViewRenderer();
            if (std::find(names.begin(), names.end(), "matte") != names.end()) {
                _matteRenderer = views->createViewRenderer();
            }
        });
    }
    _fitted = false;
    if (PiViewerStageInterface* stages = stagesOf(node)) {
        const std::vector<std::string> names = stages->getViewerStages();
        if (!names.empty()) {
            setStage(names.front());
        }
    }
    if (!_handler) {
        install(RCShdPtr<PiEventHandler>(), "", true);
    }
    fitImage();
    redraw();
}

std::vector<std::string> UiViewer::getStages() const {
    PiViewerStageInterface* stages = stagesOf(_node);
    return stages ? stages->getViewerStages() : std::vector<std::string>();
}

bool UiViewer::setStage(const std::string& stage) {
    PiViewerStageInterface* stages = stagesOf(_node);
    const std::vector<std::string> names = getStages();
    if (!stages || std::find(names.begin(), names.end(), stage) == names.end()) {
        ExReporter::getInstance().report("viewer " + getName(),
                                         "the node shown has no viewer stage \"" + stage + "\"");
        return false;
    }
    // The old handler goes first: the new one registers the same hotkeys on
    // this widget, which the old one withdraws when it goes.
    releaseHandler();
    RCShdPtr<PiEventHandler> handler;
    exContain("viewer " + getName() + ": the handler of stage \"" + stage + "\"",
              [&] { handler = stages->createViewerEventHandler(stage, *this, _node, _path); });
    if (!handler) {
        ExReporter::getInstance().report("viewer " + getName(),
                                         "no handler for stage \"" + stage + "\"");
        install(RCShdPtr<PiEventHandler>(), "", true);
        return false;
    }
    install(handler, stage, true);
    return true;
}

void UiViewer::setEventHandler(const RCShdPtr<PiEventHandler>& handler) {
    install(handler, "", false);
}

void UiViewer::releaseHandler() {
    // As when the viewer closes: a drag under way ends first.
    if (auto* current = dynamic_cast<MfCurrentToolEventHandler*>(_handler.get())) {
        if (const RCShdPtr<MfTool> tool = current->getCurrentMfTool()) {
            exContain("viewer " + getName() + ": ending the drag",
                      [&] { tool->interruptManipulation(); });
        }
    }
    RCShdPtr<PiEventHandler> old;
    old.swap(_handler);
    _stage.clear();
    exContain("viewer " + getName() + ": releasing its handler", [&] { old.reset(); });
}

void UiViewer::install(const RCShdPtr<PiEventHandler>& handler, const std::string& stage,
                       bool announce) {
    if (handler.get() != _handler.get() || stage != _stage) {
        RCShdPtr<PiEventHandler> old;
        old.swap(_handler);
        _handler = handler;
        _stage = stage;
        exContain("viewer " + getName() + ": releasing its handler", [&] { old.reset(); });
        announce = true;
    }
    if (announce) {
        PiEventHandlingInterface::getInstance().handlerReplaced(*this);
        updateCursor();
        redraw();
    }
}

std::vector<std::string> UiViewer::getViews() const {
    std::vector<std::string> names;
    if (PiViewRenderInterface* views = viewsOf(_node)) {
        exContain("viewer " + getName() + ": the node's views", [&] { names = views->getViews(); });
    }
    return names;
}

bool UiViewer::setViewMode(const std::string& view) {
    const std::vector<std::string> names = getViews();
    if (_node && std::find(names.begin(), names.end(), view) == names.end()) {
        ExReporter::getInstance().report("viewer " + getName(),
                                         "the node shown has no view \"" + view + "\"");
        return false;
    }
    if (view != _viewMode) {
        _viewMode = view;
        redraw();
    }
    return true;
}

void UiViewer::setDisplayTransform(const PiDisplayTransform* transform) {
    _transform = transform;
    _shown = Shown();
    _wipeShown = Shown();
    redraw();
}

void UiViewer::setChannel(UiViewerDisplay::Channel channel) {
    if (channel != _display.getChannel()) {
        _display.setChannel(channel);
        _shown = Shown();
        _wipeShown = Shown();
        redraw();
    }
}

void UiViewer::setBackdrop(UiViewerDisplay::Backdrop backdrop,
                           const CoRgbaColorTyped<float>& colour) {
    _display.setBackdrop(backdrop, colour);
    redraw();
}

bool UiViewer::setWipe(bool on, float x, const std::string& view) {
    const std::vector<std::string> names = getViews();
    if (on && _node && std::find(names.begin(), names.end(), view) == names.end()) {
        ExReporter::getInstance().report("viewer " + getName(),
                                         "the node shown has no view \"" + view + "\" to compare");
        return false;
    }
    _wipe.set(on, x, view);
    _wipeShown = Shown();
    redraw();
    return true;
}

float UiViewer::getWipeStart() const {
    const GeRectangle<float> extent = getImageExtent();
    const float x = _wipe.getX();
    return x > extent.getXMin() && x < extent.getXMax()
               ? x
               : 0.5f * (extent.getXMin() + extent.getXMax());
}

PiImagePtr UiViewer::getWipeImage() const {
    if (!_wipe.isOn() || !_wipeRenderer) {
        return PiImagePtr();
    }
    bool manipulating = false;
    if (const RCShdPtr<PiEventHandler> handler = _handler) {
        exContain("viewer " + getName() + ": the handler's state",
                  [&] { manipulating = handler->isManipulating(); });
    }
    PiImagePtr image;
    exContain("viewer " + getName() + ": rendering view \"" + _wipe.getView() + "\"", [&] {
        image = _wipeRenderer->render(_wipe.getView(), _time.getTime(),
                                      manipulating ? std::max(width(), 1) : 0);
    });
    return image;
}

UiPixelReadout UiViewer::readPixel(const GePoint2<float>& window) {
    UiPixelReadout readout;
    const PiImagePtr plate = getPlate();
    const GePoint2<float> world = VwUtils::windowToWorldOrtho(_view, window);
    const int i = static_cast<int>(std::floor(world.x));
    const int j = static_cast<int>(std::floor(world.y));
    if (!plate || !plate->contains(i, j)) {
        return readout;
    }
    readout.overImage = true;
    readout.x = i;
    readout.y = j;
    readout.rgba = plate->getPixel(i, j);
    bool manipulating = false;
    if (const RCShdPtr<PiEventHandler> handler = _handler) {
        exContain("viewer " + getName() + ": the handler's state",
                  [&] { manipulating = handler->isManipulating(); });
    }
    if (_matteRenderer && !manipulating) {
        PiImagePtr matte;
        exContain("viewer " + getName() + ": rendering the matte",
                  [&] { matte = _matteRenderer->render("matte", _time.getTime(), 0); });
        if (matte && matte->contains(i, j)) {
            readout.hasMatte = true;
            readout.matte = matte->getPixel(i, j).r;
        }
    }
    return readout;
}

PiImagePtr UiViewer::getImage() const {
    if (!_renderer) {
        return getPlate();
    }
    bool manipulating = _interactive;
    if (const RCShdPtr<PiEventHandler> handler = _handler; handler && !manipulating) {
        exContain("viewer " + getName() + ": the handler's state",
                  [&] { manipulating = handler->isManipulating(); });
    }
    PiImagePtr image;
    exContain("viewer " + getName() + ": rendering view \"" + _viewMode + "\"", [&] {
        image =
            _renderer->render(_viewMode, _time.getTime(), manipulating ? std::max(width(), 1) : 0);
    });
    return image;
}

PiImagePtr UiViewer::getPlate() const {
    if (!_node) {
        return PiImagePtr();
    }
    auto* modifier = dynamic_cast<PiImageModifier*>(_node->getController().get());
    const RCShdPtr<PiInput> input = modifier ? modifier->getInput() : RCShdPtr<PiInput>();
    if (!input || input->getType() != PiValueType::Image) {
        return PiImagePtr();
    }
    const PiClipPtr clip = input->getTypedValue<PiClipPtr>(0.0);
    return clip ? clip->getImageAt(_time.getTime()) : PiImagePtr();
}

GeRectangle<float> UiViewer::getImageExtent() const {
    PiImagePtr image = getPlate();
    if (!image || image->isEmpty()) {
        image = getImage();
    }
    if (!image || image->isEmpty()) {
        return GeRectangle<float>();
    }
    return GeRectangle<float>(0.0f, static_cast<float>(image->getWidth()), 0.0f,
                              static_cast<float>(image->getHeight()));
}

void UiViewer::setInteractive(bool interactive) {
    if (interactive != _interactive) {
        _interactive = interactive;
        redraw();
    }
}

void UiViewer::setFrame(double frame) {
    _time.setTime(frame);
    redraw();
}

void UiViewer::fitImage() {
    const GeRectangle<float> extent = getImageExtent();
    if (!(extent.getWidth() > 0.0f) || width() <= 0 || height() <= 0) {
        return;
    }
    _view.setViewportSize(width(), height());
    _view.fit(extent, 16.0f);
    _fitted = true;
    _fit = _view;
    redraw();
}

bool UiViewer::isFitted() const {
    return _fitted && _view.getZoom() == _fit.getZoom() && _view.getPan() == _fit.getPan();
}

void UiViewer::zoomTo(float zoom, const GePoint2<float>& about) {
    if (!(zoom > 0.0f) || !(_view.getZoom() > 0.0f)) {
        return;
    }
    _view.zoomAbout(about, zoom / _view.getZoom());
    _fitted = true;
    redraw();
}

void UiViewer::zoomToActualPixels() {
    const GePoint2<float> centre{0.5f * static_cast<float>(width()),
                                 0.5f * static_cast<float>(height())};
    zoomTo(1.0f, _pointerOver ? _pointer : centre);
}

void UiViewer::redraw() {
    ++_redraws;
    update();
}

PiCommandStack* UiViewer::getCommandStack() const {
    return _node ? _node->getCommandStack() : nullptr;
}

GePoint2<float> UiViewer::mapFromGlobal(const GePoint2<float>& global) const {
    return toPoint(QWidget::mapFromGlobal(QPointF(global.x, global.y)));
}

bool UiViewer::offerTool(const std::string& toolName) {
    PiViewerStageInterface* stages = stagesOf(_node);
    if (!stages || _offering) {
        return false;
    }
    const std::string stage = stages->getViewerStageOfTool(toolName);
    if (stage.empty() || stage == _stage) {
        return false;
    }
    _offering = true;
    bool made = false;
    if (setStage(stage)) {
        if (auto* current = dynamic_cast<PiCurrentToolEventHandler*>(_handler.get())) {
            exContain("viewer " + getName() + ": tool \"" + toolName + "\"",
                      [&] { made = current->performSetCurrentTool(toolName); });
        }
    }
    _offering = false;
    return made;
}

bool UiViewer::deliver(EvEvent& event) {
    // Held for the length of the delivery: a hotkey may replace it.
    const RCShdPtr<PiEventHandler> handler = _handler;
    bool used = false;
    if (handler) {
        exContain("viewer " + getName(), [&] {
            const PiEventContext context(*this, event);
            used = MfEventHandlerUtil::deliver(*handler, context);
        });
    }
    UiApplication::getInstance().processRequests();
    updateCursor();
    return used;
}

void UiViewer::handleEvent(EvEvent& event) {
    // Hotkeys registered on this widget's handler, for the current handler.
    deliver(event);
}

void UiViewer::updateCursor() {
    RCShdPtr<WsCursor> cursor;
    if (_handler) {
        exContain("viewer " + getName() + ": cursor",
                  [&] { cursor = MfEventHandlerUtil::getCursor(*_handler); });
    }
    if (!cursor) {
        cursor = WsCursorRegistry::getInstance().getCursor(WsCursorRegistry::Default);
    }
    setCursor(UiCursorUtil::toQCursor(*cursor));
}

void UiViewer::record() {
    _displayList.clear();
    if (!_handler) {
        return;
    }
    _view.setViewportSize(width(), height());
    _view.setPainter(&_displayList);
    exContain("viewer " + getName() + ": drawing", [&] {
        MfEventHandlerUtil::draw(*_handler, GeRectangle<int>(0, width(), 0, height()), _view);
    });
    _view.setPainter(nullptr);
}

const WsRecordingPainter& UiViewer::getDisplayList() {
    record();
    return _displayList;
}

const QImage& UiViewer::displayImage(Shown& shown, const PiImagePtr& image) {
    if (image.get() == shown.image.get()) {
        return shown.converted;
    }
    shown.image = image;
    shown.converted = image && !image->isEmpty() ? _display.convert(*image, _transform) : QImage();
    return shown.converted;
}

void UiViewer::paintImage(QPainter& painter, const QImage& image,
                          const GeRectangle<float>& extent) {
    const GeRectangle<float> r = VwUtils::worldToWindowOrtho(_view, extent);
    const QRectF target(r.getXMin(), r.getYMin(), r.getWidth(), r.getHeight());
    _display.paintBackdrop(painter, target);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, _view.getZoom() < 1.0f);
    painter.drawImage(target, image);
}

void UiViewer::paintWipe(QPainter& painter, const GeRectangle<float>& extent) {
    const QImage& image = displayImage(_wipeShown, getWipeImage());
    const float x = _wipe.windowX(_view);
    if (!image.isNull()) {
        painter.save();
        painter.setClipRect(QRectF(0.0, 0.0, std::max(0.0f, x), height()));
        paintImage(painter, image, extent);
        painter.restore();
    }
    // The line, light over dark so that it shows on any image, with a grip
    // halfway down.
    painter.setPen(QPen(QColor(0, 0, 0, 160), 3.0));
    painter.drawLine(QPointF(x, 0.0), QPointF(x, height()));
    painter.setPen(QPen(QColor(240, 240, 240), 1.0));
    painter.drawLine(QPointF(x, 0.0), QPointF(x, height()));
    painter.setBrush(QColor(240, 240, 240));
    painter.drawEllipse(QPointF(x, 0.5 * height()), 4.0, 4.0);
    painter.setBrush(Qt::NoBrush);
}

void UiViewer::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), QColor(38, 38, 40));
    const QImage& image = displayImage(_shown, getImage());
    GeRectangle<float> extent = getImageExtent();
    if (!image.isNull()) {
        if (!(extent.getWidth() > 0.0f)) {
            extent = GeRectangle<float>(0.0f, static_cast<float>(image.width()), 0.0f,
                                        static_cast<float>(image.height()));
        }
        paintImage(painter, image, extent);
    }
    if (_wipe.isOn()) {
        paintWipe(painter, extent);
    }
    record();
    painter.setRenderHint(QPainter::Antialiasing, false);
    // Overlay texts (the bars' names) at one size in logical pixels, which
    // the window system scales on a high-density screen.
    QFont overlay = font();
    overlay.setPixelSize(OverlayTextSize);
    painter.setFont(overlay);
    for (const WsRecordingPainter::Item& item : _displayList.getItems()) {
        const QColor colour = toQColor(item.colour);
        switch (item.kind) {
        case WsRecordingPainter::Item::Line:
            painter.setPen(colour);
            painter.drawLine(QPointF(item.x0, item.y0), QPointF(item.x1, item.y1));
            break;
        case WsRecordingPainter::Item::Rect:
            painter.setPen(colour);
            painter.setBrush(Qt::NoBrush);
            painter.drawRect(toQRect(item));
            break;
        case WsRecordingPainter::Item::FilledRect:
            painter.fillRect(toQRect(item), colour);
            break;
        case WsRecordingPainter::Item::Text:
            painter.setPen(colour);
            painter.drawText(QPointF(item.x0, item.y0), QString::fromStdString(item.text));
            break;
        }
    }
    painter.end();
    notifyChanged();
}

void UiViewer::resizeEvent(QResizeEvent* event) {
    // A view the user has not navigated follows the viewer's size.
    const bool fitted = !_fitted || isFitted();
    QWidget::resizeEvent(event);
    _view.setViewportSize(width(), height());
    if (fitted) {
        fitImage();
    }
}

bool UiViewer::pointerEvent(QMouseEvent* event) {
    _pointer = toPoint(event->position());
    _pointerOver = rect().contains(event->position().toPoint());
    std::unique_ptr<EvPointerEvent> ev = UiQtEvents::toPointerEvent(*event, _pointer);
    if (!ev) {
        return false;
    }
    return deliver(*ev);
}

UiViewer::PressGrab::PressGrab(UiViewer& viewer)
    : UiGrabHandler("viewer " + viewer.getName())
    , _viewer(viewer) {
    setAllowPtrHandlingInGrab(true);
}

void UiViewer::PressGrab::callback(EvEvent& event) {
    if (event.isA<EvGrabLostEvent>()) {
        _viewer.deliver(event);
    }
}

void UiViewer::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton) {
        _panning = true;
        _panFrom = event->position();
        return;
    }
    if (event->button() == Qt::LeftButton && _wipe.hits(_view, toPoint(event->position()))) {
        _wipe.begin();
        return;
    }
    if (!UiGrab::pointer().isGrabbed()) {
        UiGrab::pointer().grab(&_pressGrab);
    }
    pointerEvent(event);
}

void UiViewer::mouseDoubleClickEvent(QMouseEvent* event) {
    mousePressEvent(event);
}

void UiViewer::mouseMoveEvent(QMouseEvent* event) {
    if (_panning) {
        const QPointF d = event->position() - _panFrom;
        _panFrom = event->position();
        _view.panBy(static_cast<float>(d.x()), static_cast<float>(d.y()));
        _pointer = toPoint(event->position());
        redraw();
        return;
    }
    takeFocusFromPointer();
    if (_wipe.isDragging()) {
        _pointer = toPoint(event->position());
        _wipe.drag(_view, _pointer, getImageExtent());
        redraw();
        return;
    }
    pointerEvent(event);
    notifyChanged();
}

void UiViewer::mouseReleaseEvent(QMouseEvent* event) {
    if (_panning && event->button() == Qt::MiddleButton) {
        _panning = false;
        return;
    }
    if (_wipe.isDragging() && event->button() == Qt::LeftButton) {
        _wipe.end();
        return;
    }
    pointerEvent(event);
    if (!(event->buttons() & ~Qt::MiddleButton)) {
        UiGrab::pointer().release(&_pressGrab);
    }
}

void UiViewer::wheelEvent(QWheelEvent* event) {
    const double steps = event->angleDelta().y() / 120.0;
    if (steps == 0.0) {
        return;
    }
    _pointer = toPoint(event->position());
    zoomTo(_view.getZoom() * static_cast<float>(std::pow(1.25, steps)), _pointer);
}

void UiViewer::keyPressEvent(QKeyEvent* event) {
    std::unique_ptr<EvKeyEvent> ev = UiQtEvents::toKeyEvent(*event, _pointer);
    if (ev && deliver(*ev)) {
        return;
    }
    if (!viewerKey(event)) {
        QWidget::keyPressEvent(event);
    }
}

bool UiViewer::viewerKey(QKeyEvent* event) {
    using Action = UiViewerKeys::Action;
    using Channel = UiViewerDisplay::Channel;
    const Action action = UiViewerKeys::find(UiQtEvents::toKeyCode(event->key()),
                                             UiQtEvents::toModifierMask(event->modifiers()));
    // A channel's key shows it alone, and again all of them.
    auto toggle = [this](Channel channel) {
        setChannel(_display.getChannel() == channel ? Channel::Rgb : channel);
    };
    switch (action) {
    case Action::Fit:
        fitImage();
        break;
    case Action::ActualPixels:
        zoomToActualPixels();
        break;
    case Action::Wipe:
        setWipe(!_wipe.isOn(), getWipeStart(), _wipe.getView());
        break;
    case Action::Red:
        toggle(Channel::Red);
        break;
    case Action::Green:
        toggle(Channel::Green);
        break;
    case Action::Blue:
        toggle(Channel::Blue);
        break;
    case Action::Alpha:
        toggle(Channel::Alpha);
        break;
    case Action::None:
        return false;
    }
    return true;
}

void UiViewer::keyReleaseEvent(QKeyEvent* event) {
    std::unique_ptr<EvKeyEvent> ev = UiQtEvents::toKeyEvent(*event, _pointer);
    if (!ev || !deliver(*ev)) {
        QWidget::keyReleaseEvent(event);
    }
}

void UiViewer::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    PiEventHandlingInterface::getInstance().setCurrentViewer(this);
}

void UiViewer::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    EvFocusOutEvent ev;
    deliver(ev);
}

void UiViewer::enterEvent(QEnterEvent* event) {
    QWidget::enterEvent(event);
    _pointerOver = true;
    _pointer = toPoint(event->position());
    takeFocusFromPointer();
}

void UiViewer::leaveEvent(QEvent* event) {
    QWidget::leaveEvent(event);
    _pointerOver = false;
    notifyChanged();
}

void UiViewer::takeFocusFromPointer() {
    if (!hasFocus() && !isTyping(QApplication::focusWidget())) {
        setFocus(Qt::MouseFocusReason);
    }
}

void UiViewer::notifyChanged() {
    _changed.call();
}
