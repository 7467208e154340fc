#include "script/script_check.h"

#include "script/function_table.h"
#include "script/script_reader.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <vector>

namespace quillon {

namespace {

std::string lower(std::string_view s) {
    std::string out(s);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    return out;
}

// The arguments as values: a minus before a number belongs to it; other symbols (operators,
// brackets) stand alone.
std::vector<ScriptToken> values(const std::vector<ScriptToken>& arguments) {
    std::vector<ScriptToken> out;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i].kind == ScriptToken::Symbol && arguments[i].text == "-" &&
            i + 1 < arguments.size() && arguments[i + 1].kind == ScriptToken::Number)
            continue;
        out.push_back(arguments[i]);
    }
    return out;
}

// The IDs each reference check looks up: the function, which argument, and which kind of ID.
struct IdArgument {
    const char* function;
    std::size_t argument;
    const char* kind;
};
constexpr IdArgument kIdArguments[] = {
    {"journal", 0, "journal"},
    {"setjournalindex", 0, "journal"},
    {"getjournalindex", 0, "journal"},
    {"additem", 0, "object"},
    {"removeitem", 0, "object"},
    {"placeatpc", 0, "object"},
    {"placeatme", 0, "object"},
    {"placeitem", 0, "object"},
    {"placeitemcell", 0, "object"},
    {"drop", 0, "object"},
    {"equip", 0, "object"},
    {"getitemcount", 0, "object"},
    {"startscript", 0, "script"},
    {"stopscript", 0, "script"},
    {"scriptrunning", 0, "script"},
    {"pcjoinfaction", 0, "faction"},
    {"pcraiserank", 0, "faction"},
    {"pclowerrank", 0, "faction"},
    {"pcexpell", 0, "faction"},
    {"pcclearexpelled", 0, "faction"},
    {"getpcrank", 0, "faction"},
    {"modpcfacrep", 1, "faction"},
    {"setpcfacrep", 1, "faction"},
    {"getpcfacrep", 0, "faction"},
    {"positioncell", 4, "cell"},
    {"getpccell", 0, "cell"},
    {"placeitemcell", 1, "cell"},
};

class Checker {
public:
    Checker(ScriptSource source, std::set<std::string> locals, const ScriptNames& names)
        : source_(source), locals_(std::move(locals)), names_(names) {}

    std::vector<ScriptProblem> run(std::string_view text) {
        forEachStatement(text, [this](const ScriptStatement& s) { statement(s); });
        for (const Open& open : blocks_)
            report(open.line,
                   std::string(open.keyword) + " is not closed by end" + std::string(open.keyword));
        if (source_ == ScriptSource::Record && begun_ && !ended_)
            report(beginLine_, "Begin is not closed by End");
        std::stable_sort(problems_.begin(), problems_.end(),
                         [](const ScriptProblem& a, const ScriptProblem& b) { return a.line < b.line; });
        return std::move(problems_);
    }

private:
    struct Open {
        std::size_t line;
        const char* keyword; // if or while
    };

    // Past this many, a script's further problems are not kept: a script of a million broken
    // lines would otherwise hold a million reports, and nobody reads past the first.
    static constexpr std::size_t kMostProblems = 1000;

    void report(std::size_t line, std::string reason, const char* kind = "script") {
        if (problems_.size() < kMostProblems) problems_.push_back({line, kind, std::move(reason)});
    }

    bool isVariable(std::string_view name) const {
        return locals_.count(lower(name)) || (names_.global && names_.global(name));
    }

    void statement(const ScriptStatement& s) {
        if (s.unterminated) report(s.line, "a text is not closed by its quote");
        if (!s.reference.empty() && names_.complete && names_.object && !sameName(s.reference, "player") &&
            !names_.object(s.reference))
            report(s.line,
                   "the reference \"" + std::string(s.reference) + "\" names no object of the load order",
                   "reference");
        if (s.head.kind != ScriptToken::Name) return;
        std::string head = lower(s.head.text);
        std::vector<ScriptToken> args = values(s.arguments);
        if (head == "begin") {
            begun_ = true;
            beginLine_ = s.line;
        } else if (head == "end") {
            ended_ = true;
        } else if (head == "short" || head == "long" || head == "float") {
            if (args.empty() || args[0].kind != ScriptToken::Name)
                report(s.line, std::string(s.head.text) + " declares no variable");
            else
                locals_.insert(lower(args[0].text));
        } else if (head == "set") {
            setStatement(s, args);
        } else if (head == "if" || head == "while") {
            blocks_.push_back({s.line, head == "if" ? "if" : "while"});
            if (args.empty()) report(s.line, std::string(s.head.text) + " has no condition");
        } else if (head == "elseif" || head == "else") {
            if (blocks_.empty() || std::string_view(blocks_.back().keyword) != "if")
                report(s.line, std::string(s.head.text) + " without if");
        } else if (head == "endif" || head == "endwhile") {
            std::string_view opened = head == "endif" ? "if" : "while";
            if (blocks_.empty() || blocks_.back().keyword != opened)
                report(s.line, std::string(s.head.text) + " without " + std::string(opened));
            else
                blocks_.pop_back();
        } else if (head == "return") {
        } else if (head == "messagebox") {
            if (args.empty() || args[0].kind != ScriptToken::Text)
                report(s.line, "MessageBox needs its text in quotes");
        } else if (head == "choice") {
            choice(s, args);
        } else {
            call(s, head, args);
        }
    }

