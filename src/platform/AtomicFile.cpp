#include "platform/AtomicFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <new>

namespace platform {

namespace {

// Closes a descriptor on every way out of a function.
class FileDescriptor {
public:
    explicit FileDescriptor(int fd) : fd_(fd) {}
    ~FileDescriptor() { close(); }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    int get() const { return fd_; }
    bool valid() const { return fd_ >= 0; }
    // Closes now and reports whether the close (which may flush) went well.
    bool close() {
        if (fd_ < 0) return true;
        const int result = ::close(fd_);
        fd_ = -1;
        return result == 0;
    }

private:
    int fd_;
};

bool writeAll(int fd, const uint8_t* bytes, size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(fd, bytes, size);
        if (written < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        bytes += written;
        size -= static_cast<size_t>(written);
    }
    return true;
}

std::string folderOf(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    if (slash == std::string::npos) return ".";
    if (slash == 0) return "/";
    return path.substr(0, slash);
}

std::string nameOf(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// A temporary name beside the target that no other writer, in this process or another, uses:
// the process id and a counter shared by every instance in the process.
std::string temporaryNameFor(const std::string& path, unsigned attempt) {
    static std::atomic<unsigned> counter{0};
    const unsigned serial = counter.fetch_add(1, std::memory_order_relaxed);
    std::string folder = folderOf(path);
    if (folder != "/") folder += '/';
    return folder + "." + nameOf(path) + ".tmp-" + std::to_string(::getpid()) + "-" + std::to_string(serial) + "-" +
           std::to_string(attempt);
}

}  // namespace

bool writeFileAtomically(const std::string& path, const void* data, size_t size, unsigned createMode) {
    if (path.empty() || path.back() == '/' || (size > 0 && !data)) return false;
    try {
        std::string temporary;
        int fd = -1;
        for (unsigned attempt = 0; attempt < 16 && fd < 0; ++attempt) {
            temporary = temporaryNameFor(path, attempt);
            fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, createMode);
            if (fd < 0 && errno != EEXIST) return false;
        }
        FileDescriptor file(fd);
        if (!file.valid()) return false;

        bool ok = true;
        struct stat existing;
        if (::stat(path.c_str(), &existing) == 0) {
            if (!S_ISREG(existing.st_mode)) ok = false;  // never replace a folder or a device
            else ok = ::fchmod(file.get(), existing.st_mode & 07777) == 0;
        }
        ok = ok && writeAll(file.get(), static_cast<const uint8_t*>(data), size);
        ok = ok && ::fsync(file.get()) == 0;
        ok = file.close() && ok;
        ok = ok && ::rename(temporary.c_str(), path.c_str()) == 0;
        if (!ok) {
            ::unlink(temporary.c_str());
            return false;
        }
        // Make the rename itself durable; a failure here leaves a complete file either way.
        FileDescriptor folder(::open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (folder.valid()) ::fsync(folder.get());
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

std::optional<std::vector<uint8_t>> readWholeFile(const std::string& path, size_t maxBytes) {
    if (path.empty()) return std::nullopt;
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.valid()) return std::nullopt;
    struct stat info;
    if (::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
    if (info.st_size < 0 || static_cast<unsigned long long>(info.st_size) > maxBytes) return std::nullopt;
    try {
        // One byte more than the size announced, so that a file that grew since is noticed.
        std::vector<uint8_t> bytes(static_cast<size_t>(info.st_size) + 1);
        size_t filled = 0;
        for (;;) {
            const ssize_t got = ::read(file.get(), bytes.data() + filled, bytes.size() - filled);
            if (got < 0) {
                if (errno == EINTR) continue;
                return std::nullopt;
            }
            if (got == 0) break;
            filled += static_cast<size_t>(got);
            if (filled == bytes.size()) {
                if (bytes.size() > maxBytes) return std::nullopt;
                bytes.resize(bytes.size() * 2 > maxBytes + 1 ? maxBytes + 1 : bytes.size() * 2);
            }
        }
        bytes.resize(filled);
        return bytes;
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

}  // namespace platform
