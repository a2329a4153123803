// tessera-studio's window, driven with synthetic window-system events
// (offscreen): what it records replays in tessera-run to the same setup; its
// status line reports without closing anything; a screenshot of it after a
// session shows the viewer, the panels and the history where they belong.
#include "studioScene.h"

#include "host/sessionInterpreter.h"
#include "host/sessionRecorder.h"

#include <OpenImageIO/imageio.h>

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QListWidget>

#include <set>

namespace {

TEST_F(StudioScene, ARecordedSessionReplaysHeadlessToTheSameSetup) {
    ASSERT_TRUE(studio->perform("plate demo 320 180"));
    ASSERT_TRUE(studio->perform("keyer variant 1 nodes 2"));

    // The viewer: a drag, a hover, keys, a wheel zoom, more pointer work.
    mouse(&viewer(), QEvent::MouseMove, at(30, 40));
    mouse(&viewer(), QEvent::MouseMove, at(31, 41));
    mouse(&viewer(), QEvent::MouseButtonPress, at(20, 170), Qt::LeftButton, Qt::ShiftModifier,
          Qt::LeftButton);
    mouse(&viewer(), QEvent::MouseMove, at(24, 166), Qt::NoButton, Qt::ShiftModifier,
          Qt::LeftButton);
    mouse(&viewer(), QEvent::MouseButtonRelease, at(24, 166), Qt::LeftButton, Qt::NoModifier);
    key(&viewer(), Qt::Key_Escape);
    QWheelEvent wheel(at(160, 90), viewer().mapToGlobal(at(160, 90)), QPoint(), QPoint(0, 120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&viewer(), &wheel);
    click(&viewer(), at(100, 60));

    // The tools: the hotkey of the sample-matte tool typed in the viewer, a
    // sample on the subject's edge, its top bar dragged, the column
    // dismissed.
    key(&viewer(), Qt::Key_M, Qt::NoModifier, "m");
    EXPECT_EQ(session().getTool(), "Sample Matte");
    click(&viewer(), at(178, 120));
    mouse(&viewer(), QEvent::MouseButtonPress, at(178, 120), Qt::LeftButton, Qt::NoModifier,
          Qt::LeftButton);
    for (int dx = 3; dx <= 30; dx += 3) {
        mouse(&viewer(), QEvent::MouseMove, at(178 + dx, 121), Qt::NoButton, Qt::NoModifier,
              Qt::LeftButton);
    }
    mouse(&viewer(), QEvent::MouseButtonRelease, at(208, 121), Qt::LeftButton);
    EXPECT_EQ(session().getCommandStack().getUndoName(), "Set Matte Parameter");
    key(&viewer(), Qt::Key_Escape);

    // The main panel's slot toggle, and a key colour picked through the
    // matte panel's toggle.
    auto* slot2 = widget<QAbstractButton>("main", "nodeSelect1");
    ASSERT_TRUE(slot2);
    click(slot2, slot2->rect().center());
    EXPECT_EQ(session().getShownNode()->getName(), "keyer2");
    auto* pick = widget<QAbstractButton>("matte", "keyColor2Toggle");
    ASSERT_TRUE(pick);
    click(pick, pick->rect().center());
    click(&viewer(), at(300, 170));
    EXPECT_EQ(session().getCommandStack().getUndoName(), "Pick Key Colour");
    ASSERT_TRUE(studio->perform("select keyer1"));

    // The panels, by the window system's own events.
    auto* degrain = widget<QAbstractButton>("degrain", "degrainOn");
    ASSERT_TRUE(degrain);
    click(degrain, degrain->rect().center());
    EXPECT_TRUE(session().getShownNode()->getDegrainInput()->getTypedValue<bool>(0.0));

    auto* overall = widget<QAbstractSpinBox>("other", "overallField");
    ASSERT_TRUE(overall);
    overall->setFocus();
    key(overall, Qt::Key_A, Qt::ControlModifier);
    for (const char c : std::string("0.3")) {
        key(overall, c == '.' ? Qt::Key_Period : Qt::Key_0 + (c - '0'), Qt::NoModifier,
            QString(QChar(c)));
    }
    key(overall, Qt::Key_Return);
    EXPECT_NEAR(session()
                    .getShownNode()
                    ->getMatteParamInput(TsMgTypes::Overall)
                    ->getTypedValue<double>(0.0),
                0.3, 1e-9);

    auto* sample = widget<QComboBox>("spill", "sampleMenu");
    ASSERT_TRUE(sample);
    sample->setFocus();
    key(sample, Qt::Key_Down);

    // The studio's own bars and lists.
    ASSERT_TRUE(studio->perform("frame 4"));
    ASSERT_TRUE(studio->perform("set spill.range 0.25"));
    QListWidget& nodes = studio->getNodes();
    ASSERT_EQ(nodes.count(), 2);
    click(nodes.viewport(), nodes.visualItemRect(nodes.item(1)).center());
    EXPECT_EQ(session().getShownNode()->getName(), "keyer2");
    ASSERT_TRUE(studio->perform("set keyColor1 0.1 0.5 0.1"));
    // Back one step in the history by clicking it.
    QListWidget& history = studio->getHistory();
    const int steps = session().getCommandStack().getStepCount();
    ASSERT_EQ(history.count(), steps + 1);
    click(history.viewport(), history.visualItemRect(history.item(steps - 1)).center());
    EXPECT_EQ(session().getCommandStack().getUndoCount(), steps - 1);
    settle();

    // What the studio ends with...
    std::string error;
    ASSERT_TRUE(session().saveSetup((dir / "studio.tessera").string(), error)) << error;
    // ... and what tessera-run makes of the recording.
    const std::string recording = studio->getRecorder().getText();
    std::ofstream(dir / "recorded.tss")
        << recording << "save " << (dir / "replayed.tessera").string() << "\n"
        << "expect undo count == " << session().getCommandStack().getUndoCount() << "\n"
        << "expect redo count == " << session().getCommandStack().getRedoCount() << "\n"
        << "expect node == keyer2\nexpect frame == 4\n";
    std::string out;
    ASSERT_EQ(replay(dir / "recorded.tss", out), 0) << out << "\n" << recording;
    EXPECT_EQ(readFile(dir / "replayed.tessera"), readFile(dir / "studio.tessera")) << recording;

    // The recording reads as a session: the view, the gestures and the
    // widgets by name.
    EXPECT_NE(recording.find("\nwindow "), std::string::npos) << recording;
    EXPECT_NE(recording.find("\nzoom "), std::string::npos) << recording;
    EXPECT_NE(recording.find("\npress 20 170 shift\n"), std::string::npos) << recording;
    EXPECT_NE(recording.find("\nkey Escape\n"), std::string::npos) << recording;
    EXPECT_NE(recording.find("\nhotkey \"Sample Matte\"\n"), std::string::npos) << recording;
    EXPECT_NE(recording.find("\nwidget main nodeSelect1 toggle\n"), std::string::npos) << recording;
    EXPECT_NE(recording.find("\nwidget matte keyColor2Toggle toggle\n"), std::string::npos)
        << recording;
    EXPECT_NE(recording.find("\nwidget degrain degrainOn toggle\n"), std::string::npos)
        << recording;
    EXPECT_NE(recording.find("\nwidget other overallField set 0.3\n"), std::string::npos)
        << recording;
    EXPECT_NE(recording.find("\nwidget spill sampleMenu select \"Adjust Blend\"\n"),
              std::string::npos)
        << recording;
    EXPECT_NE(recording.find("\nselect keyer2\n"), std::string::npos) << recording;
    // Of the two hover moves only the last was kept.
    EXPECT_EQ(recording.find("move 30 40"), std::string::npos) << recording;
    EXPECT_NE(recording.find("move 31 41"), std::string::npos) << recording;
}

// The colour bar's choices are session lines: recorded, and replayed to the
// same state; exports are written in the space it names.
TEST_F(StudioScene, TheColourBarsChoicesAreRecordedAndReplayed) {
    const std::string plate = (dir / "plate.exr").string();
    ASSERT_TRUE(studio->perform("plate demo 128 72"));
    ASSERT_TRUE(studio->exportOutput("source", plate));
    ASSERT_TRUE(studio->openPlate(plate));
    auto choose = [&](const char* name, const char* item) {
        auto* combo = studio->findChild<QComboBox*>(name);
        ASSERT_TRUE(combo) << name;
        combo->setCurrentIndex(combo->findText(item));
        ASSERT_GE(combo->currentIndex(), 0) << item;
        emit combo->activated(combo->currentIndex());
    };
    choose("plateColourSpace", "ACEScg");
    choose("displayView", "Raw");
    choose("exportColourSpace", "ACES2065-1");
    studio->findChild<QDoubleSpinBox*>("exposure")->setValue(1.5);
    const std::string comp = (dir / "comp.exr").string();
    ASSERT_TRUE(studio->exportOutput("comp", comp));
    auto in = OIIO::ImageInput::open(comp);
    ASSERT_TRUE(in);
    EXPECT_EQ(in->spec().get_string_attribute("colorSpace"), "ACES2065-1");

    const std::string recording = studio->getRecorder().getText();
    for (const char* line : {"\nplate colorspace ACEScg\n", "\ndisplay sRGB view Raw\n",
                             "\nexposure 1.5\n", " colorspace ACES2065-1\n"}) {
        EXPECT_NE(recording.find(line), std::string::npos) << line << "\n" << recording;
    }
    std::ofstream(dir / "recorded.tss")
        << recording << "expect colorspace plate == ACEScg\nexpect display == sRGB view Raw\n"
        << "expect exposure == 1.5\nexpect undo == Plate Colour Space\n";
    std::string out;
    EXPECT_EQ(replay(dir / "recorded.tss", out), 0) << out << "\n" << recording;
}

TEST_F(StudioScene, TheStatusLineReportsABadFileAndNothingCloses) {
    ASSERT_TRUE(studio->perform("plate demo 128 72"));
    EXPECT_FALSE(studio->openPlate((dir / "missing.exr").string()));
    EXPECT_NE(studio->getStatusText().toStdString().find("cannot read plate"), std::string::npos)
        << studio->getStatusText().toStdString();
    EXPECT_TRUE(studio->isVisible());
    EXPECT_EQ(session().getPlateName(), "demo");
    // The failed line is not part of the recording.
    EXPECT_EQ(studio->getRecorder().getText().find("missing.exr"), std::string::npos);
    EXPECT_FALSE(studio->perform("viewer colour"));
    EXPECT_TRUE(studio->perform("frame 2"));
}

TEST_F(StudioScene, AScreenshotShowsTheKeyedPlateInTheViewerAndThePanels) {
    ASSERT_TRUE(studio->perform("plate demo 320 180"));
    ASSERT_TRUE(studio->perform("background demo"));
    ASSERT_TRUE(studio->perform("set keyColor1 0.075 0.405 0.108"));
    ASSERT_TRUE(studio->perform("view composite"));
    settle();
    const QImage shot = studio->grab().toImage();
    ASSERT_EQ(shot.size(), studio->size() * studio->devicePixelRatio());

    // The viewer: the plate's extent is drawn, the rest is the viewer's
    // background; the keyed screen shows the background scene, not green.
    const QPoint origin = viewer().mapTo(studio.get(), QPoint(0, 0));
    const QColor empty(38, 38, 40);
    auto pixel = [&](double x, double y) { return shot.pixelColor(origin + at(x, y).toPoint()); };
    EXPECT_EQ(shot.pixelColor(origin + QPoint(2, 2)), empty);
    for (const auto& [x, y] : {std::pair{10.0, 170.0}, {300.0, 160.0}, {20.0, 100.0}}) {
        const QColor c = pixel(x, y);
        EXPECT_NE(c, empty);
        EXPECT_FALSE(c.green() > c.red() + 60 && c.green() > c.blue() + 60)
            << x << "," << y << " still shows the green screen";
    }
    // The subject's face is opaque: as in the plate.
    const QColor face = pixel(160, 110);
    EXPECT_GT(face.red(), face.blue());

    // The panels: each stage panel is laid out inside the main panel, and
    // each shows more than one colour (its widgets).
    for (const char* name : {"matte", "degrain", "spill", "other"}) {
        const RCShdPtr<PiContainer> panel = session().getPanel(name);
        ASSERT_TRUE(panel) << name;
        auto* adapter = dynamic_cast<UiWidgetAdapter*>(panel.get());
        QWidget* w = adapter->getLiveWidget();
        ASSERT_TRUE(w && w->isVisible()) << name;
        const QRect r(w->mapTo(studio.get(), QPoint(0, 0)), w->size());
        const QRect visible = r.intersected(studio->rect());
        if (visible.isEmpty()) {
            continue; // scrolled out of the dock
        }
        std::set<QRgb> colours;
        for (int y = visible.top(); y < visible.bottom(); y += 3) {
            for (int x = visible.left(); x < visible.right(); x += 3) {
                colours.insert(shot.pixel(x, y));
            }
        }
        EXPECT_GT(colours.size(), 3u) << name;
    }
    // The history lists the step, under the start.
    EXPECT_EQ(studio->getHistory().count(), 2);
    EXPECT_EQ(studio->getHistory().item(1)->text().toStdString(), "keyColor1");
}

} // namespace
