#pragma once
#include <string>
#include <utility>

namespace quillon {

// How a command ended, so that a front end need not read the log to tell.
class Outcome {
public:
    enum Kind { Done, Declined, Failed };

    static Outcome done() { return Outcome(Done, {}); }
    // The user chose to stop (a cancelled dialog, a No), or there was nothing to do.
    static Outcome declined(std::string reason) { return Outcome(Declined, std::move(reason)); }
    static Outcome failed(std::string reason) { return Outcome(Failed, std::move(reason)); }

    Kind kind() const { return kind_; }
    bool isDone() const { return kind_ == Done; }
    bool isDeclined() const { return kind_ == Declined; }
    bool isFailed() const { return kind_ == Failed; }
    // True unless the command failed.
    explicit operator bool() const { return kind_ != Failed; }
    const std::string& reason() const { return reason_; }

private:
    Outcome(Kind kind, std::string reason) : kind_(kind), reason_(std::move(reason)) {}
    Kind kind_;
    std::string reason_;
};

} // namespace quillon
