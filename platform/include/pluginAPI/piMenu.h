#pragma once

#include <pluginAPI/piWidget.h>
#include <pluginAPI/pluginAPIExport.h>
#include <resmgt/liString.h>

// A menu of text entries with one selected entry (a combo box). A user's
// choice fires Activated (even when the entry chosen was already selected).
class TS_PLUGIN_API PiMenu : public virtual PiWidget {
public:
    ~PiMenu() override;

    virtual int getItemCount() const = 0;
    // "" for an index out of range.
    virtual LiString getItemText(int index) const = 0;
    // The selected entry's index, or -1 when none is.
    virtual int getSelection() const = 0;
    // Selects an entry (-1: none; an index out of range selects none).
    // Without notification (the default) no callback fires; with
    // notification the selection counts as the user's choice.
    virtual void setSelection(int index, bool notify = false) = 0;
    // The text of the selected entry; "" when none is selected.
    virtual LiString getSelectedText() const = 0;
    // Both fire nothing. Removing the entries leaves none selected; the first
    // entry appended to an empty menu becomes selected.
    virtual void removeAllItems() = 0;
    virtual void appendItem(const LiString& text) = 0;
};
