#include "inputCommands.h"

#include "hostSession.h"
#include "sessionArgs.h"
#include "sessionInterpreter.h"

#include <base/exReporter.h>

void InputCommands::add(SessionInterpreter& interpreter) {
    SessionInterpreter& in = interpreter;
    HostSession& s = interpreter.getSession();
    SessionProbe& probe = interpreter.getProbe();

    auto write = [&probe, &s](bool asKey) {
        return [&probe, &s, asKey](SessionArgs& a) {
            const RCShdPtr<PiInput> input = probe.inputArg(a);
            const std::vector<std::string> words = a.restWords();
            PiValue value;
            std::string error;
            if (!SessionProbe::parseValue(input->getType(), words, value, error)) {
                throw SessionArgs::Error("input \"" + input->getName() + "\": " + error);
            }
            bool written = false;
            exContain("session: writing " + input->getName(), [&] {
                written = asKey ? input->setKey(s.getFrame(), value)
                                : input->setValue(s.getFrame(), value);
            });
            if (!written) {
                const std::string why = asKey && !input->isAnimatable()
                                            ? std::string("it does not animate")
                                            : input->getRefusal(value);
                throw SessionArgs::Error("input \"" + input->getName() + "\" refused the value" +
                                         (why.empty() ? "" : " (" + why + ")"));
            }
        };
    };
    in.addCommand("set", write(false));
    in.addCommand("animate", write(true));
    auto lock = [&probe](bool locked) {
        return [&probe, locked](SessionArgs& a) {
            const RCShdPtr<PiInput> input = probe.inputArg(a);
            a.end();
            exContain("session: locking " + input->getName(), [&] { input->setLocked(locked); });
        };
    };
    in.addCommand("lock", lock(true));
    in.addCommand("unlock", lock(false));

    probe.addQuery("input", [&probe](SessionArgs& args) {
        const RCShdPtr<PiInput> input = probe.inputArg(args);
        return probe.format(input->getValue(probe.frameArg(args)));
    });
    probe.addQuery("keys", [&probe](SessionArgs& args) {
        std::vector<std::string> times;
        for (const PiAnimKey& key : probe.inputArg(args)->getKeys()) {
            times.push_back(SessionArgs::format(key.time));
        }
        return SessionProbe::list(times);
    });
    probe.addQuery("locked", [&probe](SessionArgs& args) {
        return std::string(probe.inputArg(args)->isLocked() ? "true" : "false");
    });
    probe.addQuery(
        "inputs", [&probe](SessionArgs& args) { return std::to_string(probe.inputs(args).size()); },
        [&probe](SessionArgs& args) { return probe.inputs(args); }, true);
}
