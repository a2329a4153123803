#pragma once

#include <pluginAPI/piImage.h>
#include <tesseraCore/img/tsKeyerPass.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class TsKeyerNode;
class UiViewer;

// What the viewer shows of the keyer node it shows: the keyer pass's view
// (source, matte, status, foreground or composite) of the node's plate with
// the node's settings at the viewer's frame, re-rendered whenever one of the
// node's inputs changed (an edit, an undo, a load) and kept otherwise.
//
// While the viewer's handler is manipulating (a drag), the view is rendered
// at viewer resolution (TsKeyerPass::renderViewer) and drawn over the plate;
// the first redraw after the drag shows the full-resolution render.
//
// Installed on the viewer by the host session; the viewer calls it while it
// paints (and when it fits the plate without one).
class KeyerImageSource {
public:
    explicit KeyerImageSource(UiViewer& viewer);
    ~KeyerImageSource();
    KeyerImageSource(const KeyerImageSource&) = delete;
    KeyerImageSource& operator=(const KeyerImageSource&) = delete;

    void setMode(TsViewMode mode);
    TsViewMode getMode() const { return _mode; }

    // The image for the viewer at `frame`; empty when the viewer shows no
    // keyer node or the node has no plate.
    PiImagePtr image(double frame);
    // How many renders ran (full, at viewer resolution), for tests.
    int getRenderCount() const { return _renders; }
    int getViewerRenderCount() const { return _viewerRenders; }

    // The view of a keyer node at full resolution at a frame; empty without
    // a plate.
    static PiImagePtr render(const TsKeyerNode& node, double frame, TsViewMode mode);

    // "source", "matte", "status", "foreground", "composite".
    static const std::vector<std::string>& getModeNames();
    static const std::string& getModeName(TsViewMode mode);
    static bool parseMode(const std::string& name, TsViewMode& mode);

private:
    struct Key {
        const void* node = nullptr;
        std::uint64_t revision = 0;
        double frame = 0.0;
        TsViewMode mode = TsViewMode::Source;
        int width = 0; // viewer width of a reduced render; 0 for full
        bool operator==(const Key&) const = default;
    };

    UiViewer& _viewer;
    TsViewMode _mode = TsViewMode::Composite;
    TsKeyerPass _pass;
    Key _key;
    PiImagePtr _image;
    bool _valid = false;
    int _renders = 0;
    int _viewerRenders = 0;
};
