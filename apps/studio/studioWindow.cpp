#include "studioWindow.h"

#include "shotControls.h"
#include "studioColourBar.h"

#include "host/hostSession.h"
#include "host/imageCommands.h"
#include "host/outputWriter.h"
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

#include <QAction>
#include <QActionGroup>
#include <QCloseEvent>
#include <QComboBox>
#include <QDockWidget>
#include <QFileDialog>
#include <QInputDialog>
#include <QKeySequence>
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
    layout->addWidget(&_session->getViewer());
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

    buildDocks();
    buildToolBar();
    buildMenus();

    _reports = new QLabel(this);
    _reports->setObjectName("reportCount");
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
    bool ok = true;
    {
        const SessionRecorder::Pause pause(*_recorder);
        try {
            _interpreter->execute(line, "studio");
        } catch (const SessionError& e) {
            report(e.getMessage());
            ok = false;
        }
    }
    if (ok) {
        _recorder->addLine(line);
    }
    _recorder->refresh();
    refresh();
    return ok;
}

bool StudioWindow::openPlate(const std::string& path) {
    return perform("plate " + quoted(absolute(path)));
}

bool StudioWindow::openBackground(const std::string& path) {
    return perform("background " + quoted(absolute(path)));
}

bool StudioWindow::loadSetup(const std::string& path) {
    return perform("load " + quoted(absolute(path)));
}

bool StudioWindow::saveSetup(const std::string& path) {
    return perform("save " + quoted(absolute(path)));
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

std::string StudioWindow::askFile(const QString& title, const QString& filter, bool save) {
    const QString file = save ? QFileDialog::getSaveFileName(this, title, QString(), filter)
                              : QFileDialog::getOpenFileName(this, title, QString(), filter);
    return file.toStdString();
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
    const QString images = "Images (*.exr *.dpx *.tif *.tiff *.png *.jpg *.jpeg)";
    const QString setups = "Keyer setups (*.tessera);;All files (*)";
    QMenu* file = menuBar()->addMenu("&File");
    file->addAction("Open &Plate...", this, [this, images] {
        const std::string p = askFile("Open Plate", images, false);
        if (!p.empty()) {
            openPlate(p);
        }
    });
    file->addAction("&Demo Plate", this, [this] {
        perform("plate demo");
        perform("background demo");
    });
    file->addAction("Open &Background...", this, [this, images] {
        const std::string p = askFile("Open Background", images, false);
        if (!p.empty()) {
            openBackground(p);
        }
    });
    file->addAction("No Background", this, [this] { perform("background none"); });
    file->addSeparator();
    file->addAction("&Load Setup...", this, [this, setups] {
        const std::string p = askFile("Load Setup", setups, false);
        if (!p.empty()) {
            loadSetup(p);
        }
    });
    file->addAction("&Save Setup...", this, [this, setups] {
        const std::string p = askFile("Save Setup", setups, true);
        if (!p.empty()) {
            saveSetup(p);
        }
    });
    file->addSeparator();
    for (const auto& [kind, label] :
         {std::pair<const char*, const char*>{"matte", "Export &Matte..."},
          {"comp", "Export &Composite..."},
          {"status", "Export S&tatus View..."},
          {"viewer", "Export &Viewer Snapshot..."}}) {
        const std::string k = kind;
        file->addAction(label, this, [this, k] {
            const std::string p = askFile(
                "Export", k == "viewer" ? "PNG (*.png)" : "Images (*.exr *.png *.jpg)", true);
            if (!p.empty()) {
                exportOutput(k, p);
            }
        });
    }
    file->addSeparator();
    file->addAction("Save Session &Script...", this, [this] {
        const std::string p = askFile("Save Session Script", "Session scripts (*.tss)", true);
        if (!p.empty()) {
            saveRecording(p);
        }
    });
    file->addSeparator();
    file->addAction("&Quit", QKeySequence::Quit, this, &QWidget::close);

    QMenu* edit = menuBar()->addMenu("&Edit");
    QAction* undo = edit->addAction("&Undo", QKeySequence::Undo, this, [this] {
        if (_session->getCommandStack().canUndo()) {
            perform("undo");
        }
    });
    undo->setObjectName("undoAction");
    QAction* redo = edit->addAction("&Redo", QKeySequence::Redo, this, [this] {
        if (_session->getCommandStack().canRedo()) {
            perform("redo");
        }
    });
    redo->setObjectName("redoAction");

    QMenu* keyer = menuBar()->addMenu("&Keyer");
    keyer->addAction("New Keyer", this, [this] { perform("keyer variant 1 nodes 3"); });
    keyer->addAction("New Keyer (Generation 2)", this,
                     [this] { perform("keyer variant 2 nodes 3"); });
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

    QMenu* tools = menuBar()->addMenu("&Tools");
    const std::string names[] = {
        TsMgTool::getManipToolName(0),        TsMgTool::getManipToolName(1),
        TsMgTool::getManipToolName(2),        TsMgTool::getManipToolName(3),
        TsDgTool::getManipToolName(2),        TsSpillBlendTool::getManipToolName(2),
        TsSpillBlendTool::getManipToolName(3)};
    for (const std::string& name : names) {
        tools->addAction(QString::fromStdString(name), this,
                         [this, name] { perform("tool " + quoted(name)); });
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
    int shortcut = 1;
    for (const std::string& mode : TsViewRender::getViewNames()) {
        _mode->addItem(QString::fromStdString(mode));
        // The view modes switch with Ctrl+1 .. Ctrl+5.
        auto* action = new QAction(QString::fromStdString(mode), this);
        action->setShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_0 + shortcut++)));
        action->setShortcutContext(Qt::ApplicationShortcut);
        connect(action, &QAction::triggered, this, [this, mode] { perform("view " + mode); });
        addAction(action);
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
    _colour = new StudioColourBar(
        *_session, [this](const std::string& line) { return perform(line); }, this);
    addToolBarBreak();
    addToolBar(_colour);
}

void StudioWindow::buildDocks() {
    auto* historyDock = new QDockWidget("History", this);
    historyDock->setObjectName("historyDock");
    _history = new QListWidget(historyDock);
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
}

void StudioWindow::historyChanged() {
    refreshHistory();
    refreshNodes();
    _colour->refresh();
}

void StudioWindow::handlerChanged() {
    refreshStage();
}

void StudioWindow::refreshHistory() {
    _refreshing = true;
    const PiCommandStack& stack = _session->getCommandStack();
    const std::vector<LiString> names = stack.getStepNames();
    _history->clear();
    _history->addItem("(start)");
    for (std::size_t i = 0; i < names.size(); ++i) {
        auto* item = new QListWidgetItem(QString::fromStdString(names[i]), _history);
        if (static_cast<int>(i) >= stack.getUndoCount()) {
            item->setForeground(Qt::gray);
        }
    }
    _history->setCurrentRow(stack.getUndoCount());
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
