#pragma once

#include <QObject>
#include <QTimer>

#include <memory>
#include <string>
#include <vector>

class QLockFile;
class StudioWindow;

// Keeps the studio's work safe from a crash or a kill. While autosave runs,
// the studio holds a lock file in the autosave directory and, every
// interval, writes the keyer's setup and the session recording beside it
// when they changed since the last autosave (each file written aside and
// renamed over the last one, so that a crash in the middle leaves the
// previous autosave whole). A studio that closes normally removes its files.
//
// The files of a studio that died (no lock held by a running process) are
// what the next studio offers to recover: its
// setup becomes the keyer (with no history, changed and not saved, under
// the file it was last saved to or loaded from) on the plate and background
// the recording last named, and its recording goes on in this studio's, so
// that the whole session still replays to the same setup.
class StudioAutosave : public QObject {
public:
    // What a studio that died left behind.
    struct Leftover {
        std::string lock;
        std::string setup;     // "" when none was written
        std::string recording; // "" when none was written
        std::string time;      // of the last autosave, for the question
    };

    explicit StudioAutosave(StudioWindow& window);
    ~StudioAutosave() override;

    // The user's data directory for autosaves (the platform's application
    // data location, "autosave" in it).
    static std::string defaultDirectory();

    // Starts autosaving into the directory (made when missing) every
    // `seconds` (0: only when saveNow is called); false (reported) when the
    // directory cannot be made or locked.
    bool start(const std::string& directory, int seconds);
    bool isRunning() const { return static_cast<bool>(_lock); }
    const std::string& getDirectory() const { return _directory; }
    std::string getSetupPath() const { return _stem + ".tessera"; }
    std::string getRecordingPath() const { return _stem + ".tss"; }

    // Writes what changed since the last autosave; false (reported) when a
    // write failed.
    bool saveNow();

    // The leftovers of studios that died, newest first.
    std::vector<Leftover> findLeftovers() const;
    // Asks, for each leftover, whether to recover it (Recover), remove it
    // (Discard) or keep it for the next start (Later). Answers whether one
    // was recovered.
    bool offerRecovery();
    // Carries out a recovery; false (reported, the leftover kept) when its
    // setup cannot be read.
    bool recover(const Leftover& leftover);
    static void discard(const Leftover& leftover);

private:
    StudioWindow& _window;
    std::string _directory;
    std::string _stem;
    std::unique_ptr<QLockFile> _lock;
    QTimer _timer;
    std::string _lastSetup;
    std::string _lastRecording;
};
