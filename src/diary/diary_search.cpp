#include "diary/diary_search.h"

#include <unicode/unistr.h>

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

icu::UnicodeString folded(std::string_view text) {
    icu::UnicodeString unicode = icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
    unicode.foldCase();
    return unicode;
}

bool contains(std::string_view haystack, const icu::UnicodeString& needle) {
    return !haystack.empty() && folded(haystack).indexOf(needle) >= 0;
}

bool byWord(std::string_view field, const icu::UnicodeString& filter) {
    for (const auto& [name, word] : kSectionWords) {
        if (!name.empty() && name == field && folded(word) == filter) {
            return true;
        }
    }
    return false;
}

bool byContent(const CatalogueRow& row, const icu::UnicodeString& filter) {
    switch (row.tp) {
        case tp::timedRows:
        case tp::reminders:
            for (const MultiRow& element : row.multiarray) {
                if (contains(element.cap, filter) || contains(element.time, filter)) {
                    return true;
                }
            }
            return false;
        case tp::medication:
            for (const MultiRow& element : row.multiarray) {
                if (contains(element.text, filter)) {
                    return true;
                }
            }
            return false;
        // Periods, pressure and fluids are records whose times would match
        // almost any search of a time; they answer to their word only.
        case tp::periods:
        case tp::pressure:
        case tp::fluids:
            return false;
        default:
            return contains(row.text, filter);
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
    return (!source.empty() || !text.empty()) && byWord(field, folded(filter));
}

std::string foldedText(std::string_view text) {
    std::string result;
    folded(text).toUTF8String(result);
    return result;
}

DiarySearch::DiarySearch(const DiaryStore& store, const std::vector<ListRow>& list,
                         SetupRecord& setup, int regim)
    : store_(store), list_(list), setup_(setup), regim_(regim) {}

bool DiarySearch::matches(const std::vector<CatalogueRow>& rows, std::string_view text) const {
    const icu::UnicodeString filter = folded(text);
    for (const CatalogueRow& row : rows) {
        if (((!row.source.empty() || !row.text.empty()) && byWord(row.field, filter)) ||
            byContent(row, filter)) {
            return true;
        }
    }
    return false;
}

std::vector<std::size_t> DiarySearch::find(std::vector<DayNote>& days,
                                           std::string_view text) const {
    std::vector<std::size_t> found;
    found.reserve(days.size());
    if (text.empty()) {
        for (std::size_t i = 0; i < days.size(); ++i) {
            found.push_back(i);
        }
        return found;
    }
    std::vector<CatalogueRow> rows;
    for (std::size_t i = 0; i < days.size(); ++i) {
        DayNote& day = days[i];
        if (!day.compliteOK) {
            store_.updateNoteStrings(day, list_, setup_, regim_, false);
        }
        store_.noteStructToTodayNote(day, rows, list_);
        if (matches(rows, text)) {
            found.push_back(i);
        }
    }
    return found;
}

}  // namespace tilika::diary
