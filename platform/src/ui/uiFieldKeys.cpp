#include <ui/uiFieldKeys.h>

#include <base/exReporter.h>
#include <pluginAPI/piCommandStack.h>

#include <QAbstractSpinBox>
#include <QApplication>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QToolButton>

#include <optional>

namespace {

constexpr int ButtonSize = 14;

// One step named after the action, or no step outside a graph.
template <class F>
bool asStep(PiInput& input, const char* name, F&& edit) {
    std::optional<PiUndoGuard> step;
    if (PiCommandStack* stack = input.getCommandStack()) {
        step.emplace(*stack, name);
    }
    bool done = false;
    exContain(std::string(name) + " on " + input.getName(), [&] { done = edit(); });
    return done;
}

QIcon diamond(UiFieldKeys::State state) {
    QPixmap pixmap(2 * ButtonSize, 2 * ButtonSize);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    const double c = ButtonSize;
    const double r = ButtonSize * 0.6;
    path.moveTo(c, c - r);
    path.lineTo(c + r, c);
    path.lineTo(c, c + r);
    path.lineTo(c - r, c);
    path.closeSubpath();
    const QColor key(240, 190, 60);
    painter.setPen(QPen(state == UiFieldKeys::State::Constant ? QColor(150, 150, 150) : key, 2.5));
    if (state == UiFieldKeys::State::Key) {
        painter.setBrush(key);
    } else if (state == UiFieldKeys::State::Animated) {
        painter.setBrush(QColor(240, 190, 60, 90));
    }
    painter.drawPath(path);
    return QIcon(pixmap);
}

} // namespace

UiFieldKeys::UiFieldKeys(QAbstractSpinBox* spin, const RCShdPtr<PiInput>& input,
                         const RCShdPtr<const PiTimePath>& timePath)
    : QObject(spin)
    , _spin(spin)
    , _button(new QToolButton(spin))
    , _input(input)
    , _timePath(timePath) {
    _button->setObjectName(spin->objectName() + "Key");
    _button->setAutoRaise(true);
    _button->setFocusPolicy(Qt::NoFocus);
    _button->setCursor(Qt::ArrowCursor);
    _button->setFixedSize(ButtonSize + 2, ButtonSize + 2);
    _button->setIconSize(QSize(ButtonSize, ButtonSize));
    _button->setToolTip("Set or delete the key at this frame (right-click the field for more)");
    if (auto* edit = spin->findChild<QLineEdit*>()) {
        edit->setTextMargins(ButtonSize + 2, 0, 0, 0);
        edit->installEventFilter(this);
    }
    spin->installEventFilter(this);
    connect(_button, &QToolButton::clicked, this,
            [this] { getState() == State::Key ? deleteKey() : setKey(); });
    _input->addValueChangedCb(&_changed);
    if (_timePath) {
        _timePath->addTimeChangedCb(&_timeChanged);
    }
    refresh();
}

UiFieldKeys::~UiFieldKeys() {
    _input->removeValueChangedCb(&_changed);
    if (_timePath) {
        _timePath->removeTimeChangedCb(&_timeChanged);
    }
}

double UiFieldKeys::time() const {
    return _timePath ? _timePath->getTime() : 0.0;
}

UiFieldKeys::State UiFieldKeys::getState() const {
    if (!_input->hasKeys()) {
        return State::Constant;
    }
    return _input->hasKeyAt(time()) ? State::Key : State::Animated;
}

bool UiFieldKeys::setKey() {
    return asStep(*_input, "Set Key",
                  [this] { return _input->setKey(time(), _input->getValue(time())); });
}

bool UiFieldKeys::deleteKey() {
    return asStep(*_input, "Delete Key", [this] { return _input->removeKey(time()); });
}

bool UiFieldKeys::deleteAnimation() {
    return asStep(*_input, "Delete Animation", [this] {
        return _input->hasKeys() && _input->setConstant(_input->getValue(time()));
    });
}

bool UiFieldKeys::setInterpolation(PiInterpolation interpolation) {
    return asStep(*_input, interpolation == PiInterpolation::Linear ? "Linear Keys" : "Smooth Keys",
                  [&] { return _input->setInterpolation(interpolation); });
}

void UiFieldKeys::refresh() {
    const State state = getState();
    _button->setIcon(diamond(state));
    _button->move(2, (_spin->height() - _button->height()) / 2);
    // An animated field is tinted, as in every compositor; brighter on a key.
    QPalette palette = _spin->palette();
    const QColor base = QApplication::palette().color(QPalette::Base);
    palette.setColor(QPalette::Base, state == State::Constant ? base
                                     : state == State::Key    ? QColor(92, 84, 44)
                                                              : QColor(60, 72, 92));
    _spin->setPalette(palette);
}

bool UiFieldKeys::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::ContextMenu) {
        showMenu(static_cast<QContextMenuEvent*>(event)->globalPos());
        return true;
    }
    if (event->type() == QEvent::Resize) {
        refresh();
    }
    return false;
}

void UiFieldKeys::showMenu(const QPoint& global) {
    QMenu menu(_spin);
    const State state = getState();
    menu.addAction("Set Key", this, [this] { setKey(); })->setEnabled(state != State::Key);
    menu.addAction("Delete Key", this, [this] { deleteKey(); })->setEnabled(state == State::Key);
    menu.addAction("Delete Animation", this, [this] { deleteAnimation(); })
        ->setEnabled(state != State::Constant);
    menu.addSeparator();
    menu.addAction("Linear Keys", this, [this] { setInterpolation(PiInterpolation::Linear); })
        ->setEnabled(state != State::Constant);
    menu.addAction("Smooth Keys", this, [this] { setInterpolation(PiInterpolation::Smooth); })
        ->setEnabled(state != State::Constant);
    menu.exec(global);
}
