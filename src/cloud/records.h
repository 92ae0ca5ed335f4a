#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cloud/record.h"
#include "core/date.h"
#include "development/doctor_plan.h"
#include "diary/day_cloud.h"

namespace tilika::core {
struct Context;
}
namespace tilika::platform {
class ImageCodec;
}

namespace tilika::cloud {

// The side of a day photo's small copy, made again by every receiver.
inline constexpr int kThumbnailSide = 160;

// The size of a photo's small copy: the longer side becomes kThumbnailSide,
// the other follows in proportion, never below one pixel.
struct ThumbnailSize {
    int width = 0;
    int height = 0;
    bool operator==(const ThumbnailSize&) const = default;
};
ThumbnailSize thumbnailSize(int width, int height);

// Where a rewrite of the whole folder has got to: a percentage and what it
// is doing, in the user's words.
using Progress = std::function<void(int percent, const std::string& message)>;

// A day of the diary that a rewrite sends: the profile and the day.
struct CloudDay {
    std::string guid;
    std::string dat;  // "yyyy-MM-dd"
    bool operator==(const CloudDay&) const = default;
};

// The change records of the shared cloud folder: every save of a profile, a
// diary day, a feeding day or a check mark leaves one self-contained record
// there, and a record from another device is brought into this one's
// database and files as one unit.
//
// Threads: like the diary store, it belongs to the thread that owns the
// context's database.
class Records {
public:
    Records(core::Context& context, const platform::ImageCodec& images, Limits limits = {});

    // Builds and writes the record of a profile (kind 1), a day (2, with
    // `date`), a profile removal (3) or a feeding day (4, with `date`), and
    // stores its date as seen. The file's name, or "" when nothing was
    // written.
    std::string dataToCloud(int kind, std::optional<core::Date> date, std::string_view gid);

    // Sets (`check` 1) or clears one mark in this device's marks file.
    // `value` carries the mark's list in `seltypeid`. Nothing, and nothing
    // written, when the file is there but can't be read: the other marks in
    // it would be lost.
    std::optional<std::string> keyValueToCloud(int check, std::string_view key,
                                               std::optional<MarkEntry> value,
                                               std::string_view gid);

    // Applies one record from the folder, all of it or none: the profile,
    // the day, the new list items, the feeding day and the files. `indate`
    // is the date this device last saw the name at. False when nothing was
    // applied; the reason is logged.
    bool dataFromCloud(const std::filesystem::path& path, std::string_view name,
                       std::optional<core::Date> indate);
    // Applies a device's marks that aren't older than `date` (all of them
    // without one).
    bool keyValueFromCloud(const std::filesystem::path& path, std::optional<core::Date> date);

    // What a screen calls after its own save has landed: the record of that
    // kind goes out when the diary is synchronised through the cloud folder.
    void saved(int kind, core::Date day, std::string_view gid);

    // Writes the records of every profile, diary day and feeding day again;
    // the names written, which are the ones the folder should keep.
    std::vector<std::string> dataToCloudAll(const Progress& progress);
    // Adds to `days` the days that have a photo but no rows, and clears the
    // picture folder of what isn't a photo.
    void correctArrayImage(std::vector<CloudDay>& days) const;

    // Puts one file of the former cloud layout (copies of the database and
    // pictures) in its place. A database is copied in through SQLite's
    // backup, once it passes its check, and then brought forward by
    // `upgrade`.
    bool dataFromCloudOld(const std::filesystem::path& path, std::string_view name,
                          const std::function<void()>& upgrade);

    // The date a record file is taken to have: its modification time to the
    // millisecond, the precision the last-seen table keeps.
    static std::optional<core::Date> fileDate(const std::filesystem::path& path);

private:
    std::optional<CloudRecord> buildRecord(int kind, std::optional<core::Date> date,
                                           std::string_view gid);
    // Writes the bytes under `name` in the cloud folder and notes its date.
    bool store(const std::string& name, const CloudRecord& record);
    void markSeen(const std::string& name);
    bool apply(const CloudRecord& record, std::string_view name);

    core::Context& context_;
    const platform::ImageCodec& images_;
    Limits limits_;
};

// The cloud as the screens know it: a save that landed hands its day or
// profile over, a tick its mark, and the records decide whether anything
// goes out.
class RecordsCloud final : public diary::DayCloud, public development::CheckCloud {
public:
    explicit RecordsCloud(Records& records) : records_(records) {}
    void dataToCloud(int kind, core::Date date, std::string_view gid) override {
        records_.saved(kind, date, gid);
    }
    void keyValueToCloud(int seltypeid, std::string_view tagguid, bool check,
                         std::string_view gid) override {
        MarkEntry mark;
        mark.seltypeid = seltypeid;
        records_.keyValueToCloud(check ? 1 : 0, tagguid, mark, gid);
    }

private:
    Records& records_;
};

}  // namespace tilika::cloud
