#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piNode.h>

#include <base/exReporter.h>

#include <algorithm>
#include <cmath>
#include <exception>

namespace {

bool sameKeys(const std::vector<PiAnimKey>& a, const std::vector<PiAnimKey>& b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i].time != b[i].time || a[i].interpolation != b[i].interpolation ||
            !PiValueUtil::equal(a[i].value, b[i].value)) {
            return false;
        }
    }
    return true;
}

// The components a value interpolates in: a double's one, a colour's three.
int componentsOf(const PiValue& v) {
    return std::holds_alternative<double>(v)                   ? 1
           : std::holds_alternative<CoRgbColorTyped<float>>(v) ? 3
                                                               : 0;
}

double component(const PiValue& v, int c) {
    if (const double* d = std::get_if<double>(&v)) {
        return *d;
    }
    const auto& rgb = std::get<CoRgbColorTyped<float>>(v);
    return c == 0 ? rgb.r : c == 1 ? rgb.g : rgb.b;
}

// The slope (value per frame) of the smooth curve at key i.
double slopeAt(const std::vector<PiAnimKey>& keys, std::size_t i, int c) {
    if (i == 0 || i + 1 == keys.size()) {
        return 0.0;
    }
    const double before = (component(keys[i].value, c) - component(keys[i - 1].value, c)) /
                          (keys[i].time - keys[i - 1].time);
    const double after = (component(keys[i + 1].value, c) - component(keys[i].value, c)) /
                         (keys[i + 1].time - keys[i].time);
    if (before * after <= 0.0) {
        return 0.0;
    }
    const double mean = 0.5 * (before + after);
    const double limit = 3.0 * std::min(std::fabs(before), std::fabs(after));
    return std::copysign(std::min(std::fabs(mean), limit), mean);
}

// The value between keys i and i + 1.
PiValue between(const std::vector<PiAnimKey>& keys, std::size_t i, double time) {
    const PiAnimKey& a = keys[i];
    const PiAnimKey& b = keys[i + 1];
    const double span = b.time - a.time;
    const double s = (time - a.time) / span;
    if (a.interpolation == PiInterpolation::Linear || componentsOf(a.value) == 0) {
        return PiValueUtil::interpolate(a.value, b.value, s);
    }
    // Cubic Hermite on [0, 1], slopes scaled by the span.
    const double s2 = s * s;
    const double s3 = s2 * s;
    const double h00 = 2 * s3 - 3 * s2 + 1;
    const double h10 = s3 - 2 * s2 + s;
    const double h01 = -2 * s3 + 3 * s2;
    const double h11 = s3 - s2;
    double out[3] = {0.0, 0.0, 0.0};
    for (int c = 0; c < componentsOf(a.value); ++c) {
        out[c] = h00 * component(a.value, c) + h10 * span * slopeAt(keys, i, c) +
                 h01 * component(b.value, c) + h11 * span * slopeAt(keys, i + 1, c);
    }
    if (std::holds_alternative<double>(a.value)) {
        return out[0];
    }
    return CoRgbColorTyped<float>(static_cast<float>(out[0]), static_cast<float>(out[1]),
                                  static_cast<float>(out[2]));
}

auto findKey(std::vector<PiAnimKey>& keys, double time) {
    return std::lower_bound(keys.begin(), keys.end(), time,
                            [](const PiAnimKey& k, double t) { return k.time < t; });
}

} // namespace

bool PiInputState::operator==(const PiInputState& other) const {
    return locked == other.locked && PiValueUtil::equal(constant, other.constant) &&
           sameKeys(keys, other.keys);
}

std::size_t PiInputState::memoryUse() const {
    std::size_t bytes = sizeof(PiInputState) + PiValueUtil::extraBytes(constant) +
                        keys.capacity() * sizeof(PiAnimKey);
    for (const PiAnimKey& k : keys) {
        bytes += PiValueUtil::extraBytes(k.value);
    }
    return bytes;
}

