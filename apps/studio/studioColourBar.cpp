#include "studioColourBar.h"

#include "host/hostSession.h"
#include "host/sessionArgs.h"
#include "host/sessionScript.h"

#include <tesseraCore/colour/tsColour.h>
#include <tesseraCore/setup/tsValueText.h>

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>

namespace {

const char* const Automatic = "Automatic";

QString text(const std::string& s) {
    return QString::fromStdString(s);
}

// Selects the item with the text, adding it when the list lacks it (a name
// from another configuration).
void choose(QComboBox* combo, const std::string& item) {
    int index = combo->findText(text(item));
    if (index < 0) {
        combo->addItem(text(item));
        index = combo->count() - 1;
    }
    combo->setCurrentIndex(index);
}

} // namespace

StudioColourBar::StudioColourBar(HostSession& session, Perform perform, QWidget* parent)
    : QToolBar("Colour", parent)
    , _session(session)
    , _perform(std::move(perform)) {
    setObjectName("colourBar");
    auto combo = [this](const char* label, const char* name) {
        addWidget(new QLabel(label, this));
        auto* c = new QComboBox(this);
        c->setObjectName(name);
        c->setSizeAdjustPolicy(QComboBox::AdjustToContents);
        addWidget(c);
        return c;
    };
    auto spin = [this](const char* label, const char* name, double low, double high) {
        addWidget(new QLabel(label, this));
        auto* s = new QDoubleSpinBox(this);
        s->setObjectName(name);
        s->setRange(low, high);
        s->setSingleStep(0.1);
        s->setDecimals(2);
        addWidget(s);
        return s;
    };
    _plate = combo(" Plate ", "plateColourSpace");
    addSeparator();
    _display = combo(" Display ", "display");
    _view = combo(" Display view ", "displayView");
    _exposure = spin(" Exposure ", "exposure", -20.0, 20.0);
    _gamma = spin(" Gamma ", "gamma", 0.1, 10.0);
    addSeparator();
    _export = combo(" Export in ", "exportColourSpace");

    connect(_plate, &QComboBox::activated, this, [this](int) {
        const std::string space = _plate->currentText().toStdString();
        change("plate colorspace " +
               (space == Automatic ? std::string("auto") : TsValueText::quoteWord(space)));
    });
    auto display = [this] {
        change("display " + TsValueText::quoteWord(_display->currentText().toStdString()) +
               " view " + TsValueText::quoteWord(_view->currentText().toStdString()));
    };
    connect(_display, &QComboBox::activated, this, [this, display](int) {
        fillViews();
        display();
    });
    connect(_view, &QComboBox::activated, this, [display](int) { display(); });
    connect(_exposure, &QDoubleSpinBox::valueChanged, this,
            [this](double v) { change("exposure " + SessionArgs::format(v)); });
    connect(_gamma, &QDoubleSpinBox::valueChanged, this,
            [this](double v) { change("gamma " + SessionArgs::format(v)); });
    refresh();
}

void StudioColourBar::change(const std::string& line) {
    if (!_refreshing) {
        _perform(line);
    }
}

void StudioColourBar::fillSpaces(QComboBox* combo) {
    combo->clear();
    combo->addItem(Automatic);
    for (const std::string& space : TsColour::getColourSpaces()) {
        combo->addItem(text(space));
    }
}

void StudioColourBar::fillViews() {
    const std::string display = _display->currentText().toStdString();
    _view->clear();
    for (const std::string& view : TsColour::getViews(display)) {
        _view->addItem(text(view));
    }
    choose(_view, TsColour::getDefaultView(display));
}

void StudioColourBar::refresh() {
    _refreshing = true;
    const std::string exportSpace = _export->currentText().toStdString();
    fillSpaces(_plate);
    fillSpaces(_export);
    const std::string plate = _session.getScene().getColourSpace(TsKeyerScene::Source::Plate);
    choose(_plate, plate.empty() ? Automatic : plate);
    choose(_export, exportSpace.empty() ? Automatic : exportSpace);

    const TsDisplayTransform& transform = _session.getDisplayTransform();
    _display->clear();
    for (const std::string& display : TsColour::getDisplays()) {
        _display->addItem(text(display));
    }
    choose(_display, transform.getDisplay());
    fillViews();
    choose(_view, transform.getView());
    _exposure->setValue(transform.getExposure());
    _gamma->setValue(transform.getGamma());
    _refreshing = false;
}

std::string StudioColourBar::exportSpaceWords() const {
    const std::string space = _export->currentText().toStdString();
    return space == Automatic || space.empty() ? std::string()
                                               : " colorspace " + TsValueText::quoteWord(space);
}
