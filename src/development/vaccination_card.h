#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/canvas.h"

namespace tilika::development {

inline constexpr std::string_view kCardCaption = "Карта прививок";

// One box of the card: a heading, a disease, a vaccination or a line of the
// legend. Positions are in the card's own units; a view scales them.
struct CardCell {
    std::string caption;
    platform::Rect rect;
    platform::Color color;
    platform::TextAlign alignment = platform::TextAlign::Center;
    platform::Font font;
    bool check = false;
    // The number of the plan's tick that marks it; 0 for the other boxes.
    int number = 0;
};

// A vaccination of the card: its row (0 for the first disease), its column
// (1 is the disease, 2 and on the ages), its caption and the plan's tick.
struct CardShot {
    int row = 0;
    int column = 0;
    std::string_view caption;
    int number = 0;
};

// The kinds of shot, each with its own colour: "В", "Р", "В(гр)", "Р(гр)".
enum class ShotKind { Vaccination, Revaccination, RiskVaccination, RiskRevaccination };
ShotKind shotKind(std::string_view caption);

// The diseases of the card, top to bottom, and every shot on it. Combined
// vaccines share a number, so one tick lights several diseases.
const std::vector<std::string_view>& cardDiseases();
const std::vector<CardShot>& cardShots();

// The vaccination card (planeTable): the national calendar as a table of
// diseases by age, with the shots the plan has ticked.
class VaccinationCard {
public:
    static constexpr double colwidth = 64;
    static constexpr double firstColwidth = 190;
    static constexpr double rowheight = 34;

    // Whether the tick of this number is among the marks (guids).
    static bool isChecked(int number, const std::vector<std::string>& marks);

    // Builds the card anew with the marks of the plan.
    void prepare(const std::vector<std::string>& marks);

    void addCell(std::string caption, platform::Rect rect, platform::Color color,
                 platform::TextAlign alignment, platform::Font font, bool check, int number = 0);
    // A legend line: its sample box (none when the sample is empty) and the
    // comment beside it, one below the other.
    void addLegent(std::string sample, double width, platform::Color color,
                   platform::TextAlign alignment, platform::Font font, std::string comment);

    const std::vector<CardCell>& mainData() const { return mainData_; }
    // The shot boxes of a number, for taps and tests.
    std::vector<const CardCell*> cellsOf(int number) const;
    platform::Size size() const { return size_; }

    void draw(platform::Canvas& canvas) const;

private:
    std::vector<CardCell> mainData_;
    platform::Size size_;
    double legendTop_ = 0;
};

}  // namespace tilika::development
