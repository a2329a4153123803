#pragma once

#include <base/geRectangle.h>
#include <base/rcShdPtr.h>
#include <gfx/gfxExport.h>
#include <gfx/wsCursor.h>

class PiEventHandler;
class PiEventContext;
class VwView;

// How the host drives a viewer's event handler, whatever its kind.
class TS_GFX_API MfEventHandlerUtil {
public:
    // The event to the handler: the overridable handleEvent of an
    // MfCurrentToolEventHandler, PiEventHandler::handleEvent otherwise.
    // Answers whether the event was used. Exceptions go to the caller.
    static bool deliver(PiEventHandler& handler, const PiEventContext& context);
    // Both drawing passes, scene then window, through the view's painter.
    static void draw(PiEventHandler& handler, const GeRectangle<int>& damage, const VwView& view);
    // The cursor the handler asks for; empty for the default.
    static RCShdPtr<WsCursor> getCursor(const PiEventHandler& handler);
};
