#include "diary/day_editor.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/text.h"
#include "diary/day_cloud.h"
#include "diary/day_rows.h"
#include "diary/value_codecs.h"
#include "frame/form_kinds.h"
#include "platform/folders.h"

namespace tilika::diary {

namespace {

// The pages that show something of a day: the menu, the diary, the charts,
// the medicines, the teeth, the timeline.
constexpr int kDayPages[] = {0, 1, 2, 3, 6, 9, 10};
constexpr int kThumbnailSide = 160;

bool isMeasure(int kind) {
    return kind == tp::centimetres || kind == tp::kilograms;
}

// Kinds whose forms may add an item to a reference list.
bool addsToLists(int kind) {
    return kind == tp::checkList || kind == tp::pickOne || kind == tp::pickFromList ||
           kind == tp::medication || kind == tp::analyses;
}

}  // namespace

std::string DaySaved::message() const {
    if (!rows) {
        return rows.message();
    }
    if (photoFailed) {
        return "Записи дня сохранены, но фотографию сохранить не удалось: на диске нет места "
               "или папка с данными доступна только для чтения. Осталась прежняя фотография.";
    }
    return {};
}

DayEditor::DayEditor(core::Context& context, DiaryStore& store, const platform::ImageCodec& images,
                     DayCloud& cloud)
    : context_(context), store_(store), images_(images), cloud_(cloud) {}

void DayEditor::prepare(const DayNote& day, std::string gid) {
    gid_ = std::move(gid);
    curdate_ = context_.dates.noTime(day.dat.value_or(context_.dates.now()));
    caption_ = context_.dates.dateToString(curdate_, core::formats::screenDay);
    needSave_ = false;
    newPhoto_.reset();
    store_.lists().loadConstList(listData_, cotype::all, "");
    noteData_.clear();
    store_.noteStructToTodayNote(day, noteData_, listData_);
}

CatalogueRow* DayEditor::row(std::size_t index) {
    return index < noteData_.size() ? &noteData_[index] : nullptr;
}

CatalogueRow* DayEditor::photoRow() {
    return !noteData_.empty() && noteData_.back().tp == tp::photo ? &noteData_.back() : nullptr;
}

bool DayEditor::changed(CatalogueRow& entry) {
    if (isMeasure(entry.tp)) {
        entry.active = core::floatValue(entry.source) > 0;
    }
    needSave_ = true;
    store_.updateNoteToday(entry, listData_, curdate_);
    return !isMeasure(entry.tp);
}

bool DayEditor::afterEdit(std::size_t index, const std::vector<CatalogueRow>& form) {
    CatalogueRow* entry = row(index);
    if (entry == nullptr) {
        return false;
    }
    entry->source = jsonFromDic(entry->tp, entry->field, entry->source, form, -1);
    if (addsToLists(entry->tp)) {
        store_.lists().loadConstList(listData_, cotype::all, "");
    }
    return changed(*entry);
}

bool DayEditor::editData(std::size_t index, std::string value) {
    CatalogueRow* entry = row(index);
    if (entry == nullptr) {
        return false;
    }
    entry->source = std::move(value);
    return changed(*entry);
}

bool DayEditor::newPills(std::size_t index, const std::vector<CatalogueRow>& form) {
    return editPills(index, -1, form);
}

bool DayEditor::editPills(std::size_t index, int pos, const std::vector<CatalogueRow>& form) {
    CatalogueRow* entry = row(index);
    if (entry == nullptr) {
        return false;
    }
    // A course may have named a medicine the form has just added.
    if (entry->tp == tp::medication) {
        store_.lists().loadConstList(listData_, cotype::all, "");
    }
    return editData(index, jsonFromDic(entry->tp, entry->field, entry->source, form, pos));
}

std::string DayEditor::elementMenu(std::size_t index) const {
    if (index < noteData_.size() && jsonIs(noteData_[index].source)) {
        return "Редактировать<td>pm-edit.png<tr>Удалить<td>pm-clear.png";
    }
    return "Удалить<td>pm-clear.png";
}

void DayEditor::deleteElement(std::size_t index, std::size_t pos) {
    CatalogueRow* entry = row(index);
    if (entry == nullptr) {
        return;
    }
    if (jsonIs(entry->source) && pos < entry->multiarray.size()) {
        entry->multiarray.erase(entry->multiarray.begin() + static_cast<std::ptrdiff_t>(pos));
        entry->source =
            entry->multiarray.empty() ? std::string() : multi2ToString(entry->multiarray);
    } else if (!jsonIs(entry->source)) {
        entry->source.clear();
    }
    store_.updateNoteToday(*entry, listData_, curdate_);
}

void DayEditor::deleteTimedRow(std::size_t index, std::size_t pos) {
    CatalogueRow* entry = row(index);
    if (entry == nullptr || pos >= entry->multiarray.size()) {
        return;
    }
    std::vector<MultiRow> rows = entry->multiarray;
    rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(pos));
    editData(index, rows.empty() ? std::string() : multiToString(rows));
}

