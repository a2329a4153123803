// tessera-studio never surprises and gives the viewer aids compositors
// expect: the plate fitted at start-up, keys that follow the pointer, a tool
// that is what the menus and panels show at every step, a history that says
// what changed, the pixel readout and the zoom, and every key shown from the
// hotkey table. The last test takes the screenshot of docs/studio.md.
#include "studioScene.h"

#include "studioHistory.h"
#include "studioShortcuts.h"
#include "studioToolMenu.h"
#include "studioViewerBar.h"

#include "host/sessionArgs.h"
#include "host/sessionInterpreter.h"
#include "host/sessionProbe.h"

#include <tesseraCore/tsDgTool.h>
#include <tesseraCore/tsMgTool.h>
#include <tesseraCore/tsSpillBlendTool.h>
#include <ui/uiHotkeyRegistry.h>

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QTreeWidget>

#include <cstdlib>

namespace {

class StudioViewer : public StudioScene {
protected:
    void SetUp() override {
        StudioScene::SetUp();
        QApplication::setActiveWindow(studio.get());
        settle();
    }
    std::string query(const std::string& what) {
        SessionScript::Line line;
        std::string error;
        SessionScript::split(what, line, error);
        SessionArgs args(line.words, line.quoted, 0);
        return studio->getInterpreter().getProbe().value(args);
    }
    void enterViewer(const QPointF& at) {
        QEnterEvent enter(at, viewer().mapTo(studio.get(), at), viewer().mapToGlobal(at));
        QApplication::sendEvent(&viewer(), &enter);
    }
    // A key as the window system sends it: to the widget with the focus.
    void typeKey(int k, Qt::KeyboardModifiers mods = Qt::NoModifier, const QString& text = {}) {
        QWidget* focus = QApplication::focusWidget();
        ASSERT_TRUE(focus);
        key(focus, k, mods, text);
    }
};

TEST_F(StudioViewer, ThePlateIsFittedAtStartUp) {
    // A plate shown before the window is laid out, as --plate and --demo do.
    studio = std::make_unique<StudioWindow>();
    ASSERT_TRUE(studio->perform("plate demo 640 360"));
    studio->resize(1400, 860);
    studio->show();
    settle();
    EXPECT_TRUE(viewer().isFitted());
    const QRectF plate(at(0, 360), at(640, 0));
    EXPECT_TRUE(QRectF(viewer().rect()).contains(plate)) << viewer().width();
    EXPECT_NEAR(plate.center().x(), 0.5 * viewer().width(), 1.0);
    EXPECT_NEAR(std::min(plate.left(), plate.top()), 16.0, 1.0);
}

TEST_F(StudioViewer, KeysGoToTheViewerUnderThePointerButTypingStaysInItsField) {
    ASSERT_TRUE(studio->perform("plate demo 320 180"));
    ASSERT_TRUE(studio->perform("zoom 0.5"));
    auto* field = widget<QAbstractSpinBox>("other", "overallField");
    ASSERT_TRUE(field);
    field->setFocus();
    settle();
    ASSERT_EQ(QApplication::focusWidget(), field);

    // The pointer comes over the viewer: its hotkeys and keys reach it.
    enterViewer(at(160, 90));
    EXPECT_EQ(QApplication::focusWidget(), &viewer());
    ASSERT_TRUE(studio->perform("tool \"Pick Key Colour 2\""));
    typeKey(Qt::Key_M, Qt::NoModifier, "m");
    EXPECT_EQ(session().getTool(), "Sample Matte");
    typeKey(Qt::Key_Home);
    EXPECT_TRUE(viewer().isFitted());

    // A field being typed into keeps the keys when the pointer passes over.
    field->setFocus();
    typeKey(Qt::Key_0, Qt::NoModifier, "0");
    enterViewer(at(160, 90));
    EXPECT_EQ(QApplication::focusWidget(), field);
}

// After every way the tool can change, what a click uses is what the menus
// and panels show: the Tools menu checks it; a pick lights its stage panel's
// toggle; any other tool is the main panel's menu entry, with no pick lit.
TEST_F(StudioViewer, TheToolAClickUsesIsTheToolTheMenusAndPanelsShow) {
    ASSERT_TRUE(studio->perform("keyer variant 1 nodes 2"));
    ASSERT_TRUE(studio->perform("plate demo 256 144"));
    ASSERT_TRUE(studio->perform("set patchNames \"Patch 1\""));
    auto stageAction = [this](const char* stage) {
        return [this, stage] { studio->findChild<QAction*>(QString("stage_") + stage)->trigger(); };
    };
    auto toolAction = [this](const std::string& tool) {
        return [this, tool] {
            for (QAction* a : studio->getToolMenu().actions()) {
                if (a->text().toStdString() == tool) {
                    a->trigger();
                }
            }
        };
    };
    auto line = [this](const std::string& text) {
        return [this, text] { ASSERT_TRUE(studio->perform(text)) << text; };
    };
    // Each path, and whether it asks for a key-colour pick: no other makes one
    // current, which a click would use to replace a key colour unasked.
    struct Path {
        std::string what;
        std::function<void()> action;
        bool pick = false;
    };
    const std::vector<Path> paths = {
        {"start", [] {}},
        {"stage degrain", stageAction("degrain")},
        {"stage spill", stageAction("spill")},
        {"stage matte", stageAction("matte")},
        {"tools menu: pick 2", toolAction(TsMgTool::getManipToolName(1)), true},
        {"the pick's click", line("click 10 130")},
        {"tools menu: adjust blend", toolAction(TsSpillBlendTool::getManipToolName(3))},
        {"tools menu: sample patch", toolAction(TsMgTool::getManipToolName(3))},
        {"matte hotkey", line("hotkey \"Sample Matte\"")},
        {"patch hotkey", line("hotkey \"Sample Patch 1\"")},
        {"main menu: degrain", line("widget main sampleMenu select \"Sample Degrain\"")},
        {"degrain toggle", line("widget degrain keyColor2Toggle toggle"), true},
        {"spill menu", line("widget spill sampleMenu select \"Adjust Spill\"")},
        {"spill toggle", line("widget spill keyColor1Toggle toggle"), true},
        {"another node", line("select keyer2")},
        {"undo shows the first", line("undo")},
        {"redo", line("redo")},
        {"new keyer", line("keyer variant 2 nodes 1")},
    };
    const std::vector<std::string> picks = {TsMgTool::getManipToolName(0),
                                            TsMgTool::getManipToolName(1)};
    for (const Path& path : paths) {
        const std::string& what = path.what;
        path.action();
        settle();
        const std::string tool = session().getTool();
        ASSERT_FALSE(tool.empty()) << what;
        const bool pick = tool == picks[0] || tool == picks[1];
        EXPECT_EQ(pick, path.pick) << what << ": " << tool;
        EXPECT_EQ(studio->getToolMenu().getCheckedTool(), tool) << what;
        const std::string panel = session().getViewer().getStage();
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(query("toggle " + panel + " keyColor" + std::to_string(i + 1) + "Toggle"),
                      tool == picks[i] ? "on" : "off")
                << what << ": " << tool;
        }
        if (!pick) {
            EXPECT_EQ(query("menu main sampleMenu"), tool) << what;
        }
    }
    // A click in a stage just shown never replaces a key colour unasked.
    ASSERT_TRUE(studio->perform("viewer matte"));
    ASSERT_TRUE(studio->perform("click 10 130"));
    EXPECT_EQ(query("input keyColor1"), "0 0 0");
}

