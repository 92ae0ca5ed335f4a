#include "development/reaction.h"

#include <SQLiteCpp/Database.h>

#include <algorithm>
#include <array>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/text.h"
#include "development/feeding.h"
#include "development/passport.h"
#include "diary/day_cloud.h"
#include "diary/display_texts.h"
#include "diary/profiles.h"
#include "diary/reference_lists.h"
#include "diary/value_codecs.h"

namespace tilika::development {

namespace {

constexpr int kFirstGuideMonth = 6;
constexpr int kLastGuideMonth = 12;
constexpr std::array<int, 2> kAllergenPages{1, kKormPage};

// The name a food is known by among the suspects; "" for none.
std::string suspectName(const nlohmann::json& food, const std::vector<frame::ListRow>& list) {
    const int tp = core::intValue(diary::jsonText(food, "tp"));
    const std::string tip = diary::jsonText(food, "tip");
    if (tp == kormkind::kefir || tp == kormkind::tvorog) {
        return tip;
    }
    if (tp < kormkind::formula || tp > kKormKinds) {
        return {};
    }
    const frame::ListRow* product = frame::listByIndex(tip, list);
    return product == nullptr ? std::string() : diary::justName(product->cap);
}

bool sameShortName(const frame::ListRow& row, const std::string& name) {
    return diary::justName(row.cap) == diary::justName(name);
}

}  // namespace

std::optional<int> kormGuideGroup(int curMonth) {
    if (curMonth < kFirstGuideMonth || curMonth > kLastGuideMonth) {
        return std::nullopt;
    }
    return curMonth;
}

std::vector<std::string> reactionProducts(const core::Dates& dates, core::Date now,
                                          const std::vector<KormRow>& rows,
                                          const std::vector<frame::ListRow>& list) {
    std::vector<std::string> names;
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
        if (row->tp != KormRow::feeding) {
            continue;
        }
        // Calendar days: a feeding late on the fourth evening back is out,
        // one early on the third morning is in.
        if (dates.getDays(row->dat, now) > kReactionDays) {
            break;
        }
        for (const nlohmann::json& food : diary::jsonToArray(row->value)) {
            std::string name = suspectName(food, list);
            if (!name.empty() && std::find(names.begin(), names.end(), name) == names.end()) {
                names.push_back(std::move(name));
            }
        }
    }
    return names;
}

std::vector<frame::ListRow> reactionList(const std::vector<std::string>& names) {
    std::vector<frame::ListRow> items;
    for (std::size_t i = 0; i < names.size(); ++i) {
        frame::ListRow item;
        item.cap = names[i];
        item.index = std::to_string(i + 1);
        item.tp = diary::cotype::allergens;
        items.push_back(std::move(item));
    }
    return items;
}

core::WriteResult Reaction::saveReaction(const std::vector<std::string>& names,
                                         std::string_view checked, std::string_view gid,
                                         diary::DayCloud& cloud) {
    std::vector<std::string> chosen;
    for (const std::string& piece : core::split(checked, "<tr>")) {
        const int position = core::intValue(piece);
        if (position >= 1 && static_cast<std::size_t>(position) <= names.size()) {
            chosen.push_back(names[static_cast<std::size_t>(position - 1)]);
        }
    }
    if (chosen.empty()) {
        return {};
    }
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return core::WriteFailure::noDatabase;
    }
    diary::ReferenceLists lists(context_);
    const core::WriteResult result = core::tryWrite("saveReaction", [&] {
        core::WriteTransaction transaction(*db);
        std::vector<frame::ListRow> allergens;
        lists.loadConstList(allergens, diary::cotype::allergens, {});
        for (const std::string& name : chosen) {
            const bool known =
                std::any_of(allergens.begin(), allergens.end(),
                            [&](const auto& row) { return sameShortName(row, name); });
            if (!known) {
                const diary::AddedRow added = lists.addConst(diary::cotype::allergens, name, 0);
                core::throwIfFailed(added.result);
                diary::addToList(allergens, added.guid.value_or(""), name, diary::cotype::allergens,
                                 false);
            }
        }

        const diary::SetupRecord setup = diary::Profiles(context_).loadSetupData(gid);
        lists.loadConstList(allergens, diary::cotype::allergens, setup.allerg);
        for (const std::string& name : chosen) {
            bool ticked = false;
            for (frame::ListRow& row : allergens) {
                if (sameShortName(row, name)) {
                    row.checked = true;
                    ticked = true;
                }
            }
            // Every chosen name is in the list by now; a list read without it
            // failed, and saving from it would drop the child's allergens.
            if (!ticked) {
                throw core::WriteFailed(core::WriteFailure::other);
            }
        }
        std::vector<std::string> indexes;
        for (const frame::ListRow& row : allergens) {
            if (row.checked) {
                indexes.push_back(row.index);
            }
        }
        core::throwIfFailed(Passport(context_).saveAllergen(gid, core::join(indexes, "<tr>")));
        transaction.commit();
    });
    if (result) {
        saved(gid, cloud);
    }
    return result;
}

core::WriteResult Reaction::saveAllergens(std::string_view checked, std::string_view gid,
                                          diary::DayCloud& cloud) {
    const core::WriteResult result = Passport(context_).saveAllergen(gid, checked);
    if (result) {
        saved(gid, cloud);
    }
    return result;
}

void Reaction::saved(std::string_view gid, diary::DayCloud& cloud) {
    for (const int page : kAllergenPages) {
        context_.state.pageDirty[static_cast<std::size_t>(page)] = true;
    }
    if (context_.state.cloudMode == core::cloudmode::icloud) {
        cloud.dataToCloud(kProfileCloudRecord, context_.dates.now(), gid);
    }
}

}  // namespace tilika::development
