#include <tesseraCore/io/tsPlateIO.h>

#include <tesseraCore/colour/tsColour.h>

#include <base/exReporter.h>
#include <base/fsAtomicFile.h>
#include <base/fsInputFile.h>
#include <base/znLimits.h>

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <memory>
#include <mutex>
#include <new>
#include <vector>

namespace {

// The header attribute that names the colour space a file was written in.
const char* const ColourSpaceAttribute = "colorSpace";

std::atomic<std::uint64_t> maxPixels{ZnLimits::PlatePixels};

std::uint64_t maxBytes() {
    return maxPixels.load() * ZnLimits::PlateBytesPerPixel;
}

std::string lower(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return s;
}

// The library's message on one line (several lines joined with "; "); a
// generic text when it gave none.
std::string cleaned(const std::string& message, const char* fallback) {
    std::string out;
    std::string line;
    auto flush = [&] {
        while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) {
            line.pop_back();
        }
        if (!line.empty()) {
            out += (out.empty() ? "" : "; ") + line;
        }
        line.clear();
    };
    for (char c : message) {
        if (c == '\n') {
            flush();
        } else {
            line += c;
        }
    }
    flush();
    return out.empty() ? std::string(fallback) : out;
}

std::string readFailure(const std::string& path, const std::string& why) {
    return "cannot read plate \"" + path + "\": " + why;
}

std::string writeFailure(const std::string& path, const std::string& why) {
    return "cannot write image \"" + path + "\": " + why;
}

// What the plate asks for, from the header alone: within the limits, or the
// reason it is refused. Both windows within the limit of pixels bound what
// the read allocates: a float RGBA plate of the display window and the
// decoded data window.
std::string checkSize(const OIIO::ImageSpec& spec) {
    const auto display =
        static_cast<std::uint64_t>(spec.full_width) * static_cast<std::uint64_t>(spec.full_height);
    const auto data =
        static_cast<std::uint64_t>(spec.width) * static_cast<std::uint64_t>(spec.height);
    const std::uint64_t limit = maxPixels.load();
    const std::string raising = " (--max-plate-pixels raises the limit)";
    auto size = [](int w, int h) { return std::to_string(w) + " x " + std::to_string(h); };
    if (display > limit) {
        return "its display window is " + size(spec.full_width, spec.full_height) +
               " pixels, more than the " + std::to_string(limit) + " a plate may have" + raising;
    }
    if (data > limit) {
        return "its data window is " + size(spec.width, spec.height) + " pixels, more than the " +
               std::to_string(limit) + " a plate may have" + raising;
    }
    return "";
}

