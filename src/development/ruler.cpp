#include "development/ruler.h"

#include <algorithm>
#include <cmath>

#include "core/text.h"

namespace tilika::development {

namespace {

// Numbers are printed as C prints them; the locale of the process must not
// turn the point into a comma.
std::string fixed(double value, int decimals) {
    return core::formatFixed(value, decimals);
}

}  // namespace

Ruler::Ruler(int min, int max, int type, double scale)
    : min_(min), max_(std::max(min, max)), type_(type), scale_(scale > 0 ? scale : 1) {}

RulerReading Ruler::read(double offset, double visible, double secondOffset,
                         double secondVisible) const {
    const double c = offset + visible / 2;
    RulerReading reading;
    if (type_ == rulertype::months) {
        const double points = c / scale_;
        const long long years = static_cast<long long>(points / 60) + min_;
        const long long rest = static_cast<long long>(points) % 60;
        const long long months = std::max(0LL, static_cast<long long>(years * 12 + rest / 5.0));
        // Months have no off position: the first tick is the month of birth.
        reading.position = static_cast<double>(months);
        reading.text = std::to_string(months) + " мес.";
        return reading;
    }
    const double value = min_ + c / (10 * kTick * scale_);
    std::string text = fixed(value, 1);
    if (type_ == rulertype::thousandths) {
        // The second ruler turns ten units a whole tenth, and is read a little
        // to the right of its middle, where its pointer stands.
        const double digits =
            ((secondOffset + secondVisible / 2 + 23 * scale_) / (50 * scale_) - 4 * scale_) * 10;
        std::string second = "0";
        second += fixed(std::max(0.0, digits), 0);
        text += second.substr(second.size() - 2);
    }
    const double position = core::floatValue(text);
    if (position > 0) {
        reading.text = std::move(text);
        reading.position = position;
    }
    return reading;
}

RulerPlacement Ruler::place(double value, bool active, double visible, double secondVisible) const {
    RulerPlacement placement;
    if (type_ == rulertype::months) {
        // Months are placed on the middle of their own tick: going through
        // years in three decimals would lose up to a month.
        if (value > 0) {
            const double months = std::floor(value + 1e-9);
            placement.offset = ((months - 12.0 * min_) * kTick + kTick / 2) * scale_ - visible / 2;
        }
        placement.marks = active && value > 0;
        if (placement.marks) {
            placement.reading = read(placement.offset, visible);
        }
        return placement;
    }
    if (value > 0) {
        // "3.456" is the main ruler's 3.4 and the second ruler's 56.
        const std::string text = fixed(value, 3);
        const double whole = core::floatValue(text.substr(0, text.size() - 2));
        const double digits = core::floatValue(text.substr(text.size() - 2));
        placement.offset = (whole - min_) * unitWidth() - visible / 2;
        if (type_ == rulertype::thousandths) {
            placement.secondOffset =
                (digits / 10 + 4 * scale_) * 50 * scale_ - secondVisible / 2 - 23 * scale_;
        }
    }
    placement.marks = active && value > 0;
    if (placement.marks) {
        placement.reading = read(placement.offset, visible, placement.secondOffset, secondVisible);
    }
    return placement;
}

double Ruler::leftPadding(double visible) const {
    return visible / 2;
}

std::vector<RulerTick> Ruler::ticks() const {
    std::vector<RulerTick> result;
    const int perUnit = ticksPerUnit();
    const long long count = static_cast<long long>(max_ - min_) * perUnit;
    result.reserve(static_cast<std::size_t>(count + 1));
    for (long long i = 0; i <= count; ++i) {
        RulerTick tick;
        tick.x = static_cast<double>(i) * kTick * scale_;
        tick.whole = i % perUnit == 0;
        if (tick.whole) {
            // A month ruler is labelled by months, from zero on.
            const long long unit = min_ + i / perUnit;
            if (type_ != rulertype::months) {
                tick.label = std::to_string(unit);
            } else if (unit >= 0) {
                tick.label = std::to_string(unit * 12);
            }
        }
        result.push_back(std::move(tick));
    }
    return result;
}

}  // namespace tilika::development
