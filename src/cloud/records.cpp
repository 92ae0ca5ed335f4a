#include "cloud/records.h"

#include <algorithm>
#include <sys/stat.h>

#include "cloud/names.h"
#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/files.h"
#include "development/feeding.h"
#include "diary/catalogue.h"
#include "diary/diary_store.h"
#include "diary/profiles.h"
#include "diary/value_codecs.h"
#include "medication/courses.h"
#include "platform/folders.h"
#include "platform/image_codec.h"
#include "platform/log.h"
#include "platform/settings_store.h"

namespace tilika::cloud {

namespace fs = std::filesystem;

namespace {

// The page of the doctor's visit plan, whose marks a marks record may change.
constexpr int kVisitPage = 8;
// What a record's own keys and lists take beside its files, so that the
// files it carries never push it past the reader's bound.
constexpr std::size_t kRecordHeadroom = 1u << 20;

fs::path documentFolder(const core::Context& context, std::string_view sub) {
    return context.folders.path(platform::SystemFolder::Document) / sub;
}

// The `file` of each element of a JSON array, for the names that can stand
// in a folder; text that isn't such an array has none.
std::vector<std::string> filesOf(const std::string& text) {
    std::vector<std::string> files;
    if (!diary::jsonIs(text)) {
        return files;
    }
    for (const auto& element : diary::jsonToArray(text)) {
        const std::string name = diary::jsonText(element, "file");
        // A stored value may have come from another device: only a file of
        // the folder itself is ever sent.
        if (core::isPlainFileName(name)) {
            files.push_back(name);
        }
    }
    return files;
}

// Collects the files of a record within the bounds its reader keeps.
class Attachments {
public:
    explicit Attachments(const Limits& limits) : limits_(limits) {}

    void add(std::string type, const fs::path& file, std::optional<std::string> names = {}) {
        std::error_code error;
        if (!fs::is_regular_file(fs::symlink_status(file, error))) {
            return;
        }
        if (images_.size() >= limits_.images) {
            platform::log("Файл " + file.string() + " не отправлен: в записи уже " +
                          std::to_string(limits_.images) + " файлов");
            return;
        }
        Limits one = limits_;
        one.recordBytes = limits_.blobBytes;
        std::optional<std::vector<std::uint8_t>> bytes = readRecordFile(file, one);
        if (!bytes) {
            return;
        }
        if (total_ + bytes->size() + kRecordHeadroom > limits_.recordBytes) {
            platform::log("Файл " + file.string() +
                          " не отправлен: запись стала бы слишком большой");
            return;
        }
        total_ += bytes->size();
        images_.push_back(
            {std::move(type), file.filename().string(), std::move(names), std::move(*bytes)});
    }

    std::vector<Attachment> take() { return std::move(images_); }

private:
    const Limits& limits_;
    std::vector<Attachment> images_;
    std::size_t total_ = 0;
};

// The record in a file; nothing, and the reason logged, when there is none.
std::optional<CloudRecord> loadRecord(const fs::path& path, const Limits& limits) {
    const std::optional<std::vector<std::uint8_t>> bytes = readRecordFile(path, limits);
    if (!bytes) {
        return std::nullopt;
    }
    Decoded decoded = decodeRecord(*bytes, limits);
    if (!decoded.record) {
        platform::log("Запись облака " + path.string() + " не прочитана: " + decoded.error);
    }
    return std::move(decoded.record);
}

struct StagedFile {
    fs::path temp;
    fs::path target;
};

void removeStaged(const std::vector<StagedFile>& staged) {
    std::error_code error;
    for (const StagedFile& file : staged) {
        fs::remove(file.temp, error);
    }
}

}  // namespace

ThumbnailSize thumbnailSize(int width, int height) {
    if (width <= 0 || height <= 0) {
        return {};
    }
    const auto side = static_cast<long long>(kThumbnailSide);
    if (width > height) {
        return {kThumbnailSide, static_cast<int>(std::max(1LL, side * height / width))};
    }
    return {static_cast<int>(std::max(1LL, side * width / height)), kThumbnailSide};
}

Records::Records(core::Context& context, const platform::ImageCodec& images, Limits limits)
    : context_(context), images_(images), limits_(limits) {}

std::optional<core::Date> Records::fileDate(const fs::path& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        return std::nullopt;
    }
    // Kept to the millisecond: a finer time would always count as later
    // than the one stored, and a device would apply its own records again.
    const auto ms = std::chrono::milliseconds(static_cast<long long>(info.st_mtim.tv_sec) * 1000 +
                                              info.st_mtim.tv_nsec / 1'000'000);
    return core::Date(ms);
}

