#pragma once

#include <base/cbDispatcher.h>
#include <base/cbEmptyType.h>
#include <pluginAPI/piEventHandler.h>
#include <pluginAPI/pluginAPIExport.h>

#include <string>

// An event handler that holds named tools, one of them current, and hands its
// events to the current tool (the host's implementation is
// MfCurrentToolEventHandler).
//
// setCurrentTool asks performSetCurrentTool; a handler that does not hold the
// tool changes nothing and answers false, and the request then goes to the
// handler's viewer (PiViewer::offerTool), which switches to the stage of its
// node that owns the tool. Tool-changed callbacks run after every change of
// the current tool, in registration order.
class TS_PLUGIN_API PiCurrentToolEventHandler : public PiEventHandler {
public:
    ~PiCurrentToolEventHandler() override;

    void setCurrentTool(const std::string& name);

    // The current tool's name; empty when there is none.
    virtual std::string getCurrentTool() const = 0;
    // Makes the named tool current; false (and nothing changed) when the
    // handler does not hold it.
    virtual bool performSetCurrentTool(const std::string& name) = 0;

    // Handlers are not owned; a handler that is destroyed leaves by itself.
    // A handler that joins is called once at once, so that whatever it shows
    // follows the current tool from the start (a panel built while a tool is
    // current shows that tool).
    void addToolChangedCb(CbHandler<CbEmptyType>* handler);
    void removeToolChangedCb(CbHandler<CbEmptyType>* handler);

    // The viewer the handler works for; null for a handler without one.
    PiViewer* getViewer() const { return _viewer; }

protected:
    explicit PiCurrentToolEventHandler(PiViewer* viewer);
    // Runs the tool-changed callbacks.
    void notifyToolChanged();

private:
    PiViewer* _viewer;
    CbDispatcher<CbEmptyType> _toolChanged;
};
