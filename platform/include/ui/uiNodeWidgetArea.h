#pragma once

#include <QWidget>
#include <ui/uiExport.h>

class UiNodeWidget;

// The window-system widget of a node-widget area: an empty widget that a
// node's panel is built into. Panel descriptions name its class
// ("UiNodeWidgetArea", a widget promoted in the designer); its PiWidget is a
// UiNodeWidget. Destroying it clears its content first, so that the
// controller goes before the widgets it is bound to.
class TS_UI_API UiNodeWidgetArea : public QWidget {
public:
    explicit UiNodeWidgetArea(QWidget* parent = nullptr);
    ~UiNodeWidgetArea() override;

    // The area's node widget (made on first use).
    UiNodeWidget& getNodeWidget();
};
