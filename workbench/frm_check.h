#pragma once
#include "app/finding.h"

#include <QDialog>

#include <functional>
#include <string>
#include <vector>

class QComboBox;
class QLabel;
class QPushButton;
class QPlainTextEdit;
class QTableWidget;

namespace quillon {

// The findings of the dialogue check in a table that can be narrowed to one kind. A style
// finding shows its text before and after the clean-up; double-clicking a response edits it; a
// spelling finding's word can be added to the writer's own words (addWord returns what went
// wrong, or nothing), which takes every finding of that word away.
class FrmCheck : public QDialog {
    Q_OBJECT
public:
    FrmCheck(const std::vector<Finding>& findings, std::function<std::string(std::size_t)> edit,
             std::function<std::string(const std::string&)> addWord = {}, QWidget* parent = nullptr);

private:
    void filter();
    void showSelected();
    void editRow(int row);
    void addWord();

    const std::vector<Finding>& findings_;
    std::function<std::string(std::size_t)> edit_;
    std::function<std::string(const std::string&)> addWord_;
    std::vector<bool> added_; // per row: its word was added to the writer's own
    QComboBox* cboKind;
    QTableWidget* grdFindings;
    QPlainTextEdit* txtBefore;
    QPlainTextEdit* txtAfter;
    QLabel* lblCount;
    QPushButton* cmdAddWord;
};

} // namespace quillon
