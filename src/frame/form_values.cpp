#include "frame/form_values.h"

#include <algorithm>

#include "core/text.h"
#include "frame/course_amounts.h"
#include "frame/form_kinds.h"
#include "frame/list_choices.h"
#include "platform/image_codec.h"

namespace tilika::frame {

namespace {

// "HH:mm" as its two numbers; a missing part reads as 0.
std::pair<long long, long long> hoursAndMinutes(std::string_view text) {
    const auto colon = text.find(':');
    if (colon == std::string_view::npos) {
        return {0, core::intValue(text)};
    }
    return {core::intValue(text.substr(0, colon)), core::intValue(text.substr(colon + 1))};
}

std::string lastTwo(long long value) {
    return inMask(std::to_string(value), "00");
}

}  // namespace

std::string mtt(std::optional<long long> minutes) {
    if (!minutes) {
        return "00:00";
    }
    return lastTwo(*minutes / 60) + ":" + lastTwo(*minutes % 60);
}

long long ttm(std::string_view text) {
    if (text.find(':') == std::string_view::npos) {
        return core::intValue(text);
    }
    const auto [hours, minutes] = hoursAndMinutes(text);
    return hours * 60 + minutes;
}

std::string inMask(std::string_view text, std::string_view mask) {
    std::string padded = std::string(mask) + std::string(text);
    return padded.substr(padded.size() - mask.size());
}

std::optional<std::string> countInterval(std::string_view start,
                                         std::optional<std::string_view> end,
                                         std::optional<std::string_view> interval) {
    if (end.has_value() == interval.has_value()) {
        return std::nullopt;
    }
    const auto [startHours, startMinutes] = hoursAndMinutes(start);
    long long hours = 0;
    long long minutes = 0;
    if (end) {
        const auto [endHours, endMinutes] = hoursAndMinutes(*end);
        minutes = endMinutes - startMinutes;
        hours = endHours - startHours - (minutes < 0 ? 1 : 0);
        if (minutes < 0) {
            minutes += 60;
        }
        if (hours < 0) {
            hours += 24;
        }
    } else {
        const auto [spanHours, spanMinutes] = hoursAndMinutes(*interval);
        minutes = startMinutes + spanMinutes;
        hours = startHours + spanHours;
        if (minutes > 60) {
            minutes -= 60;
            ++hours;
        }
        if (hours >= 24) {
            hours -= 24;
        }
    }
    return lastTwo(hours) + ":" + lastTwo(minutes);
}

std::string sliderSource(double position, std::string_view scaletype) {
    if (!(position > 0)) {
        return {};
    }
    return core::formatFixed(position, scaletype == "3" ? 3 : 1);
}

void checkTableItem(FormRow& row, std::size_t item) {
    if (item >= row.list.size()) {
        return;
    }
    const bool wasChecked = row.list[item].checked;
    if (row.listtype == 1) {
        for (auto& entry : row.list) {
            entry.checked = false;
        }
    }
    row.list[item].checked = !wasChecked;
    row.source = checkedIndices(row.list);
}

std::string checkedIndices(const std::vector<ListRow>& list) {
    std::vector<std::string> checked;
    for (const auto& entry : list) {
        if (entry.checked) {
            checked.push_back(entry.index);
        }
    }
    return core::join(checked, "<tr>");
}

std::vector<bool> teethMarks(std::string_view tooth) {
    std::vector<bool> marks(20, false);
    if (tooth.empty()) {
        return marks;
    }
    for (const auto& number : core::split(tooth, "<tr>")) {
        const int n = core::intValue(number);
        if (n >= 1 && n <= 20) {
            marks[static_cast<std::size_t>(n - 1)] = true;
        }
    }
    return marks;
}

std::vector<bool> teethMarks(std::string_view tooth, std::string_view changes) {
    auto marks = teethMarks(tooth);
    if (changes.empty()) {
        return marks;
    }
    for (const auto& change : core::split(changes, "<tr>")) {
        const int n = core::intValue(change);
        if (n >= 1 && n <= 20) {
            marks[static_cast<std::size_t>(n - 1)] = true;
        } else if (n >= 101 && n <= 120) {
            marks[static_cast<std::size_t>(n - 101)] = false;
        }
    }
    return marks;
}

std::string teethSource(std::string_view tooth, const std::vector<bool>& marks) {
    const auto before = teethMarks(tooth);
    std::vector<std::string> changes;
    for (std::size_t i = 0; i < before.size() && i < marks.size(); ++i) {
        if (marks[i] && !before[i]) {
            changes.push_back(std::to_string(i + 1));
        } else if (!marks[i] && before[i]) {
            changes.push_back(std::to_string(i + 101));
        }
    }
    return core::join(changes, "<tr>");
}

std::string shownValue(const FormRow& row, const std::vector<ListRow>& list) {
    switch (row.tp) {
        case formkind::listPick:
            return checkStringToRead(row.source, list);
        case formkind::dosePicker:
            return dozaToRead3(row.source);
        case formkind::oftenPicker:
            return periodToRead3(row.source);
        case formkind::lengthPicker:
            return intervalToRead3(row.source, false);
        case formkind::dateTime:
        case formkind::moment:
        case formkind::momentEntry:
            return row.source.empty() ? std::string("00:00") : row.source;
        default:
            return row.source;
    }
}

std::vector<std::string> timesOf(std::string_view source) {
    if (source.empty()) {
        source = kFallbackTimes;
    }
    return core::split(source, "<td>");
}

std::string replaceTime(std::string_view source, std::size_t position, std::string_view time) {
    auto times = timesOf(source);
    if (position < times.size()) {
        times[position] = time;
    }
    return core::join(times, "<td>");
}

std::string elapsedText(long long milliseconds) {
    const long long seconds = std::max(0LL, milliseconds) / 1000;
    return std::to_string(seconds / 3600) + ":" + lastTwo(seconds / 60 % 60) + ":" +
           lastTwo(seconds % 60);
}

std::optional<FieldError> checkField(const FormRows& rows) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto& row = rows[i];
        if (!row.required || !row.source.empty()) {
            continue;
        }
        std::string message = row.tp == formkind::list
                                  ? std::string("В списке не отмечен ни один пункт!")
                                  : "Поле '" + row.editcap + "' не заполнено!";
        return FieldError{i, std::move(message), "Ошибка"};
    }
    return std::nullopt;
}

