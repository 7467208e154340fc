#pragma once
#include "app/finding.h"

#include <QDialog>

#include <functional>
#include <string>
#include <vector>

class QComboBox;
class QLabel;
class QPlainTextEdit;
class QTableWidget;

namespace quillon {

// The findings of the dialogue check in a table that can be narrowed to one kind. A style
// finding shows its text before and after the clean-up; double-clicking a response edits it.
class FrmCheck : public QDialog {
    Q_OBJECT
public:
    FrmCheck(const std::vector<Finding>& findings, std::function<std::string(std::size_t)> edit,
             QWidget* parent = nullptr);

private:
    void filter();
    void showSelected();
    void editRow(int row);

    const std::vector<Finding>& findings_;
    std::function<std::string(std::size_t)> edit_;
    QComboBox* cboKind;
    QTableWidget* grdFindings;
    QPlainTextEdit* txtBefore;
    QPlainTextEdit* txtAfter;
    QLabel* lblCount;
};

} // namespace quillon
