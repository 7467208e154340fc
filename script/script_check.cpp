#include "script/script_check.h"

#include "script/function_table.h"
#include "script/script_expression.h"
#include "script/script_reader.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <vector>

namespace quillon {

const char* idKindName(IdKind kind) {
    switch (kind) {
    case IdKind::Object: return "object";
    case IdKind::Spell: return "spell";
    case IdKind::Journal: return "journal";
    case IdKind::Script: return "script";
    case IdKind::Faction: return "faction";
    case IdKind::Cell: return "cell";
    case IdKind::Sound: return "sound";
    case IdKind::Region: return "region";
    }
    return "ID";
}

namespace {

std::string lower(std::string_view s) {
    std::string out(s);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    return out;
}

bool isIdKind(char letter) {
    return std::string_view("osjxfcdr").find(letter) != std::string_view::npos;
}

// The arguments of a statement as values: a minus before a number belongs to it; other symbols
// (operators, brackets) stand alone.
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

// An ID as written before .variable, without its quotes.
std::string_view objectOf(std::string_view remote) {
    std::string_view id = remote.substr(0, remote.rfind('.'));
    if (id.size() >= 2 && id.front() == '"') id = id.substr(1, id.size() - 2);
    return id;
}

class Checker : public ExpressionHost {
public:
    Checker(ScriptSource source, std::optional<std::set<std::string>> locals, const ScriptNames& names)
        : source_(source), locals_(std::move(locals)), names_(names) {}

    std::vector<ScriptProblem> run(std::string_view text) {
        forEachStatement(text, [this](const ScriptStatement& s) {
            line_ = s.line;
            column_ = s.column;
            statement(s);
        });
        for (const Open& open : blocks_)
            report(open.line,
                   std::string(open.keyword) + " is not closed by end" + std::string(open.keyword));
        if (source_ == ScriptSource::Record && begun_ && !ended_)
            report(beginLine_, "Begin is not closed by End");
        std::stable_sort(problems_.begin(), problems_.end(),
                         [](const ScriptProblem& a, const ScriptProblem& b) { return a.line < b.line; });
        return std::move(problems_);
    }

    void problem(std::string reason) override { report(line_, std::move(reason)); }

    bool isVariable(std::string_view name) const override {
        return (locals_ && locals_->count(lower(name))) || (names_.global && names_.global(name));
    }

    void value(std::string_view name) override {
        if (name.find('.') != std::string_view::npos) return remoteVariable(name);
        if (misspelledFunction(name)) {
            report(line_, "\"" + std::string(name) + "\" is neither a function nor a keyword of the game");
        } else if (judgesVariables()) {
            report(line_,
                   "\"" + std::string(name) + "\" is neither a variable nor a function" + whereVariables());
        }
    }

    void call(const ScriptFunction& f, std::string_view written,
              const std::vector<ScriptToken>& args) override {
        std::string_view kinds = f.arguments;
        for (std::size_t i = 0, k = 0; i < args.size() && k < kinds.size(); ++k) {
            if (kinds[k] == '/') continue;
            const ScriptToken& a = args[i++];
            if (kinds[k] == 'n' && a.kind == ScriptToken::Text)
                report(line_, "argument " + std::to_string(i) + " of " + std::string(written) +
                                  " is a number, not \"" + std::string(a.text) + "\"");
            else if (kinds[k] == 'n' && a.kind == ScriptToken::Name && !isVariable(a.text) &&
                     !findFunction(a.text))
                value(a.text);
            else if (isIdKind(kinds[k]) && a.kind != ScriptToken::Number)
                reference(written, static_cast<IdKind>(kinds[k]), a.text,
                          i < args.size() ? &args[i] : nullptr);
        }
    }

    void extender(std::string_view name) override { report(line_, std::string(name), "extender"); }

private:
    struct Open {
        std::size_t line;
        const char* keyword; // if or while
    };

    // Past this many, a script's further problems are not kept: a script of a million broken
    // lines would otherwise hold a million reports, and nobody reads past the first.
    static constexpr std::size_t kMostProblems = 1000;

    void report(std::size_t line, std::string reason, const char* kind = "script") {
        // Problems found after the script's end (blocks left open) point at the statement opening them.
        if (problems_.size() < kMostProblems)
            problems_.push_back({line, line == line_ ? column_ : 1, kind, std::move(reason)});
    }

    // An undeclared name is a fault only when both the locals and the load order are known whole.
    bool judgesVariables() const { return locals_ && names_.complete && names_.global; }

    const char* whereVariables() const {
        return source_ == ScriptSource::Result ? " (neither a global nor a local of the speaker's script)"
                                               : " (neither a local nor a global)";
    }

    void remoteVariable(std::string_view name) {
        if (!names_.complete || !names_.localsOf) return;
        std::string_view id = objectOf(name), variable = name.substr(name.rfind('.') + 1);
        std::optional<std::set<std::string>> locals = names_.localsOf(id);
        if (!locals)
            report(line_, "no object or script \"" + std::string(id) + "\" in the load order", "reference");
        else if (locals->empty())
            report(line_,
                   "\"" + std::string(id) + "\" runs no script, so it has no variable \"" +
                       std::string(variable) + "\"",
                   "reference");
        else if (!locals->count(lower(variable)))
            report(line_,
                   "the script of \"" + std::string(id) + "\" has no variable \"" + std::string(variable) +
                       "\"",
                   "reference");
    }

