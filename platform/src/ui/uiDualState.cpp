#include "uiInputBinding.h"

#include <ui/uiDualState.h>
#include <ui/uiGrab.h>
#include <ui/uiQtEvents.h>
#include <ui/uiWidgetEvent.h>

#include <QAbstractButton>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QObject>
#include <QSignalBlocker>
#include <QVariant>

#include <optional>
#include <vector>

// The button's signals, and the filter that keeps the keyboard state of the
// input event that presses it.
class UiDualState::Imp : public QObject {
public:
    explicit Imp(UiDualState& owner, QAbstractButton* button)
        : _owner(owner) {
        button->installEventFilter(this);
        connect(button, &QAbstractButton::pressed, this, [this] { pressed(); });
        connect(button, &QAbstractButton::toggled, this, [this](bool on) { toggled(on); });
    }

    bool eventFilter(QObject*, QEvent* event) override {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            pressKeys = UiApplicationKeys(static_cast<QInputEvent&>(*event));
            pressCoord = static_cast<QMouseEvent&>(*event).position();
            break;
        case QEvent::KeyPress:
            pressKeys = UiApplicationKeys(static_cast<QInputEvent&>(*event));
            pressCoord = QPointF();
            break;
        default:
            break;
        }
        return false;
    }

    static EvKeyboardState UiApplicationKeys(const QInputEvent& event) {
        EvKeyboardState keys = UiWidgetAdapter::currentKeyboardState();
        keys.setModifierMask(UiQtEvents::toModifierMask(event.modifiers()));
        return keys;
    }

    // Activated first; the press is used up when the handlers set the state
    // or took the pointer grab, or when nothing takes the new state, and
    // then the button does not flip (see PiDualState).
    void pressed() {
        QAbstractButton* button = _owner.button();
        if (!button) {
            return;
        }
        const EvKeyboardState keys =
            pressKeys ? *pressKeys : UiWidgetAdapter::currentKeyboardState();
        const QPointF coord = pressCoord;
        pressKeys.reset();
        pressCoord = QPointF();
        lastKeys = keys;
        stateSet = false;
        inPress = true;
        const bool grabbed = UiGrab::pointer().isGrabbed();
        // The callbacks may destroy the button, and with it the last other
        // reference to this adapter.
        const RCShdPtr<UiWidgetAdapter> keep(&_owner);
        UiWidgetEvent event(PiWidget::Activated, _owner.getName(), keys,
                            {static_cast<float>(coord.x()), static_cast<float>(coord.y())});
        _owner.fire(PiWidget::Activated, event);
        inPress = false;
        const bool stateTaken =
            _owner._binding || _owner.getCallbackCount(PiWidget::StateChanged) > 0;
        used = stateSet || (!grabbed && UiGrab::pointer().isGrabbed()) || !stateTaken;
        if (used && (button = _owner.button())) {
            button->setDown(false);
        }
    }

    void toggled(bool on) {
        const RCShdPtr<UiWidgetAdapter> keep(&_owner);
        if (_owner._binding) {
            _owner._binding->write(on ? 1.0 : 0.0);
        }
        UiStateChanged event(on, _owner.getName(), lastKeys);
        _owner.fire(PiWidget::StateChanged, event);
    }

    UiDualState& _owner;
    std::optional<EvKeyboardState> pressKeys;
    QPointF pressCoord;
    EvKeyboardState lastKeys;
    bool inPress = false;
    bool stateSet = false;
    bool used = false;
};

UiDualState::UiDualState(QAbstractButton* button)
    : UiWidgetAdapter(button)
    , _imp(std::make_unique<Imp>(*this, button)) {}

UiDualState::~UiDualState() = default;

QAbstractButton* UiDualState::button() const {
    return qobject_cast<QAbstractButton*>(getLiveWidget());
}

bool UiDualState::getState() const {
    const QAbstractButton* b = button();
    return b && b->isChecked();
}

void UiDualState::setState(bool on, bool notify) {
    QAbstractButton* b = button();
    if (!b) {
        return;
    }
    if (_imp->inPress) {
        _imp->stateSet = true;
    }
    if (b->isChecked() == on) {
        return;
    }
    // The buttons of an exclusive group switch each other off: keep them
    // all quiet, and let this one be switched off too.
    std::vector<QAbstractButton*> quiet{b};
    if (b->autoExclusive() && b->parentWidget()) {
        for (QAbstractButton* other : b->parentWidget()->findChildren<QAbstractButton*>(
                 QString(), Qt::FindDirectChildrenOnly)) {
            if (other != b && other->autoExclusive()) {
                quiet.push_back(other);
            }
        }
    }
    std::vector<std::unique_ptr<QSignalBlocker>> blockers;
    if (!notify) {
        for (QAbstractButton* q : quiet) {
            blockers.push_back(std::make_unique<QSignalBlocker>(q));
        }
    }
    const bool exclusive = b->autoExclusive();
    if (!on && exclusive) {
        b->setAutoExclusive(false);
    }
    _imp->lastKeys = currentKeyboardState();
    b->setChecked(on);
    if (!on && exclusive) {
        b->setAutoExclusive(true);
    }
}

void UiDualState::click(const EvKeyboardState& keys) {
    QAbstractButton* b = button();
    if (!b || !b->isEnabled()) {
        return;
    }
    _imp->pressKeys = keys;
    _imp->pressCoord = QPointF(b->width() / 2.0, b->height() / 2.0);
    const RCShdPtr<UiWidgetAdapter> keep(this);
    _imp->pressed();
    if (_imp->used || !(b = button())) {
        return;
    }
    // The release: an exclusive toggle that is on stays on.
    if (b->isChecked() && b->autoExclusive()) {
        return;
    }
    b->setChecked(!b->isChecked());
}

RCShdPtr<PiInput> UiDualState::getInput() const {
    return _binding ? _binding->getInput() : RCShdPtr<PiInput>();
}

void UiDualState::bindInput(const RCShdPtr<PiInput>& input,
                            const RCShdPtr<const PiTimePath>& timePath, bool undoable) {
    _binding.reset();
    if (!input) {
        return;
    }
    LiString undoText;
    if (const QAbstractButton* b = button()) {
        undoText = b->property("undoText").toString().toStdString();
    }
    _binding = std::make_unique<UiInputBinding>(input, timePath, undoable, undoText, "UiDualState",
                                                UiInputBinding::Bool, [this] { showInput(); });
    showInput();
}

void UiDualState::showInput() {
    if (_binding) {
        setState(_binding->getValue() != 0.0);
    }
}
