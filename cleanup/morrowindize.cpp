#include "cleanup/morrowindize.h"

#include "app/parallel.h"
#include "app/text.h"
#include "cleanup/text_rules.h"
#include "records/response_text.h"

#include <algorithm>
#include <vector>

namespace quillon {

namespace {

const char* const kTooLongQuestion = "One of the responses has become more than 511 characters after clean "
                                     "up. Do you want to edit it by hand? "
                                     "Otherwise original text will be used.\r\n\r\nCancel is \"No to all\"";

// The cleaned text of every response, as cleanResponse gives it one after the other: the stages
// that depend on the text alone run side by side, the quote spacing in store order between them.
std::vector<std::string> cleanedTexts(const std::vector<InfoRecord>& infos, const CleanupSettings& settings,
                                      bool& quoteParity) {
    std::vector<std::string> texts(infos.size());
    forEachIndex(infos.size(), [&](std::size_t i) {
        texts[i] = infos[i].NAME;
        cleanBeforeQuotes(texts[i], settings);
    });
    for (std::string& text : texts)
        spaceQuotes(text, settings, quoteParity);
    forEachIndex(texts.size(), [&](std::size_t i) { cleanAfterQuotes(texts[i], settings); });
    return texts;
}

// Cleans every response, then takes them in store order: a response that grows past the limit is
// offered for editing or keeps its text.
// With kept, nothing is asked: over-long results keep their originals and are named there.
void cleanAll(Session& session, Dialogs& dialogs, bool& quoteParity, bool& noToAll, std::size_t& changed,
              std::vector<std::string>* kept) {
    std::vector<std::string> cleaned = cleanedTexts(session.store.INFO, session.settings, quoteParity);
    for (std::size_t i = 0; i < cleaned.size(); ++i) {
        InfoRecord& r = session.store.INFO[i];
        const std::string original = r.NAME;
        std::string text = std::move(cleaned[i]);
        // The question says 511 while the test is for more than 512: both numbers are intended.
        if (text.size() > kMaxResponse && kept) {
            kept->push_back("kept the original text of a response of \"" + r.ONAM + "\" in \"" + r.Topic +
                            "\" (INFO " + r.INAM + "): cleaned it would be " + std::to_string(text.size()) +
                            " characters long");
            text = original;
        } else if (text.size() > kMaxResponse) {
            Answer a = noToAll ? Answer::No
                               : dialogs.ask({QuestionId::CleanedTooLong, r.INAM}, kTooLongQuestion,
                                             Buttons::YesNoCancel, Icon::Question, "Clean Up");
            if (a == Answer::Yes) {
                text = dialogs.editResponse(r.ONAM, r.DialogueType == 4 ? "Journal Entry" : r.Topic, text);
                dialogs.refreshLog();
                if (text.size() > kMaxResponse) text = original;
            } else {
                if (a == Answer::Cancel) noToAll = true;
                text = original;
            }
        }
        // A change of letter case alone keeps the new text but is not counted.
        if (!equalsIgnoreCase(text, original)) ++changed;
        setResponseText(r, std::move(text));
    }
}

} // namespace

namespace {

Outcome run(Session& session, Dialogs& dialogs, std::vector<std::string>* kept) {
    std::string name = bareName(session.currentPath);
    std::vector<InfoRecord>& infos = session.store.INFO;
    session.log.LogLine("-Morrowindizing " + std::to_string(infos.size()) + " responses from \"" + name +
                        "\"...");
    dialogs.refreshLog();
    bool quoteParity = false, noToAll = false;
    std::size_t changed = 0;
    try {
        cleanAll(session, dialogs, quoteParity, noToAll, changed, kept);
    } catch (const std::exception&) {
        // Responses already cleaned keep their new texts.
        session.modified = true;
        session.log.LogLine("-An error occured during dialogue clean-up.");
        dialogs.refreshLog();
        return Outcome::failed("the clean-up stopped on an error");
    }
    if (changed != 0) session.modified = true;
    if (changed == 0)
        session.log.LogLine("-All dialogues in \"" + name + "\" are already Morrowindish.");
    else
        session.log.LogLine("-" + std::to_string(changed) + " responses from \"" + name +
                            "\" have been Morrowindized successfully.");
    dialogs.refreshLog();
    return Outcome::done();
}

} // namespace

Outcome Morrowindize(Session& session, Dialogs& dialogs) {
    return run(session, dialogs, nullptr);
}

Outcome morrowindizeKeepingLongTexts(Session& session, Dialogs& dialogs, std::vector<std::string>& kept) {
    return run(session, dialogs, &kept);
}

} // namespace quillon
