#pragma once

#include <base/rcBase.h>
#include <pluginAPI/pluginAPIExport.h>
#include <resmgt/liString.h>

// An item of a selection (SnSelection): something the user selected. Items
// of one selection are distinct by isSame.
class TS_PLUGIN_API SnItem : public RCBase<LkCounter<int>> {
public:
    ~SnItem() override;

    // True when both items refer to the same thing.
    virtual bool isSame(const SnItem& other) const = 0;
    // A readable name of what the item refers to.
    virtual LiString describe() const = 0;
};
