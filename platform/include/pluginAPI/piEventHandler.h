#pragma once

#include <base/geRectangle.h>
#include <base/rcBase.h>
#include <pluginAPI/pluginAPIExport.h>

class PiEventContext;
class PiViewer;
class VwView;

// What a viewer hands its events to and lets draw over the image. Counted:
// the viewer holds its current handler.
//
// The host delivers an event to the handler's handleEvent; the handler marks
// it processed when it used it. Drawing happens in two passes after the
// image: the scene pass (things attached to the image, such as manipulators)
// and the window pass (decorations over everything). Both paint through the
// view's painter in window coordinates; `damage` is the window rectangle
// being repainted.
class TS_PLUGIN_API PiEventHandler : public RCBase<LkCounter<int>> {
public:
    PiEventHandler() = default;
    ~PiEventHandler() override;

    // Answers whether the event was used. The default uses nothing.
    virtual bool handleEvent(const PiEventContext& context) const;
    // A modal handler keeps the viewer's events while it is current.
    virtual bool isModal() const;
    // True while a manipulation (a drag) is under way.
    virtual bool isManipulating() const;
    // The selection changed while the handler is current.
    virtual void selectionUpdate(PiViewer& viewer);
    virtual void scenePostDraw(const GeRectangle<int>& damage, const VwView& view);
    virtual void windowPostDraw(const GeRectangle<int>& damage, const VwView& view);
};
