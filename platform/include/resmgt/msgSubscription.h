#pragma once

#include <resmgt/liString.h>
#include <resmgt/resmgtExport.h>

#include <string>

// A named message of a catalogue. Register it with MsgServer while a
// MsgFileGuard holds the catalogue open: registration resolves its text. An
// unregistered subscription, or one whose id the catalogue lacks, answers its
// id as text, so a label is never empty.
class TS_RESMGT_API MsgSubscription {
public:
    explicit MsgSubscription(const char* id);
    ~MsgSubscription();
    MsgSubscription(const MsgSubscription&) = delete;
    MsgSubscription& operator=(const MsgSubscription&) = delete;

    const std::string& getId() const { return _id; }
    LiString getText() const;
    bool isResolved() const { return _resolved; }

private:
    friend class MsgServer;
    std::string _id;
    LiString _text;
    bool _resolved = false;
    bool _registered = false;
};
