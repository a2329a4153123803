#include "studioAutosave.h"

#include "studioDocument.h"
#include "studioWindow.h"

#include "host/hostSession.h"
#include "host/outputWriter.h"
#include "host/sessionRecorder.h"
#include "host/sessionScript.h"

#include <base/exReporter.h>
#include <tesseraCore/setup/tsValueText.h>
#include <tesseraCore/tsSetup.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>

#include <algorithm>
#include <filesystem>
#include <set>

namespace {

std::string existing(const std::string& path) {
    std::error_code ec;
    return std::filesystem::exists(path, ec) ? path : std::string();
}

} // namespace

StudioAutosave::StudioAutosave(StudioWindow& window)
    : _window(window) {
    connect(&_timer, &QTimer::timeout, this, [this] { saveNow(); });
}

StudioAutosave::~StudioAutosave() {
    if (_lock) {
        // A normal close: nothing to recover.
        std::remove(getSetupPath().c_str());
        std::remove(getRecordingPath().c_str());
        _lock->unlock();
    }
}

std::string StudioAutosave::defaultDirectory() {
    return (QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + "/autosave")
        .toStdString();
}

bool StudioAutosave::start(const std::string& directory, int seconds) {
    if (!QDir().mkpath(QString::fromStdString(directory))) {
        ExReporter::getInstance().report("autosave", "cannot make the directory \"" + directory +
                                                         "\"; the studio does not autosave");
        return false;
    }
    _directory = directory;
    _stem = directory + "/studio-" + std::to_string(QCoreApplication::applicationPid()) + "-" +
            std::to_string(QDateTime::currentMSecsSinceEpoch());
    _lock = std::make_unique<QLockFile>(QString::fromStdString(_stem + ".lock"));
    if (!_lock->tryLock(0)) {
        _lock.reset();
        ExReporter::getInstance().report("autosave", "cannot lock \"" + _stem +
                                                         ".lock\"; the studio does not autosave");
        return false;
    }
    if (seconds > 0) {
        _timer.start(seconds * 1000);
    }
    return true;
}

bool StudioAutosave::saveNow() {
    if (!_lock) {
        return false;
    }
    std::string setup;
    std::string error;
    bool ok = TsSetup::write(*_window.getSession().getKeyer(), setup, error);
    if (ok && setup != _lastSetup) {
        ok = OutputWriter::writeBytes(setup, getSetupPath(), error);
        _lastSetup = ok ? setup : std::string();
    }
    const std::string recording = _window.getRecorder().getText();
    if (ok && recording != _lastRecording) {
        ok = OutputWriter::writeBytes(recording, getRecordingPath(), error);
        _lastRecording = ok ? recording : std::string();
    }
    if (!ok) {
        ExReporter::getInstance().report("autosave", error);
    }
    return ok;
}

std::vector<StudioAutosave::Leftover> StudioAutosave::findLeftovers() const {
    std::vector<Leftover> found;
    const QDir dir(QString::fromStdString(_directory.empty() ? defaultDirectory() : _directory));
    std::set<std::string> stems;
    for (const QFileInfo& info :
         dir.entryInfoList({"studio-*.tessera", "studio-*.tss", "studio-*.lock"}, QDir::Files,
                           QDir::Time)) { // newest first
        const std::string path = info.absoluteFilePath().toStdString();
        const std::string stem = path.substr(0, path.size() - info.suffix().size() - 1);
        if ((_lock && stem == std::filesystem::absolute(_stem).string()) ||
            !stems.insert(stem).second) {
            continue;
        }
        // A studio that runs holds its lock; the lock of one that died is
        // stale (its process is gone, however old the file is), and taking it
        // and letting it go removes it.
        QLockFile lock(QString::fromStdString(stem + ".lock"));
        lock.setStaleLockTime(0);
        if (!lock.tryLock(0)) {
            continue;
        }
        lock.unlock();
        Leftover leftover{stem + ".lock", existing(stem + ".tessera"), existing(stem + ".tss"), {}};
        if (leftover.setup.empty() && leftover.recording.empty()) {
            continue; // died before its first autosave: nothing to offer
        }
        const QFileInfo saved(
            QString::fromStdString(leftover.setup.empty() ? leftover.recording : leftover.setup));
        leftover.time = saved.lastModified().toString("d MMM yyyy hh:mm:ss").toStdString();
        found.push_back(leftover);
    }
    return found;
}

void StudioAutosave::discard(const Leftover& leftover) {
    for (const std::string& path : {leftover.setup, leftover.recording, leftover.lock}) {
        if (!path.empty()) {
            std::remove(path.c_str());
        }
    }
}

bool StudioAutosave::offerRecovery() {
    bool recovered = false;
    for (const Leftover& leftover : findLeftovers()) {
        QMessageBox box(QMessageBox::Question, "Recover Work",
                        "Tessera Studio did not close normally.", QMessageBox::NoButton, &_window);
        box.setObjectName("recoverWork");
        box.setInformativeText(QString::fromStdString(
            "It autosaved its work" + (leftover.time.empty() ? "" : " at " + leftover.time) +
            ". Recover it, or discard it for good?"));
        QPushButton* recover = box.addButton("Recover", QMessageBox::AcceptRole);
        QPushButton* discardButton = box.addButton("Discard", QMessageBox::DestructiveRole);
        box.addButton("Later", QMessageBox::RejectRole);
        box.setDefaultButton(recover);
        box.exec();
        if (box.clickedButton() == recover && !recovered) {
            recovered = this->recover(leftover);
        } else if (box.clickedButton() == discardButton) {
            discard(leftover);
        }
    }
    return recovered;
}

bool StudioAutosave::recover(const Leftover& leftover) {
    std::vector<std::string> lines;
    std::string plate;
    std::string background;
    std::string document;
    if (!leftover.recording.empty()) {
        try {
            const SessionScript recording = SessionScript::read(leftover.recording);
            for (const SessionScript::Line& line : recording.getLines()) {
                lines.push_back(line.text);
                const std::string& command = line.words.front();
                if (command == "plate") {
                    plate = line.text;
                } else if (command == "background") {
                    background = line.text;
                } else if ((command == "save" || command == "load") && line.words.size() == 2) {
                    document = line.words[1];
                }
            }
        } catch (const SessionError& e) {
            ExReporter::getInstance().report("recovery", e.what());
            lines.clear();
        }
    }
    for (const std::string& line : {plate, background}) {
        if (!line.empty()) {
            _window.perform(line);
        }
    }
    if (!leftover.setup.empty() &&
        !_window.perform("open " + TsValueText::quoteWord(leftover.setup))) {
        return false;
    }
    // The session goes on from where the studio that died left it.
    _window.getRecorder().restore(lines);
    _window.getDocument().recovered(document);
    discard(leftover);
    saveNow();
    return true;
}
