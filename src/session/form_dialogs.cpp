#include "session/form_dialogs.h"

#include <array>

#include "core/dates.h"
#include "diary/reference_lists.h"
#include "diary/value_codecs.h"
#include "frame/form_kinds.h"

namespace tilika::session {

namespace {

using diary::addToNoteInit;
using frame::FormRows;
namespace formkind = frame::formkind;

diary::CatalogueRow& add(FormRows& rows, int kind, std::string caption, std::string field,
                         bool required = false) {
    addToNoteInit(rows, "", caption, kind, 0, caption, "", std::move(field), false, required);
    return rows.back();
}

diary::CatalogueRow& slider(FormRows& rows, std::string caption, std::string field, int min,
                            int max, std::string_view type, std::string value) {
    auto& row = add(rows, formkind::slider, std::move(caption), std::move(field));
    row.scalemin = std::to_string(min);
    row.scalemax = std::to_string(max);
    row.scaletype = type;
    row.startactive = !value.empty();
    row.source = std::move(value);
    return row;
}

// A text value of a JSON object, numbers included; "" when there is none.
std::string member(const nlohmann::json& object, const char* key) {
    if (!object.is_object() || !object.contains(key)) {
        return {};
    }
    const auto& value = object[key];
    if (value.is_string()) {
        return value.get<std::string>();
    }
    return value.is_number() ? value.dump() : std::string();
}

void listRow(FormRows& rows, const DetailRequest& request, const DetailContext& context,
             int listtype, int listedittype, std::string caption) {
    auto& row = add(rows, formkind::list, caption, "list");
    row.listid = request.cotype;
    row.edit = request.edit;
    row.listtype = listtype;
    row.listedittype = listedittype;
    // "WASADDED": the caller filled the list; the rest is the checked list.
    const bool prefilled = request.dat.starts_with("WASADDED");
    row.required = request.dat == "WASADDEDREQUIRED";
    if (prefilled) {
        row.list = request.list;
        row.source = checkedIndices(row.list);
    } else {
        if (context.lists != nullptr) {
            context.lists->loadConstList(row.list, request.cotype, request.dat);
        }
        row.source = request.dat;
    }
}

}  // namespace

FormContent detailPrepare(const DetailRequest& request, const DetailContext& context) {
    FormContent form{request.cap, request.parentFlag, {}};
    FormRows& rows = form.rows;
    add(rows, formkind::heading, request.msg, "");
    const std::string time = context.dates.dateToString(context.now, core::formats::timeOfDay);
    const std::string today = context.dates.dateToString(context.now, core::formats::screenDay);

    switch (request.kind) {
        case 1:
        case 2:
            listRow(rows, request, context, request.kind == 1 ? 2 : 1, 1, request.cap);
            break;
        case 3:
            add(rows, formkind::longText, request.cap, "text").source = request.dat;
            break;
        case 4: {
            auto& temperature = slider(rows, "Температура", "temp", 30, 45, "2", "36.6");
            temperature.startactive = true;
            add(rows, formkind::time, "Время замера", "time").source = time;
            break;
        }
        case 5:
            add(rows, formkind::longText, "Текст напоминания", "text").source = request.dat;
            add(rows, formkind::time, "Время напоминания", "time", true).source = time;
            break;
        case 8:
            listRow(rows, request, context, 1, 2, request.cap);
            break;
        case 9: {
            const std::string prefix = context.lightTheme ? "" : "b-";
            add(rows, formkind::picture, "", "").pic = prefix + "size.png";
            const auto values = diary::jsonToDictionary(request.dat);
            struct Measure {
                const char* caption;
                int min;
                int max;
            };
            static constexpr std::array<Measure, 5> kMeasures{{
                {"Окружность головы (см.)", 20, 70},
                {"Обхват груди (см.)", 20, 90},
                {"Обхват талии (см.)", 20, 90},
                {"Обхват бедер (см.)", 20, 90},
                {"Длина стопы (см.)", 1, 40},
            }};
            for (std::size_t i = 0; i < kMeasures.size(); ++i) {
                const std::string field = "bio" + std::to_string(i + 1);
                auto& row = slider(rows, kMeasures[i].caption, field, kMeasures[i].min,
                                   kMeasures[i].max, "1", member(values, field.c_str()));
                row.pic = prefix + "num" + std::to_string(i + 1) + ".png";
            }
            break;
        }
        case 15: {
            const auto values = diary::jsonToDictionary(request.dat);
            slider(rows, "Рост малыша на УЗИ (см.)", "rost", -3, 80, "1", member(values, "rost"));
            slider(rows, "Вес малыша на УЗИ (кг.)", "ves", -3, 12, "3", member(values, "ves"));
            break;
        }
        case 16: {
            const auto values = diary::jsonToDictionary(request.dat);
            slider(rows, "Рост малыша (см.)", "rost", -3, 100, "1", member(values, "rost"));
            slider(rows, "Вес малыша (кг.)", "ves", -3, 12, "3", member(values, "ves"));
            add(rows, formkind::time, "Время рождения", "time", true).source =
                member(values, "time");
            add(rows, formkind::separator, "", "");
            add(rows, formkind::heading, "Укажите способ, которым у вас проходили роды", "");
            auto& way = add(rows, formkind::list, "Способ родов", "way");
            way.listtype = 1;
            way.list = {{"Естественные роды", "1", 0, 0, 1, false},
                        {"Кесарево сечение", "2", 0, 0, 1, false}};
            way.source = member(values, "way");
            for (auto& item : way.list) {
                item.checked = item.index == way.source;
            }
            break;
        }
        case 18: {
            const auto values = diary::jsonToDictionary(request.dat);
            const std::array<std::array<const char*, 3>, 2> kBreasts{{
                {"left", "Левая грудь", "Идет кормление левой грудью ..."},
                {"right", "Правая грудь", "Идет кормление правой грудью ..."},
            }};
            for (const auto& [field, caption, progress] : kBreasts) {
                auto& row = add(rows, formkind::time, caption, field, true);
                row.editdescr = "Продолжительность (часы и минуты)";
                row.startbutton = true;
                row.startprogress = progress;
                const std::string minutes = member(values, field);
                row.source =
                    frame::mtt(minutes.empty() ? std::optional<long long>()
                                               : std::optional<long long>(frame::ttm(minutes)));
            }
            break;
        }
        case 19:
        case 27:
            add(rows, formkind::number, "Объем", "volume");
            listRow(rows, request, context, 1, request.kind == 19 ? 1 : 3, "Продукт");
            break;
        case 104:
            add(rows, formkind::longText, "Текст", "text").source = request.dat;
            add(rows, formkind::date, "Дата", "date").source = today;
            break;
        case 105:
            add(rows, formkind::number, "Объем", "volume");
            break;
        default:  // 6, 7 and others: the heading alone
            break;
    }
    return form;
}

}  // namespace tilika::session
