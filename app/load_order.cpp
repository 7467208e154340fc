#include "app/load_order.h"

#include "app/openmw_config.h"
#include "records/es_read.h"
#include "records/read_common.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <map>
#include <new>
#include <set>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillon {

namespace fs = std::filesystem;

namespace {

// Finds files by name in any letter case, folder by folder, each folder listed once.
class FolderFiles {
public:
    explicit FolderFiles(std::vector<std::string> folders) : folders_(std::move(folders)) {}
    // The first folder's file of that name; empty when no folder has one.
    std::string find(const std::string& name) {
        std::string key = foldedKey(name);
        for (const std::string& folder : folders_) {
            auto& listing = listings_[folder];
            if (listing.empty()) listing = list(folder);
            if (auto found = listing.find(key); found != listing.end()) return found->second;
        }
        return {};
    }

private:
    static std::map<std::string, std::string> list(const std::string& folder) {
        std::map<std::string, std::string> out{{"", ""}}; // never empty once listed
        std::error_code ec;
        for (const fs::directory_entry& e : fs::directory_iterator(folder, ec))
            if (e.is_regular_file(ec))
                out.emplace(foldedKey(e.path().filename().string()), e.path().string());
        return out;
    }
    std::vector<std::string> folders_;
    std::map<std::string, std::map<std::string, std::string>> listings_;
};

// At most n bytes of an open file, ending at a short read.
std::string readUpTo(int fd, std::size_t n) {
    std::string bytes(n, '\0');
    std::size_t got = 0;
    while (got < n) {
        ssize_t r = ::read(fd, bytes.data() + got, n - got);
        if (r < 0 && errno == EINTR) continue;
        if (r <= 0) break;
        got += std::size_t(r);
    }
    bytes.resize(got);
    return bytes;
}

// The masters a data file's header names, read from its first record alone: a header is a few
// hundred bytes, and at most a megabyte of the file is read whatever its size word says. The file
// is opened without waiting and read no further than the size it reports, so that a file whose
// reads block (a device, /proc/kmsg) or a size of 0 ends the read at once.
std::vector<MasterEntry> headerMasters(const std::string& path) {
    int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return {};
    struct stat info {};
    std::string bytes;
    if (::fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_size >= 16) {
        std::size_t limit = std::size_t(std::min<off_t>(info.st_size, 16 + (1 << 20)));
        bytes = readUpTo(fd, 16);
        if (bytes.size() == 16) {
            std::int32_t size;
            std::memcpy(&size, bytes.data() + 4, 4);
            std::size_t body = std::min(std::size_t(std::clamp<std::int32_t>(size, 0, 1 << 20)), limit - 16);
            bytes += readUpTo(fd, body);
        }
    }
    ::close(fd);
    ByteCursor in(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    if (!in.nextIs(tag("TES3"))) return {};
    Tes3Record header;
    RecordStore scratch;
    readTes3(in, header, scratch);
    return header.Masters;
}

class Search {
public:
    Search(LoadOrder& order, FolderFiles& files) : order_(order), files_(files) {}
    // Each master of entries not yet placed: its own masters first, then itself. The walk keeps
    // its own stack, since a chain of masters as deep as files make it would overflow the
    // program's.
    void place(const std::vector<MasterEntry>& entries, const std::string& namedBy) {
        struct Step {
            std::vector<MasterEntry> entries;
            std::string namedBy;
            std::size_t next = 0;
            std::unique_ptr<MasterFile> waiting; // placed once its own masters are
        };
        std::vector<Step> steps;
        steps.push_back({entries, namedBy, 0, nullptr});
        while (!steps.empty()) {
            Step& step = steps.back();
            if (step.next == step.entries.size()) {
                std::unique_ptr<MasterFile> done = std::move(step.waiting);
                steps.pop_back();
                if (done) order_.masters.push_back(std::move(done));
                continue;
            }
            MasterEntry entry = step.entries[step.next++];
            std::string by = step.namedBy;
            if (entry.MAST.empty() || !seen_.insert(foldedKey(entry.MAST)).second) continue;
            auto master = std::make_unique<MasterFile>();
            master->name = entry.MAST;
            master->recordedSize = entry.MasterSize;
            master->namedBy = by;
            master->path = files_.find(entry.MAST);
            if (!master->found()) {
                order_.masters.push_back(std::move(master));
                continue;
            }
            std::error_code ec;
            master->size = std::int64_t(fs::file_size(master->path, ec));
            std::vector<MasterEntry> own = headerMasters(master->path);
            for (const MasterEntry& m : own)
                if (!m.MAST.empty()) master->masters.push_back(m.MAST);
            steps.push_back({std::move(own), entry.MAST, 0, std::move(master)});
        }
    }

private:
    LoadOrder& order_;
    FolderFiles& files_;
    std::set<std::string> seen_;
};

// Prompts that keep records of unknown type and tell nothing: a master is context, not the file
// the user opened. A tag that is not four visible characters is no record at all: the read stops
// there, keeping what it read, rather than walking gigabytes of zeros 16 bytes at a time.
class Quiet : public Prompts {
public:
    void tell(const std::string&) override {}
    Answer ask(const Question& what, const std::string&, bool) override {
        bool visible = what.subject.size() == 4 && std::all_of(what.subject.begin(), what.subject.end(),
                                                               [](char c) { return c > ' ' && c < 0x7F; });
        return visible ? Answer::Cancel : Answer::Ok;
    }
    DamageChoice damagedOutput(const DamageReport&) override { return DamageChoice::WriteNothing; }
};

} // namespace

bool LoadOrder::allFound() const {
    for (const auto& m : masters)
        if (!m->found()) return false;
    return true;
}

int LoadOrder::position(std::string_view name) const {
    std::string key = foldedKey(name);
    for (std::size_t i = 0; i < masters.size(); ++i)
        if (foldedKey(masters[i]->name) == key) return int(i);
    return -1;
}

LoadOrder findMasters(const RecordStore& own, const std::string& path, const MasterSearch& search) {
    LoadOrder order;
    if (own.TES3.empty()) return order;
    std::vector<std::string> folders = search.dataFolders;
    OpenMwConfig config = readOpenMwConfig(search.system, search.openMwConfig);
    if (!search.openMwConfig.empty() && config.path.empty())
        order.searchNotes.push_back(search.openMwConfig + ": cannot be read");
    for (auto f = config.dataFolders.rbegin(); f != config.dataFolders.rend(); ++f)
        folders.push_back(*f);
    for (const std::string& refused : config.refused)
        order.searchNotes.push_back(config.path + ": " + refused);
    if (std::string game = findDataFolder(search.system); !game.empty()) folders.push_back(game);
    fs::path beside = fs::path(path).parent_path();
    folders.push_back(beside.empty() ? "." : beside.string());
    FolderFiles files(folders);
    // A master's place in the load order is one byte of a reference's index: the game addresses
    // no more than 255; every one named is still looked for, as OpenMW does.
    if (std::size_t named = own.TES3.front().Masters.size(); named > 255)
        order.searchNotes.push_back(fs::path(path).filename().string() + " names " + std::to_string(named) +
                                    " masters; references can address only 255");
    Search(order, files).place(own.TES3.front().Masters, fs::path(path).filename().string());
    return order;
}

namespace {

std::string stampOf(const std::string& path) {
    std::error_code ec;
    auto size = fs::file_size(path, ec);
    auto time = fs::last_write_time(path, ec);
    return ec ? std::string() : std::to_string(size) + ":" + std::to_string(time.time_since_epoch().count());
}

} // namespace

std::shared_ptr<const RecordStore> MasterCache::find(const std::string& path) const {
    auto found = entries_.find(path);
    if (found == entries_.end() || found->second.stamp.empty() || found->second.stamp != stampOf(path))
        return nullptr;
    return found->second.records.lock();
}

void MasterCache::keep(const std::string& path, const std::shared_ptr<const RecordStore>& records) {
    std::erase_if(entries_, [](const auto& entry) { return entry.second.records.expired(); });
    entries_[path] = {stampOf(path), records};
}

std::vector<std::string> contentFiles(const MasterSearch& search, std::vector<std::string>& missing,
                                      std::string& configPath) {
    OpenMwConfig config = readOpenMwConfig(search.system, search.openMwConfig);
    configPath = config.path;
    FolderFiles files(std::vector<std::string>(config.dataFolders.rbegin(), config.dataFolders.rend()));
    std::vector<std::string> out;
    for (const std::string& name : config.values("content")) {
        std::string path = files.find(name);
        (path.empty() ? missing : out).push_back(path.empty() ? name : path);
    }
    return out;
}

void MasterCache::shareDerived(LoadOrder& order) {
    std::erase_if(derived_, [](const auto& entry) { return entry.second.expired(); });
    std::vector<const void*> key;
    for (const auto& m : order.masters)
        key.push_back(m->found() ? m->records.get() : nullptr);
    if (auto shared = derived_[key].lock())
        order.derived = std::move(shared);
    else
        derived_[key] = order.derived;
}

void readMasters(LoadOrder& order, MasterCache* cache) {
    auto start = std::chrono::steady_clock::now();
    for (auto& master : order.masters) {
        if (!master->found()) continue;
        if (auto kept = cache ? cache->find(master->path) : nullptr) {
            master->records = std::move(kept);
            continue;
        }
        Quiet prompts;
        std::int32_t count = 0;
        ReadDiagnostics diagnostics;
        auto store = std::make_shared<RecordStore>();
        try {
            ReadESFile(*store, master->path, count, true, prompts, &diagnostics);
        } catch (const std::bad_alloc&) {
            // A master too large for memory is left out, as one not found would be.
            order.searchNotes.push_back(master->name +
                                        " is too large to be read into memory; its records are not known");
            continue;
        }
        master->records = store;
        if (cache && diagnostics.stoppedAt == 0) cache->keep(master->path, store);
        if (diagnostics.stoppedAt != 0)
            order.searchNotes.push_back(master->name + " holds bytes that are not records from byte " +
                                        std::to_string(diagnostics.stoppedAt) +
                                        " on; it was read up to there");
    }
    order.readMs =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

} // namespace quillon
