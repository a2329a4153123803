#include "batchRender.h"

#include <tesseraCore/demo/tsDemoPlate.h>
#include <tesseraCore/io/tsSequence.h>
#include <tesseraCore/render/tsShotRender.h>
#include <tesseraCore/render/tsViewRender.h>
#include <tesseraCore/tsKeyerScene.h>

#include <filesystem>
#include <memory>
#include <ostream>

namespace {

// The plate and the background: files, read in the spaces the setup chose,
// or the demo's (made once).
class Sources {
public:
    bool read(TsKeyerScene& scene, TsKeyerScene::Source source, const std::string& name,
              std::string& error) {
        if (name != "demo") {
            return scene.readSource(source, name, name, error);
        }
        if (source == TsKeyerScene::Source::Plate) {
            scene.setPlate(demo().getPlate(), name);
        } else {
            scene.setBackground(demo().getBackground(), name);
        }
        return true;
    }

private:
    const TsDemoPlate& demo() {
        if (!_demo) {
            _demo = std::make_unique<TsDemoPlate>(TsDemoPlate::Options());
        }
        return *_demo;
    }
    std::unique_ptr<TsDemoPlate> _demo;
};

std::string outputPath(const std::string& dir, const std::string& file) {
    std::filesystem::path p(file);
    if (!p.is_absolute() && !dir.empty()) {
        p = std::filesystem::path(dir) / p;
    }
    if (p.has_parent_path()) {
        std::error_code ec;
        std::filesystem::create_directories(p.parent_path(), ec);
    }
    return p.string();
}

} // namespace

const std::vector<std::string>& BatchRender::getKinds() {
    static const std::vector<std::string> kinds = {"source", "matte", "status", "foreground",
                                                   "comp"};
    return kinds;
}

int BatchRender::run(const Options& options, std::ostream& out, std::ostream& err) {
    Sources sources;
    TsKeyerScene scene;
    std::string error;
    // The setup first: it says which colour spaces the files are in.
    if (!scene.openSetup(options.setup, error) ||
        !sources.read(scene, TsKeyerScene::Source::Plate, options.plate, error) ||
        (!options.background.empty() &&
         !sources.read(scene, TsKeyerScene::Source::Background, options.background, error))) {
        err << "tessera-run: " << error << "\n";
        return 1;
    }
    const RCShdPtr<TsKeyerNode> node = scene.getActiveNode();
    if (!node) {
        err << "tessera-run: " << options.setup << ": the setup holds no keyer node\n";
        return 1;
    }
    std::vector<TsShotRender::Output> shot;
    for (const auto& [kind, file] : options.outputs) {
        TsViewMode mode = TsViewMode::Composite;
        if (kind != "comp") {
            TsViewRender::parseView(kind, mode);
        }
        if (TsSequence::isPattern(file)) {
            shot.push_back({kind, mode, outputPath(options.outputDir, file)});
            continue;
        }
        const PiImagePtr image = TsViewRender::render(*node, options.frame, mode);
        const std::string path = outputPath(options.outputDir, file);
        if (!image || !TsViewRender::write(*image, mode, path, error)) {
            err << "tessera-run: " << (image ? error : "there is no plate to key") << "\n";
            return 1;
        }
        out << kind << ": " << path << "\n";
    }
    if (shot.empty()) {
        return 0;
    }
    TsShotRender::Options render;
    render.resume = options.resume;
    const PiFrameRange plate = scene.getPlate()->getFrameRange();
    const int frame = PiClip::frameOf(options.frame);
    render.frames = plate.unbounded ? PiFrameRange{frame, frame, false} : plate;
    if (!options.frames.empty() && !TsSequence::parseRange(options.frames, render.frames)) {
        err << "tessera-run: bad frame range \"" << options.frames << "\"\n";
        return 2;
    }
    const TsShotRender::Result result = TsShotRender::run(*node, shot, render);
    if (!result.ok) {
        err << "tessera-run: " << result.error << "\n";
        return 1;
    }
    for (const TsShotRender::Output& o : shot) {
        out << o.kind << ": " << o.pattern << " (" << result.written << " frames written, "
            << result.skipped << " already complete)\n";
    }
    return 0;
}
