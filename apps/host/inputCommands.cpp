#include "inputCommands.h"

#include "hostSession.h"
#include "sessionArgs.h"
#include "sessionInterpreter.h"

#include <base/exReporter.h>
#include <pluginAPI/piCommandStack.h>

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
    // The keys of an input, as a field's key actions edit them.
    auto keyAction = [&probe, &s](const char* name, auto action) {
        return [&probe, &s, name, action](SessionArgs& a) {
            const RCShdPtr<PiInput> input = probe.inputArg(a);
            bool done = false;
            exContain(std::string("session: ") + name, [&] {
                PiUndoGuard step(s.getCommandStack(), name);
                done = action(*input, s.getFrame(), a);
            });
            if (!done) {
                throw SessionArgs::Error(
                    "input \"" + input->getName() + "\" has " +
                    (input->hasKeys() ? "no key at frame " + SessionArgs::format(s.getFrame())
                                      : std::string("no keys")) +
                    (input->isLocked() ? " (or is locked)" : ""));
            }
        };
    };
    in.addCommand("unkey",
                  keyAction("Delete Key", [](PiInput& input, double frame, SessionArgs& a) {
                      a.end();
                      return input.removeKey(frame);
                  }));
    in.addCommand("unanimate",
                  keyAction("Delete Animation", [](PiInput& input, double frame, SessionArgs& a) {
                      a.end();
                      return input.hasKeys() && input.setConstant(input.getValue(frame));
                  }));
    in.addCommand("interpolate",
                  keyAction("Interpolate Keys", [](PiInput& input, double, SessionArgs& a) {
                      const std::string how = a.choice("interpolation", {"linear", "smooth"});
                      a.end();
                      return input.setInterpolation(how == "linear" ? PiInterpolation::Linear
                                                                    : PiInterpolation::Smooth);
                  }));

    probe.addQuery("input", [&probe](SessionArgs& args) {
        const RCShdPtr<PiInput> input = probe.inputArg(args);
        return probe.format(input->getValue(probe.frameArg(args)));
    });
    probe.addQuery("keys", [&probe](SessionArgs& args) {
        std::vector<std::string> times;
        const RCShdPtr<PiInput> input = probe.inputArg(args);
        const bool interpolations = args.take("interpolation");
        for (const PiAnimKey& key : input->getKeys()) {
            times.push_back(interpolations ? (key.interpolation == PiInterpolation::Linear
                                                  ? std::string("linear")
                                                  : std::string("smooth"))
                                           : SessionArgs::format(key.time));
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
