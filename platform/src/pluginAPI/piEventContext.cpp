#include <pluginAPI/piEventContext.h>
#include <pluginAPI/piViewer.h>

#include <base/rcCast.h>
#include <base/vwUtils.h>

PiEventContext::PiEventContext(PiViewer& viewer, EvEvent& event)
    : _viewer(viewer)
    , _event(event)
    , _device(dynamic_cast<EvDeviceEvent*>(&event)) {
    if (_device && _device->hasGlobalCoord()) {
        _device->setCoord(viewer.mapFromGlobal(_device->getGlobalCoord()));
    }
}

EvDeviceEvent& PiEventContext::getDeviceEvent() const {
    return refCast<EvDeviceEvent>(_event);
}

GePoint2<float> PiEventContext::getWorldPoint() const {
    return VwUtils::windowToWorldOrtho(_viewer.getView(), getDeviceEvent().getCoord());
}
