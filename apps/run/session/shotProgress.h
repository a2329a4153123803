#pragma once

#include <tesseraCore/render/tsShotRender.h>

#include <chrono>
#include <iosfwd>

// The progress of a shot render on standard error: a bar redrawn in place on
// a terminal (frames done, frames per second, time left), a line every few
// seconds elsewhere (a log, a farm task), and a last line when done.
class ShotProgress {
public:
    ShotProgress(std::ostream& os, bool terminal);
    void operator()(const TsShotRender::Progress& progress);
    void finish(const TsShotRender::Progress& progress);

private:
    std::string line(const TsShotRender::Progress& progress) const;

    std::ostream& _os;
    bool _terminal;
    std::chrono::steady_clock::time_point _last;
    bool _drawn = false;
};
