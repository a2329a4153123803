// tessera-studio: the desktop application of the keyer.
#include "studioAutosave.h"
#include "studioWindow.h"

#include "host/hostPackages.h"

#include <tesseraCore/io/tsPlateIO.h>

#include <QApplication>

#include <iostream>
#include <memory>
#include <string>

namespace {

void usage(std::ostream& os) {
    os << "usage: tessera-studio [--demo] [--plate FILE] [--script SESSION] [--record FILE]\n"
          "                      [--max-plate-pixels N] [--autosave SECONDS]\n"
          "\n"
          "  --demo            start on the built-in demo plate and its background\n"
          "  --plate FILE      start on a plate file\n"
          "  --script SESSION  carry out a session script first (docs/session-scripts.md)\n"
          "  --record FILE     write what is done as a session script to FILE, from the start\n"
          "                    to the close (File > Save Session Script writes it at any time)\n"
          "  --max-plate-pixels N\n"
          "                    read plates of up to N pixels (default 67108864, 8192 x 8192)\n"
          "  --autosave SECONDS  autosave the setup and the recording this often (default 30;\n"
          "                    0: never) into the user's data directory; a studio that did\n"
          "                    not close normally is offered for recovery at the next start\n"
          "  --help, --version this text; the version (no display needed)\n";
}

} // namespace

int main(int argc, char** argv) {
    // Answered before the toolkit starts: they need no display.
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        if (a == "--help" || a == "-h") {
            usage(std::cout);
            return 0;
        }
        if (a == "--version") {
            std::cout << "tessera-studio " << TESSERA_VERSION << "\n";
            return 0;
        }
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName("tessera-studio");
    bool demo = false;
    std::string plate;
    std::string script;
    std::string record;
    int autosave = 30;
    const QStringList args = QApplication::arguments();
    for (int i = 1; i < args.size(); ++i) {
        const std::string a = args[i].toStdString();
        if (a == "--demo") {
            demo = true;
        } else if (a == "--plate" && i + 1 < args.size()) {
            plate = args[++i].toStdString();
        } else if (a == "--script" && i + 1 < args.size()) {
            script = args[++i].toStdString();
        } else if (a == "--record" && i + 1 < args.size()) {
            record = args[++i].toStdString();
        } else if (a == "--autosave" && i + 1 < args.size()) {
            bool ok = false;
            autosave = args[++i].toInt(&ok);
            if (!ok || autosave < 0) {
                std::cerr << "tessera-studio: --autosave takes a number of seconds, not \""
                          << args[i].toStdString() << "\"\n";
                return 2;
            }
        } else if (a == "--max-plate-pixels" && i + 1 < args.size()) {
            std::string error;
            if (!TsPlateIO::setMaxPixels(args[++i].toStdString(), error)) {
                std::cerr << "tessera-studio: " << error << "\n";
                return 2;
            }
        } else {
            std::cerr << "tessera-studio: unexpected argument \"" << a << "\"\n";
            usage(std::cerr);
            return 2;
        }
    }

    int status = 0;
    {
        StudioWindow window;
        // Work a studio that died left behind comes first.
        window.getAutosave().offerRecovery();
        if (autosave > 0) {
            window.getAutosave().start(StudioAutosave::defaultDirectory(), autosave);
        }
        std::string error;
        if (!record.empty() && !window.recordTo(record, error)) {
            std::cerr << "tessera-studio: cannot record the session: " << error << "\n";
            status = 2;
        }
        if (status == 0 && demo) {
            window.perform("plate demo");
            window.perform("background demo");
        }
        if (status == 0 && !plate.empty()) {
            window.openPlate(plate);
        }
        if (status == 0 && !script.empty() && !window.runScript(script)) {
            std::cerr << "tessera-studio: " << window.getStatusText().toStdString() << "\n";
        }
        if (status == 0) {
            window.show();
            status = QApplication::exec();
        }
        if (status == 0 && !window.isRecordingWritten()) {
            std::cerr << "tessera-studio: the recording was not saved: " << window.getRecordError()
                      << "\n";
            status = 1;
        }
    }
    HostPackages::shutdownAndUnload();
    return status;
}
