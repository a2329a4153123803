#pragma once

#include <filesystem>
#include <string>
#include <unistd.h>

// A path in the temporary directory that belongs to this test process alone:
// ctest runs test programs side by side, and checkouts share /tmp.
inline std::string testTempPath(const std::string& name) {
    return (std::filesystem::temp_directory_path() /
            ("tessera-test-" + std::to_string(::getpid()) + "-" + name))
        .string();
}
