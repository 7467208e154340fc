#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace quillon {

// The answer to a question, from whichever front end put it.
enum class Answer { Ok, Yes, No, Cancel };

// A record that would reach the file damaged: its bytes would not frame as its size words say.
struct DamagedRecord {
    std::string tag;
    std::string id;           // NAME, INAM, INDX or the script name; empty when it has none
    std::uint32_t offset = 0; // where it was read
    std::string cause;
};

struct DamageReport {
    std::string file; // the bare name of the file about to be written
    std::vector<DamagedRecord> records;
    bool repairable = false; // a repair would give a file that frames throughout
};

// What a question asks, so that a front end answers it by what it is and never by its words.
enum class QuestionId {
    UnknownRecord,        // reading: keep a record of unknown type (Cancel: every further one; Ok:
                          // stop here, keeping what was read)?
    WriteSavegame,        // writing a savegame, which is not fully supported
    ReplaceOtherFile,     // Save after a refused Open: replace a file the records were not read from?
    OverwriteChangedFile, // Save over a file another program changed since it was read
    ReplaceReadOnly,      // replace an output file whose mode has no write permission
    SaveIncompleteRead,   // Save over a file whose read did not take it whole
    SaveChanges,          // the open records were changed: save them before they are dropped?
    RemoveLineBreaks,     // import: take line breaks out of the texts?
    LongResponse,         // import: edit a response over the limit by hand (Cancel: no to all)?
    CleanedTooLong,       // clean-up: edit a response grown over the limit by hand (Cancel: no to all)?
    CityName,             // quote export: the city the quotes are from
    SpeakerName,          // quote export: retype a speaker name holding "_"
    CellName,             // NPC list: part of the cells' names
};

struct Question {
    QuestionId id;
    std::string subject = {}; // what it is about: a response's ID, a speaker's name; may be empty
};

// What to do with output that would be damaged; the first choice writes nothing.
enum class DamageChoice { WriteNothing, Repair, WriteAsIs };

// The questions and messages that reading and writing raise, answered by whichever front end runs
// them. Boxes carry no icon and the application's own title.
class Prompts {
public:
    virtual ~Prompts() = default;
    // A message with one OK button.
    virtual void tell(const std::string& text) = 0;
    // A question with Yes and No, and Cancel when asked for.
    virtual Answer ask(const Question& what, const std::string& text, bool withCancel) = 0;
    // Output that would be damaged, before anything is replaced.
    virtual DamageChoice damagedOutput(const DamageReport& report) = 0;
};

} // namespace quillon
