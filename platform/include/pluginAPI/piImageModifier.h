#pragma once

#include <base/rcBase.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/pluginAPIExport.h>

// A node that modifies an image: its controller answers the image input
// (a PiValueType::Image input, whose value is an RCShdPtr<const PiImage>,
// constant over time), which the image picker reads.
class TS_PLUGIN_API PiImageModifier : public virtual RCBase<LkCounter<int>> {
public:
    ~PiImageModifier() override;

    virtual RCShdPtr<PiInput> getInput() const = 0;
};
