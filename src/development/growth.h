#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/date.h"
#include "core/write_result.h"
#include "development/chart.h"
#include "development/growth_centiles.h"

namespace tilika::core {
struct Context;
class Dates;
}  // namespace tilika::core

namespace tilika::diary {
class DiaryStore;
struct SetupRecord;
}  // namespace tilika::diary

namespace tilika::development {

// A norm point at `x` whole months (or years) from `sdat`: its x is the days
// to that day, its label "%.1f" of y.
void addPointMonth(const core::Dates& dates, std::vector<GraphPoint>& points, int x, double y,
                   core::Date sdat);
void addPointYear(const core::Dates& dates, std::vector<GraphPoint>& points, int x, double y,
                  core::Date sdat);
// A tick of the x axis at `x` months (or years) from `sdat`, labelled "%.0f"
// of x.
void addPointAxis(const core::Dates& dates, std::vector<AxisTick>& ticks, int x, core::Date sdat);
void addPointAxis2(const core::Dates& dates, std::vector<AxisTick>& ticks, int x, core::Date sdat);

// The shown year and the whole life form a ring: 1, 2, ... the running year
// of life, then 0 for all of it. `months` is the child's whole months of age
// (negative before birth); under a year the ring does not turn.
int runningYear(int months);
int prevYear(int gyear, int months);
int nextYear(int gyear, int months);
// "Все данные" or "%d-й год".
std::string yearCaption(int gyear);
// How far along the shown span today stands, from 0 to 1: `days` are the
// days to today from the span's start.
double todayFraction(int gyear, int months, int days);

// The point arrays of the two charts: the band's lower and upper norm and
// the child's own measures; 1 height, 2 weight.
struct GrowthData {
    std::vector<GraphPoint> upData1;
    std::vector<GraphPoint> downData1;
    std::vector<GraphPoint> ownData1;
    std::vector<GraphPoint> upData2;
    std::vector<GraphPoint> downData2;
    std::vector<GraphPoint> ownData2;
};

// One chart as the screen shows it: the coloured copy up to today over the
// whole of it in grey.
struct GrowthChart {
    GraphDic color;
    GraphDic gray;
    // "Последний замер: 76.0 см — 55-й центиль" with the centiles on and a
    // measure they cover; empty otherwise.
    std::string lastMeasure;
};

struct GrowthView {
    std::string caption;  // of the shown year
    GrowthChart rost;
    GrowthChart ves;
    // The share of the plot width up to today, 0 to 1.
    double today = 0;
    // The profile has a birth date; without one there is nothing to chart.
    bool hasData = false;
};

// The height and weight charts of a child, by year of life or for the whole
// life, over the band of normal values for the child's sex, with the WHO
// centile lines laid over them on request.
class Growth {
public:
    // The centile tables are read from `centileFolder`; by default the
    // "growth" folder of the shipped resources.
    explicit Growth(core::Context& context);
    Growth(core::Context& context, std::filesystem::path centileFolder);
    ~Growth();
    Growth(const Growth&) = delete;
    Growth& operator=(const Growth&) = delete;

    // Loads the child's profile and shows its running year of life.
    void activateView(std::string gid);
    const std::string& gid() const { return gid_; }

    int gyear() const { return gyear_; }
    void setYear(int gyear) { gyear_ = gyear; }
    // Whole months of age today; 0 without a birth date.
    int months() const { return months_; }
    void prevYear() { gyear_ = development::prevYear(gyear_, months_); }
    void nextYear() { gyear_ = development::nextYear(gyear_, months_); }

    // Fills the six point arrays for a year (0 the whole life); the birth
    // date, or nothing when the profile has none.
    std::optional<core::Date> loadData(int year);
    const GrowthData& data() const { return data_; }

    // The whole screen for the shown year, the centile lines on or off.
    GrowthView changeText(bool centiles);

    // The centile switch, kept in the settings.
    bool centilesOn() const;
    core::WriteResult setCentilesOn(bool on);

private:
    // Reads the child's record: sex, birth date and age today.
    diary::SetupRecord loadProfile();
    GrowthChart chart(bool height, core::Date start, const std::vector<AxisTick>& ticks,
                      bool centiles);

    core::Context& context_;
    std::unique_ptr<diary::DiaryStore> store_;
    GrowthCentiles centiles_;
    std::string gid_;
    int sex_ = 0;
    std::optional<core::Date> birth_;
    int months_ = 0;
    int gyear_ = 1;
    GrowthData data_;
};

}  // namespace tilika::development
