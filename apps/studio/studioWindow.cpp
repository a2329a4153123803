#include "studioWindow.h"

#include "colourSpaceDock.h"
#include "shotControls.h"
#include "studioAutosave.h"
#include "studioColourBar.h"
#include "studioDocument.h"
#include "studioFiles.h"
#include "studioHistory.h"
#include "studioShortcuts.h"
#include "studioToolMenu.h"
#include "studioViewerBar.h"

#include "host/hostSession.h"
#include "host/imageCommands.h"
#include "host/outputWriter.h"
#include "host/sessionArgs.h"
#include "host/sessionInterpreter.h"
#include "host/sessionRecorder.h"
#include "host/sessionScript.h"
#include "host/widgetCommands.h"

#include <base/exReporter.h>
#include <pluginAPI/piEventHandler.h>
#include <pluginAPI/piEventHandlingInterface.h>
#include <pluginAPI/piNode.h>
#include <pluginAPI/piPath.h>
#include <tesseraCore/render/tsViewRender.h>
#include <tesseraCore/setup/tsValueText.h>
#include <tesseraCore/tsDgTool.h>
#include <tesseraCore/tsMgTool.h>
#include <tesseraCore/tsSpillBlendTool.h>
#include <ui/uiApplication.h>
#include <ui/uiMainWindow.h>
#include <ui/uiPanel.h>
#include <ui/uiViewer.h>
#include <ui/uiViewerKeys.h>

#include <QAction>
#include <QActionGroup>
#include <QCloseEvent>
#include <QComboBox>
#include <QDockWidget>
#include <QInputDialog>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QScrollArea>
#include <QSpinBox>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

#include <filesystem>
#include <sstream>

namespace {

const char* const StageLabels[][2] = {
    {"matte", "Matte Generation"}, {"degrain", "Degrain"}, {"spill", "Spill && Blend"}};

std::string absolute(const std::string& path) {
    std::error_code ec;
    const std::filesystem::path p = std::filesystem::absolute(path, ec);
    return ec ? path : p.lexically_normal().string();
}

std::string quoted(const std::string& word) {
    return TsValueText::quoteWord(word);
}

} // namespace

StudioWindow::StudioWindow(QWidget* parent)
    : QMainWindow(parent) {
    setWindowTitle("Tessera Studio");
    setObjectName("tesseraStudio");
    UiApplication::getInstance();

    auto* centre = new QWidget(this);
    centre->setObjectName("viewerArea");
    auto* layout = new QVBoxLayout(centre);
    layout->setContentsMargins(0, 0, 0, 0);
    setCentralWidget(centre);

    auto* panelDock = new QDockWidget("Keyer", this);
    panelDock->setObjectName("panelDock");
    auto* scroll = new QScrollArea(panelDock);
    scroll->setObjectName("panelScroll");
    scroll->setWidgetResizable(true);
    panelDock->setWidget(scroll);
    addDockWidget(Qt::RightDockWidgetArea, panelDock);

    _session = std::make_unique<HostSession>(centre, 960, 540, nullptr);
    layout->addWidget(&_session->getViewer(), 1); // the viewer takes the height
    _shot = new ShotControls(
        *_session, [this](const std::string& line) { return perform(line); }, centre);
    layout->addWidget(_shot);
    scroll->setWidget(&_session->getMainPanel());
    // Wide enough for the panel's fields without scrolling sideways.
    scroll->setMinimumWidth(380);
    _writer = std::make_unique<OutputWriter>(*_session);
    _interpreter = std::make_unique<SessionInterpreter>(*_session);
    ImageCommands::add(*_interpreter, *_writer);
    WidgetCommands::add(*_interpreter);
    _recorder = std::make_unique<SessionRecorder>(*_session);

    _mainWindow = std::make_unique<UiMainWindow>(this);
    UiApplication::getInstance().setMainWindow(_mainWindow.get());

    _document = std::make_unique<StudioDocument>(*this);
    _autosave = std::make_unique<StudioAutosave>(*this);
    buildDocks();
    buildToolBar();
    buildMenus();

    _reports = new QLabel(this);
    _reports->setObjectName("reportCount");
    statusBar()->addPermanentWidget(&_viewerBar->getReadout());
    statusBar()->addPermanentWidget(_reports);
    statusBar()->showMessage("Ready");
    _listener = ExReporter::getInstance().addListener(
        [this](const ExReporter::Report& r) { report(r.text()); });
    PiEventHandlingInterface::getInstance().addCurrentEventHandlerChangedCallback(&_handlerChanged);
    resize(1500, 900);
    refresh();
}

