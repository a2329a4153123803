#include <base/fsAtomicFile.h>
#include <base/fsInputFile.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <random>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Links followed before giving up, as the kernel does (ELOOP).
constexpr int MaxLinks = 40;
// Random characters at the end of a temporary file's name.
constexpr std::size_t SuffixLength = 6;

std::string directoryOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string fileNameOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// What the temporary files of a target begin with: ".NAME.saving-", the name
// cut so that the whole stays within the longest file name.
std::string temporaryPrefix(const std::string& target) {
    const std::string name = fileNameOf(target);
    const std::size_t room = NAME_MAX - SuffixLength - std::strlen("..saving-");
    return "." + name.substr(0, room) + ".saving-";
}

std::string randomSuffix() {
    static const char letters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    thread_local std::mt19937_64 generator{std::random_device{}()};
    std::string suffix;
    for (std::size_t i = 0; i < SuffixLength; ++i) {
        suffix += letters[generator() % (sizeof(letters) - 1)];
    }
    return suffix;
}

bool sameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// Removes what killed saves of `target` left beside it: temporary files that
// no process holds locked. A temporary file being written is locked by its
// writer, and one that this removes its writer notices (see open).
void removeLeftovers(const std::string& directory, const std::string& target) {
    const std::string prefix = temporaryPrefix(target);
    DIR* dir = ::opendir(directory.c_str());
    if (!dir) {
        return;
    }
    while (const dirent* entry = ::readdir(dir)) {
        const std::string name = entry->d_name;
        if (name.size() != prefix.size() + SuffixLength || name.compare(0, prefix.size(), prefix)) {
            continue;
        }
        const std::string path = directory + "/" + name;
        const int fd = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        if (fd < 0) {
            continue;
        }
        struct stat opened {};
        struct stat named {};
        if (::fstat(fd, &opened) == 0 && S_ISREG(opened.st_mode) &&
            ::flock(fd, LOCK_EX | LOCK_NB) == 0 && ::lstat(path.c_str(), &named) == 0 &&
            sameFile(opened, named)) {
            ::unlink(path.c_str());
        }
        ::close(fd);
    }
    ::closedir(dir);
}

} // namespace

FsAtomicFile::FsAtomicFile(std::string path)
    : _path(std::move(path)) {}

FsAtomicFile::~FsAtomicFile() {
    discard();
}

bool FsAtomicFile::fail(const std::string& reason) {
    if (!_failed) {
        _failed = true;
        _error = reason;
        if (_target != _path && !_target.empty()) {
            _error += " (writing " + _target + ", where the link points)";
        }
    }
    return false;
}

bool FsAtomicFile::failErrno() {
    return fail(std::strerror(errno));
}

bool FsAtomicFile::open() {
    if (_fd >= 0 || _failed) {
        return !_failed;
    }
    if (_path.empty()) {
        return fail("no file name");
    }
    // The file at the end of the links.
    _target = _path;
    struct stat st {};
    bool exists = false;
    for (int links = 0;; ++links) {
        if (::lstat(_target.c_str(), &st) != 0) {
            if (errno != ENOENT) {
                return failErrno();
            }
            break;
        }
        if (!S_ISLNK(st.st_mode)) {
            exists = true;
            break;
        }
        if (links == MaxLinks) {
            errno = ELOOP;
            return failErrno();
        }
        std::string linked(PATH_MAX, '\0');
        const ssize_t n = ::readlink(_target.c_str(), linked.data(), linked.size());
        if (n < 0) {
            return failErrno();
        }
        linked.resize(static_cast<std::size_t>(n));
        _target = linked.front() == '/' ? linked : directoryOf(_target) + "/" + linked;
    }
    if (exists && !S_ISREG(st.st_mode)) {
        return fail("it is " + FsInputFile::kindOf(st.st_mode) +
                    ", not a regular file: it is left as it is");
    }

    const std::string directory = directoryOf(_target);
    removeLeftovers(directory, _target);
    const std::string prefix = directory + "/" + temporaryPrefix(_target);
    for (int attempt = 0; attempt < 100; ++attempt) {
        _temporary = prefix + randomSuffix();
        // 0666: the kernel applies the umask, as to any new file.
        const int fd = ::open(_temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd < 0) {
            if (errno == EEXIST) {
                continue;
            }
            _temporary.clear();
            return failErrno();
        }
        // Locked, and still ours: a removal of leftovers running in another
        // process may have taken it between the creation and the lock.
        struct stat opened {};
        struct stat named {};
        if (::flock(fd, LOCK_EX) == 0 && ::fstat(fd, &opened) == 0 &&
            ::lstat(_temporary.c_str(), &named) == 0 && sameFile(opened, named)) {
            _fd = fd;
            break;
        }
        ::close(fd);
    }
    if (_fd < 0) {
        _temporary.clear();
        return fail("cannot make a temporary file beside it");
    }
    if (exists && ::fchmod(_fd, st.st_mode & 07777) != 0) {
        failErrno();
        discard();
        return false;
    }
    return true;
}

bool FsAtomicFile::writeAt(const void* data, std::size_t size, std::uint64_t offset) {
    if (_failed || (_fd < 0 && !open())) {
        return false;
    }
    const char* bytes = static_cast<const char*>(data);
    std::size_t done = 0;
    while (done < size) {
        const ssize_t n =
            ::pwrite(_fd, bytes + done, size - done, static_cast<off_t>(offset + done));
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return failErrno();
        }
        if (n == 0) {
            errno = EIO;
            return failErrno();
        }
        done += static_cast<std::size_t>(n);
    }
    _size = std::max(_size, offset + size);
    return true;
}

bool FsAtomicFile::commit() {
    if (!_failed && _fd < 0) {
        open();
    }
    if (!_failed && ::fsync(_fd) != 0) {
        failErrno();
    }
    if (_fd >= 0) {
        // The lock goes with the descriptor, after the rename: until then
        // the temporary file is nobody's leftover. The bytes are on the disk
        // (fsync): closing has nothing left to report.
        if (!_failed) {
            if (::rename(_temporary.c_str(), _target.c_str()) != 0) {
                failErrno();
            } else {
                _temporary.clear();
            }
        }
        ::close(_fd);
        _fd = -1;
    }
    if (_failed) {
        discard();
        return false;
    }
    // The rename reaches the disk with the directory: without this a power
    // cut could bring back the old file (never a damaged one).
    const int dir = ::open(directoryOf(_target).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dir >= 0) {
        ::fsync(dir);
        ::close(dir);
    }
    return true;
}

void FsAtomicFile::discard() {
    if (_fd >= 0) {
        ::close(_fd);
        _fd = -1;
    }
    if (!_temporary.empty()) {
        ::unlink(_temporary.c_str());
        _temporary.clear();
    }
}

bool FsAtomicFile::write(const std::string& path, std::string_view bytes, std::string& error) {
    FsAtomicFile file(path);
    if (file.open() && file.append(bytes.data(), bytes.size()) && file.commit()) {
        return true;
    }
    error = file.getError();
    return false;
}
