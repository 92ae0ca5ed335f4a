#include "development/doctor_plan.h"

#include <SQLiteCpp/Database.h>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/text.h"
#include "diary/day_cloud.h"
#include "diary/day_rows.h"
#include "diary/reference_lists.h"

namespace tilika::development {

namespace {

// The menu and the diary show the day's entries.
constexpr int kNotePages[] = {0, 9};

}  // namespace

std::vector<std::string> DoctorPlan::loadMarks(std::string_view gid) const {
    std::vector<std::string> marks;
    diary::ReferenceLists(context_).loadCheckData(marks, kDoctorSelType, gid);
    return marks;
}

CheckOutcome DoctorPlan::checkClick(std::string_view tagguid, bool checked,
                                    std::string_view hiddenText, int basetp, std::string_view gid) {
    CheckOutcome outcome;
    outcome.result =
        diary::ReferenceLists(context_).setCheckData(kDoctorSelType, tagguid, checked, gid);
    if (!outcome.result) {
        return outcome;
    }
    if (context_.state.cloudMode == core::cloudmode::icloud) {
        checkCloud_.keyValueToCloud(kDoctorSelType, tagguid, checked, gid);
    }
    if (basetp == kDiaryBaseType && checked && !core::trimmed(hiddenText).empty()) {
        outcome.offer = NoteOffer{std::string(kNoteFormCaption), std::string(kNoteFormPrompt),
                                  std::string(hiddenText)};
    }
    return outcome;
}

std::string DoctorPlan::insertIntoNote(std::string_view text, std::string_view date,
                                       std::string_view gid) {
    const core::Dates& dates = context_.dates;
    const auto day = dates.dateFromStringFormat(core::trimmed(date), core::formats::screenDay);
    if (!day) {
        return std::string(kBadNoteDate);
    }
    if (core::trimmed(text).empty()) {
        return {};
    }
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return core::WriteResult(core::WriteFailure::noDatabase).message();
    }
    core::WriteResult result = core::tryWrite("insertIntoNote", [&] {
        core::WriteTransaction transaction(*db);
        diary::DayRows rows(*db, dates);
        const std::string before = rows.getDateValue(*day, kVaccinationType, gid);
        const std::string value =
            before.empty() ? std::string(text) : before + "\n" + std::string(text);
        rows.insertValue(kVaccinationType, value, *day, gid, true, false);
        if (const core::WriteResult written = rows.result(); !written) {
            throw core::WriteFailed(written.failure().value_or(core::WriteFailure::other));
        }
        transaction.commit();
    });
    if (!result) {
        return result.message();
    }
    for (const int page : kNotePages) {
        context_.state.pageDirty[static_cast<std::size_t>(page)] = true;
    }
    if (context_.state.cloudMode == core::cloudmode::icloud) {
        dayCloud_.dataToCloud(diary::DayCloud::kDayRecord, *day, gid);
    }
    return {};
}

}  // namespace tilika::development
