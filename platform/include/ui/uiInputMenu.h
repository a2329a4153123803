#pragma once

#include <base/rcShdPtr.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piTimePath.h>
#include <ui/uiExport.h>
#include <ui/uiInputValueEditor.h>
#include <ui/uiMenu.h>

// Binds a menu to an integer input of a node: the menu selects the entry
// whose index is the input's value at the time path's time (none when the
// value has no entry) and follows the input's changes and the time's; a
// user's choice writes the entry's index, through the node's command stack,
// as one undo step ("Set <input name>", or the menu's "undoText" property)
// when the flag is Undoable. Binding again replaces the binding; a null
// input unbinds. The menu holds the input for as long as it is bound.
class TS_UI_API UiInputMenu {
public:
    using UndoableFlag = UiInputValueEditor::UndoableFlag;
    static constexpr UndoableFlag NotUndoable = UiInputValueEditor::NotUndoable;
    static constexpr UndoableFlag Undoable = UiInputValueEditor::Undoable;

    // A null menu throws ExNullPtr; an input that is not an integer throws
    // ExCastFailed naming it and its type.
    static void setInput(const RCShdPtr<UiMenu>& menu, const RCShdPtr<PiInput>& input,
                         const RCShdPtr<const PiTimePath>& timePath, UndoableFlag undoable);
};
