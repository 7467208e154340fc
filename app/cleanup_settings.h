#pragma once

namespace quillon {

// The ten switches of the clean-up command, held for the session only; all start off.
struct CleanupSettings {
    bool isLineBreaks = false;
    bool isAmerican = false;
    bool isSentences = false;
    bool isSpaceQuotes = false;
    bool isSlang = false;
    bool isTemple = false;
    bool isDashes = false;
    bool isEllipsis = false;
    bool isSquare = false;
    bool isDashSpaces = false;
};

} // namespace quillon
