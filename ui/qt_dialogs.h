#pragma once
#include "app/dialogs.h"

#include <QString>

#include <functional>

class QWidget;

namespace quillon {

// "desc|pattern;pattern|desc|pattern..." as Qt's "desc (pattern pattern)" filters; each pattern
// also in lower case, since the file systems here tell letter case apart.
QStringList toQtFilters(const std::string& filter);

// Every question and form of the commands as real Qt dialogs over the main window.
class QtDialogs : public Dialogs {
public:
    QtDialogs(QWidget* owner, std::function<void()> repaintLog) : owner_(owner), repaintLog_(std::move(repaintLog)) {}

    Answer message(const std::string& text, Buttons buttons, Icon icon, const std::string& title) override;
    std::string input(const std::string& prompt, const std::string& title, const std::string& defaultText) override;
    std::string openFile(const FileRequest& request) override;
    std::string saveFile(const FileRequest& request) override;
    std::string editResponse(const std::string& actor, const std::string& topic, const std::string& text) override;
    LoopFix fixLoop(const std::string& actor, const std::string& topic, const std::string& text,
                    const std::string& result, std::int32_t choice) override;
    void editOptions(CleanupSettings& settings) override;
    DamageChoice damagedOutput(const DamageReport& report) override;
    void about() override;
    void refreshLog() override { repaintLog_(); }

private:
    std::string chooseFile(const FileRequest& request, bool save);

    QWidget* owner_;
    std::function<void()> repaintLog_;
};

} // namespace quillon
