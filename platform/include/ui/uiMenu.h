#pragma once

#include <base/rcShdPtr.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piMenu.h>
#include <pluginAPI/piTimePath.h>
#include <ui/uiExport.h>
#include <ui/uiWidgetAdapter.h>

#include <memory>

class QComboBox;
class UiInputBinding;

// A menu of the toolkit: a combo box. See PiMenu. A menu can be bound to an
// integer input (UiInputMenu::setInput): the selected entry is the input's
// value.
class TS_UI_API UiMenu : public PiMenu, public UiWidgetAdapter {
public:
    explicit UiMenu(QComboBox* combo);
    ~UiMenu() override;

    int getItemCount() const override;
    LiString getItemText(int index) const override;
    int getSelection() const override;
    void setSelection(int index, bool notify = false) override;
    LiString getSelectedText() const override;
    void removeAllItems() override;
    void appendItem(const LiString& text) override;

    // A user's choice of an entry with the given keyboard state (session
    // scripts replay choices this way): the entry becomes selected, a bound
    // input takes its index, and Activated fires. Nothing happens on a
    // disabled menu or for an index out of range.
    void choose(int index, const EvKeyboardState& keys = EvKeyboardState());

    // The bound input; empty when none. See UiInputMenu.
    RCShdPtr<PiInput> getInput() const;
    void bindInput(const RCShdPtr<PiInput>& input, const RCShdPtr<const PiTimePath>& timePath,
                   bool undoable);

private:
    class Imp;
    friend class Imp;

    QComboBox* combo() const;
    void chosen(int index, const EvKeyboardState& keys);
    void showInput();

    std::unique_ptr<Imp> _imp;
    std::unique_ptr<UiInputBinding> _binding;
};
