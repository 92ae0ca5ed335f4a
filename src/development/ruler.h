#pragma once

#include <string>
#include <vector>

namespace tilika::development {

// Kinds of ruler on which a number is picked by scrolling.
namespace rulertype {
inline constexpr int tenths = 1;       // 36.6
inline constexpr int temperature = 2;  // tenths, over a thermometer's scale
inline constexpr int thousandths = 3;  // 3.456: a second ruler gives the last two digits
inline constexpr int months = 4;       // whole months, labelled by years
}  // namespace rulertype

// What the ruler shows and gives at a position. Zero and below is the "off"
// position: the ruler's range starts a little below zero so that a parent can
// take a value back by scrolling to the left, and there it reads no value.
struct RulerReading {
    std::string text;     // "" when off
    double position = 0;  // the value, 0 when off
};

// Where the ruler is scrolled to show a value.
struct RulerPlacement {
    double offset = 0;        // of the main ruler's content
    double secondOffset = 0;  // of the second ruler, for thousandths
    bool marks = false;       // whether the value marks are shown
    RulerReading reading;
};

// A tick and, on whole units, the label below it: the unit, or for a month
// ruler the months of each whole year from zero on.
struct RulerTick {
    double x = 0;
    bool whole = false;
    std::string label;
};

// The arithmetic of the ruler, without a screen: offsets are in points of
// the scrolled content, visible widths are those of the scroll area. A view
// pads the content by half its width on the left, so the pointer in the
// middle reaches the lowest values: offsets then start at minus that half.
class Ruler {
public:
    // The second ruler of a thousandths ruler is this wide, before scaling.
    static constexpr double kSecondWidth = 900;

    Ruler(int min, int max, int type, double scale);

    int min() const { return min_; }
    int max() const { return max_; }
    int type() const { return type_; }
    // Ticks in a unit: months in a year, else tenths.
    int ticksPerUnit() const { return type_ == rulertype::months ? 12 : 10; }
    double unitWidth() const { return ticksPerUnit() * kTick * scale_; }
    double contentWidth() const { return (max_ - min_) * unitWidth(); }
    double secondContentWidth() const { return kSecondWidth * scale_; }

    // The value under the middle of the visible part.
    RulerReading read(double offset, double visible, double secondOffset = 0,
                      double secondVisible = 0) const;
    // Scrolls to the value (months for a month ruler). An inactive ruler or
    // a value of 0 or less hides the marks and reads no value.
    RulerPlacement place(double value, bool active, double visible, double secondVisible = 0) const;
    // The room a view leaves on the left of the ruler.
    double leftPadding(double visible) const;

    // The ticks of the label scale, left to right.
    std::vector<RulerTick> ticks() const;

private:
    static constexpr double kTick = 5;

    int min_;
    int max_;
    int type_;
    double scale_;
};

}  // namespace tilika::development
