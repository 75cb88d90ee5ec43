#pragma once

#include "base/dates.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Controls as plain records: what a form shows and what a person typed. A view copies input into
// the record, calls the control's handler, and shows the record again. Writing a field runs no
// handler. All records belong to the thread of the user interface.
namespace vardelin::state {

struct Button {
    std::string caption{};
    bool enabled = true;
    bool visible = true;
};

struct CheckBox {
    int value = 0; // 0 or 1
    bool enabled = true;
    bool visible = true;
};

// One button of a group. The group's rule, that one at most is on, is kept by whoever writes it.
struct OptionButton {
    bool value = false;
    bool enabled = true;
    bool visible = true;
};

struct TextBox {
    std::string text{};
    bool enabled = true;
    bool locked = false; // shown as usual, takes no typing
    bool visible = true;
    int maxLength = 0; // in bytes; 0 for no limit
};

struct ComboBox {
    std::string text{};
    std::vector<std::string> items;
    bool enabled = true;
    bool visible = true;
};

struct ListRow {
    std::string text{};
    std::string sub; // second column, empty where the list has one column
    std::string third;
    std::string icon; // name in the desktop's theme, may be empty
    bool checked = false;
    bool selected = false;
};

// A list with one to three columns. Multi-select lists use `selected`, lists with boxes `checked`.
struct ListBox {
    std::vector<ListRow> rows;
    bool enabled = true;
    bool visible = true;

    void clear() { rows.clear(); }
    ListRow& addItem(std::string_view text)
    {
        rows.emplace_back().text = text;
        return rows.back();
    }
};

// Both pickers hold a whole date and time; the person sees and edits one half of it.
struct DatePicker {
    base::DateTime value;
    bool enabled = true;
};

struct TimePicker {
    base::DateTime value;
    bool enabled = true;
};

struct Frame {
    bool enabled = true;
    bool visible = true;
};

struct Label {
    std::string caption{};
    bool enabled = true;
    bool visible = true;
};

struct ProgressBar {
    double value = 0;
    double maximum = 100;
};

struct StatusPanel {
    std::string text{};
};

} // namespace vardelin::state
