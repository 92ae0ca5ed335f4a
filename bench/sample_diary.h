#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "core/date.h"

namespace tilika::bench {

struct SampleChild {
    std::string gid;
    std::string name;
    std::string birth;  // "yyyy-MM-dd"
};

struct SampleDiary {
    std::vector<SampleChild> children;
    long long rows = 0;
    int courses = 0;
    int photos = 0;
    long long feedings = 0;  // food rows of the feeding diary
};

// The moment the sample diary is written "now": its children have fourteen
// years of diary behind them.
core::Date sampleNow();

// Writes a diary as a family keeps it for years into a fresh data folder:
// two children of fourteen years each, nearly every kind of entry on most
// days in the formats the program stores, a photo and its thumbnail every
// third day, and ten medicine courses a month spread over their days. The
// first child has a feeding diary of its first three years: 6 to 8 feedings
// a day of 1 to 3 foods. The same seed always gives the same diary.
SampleDiary writeSampleDiary(const std::filesystem::path& dataDir,
                             const std::filesystem::path& resourceDir);

}  // namespace tilika::bench
