#include <tesseraCore/img/tsScreenEstimate.h>

#include <tesseraCore/img/tsMatteStage.h>
#include <tesseraUtil/tsMgAnimToAlgo.h>
#include <tesseraUtil/tsMgUtils.h>
#include <tesseraUtil/tsUtils.h>

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <utility>

namespace {

using Rgb = CoRgbColorTyped<float>;

// Brightness bins: sixteenths of an octave of s over [1/4, 4).
constexpr int Bins = 64;

int binOf(float s) {
    // The exponent and the top four bits of the mantissa: s in [2^e, 2^(e+1))
    // falls in bin 16 (e + 2) + m, close to log2 steps of 1/16.
    const std::uint32_t bits = std::bit_cast<std::uint32_t>(s);
    const int e = static_cast<int>((bits >> 23) & 0xffu) - 127;
    const int m = static_cast<int>((bits >> 19) & 15u);
    return std::clamp(16 * (e + 2) + m, 0, Bins - 1);
}

struct Cell {
    std::array<int, Bins> count{};
    std::array<Rgb, Bins> sum{};
    // The key's chroma in the colour, q = (u . X) / |c|: its spread over a
    // cell's screen is the screen's grain in units of d1.
    std::array<float, Bins> q{};
    std::array<float, Bins> q2{};
    int looked = 0;
};

float unit(double v) {
    return v > 0.0 ? static_cast<float>(std::min(v, 1.0)) : 0.0f;
}

} // namespace

bool TsScreenEstimate::sameInputs(const TsKeyerSettings& a, const TsKeyerSettings& b) {
    auto foreground = [](const TsKeyerSettings& s) {
        std::vector<std::pair<CoAffineMatrixTyped<float>, double>> out;
        for (const TsKeyerSettings::Patch& patch : s.patches) {
            if (patch.mode == 2) {
                out.emplace_back(patch.box, patch.range);
            }
        }
        return out;
    };
    return a.keyColors == b.keyColors && a.matte[1] == b.matte[1] && a.matte[2] == b.matte[2] &&
           a.matte[8] == b.matte[8] && foreground(a) == foreground(b);
}

