#include "development/growth.h"

#include <algorithm>
#include <cmath>

#include "core/context.h"
#include "core/dates.h"
#include "core/settings_keys.h"
#include "core/text.h"
#include "development/growth_norms.h"
#include "diary/courses_of_day.h"
#include "diary/diary_store.h"
#include "diary/profiles.h"
#include "platform/folders.h"
#include "platform/settings_store.h"

namespace tilika::development {

namespace {

constexpr int kMonthsInYear = 12;
// The year table stops at ten years; later years have no band.
constexpr int kLastNormYear = 10;
// A child due more than this many months ahead has nothing to chart yet.
constexpr int kEarliestMonths = -23;
// Before this age the whole-life view has no year to mark.
constexpr int kEarliestTicks = -11;
constexpr double kRangeHeadroom = 1.1;

constexpr platform::Color kRostColor{0.16, 0.5, 0.73};
constexpr platform::Color kVesColor{0.15, 0.6, 0.38};
constexpr platform::Color kOwnColor{0.75, 0.22, 0.17};
constexpr platform::Color kCentileColor{0.3, 0.3, 0.3};

// The charts only read the diary; a write through their store would be a
// fault, refused rather than left without its courses.
class NoWrites final : public diary::CoursesOfDay {
public:
    core::WriteResult reconcile(SQLite::Database& /*db*/, std::string_view /*type*/,
                                std::string_view /*value*/, core::Date /*day*/,
                                std::string_view /*gid*/,
                                const std::vector<diary::ListRow>& /*lists*/,
                                std::string_view /*old*/) const override {
        return core::WriteFailure::other;
    }
};

const NoWrites kNoWrites{};

// A measure as typed: a decimal comma reads as a point; anything that is
// not a positive number is no measure.
std::optional<double> measureValue(std::string_view text) {
    const auto value = plainNumber(core::replaceAll(text, ",", "."));
    return value && *value > 0 ? value : std::nullopt;
}

std::string label(double y) {
    return core::formatFixed(y, 1);
}

// One point in each of the four norm curves: entry `index` of the tables,
// `x` months or years from `start` as `add` counts them.
template <std::size_t N>
void addYearBand(const core::Dates& dates, GrowthData& data, const NormCurves<N>& norms,
                 std::size_t index, int x, core::Date start,
                 void (*add)(const core::Dates&, std::vector<GraphPoint>&, int, double,
                             core::Date)) {
    add(dates, data.downData1, x, norms.rostDown[index], start);
    add(dates, data.upData1, x, norms.rostUp[index], start);
    add(dates, data.downData2, x, norms.vesDown[index], start);
    add(dates, data.upData2, x, norms.vesUp[index], start);
}

void widen(double& min, double& max, const std::vector<GraphPoint>& points) {
    for (const auto& point : points) {
        min = std::min(min, point.y);
        max = std::max(max, point.y);
    }
}

// A centile line over the ages the chart spans, through every row of the
// table in between, so that it bends where the table does (and steps where
// length gives way to height).
std::vector<GraphPoint> centileCurve(const LmsTable& table, double z, double offsetDays,
                                     double spanDays) {
    std::vector<GraphPoint> points;
    const double first = std::max(0.0, offsetDays) / kDaysPerMonth;
    const double last = (offsetDays + spanDays) / kDaysPerMonth;
    if (!(last > first)) {
        return points;
    }
    const auto add = [&](double month, const Lms& lms) {
        points.push_back({month * kDaysPerMonth - offsetDays, centileValue(lms, z), {}, {}, {}});
    };
    if (const auto lms = table.at(first)) {
        add(first, *lms);
    }
    for (const LmsRow& row : table.rows()) {
        if (row.month > first && row.month < last) {
            add(row.month, row.lms);
        }
    }
    if (const auto lms = table.at(last)) {
        add(last, *lms);
    }
    return points;
}

}  // namespace

void addPointMonth(const core::Dates& dates, std::vector<GraphPoint>& points, int x, double y,
                   core::Date sdat) {
    points.push_back(
        {static_cast<double>(dates.getDays(sdat, dates.addMonths(sdat, x))), y, label(y), {}, {}});
}

void addPointYear(const core::Dates& dates, std::vector<GraphPoint>& points, int x, double y,
                  core::Date sdat) {
    points.push_back(
        {static_cast<double>(dates.getDays(sdat, dates.addYears(sdat, x))), y, label(y), {}, {}});
}

void addPointAxis(const core::Dates& dates, std::vector<AxisTick>& ticks, int x, core::Date sdat) {
    ticks.push_back({static_cast<double>(dates.getDays(sdat, dates.addMonths(sdat, x))),
                     core::formatFixed(x, 0)});
}

void addPointAxis2(const core::Dates& dates, std::vector<AxisTick>& ticks, int x, core::Date sdat) {
    ticks.push_back({static_cast<double>(dates.getDays(sdat, dates.addYears(sdat, x))),
                     core::formatFixed(x, 0)});
}

int runningYear(int months) {
    // Truncating division: a child due within the year is in year 1 too; one
    // due later has only the whole-life view, empty until then.
    return std::max(0, months / kMonthsInYear + 1);
}

int prevYear(int gyear, int months) {
    if (months < kMonthsInYear) {
        return gyear;
    }
    return gyear == 0 ? runningYear(months) : gyear - 1;
}

int nextYear(int gyear, int months) {
    if (months < kMonthsInYear) {
        return gyear;
    }
    return gyear > months / kMonthsInYear ? 0 : gyear + 1;
}

std::string yearCaption(int gyear) {
    return gyear == 0 ? std::string("Все данные") : std::to_string(gyear) + "-й год";
}

double todayFraction(int gyear, int months, int days) {
    const int years = gyear > 0 ? 1 : runningYear(months);
    if (years <= 0) {
        return 0;
    }
    return std::clamp(days / (years * 365.0), 0.0, 1.0);
}

Growth::Growth(core::Context& context)
    : Growth(context, context.folders.path(platform::SystemFolder::Root) / "growth") {}

Growth::Growth(core::Context& context, std::filesystem::path centileFolder)
    : context_(context),
      store_(std::make_unique<diary::DiaryStore>(context, kNoWrites)),
      centiles_(std::move(centileFolder)) {}

Growth::~Growth() = default;

void Growth::activateView(std::string gid) {
    gid_ = std::move(gid);
    data_ = {};
    loadProfile();
    gyear_ = runningYear(months_);
}

diary::SetupRecord Growth::loadProfile() {
    const core::Dates& dates = context_.dates;
    diary::SetupRecord setup = diary::Profiles(context_).loadSetupData(gid_);
    sex_ = setup.sex;
    // A birth date that is missing or not a date leaves nothing to chart.
    const std::optional<core::Date> born =
        setup.sbirthdate ? dates.dateFromStringFormat(*setup.sbirthdate, core::formats::day)
                         : std::nullopt;
    birth_ = born ? std::optional(dates.noTime(*born)) : std::nullopt;
    months_ = birth_ ? dates.getMonths(*birth_, dates.noTime(dates.now())) : 0;
    return setup;
}

std::optional<core::Date> Growth::loadData(int year) {
    const core::Dates& dates = context_.dates;
    data_ = {};
    const diary::SetupRecord setup = loadProfile();
    if (!birth_) {
        return std::nullopt;
    }
    const core::Date birth = *birth_;

    const core::Date start = year >= 2 ? dates.addYears(birth, year - 1) : birth;
    if (year == 1) {
        for (int i = 0; i <= kMonthsInYear; ++i) {
            addYearBand(dates, data_, monthNorms(sex_), static_cast<std::size_t>(i), i, birth,
                        &addPointMonth);
        }
    } else if (year == 0) {
        if (months_ >= kEarliestMonths) {
            const int last = std::min(runningYear(months_), kLastNormYear);
            for (int i = 0; i <= last; ++i) {
                addYearBand(dates, data_, yearNorms(sex_), static_cast<std::size_t>(i), i, birth,
                            &addPointYear);
            }
        }
    } else if (year >= 2 && year <= kLastNormYear) {
        const auto& norms = yearNorms(sex_);
        addYearBand(dates, data_, norms, static_cast<std::size_t>(year - 1), 0, start,
                    &addPointMonth);
        addYearBand(dates, data_, norms, static_cast<std::size_t>(year), kMonthsInYear, start,
                    &addPointMonth);
    }

    // In a single year every measure is named; over the whole life only the
    // one at birth, or the names would cover the curve.
    const auto own = [&](std::vector<GraphPoint>& points, int regim, const char* key,
                         const std::string& atBirth) {
        if (year < 2) {
            if (const auto value = measureValue(atBirth)) {
                addPoint(points, 0, *value, label(*value));
            }
        }
        std::vector<diary::DayNote> days;
        store_->loadNoteData(days, regim, year, dates.now(), gid_);
        for (const diary::DayNote& day : days) {
            const auto value = measureValue(day.value(key));
            if (!day.dat || !value) {
                continue;
            }
            addPoint(points, dates.getDays(start, dates.noTime(*day.dat)), *value,
                     year == 0 ? std::string() : label(*value));
        }
    };
    own(data_.ownData1, diary::loadregim::height, "rost", setup.rost);
    own(data_.ownData2, diary::loadregim::weight, "ves", setup.ves);
    return birth;
}

GrowthView Growth::changeText(bool centiles) {
    const core::Dates& dates = context_.dates;
    GrowthView view;
    view.caption = yearCaption(gyear_);
    const auto birth = loadData(gyear_);
    view.hasData = birth.has_value();

    std::vector<AxisTick> ticks;
    core::Date start{};
    if (birth) {
        start = gyear_ > 1 ? dates.addYears(*birth, gyear_ - 1) : *birth;
        if (gyear_ >= 1) {
            for (int i = 1; i <= kMonthsInYear; ++i) {
                addPointAxis(dates, ticks, i, start);
            }
        } else if (months_ >= kEarliestTicks) {
            for (int i = 1; i <= runningYear(months_); ++i) {
                addPointAxis2(dates, ticks, i, *birth);
            }
        }
        view.today =
            todayFraction(gyear_, months_, dates.getDays(start, dates.noTime(dates.now())));
    }
    view.rost = chart(true, start, ticks, centiles);
    view.ves = chart(false, start, ticks, centiles);
    return view;
}

GrowthChart Growth::chart(bool height, core::Date start, const std::vector<AxisTick>& ticks,
                          bool centiles) {
    const std::vector<GraphPoint>& up = height ? data_.upData1 : data_.upData2;
    const std::vector<GraphPoint>& down = height ? data_.downData1 : data_.downData2;
    const std::vector<GraphPoint>& own = height ? data_.ownData1 : data_.ownData2;
    const platform::Color main = height ? kRostColor : kVesColor;

    GraphDic dic = initGraphDic();
    dic.isBorders = true;
    dic.setka = true;
    dic.xAxisValue = ticks;
    dic.bottomLine = 1;
    dic.xAxisMin = 0;
    dic.xAxisMax = ticks.empty() ? 0 : ticks.back().pos;
    dic.caption = height ? "Рост (см.)" : "Вес (кг.)";
    dic.mainColor = main;
    dic.backColor = main;

    if (up.size() >= 2) {
        dic.yAxisMax = up.back().y * kRangeHeadroom;
        dic.yAxisMin = down.empty() ? 0 : down.front().y;
    }
    widen(dic.yAxisMin, dic.yAxisMax, own);

    dic.graph[0] = down;
    dic.graphType[0] = linestyle::shadeAbove;
    dic.graph[1] = up;
    dic.graphType[1] = linestyle::shadeBelow;
    dic.graphColor[1] = main;
    dic.graph[2] = own;
    dic.graphType[2] = linestyle::thin;
    dic.graphColor[2] = kOwnColor;

    GrowthChart result;
    const LmsTable* table =
        centiles && birth_
            ? centiles_.table(height ? GrowthMeasure::height : GrowthMeasure::weight, sex_)
            : nullptr;
    if (table != nullptr) {
        const double offset = context_.dates.getDays(*birth_, start);
        for (std::size_t i = 0; i < kCentileZ.size(); ++i) {
            ExtraCurve curve;
            curve.points = centileCurve(*table, kCentileZ[i], offset, dic.xAxisMax);
            curve.color = kCentileColor;
            curve.label = std::string(kCentileNames[i]);
            widen(dic.yAxisMin, dic.yAxisMax, curve.points);
            dic.extraCurves.push_back(std::move(curve));
        }
        addToLegenda(dic, "Центили ВОЗ", 0, true);
        dic.legenda.back().color = kCentileColor;

        if (!own.empty()) {
            const GraphPoint& last = own.back();
            const auto lms = table->at((offset + last.x) / kDaysPerMonth);
            const auto z = lms ? zScore(*lms, last.y) : std::nullopt;
            if (z) {
                result.lastMeasure = lastMeasureText(last.y, 1, height ? "см" : "кг", *z);
            }
        }
    }

    result.color = dic;
    result.gray = std::move(dic);
    result.gray.setka = false;
    result.gray.bottomLine = 2;
    result.gray.graphColor[1].reset();
    return result;
}

bool Growth::centilesOn() const {
    return context_.settings.boolValue(core::keys::growthCentiles);
}

core::WriteResult Growth::setCentilesOn(bool on) {
    context_.settings.setBool(core::keys::growthCentiles, on);
    return context_.settings.synchronize() ? core::WriteResult()
                                           : core::WriteResult(core::WriteFailure::settings);
}

}  // namespace tilika::development
