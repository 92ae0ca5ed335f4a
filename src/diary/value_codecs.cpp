#include "diary/value_codecs.h"

#include <algorithm>
#include <initializer_list>

#include "core/text.h"
#include "core/words.h"
#include "diary/course_texts.h"

namespace tilika::diary {
namespace {

using nlohmann::json;

// No value of ours nests deeper than an array of flat records. Anything much
// deeper is damage or malice, and is refused before parsing: copying and
// writing a parsed value recurse once per level.
constexpr int kMaxDepth = 32;

// Form rows of this kind hold one body measure each.
constexpr int kBodyMeasureRow = 1015;

bool nestingFits(std::string_view text) {
    int depth = 0;
    bool inString = false;
    bool escaped = false;
    for (char c : text) {
        if (inString) {
            if (escaped) {
                escaped = false;
            } else if (c == '\\') {
                escaped = true;
            } else if (c == '"') {
                inString = false;
            }
            continue;
        }
        if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            if (++depth > kMaxDepth) {
                return false;
            }
        } else if ((c == ']' || c == '}') && depth > 0) {
            --depth;
        }
    }
    return true;
}

json parse(std::string_view text) {
    if (text.empty() || !nestingFits(text)) {
        return nullptr;
    }
    try {
        json parsed = json::parse(text.begin(), text.end(), nullptr, false);
        if (parsed.is_discarded()) {
            return nullptr;
        }
        return parsed;
    } catch (const json::exception&) {
        return nullptr;
    }
}

// The array an old value holds, or a new empty one.
json arrayOrNew(std::string_view oldvalue) {
    json array = jsonIs(oldvalue) ? jsonToArray(oldvalue) : json();
    return array.is_array() ? array : json::array();
}

// Records sort by their time of day; records with the same time keep their
// order, so a new entry goes after an older one with the same time.
void sortByTime(json& array) {
    if (!array.is_array()) {
        return;
    }
    auto& elements = array.get_ref<json::array_t&>();
    std::stable_sort(elements.begin(), elements.end(), [](const json& a, const json& b) {
        return core::timeCompare(jsonText(a, "time"), jsonText(b, "time")) < 0;
    });
}

json objectOfRows(const std::vector<CatalogueRow>& rows, std::initializer_list<std::size_t> which) {
    json object = json::object();
    for (std::size_t i : which) {
        if (i < rows.size() && !rows[i].field.empty()) {
            object[rows[i].field] = rows[i].source;
        }
    }
    return object;
}

json objectOfAllRows(const std::vector<CatalogueRow>& rows) {
    json object = json::object();
    for (const CatalogueRow& row : rows) {
        if (!row.field.empty()) {
            object[row.field] = row.source;
        }
    }
    return object;
}

std::string readInterval(const json& record) {
    if (!record.is_object()) {
        return {};
    }
    return "с " + jsonText(record, "start") + " до " + jsonText(record, "end") + " (" +
           jsonText(record, "interval") + ")";
}

std::string withComment(std::string text, const json& record) {
    const std::string comment = jsonText(record, "comment");
    if (!comment.empty()) {
        text += " - " + comment;
    }
    return text;
}

}  // namespace

bool jsonIs(std::string_view value) {
    return !value.empty() && (value.front() == '[' || value.front() == '{');
}

nlohmann::json jsonToDictionary(std::string_view text) {
    json parsed = parse(text);
    return parsed.is_object() ? parsed : json();
}

nlohmann::json jsonToArray(std::string_view text) {
    json parsed = parse(text);
    return parsed.is_array() ? parsed : json();
}

std::string jsonFromObject(const nlohmann::json& object) {
    try {
        return object.dump(2, ' ', false, json::error_handler_t::replace);
    } catch (const json::exception&) {
        return {};
    }
}

std::string jsonText(const nlohmann::json& record, std::string_view key) {
    if (!record.is_object()) {
        return {};
    }
    const auto it = record.find(std::string(key));
    if (it == record.end()) {
        return {};
    }
    if (it->is_string()) {
        return it->get_ref<const std::string&>();
    }
    if (it->is_number() || it->is_boolean()) {
        return it->dump();
    }
    return {};
}

