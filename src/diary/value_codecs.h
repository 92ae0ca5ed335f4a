#pragma once

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/date.h"
#include "diary/catalogue.h"
#include "diary/reference_lists.h"

namespace tilika::core {
class Dates;
}

// The text of a diary value, read and written. Values come from our own
// database, from cloud records of other devices and from databases of old
// versions, so every reader here takes any text at all: what it can't make
// sense of reads as nothing (or as much as it could read), and nothing here
// throws.
namespace tilika::diary {

// A value is JSON when its very first character is "[" or "{"; any other
// value is plain text or one of the old delimited forms.
bool jsonIs(std::string_view value);

// The object (or array) the text holds; null when the text doesn't parse,
// nests deeper than any value of ours, or holds the other shape.
nlohmann::json jsonToDictionary(std::string_view text);
nlohmann::json jsonToArray(std::string_view text);

// Pretty-printed with an indent of two spaces and keys in sorted order, so
// that the same value always gives the same text and a record's "key" can be
// found by a text search. Broken UTF-8 is replaced, never thrown on.
std::string jsonFromObject(const nlohmann::json& object);

// One key of a record as text: strings as they stand, numbers and booleans as
// JSON writes them; a missing key, a null, a nested value or a record that is
// not an object read as "".
std::string jsonText(const nlohmann::json& record, std::string_view key);

// The new value of an entry of editing kind `kind` (the `tp` of its catalogue
// row) from the rows of its editor form (row 0 being the caption row). `oldvalue` is the entry's
// value before the edit; `pos` is the element being replaced in a list of records, -1 for a new
// one. `field` is the entry's type; the editing kind alone decides the shape of the value.
std::string jsonFromDic(int kind, std::string_view field, std::string_view oldvalue,
                        const std::vector<CatalogueRow>& value, int pos);

// Rows of time and text (temperature, reminders) to a value and back. Both
// kinds keep their text under "temp".
std::string multiToString(const std::vector<MultiRow>& rows);
std::vector<MultiRow> multiFromString(std::string_view value, int type);

// Rows of records (medication courses, sleep and walks) to a value and back;
// each row's `source` is one record as JSON text. A course reads with the day
// of the course it is on `forDate`, when one is given.
std::string multi2ToString(const std::vector<MultiRow>& rows);
std::vector<MultiRow> multi2FromString(std::string_view value, const std::vector<ListRow>& listData,
                                       int type, std::optional<core::Date> forDate,
                                       const core::Dates& dates);

// A sleep or walk record as "с 13:00 до 15:00 (02:00)"; "" for anything
// that is not a JSON object.
std::string intervalToRead2(std::string_view value);

// "120/80 - после прогулки", "500>300"; the comment only when there is one.
std::string pressureToString(const nlohmann::json& record);
std::string zhidToString(const nlohmann::json& record);

// The courses of a medication value, told apart by whether they were already
// spread over their days (they carry a `key`).
struct CourseKeys {
    std::vector<std::string> key;       // keys of the spread courses
    std::vector<std::string> nokey;     // courses without a key, as JSON text
    std::vector<std::string> keyvalue;  // the spread courses, as JSON text
};
CourseKeys extractKeys(std::string_view type, std::string_view value);

}  // namespace tilika::diary
