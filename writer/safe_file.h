#pragma once
#include <string>
#include <string_view>

#include <sys/types.h>

namespace quillon {

// A target whose owner has taken away write permission is replaced only when the user said so.
enum class ReadOnlyTarget { Refuse, Replace };

// True when path names an existing file that nobody may write (its mode has no write bit): such
// a file was made read-only on purpose, even where the system would let this user replace it.
bool isReadOnlyFile(const std::string& path);

// Replaces the file at path in steps: bytes are written to a temporary file in the same folder
// (unnamed where the system allows, so that a crash leaves nothing behind) and handed to the disk
// as they come; commit() flushes it and renames it over the target. Until then, and on any
// failure, the old file is untouched; a writer dropped without commit() leaves no trace.
class SafeFileWriter {
public:
    explicit SafeFileWriter(const std::string& path, ReadOnlyTarget readOnly = ReadOnlyTarget::Refuse);
    ~SafeFileWriter();
    SafeFileWriter(const SafeFileWriter&) = delete;
    SafeFileWriter& operator=(const SafeFileWriter&) = delete;

    // False once anything failed; what failed is then in error().
    bool write(std::string_view bytes);
    // Puts the file in place; empty on success, else what went wrong.
    std::string commit();
    const std::string& error() const { return error_; }
    // The system's error number of the failure, or 0 (also when the target is refused for not
    // being an ordinary file or for being read-only).
    int systemError() const { return systemError_; }

private:
    void fail(int systemError, std::string text);

    std::string target_, folder_, tempName_;
    int fd_ = -1;
    bool unnamed_ = false, named_ = false;
    std::size_t written_ = 0;
    std::string error_;
    int systemError_ = 0;
    // The replaced file's mode, owner and group, given to the new one where the system allows.
    bool replacing_ = false;
    mode_t mode_ = 0644;
    uid_t owner_ = 0;
    gid_t group_ = 0;
};

// Removes the named temporary file of the replacement in progress, if any; safe to call from a
// signal handler, so that a program ended by a signal leaves no half-written file behind (where
// the system has unnamed temporary files, none is ever named before it is complete).
void removeTemporaryInProgress();
// Ends the program on SIGTERM, SIGINT and SIGHUP as usual, but first removes that file.
void removeTemporaryOnSignals();

// The whole replacement at once: the returned text says what went wrong (empty on success), and
// systemError, when given, the system's error number.
std::string replaceFileSafely(const std::string& path, const std::string& bytes,
                              ReadOnlyTarget readOnly = ReadOnlyTarget::Refuse, int* systemError = nullptr);

} // namespace quillon
