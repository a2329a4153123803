#pragma once

#include <tesseraCore/demo/tsDemoPlate.h>
#include <tesseraCore/tsKeyerNode.h>

#include <tesseraUtil/tsUtils.h>

#include <OpenImageIO/imageio.h>

#include <filesystem>
#include <string>
#include <vector>

// A shot for benchmarks: the demo plate written as half-float EXR frames
// (name.####.exr, frames 1 to N) into a folder of the temporary directory,
// made once and kept for later runs; and a folder for a render's outputs,
// emptied when the shot goes.
class BenchShot {
public:
    BenchShot(const std::string& name, int frames, int width, int height)
        : _frames(frames) {
        namespace fs = std::filesystem;
        _dir = (fs::temp_directory_path() /
                ("tessera-bench-" + name + "-" + std::to_string(width) + "x" +
                 std::to_string(height) + "-" + std::to_string(frames)))
                   .string();
        fs::create_directories(_dir + "/out");
        if (fs::exists(path(last()))) {
            return;
        }
        const TsDemoPlate demo(TsDemoPlate::Options{width, height, 1});
        const PiImage& plate = *demo.getPlate();
        // Rows top to bottom, as the file holds them.
        std::vector<float> pixels(plate.getPixelCount() * 4);
        for (int y = 0; y < height; ++y) {
            const float* row = plate.row(height - 1 - y);
            std::copy(row, row + 4 * width, pixels.begin() + 4 * std::size_t(width) * y);
        }
        for (int f = first(); f <= last(); ++f) {
            auto out = OIIO::ImageOutput::create(path(f));
            out->open(path(f), OIIO::ImageSpec(width, height, 4, OIIO::TypeDesc::HALF));
            out->write_image(OIIO::TypeDesc::FLOAT, pixels.data());
            out->close();
        }
    }
    ~BenchShot() { std::filesystem::remove_all(outputDir()); }

    int first() const { return 1; }
    int last() const { return _frames; }
    int frames() const { return _frames; }
    std::string pattern() const { return _dir + "/plate.####.exr"; }
    std::string path(int frame) const {
        std::string n = std::to_string(frame);
        return _dir + "/plate." + std::string(n.size() < 4 ? 4 - n.size() : 0, '0') + n + ".exr";
    }
    std::string outputDir() const { return _dir + "/out"; }

    // Every stage of the keyer at work: the screen's colour keyed, two
    // patches, the degrain box, spill and a light wrap.
    static void keyEveryStage(TsKeyerNode& node) {
        const CoRgbColorTyped<float> key(0.16f, 0.62f, 0.2f);
        node.getKeyColorInput(TsTypes::KeyColor1)->setValue(0.0, PiValue(key));
        node.getPatchNamesInput()->setValue(0.0, PiValue(PiStringList{"Skin", "Edge"}));
        setBox(node, 0,
               TsUtils::computeMinimalBoxMatrix({{0.5f, 0.3f, 0.2f, 1}, {0.6f, 0.4f, 0.3f, 1}}));
        node.getPatchModeInput(0)->setValue(0.0, PiValue(2));
        setBox(
            node, 1,
            TsUtils::computeMinimalBoxMatrix({{key.r, key.g, key.b, 1}, {0.3f, 0.25f, 0.15f, 1}}));
        node.getPatchModeInput(1)->setValue(0.0, PiValue(1));
        const CoAffineMatrixTyped<float> degrain = TsUtils::computeMinimalBoxMatrix(
            {{key.r - 0.02f, key.g - 0.03f, key.b - 0.02f, 1}, {key.r, key.g, key.b, 1}});
        for (int r = 0; r < 3; ++r) {
            for (int c = 0; c < 4; ++c) {
                node.getDegrainBoxInput(r, c)->setValue(0.0, PiValue(double(degrain.get(r, c))));
            }
        }
        node.getDegrainInput()->setValue(0.0, PiValue(true));
        node.getSpillInput(0)->setValue(0.0, PiValue(0.8));
        node.getBlendInput(0)->setValue(0.0, PiValue(0.5));
    }

private:
    static void setBox(TsKeyerNode& node, int patch, const CoAffineMatrixTyped<float>& box) {
        for (int r = 0; r < 3; ++r) {
            for (int c = 0; c < 4; ++c) {
                node.getPatchBoxInput(patch, r, c)->setValue(0.0, PiValue(double(box.get(r, c))));
            }
        }
    }

    int _frames;
    std::string _dir;
};