std::string jsonFromDic(int kind, std::string_view /*field*/, std::string_view oldvalue,
                        const std::vector<CatalogueRow>& value, int pos) {
    switch (kind) {
        case tp::checkList:
        case tp::pickOne:
        case tp::text:
        case tp::pickFromList:
        case tp::teeth:
            return value.size() > 1 ? value[1].source : std::string();
        case tp::bodyMeasures: {
            json object = json::object();
            for (const CatalogueRow& row : value) {
                if (row.tp == kBodyMeasureRow && !row.field.empty()) {
                    object[row.field] = row.source;
                }
            }
            return jsonFromObject(object);
        }
        case tp::ultrasound:
            return jsonFromObject(objectOfRows(value, {1, 2}));
        case tp::birthResult:
            return jsonFromObject(objectOfRows(value, {1, 2, 6, 3}));
        case tp::medication:
        case tp::periods:
        case tp::pressure:
        case tp::fluids: {
            json array = arrayOrNew(oldvalue);
            auto& elements = array.get_ref<json::array_t&>();
            json record = objectOfAllRows(value);
            // An edited record keeps its place; a new one (or one whose place
            // is gone) goes last.
            if (pos >= 0 && static_cast<std::size_t>(pos) < elements.size()) {
                elements[static_cast<std::size_t>(pos)] = std::move(record);
            } else {
                elements.push_back(std::move(record));
            }
            // Courses and periods stay in the order they were entered in.
            if (kind == tp::pressure || kind == tp::fluids) {
                sortByTime(array);
            }
            return jsonFromObject(array);
        }
        case tp::timedRows:
        case tp::reminders: {
            json array = arrayOrNew(oldvalue);
            array.push_back(objectOfRows(value, {1, 2}));
            sortByTime(array);
            return jsonFromObject(array);
        }
        default:
            return {};
    }
}

std::string multiToString(const std::vector<MultiRow>& rows) {
    // Reminders share the writer with temperatures, so their text too stands
    // under "temp".
    json array = json::array();
    for (const MultiRow& row : rows) {
        array.push_back({{"time", row.time}, {"temp", row.cap}});
    }
    return jsonFromObject(array);
}

std::vector<MultiRow> multiFromString(std::string_view value, int type) {
    std::vector<MultiRow> rows;
    if (value.empty()) {
        return rows;
    }
    if (jsonIs(value)) {
        for (const json& element : jsonToArray(value)) {
            if (!element.is_object()) {
                continue;
            }
            MultiRow row;
            row.time = jsonText(element, "time");
            row.index = static_cast<int>(rows.size()) + 1;
            if (type == tp::timedRows || type == tp::reminders) {
                row.cap = jsonText(element, "temp");
            } else if (type == tp::pressure) {
                row.cap = pressureToString(element);
            } else if (type == tp::fluids) {
                row.cap = zhidToString(element);
            }
            rows.push_back(std::move(row));
        }
        return rows;
    }
    for (const std::string& item : core::split(value, "<tr>")) {
        // What a stray delimiter leaves behind is no row.
        if (item.empty()) {
            continue;
        }
        const std::vector<std::string> pieces = core::split(item, "<td>");
        MultiRow row;
        row.time = pieces[0];
        row.cap = pieces.size() > 1 ? pieces[1] : std::string();
        row.index = static_cast<int>(rows.size()) + 1;
        rows.push_back(std::move(row));
    }
    return rows;
}

std::string multi2ToString(const std::vector<MultiRow>& rows) {
    json array = json::array();
    for (const MultiRow& row : rows) {
        json record = jsonToDictionary(row.source);
        if (record.is_object()) {
            array.push_back(std::move(record));
        }
    }
    return jsonFromObject(array);
}

std::vector<MultiRow> multi2FromString(std::string_view value, const std::vector<ListRow>& listData,
                                       int type, std::optional<core::Date> forDate,
                                       const core::Dates& dates) {
    std::vector<MultiRow> rows;
    if (value.empty()) {
        return rows;
    }
    if (!jsonIs(value)) {
        // A medication value from before JSON is plain text, shown as it is.
        if (type == tp::medication) {
            MultiRow row;
            row.text = std::string(value);
            rows.push_back(std::move(row));
        }
        return rows;
    }
    for (const json& element : jsonToArray(value)) {
        if (!element.is_object()) {
            continue;
        }
        MultiRow row;
        row.source = jsonFromObject(element);
        if (type == tp::periods) {
            row.text = readInterval(element);
        } else if (type == tp::medication) {
            row.text = pillsToRead(row.source, listData, forDate, dates);
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

std::string intervalToRead2(std::string_view value) {
    return jsonIs(value) ? readInterval(jsonToDictionary(value)) : std::string();
}

std::string pressureToString(const nlohmann::json& record) {
    return withComment(jsonText(record, "pressure1") + "/" + jsonText(record, "pressure2"), record);
}

std::string zhidToString(const nlohmann::json& record) {
    return withComment(jsonText(record, "in") + ">" + jsonText(record, "out"), record);
}

CourseKeys extractKeys(std::string_view type, std::string_view value) {
    CourseKeys keys;
    if (type != "pills" || !jsonIs(value)) {
        return keys;
    }
    for (const json& record : jsonToArray(value)) {
        if (!record.is_object()) {
            continue;
        }
        // Only a text is a key; a course with any other counts as new.
        if (const auto key = record.find("key"); key != record.end() && key->is_string()) {
            keys.key.push_back(jsonText(record, "key"));
            keys.keyvalue.push_back(jsonFromObject(record));
        } else {
            keys.nokey.push_back(jsonFromObject(record));
        }
    }
    return keys;
}

}  // namespace tilika::diary
