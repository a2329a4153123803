#include <ui/uiApplication.h>
#include <ui/uiContainer.h>
#include <ui/uiDualState.h>
#include <ui/uiLabel.h>
#include <ui/uiMenu.h>
#include <ui/uiNodeWidget.h>
#include <ui/uiNodeWidgetArea.h>
#include <ui/uiPushButton.h>
#include <ui/uiQtEvents.h>
#include <ui/uiTrackball.h>
#include <ui/uiTrackballWidget.h>
#include <ui/uiValueEditor.h>
#include <ui/uiWidgetAdapter.h>

#include <base/exReporter.h>

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QGuiApplication>
#include <QLabel>
#include <QObject>
#include <QWidget>

#include <unordered_map>

namespace {

std::unordered_map<const QWidget*, UiWidgetAdapter*>& adapters() {
    static std::unordered_map<const QWidget*, UiWidgetAdapter*> map;
    return map;
}

int firingDepth = 0;

} // namespace

// Holds the widget's reference on its adapter, as a child of the widget: it
// goes while the widget is destroyed, and takes the adapter's liveness with
// it.
class UiWidgetAdapter::Keeper : public QObject {
public:
    Keeper(QWidget* widget, UiWidgetAdapter* adapter)
        : QObject(widget)
        , _widget(widget)
        , _adapter(adapter) {
        adapters()[widget] = adapter;
    }
    ~Keeper() override {
        adapters().erase(_widget);
        UiWidgetAdapter* adapter = _adapter.get();
        adapter->widgetGone();
        adapter->_alive = false;
    }

private:
    const QWidget* _widget;
    RCShdPtr<UiWidgetAdapter> _adapter;
};

UiWidgetAdapter::UiWidgetAdapter(QWidget* widget)
    : UiWidget(widget, widget->objectName().toStdString())
    , _name(widget->objectName().toStdString()) {}

UiWidgetAdapter::~UiWidgetAdapter() = default;

RCShdPtr<UiWidgetAdapter> UiWidgetAdapter::of(QWidget* widget) {
    if (!widget) {
        return RCShdPtr<UiWidgetAdapter>();
    }
    if (UiWidgetAdapter* adapter = find(widget)) {
        return RCShdPtr<UiWidgetAdapter>(adapter);
    }
    UiWidget* own = UiWidget::fromQWidget(widget);
    if (own && own->getQWidget() == widget) {
        return RCShdPtr<UiWidgetAdapter>();
    }
    UiWidgetAdapter* adapter = nullptr;
    if (auto* area = dynamic_cast<UiNodeWidgetArea*>(widget)) {
        adapter = new UiNodeWidget(area);
    } else if (auto* trackball = dynamic_cast<UiTrackballWidget*>(widget)) {
        adapter = new UiTrackball(trackball);
    } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
        if (button->isCheckable()) {
            adapter = new UiDualState(button);
        } else {
            adapter = new UiPushButton(button);
        }
    } else if (auto* combo = qobject_cast<QComboBox*>(widget)) {
        adapter = new UiMenu(combo);
    } else if (auto* label = qobject_cast<QLabel*>(widget)) {
        adapter = new UiLabel(label);
    } else if (auto* spin = qobject_cast<QAbstractSpinBox*>(widget);
               spin && UiValueEditor::accepts(spin)) {
        adapter = new UiValueEditor(spin);
    } else {
        adapter = new UiContainer(widget);
    }
    RCShdPtr<UiWidgetAdapter> result(adapter);
    new Keeper(widget, adapter);
    return result;
}

UiWidgetAdapter* UiWidgetAdapter::find(const QWidget* widget) {
    auto it = adapters().find(widget);
    return it == adapters().end() ? nullptr : it->second;
}

RCShdPtr<UiWidgetAdapter> UiWidgetAdapter::getUiWidget() {
    return RCShdPtr<UiWidgetAdapter>(this);
}

const LiString& UiWidgetAdapter::getName() const {
    return _name;
}

bool UiWidgetAdapter::isEnabled() const {
    const QWidget* widget = getLiveWidget();
    return widget && widget->isEnabled();
}

void UiWidgetAdapter::setEnabled(bool enabled) {
    if (QWidget* widget = getLiveWidget()) {
        widget->setEnabled(enabled);
    }
}

void UiWidgetAdapter::fire(int kind, EvEvent& event) {
    if (!_alive || getCallbackCount(kind) == 0) {
        return;
    }
    // The widget (and so this adapter) may go during the callbacks.
    const RCShdPtr<UiWidgetAdapter> self(this);
    const FiringScope firing;
    exContain("widget '" + _name + "'", [&] { fireCallbacks(kind, event); });
}

UiWidgetAdapter::FiringScope::FiringScope() {
    ++firingDepth;
}

UiWidgetAdapter::FiringScope::~FiringScope() {
    if (--firingDepth == 0) {
        exContain("application requests", [] { UiApplication::getInstance().processRequests(); });
    }
}

bool UiWidgetAdapter::isFiring() {
    return firingDepth > 0;
}

EvKeyboardState UiWidgetAdapter::currentKeyboardState() {
    return UiApplication::getInstance().getKeyboardState(
        UiQtEvents::toModifierMask(QGuiApplication::keyboardModifiers()));
}

void UiWidgetAdapter::widgetGone() {}
