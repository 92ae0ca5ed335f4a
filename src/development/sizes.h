#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tilika::core {
struct AppState;
}

namespace tilika::development {

// How the card draws a line of the sizes: the same styles as every passport
// card uses.
namespace sizestyle {
inline constexpr int separator = 0;
inline constexpr int body = 3;      // `text` across the card
inline constexpr int hint = 4;      // `text`, grey
inline constexpr int labelled = 5;  // picture, `text` as the name, `value`
}  // namespace sizestyle

// Region lines pull their value column this far to the left, so that the
// longer names of foreign sizes fit.
inline constexpr int kRegionValueShift = -30;

// One line of the sizes card, ready for the card drawing to lay out.
struct SizeLine {
    int style = sizestyle::separator;
    std::string text;
    std::string value;
    std::string picture;  // "flag1".."flag4" on region lines, else ""
    int correctLeft = 0;
};

// What the sizes are worked out from: the latest measures (cm, 0 when
// absent) and the age in whole months, negative for a birth date ahead.
struct SizeInputs {
    float rost = 0;
    float bio1 = 0;  // head girth
    float bio2 = 0;  // chest
    float bio3 = 0;  // waist
    float bio4 = 0;  // hips
    float bio5 = 0;  // foot length
    int months = 0;
};

struct ClothingSizes {
    int ageSize = 0;   // the size of the child's age
    int ageHead = 0;   // the hat size of the child's age
    int headSize = 0;  // the hat size of the head girth
    int rostSize = 0;  // the size of the height
    // 0 when no height row holds; 1 for the height alone, and one more for
    // each girth inside that row's bounds, the chest counting as two.
    int match = 0;
    int shoe = 0;  // 0 when the foot fits no row
    int sock = 0;
    std::vector<SizeLine> lines;
};

// The clothing, hat and shoe sizes and the card's lines. Texts are in the
// state's language.
ClothingSizes clothingSizes(const core::AppState& state, const SizeInputs& inputs);

// The name of a clothing size in a region: 1 Russia, 2 Europe, 3 Britain,
// 4 America. Nothing for a size or region the table does not know.
std::optional<std::string> odSize(const core::AppState& state, int size, int region);

}  // namespace tilika::development
