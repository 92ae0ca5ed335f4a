#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/date.h"
#include "diary/profiles.h"
#include "frame/form_row.h"

namespace tilika::cloud {

// The kinds of record, the digit after "CLOUD-" in a record's name.
namespace kind {
inline constexpr int profile = 1;
inline constexpr int day = 2;
inline constexpr int marks = 3;  // also a profile removal, which names no device
inline constexpr int feeding = 4;
}  // namespace kind

// A record comes from another machine through a folder anyone can drop files
// into, so it is read as hostile: every bound below is checked before the
// bytes are decoded and again while they are. Fifty thousand list items of a
// few keys each must still fit in the count of values.
inline constexpr std::size_t kMaxRecordBytes = 64u << 20;
inline constexpr std::size_t kMaxBlobBytes = 32u << 20;
inline constexpr std::size_t kMaxStringBytes = 1u << 20;
inline constexpr int kMaxDepth = 8;
inline constexpr std::size_t kMaxValues = 1'000'000;
inline constexpr std::size_t kMaxDayRows = 5'000;
inline constexpr std::size_t kMaxListItems = 50'000;
inline constexpr std::size_t kMaxImages = 500;
inline constexpr std::size_t kMaxNameBytes = 200;
inline constexpr std::size_t kMaxGidChars = 64;

// The bounds as one value, so that tests and the fuzzer can reach them with
// small inputs.
struct Limits {
    std::size_t recordBytes = kMaxRecordBytes;
    std::size_t blobBytes = kMaxBlobBytes;
    std::size_t stringBytes = kMaxStringBytes;
    int depth = kMaxDepth;
    std::size_t values = kMaxValues;
    std::size_t dayRows = kMaxDayRows;
    std::size_t listItems = kMaxListItems;
    std::size_t images = kMaxImages;
    std::size_t nameBytes = kMaxNameBytes;
    std::size_t gidChars = kMaxGidChars;
};

// One entry of a day as it travels: its type, its column and its value text.
struct DayRow {
    int tp = 0;
    std::string field;
    std::string source;

    bool operator==(const DayRow&) const = default;
};

// A file that goes with a record: "photo", "analiz" or "documents", its bare
// name, for a day's photo the name of its small copy, and its bytes.
struct Attachment {
    std::string type;
    std::string name;
    std::optional<std::string> names;
    std::vector<std::uint8_t> data;

    bool operator==(const Attachment&) const = default;
};

// One row of a feeding day, the columns of its table.
struct FeedingRow {
    std::string kodates;
    int kotype = 0;
    std::string kovalue;
    int kosum = 0;

    bool operator==(const FeedingRow&) const = default;
};

// One check mark as a device last set or cleared it.
struct MarkEntry {
    std::string tagguid;
    bool state = false;
    std::optional<core::Date> date;  // the click
    std::optional<int> seltypeid;    // absent reads as 0

    bool operator==(const MarkEntry&) const = default;
};

// One record file. An absent member is a key the file doesn't have. `data`
// holds day rows in a day record and marks (by tagguid) in a marks record;
// on disk both are the key "data", and `constList` is the key "const".
struct CloudRecord {
    std::string gid;
    std::optional<diary::SetupRecord> setup;
    std::optional<std::string> date;  // "yyyy-MM-dd" as written
    std::optional<std::vector<DayRow>> data;
    std::optional<std::map<std::string, MarkEntry>> marks;
    std::optional<std::vector<frame::ListRow>> constList;
    std::optional<std::vector<Attachment>> images;
    std::optional<std::vector<FeedingRow>> kormdata;
};

// A profile guid that can stand in a file name: nothing that leads out of a
// folder, and no longer than the bounds.
bool isSafeGid(std::string_view gid, const Limits& limits = {});

// Either the bytes of a record or, for the log, why there are none.
struct Encoded {
    std::vector<std::uint8_t> bytes;
    std::string error;
    bool ok() const { return error.empty(); }
};

// Either a record or, for the log, why the bytes aren't one.
struct Decoded {
    std::optional<CloudRecord> record;
    std::string error;
};

// Refuses (with the reason) a record that its reader would refuse, so that
// no device ever writes one the others can't read.
Encoded encodeRecord(const CloudRecord& record, const Limits& limits = {});

// All or nothing: a known key of the wrong type, a bound passed, a name that
// could lead out of its folder or bytes that don't decode fail the whole
// record. Unknown keys are passed over.
Decoded decodeRecord(std::span<const std::uint8_t> bytes, const Limits& limits = {});

// The bytes of a record file: only a regular file, opened without following
// a link and without waiting on a pipe, and no larger than the bound. The
// reason for a failure goes to the log with the file's path.
std::optional<std::vector<std::uint8_t>> readRecordFile(const std::filesystem::path& file,
                                                        const Limits& limits = {});

// Writes the bytes under a dot-prefixed temporary name beside `file`
// (".<name>.tilika-XXXXXX", which a scan of the folder passes over) and gives
// that name, for the caller to rename into place once everything that goes
// with it has landed. Nothing, and the reason logged, when it can't.
std::optional<std::filesystem::path> writeTempFile(const std::filesystem::path& file,
                                                   std::span<const std::uint8_t> bytes,
                                                   bool sync = true);
// Makes the renames in a folder last.
void syncFolder(const std::filesystem::path& folder);

// Writes under a dot-prefixed temporary name in the same folder, then renames
// it into place: another machine or a sync tool never sees half a record, and
// a link planted under the name is replaced rather than written through.
// `sync` flushes the file and its folder to disk; a pass that writes many
// records may leave it off and sync the folder once at the end.
bool writeRecordFile(const std::filesystem::path& file, std::span<const std::uint8_t> bytes,
                     bool sync = true);

}  // namespace tilika::cloud