StudioWindow::~StudioWindow() {
    ExReporter::getInstance().removeListener(_listener);
    _handlerChanged.reset();
    _historyChanged.reset();
    // What follows the viewer goes before the viewer does.
    delete _toolMenu;
    delete _viewerBar;
    _autosave.reset();
    if (UiApplication::getInstance().getMainWindow() == _mainWindow.get()) {
        UiApplication::getInstance().setMainWindow(nullptr);
    }
    _recorder.reset();
    _interpreter.reset();
    _writer.reset();
    // The panel and the viewer belong to the session, not to the widgets
    // they sit in.
    if (auto* scroll = findChild<QScrollArea*>("panelScroll")) {
        scroll->takeWidget();
    }
    _session->getViewer().setParent(nullptr);
    _session.reset();
}

// --- actions

bool StudioWindow::perform(const std::string& line) {
    SessionScript::Line words;
    std::string error;
    if (!SessionScript::split(line, words, error)) {
        report(error);
        return false;
    }
    words.number = 1;
    return words.words.empty() || perform(words, "");
}

bool StudioWindow::perform(const SessionScript::Line& line, const std::string& source) {
    bool ok = true;
    {
        const SessionRecorder::Pause pause(*_recorder);
        try {
            _interpreter->execute(line, source.empty() ? "studio" : source);
        } catch (const SessionError& e) {
            // The studio's own actions have no file; a script's line is named
            // as tessera-run names it.
            report(source.empty() ? e.getMessage() : e.what());
            ok = false;
        }
    }
    if (ok) {
        _recorder->addLine(line.text);
    }
    _recorder->refresh();
    refresh();
    return ok;
}

bool StudioWindow::runScript(const std::string& path) {
    SessionScript script;
    try {
        script = SessionScript::read(path);
    } catch (const SessionError& e) {
        report(e.getSource() + ": " + e.getMessage());
        return false;
    }
    _interpreter->setInputDir(std::filesystem::path(path).parent_path().string());
    bool ok = true;
    for (const SessionScript::Line& line : script.getLines()) {
        if (!(ok = perform(line, script.getSource()))) {
            break;
        }
    }
    _interpreter->setInputDir("");
    return ok;
}

bool StudioWindow::openPlate(const std::string& path) {
    return perform("plate " + quoted(absolute(path)));
}

bool StudioWindow::openBackground(const std::string& path) {
    return perform("background " + quoted(absolute(path)));
}

bool StudioWindow::newKeyer(int generation) {
    if (!_document->confirmDiscard("New Keyer")) {
        return false;
    }
    if (!perform("keyer variant " + std::to_string(generation) + " nodes 3")) {
        return false;
    }
    _document->cleared();
    return true;
}

bool StudioWindow::loadSetup(const std::string& path) {
    if (!_document->confirmDiscard("Load Setup") || !perform("load " + quoted(absolute(path)))) {
        return false;
    }
    _document->saved(absolute(path));
    return true;
}

bool StudioWindow::saveSetup(const std::string& path) {
    const std::string file = absolute(StudioFiles::withSuffix(path, StudioFiles::Setup.suffix));
    if (!perform("save " + quoted(file))) {
        return false;
    }
    _document->saved(file);
    statusBar()->showMessage(QString::fromStdString("Setup saved to " + file));
    return true;
}

bool StudioWindow::exportOutput(const std::string& kind, const std::string& path) {
    return perform("write " + kind + " " + quoted(absolute(path)) +
                   (kind == "viewer" ? std::string() : _colour->exportSpaceWords()));
}

bool StudioWindow::saveRecording(const std::string& path) {
    std::string error;
    if (!_recorder->save(path, error)) {
        report(error);
        return false;
    }
    statusBar()->showMessage(QString::fromStdString("Session script saved to " + path));
    return true;
}

bool StudioWindow::recordTo(const std::string& path, std::string& error) {
    _recordPath = path;
    _recorded.clear();
    _recordError.clear();
    if (!writeRecording()) {
        error = _recordError;
        _recordPath.clear();
        return false;
    }
    if (!_recordTimer) {
        _recordTimer = new QTimer(this);
        connect(_recordTimer, &QTimer::timeout, this, [this] { writeRecording(); });
        _recordTimer->start(2000);
    }
    return true;
}

