#pragma once
// The bytes of a data file as read, which the records of the store point into: a copy in memory,
// or the file itself mapped read-only.
#include <memory>
#include <string>
#include <string_view>

namespace quillon {

class SourceBytes {
public:
    explicit SourceBytes(std::string copy) : copy_(std::move(copy)), bytes_(copy_) {}
    SourceBytes(const char* mapped, std::size_t size) : bytes_(mapped, size), mapped_(true) {}
    ~SourceBytes();
    SourceBytes(const SourceBytes&) = delete;
    SourceBytes& operator=(const SourceBytes&) = delete;

    const char* data() const { return bytes_.data(); }
    std::size_t size() const { return bytes_.size(); }
    // The bytes in [from, to) are passed and not needed soon: a mapping hands their pages back,
    // and they come back from the system's file cache when read again. A copy keeps them.
    void release(std::size_t from, std::size_t to) const;

private:
    std::string copy_;
    std::string_view bytes_;
    bool mapped_ = false;
};

// How a file is brought into memory. A copy stays whole whatever happens to the file later, as a
// window open for hours needs; a mapping costs neither the copy nor fresh memory, but reads what
// another program writes into the file meanwhile, so it suits a run of moments (the command line).
enum class Loading { Copy, Map };
void setLoading(Loading loading);
Loading activeLoading();

// The whole file as bytes; empty with error set when it cannot be read (missing, a folder, not an
// ordinary file, unreadable).
std::string loadFile(const std::string& path, std::string& error);

// The whole file at path, as the active loading brings it; null with error set as loadFile sets it.
std::shared_ptr<const SourceBytes> loadSource(const std::string& path, std::string& error);

} // namespace quillon