    void setStatement(const ScriptStatement& s, const std::vector<ScriptToken>& args) {
        auto to = std::find_if(args.begin(), args.end(), [](const ScriptToken& t) {
            return t.kind == ScriptToken::Name && sameName(t.text, "to");
        });
        if (to == args.end() || to == args.begin()) {
            report(s.line, "set without a variable and to");
            return;
        }
        if (to == args.begin() + 1 && args[0].kind == ScriptToken::Name && s.reference.empty() &&
            !isVariable(args[0].text) && names_.complete && names_.global)
            report(s.line, "the variable \"" + std::string(args[0].text) + "\" is not declared" +
                               (source_ == ScriptSource::Result
                                    ? " (neither a global nor a local of the speaker's script)"
                                    : " (neither a local nor a global)"));
        if (to + 1 == args.end()) report(s.line, "set " + std::string(args[0].text) + " to nothing");
    }

    void choice(const ScriptStatement& s, const std::vector<ScriptToken>& args) {
        bool paired = !args.empty() && args.size() % 2 == 0;
        for (std::size_t i = 0; paired && i < args.size(); i += 2)
            paired = args[i].kind == ScriptToken::Text && args[i + 1].kind == ScriptToken::Number;
        if (!paired) report(s.line, "Choice must pair each text in quotes with a number");
    }

    void call(const ScriptStatement& s, const std::string& head, const std::vector<ScriptToken>& args) {
        const ScriptFunction* f = findFunction(head);
        if (!f) {
            if (isExtenderFunction(s.head.text))
                report(s.line, std::string(s.head.text), "extender");
            else
                report(s.line, "\"" + std::string(s.head.text) +
                                   "\" is neither a function nor a keyword of the game");
            return;
        }
        std::size_t required = f->required();
        if (args.size() < required) {
            report(s.line, std::string(s.head.text) + " takes " + std::to_string(required) + " argument" +
                               (required == 1 ? "" : "s") + ", " + std::to_string(args.size()) + " given");
            return;
        }
        std::string_view kinds = f->arguments;
        for (std::size_t i = 0, k = 0; i < args.size() && k < kinds.size(); ++k) {
            if (kinds[k] == '/') continue;
            if (kinds[k] == 'n' && args[i].kind == ScriptToken::Text)
                report(s.line, "argument " + std::to_string(i + 1) + " of " + std::string(s.head.text) +
                                   " is a number, not \"" + std::string(args[i].text) + "\"");
            ++i;
        }
        if (names_.complete) references(s, head, args);
    }

    void references(const ScriptStatement& s, const std::string& head, const std::vector<ScriptToken>& args) {
        for (const IdArgument& a : kIdArguments) {
            if (head != a.function || a.argument >= args.size() ||
                args[a.argument].kind == ScriptToken::Number)
                continue;
            std::string_view id = args[a.argument].text, kind = a.kind;
            const auto& known = kind == "journal"   ? names_.journal
                                : kind == "object"  ? names_.object
                                : kind == "script"  ? names_.script
                                : kind == "faction" ? names_.faction
                                                    : names_.cell;
            if (known && !known(id)) {
                report(s.line,
                       std::string(s.head.text) + ": no " + std::string(kind) + " \"" + std::string(id) +
                           "\" in the load order",
                       "reference");
                continue;
            }
            if (kind == "journal" && head != "getjournalindex" && args.size() > 1 &&
                args[1].kind == ScriptToken::Number && names_.journalIndex &&
                !names_.journalIndex(id, std::strtol(std::string(args[1].text).c_str(), nullptr, 10)))
                report(s.line,
                       "the journal \"" + std::string(id) + "\" has no entry of index " +
                           std::string(args[1].text),
                       "reference");
        }
    }

    ScriptSource source_;
    std::set<std::string> locals_;
    const ScriptNames& names_;
    std::vector<Open> blocks_;
    bool begun_ = false, ended_ = false;
    std::size_t beginLine_ = 0;
    std::vector<ScriptProblem> problems_;
};

} // namespace

std::vector<ScriptProblem> checkScript(std::string_view text, ScriptSource source,
                                       std::set<std::string> locals, const ScriptNames& names) {
    return Checker(source, std::move(locals), names).run(text);
}

} // namespace quillon
