#pragma once

#include <string>
#include <string_view>

namespace tilika::core {

// Short and full weekday names by the calendar's number (1 = Sunday); any
// number outside 1..6 reads as Saturday.
std::string weekday(int number);
std::string weekdayfull(int number);

// Month name in the nominative for 1..11; any other number is December.
std::string monthName(int number);

// Signed difference in minutes between two "HH:mm" times; orders rows by
// time of day.
int timeCompare(std::string_view time1, std::string_view time2);

// Russian agreement of a noun with a count: `a` for one ("год"), `b` for a
// few ("года"), `c` for many ("лет").
std::string rusForms(int count, std::string_view a, std::string_view b, std::string_view c);
// The same, with `d` for a fraction below one ("ложки" of half a spoon).
std::string rusForms4(int count, std::string_view a, std::string_view b, std::string_view c,
                      std::string_view d);

// The dose unit spelled out in agreement with the dose ("1/2", "ст.лож." gives
// "столовой ложки"); empty for a unit it doesn't know.
std::string rusScon(std::string_view dose, std::string_view unit);

}  // namespace tilika::core
