#pragma once

#include <base/rcShdPtr.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piValue.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

class HostSession;
class SessionArgs;
class PiNode;

// What a session script can read of the host's state, for `print` and
// `expect`: each query is a word (and its arguments) that answers one line of
// text (value) or, for print, a listing of several lines. The words, their
// arguments and the forms of their answers are those of the session-script
// documentation; lists in one line are joined by ", ".
//
// The queries come from the command tables of each topic (viewerCommands,
// inputCommands, ...), which add them with addQuery beside their commands.
class SessionProbe {
public:
    using Query = std::function<std::string(SessionArgs&)>;
    using Listing = std::function<std::vector<std::string>(SessionArgs&)>;

    explicit SessionProbe(HostSession& session);

    // The one-line answer; SessionArgs::Error for an unknown query or bad
    // arguments.
    std::string value(SessionArgs& args);
    // The lines print shows: the listing of queries that have one, else
    // "WHAT = value".
    std::vector<std::string> listing(SessionArgs& args);

    // A listing that takes no arguments is used only for the word alone
    // ("print undo" lists, "print undo count" answers the value).
    void addQuery(const std::string& word, Query query, Listing listing = Listing(),
                  bool listingTakesArguments = false);

    // --- shared by the command tables
    // Items joined by ", ", or `none` when there are none.
    static std::string list(const std::vector<std::string>& items, const char* none = "none");
    // The text, or "none" when it is empty.
    static std::string orNone(const std::string& text);
    // The arguments the queries share: [at FRAME] (the session's frame by
    // default), a node of the keyer group, an input ([NODE/]NAME).
    double frameArg(SessionArgs& args) const;
    RCShdPtr<PiNode> nodeArg(SessionArgs& args) const;
    RCShdPtr<PiInput> inputArg(SessionArgs& args) const;
    // The lines of `print inputs [NODE] [at FRAME]`.
    std::vector<std::string> inputs(SessionArgs& args);
    // An input named [NODE/]NAME: NODE is a node of the keyer group or the
    // group itself, the keyer node the viewer shows by default.
    RCShdPtr<PiInput> findInput(const std::string& reference) const;
    // A value as scripts read and write it: numbers in their shortest exact
    // form, colours as three numbers, flags true or false, name lists as
    // quoted names, node references as the node's name (- for none), images
    // as WIDTHxHEIGHT (none).
    std::string format(const PiValue& value) const;
    // Parses the text of `words` into a value of the input's type.
    static bool parseValue(PiValueType type, const std::vector<std::string>& words, PiValue& out,
                           std::string& error);

private:
    struct Entry {
        Query value;
        Listing listing;
        bool listingTakesArguments = false;
    };
    HostSession& _session;
    std::map<std::string, Entry> _queries;
};
