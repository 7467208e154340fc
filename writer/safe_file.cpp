#include "writer/safe_file.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillon {

namespace fs = std::filesystem;

namespace {

// The temporary file being written under a name, for removal by a signal handler: plain bytes,
// since a handler may not touch a std::string being changed.
char inProgress[4096] = "";
volatile std::sig_atomic_t hasInProgress = 0;

void noteInProgress(const std::string& name) {
    hasInProgress = 0;
    if (name.size() >= sizeof inProgress) return;
    std::memcpy(inProgress, name.c_str(), name.size() + 1);
    hasInProgress = 1;
}

} // namespace

void removeTemporaryInProgress() {
    if (hasInProgress) ::unlink(inProgress);
}

namespace {

void endedBySignal(int signal) {
    removeTemporaryInProgress();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

} // namespace

void removeTemporaryOnSignals() {
    for (int signal : {SIGTERM, SIGINT, SIGHUP})
        std::signal(signal, endedBySignal);
}

bool isReadOnlyFile(const std::string& path) {
    struct stat st {};
    return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode) && (st.st_mode & 0222) == 0;
}

SafeFileWriter::SafeFileWriter(const std::string& path, ReadOnlyTarget readOnly) {
    fs::path target(path);
    std::error_code ec;
    // A link is followed, so that the file it names is replaced and the link stays.
    if (fs::is_symlink(target, ec)) {
        fs::path resolved = fs::canonical(target, ec);
        if (!ec) target = resolved;
    }
    target_ = target.string();
    fs::file_status status = fs::status(target, ec);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        fail(0, "\"" + target.filename().string() + "\" is not an ordinary file");
        return;
    }
    if (readOnly == ReadOnlyTarget::Refuse && isReadOnlyFile(target_)) {
        fail(0, "\"" + target.filename().string() + "\" is read-only");
        return;
    }
    folder_ = target.has_parent_path() ? target.parent_path().string() : std::string(".");
#ifdef O_TMPFILE
    fd_ = ::open(folder_.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    unnamed_ = fd_ >= 0;
#endif
    if (fd_ < 0) {
        // A short name, so that a target whose own name is near the limit can still be written.
        tempName_ = (fs::path(folder_) / ".quillon-XXXXXX").string();
        fd_ = ::mkstemp(tempName_.data());
        named_ = fd_ >= 0;
        if (named_) noteInProgress(tempName_);
    }
    if (fd_ < 0) {
        fail(errno, "cannot create a file in \"" + folder_ + "\": " + std::strerror(errno));
        return;
    }
    // Keep the old file's permissions, owner and group; a new file gets the usual ones.
    struct stat old {};
    replacing_ = ::stat(target_.c_str(), &old) == 0;
    mode_ = replacing_ ? (old.st_mode & 07777) : mode_t(0644);
    owner_ = old.st_uid;
    group_ = old.st_gid;
    ::fchmod(fd_, mode_);
}

SafeFileWriter::~SafeFileWriter() {
    if (fd_ >= 0) ::close(fd_);
    if (named_) ::unlink(tempName_.c_str());
    hasInProgress = 0;
}

void SafeFileWriter::fail(int systemError, std::string text) {
    if (!error_.empty()) return;
    systemError_ = systemError;
    error_ = std::move(text);
}

bool SafeFileWriter::write(std::string_view bytes) {
    // Written in chunks, each handed to the disk at once, so that a big file never piles up as
    // dirty pages that the system would then make the writer wait for.
    constexpr std::size_t kChunk = 8 << 20;
    while (error_.empty() && !bytes.empty()) {
        ssize_t n = ::write(fd_, bytes.data(), std::min(bytes.size(), kChunk));
        if (n < 0) {
            if (errno != EINTR) fail(errno, std::strerror(errno));
            continue;
        }
#ifdef __linux__
        ::sync_file_range(fd_, off_t(written_), off_t(n), SYNC_FILE_RANGE_WRITE);
#endif
        bytes.remove_prefix(std::size_t(n));
        written_ += std::size_t(n);
    }
    return error_.empty();
}

std::string SafeFileWriter::commit() {
    if (error_.empty() && replacing_) {
        // Only the superuser may give a file away; anyone may give it a group they belong to.
        // Where neither is allowed the new file keeps this user's, as a copy would.
        if (::fchown(fd_, owner_, group_) != 0 && ::fchown(fd_, uid_t(-1), group_) != 0) replacing_ = false;
        // A change of owner clears the set-id bits: the mode is given again.
        ::fchmod(fd_, mode_);
    }
    if (error_.empty() && ::fsync(fd_) != 0) fail(errno, std::strerror(errno));
    if (error_.empty() && unnamed_) {
        // Named only now, under a fresh temporary name, then renamed over the target.
        std::string self = "/proc/self/fd/" + std::to_string(fd_);
        for (int attempt = 0; !named_ && error_.empty(); ++attempt) {
            tempName_ = (fs::path(folder_) /
                         (".quillon-" + std::to_string(::getpid()) + "-" + std::to_string(attempt)))
                            .string();
            if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, tempName_.c_str(), AT_SYMLINK_FOLLOW) == 0) {
                named_ = true;
                noteInProgress(tempName_);
            } else if (errno != EEXIST || attempt == 100)
                fail(errno, std::strerror(errno));
        }
    }
    if (fd_ >= 0 && ::close(fd_) != 0) fail(errno, std::strerror(errno));
    fd_ = -1;
    if (error_.empty() && ::rename(tempName_.c_str(), target_.c_str()) != 0)
        fail(errno, std::strerror(errno));
    if (error_.empty()) named_ = false; // the temporary name is now the target's
    if (!named_) hasInProgress = 0;
    return error_;
}

std::string replaceFileSafely(const std::string& path, const std::string& bytes, ReadOnlyTarget readOnly,
                              int* systemError) {
    SafeFileWriter file(path, readOnly);
    file.write(bytes);
    std::string error = file.commit();
    if (systemError) *systemError = file.systemError();
    return error;
}

} // namespace quillon
