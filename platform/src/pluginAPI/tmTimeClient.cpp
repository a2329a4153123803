#include <pluginAPI/tmTimeClient.h>

TmTimeClient::TmTimeClient(double time)
    : _time(time)
    , _liveness(std::make_shared<const TmTimeClient*>(this)) {}

TmTimeClient::~TmTimeClient() {
    *_liveness = nullptr;
}

void TmTimeClient::setTime(double frame) {
    if (frame == _time) {
        return;
    }
    _time = frame;
    _timeChanged.call();
}
