// The feeding diary of a child's first three years (about 15 000 food rows):
// the whole history loaded for the list, the texts of one screen of rows,
// the page as it opens (both, with the product names), and the reaction
// analysis over the newest days.
//
//   build/bench/tilika_bench --benchmark_filter=Feeding

#include <benchmark/benchmark.h>

#include <algorithm>

#include "development/feeding.h"
#include "development/feeding_totals.h"
#include "development/reaction.h"
#include "diary/reference_lists.h"
#include "diary_sample.h"

namespace {

using namespace tilika;
using bench::sample;
using bench::Sample;

// Rows a phone-sized window shows at once.
constexpr std::size_t kScreenRows = 12;

struct Page {
    std::vector<development::KormRow> rows;
    std::vector<development::KormGroup> groups;
    std::vector<frame::ListRow> list;
};

Page loadPage(Sample& s) {
    Page page;
    development::Feeding(s.context()).loadKorm(page.rows, page.groups, s.gid());
    diary::ReferenceLists(s.context()).loadConstList(page.list, diary::cotype::all, {});
    return page;
}

// The page opens on the newest day: the texts of its last screen of rows.
std::size_t screenTexts(Sample& s, const Page& page) {
    std::size_t size = 0;
    const std::size_t from = page.rows.size() - std::min(page.rows.size(), kScreenRows);
    for (std::size_t i = from; i < page.rows.size(); ++i) {
        const development::KormRow& row = page.rows[i];
        if (row.tp == development::KormRow::totals) {
            for (const std::string& line : development::kormTotals(row)) {
                size += line.size();
            }
        } else {
            size += development::kormCellText(s.dates(), row, page.list).text.size();
        }
    }
    return size;
}

void BM_FeedingLoad(benchmark::State& state) {
    Sample& s = sample();
    std::vector<development::KormRow> rows;
    std::vector<development::KormGroup> groups;
    for (auto _ : state) {
        development::Feeding(s.context()).loadKorm(rows, groups, s.gid());
        benchmark::DoNotOptimize(rows.data());
    }
    SQLite::Statement count(*s.database().connectToBase(),
                            "select count(*) from childkorm where childguid=?");
    count.bind(1, s.gid());
    count.executeStep();
    state.counters["foods"] = count.getColumn(0).getDouble();
    state.counters["rows"] = static_cast<double>(rows.size());
    state.counters["days"] = static_cast<double>(groups.size());
}

void BM_FeedingScreenTexts(benchmark::State& state) {
    Sample& s = sample();
    const Page page = loadPage(s);
    for (auto _ : state) {
        benchmark::DoNotOptimize(screenTexts(s, page));
    }
}

void BM_FeedingOpenPage(benchmark::State& state) {
    Sample& s = sample();
    for (auto _ : state) {
        const Page page = loadPage(s);
        benchmark::DoNotOptimize(screenTexts(s, page));
    }
}

// Asked the morning after the newest feeding, so that three days of
// feedings are walked.
void BM_FeedingReaction(benchmark::State& state) {
    Sample& s = sample();
    const Page page = loadPage(s);
    const core::Date now = s.dates().addDays(page.rows.back().dat, 1);
    std::size_t names = 0;
    for (auto _ : state) {
        names = development::reactionProducts(s.dates(), now, page.rows, page.list).size();
        benchmark::DoNotOptimize(names);
    }
    state.counters["names"] = static_cast<double>(names);
}

}  // namespace

BENCHMARK(BM_FeedingLoad)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FeedingScreenTexts)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_FeedingOpenPage)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FeedingReaction)->Unit(benchmark::kMicrosecond);
