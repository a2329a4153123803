#pragma once

#include <filesystem>
#include <string>
#include <system_error>
#include <unistd.h>

// A path in the temporary directory that belongs to this test process alone
// (ctest runs test programs side by side, and checkouts share /tmp): a file
// of the process's own directory, which goes, with everything in it, when
// the process exits.
inline std::string testTempPath(const std::string& name) {
    class Directory {
    public:
        Directory()
            : _path(std::filesystem::temp_directory_path() /
                    ("tessera-test-" + std::to_string(::getpid()))) {
            std::filesystem::create_directories(_path);
        }
        ~Directory() {
            std::error_code ignored;
            std::filesystem::remove_all(_path, ignored);
        }
        const std::filesystem::path& get() const { return _path; }

    private:
        std::filesystem::path _path;
    };
    static const Directory directory;
    return (directory.get() / name).string();
}
