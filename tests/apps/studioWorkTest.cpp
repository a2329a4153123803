// tessera-studio never loses work: it asks before discarding unsaved changes,
// autosaves and recovers what a killed studio left, gives setups their
// extension, names a failing script line as tessera-run does, and answers
// --help and --version without a display.
#include "studioScene.h"

#include "studioAutosave.h"
#include "studioDocument.h"

#include "host/sessionRecorder.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

namespace {

// Clicks the button of a question once it shows.
void answer(QMessageBox::StandardButton button) {
    answerModal([button](QWidget& modal) {
        auto* box = qobject_cast<QMessageBox*>(&modal);
        ASSERT_TRUE(box) << modal.metaObject()->className();
        box->button(button)->click();
    });
}

using StudioWork = StudioScene;

TEST_F(StudioWork, UnsavedChangesAreShownAndAskedForBeforeTheyAreDiscarded) {
    StudioDocument& document = studio->getDocument();
    EXPECT_FALSE(studio->isWindowModified());
    ASSERT_TRUE(studio->perform("set overall 0.3"));
    EXPECT_TRUE(studio->isWindowModified());
    EXPECT_EQ(studio->windowTitle().toStdString(), "Untitled[*] - Tessera Studio");

    // Cancel: nothing happens. Closing is asked too.
    answer(QMessageBox::Cancel);
    EXPECT_FALSE(studio->newKeyer(1));
    EXPECT_EQ(session().getCommandStack().getUndoCount(), 1);
    answer(QMessageBox::Cancel);
    EXPECT_FALSE(studio->close());
    EXPECT_TRUE(studio->isVisible());

    // Save: the setup goes to its file first, which the title names.
    const std::string saved = (dir / "shot.tessera").string();
    ASSERT_TRUE(studio->saveSetup(saved));
    ASSERT_TRUE(studio->perform("set overall 0.4"));
    answer(QMessageBox::Save);
    EXPECT_TRUE(studio->loadSetup(saved));
    EXPECT_NE(readFile(saved).find("0.4"), std::string::npos);
    EXPECT_EQ(studio->windowTitle().toStdString(), "shot.tessera[*] - Tessera Studio");
    EXPECT_FALSE(document.isModified());

    // Undoing past the saved step is a change; Discard lets it go.
    ASSERT_TRUE(studio->perform("undo"));
    EXPECT_TRUE(document.isModified());
    answer(QMessageBox::Discard);
    EXPECT_TRUE(studio->newKeyer(2));
    EXPECT_FALSE(document.isModified());
    EXPECT_EQ(document.getPath(), "");
}

TEST_F(StudioWork, ASetupNamedWithoutExtensionIsSavedAsTessera) {
    // The dialog remembers where it was in the user's settings: the test's
    // own, and it opens beside the setup's file.
    ::setenv("XDG_CONFIG_HOME", (dir / "config").c_str(), 1);
    ASSERT_TRUE(studio->saveSetup((dir / "first.tessera").string()));
    ASSERT_TRUE(studio->perform("set overall 0.3"));
    const std::string typed = (dir / "shot12").string();
    answerModal([typed](QWidget& modal) {
        auto* dialog = qobject_cast<QFileDialog*>(&modal);
        ASSERT_TRUE(dialog) << modal.metaObject()->className();
        EXPECT_EQ(dialog->directory().absolutePath().toStdString(),
                  typed.substr(0, typed.rfind('/')));
        // The name typed into the dialog's field, then Save.
        auto* name = dialog->findChild<QLineEdit*>("fileNameEdit");
        ASSERT_TRUE(name);
        name->setText("shot12");
        static_cast<QDialog*>(dialog)->accept();
    });
    EXPECT_TRUE(studio->getDocument().saveAs());
    EXPECT_TRUE(std::filesystem::exists(typed + ".tessera"));
    EXPECT_FALSE(std::filesystem::exists(typed));
    EXPECT_EQ(studio->getDocument().getPath(), typed + ".tessera");
}

TEST_F(StudioWork, AFailingScriptLineIsNamedAsTesseraRunNamesIt) {
    const std::filesystem::path script = dir / "broken.tss";
    std::ofstream(script) << "plate demo 128 72\n\nframe 2,5\n";
    EXPECT_FALSE(studio->runScript(script.string()));
    std::string run;
    EXPECT_EQ(replay(script, run), 1);
    EXPECT_EQ("tessera-run: " + studio->getStatusText().toStdString() + "\n", run);
    EXPECT_NE(run.find("broken.tss:3: "), std::string::npos) << run;
}

TEST(StudioProgram, HelpAndVersionNeedNoDisplay) {
    // A platform that needs a display, and none.
    const std::string studio = "env -u DISPLAY -u WAYLAND_DISPLAY QT_QPA_PLATFORM=xcb " +
                               std::string(TESSERA_BIN_DIR) + "/tessera-studio ";
    const ProgramResult help = runProgram(studio + "--help 2>&1");
    EXPECT_EQ(help.status, 0) << help.out;
    EXPECT_EQ(help.out.rfind("usage: tessera-studio", 0), 0u) << help.out;
    const ProgramResult version = runProgram(studio + "--version 2>&1");
    EXPECT_EQ(version.status, 0) << version.out;
    EXPECT_EQ(version.out.rfind("tessera-studio ", 0), 0u) << version.out;
}

// A studio killed after its autosave: the next one recovers its setup and goes
// on with its recording, which still replays to the same setup.
TEST_F(StudioWork, WorkOfAKilledStudioIsRecovered) {
    const std::filesystem::path data = dir / "data";
    const std::filesystem::path autosaves = data / "tessera-studio" / "autosave";
    const std::filesystem::path script = dir / "work.tss";
    const std::filesystem::path saved = dir / "work.tessera";
    std::ofstream(script) << "plate demo 160 90\nset overall 0.3\nsave " << saved.string()
                          << "\nset shadows 0.7\nset spill.amount 0.25\n";
    const std::string command =
        "XDG_DATA_HOME=" + data.string() + " " + TESSERA_BIN_DIR +
        "/tessera-studio --autosave 1 --script " + script.string() + " & pid=$!; " +
        "for i in $(seq 300); do ls " + autosaves.string() +
        "/*.tss >/dev/null 2>&1 && break; sleep 0.05; done; kill -9 $pid; wait $pid";
    runProgram(command + " 2>&1");

    StudioAutosave& autosave = studio->getAutosave();
    ASSERT_TRUE(autosave.start(autosaves.string(), 0));
    ASSERT_EQ(autosave.findLeftovers().size(), 1u);
    answerModal([](QWidget& modal) {
        auto* box = qobject_cast<QMessageBox*>(&modal);
        ASSERT_TRUE(box);
        for (QAbstractButton* b : box->buttons()) {
            if (b->text() == "Recover") {
                b->click();
            }
        }
    });
    ASSERT_TRUE(autosave.offerRecovery()) << studio->getStatusText().toStdString();
    EXPECT_TRUE(autosave.findLeftovers().empty());

    EXPECT_NEAR(session()
                    .getShownNode()
                    ->getMatteParamInput(TsMgTypes::Shadows)
                    ->getTypedValue<double>(0.0),
                0.7, 1e-9);
    EXPECT_EQ(session().getPlateName(), "demo");
    EXPECT_TRUE(studio->getDocument().isModified());
    EXPECT_EQ(studio->getDocument().getPath(), saved.string());

    // The session goes on, and the whole of it replays to the same setup.
    ASSERT_TRUE(studio->perform("set overall 0.45"));
    std::string error;
    ASSERT_TRUE(session().saveSetup((dir / "studio.tessera").string(), error)) << error;
    std::ofstream(dir / "recorded.tss") << studio->getRecorder().getText() << "save "
                                        << (dir / "replayed.tessera").string() << "\n";
    std::string out;
    ASSERT_EQ(replay(dir / "recorded.tss", out), 0) << out;
    EXPECT_EQ(readFile(dir / "replayed.tessera"), readFile(dir / "studio.tessera"));

    // Closing normally leaves nothing to recover.
    studio.reset();
    EXPECT_FALSE(std::filesystem::exists(autosaves) &&
                 std::distance(std::filesystem::directory_iterator(autosaves),
                               std::filesystem::directory_iterator()) > 0);
}

} // namespace
