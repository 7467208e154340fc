#include "app/file_commands.h"

#include "app/replace_target.h"
#include "app/text.h"
#include "records/es_read.h"
#include "writer/es_write.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace quillon {

const char* const kOpenDataFilter =
    "Elder Scrolls Data File (*.ESP, *.ESM, *.ESS, *.ESD)|*.ESM;*.ESP;*.ESS;*.ESD|Elder Scrolls Master File "
    "(*.ESM)|*.ESM;|Elder Scrolls Plugin File (*.ESP)|*.ESP|Elder Scrolls Save File (*.ESS)|*.ESS|OpenMW "
    "Content "
    "File (*.OMWADDON, *.OMWGAME)|*.OMWADDON;*.OMWGAME| All Files (*.*)| *.*";
const char* const kSaveDataFilter =
    "Elder Scrolls Master File (*.ESM)|*.ESM;|Elder Scrolls Plugin File "
    "(*.ESP)|*.ESP|Elder Scrolls Save File "
    "(*.ESS)|*.ESS|Elder Scrolls Module (*.ESD)|*.ESD|OpenMW Addon "
    "(*.OMWADDON)|*.OMWADDON|OpenMW Game (*.OMWGAME)|*.OMWGAME| All Files (*.*)| *.*";

namespace {

// The file's size and last write time as one text; empty when it cannot be read.
std::string stampOf(const std::string& path) {
    std::error_code ec;
    auto size = std::filesystem::file_size(path, ec);
    if (ec) return {};
    auto time = std::filesystem::last_write_time(path, ec);
    if (ec) return {};
    return std::to_string(size) + "@" + std::to_string(time.time_since_epoch().count());
}

// True when both paths name one file (or are spelled alike).
bool sameFile(const std::string& a, const std::string& b) {
    if (a == b) return true;
    std::error_code ec;
    return std::filesystem::equivalent(a, b, ec) && !ec;
}

} // namespace

Outcome Open(Session& session, Dialogs& dialogs) {
    FileRequest request;
    request.flags = HideReadOnly | FileMustExist;
    request.filter = kOpenDataFilter;
    request.initialFolder = session.openFolder;
    std::string path = dialogs.openFile(request);
    if (trimBlanks(path).empty()) return Outcome::declined("no file was chosen");
    session.openFolder = path.substr(0, path.size() - std::min(path.size(), bareName(path).size() + 1));
    return openPath(session, dialogs, path);
}

