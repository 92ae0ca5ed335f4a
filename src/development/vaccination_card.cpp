#include "development/vaccination_card.h"

#include <algorithm>
#include <array>

#include "core/ids.h"

namespace tilika::development {

namespace {

using platform::Color;
using platform::Font;
using platform::FontWeight;
using platform::Rect;
using platform::TextAlign;

constexpr int kHeaderRows = 2;
constexpr int kLastColumn = 15;
constexpr double kLegendGap = 16;
constexpr double kPadding = 4;

constexpr Color kHeaderColor{0.87, 0.89, 0.91};
constexpr Color kEmptyColor{1, 1, 1};
constexpr Color kGridColor{0.55, 0.58, 0.62};
constexpr Color kTextColor{0.1, 0.1, 0.12};
constexpr std::array<Color, 4> kKindColors{{
    {0.76, 0.91, 0.74},  // В
    {0.72, 0.84, 0.97},  // Р
    {1.0, 0.92, 0.62},   // В(гр)
    {1.0, 0.78, 0.6},    // Р(гр)
}};

constexpr Font kHeaderFont{11, FontWeight::Bold};
constexpr Font kDiseaseFont{12, FontWeight::Regular};
constexpr Font kShotFont{12, FontWeight::Bold};
constexpr Font kLegendFont{11, FontWeight::Regular};

Color kindColor(ShotKind kind) {
    return kKindColors[static_cast<std::size_t>(kind)];
}

double columnX(int column) {
    return column == 1 ? 0
                       : VaccinationCard::firstColwidth + (column - 2) * VaccinationCard::colwidth;
}

double columnWidth(int column) {
    return column == 1 ? VaccinationCard::firstColwidth : VaccinationCard::colwidth;
}

double rowY(int row) {
    return (row - 1) * VaccinationCard::rowheight;
}

Rect cellRect(int row, int column, int rows = 1, int columns = 1) {
    const double x = columnX(column);
    return Rect{x, rowY(row), columnX(column + columns - 1) + columnWidth(column + columns - 1) - x,
                rows * VaccinationCard::rowheight};
}

}  // namespace

ShotKind shotKind(std::string_view caption) {
    const bool revaccination = caption.starts_with("Р");
    const bool risk = caption.find("(гр)") != std::string_view::npos;
    if (risk) {
        return revaccination ? ShotKind::RiskRevaccination : ShotKind::RiskVaccination;
    }
    return revaccination ? ShotKind::Revaccination : ShotKind::Vaccination;
}

const std::vector<std::string_view>& cardDiseases() {
    static const std::vector<std::string_view> diseases{
        "Вирусный гепатит B",
        "Туберкулез",
        "Пневмококковая инфекция",
        "Дифтерия",
        "Коклюш",
        "Столбняк",
        "Полимиелит",
        "Гемофильная инфекция",
        "Корь",
        "Краснуха",
        "Эпидемический паротит",
    };
    return diseases;
}

const std::vector<CardShot>& cardShots() {
    // Hib has been given to every child, not only to those at risk, since
    // the calendar of 2021; and the third polio booster comes at six years.
    static const std::vector<CardShot> shots{
        {0, 2, "В1", 1},      {0, 4, "В2", 22},   {0, 5, "В3(гр)", 23}, {0, 8, "В3", 109},
        {0, 9, "В4(гр)", 24},                                         //
        {1, 3, "В", 2},       {1, 14, "Р", 114},                      //
        {2, 5, "В1", 101},    {2, 7, "В2", 108},  {2, 10, "Р", 112},  //
        {3, 6, "В1", 10},     {3, 7, "В2", 12},   {3, 8, "В3", 15},     {3, 11, "Р1", 20},
        {3, 14, "Р2", 29},    {3, 15, "Р3", 31},  //
        {4, 6, "В1", 10},     {4, 7, "В2", 12},   {4, 8, "В3", 15},     {4, 11, "Р", 20},
        {5, 6, "В1", 10},     {5, 7, "В2", 12},   {5, 8, "В3", 15},     {5, 11, "Р1", 20},
        {5, 14, "Р2", 29},    {5, 15, "Р3", 31},  //
        {6, 6, "В1", 103},    {6, 7, "В2", 106},  {6, 8, "В3", 110},    {6, 11, "Р1", 118},
        {6, 12, "Р2", 21},    {6, 13, "Р3", 115},  //
        {7, 6, "В1", 102},    {7, 7, "В2", 104},  {7, 8, "В3", 111},    {7, 11, "Р", 113},
        {8, 9, "В", 19},      {8, 13, "Р", 28},  //
        {9, 9, "В", 19},      {9, 13, "Р", 28},  //
        {10, 9, "В", 19},     {10, 13, "Р", 28},
    };
    return shots;
}

bool VaccinationCard::isChecked(int number, const std::vector<std::string>& marks) {
    const std::string guid = core::newID2(core::idkind::listRow, number);
    return std::find(marks.begin(), marks.end(), guid) != marks.end();
}

void VaccinationCard::addCell(std::string caption, Rect rect, Color color, TextAlign alignment,
                              Font font, bool check, int number) {
    mainData_.push_back(CardCell{std::move(caption), rect, color, alignment, font, check, number});
}

void VaccinationCard::addLegent(std::string sample, double width, Color color, TextAlign alignment,
                                Font font, std::string comment) {
    const double tableWidth = columnX(kLastColumn) + colwidth;
    double left = 0;
    if (!sample.empty()) {
        addCell(std::move(sample), Rect{0, legendTop_, width, rowheight}, color, TextAlign::Center,
                kShotFont, false);
        left = width + kPadding * 2;
    }
    addCell(std::move(comment), Rect{left, legendTop_, tableWidth - left, rowheight},
            Color{0, 0, 0, 0}, alignment, font, false);
    legendTop_ += rowheight + kPadding;
    size_.height = legendTop_;
}

void VaccinationCard::prepare(const std::vector<std::string>& marks) {
    mainData_.clear();

    addCell("", cellRect(1, 1, kHeaderRows), kHeaderColor, TextAlign::Center, kHeaderFont, false);
    addCell("Первые 24 часа", cellRect(1, 2, kHeaderRows), kHeaderColor, TextAlign::Center,
            kHeaderFont, false);
    addCell("3-7 день", cellRect(1, 3, kHeaderRows), kHeaderColor, TextAlign::Center, kHeaderFont,
            false);
    addCell("Месяцы", cellRect(1, 4, 1, 9), kHeaderColor, TextAlign::Center, kHeaderFont, false);
    addCell("Годы", cellRect(1, 13, 1, 3), kHeaderColor, TextAlign::Center, kHeaderFont, false);
    constexpr std::array<std::string_view, 12> kAges{"1",  "2",  "3",  "4.5", "6", "12",
                                                     "15", "18", "20", "6",   "7", "14"};
    for (std::size_t i = 0; i < kAges.size(); ++i) {
        addCell(std::string(kAges[i]), cellRect(2, static_cast<int>(i) + 4), kHeaderColor,
                TextAlign::Center, kHeaderFont, false);
    }

    const auto& diseases = cardDiseases();
    for (std::size_t i = 0; i < diseases.size(); ++i) {
        const int row = static_cast<int>(i) + kHeaderRows + 1;
        addCell(std::string(diseases[i]), cellRect(row, 1), kEmptyColor, TextAlign::Left,
                kDiseaseFont, false);
        for (int column = 2; column <= kLastColumn; ++column) {
            const auto& shots = cardShots();
            const auto shot = std::find_if(shots.begin(), shots.end(), [&](const CardShot& s) {
                return s.row == static_cast<int>(i) && s.column == column;
            });
            if (shot == shots.end()) {
                addCell("", cellRect(row, column), kEmptyColor, TextAlign::Center, kShotFont,
                        false);
                continue;
            }
            const bool check = isChecked(shot->number, marks);
            const std::string text = check ? " ✅ " + std::string(shot->caption) + " "
                                           : " " + std::string(shot->caption) + " ";
            addCell(text, cellRect(row, column), kindColor(shotKind(shot->caption)),
                    TextAlign::Center, kShotFont, check, shot->number);
        }
    }

    const double tableBottom = rowY(kHeaderRows + static_cast<int>(diseases.size()) + 1);
    size_ = {columnX(kLastColumn) + colwidth, tableBottom};
    legendTop_ = tableBottom + kLegendGap;
    addLegent("Вx", colwidth, kindColor(ShotKind::Vaccination), TextAlign::Left, kLegendFont,
              "Вакцинация, где x - порядковый номер вакцинации");
    addLegent("Рx", colwidth, kindColor(ShotKind::Revaccination), TextAlign::Left, kLegendFont,
              "Ревакцинация, где x - порядковый номер ревакцинации");
    addLegent("Вx(гр)", colwidth, kindColor(ShotKind::RiskVaccination), TextAlign::Left,
              kLegendFont,
              "Вакцинация для детей из группы риска, где x - порядковый номер вакцинации");
    addLegent("Рx(гр)", colwidth, kindColor(ShotKind::RiskRevaccination), TextAlign::Left,
              kLegendFont,
              "Ревакцинация для детей из группы риска, где x - порядковый номер ревакцинации");
    addLegent("", colwidth, kEmptyColor, TextAlign::Left, kLegendFont,
              "Пометка о том, что прививка сделана производится на закладке К доктору");
}

std::vector<const CardCell*> VaccinationCard::cellsOf(int number) const {
    std::vector<const CardCell*> cells;
    for (const auto& cell : mainData_) {
        if (number != 0 && cell.number == number) {
            cells.push_back(&cell);
        }
    }
    return cells;
}

void VaccinationCard::draw(platform::Canvas& canvas) const {
    for (const auto& cell : mainData_) {
        const bool framed = cell.color.a > 0;
        if (framed) {
            canvas.fillRect(cell.rect, cell.color);
            canvas.strokeRect(cell.rect, kGridColor, 1);
        }
        if (cell.caption.empty()) {
            continue;
        }
        const double inset = cell.alignment == TextAlign::Center ? 1 : kPadding * 2;
        const double width = cell.rect.width - inset * 2;
        const double height = canvas.measureText(cell.caption, cell.font, width).height;
        // Short texts stand in the middle of their box; longer ones start
        // from its top rather than spill over the box above.
        const double top = cell.rect.y + std::max(1.0, (cell.rect.height - height) / 2);
        canvas.drawText(cell.caption, Rect{cell.rect.x + inset, top, width, cell.rect.height},
                        cell.font, kTextColor, cell.alignment);
    }
}

}  // namespace tilika::development
