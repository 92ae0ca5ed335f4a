#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "diary/diary_store.h"

namespace tilika::diary {

// The word a section of the diary answers to in a search ("Вес" for `ves`);
// "" for a field that has none.
std::string_view sectionWord(std::string_view field);

// Whether a row is found by its section's word: the row holds something, and
// the whole search text is the word, whatever the case.
bool filterTypeName(std::string_view field, std::string_view source, std::string_view text,
                    std::string_view filter);

// A day as the search reads it, folded once when the year is loaded, so that
// a search of the year is only comparisons.
struct SearchableDay {
    std::vector<std::string> fields;  // the sections that hold something
    std::vector<std::string> texts;   // folded: where its content is looked for
};

// The search of the diary screen. The text is matched literally, ignoring
// case in any alphabet: a row is found by its section's word when the whole
// text is that word, or by its content.
class DiarySearch {
public:
    explicit DiarySearch(std::string_view text);

    // A day's catalogue rows (noteStructToTodayNote) as the search reads them.
    static SearchableDay searchable(const std::vector<CatalogueRow>& rows);

    bool matches(const SearchableDay& day) const;
    bool matches(const std::vector<CatalogueRow>& rows) const { return matches(searchable(rows)); }
    // The positions of the days that match, in order; every day for an
    // empty text. Positions, so that the screen never copies its days.
    std::vector<std::size_t> find(const std::vector<SearchableDay>& days) const;

private:
    bool everything_;
    std::string folded_;
    // The sections whose word the text is.
    std::vector<std::string_view> fields_;
};

// The text in the form every comparison of the search uses: Unicode case
// folding, so "ВЕС", "Вес" and "вес" are one.
std::string foldedText(std::string_view text);

}  // namespace tilika::diary
