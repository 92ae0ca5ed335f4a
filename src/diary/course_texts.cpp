#include "diary/course_texts.h"

#include "core/dates.h"
#include "diary/display_texts.h"
#include "diary/value_codecs.h"
#include "frame/course_amounts.h"

namespace tilika::diary {

std::string pillsToRead(std::string_view course, const std::vector<ListRow>& listData,
                        std::optional<core::Date> forDate, const core::Dates& dates) {
    const nlohmann::json record = jsonToDictionary(course);
    if (!record.is_object()) {
        return {};
    }
    auto text = [&record](std::string_view key) { return jsonText(record, key); };
    std::string reading = checkStringToRead(text("pillname"), listData) + ": " +
                          frame::dozaToRead3(text("pilldoza")) + ", " +
                          checkStringToRead(text("pillperiod"), listData) + ", " +
                          frame::periodToRead3(text("pillinter")) + ", " +
                          checkStringToRead(text("pilleat"), listData) + ", " +
                          frame::intervalToRead3(text("pilllength"), false);
    if (!forDate) {
        return reading;
    }
    // Without a readable first day there is no day of the course to tell.
    const std::optional<core::Date> start =
        dates.dateFromStringFormat(text("pillsdate"), core::formats::screenDay);
    if (start) {
        const int day = dates.getDays(*start, *forDate) + 1;
        const int total = frame::pillLengthToDays(text("pilllength"), *start, dates);
        reading += " (" + std::to_string(day) + " день из " + std::to_string(total) + ")";
    }
    return reading;
}

}  // namespace tilika::diary
