#include <ui/uiMainWindow.h>
#include <ui/uiWidget.h>
#include <ui/vpDrawArea.h>

#include <QWidget>

VpDrawArea::~VpDrawArea() = default;

UiMainWindow::UiMainWindow(QWidget* window)
    : _window(window) {}

UiMainWindow::~UiMainWindow() = default;

UiWidget* UiMainWindow::getWidgetAt(const GePoint2<float>& global) const {
    if (!_window) {
        return nullptr;
    }
    const QPoint local = _window->mapFromGlobal(QPointF(global.x, global.y)).toPoint();
    if (!_window->rect().contains(local)) {
        return nullptr;
    }
    QWidget* widget = _window->childAt(local);
    return UiWidget::fromQWidget(widget ? widget : _window);
}