PiImagePtr readImage(const std::string& path, const std::string& colourSpace, std::string* used,
                     std::string& error) {
    std::string reason;
    if (!FsInputFile::check(path, maxBytes(), "a plate file", reason)) {
        error = readFailure(path, reason);
        return {};
    }
    std::string source;
    if (!colourSpace.empty() && !TsColour::resolve(colourSpace, source, error)) {
        error = readFailure(path, error);
        return {};
    }
    OIIO::ImageSpec config;
    config.attribute("oiio:UnassociatedAlpha", 1);
    std::unique_ptr<OIIO::ImageInput> in = OIIO::ImageInput::open(path, &config);
    if (!in) {
        error = readFailure(path, cleaned(OIIO::geterror(), "unknown or unreadable format"));
        return {};
    }
    const OIIO::ImageSpec spec = in->spec();
    const int channels = spec.nchannels;
    if (spec.deep) {
        error = readFailure(path, "deep images are not supported");
        return {};
    }
    if (channels != 1 && channels != 3 && channels != 4) {
        error = readFailure(path, std::to_string(channels) +
                                      " channels (only 1, 3 or 4 channels are read)");
        return {};
    }
    if (spec.width <= 0 || spec.height <= 0 || spec.full_width <= 0 || spec.full_height <= 0) {
        error = readFailure(path, "empty image");
        return {};
    }
    if (spec.depth != 1) {
        error = readFailure(path, "volume images are not supported");
        return {};
    }
    const std::string tooLarge = checkSize(spec);
    if (!tooLarge.empty()) {
        error = readFailure(path, tooLarge);
        return {};
    }
    const bool associated =
        channels == 4 && spec.get_int_attribute("oiio:UnassociatedAlpha", 0) == 0;
    if (source.empty()) {
        // What the file says it holds: the space this reader writes, else
        // the reader's own guess.
        source = TsColour::getFileSpace(
            path, spec.get_string_attribute(ColourSpaceAttribute,
                                            spec.get_string_attribute("oiio:ColorSpace")));
    }

    const std::size_t values = static_cast<std::size_t>(spec.width) *
                               static_cast<std::size_t>(spec.height) *
                               static_cast<std::size_t>(channels);
    std::vector<float> data;
    try {
        data.resize(values);
    } catch (const std::bad_alloc&) {
        error = readFailure(path, "not enough memory");
        return {};
    }
    // Some readers note a damaged file but still answer true.
    if (!in->read_image(0, 0, 0, channels, OIIO::TypeDesc::FLOAT, data.data()) || in->has_error()) {
        error = readFailure(path, cleaned(in->geterror(), "read failed"));
        // Closing a damaged file can note further errors; they are taken too,
        // so that none is left over to prefix the message of a later failure.
        in->close();
        (void)in->geterror();
        (void)OIIO::geterror();
        return {};
    }
    in->close();
    auto value = [&](std::size_t index) {
        const float v = data[index];
        return std::isnan(v) ? 0.0f : v;
    };

    auto plate = rcMake<PiImage>(spec.full_width, spec.full_height);
    const int top = spec.full_y + spec.full_height - 1; // image-space y of plate row 0
    for (int y = spec.y; y < spec.y + spec.height; ++y) {
        const int j = top - y;
        if (j < 0 || j >= spec.full_height) {
            continue;
        }
        const std::size_t rowStart =
            static_cast<std::size_t>(y - spec.y) * static_cast<std::size_t>(spec.width) * channels;
        float* dst = plate->row(j);
        for (int x = spec.x; x < spec.x + spec.width; ++x) {
            const int i = x - spec.full_x;
            if (i < 0 || i >= spec.full_width) {
                continue;
            }
            const std::size_t s = rowStart + static_cast<std::size_t>(x - spec.x) * channels;
            float rgba[4];
            if (channels == 1) {
                rgba[0] = rgba[1] = rgba[2] = value(s);
                rgba[3] = 1.0f;
            } else {
                rgba[0] = value(s);
                rgba[1] = value(s + 1);
                rgba[2] = value(s + 2);
                rgba[3] = channels == 4 ? value(s + 3) : 1.0f;
            }
            if (associated && rgba[3] > 0.0f) {
                for (int c = 0; c < 3; ++c) {
                    rgba[c] /= rgba[3];
                }
            }
            std::copy(rgba, rgba + 4, dst + 4 * i);
        }
    }
    // Into the working space: the pixels the data window gave, once.
    const int i0 = std::max(spec.x - spec.full_x, 0);
    const int i1 = std::min(spec.x + spec.width - spec.full_x, spec.full_width);
    const int j0 = std::max(top - (spec.y + spec.height - 1), 0);
    const int j1 = std::min(top - spec.y + 1, spec.full_height);
    if (i1 > i0 && j1 > j0 &&
        !TsColour::convert(plate->row(j0) + 4 * static_cast<std::size_t>(i0),
                           static_cast<std::size_t>(i1 - i0), static_cast<std::size_t>(j1 - j0),
                           4 * static_cast<std::size_t>(spec.full_width), source,
                           TsColour::getWorkingSpace(), error)) {
        error = readFailure(path, error);
        return {};
    }
    if (used) {
        *used = source;
    }
    return plate;
}

