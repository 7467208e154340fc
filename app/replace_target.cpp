#include "app/replace_target.h"

#include "app/session.h"

namespace quillon {

std::optional<ReadOnlyTarget> replaceableTarget(Session& session, Dialogs& dialogs, const std::string& path) {
    if (!isReadOnlyFile(path)) return ReadOnlyTarget::Refuse;
    if (session.given.replaceReadOnly)
        return *session.given.replaceReadOnly ? std::optional(ReadOnlyTarget::Replace) : std::nullopt;
    Answer answer = dialogs.ask({QuestionId::ReplaceReadOnly, path},
                                "\"" + bareName(path) + "\" is read-only. Replace it all the same?",
                                Buttons::YesNoDefaultNo, Icon::Warning, "");
    if (answer != Answer::Yes) return std::nullopt;
    return ReadOnlyTarget::Replace;
}

} // namespace quillon
