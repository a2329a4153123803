#include <pluginAPI/piTimePath.h>

PiTimePath::PiTimePath(const TmTimeClient* client, const RCShdPtr<const PiPath>& path)
    : _client(client ? client->getLiveness() : nullptr)
    , _path(path) {}

void PiTimePath::addTimeChangedCb(CbHandler<CbEmptyType>* handler) const {
    if (const TmTimeClient* client = getTimeClient()) {
        client->addTimeChangedCb(handler);
    }
}

void PiTimePath::removeTimeChangedCb(CbHandler<CbEmptyType>* handler) const {
    if (const TmTimeClient* client = getTimeClient()) {
        client->removeTimeChangedCb(handler);
    }
}
