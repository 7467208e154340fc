#pragma once
// Shared test helpers: dialogs that answer from a script and record what they were asked, and
// temporary folders.
#include "app/dialogs.h"
#include "app/session.h"
#include "records/es_read.h"
#include "records/prompts.h"
#include "tools/record_builder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace quillon::test {

using namespace quillon::build;

// True in the build with AddressSanitizer, whose runs are several times slower.
inline bool sanitized() {
#if defined(__SANITIZE_ADDRESS__)
    return true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
    return true;
#endif
#endif
    return false;
}

// Answers queued in order; every question and message is kept for the test to check.
class ScriptedDialogs : public Dialogs {
public:
    std::deque<Answer> answers;
    std::deque<std::string> inputs, openPaths, savePaths, edits;
    std::deque<LoopFix> loopFixes;
    std::vector<std::string> messages, prompts, editRequests;
    std::vector<FileRequest> fileRequests;
    int refreshes = 0;

    std::vector<Question> asked; // what each question and input box asked, in order
    void tell(const std::string& text, Icon) override { messages.push_back(text); }
    Answer ask(const Question& what, const std::string& text, Buttons, Icon,
               const std::string& title) override {
        asked.push_back(what);
        messages.push_back(title.empty() ? text : title + "|" + text);
        return pop(answers, Answer::No);
    }
    std::string input(const Question& what, const std::string& prompt, const std::string&,
                      const std::string&) override {
        asked.push_back(what);
        prompts.push_back(prompt);
        return pop(inputs, std::string());
    }
    std::string openFile(const FileRequest& r) override {
        fileRequests.push_back(r);
        return pop(openPaths, std::string());
    }
    std::string saveFile(const FileRequest& r) override {
        fileRequests.push_back(r);
        return pop(savePaths, std::string());
    }
    std::string editResponse(const std::string& actor, const std::string& topic,
                             const std::string& text) override {
        editRequests.push_back(actor + "|" + topic);
        return pop(edits, text);
    }
    LoopFix fixLoop(const std::string& actor, const std::string& topic, const std::string& text,
                    const std::string& result, std::int32_t choice) override {
        editRequests.push_back(actor + "|" + topic + "|" + std::to_string(choice));
        return pop(loopFixes, LoopFix{LoopFixStatus::Skip, text, result});
    }
    int optionsShown = 0, aboutShown = 0;
    void editOptions(CleanupSettings&) override { ++optionsShown; }
    void about() override { ++aboutShown; }
    // The findings shown, and the findings whose responses the user edits from the list.
    std::vector<Finding> findingsShown;
    std::vector<std::size_t> findingsToEdit;
    std::vector<std::string> textsAfterEdit;
    void showFindings(const std::vector<Finding>& findings,
                      const std::function<std::string(std::size_t)>& edit) override {
        findingsShown = findings;
        for (std::size_t i : findingsToEdit)
            textsAfterEdit.push_back(edit(i));
    }
    void refreshLog() override { ++refreshes; }
    std::deque<DamageChoice> damageChoices;
    std::vector<DamageReport> damageReports;
    DamageChoice damagedOutput(const DamageReport& report) override {
        damageReports.push_back(report);
        return pop(damageChoices, DamageChoice::WriteNothing);
    }

private:
    template <class T> static T pop(std::deque<T>& queue, T fallback) {
        if (queue.empty()) return fallback;
        T v = queue.front();
        queue.pop_front();
        return v;
    }
};

class ScriptedPrompts : public Prompts {
public:
    std::deque<Answer> replies;
    std::vector<std::string> asked, told;
    std::vector<DamageReport> damageReports;
    DamageChoice damageChoice = DamageChoice::WriteNothing;
    void tell(const std::string& text) override { told.push_back(text); }
    DamageChoice damagedOutput(const DamageReport& report) override {
        damageReports.push_back(report);
        return damageChoice;
    }
    Answer ask(const Question&, const std::string& text, bool) override {
        asked.push_back(text);
        if (replies.empty()) return Answer::Yes;
        Answer r = replies.front();
        replies.pop_front();
        return r;
    }
};

// The store a data file's bytes read into, every question answered Yes.
inline RecordStore readStore(const std::string& bytes) {
    RecordStore store;
    ScriptedPrompts prompts;
    std::int32_t count = 0;
    ReadESBuffer(store, bytes, count, true, prompts);
    return store;
}

