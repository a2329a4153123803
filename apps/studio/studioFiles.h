#pragma once

#include <QString>

#include <string>

class QWidget;

// The studio's file dialogs. A name typed without an extension gets the
// kind's, as file dialogs conventionally do, so that a setup saved as
// "shot12" is "shot12.tessera" and the open dialog lists it.
class StudioFiles {
public:
    struct Kind {
        QString title;
        QString filter;     // "Keyer setups (*.tessera);;All files (*)"
        std::string suffix; // ".tessera"; "" for none
    };
    static const Kind Plate;
    static const Kind Setup;
    static const Kind Script;
    static const Kind Export; // .exr by default; .png or .jpg as typed
    static const Kind Snapshot;

    // The file the user chose; "" when the dialog was cancelled. The dialog
    // opens in `directory` ("" for the current directory).
    static std::string ask(QWidget* parent, const Kind& kind, bool save,
                           const std::string& directory = "");
    // `path` with the suffix added when its file name has no extension.
    static std::string withSuffix(const std::string& path, const std::string& suffix);
};
