#pragma once

#include <base/gePoint2.h>
#include <base/geRectangle.h>
#include <ui/uiExport.h>

#include <string>

class VwView;

// A viewer's A/B wipe: a vertical split line at a plate x. Left of it the
// viewer shows view A (the compare view, the node's source unless chosen),
// right of it its current view (B), so that the artist compares them in one
// viewer. The line is dragged with the left button anywhere within a few
// pixels of it; the drag is the viewer's own and never reaches the tools.
class TS_UI_API UiViewerWipe {
public:
    // How near the line (window pixels) a press takes it.
    static constexpr float GraspDistance = 5.0f;

    bool isOn() const { return _on; }
    // The line at plate x; the compare view by name.
    void set(bool on, float x, const std::string& view);
    float getX() const { return _x; }
    const std::string& getView() const { return _view; }

    // The line's window x under the view.
    float windowX(const VwView& view) const;
    // Whether a press at the window point takes the line.
    bool hits(const VwView& view, const GePoint2<float>& window) const;

    // The drag: begun by a press that hits the line; each move puts the line
    // under the pointer, kept within the image's extent.
    void begin() { _dragging = true; }
    void drag(const VwView& view, const GePoint2<float>& window, const GeRectangle<float>& extent);
    void end() { _dragging = false; }
    bool isDragging() const { return _dragging; }

private:
    bool _on = false;
    bool _dragging = false;
    float _x = 0.0f;
    std::string _view = "source";
};
