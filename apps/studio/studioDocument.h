#pragma once

#include <QString>

#include <string>

class StudioWindow;

// The keyer setup the studio works on, as a desktop document: the file it
// was last saved to or loaded from, whether it changed since (the history
// is not at its clean step, or the work was recovered and not saved yet),
// the window title that shows both ("shot12.tessera* - Tessera Studio"), and
// the question asked before anything discards unsaved changes.
class StudioDocument {
public:
    explicit StudioDocument(StudioWindow& window);

    // The file; "" until the setup is saved or loaded.
    const std::string& getPath() const { return _path; }
    // After a save or a load: the work is in that file.
    void saved(const std::string& path);
    // A new keyer: no file, nothing to lose.
    void cleared();
    // Recovered work: changed until saved.
    void recovered(const std::string& path);
    bool isModified() const;
    // Follows the session: the title and its modified mark.
    void refresh();

    // Before an action that would discard unsaved changes (`action` names it
    // in the question: "New Keyer"): Save, Discard or Cancel. True when the
    // action may go on: nothing to lose, saved, or discarded.
    bool confirmDiscard(const QString& action);
    // Saves to the document's file, or to one the user chooses; false when
    // not saved (cancelled, or the save failed: the status line says why).
    bool save();
    bool saveAs();

private:
    StudioWindow& _window;
    std::string _path;
    bool _recovered = false;
};
