#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/write_result.h"
#include "frame/form_row.h"
#include "frame/list_choices.h"

namespace tilika::core {
struct Context;
}

namespace tilika::diary {

// The reference lists, by `cotype`.
namespace cotype {
inline constexpr int all = 0;
inline constexpr int achievements = 1;
inline constexpr int complaints = 2;
inline constexpr int illnesses = 3;
inline constexpr int bloodGroups = 4;
inline constexpr int allergens = 5;
inline constexpr int formula = 6;
inline constexpr int cereals = 7;
inline constexpr int purees = 8;
inline constexpr int otherFood = 9;
inline constexpr int medicines = 101;
inline constexpr int howOften = 102;
inline constexpr int meals = 103;
inline constexpr int analysisTypes = 200;
inline constexpr int documentTypes = 201;
}  // namespace cotype

// The `deleted` column of a list row.
namespace rowstate {
inline constexpr int user = 0;             // the user's own row; it can be removed
inline constexpr int removed = 1;          // hidden from its list, still readable
inline constexpr int protectedRow = 2;     // from here up: sorts first, can't be removed
inline constexpr int ordinaryIllness = 3;  // an illness the user added, not on the card
inline constexpr int recovery = 4;         // in the illnesses: the child has recovered
}  // namespace rowstate

// The rows of the reference lists are the items a form's list rows pick
// from.
using frame::captionText;
using frame::listByIndex;
using frame::ListRow;

// What a list screen tells the user when a protected row is to be removed.
inline constexpr std::string_view kDeleteRowTitle = "Удаление строки";
inline constexpr std::string_view kProtectedRowMessage = "Эту строку удалять нельзя!";

// How a list screen adds a row: each list's form knows one of these.
enum class AddKind {
    plain = 1,    // the caption as typed, a row the user may remove
    illness = 2,  // an illness, protected, with or without a place on the card
    food = 3,     // a food with its unit of measure
};

// What the add form of a list screen hands over.
struct NewListRow {
    AddKind kind = AddKind::plain;
    int cotype = 0;
    std::string name;     // as typed
    bool onCard = false;  // illnesses: the switch that puts the illness on the card
    std::string measure;  // foods: the unit picked, one of the meraToRead() names

    static NewListRow plain(int cotype, std::string name) {
        return {AddKind::plain, cotype, std::move(name), false, {}};
    }
    static NewListRow illness(int cotype, std::string name, bool onCard) {
        return {AddKind::illness, cotype, std::move(name), onCard, {}};
    }
    static NewListRow food(int cotype, std::string name, std::string measure) {
        return {AddKind::food, cotype, std::move(name), false, std::move(measure)};
    }
};

// What storing a list row gives back: whether the database took the write,
// and the guid of the row stored, if one was.
struct AddedRow {
    core::WriteResult result;
    std::optional<std::string> guid;
};

// The reference lists and the check marks of the tick-list screens.
//
// Without a database every reader gives an empty result and every writer
// stores nothing and says why; a statement that fails is logged and reads
// the same way.
class ReferenceLists {
public:
    explicit ReferenceLists(core::Context& context) : context_(context) {}

    // Fills `rows` with the list of a cotype, protected rows first and then
    // by caption; removed rows are left out. Cotype 0 gives every row of
    // every list, removed ones too, so that old diary values keep their
    // captions. A row is ticked when its guid is one of the "<tr>"-separated
    // pieces of `checked`.
    void loadConstList(std::vector<ListRow>& rows, int cotype, std::string_view checked);

    // Stores a row; without a guid the row gets a fresh one, which comes
    // back when the row was stored.
    AddedRow addConst(int cotype, std::string coname, int deleted,
                      std::optional<std::string> coguid = std::nullopt);

    // Removes a user's row. Protected and already removed rows stay as they
    // are, which is no failure: the list screen doesn't offer them.
    core::WriteResult deleteConst(std::string_view guid);

    // Stores the rows of `incoming` (from another device) that this device
    // lacks, under their own guids, in one transaction. Removed rows count as
    // known; an old numeric id is stored as its kind-2 guid, and a row
    // without a guid is skipped.
    core::WriteResult correctConstList(const std::vector<ListRow>& incoming);

    // Adds a row from a list screen, then reloads `rows` with that list,
    // keeping the ticks they had. The new guid comes back when a row was
    // stored; a food with a unit that isn't one of ours is not, and is no
    // failure either.
    AddedRow addFromListScreen(const NewListRow& row, std::vector<ListRow>& rows);

    // Ticks an item of a tick-list screen for a child, or clears the tick.
    core::WriteResult setCheckData(int seltypeid, std::string_view tagguid, bool check,
                                   std::string_view gid);
    // The guids of the items ticked on a screen for a child.
    void loadCheckData(std::vector<std::string>& guids, int seltypeid, std::string_view gid);

    // The guid of the illness list's recovery row, which ends an illness;
    // empty until a load has met it.
    const std::string& boleznId() const { return boleznId_; }

private:
    core::Context& context_;
    std::string boleznId_;
};

// Appends a row in memory only, as the user's own row.
void addToList(std::vector<ListRow>& list, std::string index, std::string name, int tp,
               bool checked);

// The name of a food unit by its code 1 to 5 ("Миллилитры (мил.)", ...); ""
// for any other code.
std::string meraToRead(int code);

// The number a caption's tail holds ("Корь<tr>1" has 1), or nothing when the
// caption has no tail or the tail isn't a number.
std::optional<int> captionTail(std::string_view coname);

// An illness that belongs on the child's card.
bool illnessOnCard(int cotype, std::string_view coname);

// The expressed milk row of the formula list.
bool isExpressedMilk(int cotype, std::string_view coname);

// The unit of a food of the list of other food, as the argument of
// meraToRead(); 0 when the row has no unit.
int foodUnit(int cotype, std::string_view coname);

// Whether the user may remove the row; a list screen says
// kProtectedRowMessage otherwise.
bool removable(const ListRow& row);

struct Rgb {
    double r = 0;
    double g = 0;
    double b = 0;

    bool operator==(const Rgb&) const = default;
};

// The colour a list screen draws a caption in, by its tail; nothing for the
// screen's normal text colour.
std::optional<Rgb> captionColour(std::string_view coname, bool darkBackground);

}  // namespace tilika::diary
