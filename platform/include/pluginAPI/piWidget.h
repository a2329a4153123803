#pragma once

#include <base/cbDispatcher.h>
#include <base/evEvent.h>
#include <base/rcBase.h>
#include <base/rcCast.h>
#include <base/rcExUtil.h>
#include <base/rcShdPtr.h>
#include <base/typeName.h>
#include <pluginAPI/pluginAPIExport.h>
#include <resmgt/liString.h>

#include <map>
#include <memory>

// A widget of a panel, as plug-ins see it: counted, named, and a source of
// callbacks. The host builds panels from their descriptions and implements
// these interfaces on the window system's widgets (libZNui); a plug-in finds
// the widgets by name in the container it is given (PiContainer) and
// registers callbacks on them by kind.
//
// The widget object belongs to the window-system widget: the same widget
// found twice is the same object. A plug-in may hold it longer than the
// window-system widget lives; once that is gone (exists() answers false) the
// widget fires nothing, its setters do nothing and its queries answer empty
// values.
//
// Callbacks: handlers registered for a kind receive, in registration order,
// an event that says what happened (ui/uiWidgetEvent.h: a UiWidgetEvent,
// which is a device event carrying the keyboard state of the action, or for
// state changes a UiStateChanged). Handlers are not owned and leave by
// themselves when destroyed. User actions fire callbacks; the setters that
// plug-ins call ("without notification") fire none. The host contains what a
// handler throws (reported, an open undo step closed) and runs the
// application's requests after the outermost callback.
class TS_PLUGIN_API PiWidget : public virtual RCBase<LkCounter<int>> {
public:
    // The callback kinds. The numbers are the host's and stay as they are.
    enum EventKind : int {
        DragBegin = 5,     // a drag (trackball) starts: the pointer was pressed
        DragEnd = 6,       // the drag ends: the pointer was released
        StateChanged = 22, // a toggle's state changed (UiStateChanged::getState)
        Activated = 23,    // a toggle pressed, a menu entry chosen, a button pressed
        DragMove = 24,     // the pointer moved during a drag
        Resized = 25,      // the widget's size changed (labels re-fit their text)
    };

    PiWidget() = default;
    PiWidget(const PiWidget&) = delete;
    PiWidget& operator=(const PiWidget&) = delete;
    ~PiWidget() override;

    // The name the panel description gives the widget.
    virtual const LiString& getName() const = 0;
    // False once the window-system widget is gone.
    virtual bool exists() const = 0;

    virtual bool isEnabled() const = 0;
    virtual void setEnabled(bool enabled) = 0;

    // Null and repeated handlers are ignored.
    void addCallback(int kind, CbHandler<EvEvent>* handler);
    void removeCallback(int kind, CbHandler<EvEvent>* handler);
    bool hasCallback(int kind, const CbHandler<EvEvent>* handler) const;
    int getCallbackCount(int kind) const;

    // A checked cast of a widget that names the widget: empty for empty,
    // ExCastFailed ("<dynamic type> '<name>'" is not a T) for a widget of
    // another kind.
    template <class T, class U>
    static RCShdPtr<T> cast(const RCBasePtr<U>& widget) {
        if (!widget) {
            return RCShdPtr<T>();
        }
        T* target = dynamic_cast<T*>(widget.get());
        if (!target) {
            const auto* named = dynamic_cast<const PiWidget*>(widget.get());
            const std::string from = dynamicTypeNameOf(*widget.get()) +
                                     (named ? " '" + named->getName() + "'" : std::string());
            RCExUtil::throwExCastFailed(from.c_str(), typeNameOf<T>().c_str());
        }
        return RCShdPtr<T>(target);
    }

protected:
    // Calls the handlers of the kind with the event (the toolkit's side).
    void fireCallbacks(int kind, EvEvent& event);

private:
    std::map<int, std::unique_ptr<CbDispatcher<EvEvent>>> _callbacks;
};
