#pragma once

#include <base/baseExport.h>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// A file written whole or not at all. Every file the host writes goes through
// here (setups, image outputs, summaries, recorded sessions).
//
// The bytes go to a temporary file beside the target, ".NAME.saving-XXXXXX"
// in the target's directory; commit() flushes it to the disk (fsync), renames
// it over the target and syncs the directory, so that once commit() has
// answered true the new file survives a power cut, and until then the old
// file is there, byte for byte. A failure at any point (a full disk, a file
// size limit, a write error reported by fsync or close) leaves the target as
// it was and removes the temporary file.
//
// - A target that is a symbolic link is written through: the file at the end
//   of the chain of links is written aside in its own directory and renamed
//   there; the links stay.
// - A target that exists and is not a regular file (a directory, a device, a
//   FIFO, a socket) is refused and left alone.
// - A process killed during a save leaves its temporary file behind; the next
//   save of the same target removes it. A temporary file is locked (flock)
//   by the process writing it, so that a save of the same target running in
//   another process keeps its own. (Named temporaries rather than unnamed
//   ones, O_TMPFILE: those cannot be renamed over a target, and not every
//   file system has them.)
// - A new file gets the permissions the umask gives new files; a file
//   replaced keeps its permission bits.
//
// Errors are the reason alone, as the system words it ("No space left on
// device", "File too large", "Permission denied"), for the caller to put
// after the file's name; writing through a link, the reason names the file
// written.
class TS_BASE_API FsAtomicFile {
public:
    explicit FsAtomicFile(std::string path);
    // Discards what was not committed.
    ~FsAtomicFile();
    FsAtomicFile(const FsAtomicFile&) = delete;
    FsAtomicFile& operator=(const FsAtomicFile&) = delete;

    // Makes the temporary file; false with getError() set.
    bool open();
    // Writes `size` bytes at `offset` of the new file (past its end, the file
    // grows). False, with getError() set, when not every byte was written;
    // after a failure every later write and the commit fail too.
    bool writeAt(const void* data, std::size_t size, std::uint64_t offset);
    // Writes after the furthest byte written so far.
    bool append(const void* data, std::size_t size) { return writeAt(data, size, _size); }
    // Puts the new file in place of the target (see above); false with
    // getError() set, and the target as it was.
    bool commit();
    // Drops the new file; the target stays as it was.
    void discard();

    const std::string& getError() const { return _error; }
    // One past the furthest byte written.
    std::uint64_t getSize() const { return _size; }

    // The whole file at once: false with `error` set to the reason.
    static bool write(const std::string& path, std::string_view bytes, std::string& error);

private:
    bool fail(const std::string& reason);
    bool failErrno();

    std::string _path;      // as given
    std::string _target;    // the file replaced: _path after its links
    std::string _temporary; // beside _target
    int _fd = -1;
    std::uint64_t _size = 0;
    bool _failed = false;
    std::string _error;
};
