#include "fuzz/fuzz_targets.h"

#include "app/file_commands.h"
#include "app/game_folder.h"
#include "app/master_summary.h"
#include "app/openmw_config.h"
#include "cleanup/text_rules.h"
#include "cli/commands.h"
#include "dialogue/dialogue_commands.h"
#include "game/dialogue_faults.h"
#include "game/topic_links.h"
#include "npclist/npc_list.h"
#include "records/es_read.h"
#include "script/script_check.h"
#include "tools/fixed_answers.h"
#include "tools/record_builder.h"
#include "translation/po_file.h"
#include "workbench/near_words.h"
#include "workbench/spelling.h"
#include "writer/es_write.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace quillon::fuzz {

namespace {

std::string bytesOf(const std::uint8_t* data, std::size_t size) {
    return std::string(reinterpret_cast<const char*>(data), size);
}

// A folder of the run's own for the files an input is written to, removed when the process ends.
struct Scratch {
    Scratch() {
        const char* tmp = std::getenv("TMPDIR");
        std::string dir = std::string(::access("/dev/shm", W_OK) == 0 ? "/dev/shm"
                                      : tmp                           ? tmp
                                                                      : "/tmp") +
                          "/quillon-fuzz-XXXXXX";
        if (!::mkdtemp(dir.data())) std::abort();
        folder = dir;
    }
    ~Scratch() {
        for (const std::string& name : written)
            ::unlink((folder + "/" + name).c_str());
        ::rmdir(folder.c_str());
    }
    std::string write(const std::string& name, std::string_view bytes) {
        std::string path = folder + "/" + name;
        int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        if (fd < 0 || ::write(fd, bytes.data(), bytes.size()) != ssize_t(bytes.size()) || ::close(fd) != 0)
            std::abort();
        if (std::find(written.begin(), written.end(), name) == written.end()) written.push_back(name);
        return path;
    }
    std::string folder;
    std::vector<std::string> written;
};

Scratch& scratch() {
    static Scratch s;
    return s;
}

// Reads the bytes as the command line reads a file: written to a file, mapped, and its pages
// handed back every page a walk passes, so that the release runs on inputs of a few kilobytes.
double readMapped(RecordStore& store, const std::uint8_t* data, std::size_t size, std::int32_t& count,
                  Prompts& prompts) {
    std::string path = scratch().write("input.esp", {reinterpret_cast<const char*>(data), size});
    Loading before = activeLoading();
    setLoading(Loading::Map, std::size_t(::sysconf(_SC_PAGESIZE)));
    double ms = -1;
    try {
        ms = ReadESFile(store, path, count, true, prompts);
    } catch (const std::bad_alloc&) {
        // A file whose records would outgrow the memory budget is refused, as every command
        // reports it; the store is left empty.
        ClearRecords(store);
        count = 0;
    }
    setLoading(before);
    return ms;
}

// A store of three responses with the IDs 1, 2 and 3.
const std::string& fixedPlugin() {
    using namespace quillon::build;
    static const std::string bytes =
        file(4, {Rec("DIAL").z("NAME", "Topic").sub("DATA", std::string(1, '\0')).bytes(),
                 Rec("INFO").z("INAM", "1").z("ONAM", "a").text("NAME", "One").bytes(),
                 Rec("INFO").z("INAM", "2").text("NAME", "Two\r\nlines").bytes(),
                 Rec("INFO").z("INAM", "3").z("ONAM", "c").text("NAME", "").bytes()});
    return bytes;
}

} // namespace

void read(const std::uint8_t* data, std::size_t size) {
    RecordStore store;
    FixedAnswers answers;
    std::int32_t count = 0;
    readMapped(store, data, size, count, answers);
    serialiseStore(store, count, 0, answers);
    serialiseStore(store, count, 32, answers);
    // Whatever was read, a repair writes a file that frames throughout.
    Serialised repaired = serialiseChecked(store, count, 0, answers, true);
    if (!repaired.damaged.empty() || !framesThroughout(repaired.bytes)) std::abort();
    // The game's rules over whatever responses were read: every fault names one of them.
    for (const DialogueFault& f : dialogueFaults({{"f", &store}}, true))
        if (f.info && (f.info < store.INFO.data() || f.info >= store.INFO.data() + store.INFO.size()))
            std::abort();
}

void importText(const std::uint8_t* data, std::size_t size) {
    Session session;
    FixedAnswers answers;
    std::int32_t count = 0;
    ReadESBuffer(session.store, fixedPlugin(), count, true, answers);
    importDialogueText(session, answers, bytesOf(data, size), size % 2 == 0);
    serialiseStore(session.store, count, 0, answers);
}

