#pragma once

#include <base/cbDispatcher.h>
#include <base/cbEmptyType.h>
#include <base/rcBase.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/piPath.h>
#include <pluginAPI/pluginAPIExport.h>
#include <pluginAPI/tmTimeClient.h>

#include <memory>

// A node path seen at the time of a time client: the time at which views and
// tools read and write a node's inputs. The client is not owned; once it is
// gone (or without one) the time is frame 0.
class PiTimePath : public RCBase<LkCounter<int>> {
public:
    TS_PLUGIN_API PiTimePath(const TmTimeClient* client, const RCShdPtr<const PiPath>& path);

    double getTime() const {
        const TmTimeClient* client = _client ? *_client : nullptr;
        return client ? client->getTime() : 0.0;
    }
    // The client, or null when there is none or it is gone.
    const TmTimeClient* getTimeClient() const { return _client ? *_client : nullptr; }
    const RCShdPtr<const PiPath>& getPath() const { return _path; }

    // Time-changed handlers of the client (nothing happens without a client).
    TS_PLUGIN_API void addTimeChangedCb(CbHandler<CbEmptyType>* handler) const;
    TS_PLUGIN_API void removeTimeChangedCb(CbHandler<CbEmptyType>* handler) const;

private:
    std::shared_ptr<const TmTimeClient*> _client;
    RCShdPtr<const PiPath> _path;
};
