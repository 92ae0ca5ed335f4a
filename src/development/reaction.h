#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/date.h"
#include "core/write_result.h"
#include "frame/form_row.h"

namespace tilika::core {
struct Context;
class Dates;
}  // namespace tilika::core

namespace tilika::diary {
class DayCloud;
}

namespace tilika::development {

struct KormRow;

// The menu behind the feeding page's help button.
inline constexpr std::string_view kKormHelpMenu =
    "Как вводить прикорм<td>pm-help.png<tr>Реакция<td>pm-warning.png<tr>Аллергены<td>pm-view.png";
inline constexpr std::string_view kKormGuideCaption = "Введение прикорма";
inline constexpr std::string_view kKormGuideFile = "prikorm-u";

// The guide's group to highlight for the running month of life: the months
// it has a group for, from 6 to 12.
std::optional<int> kormGuideGroup(int curMonth);

// What the reaction analysis says.
inline constexpr std::string_view kReactionCaption = "Реакция";
inline constexpr std::string_view kReactionNone =
    "Подозрительные продукты не выявлены. Возможно у ребенка не пищевая аллергия.";
inline constexpr std::string_view kReactionPrompt =
    "Ниже показаны продукты, которые Вы давали ребенку в последние 3 дня. Отметьте галочкой те "
    "из них, которые стоит занести в список аллергенов";
// The tags the list dialogs hand back: the reaction's check list and the
// allergens list.
inline constexpr int kReactionFlag = 14;
inline constexpr int kAllergensFlag = 13;
// Foods given this many calendar days ago or later are suspects.
inline constexpr int kReactionDays = 3;
// The kind of cloud record the child's profile goes out as.
inline constexpr int kProfileCloudRecord = 1;

// The short names of the foods given in the last days, newest feeding first,
// each once. Breast milk is never a suspect. `rows` are the feeding list's
// rows, oldest first; `list` the whole reference list (cotype 0), so that a
// product removed from its list still has its name.
std::vector<std::string> reactionProducts(const core::Dates& dates, core::Date now,
                                          const std::vector<KormRow>& rows,
                                          const std::vector<frame::ListRow>& list);

// The check list of the names, unticked; its items' indexes are the
// positions from 1.
std::vector<frame::ListRow> reactionList(const std::vector<std::string>& names);

// The allergens of a child, as the reaction analysis adds to them.
class Reaction {
public:
    explicit Reaction(core::Context& context) : context_(context) {}

    // Makes the ticked names (`checked`, the check list's positions joined by
    // "<tr>") the child's allergens, besides those it has: a name goes into
    // the allergens list unless an allergen of the same short name is there,
    // and that one is ticked instead. All of it lands, or none of it.
    core::WriteResult saveReaction(const std::vector<std::string>& names, std::string_view checked,
                                   std::string_view gid, diary::DayCloud& cloud);

    // The allergens as the list dialog ticked them (guids joined by "<tr>"),
    // saved the same way.
    core::WriteResult saveAllergens(std::string_view checked, std::string_view gid,
                                    diary::DayCloud& cloud);

private:
    // The passport and the feeding page show the allergens, and the profile
    // goes to the cloud.
    void saved(std::string_view gid, diary::DayCloud& cloud);

    core::Context& context_;
};

}  // namespace tilika::development
