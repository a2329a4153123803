#pragma once

#include <base/gePoint2.h>
#include <ui/uiExport.h>

class QWidget;
class UiWidget;

// The application's main window as plug-ins see it.
class TS_UI_API UiMainWindow {
public:
    explicit UiMainWindow(QWidget* window);
    UiMainWindow(const UiMainWindow&) = delete;
    UiMainWindow& operator=(const UiMainWindow&) = delete;
    virtual ~UiMainWindow();

    // The widget under the screen position: the UiWidget of the innermost
    // widget of this window there (or of its nearest ancestor that has one);
    // null outside the window or over no UiWidget. Over a viewer this is its
    // drawing area (VpDrawArea).
    virtual UiWidget* getWidgetAt(const GePoint2<float>& global) const;

    QWidget* getQWidget() const { return _window; }

private:
    QWidget* _window;
};
