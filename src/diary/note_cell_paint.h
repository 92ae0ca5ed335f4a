#pragma once

#include <optional>
#include <vector>

#include "diary/diary_store.h"
#include "platform/canvas.h"

namespace tilika::diary {

// What a day row looks like beyond its data.
struct NoteCellLook {
    bool darkBars = true;    // today's tint is warm rather than white
    bool colorIcons = true;  // the "c-" pictures of the sections
    platform::Color textColor{0, 0, 0, 1};
};

// The tap areas of a drawn day row.
struct NoteCellButtons {
    platform::Rect row;                      // opens the day
    std::optional<platform::Rect> picture;   // previews the photo
    std::optional<platform::Rect> analysis;  // opens the day's analyses
};

// Draws one day of the diary table: the coloured block with the day and
// weekday, the day's sections in catalogue order, the photo's thumbnail and
// an arrow. The height is found by the same walk as the drawing, so a row
// is always exactly as tall as what it draws.
class NoteCellPaint {
public:
    explicit NoteCellPaint(NoteCellLook look) : look_(look) {}

    // `rows` is the day laid into the catalogue (noteStructToTodayNote).
    double height(const DayNote& day, const std::vector<CatalogueRow>& rows, double width,
                  const platform::Canvas& measure) const;
    // Texts are measured on `measure` where given (one that remembers its
    // texts, say), else on the canvas drawn on.
    NoteCellButtons draw(const DayNote& day, const std::vector<CatalogueRow>& rows,
                         const platform::Rect& rect, bool today, platform::Canvas& canvas,
                         const platform::Canvas* measure = nullptr) const;

    // Whether a catalogue row has anything to show in a day row.
    static bool shown(const DayNote& day, const CatalogueRow& row);

private:
    double walk(const DayNote& day, const std::vector<CatalogueRow>& rows,
                const platform::Rect& rect, const platform::Canvas& measure,
                platform::Canvas* paint, NoteCellButtons* buttons) const;

    NoteCellLook look_;
};

}  // namespace tilika::diary
