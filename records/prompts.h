#pragma once
#include <string>

namespace quillon {

enum class Reply { Ok, Yes, No, Cancel };

// The questions and messages that reading and writing raise, answered by whichever front end runs
// them. Boxes carry no icon and the application's own title.
class Prompts {
public:
    virtual ~Prompts() = default;
    // A message with one OK button.
    virtual void tell(const std::string& text) = 0;
    // A question with Yes and No, and Cancel when asked for.
    virtual Reply ask(const std::string& text, bool withCancel) = 0;
};

} // namespace quillon
