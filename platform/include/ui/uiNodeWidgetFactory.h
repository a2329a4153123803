#pragma once

#include <base/rcBase.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/piContainer.h>
#include <pluginAPI/piNode.h>
#include <pluginAPI/piTimePath.h>
#include <pluginAPI/piWidget.h>
#include <resmgt/liString.h>
#include <ui/uiExport.h>

#include <optional>
#include <vector>

// The panels that node widgets show, registered by the libraries that own
// the nodes. An entry names a panel description (a designer .ui file found
// through LiResourcePath) and the factory that brings the widgets built from
// it to life for a node: the factory gets the node, the container of the
// widgets and the time path, and answers the panel's controller, a counted
// object that the node widget keeps for as long as it shows the panel.
//
// Stage entries fill the areas of a panel: an area (UiNodeWidget) shows the
// entry named like the area ("tsMatteGen", ...). Panel entries are the
// panels of nodes themselves: a host panel (UiPanel) shows the panel entry
// that accepts its node.
//
// Before the factory runs, every widget of the built panel that carries an
// "input" property (a string, set in the designer) is bound to the node's
// input of that name, undoable: number fields with UiInputValueEditor, menus
// with UiInputMenu, toggles to flags (UiDualState::bindInput). So a panel
// without a factory still edits its node.
class TS_UI_API UiNodeWidgetFactory {
public:
    using Factory = RCShdPtr<RCBase<LkCounter<int>>> (*)(
        const RCShdPtr<PiNode>& node, const RCShdPtr<PiWidget>& container,
        const RCShdPtr<const PiTimePath>& timePath);
    // Whether the entry applies to the node; a node that an entry does not
    // accept leaves the area empty.
    using Accepts = bool (*)(const PiNode& node);

    struct Entry {
        LiString name;
        LiString description;      // the panel description's file name
        Accepts accepts = nullptr; // null: every node
        Factory factory = nullptr; // null: the "input" bindings only
        bool isPanel = false;
    };

    // What a node widget built: one item per panel it shows.
    struct Item {
        LiString name;
        LiString description;
        RCShdPtr<PiNode> node;
        // The widgets built from the description.
        RCShdPtr<PiContainer> container;
        // What the factory answered; empty without a factory or when it
        // failed.
        RCShdPtr<RCBase<LkCounter<int>>> controller;
    };

    // Registering a name again replaces its entry.
    static void registerStage(const LiString& name, const LiString& description, Accepts accepts,
                              Factory factory);
    static void registerPanel(const LiString& name, const LiString& description, Accepts accepts,
                              Factory factory);
    static void unregister(const LiString& name);

    static std::optional<Entry> find(const LiString& name);
    // The panel entry that accepts the node, the one registered last first.
    static std::optional<Entry> findPanelFor(const PiNode& node);
    static std::vector<LiString> getNames();
};
