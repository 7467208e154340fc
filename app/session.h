#pragma once
#include "app/cleanup_settings.h"
#include "app/dialogs.h"
#include "app/load_order.h"
#include "app/log.h"
#include "app/master_summary.h"
#include "app/record_counts.h"
#include "records/prompts.h"
#include "records/record_store.h"

#include <memory>
#include <optional>
#include <string>

namespace quillon {

// Answers given before a command runs: the command line's flags. A question answered here is not
// put to the user; the window gives none.
struct GivenAnswers {
    std::optional<Answer> unknownRecord; // Yes, No, or Cancel: this one and every further one
    std::optional<Answer> writeSavegame; // Yes or No
    std::optional<bool> replaceReadOnly;
    std::optional<DamageChoice> damagedOutput;
};

// Everything the main window holds for one working session on one data file.
struct Session {
    RecordStore store;
    std::string currentPath; // full path of the open file; empty when none is open
    // The file the records in the store were read from (or last written to). It differs from
    // currentPath after a refused Open, which keeps the earlier file's records.
    std::string recordsPath;
    // False when the records came from a read that did not take the whole file (stopped at an
    // unknown record, lost records to damage, cut short): Save asks before putting them in its place.
    bool readWhole = true;
    // True once the records were changed since they were read or last written.
    bool modified = false;
    // Whether dropping changed records (Close, Exit, Open) asks first; the window remembers it.
    bool askBeforeDiscarding = true;
    GivenAnswers given;
    Log log;
    RecordCounts counts;
    // The file-dependent buttons and menu entries, always switched together.
    bool fileGroupEnabled = false;
    CleanupSettings settings;
    std::string openFolder; // where the next file dialog starts
    // Size and time of the current file when it was last read or written, to notice changes by
    // other programs before Save overwrites it.
    std::string fileStamp;
    // The masters of the records' file, a read-only context read when first needed (see
    // sessionMasters): the NPC list and the quote exports use it when useMasters is on, the
    // check whenever it finds the masters.
    bool useMasters = false;
    MasterSearch masterSearch;
    std::shared_ptr<const LoadOrder> loadOrder;
    std::string loadOrderOf; // the file and stamp it was read for
    MasterCache masterCache; // the masters read, shared by the files that name them
    // Summaries (with the paths they were read from) that stand in for masters not found.
    std::vector<std::pair<std::string, MasterSummary>> masterSummaries;
};

// The load order of the records' file, found and read on first use. The log gets one line
// naming the masters read and the time, and one for each master not found or changed since the
// file was saved.
const LoadOrder& sessionMasters(Session& session);

// The longest response text the game takes.
constexpr std::size_t kMaxResponse = 512;

// The file-name part of a path, either separator accepted.
std::string bareName(const std::string& path);
// The path less its file name and the separator before it.
std::string folderOf(const std::string& path);
// Milliseconds as seconds with three decimals ("0.047").
std::string formatSeconds(double ms);
// Text with leading and trailing blanks removed.
std::string trimBlanks(const std::string& text);

// Reading and writing questions: answered from the given answers where they hold one, else put
// to the user through a command's dialogs.
class DialogPrompts : public Prompts {
public:
    DialogPrompts(Dialogs& dialogs, const GivenAnswers& given) : dialogs_(dialogs), given_(given) {}
    void tell(const std::string& text) override;
    Answer ask(const Question& what, const std::string& text, bool withCancel) override;
    // With a given choice the damaged records are still listed, as a message.
    DamageChoice damagedOutput(const DamageReport& report) override;

private:
    Dialogs& dialogs_;
    const GivenAnswers& given_;
};

} // namespace quillon
