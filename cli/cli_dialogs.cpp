#include "cli/cli_dialogs.h"

#include "app/encoding.h"

#include <iostream>
#include <utility>

namespace quillon {

namespace {

std::string escaped(const std::string& text, bool oneLine) {
    static const char* const kHex = "0123456789abcdef";
    std::string out;
    out.reserve(text.size());
    auto plain = [&](unsigned char c) {
        return (c >= 0x20 && c != 0x7F && c != 0xC2) || c == '\t' || (c == '\n' && !oneLine);
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::size_t run = i;
        while (run < text.size() && plain(static_cast<unsigned char>(text[run])))
            ++run;
        out.append(text, i, run - i);
        if (run == text.size()) break;
        i = run;
        auto c = static_cast<unsigned char>(text[i]);
        if (c == 0xC2) {
            // U+0080 to U+009F are controls too (0x8D, 0x9D of a code page become them): a
            // terminal may obey them as it obeys ESC.
            auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0;
            if (next >= 0x80 && next <= 0x9F) {
                out += "\\u00";
                out += kHex[next >> 4];
                out += kHex[next & 0xF];
                ++i;
            } else {
                out += char(c);
            }
            continue;
        }
        if (c == '\r' && !oneLine && i + 1 < text.size() && text[i + 1] == '\n') continue;
        // Control bytes from a data file are shown, never obeyed: an ESC could rewrite the screen,
        // and a line break could print a line of its own.
        out += "\\x";
        out += kHex[c >> 4];
        out += kHex[c & 0xF];
    }
    return out;
}

} // namespace

std::string forTerminal(const std::string& text) {
    return escaped(text, false);
}

std::string terminalLine(const std::string& text) {
    return escaped(looksLikeUtf8(text) ? text : toUtf8(text), true);
}

bool toCodePageBytes(std::string& text) {
    if (!looksLikeUtf8(text)) return true;
    std::string bytes;
    char32_t missing = 0;
    if (!fromUtf8(text, bytes, missing)) return false;
    text = std::move(bytes);
    return true;
}

namespace {

// What answers a question the command line cannot ask.
const char* flagFor(QuestionId id) {
    switch (id) {
    case QuestionId::UnknownRecord: return "choose with --unknown=yes|no|yes-to-all|ask";
    case QuestionId::WriteSavegame:
        return "the target is a savegame; add --yes to write it all the same, or --no to leave it";
    case QuestionId::ReplaceReadOnly:
        return "it has been left as it is; add --replace-read-only to replace it";
    default: return "the command line has no answer to it";
    }
}

// One line typed on the terminal; a CliError when standard input ends first.
std::string typedLine(const std::string& asked) {
    std::string typed;
    if (!std::getline(std::cin, typed)) throw CliError("no answer to: " + asked);
    if (!typed.empty() && typed.back() == '\r') typed.pop_back();
    return typed;
}

} // namespace

void CliDialogs::tell(const std::string& text, Icon) {
    *err << "quillon: " << forTerminal(text) << "\n";
}

Answer CliDialogs::ask(const Question& what, const std::string& text, Buttons buttons, Icon,
                       const std::string&) {
    if (!interactive) throw CliError(text + " (" + flagFor(what.id) + ")");
    bool withCancel = buttons == Buttons::YesNoCancel || buttons == Buttons::SaveDiscardCancel;
    *err << forTerminal(text) << (withCancel ? "\n[y]es, [n]o, [a]ll? " : "\n[y]es, [n]o? ");
    std::string reply = typedLine(text);
    if (!reply.empty() && (reply[0] == 'n' || reply[0] == 'N')) return Answer::No;
    if (withCancel && !reply.empty() && (reply[0] == 'a' || reply[0] == 'A')) return Answer::Cancel;
    return Answer::Yes;
}

// The command line always gives its damage choice; reaching here is a command's fault, and
// nothing is written.
DamageChoice CliDialogs::damagedOutput(const DamageReport&) {
    return DamageChoice::WriteNothing;
}

std::string CliDialogs::input(const Question&, const std::string& prompt, const std::string&,
                              const std::string&) {
    if (!interactive) throw CliError("no answer on the command line to: " + prompt);
    *err << "Name for \"" << forTerminal(toUtf8(prompt)) << "\": ";
    std::string typed = typedLine(prompt);
    if (!toCodePageBytes(typed))
        throw CliError(std::string("the name typed holds a character that ") +
                       codePageName(activeCodePage()) + " cannot store");
    return typed;
}

std::string CliDialogs::openFile(const FileRequest&) {
    throw CliError("the command line chooses no file in a dialog");
}
std::string CliDialogs::saveFile(const FileRequest&) {
    throw CliError("the command line chooses no file in a dialog");
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
