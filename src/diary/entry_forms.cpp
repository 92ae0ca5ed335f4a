#include "diary/entry_forms.h"

#include "core/text.h"
#include "diary/value_codecs.h"
#include "frame/form_kinds.h"
#include "frame/form_values.h"

namespace tilika::diary {
namespace {

struct PeriodWords {
    std::string_view heading;
    std::string_view start;
    std::string_view startPrompt;
    std::string_view end;
    std::string_view length;
    std::string_view progress;
};

constexpr PeriodWords kSleep{"Сон",
                             "Начало сна",
                             "Укажите дату начала сна",
                             "Окончание сна",
                             "Продолжительность сна",
                             "Ребенок спит ..."};
constexpr PeriodWords kWalk{"Прогулка",
                            "Начало прогулки",
                            "Укажите дату начала прогулки",
                            "Окончание прогулки",
                            "Продолжительность прогулки",
                            "Ребенок гуляет ..."};

CatalogueRow& periodRow(std::vector<CatalogueRow>& rows, std::string_view caption, int kind,
                        std::string_view prompt, std::string field, std::string role) {
    addToNoteInit(rows, "checkgreen.png", std::string(caption), kind, 0, std::string(caption),
                  std::string(prompt), std::move(field), true, true);
    rows.back().autocalc = std::move(role);
    return rows.back();
}

}  // namespace

EntryForm periodForm(std::string_view field, std::string_view nowTime,
                     std::optional<std::string_view> record) {
    const PeriodWords* words = field == "sleep" ? &kSleep : field == "walk" ? &kWalk : nullptr;
    EntryForm form;
    if (words == nullptr) {
        return form;
    }
    form.caption = words->heading;
    auto& start = periodRow(form.rows, words->start, frame::formkind::diaryTime, words->startPrompt,
                            "start", "start");
    start.startbutton = true;
    start.startprogress = words->progress;
    periodRow(form.rows, words->end, frame::formkind::diaryTime, "", "end", "end");
    periodRow(form.rows, words->length, frame::formkind::time, "", "interval", "length");

    if (record) {
        const auto object = jsonToDictionary(*record);
        for (const char* key : {"start", "end", "interval"}) {
            form.defaults[key] = jsonText(object, key);
        }
    } else {
        form.defaults = {{"start", std::string(nowTime)}, {"end", ""}, {"interval", "00:00"}};
    }
    return form;
}

EntryForm newListRowForm(int listedittype) {
    const auto kind = static_cast<AddKind>(listedittype);
    EntryForm form;
    form.caption = kind == AddKind::food ? "Новый продукт" : "Новый тип";
    addToNoteInit(form.rows, "", "Название", frame::formkind::textLine, 0, "Название",
                  "Введите название", "name", false, true);
    if (kind == AddKind::illness) {
        addToNoteInit(form.rows, "", "Добавлять болезнь в анкету", frame::formkind::toggle, 0, "",
                      "", "card", false, false);
    } else if (kind == AddKind::food) {
        addToNoteInit(form.rows, "", "Единица измерения", frame::formkind::measure, 0,
                      "Единица измерения", "Единица измерения", "measure", false, true);
    }
    return form;
}

std::optional<NewListRow> newListRowOf(int listedittype, int cotype,
                                       const std::vector<CatalogueRow>& answer) {
    std::string name(core::trimmed(frame::fieldValue(answer, "name").value_or("")));
    if (name.empty()) {
        return std::nullopt;
    }
    switch (static_cast<AddKind>(listedittype)) {
        case AddKind::illness:
            return NewListRow::illness(cotype, std::move(name),
                                       frame::fieldValue(answer, "card").value_or("") == "1");
        case AddKind::food:
            return NewListRow::food(cotype, std::move(name),
                                    frame::fieldValue(answer, "measure").value_or(""));
        case AddKind::plain:
            break;
    }
    return NewListRow::plain(cotype, std::move(name));
}

}  // namespace tilika::diary
