#include "diary/entry_forms.h"

#include "diary/value_codecs.h"
#include "frame/form_kinds.h"

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

}  // namespace tilika::diary
