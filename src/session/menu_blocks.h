#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "core/menu_rows.h"

namespace tilika::core {
struct AppState;
struct Context;
}  // namespace tilika::core
namespace tilika::platform {
class SettingsStore;
}

// What the main menu shows, apart from the drawing: a block for each child
// with that child's rows, the rows everybody shares, and what a tap on a row
// does.
namespace tilika::session {

// One child as the menu shows it.
struct ChildBlock {
    std::string guid;
    // The child's photo when there is one, else empty and `placeholder` is
    // drawn instead.
    std::filesystem::path photo;
    std::string placeholder;
    std::string sexPicture;  // the boy's or the girl's sign
    std::string name;        // "Без имени" for a name too short to be one
    std::string birth;       // "dd.MM.yyyy" or "не указано"
    std::string age;         // empty without a birth date
    std::string dayPicture;  // the sign beside the age
    // The page and action rows, each carrying this child's guid.
    std::vector<core::MenuRow> rows;
};

// A block for every child on the device, in order of birth, with its rows
// taken from the table of the state and its pictures for the state's theme.
std::vector<ChildBlock> childBlocks(core::Context& context);

// The page and action rows of the table, copied for one child.
std::vector<core::MenuRow> childRows(const std::vector<core::MenuRow>& table,
                                     const std::string& gid);
// The rows drawn once, below the children.
std::vector<core::MenuRow> commonRows(const std::vector<core::MenuRow>& table);

// The count on a shared row's badge, at most 99; 0 for none. The knowledge
// base counts the chat messages not yet read (unless that count is turned
// off), Support the news, and Polls the polls not yet answered.
int menuCounter(const platform::SettingsStore& settings, const core::AppState& state, int rowId);

// A closed block is a fixed height; an open one grows by a row's height for
// each of its rows.
inline constexpr int kClosedBlockHeight = 300;
inline constexpr int kOpenBlockHeight = 310;
inline constexpr int kMenuRowHeight = 40;
int blockHeight(bool open, std::size_t rowCount);

// The position (from 1) of the page row with this id in the table, 0 when
// there is none; and the id of the page row at a position, 0 when that row
// is not a page.
int pagePosition(const std::vector<core::MenuRow>& table, int id);
int pageIdAt(const std::vector<core::MenuRow>& table, int position);

// What a tap on a menu row does.
enum class MenuCommand {
    none,           // the version line
    openPage,       // the child's page of the row's id
    childSettings,  // the child's profile form
    addChild,       // the profile form for a new child
    background,     // the background chooser
    restore,        // the restore of the diary from a daily copy
    rateProgram,    // the program's page in the store
    setting,        // a switch of the settings
    coming,         // a section this program doesn't have yet
};
MenuCommand menuCommand(int id);

// What turning a switch of the menu brings with it, besides its setting.
enum class SwitchEffect {
    none,
    // The password: going on, the keypad asks for a new code twice, and the
    // switch follows what came of it; going off forgets the code.
    setPassword,
    dropPassword,
    tilt,              // the tilt sensor starts or stops
    redrawMenuCounts,  // the counts of unread messages show or hide
    rebuildReminders,  // the medicines' reminders come or go
};
SwitchEffect switchEffect(int id, bool on);

}  // namespace tilika::session
