#include "development/feeding.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include <algorithm>
#include <chrono>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/text.h"
#include "diary/day_cloud.h"
#include "diary/display_texts.h"
#include "diary/reference_lists.h"
#include "diary/value_codecs.h"
#include "frame/form_values.h"
#include "platform/log.h"

namespace tilika::development {

namespace {

using diary::jsonText;
using nlohmann::json;

const std::array<KormKind, kKormKinds> kKinds{{
    {kormkind::breast, "Грудное кормление", "Грудное кормление", "Грудное молоко",
     "Укажите сколько по времени Вы кормили левой и правой грудью", 18, 0, false, "korm-tp1.png"},
    {kormkind::formula, "Смесь/сцеженное молоко", "Смесь/сцеж.молоко", "Смесь/сцеженное молоко",
     "Укажите объем смеси или молока в миллилитрах, который съел малыш за кормление", 19,
     diary::cotype::formula, true, "korm-tp1.png"},
    {kormkind::kefir, "Кефир", "Кефир", "Кефир",
     "Укажите объем кефира в миллилитрах, который малыш съел", 105, diary::cotype::formula, false,
     "korm-tp2.png"},
    {kormkind::tvorog, "Творог", "Творог", "Творог",
     "Укажите вес творога в граммах, который малыш съел", 105, diary::cotype::formula, false,
     "korm-tp2.png"},
    {kormkind::cereal, "Каша", "Каша", "Каша",
     "Укажите объем каши в миллилитрах и выберите ее в списке. Если в списке нужной строки нет "
     "- добавьте ее нажав на кнопку 'Добавить тип' внизу списка.",
     19, diary::cotype::cereals, true, "korm-tp3.png"},
    {kormkind::puree, "Суп или пюре", "Суп или пюре", "Суп или пюре",
     "Укажите объем супа или пюре в миллилитрах и выберите его в списке. Если в списке нужной "
     "строки нет - добавьте ее нажав на кнопку 'Добавить тип' внизу списка.",
     19, diary::cotype::purees, true, "korm-tp4.png"},
    {kormkind::other, "Другое", "Другое", "Другое",
     "Укажите величину съеденного и выберите в списке сам продукт. Если в списке нужной строки "
     "нет - добавьте ее нажав на кнопку 'Добавить тип' внизу списка.",
     27, diary::cotype::otherFood, true, "korm-tp5.png"},
}};

bool knownKind(int tp) {
    return tp >= 1 && tp <= kKormKinds;
}

// The food a stored value holds: an object of one of our kinds, or null.
json readFood(std::string_view value) {
    if (!diary::jsonIs(value)) {
        return nullptr;
    }
    json food = diary::jsonToDictionary(value);
    if (!food.is_object() || !knownKind(core::intValue(jsonText(food, "tp")))) {
        return nullptr;
    }
    return food;
}

// The unit of other food, which its caption carries in brackets:
// "Сок (мил.)<tr>12" counts in "мил.".
std::string unitOfCaption(std::string_view coname) {
    const std::string caption = frame::captionText(coname);
    const std::size_t open = caption.find('(');
    if (open == std::string::npos || caption.size() - open < 2) {
        return {};
    }
    return caption.substr(open + 1, caption.size() - open - 2);
}

std::string sumsText(const std::array<long long, kKormKinds>& sums) {
    std::string text;
    for (std::size_t i = 0; i < sums.size(); ++i) {
        if (i > 0) {
            text += "<tr>";
        }
        text += std::to_string(sums[i]);
    }
    return text;
}

std::string dayPattern(const core::Dates& dates, core::Date dat) {
    return dates.dateToString(dat, core::formats::day) + "%";
}

// Walks the rows of one child in time order and closes feedings and days as
// the moment and the day change. The moments come as SQLite's datetime()
// texts, "yyyy-MM-dd HH:mm:ss" in local time, so a change of second or of
// day is a change of text; years of feedings would otherwise cost a calendar
// parse and format each.
class KormWalk {
public:
    KormWalk(const core::Dates& dates, std::vector<KormRow>& rows, std::vector<KormGroup>& groups)
        : dates_(dates), rows_(rows), groups_(groups) {}

