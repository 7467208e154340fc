#include "app/session.h"

#include "app/damage_report.h"

#include <cstdio>

namespace quillon {

std::string bareName(const std::string& path) {
    std::size_t cut = path.find_last_of("/\\");
    return cut == std::string::npos ? path : path.substr(cut + 1);
}

std::string folderOf(const std::string& path) {
    std::size_t cut = path.find_last_of("/\\");
    return cut == std::string::npos ? std::string() : path.substr(0, cut);
}

std::string formatSeconds(double ms) {
    char text[64];
    std::snprintf(text, sizeof text, "%.3f", ms / 1000.0);
    return text;
}

std::string trimBlanks(const std::string& text) {
    std::size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

void DialogPrompts::tell(const std::string& text) {
    dialogs_.tell(text, Icon::None);
}

Answer DialogPrompts::ask(const Question& what, const std::string& text, bool withCancel) {
    if (what.id == QuestionId::UnknownRecord && given_.unknownRecord) return *given_.unknownRecord;
    if (what.id == QuestionId::WriteSavegame && given_.writeSavegame) return *given_.writeSavegame;
    switch (dialogs_.ask(what, text, withCancel ? Buttons::YesNoCancel : Buttons::YesNo, Icon::None, "")) {
    case Answer::Yes: return Answer::Yes;
    case Answer::Cancel: return Answer::Cancel;
    default: return Answer::No;
    }
}

DamageChoice DialogPrompts::damagedOutput(const DamageReport& report) {
    if (!given_.damagedOutput) return dialogs_.damagedOutput(report);
    DamageChoice choice = *given_.damagedOutput;
    // A repair that would not frame writes nothing.
    if (choice == DamageChoice::Repair && !report.repairable) choice = DamageChoice::WriteNothing;
    const char* verdict = choice == DamageChoice::Repair      ? "repairing them"
                          : choice == DamageChoice::WriteAsIs ? "writing them as they are"
                                                              : "nothing has been written";
    std::string text = std::to_string(report.records.size()) + " record(s) of \"" + report.file +
                       "\" would be written damaged; " + verdict + ":";
    for (const DamagedRecord& record : report.records)
        text += "\n  " + describeDamage(record);
    if (*given_.damagedOutput == DamageChoice::Repair && !report.repairable)
        text += "\nA repair would not give a file that reads back whole.";
    dialogs_.tell(text, Icon::Warning);
    return choice;
}

} // namespace quillon
