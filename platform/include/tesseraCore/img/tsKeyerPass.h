#pragma once

#include <tesseraCore/img/tsScreenEstimate.h>
#include <tesseraCore/tesseraCoreExport.h>
#include <tesseraCore/tsKeyerSettings.h>

#include <pluginAPI/piImage.h>

#include <memory>
#include <mutex>

// What the viewer shows of a keyer node.
enum class TsViewMode {
    Source,     // the plate as it is
    Matte,      // alpha as grey: (alpha, alpha, alpha, 1)
    Status,     // black where alpha is exactly 0, white where exactly 1, grey
                // (0.5) between: (s, s, s, 1)
    Foreground, // the despilled foreground, straight colour, alpha = matte
    Composite   // the foreground over the background input (TsBlendStage)
};

// The keyer's image processing for one frame: the plate and the node's
// settings in, one view out. Each pixel goes through TsMatteStage (the
// alpha), TsDespillStage (the foreground colour) and TsBlendStage (the
// composite); their headers give the formulas. Around them:
//
// - The screen. TsScreenEstimate estimates the screen's colour S across the
//   plate from the plate itself; every pixel X is keyed in the key colour's
//   light, as g X with the gain g = K / S (per channel).
// - Degrain before the key. On a flat patch of screen the grain scatters d1,
//   the matte's axis-1 coordinate, by the screen's grain (measured by the
//   estimate); that scatter is averaged away before the matte is taken: where
//   the d1 of a pixel's 3 x 3 neighbourhood spreads by no more than
//   FlatSpread times the grain, the matte takes the neighbourhood's mean d1;
//   where only the pixel itself stands out of its flat neighbours (a grain
//   speck), their mean; elsewhere, at an edge or on a strand of hair, its own.
//   Where the estimate found the screen clean (more than CleanShare of its
//   cell kept as screen, rising to all of it), the core widens by up to the
//   grain.
// - The foreground. The screen's share is taken out of each pixel before the
//   despill: F = (X - (1 - alpha) S) / alpha (0 where alpha is below
//   MinUnmixAlpha, negative components 0), so that a soft edge or a strand
//   of hair carries the subject's colour rather than the screen's, and the
//   composite alpha F + (1 - alpha) B puts the background where the screen
//   was.
//
// Images are PiImage (float RGBA, rows bottom to top). The background is read
// at the plate's pixel coordinates; where it does not reach (or when there is
// none) it is transparent black, or the checkerboard for the composite when
// there is no background at all. The estimate is taken first, then rows run
// in parallel (oneTBB); within a row pixels go in blocks of 64, split into
// colour planes, through loops written for the compiler to vectorise (built
// for SSE2, AVX2 and AVX-512, chosen at load time); the output is written
// around the cache.
//
// The viewer path renders the same views from proxies of the plate and
// background: both box-filtered by the smallest integer factor that brings
// the plate to at most the viewer's width. The proxies are built once per
// plate and factor and kept, so a drag step costs only the keying of the
// proxy; the viewer shows the full-resolution render when the drag ends.
//
// Setting the plate, the background or the settings is not thread-safe with
// rendering; the renders themselves may run on any thread.
class TS_CORE_API TsKeyerPass {
public:
    static constexpr float FlatSpread = 4.5f;
    static constexpr float CleanShare = 0.6f;
    static constexpr float MinUnmixAlpha = 1e-3f;

    TsKeyerPass() = default;

    void setPlate(const PiImagePtr& plate);
    void setBackground(const PiImagePtr& background); // null: none
    void setSettings(const TsKeyerSettings& settings) { _settings = settings; }

    const PiImagePtr& getPlate() const { return _plate; }
    const PiImagePtr& getBackground() const { return _background; }
    const TsKeyerSettings& getSettings() const { return _settings; }

    // The view at full resolution. `out` takes the plate's size; its storage
    // is reused when it already has it. No plate: `out` becomes empty.
    void render(TsViewMode mode, PiImage& out) const;
    PiImagePtr render(TsViewMode mode) const;

    // The view at viewer resolution, for a viewer at most maxWidth pixels
    // wide (see above; a plate no wider than that is rendered as it is).
    void renderViewer(TsViewMode mode, int maxWidth, PiImage& out);
    // The reduction factor used for a viewer of that width (1 or more).
    int getViewerFactor(int maxWidth) const;

    // The whole pass on explicit images: `background` may be null;
    // checkerScale is the plate pixels per pixel of `plate` (the proxy factor),
    // so that the checkerboard keeps its size in the viewer.
    static void run(const PiImage& plate, const PiImage* background,
                    const TsKeyerSettings& settings, TsViewMode mode, PiImage& out,
                    int checkerScale = 1);
    // The same with the screen estimate of that plate and settings given.
    static void run(const PiImage& plate, const PiImage* background,
                    const TsKeyerSettings& settings, const TsScreenEstimate& screen,
                    TsViewMode mode, PiImage& out, int checkerScale);

    // The plate box-filtered by an integer factor (each output pixel the mean
    // of a factor x factor block; blocks cut by the right or top edge average
    // what they hold).
    static PiImagePtr reduce(const PiImage& image, int factor);

private:
    // The screen estimate of `plate` for the settings, kept from the last
    // render of that image while the settings it depends on stay the same:
    // a drag of the edge softness, the spill or the blend keys again without
    // estimating again. Slot 0 is the full-resolution plate, 1 the proxy.
    std::shared_ptr<const TsScreenEstimate> estimate(const PiImagePtr& plate, int slot) const;

    PiImagePtr _plate;
    PiImagePtr _background;
    TsKeyerSettings _settings;

    struct KeptEstimate {
        PiImagePtr plate;
        TsKeyerSettings settings;
        std::shared_ptr<const TsScreenEstimate> estimate;
    };
    mutable std::mutex _estimateMutex;
    mutable KeptEstimate _estimates[2];

    // Viewer proxies, for _proxyFactor.
    std::mutex _proxyMutex;
    int _proxyFactor = 0;
    PiImagePtr _plateProxy;
    PiImagePtr _backgroundProxy;
};
