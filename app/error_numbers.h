#pragma once
#include <string>

namespace quillon {

// The numbered error messages of the listing commands: "Quillon has encountered an error number
// #61: Disk full." The numbers are the classic run-time ones, one per kind of failure.
enum class FailureKind {
    OutOfMemory = 7,
    FileNotFound = 53,
    DiskFull = 61,
    PermissionDenied = 70,
    AccessError = 75,
    PathNotFound = 76
};

// The kind of failure a system error number stands for when writing a file.
FailureKind writeFailureKind(int systemError);
std::string numberedErrorMessage(FailureKind kind);

} // namespace quillon
