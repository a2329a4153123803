#pragma once

#include <base/baseExport.h>
#include <cstdint>
#include <string>

// The guard in front of every file the host reads for the user: setups,
// plates, session scripts, panel descriptions, message catalogues and hotkey
// tables. A file must be a regular file (after its links) no larger than the
// limit of its kind (ZnLimits). Anything else is refused before a byte is
// read: a FIFO would block the host forever, a device such as /dev/zero would
// be read until memory runs out, a directory reads as nothing.
//
// Errors are the reason alone ("it is a FIFO, not a regular file", "it holds
// 300 MiB, more than the 256 MiB a setup may hold"), for the caller to put
// after the file's name.
class TS_BASE_API FsInputFile {
public:
    // The whole file into `bytes`. The file is opened without blocking and
    // checked on the open descriptor, so that what is read is what was
    // checked. `what` names the kind of file in the error ("a setup").
    static bool read(const std::string& path, std::uint64_t maxBytes, const std::string& what,
                     std::string& bytes, std::string& error);
    // The same checks, for a reader that opens the file itself.
    static bool check(const std::string& path, std::uint64_t maxBytes, const std::string& what,
                      std::string& error);
    // Standard input to its end (a pipe, a terminal or a file), at most
    // `maxBytes`.
    static bool readStandardInput(std::uint64_t maxBytes, const std::string& what,
                                  std::string& bytes, std::string& error);

    // What a file of this mode is, for messages: "a regular file", "a
    // directory", "a FIFO", "a character device", "a block device", "a
    // socket", "a symbolic link".
    static std::string kindOf(unsigned mode);
    // A size for messages: "812 bytes", "3.2 MiB", "256 MiB".
    static std::string sizeText(std::uint64_t bytes);
};
