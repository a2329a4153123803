#include "tsMgInputValues.h"

#include <base/rcCast.h>
#include <base/rcExUtil.h>
#include <base/typeName.h>

namespace {

template <class T>
const RCShdPtr<T>& required(const RCShdPtr<T>& p) {
    if (!p) {
        RCExUtil::throwExNullPtr(typeNameOf<T>().c_str());
    }
    return p;
}

} // namespace

TsMgInputValues::TsMgInputValues(const RCWeakPtr<TsMgInterface>& mg,
                                 const RCShdPtr<const PiTimePath>& timePath) {
    const RCStrongPtr<TsMgInterface> locked = mg.lock();
    if (!locked) {
        RCExUtil::throwExNullPtr(typeNameOf<TsMgInterface>().c_str());
    }
    const RCShdPtr<TsMgInterface> matteGenerator =
        rcCastRequired<TsMgInterface>(locked->getNode()->getController());

    for (auto p = TsMgTypes::Overall; p < TsMgTypes::MatteParamCount; p = TsMgTypes::next(p)) {
        _values[p] =
            PiInputValue<double>::createTyped(matteGenerator->getMatteParamInput(p), timePath);
        _changedAdapters[p].set(this, &TsMgInputValues::changed, p);
        _refreshAdapters[p].set(this, &TsMgInputValues::refresh, p);
        _values[p]->addValueChangedCb(&_changedAdapters[p]);
        _values[p]->addUpdateCb(&_refreshAdapters[p]);
        _values[p]->update();
    }
    for (int k = 0; k < 2; ++k) {
        _keyColors[k] = PiInputRgbColor::create(
            matteGenerator->getKeyColorInput(static_cast<TsTypes::KeyColor>(k)), timePath);
    }
}

TsMgInputValues::~TsMgInputValues() = default;

const RCShdPtr<PiInputValue<double>>&
TsMgInputValues::getParamValue(TsMgTypes::MatteParam p) const {
    return _values[p];
}

const RCShdPtr<PiInputRgbColor>& TsMgInputValues::getKeyColor(int index) const {
    return _keyColors[index];
}

float TsMgInputValues::getValue(TsMgTypes::MatteParam p) const {
    return static_cast<float>(required(_values[p])->getValue());
}

bool TsMgInputValues::setValue(TsMgTypes::MatteParam p, double value) {
    return required(_values[p])->setValue(value);
}

CoRgbColorTyped<float> TsMgInputValues::getBlendedKeyColor() const {
    const CoRgbColorTyped<float> k0 = required(_keyColors[0])->getValue();
    const CoRgbColorTyped<float> k1 = required(_keyColors[1])->getValue();
    const float w = static_cast<float>(required(_values[TsMgTypes::KeyBlend])->getValue());
    return {k0.r * (1.0f - w) + k1.r * w, k0.g * (1.0f - w) + k1.g * w,
            k0.b * (1.0f - w) + k1.b * w};
}

void TsMgInputValues::changed(const int& p) {
    const TsMgTypes::MatteParam param = static_cast<TsMgTypes::MatteParam>(p);
    _dispatcher.call(param);
    const RCShdPtr<PiInputValue<double>>& view = required(_values[p]);
    if (view->needsUpdate()) {
        view->update();
    }
}

void TsMgInputValues::refresh(const int& p) {
    required(_values[p])->update();
}
