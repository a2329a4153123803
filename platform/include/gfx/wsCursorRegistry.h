#pragma once

#include <base/rcShdPtr.h>
#include <gfx/gfxExport.h>
#include <gfx/wsCursor.h>
#include <resmgt/liString.h>

#include <map>
#include <vector>

// The host's named cursors, one shared object per name. The names below are
// always there; a plug-in may register more. Asking for an unknown name
// answers the default cursor and reports the name once.
class TS_GFX_API WsCursorRegistry {
public:
    static const LiString Default;  // the window system's arrow
    static const LiString Pick;     // picking colours from the image (a dropper)
    static const LiString PickPlus; // picking colours that add to a sample
    static const LiString Cross;    // precise placement
    static const LiString Move;     // dragging something around
    static const LiString SizeHor;  // dragging a value left and right
    static const LiString Hand;     // grabbing the view to pan it

    static WsCursorRegistry& getInstance();

    RCShdPtr<WsCursor> getCursor(const LiString& name) const;
    bool hasCursor(const LiString& name) const;
    // Adds (or replaces) a cursor under its name.
    void registerCursor(const RCShdPtr<WsCursor>& cursor);
    std::vector<LiString> getNames() const;

private:
    WsCursorRegistry();

    std::map<LiString, RCShdPtr<WsCursor>> _cursors;
    mutable std::vector<LiString> _reported;
};
