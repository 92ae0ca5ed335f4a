#include "diary/reference_lists.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include <algorithm>
#include <array>
#include <charconv>

#include "core/context.h"
#include "core/database.h"
#include "core/ids.h"
#include "core/text.h"

namespace tilika::diary {

namespace {

constexpr std::string_view kTail = "<tr>";
constexpr std::string_view kNoCaption = "Без названия";

// A food's tail is its unit code plus this, so that it never reads as the
// colour tails 1 and 2.
constexpr int kFoodUnitOffset = 9;
constexpr int kFoodUnits = 5;

// Reads a list and notes the recovery row on the way; the diary can't tell
// an illness from its end without it.
std::vector<ListRow> readList(SQLite::Database& db, int cotype, std::string_view checked,
                              std::string& boleznId) {
    const std::vector<std::string> ticked = core::split(checked, kTail);

    SQLite::Statement query(db, cotype > 0
                                    ? "select coguid, coname, cotype,deleted from childconst "
                                      "where cotype=? and deleted<>1 order by deleted desc, coname"
                                    : "select coguid, coname, cotype, deleted from childconst "
                                      "order by deleted desc, coname");
    if (cotype > 0) {
        query.bind(1, cotype);
    }

    std::vector<ListRow> rows;
    while (query.executeStep()) {
        ListRow row;
        row.index = core::stringFromBase(query, 0).value_or("");
        // Captions are kept in Russian, the language the program shows.
        row.cap = core::stringFromBase(query, 1).value_or(std::string(kNoCaption));
        row.tp = query.getColumn(2).getInt();
        row.deleted = query.getColumn(3).getInt();
        row.celltype = 1;
        // An empty ticked text splits into one empty piece; a row without a
        // guid must not match it.
        row.checked = !row.index.empty() &&
                      std::find(ticked.begin(), ticked.end(), row.index) != ticked.end();
        if (row.deleted == rowstate::recovery && row.tp == cotype::illnesses) {
            boleznId = row.index;
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

std::string insertConst(SQLite::Database& db, int cotype, const std::string& coname, int deleted,
                        std::optional<std::string> coguid) {
    std::string guid = coguid && !coguid->empty() ? std::move(*coguid) : core::newID();
    SQLite::Statement insert(
        db, "insert into childconst (coname, cotype, deleted, coguid) values (?,?,?,?)");
    insert.bind(1, coname);
    insert.bind(2, cotype);
    insert.bind(3, deleted);
    insert.bind(4, guid);
    insert.exec();
    return guid;
}

// The code of a unit by its name, 0 for a name that isn't one of ours.
int unitCode(std::string_view measure) {
    for (int code = 1; code <= kFoodUnits; ++code) {
        if (measure == meraToRead(code)) {
            return code;
        }
    }
    return 0;
}

// How a row from the add form of a list screen is stored.
struct StoredRow {
    std::string coname;
    int deleted = rowstate::user;
};

StoredRow storedRow(const NewListRow& row) {
    switch (row.kind) {
        case AddKind::illness:
            // The user's illnesses can't be removed either, like the ones we
            // ship; the switch only decides whether the card shows them.
            if (row.onCard) {
                return {row.name + "<tr>1", rowstate::protectedRow};
            }
            return {row.name, rowstate::ordinaryIllness};
        case AddKind::food: {
            // "Сок (мил.)<tr>10": the unit stays readable in the caption, and
            // the code after the tail is what the feeding diary counts by.
            const std::size_t open = row.measure.find('(');
            const std::string unit =
                open == std::string::npos ? std::string() : row.measure.substr(open + 1);
            return {row.name + " (" + unit + std::string(kTail) +
                        std::to_string(unitCode(row.measure) + kFoodUnitOffset),
                    rowstate::user};
        }
        case AddKind::plain:
            break;
    }
    return {row.name, rowstate::user};
}

}  // namespace

void ReferenceLists::loadConstList(std::vector<ListRow>& rows, int cotype,
                                   std::string_view checked) {
    rows.clear();
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return;
    }
    core::runGuarded("loadConstList", [&] { rows = readList(*db, cotype, checked, boleznId_); });
}

AddedRow ReferenceLists::addConst(int cotype, std::string coname, int deleted,
                                  std::optional<std::string> coguid) {
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return {core::WriteFailure::noDatabase, std::nullopt};
    }
    AddedRow added;
    added.result = core::tryWrite("addConst", [&] {
        // One statement, yet a transaction: inside a larger one, its failure
        // fails that one too.
        core::WriteTransaction transaction(*db);
        std::string guid = insertConst(*db, cotype, coname, deleted, std::move(coguid));
        transaction.commit();
        added.guid = std::move(guid);
    });
    return added;
}

core::WriteResult ReferenceLists::deleteConst(std::string_view guid) {
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return core::WriteFailure::noDatabase;
    }
    return core::tryWrite("deleteConst", [&] {
        core::WriteTransaction transaction(*db);
        SQLite::Statement update(*db,
                                 "update childconst set deleted=1 where coguid=? and deleted=0");
        update.bind(1, std::string(guid));
        update.exec();
        transaction.commit();
    });
}

core::WriteResult ReferenceLists::correctConstList(const std::vector<ListRow>& incoming) {
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return core::WriteFailure::noDatabase;
    }
    return core::tryWrite("correctConstList", [&] {
        core::WriteTransaction transaction(*db);
        std::vector<ListRow> known = readList(*db, cotype::all, {}, boleznId_);
        for (const ListRow& row : incoming) {
            // A row without a guid would come back as a new row at every
            // exchange.
            if (row.index.empty() || listByIndex(row.index, known) != nullptr) {
                continue;
            }
            ListRow added = row;
            added.index = frame::widenOldId(row.index);
            insertConst(*db, added.tp, added.cap, added.deleted, added.index);
            // A record may carry the same row twice.
            known.push_back(std::move(added));
        }
        transaction.commit();
    });
}

