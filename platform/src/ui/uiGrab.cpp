#include <ui/uiGrab.h>
#include <ui/uiGrabHandler.h>

#include <base/assertions.h>
#include <base/exReporter.h>

UiGrabHandler::UiGrabHandler(const LiString& name)
    : _name(name) {}

UiGrabHandler::~UiGrabHandler() {
    UiGrab::pointer().release(this);
    UiGrab::keyboard().release(this);
}

UiWidget* UiGrabHandler::getProcessOrigin() const {
    return nullptr;
}

void UiGrabHandler::setAllowPtrHandlingInGrab(bool allow) {
    _allowPtr = allow;
}

bool UiGrabHandler::allowPtrHandlingInGrab() const {
    return _allowPtr;
}

const LiString& UiGrabHandler::getName() const {
    return _name;
}

UiGrab& UiGrab::pointer() {
    static UiGrab grab;
    return grab;
}

UiGrab& UiGrab::keyboard() {
    static UiGrab grab;
    return grab;
}

void UiGrab::grab(UiGrabHandler* handler) {
    if (!handler) {
        Assertions::fail("handler");
    }
    if (_holder == handler) {
        return;
    }
    UiGrabHandler* lost = _holder;
    _holder = handler;
    if (lost) {
        EvGrabLostEvent event;
        const LiString name = lost->getName();
        exContain(LiString(isPointer() ? "pointer" : "keyboard") + " grab lost by " +
                      (name.empty() ? LiString("a handler") : name),
                  [&] { lost->callback(event); });
    }
}

void UiGrab::release() {
    _holder = nullptr;
}

void UiGrab::release(UiGrabHandler* handler) {
    if (handler && _holder == handler) {
        _holder = nullptr;
    }
}

bool UiGrab::deliver(EvEvent& event) {
    UiGrabHandler* holder = _holder;
    if (!holder) {
        return false;
    }
    const LiString name = holder->getName();
    exContain("grab handler " + (name.empty() ? LiString("(unnamed)") : name),
              [&] { holder->callback(event); });
    return event.isProcessed();
}
