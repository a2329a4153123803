#pragma once

#include <gfx/wsCursor.h>
#include <ui/uiExport.h>

#include <QCursor>

// The window system's cursor of a named host cursor (WsCursorRegistry): the
// standard shapes for the standard names, drawn droppers for "Pick" and
// "PickPlus", the arrow for a name it does not know.
class TS_UI_API UiCursorUtil {
public:
    static QCursor toQCursor(const WsCursor& cursor);
};
