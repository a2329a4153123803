#pragma once

#include <base/rcShdPtr.h>
#include <ui/uiExport.h>

#include <QWidget>

class UiTrackball;

// The window-system widget of a trackball: a disc that the user drags with
// the left button. Panel descriptions name its class ("UiTrackballWidget",
// a widget promoted in the designer); its PiWidget is a UiTrackball.
class TS_UI_API UiTrackballWidget : public QWidget {
public:
    explicit UiTrackballWidget(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    RCShdPtr<UiTrackball> trackball();
};