std::optional<CloudRecord> Records::buildRecord(int kind, std::optional<core::Date> date,
                                                std::string_view gid) {
    const core::Dates& dates = context_.dates;
    CloudRecord record;
    record.gid = std::string(gid);
    diary::Profiles profiles(context_);
    record.setup = profiles.loadSetupData(gid);
    if (kind == kind::marks) {
        record.setup->active = false;
        return record;
    }
    if (kind == kind::profile) {
        Attachments files(limits_);
        files.add("photo", profiles.portraitPath(gid));
        if (record.setup->documents) {
            for (const std::string& file : filesOf(*record.setup->documents)) {
                files.add("documents", documentFolder(context_, "documents") / file);
            }
        }
        record.images = files.take();
        return record;
    }
    if (!date || (kind != kind::day && kind != kind::feeding)) {
        return std::nullopt;
    }
    const medication::CourseReconciler courses(dates);
    diary::DiaryStore store(context_, courses);
    std::vector<diary::ListRow> list;
    store.lists().loadConstList(list, diary::cotype::all, "");
    record.date = dates.dateToString(*date, core::formats::day);
    if (kind == kind::feeding) {
        std::vector<FeedingRow> rows;
        for (const development::KormRecord& row :
             development::Feeding(context_).loadKormForDate(*date, gid)) {
            rows.push_back({row.kodates, row.kotype, row.kovalue, static_cast<int>(row.kosum)});
        }
        record.kormdata = std::move(rows);
        record.constList = std::move(list);
        return record;
    }
    const diary::DayNote day = store.todayNoteForDay(dates.noTime(*date), gid);
    std::vector<diary::CatalogueRow> note;
    store.noteStructToTodayNote(day, note, list);
    std::vector<DayRow> rows;
    rows.reserve(note.size());
    Attachments files(limits_);
    const std::string stem =
        std::string(gid) + "-" + dates.dateToString(*date, core::formats::photoDay);
    files.add("photo", documentFolder(context_, "picture") / (stem + ".jpg"), stem + "-s.jpg");
    for (const diary::CatalogueRow& row : note) {
        rows.push_back({row.tp, row.field, row.source});
        if (row.tp == diary::tp::analyses) {
            for (const std::string& file : filesOf(row.source)) {
                files.add("analiz", documentFolder(context_, "analizy") / file);
            }
        }
    }
    if (rows.size() > limits_.dayRows || list.size() > limits_.listItems) {
        platform::log("Запись дня " + *record.date + " не составлена: слишком много строк");
        return std::nullopt;
    }
    record.data = std::move(rows);
    record.constList = std::move(list);
    record.images = files.take();
    return record;
}

std::string Records::dataToCloud(int kind, std::optional<core::Date> date, std::string_view gid) {
    if (!isSafeGid(gid, limits_)) {
        return {};
    }
    const std::optional<CloudRecord> record = buildRecord(kind, date, gid);
    if (!record) {
        return {};
    }
    std::string name;
    switch (kind) {
        case kind::profile:
            name = profileRecordName(gid);
            break;
        case kind::day:
            name = dayRecordName(gid, *date, context_.dates);
            break;
        case kind::marks:
            name = removalRecordName(gid);
            break;
        default:
            name = feedingRecordName(gid, *date, context_.dates);
            break;
    }
    return store(name, *record) ? name : std::string();
}

bool Records::store(const std::string& name, const CloudRecord& record) {
    const Encoded encoded = encodeRecord(record, limits_);
    if (!encoded.ok()) {
        platform::log("Запись облака " + name + " не составлена: " + encoded.error);
        return false;
    }
    const fs::path folder = context_.folders.path(platform::SystemFolder::Cloud);
    std::error_code error;
    fs::create_directories(folder, error);
    if (!writeRecordFile(folder / name, encoded.bytes)) {
        return false;
    }
    markSeen(name);
    return true;
}

void Records::markSeen(const std::string& name) {
    const fs::path file = context_.folders.path(platform::SystemFolder::Cloud) / name;
    if (const std::optional<core::Date> date = fileDate(file)) {
        context_.settings.setDate(name, *date);
        context_.settings.synchronize();
    }
}

