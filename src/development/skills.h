#pragma once

#include <string>
#include <vector>

#include "platform/canvas.h"

namespace tilika::development {

// A skill a young child learns, with the text that tells how it comes.
// Skills with a `maxweek` above 0 have a progress ring: the age in weeks
// over that limit. The text's groups are numbered by week of life, or with
// `inmonth` by whole month.
struct Skill {
    std::string caption;
    std::string file;
    std::string desc;
    int minweek = 0;
    int maxweek = 0;
    bool inmonth = false;
};

// The rings fill in this many steps.
inline constexpr int kRingSteps = 10;
inline constexpr platform::Color kRingColor{1.0, 0.584, 0.0};
inline constexpr platform::Color kRingBackColor{0.565, 0.718, 0.447};

// The skills in the order the page lists them.
const std::vector<Skill>& candoi();

// How full a skill's ring is at a step of its filling, in percent, at most
// 100; 0 for a skill without a ring or for an age before birth.
double ringPercent(const Skill& skill, int gcurweek, int step);

// The percentage as the ring shows it, whole and rounded half up, so that
// 32.5 reads "33%".
double shownPercent(double percent);
std::string ringLabel(double percent);

// The group of the skill's text to open at: the month for the skills told
// by month, the week for the others.
long long skillGroup(const Skill& skill, int gcurweek, int gcurmonth);

}  // namespace tilika::development