TsScreenEstimate::TsScreenEstimate(const PiImage& plate, const TsKeyerSettings& settings) {
    _width = plate.getWidth();
    _height = plate.getHeight();
    if (plate.isEmpty()) {
        return;
    }
    const TsMatteStage matte(settings);
    _key = matte.getKeyColour();
    const TsMgUtils::KeyAxes axes = TsMgUtils::getKeyAxes(_key);
    const float keyNorm2 = _key.r * _key.r + _key.g * _key.g + _key.b * _key.b;
    if (axes.chroma <= TsMgUtils::MinChroma || !(keyNorm2 > 0.0f)) {
        return;
    }
    const float low =
        std::max(0.25f, 1.0f - TsMgAnimToAlgo::shadowsToScreenReach(unit(settings.matte[1])));
    const float high =
        std::min(4.0f, 1.0f + TsMgAnimToAlgo::highlightsToScreenReach(unit(settings.matte[2])));
    const float maxDeparture2 = MaxDeparture * MaxDeparture * axes.chroma * axes.chroma;
    std::vector<CoAffineMatrixTyped<float>> foreground;
    std::vector<float> foregroundReach;
    for (const TsKeyerSettings::Patch& patch : settings.patches) {
        if (patch.mode == 2 && patch.box != CoAffineMatrixTyped<float>::IDENTITY) {
            foreground.push_back(patch.box);
            foregroundReach.push_back(1.0f + unit(patch.range));
        }
    }

    _cell = std::max(4, (_height + CellsDown - 1) / CellsDown);
    _columns = (_width + _cell - 1) / _cell;
    _rows = (_height + _cell - 1) / _cell;
    const int step = std::max(1, _cell / Samples);
    std::vector<Cell> cells(static_cast<std::size_t>(_columns) * _rows);
    const Rgb key = _key;
    const Rgb u = axes.axis[0] * -1.0f;
    tbb::parallel_for(tbb::blocked_range<int>(0, _rows), [&](const tbb::blocked_range<int>& range) {
        for (int cy = range.begin(); cy != range.end(); ++cy) {
            Cell* row = &cells[static_cast<std::size_t>(cy) * _columns];
            const int y1 = std::min(_height, (cy + 1) * _cell);
            for (int y = cy * _cell + step / 2; y < y1; y += step) {
                const float* p = plate.row(y) + 4 * (step / 2);
                for (int x = step / 2; x < _width; x += step, p += 4 * step) {
                    Cell& cell = row[x / _cell];
                    ++cell.looked;
                    const Rgb c{p[0], p[1], p[2]};
                    const float s = (c.r * key.r + c.g * key.g + c.b * key.b) / keyNorm2;
                    if (!(s >= low && s <= high)) {
                        continue;
                    }
                    const Rgb d = c - key * s;
                    if (d.r * d.r + d.g * d.g + d.b * d.b > maxDeparture2 * s * s) {
                        continue;
                    }
                    bool isForeground = false;
                    for (std::size_t k = 0; k < foreground.size() && !isForeground; ++k) {
                        isForeground = TsUtils::boxDistance(foreground[k], c.r, c.g, c.b) <=
                                       foregroundReach[k];
                    }
                    if (isForeground) {
                        continue;
                    }
                    const int bin = binOf(s);
                    ++cell.count[bin];
                    cell.sum[bin] = cell.sum[bin] + c;
                    const float q = (u.r * c.r + u.g * c.g + u.b * c.b) / axes.chroma;
                    cell.q[bin] += q;
                    cell.q2[bin] += q * q;
                }
            }
        }
    });

    // Each cell's most common brightness, or none.
    std::vector<Rgb> screen(cells.size());
    std::vector<float> grain(cells.size(), 0.0f);
    std::vector<float> share(cells.size(), 0.0f);
    std::vector<int> known(cells.size(), -1); // the generation that filled it
    for (std::size_t k = 0; k < cells.size(); ++k) {
        const Cell& cell = cells[k];
        int best = 0, bestAt = 0;
        for (int b = 0; b + 2 < Bins; ++b) {
            const int n = cell.count[b] + cell.count[b + 1] + cell.count[b + 2];
            if (n > best) {
                best = n;
                bestAt = b;
            }
        }
        if (best < std::max(4, static_cast<int>(MinShare * static_cast<float>(cell.looked)))) {
            continue;
        }
        const Rgb sum = cell.sum[bestAt] + cell.sum[bestAt + 1] + cell.sum[bestAt + 2];
        screen[k] = sum * (1.0f / static_cast<float>(best));
        const float n = static_cast<float>(best);
        const float q = (cell.q[bestAt] + cell.q[bestAt + 1] + cell.q[bestAt + 2]) / n;
        const float q2 = (cell.q2[bestAt] + cell.q2[bestAt + 1] + cell.q2[bestAt + 2]) / n;
        grain[k] = std::sqrt(std::max(0.0f, q2 - q * q));
        share[k] = n / static_cast<float>(std::max(1, cell.looked));
        known[k] = 0;
        ++_screenCells;
    }
    if (_screenCells == 0) {
        return;
    }
    // The grain of the plate: the median of the cells' (a cell that holds
    // some subject measures more than the screen's own grain).
    {
        std::vector<float> measured;
        for (std::size_t k = 0; k < cells.size(); ++k) {
            if (known[k] == 0) {
                measured.push_back(grain[k]);
            }
        }
        auto middle = measured.begin() + static_cast<std::ptrdiff_t>(measured.size() / 2);
        std::nth_element(measured.begin(), middle, measured.end());
        _grain = *middle;
    }

    // Cells without screen, nearest first: the mean of their neighbours that
    // were filled before them.
    std::vector<std::size_t> layer;
    for (int generation = 1;; ++generation) {
        layer.clear();
        for (int cy = 0; cy < _rows; ++cy) {
            for (int cx = 0; cx < _columns; ++cx) {
                const std::size_t k = static_cast<std::size_t>(cy) * _columns + cx;
                if (known[k] >= 0) {
                    continue;
                }
                Rgb sum{};
                float grainSum = 0.0f;
                int n = 0;
                for (int dy = -1; dy <= 1; ++dy) {
                    for (int dx = -1; dx <= 1; ++dx) {
                        const int x = cx + dx, y = cy + dy;
                        if (x < 0 || y < 0 || x >= _columns || y >= _rows) {
                            continue;
                        }
                        const std::size_t q = static_cast<std::size_t>(y) * _columns + x;
                        if (known[q] >= 0 && known[q] < generation) {
                            sum = sum + screen[q];
                            grainSum += grain[q];
                            ++n;
                        }
                    }
                }
                if (n > 0) {
                    screen[k] = sum * (1.0f / static_cast<float>(n));
                    grain[k] = grainSum / static_cast<float>(n);
                    layer.push_back(k);
                }
            }
        }
        if (layer.empty()) {
            break;
        }
        for (const std::size_t k : layer) {
            known[k] = generation;
        }
    }

    _gain.resize(screen.size());
    for (std::size_t k = 0; k < screen.size(); ++k) {
        for (int c = 0; c < 3; ++c) {
            const float s = screen[k][c];
            _gain[k][c] = s > 0.0f ? std::clamp(_key[c] / s, 0.25f, 4.0f) : 1.0f;
        }
        _gain[k][3] = _grain;
        _gain[k][4] = share[k];
    }
}