std::optional<std::string> Records::keyValueToCloud(int check, std::string_view key,
                                                    std::optional<MarkEntry> value,
                                                    std::string_view gid) {
    if (!isSafeGid(gid, limits_) || !core::isPlainFileName(context_.state.appguid)) {
        return std::nullopt;
    }
    const std::string name = marksRecordName(gid, context_.state.appguid);
    const fs::path file = context_.folders.path(platform::SystemFolder::Cloud) / name;
    std::map<std::string, MarkEntry> marks;
    std::error_code error;
    if (fs::exists(fs::symlink_status(file, error))) {
        // Writing over a file we couldn't read would lose every other mark.
        std::optional<CloudRecord> own = loadRecord(file, limits_);
        if (!own) {
            return std::nullopt;
        }
        marks = std::move(own->marks).value_or(std::map<std::string, MarkEntry>{});
    }
    MarkEntry entry = value.value_or(MarkEntry{});
    entry.state = check == 1;
    entry.tagguid = std::string(key);
    entry.date = context_.dates.now();
    marks[std::string(key)] = std::move(entry);
    CloudRecord record;
    record.gid = std::string(gid);
    record.marks = std::move(marks);
    return store(name, record) ? std::optional<std::string>(name) : std::nullopt;
}

void Records::saved(int kind, core::Date day, std::string_view gid) {
    if (context_.state.cloudMode != core::cloudmode::icloud) {
        return;
    }
    dataToCloud(kind, day, gid);
}

bool Records::dataFromCloud(const fs::path& path, std::string_view name,
                            std::optional<core::Date> indate) {
    // A profile removal shares the prefix of the marks files and goes the
    // same way: it finds no marks and changes nothing.
    if (name.substr(0, 7) == "CLOUD-3") {
        return keyValueFromCloud(path, indate);
    }
    const std::optional<CloudRecord> record = loadRecord(path, limits_);
    return record && apply(*record, name);
}