std::optional<double> DayEditor::sliderStart(std::size_t index) {
    CatalogueRow* entry = row(index);
    if (entry == nullptr || !isMeasure(entry->tp)) {
        return std::nullopt;
    }
    if (entry->active.value_or(false)) {
        return core::floatValue(entry->source);
    }
    const double last = store_.getLastValue(curdate_, entry->field, gid_);
    return last > 0 ? std::optional<double>(last) : std::nullopt;
}

EntryForm DayEditor::toothForm(std::size_t index) {
    EntryForm form;
    const CatalogueRow* entry = row(index);
    if (entry == nullptr) {
        return form;
    }
    form.caption = entry->editcap;
    addToNoteInit(form.rows, "", "Молочные зубы", frame::formkind::heading, 0, "", "", "", false,
                  false);
    addToNoteInit(form.rows, "", "Молочные зубы", frame::formkind::teeth, 0, "Молочные зубы",
                  entry->editdescr, entry->field, true, false);
    if (SQLite::Database* db = context_.database.connectToBase()) {
        form.rows.back().tooth = DayRows(*db, context_.dates).toothForDay(curdate_, gid_);
    }
    form.defaults[entry->field] = entry->source;
    return form;
}

void DayEditor::setPhoto(platform::Image image) {
    if (CatalogueRow* photo = photoRow()) {
        photo->isphoto = true;
        photo->photopath.clear();
        photo->changephoto = true;
        newPhoto_ = std::move(image);
        needSave_ = true;
    }
}

void DayEditor::clearPhoto() {
    if (CatalogueRow* photo = photoRow()) {
        photo->isphoto = false;
        photo->changephoto = true;
        newPhoto_.reset();
        needSave_ = true;
    }
}

bool DayEditor::storePhoto(const CatalogueRow& photo) {
    // Guids come from other devices too; one that would lead out of the
    // picture folders writes nothing.
    if (!core::isPlainFileName(gid_)) {
        return false;
    }
    const auto documents = context_.folders.path(platform::SystemFolder::Document);
    const std::string stem =
        gid_ + "-" + context_.dates.dateToString(curdate_, core::formats::photoDay);
    const auto picture = documents / "picture" / (stem + ".jpg");
    const auto thumbnail = documents / "picture-s" / (stem + "-s.jpg");
    if (!photo.isphoto || !newPhoto_ || newPhoto_->empty()) {
        std::error_code error;
        std::filesystem::remove(picture, error);
        std::filesystem::remove(thumbnail, error);
        return true;
    }
    const platform::Image& image = *newPhoto_;
    const int longer = std::max(image.width, image.height);
    // The box is rounded up, so that the codec's own rounding of the shorter
    // side keeps the longer one at its full size.
    const int width = std::max(1, (image.width * kThumbnailSide + longer - 1) / longer);
    const int height = std::max(1, (image.height * kThumbnailSide + longer - 1) / longer);
    const std::vector<std::uint8_t> full = images_.encodeJpeg(image, 1.0);
    const std::vector<std::uint8_t> small =
        images_.encodeJpeg(images_.scaled(image, width, height), 1.0);
    // The small one goes first: when it can't be written, the photo itself
    // is left as it was.
    return !full.empty() && !small.empty() && core::writeFileReplacing(thumbnail, small) &&
           core::writeFileReplacing(picture, full);
}

DaySaved DayEditor::save(bool markPages) {
    DaySaved saved;
    if (!needSave_) {
        return saved;
    }
    saved.written = true;
    if (markPages) {
        for (const int page : kDayPages) {
            context_.state.pageDirty[static_cast<std::size_t>(page)] = true;
        }
    }
    CatalogueRow* photo = photoRow();
    if (photo != nullptr && photo->changephoto) {
        saved.photoFailed = !storePhoto(*photo);
    }
    saved.rows = store_.saveNoteData(1, noteData_, listData_, gid_, curdate_);
    if (!saved.rows) {
        return saved;
    }
    if (context_.state.cloudMode == core::cloudmode::icloud) {
        cloud_.dataToCloud(DayCloud::kDayRecord, curdate_, gid_);
    }
    needSave_ = false;
    if (photo != nullptr && photo->changephoto) {
        // After a failed write the row shows again the photo that stayed.
        if (saved.photoFailed) {
            DayNote stored;
            stored.dat = curdate_;
            store_.correctPhoto(stored, loadregim::oneDay, gid_);
            photo->isphoto = stored.flags.isphoto;
            photo->photopath = stored.photopath2;
        }
        photo->changephoto = false;
        newPhoto_.reset();
    }
    return saved;
}

DaySaved DayEditor::moveTo(core::Date date) {
    DaySaved saved = save(false);
    if (saved.rows) {
        prepare(store_.todayNoteForDay(context_.dates.noTime(date), gid_), gid_);
    }
    return saved;
}

DaySaved DayEditor::moveBy(int days) {
    return moveTo(context_.dates.addDays(curdate_, days));
}

}  // namespace tilika::diary
