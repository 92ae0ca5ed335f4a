#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/date.h"
#include "core/write_result.h"
#include "frame/form_row.h"

namespace SQLite {
class Database;
}

namespace tilika::core {
struct Context;
class Dates;
}  // namespace tilika::core

namespace tilika::diary {
class DayCloud;
}

// The feeding diary: each meal of a baby is one moment with one or more foods,
// kept in its own table apart from the diary's days.
namespace tilika::development {

// The kinds of food, as `tp` of a stored food and `kotype` of its row.
namespace kormkind {
inline constexpr int breast = 1;
inline constexpr int formula = 2;
inline constexpr int kefir = 3;
inline constexpr int tvorog = 4;
inline constexpr int cereal = 5;
inline constexpr int puree = 6;
inline constexpr int other = 7;
// A row whose value can't be read keeps this kind and counts for nothing.
inline constexpr int unreadable = 0;
}  // namespace kormkind
inline constexpr int kKormKinds = 7;

// What the editor knows of one kind of food.
struct KormKind {
    int tp = 0;
    std::string_view caption;      // of its rows in the editor
    std::string_view menuCaption;  // in the menu of "Новая запись"
    std::string_view formCaption;  // the title of its form
    std::string_view prompt;       // the form's heading
    int formType = 0;              // the ready-made form that edits it
    int cotype = 0;                // the reference list of its products; 0 for none
    bool showsList = false;        // kefir and cottage cheese pick no product
    std::string_view picture;
};

// The seven kinds, in `tp` order; nothing for any other number.
const std::array<KormKind, kKormKinds>& kormKinds();
const KormKind* kormKind(int tp);

// The page the feeding diary is on, which a change marks to be reloaded.
inline constexpr int kKormPage = 7;
// The kind of cloud record a changed feeding day goes out as.
inline constexpr int kKormCloudRecord = 4;

inline constexpr std::string_view kKormSaveFailed = "Не удалось сохранить кормление";
inline constexpr std::string_view kNewKormRow = "Новая запись";
inline constexpr std::string_view kKormDateRow = "Дата и время";
// The value the breast form starts from for a new food.
inline constexpr std::string_view kNewBreastValue = R"({"left":"00:00","right":"00:00"})";

// One row of the feeding list: a feeding, or the totals of its day.
struct KormRow {
    static constexpr int feeding = 1;
    static constexpr int totals = 2;

    int tp = feeding;
    core::Date dat{};   // the feeding's moment; for totals, that of the day's last feeding
    std::string value;  // feeding: the foods as a JSON array; totals: the day's sums
    std::string last;   // totals: the sums of the day before that has records

    bool operator==(const KormRow&) const = default;
};

// One day of the list, a section of the screen.
struct KormGroup {
    std::string name;   // always empty
    std::string name2;  // the day, "dd.MM.yyyy"
    int count = 0;      // the day's rows, the totals row included
    int first = 0;      // the index of its first row among all rows

    bool operator==(const KormGroup&) const = default;
};

// The index among all rows of a row of a section (a day): the day's first
// row plus the row; -1 for a section that isn't there.
int posFromIndexPath(const std::vector<KormGroup>& groups, int section, int row);

// A feeding's row on the screen: its time and one line per food.
struct KormCellText {
    std::string time;  // "HH:mm"
    std::string text;
};
// `list` is the whole reference list (cotype 0), so that a product removed
// from its list still has its name.
KormCellText kormCellText(const core::Dates& dates, const KormRow& row,
                          const std::vector<frame::ListRow>& list);

// The foods of a feeding row, each as its stored JSON text.
std::vector<std::string> kormFoods(const KormRow& row);
// The kind of a stored food, 0 when it isn't one of ours.
int kormTp(std::string_view value);
// Adds a food to the editor's foods, which stay in the order of their kinds.
void addKormFood(std::vector<std::string>& foods, std::string value);

// The stored value of one food from its form: `first` and `second` are the
// values of the form's first and second rows (the left and right breast, or
// the amount and the chosen product). `list` holds the products of the kind's
// list, for the unit that other food takes from its caption.
struct KormValue {
    std::optional<std::string> value;
    std::string message;  // why the form's values were refused
};
KormValue addEditKorm(int tp, std::string_view first, std::string_view second,
                      const std::vector<frame::ListRow>& list);

// The values a stored food puts back into its form's two rows: the breast
// times as "HH:mm", or the amount and the product.
struct KormFormValues {
    std::string first;
    std::string second;
};
KormFormValues kormFormValues(std::string_view value);

// The feeding the editor works on.
struct KormEntry {
    core::Date dat{};  // "Дата и время"
    std::vector<std::string> foods;
    std::optional<core::Date> olddat;  // where it is stored, unless it is new
};
// A new feeding at this moment (to the second), or the feeding of a row.
KormEntry prepareKorm(core::Date now);
KormEntry prepareKorm(const KormRow& row);

// One food row of a day as the cloud records carry it.
struct KormRecord {
    std::string kodates;
    int kotype = 0;
    std::string kovalue;
    long long kosum = 0;

    bool operator==(const KormRecord&) const = default;
};

// Plain statements on an open connection, for callers that hold the
// transaction. `dat` is stored as a moment "yyyy-MM-dd HH:mm:ss".
void insertKorm(SQLite::Database& db, const core::Dates& dates, core::Date dat,
                std::string_view val, std::string_view childguid);
// Removes the whole feeding at that second.
void deleteKorm(SQLite::Database& db, const core::Dates& dates, core::Date dat,
                std::string_view childguid);

// What closing the editor came to.
enum class KormClose {
    saved,
    noFoods,  // nothing was written; the editor stays open
    failed,   // nothing was written; say kKormSaveFailed
};

// The feeding diary of the program's database.
class Feeding {
public:
    explicit Feeding(core::Context& context) : context_(context) {}

    // All feedings of the child by day, oldest first, each day closed by its
    // totals row. Rows that can't be read are left out.
    void loadKorm(std::vector<KormRow>& rows, std::vector<KormGroup>& groups,
                  std::string_view childguid) const;

    // The food rows of one day, and the day replaced by other rows in one
    // transaction; a row that can't be stored is logged and skipped.
    std::vector<KormRecord> loadKormForDate(core::Date dat, std::string_view gid) const;
    core::WriteResult saveKormForDate(core::Date dat, std::string_view gid,
                                      const std::vector<KormRecord>& records);

    // Stores the feeding the editor holds: the one it was opened on
    // (`olddat`) and any other at the new moment are replaced by its foods,
    // all or nothing. The changed days go to `cloud`.
    KormClose closeOK(const KormEntry& entry, std::string_view childguid, diary::DayCloud& cloud);

private:
    core::Context& context_;
};

}  // namespace tilika::development
