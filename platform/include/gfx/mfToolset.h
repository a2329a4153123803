#pragma once

#include <base/cbDispatcher.h>
#include <base/cbEmptyType.h>
#include <base/rcShdPtr.h>
#include <gfx/gfxExport.h>
#include <gfx/mfTool.h>

#include <string>
#include <utility>
#include <vector>

class PiEventContext;
class PiViewer;

// The named tools of a viewer event handler, one of them current. The first
// tool appended becomes current. Tool-changed callbacks run after every
// change of the current tool, in registration order.
class TS_GFX_API MfToolset : public RCBase<LkCounter<int>> {
public:
    explicit MfToolset(PiViewer& viewer);
    // A manipulation under way is interrupted (its undo step closed).
    ~MfToolset() override;

    PiViewer& getViewer() const { return _viewer; }

    // Names are unique within a tool set (a second tool under a name held
    // fails an assertion); a null tool throws ExNullPtr.
    virtual void appendTool(const std::string& name, const RCShdPtr<MfTool>& tool);
    // Makes the named tool current, interrupting a manipulation of the tool
    // that was; false, and nothing changed, when no tool has the name.
    // Choosing the tool that is already current changes nothing but is still
    // announced to the tool-changed handlers: whoever chose it (a panel's
    // toggle, a hotkey) sees its choice confirmed, and what the handlers undo
    // on a change (a cursor pushed for the previous choice) stays in step.
    virtual bool setCurrentTool(const std::string& name);
    virtual RCShdPtr<MfTool> getCurrentTool() const;
    virtual std::string getCurrentToolName() const;
    virtual RCShdPtr<MfTool> getTool(const std::string& name) const;
    virtual std::vector<std::string> getToolNames() const;

    // Hands the event to the current tool; when a manipulation of that tool
    // ends with it, manipulationFinished follows.
    virtual bool handleEvent(const PiEventContext& context);

    virtual void addToolChangedCb(CbHandler<CbEmptyType>* handler);
    virtual void removeToolChangedCb(CbHandler<CbEmptyType>* handler);

protected:
    virtual void manipulationFinished(const std::string& toolName);
    void notifyToolChanged();

private:
    PiViewer& _viewer;
    std::vector<std::pair<std::string, RCShdPtr<MfTool>>> _tools;
    int _current = -1;
    CbDispatcher<CbEmptyType> _toolChanged;
};
