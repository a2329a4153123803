#include "tsOcioConfig.h"

#include <tesseraCore/colour/tsColour.h>

#include <base/exReporter.h>
#include <base/fsInputFile.h>
#include <base/znLimits.h>
#include <resmgt/liResourcePath.h>

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <mutex>
#include <utility>

namespace {

const char* const ShippedName = "tessera.ocio";

// The configuration in use and the processors made from it, which are
// dropped with it.
struct State {
    std::mutex mutex;
    bool started = false;
    TsOcio::Current current;
    std::map<std::pair<std::string, std::string>, OCIO::ConstCPUProcessorRcPtr> processors;
};

State& state() {
    static State s;
    return s;
}

// The library's messages may span lines; reports take one.
std::string oneLine(std::string text) {
    for (char& c : text) {
        if (c == '\n' || c == '\r') {
            c = ' ';
        }
    }
    while (!text.empty() && text.back() == ' ') {
        text.pop_back();
    }
    return text;
}

OCIO::ConstConfigRcPtr readConfig(const std::string& path, std::string& error) {
    std::string reason;
    if (!FsInputFile::check(path, ZnLimits::ResourceBytes, "a colour configuration", reason)) {
        error = "cannot read the colour configuration \"" + path + "\": " + reason;
        return {};
    }
    try {
        OCIO::ConstConfigRcPtr config = OCIO::Config::CreateFromFile(path.c_str());
        config->validate();
        if (config->getNumColorSpaces() == 0) {
            error = "the colour configuration \"" + path + "\" holds no colour space";
            return {};
        }
        return config;
    } catch (const OCIO::Exception& ex) {
        error = "cannot read the colour configuration \"" + path + "\": " + oneLine(ex.what());
    }
    return {};
}

void use(State& s, OCIO::ConstConfigRcPtr config, const std::string& path) {
    s.current.config = std::move(config);
    s.current.path = path;
    ++s.current.revision;
    s.processors.clear();
}

// Called with the lock held; answers what to report once it is released.
std::vector<std::string> start(State& s) {
    s.started = true;
    std::vector<std::string> failures;
    std::string error;
    const std::string first = TsColour::getStartupConfigPath();
    if (OCIO::ConstConfigRcPtr config = readConfig(first, error)) {
        use(s, std::move(config), first);
        return failures;
    }
    failures.push_back(error);
    const std::string shipped = TsColour::getShippedConfigPath();
    if (shipped != first) {
        if (OCIO::ConstConfigRcPtr config = readConfig(shipped, error)) {
            use(s, std::move(config), shipped);
            failures.back() += "; using \"" + shipped + "\"";
            return failures;
        }
        failures.push_back(error);
    }
    // Nothing readable: the library's own configuration, which holds only
    // raw data, so that every name is refused with a clear message.
    use(s, OCIO::Config::CreateRaw(), "");
    return failures;
}

std::vector<std::string> spaceNames(const OCIO::ConstConfigRcPtr& config) {
    std::vector<std::string> names;
    for (int i = 0; i < config->getNumColorSpaces(); ++i) {
        names.emplace_back(config->getColorSpaceNameByIndex(i));
    }
    return names;
}

OCIO::ConstCPUProcessorRcPtr processor(const std::string& from, const std::string& to,
                                       std::string& error) {
    const TsOcio::Current c = TsOcio::current();
    const std::string source = TsOcio::spaceName(c.config, from);
    const std::string target = TsOcio::spaceName(c.config, to);
    if (source.empty() || target.empty()) {
        error = TsOcio::notFound(c, "colour space \"" + (source.empty() ? from : to) + "\"",
                                 spaceNames(c.config));
        return {};
    }
    State& s = state();
    {
        std::lock_guard lock(s.mutex);
        if (s.current.revision == c.revision) {
            const auto found = s.processors.find({source, target});
            if (found != s.processors.end()) {
                return found->second;
            }
        }
    }
    OCIO::ConstCPUProcessorRcPtr made;
    try {
        made = c.config->getProcessor(source.c_str(), target.c_str())
                   ->getOptimizedCPUProcessor(OCIO::OPTIMIZATION_DEFAULT);
    } catch (const OCIO::Exception& ex) {
        error = "cannot convert from \"" + source + "\" to \"" + target + "\" with \"" + c.path +
                "\": " + oneLine(ex.what());
        return {};
    }
    std::lock_guard lock(s.mutex);
    if (s.current.revision == c.revision) {
        s.processors[{source, target}] = made;
    }
    return made;
}

// Rows [first, last) in place, one at a time. The library converts a row
// from memory; with the next row on its way meanwhile the two overlap, and a
// conversion costs about what a copy of the same bytes does.
void convertRows(const OCIO::CPUProcessor& cpu, float* rgba, std::size_t width,
                 std::size_t rowStride, std::size_t first, std::size_t last) {
    const std::size_t rowBytes = 4 * sizeof(float) * width;
    for (std::size_t j = first; j != last; ++j) {
        float* row = rgba + j * rowStride;
        if (j + 1 != last) {
            const char* next = reinterpret_cast<const char*>(row + rowStride);
            for (std::size_t b = 0; b < rowBytes; b += 64) {
                __builtin_prefetch(next + b, 1);
            }
        }
        OCIO::PackedImageDesc desc(row, static_cast<long>(width), 1, OCIO::CHANNEL_ORDERING_RGBA,
                                   OCIO::BIT_DEPTH_F32, sizeof(float), 4 * sizeof(float),
                                   static_cast<std::ptrdiff_t>(rowBytes));
        cpu.apply(desc);
    }
}

} // namespace

