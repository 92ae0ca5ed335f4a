#include "development/sizes.h"

#include <array>
#include <cstddef>

#include "frame/translation.h"

namespace tilika::development {

namespace {

struct Bounds {
    int min;
    int max;

    // An absent girth, 0, never fits, whatever the bounds.
    bool holds(float girth) const { return girth > 0 && girth >= min && girth <= max; }
};

struct ClothingRow {
    int size;   // the height class of the garment
    int month;  // the age from which the row holds
    int head;   // hat size, the head girth
    int rost;   // the lowest height of the row
    Bounds chest;
    Bounds waist;
    Bounds hips;
};

constexpr std::array<ClothingRow, 17> kClothing{{
    {50, 0, 35, 45, {41, 43}, {41, 43}, {41, 43}},
    {56, 2, 35, 51, {43, 45}, {43, 45}, {43, 45}},
    {62, 3, 35, 57, {45, 47}, {45, 47}, {45, 47}},
    {68, 6, 40, 63, {47, 49}, {46, 48}, {47, 49}},
    {74, 9, 44, 69, {49, 51}, {47, 49}, {49, 51}},
    {80, 12, 46, 75, {51, 53}, {48, 50}, {51, 53}},
    {86, 18, 47, 81, {52, 54}, {49, 51}, {52, 54}},
    {92, 24, 48, 87, {53, 55}, {50, 52}, {53, 56}},
    {98, 36, 49, 93, {54, 56}, {51, 53}, {55, 58}},
    {104, 48, 50, 99, {55, 57}, {52, 54}, {57, 60}},
    {110, 60, 51, 105, {56, 58}, {53, 55}, {59, 62}},
    {116, 72, 52, 111, {57, 59}, {54, 56}, {61, 64}},
    {122, 84, 53, 117, {58, 62}, {55, 58}, {63, 67}},
    {128, 96, 54, 123, {61, 65}, {57, 59}, {66, 70}},
    {134, 108, 55, 129, {64, 68}, {58, 61}, {69, 73}},
    {140, 120, 56, 135, {67, 71}, {60, 62}, {72, 76}},
    {146, 134, 56, 141, {70, 74}, {61, 64}, {75, 80}},
}};
// The last row the search visits. Above it the next row is only the upper
// neighbour, so the two largest sizes are never found by height or age.
constexpr std::size_t kLastClothingRow = 14;

struct ShoeRow {
    float foot;  // the shortest foot of the row; floats, as the measures are
    int shoe;
    int sock;
};

constexpr std::array<ShoeRow, 21> kShoes{{
    {9.5F, 16, 10},  {10.5F, 17, 10}, {11.0F, 18, 12}, {11.6F, 19, 12}, {12.3F, 20, 12},
    {13.0F, 21, 14}, {13.7F, 22, 14}, {14.3F, 23, 14}, {14.9F, 24, 16}, {15.5F, 25, 16},
    {16.2F, 26, 16}, {16.8F, 27, 18}, {17.4F, 28, 18}, {18.1F, 29, 18}, {18.7F, 30, 20},
    {19.4F, 31, 20}, {20.1F, 32, 20}, {20.7F, 33, 22}, {21.4F, 34, 22}, {22.1F, 35, 22},
    {22.7F, 36, 24},
}};
// The last row only closes the one before it.
constexpr std::size_t kLastShoeRow = 19;

struct RegionNames {
    int size;
    const char* russia;
    const char* britain;
    const char* america;
};

constexpr std::array<RegionNames, 16> kRegionNames{{
    {50, "18", "New baby", "New born, first size, 0-3M"},
    {56, "18", "Up to 1 month", "New born, first size, 0-3M"},
    {62, "18-20", "Up to 3 month", "3-6M"},
    {68, "20", "6 (month)", "6-9M"},
    {74, "22", "9 (month)", "9-12M"},
    {80, "24", "12 (month)", "12-18M"},
    {86, "26", "24 (month)", "18-24M"},
    {92, "26-28", "2-3 (year)", "2T"},
    {98, "28", "4-5 (year)", "3Т"},
    {104, "28-30", "4-5 (year)", "4Т"},
    {110, "30", "6-7 (year)", "5T (XS)"},
    {116, "30-32", "6-7 (year)", "S"},
    {122, "32", "8-9 (year)", "M"},
    {128, "34", "8-9 (year)", "M"},
    {134, "34-36", "10-11 (year)", "L"},
    {140, "36", "10-11 (year)", "L"},
}};

// Only these two American names end in a Cyrillic letter and so have
// entries in the translation table; the Latin ones are left alone.
bool cyrillicName(std::string_view name) {
    return name == "3Т" || name == "4Т";
}

constexpr const char* kNoAgeData =
    "Определить размеры одежды не удалось из-за отсутствия данных на возраст Вашего ребенка";
constexpr const char* kByAge =
    "Т.к. рост не указан (либо указан неправильно), то по возрасту ребенку соответствуют "
    "следующие размеры одежды";
constexpr const char* kByHeight =
    "Исходя из указанного роста ребенку скорее всего подойдут следующие размеры одежды";
constexpr const char* kByHeightAndGirths =
    "Исходя из указанного роста и биометрических данных ребенку скорее всего подойдут "
    "следующие размеры одежды";
constexpr const char* kAllFit =
    "Исходя из указанного роста и биометрических данных ребенку идеально подойдут следующие "
    "размеры одежды";
constexpr const char* kHatByHead =
    "Согласно указанным Вами биометрическим данным ребенку подойдет следующий размер шапочки";
constexpr const char* kHatByAge =
    "Исходя из возраста Вашего ребенка (биометрические данные не указаны) ему подойдет "
    "следующий размер шапочки";
constexpr const char* kShoesFit = "Следующие размеры обуви и носков должны подойти Вашему ребенку";
constexpr const char* kNoFoot =
    "Определить размер обуви не удалось из-за отсутствия необходимых биометрических данных "
    "(длина стопы)";

// Under half a year a foot length is not expected, so its absence is not
// worth a remark.
constexpr int kShoeMonths = 6;

void searchClothing(const SizeInputs& in, ClothingSizes& out) {
    for (std::size_t r = 0; r <= kLastClothingRow; ++r) {
        const ClothingRow& row = kClothing[r];
        const ClothingRow& next = kClothing[r + 1];
        if (row.month <= in.months) {
            out.ageSize = row.size;
            out.ageHead = row.head;
        }
        // Rounded up: a girth between two hat sizes takes the larger one.
        if (row.head < in.bio1 && next.head >= in.bio1) {
            out.headSize = next.head;
        }
        if (row.rost <= in.rost && next.rost > in.rost) {
            out.match = row.chest.holds(in.bio2) ? 2 : 1;
            out.match += row.waist.holds(in.bio3) ? 1 : 0;
            out.match += row.hips.holds(in.bio4) ? 1 : 0;
            out.rostSize = row.size;
        }
    }
}

void searchShoes(const SizeInputs& in, ClothingSizes& out) {
    for (std::size_t r = 0; r <= kLastShoeRow; ++r) {
        if (kShoes[r].foot <= in.bio5 && kShoes[r + 1].foot > in.bio5) {
            out.shoe = kShoes[r].shoe;
            out.sock = kShoes[r].sock;
        }
    }
}

SizeLine textLine(int style, std::string text) {
    SizeLine line;
    line.style = style;
    line.text = std::move(text);
    return line;
}

SizeLine valueLine(std::string name, std::string value) {
    SizeLine line;
    line.style = sizestyle::labelled;
    line.text = std::move(name);
    line.value = std::move(value);
    return line;
}

void addClothingLines(const core::AppState& state, ClothingSizes& out) {
    int shown = 0;
    if (out.match == 0 && out.ageSize == 0) {
        out.lines.push_back(textLine(sizestyle::hint, frame::translate(state, kNoAgeData)));
    } else {
        const char* text = kAllFit;
        shown = out.rostSize;
        if (out.match == 0) {
            text = kByAge;
            shown = out.ageSize;
        } else if (out.match == 1) {
            text = kByHeight;
        } else if (out.match < 4) {
            text = kByHeightAndGirths;
        }
        out.lines.push_back(textLine(sizestyle::body, frame::translate(state, text)));
    }
    if (shown > 0) {
        constexpr std::array<const char*, 4> kRegions{"Россия", "Евросоюз", "Англия", "США"};
        for (int region = 1; region <= 4; ++region) {
            SizeLine line = valueLine(frame::translate(state, kRegions[region - 1]),
                                      odSize(state, shown, region).value_or(""));
            line.picture = "flag" + std::to_string(region);
            line.correctLeft = kRegionValueShift;
            out.lines.push_back(std::move(line));
        }
    }
    out.lines.push_back(textLine(sizestyle::separator, ""));
}

void addHatLines(const core::AppState& state, ClothingSizes& out) {
    const bool byHead = out.headSize >= 1;
    out.lines.push_back(
        textLine(sizestyle::body, frame::translate(state, byHead ? kHatByHead : kHatByAge)));
    out.lines.push_back(valueLine(frame::translate(state, "Размер"),
                                  std::to_string(byHead ? out.headSize : out.ageHead)));
    out.lines.push_back(textLine(sizestyle::separator, ""));
}

void addShoeLines(const core::AppState& state, int months, ClothingSizes& out) {
    if (out.shoe > 0) {
        out.lines.push_back(textLine(sizestyle::body, frame::translate(state, kShoesFit)));
        out.lines.push_back(valueLine(frame::translate(state, "Обувь"), std::to_string(out.shoe)));
        out.lines.push_back(valueLine(frame::translate(state, "Носки"), std::to_string(out.sock)));
    } else if (months >= kShoeMonths) {
        out.lines.push_back(textLine(sizestyle::hint, frame::translate(state, kNoFoot)));
    }
}

}  // namespace

ClothingSizes clothingSizes(const core::AppState& state, const SizeInputs& inputs) {
    ClothingSizes out;
    searchClothing(inputs, out);
    searchShoes(inputs, out);
    addClothingLines(state, out);
    addHatLines(state, out);
    addShoeLines(state, inputs.months, out);
    return out;
}

std::optional<std::string> odSize(const core::AppState& state, int size, int region) {
    if (region == 2) {
        return std::to_string(size);
    }
    if (region != 1 && region != 3 && region != 4) {
        return std::nullopt;
    }
    // Russian and American names do not tell the two newborn sizes apart,
    // and give the same name to anything smaller.
    constexpr int kNewbornUpTo = 56;
    if (region != 3 && size <= kNewbornUpTo) {
        size = kRegionNames[0].size;
    }
    for (const RegionNames& names : kRegionNames) {
        if (names.size != size) {
            continue;
        }
        if (region == 1) {
            return std::string(names.russia);
        }
        if (region == 3) {
            return std::string(names.britain);
        }
        if (cyrillicName(names.america)) {
            return frame::translate(state, names.america);
        }
        return std::string(names.america);
    }
    return std::nullopt;
}

}  // namespace tilika::development
