#pragma once

#include <tesseraCore/img/tsKeyerPass.h>
#include <tesseraCore/tesseraCoreExport.h>

#include <pluginAPI/piImage.h>
#include <pluginAPI/piViewRenderer.h>

#include <cstdint>
#include <string>
#include <vector>

class TsKeyerNode;

// Renders a keyer node: its plate and background inputs keyed with its
// settings read at the frame (TsKeyerPass). The one way in for everything
// that shows or writes what the keyer makes: the viewer (through a
// TsViewRenderer), outputs, scores and batch renders.
class TS_CORE_API TsViewRender {
public:
    // "source", "matte", "status", "foreground", "composite": the views in
    // the order of TsViewMode.
    static const std::vector<std::string>& getViewNames();
    static const std::string& getViewName(TsViewMode mode);
    // False for a name that is not a view.
    static bool parseView(const std::string& name, TsViewMode& mode);

    // The view of the node at full resolution at a frame; empty when the
    // node has no plate there.
    static PiImagePtr render(const TsKeyerNode& node, double frame, TsViewMode mode);
    // Writes a view as pipelines read it (TsPlateIO::write): the matte view
    // as a matte (in an EXR's alpha channel), every other view as RGBA.
    static bool write(const PiImage& view, TsViewMode mode, const std::string& path,
                      std::string& error, const std::string& colourSpace = {});
};

// One viewer's renderer of a keyer node: renders again only when one of the
// node's inputs changed (an edit, an undo, a load), or the frame, the view or
// the reduced width did; otherwise it answers the image it made last. Reduced
// renders come from the keyer pass's proxies (TsKeyerPass::renderViewer).
class TS_CORE_API TsViewRenderer : public PiViewRenderer {
public:
    explicit TsViewRenderer(const RCShdPtr<const TsKeyerNode>& node);

    PiImagePtr render(const std::string& view, double time, int width) override;

    // How many renders ran (full, reduced), for tests.
    int getRenderCount() const { return _renders; }
    int getReducedRenderCount() const { return _reducedRenders; }

private:
    struct Key {
        std::uint64_t revision = 0;
        double time = 0.0;
        TsViewMode mode = TsViewMode::Source;
        int width = 0;
        bool operator==(const Key&) const = default;
    };

    // The background reduced like the plate: the clip's copy, else one kept
    // here while the background and the factor stay.
    PiImagePtr reducedBackground(const PiImagePtr& background, double time, int factor);

    RCShdPtr<const TsKeyerNode> _node;
    TsKeyerPass _pass;
    PiImagePtr _backgroundSource;
    PiImagePtr _backgroundReduced;
    int _backgroundFactor = 0;
    Key _key;
    PiImagePtr _image;
    bool _valid = false;
    int _renders = 0;
    int _reducedRenders = 0;
};
