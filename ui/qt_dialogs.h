#pragma once
#include "app/dialogs.h"

#include <QString>

#include <functional>

class QWidget;

namespace quillon {

class SpellChecker;

// "desc|pattern;pattern|desc|pattern..." as Qt's "desc (pattern pattern)" filters; each pattern
// also in lower case, since the file systems here tell letter case apart.
QStringList toQtFilters(const std::string& filter);

// Every question and form of the commands as real Qt dialogs over the main window.
class QtDialogs : public Dialogs {
public:
    QtDialogs(QWidget* owner, std::function<void()> repaintLog)
        : owner_(owner), repaintLog_(std::move(repaintLog)) {}

    void tell(const std::string& text, Icon icon) override { message(text, Buttons::Ok, icon, ""); }
    // The window shows every question to the user, whatever it asks.
    Answer ask(const Question&, const std::string& text, Buttons buttons, Icon icon,
               const std::string& title) override {
        return message(text, buttons, icon, title);
    }
    std::string input(const Question& what, const std::string& prompt, const std::string& title,
                      const std::string& defaultText) override;
    std::string openFile(const FileRequest& request) override;
    std::string saveFile(const FileRequest& request) override;
    std::string editResponse(const std::string& actor, const std::string& topic,
                             const std::string& text) override;
    LoopFix fixLoop(const std::string& actor, const std::string& topic, const std::string& text,
                    const std::string& result, std::int32_t choice) override;
    void editOptions(CleanupSettings& settings) override;
    DamageChoice damagedOutput(const DamageReport& report) override;
    void showFindings(const std::vector<Finding>& findings,
                      const std::function<std::string(std::size_t)>& edit) override;
    void about() override;
    void refreshLog() override { repaintLog_(); }
    // Where the response editor gets its spell checker (null: none).
    void setSpelling(std::function<SpellChecker*()> spelling) { spelling_ = std::move(spelling); }

private:
    Answer message(const std::string& text, Buttons buttons, Icon icon, const std::string& title);
    std::string chooseFile(const FileRequest& request, bool save);

    QWidget* owner_;
    std::function<SpellChecker*()> spelling_;
    std::function<void()> repaintLog_;
};

} // namespace quillon
