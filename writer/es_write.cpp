#include "writer/es_write.h"

#include "records/es_read.h"
#include "writer/safe_file.h"
#include "writer/write_common.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <memory>

namespace quillon {

namespace {

std::string upperExtension(const std::string& path) {
    std::string ext = path.size() > 3 ? path.substr(path.size() - 3) : path;
    for (char& c : ext)
        c = char(std::toupper(static_cast<unsigned char>(c)));
    return ext;
}

// What the output will take, to reserve it at once. Stored sizes can be anything in a damaged
// file, so the estimate never exceeds the file that was read (and grows as usual beyond it).
std::size_t estimatedSize(RecordStore& store) {
    std::size_t total = 0;
    store.forEachArray([&](const auto& array) {
        for (const auto& r : array)
            total += 16 + std::size_t(r.Size > 0 ? r.Size : 0);
    });
    std::size_t limit = store.source ? store.source->size() : std::size_t(1) << 20;
    return std::min(total, limit) + 64;
}

} // namespace

std::int32_t fileTypeFor(const std::string& path) {
    if (hasOpenMWFileName(path)) return kFileTypeAsRead;
    std::string ext = upperExtension(path);
    if (ext == "ESM") return 1;
    if (ext == "ESS") return 32;
    return 0;
}

namespace {

// Every record of the store through out, in the order of the record-type list.
void serialiseInto(ByteSink& out, RecordStore& store, std::int32_t recordCount, std::int32_t fileType,
                   Prompts& prompts) {
    WriteState state{store, prompts, recordCount, fileType, indexResponses(store.INFO)};
#define QUILLON_WRITE(T, Record, read, write, ...)                                                           \
    for (const Record& r : store.T)                                                                          \
        write(out, r, state);
    QUILLON_RECORD_TYPES(QUILLON_WRITE)
#undef QUILLON_WRITE
    for (const RawRecord& r : store.Unknown)
        writeUnknown(out, r);
    out.finish();
}

} // namespace

Serialised serialiseChecked(RecordStore& store, std::int32_t recordCount, std::int32_t fileType,
                            Prompts& prompts, bool repairing) {
    ByteSink out(repairing, &store.editNotes);
    out.bytes().reserve(estimatedSize(store));
    serialiseInto(out, store, recordCount, fileType, prompts);
    return {std::move(out.bytes()), out.damaged()};
}

std::string serialiseStore(RecordStore& store, std::int32_t recordCount, std::int32_t fileType,
                           Prompts& prompts) {
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

WriteResult WriteESFile(RecordStore& store, const std::string& path, std::int32_t recordCount,
                        Prompts& prompts, ReadOnlyTarget readOnly) {
    using Clock = std::chrono::steady_clock;
    std::int32_t fileType = fileTypeFor(path);
    if (fileType == 32 &&
        prompts.ask(
            {QuestionId::WriteSavegame},
            "Writing ESS files is not fully supported right now. Doing so is very likely to produce an "
            "unusable file. Are you sure you want to continue?",
            false) != Answer::Yes)
        return {WriteResult::Declined, 0, {}};
    Clock::time_point start = Clock::now();
    // Written straight to a temporary file as it is made; replacing the target waits for the check.
    auto file = std::make_unique<SafeFileWriter>(path, readOnly);
    ByteSink out(false, &store.editNotes, file.get());
    serialiseInto(out, store, recordCount, fileType, prompts);
    if (!file->error().empty()) return {WriteResult::Failed, 0, file->error()};
    if (!out.damaged().empty()) {
        DamageReport report{std::filesystem::path(path).filename().string(), out.damaged(), out.repairable()};
        Clock::time_point asked = Clock::now();
        DamageChoice choice = prompts.damagedOutput(report);
        start += Clock::now() - asked; // the time spent on the question is not the writer's
        if (choice == DamageChoice::WriteNothing || (choice == DamageChoice::Repair && !report.repairable))
            return {WriteResult::Refused, 0, {}};
        if (choice == DamageChoice::Repair) {
            file = std::make_unique<SafeFileWriter>(path, readOnly);
            ByteSink repaired(true, &store.editNotes, file.get());
            serialiseInto(repaired, store, recordCount, fileType, prompts);
        }
    }
    std::string error = file->commit();
    double ms = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    if (!error.empty()) return {WriteResult::Failed, ms, error};
    return {WriteResult::Written, ms, {}};
}

} // namespace quillon
