#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/date.h"
#include "core/write_result.h"
#include "diary/diary_store.h"
#include "diary/reference_lists.h"
#include "frame/form_row.h"
#include "medication/courses.h"
#include "platform/canvas.h"

namespace tilika::core {
struct Context;
}

// What must happen on one day: the day's reminders and medicine doses in
// time order, with the doses that go with a meal laid out under that meal.
namespace tilika::medication {

// The kinds of schedule rows.
namespace indaykind {
inline constexpr int plain = 1;     // a time of the clock, or an empty separator
inline constexpr int meal = 2;      // the meal itself
inline constexpr int relation = 3;  // doses before or after the meal
}  // namespace indaykind

// Item codes of a row's value, which choose its picture.
namespace indaycode {
inline constexpr int note = 0;  // no picture: a centred line in the second colour
inline constexpr int doctor = 1;
inline constexpr int reminder = 5;
inline constexpr int medicine = 23;
inline constexpr int diet = 25;
}  // namespace indaycode

// One row of the schedule. `pos` ("HH:mm") is only the key it sorts by, so
// that the fixed rows around a meal fall between the real times; `value`
// holds items joined by "<end>", each a code, "<tr>" and a text.
struct InDayRow {
    int tp = indaykind::plain;
    std::string right;  // the label at the right: a time, a meal, a relation
    std::string pos;
    std::string value;

    bool operator==(const InDayRow&) const = default;
};

// The meal times as a form: its title and its five time rows.
struct MealForm {
    std::string caption;
    frame::FormRows rows;
};

// Builds the schedule of a day from the day's diary rows; it keeps nothing
// of its own, each prepare() reads the day afresh.
class DaySchedule {
public:
    explicit DaySchedule(core::Context& context);

    // Keeps the child whose days are shown and loads the reference lists the
    // medicines are read through.
    void activateView(std::string gid);
    const std::string& gid() const { return gid_; }

    // The rows of the day, sorted; also kept as inData().
    const std::vector<InDayRow>& prepare(core::Date date);
    const std::vector<InDayRow>& inData() const { return inData_; }

    // Adds a row, or where one with the same kind, label and key stands,
    // adds a non-empty value to its items: two doses at one moment, or a
    // meal and a dose taken with it, share a row.
    static void insInData(std::vector<InDayRow>& rows, int tp, std::string_view right,
                          std::string_view value, std::string_view pos);
    // The time of meal `priem` (from 1) of the meal times plus `min`
    // minutes, as "HH:mm", wrapping within the day.
    static std::string gt(std::string_view obed, int priem, int min);
    // Orders two relation captions: before a meal the earliest first, after
    // it the soonest first; other captions rank 0.
    static int compareRight(std::string_view right1, std::string_view right2);

    // The form of meal times, filled with the times as they stand.
    MealForm mealForm() const;
    // Stores the meal times of the form, for every child.
    core::WriteResult editObed(const frame::FormRows& rows);

private:
    void addCourse(const nlohmann::json& course, core::Date date, std::string_view obed);

    core::Context& context_;
    CourseReconciler courses_;
    diary::DiaryStore store_;
    std::vector<diary::ListRow> listData_;
    std::string gid_;
    std::vector<InDayRow> inData_;
};

// How schedule rows look beyond their data.
struct InDayCellLook {
    bool colorIcons = true;  // the "c-" pictures
    platform::Color textColor{0, 0, 0, 1};
    platform::Color secondColor{0.7, 0, 0, 1};  // the lines that tell of an empty day
};

// Draws one schedule row: a tinted ground for meals, the label in bold at
// the right, and each item's lines with the item's picture. The height is
// found by the same walk as the drawing.
class InDayCellPaint {
public:
    explicit InDayCellPaint(InDayCellLook look) : look_(look) {}

    double height(const InDayRow& row, double width, const platform::Canvas& measure) const;
    void prepareInDayCell(const InDayRow& row, const platform::Rect& rect,
                          platform::Canvas& canvas) const;

private:
    double walk(const InDayRow& row, const platform::Rect& rect, const platform::Canvas& measure,
                platform::Canvas* paint) const;

    InDayCellLook look_;
};

}  // namespace tilika::medication
