#include "sessionSummary.h"

#include "hostSession.h"

#include <tesseraCore/demo/tsDemoPlate.h>
#include <tesseraCore/render/tsViewRender.h>

#include <iomanip>
#include <sstream>

namespace {

std::string imageText(const std::string& name, const PiClipPtr& clip) {
    if (!clip) {
        return "none";
    }
    const PiFrameRange range = clip->getFrameRange();
    return name + " (" + std::to_string(clip->getClipWidth()) + " x " +
           std::to_string(clip->getClipHeight()) +
           (range.unbounded
                ? ""
                : ", frames " + std::to_string(range.first) + "-" + std::to_string(range.last)) +
           ")";
}

} // namespace

std::optional<TsMatteScore> SessionSummary::score(const HostSession& session) {
    const auto& demo = session.getDemo();
    const RCShdPtr<TsKeyerNode> node = session.getShownNode();
    if (!demo || !node) {
        return std::nullopt;
    }
    const PiImagePtr matte = TsViewRender::render(*node, session.getFrame(), TsViewMode::Matte);
    if (!matte) {
        return std::nullopt;
    }
    return demo->score(*matte);
}

std::string SessionSummary::text(const HostSession& session, const Outputs& outputs) {
    std::ostringstream out;
    out << "Tessera session summary\n\n";
    out << "plate:      " << imageText(session.getPlateName(), session.getPlate()) << "\n";
    out << "background: " << imageText(session.getBackgroundName(), session.getBackground())
        << "\n";
    const RCShdPtr<TsKeyerGroup>& group = session.getKeyer();
    out << "keyer:      " << group->getName() << ", generation " << group->getGeneration()
        << ", nodes:";
    for (int i = 0; i < group->getKeyerNodeCount(); ++i) {
        const RCShdPtr<TsKeyerNode> node = group->getKeyerNode(i);
        out << " " << node->getName()
            << (node.get() == session.getShownNode().get() ? " (shown)" : "");
    }
    out << "\nframe:      " << session.getFrame() << "\n\n";

    if (const std::optional<TsMatteScore> s = score(session)) {
        out << std::fixed << std::setprecision(5);
        out << "matte error against the demo plate's ground truth\n"
            << "(mean absolute alpha error of the shown node's matte):\n"
            << "  inside   " << s->inside << "  (" << s->insideCount << " pixels)\n"
            << "  outside  " << s->outside << "  (" << s->outsideCount << " pixels)\n"
            << "  edges    " << s->edge << "  (" << s->edgeCount << " pixels)\n"
            << "  hair     " << s->hair << "  (" << s->hairCount << " pixels)\n"
            << "  all      " << s->all << "\n\n";
        out.unsetf(std::ios::floatfield);
    } else {
        out << "matte error: no ground truth (the plate is not the demo plate)\n\n";
    }

    const PiCommandStack& stack = session.getCommandStack();
    const std::vector<LiString> names = stack.getStepNames();
    out << "undo history: " << stack.getUndoCount()
        << (stack.getUndoCount() == 1 ? " step" : " steps") << " done, " << stack.getRedoCount()
        << " undone\n";
    for (std::size_t i = 0; i < names.size(); ++i) {
        out << "  " << (i + 1) << ". " << names[i]
            << (static_cast<int>(i) < stack.getUndoCount() ? "" : " (undone)") << "\n";
    }
    out << "\nreports: " << session.getReports().size() << "\n";
    for (const auto& r : session.getReports()) {
        out << "  " << r.text() << "\n";
    }
    out << "\noutputs:\n";
    for (const auto& [kind, path] : outputs) {
        out << "  " << kind << ": " << path << "\n";
    }
    return out.str();
}