    void add(std::string_view moment, int kotype, std::string_view kovalue, long long kosum) {
        if (moment.size() != kMomentLength) {
            return;  // a moment we can't place belongs to no day
        }
        if (moment != lastMoment_) {
            closeFeeding();
            if (moment.substr(0, kDayLength) != lastMoment_.substr(0, kDayLength)) {
                closeDay();
                if (!enterDay(moment)) {
                    lastMoment_.clear();
                    return;
                }
            }
            lastMoment_ = moment;
            moment_ = momentOf(moment);
        }
        // The kind of a row was worked out from its value when it was stored:
        // one that isn't ours, or wasn't JSON, has none.
        if (knownKind(kotype) && json::accept(kovalue)) {
            foods_ += foods_.empty() ? "[" : ",";
            foods_ += kovalue;
            sums_[static_cast<std::size_t>(kotype - 1)] += kosum;
        }
    }

    void finish() {
        closeFeeding();
        closeDay();
    }

private:
    void closeFeeding() {
        if (foods_.empty()) {
            return;
        }
        rows_.push_back({KormRow::feeding, moment_, foods_ + "]", {}});
        foods_.clear();
        lastFeeding_ = moment_;
        ++feedings_;
    }

    // The day's midnight, and whether the day is 24 hours long: on such a
    // day a time of day is simply that far from midnight, while a day with a
    // change of clocks needs the calendar for each moment.
    bool enterDay(std::string_view moment) {
        const std::optional<core::Date> start = dates_.dateFromString(moment.substr(0, kDayLength));
        if (!start) {
            return false;
        }
        dayStart_ = *start;
        plainDay_ = dates_.addDays(*start, 1) - *start == std::chrono::hours(24);
        const std::string_view day = moment.substr(0, kDayLength);
        day_ = std::string(day.substr(8, 2)) + "." + std::string(day.substr(5, 2)) + "." +
               std::string(day.substr(0, 4));
        return true;
    }

    core::Date momentOf(std::string_view moment) const {
        if (!plainDay_) {
            return dates_.dateFromString(moment).value_or(dayStart_);
        }
        const auto part = [&](std::size_t at) { return core::intValue(moment.substr(at, 2)); };
        return dayStart_ + std::chrono::hours(part(11)) + std::chrono::minutes(part(14)) +
               std::chrono::seconds(part(17));
    }

    // A day whose rows could none be read shows nothing, and the next day
    // still compares with the one before it that had feedings.
    void closeDay() {
        if (feedings_ > 0) {
            rows_.push_back({KormRow::totals, lastFeeding_, sumsText(sums_), sumsText(before_)});
            groups_.push_back({"", day_, feedings_ + 1, first_});
            before_ = sums_;
        }
        sums_.fill(0);
        feedings_ = 0;
        first_ = static_cast<int>(rows_.size());
    }

    static constexpr std::size_t kMomentLength = 19;
    static constexpr std::size_t kDayLength = 10;

