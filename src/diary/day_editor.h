#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/date.h"
#include "core/write_result.h"
#include "diary/catalogue.h"
#include "diary/diary_store.h"
#include "diary/entry_forms.h"
#include "platform/image_codec.h"

namespace tilika::core {
struct Context;
}

namespace tilika::diary {

class DayCloud;

// What a save of the day came to. The rows and the photo fail apart: a photo
// that could not be written leaves the rows saved and the old photo in place.
struct DaySaved {
    bool written = false;  // there was something to save, and it was tried
    core::WriteResult rows;
    bool photoFailed = false;

    bool ok() const { return rows.ok() && !photoFailed; }
    // What the user is told; empty when all went well.
    std::string message() const;
};

// The day editor: one day of a child as the rows of the entry catalogue,
// edited in memory and written as a whole when the user leaves the day.
class DayEditor {
public:
    DayEditor(core::Context& context, DiaryStore& store, const platform::ImageCodec& images,
              DayCloud& cloud);

    // Takes a day (as todayNoteForDay gives it) to edit; nothing is changed yet.
    void prepare(const DayNote& day, std::string gid);

    const std::string& caption() const { return caption_; }  // "22.11.2026"
    core::Date curdate() const { return curdate_; }
    const std::string& gid() const { return gid_; }
    const std::vector<CatalogueRow>& noteData() const { return noteData_; }
    const std::vector<ListRow>& listData() const { return listData_; }
    bool needSave() const { return needSave_; }

    // The answer of the form opened on a row. True when the rows are to be
    // drawn afresh; a slider's row is left alone, so as not to disturb it.
    bool afterEdit(std::size_t index, const std::vector<CatalogueRow>& form);
    // A value set on the row directly: a slider, a picker, a removed row of
    // times. Same answer as afterEdit.
    bool editData(std::size_t index, std::string value);
    // A new element of a row of records, and an edited one at `pos`.
    bool newPills(std::size_t index, const std::vector<CatalogueRow>& form);
    bool editPills(std::size_t index, int pos, const std::vector<CatalogueRow>& form);

    // The menu of an element of a row of records: records can be edited,
    // old plain values only removed.
    std::string elementMenu(std::size_t index) const;
    // Removes an element of a row of records, or the whole old value. This
    // alone does not make the day need a save: a day left with no other
    // change keeps the element.
    void deleteElement(std::size_t index, std::size_t pos);
    // Removes a row of times (temperature, reminders); the day needs a save.
    void deleteTimedRow(std::size_t index, std::size_t pos);

    // Where a slider of weight or height starts: its value, or, while it has
    // none, the last measure up to this day.
    std::optional<double> sliderStart(std::size_t index);
    // The form of the teeth: the teeth known before the day, and the day's
    // changes.
    EntryForm toothForm(std::size_t index);

    // The photo of the day, set or cleared; it is written with the day.
    void setPhoto(platform::Image image);
    void clearPhoto();
    const std::optional<platform::Image>& newPhoto() const { return newPhoto_; }

    // Writes the day when something changed. With `markPages` the pages that
    // show the diary reload when next opened. Rows that could not be written
    // stay here, and the day still needs a save.
    DaySaved save(bool markPages);
    // Saves without marking pages and moves to another day, unless the rows
    // could not be written.
    DaySaved moveTo(core::Date date);
    DaySaved moveBy(int days);

private:
    CatalogueRow* row(std::size_t index);
    CatalogueRow* photoRow();
    bool changed(CatalogueRow& row);
    bool storePhoto(const CatalogueRow& photo);

    core::Context& context_;
    DiaryStore& store_;
    const platform::ImageCodec& images_;
    DayCloud& cloud_;

    std::string gid_;
    core::Date curdate_{};
    std::string caption_;
    std::vector<CatalogueRow> noteData_;
    std::vector<ListRow> listData_;
    std::optional<platform::Image> newPhoto_;
    bool needSave_ = false;
};

}  // namespace tilika::diary