bool StudioWindow::writeRecording() {
    const std::string text = _recorder->getText();
    if (_recordPath.empty() || (text == _recorded && _recordError.empty())) {
        return true;
    }
    std::string error;
    if (!_recorder->save(_recordPath, error)) {
        if (error != _recordError) {
            report(error + " (the recording is kept: File > Save Session Script saves it "
                           "elsewhere)");
        }
        _recordError = error;
        return false;
    }
    _recorded = text;
    _recordError.clear();
    _closeWarned = false;
    return true;
}

void StudioWindow::closeEvent(QCloseEvent* event) {
    if (!_document->confirmDiscard("Quit")) {
        event->ignore();
        return;
    }
    if (!writeRecording() && !_closeWarned) {
        // Once more to give the recording up; File > Save Session Script
        // saves it elsewhere meanwhile.
        _closeWarned = true;
        report(_recordError + ": the recording is not saved (File > Save Session Script saves "
                              "it elsewhere; close again to give it up)");
        event->ignore();
        return;
    }
    QMainWindow::closeEvent(event);
}

bool StudioWindow::goToStep(int row) {
    const PiCommandStack& stack = _session->getCommandStack();
    const int target = row + 1;
    if (target < stack.getUndoCount()) {
        return perform("undo " + std::to_string(stack.getUndoCount() - target));
    }
    if (target > stack.getUndoCount() && target <= stack.getStepCount()) {
        return perform("redo " + std::to_string(target - stack.getUndoCount()));
    }
    return true;
}

QString StudioWindow::getStatusText() const {
    return statusBar()->currentMessage();
}

QListWidget& StudioWindow::getHistory() const {
    return *_history;
}

void StudioWindow::report(const std::string& text) {
    statusBar()->showMessage(QString::fromStdString(text));
    const std::size_t count = _session ? _session->getReports().size() : 0;
    if (_reports) {
        _reports->setText(count ? QString("%1 reports").arg(count) : QString());
    }
}

// --- building

void StudioWindow::buildMenus() {
    // The studio's own actions take their keys from its domain of the hotkey
    // table.
    auto own = [](QAction* action, const char* entry) {
        StudioShortcuts::bind(action, StudioShortcuts::Domain, entry, true);
        return action;
    };
    QMenu* file = menuBar()->addMenu("&File");
    own(file->addAction("Open &Plate...", this,
                        [this] {
                            const std::string p = StudioFiles::ask(this, StudioFiles::Plate, false);
                            if (!p.empty()) {
                                openPlate(p);
                            }
                        }),
        "Open Plate");
    file->addAction("&Demo Plate", this, [this] {
        perform("plate demo");
        perform("background demo");
    });
    file->addAction("Open &Background...", this, [this] {
        const std::string p = StudioFiles::ask(this, StudioFiles::Plate, false);
        if (!p.empty()) {
            openBackground(p);
        }
    });
    file->addAction("No Background", this, [this] { perform("background none"); });
    file->addSeparator();
    own(file->addAction("&Load Setup...", this,
                        [this] {
                            const std::string p = StudioFiles::ask(this, StudioFiles::Setup, false);
                            if (!p.empty()) {
                                loadSetup(p);
                            }
                        }),
        "Load Setup");
    own(file->addAction("&Save Setup", this, [this] { _document->save(); }), "Save Setup");
    own(file->addAction("Save Setup &As...", this, [this] { _document->saveAs(); }),
        "Save Setup As");
    file->addSeparator();
    for (const auto& [kind, label] :
         {std::pair<const char*, const char*>{"matte", "Export &Matte..."},
          {"comp", "Export &Composite..."},
          {"status", "Export S&tatus View..."},
          {"viewer", "Export &Viewer Snapshot..."}}) {
        const std::string k = kind;
        file->addAction(label, this, [this, k] {
            const std::string p = StudioFiles::ask(
                this, k == "viewer" ? StudioFiles::Snapshot : StudioFiles::Export, true);
            if (!p.empty()) {
                exportOutput(k, p);
            }
        });
    }
    file->addSeparator();
    file->addAction("Save Session &Script...", this, [this] {
        const std::string p = StudioFiles::ask(this, StudioFiles::Script, true);
        if (!p.empty()) {
            saveRecording(p);
        }
    });
    file->addSeparator();
    own(file->addAction("&Quit", this, &QWidget::close), "Quit");

    QMenu* edit = menuBar()->addMenu("&Edit");
    QAction* undo = own(edit->addAction("&Undo", this,
                                        [this] {
                                            if (_session->getCommandStack().canUndo()) {
                                                perform("undo");
                                            }
                                        }),
                        "Undo");
    undo->setObjectName("undoAction");
    QAction* redo = own(edit->addAction("&Redo", this,
                                        [this] {
                                            if (_session->getCommandStack().canRedo()) {
                                                perform("redo");
                                            }
                                        }),
                        "Redo");
    redo->setObjectName("redoAction");

    buildViewMenu();

    QMenu* keyer = menuBar()->addMenu("&Keyer");
    own(keyer->addAction("New Keyer", this, [this] { newKeyer(1); }), "New Keyer");
    keyer->addAction("New Keyer (Generation 2)", this, [this] { newKeyer(2); });
    keyer->addSeparator();
    keyer->addAction("Rename Node...", this, [this] {
        const QListWidgetItem* item = _nodes->currentItem();
        if (!item) {
            return;
        }
        bool ok = false;
        const QString name = QInputDialog::getText(this, "Rename Node", "Name:", QLineEdit::Normal,
                                                   item->text(), &ok);
        if (ok && !name.isEmpty()) {
            perform("rename " + quoted(item->text().toStdString()) + " " +
                    quoted(name.toStdString()));
        }
    });
    keyer->addAction("Remove Node", this, [this] {
        if (const QListWidgetItem* item = _nodes->currentItem()) {
            perform("remove " + quoted(item->text().toStdString()));
        }
    });

    _toolMenu = new StudioToolMenu(
        _session->getViewer(), [this](const std::string& line) { return perform(line); }, this);
    menuBar()->addMenu(_toolMenu);

    QMenu* help = menuBar()->addMenu("&Help");
    own(help->addAction("&Keyboard Shortcuts", this,
                        [this] {
                            auto* dialog = new StudioShortcutsDialog(this);
                            dialog->setAttribute(Qt::WA_DeleteOnClose);
                            dialog->show();
                        }),
        "Keyboard Shortcuts");
}

