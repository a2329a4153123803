#include <ui/uiNodeWidget.h>
#include <ui/uiPanel.h>
#include <ui/uiWorkspace.h>

#include <base/exReporter.h>

#include <QCoreApplication>
#include <QEvent>
#include <QLayout>

UiPanel::UiPanel(const LiString& name, QWidget* parent)
    : UiNodeWidgetArea(parent)
    , _name(name) {
    setObjectName(QString::fromStdString(name));
    UiWorkspace::getInstance().addPanel(this);
}

UiPanel::~UiPanel() {
    UiWorkspace::getInstance().removePanel(this);
    getNodeWidget().clearContent();
}

bool UiPanel::setNode(const RCShdPtr<PiNode>& node, const RCShdPtr<const PiTimePath>& timePath) {
    UiNodeWidget& area = getNodeWidget();
    if (!node) {
        area.clearContent();
        return true;
    }
    const std::optional<UiNodeWidgetFactory::Entry> entry =
        UiNodeWidgetFactory::findPanelFor(*node);
    if (!entry) {
        area.clearContent();
        ExReporter::getInstance().report("panel '" + _name + "'",
                                         "no panel is registered for '" + node->getName() + "'");
        return false;
    }
    return setStage(entry->name, node, timePath);
}

bool UiPanel::setStage(const LiString& stage, const RCShdPtr<PiNode>& node,
                       const RCShdPtr<const PiTimePath>& timePath) {
    UiNodeWidget& area = getNodeWidget();
    area.setStage(stage);
    return area.setContent(node, timePath).getCardinality() == 1;
}

RCShdPtr<PiNode> UiPanel::getNode() const {
    return const_cast<UiPanel*>(this)->getNodeWidget().getNode();
}

RCShdPtr<PiContainer> UiPanel::getContainer() const {
    return const_cast<UiPanel*>(this)->getNodeWidget().getContent().container;
}

RCShdPtr<RCBase<LkCounter<int>>> UiPanel::getController() const {
    return const_cast<UiPanel*>(this)->getNodeWidget().getContent().controller;
}

QImage UiPanel::grabImage() {
    if (isVisible()) {
        return grab().toImage();
    }
    // Widgets never shown take no room in their layouts: show the panel off
    // the screen to lay it out, and leave it as it was, not shown.
    setAttribute(Qt::WA_DontShowOnScreen, true);
    show();
    // Widgets shown ask their layouts to update later: do it now, from the
    // innermost up (each level's update asks the level above).
    for (int level = 0; level < 32; ++level) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    }
    adjustSize();
    const QImage image = grab().toImage();
    hide();
    setAttribute(Qt::WA_DontShowOnScreen, false);
    setAttribute(Qt::WA_WState_ExplicitShowHide, false);
    return image;
}
