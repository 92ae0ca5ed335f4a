#include "core/menu_rows.h"

namespace tilika::core {

namespace {

struct RowEntry {
    int tp;
    const char* pic;
    const char* name;
    int id;
    const char* comment;
    const char* gid;
    bool russianOnly;
};

// clang-format off
constexpr RowEntry kRows[] = {
    {menukind::page, "icon-passport.png", "Анкетные данные на сегодня", 1, "", kMenuLocal, false},
    {menukind::page, "icon-inday.png", "Расписание на день", 2, "", kMenuLocal, false},
    {menukind::page, "icon-graph.png", "Графики роста и веса", 3, "", kMenuLocal, false},
    {menukind::page, "icon-child.png", "Развитие ребенка", 4, "", kMenuLocal, false},
    {menukind::page, "icon-toys.png", "Игрушки", 5, "", kMenuLocal, false},
    {menukind::page, "icon-tooth.png", "Молочные зубы", 6, "", kMenuLocal, false},
    {menukind::page, "icon-food.png", "Кормление грудью и прикорм", 7, "", kMenuLocal, false},
    {menukind::page, "icon-doctor.png", "К доктору", 8, "", kMenuLocal, true},
    {menukind::page, "icon-plane.png", "Хронология", 10, "", kMenuLocal, false},
    {menukind::page, "icon-note.png", "Дневник", 9, "", kMenuLocal, false},
    {menukind::action, "", "Сформировать фотокнигу", 23, "", kMenuLocal, false},
    {menukind::action, "", "Сформировать PDF отчет", 21, "", kMenuLocal, false},
    {menukind::action, "", "Настройки", 22, "", kMenuLocal, false},
    {menukind::addChild, "", "Добавить ребенка", 31, "", kMenuMain, false},
    {menukind::service, "m-library.png", "База знаний", 32,
     "Подборка информации по уходу за ребенком", kMenuMain, false},
    {menukind::service, "m-clinic.png", "Мед. учреждения и лаборатории", 40,
     "Карта с медицинскими учреждениями и лабораториями", kMenuMain, true},
    {menukind::service, "m-opros.png", "Опросы", 45,
     "Социологические опросы на темы о детях", kMenuMain, true},
    {menukind::service, "m-shop.png", "Витрина магазина", 48,
     "Подборка интересных товаров для беременных", kMenuMain, true},
    {menukind::service, "m-help.png", "Поддержка", 34,
     "Обязательно зайдите сюда, если у вас есть вопросы или проблемы с программой", kMenuMain, true},
    {menukind::service, "m-app.png", "", 36,
     "Возможно Вас заинтересуют другие мои программы", kMenuMain, false},
    {menukind::service, "m-rating.png", "", 37,
     "Если у Вас есть время, поставьте пожалуйста оценку программе в AppStore. Высокий рейтинг - "
     "это дополнительный стимул к работе над ней", kMenuMain, false},
    {menukind::service, "m-cloud.png", "", 38, "Настройка режима работы с ICloud", kMenuMain, false},
    {menukind::service, "m-background.png", "", 42, "Настройка заднего фона", kMenuMain, false},
    {menukind::service, "m-restore.png", "", 43, "Восстановить из копии…", kMenuMain, false},
    {menukind::toggle, "", "", 51, "Не показывать в дневнике пустые дни", kMenuMain, false},
    {menukind::toggle, "", "", 52, "Запрашивать пароль при входе в программу", kMenuMain, false},
    {menukind::toggle, "", "", 53, "Перемещение между разделами наклоном устройства", kMenuMain, false},
    {menukind::toggle, "", "", 54, "Напоминания о приеме лекарств", kMenuMain, false},
    {menukind::toggle, "", "", 55, "Показывать количество новых сообщений в чате", kMenuMain, false},
    {menukind::toggle, "", "", 56, "Показывать контекстную рекламу", kMenuMain, false},
};
// clang-format on

}  // namespace

std::vector<MenuRow> buildMenuItems(int langid, const std::string& shortVersion) {
    std::vector<MenuRow> rows;
    for (const RowEntry& entry : kRows) {
        if (entry.russianOnly && langid != 1) {
            continue;
        }
        rows.push_back(
            {entry.tp, entry.pic, entry.name, entry.id, entry.comment, entry.gid, false, false, 0});
    }
    rows.push_back(
        {menukind::version, "", "", 0, "Версия " + shortVersion, kMenuMain, false, false, 0});
    return rows;
}

int pageCount(const std::vector<MenuRow>& rows) {
    int count = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].tp == menukind::page) {
            count = static_cast<int>(i) + 1;
        }
    }
    return count;
}

}  // namespace tilika::core
