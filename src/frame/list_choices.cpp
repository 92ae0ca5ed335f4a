#include "frame/list_choices.h"

#include <algorithm>

#include "core/ids.h"
#include "core/text.h"

namespace tilika::frame {
namespace {

constexpr std::string_view kTail = "<tr>";
constexpr std::size_t kShortestGuid = 10;

}  // namespace

std::string widenOldId(std::string_view guid) {
    if (guid.size() < kShortestGuid) {
        return core::newID2(core::idkind::listRow, guid);
    }
    return std::string(guid);
}

const ListRow* listByIndex(std::string_view guid, const std::vector<ListRow>& list) {
    if (guid.empty()) {
        return nullptr;
    }
    const std::string wanted = widenOldId(guid);
    const auto found = std::find_if(list.begin(), list.end(),
                                    [&](const ListRow& row) { return row.index == wanted; });
    return found == list.end() ? nullptr : &*found;
}

std::string captionText(std::string_view coname) {
    return std::string(coname.substr(0, coname.find(kTail)));
}

std::string indexByCaption(const std::vector<ListRow>& list, int tp, std::string_view caption) {
    const auto found = std::find_if(list.begin(), list.end(), [&](const ListRow& row) {
        return row.tp == tp && captionText(row.cap) == caption;
    });
    return found == list.end() ? std::string() : found->index;
}

std::string checkStringToRead(std::string_view value, const std::vector<ListRow>& listDat) {
    std::string text;
    if (value.empty()) {
        return text;
    }
    for (const std::string& item : core::split(value, "<tr>")) {
        const ListRow* row = listByIndex(item, listDat);
        if (row == nullptr) {
            continue;
        }
        if (!text.empty()) {
            text += "\n";
        }
        text += captionText(row->cap);
    }
    return text;
}

}  // namespace tilika::frame
