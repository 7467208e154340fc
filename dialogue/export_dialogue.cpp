#include "dialogue/dialogue_commands.h"

#include "app/encoding.h"
#include "app/replace_target.h"
#include "writer/safe_file.h"

namespace quillon {

namespace {

const char* const kTextFilter = "Text files (*.txt)|*.txt| All Files (*.*)| *.*";

// Four quoted lines per response; nothing inside is escaped, and two empty lines separate
// responses (none follow the last).
std::string dialogueText(const std::vector<InfoRecord>& infos) {
    std::string out;
    std::size_t size = 0;
    for (const InfoRecord& r : infos)
        size += r.INAM.size() + r.Topic.size() + r.ONAM.size() + r.NAME.size() + 28;
    out.reserve(size);
    for (std::size_t i = 0; i < infos.size(); ++i) {
        if (i > 0) out += "\r\n\r\n";
        for (const std::string* field : {&infos[i].INAM, &infos[i].Topic, &infos[i].ONAM, &infos[i].NAME}) {
            out += '"';
            out += *field;
            out += "\"\r\n";
        }
    }
    return out;
}

} // namespace

Outcome reportExportError(Session& session, Dialogs& dialogs) {
    dialogs.tell("The operation encountered an error: \"" + bareName(session.currentPath) +
                     "\" holds no dialogue responses.",
                 Icon::None);
    session.log.LogLine("-An error occured during dialogue exporting.");
    return Outcome::failed("the file holds no dialogue responses");
}

Outcome ExportDialogue(Session& session, Dialogs& dialogs) {
    FileRequest request;
    request.flags = PromptOverwrite;
    request.filter = kTextFilter;
    request.defaultExtension = ".txt";
    request.initialFolder = session.openFolder;
    std::string path = dialogs.saveFile(request);
    if (path.empty()) return Outcome::declined("no file was chosen");
    session.openFolder = folderOf(path);
    return exportDialogueTo(session, dialogs, path);
}

Outcome exportDialogueTo(Session& session, Dialogs& dialogs, const std::string& path, TextEncoding encoding) {
    const std::vector<InfoRecord>& infos = session.store.INFO;
    // Nothing to export: no file is left behind, and the message says why.
    if (infos.empty() || infos.front().INAMSize == 0) return reportExportError(session, dialogs);
    std::string text = dialogueText(infos);
    // The mark tells the import that the text is UTF-8, however its bytes might also read.
    if (encoding == TextEncoding::Utf8) text = "\xEF\xBB\xBF" + toUtf8(text);
    std::optional<ReadOnlyTarget> readOnly = replaceableTarget(session, dialogs, path);
    if (!readOnly) return Outcome::declined("\"" + bareName(path) + "\" is read-only");
    std::string error = replaceFileSafely(path, text, *readOnly);
    if (!error.empty()) {
        dialogs.tell("\"" + bareName(path) + "\" could not be written: " + error + ".", Icon::Critical);
        session.log.LogLine("-An error occured during dialogue exporting.");
        return Outcome::failed(error);
    }
    session.log.LogLine("-Exported " + std::to_string(infos.size()) + " responses from \"" +
                        bareName(session.currentPath) + "\" successfully.");
    return Outcome::done();
}

} // namespace quillon
