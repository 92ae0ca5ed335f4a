#pragma once

#include <array>

namespace tilika::development {

// The band of normal height (cm) and weight (kg) a growth chart draws: an
// upper and a lower curve, straight lines between the given ages.
template <std::size_t N>
struct NormCurves {
    std::array<double, N> rostDown;
    std::array<double, N> rostUp;
    std::array<double, N> vesDown;
    std::array<double, N> vesUp;
};

// Month 0 to 12 of the first year.
using MonthNorms = NormCurves<13>;
// Age 0 to 10 years.
using YearNorms = NormCurves<11>;

// By the profile's `sex`: 0 a boy, any other value a girl.
const MonthNorms& monthNorms(int sex);
const YearNorms& yearNorms(int sex);

}  // namespace tilika::development
