#include "frameCheck.h"

#include <tesseraCore/io/tsPlateIO.h>
#include <tesseraCore/render/tsShotRender.h>

#include <oneapi/tbb/parallel_for.h>

#include <algorithm>
#include <filesystem>
#include <map>

namespace {

struct Look {
    bool exists = false;
    bool read = false;
    int width = 0;
    int height = 0;
    std::string error;
};

Look look(const std::string& path, FrameCheck::Depth depth) {
    Look l;
    std::error_code ec;
    l.exists = std::filesystem::exists(path, ec);
    if (!l.exists) {
        return l;
    }
    if (depth == FrameCheck::Depth::Header) {
        l.read = TsPlateIO::probe(path, l.width, l.height, l.error);
    } else if (const PiImagePtr image = TsPlateIO::read(path, l.error)) {
        l.read = true;
        l.width = image->getWidth();
        l.height = image->getHeight();
    }
    return l;
}

std::string sizeText(int width, int height) {
    return std::to_string(width) + "x" + std::to_string(height);
}

} // namespace

FrameCheck::Report FrameCheck::run(const std::vector<std::string>& outputs, const FrameList& frames,
                                   Depth depth) {
    const std::vector<int> all = frames.frames();
    std::map<int, std::vector<Problem>> problems;
    for (const std::string& pattern : outputs) {
        std::vector<Look> looks(all.size());
        oneapi::tbb::parallel_for(std::size_t(0), all.size(), [&](std::size_t i) {
            looks[i] = look(TsShotRender::framePath(pattern, all[i]), depth);
        });
        // The size most frames have.
        std::map<std::pair<int, int>, int> sizes;
        for (const Look& l : looks) {
            sizes[{l.width, l.height}] += l.read ? 1 : 0;
        }
        const auto common =
            std::max_element(sizes.begin(), sizes.end(),
                             [](const auto& a, const auto& b) { return a.second < b.second; });
        for (std::size_t i = 0; i < all.size(); ++i) {
            const Look& l = looks[i];
            Problem p{all[i], TsShotRender::framePath(pattern, all[i]), {}, !l.exists};
            if (!l.exists) {
                p.what = "missing";
            } else if (!l.read) {
                p.what = l.error;
            } else if (std::pair{l.width, l.height} != common->first) {
                p.what = p.file + ": " + sizeText(l.width, l.height) +
                         ", where the other frames are " +
                         sizeText(common->first.first, common->first.second);
            } else {
                continue;
            }
            problems[all[i]].push_back(std::move(p));
        }
    }
    Report report;
    for (const int f : all) {
        auto found = problems.find(f);
        if (found == problems.end()) {
            report.complete.push_back(f);
        } else {
            std::move(found->second.begin(), found->second.end(),
                      std::back_inserter(report.problems));
        }
    }
    return report;
}
