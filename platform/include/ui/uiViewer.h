#pragma once

#include <base/cbDispatcher.h>
#include <base/cbEmptyType.h>
#include <base/rcShdPtr.h>
#include <base/vwView.h>
#include <gfx/wsRecordingPainter.h>
#include <pluginAPI/piDisplayTransform.h>
#include <pluginAPI/piEventHandler.h>
#include <pluginAPI/piImage.h>
#include <pluginAPI/piViewRenderer.h>
#include <pluginAPI/piViewer.h>
#include <pluginAPI/tmTimeClient.h>
#include <ui/uiExport.h>
#include <ui/uiGrabHandler.h>
#include <ui/uiPixelReadout.h>
#include <ui/uiViewerDisplay.h>
#include <ui/uiViewerWipe.h>
#include <ui/uiWidget.h>
#include <ui/vpDrawArea.h>

#include <QImage>
#include <QWidget>

#include <memory>
#include <string>
#include <vector>

// The host's viewer: a widget that shows a node's image and hands the
// pointer and the keyboard to its current event handler. It is at once the
// PiViewer that plug-ins receive, a UiWidget (whose handler the viewer's
// hotkeys are registered on) and the VpDrawArea that the main window's
// widget lookup answers.
//
// Stages. A node whose controller offers viewer stages
// (PiViewerStageInterface) is shown in one stage at a time, the first at
// first; the viewer installs the stage's handler. Asked for a tool that its
// handler does not hold (PiViewer::offerTool), the viewer switches to the
// stage that owns it and makes it current there.
//
// Input. Pointer presses, moves and releases, key presses and releases, and
// the loss of the focus go to the handler as Ev events, in window
// coordinates; hotkeys arrive through the widget's handler and go to the
// handler too. What the handler leaves unused drives the view: the middle
// button pans (it is never offered to the handler), the wheel zooms about the
// pointer, and the viewer's own keys (UiViewerKeys: fit, 1:1, the wipe, the
// channels) do what they name. The left button near the wipe's line drags
// the line and is not offered to the handler either.
//
// Keys follow the pointer, as in every compositing application: the viewer
// takes the keyboard focus when the pointer comes over it, unless the focus
// is in a text field the user is typing into (its text changed and not yet
// committed), so that a hotkey pressed over the viewer reaches the viewer.
//
// The view is fitted to the image when a node or a plate is shown, and stays
// fitted as the viewer is resized until the user zooms or pans.
//
// Containment. Every call into the handler (events, drawing, the creation
// of a stage's handler) is contained: an exception is reported, the undo step
// it left open is closed, and the viewer carries on. The application's
// requests run after each event.
//
// Drawing. The viewer paints the image, then the handler's two drawing
// passes, recorded into a display list and painted over the image. The image
// is the node's: one of the views its controller renders
// (PiViewRenderInterface), at viewer resolution while the handler
// manipulates (a drag) and at full resolution otherwise; for a node without
// views, the plate (the image input of its PiImageModifier). It goes to the
// screen through the display transform the host installed, which changes
// nothing that picks or outputs read.
//
// The viewer is the current viewer of PiEventHandlingInterface when it is the
// first one made and whenever it takes the focus.
//
// Grabs. While a button is down over the viewer, the viewer holds the
// application's pointer grab, letting every event through as if it held
// none. Someone else taking the grab then (a panel's screen pick) would
// catch the release, so the handler is told the grab is lost: the drag under
// way ends there, its undo step closed.
class TS_UI_API UiViewer : public QWidget, public PiViewer, public UiWidget, public VpDrawArea {
public:
    explicit UiViewer(QWidget* parent = nullptr, const LiString& name = "viewer");
    ~UiViewer() override;

    // --- what is shown
    // Shows the node (an empty pointer: nothing) in its first stage.
    void setNode(const RCShdPtr<PiNode>& node);
    std::vector<std::string> getStages() const;
    const std::string& getStage() const { return _stage; }
    // Installs the stage's handler; false (reported) for a stage the node
    // does not offer or whose handler could not be made, which leaves the
    // viewer as it was.
    bool setStage(const std::string& stage);
    // Installs a handler of the caller's (nodes without stages, tests); the
    // stage becomes "".
    void setEventHandler(const RCShdPtr<PiEventHandler>& handler);
    // The node's views (empty for a node without); the view shown, which a
    // new node keeps when it offers it too, else it shows its default view.
    std::vector<std::string> getViews() const;
    const std::string& getViewMode() const { return _viewMode; }
    // False (reported) for a view the node does not offer; without a node,
    // the view the next node shows if it offers it.
    bool setViewMode(const std::string& view);
    // The renderer of the node's views; null for a node without.
    PiViewRenderer* getViewRenderer() const { return _renderer.get(); }
    // Not owned; null for the plain clamp. It must outlive the viewer's use.
    void setDisplayTransform(const PiDisplayTransform* transform);
    // The image shown now.
    PiImagePtr getImage() const;
    // The world rectangle the image covers: the node's plate (so that a
    // source that answers a reduced image, such as a render at viewer
    // resolution, is drawn over the plate), or the image itself for a node
    // without a plate. Empty when there is neither.
    GeRectangle<float> getImageExtent() const;

    // --- time
    TmTimeClient& getTime() { return _time; }
    void setFrame(double frame);
    // While frames run through the viewer (a scrub, playback), it shows the
    // node's views at viewer resolution, as during a drag; the full
    // resolution comes back when it is set off.
    void setInteractive(bool interactive);
    bool isInteractive() const { return _interactive; }

