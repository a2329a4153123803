#pragma once

#include <resmgt/msgCatalogue.h>
#include <resmgt/msgSubscription.h>
#include <resmgt/resmgtExport.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

// The host's message server: the stack of open catalogues and the registered
// subscriptions.
class TS_RESMGT_API MsgServer {
public:
    static MsgServer& getInstance();

    // Registers a subscription and resolves its text from the open catalogues
    // (the most recently opened first). Registering again re-resolves it and
    // is otherwise harmless. An id found in no open catalogue is reported once
    // and keeps its id as text.
    void registerSubscription(MsgSubscription* subscription);
    void unregisterSubscription(MsgSubscription* subscription);
    bool isRegistered(const MsgSubscription* subscription) const;
    // Registered ids, in registration order (a subscription registered again
    // keeps its first place).
    std::vector<std::string> getRegisteredIds() const;

    // Text of an id in the open catalogues, or the id itself.
    LiString lookup(const std::string& id) const;

    // Used by MsgFileGuard.
    void pushCatalogue(const std::string& fileName);
    void popCatalogue();
    std::size_t openCatalogueCount() const { return _open.size(); }

private:
    MsgServer() = default;
    struct Open {
        std::string fileName;
        std::shared_ptr<const MsgCatalogue> catalogue; // null when missing
    };
    std::shared_ptr<const MsgCatalogue> loadCached(const std::string& fileName);

    std::vector<Open> _open;
    std::vector<std::pair<std::string, std::shared_ptr<const MsgCatalogue>>> _cache;
    std::vector<MsgSubscription*> _subscriptions;
    std::set<std::string> _reported;
};
