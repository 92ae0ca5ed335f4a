#include "medication/course_form.h"

#include "diary/value_codecs.h"
#include "frame/form_kinds.h"
#include "frame/form_values.h"
#include "frame/list_choices.h"

namespace tilika::medication {
namespace {

namespace formkind = frame::formkind;

// The values a new course starts with in its form.
constexpr std::string_view kNewCourseDoza = "3<td>шт.";
constexpr std::string_view kNewCourseInter = "3<td>раз в сутки";
constexpr std::string_view kNewCourseLength = "1<td>недели";
constexpr std::string_view kNewCourseTimes = "08:00<td>15:00<td>22:00";
// The captions of the period and meal rows a new course picks.
constexpr std::string_view kNewCoursePeriod = "Ежедневно";
constexpr std::string_view kNewCourseMeal = "Независимо от еды";

struct CourseRow {
    const char* pic;
    const char* caption;
    int kind;
    int listid;
    const char* editcap;
    const char* prompt;
    const char* field;
};

constexpr CourseRow kRows[] = {
    {"pills1.png", "Название лекарства", formkind::listPick, diary::cotype::medicines,
     "Выбор лекарства", "Выберите из списка лекарство, если его в списке нет- добавьте новое",
     "pillname"},
    {"pills2.png", "Дозировка", formkind::dosePicker, 0, "Дозировка таблеток",
     "Укажите дозировку лекарства", "pilldoza"},
    {"pills3.png", "Количество приемов", formkind::oftenPicker, 0, "Количество приемов",
     "Укажите количество приемов", "pillinter"},
    {"pills4.png", "Периодичность приема", formkind::listPick, diary::cotype::howOften,
     "Периодичность приема", "Укажите периодичность приема", "pillperiod"},
    {"pills5.png", "Принимать относительно еды", formkind::listPick, diary::cotype::meals,
     "Отношение к еде", "Укажите как лекарство стоит принимать относительно приема пищи",
     "pilleat"},
    {"pills6.png", "Длительность лечения", formkind::lengthPicker, 0, "Длительность лечения",
     "Укажите как долго нужно принимать лекарство", "pilllength"},
    {"checkgreen.png", "Дата начала приема", formkind::date, 0, "", "Укажите дату начала приема",
     "pillsdate"},
    {"pills7.png", "Время приема", formkind::times, 0, "Время приема", "Укажите время приема",
     "pilltime"},
};

}  // namespace

diary::EntryForm courseForm(std::optional<std::string_view> course, std::string_view day,
                            const std::vector<diary::ListRow>& lists) {
    diary::EntryForm form;
    form.caption = "Лекарства";
    for (const auto& row : kRows) {
        diary::addToNoteInit(form.rows, row.pic, row.caption, row.kind, row.listid, row.editcap,
                             row.prompt, row.field, row.kind == formkind::listPick, false);
    }
    if (course) {
        const auto object = diary::jsonToDictionary(*course);
        for (const auto& row : kRows) {
            form.defaults[row.field] = diary::jsonText(object, row.field);
        }
        return form;
    }
    form.defaults = {
        {"pillname", ""},
        {"pilldoza", std::string(kNewCourseDoza)},
        {"pillinter", std::string(kNewCourseInter)},
        {"pillperiod", frame::indexByCaption(lists, diary::cotype::howOften, kNewCoursePeriod)},
        {"pilleat", frame::indexByCaption(lists, diary::cotype::meals, kNewCourseMeal)},
        {"pilllength", std::string(kNewCourseLength)},
        {"pillsdate", std::string(day)},
        {"pilltime", std::string(kNewCourseTimes)},
    };
    return form;
}

std::optional<std::map<std::string, std::string>> courseOfForm(
    const std::vector<diary::CatalogueRow>& rows) {
    std::map<std::string, std::string> course;
    for (const auto& row : rows) {
        if (row.tp >= formkind::date && !row.field.empty()) {
            course[row.field] = row.source;
        }
    }
    if (course["pillinter"].empty() || course["pilleat"].empty()) {
        return std::nullopt;
    }
    course.erase("pilltime");
    return course;
}

void followCourseTimes(std::vector<diary::CatalogueRow>& rows, std::string_view changed,
                       const CourseTimes& times) {
    if (changed != "pillinter" && changed != "pilleat") {
        return;
    }
    const std::size_t at = frame::posByField(rows, "pilltime");
    if (at == 0) {
        return;
    }
    const auto course = courseOfForm(rows);
    rows[at - 1].source = course ? times(*course).value_or("") : std::string();
}

}  // namespace tilika::medication
