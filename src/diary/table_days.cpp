#include "diary/table_days.h"

#include "diary/note_cell_paint.h"

namespace tilika::diary {

void completeDays(const DiaryStore& store, std::vector<DayNote>& days,
                  const std::vector<ListRow>& list, SetupRecord setup, int regim) {
    for (DayNote& day : days) {
        if (!day.compliteOK) {
            store.updateNoteStrings(day, list, setup, regim, false);
        }
    }
}

void layOutDay(const DiaryStore& store, const DayNote& day, const std::vector<ListRow>& list,
               std::vector<CatalogueRow>& catalogue, std::vector<CatalogueRow>& shown,
               SearchableDay& search) {
    store.noteStructToTodayNote(day, catalogue, list);
    search = DiarySearch::searchable(catalogue);
    shown.clear();
    for (const CatalogueRow& row : catalogue) {
        if (NoteCellPaint::shown(day, row)) {
            shown.push_back(row);
        }
    }
}

TableDays prepareTableDays(const DiaryStore& store, std::vector<DayNote>& days,
                           const std::vector<ListRow>& list, SetupRecord setup, int regim) {
    completeDays(store, days, list, std::move(setup), regim);
    TableDays result;
    result.rows.resize(days.size());
    result.search.resize(days.size());
    std::vector<CatalogueRow> catalogue;
    for (std::size_t i = 0; i < days.size(); ++i) {
        layOutDay(store, days[i], list, catalogue, result.rows[i], result.search[i]);
    }
    return result;
}

}  // namespace tilika::diary
