#include "diary/old_values.h"

#include <algorithm>
#include <initializer_list>

#include "core/ids.h"
#include "core/text.h"
#include "core/words.h"
#include "diary/value_codecs.h"
#include "frame/course_amounts.h"

namespace tilika::diary {
namespace {

using nlohmann::json;

bool isNumber(std::string_view text) {
    // A guid's number has twelve places; anything longer is no old id.
    return !text.empty() && text.size() <= 12 &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Old list values named their rows by number. A number becomes the row's
// fixed guid; anything else (a guid already, or no id at all) stays.
std::string widenId(std::string_view item) {
    if (item.size() < 10 && isNumber(item)) {
        return core::newID2(core::idkind::listRow, item);
    }
    return std::string(item);
}

std::string piece(const std::vector<std::string>& pieces, std::size_t i) {
    return i < pieces.size() ? pieces[i] : std::string();
}

json recordOf(std::string_view value, std::string_view separator,
              std::initializer_list<std::string_view> keys) {
    const std::vector<std::string> pieces = core::split(value, separator);
    json record = json::object();
    std::size_t i = 0;
    for (std::string_view key : keys) {
        record[std::string(key)] = piece(pieces, i++);
    }
    return record;
}

// Old medication courses are read with their fields in the order of the
// course form, the course's key (once it was spread over its days) last:
// name, dose, doses a day, period, meals, length, first day, times, key.
// The dose, the doses a day and the length were picker positions; the name,
// period and meals were row numbers.
json readCourse(std::string_view value) {
    const std::vector<std::string> pieces = core::split(value, "<table>");
    json course = json::object();
    course["pillname"] = widenId(piece(pieces, 0));
    course["pilldoza"] = oldList("pilldoza", piece(pieces, 1));
    course["pillinter"] = oldList("pillinter", piece(pieces, 2));
    course["pillperiod"] = widenId(piece(pieces, 3));
    course["pilleat"] = widenId(piece(pieces, 4));
    course["pilllength"] = oldList("pilllength", piece(pieces, 5));
    course["pillsdate"] = piece(pieces, 6);
    course["pilltime"] = piece(pieces, 7);
    // A course without a key has not been spread yet, so an empty key is no
    // key at all.
    if (const std::string key = piece(pieces, 8); !key.empty()) {
        course["key"] = key;
    }
    return course;
}

// The unit of a product of the "other food" kind is in brackets at the end
// of its caption: "Желток яйца (шт.)<tr>12".
std::string unitOfProduct(std::string_view guid, const std::vector<ListRow>& clist) {
    const ListRow* row = listByIndex(guid, clist);
    if (row == nullptr) {
        return {};
    }
    const std::string caption = captionText(row->cap);
    const std::size_t open = caption.find('(');
    if (open == std::string::npos) {
        return {};
    }
    std::string unit = caption.substr(open + 1);
    if (!unit.empty() && unit.back() == ')') {
        unit.pop_back();
    }
    return unit;
}

// An old feeding was the food kind and two numbers whose meaning depends on
// the kind.
json readFeeding(std::string_view value, const std::vector<ListRow>& clist) {
    const std::vector<std::string> pieces = core::split(value, "<tr>");
    const int kind = core::intValue(piece(pieces, 0));
    const std::string a = piece(pieces, 1);
    const std::string b = piece(pieces, 2);
    json record = json::object();
    record["tp"] = std::to_string(kind);
    switch (kind) {
        case 1:
            record["tip"] = "Грудное молоко";
            record["left"] = a;
            record["right"] = b;
            break;
        case 2:
        case 5:
        case 6:
        case 7:
            record["tip"] = widenId(a);
            record["volume"] = b;
            record["measure"] = kind == 7 ? unitOfProduct(widenId(a), clist) : "мил.";
            break;
        case 3:
        case 4:
            record["tip"] = a;
            record["volume"] = b;
            record["measure"] = kind == 3 ? "мил." : "г.";
            break;
        default:
            break;
    }
    return record;
}

json readAnalysis(std::string_view value) {
    const std::vector<std::string> pieces = core::split(value, "<br>");
    // The scans themselves are renamed with the profile's guid; the record
    // must keep pointing at its file.
    return {{"tp", piece(pieces, 0)},
            {"captiontype", widenId(piece(pieces, 1))},
            {"file", oldFileNameToNew(piece(pieces, 2))},
            {"tag", piece(pieces, 3)}};
}

bool isOneOf(std::string_view field, std::initializer_list<std::string_view> fields) {
    return std::find(fields.begin(), fields.end(), field) != fields.end();
}

std::string wheelText(int list, int component, std::string_view part) {
    if (!isNumber(part)) {
        return std::string(part);
    }
    const std::vector<std::string> wheel = oldListFor(list, component);
    const auto position = static_cast<std::size_t>(core::intValue(part));
    return position < wheel.size() ? wheel[position] : std::string();
}

}  // namespace

nlohmann::json oldValueToDic(std::string_view field, std::string_view value,
                             const std::vector<ListRow>& clist) {
    if (isOneOf(field, {"temp", "alarm"})) {
        return recordOf(value, "<td>", {"time", "temp"});
    }
    if (isOneOf(field, {"analizy", "documents"})) {
        return readAnalysis(value);
    }
    if (field == "pills") {
        return readCourse(value);
    }
    if (field == "pressure") {
        return recordOf(value, "<table>", {"time", "pressure1", "pressure2", "comment"});
    }
    if (field == "zhid") {
        return recordOf(value, "<table>", {"time", "in", "out", "comment"});
    }
    if (isOneOf(field, {"sleep", "walk"})) {
        return recordOf(value, "<table>", {"start", "end", "interval"});
    }
    if (field == "uzi") {
        return recordOf(value, "<tr>", {"rost", "ves"});
    }
    if (field == "birthresult") {
        return recordOf(value, "<tr>", {"rost", "ves", "type", "time"});
    }
    if (field == "biosize") {
        return recordOf(value, "<tr>", {"bio1", "bio2", "bio3", "bio4", "bio5"});
    }
    if (field == "kovalue") {
        return readFeeding(value, clist);
    }
    return json::object();
}

std::string oldValueToJson(std::string_view field, std::string_view value,
                           const std::vector<ListRow>& clist) {
    if (value.empty()) {
        return {};
    }
    if (isOneOf(field, {"changes", "fillings", "bolezn", "allergen"})) {
        std::vector<std::string> items = core::split(value, "<tr>");
        for (std::string& item : items) {
            item = widenId(item);
        }
        return core::join(items, "<tr>");
    }
    // A value in JSON was converted before: the pass may meet it again.
    if (jsonIs(value)) {
        return std::string(value);
    }
    std::string_view separator;
    if (isOneOf(field, {"temp", "alarm", "analizy", "documents"})) {
        separator = "<tr>";
    } else if (isOneOf(field, {"pills", "pressure", "zhid", "sleep", "walk"})) {
        separator = "<end>";
    } else if (isOneOf(field, {"uzi", "birthresult", "kovalue", "biosize"})) {
        return jsonFromObject(oldValueToDic(field, value, clist));
    } else {
        return std::string(value);
    }
    json records = json::array();
    for (const std::string& item : core::split(value, separator)) {
        // What a trailing delimiter leaves behind is no record.
        if (!item.empty()) {
            records.push_back(oldValueToDic(field, item, clist));
        }
    }
    return jsonFromObject(records);
}

std::vector<std::string> oldListFor(int list, int component) {
    // Old records stored the positions of the same wheels the course form
    // still shows.
    if (list < static_cast<int>(frame::Picker::length) ||
        list > static_cast<int>(frame::Picker::inter)) {
        return {};
    }
    return frame::pickerRows(static_cast<frame::Picker>(list), component);
}

std::string oldList(std::string_view field, std::string_view value) {
    int list = 0;
    if (field == "pilldoza") {
        list = 5;
    } else if (field == "pillinter") {
        list = 6;
    } else if (field == "pilllength") {
        list = 4;
    } else {
        return std::string(value);
    }
    if (value.empty()) {
        return {};
    }
    const std::vector<std::string> parts = core::split(value, "<td>");
    return wheelText(list, 0, piece(parts, 0)) + "<td>" + wheelText(list, 1, piece(parts, 1));
}

std::string oldFileNameToNew(std::string_view name) {
    // New names carry a 36-character guid.
    if (name.size() >= 31) {
        return std::string(name);
    }
    const std::size_t dot = name.rfind('.');
    std::string extension(dot == std::string_view::npos ? std::string_view()
                                                        : name.substr(dot + 1));
    std::transform(extension.begin(), extension.end(), extension.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    if (extension != "jpg" && extension != "pdf") {
        return std::string(name);
    }
    const std::vector<std::string> pieces = core::split(name, "-");
    // Scans of analyses ("a") and documents ("d") name the profile second,
    // photos first.
    const bool scan = pieces[0] == "a" || pieces[0] == "d";
    const std::size_t numberAt = scan ? 1 : 0;
    if (pieces.size() < numberAt + 2 || !isNumber(pieces[numberAt])) {
        return std::string(name);
    }
    std::size_t restAt = 0;
    for (std::size_t i = 0; i <= numberAt; ++i) {
        restAt += pieces[i].size() + 1;
    }
    const std::string guid = core::newID2(core::idkind::profile, pieces[numberAt]);
    const std::string rest(name.substr(restAt));
    return scan ? pieces[0] + "-" + guid + "-" + rest : guid + "-" + rest;
}

std::string sortValueByTime(std::string_view source) {
    struct Record {
        std::string time;
        std::string text;
    };
    std::vector<Record> records;
    for (std::string& text : core::split(source, "<end>")) {
        std::string time = core::split(text, "<td>")[0];
        records.push_back({std::move(time), std::move(text)});
    }
    std::stable_sort(records.begin(), records.end(), [](const Record& a, const Record& b) {
        return core::timeCompare(a.time, b.time) < 0;
    });
    std::vector<std::string> sorted;
    for (Record& record : records) {
        sorted.push_back(std::move(record.text));
    }
    return core::join(sorted, "<end>");
}

}  // namespace tilika::diary