    const core::Dates& dates_;
    std::vector<KormRow>& rows_;
    std::vector<KormGroup>& groups_;
    std::string lastMoment_;
    core::Date dayStart_{};
    bool plainDay_ = false;
    core::Date moment_{};
    core::Date lastFeeding_{};
    std::string day_;
    std::string foods_;
    std::array<long long, kKormKinds> sums_{};
    std::array<long long, kKormKinds> before_{};
    int feedings_ = 0;
    int first_ = 0;
};

}  // namespace

const std::array<KormKind, kKormKinds>& kormKinds() {
    return kKinds;
}

const KormKind* kormKind(int tp) {
    return knownKind(tp) ? &kKinds[static_cast<std::size_t>(tp - 1)] : nullptr;
}

int posFromIndexPath(const std::vector<KormGroup>& groups, int section, int row) {
    if (section < 0 || static_cast<std::size_t>(section) >= groups.size()) {
        return -1;
    }
    return groups[static_cast<std::size_t>(section)].first + row;
}

std::vector<std::string> kormFoods(const KormRow& row) {
    std::vector<std::string> foods;
    if (row.tp != KormRow::feeding) {
        return foods;
    }
    for (const json& food : diary::jsonToArray(row.value)) {
        if (food.is_object()) {
            foods.push_back(diary::jsonFromObject(food));
        }
    }
    return foods;
}

int kormTp(std::string_view value) {
    const json food = readFood(value);
    return food.is_null() ? kormkind::unreadable : core::intValue(jsonText(food, "tp"));
}

void addKormFood(std::vector<std::string>& foods, std::string value) {
    foods.push_back(std::move(value));
    std::stable_sort(foods.begin(), foods.end(), [](const std::string& a, const std::string& b) {
        return kormTp(a) < kormTp(b);
    });
}

KormCellText kormCellText(const core::Dates& dates, const KormRow& row,
                          const std::vector<frame::ListRow>& list) {
    KormCellText cell;
    cell.time = dates.dateToString(row.dat, core::formats::timeOfDay);
    for (const std::string& food : kormFoods(row)) {
        std::string line = diary::kormToString(food, list);
        const int tp = kormTp(food);
        if (tp == kormkind::kefir) {
            line = "Кефир: " + line;
        } else if (tp == kormkind::tvorog) {
            line = "Творог: " + line;
        }
        if (!cell.text.empty()) {
            cell.text += "\n";
        }
        cell.text += line;
    }
    return cell;
}

KormValue addEditKorm(int tp, std::string_view first, std::string_view second,
                      const std::vector<frame::ListRow>& list) {
    if (!knownKind(tp)) {
        return {std::nullopt, "Неизвестный вид питания"};
    }
    json food = {{"tp", std::to_string(tp)}};
    if (tp == kormkind::breast) {
        const long long left = frame::ttm(core::trimmed(first));
        const long long right = frame::ttm(core::trimmed(second));
        if (left < 0 || right < 0) {
            return {std::nullopt, "Время кормления не может быть отрицательным"};
        }
        food["tip"] = "Грудное молоко";
        food["left"] = std::to_string(left);
        food["right"] = std::to_string(right);
        return {diary::jsonFromObject(food), {}};
    }

    // The amount stays as typed, so that "много" reads as the parent wrote
    // it; only a number below zero is no amount at all.
    const std::string volume(core::trimmed(first));
    if (core::floatValue(volume) < 0) {
        return {std::nullopt, "Количество не может быть отрицательным"};
    }
    food["volume"] = volume;
    if (tp == kormkind::kefir) {
        food["tip"] = "Кефир";
        food["measure"] = "мил.";
    } else if (tp == kormkind::tvorog) {
        food["tip"] = "Творог";
        food["measure"] = "г.";
    } else {
        food["tip"] = std::string(second);
        if (tp == kormkind::other) {
            const frame::ListRow* product = frame::listByIndex(second, list);
            food["measure"] = product == nullptr ? std::string() : unitOfCaption(product->cap);
        } else {
            food["measure"] = "мил.";
        }
    }
    return {diary::jsonFromObject(food), {}};
}

KormFormValues kormFormValues(std::string_view value) {
    const json food = readFood(value);
    if (food.is_null()) {
        return {};
    }
    if (core::intValue(jsonText(food, "tp")) == kormkind::breast) {
        return {frame::mtt(core::intValue(jsonText(food, "left"))),
                frame::mtt(core::intValue(jsonText(food, "right")))};
    }
    return {jsonText(food, "volume"), jsonText(food, "tip")};
}

KormEntry prepareKorm(core::Date now) {
    return {std::chrono::floor<std::chrono::seconds>(now), {}, std::nullopt};
}

KormEntry prepareKorm(const KormRow& row) {
    return {row.dat, kormFoods(row), row.dat};
}

void insertKorm(SQLite::Database& db, const core::Dates& dates, core::Date dat,
                std::string_view val, std::string_view childguid) {
    int kotype = kormkind::unreadable;
    long long kosum = 0;
    const json food = readFood(val);
    if (!food.is_null()) {
        kotype = core::intValue(jsonText(food, "tp"));
        kosum = kotype == kormkind::breast ? core::intValue(jsonText(food, "left")) +
                                                 core::intValue(jsonText(food, "right"))
                                           : core::intValue(jsonText(food, "volume"));
    }
    SQLite::Statement insert(db,
                             "insert into childkorm (childguid, kodates, kotype,kovalue,kosum) "
                             "values(?,?,?,?,?)");
    insert.bind(1, std::string(childguid));
    core::dateToBase(dates, insert, 2, dat, true);
    insert.bind(3, kotype);
    insert.bind(4, std::string(val));
    insert.bind(5, static_cast<int64_t>(kosum));
    insert.exec();
}

void deleteKorm(SQLite::Database& db, const core::Dates& dates, core::Date dat,
                std::string_view childguid) {
    SQLite::Statement remove(
        db, "delete from childkorm where childguid=? and datetime(kodates)=datetime(?)");
    remove.bind(1, std::string(childguid));
    core::dateToBase(dates, remove, 2, dat, true);
    remove.exec();
}

void Feeding::loadKorm(std::vector<KormRow>& rows, std::vector<KormGroup>& groups,
                       std::string_view childguid) const {
    rows.clear();
    groups.clear();
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return;
    }
    const bool read = core::runGuarded("loadKorm", [&] {
        SQLite::Statement query(*db,
                                "select datetime(kodates), kotype, kovalue, kosum from childkorm "
                                "where childguid=? order by datetime(kodates), kotype");
        query.bind(1, std::string(childguid));
        KormWalk walk(context_.dates, rows, groups);
        while (query.executeStep()) {
            // Read in place: the walk keeps only what it needs of each row.
            const auto text = [&](int column) {
                const SQLite::Column value = query.getColumn(column);
                return std::string_view(value.getText(),
                                        static_cast<std::size_t>(value.getBytes()));
            };
            walk.add(text(0), query.getColumn(1).getInt(), text(2), query.getColumn(3).getInt64());
        }
        walk.finish();
    });
    if (!read) {
        rows.clear();
        groups.clear();
    }
}