TsScreenEstimate::Values TsScreenEstimate::valuesAt(double x, double y) const {
    if (_gain.empty()) {
        return {1.0f, 1.0f, 1.0f, 0.0f, 0.0f};
    }
    const double u = std::clamp(x / _cell - 0.5, 0.0, static_cast<double>(_columns - 1));
    const double v = std::clamp(y / _cell - 0.5, 0.0, static_cast<double>(_rows - 1));
    const int x0 = std::min(static_cast<int>(u), _columns - 1);
    const int y0 = std::min(static_cast<int>(v), _rows - 1);
    const int x1 = std::min(x0 + 1, _columns - 1);
    const int y1 = std::min(y0 + 1, _rows - 1);
    const float fx = static_cast<float>(u - x0), fy = static_cast<float>(v - y0);
    Values out;
    for (int c = 0; c < ValueCount; ++c) {
        auto at = [&](int cx, int cy) {
            return _gain[static_cast<std::size_t>(cy) * _columns + cx][c];
        };
        out[c] = (at(x0, y0) * (1.0f - fx) + at(x1, y0) * fx) * (1.0f - fy) +
                 (at(x0, y1) * (1.0f - fx) + at(x1, y1) * fx) * fy;
    }
    return out;
}

void TsScreenEstimate::rowLines(int j, Line* lines) const {
    const int blocks = (_width + RowBlock - 1) / RowBlock;
    if (_gain.empty()) {
        const Line none{{1.0f, 1.0f, 1.0f, 0.0f, 0.0f}, {}};
        std::fill(lines, lines + blocks, none);
        return;
    }
    // The two rows of cells blended once, then evaluated at the blocks' ends.
    const double v = std::clamp((j + 0.5) / _cell - 0.5, 0.0, static_cast<double>(_rows - 1));
    const int y0 = std::min(static_cast<int>(v), _rows - 1);
    const int y1 = std::min(y0 + 1, _rows - 1);
    const float fy = static_cast<float>(v - y0);
    std::vector<Values> line(static_cast<std::size_t>(_columns));
    for (int cx = 0; cx < _columns; ++cx) {
        const Values& lo = _gain[static_cast<std::size_t>(y0) * _columns + cx];
        const Values& hi = _gain[static_cast<std::size_t>(y1) * _columns + cx];
        for (int c = 0; c < ValueCount; ++c) {
            line[static_cast<std::size_t>(cx)][c] = lo[c] * (1.0f - fy) + hi[c] * fy;
        }
    }
    auto at = [&](int x) {
        const double u =
            std::clamp((x + 0.5) / _cell - 0.5, 0.0, static_cast<double>(_columns - 1));
        const int x0 = std::min(static_cast<int>(u), _columns - 1);
        const int x1 = std::min(x0 + 1, _columns - 1);
        const float fx = static_cast<float>(u - x0);
        Values value;
        for (int c = 0; c < ValueCount; ++c) {
            value[c] = line[static_cast<std::size_t>(x0)][c] * (1.0f - fx) +
                       line[static_cast<std::size_t>(x1)][c] * fx;
        }
        return value;
    };
    Values start = at(0);
    for (int block = 0; block < blocks; ++block) {
        const Values end = at((block + 1) * RowBlock);
        for (int c = 0; c < ValueCount; ++c) {
            lines[block].start[c] = start[c];
            lines[block].step[c] = (end[c] - start[c]) * (1.0f / RowBlock);
        }
        start = end;
    }
}

CoRgbColorTyped<float> TsScreenEstimate::screenAt(double x, double y) const {
    const Values v = valuesAt(x, y);
    return {_key.r / v[0], _key.g / v[1], _key.b / v[2]};
}

float TsScreenEstimate::grainAt(double x, double y) const {
    return valuesAt(x, y)[3];
}

float TsScreenEstimate::shareAt(double x, double y) const {
    return valuesAt(x, y)[4];
}
