#include "development/korm_edit.h"

#include <QWidget>

#include <algorithm>

#include "core/app_state.h"
#include "core/context.h"
#include "core/dates.h"
#include "development/passport.h"
#include "diary/display_texts.h"
#include "diary/reference_lists.h"
#include "frame/dic.h"
#include "frame/form_kinds.h"
#include "frame/form_values.h"
#include "frame/look.h"
#include "frame/popup_panels.h"
#include "session/form_dialogs.h"

namespace tilika::development {

namespace {

constexpr int kNoAnswerTag = 2;
constexpr const char* kDateField = "dat";
constexpr const char* kNewField = "new";
constexpr const char* kFoodField = "food";
constexpr const char* kNoFoods = "Добавьте в кормление хотя бы одну запись";

frame::FormRow row(int tp, std::string caption, std::string field, std::string pic = {}) {
    frame::FormRow row;
    row.tp = tp;
    row.caption = std::move(caption);
    row.field = std::move(field);
    row.pic = std::move(pic);
    return row;
}

}  // namespace

kormEdit::kormEdit(KormEditServices services, QWidget* host)
    : QObject(host), services_(services), host_(host) {}

kormEdit::~kormEdit() = default;

frame::dic* kormEdit::form() const {
    return form_ != nullptr && form_->isOpen() ? form_.data() : nullptr;
}

frame::dic* kormEdit::foodForm() const {
    return foodForm_ != nullptr && foodForm_->isOpen() ? foodForm_.data() : nullptr;
}

void kormEdit::prepare(KormEntry entry, const std::string& gid, std::function<void()> onSaved) {
    entry_ = std::move(entry);
    gid_ = gid;
    onSaved_ = std::move(onSaved);
    buildRows();
}

void kormEdit::buildRows() {
    core::Context& context = services_.context;
    if (form_ == nullptr) {
        form_ = new frame::dic(frame::FormServices{context.state, context.dates, services_.popups,
                                                   services_.pictures, services_.lists},
                               host_->window());
    }
    std::vector<frame::ListRow> everything;
    if (services_.lists != nullptr) {
        services_.lists->loadConstList(everything, diary::cotype::all, "");
    }
    frame::FormRows rows;
    frame::FormRow& moment =
        rows.emplace_back(row(frame::formkind::moment, std::string(kKormDateRow), kDateField));
    moment.source = context.dates.dateToString(entry_.dat, core::formats::screenMoment);
    for (std::size_t i = 0; i < entry_.foods.size(); ++i) {
        const KormRow single{KormRow::feeding, entry_.dat, "[" + entry_.foods[i] + "]", {}};
        const KormKind* kind = kormKind(kormTp(entry_.foods[i]));
        rows.push_back(row(frame::formkind::action,
                           kormCellText(context.dates, single, everything).text,
                           kFoodField + std::to_string(i),
                           kind != nullptr ? std::string(kind->picture) : std::string()));
    }
    rows.push_back(
        row(frame::formkind::action, std::string(kNewKormRow), kNewField, "add-row.png"));
    form_->prepare(std::move(rows), frame::translatedText(context.state, "Кормление"),
                   host_->window(), this, 0, {},
                   [this](const frame::FormAnswer& answer) { return this->answer(answer); });
}

void kormEdit::readMoment(const frame::FormAnswer& answer) {
    const core::Dates& dates = services_.context.dates;
    const std::string shown = frame::fieldValue(answer.rows, kDateField).value_or("");
    if (shown == dates.dateToString(entry_.dat, core::formats::screenMoment)) {
        return;
    }
    if (const auto picked = dates.dateFromStringFormat(shown, core::formats::screenMoment)) {
        entry_.dat = *picked;
    }
}

bool kormEdit::answer(const frame::FormAnswer& answer) {
    readMoment(answer);
    if (answer.sender) {
        const std::string& field = answer.rows[*answer.sender].field;
        if (field == kNewField) {
            std::string items;
            for (const KormKind& kind : kormKinds()) {
                items += (items.empty() ? "" : "<tr>") + std::string(kind.menuCaption) + "<td>" +
                         std::string(kind.picture);
            }
            QPointer<kormEdit> self(this);
            services_.popups.popupMenu(
                QString::fromStdString(items), form_,
                [self](const QString& /*sender*/, const QString& caption) {
                    if (self != nullptr) {
                        self->actionKorm(caption);
                    }
                },
                QString::fromLatin1(kNewField));
        } else if (field.starts_with(kFoodField)) {
            const std::size_t at = std::stoul(field.substr(std::string_view(kFoodField).size()));
            if (at < entry_.foods.size()) {
                openFood(kormTp(entry_.foods[at]), at);
            }
        }
        return false;
    }
    switch (Feeding(services_.context).closeOK(entry_, gid_, services_.cloud)) {
        case KormClose::saved:
            if (onSaved_) {
                onSaved_();
            }
            return true;
        case KormClose::noFoods:
            tell(kNoFoods, form_);
            return false;
        case KormClose::failed:
            tell(std::string(kKormSaveFailed), form_);
            return false;
    }
    return false;
}

void kormEdit::actionKorm(const QString& caption) {
    const core::AppState& state = services_.context.state;
    for (const KormKind& kind : kormKinds()) {
        if (caption == frame::translatedText(state, kind.menuCaption)) {
            openFood(kind.tp, std::nullopt);
            return;
        }
    }
}

void kormEdit::openFood(int tp, std::optional<std::size_t> at) {
    const KormKind* kind = kormKind(tp);
    if (kind == nullptr || form_ == nullptr) {
        return;
    }
    core::Context& context = services_.context;
    if (foodForm_ == nullptr) {
        foodForm_ =
            new frame::dic(frame::FormServices{context.state, context.dates, services_.popups,
                                               services_.pictures, services_.lists},
                           form_);
    }
    const std::string stored = at ? entry_.foods[*at] : std::string();
    const KormFormValues values = kormFormValues(stored);
    session::DetailRequest request;
    request.kind = kind->formType;
    request.parentFlag = tp;
    request.cap = std::string(kind->formCaption);
    request.msg = std::string(kind->prompt);
    request.cotype = kind->cotype;
    request.edit = true;
    request.dat =
        tp == kormkind::breast ? (at ? stored : std::string(kNewBreastValue)) : values.second;
    session::FormContent content = session::detailPrepare(
        request, session::DetailContext{context.dates, context.dates.now(), services_.lists,
                                        context.state.lightTheme});
    if (tp != kormkind::breast) {
        for (frame::FormRow& row : content.rows) {
            if (row.field == "volume") {
                row.source = values.first;
            }
        }
    }

    // The child's allergens stand out among the products.
    std::vector<std::string> hilite;
    if (kind->showsList && services_.lists != nullptr) {
        std::vector<std::string> allergens;
        for (const std::string& caption : Passport(context).prepareAllergHilite(gid_)) {
            allergens.push_back(diary::justName(caption));
        }
        std::vector<frame::ListRow> products;
        services_.lists->loadConstList(products, kind->cotype, "");
        for (const frame::ListRow& product : products) {
            if (std::find(allergens.begin(), allergens.end(), diary::justName(product.cap)) !=
                allergens.end()) {
                hilite.push_back(product.index);
            }
        }
    }
    foodForm_->detailSetHiliteList(std::move(hilite));
    foodForm_->prepare(
        std::move(content.rows), frame::translatedText(context.state, content.caption), form_, this,
        tp, {},
        [this, tp, at](const frame::FormAnswer& answer) { return foodDone(tp, at, answer); });
}

bool kormEdit::foodDone(int tp, std::optional<std::size_t> at, const frame::FormAnswer& answer) {
    const bool breast = tp == kormkind::breast;
    const std::string first =
        frame::fieldValue(answer.rows, breast ? "left" : "volume").value_or("");
    const std::string second =
        frame::fieldValue(answer.rows, breast ? "right" : "list").value_or("");
    std::vector<frame::ListRow> products;
    const KormKind* kind = kormKind(tp);
    if (kind != nullptr && kind->cotype != 0 && services_.lists != nullptr) {
        services_.lists->loadConstList(products, kind->cotype, "");
    }
    const KormValue value = addEditKorm(tp, first, second, products);
    if (!value.value) {
        tell(value.message, foodForm_);
        return false;
    }
    if (at && *at < entry_.foods.size()) {
        entry_.foods[*at] = *value.value;
    } else {
        addKormFood(entry_.foods, *value.value);
    }
    buildRows();
    return true;
}

void kormEdit::tell(const std::string& text, QWidget* over) {
    const core::AppState& state = services_.context.state;
    services_.popups.message(frame::translatedText(state, text),
                             frame::translatedText(state, "Кормление"), kNoAnswerTag,
                             over != nullptr ? over : host_.data());
}

}  // namespace tilika::development