std::vector<KormRecord> Feeding::loadKormForDate(core::Date dat, std::string_view gid) const {
    std::vector<KormRecord> records;
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return records;
    }
    core::runGuarded("loadKormForDate", [&] {
        SQLite::Statement query(*db,
                                "select kodates, kotype, kovalue, kosum from childkorm where "
                                "childguid=? and kodates like ?");
        query.bind(1, std::string(gid));
        query.bind(2, dayPattern(context_.dates, dat));
        while (query.executeStep()) {
            records.push_back(
                {core::stringFromBase(query, 0).value_or(""), query.getColumn(1).getInt(),
                 core::stringFromBase(query, 2).value_or(""), query.getColumn(3).getInt64()});
        }
    });
    return records;
}

core::WriteResult Feeding::saveKormForDate(core::Date dat, std::string_view gid,
                                           const std::vector<KormRecord>& records) {
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return core::WriteFailure::noDatabase;
    }
    return core::tryWrite("saveKormForDate", [&] {
        core::WriteTransaction transaction(*db);
        SQLite::Statement remove(*db, "delete from childkorm where childguid=? and kodates like ?");
        remove.bind(1, std::string(gid));
        remove.bind(2, dayPattern(context_.dates, dat));
        remove.exec();
        SQLite::Statement insert(*db,
                                 "insert into childkorm (kodates,kotype,kovalue,kosum,childguid) "
                                 "values (?,?,?,?,?)");
        for (const KormRecord& record : records) {
            // One row another device wrote badly must not cost the day's
            // other rows.
            // A statement whose last step failed reports that failure again
            // on reset; it is already logged.
            insert.tryReset();
            try {
                insert.bind(1, record.kodates);
                insert.bind(2, record.kotype);
                insert.bind(3, record.kovalue);
                insert.bind(4, static_cast<int64_t>(record.kosum));
                insert.bind(5, std::string(gid));
                insert.exec();
            } catch (const SQLite::Exception& e) {
                platform::log(std::string("error ") + e.what());
            }
        }
        transaction.commit();
    });
}

KormClose Feeding::closeOK(const KormEntry& entry, std::string_view childguid,
                           diary::DayCloud& cloud) {
    const core::Date dat = entry.dat;
    const std::vector<std::string>& foods = entry.foods;
    const std::optional<core::Date> olddat = entry.olddat;
    if (foods.empty()) {
        return KormClose::noFoods;
    }
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return KormClose::failed;
    }
    const core::Dates& dates = context_.dates;
    const core::WriteResult result = core::tryWrite("closeOK", [&] {
        core::WriteTransaction transaction(*db);
        if (olddat) {
            deleteKorm(*db, dates, *olddat, childguid);
        }
        // A feeding moved onto the moment of another one takes its place.
        deleteKorm(*db, dates, dat, childguid);
        for (const std::string& food : foods) {
            insertKorm(*db, dates, dat, food, childguid);
        }
        transaction.commit();
    });
    if (!result) {
        return KormClose::failed;
    }
    context_.state.pageDirty[static_cast<std::size_t>(kKormPage)] = true;
    if (context_.state.cloudMode == core::cloudmode::icloud) {
        cloud.dataToCloud(kKormCloudRecord, dat, childguid);
        // The records are by day: a feeding moved within its day is already
        // in the new day's record.
        if (olddat && dates.getDays(*olddat, dat) != 0) {
            cloud.dataToCloud(kKormCloudRecord, *olddat, childguid);
        }
    }
    return KormClose::saved;
}

}  // namespace tilika::development
