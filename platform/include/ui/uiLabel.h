#pragma once

#include <pluginAPI/piLabel.h>
#include <ui/uiExport.h>
#include <ui/uiString.h>
#include <ui/uiWidgetAdapter.h>

#include <memory>

class QLabel;

// A label of the toolkit. Its text and font (getLabel) and the width of its
// canvas (getCanvas) are what a plug-in needs to fit a text to it
// (WsFontUtils::truncateAtTheEnd); Resized fires when its size changes.
class TS_UI_API UiLabel : public PiLabel, public UiWidgetAdapter {
public:
    explicit UiLabel(QLabel* label);
    ~UiLabel() override;

    LiString getText() const override;
    void setText(const LiString& text) override;

    // The text shown and the label's font (the application's font once the
    // label is gone).
    UiString getLabel() const;

    // Resizes the label to `width` pixels, as a user's change of the
    // panel's layout would (session scripts replay resizes this way):
    // Resized fires when the width changed, shown or not.
    void setWidth(int width);

private:
    class Imp;
    friend class Imp;

    QLabel* label() const;

    std::unique_ptr<Imp> _imp;
};
