#include "documents/analyses.h"

#include <algorithm>
#include <set>

#include "core/text.h"
#include "diary/value_codecs.h"

namespace tilika::documents {

namespace {

using nlohmann::json;

constexpr int kMaxTag = 1000;

// Old values and other devices wrote numbers as text; both read alike.
int numberOf(const json& record, std::string_view key) {
    return core::intValue(diary::jsonText(record, key));
}

}  // namespace

std::vector<AnalysisItem> prepare(std::string_view value) {
    std::vector<AnalysisItem> items;
    if (!diary::jsonIs(value)) {
        return items;
    }
    for (const json& record : diary::jsonToArray(value)) {
        if (!record.is_object()) {
            continue;
        }
        AnalysisItem item;
        item.tp = numberOf(record, "tp");
        item.captiontype = diary::jsonText(record, "captiontype");
        item.caption = diary::jsonText(record, "caption");
        const std::string file = diary::jsonText(record, "file");
        if (!file.empty()) {
            item.file = file;
        }
        item.tag = numberOf(record, "tag");
        items.push_back(std::move(item));
    }
    return items;
}

std::string close(const std::vector<AnalysisItem>& items) {
    if (items.empty()) {
        return {};
    }
    json array = json::array();
    for (const AnalysisItem& item : items) {
        json record = {{"tp", item.tp},
                       {"captiontype", item.captiontype},
                       {"caption", item.caption},
                       {"tag", item.tag}};
        if (item.file) {
            record["file"] = *item.file;
        }
        array.push_back(std::move(record));
    }
    return diary::jsonFromObject(array);
}

int freeTag(const std::vector<int>& tags) {
    const std::set<int> used(tags.begin(), tags.end());
    for (int tag = 1; tag <= kMaxTag; ++tag) {
        if (!used.contains(tag)) {
            return tag;
        }
    }
    // A list this long is kept going: the new item shares tag 0, as before.
    return 0;
}

int freeTag(const std::vector<AnalysisItem>& items) {
    std::vector<int> tags;
    tags.reserve(items.size());
    for (const AnalysisItem& item : items) {
        tags.push_back(item.tag);
    }
    return freeTag(tags);
}

std::optional<int> newAnalyz(std::vector<AnalysisItem>& items,
                             const std::vector<diary::CatalogueRow>& rows,
                             const std::vector<diary::ListRow>& list) {
    const std::string name = diary::jsonFromDic(diary::tp::pickOne, "analiz", "", rows, -1);
    if (name.empty()) {
        return std::nullopt;
    }
    AnalysisItem item;
    item.tp = itemtp::image;
    item.captiontype = name;
    const diary::ListRow* row = diary::listByIndex(name, list);
    item.caption = row != nullptr ? diary::captionText(row->cap) : name;
    item.tag = freeTag(items);
    items.push_back(item);
    return item.tag;
}

AnalysisItem* itemByTag(std::vector<AnalysisItem>& items, int tag) {
    const auto found = std::find_if(items.begin(), items.end(),
                                    [tag](const AnalysisItem& item) { return item.tag == tag; });
    return found == items.end() ? nullptr : &*found;
}

std::vector<std::string> actionMenu(const AnalysisItem& item) {
    if (item.tp == itemtp::pdf) {
        return {std::string(action::addPhoto), std::string(action::addAlbumPage),
                std::string(action::replacePdf), std::string(action::removePage),
                std::string(action::remove)};
    }
    std::vector<std::string> entries{std::string(action::newPhoto), std::string(action::album),
                                     std::string(action::pdfFile)};
    if (item.tp != itemtp::nofile && item.file) {
        entries.emplace_back(action::toPdf);
    }
    entries.emplace_back(action::remove);
    return entries;
}

}  // namespace tilika::documents
