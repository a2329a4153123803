#pragma once

#include <base/cbMethod.h>
#include <gfx/gfxExport.h>
#include <gfx/mfToolset.h>

// A tool set around another that makes two of its tools transient: when one
// of them is made current, the tool that was current is remembered, and after
// one finished manipulation of the transient tool the set returns to it. (The
// key-colour pick tools: pick once, then carry on with what you were doing.)
// A transient tool made current when no other tool was stays current.
//
// A set never starts on a transient tool: until a tool is chosen, the
// current tool is the last tool appended that is not transient. (A handler
// appends the tools every stage shares, the key-colour picks, first and its
// stage's own tools after them, its main tool last; a click in a stage just
// shown then does what that stage's menus show, and never replaces a key
// colour unasked.)
//
// Every other operation is the wrapped set's; its tool changes are announced
// to this set's callbacks.
class TS_GFX_API MfTransientToolToolset : public MfToolset {
public:
    MfTransientToolToolset(PiViewer& viewer, const RCShdPtr<MfToolset>& toolset,
                           const std::string& transient1, const std::string& transient2);
    ~MfTransientToolToolset() override;

    void appendTool(const std::string& name, const RCShdPtr<MfTool>& tool) override;
    bool setCurrentTool(const std::string& name) override;
    RCShdPtr<MfTool> getCurrentTool() const override;
    std::string getCurrentToolName() const override;
    RCShdPtr<MfTool> getTool(const std::string& name) const override;
    std::vector<std::string> getToolNames() const override;

    bool isTransient(const std::string& name) const;
    // The tool to return to; empty when none.
    const std::string& getReturnTool() const { return _previous; }
    const RCShdPtr<MfToolset>& getWrappedToolset() const { return _inner; }

protected:
    void manipulationFinished(const std::string& toolName) override;

private:
    void innerChanged();

    RCShdPtr<MfToolset> _inner;
    std::string _transient[2];
    std::string _previous;
    bool _chosen = false;
    CbMethod<MfTransientToolToolset, CbEmptyType> _forward;
};
