#pragma once

#include <tesseraCore/tesseraCoreExport.h>
#include <tesseraCore/tsKeyerSettings.h>

#include <base/coRgbColorTyped.h>
#include <pluginAPI/piImage.h>

#include <array>
#include <vector>

// The screen's colour across the plate, estimated from the plate itself (a
// clean plate at low resolution), so that the matte can measure each pixel
// against the screen where it is rather than against the one key colour: a
// real screen is lit unevenly, and a pixel of a darker part of it is as much
// screen as the picked one.
//
// The plate is cut into square cells, CellsDown of them down its height.
// In every cell the estimate looks at Samples x Samples pixels on a regular
// grid (all of them in cells smaller than that) and keeps the pixels that are
// the key colour K (the blended key colour of TsMatteStage)
// at another brightness: with s = (X . K) / (K . K) the brightness that
// best explains X as the screen and c the key's chroma (TsMgUtils),
//   s in [1 - shadowReach, 1 + highlightReach]
//   |X - s K| <= MaxDeparture * s |c|              (little hue of its own)
//   X inside no foreground patch (mode 2)
// where the reaches come from the Shadows and Highlights parameters
// (TsMgAnimToAlgo::shadowsToScreenReach, highlightsToScreenReach). Of these
// it keeps the most common brightness: the colours whose s falls in the
// three neighbouring sixteenth-octave bins that hold the most of them. So a
// cell that is mostly screen keeps its screen's colour, even where hair,
// shadows or a dark mix take a share of it. A cell with fewer than MinShare
// of its looked-at pixels kept has no estimate of its own: it takes the mean
// of its neighbours that have one, nearest first (the screen behind the
// subject, continued from around it). Without any screen cell, or with a key
// colour that has no chroma, there is no estimate.
//
// The estimate also measures the screen's grain: in each cell the standard
// deviation, among the colours kept, of q = (u . X) / |c| (u the key's unit
// chroma), the key's chroma in the colour; the grain is the median of the
// cells' (a cell that holds some of the subject measures more). In units of
// the matte's axis 1 (d1), it is how far grain moves a pixel of the screen.
//
// Between cell centres the values are interpolated bilinearly; the
// keyer uses the gain K / S (per channel, within [1/4, 4]) to bring every
// pixel to the key colour's light: a pixel of the screen becomes K, a pixel
// that is a mix of screen and subject becomes the same mix of K and the
// subject seen in that light.
//
// The same plate and settings give the same estimate, whatever the number of
// threads.
class TS_CORE_API TsScreenEstimate {
public:
    static constexpr int CellsDown = 24;
    static constexpr int Samples = 8; // pixels looked at per cell, each way (at most)
    static constexpr float MaxDeparture = 0.3f;
    static constexpr float MinShare = 0.05f;

    // No estimate: the gain is 1 everywhere.
    TsScreenEstimate() = default;
    TsScreenEstimate(const PiImage& plate, const TsKeyerSettings& settings);

    // True when two settings give the same estimate of a plate: the same key
    // colours and key blend, shadows, highlights and foreground patches.
    static bool sameInputs(const TsKeyerSettings& a, const TsKeyerSettings& b);

    bool isEmpty() const { return _gain.empty(); }
    int getCellSize() const { return _cell; }
    int getColumns() const { return _columns; }
    int getRows() const { return _rows; }
    // How many cells have an estimate of their own.
    int getScreenCells() const { return _screenCells; }
    // The screen's grain (0 without an estimate).
    float getGrain() const { return _grain; }

    // The values along one block of RowBlock pixels of a row: the gains
    // K / S, the grain, and the share of the pixels looked at that were kept
    // as screen (0 where a cell has no screen of its own), each a straight
    // line value = start + step k between the values at the block's first
    // pixel and at the next block's (closer than the grain to the bilinear
    // interpolation, which bends only at cell centres).
    static constexpr int RowBlock = 64;
    static constexpr int ValueCount = 5;
    enum Value { GainR, GainG, GainB, Grain, Share };
    struct Line {
        float start[ValueCount];
        float step[ValueCount];
    };
    // The lines of row j, one per block of RowBlock pixels from pixel 0.
    void rowLines(int j, Line* lines) const;
    // The estimated screen colour, its grain and its share at plate point
    // (x, y).
    CoRgbColorTyped<float> screenAt(double x, double y) const;
    float grainAt(double x, double y) const;
    float shareAt(double x, double y) const;

private:
    using Values = std::array<float, ValueCount>; // by Value
    Values valuesAt(double x, double y) const;

    int _width = 0;
    int _height = 0;
    int _cell = 1;
    int _columns = 0;
    int _rows = 0;
    int _screenCells = 0;
    float _grain = 0.0f;
    CoRgbColorTyped<float> _key;
    std::vector<Values> _gain; // per cell, row by row from the bottom
};
