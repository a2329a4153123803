#pragma once

#include <gfx/wsCursor.h>

#include <QCursor>

// The window system's cursor of a named host cursor (WsCursorRegistry): the
// standard shapes for the standard names, drawn droppers for "Pick" and
// "PickPlus", the arrow for a name it does not know.
class UiCursorUtil {
public:
    static QCursor toQCursor(const WsCursor& cursor);
};
