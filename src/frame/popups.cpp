#include "frame/popups.h"

#include <algorithm>

#include "core/settings_keys.h"
#include "core/text.h"
#include "frame/course_amounts.h"
#include "platform/settings_store.h"

namespace tilika::frame {

std::vector<MenuItem> parseMenuItems(std::string_view items) {
    std::vector<MenuItem> result;
    if (items.empty()) {
        return result;
    }
    for (const auto& item : core::split(items, "<tr>")) {
        const auto cut = item.find("<td>");
        if (cut == std::string::npos) {
            result.push_back({item, {}});
        } else {
            result.push_back({item.substr(0, cut), item.substr(cut + 4)});
        }
    }
    return result;
}

int menuRows(std::size_t count) {
    if (count <= 3) {
        return 1;
    }
    return count <= 6 ? 2 : 3;
}

WheelPicker::WheelPicker(int kind, std::string_view old) : kind_(kind) {
    const auto picker = static_cast<Picker>(kind);
    for (int component = 0; component < 2; ++component) {
        rows_[component] = pickerRows(picker, component);
    }
    const auto cut = old.find("<td>");
    if (cut != std::string_view::npos) {
        const std::string_view parts[2] = {old.substr(0, cut), old.substr(cut + 4)};
        for (int component = 0; component < 2; ++component) {
            const auto& wheel = rows_[component];
            const auto at = std::find(wheel.begin(), wheel.end(), parts[component]);
            if (at != wheel.end()) {
                selected_[component] = static_cast<int>(at - wheel.begin());
            }
        }
    }
    select(1, selected_[1]);
}

const std::vector<std::string>& WheelPicker::rows(int component) const {
    return rows_[std::clamp(component, 0, 1)];
}

int WheelPicker::selected(int component) const {
    return selected_[std::clamp(component, 0, 1)];
}

bool WheelPicker::select(int component, int row) {
    component = std::clamp(component, 0, 1);
    const int count = static_cast<int>(rows_[component].size());
    selected_[component] = count == 0 ? 0 : std::clamp(row, 0, count - 1);
    if (kind_ != popupkind::length) {
        return false;
    }
    const int corrected = correctLengthRow(selected_[0], selected_[1]);
    const bool moved = corrected != selected_[0];
    selected_[0] = corrected;
    return moved;
}

std::string WheelPicker::value() const {
    auto chosen = [this](int component) {
        const auto& wheel = rows_[component];
        return wheel.empty() ? std::string()
                             : wheel[static_cast<std::size_t>(selected_[component])];
    };
    return chosen(0) + "<td>" + chosen(1);
}

int listStartRow(const std::vector<ListEntry>& data, std::string_view oldValue) {
    for (std::size_t i = 0; i < data.size(); ++i) {
        if (data[i].value == oldValue) {
            return static_cast<int>(i);
        }
    }
    return 0;
}

std::string listResult(int row) {
    return std::to_string(row);
}

FirstStartPage firstStartPage(bool newversion) {
    FirstStartPage page;
    page.name = "Тилика";
    page.start = "Начать работу";
    if (newversion) {
        // The Latin "a" in the last text has always stood there.
        page.texts = {
            "Добро пожаловать в новую версию программы",
            "Более подробно о новшествах в программе Вы можете ознакомиться здесь",
            "Если у Вас возникнут сложности или вопросы по программе, к вашимa услугам раздел "
            "Поддержка на главном экране программе.",
        };
        page.buttons = {{"Что нового?", 1}};
    } else {
        page.texts = {
            "Добро пожаловать в программу",
            "Более подробно с возможностями программы Вы можете ознакомиться здесь",
            "Если Вы первый раз установили программу, то перейдите в настройки учетной записи "
            "ребенка, если Вы уже пользовались программой, то в настройках Облака установите "
            "режим Получателя для загрузки старых данных.",
        };
        page.buttons = {{"Описание программы", 2}, {"Настройки", 3}, {"Облако", 4}};
    }
    return page;
}

bool firstStartDue(const platform::SettingsStore& settings, std::string_view versionKey) {
    return settings.helpCheck(core::keys::versionGreeted(versionKey));
}

void firstStartDone(platform::SettingsStore& settings, std::string_view versionKey) {
    settings.setBool(core::keys::versionGreeted(versionKey), true);
    settings.setBool(core::keys::firstStart, false);
    settings.setInt(core::keys::becomeActive, 0);
    settings.setBool(core::keys::rating, false);
    settings.synchronize();
}

}  // namespace tilika::frame
