#pragma once

#include <base/baseExport.h>
#include <base/gePoint2.h>
#include <base/geRectangle.h>

class VwView;

// Conversions between a viewer's window and its world (see VwView). The
// viewers are orthographic: no perspective, no rotation.
class TS_BASE_API VwUtils {
public:
    static GePoint2<float> windowToWorldOrtho(const VwView& view, const GePoint2<float>& window);
    static GePoint2<float> worldToWindowOrtho(const VwView& view, const GePoint2<float>& world);
    // A rectangle mapped corner by corner (the result is normalised: y down
    // becomes y up and back).
    static GeRectangle<float> windowToWorldOrtho(const VwView& view,
                                                 const GeRectangle<float>& window);
    static GeRectangle<float> worldToWindowOrtho(const VwView& view,
                                                 const GeRectangle<float>& world);
};
