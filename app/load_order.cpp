#include "app/load_order.h"

#include "app/openmw_config.h"
#include "records/es_read.h"
#include "records/read_common.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

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

// The masters a data file's header names, read from its first record alone: a header is a few
// hundred bytes, and at most a megabyte of the file is read whatever its size word says.
std::vector<MasterEntry> headerMasters(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string bytes(16, '\0');
    if (!file.read(bytes.data(), 16)) return {};
    std::int32_t size;
    std::memcpy(&size, bytes.data() + 4, 4);
    bytes.resize(16 + std::size_t(std::clamp<std::int32_t>(size, 0, 1 << 20)));
    file.read(bytes.data() + 16, std::streamsize(bytes.size() - 16));
    bytes.resize(16 + std::size_t(file.gcount()));
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
    // Each master of entries not yet placed: its own masters first, then itself.
    void place(const std::vector<MasterEntry>& entries, const std::string& namedBy) {
        for (const MasterEntry& entry : entries) {
            if (entry.MAST.empty() || !seen_.insert(foldedKey(entry.MAST)).second) continue;
            auto master = std::make_unique<MasterFile>();
            master->name = entry.MAST;
            master->recordedSize = entry.MasterSize;
            master->namedBy = namedBy;
            master->path = files_.find(entry.MAST);
            if (master->found()) {
                std::error_code ec;
                master->size = std::int64_t(fs::file_size(master->path, ec));
                std::vector<MasterEntry> own = headerMasters(master->path);
                for (const MasterEntry& m : own)
                    if (!m.MAST.empty()) master->masters.push_back(m.MAST);
                place(own, entry.MAST);
            }
            order_.masters.push_back(std::move(master));
        }
    }

private:
    LoadOrder& order_;
    FolderFiles& files_;
    std::set<std::string> seen_;
};

// Prompts that keep records of unknown type and tell nothing: a master is context, not the file
// the user opened.
class Quiet : public Prompts {
public:
    void tell(const std::string&) override {}
    Answer ask(const Question&, const std::string&, bool) override { return Answer::Cancel; }
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
    Search(order, files).place(own.TES3.front().Masters, fs::path(path).filename().string());
    return order;
}

void readMasters(LoadOrder& order) {
    auto start = std::chrono::steady_clock::now();
    for (auto& master : order.masters) {
        if (!master->found()) continue;
        Quiet prompts;
        std::int32_t count = 0;
        ReadESFile(master->store, master->path, count, true, prompts);
    }
    order.readMs =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

} // namespace quillon