// The writer's file: what it writes goes to an atomic file, each write
// checked (a full disk or a file size limit makes that file fail, which the
// writer may or may not notice).
class AtomicFileProxy : public OIIO::Filesystem::IOProxy {
public:
    AtomicFileProxy(FsAtomicFile& file, const std::string& name)
        : IOProxy(name, Write)
        , _file(file) {}
    const char* proxytype() const override { return "atomic file"; }
    bool seek(int64_t offset) override {
        m_pos = offset;
        return offset >= 0;
    }
    size_t write(const void* buf, size_t size) override {
        const size_t n = pwrite(buf, size, m_pos);
        m_pos += static_cast<int64_t>(n);
        return n;
    }
    size_t pwrite(const void* buf, size_t size, int64_t offset) override {
        const std::lock_guard lock(_mutex);
        return offset >= 0 && _file.writeAt(buf, size, static_cast<std::uint64_t>(offset)) ? size
                                                                                           : 0;
    }
    size_t size() const override { return static_cast<size_t>(_file.getSize()); }

private:
    FsAtomicFile& _file;
    std::mutex _mutex;
};

bool writeImage(const PiImage& image, const std::string& path, const std::string& colourSpace,
                TsPlateIO::Holds holds, std::string& error) {
    if (image.isEmpty()) {
        error = writeFailure(path, "the image is empty");
        return false;
    }
    const std::string extension = lower(std::filesystem::path(path).extension().string());
    const bool exr = extension == ".exr";
    const bool jpeg = extension == ".jpg" || extension == ".jpeg";
    if (!exr && !jpeg && extension != ".png") {
        error = writeFailure(path, "unsupported extension \"" + extension +
                                       "\" (images are written as .exr, .png or .jpg)");
        return false;
    }
    std::string target;
    if (colourSpace.empty()) {
        target = exr ? TsColour::getWorkingSpace() : TsColour::getDisplaySpace();
    } else if (!TsColour::resolve(colourSpace, target, error)) {
        error = writeFailure(path, error);
        return false;
    }
    // Encoded straight into an atomic file: every byte the writer hands over
    // is checked on its way to the disk, whatever the writer makes of a
    // failure, and the file replaces an earlier one only once it is whole.
    // (The writer goes first, while its file is still there.)
    FsAtomicFile file(path);
    AtomicFileProxy proxy(file, path);
    std::unique_ptr<OIIO::ImageOutput> out = OIIO::ImageOutput::create(path);
    if (!out) {
        error = writeFailure(path, cleaned(OIIO::geterror(), "no writer for this format"));
        return false;
    }
    const int width = image.getWidth();
    const int height = image.getHeight();
    const bool matte = exr && holds == TsPlateIO::Holds::Matte;
    OIIO::ImageSpec spec(width, height,
                         matte  ? 1
                         : jpeg ? 3
                                : 4,
                         exr    ? OIIO::TypeDesc::FLOAT
                         : jpeg ? OIIO::TypeDesc::UINT8
                                : OIIO::TypeDesc::UINT16);
    if (matte) {
        spec.channelnames = {"A"};
        spec.alpha_channel = 0;
    } else if (!jpeg) {
        spec.alpha_channel = 3;
    }
    if (!exr) {
        spec.attribute("oiio:UnassociatedAlpha", 1);
    }
    if (!matte) {
        spec.attribute("oiio:ColorSpace", target);
        spec.attribute(ColourSpaceAttribute, target);
    }
    // A frame is the same bytes whichever machine renders it, and whenever:
    // the EXR writer stamps the time of writing (capDate) unless it is given
    // a time, so it is given an empty one.
    spec.attribute("DateTime", "");
    // The file's rows top to bottom, in the file's space, then premultiplied
    // (EXR) or clamped to the integer range.
    std::vector<float> data(4 * image.getPixelCount());
    for (int y = 0; y < height; ++y) {
        const float* src = image.row(height - 1 - y);
        std::copy(src, src + 4 * static_cast<std::size_t>(width),
                  data.data() + 4 * static_cast<std::size_t>(width) * y);
    }
    const auto w = static_cast<std::size_t>(width);
    if (matte) {
        for (std::size_t i = 0; i < image.getPixelCount(); ++i) {
            data[i] = data[4 * i];
        }
        data.resize(image.getPixelCount());
    } else if (!TsColour::convert(data.data(), w, static_cast<std::size_t>(height), 4 * w,
                                  TsColour::getWorkingSpace(), target, error)) {
        error = writeFailure(path, error);
        return false;
    }
    for (std::size_t i = 0; !matte && i < data.size(); i += 4) {
        float* d = data.data() + i;
        if (exr) {
            d[0] *= d[3];
            d[1] *= d[3];
            d[2] *= d[3];
        } else {
            for (int c = 0; c < 4; ++c) {
                d[c] = std::clamp(d[c], 0.0f, 1.0f);
            }
        }
    }
    if (!out->set_ioproxy(&proxy)) {
        error = writeFailure(path, "the " + extension + " writer cannot write through the host");
        return false;
    }
    const bool opened = file.open() && out->open(path, spec);
    // JPEG takes the colour and leaves alpha.
    const bool written = opened && out->write_image(OIIO::TypeDesc::FLOAT, data.data(),
                                                    (matte ? 1 : 4) * sizeof(float));
    const bool closed = opened && out->close();
    if (!file.getError().empty()) {
        error = writeFailure(path, file.getError());
        return false;
    }
    if (!opened || !written || !closed) {
        error = writeFailure(path, cleaned(out->geterror(), "write failed"));
        return false;
    }
    if (!file.commit()) {
        error = writeFailure(path, file.getError());
        return false;
    }
    return true;
}

} // namespace

