#pragma once

#include <base/rcShdPtr.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piTimePath.h>
#include <ui/uiExport.h>
#include <ui/uiFieldKeys.h>
#include <ui/uiWidgetAdapter.h>

#include <QPointer>

#include <memory>

class QAbstractSpinBox;
class UiInputBinding;

// A number field of the toolkit: a spin box of decimals or of integers.
// A user's edit (committed: arrows, Return, leaving the field) fires
// Activated; a bound input (UiInputValueEditor::setInput) takes the value.
class TS_UI_API UiValueEditor : public UiWidgetAdapter {
public:
    explicit UiValueEditor(QAbstractSpinBox* spin);
    ~UiValueEditor() override;

    // Whether the window-system widget is a number field this class edits.
    static bool accepts(const QAbstractSpinBox* spin);

    double getValue() const;
    // Shows a value (clamped to the field's range). Without notification no
    // callback fires and a bound input is left as it is.
    void setValue(double value, bool notify = false);
    double getMinimum() const;
    double getMaximum() const;
    bool isInteger() const;

    // A user's edit with the given keyboard state (session scripts replay
    // edits this way). Nothing happens on a disabled field.
    void enter(double value, const EvKeyboardState& keys = EvKeyboardState());

    // The bound input; empty when none. See UiInputValueEditor.
    RCShdPtr<PiInput> getInput() const;
    void bindInput(const RCShdPtr<PiInput>& input, const RCShdPtr<const PiTimePath>& timePath,
                   bool undoable);
    // The key actions of a bound animatable input (owned by the field's
    // window-system widget); null otherwise.
    UiFieldKeys* getKeys() const;

private:
    class Imp;
    friend class Imp;

    QAbstractSpinBox* spin() const;
    void show(double value);
    void showInput();
    void edited(double value, const EvKeyboardState& keys);

    std::unique_ptr<Imp> _imp;
    std::unique_ptr<UiInputBinding> _binding;
    QPointer<UiFieldKeys> _keys;
};
