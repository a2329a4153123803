#pragma once

#include "host/colourSpacePicture.h"

#include <base/cbEmptyType.h>
#include <base/cbMethod.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/piNodeEvent.h>

#include <QDockWidget>
#include <QImage>
#include <QPoint>
#include <QWidget>

#include <functional>

class HostSession;
class PiCommandStack;
class PiNodeController;
class QLabel;
class UiViewer;

// The picture of the Colour Space panel (ColourSpacePicture), with the mouse
// of a 3D application: the left button orbits, the right or middle button (or
// Shift with the left) pans, the wheel zooms. Hovering a point marks it and
// tells `hovered`; clicking one tells `clicked`. It follows the session when
// told the key may have changed (keyChanged), once the events queued before
// have run.
class ColourSpaceView : public QWidget {
public:
    ColourSpaceView(HostSession& session, QWidget* parent);

    ColourSpacePicture& getPicture() { return _picture; }
    // Brings the picture up to date with the session now.
    void refresh();
    void keyChanged();
    // A preset view: along softness axis 0, 1 or 2 (towards the viewer).
    void lookAlong(int axis);
    void fit();

    std::function<void(int point)> hovered;
    std::function<void(int point)> clicked;

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    int pointAt(const QPointF& at) const;

    HostSession& _session;
    ColourSpacePicture _picture;
    QImage _image;
    bool _pending = false;
    const void* _framedPlate = nullptr;
    QPointF _last;
    Qt::MouseButtons _buttons;
    bool _panning = false;
    bool _moved = false;
};

// The "Colour Space" dock of tessera-studio: the view of the shown node's key
// in colour space (docs/colour-space.md) with its controls (preset views, the
// point budget and size, what the points are coloured by, the slice). It
// follows every change of the key (a bar, a trackball, a sample, undo and
// redo, another node shown). A point clicked in it is marked in the viewer;
// the colour under the pointer in the viewer is marked in it.
class ColourSpaceDock : public QDockWidget {
public:
    ColourSpaceDock(HostSession& session, QWidget* parent);
    ~ColourSpaceDock() override;

    ColourSpaceView& getView() const { return *_view; }
    // The plate pixel marked in the viewer; (-1, -1) for none.
    QPoint getMarkedPixel() const;
    // What the pointer is over, as the panel's line says it.
    QString getHoverText() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class ViewerMark;

    void keyChanged();
    void valueChanged(const PiNodeEvent&) { keyChanged(); }
    void attach();
    void viewerHover(const QPointF& window);

    HostSession& _session;
    ColourSpaceView* _view = nullptr;
    QLabel* _line = nullptr;
    ViewerMark* _mark = nullptr;
    PiCommandStack* _stack = nullptr;
    UiViewer* _viewer = nullptr;
    const PiNodeController* _controller = nullptr; // compared, never used
    CbMethod<ColourSpaceDock, CbEmptyType> _historyChanged{this, &ColourSpaceDock::keyChanged};
    CbMethod<ColourSpaceDock, const PiNodeEvent> _valueChanged{this,
                                                               &ColourSpaceDock::valueChanged};
};
