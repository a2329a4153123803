#include <base/exReporter.h>
#include <resmgt/liResourcePath.h>
#include <resmgt/msgFileGuard.h>
#include <resmgt/msgServer.h>

#include <algorithm>

MsgServer& MsgServer::getInstance() {
    // Never destroyed: subscriptions are statics of modules and leave the
    // server during static termination, in any order.
    static MsgServer* instance = new MsgServer;
    return *instance;
}

std::shared_ptr<const MsgCatalogue> MsgServer::loadCached(const std::string& fileName) {
    for (auto& [name, catalogue] : _cache) {
        if (name == fileName) {
            return catalogue;
        }
    }
    std::shared_ptr<const MsgCatalogue> catalogue;
    const LiString path = LiResourcePath::find(fileName);
    if (path.empty()) {
        ExReporter::getInstance().report(
            "message catalogue " + fileName,
            "not found (searched TESSERA_RESOURCE_PATH and the module directories); texts "
            "fall back to their ids");
    } else {
        auto loaded = std::make_shared<MsgCatalogue>(MsgCatalogue::load(path));
        for (const auto& error : loaded->errors()) {
            ExReporter::getInstance().report(
                error.file + (error.line ? ":" + std::to_string(error.line) : ""), error.message);
        }
        if (loaded->isReadable()) {
            catalogue = loaded;
        }
    }
    _cache.emplace_back(fileName, catalogue);
    return catalogue;
}

void MsgServer::pushCatalogue(const std::string& fileName) {
    _open.push_back({fileName, loadCached(fileName)});
}

void MsgServer::popCatalogue() {
    if (!_open.empty()) {
        _open.pop_back();
    }
}

LiString MsgServer::lookup(const std::string& id) const {
    for (auto it = _open.rbegin(); it != _open.rend(); ++it) {
        if (it->catalogue) {
            if (auto text = it->catalogue->find(id)) {
                return *text;
            }
        }
    }
    return id;
}

void MsgServer::registerSubscription(MsgSubscription* subscription) {
    if (!subscription) {
        return;
    }
    if (!isRegistered(subscription)) {
        _subscriptions.push_back(subscription);
        subscription->_registered = true;
    }
    for (auto it = _open.rbegin(); it != _open.rend(); ++it) {
        if (it->catalogue) {
            if (auto text = it->catalogue->find(subscription->_id)) {
                subscription->_text = *text;
                subscription->_resolved = true;
                return;
            }
        }
    }
    subscription->_text = subscription->_id;
    subscription->_resolved = false;
    if (_reported.insert(subscription->_id).second) {
        std::string where;
        for (const auto& open : _open) {
            where += (where.empty() ? "" : ", ") + open.fileName;
        }
        ExReporter::getInstance().report(
            "message " + subscription->_id,
            where.empty() ? "no message catalogue is open; the id is used as its text"
                          : "not in " + where + "; the id is used as its text");
    }
}

void MsgServer::unregisterSubscription(MsgSubscription* subscription) {
    auto it = std::find(_subscriptions.begin(), _subscriptions.end(), subscription);
    if (it != _subscriptions.end()) {
        _subscriptions.erase(it);
        subscription->_registered = false;
    }
}

bool MsgServer::isRegistered(const MsgSubscription* subscription) const {
    return std::find(_subscriptions.begin(), _subscriptions.end(), subscription) !=
           _subscriptions.end();
}

std::vector<std::string> MsgServer::getRegisteredIds() const {
    std::vector<std::string> ids;
    for (const MsgSubscription* s : _subscriptions) {
        ids.push_back(s->_id);
    }
    return ids;
}

MsgSubscription::MsgSubscription(const char* id)
    : _id(id ? id : "")
    , _text(_id) {}

MsgSubscription::~MsgSubscription() {
    if (_registered) {
        MsgServer::getInstance().unregisterSubscription(this);
    }
}

LiString MsgSubscription::getText() const {
    return _text;
}

MsgFileGuard::MsgFileGuard(const char* file) {
    MsgServer::getInstance().pushCatalogue(file ? file : "");
}

MsgFileGuard::~MsgFileGuard() {
    MsgServer::getInstance().popCatalogue();
}
