#pragma once

#include "host/sessionScript.h"

#include <base/cbEmptyType.h>
#include <base/cbMethod.h>

#include <QMainWindow>

#include <memory>
#include <string>

class HostSession;
class OutputWriter;
class QActionGroup;
class QComboBox;
class QLabel;
class QListWidget;
class QSpinBox;
class QTimer;
class SessionInterpreter;
class SessionRecorder;
class ShotControls;
class StudioColourBar;
class StudioAutosave;
class StudioDocument;
class StudioHistory;
class StudioToolMenu;
class StudioViewerBar;
class UiMainWindow;

// The desktop application's main window: the viewer in the middle, the
// keyer's main panel (with the stage panels in its areas) on the right, the
// undo history and the keyer's nodes on the left, a tool bar with the
// viewer's stage, its view mode and the frame, the viewer's aids beside it,
// a colour bar (StudioColourBar) under them, the shot's controls,
// menus for plates, setups, exports, the view, tools and history (each with
// its key from the hotkey table), and a status line that shows every report
// and the pixel under the pointer.
//
// Its rooms: the setup as a document with its unsaved changes
// (StudioDocument), autosave and recovery (StudioAutosave), the history list
// (StudioHistory), the Tools menu (StudioToolMenu), the viewer's aids
// (StudioViewerBar), the keys and their dialog (StudioShortcuts) and the
// file dialogs (StudioFiles).
//
// Every action of the studio's own menus and bars is a session-script line
// carried out by the session's interpreter (perform), so that what the
// studio records (SessionRecorder) is exactly what it did; the viewer and
// the panels are recorded as the user works in them.
class StudioWindow : public QMainWindow {
public:
    explicit StudioWindow(QWidget* parent = nullptr);
    ~StudioWindow() override;

    HostSession& getSession() const { return *_session; }
    SessionInterpreter& getInterpreter() const { return *_interpreter; }
    SessionRecorder& getRecorder() const { return *_recorder; }
    QListWidget& getHistory() const;
    QListWidget& getNodes() const { return *_nodes; }
    ShotControls& getShotControls() const { return *_shot; }
    StudioDocument& getDocument() const { return *_document; }
    StudioAutosave& getAutosave() const { return *_autosave; }
    StudioViewerBar& getViewerBar() const { return *_viewerBar; }
    StudioToolMenu& getToolMenu() const { return *_toolMenu; }

    // Carries out a line as the studio's own actions do: written to the
    // recording when it succeeded; a failure is shown in the status line
    // (nothing is closed) and answers false.
    bool perform(const std::string& line);
    // Carries out every line of a session script as perform does, relative
    // files found beside the script; stops at the first line that fails, which
    // the status line names as tessera-run does ("FILE:LINE: message").
    bool runScript(const std::string& path);

    // What the menus do once their dialogs have answered. A new keyer and a
    // setup loaded ask first when the setup has unsaved changes (false when
    // the user cancels).
    bool openPlate(const std::string& path);
    bool openBackground(const std::string& path);
    bool newKeyer(int generation);
    bool loadSetup(const std::string& path);
    bool saveSetup(const std::string& path);
    bool exportOutput(const std::string& kind, const std::string& path);
    bool saveRecording(const std::string& path);

    // Records to a file from now on (--record): the recording is written
    // there at once, so that a file that cannot be written is known before
    // the session starts (false and `error`), then again a moment after
    // each change and when the window closes. A later write that fails is
    // shown in the status line and the recording stays in memory, for File
    // > Save Session Script to save elsewhere; closing the window then
    // asks to be repeated before the recording is given up.
    bool recordTo(const std::string& path, std::string& error);
    // Writes the recording to its file now, if it changed; false (shown in
    // the status line) when the write failed.
    bool writeRecording();
    // Whether the recording's file holds all of it (true without --record).
    bool isRecordingWritten() const { return _recordError.empty(); }
    const std::string& getRecordError() const { return _recordError; }
    // Goes back (or forward) in the history to just after step `row` (0 the
    // oldest; -1 before the first).
    bool goToStep(int row);

    // The text of the status line.
    QString getStatusText() const;

protected:
    // Closing asks first when the setup has unsaved changes.
    void closeEvent(QCloseEvent* event) override;

private:
    void buildMenus();
    void buildViewMenu();
    void buildToolBar();
    void buildDocks();
    void refresh();
    void refreshHistory();
    void refreshNodes();
    void refreshStage();
    void historyChanged();
    void handlerChanged();
    bool perform(const SessionScript::Line& line, const std::string& source);
    void report(const std::string& text);

    std::unique_ptr<HostSession> _session;
    std::unique_ptr<OutputWriter> _writer;
    std::unique_ptr<SessionInterpreter> _interpreter;
    std::unique_ptr<SessionRecorder> _recorder;
    std::unique_ptr<UiMainWindow> _mainWindow;
    std::unique_ptr<StudioDocument> _document;
    std::unique_ptr<StudioAutosave> _autosave;
    StudioHistory* _history = nullptr;
    StudioToolMenu* _toolMenu = nullptr;
    StudioViewerBar* _viewerBar = nullptr;
    QListWidget* _nodes = nullptr;
    QActionGroup* _stages = nullptr;
    QComboBox* _mode = nullptr;
    QSpinBox* _frame = nullptr;
    ShotControls* _shot = nullptr;
    QLabel* _reports = nullptr;
    StudioColourBar* _colour = nullptr;
    int _listener = 0;
    bool _refreshing = false;
    std::string _recordPath;
    std::string _recorded; // what the file holds
    std::string _recordError;
    bool _closeWarned = false;
    QTimer* _recordTimer = nullptr;
    CbMethod<StudioWindow, CbEmptyType> _historyChanged{this, &StudioWindow::historyChanged};
    CbMethod<StudioWindow, CbEmptyType> _handlerChanged{this, &StudioWindow::handlerChanged};
};
