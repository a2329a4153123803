#include "studioToolMenu.h"

#include "studioShortcuts.h"

#include <base/exReporter.h>
#include <pluginAPI/piCurrentToolEventHandler.h>
#include <pluginAPI/piEventHandlingInterface.h>
#include <pluginAPI/piNode.h>
#include <pluginAPI/piPath.h>
#include <tesseraCore/setup/tsValueText.h>
#include <tesseraCore/tsDgTool.h>
#include <tesseraCore/tsMgTool.h>
#include <tesseraCore/tsSpillBlendTool.h>
#include <ui/uiHotkeyRegistry.h>
#include <ui/uiViewer.h>

#include <QActionGroup>

StudioToolMenu::StudioToolMenu(UiViewer& viewer, Perform perform, QWidget* parent)
    : QMenu("&Tools", parent)
    , _viewer(viewer)
    , _perform(std::move(perform))
    , _tools(new QActionGroup(this)) {
    setObjectName("toolsMenu");
    _tools->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
    const std::string names[] = {
        TsMgTool::getManipToolName(0),        TsMgTool::getManipToolName(1),
        TsMgTool::getManipToolName(2),        TsMgTool::getManipToolName(3),
        TsDgTool::getManipToolName(2),        TsSpillBlendTool::getManipToolName(2),
        TsSpillBlendTool::getManipToolName(3)};
    for (const std::string& name : names) {
        QAction* action = addAction(QString::fromStdString(name));
        action->setCheckable(true);
        action->setData(QString::fromStdString(name));
        _tools->addAction(action);
        // The viewer takes the tool's hotkey where the pointer is; the menu
        // shows it.
        StudioShortcuts::bind(action, UiHotkeyRegistry::TesseraDomain, name, false);
        connect(action, &QAction::triggered, this,
                [this, name] { _perform("tool " + TsValueText::quoteWord(name)); });
    }
    PiEventHandlingInterface::getInstance().addCurrentEventHandlerChangedCallback(&_handlerChanged);
    handlerChanged();
}

StudioToolMenu::~StudioToolMenu() {
    _handlerChanged.reset();
    _toolChanged.reset();
}

std::string StudioToolMenu::getCheckedTool() const {
    const QAction* checked = _tools->checkedAction();
    return checked ? checked->data().toString().toStdString() : std::string();
}

void StudioToolMenu::handlerChanged() {
    const RCShdPtr<PiEventHandler> handler = _viewer.getCurrentEventHandler();
    if (handler.get() == _handler) {
        return;
    }
    _toolChanged.reset();
    _handler = handler.get();
    if (auto* current = dynamic_cast<PiCurrentToolEventHandler*>(handler.get())) {
        // Called once at once: the menu shows the new handler's tool.
        current->addToolChangedCb(&_toolChanged);
    } else {
        toolChanged();
    }
}

void StudioToolMenu::toolChanged() {
    std::string tool;
    const RCShdPtr<PiEventHandler> handler = _viewer.getCurrentEventHandler();
    if (auto* current = dynamic_cast<PiCurrentToolEventHandler*>(handler.get())) {
        exContain("studio: the current tool", [&] { tool = current->getCurrentTool(); });
    }
    for (QAction* action : _tools->actions()) {
        action->setChecked(action->data().toString().toStdString() == tool);
    }
}
