#include <base/fsInputFile.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool statFailure(std::string& error) {
    error = std::strerror(errno);
    return false;
}

// A regular file within the limit; otherwise false with the reason.
bool acceptable(const struct stat& st, std::uint64_t maxBytes, const std::string& what,
                std::string& error) {
    if (!S_ISREG(st.st_mode)) {
        error = "it is " + FsInputFile::kindOf(st.st_mode) + ", not a regular file";
        return false;
    }
    const auto size = static_cast<std::uint64_t>(st.st_size);
    if (size > maxBytes) {
        error = "it holds " + FsInputFile::sizeText(size) + ", more than the " +
                FsInputFile::sizeText(maxBytes) + " " + what + " may hold";
        return false;
    }
    return true;
}

// Reads `fd` to its end, at most `maxBytes` (one more tells that it is
// longer).
bool readAll(int fd, std::uint64_t maxBytes, const std::string& what, std::string& bytes,
             std::string& error) {
    bytes.clear();
    char buffer[1 << 16];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof(buffer));
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            error = std::strerror(errno);
            return false;
        }
        if (n == 0) {
            return true;
        }
        if (bytes.size() + static_cast<std::size_t>(n) > maxBytes) {
            error = "it holds more than the " + FsInputFile::sizeText(maxBytes) + " " + what +
                    " may hold";
            return false;
        }
        bytes.append(buffer, static_cast<std::size_t>(n));
    }
}

} // namespace

std::string FsInputFile::kindOf(unsigned mode) {
    switch (mode & S_IFMT) {
    case S_IFREG:
        return "a regular file";
    case S_IFDIR:
        return "a directory";
    case S_IFIFO:
        return "a FIFO";
    case S_IFCHR:
        return "a character device";
    case S_IFBLK:
        return "a block device";
    case S_IFSOCK:
        return "a socket";
    case S_IFLNK:
        return "a symbolic link";
    default:
        return "not a file";
    }
}

std::string FsInputFile::sizeText(std::uint64_t bytes) {
    const std::uint64_t mib = std::uint64_t(1) << 20;
    if (bytes < mib) {
        return std::to_string(bytes) + " bytes";
    }
    char text[32];
    if (bytes % mib == 0) {
        std::snprintf(text, sizeof(text), "%llu MiB", static_cast<unsigned long long>(bytes / mib));
    } else {
        std::snprintf(text, sizeof(text), "%.1f MiB", static_cast<double>(bytes) / mib);
    }
    return text;
}

bool FsInputFile::check(const std::string& path, std::uint64_t maxBytes, const std::string& what,
                        std::string& error) {
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0) {
        return statFailure(error);
    }
    return acceptable(st, maxBytes, what, error);
}

bool FsInputFile::read(const std::string& path, std::uint64_t maxBytes, const std::string& what,
                       std::string& bytes, std::string& error) {
    // Without blocking: opening a FIFO would wait for a writer.
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return statFailure(error);
    }
    struct stat st {};
    bool ok = ::fstat(fd, &st) == 0 ? acceptable(st, maxBytes, what, error) : statFailure(error);
    if (ok) {
        // A regular file reads the same with or without O_NONBLOCK; a file
        // that grew since the check is still cut at the limit.
        ok = readAll(fd, maxBytes, what, bytes, error);
    }
    ::close(fd);
    return ok;
}

bool FsInputFile::readStandardInput(std::uint64_t maxBytes, const std::string& what,
                                    std::string& bytes, std::string& error) {
    return readAll(STDIN_FILENO, maxBytes, what, bytes, error);
}
