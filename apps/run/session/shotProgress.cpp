#include "shotProgress.h"

#include <cmath>
#include <ostream>
#include <sstream>

ShotProgress::ShotProgress(std::ostream& os, bool terminal)
    : _os(os)
    , _terminal(terminal)
    , _last(std::chrono::steady_clock::now()) {}

std::string ShotProgress::line(const TsShotRender::Progress& p) const {
    const int finished = p.done + p.skipped;
    const double fps = p.seconds > 0.0 ? p.done / p.seconds : 0.0;
    const int left = p.total - finished;
    std::ostringstream os;
    os.setf(std::ios::fixed);
    os.precision(1);
    if (_terminal) {
        constexpr int Width = 30;
        const int filled = p.total > 0 ? Width * finished / p.total : Width;
        os << "[" << std::string(static_cast<std::size_t>(filled), '#')
           << std::string(static_cast<std::size_t>(Width - filled), '.') << "] ";
    }
    os << finished << "/" << p.total << " frames";
    if (p.skipped > 0) {
        os << " (" << p.skipped << " already done)";
    }
    os << ", " << fps << " fps";
    if (fps > 0.0 && left > 0) {
        os << ", " << static_cast<long>(std::ceil(left / fps)) << " s left";
    }
    return os.str();
}

void ShotProgress::operator()(const TsShotRender::Progress& p) {
    const auto now = std::chrono::steady_clock::now();
    if (_terminal) {
        _os << "\r" << line(p) << "\x1b[K" << std::flush;
        _drawn = true;
    } else if (now - _last >= std::chrono::seconds(5)) {
        _os << "tessera-run: " << line(p) << "\n";
        _last = now;
    }
}

void ShotProgress::finish(const TsShotRender::Progress& p) {
    if (_terminal && _drawn) {
        _os << "\r\x1b[K";
    }
    std::ostringstream seconds;
    seconds.setf(std::ios::fixed);
    seconds.precision(1);
    seconds << p.seconds;
    _os << "tessera-run: " << line(p) << " in " << seconds.str() << " s\n";
}
