#include "app/damage_report.h"

#include "writer/byte_sink.h"

namespace quillon {

std::string describeDamage(const DamagedRecord& record) {
    std::string line = record.tag;
    if (!record.id.empty()) line += " \"" + record.id + "\"";
    return line + ", read at byte " + groupedNumber(record.offset) + ": " + record.cause;
}

std::string damageList(const DamageReport& report, std::size_t limit) {
    std::string text;
    std::size_t shown = 0;
    for (const DamagedRecord& record : report.records) {
        if (shown == limit) break;
        text += describeDamage(record) + "\n";
        ++shown;
    }
    if (report.records.size() > shown)
        text += "... and " + groupedNumber(std::int64_t(report.records.size() - shown)) + " more.\n";
    return text;
}

std::string damageQuestion(const DamageReport& report) {
    std::size_t n = report.records.size();
    std::string text =
        groupedNumber(std::int64_t(n)) + (n == 1 ? " record" : " records") + " of \"" + report.file +
        "\" would be written damaged: their bytes disagree with their sizes, so the game would misread "
        "them and what follows.\n\n" +
        damageList(report, 10) + "\n";
    if (report.repairable)
        text += "Repair writes them so that the file reads back whole (their sizes follow what is written; "
                "records of unknown type keep their data). ";
    return text + "Write As Is writes them as the format's rules give them. Cancel writes nothing.";
}

} // namespace quillon
