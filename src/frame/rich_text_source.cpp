#include "frame/rich_text_source.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>
#include <system_error>

#include "core/files.h"
#include "core/text.h"

namespace tilika::frame {

namespace {

using core::trimmed;

// Pages come from the server too. Past this many items the rest of a page is
// left out, which keeps a hostile or broken one from taking all the memory.
constexpr std::size_t kMaxItems = 100'000;

// A kind is read as a number with a fraction and cut to a whole one; what no
// whole number can hold is no kind at all.
int kindFrom(double value) {
    if (!std::isfinite(value) || value < std::numeric_limits<int>::min() ||
        value > std::numeric_limits<int>::max()) {
        return richtp::unknown;
    }
    return static_cast<int>(value);
}

// Splits at each separator, without copying.
template <typename Visit>
void forEachPiece(std::string_view text, std::string_view separator, Visit visit) {
    std::size_t at = 0;
    while (true) {
        const auto next = text.find(separator, at);
        if (next == std::string_view::npos) {
            visit(text.substr(at));
            return;
        }
        visit(text.substr(at, next - at));
        at = next + separator.size();
    }
}

void setField(RichItem& item, std::string_view key, std::string_view value) {
    if (key == "tp") {
        item.tp = kindFrom(core::floatValue(value));
    } else if (key == "text") {
        item.text = value;
    } else if (key == "format") {
        item.format = value;
    } else if (key == "pic") {
        item.pic = value;
    } else if (key == "bigpic") {
        item.bigpic = value;
    } else if (key == "weblink") {
        item.weblink = value;
    } else if (key == "hiddentext") {
        item.hiddentext = value;
    } else if (key == "checkid") {
        if (!value.empty()) {
            item.checkid = std::string(value);
        }
    } else if (key == "linkid") {
        item.linkid = core::intValue(value);
    } else if (key == "groupid") {
        item.groupid = core::intValue(value);
    }
}

std::string jsonString(const nlohmann::json& value) {
    if (value.is_string()) {
        return value.get<std::string>();
    }
    if (value.is_number_integer()) {
        return std::to_string(value.get<long long>());
    }
    if (value.is_number()) {
        return core::formatFixed(value.get<double>(), 0);
    }
    return {};
}

long long jsonInteger(const nlohmann::json& value) {
    if (value.is_number_integer()) {
        return value.get<long long>();
    }
    if (value.is_number()) {
        const double number = value.get<double>();
        if (!std::isfinite(number) || std::abs(number) > 9e15) {
            return 0;
        }
        return static_cast<long long>(number);
    }
    if (value.is_string()) {
        return core::intValue(value.get<std::string>());
    }
    return 0;
}

RichItem itemFromJson(const nlohmann::json& object, long long groupid) {
    RichItem item;
    item.groupid = groupid;
    if (!object.is_object()) {
        item.tp = richtp::unknown;
        return item;
    }
    for (const auto& [key, value] : object.items()) {
        if (key == "tp") {
            item.tp = value.is_number()   ? kindFrom(value.get<double>())
                      : value.is_string() ? kindFrom(core::floatValue(value.get<std::string>()))
                                          : richtp::unknown;
        } else if (key == "linkid") {
            item.linkid = jsonInteger(value);
        } else if (key == "checkid") {
            std::string id = jsonString(value);
            if (!id.empty()) {
                item.checkid = std::move(id);
            }
        } else if (key != "groupid") {
            setField(item, key, jsonString(value));
        }
    }
    return item;
}

std::vector<RichGroup> groupsFromJson(std::string_view text) {
    std::vector<RichGroup> groups;
    const auto root = nlohmann::json::parse(text, nullptr, false);
    if (!root.is_array()) {
        return groups;
    }
    std::size_t count = 0;
    for (const auto& entry : root) {
        if (!entry.is_object() || count >= kMaxItems) {
            continue;
        }
        RichGroup group;
        if (const auto id = entry.find("groupid"); id != entry.end()) {
            group.groupid = jsonInteger(*id);
        }
        if (const auto content = entry.find("Content");
            content != entry.end() && content->is_array()) {
            for (const auto& object : *content) {
                if (count++ >= kMaxItems) {
                    break;
                }
                group.items.push_back(itemFromJson(object, group.groupid));
            }
        }
        groups.push_back(std::move(group));
    }
    return groups;
}

std::string readFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace

std::vector<RichItem> parseMarkup(std::string_view markup) {
    std::vector<RichItem> items;
    long long groupid = 0;
    forEachPiece(markup, "<br>", [&](std::string_view record) {
        if (items.size() >= kMaxItems) {
            return;
        }
        RichItem item;
        item.groupid = groupid;
        forEachPiece(record, "<tr>", [&](std::string_view field) {
            const auto separator = field.find("<val>");
            if (separator == std::string_view::npos) {
                return;
            }
            std::string_view value = field.substr(separator + 5);
            value = value.substr(0, value.find("<val>"));
            // Content files put a record on a line of its own; the line break
            // belongs to no key.
            setField(item, trimmed(field.substr(0, separator)), value);
        });
        groupid = item.groupid;
        items.push_back(std::move(item));
    });
    return items;
}

std::vector<RichGroup> parseJson(std::string_view json, std::optional<std::string_view> append) {
    std::vector<RichGroup> groups = groupsFromJson(json);
    if (!append) {
        return groups;
    }
    std::vector<RichGroup> extra = groupsFromJson(*append);
    std::size_t next = 0;
    for (auto& group : groups) {
        while (next < extra.size() && extra[next].groupid == group.groupid) {
            auto& items = extra[next].items;
            group.items.insert(group.items.end(), std::make_move_iterator(items.begin()),
                               std::make_move_iterator(items.end()));
            ++next;
        }
    }
    // The rest go before the first of the page's own groups with a larger
    // number. The largest number so far only grows along the page, so that
    // place is found by halving.
    std::vector<long long> largestSoFar;
    for (const auto& group : groups) {
        largestSoFar.push_back(
            std::max(group.groupid, largestSoFar.empty() ? group.groupid : largestSoFar.back()));
    }
    std::vector<std::vector<RichGroup>> before(groups.size() + 1);
    for (; next < extra.size(); ++next) {
        const auto place = static_cast<std::size_t>(
            std::upper_bound(largestSoFar.begin(), largestSoFar.end(), extra[next].groupid) -
            largestSoFar.begin());
        before[place].push_back(std::move(extra[next]));
    }
    std::vector<RichGroup> merged;
    for (std::size_t i = 0; i <= groups.size(); ++i) {
        for (auto& group : before[i]) {
            merged.push_back(std::move(group));
        }
        if (i < groups.size()) {
            merged.push_back(std::move(groups[i]));
        }
    }
    return merged;
}

std::string extractGroupText(std::string_view markup, long long groupid) {
    std::string text;
    bool first = true;
    for (const auto& item : parseMarkup(markup)) {
        if (item.tp == richtp::body && item.groupid == groupid) {
            if (!first) {
                text += '\n';
            }
            text += item.text;
            first = false;
        }
    }
    return text;
}

ContentFile loadContentFile(const std::filesystem::path& folder, std::string_view name) {
    std::error_code error;
    if (core::isPlainFileName(name)) {
        const auto json = folder / (std::string(name) + ".jsn");
        if (std::filesystem::is_regular_file(json, error)) {
            return {std::string(trimmed(readFile(json))), true};
        }
        const auto markup = folder / (std::string(name) + ".txt");
        if (std::filesystem::is_regular_file(markup, error)) {
            return {std::string(trimmed(readFile(markup))), false};
        }
    }
    return {std::string(trimmed(readFile(folder / "empty-u.txt"))), false};
}

std::string fileToString(const std::filesystem::path& folder, std::string_view name) {
    std::error_code error;
    auto file = folder / (std::string(name) + ".txt");
    if (!core::isPlainFileName(name) || !std::filesystem::is_regular_file(file, error)) {
        file = folder / "empty-u.txt";
    }
    return std::string(trimmed(readFile(file)));
}

}  // namespace tilika::frame
