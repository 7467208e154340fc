#include "app/encoding.h"
#include "app/text.h"
#include "dialogue/dialogue_commands.h"
#include "records/es_read.h"
#include "records/response_text.h"

#include <algorithm>
#include <cstdio>
#include <unordered_set>

namespace quillon {

namespace {

// A character of a UTF-8 text file that the code page cannot store.
struct Unstorable {
    char32_t character;
};

// Reads a text file line by line, as the export wrote it: lines end at CR LF only.

class LineReader {
public:
    // A UTF-8 file's lines are converted to the code page as they are read.
    LineReader(std::string bytes, bool utf8) : bytes_(std::move(bytes)), utf8_(utf8) {}
    bool atEnd() const { return pos_ >= bytes_.size(); }
    // The 1-based number of the line last read.
    std::size_t lineNumber() const { return lines_; }
    bool next(std::string& line) {
        if (atEnd()) return false;
        ++lines_;
        // A lone LF or CR is part of a response's text, as it was exported.
        std::size_t end = bytes_.find("\r\n", pos_);
        if (end == std::string::npos) end = bytes_.size();
        line.assign(bytes_, pos_, end - pos_);
        pos_ = std::min(end + 2, bytes_.size());
        char32_t missing = 0;
        if (utf8_ && !fromUtf8(std::string(line), line, missing)) throw Unstorable{missing};
        return true;
    }

private:
    std::string bytes_;
    bool utf8_;
    std::size_t pos_ = 0;
    std::size_t lines_ = 0;
};

// Where the text file stops matching the store: the message names the place and both IDs.
struct Mismatch {};

// The text between the first and last character (the quotes), or a mismatch when there are none.
std::string unquote(const std::string& line) {
    if (line.size() < 2) throw Mismatch{};
    return line.substr(1, line.size() - 2);
}

std::string collapseDoubledQuotes(const std::string& text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        out += text[i];
        if (text[i] == '"' && i + 1 < text.size() && text[i + 1] == '"') ++i;
    }
    return out;
}

std::string withCrLf(const std::string& text) {
    std::string out;
    out.reserve(text.size() + text.size() / 16);
    for (char c : text) {
        if (c == '\n') out += '\r';
        out += c;
    }
    return out;
}

bool hasHighBytes(std::string_view line) {
    return std::any_of(line.begin(), line.end(),
                       [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

// Whether a text file without a byte-order mark is UTF-8 (an editor's save) or the code page's
// bytes (the export as written), when both could be: the code page's bytes can form valid UTF-8
// ("Ã©" in code page 1252), so each line beyond ASCII is matched against the store's own lines
// read both ways, and the reading that matches more lines wins.
bool readsAsUtf8(const std::string& bytes, const std::vector<InfoRecord>& infos) {
    if (!looksLikeUtf8(bytes)) return false;
    std::unordered_set<std::string> own;
    for (const InfoRecord& r : infos)
        for (const std::string* field : {&r.INAM, &r.Topic, &r.ONAM, &r.NAME}) {
            if (!hasHighBytes(*field)) continue;
            std::string quoted = '"' + *field + '"';
            for (std::size_t at = 0; at <= quoted.size();) {
                std::size_t end = std::min(quoted.find("\r\n", at), quoted.size());
                own.insert(quoted.substr(at, end - at));
                at = end + 2;
            }
        }
    std::size_t asCodePage = 0, asUtf8 = 0;
    for (std::size_t at = 0; at < bytes.size();) {
        std::size_t end = std::min(bytes.find("\r\n", at), bytes.size());
        std::string line = bytes.substr(at, end - at), converted;
        at = end + 2;
        if (!hasHighBytes(line)) continue;
        if (own.count(line)) ++asCodePage;
        char32_t missing = 0;
        if (fromUtf8(line, converted, missing) && own.count(converted)) ++asUtf8;
    }
    return asUtf8 >= asCodePage;
}

class Import {
public:
    Import(Session& s, Dialogs& d, bool removeLineBreaks, ImportAnswers::LongTexts longTexts,
           std::string bytes, bool utf8)
        : s_(s), d_(d), separator_(removeLineBreaks ? " " : "\r\n"), longTexts_(longTexts),
          in_(std::move(bytes), utf8) {}

    // Reads the whole text first; the responses change only once every one of them matched and
    // every question was answered, so that a mismatch changes nothing.
    void run() {
        std::vector<InfoRecord>& infos = s_.store.INFO;
        std::vector<std::string> texts(infos.size());
        // A file that still holds lines after the last response starts a second pass, which
        // then reports the mismatch.
        while (!in_.atEnd()) {
            for (current_ = 0; current_ < infos.size(); ++current_)
                texts[current_] = readOne(infos[current_], current_ + 1 == infos.size());
        }
        if (!tooLong_.empty()) return;
        for (std::size_t i = 0; i < infos.size(); ++i) {
            InfoRecord& r = infos[i];
            if (texts[i].empty() && !r.NAME.empty())
                s_.store.editNotes[&r] = "response text emptied by the import: its size still counts the "
                                         "text's sub-record, which is no longer written";
            setResponseText(r, std::move(texts[i]));
        }
        s_.modified = true;
        s_.log.LogLine("-Imported " + std::to_string(infos.size()) + " responses to \"" +
                       bareName(s_.currentPath) + "\" successfully.");
    }
    // The responses over the limit, when told to refuse them: the import then changed nothing.
    const std::vector<std::string>& tooLong() const { return tooLong_; }
    std::size_t current() const { return current_; }
    std::size_t lineNumber() const { return in_.lineNumber() + (atEndOfFile_ ? 1 : 0); }
    // The ID line found where the current response's was expected, unless the file ended first.
    const std::string& foundId() const { return foundId_; }
    bool atEndOfFile() const { return atEndOfFile_; }

private:
    std::string line() {
        std::string l;
        if (!in_.next(l)) {
            atEndOfFile_ = true;
            throw Mismatch{};
        }
        return l;
    }

    std::string readOne(const InfoRecord& r, bool last) {
        foundId_ = line();
        if (foundId_.size() < 2 || !equalsIgnoreCase(unquote(foundId_), r.INAM)) throw Mismatch{};
        line(); // topic
        line(); // actor
        std::string text = line();
        while (text.empty() || text.back() != '"')
            text += separator_ + line();
        text = collapseDoubledQuotes(unquote(text));
        if (text.size() > kMaxResponse) text = fitLongText(r, text);
        if (!last) {
            line();
            line();
        }
        return text;
    }

    std::string fitLongText(const InfoRecord& r, std::string text) {
        if (longTexts_ == ImportAnswers::LongTexts::Refuse) {
            tooLong_.push_back("response \"" + r.INAM + "\" is longer than 512 characters (topic \"" +
                               r.Topic + "\", actor \"" + r.ONAM + "\")");
            return text;
        }
        if (longTexts_ == ImportAnswers::LongTexts::Ask && !noToAll_) {
            Answer a =
                d_.ask({QuestionId::LongResponse, r.INAM},
                       "The response \"" + r.INAM +
                           "\" is bigger than 512 characters. Do you want to edit it by hand? Otherwise "
                           "it will be trimmed to fit.\r\n\r\nCancel is \"No to all\"",
                       Buttons::YesNoCancel, Icon::Information, "Quillon Warning");
            if (a == Answer::Cancel) noToAll_ = true;
            if (a == Answer::Yes)
                text = d_.editResponse(r.DialogueType == 4 ? "Journal Entry" : r.ONAM, r.Topic, text);
        }
        if (text.size() > kMaxResponse) text.resize(kMaxResponse);
        return text;
    }

    Session& s_;
    Dialogs& d_;
    std::string separator_;
    ImportAnswers::LongTexts longTexts_;
    std::vector<std::string> tooLong_;
    LineReader in_;
    std::size_t current_ = 0;
    std::string foundId_;
    bool atEndOfFile_ = false;
    bool noToAll_ = false;
};

Outcome reportImportError(Session& session, Dialogs& dialogs, const std::string& text) {
    dialogs.tell(text, Icon::None);
    session.log.LogLine("-An error occured during dialogue importing.");
    return Outcome::failed(text);
}

} // namespace

Outcome ImportDialogue(Session& session, Dialogs& dialogs) {
    FileRequest request;
    request.flags = HideReadOnly | FileMustExist;
    request.filter = "Text files (*.txt)|*.txt| All Files (*.*)| *.*";
    request.initialFolder = session.openFolder;
    std::string path = dialogs.openFile(request);
    if (trimBlanks(path).empty()) return Outcome::declined("no file was chosen");
    session.openFolder = folderOf(path);
    return importDialogueFrom(session, dialogs, path);
}

Outcome importDialogueFrom(Session& session, Dialogs& dialogs, const std::string& path,
                           const ImportAnswers& answers) {
    bool removeLineBreaks =
        answers.removeLineBreaks
            ? *answers.removeLineBreaks
            : dialogs.ask({QuestionId::RemoveLineBreaks}, "Do you want to remove line breaks?",
                          Buttons::YesNo, Icon::None, "") == Answer::Yes;
    std::string error;
    std::string bytes = loadFile(path, error);
    if (!error.empty())
        return reportImportError(session, dialogs, "Cannot read \"" + bareName(path) + "\": " + error + ".");
    return importDialogueText(session, dialogs, std::move(bytes), removeLineBreaks, answers.longTexts);
}

Outcome importDialogueText(Session& session, Dialogs& dialogs, std::string bytes, bool removeLineBreaks,
                           ImportAnswers::LongTexts longTexts) {
    if (session.store.INFO.empty())
        return reportImportError(session, dialogs,
                                 "\"" + bareName(session.currentPath) +
                                     "\" holds no dialogue responses to import into.");
    // An editor that saved the export with LF line ends: the export's own are CR LF.
    if (bytes.find('\r') == std::string::npos && bytes.find('\n') != std::string::npos)
        bytes = withCrLf(bytes);
    bool bom = bytes.rfind("\xEF\xBB\xBF", 0) == 0;
    if (bom) bytes.erase(0, 3);
    bool utf8 = bom || readsAsUtf8(bytes, session.store.INFO);
    Import import(session, dialogs, removeLineBreaks, longTexts, std::move(bytes), utf8);
    try {
        import.run();
        if (!import.tooLong().empty()) {
            std::string list;
            for (const std::string& line : import.tooLong())
                list += line + "\n";
            return reportImportError(session, dialogs,
                                     list + "Shorten them in the text file; nothing has been imported.");
        }
        return Outcome::done();
    } catch (const Unstorable& u) {
        char code[16];
        std::snprintf(code, sizeof code, "U+%04X", unsigned(u.character));
        return reportImportError(
            session, dialogs,
            std::string("The text file holds a character that ") + codePageName(activeCodePage()) +
                " cannot store (" + code + "), in the response \"" +
                session.store.INFO[std::min(import.current(), session.store.INFO.size() - 1)].INAM + "\".");
    } catch (const Mismatch&) {
        std::string found = import.atEndOfFile()       ? "the end of the file"
                            : import.foundId().empty() ? "an empty line"
                                                       : readableExcerpt(import.foundId());
        return reportImportError(session, dialogs,
                                 "The file has been edited incorrectly at line " +
                                     std::to_string(import.lineNumber()) + ". Required ID: \"" +
                                     session.store.INFO[import.current()].INAM + "\". Found: " + found +
                                     ". Nothing has been imported.");
    }
}

} // namespace quillon
