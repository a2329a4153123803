#pragma once

#include <pluginAPI/piImage.h>
#include <tesseraCore/tesseraCoreExport.h>

#include <cstdint>
#include <string>

// Plates in and keyer outputs out, through OpenImageIO. Nothing here throws:
// a failure answers null (or false) and a message that names the file and
// carries the reader's or writer's own text, for the host to report
// (ExReporter) while it keeps running.
//
// Reading (EXR, DPX, TIFF, PNG, JPEG and whatever else the library reads):
// - the file must be a regular file (FsInputFile) of at most
//   ZnLimits::PlateBytesPerPixel bytes a pixel of the limit; its header is
//   read first, and a plate whose display window or data window holds more
//   pixels than the limit (ZnLimits::PlatePixels unless raised,
//   setMaxPixels) is refused before anything is allocated;
// - the first subimage, as float RGBA: one channel is grey (alpha 1), three
//   are RGB (alpha 1), four are RGBA; other channel counts and deep images
//   are refused;
// - the plate covers the display window; the data window is placed inside it
//   and what it does not cover is transparent black (data outside the
//   display window is cut off);
// - rows are flipped to the host's bottom-to-top order;
// - colour stays straight: associated (premultiplied) alpha, as in EXR, is
//   divided out where alpha > 0;
// - NaN components become 0 (they would poison every average and the
//   matte);
// - the colour is converted once, here, from the file's colour space into
//   the working space (TsColour). The file's space is the one asked for, or,
//   when none is ("" for automatic), the one the configuration's file rules
//   or the file's own metadata give (TsColour::getFileSpace).
//
// Writing, by the file's extension, converted out of the working space into
// the space asked for, or by default the working space for EXR and the
// display's space for PNG and JPEG; the space is named in the file's header
// (attributes "colorSpace" and "oiio:ColorSpace"; JPEG keeps neither):
// - .exr: 32-bit float RGBA (channels R, G, B, A), premultiplied, display
//   window = data window; a matte (Holds::Matte) is one channel, A, as a
//   compositor reads a matte, with no colour conversion and no colour space
//   named (a matte is no colour);
// - .png: 16-bit RGBA, straight alpha, clamped to [0, 1];
// - .jpg, .jpeg: 8-bit RGB, clamped to [0, 1];
// - no time of writing in the header: the same image is the same bytes,
//   whichever machine writes it and whenever (a farm's frames compare equal
//   to a workstation's);
// - through FsAtomicFile: the writer's bytes go to a temporary file, each
//   write checked, and replace the target only once all of them are on the
//   disk. A full disk is an error naming the file and the reason ("No space
//   left on device") and leaves an earlier file as it was.
class TS_CORE_API TsPlateIO {
public:
    // `used`, when given, receives the space the file was converted from.
    static PiImagePtr read(const std::string& path, std::string& error,
                           const std::string& colourSpace = {}, std::string* used = nullptr);
    // What an image written holds: colour and alpha, or a matte (the image's
    // red component, as the matte view shows it grey; PNG and JPEG write the
    // grey image as it is).
    enum class Holds { Rgba, Matte };
    static bool write(const PiImage& image, const std::string& path, std::string& error,
                      const std::string& colourSpace = {}, Holds holds = Holds::Rgba);
    // The size of the plate a file holds (its display window), from its header
    // alone, and (`used`, when given) the colour space its pixels would be
    // converted from; false and a message as read's when it cannot be read.
    static bool probe(const std::string& path, int& width, int& height, std::string& error,
                      const std::string& colourSpace = {}, std::string* used = nullptr);

    // The largest plate read, in pixels, for the whole process (see above).
    static void setMaxPixels(std::uint64_t pixels);
    static std::uint64_t getMaxPixels();
    // The same from a program's option (--max-plate-pixels N): false, with
    // `error` saying why, for anything but a whole number of at least 1.
    static bool setMaxPixels(const std::string& text, std::string& error);
};
