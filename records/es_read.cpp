#include "records/es_read.h"

#include "records/read_common.h"

#include <cctype>
#include <chrono>
#include <cstring>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace quillon {

namespace {

using Clock = std::chrono::steady_clock;

double msSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Sizes the arrays that hold most of a big file from a walk of the record headers, so that they
// do not grow by copying while the file is read. A file whose sizes mislead gets smaller arrays
// that then grow as usual.
void reserveLargeArrays(RecordStore& store, const std::string& bytes) {
    std::size_t info = 0, dial = 0, cell = 0, npc = 0, land = 0, stat = 0;
    for (std::size_t p = 0; p + 16 <= bytes.size();) {
        Tag t;
        std::int32_t size;
        std::memcpy(&t, bytes.data() + p, 4);
        std::memcpy(&size, bytes.data() + p + 4, 4);
        if (size < 0) break;
        switch (t) {
        case tag("INFO"): ++info; break;
        case tag("DIAL"): ++dial; break;
        case tag("CELL"): ++cell; break;
        case tag("NPC_"): ++npc; break;
        case tag("LAND"): ++land; break;
        case tag("STAT"): ++stat; break;
        default: break;
        }
        p += 16 + std::size_t(size);
    }
    store.INFO.reserve(info);
    store.DIAL.reserve(dial);
    store.CELL.reserve(cell);
    store.NPC_.reserve(npc);
    store.LAND.reserve(land);
    store.STAT.reserve(stat);
}

std::string unknownRecordQuestion(std::size_t offset, Tag t) {
    return "Unknown record encountered at address: " + std::to_string(offset) +
           ".\r\nContinue reading? Cancel is Yes To All.\r\nRecord Name: \"" + tagText(t) + "\"";
}

} // namespace

bool hasDataFileName(const std::string& path) {
    std::string last3 = path.size() > 3 ? path.substr(path.size() - 3) : path;
    std::string first2 = last3.substr(0, 2);
    for (char& c : first2) c = char(std::toupper(static_cast<unsigned char>(c)));
    return first2 == "ES";
}

std::string loadFile(const std::string& path, std::string& error) {
    namespace fs = std::filesystem;
    std::error_code ec;
    fs::file_status status = fs::status(path, ec);
    if (ec || !fs::exists(status)) {
        error = "the file does not exist";
        return {};
    }
    if (fs::is_directory(status)) {
        error = "it is a folder, not a file";
        return {};
    }
    // A pipe would block the read forever and a device could be endless: only ordinary files.
    if (!fs::is_regular_file(status)) {
        error = "it is not an ordinary file";
        return {};
    }
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) {
        error = "the file cannot be opened";
        return {};
    }
    std::string bytes;
    std::uintmax_t size = fs::file_size(path, ec);
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

double ReadESFile(RecordStore& store, const std::string& path, std::int32_t& recordCount, bool trimAtEnd,
                  Prompts& prompts, ReadDiagnostics* diagnostics) {
    if (!hasDataFileName(path)) {
        prompts.tell("The selected file is invalid.");
        recordCount = 0;
        return -1;
    }
    Clock::time_point start = Clock::now();
    std::string error;
    std::string bytes = loadFile(path, error);
    if (!error.empty()) {
        // Unlike a refused name, nothing is read; the store stays as it was.
        std::string name = std::filesystem::path(path).filename().string();
        prompts.tell("Cannot read \"" + name + "\": " + error + ".");
        if (diagnostics) diagnostics->loadError = error;
        recordCount = 0;
        return -1;
    }
    double loadMs = msSince(start);
    double ms = ReadESBuffer(store, std::move(bytes), recordCount, trimAtEnd, prompts, diagnostics);
    return ms > 0 ? ms + loadMs : ms;
}

double ReadESBuffer(RecordStore& store, std::string bytes, std::int32_t& recordCount, bool trimAtEnd,
                    Prompts& prompts, ReadDiagnostics* diagnostics) {
    Clock::time_point start = Clock::now();
    double pauseMs = 0;
    ClearRecords(store);
    auto source = std::make_shared<const std::string>(std::move(bytes));
    store.source = source;
    std::size_t size = source->size();
    reserveLargeArrays(store, *source);
    ByteCursor in(reinterpret_cast<const std::uint8_t*>(source->data()), size);
    std::size_t recordEnd = 0; // where the last record's size word says it ends
    Tag t = in.tag();
    while (!in.atEnd()) {
        std::size_t tagOffset = in.pos() - 4;
        {
            ByteCursor peek = in;
            std::int64_t declared = peek.i32();
            recordEnd = in.pos() + 12 + std::size_t(declared > 0 ? declared : 0);
        }
        Tag next = 0;
        switch (t) {
        case tag("TES3"): next = appendTo(store.TES3, [&](auto& r) { return readTes3(in, r); }); break;
        case tag("DIAL"):
            next = appendTo(store.DIAL, [&](auto& r) { return readDial(in, r, store.CurrentTopic); });
            break;
        case tag("INFO"):
            next = appendTo(store.INFO, [&](auto& r) { return readInfo(in, r, store.CurrentTopic); });
            break;
        case tag("NPC_"): next = appendTo(store.NPC_, [&](auto& r) { return readNpc(in, r); }); break;
        case tag("CREA"): next = appendTo(store.CREA, [&](auto& r) { return readCrea(in, r); }); break;
        case tag("CELL"): next = appendTo(store.CELL, [&](auto& r) { return readCell(in, r); }); break;
        default: {
            if (readObjectRecord(in, t, store, next)) break;
            std::vector<RawRecord>* raw = nullptr;
            switch (t) {
            case tag("LAND"): raw = &store.LAND; break;
            case tag("CNTC"): raw = &store.CNTC; break;
            case tag("CREC"): raw = &store.CREC; break;
            case tag("FMAP"): raw = &store.FMAP; break;
            case tag("GAME"): raw = &store.GAME; break;
            case tag("JOUR"): raw = &store.JOUR; break;
            case tag("KLST"): raw = &store.KLST; break;
            case tag("NPCC"): raw = &store.NPCC; break;
            case tag("PCDT"): raw = &store.PCDT; break;
            case tag("QUES"): raw = &store.QUES; break;
            case tag("REFR"): raw = &store.REFR; break;
            case tag("SPLM"): raw = &store.SPLM; break;
            case tag("STLN"): raw = &store.STLN; break;
            default: break;
            }
            if (raw) {
                next = appendTo(*raw, [&](auto& r) { return readRaw(in, t, r); });
                break;
            }
            if (!store.SkipUnknownPrompt) {
                Clock::time_point asked = Clock::now();
                Reply reply = prompts.ask({QuestionId::UnknownRecord, tagText(t)}, unknownRecordQuestion(tagOffset, t), true);
                // Only the last question's time is taken off the result: replaced, not added.
                pauseMs = msSince(asked);
                if (reply == Reply::No) {
                    ClearRecords(store);
                    return 0;
                }
                if (reply == Reply::Cancel) store.SkipUnknownPrompt = true;
            }
            next = appendTo(store.Unknown, [&](auto& r) { return readRaw(in, t, r); });
            break;
        }
        }
        ++recordCount;
        t = next;
    }
    if (diagnostics) diagnostics->truncated = recordEnd > size;
    if (trimAtEnd) TrimRecords(store);
    store.SkipUnknownPrompt = false;
    double ms = msSince(start) - pauseMs;
    return ms > 0 ? ms : 0.001; // a finished read never reports the "stopped" value 0
}

} // namespace quillon
