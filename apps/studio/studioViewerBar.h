#pragma once

#include <base/cbEmptyType.h>
#include <base/cbMethod.h>

#include <QToolBar>

#include <functional>
#include <string>

class QComboBox;
class QLabel;
class QToolButton;
class UiViewer;

// The viewer's aids, in a bar of their own beside the viewer's other bars:
// the zoom in percent, the A/B wipe and the view it compares with, the
// channel shown, and the backdrop under transparent parts; and, for the
// status line, the pixel readout under the pointer (the plate pixel, its
// RGBA and the matte's value). Each choice is a session-script line carried
// out by `perform` (so that it is recorded); the bar follows the viewer when
// its keys change the same things.
class StudioViewerBar : public QToolBar {
public:
    using Perform = std::function<bool(const std::string&)>;

    StudioViewerBar(UiViewer& viewer, Perform perform, QWidget* parent);
    ~StudioViewerBar() override;

    // The readout, for the status line (owned by the bar until placed).
    QLabel& getReadout() const { return *_readout; }
    // Shows the viewer's state now.
    void refresh();

private:
    void chooseBackdrop(int index);

    UiViewer& _viewer;
    Perform _perform;
    QLabel* _zoom;
    QToolButton* _wipe;
    QComboBox* _wipeView;
    QComboBox* _channel;
    QComboBox* _backdrop;
    QLabel* _readout;
    bool _refreshing = false;
    CbMethod<StudioViewerBar, CbEmptyType> _changed{this, &StudioViewerBar::refresh};
};
