#include "records/source_bytes.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <filesystem>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillon {

namespace {

std::atomic<Loading> loading{Loading::Copy};
std::atomic<std::size_t> releaseStep{kReleaseStep};

// Refuses what is not an ordinary file: a pipe would block the read forever and a device could be
// endless.
bool refused(const std::string& path, std::string& error) {
    namespace fs = std::filesystem;
    std::error_code ec;
    fs::file_status status = fs::status(path, ec);
    if (ec || !fs::exists(status))
        error = "the file does not exist";
    else if (fs::is_directory(status))
        error = "it is a folder, not a file";
    else if (!fs::is_regular_file(status))
        error = "it is not an ordinary file";
    return !error.empty();
}

std::shared_ptr<const SourceBytes> mapped(const std::string& path, std::string& error) {
    // Without waiting: a file whose reads block (a device, /proc/kmsg) must not hang the program.
    int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        error = "the file cannot be opened";
        return nullptr;
    }
    struct stat info {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        error = "the file cannot be read";
        return nullptr;
    }
    if (info.st_size == 0) {
        ::close(fd);
        return std::make_shared<const SourceBytes>(std::string());
    }
    void* at = ::mmap(nullptr, std::size_t(info.st_size), PROT_READ, MAP_PRIVATE, fd, 0);
    ::close(fd);
    if (at == MAP_FAILED) { // a file system that cannot map still reads
        std::string bytes = loadFile(path, error);
        return error.empty() ? std::make_shared<const SourceBytes>(std::move(bytes)) : nullptr;
    }
    return std::make_shared<const SourceBytes>(static_cast<const char*>(at), std::size_t(info.st_size),
                                               releaseStep.load());
}

} // namespace

SourceBytes::~SourceBytes() {
    if (mapped_) ::munmap(const_cast<char*>(bytes_.data()), bytes_.size());
}

void SourceBytes::release(std::size_t from, std::size_t to) const {
    if (!mapped_) return;
    // Positions come from the file's size words: advice beyond the mapping would hand back the
    // process's own memory.
    to = std::min(to, bytes_.size());
    if (from >= to) return;
    static const std::size_t page = std::size_t(::sysconf(_SC_PAGESIZE));
    auto start = reinterpret_cast<std::uintptr_t>(bytes_.data());
    std::uintptr_t first = (start + from + page - 1) / page * page, last = (start + to) / page * page;
    if (first < last) ::madvise(reinterpret_cast<void*>(first), last - first, MADV_DONTNEED);
}

void setLoading(Loading l, std::size_t step) {
    loading = l;
    releaseStep = step;
}

Loading activeLoading() {
    return loading;
}

std::string loadFile(const std::string& path, std::string& error) {
    if (refused(path, error)) return {};
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) {
        error = "the file cannot be opened";
        return {};
    }
    std::string bytes;
    std::error_code ec;
    std::uintmax_t size = std::filesystem::file_size(path, ec);
    if (!ec && size > 0) bytes.resize(size);
    std::size_t got = bytes.empty() ? 0 : std::fread(bytes.data(), 1, bytes.size(), f);
    bool failed = std::ferror(f) != 0;
    std::fclose(f);
    if (failed) {
        error = "the file cannot be read";
        return {};
    }
    bytes.resize(got);
    return bytes;
}

std::shared_ptr<const SourceBytes> loadSource(const std::string& path, std::string& error) {
    if (loading == Loading::Map) return refused(path, error) ? nullptr : mapped(path, error);
    std::string bytes = loadFile(path, error);
    return error.empty() ? std::make_shared<const SourceBytes>(std::move(bytes)) : nullptr;
}

} // namespace quillon
