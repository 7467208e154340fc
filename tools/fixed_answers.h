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
    Reply ask(const std::string&, bool withCancel) override { return withCancel ? Reply::Cancel : Reply::Yes; }
    Answer message(const std::string&, Buttons buttons, Icon, const std::string&) override {
        // Cancel keeps every unknown record and trims every over-long text without asking again.
        return buttons == Buttons::Ok ? Answer::Ok : buttons == Buttons::YesNo ? Answer::No : Answer::Cancel;
    }
    std::string input(const std::string&, const std::string&, const std::string&) override { return typed; }
    std::string openFile(const FileRequest&) override { return file; }
    std::string saveFile(const FileRequest&) override { return file; }
    std::string editResponse(const std::string&, const std::string&, const std::string& text) override { return text; }
    LoopFix fixLoop(const std::string&, const std::string&, const std::string& text, const std::string& result,
                    std::int32_t) override {
        return {2, text, result};
    }
    void editOptions(CleanupSettings&) override {}
    // A batch run never writes damaged output.
    DamageChoice damagedOutput(const DamageReport&) override { return DamageChoice::WriteNothing; }
    void about() override {}
    void refreshLog() override {}
};

} // namespace quillon
