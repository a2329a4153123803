#pragma once

#include "frameList.h"

#include <string>
#include <vector>

// The frames of a farm render as they are on disk: for each frame, whether
// every output has its file and the file is whole. Every frame of an output
// has one size, the one most of its frames have; a frame of another size is
// damaged, as is one that does not read.
//
// A quick look (Depth::Header, what status uses) reads each file's header,
// as tessera-run --resume does; a thorough one (Depth::Pixels, verify) also
// reads every pixel, which finds a file cut short after its header.
class FrameCheck {
public:
    enum class Depth { Header, Pixels };
    struct Problem {
        int frame = 0;
        std::string file;
        std::string what; // "missing", or why it is damaged
        bool missing = false;
    };
    struct Report {
        std::vector<int> complete;     // every output whole, in order
        std::vector<Problem> problems; // by frame, then by output
    };

    static Report run(const std::vector<std::string>& outputs, const FrameList& frames,
                      Depth depth);
};
