#pragma once

#include <base/cbDispatcher.h>
#include <base/rcBase.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/piNodeEvent.h>
#include <pluginAPI/piValue.h>
#include <pluginAPI/pluginAPIExport.h>
#include <resmgt/liString.h>

#include <memory>
#include <typeindex>
#include <typeinfo>
#include <utility>
#include <vector>

class PiNode;
class PiInput;

// The behaviour of a node: what plugins and panels talk to. Every node has
// one (a plain PiNodeController unless the node's library supplies its own);
// libraries derive their interfaces from it virtually, so one controller
// object may implement several of them and a cast from the node's controller
// reaches each.
//
// Node events are delivered by exact type: a handler registered for
// PiNodeEvent::ValueChanged receives ValueChanged events only. Any class
// derived from PiNodeEvent is an event type.
class TS_PLUGIN_API PiNodeController : public virtual RCBase<LkCounter<int>> {
public:
    PiNodeController();
    PiNodeController(const PiNodeController&) = delete;
    PiNodeController& operator=(const PiNodeController&) = delete;
    ~PiNodeController() override;

    // The node, or empty once the node is gone.
    RCShdPtr<PiNode> getNode() const;
    PiNode* getNodePtr() const { return _node; }

    template <class E>
    void addCallback(CbHandler<const PiNodeEvent>* handler) {
        addCallback(typeid(E), handler);
    }
    void addCallback(const std::type_info& eventType, CbHandler<const PiNodeEvent>* handler);
    template <class E>
    void removeCallback(CbHandler<const PiNodeEvent>* handler) {
        removeCallback(typeid(E), handler);
    }
    void removeCallback(const std::type_info& eventType, CbHandler<const PiNodeEvent>* handler);
    bool hasCallbacks(const std::type_info& eventType) const;

    // Calls the handlers registered for the event's dynamic type, in
    // registration order.
    void fireEvent(const PiNodeEvent& event);

    // Why the node refuses an edit that would write `value` into `input`
    // (one of its inputs), or "" when it takes it: a controller that keeps
    // some inputs in step with others refuses what would break that. Asked
    // before every edit; loads, undo and redo are not edits.
    virtual LiString getValueRefusal(const PiInput& input, const PiValue& value) const;

protected:
    // Called when an input of the node changed, before anyone else hears of
    // it: controllers that derive state from their inputs react here. Must
    // not edit inputs (it runs during undo and redo too).
    virtual void inputChanged(PiInput& input);

private:
    friend class PiNode;
    void attach(PiNode* node) { _node = node; }

    CbDispatcher<const PiNodeEvent>* find(const std::type_info& eventType) const;

    PiNode* _node = nullptr;
    std::vector<std::pair<std::type_index, std::unique_ptr<CbDispatcher<const PiNodeEvent>>>>
        _dispatchers;
};
