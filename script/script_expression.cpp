#include "script/script_expression.h"

namespace quillon {

namespace {

bool isSymbol(const ScriptToken& t, std::string_view text) {
    return t.kind == ScriptToken::Symbol && t.text == text;
}

bool isBinaryOperator(const ScriptToken& t) {
    static constexpr std::string_view kOperators[] = {"+", "-", "*", "/", "==", "!=", "<", "<=", ">", ">="};
    if (t.kind != ScriptToken::Symbol) return false;
    for (std::string_view op : kOperators)
        if (t.text == op) return true;
    return false;
}

std::string quoted(const ScriptToken& t) {
    return "\"" + std::string(t.text) + "\"";
}

class ExpressionReader {
public:
    ExpressionReader(std::span<const ScriptToken> tokens, ExpressionHost& host)
        : tokens_(tokens), host_(host) {}

    void read() {
        if (tokens_.empty()) return fail("the condition is empty");
        expression();
        if (done_ || at_ == tokens_.size()) return;
        const ScriptToken& t = tokens_[at_];
        fail(isSymbol(t, ")") ? "\")\" closes no \"(\"" : "an operator is missing before " + quoted(t));
    }

private:
    // Operands joined by operators; precedence does not change what is a fault.
    void expression() {
        operand();
        while (!done_ && at_ < tokens_.size() && isBinaryOperator(tokens_[at_])) {
            ++at_;
            if (at_ == tokens_.size()) return fail("an operand is missing after " + quoted(tokens_[at_ - 1]));
            operand();
        }
    }

    void operand() {
        if (done_) return;
        if (at_ == tokens_.size()) return fail("an operand is missing");
        // Parentheses and signs nest by recursion: a hostile line of a million "(" must end in a
        // finding, not in the end of the stack.
        if (depth_ == kDeepest)
            return fail("the expression nests more than " + std::to_string(kDeepest) + " deep");
        ++depth_;
        nestedOperand();
        --depth_;
    }

    void nestedOperand() {
        const ScriptToken& t = tokens_[at_];
        if (isSymbol(t, "-")) {
            ++at_;
            return at_ == tokens_.size() ? fail("an operand is missing after \"-\"") : operand();
        }
        if (isSymbol(t, "(")) {
            ++at_;
            if (at_ < tokens_.size() && isSymbol(tokens_[at_], ")")) return fail("\"( )\" holds nothing");
            expression();
            if (done_) return;
            if (at_ == tokens_.size()) return fail("\"(\" is not closed by \")\"");
            if (!isSymbol(tokens_[at_], ")"))
                return fail("an operator is missing before " + quoted(tokens_[at_]));
            ++at_;
            return;
        }
        if (t.kind == ScriptToken::Number) {
            ++at_;
            return;
        }
        if (t.kind == ScriptToken::Symbol) return fail("an operand is missing before " + quoted(t));
        bool referenced = at_ + 1 < tokens_.size() && isSymbol(tokens_[at_ + 1], "->");
        if (referenced) {
            at_ += 2;
            if (at_ == tokens_.size() || tokens_[at_].kind != ScriptToken::Name)
                return fail("a function is missing after \"->\"");
            return function(tokens_[at_]);
        }
        if (t.kind == ScriptToken::Text)
            return fail("the text " + quoted(t) + " stands where a number belongs");
        if (host_.isVariable(t.text)) {
            ++at_;
            return;
        }
        function(t);
    }

    bool startsOperand(std::size_t at) const {
        return at < tokens_.size() && (tokens_[at].kind != ScriptToken::Symbol ||
                                       isSymbol(tokens_[at], "(") || isSymbol(tokens_[at], "-"));
    }

    // A name at at_ that is no variable: a call of a function with its arguments, or a name only
    // the load order can judge.
    void function(const ScriptToken& name) {
        const ScriptFunction* f = findFunction(name.text);
        ++at_;
        if (!f) {
            if (isExtenderFunction(name.text)) {
                host_.extender(name.text);
                done_ = true;
            } else if (startsOperand(at_) && tokens_[at_].kind != ScriptToken::Symbol) {
                // Followed by an argument, it can only be meant as a function.
                fail(quoted(name) + " is neither a function nor a keyword of the game");
            } else {
                host_.value(name.text);
            }
            return;
        }
        std::vector<ScriptToken> arguments;
        bool optional = false;
        for (char kind : f->arguments) {
            if (kind == '/') {
                optional = true;
                continue;
            }
            bool word = at_ < tokens_.size() && tokens_[at_].kind != ScriptToken::Symbol &&
                        tokens_[at_].kind != ScriptToken::Number;
            if (kind == '?') {
                if (at_ < tokens_.size() && tokens_[at_].kind == ScriptToken::Text) ++at_;
            } else if (kind == 'n') {
                if (!startsOperand(at_) || (optional && tokens_[at_].kind != ScriptToken::Number)) {
                    if (!optional) return missingArgument(name, *f, arguments.size());
                    break;
                }
                arguments.push_back(tokens_[at_]);
                std::size_t before = at_;
                operand();
                if (done_) return;
                if (at_ != before + 1) arguments.back() = {ScriptToken::Symbol, "("}; // an expression
            } else if (word) {
                arguments.push_back(tokens_[at_++]);
            } else if (!optional) {
                return missingArgument(name, *f, arguments.size());
            } else {
                break;
            }
        }
        host_.call(*f, name.text, arguments);
    }

    void missingArgument(const ScriptToken& name, const ScriptFunction& f, std::size_t given) {
        std::size_t required = f.required();
        fail(std::string(name.text) + " takes " + std::to_string(required) + " argument" +
             (required == 1 ? "" : "s") + ", " + std::to_string(given) + " given");
    }

    void fail(std::string reason) {
        if (done_) return;
        done_ = true;
        host_.problem(std::move(reason));
    }

    static constexpr std::size_t kDeepest = 256;

    std::span<const ScriptToken> tokens_;
    ExpressionHost& host_;
    std::size_t at_ = 0, depth_ = 0;
    bool done_ = false;
};

} // namespace

void checkExpression(std::span<const ScriptToken> tokens, ExpressionHost& host) {
    ExpressionReader(tokens, host).read();
}

} // namespace quillon
