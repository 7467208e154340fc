#include "app/error_numbers.h"

#include <cerrno>

namespace quillon {

FailureKind writeFailureKind(int systemError) {
    switch (systemError) {
    case ENOMEM: return FailureKind::OutOfMemory;
    case ENOSPC:
#ifdef EDQUOT
    case EDQUOT:
#endif
    case EFBIG: return FailureKind::DiskFull;
    case EACCES:
    case EPERM:
    case EROFS: return FailureKind::PermissionDenied;
    // A file being written is created, so a missing name is a missing folder.
    case ENOENT:
    case ENOTDIR: return FailureKind::PathNotFound;
    default: return FailureKind::AccessError;
    }
}

std::string numberedErrorMessage(FailureKind kind) {
    const char* description = "Path/File access error";
    switch (kind) {
    case FailureKind::OutOfMemory: description = "Out of memory"; break;
    case FailureKind::FileNotFound: description = "File not found"; break;
    case FailureKind::DiskFull: description = "Disk full"; break;
    case FailureKind::PermissionDenied: description = "Permission denied"; break;
    case FailureKind::AccessError: break;
    case FailureKind::PathNotFound: description = "Path not found"; break;
    }
    return "Quillon has encountered an error number #" + std::to_string(int(kind)) + ": " + description + ".";
}

} // namespace quillon
