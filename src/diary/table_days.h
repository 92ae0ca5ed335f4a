#pragma once

#include <vector>

#include "diary/diary_search.h"
#include "diary/diary_store.h"

namespace tilika::diary {

// A loaded year made ready for the diary table: for each day, the rows it
// shows and what a search reads, so that neither drawing a day nor searching
// the year goes back to the store.
struct TableDays {
    std::vector<std::vector<CatalogueRow>> rows;  // what each day shows, in catalogue order
    std::vector<SearchableDay> search;
};

// Completes the texts of days loaded without them, in date order: the
// running illness is carried through `setup` from one day to the next.
void completeDays(const DiaryStore& store, std::vector<DayNote>& days,
                  const std::vector<ListRow>& list, SetupRecord setup, int regim);

// Lays one completed day into the catalogue: the rows it shows and what the
// search reads. `catalogue` is room kept from one day to the next. Days are
// independent here, and nothing is read from a database or changed in the
// store, so a worker thread may lay out days in any order.
void layOutDay(const DiaryStore& store, const DayNote& day, const std::vector<ListRow>& list,
               std::vector<CatalogueRow>& catalogue, std::vector<CatalogueRow>& shown,
               SearchableDay& search);

// Both of the above over a year.
TableDays prepareTableDays(const DiaryStore& store, std::vector<DayNote>& days,
                           const std::vector<ListRow>& list, SetupRecord setup, int regim);

}  // namespace tilika::diary
