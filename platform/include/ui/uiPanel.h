#pragma once

#include <base/rcShdPtr.h>
#include <pluginAPI/piContainer.h>
#include <pluginAPI/piNode.h>
#include <pluginAPI/piTimePath.h>
#include <ui/uiExport.h>
#include <ui/uiNodeWidgetArea.h>
#include <ui/uiNodeWidgetFactory.h>

#include <QImage>

// A panel of the host: a top-level area that shows the panel of one node
// (the panel entry of UiNodeWidgetFactory that accepts it, such as a keyer
// group's main panel) or one stage panel of a node on its own. The panel
// belongs to the workspace (UiWorkspace) under its name for as long as it
// lives. Destroying it releases the controller first, then the widgets.
class TS_UI_API UiPanel : public UiNodeWidgetArea {
public:
    explicit UiPanel(const LiString& name, QWidget* parent = nullptr);
    ~UiPanel() override;

    const LiString& getName() const { return _name; }

    // Shows the panel of the node at the time path's time; false (reported)
    // when no panel entry accepts the node or its description could not be
    // built. A null node empties the panel.
    bool setNode(const RCShdPtr<PiNode>& node, const RCShdPtr<const PiTimePath>& timePath);
    // Shows the stage entry `stage` for the node; false when nothing was
    // built.
    bool setStage(const LiString& stage, const RCShdPtr<PiNode>& node,
                  const RCShdPtr<const PiTimePath>& timePath);

    RCShdPtr<PiNode> getNode() const;
    // The widgets built, and what the factory made; empty when none.
    RCShdPtr<PiContainer> getContainer() const;
    RCShdPtr<RCBase<LkCounter<int>>> getController() const;

    // A widget of the panel by name (see PiContainer::findWidget): empty when
    // there is none, ExCastFailed when it is not a T.
    template <class T = PiWidget>
    RCShdPtr<T> find(const LiString& name) const {
        const RCShdPtr<PiContainer> container = getContainer();
        return container ? container->findWidget<T>(name) : RCShdPtr<T>();
    }

    // The panel as it shows now; a panel that is not shown is laid out at its
    // size hint (off the screen) and left not shown.
    QImage grabImage();

private:
    LiString _name;
};
