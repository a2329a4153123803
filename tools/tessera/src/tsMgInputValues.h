#pragma once

#include <base/cbDataMethod.h>
#include <base/cbDispatcher.h>
#include <base/cbEmptyType.h>
#include <base/coRgbColorTyped.h>
#include <base/rcBase.h>
#include <base/rcShdPtr.h>
#include <base/rcWeakPtr.h>
#include <pluginAPI/piInputRgbColor.h>
#include <pluginAPI/piInputValue.h>
#include <pluginAPI/piTimePath.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsMgTypes.h>

// The matte-generation values of one keyer node, shared by the viewer
// handler of the stage and its tools: live views of the nine matte
// parameters and of the two key colours at a time path's time, and a
// dispatcher that announces which parameter changed.
//
// Every change of a parameter's input (from any tool, panel, undo or redo)
// is broadcast with the parameter's index to the dispatcher's handlers, in
// registration order, with the dispatcher's snapshot rules; the view is then
// refreshed. A change of the time path's time refreshes the views.
class TsMgInputValues : public RCBase<LkCounter<int>> {
public:
    // ExNullPtr when the interface is gone; ExCastFailed when its node's
    // controller is not a matte generator.
    TsMgInputValues(const RCWeakPtr<TsMgInterface>& mg, const RCShdPtr<const PiTimePath>& timePath);
    ~TsMgInputValues() override;

    // The view of a parameter (p in 0..8).
    const RCShdPtr<PiInputValue<double>>& getParamValue(TsMgTypes::MatteParam p) const;
    // The view of key colour 0 or 1.
    const RCShdPtr<PiInputRgbColor>& getKeyColor(int index) const;
    CbDispatcher<const TsMgTypes::MatteParam>& getDispatcher() { return _dispatcher; }

    // A parameter's current value, narrowed to float, and its write (false
    // when the input refuses it).
    float getValue(TsMgTypes::MatteParam p) const;
    bool setValue(TsMgTypes::MatteParam p, double value);

    // Key colour 0 x (1 - w) + key colour 1 x w, w the value of parameter 8.
    CoRgbColorTyped<float> getBlendedKeyColor() const;

private:
    void changed(const int& p);
    void refresh(const int& p);

    using Adapter = CbDataMethod<TsMgInputValues, CbEmptyType, int>;

    RCShdPtr<PiInputValue<double>> _values[TsMgTypes::MatteParamCount];
    Adapter _changedAdapters[TsMgTypes::MatteParamCount];
    Adapter _refreshAdapters[TsMgTypes::MatteParamCount];
    RCShdPtr<PiInputRgbColor> _keyColors[2];
    CbDispatcher<const TsMgTypes::MatteParam> _dispatcher;
};
