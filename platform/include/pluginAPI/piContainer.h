#pragma once

#include <base/rcShdPtr.h>
#include <pluginAPI/piWidget.h>
#include <pluginAPI/pluginAPIExport.h>
#include <resmgt/liString.h>

// A widget that holds others: a panel, or a part of one. Plug-ins receive a
// container from the host and find its widgets by name.
class TS_PLUGIN_API PiContainer : public virtual PiWidget {
public:
    ~PiContainer() override;

    // The widget named `name`: the container itself or a widget anywhere
    // below it, the nearest first, but never inside the panel that a node
    // widget below it shows (that panel's widgets belong to that panel).
    // Empty when there is none. What it answers depends on the widget: a
    // toggle (a check box, a checkable button) is a PiDualState, a menu a
    // PiMenu, a label a PiLabel, a trackball a PiTrackball, a node-widget area
    // a PiNodeWidget, a push button a plain PiWidget that fires Activated, a
    // number field a value editor (UiValueEditor), anything else a
    // PiContainer.
    virtual RCShdPtr<PiWidget> findWidget(const LiString& name) const = 0;

    // findWidget with PiWidget::cast: empty when there is none, ExCastFailed
    // naming the widget and both types when it is not a T.
    template <class T>
    RCShdPtr<T> findWidget(const LiString& name) const {
        return PiWidget::cast<T>(findWidget(name));
    }

    // The activity query: whether the user can act on this container now.
    // True when its window-system widget exists, is enabled (with its
    // ancestors), is not hidden (nor any of its ancestors), and the host's
    // workspace is live (not suspended, as while a setup loads). Panels ask it
    // before they act on changes that may come from the host rather than the
    // user.
    virtual bool isActive() const = 0;
};
