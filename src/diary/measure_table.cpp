#include "diary/measure_table.h"

#include <utility>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/text.h"
#include "diary/day_cloud.h"
#include "diary/day_rows.h"
#include "diary/diary_store.h"
#include "diary/profiles.h"
#include "frame/form_kinds.h"

namespace tilika::diary {

namespace {

// The menu, the diary and the charts show the measures.
constexpr int kMeasurePages[] = {1, 3, 9};
constexpr const char* kValueField = "value";
constexpr const char* kDateField = "date";

}  // namespace

MeasureTable::MeasureTable(core::Context& context, DiaryStore& store, DayCloud& cloud)
    : context_(context), store_(store), cloud_(cloud) {}

void MeasureTable::prepare(int regim, std::string gid) {
    regim_ = regim == kHeight ? kHeight : kWeight;
    gid_ = std::move(gid);
    field_ = regim_ == kWeight ? "ves" : "rost";
    caption_ = regim_ == kWeight ? "Вес" : "Рост";
    reloadData();
}

void MeasureTable::reloadData() {
    rows_.clear();
    std::vector<DayNote> days;
    store_.loadNoteData(days, regim_ == kWeight ? loadregim::weight : loadregim::height, 0,
                        context_.dates.now(), gid_);
    const SetupRecord setup = Profiles(context_).loadSetupData(gid_);
    const core::Dates& dates = context_.dates;
    for (const DayNote& day : days) {
        if (!day.dat || day.value(field_).empty()) {
            continue;
        }
        Row row;
        row.dat = *day.dat;
        row.value = day.value(field_);
        row.day = dates.dateToString(day.dat, core::formats::longDay);
        if (setup.sbirthdate) {
            row.age = dates.monthAge(setup.birthdate, *day.dat, true, false);
        }
        rows_.push_back(std::move(row));
    }
}

std::string MeasureTable::formatted(double value) const {
    return core::formatFixed(value, regim_ == kWeight ? 3 : 1);
}

EntryForm MeasureTable::addForm() {
    EntryForm form;
    form.caption = caption_;
    const bool weight = regim_ == kWeight;
    addToNoteInit(form.rows, "", weight ? "Вес (кг.)" : "Рост", frame::formkind::slider, 0, "", "",
                  kValueField, true, true);
    CatalogueRow& slider = form.rows.back();
    // The slider starts below zero here, unlike the day editor's: a scale
    // that starts at a baby's weight is hard to reach the low end of.
    slider.scalemin = weight ? "-3" : "20";
    slider.scalemax = weight ? "80" : "180";
    slider.scaletype = weight ? "3" : "1";
    slider.startactive = false;
    addToNoteInit(form.rows, "", "Дата замера", frame::formkind::date, 0, "Дата замера", "",
                  kDateField, true, true);
    const core::Date today = context_.dates.now();
    form.defaults[kValueField] = formatted(store_.getLastValue(today, field_, gid_));
    form.defaults[kDateField] = context_.dates.dateToString(today, core::formats::screenDay);
    return form;
}

core::WriteResult MeasureTable::editData(const std::vector<CatalogueRow>& answer) {
    std::string value;
    std::optional<core::Date> date;
    for (const CatalogueRow& row : answer) {
        if (row.field == kValueField) {
            value = row.source;
        } else if (row.field == kDateField) {
            date = context_.dates.dateFromStringFormat(row.source, core::formats::screenDay);
        }
    }
    // The form asks for both; without them there is nothing to store.
    if (!date || core::trimmed(value).empty()) {
        return {};
    }
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return core::WriteFailure::noDatabase;
    }
    DayRows rows(*db, context_.dates);
    rows.insertValue(field_, formatted(core::floatValue(value)), *date, gid_, true, false);
    if (!rows.result()) {
        return rows.result();
    }
    changed(*date);
    return {};
}

core::WriteResult MeasureTable::deleteRow(std::size_t row) {
    if (row >= rows_.size()) {
        return {};
    }
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return core::WriteFailure::noDatabase;
    }
    const core::Date date = rows_[row].dat;
    DayRows rows(*db, context_.dates);
    rows.deleteValue(field_, date, gid_);
    if (!rows.result()) {
        return rows.result();
    }
    changed(date);
    return {};
}

void MeasureTable::changed(core::Date date) {
    if (context_.state.cloudMode == core::cloudmode::icloud) {
        cloud_.dataToCloud(DayCloud::kDayRecord, date, gid_);
    }
    for (const int page : kMeasurePages) {
        context_.state.pageDirty[static_cast<std::size_t>(page)] = true;
    }
    reloadData();
}

}  // namespace tilika::diary
