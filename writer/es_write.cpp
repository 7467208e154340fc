#include "writer/es_write.h"

#include "writer/safe_file.h"
#include "writer/write_common.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstring>
#include <filesystem>

namespace quillon {

namespace {

std::string upperExtension(const std::string& path) {
    std::string ext = path.size() > 3 ? path.substr(path.size() - 3) : path;
    for (char& c : ext) c = char(std::toupper(static_cast<unsigned char>(c)));
    return ext;
}

template <class R, class F> void writeAll(const std::vector<R>& array, std::int32_t& count, F&& write) {
    for (const R& r : array) {
        write(r);
        ++count;
    }
}

// What the output will take, to reserve it at once. Stored sizes can be anything in a damaged
// file, so the estimate never exceeds the file that was read (and grows as usual beyond it).
std::size_t estimatedSize(RecordStore& store) {
    std::size_t total = 0;
    store.forEachArray([&](const auto& array) {
        for (const auto& r : array) total += 16 + std::size_t(r.Size > 0 ? r.Size : 0);
    });
    std::size_t limit = store.source ? store.source->size() : std::size_t(1) << 20;
    return std::min(total, limit) + 64;
}

} // namespace

std::int32_t fileTypeFor(const std::string& path) {
    std::string ext = upperExtension(path);
    if (ext == "ESM") return 1;
    if (ext == "ESS") return 32;
    return 0;
}

Serialised serialiseChecked(RecordStore& store, std::int32_t recordCount, std::int32_t fileType, Prompts& prompts,
                            bool repairing) {
    ByteSink out(repairing, &store.editNotes);
    out.bytes().reserve(estimatedSize(store));
    std::int32_t written = 0;
    const RecordStore& s = store;
    writeAll(s.TES3, written, [&](auto& r) { WriteTes3Record(out, r, recordCount, fileType); });
    WriteObjectsBeforeActors(out, s, fileType != 32, written);
    writeAll(s.NPC_, written, [&](auto& r) { WriteNpcRecord(out, r); });
    writeAll(s.CREA, written, [&](auto& r) { WriteCreaRecord(out, r); });
    writeAll(s.CELL, written, [&](auto& r) { WriteCellRecord(out, r, prompts); });
    // Land and path grids follow all cells rather than standing beside them.
    writeAll(s.LAND, written, [&](auto& r) { WriteRawRecord(out, r); });
    WritePgrdRecords(out, s, written);
    TopicIndex index = indexResponses(s.INFO);
    writeAll(s.DIAL, written, [&](auto& r) {
        store.CurrentTopic = r.NAME;
        WriteDialRecord(out, r, s.INFO, index, written);
    });
    for (const auto* raw : {&s.CNTC, &s.CREC, &s.FMAP, &s.GAME, &s.JOUR, &s.KLST, &s.NPCC, &s.PCDT, &s.QUES,
                            &s.REFR, &s.SPLM, &s.STLN})
        writeAll(*raw, written, [&](auto& r) { WriteRawRecord(out, r); });
    writeAll(s.Unknown, written, [&](auto& r) { WriteUnknownRecord(out, r); });
    out.finish();
    return {std::move(out.bytes()), out.damaged()};
}

std::string serialiseStore(RecordStore& store, std::int32_t recordCount, std::int32_t fileType, Prompts& prompts) {
    return serialiseChecked(store, recordCount, fileType, prompts, false).bytes;
}

bool framesThroughout(std::string_view bytes) {
    std::size_t p = 0;
    while (bytes.size() - p >= 16) {
        std::int32_t size;
        std::memcpy(&size, bytes.data() + p + 4, 4);
        if (size < 0 || std::size_t(size) > bytes.size() - p - 16) return false;
        p += 16 + std::size_t(size);
    }
    return p == bytes.size();
}

WriteResult WriteESFile(RecordStore& store, const std::string& path, std::int32_t recordCount, Prompts& prompts) {
    using Clock = std::chrono::steady_clock;
    std::int32_t fileType = fileTypeFor(path);
    if (fileType == 32 &&
        prompts.ask("Writing ESS files is not fully supported right now. Doing so is very likely to produce an "
                    "unusable file. Are you sure you want to continue?",
                    false) != Reply::Yes)
        return {WriteResult::Declined, 0, {}};
    Clock::time_point start = Clock::now();
    Serialised out = serialiseChecked(store, recordCount, fileType, prompts, false);
    if (!out.damaged.empty()) {
        Serialised repaired = serialiseChecked(store, recordCount, fileType, prompts, true);
        DamageReport report{std::filesystem::path(path).filename().string(), std::move(out.damaged),
                            repaired.damaged.empty() && framesThroughout(repaired.bytes)};
        Clock::time_point asked = Clock::now();
        DamageChoice choice = prompts.damagedOutput(report);
        start += Clock::now() - asked; // the time spent on the question is not the writer's
        if (choice == DamageChoice::WriteNothing || (choice == DamageChoice::Repair && !report.repairable))
            return {WriteResult::Refused, 0, {}};
        if (choice == DamageChoice::Repair) out.bytes = std::move(repaired.bytes);
    }
    std::string error = replaceFileSafely(path, out.bytes);
    double ms = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    if (!error.empty()) return {WriteResult::Failed, ms, error};
    return {WriteResult::Written, ms, {}};
}

} // namespace quillon
