#include "translation/translation_commands.h"

#include "app/encoding.h"
#include "app/replace_target.h"
#include "records/source_bytes.h"
#include "translation/translation.h"
#include "writer/safe_file.h"

namespace quillon {

namespace {

const char* const kPoFilter = "PO files (*.po, *.pot)|*.po;*.pot|All Files (*.*)| *.*";

} // namespace

Outcome ExportTranslationTemplate(Session& session, Dialogs& dialogs) {
    FileRequest request;
    request.filter = kPoFilter;
    request.flags = PromptOverwrite; // a translated .po chosen by mistake is not lost unasked
    request.defaultExtension = ".pot";
    request.initialFolder = session.openFolder;
    std::string path = dialogs.saveFile(request);
    if (path.empty()) return Outcome::declined("no file was chosen");
    std::vector<PoEntry> entries;
    addTemplateEntries(session.store, bareName(session.recordsPath), entries);
    return writeTemplate(session, dialogs, entries, bareName(session.recordsPath), path);
}

Outcome writeTemplate(Session& session, Dialogs& dialogs, const std::vector<PoEntry>& entries,
                      const std::string& sourceName, const std::string& path) {
    std::optional<ReadOnlyTarget> readOnly = replaceableTarget(session, dialogs, path);
    if (!readOnly) return Outcome::declined("\"" + bareName(path) + "\" is read-only");
    std::string error = replaceFileSafely(path, poText(entries, sourceName), *readOnly);
    if (!error.empty()) {
        dialogs.tell("\"" + bareName(path) + "\" could not be written: " + error + ".", Icon::Critical);
        return Outcome::failed("the template could not be written");
    }
    session.log.LogLine("-Wrote " + std::to_string(entries.size()) + " texts to translate to \"" +
                        bareName(path) + "\".");
    return Outcome::done();
}

std::optional<std::vector<PoEntry>> readPoFile(Dialogs& dialogs, const std::string& path) {
    std::string error;
    std::string text = loadFile(path, error);
    std::vector<PoEntry> po;
    if (error.empty()) po = readPo(text, error);
    if (!error.empty()) {
        dialogs.tell("\"" + bareName(path) + "\" cannot be read as a PO file: " + error + ".",
                     Icon::Critical);
        return std::nullopt;
    }
    return po;
}

Outcome ApplyTranslation(Session& session, Dialogs& dialogs) {
    FileRequest request;
    request.filter = kPoFilter;
    request.flags = FileMustExist;
    request.initialFolder = session.openFolder;
    std::string path = dialogs.openFile(request);
    if (path.empty()) return Outcome::declined("no file was chosen");
    std::optional<std::vector<PoEntry>> po = readPoFile(dialogs, path);
    if (!po) return Outcome::failed("the PO file cannot be read");
    TranslationReport report;
    Outcome applied = applyPo(session, dialogs, *po, bareName(path), report);
    if (applied.isFailed()) return applied;
    std::string summary = "Applied " + std::to_string(report.applied) + " translation(s); renamed " +
                          std::to_string(report.topicsRenamed) + " topic(s) and " +
                          std::to_string(report.callsRenamed) + " AddTopic call(s).";
    if (!report.stale.empty())
        summary +=
            "\n" + std::to_string(report.stale.size()) +
            " entr(ies) are stale: their text changed since the PO was made, and they were left alone.";
    if (!report.recompile.empty()) {
        summary += "\nScripts to recompile in the editor:";
        for (const std::string& script : report.recompile)
            summary += " " + script;
    }
    dialogs.tell(summary + "\nSave to keep the translation.", Icon::Information);
    return applied;
}

Outcome applyPo(Session& session, Dialogs& dialogs, const std::vector<PoEntry>& po, const std::string& poName,
                TranslationReport& report) {
    applyTranslation(session.store, po, report);
    if (!report.refused.empty()) {
        std::string list;
        for (std::size_t i = 0; i < report.refused.size() && i < 10; ++i)
            list += "\n" + report.refused[i];
        dialogs.tell(
            std::to_string(report.refused.size()) + " translation(s) hold a character " +
                codePageName(activeCodePage()) +
                " cannot store; nothing has been applied. Choose the code page of the translation (Edit > "
                "Code Page in the window, --code-page on the command line)." +
                list,
            Icon::Critical);
        return Outcome::failed("a translation holds a character the code page lacks");
    }
    if (!report.clashes.empty()) {
        std::string list;
        for (std::size_t i = 0; i < report.clashes.size() && i < 10; ++i)
            list += "\n" + report.clashes[i];
        dialogs.tell("Two topics would share one name, which the game takes for one topic; nothing has been "
                     "applied. Give each topic its own translation." +
                         list,
                     Icon::Critical);
        return Outcome::failed("two topics would share one name");
    }
    if (report.applied != 0 || report.topicsRenamed != 0 || report.callsRenamed != 0) session.modified = true;
    session.log.LogLine("-Applied " + std::to_string(report.applied) + " translations from \"" + poName +
                        "\" to \"" + bareName(session.recordsPath) + "\"; " +
                        std::to_string(report.topicsRenamed) + " topics and " +
                        std::to_string(report.callsRenamed) + " AddTopic calls renamed, " +
                        std::to_string(report.stale.size()) + " stale.");
    return Outcome::done();
}

} // namespace quillon
