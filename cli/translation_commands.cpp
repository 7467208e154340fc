// The translator's commands: the PO template, a PO applied to one file or to several, and the
// check of a PO against a file.
#include "translation/translation_commands.h"
#include "app/encoding.h"
#include "app/file_commands.h"
#include "cli/context.h"
#include "records/source_bytes.h"
#include "translation/translation.h"
#include "writer/safe_file.h"

#include <filesystem>
#include <map>

namespace quillon {

namespace {

// Applies the PO to the open file and saves it to target; stale texts and scripts to recompile
// are listed.
int translateOne(Context& c, const std::vector<PoEntry>& po, const std::string& poName,
                 const std::string& target) {
    TranslationReport report;
    if (applyPo(c.session, c.dialogs, po, poName, report).isFailed()) return 1;
    std::string name = bareName(c.session.recordsPath);
    for (const std::string& context : report.stale)
        c.err << "quillon: "
              << forTerminal(name + ": stale: \"" + context + "\" (the text changed since the PO was made)")
              << "\n";
    for (const std::string& script : report.recompile)
        c.err << "quillon: " << forTerminal(name + ": script \"" + script + "\" to recompile in the editor")
              << "\n";
    return exitStatus(saveAsPath(c.session, c.dialogs, target));
}

} // namespace

int translateTemplateCommand(Context& c) {
    std::vector<PoEntry> entries;
    for (const std::string& path : c.args.positional) {
        if (!openPath(c.session, c.dialogs, path).isDone()) return 1;
        addTemplateEntries(c.session.store, bareName(path), entries);
    }
    Outcome written =
        writeTemplate(c.session, c.dialogs, entries, bareName(c.args.positional[0]), c.args.value("-o"));
    return written.isDone() ? 0 : 1;
}

int translateCommand(Context& c) {
    std::vector<std::string> files(c.args.positional.begin(), c.args.positional.end() - 1);
    std::string poPath = c.args.positional.back(), outDir = c.args.value("--out-dir"),
                out = c.args.value("-o");
    if (outDir.empty() == out.empty() || (files.size() > 1 && outDir.empty())) {
        c.err << "quillon translate: give -o OUT for one file, or --out-dir DIR for one or more\n";
        return 2;
    }
    std::vector<std::string> targets;
    for (const std::string& file : files)
        targets.push_back(outDir.empty() ? out : (std::filesystem::path(outDir) / bareName(file)).string());
    // A folder of outputs must not be where an input would be replaced, nor take two inputs of
    // one name: the second would silently win.
    if (!outDir.empty()) {
        std::map<std::string, std::string> writtenBy;
        for (std::size_t i = 0; i < files.size(); ++i) {
            std::error_code ec;
            std::string key = std::filesystem::weakly_canonical(targets[i], ec).string();
            auto [at, fresh] = writtenBy.emplace(ec ? targets[i] : key, files[i]);
            std::string clash = !fresh ? "\"" + at->second + "\" and \"" + files[i] +
                                             "\" would both be written to \"" + targets[i] + "\""
                                : std::filesystem::equivalent(files[i], targets[i], ec)
                                    ? "\"" + targets[i] + "\" is \"" + files[i] + "\" itself"
                                    : std::string();
            if (!clash.empty()) {
                c.err << "quillon translate: " << forTerminal(clash)
                      << "; choose another --out-dir; nothing has been written\n";
                return 1;
            }
        }
    }
    std::optional<std::vector<PoEntry>> po = readPoFile(c.dialogs, poPath);
    if (!po) return 1;
    int status = 0;
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (!openPath(c.session, c.dialogs, files[i]).isDone()) {
            status = 1;
            continue;
        }
        status = std::max(status, translateOne(c, *po, bareName(poPath), targets[i]));
    }
    return status;
}

int checkTranslationCommand(Context& c) {
    std::optional<std::vector<PoEntry>> read = readPoFile(c.dialogs, c.args.positional[1]);
    if (!read || !openPath(c.session, c.dialogs, c.args.positional[0]).isDone()) return 1;
    const std::vector<PoEntry>& po = *read;
    bool json = c.args.has("--json");
    std::vector<std::string> items;
    for (const Finding& f : checkTranslation(c.session.store, po)) {
        std::string subject = responseName(f.id, f.topic, f.actor);
        items.push_back(
            json ? "{\"file\": " + jsonFileName(c.args.positional[0]) + ", \"kind\": " + jsonString(f.kind) +
                       ", \"id\": " + jsonString(f.id) + ", \"topic\": " + jsonString(f.topic) +
                       ", \"actor\": " + jsonString(f.actor) + ", \"detail\": " + jsonString(f.detail) + "}"
                 : terminalLine(c.args.positional[0] + ": " + f.kind + ": " +
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
