#pragma once

#include <base/evEvent.h>
#include <resmgt/liString.h>
#include <ui/uiCanvas.h>
#include <ui/uiExport.h>
#include <ui/uiGrabHandler.h>

#include <memory>

class QWidget;

// The toolkit's widget as the host framework sees it: a window-system widget
// (a QWidget) with an event handler of its own.
//
// The widget's handler (getEventHandler) is what hotkeys are registered on:
// a key press in the widget that matches an entry of UiHotkeyRegistry for
// which the handler is registered reaches the handler as an EvHotkeyEvent,
// instead of the key event, and when the handler marks it processed the key
// goes no further. The handler passes what it receives to handleEvent.
//
// A UiWidget is either the QWidget itself (a class deriving from both) or an
// object that the QWidget owns; either way it goes when the QWidget goes.
class TS_UI_API UiWidget {
public:
    explicit UiWidget(QWidget* widget, const LiString& name = LiString());
    UiWidget(const UiWidget&) = delete;
    UiWidget& operator=(const UiWidget&) = delete;
    virtual ~UiWidget();

    QWidget* getQWidget() const { return _widget; }
    UiGrabHandler* getEventHandler() const;
    // The widget's size and font.
    UiCanvas getCanvas() const;
    const LiString& getName() const;

    // Where the pointer is, in the widget's coordinates: the position given to
    // key and hotkey events. The default asks the window system.
    virtual GePoint2<float> getPointerPosition() const;

    // The UiWidget of the QWidget, or of its nearest ancestor that has one;
    // null when there is none.
    static UiWidget* fromQWidget(const QWidget* widget);

protected:
    // What the widget's handler received (hotkeys, events passed on). The
    // default uses nothing.
    virtual void handleEvent(EvEvent& event);

private:
    class Imp;
    friend class Imp;

    QWidget* _widget;
    std::unique_ptr<Imp> _imp;
};
