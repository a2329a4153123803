#pragma once

#include <base/coRgbaColorTyped.h>
#include <base/evEvent.h>
#include <base/geAffineMatrix3.h>
#include <base/prdPredicate.h>
#include <base/rcShdPtr.h>
#include <gfx/gfxExport.h>
#include <gfx/wsCursor.h>

#include <vector>

class PiEventContext;
class VwView;

// Something in a viewer that the user takes hold of and drags: a tree of
// manipulators, owned by a tool (MfTool::addManipulator).
//
// Coordinates. Each manipulator has a local frame: its parent's frame (the
// world for a top-level manipulator) transformed by the base transform and
// then the appearance transform (local = parent * base * appearance). With
// scaling behaviour 0 the frame keeps the parent's units (world units for a
// top-level manipulator: it zooms with the image); with scaling behaviour 1
// its origin stays where the parent puts it but one local unit is one window
// pixel, y up, whatever the zoom (the manipulator keeps its size on screen),
// and its children inherit that.
//
// States: 0 shown and active; 1 active and drawn highlighted; 2 shown but
// inactive (neither grasped nor giving feedback); 3 hidden (neither drawn
// nor hit). A state of 2 or 3 applies to the whole subtree. Independently of
// the state, the tool highlights the manipulator that gives feedback under
// the pointer.
//
// Grasp: a manipulator may be grasped when it is active, when every one of
// its grasp predicates holds for the event (initially one: a left button
// press) and when the pointer hits it. Feedback (highlight and cursor) needs
// the feedback predicate and a hit. The feedback predicate is initially
// "a pointer event": a key pressed over a manipulator (Escape, say) is not
// feedback and goes on to the tool; manipulators whose cursor follows the
// keyboard (Shift over a pick) set a predicate that takes key events.
class TS_GFX_API MfManipulator : public RCBase<LkCounter<int>> {
public:
    enum State { Active = 0, Highlighted = 1, Inactive = 2, Hidden = 3 };

    MfManipulator();
    ~MfManipulator() override;

    // --- tree ---
    // Adds a child at the end; a child belongs to one parent only.
    void addManipulator(const RCShdPtr<MfManipulator>& child);
    int getChildCount() const { return static_cast<int>(_children.size()); }
    const RCShdPtr<MfManipulator>& getChild(int index) const;
    MfManipulator* getParent() const { return _parent; }

    // --- frame ---
    void setBaseTransform(const GeAffineMatrix3<float>& transform) { _base = transform; }
    const GeAffineMatrix3<float>& getBaseTransform() const { return _base; }
    void setAppearanceTransform(const GeAffineMatrix3<float>& transform) {
        _appearance = transform;
    }
    const GeAffineMatrix3<float>& getAppearanceTransform() const { return _appearance; }
    // 0 (world units) or 1 (window pixels); other values fail an assertion.
    void setScalingBehaviour(int behaviour);
    int getScalingBehaviour() const { return _scaling; }
    // Local coordinates to window coordinates under the view.
    GeAffineMatrix3<float> getLocalToWindow(const VwView& view) const;
    GePoint2<float> windowToLocal(const VwView& view, const GePoint2<float>& window) const;

    // --- predicates ---
    void addGraspEventPredicate(const PrdPredicate<EvEvent>& predicate);
    // Replaces every grasp predicate with this one.
    void setGraspEventPredicate(const PrdPredicate<EvEvent>& predicate);
    const std::vector<PrdPredicate<EvEvent>>& getGraspEventPredicates() const { return _grasp; }
    bool acceptsGrasp(const EvEvent& event) const;
    void setFeedbackEventPredicate(const PrdPredicate<EvEvent>& predicate) {
        _feedback = predicate;
    }
    bool acceptsFeedback(const EvEvent& event) const { return _feedback(event); }

    // --- cursor, shown while the manipulator gives feedback or is dragged;
    // empty: the tool's cursor ---
    void setCursor(const RCShdPtr<WsCursor>& cursor) { _cursor = cursor; }
    const RCShdPtr<WsCursor>& getCursor() const { return _cursor; }

    // --- state ---
    // 0 to 3; other values fail an assertion.
    void setState(int state);
    int getState() const { return _state; }
    // Not hidden, nor any ancestor.
    bool isShown() const;
    // State 0 or 1, and no ancestor inactive or hidden.
    bool isActive() const;
    void setFeedbackHighlight(bool on) { _feedbackHighlight = on; }
    // State 1, or giving feedback.
    bool isHighlighted() const { return _state == Highlighted || _feedbackHighlight; }

    // --- hit testing: the manipulator's own shape, without its children;
    // the window point under the view. The default shape is empty. ---
    virtual bool hitTest(const VwView& view, const GePoint2<float>& window) const;

    // The first manipulator of the subtree, depth first (this one, then each
    // child's subtree in the order added), that is active and hit by the
    // device event, and whose grasp predicates (or feedback predicate) hold.
    MfManipulator* findGraspable(const VwView& view, const EvDeviceEvent& event);
    MfManipulator* findFeedback(const VwView& view, const EvDeviceEvent& event);

    // --- manipulation, driven by the tool ---
    bool isManipulating() const { return _manipulating; }
    // The grasp; the default takes note of it.
    virtual void beginManipulation(const PiEventContext& context);
    // A pointer move while grasped.
    virtual void continueManipulation(const PiEventContext& context);
    // The release.
    virtual void endManipulation(const PiEventContext& context);
    // Lets go without an event (the tool was interrupted).
    virtual void abortManipulation();

    // --- drawing ---
    // Draws the subtree through the view's painter, unless hidden.
    void draw(const VwView& view) const;
    // The colour of the manipulator's lines in its current state.
    CoRgbaColorTyped<float> getDrawColour() const;

protected:
    // For slider bars: this manipulator's tree is laid out in window pixels.
    void holdsScreenControl();

    // Draws this manipulator alone; the default draws nothing.
    virtual void drawSelf(const VwView& view, const GeAffineMatrix3<float>& localToWindow) const;

private:
    template <class Accept>
    MfManipulator* find(const VwView& view, const EvDeviceEvent& event, const Accept& accept);

    MfManipulator* _parent = nullptr;
    std::vector<RCShdPtr<MfManipulator>> _children;
    GeAffineMatrix3<float> _base;
    GeAffineMatrix3<float> _appearance;
    int _scaling = 0;
    bool _screenControl = false; // the tree holds a slider bar
    std::vector<PrdPredicate<EvEvent>> _grasp;
    PrdPredicate<EvEvent> _feedback;
    RCShdPtr<WsCursor> _cursor;
    int _state = Active;
    bool _feedbackHighlight = false;
    bool _manipulating = false;
};
