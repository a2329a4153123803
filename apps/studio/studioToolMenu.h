#pragma once

#include <base/cbEmptyType.h>
#include <base/cbMethod.h>

#include <QMenu>

#include <functional>
#include <string>

class PiEventHandler;
class QActionGroup;
class UiViewer;

// The Tools menu: every tool of the keyer's stages, the one a click in the
// viewer uses checked. It follows the viewer's handler and its current tool
// at every change (a stage switched, a hotkey, a panel's menu or toggle, an
// undo that shows another node), so that what it shows is what a click does.
// Each tool shows its hotkey from the hotkey table; choosing one carries out
// `tool NAME` through `perform`.
class StudioToolMenu : public QMenu {
public:
    using Perform = std::function<bool(const std::string&)>;

    StudioToolMenu(UiViewer& viewer, Perform perform, QWidget* parent);
    ~StudioToolMenu() override;

    // The tool the menu shows checked; "" when none is.
    std::string getCheckedTool() const;

private:
    void handlerChanged();
    void toolChanged();

    UiViewer& _viewer;
    Perform _perform;
    QActionGroup* _tools;
    const PiEventHandler* _handler = nullptr; // whose tool changes are followed
    CbMethod<StudioToolMenu, CbEmptyType> _handlerChanged{this, &StudioToolMenu::handlerChanged};
    CbMethod<StudioToolMenu, CbEmptyType> _toolChanged{this, &StudioToolMenu::toolChanged};
};