void StudioWindow::buildViewMenu() {
    QMenu* view = menuBar()->addMenu("&View");
    view->setObjectName("viewMenu");
    // The viewer takes its own keys where the pointer is: the menu shows them.
    auto viewer = [](QAction* action, UiViewerKeys::Action key) {
        StudioShortcuts::bind(action, UiViewerKeys::Domain, UiViewerKeys::getEntryName(key), false);
        return action;
    };
    viewer(view->addAction("&Fit", this, [this] { perform("fit"); }), UiViewerKeys::Action::Fit);
    viewer(view->addAction("&Actual Pixels (1:1)", this, [this] { perform("zoom 1"); }),
           UiViewerKeys::Action::ActualPixels);
    view->addSeparator();
    viewer(view->addAction("&Wipe", this,
                           [this] {
                               UiViewer& v = _session->getViewer();
                               perform(v.getWipe().isOn()
                                           ? std::string("wipe off")
                                           : "wipe on " + SessionArgs::format(v.getWipeStart()));
                           }),
           UiViewerKeys::Action::Wipe);
    QMenu* channels = view->addMenu("&Channel");
    for (const auto& [key, name] : {std::pair{UiViewerKeys::Action::Red, "red"},
                                    std::pair{UiViewerKeys::Action::Green, "green"},
                                    std::pair{UiViewerKeys::Action::Blue, "blue"},
                                    std::pair{UiViewerKeys::Action::Alpha, "alpha"}}) {
        const std::string channel = name;
        viewer(channels->addAction(QString::fromStdString(UiViewerKeys::getEntryName(key)), this,
                                   [this, channel] {
                                       const bool shown =
                                           UiViewerDisplay::getChannelName(
                                               _session->getViewer().getDisplay().getChannel()) ==
                                           channel;
                                       perform("channel " + (shown ? "rgb" : channel));
                                   }),
               key);
    }
    channels->addAction("All (RGB)", this, [this] { perform("channel rgb"); });
    view->addSeparator();
    // The view modes switch with the keys of the studio's domain.
    for (const std::string& mode : TsViewRender::getViewNames()) {
        QString label = QString::fromStdString(mode);
        label[0] = label[0].toUpper();
        QAction* action = view->addAction(label, this, [this, mode] { perform("view " + mode); });
        StudioShortcuts::bind(action, StudioShortcuts::Domain, "View " + label.toStdString(), true);
        action->setShortcutContext(Qt::ApplicationShortcut);
    }
}

