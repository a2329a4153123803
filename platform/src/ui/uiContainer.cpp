#include <ui/uiContainer.h>
#include <ui/uiNodeWidgetArea.h>
#include <ui/uiWorkspace.h>

#include <QString>
#include <QWidget>

#include <deque>

UiContainer::UiContainer(QWidget* widget)
    : UiWidgetAdapter(widget) {}

std::vector<QWidget*> UiContainer::panelWidgets(QWidget* root) {
    std::vector<QWidget*> found;
    if (!root) {
        return found;
    }
    // Breadth first, so that the nearest widget of a name comes first.
    std::deque<QWidget*> queue{root};
    while (!queue.empty()) {
        QWidget* widget = queue.front();
        queue.pop_front();
        found.push_back(widget);
        if (widget != root && dynamic_cast<UiNodeWidgetArea*>(widget)) {
            continue; // another panel's widgets
        }
        for (QWidget* child :
             widget->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
            queue.push_back(child);
        }
    }
    return found;
}

QWidget* UiContainer::findPanelWidget(QWidget* root, const LiString& name) {
    const QString qname = QString::fromStdString(name);
    for (QWidget* widget : panelWidgets(root)) {
        if (widget->objectName() == qname) {
            return widget;
        }
    }
    return nullptr;
}

RCShdPtr<PiWidget> UiContainer::findWidget(const LiString& name) const {
    if (name.empty()) {
        return RCShdPtr<PiWidget>();
    }
    return RCShdPtr<PiWidget>(UiWidgetAdapter::of(findPanelWidget(getLiveWidget(), name)));
}

bool UiContainer::isActive() const {
    return isActive(getLiveWidget());
}

bool UiContainer::isActive(const QWidget* widget) {
    if (!widget || !widget->isEnabled() || !UiWorkspace::getInstance().isLive()) {
        return false;
    }
    for (const QWidget* w = widget; w; w = w->parentWidget()) {
        // Hidden on purpose; a widget merely not shown yet (a panel being
        // built, a headless host) counts as shown.
        if (w->testAttribute(Qt::WA_WState_ExplicitShowHide) &&
            w->testAttribute(Qt::WA_WState_Hidden)) {
            return false;
        }
    }
    return true;
}
