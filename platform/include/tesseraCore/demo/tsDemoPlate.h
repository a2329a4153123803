#pragma once

#include <tesseraCore/tesseraCoreExport.h>
#include <tesseraCore/tsKeyerSettings.h>

#include <base/coRgbColorTyped.h>
#include <pluginAPI/piImage.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// How close a matte comes to a ground truth: mean absolute alpha error over
// three disjoint regions. The edge band holds every pixel whose true alpha
// lies strictly between 0 and 1 and every pixel within EdgeBandRadius pixels
// of one (a square neighbourhood); inside and outside are the rest, with true
// alpha 1 and 0. The hair is a region of its own across them: the edge band
// of fine detail (hair, fur, filaments, lattice bars), every pixel within
// EdgeBandRadius of one that fine detail covers in part.
struct TS_CORE_API TsMatteScore {
    static constexpr int EdgeBandRadius = 2;

    double inside = 0.0;
    double outside = 0.0;
    double edge = 0.0;
    double hair = 0.0;
    double all = 0.0;
    std::size_t insideCount = 0;
    std::size_t outsideCount = 0;
    std::size_t edgeCount = 0;
    std::size_t hairCount = 0;
};

// The built-in demo plate, generated: by default a head-and-shoulders subject
// with soft edges (crisp on its left, increasingly soft to its right) and a
// crown of thin hair strands, over a green screen that is unevenly lit
// (within about 6 %), grainy, and spills onto the subject's edges; with the
// ground truth that made it, so that a key can be scored. The same options
// give the same images, bit for bit. Geometry scales with the height; the
// default is 1280 x 720.
//
// The plate is  truth alpha * (foreground + spill) + (1 - truth alpha) * screen,
// plus grain on every pixel; spill adds the screen's chroma (its colour
// minus its grey) to the foreground, most at the subject's edges and on fine
// detail.
//
// Other subjects, and heavier grain, stronger unevenness and more spill, make
// the plates that a keyer is measured on beyond the default one:
//   portrait    the default: brown hair, skin, a striped shirt
//   darkhair    the portrait with near-black hair
//   lighthair   the portrait with blond hair
//   fur         a white furry animal with a dark nose
//   lattice     a light see-through lattice and a semi-transparent white veil
//   stem        a yellow-green stem and leaves, near the screen's hue, with a
//               seed head of fine white filaments
class TS_CORE_API TsDemoPlate {
public:
    enum class Subject { Portrait, DarkHair, LightHair, Fur, Lattice, Stem };

    struct Options {
        int width = 1280;
        int height = 720;
        std::uint64_t seed = 1;
        // Multipliers of the default plate's grain (its standard deviation),
        // unevenness (the screen light's departure from its mean: 1 stays
        // within about -7 % and +4 %, 4 within -29 % and +17 %) and spill.
        double grain = 1.0;
        double uneven = 1.0;
        double spill = 1.0;
        Subject subject = Subject::Portrait;
        // The frame of a shot counted from 0 (TsDemoShot): the subject sways
        // sideways (up to 6 % of the height either way, a swing every 40
        // frames), the screen's light dims by up to 8 % and back every 60
        // frames while its unevenness drifts across, and the grain is new.
        // Frame 0 is the still.
        int frame = 0;
    };

    // The subjects' names, in the order of Subject; false for an unknown one.
    static const std::vector<std::string>& getSubjectNames();
    static bool parseSubject(const std::string& name, Subject& subject);

    TsDemoPlate();
    explicit TsDemoPlate(const Options& options);

    const Options& getOptions() const { return _options; }
    const PiImagePtr& getPlate() const { return _plate; }
    // A scene for the composite: sky, sun and ground, without subject.
    const PiImagePtr& getBackground() const { return _background; }
    // The true alpha, laid out as a matte: (alpha, alpha, alpha, 1).
    const PiImagePtr& getTruthAlpha() const { return _truthAlpha; }
    // The subject's colour before spill and grain (straight), alpha = truth.
    const PiImagePtr& getTruthForeground() const { return _truthForeground; }
    // Per pixel (row by row from the bottom), whether it is in the hair
    // region of the score.
    const std::vector<unsigned char>& getHairMask() const { return _hair; }
    // The mean screen colour without grain at the top-left corner.
    const CoRgbColorTyped<float>& getScreenColour() const { return _screen; }

    // The key colour as an artist would pick it: the per-channel median of
    // the plate's top-left 32 x 32 corner, which is all screen.
    CoRgbColorTyped<float> pickScreenColour() const;
    // Default parameters with both key colours set to pickScreenColour().
    TsKeyerSettings makeDefaultSettings() const;

    // The score of a matte (alpha read from its first channel) against the
    // truth; the matte must have the plate's size (otherwise every count is
    // 0). Without a hair mask the hair region is empty.
    TsMatteScore score(const PiImage& matte) const;
    static TsMatteScore score(const PiImage& truth, const PiImage& matte,
                              const std::vector<unsigned char>* hair = nullptr);

    // The per-channel median of the pixels of [x, x + w) x [y, y + h)
    // (clipped to the image; black when nothing is left).
    static CoRgbColorTyped<float> medianColour(const PiImage& image, int x, int y, int w, int h);

private:
    void generate();

    Options _options;
    PiImagePtr _plate;
    PiImagePtr _background;
    PiImagePtr _truthAlpha;
    PiImagePtr _truthForeground;
    std::vector<unsigned char> _hair;
    CoRgbColorTyped<float> _screen;
};
