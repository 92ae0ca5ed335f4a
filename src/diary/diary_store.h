#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/date.h"
#include "core/write_result.h"
#include "diary/catalogue.h"
#include "diary/courses_of_day.h"
#include "diary/profiles.h"
#include "diary/reference_lists.h"

namespace SQLite {
class Database;
}
namespace tilika::core {
struct Context;
}

namespace tilika::diary {

// What a load of the diary is for; it decides which rows are read, over
// which span, and which days without rows are added.
namespace loadregim {
inline constexpr int withoutEmptyDays = 1;  // the diary with empty days hidden
inline constexpr int oneDay = 2;            // the day editor, cloud records
inline constexpr int weight = 3;            // charts and the table of measures
inline constexpr int height = 4;
inline constexpr int everyDay = 5;  // the diary with every day of the year
inline constexpr int report = 6;    // the PDF report
inline constexpr int photoBook = 8;
}  // namespace loadregim

struct NoteColour {
    double r = 0;
    double g = 0;
    double b = 0;
    double a = 0;
    bool operator==(const NoteColour&) const = default;
};
inline constexpr NoteColour kNeutralNote{0, 0, 0, 0.1};
inline constexpr NoteColour kIllnessNote{0.8, 0, 0, 0.5};

// One day of the diary as the screens draw it.
struct DayNote {
    std::optional<core::Date> dat;
    // The raw value of every entry type of the day. Loads that build their
    // texts show weight and height with the gain since the first measure.
    std::map<std::string, std::string> values;
    DayFlags flags;
    NoteColour color = kNeutralNote;
    int year = 0;   // whole years of the child on that day
    int month = 0;  // months past those years, counted from 1
    int group = 0;  // months of life, counted from 1
    bool compliteOK = false;
    std::string day;  // the label of the day
    std::string weekday;
    std::string photopath;   // the thumbnail (the photo itself in the report)
    std::string photopath2;  // the photo

    std::string value(std::string_view type) const;
};

// A month of the diary table.
struct DayGroup {
    int group = 0;
    std::string name;   // "3-й месяц"
    std::string name2;  // "22.01.26-21.02.26"
    int count = 0;
};

// Where today stands in the month groups: section and row, -1 for none.
struct TablePosition {
    int section = -1;
    int row = -1;
};

// Reading and writing the diary's days.
//
// Threads: the store belongs to the thread that owns the context's database
// (the UI thread). Every call reaches that connection through
// connectToBase(), which also takes the daily copy, and the store keeps
// state of its own (the reference lists, the date of the last value found),
// so none of them may run elsewhere. The one exception is the loadNoteData()
// that takes a connection: it reads only through that connection, writes
// nothing, and touches no member that changes, so it may run on a worker
// thread with a connection of its own from DatabaseStore::openConnection()
// (which waits on a busy file) while the owning thread goes on using the
// store. What it needs from the owning connection, the list and the child's
// record, is read there first.
class DiaryStore {
public:
    // `courses` keeps the medication courses of a saved day in line on the
    // other days they reach.
    DiaryStore(core::Context& context, const CoursesOfDay& courses);

    // The days of a year of the child's life (or one day, or the whole
    // childhood for the measures), in date order, as `regim` asks.
    void loadNoteData(std::vector<DayNote>& target, int regim, int year, core::Date date,
                      std::string_view gid);
    // The same load through the caller's connection, safe on a worker
    // thread. `list` is the whole reference list (cotype::all, which holds
    // the row that ends an illness) and `setup` the child's record, both as
    // read on the owning thread.
    void loadNoteData(SQLite::Database& db, const std::vector<ListRow>& list, SetupRecord setup,
                      std::vector<DayNote>& target, int regim, int year, core::Date date,
                      std::string_view gid) const;
    // The day's derived keys. `setup` carries the running illness and the
    // first measures from one day to the next. With `simple` only the
    // calendar keys are set, and the texts wait until the day is drawn.
    // The day's illness ends on the recovery row of `list`, or where `list`
    // has none, on the one the last load of the lists met.
    void updateNoteStrings(DayNote& day, const std::vector<ListRow>& list, SetupRecord& setup,
                           int regim, bool simple) const;
    void correctPhoto(DayNote& day, int regim, std::string_view gid) const;

    // Writes the whole day from the editor's rows (flag 1) or from a cloud
    // record (flag 2, with the list rows it names that this device lacks),
    // medication courses spread over their days included, in one
    // transaction: all of it lands, or the day stays as it was.
    core::WriteResult saveNoteData(int flag, std::vector<CatalogueRow>& data,
                                   const std::vector<ListRow>& list, std::string_view gid,
                                   core::Date date);
    // Deletes one entry of the day, or with no type the whole day.
    core::WriteResult noteDeleteValue(core::Date date, std::optional<std::string_view> type,
                                      std::string_view gid);

    // Fills a catalogue row's reading from its value.
    void updateNoteToday(CatalogueRow& row, const std::vector<ListRow>& list,
                         std::optional<core::Date> forDate) const;
    // Fills the catalogue with the day's values and readings.
    void noteStructToTodayNote(const DayNote& day, std::vector<CatalogueRow>& data,
                               const std::vector<ListRow>& list) const;
    // The day, with or without rows.
    DayNote todayNoteForDay(core::Date date, std::string_view gid);

    // The month groups of the days, and where today stands in them.
    TablePosition prepareGroupData(const std::vector<DayNote>& days, const SetupRecord& setup,
                                   std::vector<DayGroup>& groups) const;

    // The latest value of the type on or before the day as a number; the
    // weight or height at birth where there is none.
    double getLastValue(core::Date date, std::string_view type, std::string_view gid);
    std::optional<core::Date> getLastValueDate() const { return lastValueDate_; }

    // Moves every diary day of every child one day forward or back.
    core::WriteResult moveDates(bool forward);

    ReferenceLists& lists() { return lists_; }

private:
    struct Window {
        core::Date start;
        core::Date end;
    };
    Window yearOfLife(core::Date birthday, int year) const;
    void loadDays(SQLite::Database* db, const std::vector<ListRow>& list, SetupRecord setup,
                  std::vector<DayNote>& target, int regim, int year, core::Date date,
                  std::string_view gid) const;
    void carryOver(SQLite::Database& db, SetupRecord& setup, core::Date start, std::string_view gid,
                   std::string_view recovery) const;
    void noteStrings(DayNote& day, SetupRecord& setup, int regim, bool simple,
                     std::string_view recovery) const;
    DayNote emptyDay(core::Date dat, SetupRecord& setup, int regim, bool simple,
                     std::string_view gid, std::string_view recovery) const;

    core::Context& context_;
    const CoursesOfDay& courses_;
    ReferenceLists lists_;
    std::optional<core::Date> lastValueDate_;
};

}  // namespace tilika::diary
