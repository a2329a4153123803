#include "uiInputBinding.h"

#include <ui/uiWidgetAdapter.h>

#include <base/rcExUtil.h>
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piInputPolicy.h>
#include <pluginAPI/piValue.h>

#include <cmath>

UiInputBinding::UiInputBinding(const RCShdPtr<PiInput>& input,
                               const RCShdPtr<const PiTimePath>& timePath, bool undoable,
                               const LiString& undoText, const char* widgetType, unsigned types,
                               std::function<void()> refresh)
    : _input(input)
    , _undoable(undoable)
    , _undoText(undoText.empty() ? "Set " + input->getName() : undoText)
    , _refresh(std::move(refresh)) {
    const PiValueType type = input->getType();
    if (type == PiValueType::Int && (types & Int)) {
        _int = PiInputValue<int>::createTyped(input, timePath);
        _int->addValueChangedCb(&_valueChanged);
        _int->addUpdateCb(&_timeChanged);
    } else if (type == PiValueType::Double && (types & Double)) {
        _double = PiInputValue<double>::createTyped(input, timePath);
        _double->addValueChangedCb(&_valueChanged);
        _double->addUpdateCb(&_timeChanged);
    } else if (type == PiValueType::Bool && (types & Bool)) {
        _bool = PiInputValue<bool>::createTyped(input, timePath);
        _bool->addValueChangedCb(&_valueChanged);
        _bool->addUpdateCb(&_timeChanged);
    } else {
        RCExUtil::throwExCastFailed((LiString("PiInput '") + input->getName() + "' of " +
                                     PiValueUtil::getTypeName(input->getType()))
                                        .c_str(),
                                    (LiString("an input that a ") + widgetType + " edits").c_str());
    }
}

UiInputBinding::~UiInputBinding() = default;

double UiInputBinding::getValue() const {
    if (_int) {
        return static_cast<double>(_int->getValue());
    }
    if (_bool) {
        return _bool->getValue() ? 1.0 : 0.0;
    }
    return _double->getValue();
}

std::optional<std::pair<double, double>> UiInputBinding::getRange() const {
    const PiInputPolicy* policy = _input->getPolicy().get();
    if (const auto* d = dynamic_cast<const PiRangeInputPolicy<double>*>(policy)) {
        return std::make_pair(d->getMin(), d->getMax());
    }
    if (const auto* i = dynamic_cast<const PiRangeInputPolicy<int>*>(policy)) {
        return std::make_pair(static_cast<double>(i->getMin()), static_cast<double>(i->getMax()));
    }
    return std::nullopt;
}

bool UiInputBinding::write(double value) {
    // The input's handlers may close the widget's panel: the widget, in use,
    // then goes later.
    const UiWidgetAdapter::FiringScope firing;
    PiCommandStack* stack = _input->getCommandStack();
    bool written = false;
    {
        std::optional<PiUndoGuard> guard;
        if (_undoable && stack) {
            guard.emplace(*stack, _undoText);
        }
        if (_int) {
            written = std::isfinite(value) && _int->setValue(static_cast<int>(std::lround(value)));
        } else if (_bool) {
            written = _bool->setValue(value != 0.0);
        } else {
            written = _double->setValue(value);
        }
    }
    // Show what the input holds now: the value refused, or clamped into
    // the input's range (which may leave the input as it was).
    _refresh();
    return written;
}

void UiInputBinding::changed() {
    bool stale = false;
    if (_int && (stale = _int->needsUpdate())) {
        _int->update();
    } else if (_bool && (stale = _bool->needsUpdate())) {
        _bool->update();
    } else if (_double && (stale = _double->needsUpdate())) {
        _double->update();
    }
    if (stale) {
        _refresh();
    }
}
