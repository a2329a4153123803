#pragma once

#include <base/rcCast.h>
#include <base/rcExUtil.h>
#include <base/rcShdPtr.h>
#include <base/typeName.h>
#include <pluginAPI/piCurrentToolEventHandler.h>
#include <pluginAPI/piEventHandlingInterface.h>
#include <resmgt/liString.h>

// What the keyer's panels share when they wire themselves up.
namespace TsPanelUtil {

// p itself; ExNullPtr naming its type when it is null.
template <class T>
RCShdPtr<T> required(const RCShdPtr<T>& p) {
    if (!p) {
        RCExUtil::throwExNullPtr(typeNameOf<T>().c_str());
    }
    return p;
}

// A widget (or input) the panel cannot do without; ExNullPtr naming it when
// the panel description (or the node or group) lacks it.
template <class T>
RCShdPtr<T> requiredNamed(const RCShdPtr<T>& widget, const LiString& name) {
    if (!widget) {
        RCExUtil::throwExNullPtr((typeNameOf<T>() + " '" + name + "'").c_str());
    }
    return widget;
}

// The current viewer's handler when it holds named tools; null otherwise.
inline RCShdPtr<PiCurrentToolEventHandler> currentToolHandler() {
    return rcTestCast<PiCurrentToolEventHandler>(
        PiEventHandlingInterface::getInstance().getCurrentEventHandler());
}

} // namespace TsPanelUtil
