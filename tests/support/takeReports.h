#pragma once

#include <base/exReporter.h>

#include <string>
#include <vector>

// What the host reported since the last call, as texts; the reports are
// taken (cleared).
inline std::vector<std::string> takeReports() {
    std::vector<std::string> texts;
    for (const auto& r : ExReporter::getInstance().getReports()) {
        texts.push_back(r.text());
    }
    ExReporter::getInstance().clear();
    return texts;
}
