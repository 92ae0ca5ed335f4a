#include "diary/display_texts.h"

#include <array>
#include <utility>

#include "core/text.h"
#include "diary/teeth_replay.h"
#include "diary/value_codecs.h"

namespace tilika::diary {
namespace {

// Teeth by their number in the tooth chart, with the dental number that
// parents see in a clinic.
constexpr std::array<std::string_view, 20> kTeeth{
    "верхний второй коренной (55)",
    "верхний первый коренной (54)",
    "верхний клык (53)",
    "верхний боковой резец (52)",
    "верхний центральный резец (51)",
    "верхний центральный резец (61)",
    "верхний боковой резец (62)",
    "верхний клык (63)",
    "верхний первый коренной (64)",
    "верхний второй коренной (65)",
    "нижний второй коренной (85)",
    "нижний первый коренной (84)",
    "нижний клык (83)",
    "нижний боковой резец (82)",
    "нижний центральный резец (81)",
    "нижний центральный резец (71)",
    "нижний боковой резец (72)",
    "нижний клык (73)",
    "нижний первый коренной (74)",
    "нижний второй коренной (75)",
};

std::string trimSpaces(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) {
        return {};
    }
    const std::size_t last = text.find_last_not_of(' ');
    return std::string(text.substr(first, last - first + 1));
}

}  // namespace

std::string justName(std::string_view cap) {
    return captionText(trimSpaces(cap.substr(0, cap.find('('))));
}

std::string toothStringToRead(std::string_view value) {
    std::string text;
    for (const std::string& item : core::split(value, "<tr>")) {
        // An empty item is what a stray delimiter leaves; it names no tooth.
        if (item.empty()) {
            continue;
        }
        int n = core::intValue(item);
        if (!text.empty()) {
            text += "\n";
        }
        if (n <= kToothLost) {
            text += "Прорезался ";
        } else {
            text += "Выпал ";
            n -= kToothLost;
        }
        if (n >= 1 && n <= static_cast<int>(kTeeth.size())) {
            text += kTeeth[static_cast<std::size_t>(n - 1)];
        }
    }
    return text;
}

std::string analizyStringToRead(std::string_view value, const std::vector<ListRow>& lisdData) {
    std::string text;
    if (!jsonIs(value)) {
        return text;
    }
    bool first = true;
    for (const nlohmann::json& record : jsonToArray(value)) {
        // The separator goes before every record after the first, found or
        // not, so an unknown first kind leaves the text starting with ", ".
        if (!first) {
            text += ", ";
        }
        first = false;
        const ListRow* row = listByIndex(jsonText(record, "captiontype"), lisdData);
        if (row != nullptr) {
            text += captionText(row->cap);
        }
    }
    return text;
}

std::string biosizeStringToRead(std::string_view value) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 5> kMeasures{{
        {"bio1", "Окружность головы: "},
        {"bio2", "Обхват груди: "},
        {"bio3", "Обхват талии: "},
        {"bio4", "Обхват бедер: "},
        {"bio5", "Длина стопы: "},
    }};
    std::string text;
    if (!jsonIs(value)) {
        return text;
    }
    const nlohmann::json record = jsonToDictionary(value);
    for (const auto& [key, label] : kMeasures) {
        const std::string measure = jsonText(record, key);
        if (measure.empty()) {
            continue;
        }
        if (!text.empty()) {
            text += "\n";
        }
        text.append(label).append(measure);
    }
    return text;
}

std::string kormToString(std::string_view value, const std::vector<ListRow>& list) {
    if (!jsonIs(value)) {
        return {};
    }
    const nlohmann::json record = jsonToDictionary(value);
    const int kind = core::intValue(jsonText(record, "tp"));
    if (kind == 1) {
        std::string text;
        const std::string left = jsonText(record, "left");
        const std::string right = jsonText(record, "right");
        if (core::intValue(left) >= 1) {
            text += "Левая грудь: " + left + " мин.";
        }
        // The break stays without a left side: the right side always reads
        // on the second line.
        if (core::intValue(right) >= 1) {
            text += "\nПравая грудь: " + right + " мин.";
        }
        return text;
    }
    if (kind < 2) {
        return {};
    }
    const std::string amount = jsonText(record, "volume") + " " + jsonText(record, "measure");
    const std::string tip = jsonText(record, "tip");
    if (tip == "Кефир" || tip == "Творог") {
        return amount;
    }
    // A product that is gone from its list still shows how much was eaten.
    const ListRow* product = listByIndex(tip, list);
    if (product == nullptr) {
        return amount;
    }
    return justName(product->cap) + ": " + amount;
}

}  // namespace tilika::diary
