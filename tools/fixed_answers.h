#pragma once
// Dialogs that answer every question the way a batch run would: keep every unknown record, trim
// over-long texts, skip loop findings, give the same text to every input box and the same file
// to every file dialog. Used by the benchmark and the fuzzers.
#include "app/dialogs.h"
#include "records/prompts.h"

#include <string>

namespace quillon {

class FixedAnswers : public Dialogs, public Prompts {
public:
    std::string typed = "a"; // every input box's answer
    std::string file;        // every file dialog's answer

    void tell(const std::string&) override {}
    void tell(const std::string&, Icon) override {}
    Answer ask(const Question& what, const std::string&, bool) override {
        switch (answerTo(what.id)) {
        case Answer::Yes: return Answer::Yes;
        case Answer::Cancel: return Answer::Cancel;
        default: return Answer::No;
        }
    }
    Answer ask(const Question& what, const std::string&, Buttons, Icon, const std::string&) override {
        return answerTo(what.id);
    }
    std::string input(const Question&, const std::string&, const std::string&, const std::string&) override {
        return typed;
    }
    std::string openFile(const FileRequest&) override { return file; }
    std::string saveFile(const FileRequest&) override { return file; }
    std::string editResponse(const std::string&, const std::string&, const std::string& text) override {
        return text;
    }
    LoopFix fixLoop(const std::string&, const std::string&, const std::string& text,
                    const std::string& result, std::int32_t) override {
        return {LoopFixStatus::Skip, text, result};
    }
    void editOptions(CleanupSettings&) override {}
    // A batch run never writes damaged output.
    DamageChoice damagedOutput(const DamageReport&) override { return DamageChoice::WriteNothing; }
    void showFindings(const std::vector<Finding>&, const std::function<std::string(std::size_t)>&) override {}
    void about() override {}
    void refreshLog() override {}

private:
    // Cancel keeps every unknown record and trims every over-long text without asking again; a
    // file is replaced only when nobody else's work is in it.
    static Answer answerTo(QuestionId id) {
        switch (id) {
        case QuestionId::UnknownRecord:
        case QuestionId::LongResponse:
        case QuestionId::CleanedTooLong: return Answer::Cancel;
        case QuestionId::WriteSavegame: return Answer::Yes;
        default: return Answer::No;
        }
    }
};

} // namespace quillon
