#include <ui/uiNodeWidgetArea.h>
#include <ui/uiPanelDescription.h>
#include <ui/uiTrackballWidget.h>

#include <resmgt/liResourcePath.h>

#include <QBuffer>
#include <QByteArray>
#include <QFile>
#include <QUiLoader>
#include <QWidget>

namespace {

// The designer's loader, with the toolkit's own widget classes.
class Loader : public QUiLoader {
public:
    QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override {
        QWidget* widget = nullptr;
        if (className == QLatin1String("UiNodeWidgetArea")) {
            widget = new UiNodeWidgetArea(parent);
        } else if (className == QLatin1String("UiTrackballWidget")) {
            widget = new UiTrackballWidget(parent);
        } else {
            return QUiLoader::createWidget(className, parent, name);
        }
        widget->setObjectName(name);
        return widget;
    }
};

} // namespace

QWidget* UiPanelDescription::build(const LiString& name, QWidget* parent, LiString& error) {
    const LiString path = LiResourcePath::find(name);
    if (path.empty()) {
        error = "panel description " + name +
                ": not found (looked in TESSERA_RESOURCE_PATH "
                "and next to the loaded modules)";
        return nullptr;
    }
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly)) {
        error = "panel description " + path + ": cannot be read (" +
                file.errorString().toStdString() + ")";
        return nullptr;
    }
    QByteArray bytes = file.readAll();
    if (bytes.trimmed().isEmpty()) {
        error = "panel description " + path + ": the file is empty";
        return nullptr;
    }
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    Loader loader;
    QWidget* widget = loader.load(&buffer, parent);
    if (!widget) {
        const QString reason = loader.errorString();
        error = "panel description " + path + ": cannot be parsed (" +
                (reason.isEmpty() ? LiString("not a designer form") : reason.toStdString()) + ")";
        return nullptr;
    }
    return widget;
}
