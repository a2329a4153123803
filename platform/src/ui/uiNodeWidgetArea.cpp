#include <ui/uiNodeWidget.h>
#include <ui/uiNodeWidgetArea.h>

#include <base/rcCast.h>

UiNodeWidgetArea::UiNodeWidgetArea(QWidget* parent)
    : QWidget(parent) {}

UiNodeWidgetArea::~UiNodeWidgetArea() {
    // The controller goes while the widgets it is bound to still exist.
    if (auto* widget = dynamic_cast<UiNodeWidget*>(UiWidgetAdapter::find(this))) {
        const RCShdPtr<UiWidgetAdapter> keep(widget);
        widget->clearContent();
    }
}

UiNodeWidget& UiNodeWidgetArea::getNodeWidget() {
    // The widget holds its adapter: the reference does not outlive it.
    return *rcCast<UiNodeWidget>(UiWidgetAdapter::of(this));
}