std::size_t posByField(const FormRows& rows, std::string_view field) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (!field.empty() && rows[i].field == field) {
            return i + 1;
        }
    }
    return 0;
}

std::optional<std::string> fieldValue(const FormRows& rows, std::string_view field) {
    const std::size_t position = posByField(rows, field);
    if (position == 0) {
        return std::nullopt;
    }
    return rows[position - 1].source;
}

void fillSources(FormRows& rows, const std::map<std::string, std::string>& defaults) {
    for (auto& row : rows) {
        if (row.field.empty()) {
            continue;
        }
        if (const auto it = defaults.find(row.field); it != defaults.end()) {
            row.source = it->second;
        }
    }
    // The teeth known so far come with the defaults too.
    if (const auto it = defaults.find("oldtooth"); it != defaults.end()) {
        for (auto& row : rows) {
            if (row.tp == formkind::teeth) {
                row.tooth = it->second;
            }
        }
    }
}

bool removesRecord(const FormRow& row) {
    return row.tp == formkind::button && row.field == "remove";
}

bool hidesOk(const FormRows& rows) {
    return !rows.empty() && std::all_of(rows.begin(), rows.end(),
                                        [](const auto& row) { return row.tp == formkind::action; });
}

std::optional<std::size_t> autocalc(FormRows& rows, std::size_t changed) {
    auto find = [&rows](std::string_view role) -> std::optional<std::size_t> {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (rows[i].autocalc == role) {
                return i;
            }
        }
        return std::nullopt;
    };
    const auto start = find("start");
    const auto end = find("end");
    const auto length = find("length");
    if (!start || !end || !length || changed >= rows.size()) {
        return std::nullopt;
    }
    if (changed == *start || changed == *end) {
        if (auto span = countInterval(rows[*start].source, rows[*end].source, std::nullopt)) {
            rows[*length].source = std::move(*span);
            return length;
        }
    } else if (changed == *length) {
        if (auto until = countInterval(rows[*start].source, std::nullopt, rows[*length].source)) {
            rows[*end].source = std::move(*until);
            return end;
        }
    }
    return std::nullopt;
}

BodyIndex bodyIndex(double rost, double ves) {
    if (!(rost > 0) || !(ves > 0)) {
        return {"Индекс тела не определен", "2"};
    }
    const double index = ves / (rost * (rost / 100) / 100);
    // The bounds belong to the lower type; a hair of tolerance keeps an
    // index of exactly 19.8 there despite the arithmetic of fractions.
    constexpr double kTolerance = 1e-9;
    const char* type = index <= 19.8 + kTolerance ? "худощавое"
                       : index <= 26 + kTolerance ? "среднее"
                                                  : "тучное";
    return {
        "Индекс тела равен " + core::formatFixed(index, 1) + ".\nУ вас " + type + " телосложение.",
        core::formatFixed(index, 1)};
}

platform::Image fittedPhoto(const platform::ImageCodec& codec, platform::Image image) {
    if (image.width > kLargestPhoto || image.height > kLargestPhoto) {
        return codec.scaled(image, kLargestPhoto, kLargestPhoto);
    }
    return image;
}

}  // namespace tilika::frame
