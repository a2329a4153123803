#pragma once

#include <base/evEvent.h>
#include <base/evKeyboardState.h>
#include <base/oPtr.h>
#include <base/rcShdPtr.h>
#include <gfx/wsCursor.h>
#include <ui/uiExport.h>

#include <memory>
#include <vector>

class UiMainWindow;

// The application of the toolkit: one per process, on the user-interface
// thread. It wraps the window system's application (made on first use when
// the host has not made one), and offers:
//
// - the request queue: postRequest queues work (an EvRequestEvent) that runs
//   after the event being handled, in the order posted. The host runs the
//   queue after each event it delivers to plug-in code, and the window
//   system's event loop runs whatever is left. Requests posted by a request
//   run in the same pass. Exceptions are contained and reported.
// - the override-cursor stack: a pushed cursor shows over every window
//   until popped; a pop with nothing pushed is reported and changes nothing.
// - the main window (null until the host sets one).
// - the keyboard state of the application: the modifiers and keys held now,
//   as events report them.
class TS_UI_API UiApplication {
public:
    static UiApplication& getInstance();

    void postRequest(OPtr<EvRequestEvent> request);
    // Runs the queued requests now; answers how many ran.
    int processRequests();
    int getPendingRequestCount() const;

    void pushOverrideCursor(const RCShdPtr<WsCursor>& cursor);
    void popOverrideCursor();
    int getOverrideCursorDepth() const { return static_cast<int>(_cursors.size()); }
    // The cursor on top; empty when none.
    RCShdPtr<WsCursor> getOverrideCursor() const;

    UiMainWindow* getMainWindow() const { return _mainWindow; }
    void setMainWindow(UiMainWindow* window) { _mainWindow = window; }

    // The keys held now, with the modifiers the window system reports
    // (`modifierMask`, an EvKeyboardState mask) in place of the modifier keys
    // seen.
    EvKeyboardState getKeyboardState(unsigned modifierMask) const;

private:
    UiApplication();
    class Imp;
    friend class Imp;

    std::unique_ptr<Imp> _imp;
    std::vector<RCShdPtr<WsCursor>> _cursors;
    UiMainWindow* _mainWindow = nullptr;
};