namespace TsOcio {

Current current() {
    State& s = state();
    std::vector<std::string> failures;
    Current c;
    {
        std::lock_guard lock(s.mutex);
        if (!s.started) {
            failures = start(s);
        }
        c = s.current;
    }
    for (const std::string& failure : failures) {
        ExReporter::getInstance().report("colour", failure);
    }
    return c;
}

std::string notFound(const Current& c, const std::string& subject,
                     const std::vector<std::string>& available) {
    std::string list;
    for (const std::string& n : available) {
        list += (list.empty() ? "" : ", ") + n;
    }
    const std::string file = c.path.empty() ? "built-in raw configuration" : c.path;
    return subject + " is not in the colour configuration \"" + file + "\" (it has: " + list + ")";
}

std::string spaceName(const OCIO::ConstConfigRcPtr& config, const std::string& name) {
    if (name.empty()) {
        return {};
    }
    const OCIO::ConstColorSpaceRcPtr space = config->getColorSpace(name.c_str());
    return space ? space->getName() : std::string();
}

} // namespace TsOcio

// --- the configuration

bool TsColour::loadConfig(const std::string& path, std::string& error) {
    TsOcio::current(); // the start-up one first, so that this one is not replaced by it
    OCIO::ConstConfigRcPtr config = readConfig(path, error);
    if (!config) {
        error += "; the colour configuration \"" + getConfigPath() + "\" stays in use";
        return false;
    }
    State& s = state();
    std::lock_guard lock(s.mutex);
    use(s, std::move(config), path);
    return true;
}

std::string TsColour::getStartupConfigPath() {
    const char* env = std::getenv("OCIO");
    return env && *env ? std::string(env) : getShippedConfigPath();
}

std::string TsColour::getShippedConfigPath() {
    const std::string found = LiResourcePath::find(ShippedName);
    if (!found.empty()) {
        return found;
    }
    // Resources are installed next to the libraries, this one among them.
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&TsColour::getShippedConfigPath), &info) != 0 &&
        info.dli_fname) {
        return (std::filesystem::path(info.dli_fname).parent_path() / ShippedName).string();
    }
    return ShippedName;
}

std::string TsColour::getConfigPath() {
    return TsOcio::current().path;
}

std::uint64_t TsColour::getConfigRevision() {
    return TsOcio::current().revision;
}

