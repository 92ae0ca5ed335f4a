#include "session/menu_blocks.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "core/app_state.h"
#include "core/context.h"
#include "core/dates.h"
#include "core/settings_keys.h"
#include "diary/profiles.h"
#include "frame/navigation.h"
#include "platform/settings_store.h"

namespace tilika::session {

std::vector<ChildBlock> childBlocks(core::Context& context) {
    const core::AppState& state = context.state;
    const core::Dates& dates = context.dates;
    const diary::Profiles profiles(context);
    const core::Date today = dates.now();
    const std::string themePrefix = state.lightTheme ? "b-" : "";

    std::vector<ChildBlock> blocks;
    for (const diary::ProfileRow& profile : profiles.loadProfils()) {
        ChildBlock block;
        block.guid = profile.childguid;
        std::error_code error;
        if (const auto photo = profiles.portraitPath(profile.childguid);
            !photo.empty() && std::filesystem::is_regular_file(photo, error)) {
            block.photo = photo;
        }
        block.placeholder = "ti-child.png";
        block.sexPicture = themePrefix + (profile.sex == 1 ? "w-pic.png" : "b-pic.png");
        block.name = diary::shownChildName(profile.childname);
        if (profile.sbirthdate) {
            block.birth = dates.dateToString(*profile.sbirthdate, "dd.MM.yyyy");
            block.age = dates.monthAge(*profile.sbirthdate, today, true, false);
        } else {
            block.birth = "не указано";
        }
        block.dayPicture = themePrefix + "m-day.png";
        block.rows = childRows(state.menuItems, profile.childguid);
        blocks.push_back(std::move(block));
    }
    return blocks;
}

std::vector<core::MenuRow> childRows(const std::vector<core::MenuRow>& table,
                                     const std::string& gid) {
    std::vector<core::MenuRow> rows;
    for (const core::MenuRow& row : table) {
        if (row.gid == core::kMenuLocal &&
            (row.tp == core::menukind::page || row.tp == core::menukind::action)) {
            rows.push_back(row);
            rows.back().gid = gid;
        }
    }
    return rows;
}

std::vector<core::MenuRow> commonRows(const std::vector<core::MenuRow>& table) {
    std::vector<core::MenuRow> rows;
    std::copy_if(table.begin(), table.end(), std::back_inserter(rows),
                 [](const core::MenuRow& row) { return row.gid == core::kMenuMain; });
    return rows;
}

namespace {

constexpr int kMostCounted = 99;

int nb99(long long count) {
    return static_cast<int>(std::clamp<long long>(count, 0, kMostCounted));
}

// A count as the server's replies leave it: a number, or a number as text.
long long countOf(const nlohmann::json& value) {
    if (value.is_number_integer()) {
        return value.get<long long>();
    }
    if (value.is_string()) {
        const std::string& text = value.get_ref<const std::string&>();
        long long count = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
        return error == std::errc() ? count : 0;
    }
    return 0;
}

}  // namespace

int menuCounter(const platform::SettingsStore& settings, const core::AppState& state, int rowId) {
    switch (rowId) {
        case 32: {
            const auto unread = settings.value(core::keys::chatmessages);
            if (!state.chatIndi || !unread || !unread->is_array()) {
                return 0;
            }
            long long sum = 0;
            for (const nlohmann::json& entry : *unread) {
                if (entry.is_object() && entry.contains("count")) {
                    sum += std::max(0LL, countOf(entry["count"]));
                }
            }
            return nb99(sum);
        }
        case 34:
            return nb99(state.newscount);
        case 45:
            return nb99(settings.contains(core::keys::oproscount)
                            ? settings.intValue(core::keys::oproscount)
                            : 0);
        default:
            return 0;
    }
}

int blockHeight(bool open, std::size_t rowCount) {
    return open ? kOpenBlockHeight + kMenuRowHeight * static_cast<int>(rowCount)
                : kClosedBlockHeight;
}

int pagePosition(const std::vector<core::MenuRow>& table, int id) {
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (table[i].tp == core::menukind::page && table[i].id == id) {
            return static_cast<int>(i) + 1;
        }
    }
    return 0;
}

int pageIdAt(const std::vector<core::MenuRow>& table, int position) {
    if (position < 1 || position > static_cast<int>(table.size())) {
        return 0;
    }
    const core::MenuRow& row = table[static_cast<std::size_t>(position - 1)];
    return row.tp == core::menukind::page ? row.id : 0;
}

MenuCommand menuCommand(int id) {
    if (id <= 0) {
        return MenuCommand::none;
    }
    if (id < 20) {
        return MenuCommand::openPage;
    }
    if (frame::menuSettingKey(id)) {
        return MenuCommand::setting;
    }
    switch (id) {
        case 22:
            return MenuCommand::childSettings;
        case 31:
            return MenuCommand::addChild;
        case 37:
            return MenuCommand::rateProgram;
        case 42:
            return MenuCommand::background;
        case 43:
            return MenuCommand::restore;
        default:
            // The reports, the photo book and the online services.
            return MenuCommand::coming;
    }
}

SwitchEffect switchEffect(int id, bool on) {
    constexpr int kPasswordRow = 52;
    constexpr int kTiltRow = 53;
    constexpr int kPillsAlarmRow = 54;
    constexpr int kChatCountRow = 55;
    switch (id) {
        case kPasswordRow:
            return on ? SwitchEffect::setPassword : SwitchEffect::dropPassword;
        case kTiltRow:
            return SwitchEffect::tilt;
        case kPillsAlarmRow:
            return SwitchEffect::rebuildReminders;
        case kChatCountRow:
            return SwitchEffect::redrawMenuCounts;
        default:
            return SwitchEffect::none;
    }
}

}  // namespace tilika::session
