#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tilika::platform {
class SettingsStore;
}

namespace tilika::frame {

// Kinds of popup, each with the form of the result its caller receives.
namespace popupkind {
inline constexpr int date = 1;      // the picked moment
inline constexpr int time = 2;      // the picked moment
inline constexpr int dateTime = 3;  // the picked moment
inline constexpr int length = 4;    // "%@<td>%@": a course's length
inline constexpr int doza = 5;      // "%@<td>%@": a dose
inline constexpr int inter = 6;     // "%@<td>%@": how often
inline constexpr int menu = 7;      // the chosen caption
inline constexpr int tooltip = 8;   // nothing
inline constexpr int list = 9;      // "%d": the chosen row
}  // namespace popupkind

// Tags of the panels, for screens that look for them.
inline constexpr int kDimLayerTag = -98;
inline constexpr int kPopupPanelTag = -99;
inline constexpr int kFirstStartTag = -88;
inline constexpr int kHelpButtonTag = -8000;
inline constexpr int kAskTextFieldTag = 201;

// One item of a grid menu: "Удалить<td>pm-clear.png".
struct MenuItem {
    std::string caption;
    std::string picture;  // empty: a caption alone
};
inline constexpr int kMenuColumns = 3;
// Items are cut by "<tr>", an item into its caption and picture by "<td>".
std::vector<MenuItem> parseMenuItems(std::string_view items);
// How many rows of the grid the panel is high: 1 up to three items, 2 up to
// six, 3 from seven on (more scroll).
int menuRows(std::size_t count);

// The two wheels of a course picker. The length picker corrects itself: a
// course is at most 12 weeks or 3 months long.
class WheelPicker {
public:
    // The wheels start at the rows of the old value ("2<td>недели"), or at
    // the top.
    WheelPicker(int kind, std::string_view old);

    int kind() const { return kind_; }
    const std::vector<std::string>& rows(int component) const;
    int selected(int component) const;
    // Turns a wheel; true when the other wheel was corrected as well.
    bool select(int component, int row);
    // The two chosen texts, "%@<td>%@".
    std::string value() const;

private:
    int kind_;
    std::vector<std::string> rows_[2];
    int selected_[2] = {0, 0};
};

// One row of a list popup.
struct ListEntry {
    std::string caption;
    std::string value;
};
// The row whose value is the old one, or the first.
int listStartRow(const std::vector<ListEntry>& data, std::string_view oldValue);
std::string listResult(int row);

// The welcome page, either of a first start or of a new version.
struct FirstStartButton {
    std::string caption;
    int tag;
};
struct FirstStartPage {
    std::string name;
    std::vector<std::string> texts;
    std::vector<FirstStartButton> buttons;
    std::string start;  // the button that closes the page
};
FirstStartPage firstStartPage(bool newversion);
// Whether this version has yet to greet the user.
bool firstStartDue(const platform::SettingsStore& settings, std::string_view versionKey);
// Closes the version's key and starts the counts of a new version afresh.
void firstStartDone(platform::SettingsStore& settings, std::string_view versionKey);

}  // namespace tilika::frame
