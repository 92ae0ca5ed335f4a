#include "development/allergen_list.h"

#include <QPointer>

#include "core/context.h"
#include "diary/profiles.h"
#include "diary/reference_lists.h"
#include "frame/dic.h"
#include "frame/form_values.h"
#include "frame/look.h"
#include "frame/popup_panels.h"
#include "session/form_dialogs.h"

namespace tilika::development {

namespace {
constexpr int kAllergensFlag = 13;
constexpr int kNoAnswerTag = 2;
}  // namespace

void openAllergenList(frame::dic& form, core::Context& context, frame::Popups& popups,
                      const std::string& gid, QWidget* host, QObject* target,
                      std::function<core::WriteResult(const std::string& checked)> save) {
    session::DetailRequest request;
    request.kind = 1;
    request.parentFlag = kAllergensFlag;
    request.cap = "Аллергены";
    request.msg = "Отметьте аллергены, на которые у ребенка выявлена аллергическая реакция";
    request.dat = diary::Profiles(context).loadSetupData(gid).allerg;
    request.cotype = diary::cotype::allergens;
    // A parent may name an allergen the list doesn't have yet.
    request.edit = true;
    form.detailClearList();
    QPointer<frame::dic> shown(&form);
    form.detailPrepare(
        request, host, target,
        [&context, &popups, shown, save = std::move(save)](const frame::FormAnswer& answer) {
            const core::WriteResult result =
                save(frame::fieldValue(answer.rows, "list").value_or(""));
            if (result) {
                return true;
            }
            popups.message(frame::translatedText(context.state, result.message()),
                           frame::translatedText(context.state, "Ошибка"), kNoAnswerTag, shown);
            return false;
        });
}

}  // namespace tilika::development
