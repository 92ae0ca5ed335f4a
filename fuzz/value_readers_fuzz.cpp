// Feeds one input through every reader of stored values: the JSON and the old
// delimited forms, the display texts, the upgrade's conversions and the
// writers that take an old value in. Besides the sanitizers it checks that
// whatever the writers make of the input is JSON our own readers take back.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/dates.h"
#include "core/ids.h"
#include "core/text.h"
#include "diary/display_texts.h"
#include "diary/old_values.h"
#include "diary/value_codecs.h"
#include "platform/clock.h"

namespace {

using tilika::core::newID2;
using tilika::diary::CatalogueRow;
using tilika::diary::ListRow;
using tilika::diary::MultiRow;
namespace tp = tilika::diary::tp;

const tilika::core::Dates& dates() {
    static const tilika::platform::ManualClock clock{tilika::core::Date{}, "Europe/Moscow"};
    static const tilika::core::Dates shared{clock};
    return shared;
}

void require(bool ok) {
    if (!ok) {
        __builtin_trap();
    }
}

// A little of everything a list holds: old numeric rows and seeded rows,
// tails, units in brackets, a bracket with nothing after it, no caption.
const std::vector<ListRow>& list() {
    static const std::vector<ListRow> rows{
        {"Улыбается", newID2(2, 1), 1, 2, 1, false},
        {"Корь<tr>1", newID2(2, 2), 3, 2, 1, false},
        {"Выздоровел", newID2(2, 3), 3, 4, 1, false},
        {"Нурофен", newID2(4, 8), 101, 2, 1, true},
        {"Общий анализ крови", newID2(4, 32), 200, 2, 1, false},
        {"Нутрилон 1 (смесь)", newID2(4, 61), 6, 2, 1, false},
        {"Сцеженное молоко<tr>2", newID2(4, 70), 6, 4, 1, false},
        {"Желток яйца (шт.)<tr>12", newID2(4, 71), 9, 5, 1, false},
        {"Скобка (", newID2(2, 7), 9, 0, 1, false},
        {"", newID2(2, 9), 9, 0, 1, false},
    };
    return rows;
}

// Fields whose old values become JSON.
constexpr std::string_view kRecordFields[] = {
    "temp",  "alarm", "analizy", "documents",   "pills",   "pressure", "zhid",
    "sleep", "walk",  "uzi",     "birthresult", "kovalue", "biosize",
};
// Fields whose old ids become guids, and one of those that stay as they are.
constexpr std::string_view kOtherFields[] = {"changes", "fillings", "bolezn", "allergen", "note"};

// One kind of each shape the readers and writers tell apart; the others take
// the same paths.
constexpr int kRowKinds[] = {0, tp::timedRows, tp::pressure, tp::fluids};
constexpr int kRecordKinds[] = {0, tp::medication, tp::periods};
constexpr int kWriteKinds[] = {0,
                               tp::text,
                               tp::bodyMeasures,
                               tp::ultrasound,
                               tp::birthResult,
                               tp::timedRows,
                               tp::medication,
                               tp::periods,
                               tp::fluids};

bool readsBackAsJson(const std::string& text) {
    return !tilika::diary::jsonToArray(text).is_null() ||
           !tilika::diary::jsonToDictionary(text).is_null();
}

void readJson(std::string_view text) {
    using namespace tilika::diary;
    (void)jsonIs(text);
    for (const nlohmann::json& parsed : {jsonToDictionary(text), jsonToArray(text)}) {
        if (parsed.is_null()) {
            continue;
        }
        // What was read writes back to text that reads the same.
        const std::string written = jsonFromObject(parsed);
        require(parsed.is_array() ? jsonToArray(written) == parsed
                                  : jsonToDictionary(written) == parsed);
        (void)pressureToString(parsed);
        (void)zhidToString(parsed);
        (void)jsonText(parsed, "time");
        for (const nlohmann::json& element : parsed) {
            (void)pressureToString(element);
            (void)zhidToString(element);
            (void)jsonText(element, "temp");
        }
    }
}

void readMulti(std::string_view text) {
    using namespace tilika::diary;
    for (int kind : kRowKinds) {
        const std::vector<MultiRow> rows = multiFromString(text, kind);
        const nlohmann::json written = jsonToArray(multiToString(rows));
        require(written.is_array() && written.size() == rows.size());
    }
    for (int kind : kRecordKinds) {
        const std::vector<MultiRow> records =
            multi2FromString(text, list(), kind, std::nullopt, dates());
        // A medication value from before JSON gives a row of text alone.
        const auto withSource =
            std::count_if(records.begin(), records.end(),
                          [](const MultiRow& row) { return !row.source.empty(); });
        require(jsonToArray(multi2ToString(records)).size() ==
                static_cast<std::size_t>(withSource));
    }
    (void)intervalToRead2(text);
    for (std::string_view type : {"pills", "temp"}) {
        const CourseKeys keys = extractKeys(type, text);
        require(keys.key.size() == keys.keyvalue.size());
    }
}

void readDisplayTexts(std::string_view text) {
    using namespace tilika::diary;
    (void)checkStringToRead(text, list());
    (void)toothStringToRead(text);
    (void)analizyStringToRead(text, list());
    (void)biosizeStringToRead(text);
    (void)kormToString(text, list());
}

void readOldForms(std::string_view text) {
    using namespace tilika::diary;
    for (std::string_view field : kRecordFields) {
        const std::string converted = oldValueToJson(field, text, list());
        if (!text.empty() && !jsonIs(text)) {
            require(readsBackAsJson(converted));
        }
        (void)jsonFromObject(oldValueToDic(field, text, list()));
    }
    for (std::string_view field : kOtherFields) {
        (void)oldValueToJson(field, text, list());
    }
    for (std::string_view field : {"pilldoza", "pillinter", "pilllength", "pillname"}) {
        (void)oldList(field, text);
    }
    (void)oldFileNameToNew(text);
    (void)sortValueByTime(text);
}

// The writers that take an old value in: the input's first piece is the old
// value, the rest the form's rows, every second one a body measure.
void writeForms(std::string_view text, const std::vector<std::string>& pieces) {
    using namespace tilika::diary;
    std::vector<CatalogueRow> rows;
    for (std::size_t i = 1; i + 1 < pieces.size(); i += 2) {
        CatalogueRow row;
        row.field = pieces[i];
        row.source = pieces[i + 1];
        row.tp = (i / 2) % 2 == 0 ? 1015 : 1001;
        rows.push_back(std::move(row));
    }
    const int pos = text.empty() ? -1 : static_cast<unsigned char>(text.front()) % 6 - 1;
    for (int kind : kWriteKinds) {
        const std::string value = jsonFromDic(kind, "field", pieces.front(), rows, pos);
        require(kind == 0 || kind == tp::text ? true : readsBackAsJson(value));
    }
}

void readEverything(std::string_view text) {
    readJson(text);
    readMulti(text);
    readDisplayTexts(text);
    readOldForms(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    readEverything(text);

    const std::vector<std::string> pieces = tilika::core::split(text, std::string_view("\0", 1));
    writeForms(text, pieces);
    if (pieces.size() > 1) {
        for (const std::string& piece : pieces) {
            readEverything(piece);
        }
    }
    return 0;
}