Outcome openPath(Session& session, Dialogs& dialogs, const std::string& path) {
    std::string name = bareName(path);
    session.log.LogLine("-Reading \"" + name + "\"...");
    dialogs.refreshLog();
    std::int32_t recordCount = 0;
    DialogPrompts prompts(dialogs, session.given);
    ReadDiagnostics diagnostics;
    bool wasWhole = session.readWhole;
    session.readWhole = false; // until the read ends whole: an exception out of it leaves it so
    double ms = ReadESFile(session.store, path, recordCount, false, prompts, &diagnostics);
    session.currentPath = path;
    if (ms < 0) {
        session.readWhole = wasWhole; // nothing was read: the records open before stay as they were
        session.log.LogLine("-Failed reading \"" + name + "\".");
    } else {
        std::int32_t expected = session.store.TES3.empty() ? 0 : session.store.TES3.front().NumRecords;
        // A read that lost records says so rather than "successfully".
        bool lost = ms > 0 && std::size_t(recordCount) < diagnostics.recordsInFile;
        std::string line = lost ? "-Read " + std::to_string(recordCount) + " of the " +
                                      std::to_string(diagnostics.recordsInFile) + " records in \"" + name +
                                      "\" in " + formatSeconds(ms) +
                                      " seconds; the rest were lost to a damaged record."
                                : "-Read " + std::to_string(recordCount) + " records from \"" + name +
                                      "\" successfully in " + formatSeconds(ms) + " seconds.";
        // The count read includes the header; the header's own count does not.
        if (recordCount - 1 != expected)
            line += " File should contain " + std::to_string(expected) + " record(s).";
        session.log.LogLine(line);
        if (diagnostics.truncated)
            session.log.LogLine("-Warning: \"" + name +
                                "\" ends inside a record; its last record is incomplete.");
        // Kept by a given answer, they would otherwise pass unnoticed.
        std::size_t unknown =
            std::size_t(std::count_if(session.store.Unknown.begin(), session.store.Unknown.end(),
                                      [](const RawRecord& r) { return !r.Whole; }));
        if (ms > 0 && unknown > 0 && session.given.unknownRecord)
            session.log.LogLine("-Warning: kept " + std::to_string(unknown) +
                                " record(s) of unknown type in \"" + name + "\" without a question.");
        if (ms == 0)
            session.log.LogLine("-Warning: reading stopped at a record of unknown type; no record of \"" +
                                name + "\" is open.");
        session.readWhole = ms > 0 && !lost && !diagnostics.truncated;
        session.modified = false;
        if (recordCount == 0 && ms > 0)
            session.log.LogLine("-Warning: \"" + name + "\" holds no records.");
        else if (session.store.TES3.empty() && ms > 0)
            session.log.LogLine("-Warning: \"" + name +
                                "\" does not begin with a TES3 header; it may not be a data file.");
        session.fileStamp = stampOf(path);
        session.recordsPath = path;
    }
    if (recordCount > 0) {
        session.fileGroupEnabled = true;
        session.counts.ResetRecordCounts();
        // Counts are shown before the trim, on purpose.
        session.counts.ShowRecordCounts(session.store, recordCount);
        TrimRecords(session.store);
    }
    if (ms < 0) return Outcome::failed("\"" + name + "\" could not be read");
    if (ms == 0) return Outcome::declined("reading stopped at a record of unknown type");
    return Outcome::done();
}

bool mayDropRecords(Session& session, Dialogs& dialogs) {
    if (!session.modified || !session.askBeforeDiscarding) return true;
    std::string name =
        session.currentPath.empty() ? "the open records" : "\"" + bareName(session.currentPath) + "\"";
    switch (dialogs.ask({QuestionId::SaveChanges}, "Save changes to " + name + "?",
                        Buttons::SaveDiscardCancel, Icon::Warning, "")) {
    case Answer::Yes: return Save(session, dialogs).isDone();
    case Answer::No: return true;
    default: return false;
    }
}

Outcome Close(Session& session) {
    ClearRecords(session.store);
    session.counts.ResetRecordCounts();
    session.fileGroupEnabled = false;
    session.modified = false;
    session.readWhole = true;
    session.log.LogLine("-Closed \"" + bareName(session.currentPath) + "\" successfully.");
    session.currentPath.clear();
    session.recordsPath.clear();
    return Outcome::done();
}

void Exit(Session& session) {
    ClearRecords(session.store);
    TrimRecords(session.store);
}

namespace {

// Writes the store to path and logs the outcome; failureLine is the command's own failure text.
Outcome writeAndReport(Session& session, Dialogs& dialogs, const std::string& path, const char* failureLine) {
    std::string name = bareName(path);
    std::optional<ReadOnlyTarget> readOnly = replaceableTarget(session, dialogs, path);
    if (!readOnly) {
        session.log.LogLine(failureLine);
        return Outcome::declined("\"" + name + "\" is read-only");
    }
    // The header's count comes from the displayed total, not from the store.
    auto recordCount = std::int32_t(session.counts.number(CountLabel::Total));
    DialogPrompts prompts(dialogs, session.given);
    WriteResult result = WriteESFile(session.store, path, recordCount, prompts, *readOnly);
    if (result.status == WriteResult::Failed) {
        session.log.LogLine(failureLine);
        dialogs.tell("\"" + name + "\" could not be written: " + result.error +
                         ". The file on disk is unchanged.",
                     Icon::Critical);
        return Outcome::failed(result.error);
    }
    if (result.status == WriteResult::Refused) {
        session.log.LogLine(failureLine);
        return Outcome::failed("records would have been written damaged");
    }
    if (result.status == WriteResult::Written) {
        session.fileStamp = stampOf(path);
        session.recordsPath = path;
        session.modified = false;
        session.readWhole = true; // the file now holds exactly the records open here
    }
    // A declined savegame question still logs the finishing line, with no time.
    session.log.LogLine("-Finished writing \"" + name + "\" in " + formatSeconds(result.ms) + " seconds. " +
                        std::to_string(session.counts.number(CountLabel::Total)) +
                        " records have been written.");
    if (result.status == WriteResult::Declined) return Outcome::declined("the savegame was not written");
    return Outcome::done();
}

} // namespace

