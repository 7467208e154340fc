#pragma once
// Translation through PO files: the template of a file's translatable texts, a PO applied to a
// file (topic names renamed wherever they are named), and the check of a PO against a file.
#include "app/finding.h"
#include "records/record_store.h"
#include "translation/po_file.h"

#include <string>
#include <vector>

namespace quillon {

// The entries of the template of a store's texts, in UTF-8: every response (msgctxt "INFO <id>"),
// every topic's name ("DIAL <name>"); the comments name the topic, the speaker and its name, and
// journal entries and quest names. An entry already in entries is not added twice.
void addTemplateEntries(const RecordStore& store, const std::string& file, std::vector<PoEntry>& entries);

struct TranslationReport {
    int applied = 0;                  // texts changed
    std::vector<std::string> stale;   // entries whose source text changed since the PO was made
    std::vector<std::string> refused; // translations holding a character the code page lacks
    int topicsRenamed = 0, callsRenamed = 0;
    std::vector<std::string> recompile; // scripts whose compiled data still names the old topic
    // Topic names the translation would give twice (two topics one name, or a topic the name of
    // another): each names both entries; nothing is applied then.
    std::vector<std::string> clashes;
};

// Applies the translated, not fuzzy entries whose source text is the store's current text. A
// translated topic name renames the topic, its responses' topic and every AddTopic naming it in
// result scripts and script texts. Sizes follow every change. Nothing is changed when a
// translation holds a character the code page lacks (report.refused names them) or two topics
// would share a name (report.clashes).
void applyTranslation(RecordStore& store, const std::vector<PoEntry>& po, TranslationReport& report);

// What a translator should look at: stale, placeholder, hyperlink, long, charset, untranslated
// (also every text of the file the PO lacks).
std::vector<Finding> checkTranslation(const RecordStore& store, const std::vector<PoEntry>& po);

} // namespace quillon