std::vector<std::string> TsColour::getColourSpaces() {
    return spaceNames(TsOcio::current().config);
}

std::string TsColour::getWorkingSpace() {
    const OCIO::ConstConfigRcPtr config = TsOcio::current().config;
    const std::string linear = TsOcio::spaceName(config, OCIO::ROLE_SCENE_LINEAR);
    return linear.empty() ? config->getColorSpaceNameByIndex(0) : linear;
}

bool TsColour::resolve(const std::string& name, std::string& space, std::string& error) {
    const TsOcio::Current c = TsOcio::current();
    space = TsOcio::spaceName(c.config, name);
    if (space.empty()) {
        error = TsOcio::notFound(c, "colour space \"" + name + "\"", spaceNames(c.config));
        return false;
    }
    return true;
}

std::string TsColour::getFileSpace(const std::string& path, const std::string& metadata) {
    const OCIO::ConstConfigRcPtr config = TsOcio::current().config;
    std::string space;
    try {
        const bool ruled = !config->filepathOnlyMatchesDefaultRule(path.c_str());
        space = TsOcio::spaceName(config, ruled ? config->getColorSpaceFromFilepath(path.c_str())
                                                : metadata);
        if (space.empty()) {
            space = TsOcio::spaceName(config, config->getColorSpaceFromFilepath(path.c_str()));
        }
    } catch (const OCIO::Exception&) {
        // A configuration without file rules: the working space below.
    }
    return space.empty() ? getWorkingSpace() : space;
}

// --- displays

std::vector<std::string> TsColour::getDisplays() {
    const OCIO::ConstConfigRcPtr config = TsOcio::current().config;
    std::vector<std::string> names;
    for (int i = 0; i < config->getNumDisplays(); ++i) {
        names.emplace_back(config->getDisplay(i));
    }
    return names;
}

std::vector<std::string> TsColour::getViews(const std::string& display) {
    const OCIO::ConstConfigRcPtr config = TsOcio::current().config;
    std::vector<std::string> names;
    for (int i = 0; i < config->getNumViews(display.c_str()); ++i) {
        names.emplace_back(config->getView(display.c_str(), i));
    }
    return names;
}

std::string TsColour::getDefaultDisplay() {
    return TsOcio::current().config->getDefaultDisplay();
}

std::string TsColour::getDefaultView(const std::string& display) {
    return TsOcio::current().config->getDefaultView(display.c_str());
}

std::string TsColour::getDisplaySpace() {
    const OCIO::ConstConfigRcPtr config = TsOcio::current().config;
    const std::string display = config->getDefaultDisplay();
    const std::string view = config->getDefaultView(display.c_str());
    std::string space = TsOcio::spaceName(
        config, config->getDisplayViewColorSpaceName(display.c_str(), view.c_str()));
    if (space.empty()) {
        // A view named after its display's own space.
        space = TsOcio::spaceName(config, display);
    }
    return space.empty() ? getWorkingSpace() : space;
}

// --- conversions

bool TsColour::convert(float* rgba, std::size_t width, std::size_t height, std::size_t rowStride,
                       const std::string& from, const std::string& to, std::string& error) {
    const OCIO::ConstCPUProcessorRcPtr cpu = processor(from, to, error);
    if (!cpu) {
        return false;
    }
    if (cpu->isNoOp() || width == 0 || height == 0) {
        return true;
    }
    tbb::parallel_for(tbb::blocked_range<std::size_t>(0, height),
                      [&](const tbb::blocked_range<std::size_t>& rows) {
                          convertRows(*cpu, rgba, width, rowStride, rows.begin(), rows.end());
                      });
    return true;
}

bool TsColour::convert(PiImage& image, const std::string& from, const std::string& to,
                       std::string& error) {
    const auto width = static_cast<std::size_t>(image.getWidth());
    return convert(image.data(), width, static_cast<std::size_t>(image.getHeight()), 4 * width,
                   from, to, error);
}
