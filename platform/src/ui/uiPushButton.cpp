#include <ui/uiPushButton.h>
#include <ui/uiQtEvents.h>
#include <ui/uiWidgetEvent.h>

#include <QAbstractButton>
#include <QInputEvent>
#include <QMouseEvent>
#include <QObject>

#include <optional>

// The button's clicks, with the keyboard state of the input event that
// pressed it.
class UiPushButton::Imp : public QObject {
public:
    Imp(UiPushButton& owner, QAbstractButton* button)
        : _owner(owner) {
        button->installEventFilter(this);
        connect(button, &QAbstractButton::clicked, this, [this] { clicked(); });
    }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::KeyPress) {
            EvKeyboardState k = UiWidgetAdapter::currentKeyboardState();
            k.setModifierMask(
                UiQtEvents::toModifierMask(static_cast<QInputEvent&>(*event).modifiers()));
            keys = k;
        }
        return false;
    }

    void clicked() {
        UiWidgetEvent event(PiWidget::Activated, _owner.getName(),
                            keys ? *keys : UiWidgetAdapter::currentKeyboardState());
        keys.reset();
        _owner.fire(PiWidget::Activated, event);
    }

    UiPushButton& _owner;
    std::optional<EvKeyboardState> keys;
};

UiPushButton::UiPushButton(QAbstractButton* button)
    : UiWidgetAdapter(button)
    , _imp(std::make_unique<Imp>(*this, button)) {}

UiPushButton::~UiPushButton() = default;

void UiPushButton::click(const EvKeyboardState& keys) {
    auto* button = qobject_cast<QAbstractButton*>(getLiveWidget());
    if (!button || !button->isEnabled()) {
        return;
    }
    _imp->keys = keys;
    button->click();
}
