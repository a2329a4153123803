#include <pluginAPI/piCommandStack.h>

#include <base/assertions.h>
#include <base/exReporter.h>

#include <algorithm>
#include <exception>
#include <utility>

namespace {

// Records of the open step are found by a search from the most recent one
// (a drag writes the same few inputs over and over); beyond this many an
// index takes over.
constexpr std::size_t linearSearchLimit = 32;

std::vector<PiCommandStack*>& registry() {
    // Never destroyed: stacks of static graphs may unregister at exit.
    static auto* stacks = new std::vector<PiCommandStack*>;
    return *stacks;
}

[[maybe_unused]] const int recoveryHook =
    ExReporter::getInstance().addRecoveryHook([] { PiCommandStack::closeAllOpenSteps(); });

std::size_t extraBytes(const PiInputState& state) {
    return state.memoryUse() - sizeof(PiInputState);
}

} // namespace

PiCommandStack::PiCommandStack() {
    registry().push_back(this);
}

PiCommandStack::~PiCommandStack() {
    std::erase(registry(), this);
}

void PiCommandStack::closeAllOpenSteps() {
    const std::vector<PiCommandStack*> stacks = registry();
    for (PiCommandStack* stack : stacks) {
        if (std::find(registry().begin(), registry().end(), stack) != registry().end()) {
            stack->closeOpenStep();
        }
    }
}

bool PiCommandStack::undo() {
    closeOpenStep();
    if (_current == 0) {
        return false;
    }
    --_current;
    replay(_steps[_current], false);
    return true;
}

bool PiCommandStack::redo() {
    closeOpenStep();
    if (_current >= _steps.size()) {
        return false;
    }
    ++_current;
    replay(_steps[_current - 1], true);
    return true;
}

void PiCommandStack::replay(const Step& step, bool forward) {
    // Every input of the step is put back even when a handler throws: the
    // first exception is passed on once the step is whole again.
    std::exception_ptr failure;
    auto restore = [&failure, forward](const Record& r, const PiInputState& state) {
        try {
            if (r.change) {
                (forward ? r.change->redo : r.change->undo)();
            } else {
                r.input->restoreState(state);
            }
        } catch (...) {
            if (!failure) {
                failure = std::current_exception();
            }
        }
    };
    _replaying = true;
    if (forward) {
        for (const Record& r : step.records) {
            restore(r, r.after);
        }
    } else {
        for (std::size_t i = step.records.size(); i-- > 0;) {
            restore(step.records[i], step.records[i].before);
        }
    }
    _replaying = false;
    notify();
    if (failure) {
        std::rethrow_exception(failure);
    }
}

std::vector<LiString> PiCommandStack::getStepNames() const {
    std::vector<LiString> names;
    names.reserve(_steps.size());
    for (const Step& step : _steps) {
        names.push_back(step.name);
    }
    return names;
}

LiString PiCommandStack::getUndoName() const {
    return _current > 0 ? _steps[_current - 1].name : LiString();
}

LiString PiCommandStack::getRedoName() const {
    return _current < _steps.size() ? _steps[_current].name : LiString();
}

int PiCommandStack::getRecordCount(int index) const {
    if (index < 0 || index >= getStepCount()) {
        return 0;
    }
    return static_cast<int>(_steps[static_cast<std::size_t>(index)].records.size());
}

std::vector<PiCommandStack::InputChange> PiCommandStack::getStepChanges(int index) const {
    std::vector<InputChange> changes;
    if (index < 0 || index >= getStepCount()) {
        return changes;
    }
    for (const Record& r : _steps[static_cast<std::size_t>(index)].records) {
        if (r.input) {
            changes.push_back({r.input, r.before, r.after});
        }
    }
    return changes;
}

void PiCommandStack::closeOpenStep() {
    if (_open) {
        close();
    }
}

void PiCommandStack::clear() {
    _steps.clear();
    _current = 0;
    _cleanIndex = 0;
    // What the open step did stays done; it is just no longer recorded.
    _openStep.records.clear();
    _index.clear();
    notify();
}

std::size_t PiCommandStack::getMemoryUse() const {
    auto stepBytes = [](const Step& step) {
        std::size_t bytes =
            sizeof(Step) + step.name.capacity() + step.records.capacity() * sizeof(Record);
        for (const Record& r : step.records) {
            bytes += extraBytes(r.before) + extraBytes(r.after);
        }
        return bytes;
    };
    std::size_t bytes = _steps.capacity() * sizeof(Step);
    for (const Step& step : _steps) {
        bytes += stepBytes(step) - sizeof(Step);
    }
    if (_open) {
        bytes += stepBytes(_openStep);
    }
    return bytes;
}

bool PiCommandStack::beginWrite(PiInput& input, std::uint64_t& epoch) {
    if (_replaying) {
        Assertions::fail("!isReplaying()");
    }
    bool own = false;
    if (!_open) {
        open(input.getName());
        _openStep.namedByInput = true;
        ++_depth;
        own = true;
        epoch = _epoch;
    } else if (_openStep.name.empty()) {
        _openStep.name = input.getName();
        _openStep.namedByInput = true;
    }
    if (!findRecord(input)) {
        _openStep.records.push_back(Record{RCShdPtr<PiInput>(&input), input.getState(), {}, {}});
        if (!_index.empty()) {
            _index.emplace(&input, _openStep.records.size() - 1);
        }
    }
    return own;
}

