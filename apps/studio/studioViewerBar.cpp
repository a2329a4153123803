#include "studioViewerBar.h"

#include "host/sessionArgs.h"

#include <pluginAPI/piNode.h>
#include <pluginAPI/piPath.h>
#include <tesseraCore/render/tsViewRender.h>
#include <ui/uiViewer.h>

#include <QColorDialog>
#include <QComboBox>
#include <QLabel>
#include <QToolButton>

#include <cmath>

namespace {

const char* const ChannelLabels[] = {"RGB", "Red", "Green", "Blue", "Alpha"};
const char* const BackdropLabels[] = {"Dark", "Checkerboard", "Colour..."};

QComboBox* combo(const char* name, QWidget* parent) {
    auto* box = new QComboBox(parent);
    box->setObjectName(name);
    box->setFocusPolicy(Qt::NoFocus);
    return box;
}

} // namespace

StudioViewerBar::StudioViewerBar(UiViewer& viewer, Perform perform, QWidget* parent)
    : QToolBar("Viewer Aids", parent)
    , _viewer(viewer)
    , _perform(std::move(perform))
    , _zoom(new QLabel(this))
    , _wipe(new QToolButton(this))
    , _wipeView(combo("wipeView", this))
    , _channel(combo("channel", this))
    , _backdrop(combo("backdrop", this))
    , _readout(new QLabel) {
    setObjectName("viewerAids");
    _zoom->setObjectName("zoomLevel");
    _zoom->setMinimumWidth(56);
    _zoom->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    _zoom->setToolTip("Zoom: window pixels per plate pixel");
    addWidget(_zoom);
    addSeparator();

    _wipe->setObjectName("wipe");
    _wipe->setText("Wipe");
    _wipe->setCheckable(true);
    _wipe->setToolTip("A/B wipe: the compare view left of the line, the current view right of "
                      "it; drag the line");
    addWidget(_wipe);
    for (const std::string& view : TsViewRender::getViewNames()) {
        _wipeView->addItem(QString::fromStdString(view));
    }
    _wipeView->setToolTip("The view the wipe compares with");
    addWidget(_wipeView);
    auto wipe = [this] {
        if (_refreshing) {
            return;
        }
        const std::string view = _wipeView->currentText().toStdString();
        _perform(_wipe->isChecked()
                     ? "wipe on " + SessionArgs::format(_viewer.getWipeStart()) + " with " + view
                     : std::string("wipe off"));
    };
    connect(_wipe, &QToolButton::toggled, this, wipe);
    connect(_wipeView, &QComboBox::activated, this, [this, wipe] {
        if (!_wipe->isChecked()) {
            _refreshing = true;
            _wipe->setChecked(true);
            _refreshing = false;
        }
        wipe();
    });
    addSeparator();

    for (const char* label : ChannelLabels) {
        _channel->addItem(label);
    }
    _channel->setToolTip("The channel shown (as grey), or all of them");
    addWidget(_channel);
    connect(_channel, &QComboBox::activated, this, [this](int index) {
        _perform("channel " +
                 UiViewerDisplay::getChannelName(static_cast<UiViewerDisplay::Channel>(index)));
    });

    for (const char* label : BackdropLabels) {
        _backdrop->addItem(label);
    }
    _backdrop->setToolTip("What shows through where the image is transparent");
    addWidget(_backdrop);
    connect(_backdrop, &QComboBox::activated, this, &StudioViewerBar::chooseBackdrop);

    _readout->setObjectName("pixelReadout");
    _readout->setMinimumWidth(420);
    _viewer.addChangedCb(&_changed);
    refresh();
}

StudioViewerBar::~StudioViewerBar() {
    _changed.reset();
    if (!_readout->parent()) {
        delete _readout;
    }
}

void StudioViewerBar::chooseBackdrop(int index) {
    if (index == 0) {
        _perform("backdrop none");
    } else if (index == 1) {
        _perform("backdrop checker");
    } else {
        const CoRgbaColorTyped<float>& c = _viewer.getDisplay().getBackdropColour();
        const QColor colour =
            QColorDialog::getColor(QColor::fromRgbF(c.r, c.g, c.b), this, "Backdrop Colour");
        if (colour.isValid()) {
            _perform("backdrop colour " + SessionArgs::format(colour.redF()) + " " +
                     SessionArgs::format(colour.greenF()) + " " +
                     SessionArgs::format(colour.blueF()));
        }
    }
    refresh();
}

void StudioViewerBar::refresh() {
    _refreshing = true;
    _zoom->setText(QString("%1%").arg(std::lround(100.0 * _viewer.getView().getZoom())));
    const UiViewerWipe& wipe = _viewer.getWipe();
    _wipe->setChecked(wipe.isOn());
    _wipeView->setCurrentText(QString::fromStdString(wipe.getView()));
    _channel->setCurrentIndex(static_cast<int>(_viewer.getDisplay().getChannel()));
    _backdrop->setCurrentIndex(static_cast<int>(_viewer.getDisplay().getBackdrop()));
    _readout->setText(
        _viewer.isPointerOver()
            ? QString::fromStdString(_viewer.readPixel(_viewer.getPointerPosition()).format())
            : QString());
    _refreshing = false;
}
