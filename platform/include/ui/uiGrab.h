#pragma once

#include <ui/uiExport.h>

class EvEvent;
class UiGrabHandler;

// The pointer grab and the keyboard grab of the application. While a handler
// holds the pointer grab, every pointer event of the application's windows
// (press, release, move) goes to it instead of the widget under the pointer;
// while it holds the keyboard grab, every key event goes to it.
//
// A grab taken by one handler while another holds it is taken over: the
// handler that held it receives an EvGrabLostEvent (once per grab it lost).
// Exceptions out of a handler are contained and reported.
class TS_UI_API UiGrab {
public:
    static UiGrab& pointer();
    static UiGrab& keyboard();

    // Takes the grab for the handler (nothing when it already holds it). A
    // null handler fails an assertion.
    void grab(UiGrabHandler* handler);
    // Lets go of the grab, whoever holds it.
    void release();
    // Lets go only when this handler holds it.
    void release(UiGrabHandler* handler);

    UiGrabHandler* getHolder() const { return _holder; }
    bool isGrabbed() const { return _holder != nullptr; }
    bool isPointer() const { return this == &pointer(); }

    // Host side: hands the event to the holder, contained. Answers whether
    // the holder marked it processed; false when nobody holds the grab.
    bool deliver(EvEvent& event);

private:
    UiGrab() = default;

    UiGrabHandler* _holder = nullptr;
};