// One change of an input: recorded by the command stack before the change,
// notified after it. A change made when no step is open is a step of its own,
// closed once the change has been notified (handlers that write more inputs
// join it).
class PiInput::Edit {
public:
    explicit Edit(PiInput& input)
        : _input(input)
        , _stack(input.getCommandStack()) {
        _ownStep = _stack && _stack->beginWrite(input, _epoch);
    }
    Edit(const Edit&) = delete;
    Edit& operator=(const Edit&) = delete;
    ~Edit() {
        if (_ownStep && !_finished) {
            // Unwinding: end the write without letting a second exception out.
            try {
                _stack->endWrite(_epoch);
            } catch (const std::exception& ex) {
                ExReporter::getInstance().reportException(_input.getName(), ex);
            }
        }
    }
    // Notifies the change and ends the write. If a handler throws, the
    // destructor ends the write.
    void finish() {
        _input.notifyChanged();
        _finished = true;
        if (_ownStep) {
            _stack->endWrite(_epoch);
        }
    }

private:
    PiInput& _input;
    PiCommandStack* _stack;
    std::uint64_t _epoch = 0;
    bool _ownStep = false;
    bool _finished = false;
};

PiInput::PiInput(const LiString& name, const PiValue& defaultValue)
    : _name(name)
    , _type(PiValueUtil::getType(defaultValue))
    , _default(defaultValue)
    , _animatable(PiValueUtil::isAnimatable(_type)) {
    _state.constant = defaultValue;
}

PiInput::~PiInput() = default;

PiValue PiInput::getValue(double time) const {
    const auto& keys = _state.keys;
    if (keys.empty()) {
        return _state.constant;
    }
    auto after = std::upper_bound(keys.begin(), keys.end(), time,
                                  [](double t, const PiAnimKey& k) { return t < k.time; });
    if (after == keys.begin()) {
        return after->value;
    }
    if (after == keys.end()) {
        return keys.back().value;
    }
    return between(keys, static_cast<std::size_t>(after - keys.begin() - 1), time);
}

bool PiInput::hasKeyAt(double time) const {
    auto& keys = const_cast<std::vector<PiAnimKey>&>(_state.keys);
    auto it = findKey(keys, time);
    return it != keys.end() && it->time == time;
}

bool PiInput::setValue(double time, const PiValue& value) {
    if (_state.locked || !accepts(value)) {
        refused();
        return false;
    }
    PiValue v = value;
    constrain(v);
    if (_state.keys.empty()) {
        if (PiValueUtil::equal(_state.constant, v)) {
            return true;
        }
        Edit edit(*this);
        _state.constant = std::move(v);
        edit.finish();
        return true;
    }
    return setKey(time, v);
}

bool PiInput::setKey(double time, const PiValue& value) {
    if (_state.locked || !isAnimatable() || !accepts(value) || !std::isfinite(time)) {
        refused();
        return false;
    }
    PiValue v = value;
    constrain(v);
    auto it = findKey(_state.keys, time);
    const bool exists = it != _state.keys.end() && it->time == time;
    if (exists && PiValueUtil::equal(it->value, v)) {
        return true;
    }
    const auto index = it - _state.keys.begin();
    Edit edit(*this);
    if (exists) {
        _state.keys[index].value = std::move(v);
    } else {
        _state.keys.insert(_state.keys.begin() + index, PiAnimKey{time, std::move(v)});
    }
    edit.finish();
    return true;
}

bool PiInput::setInterpolation(PiInterpolation interpolation) {
    if (_state.locked || _state.keys.empty()) {
        return false;
    }
    if (std::all_of(_state.keys.begin(), _state.keys.end(),
                    [&](const PiAnimKey& k) { return k.interpolation == interpolation; })) {
        return true;
    }
    Edit edit(*this);
    for (PiAnimKey& k : _state.keys) {
        k.interpolation = interpolation;
    }
    edit.finish();
    return true;
}

bool PiInput::removeKey(double time) {
    if (_state.locked) {
        return false;
    }
    auto it = findKey(_state.keys, time);
    if (it == _state.keys.end() || it->time != time) {
        return false;
    }
    const auto index = it - _state.keys.begin();
    Edit edit(*this);
    if (_state.keys.size() == 1) {
        _state.constant = _state.keys.front().value;
    }
    _state.keys.erase(_state.keys.begin() + index);
    edit.finish();
    return true;
}

