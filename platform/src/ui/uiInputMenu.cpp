#include <ui/uiInputMenu.h>

#include <base/rcExUtil.h>
#include <base/typeName.h>

void UiInputMenu::setInput(const RCShdPtr<UiMenu>& menu, const RCShdPtr<PiInput>& input,
                           const RCShdPtr<const PiTimePath>& timePath, UndoableFlag undoable) {
    if (!menu) {
        RCExUtil::throwExNullPtr(typeNameOf<UiMenu>().c_str());
    }
    menu->bindInput(input, timePath, undoable == Undoable);
}
