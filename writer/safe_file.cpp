#include "writer/safe_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#ifndef _WIN32
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace quillon {

namespace fs = std::filesystem;

namespace {

std::string describe(int error) { return std::strerror(error); }

} // namespace

#ifndef _WIN32
std::string replaceFileSafely(const std::string& path, const std::string& bytes, int* systemError) {
    int ignored = 0;
    int& reported = systemError ? *systemError : ignored;
    reported = 0;
    fs::path target(path);
    std::error_code ec;
    // A link is followed, so that the file it names is replaced and the link stays.
    if (fs::is_symlink(target, ec)) {
        fs::path resolved = fs::canonical(target, ec);
        if (!ec) target = resolved;
    }
    fs::file_status status = fs::status(target, ec);
    if (fs::exists(status) && !fs::is_regular_file(status))
        return "\"" + target.filename().string() + "\" is not an ordinary file";
    fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    // A short name, so that a target whose own name is near the limit can still be written.
    std::string pattern = (folder / ".quillon-XXXXXX").string();
#ifdef O_TMPFILE
    // Unnamed until complete: a crash or a kill leaves nothing behind.
    int fd = ::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    bool unnamed = fd >= 0;
    if (!unnamed) fd = ::mkstemp(pattern.data());
#else
    bool unnamed = false;
    int fd = ::mkstemp(pattern.data());
#endif
    if (fd < 0) {
        reported = errno;
        return "cannot create a file in \"" + folder.string() + "\": " + describe(errno);
    }
    // Keep the old file's permissions; a new file gets the usual ones.
    struct stat old {};
    mode_t mode = ::stat(target.c_str(), &old) == 0 ? (old.st_mode & 07777) : mode_t(0644);
    ::fchmod(fd, mode);
    // Written in chunks, each handed to the disk at once, so that a big file never piles up as
    // dirty pages that the system would then make the writer wait for.
    constexpr std::size_t kChunk = 8 << 20;
    const char* p = bytes.data();
    std::size_t left = bytes.size(), written = 0;
    int error = 0;
    while (left > 0) {
        ssize_t n = ::write(fd, p, std::min(left, kChunk));
        if (n < 0) {
            if (errno == EINTR) continue;
            error = errno;
            break;
        }
#ifdef __linux__
        ::sync_file_range(fd, off_t(written), off_t(n), SYNC_FILE_RANGE_WRITE);
#endif
        p += n;
        written += std::size_t(n);
        left -= std::size_t(n);
    }
    if (!error && ::fsync(fd) != 0) error = errno;
    bool named = !unnamed;
    if (!error && unnamed) {
        // Named only now, under a fresh temporary name, then renamed over the target.
        std::string self = "/proc/self/fd/" + std::to_string(fd);
        for (int attempt = 0; !named && !error; ++attempt) {
            pattern = (folder / (".quillon-" + std::to_string(::getpid()) + "-" + std::to_string(attempt))).string();
            if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, pattern.c_str(), AT_SYMLINK_FOLLOW) == 0)
                named = true;
            else if (errno != EEXIST || attempt == 100)
                error = errno;
        }
    }
    if (::close(fd) != 0 && !error) error = errno;
    if (!error && ::rename(pattern.c_str(), target.c_str()) != 0) error = errno;
    if (error) {
        if (named) ::unlink(pattern.c_str());
        reported = error;
        return describe(error);
    }
    return {};
}
#else
std::string replaceFileSafely(const std::string& path, const std::string& bytes, int* systemError) {
    if (systemError) *systemError = 0;
    fs::path target(path);
    fs::path temp = target;
    temp += ".quillon-new";
    std::FILE* f = std::fopen(temp.string().c_str(), "wb");
    if (!f) return "cannot create \"" + temp.string() + "\"";
    bool ok = std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
    ok = std::fflush(f) == 0 && ok;
    ok = std::fclose(f) == 0 && ok;
    std::error_code ec;
    if (ok) fs::rename(temp, target, ec);
    if (!ok || ec) {
        fs::remove(temp, ec);
        return "the file could not be written";
    }
    return {};
}
#endif

} // namespace quillon
