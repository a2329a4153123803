#pragma once

#include <pluginAPI/piContainer.h>
#include <ui/uiExport.h>
#include <ui/uiWidgetAdapter.h>

#include <vector>

class QWidget;

// A container of the toolkit: any widget that is not one of the other
// kinds (a panel, a group box, a frame). See PiContainer.
class TS_UI_API UiContainer : public PiContainer, public UiWidgetAdapter {
public:
    explicit UiContainer(QWidget* widget);

    using PiContainer::findWidget;
    RCShdPtr<PiWidget> findWidget(const LiString& name) const override;
    bool isActive() const override;

    // The window-system widgets at and below `root` that belong to its panel,
    // nearest first: the content of node-widget areas below it is left out
    // (the areas themselves are in).
    static std::vector<QWidget*> panelWidgets(QWidget* root);
    // The same search as findWidget, on window-system widgets.
    static QWidget* findPanelWidget(QWidget* root, const LiString& name);
    // The activity query of any widget (see PiContainer::isActive).
    static bool isActive(const QWidget* widget);
};
