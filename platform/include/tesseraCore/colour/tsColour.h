#pragma once

#include <pluginAPI/piImage.h>
#include <tesseraCore/tesseraCoreExport.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// Every colour conversion of the keyer happens here, through OpenColorIO, and
// nowhere else: the keyer works in one scene-linear space (the working
// space, the configuration's scene_linear role), into which plates are
// converted once, as they are read; outputs are converted out of it as they
// are written; the viewer shows it through a display and view
// (TsDisplayTransform).
//
// The configuration is one per process. On first use it is read from the
// file $OCIO names, or else from the configuration shipped with the keyer
// (tessera.ocio, found through LiResourcePath or next to this library). A
// configuration that cannot be read is reported (ExReporter, source
// "colour") and the one in use stays: at start, the shipped one.
//
// Names of colour spaces may be a space's name, one of its aliases or a
// role; every answer gives the space's own name. A name the configuration
// does not hold is an error that names the configuration file and the name
// and lists the spaces there are.
class TS_CORE_API TsColour {
public:
    // --- the configuration
    // Reads and checks the configuration at `path` and makes it the one in
    // use; on failure answers false with a message naming the file, and the
    // configuration in use stays.
    static bool loadConfig(const std::string& path, std::string& error);
    // The configuration a process starts with: $OCIO's file when the
    // variable is set, else the shipped one.
    static std::string getStartupConfigPath();
    static std::string getShippedConfigPath();
    // The file of the configuration in use.
    static std::string getConfigPath();
    // Grows by one each time another configuration comes into use.
    static std::uint64_t getConfigRevision();

    static std::vector<std::string> getColourSpaces();
    static std::string getWorkingSpace();
    // The space's own name; false and `error` for a name the configuration
    // does not hold.
    static bool resolve(const std::string& name, std::string& space, std::string& error);
    // The space a file is taken to be in when nobody says: the space of the
    // configuration's file rule for its path when a rule other than the
    // default one matches, else `metadata` (the space the file declares)
    // when the configuration holds it, else the default rule's space.
    static std::string getFileSpace(const std::string& path, const std::string& metadata);

    // --- displays
    static std::vector<std::string> getDisplays();
    static std::vector<std::string> getViews(const std::string& display);
    static std::string getDefaultDisplay();
    static std::string getDefaultView(const std::string& display);
    // The space images for a screen are written in: that of the default
    // display's default view.
    static std::string getDisplaySpace();

    // --- conversions
    // Converts `height` rows of `width` float RGBA pixels, `rowStride` floats
    // apart, in place from one space to another, rows in parallel; alpha is
    // left as it is. A conversion between the same space copies nothing and
    // costs nothing. False and `error` for an unknown name.
    static bool convert(float* rgba, std::size_t width, std::size_t height, std::size_t rowStride,
                        const std::string& from, const std::string& to, std::string& error);
    static bool convert(PiImage& image, const std::string& from, const std::string& to,
                        std::string& error);
};
