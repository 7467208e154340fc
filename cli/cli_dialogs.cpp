#include "cli/cli_dialogs.h"

#include "app/damage_report.h"

#include <iostream>
#include <utility>

namespace quillon {

std::string forTerminal(const std::string& text) {
    static const char* const kHex = "0123456789abcdef";
    std::string out;
    out.reserve(text.size());
    auto plain = [](unsigned char c) { return (c >= 0x20 && c != 0x7F) || c == '\n' || c == '\t'; };
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::size_t run = i;
        while (run < text.size() && plain(static_cast<unsigned char>(text[run])))
            ++run;
        out.append(text, i, run - i);
        if (run == text.size()) break;
        i = run;
        auto c = static_cast<unsigned char>(text[i]);
        if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
        // Control bytes from a data file are shown, never obeyed: an ESC could rewrite the screen.
        out += "\\x";
        out += kHex[c >> 4];
        out += kHex[c & 0xF];
    }
    return out;
}

std::string readOnlyRefusal(const std::string& path) {
    return "\"" + path + "\" is read-only; it has been left as it is (add --replace-read-only to replace it)";
}

Answer CliDialogs::unknownRecord(const std::string& text) {
    switch (unknown) {
    case Unknown::Yes: return Answer::Yes;
    case Unknown::No: return Answer::No;
    case Unknown::YesToAll: return Answer::Cancel;
    case Unknown::Default:
        *err << "quillon: warning: " << forTerminal(text)
             << "\nquillon: keeping it and every further record of unknown type (choose with --unknown=)\n";
        return Answer::Cancel;
    case Unknown::Ask: break;
    }
    *err << forTerminal(text) << "\n[y]es, [n]o, [a]ll? ";
    std::string reply;
    if (!std::getline(std::cin, reply)) throw CliError("no answer to the unknown-record question");
    if (!reply.empty() && (reply[0] == 'n' || reply[0] == 'N')) return Answer::No;
    if (!reply.empty() && (reply[0] == 'a' || reply[0] == 'A')) return Answer::Cancel;
    return Answer::Yes;
}

void CliDialogs::tell(const std::string& text, Icon) {
    *err << "quillon: " << forTerminal(text) << "\n";
}

Answer CliDialogs::ask(const Question& what, const std::string& text, Buttons, Icon, const std::string&) {
    if (what.id == QuestionId::UnknownRecord) return unknownRecord(text);
    if (what.id == QuestionId::WriteSavegame) {
        if (yes) return Answer::Yes;
        if (no) return Answer::No;
        throw CliError(
            "the target is a savegame; writing one is likely to give an unusable file (add --yes to "
            "write it all the same, or --no to leave it)");
    }
    if (what.id == QuestionId::ReplaceReadOnly) {
        if (replaceReadOnly) return Answer::Yes;
        throw CliError(readOnlyRefusal(what.subject));
    }
    throw CliError("no answer on the command line to: " + forTerminal(text));
}

DamageChoice CliDialogs::damagedOutput(const DamageReport& report) {
    const char* verdict = onDamage == DamageChoice::Repair      ? "repairing them"
                          : onDamage == DamageChoice::WriteAsIs ? "writing them as they are (--force)"
                                                                : "nothing has been written";
    *err << "quillon: " << report.records.size() << " record(s) of \"" << forTerminal(report.file)
         << "\" would be written damaged; " << verdict << ":\n";
    for (const DamagedRecord& record : report.records)
        *err << "  " << forTerminal(describeDamage(record)) << "\n";
    if (onDamage == DamageChoice::Repair && !report.repairable) {
        *err << "quillon: a repair would not give a file that reads back whole; nothing has been written\n";
        return DamageChoice::WriteNothing;
    }
    if (onDamage == DamageChoice::WriteNothing)
        *err << "quillon: --repair writes them with the sizes of what is written; the window offers Repair "
                "(--force writes them as the format's rules give them)\n";
    return onDamage;
}

std::string CliDialogs::input(const Question& what, const std::string& prompt, const std::string&,
                              const std::string&) {
    if (inputAnswer) return inputAnswer(what);
    throw CliError("no answer on the command line to: " + forTerminal(prompt));
}

std::string CliDialogs::openFile(const FileRequest&) {
    return std::exchange(openPath, {});
}
std::string CliDialogs::saveFile(const FileRequest&) {
    return std::exchange(savePath, {});
}

std::string CliDialogs::editResponse(const std::string&, const std::string&, const std::string&) {
    throw CliError("a response needs editing by hand, which the command line cannot do");
}

// The command line fixes no loop: each is skipped, and listed by the caller.
LoopFix CliDialogs::fixLoop(const std::string&, const std::string&, const std::string& text,
                            const std::string& result, std::int32_t) {
    return {LoopFixStatus::Skip, text, result};
}

} // namespace quillon