// A response of actor; with a script, shown on choice 1 and running script.
inline std::string response(const std::string& id, const std::string& actor, const std::string& text,
                            const std::string& script = "") {
    Rec r("INFO");
    r.z("INAM", id).sub("DATA", std::string(12, '\0')).z("ONAM", actor).text("NAME", text);
    if (!script.empty()) r.sub("SCVR", scvr('0', '1', "50", '0')).i32("INTV", 1).text("BNAM", script);
    return r.bytes();
}

// A plugin of one topic "T" with these responses.
inline std::string oneTopic(std::initializer_list<std::string> responses) {
    std::string bytes = file(0, {Rec("DIAL").z("NAME", "T").sub("DATA", std::string(1, '\0')).bytes()});
    for (const std::string& r : responses)
        bytes += r;
    return bytes;
}

// An NPC record: ID, name, faction and its rank (in the 12-byte statistics, or in the full 52).
inline std::string npcRecord(const std::string& id, const std::string& name, const std::string& faction = "",
                             std::uint8_t rank = 0, bool female = false, bool shortForm = true) {
    std::string stats = shortForm ? std::string(12, '\0') : std::string(52, '\0');
    stats[shortForm ? 4 : 46] = char(rank);
    return Rec("NPC_")
        .z("NAME", id)
        .z("FNAM", name)
        .z("RNAM", "Dark Elf")
        .z("CNAM", "Smith")
        .z("ANAM", faction)
        .sub("NPDT", stats)
        .i32("FLAG", female ? 1 : 0)
        .bytes();
}

// The newest line of the session's log.
inline std::string lastLog(const Session& s) {
    std::string c = s.log.caption();
    c.resize(c.size() - 2);
    return c.substr(c.rfind("\r\n") == std::string::npos ? 0 : c.rfind("\r\n") + 2);
}

// A fresh folder under the system's temporary folder, removed at the end of the test.
class TempDir {
public:
    explicit TempDir(const std::filesystem::path& base = std::filesystem::temp_directory_path()) {
        std::random_device rd;
        path_ = base / ("quillon-test-" + std::to_string(rd()));
        std::filesystem::create_directories(path_);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    ~TempDir() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    // A folder in memory where the system has one: for tests that write thousands of files.
    static TempDir inMemory() {
        std::error_code ec;
        return std::filesystem::is_directory("/dev/shm", ec) ? TempDir("/dev/shm") : TempDir();
    }
    std::string file(const std::string& name) const { return (path_ / name).string(); }
    std::string write(const std::string& name, const std::string& bytes) const {
        std::ofstream(file(name), std::ios::binary) << bytes;
        return file(name);
    }

private:
    std::filesystem::path path_;
};

inline std::string readAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// The records of a file's bytes, each as its bytes, found by their stored sizes.
inline std::vector<std::string> splitRecords(const std::string& bytes) {
    std::vector<std::string> out;
    for (std::size_t p = 0; p + 16 <= bytes.size();) {
        std::int32_t size;
        std::memcpy(&size, bytes.data() + p + 4, 4);
        out.push_back(bytes.substr(p, 16 + std::size_t(size)));
        p += 16 + std::size_t(size);
    }
    return out;
}

// The corpus of real files: $QUILLON_CORPUS, or the folder beside the project.
inline std::string corpusDir() {
    const char* set = std::getenv("QUILLON_CORPUS");
    return set && *set ? set : QUILLON_CORPUS;
}
inline bool haveCorpus() {
    return std::filesystem::is_directory(corpusDir());
}
inline std::vector<std::string> corpusFiles() {
    std::vector<std::string> files;
    if (!haveCorpus()) return files;
    for (const auto& entry : std::filesystem::directory_iterator(corpusDir())) {
        std::string ext = entry.path().extension().string();
        if (ext.size() == 4 && (ext[1] == 'e' || ext[1] == 'E')) files.push_back(entry.path().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}
#define QUILLON_NEED_CORPUS()                                                                                \
    if (!quillon::test::haveCorpus())                                                                        \
    GTEST_SKIP() << "the corpus folder " << quillon::test::corpusDir() << " is missing"

} // namespace quillon::test