void StudioWindow::buildToolBar() {
    QToolBar* bar = addToolBar("Viewer");
    bar->setObjectName("viewerBar");
    bar->addWidget(new QLabel(" Stage ", bar));
    _stages = new QActionGroup(this);
    _stages->setExclusive(true);
    for (const auto& stage : StageLabels) {
        QAction* a = bar->addAction(stage[1]);
        a->setCheckable(true);
        a->setData(QString(stage[0]));
        a->setObjectName(QString("stage_") + stage[0]);
        _stages->addAction(a);
        const std::string name = stage[0];
        connect(a, &QAction::triggered, this, [this, name] {
            if (!_refreshing) {
                perform("viewer " + name);
            }
        });
    }
    bar->addSeparator();
    bar->addWidget(new QLabel(" View ", bar));
    _mode = new QComboBox(bar);
    _mode->setObjectName("viewMode");
    for (const std::string& mode : TsViewRender::getViewNames()) {
        _mode->addItem(QString::fromStdString(mode));
    }
    connect(_mode, &QComboBox::activated, this, [this](int index) {
        if (!_refreshing) {
            perform("view " + TsViewRender::getViewNames().at(static_cast<std::size_t>(index)));
        }
    });
    bar->addWidget(_mode);
    bar->addSeparator();
    bar->addWidget(new QLabel(" Frame ", bar));
    _frame = new QSpinBox(bar);
    _frame->setObjectName("frame");
    _frame->setRange(-100000, 100000);
    connect(_frame, &QSpinBox::valueChanged, this, [this](int frame) {
        if (!_refreshing) {
            perform("frame " + std::to_string(frame));
        }
    });
    bar->addWidget(_frame);

    _viewerBar = new StudioViewerBar(
        _session->getViewer(), [this](const std::string& line) { return perform(line); }, this);
    addToolBar(_viewerBar);
    _colour = new StudioColourBar(
        *_session, [this](const std::string& line) { return perform(line); }, this);
    addToolBarBreak();
    addToolBar(_colour);
}

void StudioWindow::buildDocks() {
    addDockWidget(Qt::RightDockWidgetArea, new ColourSpaceDock(*_session, this));
    auto* historyDock = new QDockWidget("History", this);
    historyDock->setObjectName("historyDock");
    _history = new StudioHistory(_interpreter->getProbe(), historyDock);
    _history->setObjectName("history");
    historyDock->setWidget(_history);
    addDockWidget(Qt::LeftDockWidgetArea, historyDock);
    connect(_history, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        if (!_refreshing) {
            goToStep(_history->row(item) - 1);
        }
    });

    auto* nodesDock = new QDockWidget("Nodes", this);
    nodesDock->setObjectName("nodesDock");
    _nodes = new QListWidget(nodesDock);
    _nodes->setObjectName("nodes");
    nodesDock->setWidget(_nodes);
    addDockWidget(Qt::LeftDockWidgetArea, nodesDock);
    connect(_nodes, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        if (!_refreshing) {
            perform("select " + quoted(item->text().toStdString()));
        }
    });
}

// --- following the session

void StudioWindow::refresh() {
    _historyChanged.reset();
    _session->getCommandStack().addChangedCb(&_historyChanged);
    refreshHistory();
    refreshNodes();
    refreshStage();
    _colour->refresh();
    _shot->refresh();
    _document->refresh();
    _viewerBar->refresh();
}

void StudioWindow::historyChanged() {
    refreshHistory();
    refreshNodes();
    _colour->refresh();
    _document->refresh();
}

void StudioWindow::handlerChanged() {
    refreshStage();
}

void StudioWindow::refreshHistory() {
    _refreshing = true;
    _history->refresh(_session->getCommandStack());
    _refreshing = false;
}

void StudioWindow::refreshNodes() {
    _refreshing = true;
    _nodes->clear();
    const RCShdPtr<TsKeyerGroup>& group = _session->getKeyer();
    for (int i = 0; i < group->getKeyerNodeCount(); ++i) {
        const RCShdPtr<TsKeyerNode> node = group->getKeyerNode(i);
        auto* item = new QListWidgetItem(QString::fromStdString(node->getName()), _nodes);
        if (node.get() == _session->getShownNode().get()) {
            _nodes->setCurrentItem(item);
        }
    }
    _refreshing = false;
}

void StudioWindow::refreshStage() {
    if (!_stages || !_session) {
        return;
    }
    _refreshing = true;
    const std::string stage = _session->getViewer().getStage();
    for (QAction* a : _stages->actions()) {
        a->setChecked(a->data().toString().toStdString() == stage);
    }
    _mode->setCurrentIndex(
        _mode->findText(QString::fromStdString(_session->getViewer().getViewMode())));
    _frame->setValue(static_cast<int>(_session->getFrame()));
    _refreshing = false;
}
