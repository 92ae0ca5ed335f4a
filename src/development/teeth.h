#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/date.h"
#include "diary/teeth_replay.h"

namespace SQLite {
class Database;
}

namespace tilika::core {
struct Context;
class Dates;
}  // namespace tilika::core

namespace tilika::development {

// What the teeth page shows: the usual coming and going of milk teeth, or
// the child's own teeth as the diary has them.
namespace toothstate {
inline constexpr int statistics = 0;
inline constexpr int child = 1;
}  // namespace toothstate

// The opacity of each tooth picture, by the tooth's number less one.
using ToothOpacity = std::array<double, diary::kMilkTeeth>;

// How far along a tooth is at month x of a change that runs from `min`
// (included) to `max` (excluded): with `show` it fades in over the range,
// without it fades out.
double calcToothAlpha(int x, int min, int max, bool show);

// The whole months of a ruler position; the ruler reaches a little below
// birth, which reads as birth.
int toothMonth(double position);

// The teeth a child usually has at that age: until the sixth year the
// eruption table fades teeth in, from then on the loss table fades them out.
ToothOpacity statOpacity(int month);

// The teeth named in a toothForDay() answer at full opacity, the others
// hidden. Anything after "<tm>" is no tooth.
ToothOpacity boyOpacity(std::string_view teeth);

// The caption over the ruler: "Только что родился", "5 месяцев", "2 года",
// "1 год и 3 месяца".
std::string toothAgeCaption(int month);

// A child's tooth rows replayed once, oldest first, and kept as the teeth
// after each day: asking for any day then costs a search, which is what lets
// the ruler sweep over fifteen years without going back to the diary.
class ToothHistory {
public:
    ToothHistory() = default;
    // Every tooth row of the child; an unreadable database gives no teeth.
    static ToothHistory load(SQLite::Database& db, std::string_view gid);

    // The teeth just before the day ("yyyy-MM-dd"), the day left out, as
    // toothForDay() gives them.
    std::string before(std::string_view day) const;

private:
    // Days ascending, each with the teeth present at its end.
    std::vector<std::pair<std::string, std::string>> days_;
};

// The teeth page without its screen.
class Teeth {
public:
    explicit Teeth(core::Context& context);

    // Loads the child's birth date and tooth rows.
    void activateView(std::string_view gid);
    // Reads the tooth rows again, after the day editor has written.
    void reload();

    const std::string& gchildguid() const { return gchildguid_; }
    std::optional<core::Date> birth() const { return birth_; }
    // Where the ruler opens: the running month of life, 0 without a birth date.
    int startMonth() const;

    int gState() const { return gState_; }
    void stateChange();
    // The page caption and the picture of the button that switches modes.
    std::string caption() const;
    std::string statePicture() const;

    // The pictures at a ruler position, in the current mode.
    ToothOpacity update(double position) const;
    ToothOpacity showStat(double position) const;
    // Nothing shows for a child without a birth date.
    ToothOpacity showBoy(double position) const;

    // The teeth present just before the day, the day itself left out: numbers
    // 1 to 20 ascending, joined by "<tr>".
    std::string toothForDay(core::Date date, std::string_view childguid) const;

private:
    std::string dayText(core::Date date) const;

    core::Context& context_;
    std::string gchildguid_;
    std::optional<core::Date> birth_;
    ToothHistory history_;
    int gState_ = toothstate::statistics;
};

}  // namespace tilika::development
