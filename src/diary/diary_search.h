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

// The search of the diary screen over a loaded year. It answers with
// positions in the year, so the screen never copies its days. The text is
// matched literally, ignoring case in any alphabet.
class DiarySearch {
public:
    // `setup` carries the running illness while days that were loaded
    // without their texts are completed; `regim` is the regim of the load.
    DiarySearch(const DiaryStore& store, const std::vector<ListRow>& list, SetupRecord& setup,
                int regim);

    // The positions of the days that match, in order; every day for an
    // empty text. Days still without their texts get them first.
    std::vector<std::size_t> find(std::vector<DayNote>& days, std::string_view text) const;

    // Whether one day's catalogue rows match the text.
    bool matches(const std::vector<CatalogueRow>& rows, std::string_view text) const;

private:
    const DiaryStore& store_;
    const std::vector<ListRow>& list_;
    SetupRecord& setup_;
    int regim_;
};

// The text in the form every comparison of the search uses: Unicode case
// folding, so "ВЕС", "Вес" and "вес" are one.
std::string foldedText(std::string_view text);

}  // namespace tilika::diary
