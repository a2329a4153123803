#include "studioFiles.h"

#include <QFileDialog>

#include <filesystem>

const StudioFiles::Kind StudioFiles::Plate = {
    "Open Plate", "Images (*.exr *.dpx *.tif *.tiff *.png *.jpg *.jpeg);;All files (*)", ""};
const StudioFiles::Kind StudioFiles::Setup = {
    "Keyer Setup", "Keyer setups (*.tessera);;All files (*)", ".tessera"};
const StudioFiles::Kind StudioFiles::Script = {"Session Script",
                                               "Session scripts (*.tss);;All files (*)", ".tss"};
const StudioFiles::Kind StudioFiles::Export = {"Export", "Images (*.exr *.png *.jpg)", ".exr"};
const StudioFiles::Kind StudioFiles::Snapshot = {"Export Viewer Snapshot", "PNG (*.png)", ".png"};

std::string StudioFiles::withSuffix(const std::string& path, const std::string& suffix) {
    if (path.empty() || suffix.empty() || std::filesystem::path(path).has_extension()) {
        return path;
    }
    return path + suffix;
}

std::string StudioFiles::ask(QWidget* parent, const Kind& kind, bool save,
                             const std::string& directory) {
    const QString start = QString::fromStdString(
        directory.empty() ? std::filesystem::current_path().string() : directory);
    QFileDialog dialog(parent, kind.title, start, kind.filter);
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    if (!kind.suffix.empty()) {
        dialog.setDefaultSuffix(QString::fromStdString(kind.suffix.substr(1)));
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return {};
    }
    const std::string path = dialog.selectedFiles().front().toStdString();
    // A dialog of the platform's may not add it.
    return save ? withSuffix(path, kind.suffix) : path;
}