    // --- view
    VwView& getMutableView() { return _view; }
    // Fits the image into the viewer, with a margin of 16 pixels.
    void fitImage();
    // The view is the fit of the image (and follows the viewer's size).
    bool isFitted() const;
    // Zooms to `zoom` window pixels per plate pixel, keeping the plate point
    // under the window point where it is.
    void zoomTo(float zoom, const GePoint2<float>& about);
    // 1:1 about the pointer when it is over the viewer, else the centre.
    void zoomToActualPixels();

    // --- display aids (see UiViewerDisplay, UiViewerWipe)
    const UiViewerDisplay& getDisplay() const { return _display; }
    void setChannel(UiViewerDisplay::Channel channel);
    void setBackdrop(UiViewerDisplay::Backdrop backdrop,
                     const CoRgbaColorTyped<float>& colour = {0.0f, 0.0f, 0.0f, 1.0f});
    const UiViewerWipe& getWipe() const { return _wipe; }
    // False (reported) for a compare view the node does not offer.
    bool setWipe(bool on, float x, const std::string& view = "source");
    // Where the line goes when the wipe is turned on without a place: where
    // it was, or the middle of the image when that is not over the image.
    float getWipeStart() const;
    // The image of the wipe's compare view now; empty while the wipe is off.
    PiImagePtr getWipeImage() const;

    // What lies under a window point: the plate pixel, its RGBA and the
    // matte's value. The matte is read from a full-resolution render, not
    // while the handler manipulates (a drag would render it at every move).
    UiPixelReadout readPixel(const GePoint2<float>& window);
    // Whether the pointer is over the viewer now, and where (window).
    bool isPointerOver() const { return _pointerOver; }

    // Handlers called after every paint and every pointer move over the
    // viewer (what shows zoom, pointer and readout follows them).
    void addChangedCb(CbHandler<CbEmptyType>* handler) { _changed.addHandler(handler); }
    void removeChangedCb(CbHandler<CbEmptyType>* handler) { _changed.removeHandler(handler); }

    // --- drawing
    // The handler's drawing as the viewer would paint it now.
    const WsRecordingPainter& getDisplayList();
    // How many repaints were asked for (redraw and the viewer's own).
    int getRedrawCount() const { return _redraws; }

    // --- PiViewer
    const VwView& getView() const override { return _view; }
    void redraw() override;
    const TmTimeClient* getTimeClient() const override { return &_time; }
    RCShdPtr<PiNode> getNode() const override { return _node; }
    RCShdPtr<PiPath> getPath() const override { return _path; }
    PiCommandStack* getCommandStack() const override;
    RCShdPtr<PiEventHandler> getCurrentEventHandler() const override { return _handler; }
    GePoint2<float> mapFromGlobal(const GePoint2<float>& global) const override;
    using QWidget::mapFromGlobal;
    bool offerTool(const std::string& toolName) override;

    // --- VpDrawArea
    PiViewer& getViewer() override { return *this; }

    // --- UiWidget
    GePoint2<float> getPointerPosition() const override { return _pointer; }

    // Delivers an event to the handler as the widget does (contained, the
    // requests run after it); answers whether the handler used it.
    bool deliver(EvEvent& event);

protected:
    void handleEvent(EvEvent& event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    // Installs the handler; the current handler's listeners hear of it when
    // it changed or `announce` is set.
    void install(const RCShdPtr<PiEventHandler>& handler, const std::string& stage, bool announce);
    // Lets the handler go, telling nobody (a new one follows).
    void releaseHandler();
    bool pointerEvent(QMouseEvent* event);
    void record();
    void updateCursor();
    void takeFocusFromPointer();
    bool viewerKey(QKeyEvent* event);
    void paintImage(QPainter& painter, const QImage& image, const GeRectangle<float>& extent);
    void paintWipe(QPainter& painter, const GeRectangle<float>& extent);
    void notifyChanged();
    // The image converted for display, kept while the image and the display
    // stay the same.
    struct Shown {
        PiImagePtr image;
        QImage converted;
    };
    const QImage& displayImage(Shown& shown, const PiImagePtr& image);
    PiImagePtr getPlate() const;

    class PressGrab : public UiGrabHandler {
    public:
        explicit PressGrab(UiViewer& viewer);
        UiWidget* getProcessOrigin() const override { return &_viewer; }
        void callback(EvEvent& event) override;

    private:
        UiViewer& _viewer;
    };

    RCShdPtr<PiNode> _node;
    RCShdPtr<PiPath> _path;
    RCShdPtr<PiEventHandler> _handler;
    std::string _stage;
    TmTimeClient _time;
    VwView _view;
    std::unique_ptr<PiViewRenderer> _renderer;
    std::string _viewMode;
    const PiDisplayTransform* _transform = nullptr;
    bool _interactive = false;
    WsRecordingPainter _displayList;
    GePoint2<float> _pointer;
    bool _panning = false;
    QPointF _panFrom;
    bool _fitted = false;
    VwView _fit; // the view the last fit left
    bool _offering = false;
    int _redraws = 0;
    Shown _shown;
    UiViewerDisplay _display;
    UiViewerWipe _wipe;
    std::unique_ptr<PiViewRenderer> _wipeRenderer;
    Shown _wipeShown;
    std::unique_ptr<PiViewRenderer> _matteRenderer;
    bool _pointerOver = false;
    CbDispatcher<CbEmptyType> _changed;
    PressGrab _pressGrab{*this};
};
