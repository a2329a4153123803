#include "studioDocument.h"

#include "studioFiles.h"
#include "studioWindow.h"

#include "host/hostSession.h"

#include <QMessageBox>

#include <filesystem>

StudioDocument::StudioDocument(StudioWindow& window)
    : _window(window) {}

void StudioDocument::saved(const std::string& path) {
    _path = path;
    _recovered = false;
    refresh();
}

void StudioDocument::cleared() {
    _path.clear();
    _recovered = false;
    refresh();
}

void StudioDocument::recovered(const std::string& path) {
    _path = path;
    _recovered = true;
    refresh();
}

bool StudioDocument::isModified() const {
    return _recovered || _window.getSession().isModified();
}

void StudioDocument::refresh() {
    const QString name = _path.empty()
                             ? QString("Untitled")
                             : QString::fromStdString(std::filesystem::path(_path).filename());
    // [*] is where the window system shows the modified mark.
    _window.setWindowTitle(name + "[*] - Tessera Studio");
    _window.setWindowModified(isModified());
}

bool StudioDocument::confirmDiscard(const QString& action) {
    if (!isModified()) {
        return true;
    }
    QMessageBox box(QMessageBox::Warning, action, "The keyer setup has changes that are not saved.",
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, &_window);
    box.setObjectName("unsavedChanges");
    box.setInformativeText("Save them before \"" + action + "\"?");
    box.setDefaultButton(QMessageBox::Save);
    switch (box.exec()) {
    case QMessageBox::Save:
        return save();
    case QMessageBox::Discard:
        return true;
    default:
        return false;
    }
}

bool StudioDocument::save() {
    return _path.empty() ? saveAs() : _window.saveSetup(_path);
}

bool StudioDocument::saveAs() {
    // Beside the setup's file, when it has one.
    const std::string path = StudioFiles::ask(
        &_window, StudioFiles::Setup, true,
        _path.empty() ? std::string() : std::filesystem::path(_path).parent_path().string());
    return !path.empty() && _window.saveSetup(path);
}
