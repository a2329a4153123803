#include <gfx/mfEventPredicates.h>
#include <gfx/mfManipulator.h>

#include <base/assertions.h>
#include <base/vwView.h>

MfManipulator::MfManipulator()
    : _grasp{MfEventPredicates::isPointerDownButtonLeft()}
    , _feedback(MfEventPredicates::isPointerEvent()) {}

MfManipulator::~MfManipulator() {
    for (const auto& child : _children) {
        child->_parent = nullptr;
    }
}

void MfManipulator::addManipulator(const RCShdPtr<MfManipulator>& child) {
    MfManipulator& c = *child;
    if (c._parent || &c == this) {
        Assertions::fail("!child->getParent()");
    }
    c._parent = this;
    _children.push_back(child);
    if (c._screenControl) {
        holdsScreenControl();
    }
}

void MfManipulator::holdsScreenControl() {
    for (MfManipulator* m = this; m; m = m->_parent) {
        m->_screenControl = true;
    }
}

const RCShdPtr<MfManipulator>& MfManipulator::getChild(int index) const {
    if (index < 0 || index >= getChildCount()) {
        Assertions::fail("index >= 0 && index < getChildCount()");
    }
    return _children[static_cast<std::size_t>(index)];
}

void MfManipulator::setScalingBehaviour(int behaviour) {
    if (behaviour != 0 && behaviour != 1) {
        Assertions::fail("behaviour == 0 || behaviour == 1");
    }
    _scaling = behaviour;
}

GeAffineMatrix3<float> MfManipulator::getLocalToWindow(const VwView& view) const {
    const GeAffineMatrix3<float> parent =
        _parent ? _parent->getLocalToWindow(view) : view.getWorldToWindow();
    const GeAffineMatrix3<float> own = _base * _appearance;
    if (_scaling == 0 && !(_screenControl && !_parent)) {
        return parent * own;
    }
    // Window pixels, y up, with the origin where the parent puts it.
    const GePoint2<float> origin = parent.transformPoint(own.transformPoint({0.0f, 0.0f}));
    GeAffineMatrix3<float> linear = own;
    linear.setTranslation(0.0f, 0.0f);
    return GeAffineMatrix3<float>::translation(origin.x, origin.y) *
           GeAffineMatrix3<float>::scaling(1.0f, -1.0f) * linear;
}

GePoint2<float> MfManipulator::windowToLocal(const VwView& view,
                                             const GePoint2<float>& window) const {
    GeAffineMatrix3<float> inverse;
    if (!getLocalToWindow(view).computeInverse(inverse)) {
        return {0.0f, 0.0f};
    }
    return inverse.transformPoint(window);
}

void MfManipulator::addGraspEventPredicate(const PrdPredicate<EvEvent>& predicate) {
    _grasp.push_back(predicate);
}

void MfManipulator::setGraspEventPredicate(const PrdPredicate<EvEvent>& predicate) {
    _grasp.assign(1, predicate);
}

bool MfManipulator::acceptsGrasp(const EvEvent& event) const {
    for (const auto& predicate : _grasp) {
        if (!predicate(event)) {
            return false;
        }
    }
    return true;
}

void MfManipulator::setState(int state) {
    if (state < Active || state > Hidden) {
        Assertions::fail("state >= 0 && state <= 3");
    }
    _state = state;
}

bool MfManipulator::isShown() const {
    for (const MfManipulator* m = this; m; m = m->_parent) {
        if (m->_state == Hidden) {
            return false;
        }
    }
    return true;
}

bool MfManipulator::isActive() const {
    for (const MfManipulator* m = this; m; m = m->_parent) {
        if (m->_state == Inactive || m->_state == Hidden) {
            return false;
        }
    }
    return true;
}

bool MfManipulator::hitTest(const VwView&, const GePoint2<float>&) const {
    return false;
}

template <class Accept>
MfManipulator* MfManipulator::find(const VwView& view, const EvDeviceEvent& event,
                                   const Accept& accept) {
    // A state of 2 or 3 closes the subtree.
    if (_state == Inactive || _state == Hidden) {
        return nullptr;
    }
    if (accept(*this) && hitTest(view, event.getCoord())) {
        return this;
    }
    for (const auto& child : _children) {
        if (MfManipulator* found = child->find(view, event, accept)) {
            return found;
        }
    }
    return nullptr;
}

MfManipulator* MfManipulator::findGraspable(const VwView& view, const EvDeviceEvent& event) {
    return find(view, event, [&event](const MfManipulator& m) { return m.acceptsGrasp(event); });
}

MfManipulator* MfManipulator::findFeedback(const VwView& view, const EvDeviceEvent& event) {
    return find(view, event, [&event](const MfManipulator& m) { return m.acceptsFeedback(event); });
}

void MfManipulator::beginManipulation(const PiEventContext&) {
    _manipulating = true;
}

void MfManipulator::continueManipulation(const PiEventContext&) {}

void MfManipulator::endManipulation(const PiEventContext&) {
    _manipulating = false;
}

void MfManipulator::abortManipulation() {
    _manipulating = false;
}

void MfManipulator::draw(const VwView& view) const {
    if (_state == Hidden || !view.getPainter()) {
        return;
    }
    drawSelf(view, getLocalToWindow(view));
    for (const auto& child : _children) {
        child->draw(view);
    }
}

void MfManipulator::drawSelf(const VwView&, const GeAffineMatrix3<float>&) const {}

CoRgbaColorTyped<float> MfManipulator::getDrawColour() const {
    if (_manipulating) {
        return {1.0f, 0.55f, 0.1f, 1.0f};
    }
    if (!isActive()) {
        return {0.55f, 0.55f, 0.55f, 0.6f};
    }
    if (isHighlighted()) {
        return {1.0f, 0.85f, 0.2f, 1.0f};
    }
    return {0.85f, 0.85f, 0.85f, 1.0f};
}