bool PiInput::setConstant(const PiValue& value) {
    if (_state.locked || !accepts(value)) {
        refused();
        return false;
    }
    PiValue v = value;
    constrain(v);
    if (_state.keys.empty() && PiValueUtil::equal(_state.constant, v)) {
        return true;
    }
    Edit edit(*this);
    _state.keys.clear();
    _state.constant = std::move(v);
    edit.finish();
    return true;
}

void PiInput::setLocked(bool locked) {
    if (_state.locked == locked) {
        return;
    }
    Edit edit(*this);
    _state.locked = locked;
    edit.finish();
}

bool PiInput::setState(const PiInputState& state) {
    auto fits = [this](const PiValue& v) {
        return PiValueUtil::getType(v) == _type && PiValueUtil::isFinite(v);
    };
    if (!fits(state.constant) || (!state.keys.empty() && !isAnimatable())) {
        return false;
    }
    for (std::size_t i = 0; i < state.keys.size(); ++i) {
        if (!fits(state.keys[i].value) || !std::isfinite(state.keys[i].time) ||
            (i > 0 && !(state.keys[i - 1].time < state.keys[i].time))) {
            return false;
        }
    }
    PiInputState s = state;
    constrain(s.constant);
    for (PiAnimKey& k : s.keys) {
        constrain(k.value);
    }
    if (s == _state) {
        return true;
    }
    Edit edit(*this);
    _state = std::move(s);
    edit.finish();
    return true;
}

void PiInput::restoreState(const PiInputState& state) {
    if (state == _state) {
        return;
    }
    _state = state;
    notifyChanged();
}

void PiInput::setPolicy(const RCShdPtr<const PiInputPolicy>& policy) {
    _policy = policy;
    _rangeDouble = dynamic_cast<const PiRangeInputPolicy<double>*>(policy.get());
    _rangeInt = dynamic_cast<const PiRangeInputPolicy<int>*>(policy.get());
}

PiCommandStack* PiInput::getCommandStack() const {
    return _node ? _node->getCommandStack() : nullptr;
}

bool PiInput::accepts(const PiValue& value) const {
    if (PiValueUtil::getType(value) != _type) {
        wrongType("value type == input type");
    }
    return PiValueUtil::isFinite(value) &&
           (!_node || _node->getController()->getValueRefusal(*this, value).empty());
}

LiString PiInput::getRefusal(const PiValue& value) const {
    if (_state.locked) {
        return "it is locked";
    }
    if (PiValueUtil::getType(value) != _type) {
        return LiString("it holds ") + PiValueUtil::getTypeName(_type) + " values";
    }
    if (!PiValueUtil::isFinite(value)) {
        return "the value is not a finite number";
    }
    return _node ? _node->getController()->getValueRefusal(*this, value) : LiString();
}

void PiInput::refused() {
    PiCommandStack* stack = getCommandStack();
    if (stack && stack->isStepOpen()) {
        stack->announceWhenClosed(*this);
    } else {
        announce();
    }
}

void PiInput::constrain(PiValue& value) const {
    if (_rangeDouble) {
        if (double* d = std::get_if<double>(&value)) {
            *d = _rangeDouble->clamp(*d);
        }
    } else if (_rangeInt) {
        if (int* i = std::get_if<int>(&value)) {
            *i = _rangeInt->clamp(*i);
        }
    }
}

void PiInput::notifyChanged() {
    ++_revision;
    if (_node) {
        _node->inputChanged(*this);
    }
    _valueChanged.call();
    if (_node) {
        _node->fireValueChanged(*this);
    }
}

void PiInput::wrongType(const char* expression, SourcePlace where) const {
    Assertions::fail(expression, where);
}

PiStructuredInput::PiStructuredInput(const LiString& name,
                                     const CoRgbColorTyped<float>& defaultValue)
    : PiInput(name, PiValue(defaultValue)) {}

const char* PiStructuredInput::getComponentName(int component) {
    static const char* const names[ComponentCount] = {"red", "green", "blue"};
    return component >= 0 && component < ComponentCount ? names[component] : "";
}
