#include "development/skills.h"

#include <algorithm>
#include <cmath>

#include "core/text.h"

namespace tilika::development {

namespace {

Skill addToMainStruct(int min, int max, std::string caption, std::string file, std::string desc,
                      bool inMonth) {
    return Skill{std::move(caption), std::move(file), std::move(desc), min, max, inMonth};
}

}  // namespace

const std::vector<Skill>& candoi() {
    static const std::vector<Skill> skills = {
        addToMainStruct(0, 40, "Учимся сидеть", "ch-sit-u",
                        "Описание процесса развития навыка принимать сидячее положение", false),
        addToMainStruct(0, 28, "Учимся держать головку", "ch-head-u",
                        "Развитие навыка держать голову", false),
        addToMainStruct(0, 52, "Учимся смотреть", "ch-glaz-u",
                        "Процесс формирования зрения у ребенка", false),
        addToMainStruct(0, 52, "Учимся держаться прямо", "ch-priamo-u",
                        "Развитие навыка принятия вертикального положения тела", false),
        addToMainStruct(0, 52, "Учимся ползать", "ch-polzat-u",
                        "Процесс формирования навыка передвигаться на четвереньках", false),
        addToMainStruct(0, 78, "Учимся ходить", "ch-hodit-u",
                        "Процесс формирования навыка передвигаться на двух ногах", false),
        addToMainStruct(0, 65, "Учимся действовать руками", "ch-ruki-u",
                        "Совершенствование процесса манипулирования руками", false),
        addToMainStruct(0, 0, "Учимся выражать эмоции", "pl-emoc-u",
                        "Описание процесса эмоционального развития ребенка", true),
        addToMainStruct(0, 0, "Учимся общаться", "pl-obsh-u",
                        "Описание процесса социального развития ребенка", true),
        addToMainStruct(0, 0, "Учимся играть", "pl-igra-u", "Развитие игровых навыков у ребенка",
                        true),
        addToMainStruct(0, 0, "Что должно насторожить родителей", "i-problem-u",
                        "Отклонения в развитии Вашего малыша", true),
    };
    return skills;
}

double ringPercent(const Skill& skill, int gcurweek, int step) {
    if (skill.maxweek <= 0 || gcurweek <= 0 || step <= 0) {
        return 0;
    }
    const double percent = static_cast<double>(gcurweek) / skill.maxweek / kRingSteps *
                           std::min(step, kRingSteps) * 100;
    return std::min(percent, 100.0);
}

double shownPercent(double percent) {
    // A billionth makes up for the binary error of a quotient
    // that should end exactly in .5.
    return std::floor(percent + 0.5 + 1e-9);
}

std::string ringLabel(double percent) {
    return core::formatFixed(shownPercent(percent), 0) + "%";
}

long long skillGroup(const Skill& skill, int gcurweek, int gcurmonth) {
    return skill.inmonth ? gcurmonth : gcurweek;
}

}  // namespace tilika::development
