#include <gfx/mfCurrentToolEventHandler.h>
#include <gfx/mfEventHandlerUtil.h>

#include <pluginAPI/piEventContext.h>

bool MfEventHandlerUtil::deliver(PiEventHandler& handler, const PiEventContext& context) {
    if (auto* current = dynamic_cast<MfCurrentToolEventHandler*>(&handler)) {
        return current->handleEvent(context);
    }
    return static_cast<const PiEventHandler&>(handler).handleEvent(context);
}

void MfEventHandlerUtil::draw(PiEventHandler& handler, const GeRectangle<int>& damage,
                              const VwView& view) {
    auto* current = dynamic_cast<MfCurrentToolEventHandler*>(&handler);
    handler.scenePostDraw(damage, view);
    if (current) {
        current->scenePostDraw(view);
    }
    handler.windowPostDraw(damage, view);
    if (current) {
        current->windowPostDraw(view);
    }
}

RCShdPtr<WsCursor> MfEventHandlerUtil::getCursor(const PiEventHandler& handler) {
    if (auto* current = dynamic_cast<const MfCurrentToolEventHandler*>(&handler)) {
        return current->getCursor();
    }
    return RCShdPtr<WsCursor>();
}
