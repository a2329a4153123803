#pragma once

#include <base/rcShdPtr.h>
#include <pluginAPI/piContainer.h>
#include <pluginAPI/piInput.h>
#include <pluginAPI/piTimePath.h>
#include <resmgt/liString.h>
#include <ui/uiExport.h>
#include <ui/uiValueEditor.h>

// Binds value editors (number fields) to number inputs of a node: the field
// shows the input's value at the time path's time (and takes the input's
// range when it has a range policy), follows the input's changes and the
// time's, and writes the user's edits through the node's command stack, as
// one undo step per edit ("Set <input name>", or the field's "undoText"
// property) when the flag is Undoable. NotUndoable writes plainly: the edit
// joins a step already open, or the command stack records it under the
// input's name. Binding again replaces the binding; a null input unbinds.
// The field holds the input for as long as it is bound, and a field whose
// window-system widget is gone stays safe to bind and to drop.
class TS_UI_API UiInputValueEditor {
public:
    enum UndoableFlag : int { NotUndoable = 0, Undoable = 1 };

    // The value editor named `name` in the container: empty when there is
    // none; ExCastFailed, naming the widget and both types, when the widget
    // is of another kind. A null container throws ExNullPtr.
    static RCShdPtr<UiValueEditor> getValueEditor(const RCShdPtr<PiContainer>& container,
                                                  const LiString& name);

    // A null editor throws ExNullPtr; an input that is neither a double nor
    // an integer throws ExCastFailed naming it and its type.
    static void setInput(const RCShdPtr<UiValueEditor>& editor, const RCShdPtr<PiInput>& input,
                         const RCShdPtr<const PiTimePath>& timePath, UndoableFlag undoable);
};
