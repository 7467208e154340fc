#pragma once
// The bytes of a data file as read, which the records of the store point into: a copy in memory,
// or the file itself mapped read-only.
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace quillon {

class SourceBytes {
public:
    explicit SourceBytes(std::string copy) : copy_(std::move(copy)), bytes_(copy_) {}
    SourceBytes(const char* mapped, std::size_t size, std::size_t releaseStep)
        : bytes_(mapped, size), mapped_(true), releaseStep_(releaseStep > 0 ? releaseStep : 1) {}
    ~SourceBytes();
    SourceBytes(const SourceBytes&) = delete;
    SourceBytes& operator=(const SourceBytes&) = delete;

    const char* data() const { return bytes_.data(); }
    std::size_t size() const { return bytes_.size(); }
    // The bytes in [from, to) are passed and not needed soon: a mapping hands their pages back,
    // and they come back from the system's file cache when read again. A copy keeps them. Only
    // whole pages inside the bytes are handed back, whatever from and to say.
    void release(std::size_t from, std::size_t to) const;
    // How many bytes a walk passes between two releases.
    std::size_t releaseStep() const { return releaseStep_; }

private:
    std::string copy_;
    std::string_view bytes_;
    bool mapped_ = false;
    std::size_t releaseStep_ = SIZE_MAX;
};

// How a file is brought into memory. A copy stays whole whatever happens to the file later, as a
// window open for hours needs; a mapping costs neither the copy nor fresh memory, but reads what
// another program writes into the file meanwhile, so it suits a run of moments (the command line).
// A mapped file's pages are handed back every releaseStep bytes a walk passes: a few megabytes
// keep the calls rare; tests and fuzzers take a small step so that small files exercise it.
enum class Loading { Copy, Map };
constexpr std::size_t kReleaseStep = std::size_t(8) << 20;
void setLoading(Loading loading, std::size_t releaseStep = kReleaseStep);
Loading activeLoading();

// The whole file as bytes; empty with error set when it cannot be read (missing, a folder, not an
// ordinary file, unreadable).
std::string loadFile(const std::string& path, std::string& error);

// The whole file at path, as the active loading brings it; null with error set as loadFile sets it.
std::shared_ptr<const SourceBytes> loadSource(const std::string& path, std::string& error);

} // namespace quillon
