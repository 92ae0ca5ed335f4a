#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "development/passport.h"
#include "development/sizes.h"
#include "platform/canvas.h"

namespace tilika::core {
struct AppState;
struct Context;
}  // namespace tilika::core

namespace tilika::diary {
struct SetupRecord;
}

namespace tilika::development {

// The passport's cards, top to bottom.
namespace card {
inline constexpr int main = 1;
inline constexpr int illnesses = 2;
inline constexpr int allergens = 3;
inline constexpr int sizes = 4;
}  // namespace card

// How a card line is laid out.
namespace linestyle {
inline constexpr int separator = 0;
inline constexpr int heading = 1;   // `name`, bold
inline constexpr int measure = 2;   // picture, name, value and `dat` in small print
inline constexpr int body = 3;      // `value` across the card, `dat` to its right
inline constexpr int hint = 4;      // `value`, grey
inline constexpr int labelled = 5;  // picture, name and value
}  // namespace linestyle

// Everything the four cards show, worked out beforehand so that drawing
// reads no database and no clock.
struct PassportCardData {
    // From the profile: the measures at birth as typed, and the moment of
    // birth when the profile holds a full one.
    std::string birthRost;
    std::string birthVes;
    std::optional<std::string> birthTime;  // "HH:mm"
    std::string age;                       // months and days
    int ageDays = 0;
    std::string ageWeeks;  // the same age in weeks and days
    PassportData measures;
    std::string blood;      // the caption of the blood group
    std::string documents;  // the documents as one text, "" when none
    std::vector<IllnessOnCard> illnesses;
    std::vector<std::string> allergens;
    std::vector<SizeLine> sizes;
};

// Gathers the cards' data of a child from the diary and the profile.
PassportCardData passportCardData(core::Context& context, const diary::SetupRecord& setup,
                                  std::string_view gid);

// Draws one card of the passport. Measuring walks exactly the lines drawing
// does, so a card is always as tall as what it shows.
class PassportCard {
public:
    PassportCard(const core::AppState& state, PassportCardData data)
        : state_(state), data_(std::move(data)) {}

    // Draws the card `tp` into the rectangle's width from its top, or only
    // measures it when `draw` is false; gives the bottom reached.
    double drawContent(platform::Canvas& canvas, int tp, bool draw, const platform::Rect& rect);
    // The height of a card 320 units wide.
    double calcHeight(platform::Canvas& canvas, int tp);

    // Lays out one line from `top` and gives the top of the next. `csr`
    // moves the value right by the width of "00", so that a figure with one
    // decimal lines up with three; `correctleft` moves the value column.
    double addLine(platform::Canvas& canvas, double top, int tp, std::string_view pic,
                   std::string_view name, std::string_view value, std::string_view dat,
                   bool justsize, const platform::Rect& rc, double correctleft, bool csr);

    // The buttons of card 1 as last drawn: the documents and the
    // vaccination card.
    const std::optional<platform::Rect>& doc1Rect() const { return doc1Rect_; }
    const std::optional<platform::Rect>& doc2Rect() const { return doc2Rect_; }

private:
    double mainCard(platform::Canvas& canvas, double top, bool justsize, const platform::Rect& rc);
    double sizesCard(platform::Canvas& canvas, double top, bool justsize, const platform::Rect& rc);
    // One body line an item, with its `dat` to the right, or the grey hint
    // when there are none.
    double listCard(platform::Canvas& canvas, double top,
                    const std::vector<std::pair<std::string, std::string>>& items,
                    std::string_view hint, bool justsize, const platform::Rect& rc);
    double addButton(platform::Canvas& canvas, double top, std::string_view caption, bool justsize,
                     const platform::Rect& rc, std::optional<platform::Rect>& where);
    std::string tr(std::string_view text) const;
    std::string picture(std::string_view name) const;

    const core::AppState& state_;
    PassportCardData data_;
    std::optional<platform::Rect> doc1Rect_;
    std::optional<platform::Rect> doc2Rect_;
};

}  // namespace tilika::development