TEST_F(StudioViewer, TheHistorySaysWhatEachStepChanged) {
    ASSERT_TRUE(studio->perform("plate demo 320 180"));
    ASSERT_TRUE(studio->perform("set keyColor1 0.075 0.405 0.108"));
    ASSERT_TRUE(studio->perform("hotkey \"Sample Matte\""));
    ASSERT_TRUE(studio->perform("click 178 120"));
    const std::string top = query("bars").substr(0, query("bars").find(','));
    ASSERT_TRUE(studio->perform("drag 178 120 200 120"));
    ASSERT_TRUE(studio->perform("key Escape"));
    ASSERT_TRUE(studio->perform("set patchNames \"Patch 1\""));
    ASSERT_TRUE(studio->perform("hotkey \"Sample Patch 1\""));
    ASSERT_TRUE(studio->perform("drag 20 170 30 160 ctrl"));

    QListWidget& history = studio->getHistory();
    ASSERT_EQ(history.count(), 5);
    // A step named after its one input says it once.
    EXPECT_EQ(history.item(1)->text().toStdString(), "keyColor1");
    EXPECT_EQ(history.item(2)->text().toStdString(), "Set Matte Parameter: " + top);
    const std::string tip = history.item(2)->toolTip().toStdString();
    EXPECT_EQ(tip.rfind("keyer1 " + top + ": 0.5 \u2192 ", 0), 0u) << tip;
    EXPECT_EQ(history.item(3)->text().toStdString(), "New Patch: Patches");
    // The twelve elements of a colour box are one box.
    EXPECT_EQ(history.item(4)->text().toStdString(), "Sample Patch: Patch 1 Box, Patch 1 Mode");
    EXPECT_EQ(StudioHistory::label("spill.amount"), "Spill Amount");
    EXPECT_EQ(StudioHistory::label("edgeBalance.x"), "Edge Balance X");
}

