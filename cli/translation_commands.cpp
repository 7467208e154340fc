// The translator's commands: the PO template, a PO applied to one file or to several, and the
// check of a PO against a file.
#include "app/encoding.h"
#include "app/file_commands.h"
#include "app/replace_target.h"
#include "cli/context.h"
#include "records/source_bytes.h"
#include "translation/translation.h"
#include "writer/safe_file.h"

#include <filesystem>

namespace quillon {

namespace {

// The PO file at path; false with a message when it cannot be read or is not a PO file.
bool readPoFile(Context& c, const std::string& path, std::vector<PoEntry>& entries) {
    std::string error;
    std::string text = loadFile(path, error);
    if (error.empty()) entries = readPo(text, error);
    if (!error.empty())
        c.err << "quillon: \"" << forTerminal(path)
              << "\" cannot be read as a PO file: " << forTerminal(error) << "\n";
    return error.empty();
}

// Applies the PO to the open file and saves it to target.
int translateOne(Context& c, const std::vector<PoEntry>& po, const std::string& target) {
    TranslationReport report;
    applyTranslation(c.session.store, po, report);
    std::string name = bareName(c.session.recordsPath);
    for (const std::string& context : report.refused)
        c.err << "quillon: "
              << forTerminal(name + ": the translation of \"" + context + "\" holds a character " +
                             codePageName(activeCodePage()) + " cannot store")
              << "\n";
    if (!report.refused.empty()) {
        c.err << "quillon: nothing has been written for " << forTerminal(name) << "\n";
        return 1;
    }
    for (const std::string& context : report.stale)
        c.err << "quillon: "
              << forTerminal(name + ": stale: \"" + context + "\" (the text changed since the PO was made)")
              << "\n";
    for (const std::string& script : report.recompile)
        c.err << "quillon: " << forTerminal(name + ": script \"" + script + "\" to recompile in the editor")
              << "\n";
    c.session.log.LogLine("-Translated " + std::to_string(report.applied) + " texts of \"" + name + "\"; " +
                          std::to_string(report.topicsRenamed) + " topics and " +
                          std::to_string(report.callsRenamed) + " AddTopic calls renamed, " +
                          std::to_string(report.stale.size()) + " stale.");
    return exitStatus(saveAsPath(c.session, c.dialogs, target));
}

} // namespace

int translateTemplateCommand(Context& c) {
    std::vector<PoEntry> entries;
    for (const std::string& path : c.args.positional) {
        if (!openPath(c.session, c.dialogs, path).isDone()) return 1;
        addTemplateEntries(c.session.store, bareName(path), entries);
    }
    std::string out = c.args.value("-o");
    std::optional<ReadOnlyTarget> readOnly = replaceableTarget(c.session, c.dialogs, out);
    if (!readOnly) return 1;
    std::string error = replaceFileSafely(out, poText(entries, bareName(c.args.positional[0])), *readOnly);
    if (!error.empty()) {
        c.err << "quillon: \"" << forTerminal(out) << "\" could not be written: " << forTerminal(error)
              << "\n";
        return 1;
    }
    c.session.log.LogLine("-Wrote " + std::to_string(entries.size()) + " texts to translate to \"" +
                          bareName(out) + "\".");
    return 0;
}

int translateCommand(Context& c) {
    std::vector<std::string> files(c.args.positional.begin(), c.args.positional.end() - 1);
    std::string poPath = c.args.positional.back(), outDir = c.args.value("--out-dir"),
                out = c.args.value("-o");
    if (outDir.empty() == out.empty() || (files.size() > 1 && outDir.empty())) {
        c.err << "quillon translate: give -o OUT for one file, or --out-dir DIR for one or more\n";
        return 2;
    }
    std::vector<PoEntry> po;
    if (!readPoFile(c, poPath, po)) return 1;
    int status = 0;
    for (const std::string& file : files) {
        if (!openPath(c.session, c.dialogs, file).isDone()) {
            status = 1;
            continue;
        }
        std::string target = outDir.empty() ? out : (std::filesystem::path(outDir) / bareName(file)).string();
        status = std::max(status, translateOne(c, po, target));
    }
    return status;
}

int checkTranslationCommand(Context& c) {
    std::vector<PoEntry> po;
    if (!readPoFile(c, c.args.positional[1], po) ||
        !openPath(c.session, c.dialogs, c.args.positional[0]).isDone())
        return 1;
    bool json = c.args.has("--json");
    std::vector<std::string> items;
    for (const Finding& f : checkTranslation(c.session.store, po)) {
        std::string subject = responseName(f.id, f.topic, f.actor);
        items.push_back(
            json ? "{\"file\": " + jsonString(c.args.positional[0]) + ", \"kind\": " + jsonString(f.kind) +
                       ", \"id\": " + jsonString(f.id) + ", \"topic\": " + jsonString(f.topic) +
                       ", \"actor\": " + jsonString(f.actor) + ", \"detail\": " + jsonString(f.detail) + "}"
                 : forTerminal(c.args.positional[0] + ": " + f.kind + ": " +
                               toUtf8(subject + ": " + f.detail)));
    }
    if (json)
        printJson(c.out, items);
    else
        for (const std::string& line : items)
            c.out << line << "\n";
    return items.empty() ? 0 : 1;
}

} // namespace quillon
