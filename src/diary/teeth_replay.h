#pragma once

#include <array>
#include <string>
#include <string_view>

namespace tilika::diary {

// Milk teeth are numbered 1 to 20 as the tooth chart shows them: the upper
// ones from the viewer's left, then the lower ones.
inline constexpr int kMilkTeeth = 20;
// A day's value names a tooth that fell out by its number plus this.
inline constexpr int kToothLost = 100;

// The dental number a clinic uses for each tooth of the chart, by its number
// less one.
inline constexpr std::array<int, kMilkTeeth> kDentalNumbers{55, 54, 53, 52, 51, 61, 62, 63, 64, 65,
                                                            85, 84, 83, 82, 81, 71, 72, 73, 74, 75};

// The teeth a child has, replayed from the day values of the teeth entry.
// Each day's value holds only its changes, joined by "<tr>": a tooth that came
// through by its number, a lost one by its number plus 100. Fed the days
// oldest first, the replay gives the teeth after the last of them. Pieces
// that name no tooth ("", "abc", "0", "121") are skipped.
class ToothReplay {
public:
    void apply(std::string_view value);
    bool has(int tooth) const;
    // The teeth present in ascending order, joined by "<tr>".
    std::string text() const;

private:
    std::array<bool, kMilkTeeth + 1> present_{};
};

}  // namespace tilika::diary
