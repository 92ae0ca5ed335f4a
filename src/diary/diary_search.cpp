#include "diary/diary_search.h"

#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <utility>

namespace tilika::diary {

namespace {

// clang-format off
constexpr std::array<std::pair<std::string_view, std::string_view>, 25> kSectionWords{{
    {"health", "Недомогания"}, {"doctor", "Доктор"},      {"bolezn", "Болезнь"},
    {"ves", "Вес"},            {"temp", "Температура"},   {"pills", "Лекарства"},
    {"alarm", "Напоминания"},  {"analizy", "Анализы"},    {"rost", "Рост"},
    {"smile", "Веселые"},      {"biosize", "Биометрика"}, {"tooth", "Зубы"},
    {"sleep", "Сон"},          {"walk", "Прогулка"},      {"note", "Заметки"},
    {"priv", "Прививки"},
    // Sections of the other editions, which share the same search.
    {"changes", "Изменения"},  {"fillings", "Ощущения"},  {"fillings", "Недомогания"},
    {"uzi", "УЗИ"},            {"birthresult", "Роды"},   {"sliz", "Слизь"},
    {"sex", "Секс"},           {"dieta", "Диета"},        {"", ""},
}};
// clang-format on

bool holdsSomething(const CatalogueRow& row) {
    return !row.source.empty() || !row.text.empty();
}

void addText(std::vector<std::string>& texts, std::string_view text) {
    if (!text.empty()) {
        texts.push_back(foldedText(text));
    }
}

}  // namespace

std::string_view sectionWord(std::string_view field) {
    for (const auto& [name, word] : kSectionWords) {
        if (!name.empty() && name == field) {
            return word;
        }
    }
    return {};
}

bool filterTypeName(std::string_view field, std::string_view source, std::string_view text,
                    std::string_view filter) {
    if (source.empty() && text.empty()) {
        return false;
    }
    SearchableDay day;
    day.fields.emplace_back(field);
    return DiarySearch(filter).matches(day);
}

std::string foldedText(std::string_view text) {
    icu::UnicodeString unicode = icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
    unicode.foldCase();
    std::string result;
    unicode.toUTF8String(result);
    return result;
}

DiarySearch::DiarySearch(std::string_view text)
    : everything_(text.empty()), folded_(foldedText(text)) {
    for (const auto& [name, word] : kSectionWords) {
        if (!name.empty() && foldedText(word) == folded_) {
            fields_.push_back(name);
        }
    }
}

SearchableDay DiarySearch::searchable(const std::vector<CatalogueRow>& rows) {
    SearchableDay day;
    for (const CatalogueRow& row : rows) {
        if (holdsSomething(row) && !sectionWord(row.field).empty()) {
            day.fields.push_back(row.field);
        }
        switch (row.tp) {
            case tp::timedRows:
            case tp::reminders:
                for (const MultiRow& element : row.multiarray) {
                    addText(day.texts, element.cap);
                    addText(day.texts, element.time);
                }
                break;
            case tp::medication:
                for (const MultiRow& element : row.multiarray) {
                    addText(day.texts, element.text);
                }
                break;
            // Periods, pressure and fluids are records whose times would
            // match almost any search of a time; they answer to their word
            // only.
            case tp::periods:
            case tp::pressure:
            case tp::fluids:
                break;
            default:
                addText(day.texts, row.text);
                break;
        }
    }
    return day;
}

bool DiarySearch::matches(const SearchableDay& day) const {
    if (folded_.empty()) {
        return false;
    }
    for (const std::string& field : day.fields) {
        if (std::find(fields_.begin(), fields_.end(), field) != fields_.end()) {
            return true;
        }
    }
    // UTF-8 never matches in the middle of a letter, so a search of the bytes
    // is a search of the letters.
    return std::any_of(day.texts.begin(), day.texts.end(), [this](const std::string& text) {
        return text.find(folded_) != std::string::npos;
    });
}

std::vector<std::size_t> DiarySearch::find(const std::vector<SearchableDay>& days) const {
    std::vector<std::size_t> found;
    found.reserve(days.size());
    for (std::size_t i = 0; i < days.size(); ++i) {
        if (everything_ || matches(days[i])) {
            found.push_back(i);
        }
    }
    return found;
}

}  // namespace tilika::diary
