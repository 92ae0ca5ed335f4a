#include "diary/catalogue.h"

#include <utility>

namespace tilika::diary {

namespace {

struct Entry {
    const char* field;
    int tp;
    int listid;
    const char* pic;
    const char* caption;
    const char* editcap;
    const char* editdescr;
};

// The order is the order of the day editor and of a day's row; the photo
// must stay last, where saving a day looks for it.
// clang-format off
constexpr Entry kChildCatalogue[] = {
    {"achive", tp::checkList, 1, "ne-achiv128.png", "Достижения малыша в этот день",
     "Достижения", "Отметьте достижения малыша в этот день"},
    {"health", tp::checkList, 2, "ne-health128.png", "Недомогания, которые наблюдаются у малыша",
     "Недомогания", "Отметьте недомогания, которые наблюдались у малыша в этот день"},
    {"doctor", tp::text, 0, "ne-nurse.png", "Вопросы к доктору или его рекомендации",
     "Вопросы к доктору", "Напишите вопросы к доктору или его рекомендации на этот день"},
    {"priv", tp::text, 0, "ne-vaccin.png", "Прививки, сделанные в этот день", "Прививки",
     "Укажите прививки, которые сделали ребенку в этот день"},
    {"pills", tp::medication, 0, "ne-pills128.png",
     "Лекарственные препараты для приема в этот день", "Лекарства",
     "Лекарственные препараты для приема в этот день"},
    {"bolezn", tp::pickFromList, 3, "ne-doctor.png", "Отметьте начало или окончание болезни",
     "Болезнь",
     "Укажите, болезнь начинается или закончилась, в случае начала болезни укажите ее название и "
     "стоит ли эту болезнь поместить в анкету малыша "},
    {"temp", tp::timedRows, 0, "ne-temp128.png", "Замеры температуры", "Температура",
     "Введите температуру и время ее замера"},
    {"ves", tp::kilograms, 0, "ne-weight.png",
     "Укажите вес малыша (он также будет использоваться для построения графика веса)", "", ""},
    {"rost", tp::centimetres, 0, "ne-ruler.png",
     "Укажите рост малыша (он также будет использоваться для построения графика роста)", "", ""},
    {"smile", tp::text, 0, "ne-smileicon.png", "Веселые случаи", "Веселые случаи",
     "Опишите веселый случай, который произошел с малышом в этот день"},
    {"alarm", tp::reminders, 0, "ne-alarm128.png", "Напоминания в этот день", "Напоминания",
     "Введите текст напоминания и время"},
    {"biosize", tp::bodyMeasures, 0, "ne-childsize.png",
     "Отредактируйте биометрические данные (используются для подбора размеров одежды и обуви)",
     "Биометрические данные",
     "Сделайте соответствующие биометрические замеры Вашего ребенка и внесите данные. Эти данные "
     "будут использованы для подбора размеров одежды и обуви (см. раздел Анкета)"},
    {"tooth", tp::teeth, 0, "ne-tooth.png",
     "Прорезавшиеся или выпавшие молочные зубы у ребенка в этот день", "Молочные зубы",
     "Укажите зубки, которые есть у ребенка на текущий момент"},
    {"analizy", tp::analyses, 0, "ne-analizy128.png", "Анализы", "Анализы в этот день",
     "Укажите результаты анализов"},
    {"sleep", tp::periods, 0, "ne-sleep.png", "Сон", "Периоды сна в этот день",
     "Укажите начало и окончание сна"},
    {"walk", tp::periods, 0, "ne-walk.png", "Прогулка", "Периоды прогулок в этот день",
     "Укажите начало и окончание прогулки"},
    {"note", tp::text, 0, "ne-notepad.png", "Другие заметки", "Заметки", "Введите текст заметки"},
    {"", tp::photo, 0, "", "Фото", "", ""},
};
// clang-format on

}  // namespace

void addToNoteInit(std::vector<CatalogueRow>& rows, std::string pic, std::string caption, int type,
                   int listid, std::string editCap, std::string editDescr, std::string field,
                   bool edit, bool required) {
    CatalogueRow row;
    row.tp = type;
    row.listid = listid;
    row.caption = std::move(caption);
    row.pic = std::move(pic);
    row.editcap = std::move(editCap);
    row.editdescr = std::move(editDescr);
    row.field = std::move(field);
    row.edit = edit;
    row.required = required;
    rows.push_back(std::move(row));
}

void initTodayNoteStruct(std::vector<CatalogueRow>& rows) {
    rows.clear();
    for (const Entry& entry : kChildCatalogue) {
        addToNoteInit(rows, entry.pic, entry.caption, entry.tp, entry.listid, entry.editcap,
                      entry.editdescr, entry.field, true, false);
    }
}

void initNoteStruct(DayFlags& flags) {
    flags = DayFlags{};
}

}  // namespace tilika::diary