AddedRow ReferenceLists::addFromListScreen(const NewListRow& row, std::vector<ListRow>& rows) {
    AddedRow added;
    // A food without a known unit would count in nothing; it isn't stored.
    if (row.kind != AddKind::food || unitCode(row.measure) != 0) {
        StoredRow stored = storedRow(row);
        added = addConst(row.cotype, std::move(stored.coname), stored.deleted);
    }

    std::vector<std::string> ticked;
    for (const ListRow& shown : rows) {
        if (shown.checked) {
            ticked.push_back(shown.index);
        }
    }
    loadConstList(rows, row.cotype, core::join(ticked, kTail));
    return added;
}

core::WriteResult ReferenceLists::setCheckData(int seltypeid, std::string_view tagguid, bool check,
                                               std::string_view gid) {
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return core::WriteFailure::noDatabase;
    }
    return core::tryWrite("setCheckData", [&] {
        // Clearing first keeps one row per tick however often it is set.
        core::WriteTransaction transaction(*db);
        SQLite::Statement remove(
            *db, "delete from childselect where seltypeid=? and tagguid=? and childguid=?");
        remove.bind(1, seltypeid);
        remove.bind(2, std::string(tagguid));
        remove.bind(3, std::string(gid));
        remove.exec();
        if (check) {
            SQLite::Statement insert(
                *db, "insert into childselect (seltypeid, tagguid, childguid) values (?,?,?)");
            insert.bind(1, seltypeid);
            insert.bind(2, std::string(tagguid));
            insert.bind(3, std::string(gid));
            insert.exec();
        }
        transaction.commit();
    });
}

void ReferenceLists::loadCheckData(std::vector<std::string>& guids, int seltypeid,
                                   std::string_view gid) {
    guids.clear();
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return;
    }
    const bool read = core::runGuarded("loadCheckData", [&] {
        SQLite::Statement query(
            *db, "select tagguid from childselect where childguid=? and seltypeid=?");
        query.bind(1, std::string(gid));
        query.bind(2, seltypeid);
        while (query.executeStep()) {
            // Ticks from before guids have only the old numeric tag; they
            // tick nothing.
            if (std::optional<std::string> tag = core::stringFromBase(query, 0)) {
                guids.push_back(std::move(*tag));
            }
        }
    });
    if (!read) {
        guids.clear();
    }
}

void addToList(std::vector<ListRow>& list, std::string index, std::string name, int tp,
               bool checked) {
    ListRow row;
    row.cap = std::move(name);
    row.index = std::move(index);
    row.tp = tp;
    row.deleted = rowstate::user;
    row.celltype = 1;
    row.checked = checked;
    list.push_back(std::move(row));
}

std::string meraToRead(int code) {
    static constexpr std::array<std::string_view, kFoodUnits> kUnits = {
        "Миллилитры (мил.)", "Граммы (гр.)", "Штуки (шт.)", "Ложки столовые (лс.)",
        "Ложки чайные (лч.)"};
    if (code < 1 || code > kFoodUnits) {
        return {};
    }
    return std::string(kUnits[static_cast<std::size_t>(code - 1)]);
}

std::optional<int> captionTail(std::string_view coname) {
    const std::size_t at = coname.find(kTail);
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view tail = coname.substr(at + kTail.size());
    if (tail.empty() ||
        !std::all_of(tail.begin(), tail.end(), [](char c) { return c >= '0' && c <= '9'; })) {
        return std::nullopt;
    }
    int value = 0;
    const auto [end, error] = std::from_chars(tail.data(), tail.data() + tail.size(), value);
    if (error != std::errc() || end != tail.data() + tail.size()) {
        return std::nullopt;  // too long to be a code
    }
    return value;
}

bool illnessOnCard(int cotype, std::string_view coname) {
    // The same test as the card's own query (coname like '%<tr>1'), so the
    // list and the card never disagree.
    return cotype == cotype::illnesses && coname.ends_with("<tr>1");
}

bool isExpressedMilk(int cotype, std::string_view coname) {
    return cotype == cotype::formula && captionTail(coname) == 2;
}

int foodUnit(int cotype, std::string_view coname) {
    if (cotype != cotype::otherFood) {
        return 0;
    }
    const std::optional<int> tail = captionTail(coname);
    if (!tail || *tail <= kFoodUnitOffset || *tail > kFoodUnitOffset + kFoodUnits) {
        return 0;
    }
    return *tail - kFoodUnitOffset;
}

bool removable(const ListRow& row) {
    return row.deleted == rowstate::user;
}

std::optional<Rgb> captionColour(std::string_view coname, bool darkBackground) {
    const std::optional<int> tail = captionTail(coname);
    if (tail == 1) {
        return Rgb{0.8, 0.0, 0.0};
    }
    if (tail == 2) {
        return darkBackground ? Rgb{1.0, 0.81, 0.25} : Rgb{0.7, 0.0, 0.0};
    }
    return std::nullopt;
}

}  // namespace tilika::diary