    void statement(const ScriptStatement& s) {
        if (s.unterminated) report(s.line, "a text is not closed by its quote");
        if (!s.reference.empty() && !sameName(s.reference, "player") && names_.complete && names_.has &&
            !names_.has(IdKind::Object, s.reference))
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
            else if (locals_)
                locals_->insert(lower(args[0].text));
        } else if (head == "set") {
            setStatement(s);
        } else if (head == "if" || head == "while") {
            blocks_.push_back({s.line, head == "if" ? "if" : "while"});
            condition(s);
        } else if (head == "elseif") {
            if (blocks_.empty() || std::string_view(blocks_.back().keyword) != "if")
                report(s.line, std::string(s.head.text) + " without if");
            condition(s);
        } else if (head == "else") {
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
            instruction(s, head, args);
        }
    }

    void condition(const ScriptStatement& s) {
        if (s.arguments.empty()) return report(s.line, std::string(s.head.text) + " has no condition");
        checkExpression(s.arguments, *this);
    }

    void setStatement(const ScriptStatement& s) {
        auto to = std::find_if(s.arguments.begin(), s.arguments.end(), [](const ScriptToken& t) {
            return t.kind == ScriptToken::Name && sameName(t.text, "to");
        });
        if (to == s.arguments.end() || to == s.arguments.begin())
            return report(s.line, "set without a variable and to");
        const ScriptToken& target = s.arguments.front();
        if (to != s.arguments.begin() + 1 || target.kind != ScriptToken::Name)
            return report(s.line, "set takes one variable before to");
        if (to + 1 == s.arguments.end())
            return report(s.line, "set " + std::string(target.text) + " to nothing");
        if (!s.reference.empty()) {
        } else if (target.text.find('.') != std::string_view::npos) {
            remoteVariable(target.text);
        } else if (!isVariable(target.text) && judgesVariables()) {
            report(s.line,
                   "the variable \"" + std::string(target.text) + "\" is not declared" + whereVariables());
        }
        checkExpression(std::span<const ScriptToken>(&*(to + 1), std::size_t(s.arguments.end() - to - 1)),
                        *this);
    }

    void choice(const ScriptStatement& s, const std::vector<ScriptToken>& args) {
        bool paired = !args.empty() && args.size() % 2 == 0;
        for (std::size_t i = 0; paired && i < args.size(); i += 2)
            paired = args[i].kind == ScriptToken::Text && args[i + 1].kind == ScriptToken::Number;
        if (!paired) report(s.line, "Choice must pair each text in quotes with a number");
    }

    // A statement calling a function: its arguments are words and numbers, as the compiler
    // reads them after an instruction.
    void instruction(const ScriptStatement& s, const std::string& head,
                     const std::vector<ScriptToken>& args) {
        const ScriptFunction* f = findFunction(head);
        if (!f) {
            if (isExtenderFunction(s.head.text))
                report(s.line, std::string(s.head.text), "extender");
            else
                report(s.line, "\"" + std::string(s.head.text) +
                                   "\" is neither a function nor a keyword of the game");
            return;
        }
        std::size_t required = f->required(), most = f->most();
        bool plain = std::none_of(args.begin(), args.end(),
                                  [](const ScriptToken& t) { return t.kind == ScriptToken::Symbol; });
        if (args.size() < required)
            return report(s.line, std::string(s.head.text) + " takes " + std::to_string(required) +
                                      " argument" + (required == 1 ? "" : "s") + ", " +
                                      std::to_string(args.size()) + " given");
        if (plain && args.size() > most)
            return report(s.line, std::string(s.head.text) + " takes at most " + std::to_string(most) +
                                      " argument" + (most == 1 ? "" : "s") + ", " +
                                      std::to_string(args.size()) + " given");
        call(*f, s.head.text, args);
    }

    void reference(std::string_view function, IdKind kind, std::string_view id, const ScriptToken* next) {
        if (!names_.complete || !names_.has) return;
        if (kind == IdKind::Object && sameName(id, "player")) return;
        if (!names_.has(kind, id))
            return report(line_,
                          std::string(function) + ": no " + idKindName(kind) + " \"" + std::string(id) +
                              "\" in the load order",
                          "reference");
        // Journal and SetJournalIndex name an entry that must exist; GetJournalIndex only compares.
        if (kind == IdKind::Journal && !sameName(function, "getjournalindex") && next &&
            next->kind == ScriptToken::Number && names_.journalIndex &&
            !names_.journalIndex(id, std::strtol(std::string(next->text).c_str(), nullptr, 10)))
            report(line_,
                   "the journal \"" + std::string(id) + "\" has no entry of index " + std::string(next->text),
                   "reference");
    }

    ScriptSource source_;
    std::optional<std::set<std::string>> locals_;
    const ScriptNames& names_;
    std::vector<Open> blocks_;
    bool begun_ = false, ended_ = false;
    std::size_t beginLine_ = 0, line_ = 0, column_ = 0;
    std::vector<ScriptProblem> problems_;
};

} // namespace

std::vector<ScriptProblem> checkScript(std::string_view text, ScriptSource source,
                                       std::optional<std::set<std::string>> locals,
                                       const ScriptNames& names) {
    return Checker(source, std::move(locals), names).run(text);
}

} // namespace quillon
