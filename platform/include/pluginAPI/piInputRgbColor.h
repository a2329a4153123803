#pragma once

#include <base/coRgbColorTyped.h>
#include <base/rcBase.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piInputValue.h>
#include <pluginAPI/piTimePath.h>
#include <pluginAPI/pluginAPIExport.h>

// A live view of a structured colour input at the time of a time path: the
// operations of PiInputValue over a CoRgbColorTyped<float>, the three
// components read and written as one value.
class PiInputRgbColor : public RCBase<LkCounter<int>> {
public:
    // ExNullPtr for a null input.
    TS_PLUGIN_API static RCShdPtr<PiInputRgbColor>
    create(const RCShdPtr<PiStructuredInput>& input, const RCShdPtr<const PiTimePath>& timePath);

    // The state query the automatic rules test first: a locked colour is
    // never changed by them.
    bool isLocked() const { return _view->isLocked(); }
    CoRgbColorTyped<float> getValue() const { return _view->getValue(); }
    // False, with nothing changed, when the input is locked or a component is
    // not finite.
    bool setValue(const CoRgbColorTyped<float>& value) { return _view->setValue(value); }

    void addValueChangedCb(CbHandler<CbEmptyType>* handler) { _view->addValueChangedCb(handler); }
    void removeValueChangedCb(CbHandler<CbEmptyType>* handler) {
        _view->removeValueChangedCb(handler);
    }
    void addUpdateCb(CbHandler<CbEmptyType>* handler) { _view->addUpdateCb(handler); }
    void removeUpdateCb(CbHandler<CbEmptyType>* handler) { _view->removeUpdateCb(handler); }
    bool needsUpdate() const { return _view->needsUpdate(); }
    void update() { _view->update(); }

    const RCShdPtr<PiStructuredInput>& getInput() const { return _input; }
    const RCShdPtr<const PiTimePath>& getTimePath() const { return _view->getTimePath(); }

private:
    TS_PLUGIN_API PiInputRgbColor(const RCShdPtr<PiStructuredInput>& input,
                                  const RCShdPtr<const PiTimePath>& timePath);

    RCShdPtr<PiStructuredInput> _input;
    RCShdPtr<PiInputValue<CoRgbColorTyped<float>>> _view;
};
