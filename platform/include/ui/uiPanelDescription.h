#pragma once

#include <resmgt/liString.h>
#include <ui/uiExport.h>

class QWidget;

// Panel descriptions: Qt Designer .ui files, found through LiResourcePath
// (they are installed next to the module). Widgets are found in the built
// panel by their object names. Besides the designer's own widgets a
// description may use the toolkit's promoted widgets UiNodeWidgetArea and
// UiTrackballWidget.
class TS_UI_API UiPanelDescription {
public:
    // Builds the widgets of the description under `parent` and answers the
    // top widget; null when the file cannot be found, read or parsed, with
    // `error` telling the file and the reason (nothing is reported here,
    // nothing is built). The file must be a regular file within
    // ZnLimits::ResourceBytes, its elements nested at most
    // ZnLimits::PanelDepth deep and its widgets at most
    // ZnLimits::PanelWidgets, or it is refused (with the line) before the
    // designer-file loader sees it.
    static QWidget* build(const LiString& name, QWidget* parent, LiString& error);
};
