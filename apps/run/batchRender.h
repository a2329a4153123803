#pragma once

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

// tessera-run --render: a keyer setup rendered to files with no window
// system. Everything here stands on the keyer's core alone (no interface
// library is loaded): the setup is loaded into a keyer scene, the plate (and
// background: stills or sequences) wired to its nodes, and the views of its
// active node written: at one frame, or for a range of frames when the file
// is a frame pattern (TsShotRender).
class BatchRender {
public:
    struct Options {
        std::string setup;
        std::string plate;      // a file, or "demo"
        std::string background; // a file, "demo" or "" for none
        double frame = 0.0;
        // Outputs to frame patterns (out/matte.####.exr) are written for
        // every frame of this range (FIRST-LAST; "" for the plate's).
        std::string frames;
        bool resume = false;   // skip frames already complete
        std::string outputDir; // where relative output files go
        // KIND (source, matte, status, foreground, comp) and FILE.
        std::vector<std::pair<std::string, std::string>> outputs;
    };

    // The output kinds of --write.
    static const std::vector<std::string>& getKinds();

    // Answers the program's exit status: 0 when every output was written, 1
    // when something failed (said on `err`, naming the file and the reason).
    static int run(const Options& options, std::ostream& out, std::ostream& err);
};