PiImagePtr TsPlateIO::read(const std::string& path, std::string& error,
                           const std::string& colourSpace, std::string* used) {
    error.clear();
    try {
        return readImage(path, colourSpace, used, error);
    } catch (const std::bad_alloc&) {
        error = readFailure(path, "not enough memory");
    } catch (const std::exception& ex) {
        error = readFailure(path, ex.what());
    } catch (...) {
        error = readFailure(path, "unknown failure");
    }
    return {};
}

bool TsPlateIO::write(const PiImage& image, const std::string& path, std::string& error,
                      const std::string& colourSpace, Holds holds) {
    error.clear();
    try {
        return writeImage(image, path, colourSpace, holds, error);
    } catch (const std::bad_alloc&) {
        error = writeFailure(path, "not enough memory");
    } catch (const std::exception& ex) {
        error = writeFailure(path, ex.what());
    } catch (...) {
        error = writeFailure(path, "unknown failure");
    }
    return false;
}

void TsPlateIO::setMaxPixels(std::uint64_t pixels) {
    maxPixels = pixels;
}

std::uint64_t TsPlateIO::getMaxPixels() {
    return maxPixels;
}

bool TsPlateIO::setMaxPixels(const std::string& text, std::string& error) {
    std::uint64_t pixels = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), pixels);
    if (ec != std::errc() || end != text.data() + text.size() || pixels == 0) {
        error = "--max-plate-pixels takes a whole number of pixels, not \"" + text + "\"";
        return false;
    }
    setMaxPixels(pixels);
    return true;
}

bool TsPlateIO::probe(const std::string& path, int& width, int& height, std::string& error,
                      const std::string& colourSpace, std::string* used) {
    error.clear();
    std::string reason;
    if (!FsInputFile::check(path, maxBytes(), "a plate file", reason)) {
        error = readFailure(path, reason);
        return false;
    }
    std::string source;
    if (!colourSpace.empty() && !TsColour::resolve(colourSpace, source, error)) {
        return false;
    }
    std::unique_ptr<OIIO::ImageInput> in = OIIO::ImageInput::open(path);
    if (!in) {
        error = readFailure(path, cleaned(OIIO::geterror(), "unknown or unreadable format"));
        return false;
    }
    const OIIO::ImageSpec spec = in->spec();
    in->close();
    width = spec.full_width;
    height = spec.full_height;
    if (width <= 0 || height <= 0) {
        error = readFailure(path, "empty image");
        return false;
    }
    if (const std::string tooLarge = checkSize(spec); !tooLarge.empty()) {
        error = readFailure(path, tooLarge);
        return false;
    }
    if (used) {
        *used = !source.empty()
                    ? source
                    : TsColour::getFileSpace(
                          path,
                          spec.get_string_attribute(ColourSpaceAttribute,
                                                    spec.get_string_attribute("oiio:ColorSpace")));
    }
    return true;
}
