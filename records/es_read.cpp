#include "records/es_read.h"

#include "records/read_common.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <new>

#include <unistd.h>

namespace quillon {

namespace {

using Clock = std::chrono::steady_clock;

double msSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

enum TypeIndex : std::size_t {
#define QUILLON_INDEX(T, ...) k##T,
    QUILLON_RECORD_TYPES(QUILLON_INDEX)
#undef QUILLON_INDEX
        kTypes
};
// The records of each type, and of all types (unknown ones and a last one cut short included).
struct TypeCounts {
    std::array<std::size_t, kTypes> byType{};
    std::size_t total = 0;
};

// Hands back the pages of a mapped file a walk has passed, a release step at a time, once it is
// past the first keepSteps steps: the records point into the file, but its bytes need not stay in
// the process, so that opening a file takes memory for its structures and not for the file as well.
class PassedBytes {
public:
    PassedBytes(const SourceBytes& source, std::size_t keepSteps)
        : source_(source),
          keep_(std::min(keepSteps, SIZE_MAX / source.releaseStep()) * source.releaseStep()) {}
    void reached(std::size_t at) {
        if (at < keep_ || at - released_ < source_.releaseStep()) return;
        source_.release(released_, at);
        released_ = at;
    }

private:
    const SourceBytes& source_;
    std::size_t keep_;
    std::size_t released_ = 0;
};

// The memory the structures of a file may take: a file of many tiny records would take memory far
// beyond its bytes, each record becoming a structure of all its possible fields; and no file may
// take more than the machine has.
std::size_t structureBudget(std::size_t fileSize) {
    std::size_t budget = 8 * fileSize + (std::size_t(64) << 20);
    long pages = ::sysconf(_SC_PHYS_PAGES), pageSize = ::sysconf(_SC_PAGESIZE);
    if (pages > 0 && pageSize > 0) budget = std::min(budget, std::size_t(pages) * std::size_t(pageSize));
    return budget;
}

// Each sub-record header within a record's claimed bytes, with the bytes of its data that are
// there (whatever its size word claims), up to one that does not fit.
template <class Visit>
void forEachSubRecord(std::string_view bytes, std::size_t start, std::size_t end, Visit visit) {
    end = std::min(end, bytes.size());
    for (std::size_t p = start; p + 8 <= end;) {
        Tag t;
        std::int32_t size;
        std::memcpy(&t, bytes.data() + p, 4);
        std::memcpy(&size, bytes.data() + p + 4, 4);
        if (size < 0) break;
        visit(t, std::min(std::size_t(size), end - p - 8));
        if (std::size_t(size) > end - p - 8) break;
        p += 8 + std::size_t(size);
    }
}

// The sub-records of one tag, and the bytes of the first one.
struct TaggedSubRecords {
    std::size_t count = 0;
    std::size_t firstSize = 0;
};
TaggedSubRecords subRecordsTagged(std::string_view bytes, std::size_t start, std::size_t end, Tag wanted) {
    TaggedSubRecords found;
    forEachSubRecord(bytes, start, end, [&](Tag t, std::size_t size) {
        if (t == wanted && found.count++ == 0) found.firstSize = size;
    });
    return found;
}

// What a cell's references take: each FRMR a reference, and each reference carrying anything but
// its ID, scale and place the details of its own kept beside it.
std::size_t referenceStructures(std::string_view bytes, std::size_t start, std::size_t end) {
    std::size_t total = 0;
    bool inReference = false, hasDetails = false;
    forEachSubRecord(bytes, start, end, [&](Tag t, std::size_t) {
        if (t == tag("FRMR")) {
            total += sizeof(CellReference);
            inReference = true;
            hasDetails = false;
        } else if (inReference && !hasDetails && t != tag("NAME") && t != tag("XSCL") && t != tag("DATA")) {
            total += sizeof(ReferenceDetails) + 16; // and the allocation's own bookkeeping
            hasDetails = true;
        }
    });
    return total;
}

// The records of each type, from a walk of the record headers. A file whose sizes mislead gives
// smaller counts, and its arrays then grow as usual. A file whose structures would exceed their
// budget is refused as too large for memory as soon as the walk finds so, before the store is
// touched, so that the records open before stay. A walk of a large file keeps only its first
// pages mapped, for the read that follows.
TypeCounts countRecords(const SourceBytes& source) {
    std::string_view bytes(source.data(), source.size());
    const std::size_t budget = structureBudget(bytes.size());
    PassedBytes passed(source, 32);
    TypeCounts counts{};
    std::size_t structures = 0;
    std::size_t topicName = 0; // every response holds its topic's name
    for (std::size_t p = 0; p + 16 <= bytes.size(); passed.reached(p)) {
        Tag t;
        std::int32_t size;
        std::memcpy(&t, bytes.data() + p, 4);
        std::memcpy(&size, bytes.data() + p + 4, 4);
        if (size < 0) break;
        // What a record holds beyond its structure where a few bytes make much: the topic's name
        // copied into each response, a condition per SCVR, a reference per FRMR.
        std::size_t end = p + 16 + std::size_t(size);
        if (t == tag("DIAL")) topicName = subRecordsTagged(bytes, p + 16, end, tag("NAME")).firstSize;
        if (t == tag("INFO"))
            structures +=
                topicName + subRecordsTagged(bytes, p + 16, end, tag("SCVR")).count * sizeof(InfoCondition);
        if (t == tag("CELL")) structures += referenceStructures(bytes, p + 16, end);
        switch (t) {
#define QUILLON_COUNT(T, Record, ...)                                                                        \
    case tag(#T):                                                                                            \
        ++counts.byType[k##T];                                                                               \
        structures += sizeof(Record);                                                                        \
        break;
            QUILLON_RECORD_TYPES(QUILLON_COUNT)
#undef QUILLON_COUNT
        default: structures += sizeof(RawRecord); break; // kept as a record of unknown type
        }
        if (structures > budget) throw std::bad_alloc();
        ++counts.total;
        if (std::size_t(size) > bytes.size() - p - 16) break; // the last record, cut short
        p += 16 + std::size_t(size);
    }
    return counts;
}

// Sizes every array at once, so that they do not grow by copying while the file is read.
void reserveArrays(RecordStore& store, const TypeCounts& counts) {
#define QUILLON_RESERVE(T, ...) store.T.reserve(counts.byType[k##T]);
    QUILLON_RECORD_TYPES(QUILLON_RESERVE)
#undef QUILLON_RESERVE
}

// Reads one record into a fresh element and appends it to its array.
template <class R, class Reader>
void append(std::vector<R>& array, ByteCursor& in, RecordStore& store, Reader read) {
    R scratch;
    read(in, scratch, store);
    array.push_back(std::move(scratch));
}

std::string unknownRecordQuestion(std::size_t offset, Tag t) {
    return "Unknown record encountered at address: " + std::to_string(offset) +
           ".\r\nContinue reading? Cancel is Yes To All.\r\nRecord Name: \"" + tagText(t) + "\"";
}

} // namespace

bool hasOpenMWFileName(const std::string& path) {
    std::string name = std::filesystem::path(path).filename().string();
    std::size_t dot = name.rfind('.');
    if (dot == std::string::npos) return false;
    std::string extension = name.substr(dot + 1);
    for (char& c : extension)
        c = char(std::tolower(static_cast<unsigned char>(c)));
    return extension == "omwaddon" || extension == "omwgame";
}

bool hasDataFileName(const std::string& path) {
    if (hasOpenMWFileName(path)) return true;
    std::string last3 = path.size() > 3 ? path.substr(path.size() - 3) : path;
    std::string first2 = last3.substr(0, 2);
    for (char& c : first2)
        c = char(std::toupper(static_cast<unsigned char>(c)));
    return first2 == "ES";
}

double ReadESFile(RecordStore& store, const std::string& path, std::int32_t& recordCount, bool trimAtEnd,
                  Prompts& prompts, ReadDiagnostics* diagnostics) {
    if (!hasDataFileName(path)) {
        prompts.tell("The selected file is invalid.");
        recordCount = 0;
        return -1;
    }
    Clock::time_point start = Clock::now();
    std::string error;
    std::shared_ptr<const SourceBytes> bytes = loadSource(path, error);
    if (!bytes) {
        // Unlike a refused name, nothing is read; the store stays as it was.
        std::string name = std::filesystem::path(path).filename().string();
        prompts.tell("Cannot read \"" + name + "\": " + error + ".");
        if (diagnostics) diagnostics->loadError = error;
        recordCount = 0;
        return -1;
    }
    bool openmw = hasOpenMWFileName(path);
    // OpenMW's names say nothing of the format, so the file itself must say it is one.
    if (openmw && std::string_view(bytes->data(), std::min<std::size_t>(bytes->size(), 4)) != "TES3") {
        prompts.tell("The selected file is invalid.");
        recordCount = 0;
        return -1;
    }
    double loadMs = msSince(start);
    double ms = readSource(store, std::move(bytes), recordCount, trimAtEnd, prompts, diagnostics, openmw);
    return ms > 0 ? ms + loadMs : ms;
}

double ReadESBuffer(RecordStore& store, std::string bytes, std::int32_t& recordCount, bool trimAtEnd,
                    Prompts& prompts, ReadDiagnostics* diagnostics) {
    return readSource(store, std::make_shared<const SourceBytes>(std::move(bytes)), recordCount, trimAtEnd,
                      prompts, diagnostics);
}

double readSource(RecordStore& store, std::shared_ptr<const SourceBytes> source, std::int32_t& recordCount,
                  bool trimAtEnd, Prompts& prompts, ReadDiagnostics* diagnostics, bool openmwFile) {
    Clock::time_point start = Clock::now();
    double pauseMs = 0;
    TypeCounts counts = countRecords(*source);
    ClearRecords(store);
    store.source = source;
    std::size_t size = source->size();
    reserveArrays(store, counts);
    ByteCursor in(reinterpret_cast<const std::uint8_t*>(source->data()), size);
    in.keepForeignSubRecords(openmwFile);
    PassedBytes passed(*source, 0);
    bool stopped = false;
    // A record needs more than its tag: four bytes or fewer left over are passed over.
    for (; !in.failed() && in.remaining() > 4; passed.reached(in.pos())) {
        Tag t = in.peekTag();
        switch (t) {
#define QUILLON_DISPATCH(T, Record, read, ...)                                                               \
    case tag(#T): append(store.T, in, store, read); break;
            QUILLON_RECORD_TYPES(QUILLON_DISPATCH)
#undef QUILLON_DISPATCH
        default:
            if (openmwFile) {
                // OpenMW's own record types (Lua scripts and the like) belong in its files.
                append(store.Unknown, in, store, readRaw);
                store.Unknown.back().Whole = true;
                break;
            }
            if (!store.SkipUnknownPrompt) {
                Clock::time_point asked = Clock::now();
                Answer reply = prompts.ask({QuestionId::UnknownRecord, tagText(t)},
                                           unknownRecordQuestion(in.pos(), t), true);
                // Only the last question's time is taken off the result: replaced, not added.
                pauseMs = msSince(asked);
                if (reply == Answer::No) {
                    ClearRecords(store);
                    return 0;
                }
                if (reply == Answer::Ok) {
                    if (diagnostics) diagnostics->stoppedAt = in.pos();
                    stopped = true;
                    break;
                }
                if (reply == Answer::Cancel) store.SkipUnknownPrompt = true;
            }
            append(store.Unknown, in, store, readRaw);
            break;
        }
        if (stopped) break;
        // A savegame's records hold sub-records of its own, read with them.
        if (t == tag("TES3") && !store.TES3.empty() && (store.TES3.back().FileType & 0xFF) == 32)
            in.keepForeignSubRecords(true);
        ++recordCount;
    }
    if (diagnostics) {
        diagnostics->recordsInFile = counts.total;
        diagnostics->truncated = in.endsInsideRecord();
        if (diagnostics->truncated) diagnostics->truncatedRecordAt = in.lastRecordStart();
    }
    if (trimAtEnd) TrimRecords(store);
    store.SkipUnknownPrompt = false;
    double ms = msSince(start) - pauseMs;
    return ms > 0 ? ms : 0.001; // a finished read never reports the "stopped" value 0
}

} // namespace quillon