bool Records::apply(const CloudRecord& record, std::string_view name) {
    const core::Dates& dates = context_.dates;
    const std::string source(name);
    const auto failed = [&](const std::string& why) {
        platform::log("Запись облака " + source + " не применена: " + why);
        return false;
    };
    std::optional<core::Date> day;
    if (record.date) {
        day = dates.dateFromString(*record.date);
    }
    if ((record.data || record.kormdata) && !day) {
        // Rows at no day would land on the first day of 1970.
        platform::log("Запись облака " + source + ": день не прочитан, строки дня пропущены");
    }
    if (day) {
        day = dates.noTime(*day);
    }

    // Every file lands beside its place first; only a committed database
    // puts them there.
    std::vector<StagedFile> staged;
    const auto stage = [&](const fs::path& target, std::span<const std::uint8_t> bytes) {
        std::error_code error;
        fs::create_directories(target.parent_path(), error);
        const std::optional<fs::path> temp = writeTempFile(target, bytes);
        if (!temp) {
            return false;
        }
        staged.push_back({*temp, target});
        return true;
    };
    for (const Attachment& image : record.images.value_or(std::vector<Attachment>{})) {
        std::string_view folder;
        if (image.type == "analiz") {
            folder = "analizy";
        } else if (image.type == "documents") {
            folder = "documents";
        } else if (image.type == "photo") {
            folder = "picture";
        } else {
            continue;
        }
        if (!stage(documentFolder(context_, folder) / image.name, image.data)) {
            removeStaged(staged);
            return failed("файл " + image.name + " не записан");
        }
        if (image.type != "photo" || !image.names) {
            continue;
        }
        // A picture that doesn't decode gets no small copy; the photo
        // itself still comes.
        if (const std::optional<platform::Image> picture = images_.decode(image.data)) {
            const ThumbnailSize size = thumbnailSize(picture->width, picture->height);
            const platform::Image small = images_.scaled(*picture, size.width, size.height);
            const std::vector<std::uint8_t> jpeg =
                small.empty() ? std::vector<std::uint8_t>{} : images_.encodeJpeg(small, 1.0);
            if (!jpeg.empty() &&
                !stage(documentFolder(context_, "picture-s") / *image.names, jpeg)) {
                removeStaged(staged);
                return failed("файл " + *image.names + " не записан");
            }
        }
    }

    // A removed child's portrait goes, but only with the rest: it waits
    // aside until the database has committed.
    diary::Profiles profiles(context_);
    std::optional<StagedFile> portrait;
    if (record.setup && record.setup->active == false) {
        const fs::path path = profiles.portraitPath(record.gid);
        std::error_code error;
        if (!path.empty() && fs::exists(fs::symlink_status(path, error))) {
            fs::path aside =
                path.parent_path() / ("." + path.filename().string() + ".tilika-removed");
            fs::rename(path, aside, error);
            if (error) {
                removeStaged(staged);
                return failed("портрет не убран");
            }
            portrait = StagedFile{aside, path};
        }
    }
    const auto putBackPortrait = [&] {
        if (portrait) {
            std::error_code error;
            fs::rename(portrait->temp, portrait->target, error);
        }
    };

    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        removeStaged(staged);
        putBackPortrait();
        return failed("дневник не открывается");
    }
    const medication::CourseReconciler courses(dates);
    diary::DiaryStore store(context_, courses);
    const std::vector<diary::ListRow> list =
        record.constList.value_or(std::vector<diary::ListRow>{});
    const core::WriteResult result = core::tryWrite("dataFromCloud", [&] {
        core::WriteTransaction transaction(*db);
        if (record.setup) {
            core::throwIfFailed(
                profiles.saveSetupData(diary::saveflag::cloud, *record.setup, record.gid));
        }
        if (record.data && day) {
            std::vector<diary::CatalogueRow> rows(record.data->size());
            for (std::size_t i = 0; i < rows.size(); ++i) {
                rows[i].tp = (*record.data)[i].tp;
                rows[i].field = (*record.data)[i].field;
                rows[i].source = (*record.data)[i].source;
            }
            core::throwIfFailed(store.saveNoteData(2, rows, list, record.gid, *day));
        }
        if (record.kormdata && day) {
            std::vector<development::KormRecord> rows;
            for (const FeedingRow& row : *record.kormdata) {
                rows.push_back({row.kodates, row.kotype, row.kovalue, row.kosum});
            }
            core::throwIfFailed(
                development::Feeding(context_).saveKormForDate(*day, record.gid, rows));
            core::throwIfFailed(store.lists().correctConstList(list));
        }
        transaction.commit();
    });
    if (!result) {
        removeStaged(staged);
        putBackPortrait();
        return failed(result.message());
    }
    if (portrait) {
        std::error_code error;
        fs::remove(portrait->temp, error);
    }
    // The renames themselves aren't flushed: lost in a crash, they leave the
    // files as they were, and the record is applied again.
    bool placed = true;
    for (const StagedFile& file : staged) {
        std::error_code error;
        if (placed) {
            fs::rename(file.temp, file.target, error);
        }
        if (!placed || error) {
            // Left as it is, the next report of the record brings it again.
            placed = false;
            fs::remove(file.temp, error);
        }
    }

    core::AppState& state = context_.state;
    if (record.setup) {
        state.menuDirty = true;
    }
    if (record.data && day) {
        state.markAllPagesDirty();
    }
    if (record.kormdata && day) {
        state.pageDirty[static_cast<std::size_t>(development::kKormPage)] = true;
    }
    return placed ? true : failed("файлы не встали на место");
}

bool Records::keyValueFromCloud(const fs::path& path, std::optional<core::Date> date) {
    const std::optional<CloudRecord> loaded = loadRecord(path, limits_);
    if (!loaded) {
        return false;
    }
    const CloudRecord& record = *loaded;
    if (!record.marks) {
        return true;
    }
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return false;
    }
    diary::ReferenceLists lists(context_);
    bool visits = false;
    const core::WriteResult result = core::tryWrite("keyValueFromCloud", [&] {
        core::WriteTransaction transaction(*db);
        for (const auto& [key, entry] : *record.marks) {
            if (date && entry.date && *entry.date < *date) {
                continue;
            }
            const int seltypeid = entry.seltypeid.value_or(0);
            const std::string& tagguid = entry.tagguid.empty() ? key : entry.tagguid;
            core::throwIfFailed(lists.setCheckData(seltypeid, tagguid, entry.state, record.gid));
            visits = visits || seltypeid == 1;
        }
        transaction.commit();
    });
    if (!result) {
        platform::log("Запись облака " + path.string() + " не применена: " + result.message());
        return false;
    }
    if (visits) {
        context_.state.pageDirty[static_cast<std::size_t>(kVisitPage)] = true;
    }
    return true;
}

}  // namespace tilika::cloud
