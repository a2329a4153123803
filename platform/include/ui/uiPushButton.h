#pragma once

#include <ui/uiExport.h>
#include <ui/uiWidgetAdapter.h>

#include <memory>

class QAbstractButton;

// A push button of the toolkit: a plain PiWidget that fires Activated when
// the user clicks it.
class TS_UI_API UiPushButton : public UiWidgetAdapter {
public:
    explicit UiPushButton(QAbstractButton* button);
    ~UiPushButton() override;

    // A user's click with the given keyboard state (session scripts replay
    // clicks this way). Nothing happens on a disabled button.
    void click(const EvKeyboardState& keys = EvKeyboardState());

private:
    class Imp;
    friend class Imp;

    std::unique_ptr<Imp> _imp;
};
