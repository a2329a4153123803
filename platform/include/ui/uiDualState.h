#pragma once

#include <base/rcShdPtr.h>
#include <pluginAPI/piDualState.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piTimePath.h>
#include <ui/uiExport.h>
#include <ui/uiWidgetAdapter.h>

#include <memory>

class QAbstractButton;
class UiInputBinding;

// A toggle of the toolkit: a checkable button or a check box. See
// PiDualState for what a press does. A toggle can be bound to a flag input
// (bindInput): it shows the input's value at the time path's time and
// follows it, and a user's change of state writes it (one undo step
// "Set <input name>", or the toggle's "undoText" property, when undoable).
class TS_UI_API UiDualState : public PiDualState, public UiWidgetAdapter {
public:
    explicit UiDualState(QAbstractButton* button);
    ~UiDualState() override;

    bool getState() const override;
    void setState(bool on, bool notify = false) override;

    // A user's click with the given keyboard state: what a press and a
    // release of the pointer on the toggle do (session scripts replay
    // clicks this way). Nothing happens to a disabled toggle.
    void click(const EvKeyboardState& keys = EvKeyboardState());

    // The bound input; empty when none. Binding again replaces the binding;
    // a null input unbinds; an input that is not a flag throws ExCastFailed.
    RCShdPtr<PiInput> getInput() const;
    void bindInput(const RCShdPtr<PiInput>& input, const RCShdPtr<const PiTimePath>& timePath,
                   bool undoable);

private:
    class Imp;
    friend class Imp;

    QAbstractButton* button() const;
    void showInput();

    std::unique_ptr<Imp> _imp;
    std::unique_ptr<UiInputBinding> _binding;
};
