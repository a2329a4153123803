#include <ui/uiInputValueEditor.h>

#include <base/rcExUtil.h>
#include <base/typeName.h>

RCShdPtr<UiValueEditor> UiInputValueEditor::getValueEditor(const RCShdPtr<PiContainer>& container,
                                                           const LiString& name) {
    if (!container) {
        RCExUtil::throwExNullPtr(typeNameOf<PiContainer>().c_str());
    }
    return container->findWidget<UiValueEditor>(name);
}

void UiInputValueEditor::setInput(const RCShdPtr<UiValueEditor>& editor,
                                  const RCShdPtr<PiInput>& input,
                                  const RCShdPtr<const PiTimePath>& timePath,
                                  UndoableFlag undoable) {
    if (!editor) {
        RCExUtil::throwExNullPtr(typeNameOf<UiValueEditor>().c_str());
    }
    editor->bindInput(input, timePath, undoable == Undoable);
}