PiCommandStack::Record* PiCommandStack::findRecord(const PiInput& input) {
    auto& records = _openStep.records;
    if (records.size() <= linearSearchLimit) {
        // (Changes of the structure have no input, and match none.)
        for (std::size_t i = records.size(); i-- > 0;) {
            if (records[i].input.get() == &input) {
                return &records[i];
            }
        }
        return nullptr;
    }
    if (_index.empty()) {
        for (std::size_t i = 0; i < records.size(); ++i) {
            if (records[i].input) {
                _index.emplace(records[i].input.get(), i);
            }
        }
    }
    auto it = _index.find(&input);
    return it == _index.end() ? nullptr : &records[it->second];
}

void PiCommandStack::recordChange(const LiString& name, std::function<void()> undo,
                                  std::function<void()> redo) {
    if (_replaying) {
        return;
    }
    const bool own = !_open;
    if (own) {
        open(name);
    } else if (_openStep.name.empty()) {
        _openStep.name = name;
    }
    Record record;
    record.change = std::make_shared<const Change>(Change{std::move(undo), std::move(redo)});
    _openStep.records.push_back(std::move(record));
    if (own) {
        close();
    }
}

std::uint64_t PiCommandStack::beginGuard(const LiString& text, int transition, bool& counted) {
    switch (transition) {
    case PiExecParam::End:
        if (!_open) {
            counted = false;
            return _epoch;
        }
        _held = false;
        break;
    case PiExecParam::Begin:
        // A begun step whose end never came is closed before the next begins.
        if (_open && _held && _depth == 0) {
            close();
        }
        if (!_open) {
            open(text);
        }
        _held = true;
        break;
    case PiExecParam::Continue:
        if (!_open) {
            open(text);
        }
        _held = true;
        break;
    default:
        if (!_open) {
            open(text);
        } else if (_openStep.name.empty()) {
            _openStep.name = text;
        }
        break;
    }
    ++_depth;
    counted = true;
    return _epoch;
}

void PiCommandStack::endGuard(std::uint64_t epoch) {
    if (!_open || epoch != _epoch) {
        return;
    }
    if (_depth > 0) {
        --_depth;
    }
    if (_depth == 0 && !_held) {
        close();
    }
}

void PiCommandStack::open(const LiString& name) {
    _open = true;
    _held = false;
    _depth = 0;
    _openStep.name = name;
    _openStep.namedByInput = false;
    _openStep.records.clear();
    _index.clear();
}

void PiCommandStack::nameStep(const LiString& name) {
    if (_open && (_openStep.name.empty() || _openStep.namedByInput)) {
        _openStep.name = name;
        _openStep.namedByInput = false;
    }
}

void PiCommandStack::announceWhenClosed(PiInput& input) {
    const bool noted = std::any_of(_refused.begin(), _refused.end(),
                                   [&input](const auto& r) { return r.get() == &input; });
    if (!noted) {
        _refused.emplace_back(&input);
    }
}

void PiCommandStack::close() {
    // What refused a write hears of it once the step is whole.
    const std::vector<RCShdPtr<PiInput>> refused = std::exchange(_refused, {});
    closeStep();
    for (const RCShdPtr<PiInput>& input : refused) {
        input->announce();
    }
}

void PiCommandStack::closeStep() {
    Step step = std::move(_openStep);
    _openStep = Step();
    _index.clear();
    _open = false;
    _held = false;
    _depth = 0;
    ++_epoch;

    for (Record& r : step.records) {
        if (!r.change) {
            r.after = r.input->getState();
        }
    }
    std::erase_if(step.records, [](const Record& r) { return !r.change && r.before == r.after; });
    if (step.records.empty()) {
        return;
    }
    step.records.shrink_to_fit();
    if (step.name.empty()) {
        // Only a change of the structure names a step when it is made, so an
        // unnamed step has an input.
        for (const Record& r : step.records) {
            if (r.input) {
                step.name = r.input->getName();
                break;
            }
        }
    }
    if (_current < _steps.size()) {
        if (_cleanIndex > static_cast<int>(_current)) {
            _cleanIndex = -1;
        }
        _steps.erase(_steps.begin() + static_cast<std::ptrdiff_t>(_current), _steps.end());
    }
    _steps.push_back(std::move(step));
    ++_current;
    notify();
}

PiUndoGuard::PiUndoGuard(PiCommandStack& stack, const LiString& text, const PiExecParam& param)
    : _stack(stack) {
    bool counted = false;
    _epoch = stack.beginGuard(text, param.getTransition(), counted);
    _counted = counted;
}

PiUndoGuard::~PiUndoGuard() {
    if (!_counted) {
        return;
    }
    try {
        _stack.endGuard(_epoch);
    } catch (const std::exception& ex) {
        ExReporter::getInstance().reportException("undo step", ex);
    }
}
