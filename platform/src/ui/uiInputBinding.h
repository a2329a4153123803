#pragma once

#include <base/cbEmptyType.h>
#include <base/cbMethod.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piInputValue.h>
#include <pluginAPI/piTimePath.h>
#include <resmgt/liString.h>

#include <functional>
#include <optional>

// The tie between a widget and a number input (double, int or bool) of a
// node, at the time of a time path: the widget shows the value and follows its
// changes and the time's; the widget's edits are written back, as one undo
// step each when the binding is undoable.
class UiInputBinding {
public:
    // The input types a widget edits.
    enum Types : unsigned { Int = 1, Double = 2, Bool = 4 };

    // `refresh` runs whenever the value shown must change (not at
    // construction: the caller shows the first value). An input of a type
    // that is not in `types` throws ExCastFailed naming `widgetType`.
    UiInputBinding(const RCShdPtr<PiInput>& input, const RCShdPtr<const PiTimePath>& timePath,
                   bool undoable, const LiString& undoText, const char* widgetType, unsigned types,
                   std::function<void()> refresh);
    UiInputBinding(const UiInputBinding&) = delete;
    UiInputBinding& operator=(const UiInputBinding&) = delete;
    ~UiInputBinding();

    const RCShdPtr<PiInput>& getInput() const { return _input; }
    bool isUndoable() const { return _undoable; }
    bool isInteger() const { return static_cast<bool>(_int); }
    // The value at the time path's time (a flag is 0 or 1).
    double getValue() const;
    // The input's range policy, when it has one.
    std::optional<std::pair<double, double>> getRange() const;
    // Writes the value at the time path's time; false when the input refused
    // it (locked, not finite). The refresh runs afterwards, so that the
    // widget shows what the input holds.
    bool write(double value);

private:
    void changed();

    RCShdPtr<PiInput> _input;
    RCShdPtr<PiInputValue<double>> _double;
    RCShdPtr<PiInputValue<int>> _int;
    RCShdPtr<PiInputValue<bool>> _bool;
    bool _undoable;
    LiString _undoText;
    std::function<void()> _refresh;
    CbMethod<UiInputBinding, CbEmptyType> _valueChanged{this, &UiInputBinding::changed};
    CbMethod<UiInputBinding, CbEmptyType> _timeChanged{this, &UiInputBinding::changed};
};
