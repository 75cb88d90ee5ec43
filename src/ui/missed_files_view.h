#pragma once

#include <string_view>

#include <QDialog>
#include <QString>

namespace vardelin::ui {

// The report of a run's missed files, in a window of its own that leaves the others usable: paths
// and reasons. Copying takes the selected lines as they stand in the report.
class MissedFilesView final : public QDialog {
    Q_OBJECT

public:
    // `report` has a line a file, path and reason with a tab between; the last line may end or not.
    MissedFilesView(const QString& title, std::string_view report, QWidget* parent = nullptr);
};

} // namespace vardelin::ui
