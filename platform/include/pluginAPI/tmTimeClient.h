#pragma once

#include <base/cbDispatcher.h>
#include <base/cbEmptyType.h>
#include <pluginAPI/pluginAPIExport.h>

#include <memory>

// Something that has a current time: a frame number, fractional frames
// allowed (viewers are time clients). Changing the time calls the
// time-changed handlers. Time paths refer to a client without owning it and
// see it go (PiTimePath).
class TS_PLUGIN_API TmTimeClient {
public:
    explicit TmTimeClient(double time = 0.0);
    TmTimeClient(const TmTimeClient&) = delete;
    TmTimeClient& operator=(const TmTimeClient&) = delete;
    virtual ~TmTimeClient();

    double getTime() const { return _time; }
    // Handlers run when the time actually changes.
    void setTime(double frame);

    void addTimeChangedCb(CbHandler<CbEmptyType>* handler) const {
        _timeChanged.addHandler(handler);
    }
    void removeTimeChangedCb(CbHandler<CbEmptyType>* handler) const {
        _timeChanged.removeHandler(handler);
    }

    // Shared with the time paths: holds this client while it lives and null
    // afterwards.
    const std::shared_ptr<const TmTimeClient*>& getLiveness() const { return _liveness; }

private:
    double _time;
    // Registering a handler does not change the client's time.
    mutable CbDispatcher<CbEmptyType> _timeChanged;
    std::shared_ptr<const TmTimeClient*> _liveness;
};
