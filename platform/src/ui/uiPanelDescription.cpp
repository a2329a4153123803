#include <ui/uiNodeWidgetArea.h>
#include <ui/uiPanelDescription.h>
#include <ui/uiTrackballWidget.h>

#include <base/fsInputFile.h>
#include <base/znLimits.h>
#include <resmgt/liResourcePath.h>

#include <QBuffer>
#include <QByteArray>
#include <QUiLoader>
#include <QWidget>
#include <QXmlStreamReader>

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

// Refuses a description nested deeper, or with more widgets, than the
// loader is given: it recurses once per element and would overflow the
// stack. Answers "" or the line and what is wrong. Malformed XML passes:
// the loader says what is wrong with it.
LiString checkStructure(const QByteArray& bytes) {
    QXmlStreamReader xml(bytes);
    int depth = 0;
    int widgets = 0;
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::EndElement) {
            --depth;
        } else if (token == QXmlStreamReader::StartElement) {
            const LiString line = std::to_string(xml.lineNumber());
            if (++depth > ZnLimits::PanelDepth) {
                return line + ": elements nested more than " +
                       std::to_string(ZnLimits::PanelDepth) + " deep";
            }
            if (xml.name() == QLatin1String("widget") && ++widgets > ZnLimits::PanelWidgets) {
                return line + ": more than " + std::to_string(ZnLimits::PanelWidgets) + " widgets";
            }
        }
    }
    return "";
}

} // namespace

QWidget* UiPanelDescription::build(const LiString& name, QWidget* parent, LiString& error) {
    const LiString path = LiResourcePath::find(name);
    if (path.empty()) {
        error = "panel description " + name +
                ": not found (looked in TESSERA_RESOURCE_PATH "
                "and next to the loaded modules)";
        return nullptr;
    }
    std::string text;
    std::string reason;
    if (!FsInputFile::read(path, ZnLimits::ResourceBytes, "a panel description", text, reason)) {
        error = "panel description " + path + ": cannot be read (" + reason + ")";
        return nullptr;
    }
    QByteArray bytes = QByteArray::fromStdString(text);
    if (bytes.trimmed().isEmpty()) {
        error = "panel description " + path + ": the file is empty";
        return nullptr;
    }
    const LiString tooLarge = checkStructure(bytes);
    if (!tooLarge.empty()) {
        error = "panel description " + path + ":" + tooLarge + " (refused)";
        return nullptr;
    }
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    Loader loader;
    QWidget* widget = loader.load(&buffer, parent);
    if (!widget) {
        const QString why = loader.errorString();
        error = "panel description " + path + ": cannot be parsed (" +
                (why.isEmpty() ? LiString("not a designer form") : why.toStdString()) + ")";
        return nullptr;
    }
    return widget;
}
