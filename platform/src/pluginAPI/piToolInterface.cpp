#include <pluginAPI/piImageModifier.h>
#include <pluginAPI/piToolInterface.h>

PiToolInterface::~PiToolInterface() = default;

RCShdPtr<const PiInputPolicy>
PiToolInterface::getInputPolicy(const RCShdPtr<const PiInput>& input) const {
    return input ? input->getPolicy() : RCShdPtr<const PiInputPolicy>();
}

PiImageModifier::~PiImageModifier() = default;