void cleanup(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return;
    unsigned bits = data[0] | unsigned(data[1]) << 8;
    CleanupSettings s;
    bool* flags[] = {&s.isLineBreaks, &s.isAmerican, &s.isSentences, &s.isSpaceQuotes, &s.isSlang,
                     &s.isTemple,     &s.isDashes,   &s.isEllipsis,  &s.isSquare,      &s.isDashSpaces};
    for (int i = 0; i < 10; ++i)
        *flags[i] = (bits >> i) & 1;
    bool parity = (bits >> 10) & 1;
    std::string text = bytesOf(data + 2, size - 2);
    // Responses separated by NUL bytes, so that the quote parity carries between them.
    std::size_t start = 0;
    for (std::size_t end; (end = text.find('\0', start)) != std::string::npos; start = end + 1)
        cleanResponse(text.substr(start, end - start), s, parity);
    cleanResponse(text.substr(start), s, parity);
}

void texts(const std::uint8_t* data, std::size_t size) {
    std::string text = bytesOf(data, size), error;
    for (const PoEntry& e : readPo(text, error))
        if (e.context.size() + e.id.size() + e.translation.size() > 2 * size + 16) std::abort();
    for (const TopicLink& l : TopicLinks({"a", "ab", "the dwemer", "dwemer language", "x"}).find(text))
        if (l.at + l.length > text.size()) std::abort();
    MasterSummary summary;
    if (readMasterSummary(text, summary, error) && summary.records->DIAL.size() > size) std::abort();
    ScriptNames names;
    names.complete = true;
    auto none = [](std::string_view id) { return id.size() % 2 == 0; };
    names.global = none;
    names.has = [none](IdKind, std::string_view id) { return none(id); };
    names.journalIndex = [](std::string_view, long index) { return index % 10 == 0; };
    names.localsOf = [](std::string_view id) -> std::optional<std::set<std::string>> {
        if (id.size() % 3 == 0) return std::nullopt;
        return std::set<std::string>{"a"};
    };
    for (ScriptSource source : {ScriptSource::Result, ScriptSource::Record})
        for (const ScriptProblem& p : checkScript(text, source, std::set<std::string>{}, names))
            if (p.line == 0) std::abort();
    std::vector<std::string> words;
    for (const WordAt& w : wordsToCheck(text)) {
        if (w.at + w.word.size() > text.size()) std::abort();
        if (words.size() < 500) words.emplace_back(w.word);
    }
    // Corrections for the text's words from an index of words with every kind of byte (an index
    // of each input's own words would cost far more than all the rest: its table has a place for
    // every pair of bytes).
    static const NearWords index({"honour", "Balmora", "Almsivi", "n'wah", "s'wit", "caf\xe9", "na\xefve",
                                  "\xcf\xf0\xe8\xe2\xe5\xf2", "a", "I", std::string(60, 'x')});
    for (std::size_t k = 0; k < words.size() && k < 8; ++k)
        for (std::size_t i : index.nearest(words[k], 5, 1, words[k].size() + 4)) {
            if (i >= index.size()) std::abort();
            if (editDistance(words[k], index[i]) != editDistance(index[i], words[k])) std::abort();
        }
}

void npcList(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return;
    RecordStore store;
    FixedAnswers answers;
    std::int32_t count = 0;
    readMapped(store, data + 1, size - 1, count, answers);
    int listed = 0;
    std::string answer(1, char(data[0] % 2 ? 'a' : data[0]));
    for (NpcListFormat format : {NpcListFormat::PlainText, NpcListFormat::PhpBB, NpcListFormat::Html})
        npcListSheet(store, format, data[0] & 4, answer, listed);
}

void loadOrder(const std::uint8_t* data, std::size_t size) {
    std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const char* names[] = {"p.esp", "A.esm", "B.esm"};
    std::string paths[3];
    for (int i = 0; i < 3; ++i) {
        std::size_t cut = std::min(bytes.find("|FILE|"), bytes.size());
        paths[i] = scratch().write(names[i], bytes.substr(0, cut));
        bytes.remove_prefix(std::min(bytes.size(), cut + 6));
    }
    std::string config = scratch().write("openmw.cfg", "");
    Loading before = activeLoading();
    setLoading(Loading::Map, std::size_t(::sysconf(_SC_PAGESIZE)));
    for (std::vector<std::string> args :
         {std::vector<std::string>{"check", paths[0], "--with-masters"},
          std::vector<std::string>{"loops", paths[0]}, std::vector<std::string>{"load-order", paths[0]}}) {
        args.insert(args.end(), {"--openmw-cfg", config});
        std::ostringstream out, err;
        int status = runCli(args, out, err);
        if (status != 0 && status != 1) std::abort();
        // Every line from the files reaches the terminal escaped: no byte below a space but the
        // line break and the tab.
        for (const std::string& text : {out.str(), err.str()})
            for (char c : text)
                if (static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t') std::abort();
    }
    setLoading(before);
}

void openmwConfig(const std::uint8_t* data, std::size_t size) {
    std::string path = scratch().write("openmw.cfg", {reinterpret_cast<const char*>(data), size});
    FolderSearch search;
    search.environment = [](const char*) { return std::string(); };
    search.home = scratch().folder;
    OpenMwConfig config = readOpenMwConfig(search, path);
    if (config.path.empty()) std::abort();
    for (const std::string& folder : config.dataFolders)
        if (folder.empty()) std::abort();
}

} // namespace quillon::fuzz
