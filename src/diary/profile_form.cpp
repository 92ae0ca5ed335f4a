#include "diary/profile_form.h"

#include <fstream>
#include <system_error>

#include "core/context.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/text.h"
#include "diary/reference_lists.h"
#include "platform/image_codec.h"
#include "platform/log.h"

namespace tilika::diary {

namespace {

constexpr double kPortraitQuality = 1.0;
// A portrait is a photo from a phone or a camera; a file far larger than any
// of those is not read into memory.
constexpr std::uintmax_t kLargestPicture = 64 * 1024 * 1024;

void addSeparator(std::vector<CatalogueRow>& rows) {
    addToNoteInit(rows, "", "-", formtp::separator, 0, "", "", "line", false, false);
}

std::optional<platform::Image> readPicture(const platform::ImageCodec& images,
                                           const std::filesystem::path& file) {
    std::error_code error;
    if (file.empty() || std::filesystem::file_size(file, error) > kLargestPicture || error) {
        return std::nullopt;
    }
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        return std::nullopt;
    }
    const std::vector<std::uint8_t> bytes((std::istreambuf_iterator<char>(in)),
                                          std::istreambuf_iterator<char>());
    return images.decode(bytes);
}

}  // namespace

ProfileFormContent ProfileForm::setupDialog(std::optional<std::string_view> gid) const {
    const Profiles profiles(context_);
    const core::Dates& dates = context_.dates;
    ProfileFormContent form;
    const bool existing = gid.has_value();
    form.caption = existing ? "Настройки" : "Новая запись";
    form.parentFlag = existing ? formflag::existingChild : formflag::newChild;
    if (gid) {
        form.gid = std::string(*gid);
    }

    SetupRecord record = profiles.loadSetupData(gid);
    if (!existing) {
        // A new child is born now; the time of birth starts empty.
        record.birthdate = dates.now();
    }

    auto& rows = form.rows;
    addToNoteInit(rows, "", "Дата рождения ребенка", formtp::date, 0, "", "Дата рождения ребенка",
                  "birthdate2", true, false);
    rows.back().source = dates.dateToString(record.birthdate, core::formats::screenDay);
    addSeparator(rows);
    addToNoteInit(rows, "", "Имя ребенка", formtp::textLine, 0, "", "", "name", false, false);
    rows.back().source = record.name;
    addSeparator(rows);
    addToNoteInit(rows, "", "Пол ребенка", formtp::heading, 0, "", "", "", false, false);
    addToNoteInit(rows, "", "Мальчик|Девочка", formtp::segments, 0, "", "", "sex", false, false);
    rows.back().source = std::to_string(record.sex);
    addSeparator(rows);
    addToNoteInit(rows, "", "Укажите с каким ростом и весом ребенок родился", formtp::heading, 0,
                  "", "", "", false, false);
    addToNoteInit(rows, "", "Рост (см.)", formtp::number, 0, "", "", "rost", false, false);
    rows.back().location = "first";
    rows.back().source = existing ? record.rost : "";
    addToNoteInit(rows, "", "Вес (кг.)", formtp::figures, 0, "", "", "ves", false, false);
    rows.back().location = "second";
    rows.back().source = existing ? record.ves : "";
    addSeparator(rows);
    addToNoteInit(rows, "", "Время рождения ребенка", formtp::time, 0, "", "Время рождения ребенка",
                  "sbirthtime", true, false);
    rows.back().source = existing ? record.sbirthtime.value_or("") : "";
    addSeparator(rows);
    addToNoteInit(rows, "", "Группа крови", formtp::listPick, cotype::bloodGroups, "Группа крови",
                  "Укажите группу крови малыша", "blood", false, false);
    rows.back().source = record.blood;
    addSeparator(rows);
    if (existing) {
        // The documents row has always carried list number 4; the document
        // screen takes its types from its own list.
        addToNoteInit(rows, "",
                      "Внесите в программу часто используемые документы ребенка (полис "
                      "медицинского страхования, свидетельство о рождении, медицинскую карту и "
                      "т.д. - эти документы будут всегда у вас под рукой)",
                      formtp::documents, 4, "", "", "documents", false, false);
        rows.back().source = record.documents.value_or("");
        addSeparator(rows);
    }
    addToNoteInit(rows, "", "", formtp::photo, 0, "", "", "photo", false, false);
    if (existing) {
        rows.back().image = readPicture(images_, profiles.portraitPath(*gid));
        addToNoteInit(rows, "b-orangeB.png", "Удалить учетную запись", formtp::button, 0, "", "",
                      "remove", false, false);
    }
    return form;
}

SetupRecord ProfileForm::setupArrayToDic(const std::vector<CatalogueRow>& rows,
                                         std::string_view gid) const {
    const Profiles profiles(context_);
    SetupRecord record;
    if (rows.empty()) {
        record.active = false;
        return record;
    }
    profiles.initSetupStruct(record);
    const core::Dates& dates = context_.dates;
    for (const CatalogueRow& row : rows) {
        const std::string& field = row.field;
        if (field == "birthdate2") {
            if (auto day = dates.dateFromStringFormat(row.source, core::formats::screenDay)) {
                record.birthdate = *day;
                record.sbirthdate = dates.dateToString(*day, core::formats::day);
            }
        } else if (field == "sex") {
            record.sex = core::intValue(row.source);
        } else if (field == "name") {
            record.name = row.source;
        } else if (field == "rost") {
            record.rost = row.source;
        } else if (field == "ves") {
            record.ves = row.source;
        } else if (field == "sbirthtime") {
            record.sbirthtime = row.source;
        } else if (field == "blood") {
            record.blood = row.source;
        } else if (field == "documents") {
            record.documents = row.source;
        } else if (field == "photo") {
            const auto portrait = profiles.portraitPath(gid);
            if (portrait.empty()) {
                continue;
            }
            if (row.save == 1 && row.image && !row.image->empty()) {
                const auto jpeg = images_.encodeJpeg(*row.image, kPortraitQuality);
                if (jpeg.empty() || !core::writeFileReplacing(portrait, jpeg)) {
                    platform::log("Could not save the portrait " + portrait.string());
                }
            } else if (row.save == 2) {
                std::error_code error;
                std::filesystem::remove(portrait, error);
            }
        }
    }
    record.active = true;
    return record;
}

}  // namespace tilika::diary
