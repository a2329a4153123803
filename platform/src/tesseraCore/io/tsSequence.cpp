#include <tesseraCore/io/tsSequence.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <filesystem>
#include <set>

namespace {

namespace fs = std::filesystem;

// The frame number's place in a file name: [begin, end) and its padding.
struct Place {
    std::size_t begin = 0;
    std::size_t end = 0;
    int padding = 0;
};

bool findPlace(const std::string& name, Place& place) {
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char c = name[i];
        if (c == '#' || c == '@') {
            std::size_t j = i;
            while (j < name.size() && name[j] == c) {
                ++j;
            }
            place = {i, j, static_cast<int>(j - i)};
            return true;
        }
        if (c == '%') {
            std::size_t j = i + 1;
            int padding = 0;
            if (j < name.size() && name[j] == '0') {
                ++j;
                const std::size_t digits = j;
                while (j < name.size() && std::isdigit(static_cast<unsigned char>(name[j]))) {
                    padding = padding * 10 + (name[j] - '0');
                    ++j;
                }
                if (j == digits || padding > 9) {
                    continue;
                }
            }
            if (j < name.size() && name[j] == 'd') {
                place = {i, j + 1, padding};
                return true;
            }
        }
    }
    return false;
}

bool parseFrame(const std::string& text, int& frame) {
    const char* end = text.data() + text.size();
    const auto [ptr, ec] = std::from_chars(text.data(), end, frame);
    return ec == std::errc() && ptr == end && !text.empty() && frame >= 0;
}

} // namespace

bool TsSequence::isPattern(const std::string& name) {
    Place place;
    return findPlace(fs::path(name).filename().string(), place);
}

bool TsSequence::parseRange(const std::string& text, PiFrameRange& range) {
    const std::size_t dash = text.find('-', 1);
    int first = 0;
    int last = 0;
    if (dash == std::string::npos) {
        if (!parseFrame(text, first)) {
            return false;
        }
        last = first;
    } else if (!parseFrame(text.substr(0, dash), first) ||
               !parseFrame(text.substr(dash + 1), last) || last < first) {
        return false;
    }
    range = {first, last, false};
    return true;
}

std::string TsSequence::pathOf(int frame) const {
    std::string number = std::to_string(frame);
    if (static_cast<int>(number.size()) < _padding) {
        number.insert(0, static_cast<std::size_t>(_padding) - number.size(), '0');
    }
    const std::string file = _prefix + number + _suffix;
    return _directory.empty() ? file : (fs::path(_directory) / file).string();
}

bool TsSequence::isMissing(int frame) const {
    return std::binary_search(_missing.begin(), _missing.end(), frame);
}

bool TsSequence::parse(const std::string& pattern, TsSequence& out, std::string& error) {
    const fs::path path(pattern);
    const std::string name = path.filename().string();
    Place place;
    if (!findPlace(name, place)) {
        error = "\"" + pattern + "\" is no image sequence (it has no ####, @@@@ or %04d)";
        return false;
    }
    out = TsSequence();
    out._pattern = pattern;
    out._directory = path.parent_path().string();
    out._prefix = name.substr(0, place.begin);
    out._suffix = name.substr(place.end);
    out._padding = place.padding;
    return true;
}

bool TsSequence::open(const std::string& pattern, const std::string& range, TsSequence& out,
                      std::string& error) {
    TsSequence s;
    if (!parse(pattern, s, error)) {
        return false;
    }

    // The frames on disk.
    std::set<int> found;
    std::error_code ec;
    const fs::path dir = s._directory.empty() ? fs::path(".") : fs::path(s._directory);
    for (fs::directory_iterator it(dir, ec), end; !ec && it != end; it.increment(ec)) {
        const std::string file = it->path().filename().string();
        if (file.size() <= s._prefix.size() + s._suffix.size() || file.rfind(s._prefix, 0) != 0 ||
            file.compare(file.size() - s._suffix.size(), s._suffix.size(), s._suffix) != 0) {
            continue;
        }
        const std::string digits =
            file.substr(s._prefix.size(), file.size() - s._prefix.size() - s._suffix.size());
        int frame = 0;
        if (!std::all_of(digits.begin(), digits.end(),
                         [](unsigned char c) { return std::isdigit(c); }) ||
            !parseFrame(digits, frame)) {
            continue;
        }
        // The pattern's padding: exactly as wide, or wider without leading
        // zeros (frame 10000 of ####).
        const bool fits = static_cast<int>(digits.size()) == s._padding ||
                          (static_cast<int>(digits.size()) > s._padding && digits[0] != '0') ||
                          (s._padding == 0 && (digits.size() == 1 || digits[0] != '0'));
        if (fits) {
            found.insert(frame);
        }
    }
    if (!range.empty()) {
        if (!parseRange(range, s._range)) {
            error = "bad frame range \"" + range + "\" for \"" + pattern +
                    "\" (expected FIRST-LAST, as in 1001-1100)";
            return false;
        }
    } else if (found.empty()) {
        error = "no file matches \"" + pattern + "\"" +
                (ec ? " (cannot list " + dir.string() + ": " + ec.message() + ")" : "");
        return false;
    } else {
        s._range = {*found.begin(), *found.rbegin(), false};
    }
    for (int f = s._range.first; f <= s._range.last; ++f) {
        if (!found.count(f)) {
            s._missing.push_back(f);
        }
    }
    if (static_cast<int>(s._missing.size()) == s._range.count()) {
        error = "no frame of \"" + pattern + "\" " + std::to_string(s._range.first) + "-" +
                std::to_string(s._range.last) + " exists";
        return false;
    }
    out = std::move(s);
    return true;
}
