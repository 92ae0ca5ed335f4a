#include "frame/form_moments.h"

#include "core/dates.h"
#include "frame/form_kinds.h"
#include "frame/form_values.h"
#include "frame/popups.h"

namespace tilika::frame {

std::optional<MomentKind> momentKind(int tp) {
    switch (tp) {
        case formkind::diaryDate:
        case formkind::dateEntry:
        case formkind::date:
            return MomentKind{popupkind::date, core::formats::screenDay};
        case formkind::diaryTime:
        case formkind::time:
        case formkind::duration:
            return MomentKind{popupkind::time, core::formats::timeOfDay};
        case formkind::moment:
        case formkind::momentEntry:
        case formkind::dateTime:
            return MomentKind{popupkind::dateTime, core::formats::screenMoment};
        default:
            return std::nullopt;
    }
}

std::optional<core::Date> timeOnDay(std::string_view time, const core::Dates& dates,
                                    core::Date now) {
    // The time is read as a moment of that day, so the zone's rules for the
    // day (a change to summer time, say) apply as they do everywhere else.
    const std::string moment =
        dates.dateToString(now, core::formats::screenDay) + " " + std::string(time);
    return dates.dateFromStringFormat(moment, core::formats::screenMoment);
}

std::optional<core::Date> rowMoment(const FormRow& row, const core::Dates& dates,
                                    core::Date now) {
    const auto kind = momentKind(row.tp);
    if (!kind || row.source.empty()) {
        return std::nullopt;
    }
    if (kind->popup == popupkind::time) {
        return timeOnDay(row.source, dates, now);
    }
    return dates.dateFromStringFormat(row.source, kind->format);
}

std::string momentSource(int tp, core::Date picked, const core::Dates& dates) {
    const auto kind = momentKind(tp);
    return kind ? dates.dateToString(picked, kind->format) : std::string();
}

void fillEmptyMoments(FormRows& rows, const core::Dates& dates, core::Date now) {
    for (auto& row : rows) {
        if (!row.source.empty()) {
            continue;
        }
        if (row.tp == formkind::times) {
            row.source = kFallbackTimes;
        } else if (row.tp == formkind::diaryDate || row.tp == formkind::date ||
                   row.tp == formkind::diaryTime || row.tp == formkind::time) {
            row.source = momentSource(row.tp, now, dates);
        }
    }
}

}  // namespace tilika::frame
