#include "cli/commands.h"

#include "app/encoding.h"
#include "app/file_commands.h"
#include "app/replace_target.h"
#include "cleanup/morrowindize.h"
#include "cleanup/text_rules.h"
#include "cli/arguments.h"
#include "cli/cli_dialogs.h"
#include "cli/context.h"
#include "dialogue/dialogue_commands.h"
#include "npclist/npc_list.h"
#include "writer/byte_sink.h"

#include <functional>
#include <iostream>
#include <memory>
#include <new>

namespace quillon {

namespace {

const char* const kUsage = R"(usage: quillon COMMAND [ARGUMENTS]
       quillon --version

Commands:
  counts FILE...                   open each FILE; print its log lines and the 57 record counts
                                   (prefixed by the file's name when there are several)
  save FILE [-o OUT] [--repair|--force] [--yes|--no]
                                   open FILE and save it back (or to OUT)
  export-dialogue FILE -o OUT.txt [--text-encoding code-page|utf-8]
                                   every response of FILE to a text file (four quoted lines each),
                                   in the code page's bytes or in UTF-8 for Linux editors; import
                                   reads either
  import-dialogue FILE IN.txt -o OUT [--remove-line-breaks] [--long=trim|cancel]
                                   put the edited responses of IN.txt back and save as OUT; a
                                   response over 512 characters stops the import (every one is
                                   named, nothing is written) unless --long says to trim it (trim)
                                   or to trim it and all later ones (cancel)
  loops FILE... [--fail-on-loop]   list responses whose result script offers again the choice
                                   that shows them, with the script line as written;
                                   --fail-on-loop exits 1 when any is found
  check FILE... [--format text|json|sarif] [--only KINDS] [--master-summary SUMMARY]... [OPTIONS]
  check --all-content [--openmw-cfg CFG] [...]
                                   change nothing; list what a writer should look at, one line
                                   each: FILE: KIND: INFO ID (topic "T", actor "A"): detail. KINDS
                                   (comma-separated): loop, choice (a choice no response answers),
                                   topic (AddTopic of no topic of the file or of its masters),
                                   script (what the game's compiler rejects in a result script or
                                   script text), reference (an ID, a journal index or another
                                   object's variable the load order lacks); choice, topic,
                                   reference and undeclared variables only when every master was
                                   found or summarised; master (not found, or changed since the
                                   file was saved), long (over 512 characters), spelling (only
                                   when asked for, with --only spelling or --spelling: words of
                                   responses and topic names that neither the dictionary nor the
                                   names of the file and its masters know; --dictionary NAME|PATH
                                   picks the Hunspell dictionary, en_US by default, --words FILE
                                   adds a UTF-8 word list, one word a line),
                                   style (what the clean-up with OPTIONS would change), damage (a
                                   record Save would write damaged), unknown (a record of unknown
                                   type). --json (or --format json) writes a JSON array, --format
                                   sarif a SARIF 2.1.0 log for code-scanning services;
                                   --master-summary stands in for the masters it summarises that
                                   are not found; --all-content checks every content= file of the
                                   openmw.cfg in load order, each master read once. Exit 0 with
                                   no findings, 1 with findings (or a file that cannot be read)
  master-summary MASTER... -o SUMMARY
                                   what the checks need from these masters (topics, choices, IDs
                                   by type, globals, journals, scripts' variables, cells,
                                   factions, names) as a small UTF-8 text file, for a CI job
                                   where the masters cannot be present
  diff-dialogue OLD NEW [--json]   the responses added, removed and changed (text, topic, actor,
                                   result script, conditions) between two files, by INFO ID; exit
                                   0 when they are equal, 1 when they differ
  quotes FILE --city NAME --format xml|kst -o OUT [--ask-names] [--with-masters]
                                   the quotes of every response with an actor; speaker names
                                   holding "_" are kept unless --ask-names asks for each;
                                   --with-masters names speakers the masters define
  morrowindize FILE -o OUT [OPTIONS]
                                   clean every response to the game's house style and save as OUT;
                                   a response that would grow past 512 characters keeps its text
                                   and is listed
  morrowindize-text [OPTIONS]      clean each line of standard input as one response
  npc-list FILE --cell TEXT [--format text|phpbb|html|csv] [--no-clones] [--with-masters] -o OUT
                                   the NPCs placed in every cell whose name holds TEXT (any case),
                                   as a work sheet (csv: one UTF-8 row per NPC for spreadsheets);
                                   --no-clones leaves out guards and the like; --with-masters
                                   lists the cells of the whole load order, merged, and looks NPCs
                                   and factions up in the masters too
  translate-template FILE... -o OUT.pot
                                   a PO template (UTF-8) of every response and topic name of the
                                   files, for translation editors (Poedit, Lokalize, Weblate)
  translate FILE IN.po -o OUT      apply a PO and save as OUT (or FILE... IN.po --out-dir DIR,
                                   each file under its own name): a text whose source is still
                                   the file's gets its translation, others are named as stale; a
                                   translated topic renames its responses' topic and every
                                   AddTopic naming it; a character the code page lacks is refused
  check-translation FILE IN.po [--json]
                                   what a translator should look at: stale, untranslated,
                                   placeholder (%PCName lost or added), hyperlink (a topic named in
                                   the text missing from the translation), long, charset
  dialogue FILE [--topic T] [--with-masters] [--json]
                                   each topic of FILE with its responses in the order the game
                                   tries them (with --with-masters merged with the masters' as
                                   the game merges a load order), each with its file, ID, speaker
                                   filters and conditions in words, text and result script
  who-says FILE --topic T --actor ID [--pc KEY=NUMBER]... [--pc faction=NAME:RANK]...
           [--var NAME=NUMBER]... [--journal ID=INDEX]... [--cell NAME] [--choice N] [--json]
                                   the response the game gives that actor on T (the masters that
                                   are found merged in), and for each response above it the first
                                   filter that rejected it; KEY is a player function (level, sex,
                                   speechcraft, reputation, ...); what is not given is taken as 0
                                   (no faction, no item, quest not started) and listed; exit 1
                                   when the actor says nothing
  links FILE --topic T --response ID
                                   the response's text with the topic links the game finds in it
                                   marked @so# (over the topics of FILE and its masters found),
                                   then each link's topic
  load-order FILE                  the masters FILE needs, in load order, each with the path it was
                                   found at and its size against the size FILE recorded; exit 1
                                   when one is missing or has changed

Clean-up OPTIONS (all off by default): --line-breaks --american --sentences --space-quotes
  --slang --temple --dashes --ellipsis --square --dash-spaces, or --all for every one

Every command takes:
  --code-page 1252|1250|1251       the code page of the file's texts (default 1252, Western; 1250
                                   Central European, 1251 Cyrillic): texts are shown and compared
                                   by it, and TEXT, NAME and typed answers are taken as UTF-8
Every command that opens a file takes:
  --unknown=ask|yes|no|yes-to-all  what to do at a record of unknown type (default: keep it and
                                   every further one, with a warning)
  --data DIR                       a folder to look for masters in, before any other (repeatable,
                                   the first given first); then OpenMW's data folders, the game's
                                   Data Files folder and the file's own folder
  --openmw-cfg FILE                the openmw.cfg whose data= folders are searched (default:
                                   $XDG_CONFIG_HOME/openmw/openmw.cfg or ~/.config/openmw/openmw.cfg)
Every command that saves a data file (save, import-dialogue, morrowindize) takes:
  --yes, --no                      answer yes or no when asked to write a savegame (no: nothing is
                                   written, and the finishing line says so with a time of 0.000)
  --repair                         when records would be written damaged (their bytes disagree
                                   with their sizes), write them so that the file reads back whole
  --force                          write such records as the format's rules give them, damaged
  Without either, damaged output is refused: nothing is written, the records are listed, exit 1.
Every command that writes a file (those above, export-dialogue, quotes, npc-list,
translate-template) replaces an existing OUT whole, only once the new content is complete (a
failure leaves the old file as it was), keeping its mode, owner and group where allowed; and takes:
  --replace-read-only              replace OUT even when it is read-only (no write permission);
                                   without it such a file is left as it is, and the command exits 1
"--" ends the options, so that a file named "-x.esp" can be given.
FILE is a data file: .esm, .esp, .ess, .esd, or OpenMW's .omwaddon and .omwgame (which must begin
with a TES3 header; their header keeps its file type, and records of OpenMW's own types are kept).
Log lines go to standard error. Exit status: 0 success, 1 failure, 2 bad usage.
)";

using Handler = std::function<int(Context&)>;

struct Command {
    const char* name;
    std::size_t positional; // how many positional arguments it needs (at least, for a list of files)
    std::set<std::string> flags;
    std::set<std::string> valued;
    Handler run;
    std::set<std::string> required = {}; // valued options that must be given
    bool fileList = false;               // takes one file or more
};

int countsCommand(Context& c) {
    bool several = c.args.positional.size() > 1, allRead = true;
    for (const std::string& path : c.args.positional) {
        allRead = openPath(c.session, c.dialogs, path).isDone() && allRead;
        for (std::size_t i = 0; i < kCountLabels; ++i)
            c.out << (several ? forTerminal(path) + ": " : "") << countCaption(i) << ' '
                  << c.session.counts.shown[i] << '\n';
    }
    return allRead ? 0 : 1;
}

// Opens FILE; false when it was not read whole.
bool openInput(Context& c) {
    return openPath(c.session, c.dialogs, c.args.positional[0]).isDone();
}

int saveCommand(Context& c) {
    if (!openInput(c)) return 1;
    std::string target = c.args.value("-o");
    return exitStatus(target.empty() ? Save(c.session, c.dialogs) : saveAsPath(c.session, c.dialogs, target));
}

int exportCommand(Context& c) {
    std::string encoding = c.args.value("--text-encoding", "code-page");
    if (encoding != "code-page" && encoding != "utf-8") {
        c.err << "quillon export-dialogue: --text-encoding takes code-page or utf-8\n";
        return 2;
    }
    if (!openInput(c)) return 1;
    return exitStatus(exportDialogueTo(c.session, c.dialogs, c.args.value("-o"),
                                       encoding == "utf-8" ? TextEncoding::Utf8 : TextEncoding::CodePage));
}

int importCommand(Context& c) {
    std::string longMode = c.args.value("--long");
    if (longMode != "" && longMode != "trim" && longMode != "cancel") {
        c.err << "quillon: --long takes trim or cancel\n";
        return 2;
    }
    if (!openInput(c)) return 1;
    ImportAnswers answers;
    answers.removeLineBreaks = c.args.has("--remove-line-breaks");
    // Without --long every over-long response is named and nothing is written; trim and cancel
    // (the window's "No to all") both trim.
    answers.longTexts = longMode.empty() ? ImportAnswers::LongTexts::Refuse : ImportAnswers::LongTexts::Trim;
    if (importDialogueFrom(c.session, c.dialogs, c.args.positional[1], answers).isFailed()) return 1;
    return exitStatus(saveAsPath(c.session, c.dialogs, c.args.value("-o")));
}

int quotesCommand(Context& c) {
    std::string format = c.args.value("--format");
    if (format != "xml" && format != "kst") {
        c.err << "quillon quotes: --format takes xml or kst\n";
        return 2;
    }
    if (!openInput(c)) return 1;
    c.session.useMasters = c.args.has("--with-masters");
    QuoteExport request{c.args.value("-o"), ReadOnlyTarget::Refuse, c.args.value("--city"),
                        c.args.has("--ask-names")};
    std::optional<ReadOnlyTarget> readOnly = replaceableTarget(c.session, c.dialogs, request.path);
    if (!readOnly) return 1;
    request.readOnly = *readOnly;
    return exitStatus(format == "xml" ? writeQuotesXml(c.session, c.dialogs, request)
                                      : writeQuotesKst(c.session, c.dialogs, request));
}

const std::set<std::string> kCleanupOptions = {
    "--line-breaks", "--american", "--sentences", "--space-quotes", "--slang", "--temple",
    "--dashes",      "--ellipsis", "--square",    "--dash-spaces",  "--all",   "--help"};

std::set<std::string> kCleanupOptionsWith(std::set<std::string> more) {
    more.insert(kCleanupOptions.begin(), kCleanupOptions.end());
    return more;
}

int morrowindizeCommand(Context& c) {
    if (!openInput(c)) return 1;
    c.session.settings = cleanupSettings(c.args);
    std::vector<std::string> kept;
    Outcome cleaned = morrowindizeKeepingLongTexts(c.session, c.dialogs, kept);
    for (const std::string& line : kept)
        c.err << "quillon: " << forTerminal(line) << '\n';
    if (cleaned.isFailed()) return 1;
    return exitStatus(saveAsPath(c.session, c.dialogs, c.args.value("-o")));
}

int morrowindizeTextCommand(Context& c) {
    CleanupSettings settings = cleanupSettings(c.args);
    bool quoteParity = false; // carried from line to line as from response to response
    std::string line;
    while (std::getline(std::cin, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        c.out << cleanResponse(line, settings, quoteParity) << '\n';
    }
    return 0;
}

int npcListCommand(Context& c) {
    std::string name = c.args.value("--format", "text");
    NpcListFormat format = NpcListFormat::PlainText;
    if (name == "phpbb")
        format = NpcListFormat::PhpBB;
    else if (name == "html")
        format = NpcListFormat::Html;
    else if (name == "csv")
        format = NpcListFormat::Csv;
    else if (name != "text") {
        c.err << "quillon npc-list: --format takes text, phpbb, html or csv\n";
        return 2;
    }
    if (!openInput(c)) return 1;
    c.session.useMasters = c.args.has("--with-masters");
    NpcListTarget target{c.args.value("-o")};
    std::optional<ReadOnlyTarget> readOnly = replaceableTarget(c.session, c.dialogs, target.path);
    if (!readOnly) return 1;
    target.readOnly = *readOnly;
    return exitStatus(writeNpcList(c.session, c.dialogs, target, c.args.value("--cell"), format,
                                   c.args.has("--no-clones")));
}

int loadOrderCommand(Context& c) {
    if (!openInput(c)) return 1;
    LoadOrder order = findMasters(c.session.store, c.session.recordsPath, c.session.masterSearch);
    for (const std::string& note : order.searchNotes)
        c.err << "quillon: " << terminalLine(note) << '\n';
    // Names from the files are the code page's; paths and the plugin's own name are the system's.
    auto named = [](const std::string& text) { return looksLikeUtf8(text) ? text : toUtf8(text); };
    for (const auto& m : order.masters) {
        std::string line = toUtf8(m->name) + ": ";
        if (!m->found())
            line += "not found";
        else
            line += m->path + " (" + groupedNumber(m->size) + " bytes" +
                    (m->changed() ? "; " + named(m->namedBy) + " recorded " + groupedNumber(m->recordedSize) +
                                        ": changed"
                     : m->recordedSize != 0 ? ", as recorded"
                                            : "") +
                    ")";
        c.out << terminalLine(line) << '\n';
    }
    if (order.masters.empty())
        c.err << "quillon: " << forTerminal(c.args.positional[0]) << " names no masters\n";
    for (const auto& m : order.masters)
        if (!m->found() || m->changed()) return 1;
    return 0;
}

// The flags of every command that saves a data file.
const std::set<std::string> kWriteOptions = {"--help",   "--yes",   "--no",
                                             "--repair", "--force", "--replace-read-only"};

std::set<std::string> withWriteOptions(std::set<std::string> more) {
    more.insert(kWriteOptions.begin(), kWriteOptions.end());
    return more;
}

const std::vector<Command>& commands() {
    static const std::vector<Command> list = {
        {"counts", 1, {"--help"}, {"--unknown"}, countsCommand, {}, true},
        {"save", 1, kWriteOptions, {"--unknown", "-o"}, saveCommand},
        {"export-dialogue",
         1,
         {"--help", "--replace-read-only"},
         {"--unknown", "-o", "--text-encoding"},
         exportCommand,
         {"-o"}},
        {"import-dialogue",
         2,
         withWriteOptions({"--remove-line-breaks"}),
         {"--unknown", "-o", "--long"},
         importCommand,
         {"-o"}},
        {"loops", 1, {"--help", "--fail-on-loop"}, {"--unknown"}, loopsCommand, {}, true},
        {"check",
         0,
         kCleanupOptionsWith({"--json", "--with-masters", "--spelling", "--all-content"}),
         {"--unknown", "--only", "--dictionary", "--words", "--format", "--master-summary"},
         checkCommand,
         {},
         true},
        {"master-summary",
         1,
         {"--help", "--replace-read-only"},
         {"--unknown", "-o"},
         masterSummaryCommand,
         {"-o"},
         true},
        {"diff-dialogue", 2, {"--help", "--json"}, {"--unknown"}, diffDialogueCommand},
        {"morrowindize",
         1,
         kCleanupOptionsWith(kWriteOptions),
         {"--unknown", "-o"},
         morrowindizeCommand,
         {"-o"}},
        {"morrowindize-text", 0, kCleanupOptions, {}, morrowindizeTextCommand},
        {"npc-list",
         1,
         {"--help", "--no-clones", "--with-masters", "--replace-read-only"},
         {"--unknown", "--cell", "--format", "-o"},
         npcListCommand,
         {"--cell", "-o"}},
        {"load-order", 1, {"--help"}, {"--unknown"}, loadOrderCommand},
        {"dialogue", 1, {"--help", "--json", "--with-masters"}, {"--unknown", "--topic"}, dialogueCommand},
        {"links",
         1,
         {"--help"},
         {"--unknown", "--topic", "--response"},
         linksCommand,
         {"--topic", "--response"}},
        {"who-says",
         1,
         {"--help", "--json"},
         {"--unknown", "--topic", "--actor", "--pc", "--var", "--journal", "--cell", "--choice"},
         whoSaysCommand,
         {"--topic", "--actor"}},
        {"translate-template",
         1,
         {"--help", "--replace-read-only"},
         {"--unknown", "-o"},
         translateTemplateCommand,
         {"-o"},
         true},
        {"translate", 2, withWriteOptions({}), {"--unknown", "-o", "--out-dir"}, translateCommand, {}, true},
        {"check-translation", 2, {"--help", "--json"}, {"--unknown"}, checkTranslationCommand},
        {"quotes",
         1,
         {"--help", "--ask-names", "--with-masters", "--replace-read-only"},
         {"--unknown", "--city", "--format", "-o"},
         quotesCommand,
         {"--city", "--format", "-o"}},
    };
    return list;
}

// The flags as the answers of the questions they settle; false when --unknown has no such value.
// Records of unknown type are kept by default (every one, without a question); ask puts the
// question on the terminal, as --ask-names does the speaker names.
bool giveAnswers(Context& c) {
    GivenAnswers& given = c.session.given;
    std::string unknown = c.args.value("--unknown");
    if (unknown == "yes")
        given.unknownRecord = Answer::Yes;
    else if (unknown == "no")
        given.unknownRecord = Answer::No;
    else if (unknown.empty() || unknown == "yes-to-all")
        given.unknownRecord = Answer::Cancel;
    else if (unknown != "ask")
        return false;
    c.dialogs.interactive = unknown == "ask" || c.args.has("--ask-names");
    if (c.args.has("--yes")) given.writeSavegame = Answer::Yes;
    if (c.args.has("--no")) given.writeSavegame = Answer::No;
    if (c.args.has("--replace-read-only")) given.replaceReadOnly = true;
    given.damagedOutput = c.args.has("--repair")  ? DamageChoice::Repair
                          : c.args.has("--force") ? DamageChoice::WriteAsIs
                                                  : DamageChoice::WriteNothing;
    return true;
}

// Holds on to a finished command's context when its records are left to the process's exit; kept
// reachable here, it is not a leak (volatile: a store nothing reads would otherwise be dropped,
// and LeakSanitizer would call it one).
Context* volatile leftForExit = nullptr;

struct LeftToExit {
    std::unique_ptr<Context>& held;
    bool leave;
    ~LeftToExit() {
        if (leave) leftForExit = held.release();
    }
};

} // namespace

int runCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err, Teardown teardown) {
    if (!args.empty() && args[0] == "--version") {
        out << "quillon " << QUILLON_VERSION << "\n";
        return 0;
    }
    if (args.empty() || args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
        (args.empty() ? err : out) << kUsage;
        return args.empty() ? 2 : 0;
    }
    for (const Command& command : commands()) {
        if (args[0] != command.name) continue;
        std::set<std::string> valued = command.valued;
        valued.insert("--code-page");
        if (valued.count("--unknown")) { // the commands that open a file
            valued.insert("--data");
            valued.insert("--openmw-cfg");
        }
        Arguments parsed = parseArguments({args.begin() + 1, args.end()}, command.flags, valued);
        std::optional<CodePage> page = codePageNamed(parsed.value("--code-page", "1252"));
        if (parsed.error.empty() && !page) parsed.error = "--code-page takes 1252, 1250 or 1251";
        setActiveCodePage(page.value_or(CodePage::Windows1252));
        for (const char* option : {"--cell", "--city"})
            if (auto v = parsed.values.find(option);
                parsed.error.empty() && v != parsed.values.end() && !toCodePageBytes(v->second))
                parsed.error =
                    std::string(option) + " holds a character that " + codePageName(*page) + " cannot store";
        if (parsed.has("--help")) {
            out << kUsage;
            return 0;
        }
        for (const std::string& option : command.required)
            if (parsed.error.empty() && parsed.value(option).empty()) parsed.error = option + " is needed";
        bool countOk = command.fileList ? parsed.positional.size() >= command.positional
                                        : parsed.positional.size() == command.positional;
        if (!parsed.error.empty() || !countOk) {
            err << "quillon " << command.name << ": "
                << (parsed.error.empty() ? "wrong number of arguments" : parsed.error) << "\n\n"
                << kUsage;
            return 2;
        }
        std::unique_ptr<Context> held(new Context{parsed, out, err, {}, {}, {}, {}});
        LeftToExit left{held, teardown == Teardown::LeaveToExit};
        Context& c = *held;
        if (!giveAnswers(c)) {
            err << "quillon: --unknown takes ask, yes, no or yes-to-all\n";
            return 2;
        }
        if ((parsed.has("--yes") && parsed.has("--no")) ||
            (parsed.has("--repair") && parsed.has("--force"))) {
            err << "quillon " << command.name
                << ": --yes and --no, or --repair and --force, exclude each other\n";
            return 2;
        }
        c.dialogs.err = &err;
        c.session.log.onLine = [&c](const std::string& line) { c.err << terminalLine(line) << '\n'; };
        c.session.masterSearch.dataFolders = parsed.all("--data");
        c.session.masterSearch.openMwConfig = parsed.value("--openmw-cfg");
        try {
            return command.run(c);
        } catch (const CliError& e) {
            err << "quillon: " << forTerminal(e.what()) << "\n";
            return 1;
        } catch (const std::bad_alloc&) {
            std::string file =
                parsed.positional.empty() ? std::string() : " on \"" + parsed.positional[0] + "\"";
            err << "quillon: Not enough memory for " << command.name << forTerminal(file) << ".\n";
            return 1;
        }
    }
    err << "quillon: unknown command \"" << args[0] << "\"\n\n" << kUsage;
    return 2;
}

CleanupSettings cleanupSettings(const Arguments& args) {
    bool all = args.has("--all");
    auto on = [&](const char* flag) { return all || args.has(flag); };
    CleanupSettings s;
    s.isLineBreaks = on("--line-breaks");
    s.isAmerican = on("--american");
    s.isSentences = on("--sentences");
    s.isSpaceQuotes = on("--space-quotes");
    s.isSlang = on("--slang");
    s.isTemple = on("--temple");
    s.isDashes = on("--dashes");
    s.isEllipsis = on("--ellipsis");
    s.isSquare = on("--square");
    s.isDashSpaces = on("--dash-spaces");
    return s;
}

} // namespace quillon
