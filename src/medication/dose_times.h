#pragma once

#include <SQLiteCpp/Database.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/date.h"
#include "core/write_result.h"
#include "diary/catalogue.h"
#include "diary/reference_lists.h"

namespace tilika::core {
class Dates;
}

// When the doses of a medication course fall on a day. A course either names
// its times, as the course form always writes them, or has them worked out
// from its doses a day and its relation to meals, with the meals at the times
// the parent gave for the day schedule.
namespace tilika::medication {

// The meal times when none were ever set: breakfast, second breakfast, lunch,
// afternoon snack, supper.
inline constexpr std::string_view kDefaultMeals =
    "09:00<table>11:00<table>14:00<table>16:00<table>20:00";

// The meal times, one set for all children: the first that a profile holds,
// else the defaults (also without a database).
std::string getObed(SQLite::Database* db);
// Gives every profile these meal times.
core::WriteResult setObed(SQLite::Database& db, std::string_view meals);

// The time of dose `pos` (from 1) of `count` on `day`. Type 1 ("раз в день")
// spreads the doses over the waking day, 08:00 to 22:00, on a quarter-hour
// grid; type 2 ("раз в сутки") evenly round the clock from midnight.
std::optional<core::Date> generateTime(const core::Dates& dates, core::Date day, int type,
                                       int count, int pos);

// The time of a dose taken relative to a meal that starts at hour `base` of
// `day`: "Перед едой" five minutes before, "После еды" ten after, and so on.
// Only the meal's hour counts. Nothing when the dose would fall off the day.
std::optional<core::Date> generateTimeEat(const core::Dates& dates, core::Date day, int base,
                                          std::string_view eda);

// One dose: when, and what to take ("Нурофен: 1/2 штуки").
struct DoseTime {
    core::Date dat{};
    std::string msg;
};

// The doses of the courses of one day, in the order of the courses and then
// of their times. Times are worked out over `meals` (as getObed gives them).
class DoseTimes {
public:
    DoseTimes(const core::Dates& dates, const std::vector<diary::ListRow>& listData,
              std::string meals);

    // The doses of a day's stored value of courses (a JSON array); a value
    // that is not JSON has none.
    std::vector<DoseTime> pillsToTimeArray(core::Date day, std::string_view value) const;

    // The times, "HH:mm" joined by "<td>" in the order worked out, that the
    // course form's fields (see courseOfForm) give today.
    std::string courseTimes(const std::map<std::string, std::string>& course) const;

    // The same for the form's rows as they stand; "" while the doses a day or
    // the meals are not chosen.
    std::string getCurrentPillTime(const std::vector<diary::CatalogueRow>& rows) const;

private:
    void addDoses(core::Date day, const std::map<std::string, std::string>& course,
                  std::vector<DoseTime>& out) const;

    const core::Dates& dates_;
    const std::vector<diary::ListRow>& listData_;
    std::vector<int> mealHours_;
};

}  // namespace tilika::medication
