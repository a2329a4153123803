#pragma once

#include <base/cbMethod.h>
#include <gfx/gfxExport.h>
#include <gfx/mfToolset.h>
#include <gfx/wsCursor.h>
#include <pluginAPI/piCurrentToolEventHandler.h>

// The host's current-tool event handler: a tool set, whose current tool gets
// the viewer's events and draws in the viewer.
//
// The host delivers events through the non-const handleEvent below (a
// handler of this kind overrides it to look at events first, for instance
// hotkeys, and hands the rest to this class). A subclass that overrides it
// writes `using MfCurrentToolEventHandler::handleEvent;` so that the const
// form of PiEventHandler stays visible.
class TS_GFX_API MfCurrentToolEventHandler : public PiCurrentToolEventHandler {
public:
    // The handler works for the tool set's viewer.
    explicit MfCurrentToolEventHandler(const RCShdPtr<MfToolset>& toolset);
    ~MfCurrentToolEventHandler() override;

    using PiEventHandler::handleEvent;
    // Hands the event to the current tool.
    virtual bool handleEvent(const PiEventContext& context);
    bool isManipulating() const override;
    void selectionUpdate(PiViewer& viewer) override;
    // The current tool's scene drawing (MfTool::draw) and decorations
    // (MfTool::drawDecorations).
    using PiEventHandler::scenePostDraw;
    using PiEventHandler::windowPostDraw;
    virtual void scenePostDraw(const VwView& view);
    virtual void windowPostDraw(const VwView& view);
    std::string getCurrentTool() const override;
    bool performSetCurrentTool(const std::string& name) override;

    void appendTool(const std::string& name, const RCShdPtr<MfTool>& tool);
    const RCShdPtr<MfToolset>& getToolset() const { return _toolset; }
    RCShdPtr<MfTool> getCurrentMfTool() const;
    // The cursor the viewer shows: the current tool's active cursor.
    RCShdPtr<WsCursor> getCursor() const;

private:
    void toolsetChanged();

    RCShdPtr<MfToolset> _toolset;
    CbMethod<MfCurrentToolEventHandler, CbEmptyType> _toolChanged;
};
