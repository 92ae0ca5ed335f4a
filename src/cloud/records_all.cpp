// The passes over the whole folder: the rewrite of every record from this
// device's data, and the files of the former cloud layout.

#include <algorithm>
#include <cctype>

#include "cloud/records.h"
#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/ids.h"
#include "core/system_folders.h"
#include "diary/old_values.h"
#include "diary/profiles.h"
#include "platform/folders.h"
#include "platform/log.h"

namespace tilika::cloud {

namespace fs = std::filesystem;

namespace {

// "-dd-MM-yyyy.jpg", the tail of a day photo's name after the guid.
constexpr std::size_t kPhotoTail = 15;
constexpr std::size_t kPhotoDay = 10;

// The rows of a query of two text columns.
std::vector<CloudDay> listDays(SQLite::Database& db, const char* sql, bool guidFirst) {
    std::vector<CloudDay> days;
    core::runGuarded("dataToCloudAll", [&] {
        SQLite::Statement query(db, sql);
        while (query.executeStep()) {
            std::string first = core::stringFromBase(query, 0).value_or("");
            std::string second = core::stringFromBase(query, 1).value_or("");
            days.push_back(guidFirst ? CloudDay{std::move(first), std::move(second)}
                                     : CloudDay{std::move(second), std::move(first)});
        }
    });
    return days;
}

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

}  // namespace

std::vector<std::string> Records::dataToCloudAll(const Progress& progress) {
    std::vector<std::string> keep;
    const auto report = [&](int percent, const std::string& message) {
        if (progress) {
            progress(percent, message);
        }
    };
    const auto write = [&](int kind, std::optional<core::Date> date, const std::string& gid) {
        std::string name = dataToCloud(kind, date, gid);
        if (!name.empty()) {
            keep.push_back(std::move(name));
        }
    };
    report(0, "Идет копирование данных профилей");
    for (const diary::ProfileRow& profile : diary::Profiles(context_).loadProfils()) {
        write(kind::profile, std::nullopt, profile.childguid);
    }

    report(10, "Идет сбор данных дневника");
    SQLite::Database* db = context_.database.connectToBase();
    if (db == nullptr) {
        return keep;
    }
    std::vector<CloudDay> days = listDays(
        *db, "select sdat,childguid from childdata group by sdat,childguid order by childguid,sdat",
        false);
    correctArrayImage(days);

    const auto writeDays = [&](const std::vector<CloudDay>& list, int kind,
                               const std::string& message) {
        const auto count = static_cast<int>(list.size());
        for (int index = 1; index <= count; ++index) {
            const CloudDay& day = list[static_cast<std::size_t>(index - 1)];
            if (const std::optional<core::Date> date = context_.dates.dateFromString(day.dat)) {
                write(kind, context_.dates.noTime(*date), day.guid);
            }
            report(index * 80 / count + 15, message);
        }
    };
    report(15, "Идет копирование данных дневника");
    writeDays(days, kind::day, "Идет копирование данных дневника");
    if (context_.state.appid == core::edition::child) {
        // substr from 0 gives the ten characters of the day.
        writeDays(listDays(*db,
                           "select childguid,substr(kodates,0,11) as dats from childkorm group by "
                           "childguid,substr(kodates,0,11)",
                           true),
                  kind::feeding, "Идет копирование данных пищевого дневника");
    }
    return keep;
}

void Records::correctArrayImage(std::vector<CloudDay>& days) const {
    const fs::path folder = context_.folders.path(platform::SystemFolder::Document) / "picture";
    std::error_code error;
    std::vector<fs::path> files;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
        if (!it->is_directory(error)) {
            files.push_back(it->path());
        }
    }
    for (const fs::path& file : files) {
        const std::string name = file.filename().string();
        if (name.starts_with("child")) {
            continue;
        }
        if (name == "tmp.jpg" || file.extension() != ".jpg") {
            fs::remove(file, error);
            continue;
        }
        if (context_.state.appid != core::edition::child || name.size() <= kPhotoTail) {
            continue;
        }
        const std::string guid = name.substr(0, name.size() - kPhotoTail);
        const std::optional<core::Date> day = context_.dates.dateFromStringFormat(
            std::string_view(name).substr(name.size() - kPhotoTail + 1, kPhotoDay),
            core::formats::photoDay);
        if (!day || !isSafeGid(guid, limits_)) {
            continue;
        }
        const std::string dat = context_.dates.dateToString(*day, core::formats::day);
        if (std::find(days.begin(), days.end(), CloudDay{guid, dat}) == days.end()) {
            days.push_back({guid, dat});
        }
    }
}

bool Records::dataFromCloudOld(const fs::path& path, std::string_view name,
                               const std::function<void()>& upgrade) {
    std::error_code error;
    if (!fs::is_regular_file(fs::symlink_status(path, error)) || !core::isPlainFileName(name)) {
        return false;
    }
    const fs::path documents = context_.folders.path(platform::SystemFolder::Document);
    const std::string extension = lower(fs::path(name).extension().string());
    if (extension == ".sqlite") {
        // The incoming file is never opened for writing where it lies: a
        // copy of it is checked and taken in through SQLite's backup, and
        // the live file is kept aside beside it.
        const fs::path copy = context_.folders.path(platform::SystemFolder::Temp) /
                              (".incoming-" + core::newID() + ".sqlite");
        fs::create_directories(copy.parent_path(), error);
        const bool copied = fs::copy_file(path, copy, error) && !error;
        const bool restored = copied && context_.database.restoreFrom(copy);
        fs::remove(copy, error);
        if (!restored) {
            platform::log("Старая копия дневника " + std::string(name) + " не принята");
            return false;
        }
        if (name.size() >= 8 && name.ends_with(".sqlite") && upgrade) {
            upgrade();
        }
        return true;
    }
    std::string target;
    if (name.size() >= 6 && name.starts_with("child")) {
        // "child<number>.jpg": a name with no number in it names nobody.
        if (name.size() < 10) {
            return false;
        }
        target = "child-" + core::newID2(core::idkind::profile, name.substr(5, name.size() - 9)) +
                 ".jpg";
    } else {
        target = diary::oldFileNameToNew(name);
    }
    if (!core::isPlainFileName(target)) {
        return false;
    }
    Limits whole = limits_;
    whole.recordBytes = limits_.blobBytes;
    const std::optional<std::vector<std::uint8_t>> bytes = readRecordFile(path, whole);
    if (!bytes) {
        return false;
    }
    const fs::path file = core::typeFilePath(documents, target) / target;
    fs::create_directories(file.parent_path(), error);
    const std::optional<fs::path> temp = writeTempFile(file, *bytes);
    if (!temp) {
        return false;
    }
    fs::rename(*temp, file, error);
    if (error) {
        fs::remove(*temp, error);
        return false;
    }
    return true;
}

}  // namespace tilika::cloud