TEST_F(StudioViewer, TheReadoutAndTheZoomFollowThePointer) {
    ASSERT_TRUE(studio->perform("plate demo 320 180"));
    ASSERT_TRUE(studio->perform("set keyColor1 0.075 0.405 0.108"));
    auto* readout = studio->findChild<QLabel*>("pixelReadout");
    auto* zoom = studio->findChild<QLabel*>("zoomLevel");
    ASSERT_TRUE(readout && zoom);

    enterViewer(at(10.5, 170.5));
    mouse(&viewer(), QEvent::MouseMove, at(10.5, 170.5));
    EXPECT_EQ(readout->text().toStdString(), query("readout 10 170"));
    EXPECT_NE(readout->text().toStdString().find("matte 0"), std::string::npos);

    // The wheel zooms about the pointer: the plate point under it stays.
    const QPointF pointer = at(100, 60);
    QWheelEvent wheel(pointer, viewer().mapToGlobal(pointer), QPoint(), QPoint(0, 240),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&viewer(), &wheel);
    settle();
    EXPECT_LT((at(100, 60) - pointer).manhattanLength(), 0.01);
    EXPECT_FALSE(viewer().isFitted());
    // 1:1 with one key, shown in percent.
    key(&viewer(), Qt::Key_0, Qt::NoModifier, "0");
    settle();
    EXPECT_EQ(zoom->text(), "100%");
}

TEST_F(StudioViewer, EveryMenuShowsItsKeyFromTheHotkeyTable) {
    const UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
    std::set<std::string> bound;
    for (unsigned id = 1; id <= static_cast<unsigned>(registry.getEntryCount()); ++id) {
        if (registry.getBinding(id).isBound()) {
            bound.insert(
                StudioShortcuts::keyOf(registry.getEntryDomain(id), registry.getEntryName(id))
                    .toString()
                    .toStdString());
        }
    }
    int shown = 0;
    for (QAction* menu : studio->menuBar()->actions()) {
        for (QAction* a : menu->menu()->findChildren<QAction*>()) {
            const std::string keys = a->shortcut().toString().toStdString();
            if (!keys.empty()) {
                ++shown;
                EXPECT_EQ(bound.count(keys), 1u) << a->text().toStdString() << " " << keys;
            }
        }
    }
    EXPECT_GE(shown, 20);
    EXPECT_EQ(StudioShortcuts::keyOf(UiHotkeyRegistry::TesseraDomain, "Sample Matte").toString(),
              "M");

    // Help > Keyboard Shortcuts lists every entry, by domain.
    StudioShortcutsDialog dialog(studio.get());
    int rows = 0;
    for (int i = 0; i < dialog.getTree().topLevelItemCount(); ++i) {
        rows += dialog.getTree().topLevelItem(i)->childCount();
    }
    EXPECT_EQ(rows, registry.getEntryCount());
    EXPECT_EQ(dialog.getTree().topLevelItem(0)->text(0), "Viewer tools");
}

// The screenshot of docs/studio.md: the keyed demo plate with the wipe on and
// a column of slider bars, written to docs/images/studio.png when
// TESSERA_UPDATE_DOCS is set.
TEST_F(StudioViewer, AScreenshotForTheGuide) {
    for (const char* line :
         {"plate demo 640 360", "background demo", "set keyColor1 0.075 0.405 0.108",
          "view composite", "wipe on 240 with source", "hotkey \"Sample Matte\"",
          "click 356 240"}) {
        ASSERT_TRUE(studio->perform(line)) << line;
    }
    enterViewer(at(400, 200));
    mouse(&viewer(), QEvent::MouseMove, at(400, 200));
    settle();
    const QImage shot = studio->grab().toImage();
    ASSERT_FALSE(shot.isNull());
    // The wipe's line, light, down the viewer (within a pixel of where the
    // plate puts it).
    const QPoint line = viewer().mapTo(studio.get(), at(240, 100).toPoint());
    int light = 0;
    for (int dx = -1; dx <= 1; ++dx) {
        light = std::max(light, shot.pixelColor(line + QPoint(dx, 0)).lightness());
    }
    EXPECT_GT(light, 200) << line.x();
    if (const char* update = std::getenv("TESSERA_UPDATE_DOCS"); update && *update) {
        const std::string source = std::getenv("TESSERA_SOURCE_DIR");
        EXPECT_TRUE(shot.scaledToWidth(1200, Qt::SmoothTransformation)
                        .save(QString::fromStdString(source + "/docs/images/studio.png")));
    }
}

} // namespace
