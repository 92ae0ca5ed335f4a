#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "diary/catalogue.h"
#include "diary/reference_lists.h"

// A list of scans: the analyses of a day or the documents of a profile. Each
// item is named from the reference list and may carry one file, a picture or
// a PDF. The list is stored as JSON text in the day's or the profile's value.
namespace tilika::documents {

namespace itemtp {
inline constexpr int image = 1;  // one picture, or no file yet
inline constexpr int pdf = 2;
inline constexpr int nofile = 3;  // read as an item without a file
}  // namespace itemtp

struct AnalysisItem {
    int tp = itemtp::image;
    std::string captiontype;  // the guid of the list row that names it
    std::string caption;      // the name as shown and sent
    std::optional<std::string> file;
    int tag = 0;  // unique within the list

    bool operator==(const AnalysisItem&) const = default;
};

// The items of a stored value; a value that is not a JSON list gives none,
// and an element that is not an object is skipped.
std::vector<AnalysisItem> prepare(std::string_view value);

// The value to store: the list as JSON, or "" for an empty list.
std::string close(const std::vector<AnalysisItem>& items);

// The lowest tag from 1 that no item has, looking up to 1000; 0 past that.
int freeTag(const std::vector<AnalysisItem>& items);
// Same for tags already read out of a value.
int freeTag(const std::vector<int>& tags);

// Adds the item chosen in the picker form (kind 2, its rows as edited) to
// the list; its name is read out of `list`. Nothing is added for an empty
// choice. The tag of the new item, if one was added.
std::optional<int> newAnalyz(std::vector<AnalysisItem>& items,
                             const std::vector<diary::CatalogueRow>& rows,
                             const std::vector<diary::ListRow>& list);

// The item of a tag, or nullptr.
AnalysisItem* itemByTag(std::vector<AnalysisItem>& items, int tag);

// The entries of the action menu of an item, in order.
std::vector<std::string> actionMenu(const AnalysisItem& item);

// The action entries.
namespace action {
inline constexpr std::string_view addPhoto = "Добавить фотографией";
inline constexpr std::string_view addAlbumPage = "Доб. изобр. из альбома";
inline constexpr std::string_view replacePdf = "Заменить файлом PDF";
inline constexpr std::string_view removePage = "Удалить страницу";
inline constexpr std::string_view remove = "Удалить документ";
inline constexpr std::string_view newPhoto = "Новая фотография";
inline constexpr std::string_view album = "Изображение из альбома";
inline constexpr std::string_view pdfFile = "Файл PDF";
inline constexpr std::string_view toPdf = "Преобразовать в PDF";
inline constexpr std::string_view cancel = "Отменить";
}  // namespace action

}  // namespace tilika::documents
