#pragma once

#include <base/iterator.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/piNode.h>
#include <pluginAPI/piNodeWidget.h>
#include <pluginAPI/piTimePath.h>
#include <ui/uiExport.h>
#include <ui/uiNodeWidgetFactory.h>
#include <ui/uiWidgetAdapter.h>

class UiNodeWidgetArea;

// An area of a panel that shows the panel of a node (see PiNodeWidget and
// UiNodeWidgetFactory). Its window-system widget is a UiNodeWidgetArea.
//
// The area's stage is its name unless the host gave it another one
// (UiPanel does); setContent(node) shows the registered stage entry of that
// name for the node:
//   - the entry's description is built inside the area (a description that
//     cannot be found, read or parsed is reported with the file and the
//     reason, and nothing is built);
//   - its "input" widgets are bound to the node's inputs;
//   - its factory is called (what it throws is contained and reported; the
//     widgets then stay, disabled), and its controller and the node are kept
//     for as long as the content is shown.
// The time path of the content is the one given, or the time path of the
// panel around the area, at the node's path. A null node, a node that the
// entry does not accept, or a stage without an entry leaves the area empty
// (the last one reported). Setting content first clears the old one: the
// controller is released (its callbacks leave), then the node, then the
// widgets (later, when callbacks of some widget are running).
//
// setContent answers an iterator over what it built: one item, or none.
class TS_UI_API UiNodeWidget : public PiNodeWidget, public UiWidgetAdapter {
public:
    using Item = UiNodeWidgetFactory::Item;

    explicit UiNodeWidget(UiNodeWidgetArea* area);
    ~UiNodeWidget() override;

    Iterator<Item> setContent(const RCShdPtr<PiNode>& node);
    Iterator<Item> setContent(const RCShdPtr<PiNode>& node,
                              const RCShdPtr<const PiTimePath>& timePath);
    void clearContent();

    // The entry name the area shows: its own name unless set.
    LiString getStage() const;
    void setStage(const LiString& stage);

    RCShdPtr<PiNode> getNode() const override { return _content.node; }
    const Item& getContent() const { return _content; }
    // The time path of the content; empty when there is none.
    const RCShdPtr<const PiTimePath>& getTimePath() const { return _timePath; }

private:
    void widgetGone() override;
    RCShdPtr<const PiTimePath> timePathFor(const RCShdPtr<PiNode>& node) const;
    void bindInputs(QWidget* built, const RCShdPtr<PiNode>& node);

    LiString _stage;
    Item _content;
    RCShdPtr<const PiTimePath> _timePath;
};
