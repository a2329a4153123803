#pragma once

#include <cstddef>
#include <cstdint>

// What a file may ask of the host, in one place: every limit on the files the
// host reads and on the names they carry. A file past a limit is refused
// with its file (and line, where it has lines) and the limit, before the
// host allocates what the file asks for. The README lists them for users.
namespace ZnLimits {

inline constexpr std::uint64_t MiB = std::uint64_t(1) << 20;

// --- Sizes of the files read. A file must be a regular file (after its
// links) no larger than this: a FIFO, a device, a directory or a socket is
// refused before a byte is read.
inline constexpr std::uint64_t SetupBytes = 256 * MiB;
inline constexpr std::uint64_t ScriptBytes = 256 * MiB;
// Message catalogues, hotkey tables and panel descriptions.
inline constexpr std::uint64_t ResourceBytes = 16 * MiB;

// --- Panel descriptions: elements nested at most this deep (a widget in a
// layout in a widget is three levels, an item between them a fourth), and
// at most this many widgets in one description. The designer-file loader
// recurses once per level.
inline constexpr int PanelDepth = 256;
inline constexpr int PanelWidgets = 10000;

// --- Names. A node's name is 1 to NameBytes bytes (UTF-8), holds no '/'
// (it separates a node from its input in scripts) and no control character
// (a newline, a tab, ...). Every name of a setup (nodes, inputs, patches) is
// at most NameBytes long.
inline constexpr std::size_t NameBytes = 255;

// --- Setups.
inline constexpr std::size_t SetupNodes = 1000; // keyer nodes in one setup
inline constexpr int Patches = 10000;           // patch inputs of one keyer node
inline constexpr int ListNames = 100000;        // names in one list input
inline constexpr int AnimKeys = 10000000;       // animation keys of one input

// --- Plates, by default; tessera-run and tessera-studio raise them with
// --max-plate-pixels N. The display window and the data window of a plate
// each hold at most PlatePixels pixels, which bounds what a read allocates
// (a float RGBA plate of the one and the decoded other: at most
// PlateBytesPerPixel bytes a pixel of the limit, 2 GiB by default); a plate
// file holds at most as many bytes.
inline constexpr std::uint64_t PlatePixels = std::uint64_t(8192) * 8192;
inline constexpr std::uint64_t PlateBytesPerPixel = 32;

} // namespace ZnLimits
