#pragma once

#include <base/rcShdPtr.h>
#include <pluginAPI/piNode.h>
#include <pluginAPI/piWidget.h>
#include <pluginAPI/pluginAPIExport.h>

// An area of a panel that shows the panel of a node: the stage panel that
// its name stands for ("tsMatteGen", "tsDegrain", "tsSpillBlend",
// "tsOtherUi"). The host's implementation, UiNodeWidget, fills it
// (UiNodeWidget::setContent).
class TS_PLUGIN_API PiNodeWidget : public virtual PiWidget {
public:
    ~PiNodeWidget() override;

    // The node whose panel the area shows; empty when it shows none.
    virtual RCShdPtr<PiNode> getNode() const = 0;
    bool hasContent() const { return static_cast<bool>(getNode()); }
};
