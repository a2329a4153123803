#include <pluginAPI/piInputRgbColor.h>

#include <base/rcExUtil.h>
#include <base/typeName.h>

RCShdPtr<PiInputRgbColor> PiInputRgbColor::create(const RCShdPtr<PiStructuredInput>& input,
                                                  const RCShdPtr<const PiTimePath>& timePath) {
    if (!input) {
        RCExUtil::throwExNullPtr(typeNameOf<PiStructuredInput>().c_str());
    }
    return RCShdPtr<PiInputRgbColor>(new PiInputRgbColor(input, timePath));
}

PiInputRgbColor::PiInputRgbColor(const RCShdPtr<PiStructuredInput>& input,
                                 const RCShdPtr<const PiTimePath>& timePath)
    : _input(input)
    , _view(PiInputValue<CoRgbColorTyped<float>>::createTyped(input, timePath)) {}
