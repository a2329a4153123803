#include <ui/uiFont.h>
#include <ui/uiHotkeyRegistry.h>
#include <ui/uiQtEvents.h>
#include <ui/uiWidget.h>

#include <QApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QObject>
#include <QPointer>
#include <QWidget>

#include <unordered_map>

namespace {

std::unordered_map<const QWidget*, UiWidget*>& widgets() {
    static std::unordered_map<const QWidget*, UiWidget*> map;
    return map;
}

} // namespace

// The widget's handler, and the filter that turns the widget's key presses
// into hotkeys for it.
class UiWidget::Imp : public QObject {
public:
    class Handler : public UiGrabHandler {
    public:
        Handler(UiWidget& owner, const LiString& name)
            : UiGrabHandler(name)
            , _owner(owner) {}
        UiWidget* getProcessOrigin() const override { return &_owner; }
        void callback(EvEvent& event) override { _owner.handleEvent(event); }

    private:
        UiWidget& _owner;
    };

    Imp(UiWidget& owner, QWidget* widget, const LiString& name)
        : _owner(owner)
        , _widget(widget)
        , handler(owner, name) {
        widget->installEventFilter(this);
        // A UiWidget that a plug-in holds longer than the widget lives (a
        // counted panel widget) leaves the lookup with the widget.
        connect(widget, &QObject::destroyed, this, [this, widget] {
            auto it = widgets().find(widget);
            if (it != widgets().end() && it->second == &_owner) {
                widgets().erase(it);
            }
        });
    }
    ~Imp() override {
        if (_widget) {
            _widget->removeEventFilter(this);
        }
    }

    bool eventFilter(QObject* object, QEvent* event) override {
        if (object != _widget || event->type() != QEvent::KeyPress) {
            return false;
        }
        const auto& qtKey = static_cast<const QKeyEvent&>(*event);
        const std::unique_ptr<EvKeyEvent> key =
            UiQtEvents::toKeyEvent(qtKey, _owner.getPointerPosition());
        if (!key) {
            return false;
        }
        UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
        if (qtKey.isAutoRepeat()) {
            // A held hotkey is not repeated, nor let through as keys.
            return registry.findEntryFor(key->getKeyCode(),
                                         key->getKeyboardState().getModifierMask(), &handler) != 0;
        }
        return registry.deliverHotkey(*key, handler);
    }

    UiWidget& _owner;
    QPointer<QWidget> _widget;
    Handler handler;
};

UiWidget::UiWidget(QWidget* widget, const LiString& name)
    : _widget(widget)
    , _imp(std::make_unique<Imp>(*this, widget, name)) {
    widgets()[widget] = this;
}

UiWidget::~UiWidget() {
    auto it = widgets().find(_widget);
    if (it != widgets().end() && it->second == this) {
        widgets().erase(it);
    }
}

UiGrabHandler* UiWidget::getEventHandler() const {
    return &_imp->handler;
}

UiCanvas UiWidget::getCanvas() const {
    const QWidget* widget = _imp->_widget;
    if (!widget) {
        return UiCanvas(0, 0, RCShdPtr<WsFont>(new UiFont(QApplication::font())));
    }
    return UiCanvas(widget->width(), widget->height(),
                    RCShdPtr<WsFont>(new UiFont(widget->font())));
}

const LiString& UiWidget::getName() const {
    return _imp->handler.getName();
}

GePoint2<float> UiWidget::getPointerPosition() const {
    const QWidget* widget = _imp->_widget;
    if (!widget) {
        return {};
    }
    const QPointF p = widget->mapFromGlobal(QCursor::pos());
    return {static_cast<float>(p.x()), static_cast<float>(p.y())};
}

UiWidget* UiWidget::fromQWidget(const QWidget* widget) {
    for (; widget; widget = widget->parentWidget()) {
        auto it = widgets().find(widget);
        if (it != widgets().end()) {
            return it->second;
        }
    }
    return nullptr;
}

void UiWidget::handleEvent(EvEvent&) {}
