// The diary on years of data: one dense year of a child read raw from SQLite
// (the floor), loaded for the diary with and without its empty days, a day
// saved that adds a 30-day medicine course, one that edits a 3-month course,
// and the times the course form works out for a course.
//
//   build/bench/tilika_bench --benchmark_filter=Diary

#include <benchmark/benchmark.h>

#include <algorithm>
#include <stdlib.h>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/ids.h"
#include "core/settings_file.h"
#include "core/text.h"
#include "diary/diary_store.h"
#include "diary/value_codecs.h"
#include "diary_sample.h"
#include "frame/form_values.h"
#include "medication/course_form.h"
#include "medication/courses.h"
#include "medication/dose_times.h"
#include "platform/clock.h"
#include "platform/folders.h"
#include "platform/settings_store.h"

namespace {

using namespace tilika;
using bench::kDenseYear;
using bench::sample;
using bench::Sample;

void loadYear(benchmark::State& state, int regim) {
    Sample& s = sample();
    std::vector<diary::DayNote> days;
    for (auto _ : state) {
        s.store().loadNoteData(days, regim, kDenseYear, s.dates().now(), s.gid());
        benchmark::DoNotOptimize(days.data());
    }
    state.counters["days"] = static_cast<double>(days.size());
}

void BM_DiaryLoadEveryDay(benchmark::State& state) {
    loadYear(state, diary::loadregim::everyDay);
}

void BM_DiaryLoadWithoutEmptyDays(benchmark::State& state) {
    loadYear(state, diary::loadregim::withoutEmptyDays);
}

// The parts of a load that are not SQLite: the photo lookups (two file
// checks a day) and the calendar work of each day's texts.
void BM_DiaryYearPhotoLookups(benchmark::State& state) {
    Sample& s = sample();
    std::vector<diary::DayNote> days(365);
    for (std::size_t i = 0; i < days.size(); ++i) {
        days[i].dat = s.dates().addDays(s.yearStart(), static_cast<int>(i));
    }
    for (auto _ : state) {
        for (diary::DayNote& day : days) {
            s.store().correctPhoto(day, diary::loadregim::everyDay, s.gid());
        }
    }
}

void BM_DiaryYearDayTexts(benchmark::State& state) {
    Sample& s = sample();
    std::vector<diary::DayNote> days(365);
    for (std::size_t i = 0; i < days.size(); ++i) {
        days[i].dat = s.dates().addDays(s.yearStart(), static_cast<int>(i));
    }
    const std::vector<diary::ListRow> list;
    diary::SetupRecord setup;
    setup.sbirthdate = s.birth();
    setup.birthdate = *s.dates().dateFromString(s.birth());
    for (auto _ : state) {
        for (diary::DayNote& day : days) {
            s.store().updateNoteStrings(day, list, setup, diary::loadregim::everyDay, false);
        }
    }
}

// A day's courses with a new daily course of this length from `start`, as
// the course form gives it.
std::string withCourse(Sample& s, const std::string& value, core::Date start,
                       const std::string& length) {
    nlohmann::json courses = diary::jsonToArray(value);
    if (!courses.is_array()) {
        courses = nlohmann::json::array();
    }
    courses.push_back({{"pillname", core::newID2(core::idkind::seededRow, 8)},
                       {"pilldoza", "1<td>шт."},
                       {"pillinter", "2<td>раз в день"},
                       {"pillperiod", core::newID2(core::idkind::seededRow, 10)},
                       {"pilleat", core::newID2(core::idkind::seededRow, 18)},
                       {"pilllength", length},
                       {"pillsdate", s.dates().dateToString(start, core::formats::screenDay)}});
    return diary::jsonFromObject(courses);
}

void BM_DiarySaveDayAddingACourse(benchmark::State& state) {
    Sample& s = sample();
    const core::Date day = s.dates().addDays(s.yearStart(), 100);
    std::vector<diary::ListRow> list;
    s.store().lists().loadConstList(list, diary::cotype::all, "");
    std::vector<diary::CatalogueRow> original;
    s.store().noteStructToTodayNote(s.store().todayNoteForDay(day, s.gid()), original, list);
    const auto pills = std::find_if(original.begin(), original.end(), [](const auto& row) {
        return row.tp == diary::tp::medication;
    });
    const std::size_t pillsRow = static_cast<std::size_t>(pills - original.begin());
    const std::string before = pills->source;

    const std::string after = withCourse(s, before, day, "30<td>дни");

    for (auto _ : state) {
        std::vector<diary::CatalogueRow> rows = original;
        rows[pillsRow].source = after;
        const bool saved = s.store().saveNoteData(1, rows, list, s.gid(), day).ok();
        state.PauseTiming();
        // Saving the day as it was takes the new course off its 30 days again.
        rows = original;
        rows[pillsRow].source = before;
        if (!saved || !s.store().saveNoteData(1, rows, list, s.gid(), day)) {
            state.SkipWithError("the day could not be saved");
            break;
        }
        state.ResumeTiming();
    }
}

// The day's rows as the editor has them, and where the courses are.
std::vector<diary::CatalogueRow> dayRows(Sample& s, core::Date day,
                                         const std::vector<diary::ListRow>& list,
                                         std::size_t& pillsRow) {
    std::vector<diary::CatalogueRow> rows;
    s.store().noteStructToTodayNote(s.store().todayNoteForDay(day, s.gid()), rows, list);
    pillsRow = static_cast<std::size_t>(
        std::find_if(rows.begin(), rows.end(),
                     [](const auto& row) { return row.tp == diary::tp::medication; }) -
        rows.begin());
    return rows;
}

void BM_DiarySaveDayEditingACourse(benchmark::State& state) {
    Sample& s = sample();
    const core::Date start = s.dates().addDays(s.yearStart(), 150);
    const core::Date middle = s.dates().addDays(start, 45);
    std::vector<diary::ListRow> list;
    s.store().lists().loadConstList(list, diary::cotype::all, "");
    std::size_t pillsRow = 0;
    std::vector<diary::CatalogueRow> startRows = dayRows(s, start, list, pillsRow);
    const std::string startBefore = startRows[pillsRow].source;

    startRows[pillsRow].source = withCourse(s, startBefore, start, "3<td>месяцы");
    if (!s.store().saveNoteData(1, startRows, list, s.gid(), start)) {
        state.SkipWithError("the course could not be entered");
        return;
    }

    int dose = 1;
    for (auto _ : state) {
        state.PauseTiming();
        // What the course form gives back: the course with another dose and
        // no key, in its place among the middle day's courses.
        std::vector<diary::CatalogueRow> rows = dayRows(s, middle, list, pillsRow);
        nlohmann::json onDay = diary::jsonToArray(rows[pillsRow].source);
        nlohmann::json& course = onDay.back();
        course.erase("key");
        dose = dose % 3 + 1;
        course["pilldoza"] = std::to_string(dose) + "<td>шт.";
        rows[pillsRow].source = diary::jsonFromObject(onDay);
        state.ResumeTiming();

        if (!s.store().saveNoteData(1, rows, list, s.gid(), middle)) {
            state.SkipWithError("the day could not be saved");
            break;
        }
    }

    // The first day without the course takes it off all its days again.
    startRows = dayRows(s, start, list, pillsRow);
    startRows[pillsRow].source = startBefore;
    if (!s.store().saveNoteData(1, startRows, list, s.gid(), start)) {
        state.SkipWithError("the course could not be removed");
    }
}

// What a change of the doses a day costs the course form: the lists and the
// meal times read, and the times worked out.
void BM_CourseFormTimes(benchmark::State& state) {
    Sample& s = sample();
    std::vector<diary::ListRow> list;
    s.store().lists().loadConstList(list, diary::cotype::all, "");
    diary::EntryForm form = medication::courseForm(std::nullopt, "22.11.2026", list);
    form.defaults["pillinter"] = "5<td>раз в день";
    form.defaults["pilleat"] = core::newID2(core::idkind::seededRow, 18);
    frame::fillSources(form.rows, form.defaults);
    std::string times;
    for (auto _ : state) {
        std::vector<diary::ListRow> lists;
        s.store().lists().loadConstList(lists, diary::cotype::all, "");
        const medication::DoseTimes doseTimes(s.dates(), lists,
                                              medication::getObed(s.database().connectToBase()));
        times = doseTimes.getCurrentPillTime(form.rows);
        benchmark::DoNotOptimize(times.data());
    }
    if (core::split(times, "<td>").size() != 5) {
        state.SkipWithError("the times were not worked out");
    }
}

}  // namespace

BENCHMARK(BM_DiaryLoadEveryDay)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DiaryLoadWithoutEmptyDays)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DiaryYearPhotoLookups)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DiaryYearDayTexts)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DiarySaveDayAddingACourse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DiarySaveDayEditingACourse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CourseFormTimes)->Unit(benchmark::kMicrosecond);