Outcome Save(Session& session, Dialogs& dialogs) {
    std::string name = bareName(session.currentPath);
    session.log.LogLine("-Writing \"" + name + "\"...");
    dialogs.refreshLog();
    const char* failure = "-An error occured. Nothing has been written.";
    // Each of these questions defaults to keeping the file on disk.
    auto keepsFile = [&](QuestionId id, const std::string& text) {
        return dialogs.ask({id}, text, Buttons::YesNoDefaultNo, Icon::Warning, "") != Answer::Yes;
    };
    auto declined = [&](std::string why) {
        session.log.LogLine(failure);
        return Outcome::declined(std::move(why));
    };
    // After a refused Open the current file is not the one the records came from: replacing it
    // would destroy a file that was never read.
    bool foreignTarget = !session.recordsPath.empty() && !sameFile(session.recordsPath, session.currentPath);
    if (foreignTarget && keepsFile(QuestionId::ReplaceOtherFile,
                                   "The records open here were read from \"" + bareName(session.recordsPath) +
                                       "\". Save would replace \"" + name + "\" with them."))
        return declined("the records were not read from \"" + name + "\"");
    // Another program changed the file since it was read: overwriting would lose that work.
    std::string now = stampOf(session.currentPath);
    if (!foreignTarget && !session.fileStamp.empty() && !now.empty() && now != session.fileStamp &&
        keepsFile(
            QuestionId::OverwriteChangedFile,
            "\"" + name +
                "\" has been changed on disk since it was opened. Overwrite it with the records open here?"))
        return declined("\"" + name + "\" was changed on disk");
    // A store from a read that stopped early holds less than the file: saving it over the file
    // would lose the rest.
    if (!foreignTarget && !session.readWhole &&
        keepsFile(
            QuestionId::SaveIncompleteRead,
            "\"" + name +
                "\" was not read whole: the records open here are only part of it. Save would replace the "
                "file on disk with them, and the rest would be lost. Replace it?"))
        return declined("\"" + name + "\" was not read whole");
    return writeAndReport(session, dialogs, session.currentPath, failure);
}

Outcome SaveAs(Session& session, Dialogs& dialogs) {
    FileRequest request;
    request.flags = PromptOverwrite;
    request.filter = kSaveDataFilter;
    // The open file's own type first, and its extension for a name typed under "All Files".
    std::string extension = std::filesystem::path(session.currentPath).extension().string();
    int ownType = filterIndexOf(kSaveDataFilter, extension);
    request.filterIndex = ownType != 0 ? ownType : 2;
    request.defaultExtension = ownType != 0 ? foldedKey(extension) : ".esp";
    request.initialFolder = session.openFolder;
    std::string path = dialogs.saveFile(request);
    if (trimBlanks(path).empty()) return Outcome::declined("no file was chosen");
    return saveAsPath(session, dialogs, path);
}

Outcome saveAsPath(Session& session, Dialogs& dialogs, const std::string& path) {
    // Nothing is created before the new content exists, and the window's file changes only when
    // the save succeeded: a refused or failed Save As leaves no empty file and no new target.
    session.log.LogLine("-Writing \"" + bareName(path) + "\"...");
    dialogs.refreshLog();
    session.openFolder = folderOf(path);
    Outcome outcome = writeAndReport(session, dialogs, path, "-Nothing has been written.");
    // The full path rather than the bare title: a later Save must reach the same file whatever
    // the working folder is.
    if (outcome.isDone()) session.currentPath = path;
    return outcome;
}

} // namespace quillon
