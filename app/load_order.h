#pragma once
// A plugin's masters as a read-only context: found by the names its header lists, read as the
// game loads them, and looked up as the game resolves an ID. Nothing here is ever written,
// counted or changed: the store, the counts and every saved byte stay the file's own.
#include "app/game_folder.h"
#include "app/text.h"
#include "records/record_store.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <typeindex>
#include <unordered_map>
#include <vector>

namespace quillon {

// Where masters are looked for, first place first: the --data folders in the order given;
// OpenMW's data folders (later ones first, as the engine lets them win); the game's Data Files
// folder; the plugin's own folder.
struct MasterSearch {
    std::vector<std::string> dataFolders;
    std::string openMwConfig; // the openmw.cfg to read; empty for the user's own
    FolderSearch system = thisSystem();
};

struct MasterFile {
    std::string name;                 // as the header naming it spells it
    std::string path;                 // where it was found; empty when it was not
    std::int64_t recordedSize = 0;    // the size the naming header recorded
    std::int64_t size = 0;            // its size on disk
    std::string namedBy;              // the file whose header named it first
    std::vector<std::string> masters; // the masters its own header names
    // Its records, once read; shared with every other load order naming the same file unchanged.
    std::shared_ptr<const RecordStore> records = std::make_shared<RecordStore>();
    const RecordStore& store() const { return *records; }
    // Names the spelling check accepts, given by a master summary in place of its records.
    std::vector<std::string> names;
    bool summarised = false; // its records are a summary's: IDs, not responses
    bool found() const { return !path.empty(); }
    bool changed() const { return found() && recordedSize != 0 && recordedSize != size; }
};

// Values worked out from the masters' records once (the indexes a check looks IDs up in), one of
// each type: load orders of the same masters, read once, share them.
class DerivedValues {
public:
    template <class T, class Make> const T& get(Make make) const {
        std::shared_ptr<const void>& slot = values_[std::type_index(typeid(T))];
        if (!slot) slot = std::make_shared<const T>(make());
        return *std::static_pointer_cast<const T>(slot);
    }

private:
    mutable std::unordered_map<std::type_index, std::shared_ptr<const void>> values_;
};

class LoadOrder {
public:
    std::vector<std::unique_ptr<MasterFile>> masters; // in load order, each once
    std::vector<std::string> searchNotes;             // what the search could not use, and why
    double readMs = 0;                                // the time reading the masters took
    std::shared_ptr<DerivedValues> derived = std::make_shared<DerivedValues>();

    bool allFound() const;
    // The position of the master of that name (any case) in the load order; -1 when none.
    int position(std::string_view name) const;

    // The record of that ID (any case) in the masters, from the last to the first, as the game
    // resolves an ID the file itself does not define; null when none defines it. Within one
    // master the later record of an ID wins, as in the game.
    template <class R> const R* findInMasters(std::vector<R> RecordStore::*array, std::string_view id) const;

private:
    mutable std::unordered_map<const void*, std::shared_ptr<void>> indexes_; // by the masters' arrays
};

template <class R>
const R* LoadOrder::findInMasters(std::vector<R> RecordStore::*array, std::string_view id) const {
    using Index = std::unordered_map<std::string, const R*>;
    std::string key = foldedKey(id);
    for (auto m = masters.rbegin(); m != masters.rend(); ++m) {
        const std::vector<R>& records = (*m)->store().*array;
        if (records.empty()) continue;
        std::shared_ptr<void>& slot = indexes_[&records];
        if (!slot) {
            auto index = std::make_shared<Index>();
            for (const R& r : records)
                (*index)[foldedKey(r.NAME)] = &r;
            slot = index;
        }
        const Index& index = *std::static_pointer_cast<Index>(slot);
        if (auto found = index.find(key); found != index.end()) return found->second;
    }
    return nullptr;
}

// The content= files of the search's openmw.cfg (the user's when it names none), in load order,
// each found in the configuration's data folders as the engine finds it (later folders first);
// a file no folder holds is named in missing.
std::vector<std::string> contentFiles(const MasterSearch& search, std::vector<std::string>& missing,
                                      std::string& configPath);

// The masters of the file read into own (at path), their masters before them, each once; found
// but not read.
LoadOrder findMasters(const RecordStore& own, const std::string& path, const MasterSearch& search);
// The masters' records in memory, by file: a master named by many plugins checked in one run is
// read once. It holds them only while a load order does.
class MasterCache {
public:
    std::shared_ptr<const RecordStore> find(const std::string& path) const;
    void keep(const std::string& path, const std::shared_ptr<const RecordStore>& records);
    // Gives order the derived values of an order of the same masters' records, while one lives.
    void shareDerived(LoadOrder& order);

private:
    std::map<std::vector<const void*>, std::weak_ptr<DerivedValues>> derived_;
    struct Entry {
        std::string stamp; // size and modification time when read
        std::weak_ptr<const RecordStore> records;
    };
    std::unordered_map<std::string, Entry> entries_;
};

// Reads every master found, as the active loading reads files (mapped on the command line);
// one already in cache, unchanged since, is taken from there.
void readMasters(LoadOrder& order, MasterCache* cache = nullptr);

} // namespace quillon
