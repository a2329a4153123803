#pragma once

#include <tesseraCore/demo/tsDemoPlate.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

class HostSession;

// The summary of a session, as text: the plate and the background, the
// keyer's nodes, the matte error of the shown node against the demo plate's
// ground truth (mean absolute alpha error inside, outside, on the edges and
// over all, and in the hair, with the pixels counted), the undo history, the reports, and the
// outputs written.
class SessionSummary {
public:
    // (kind, path) of each output written, in order.
    using Outputs = std::vector<std::pair<std::string, std::string>>;

    static std::string text(const HostSession& session, const Outputs& outputs);

    // The score of the shown node's matte at the viewer's frame against the
    // demo plate's truth; none unless the plate is the demo plate.
    static std::optional<TsMatteScore> score(const HostSession& session);
};
