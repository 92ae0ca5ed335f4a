// Feeds one input to the reader of cloud records, with small bounds so that
// short inputs reach every one of them, and to the parser of their names.
// Whatever the reader takes must write back into bytes it takes again, and
// read the same the second time; a name it takes must build back to itself.
// A record it takes is then applied to one data folder made at the start,
// and nothing may appear anywhere but in that folder's own places.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <span>
#include <string_view>

#include "cloud/names.h"
#include "cloud/record.h"
#include "cloud/records.h"
#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/settings_file.h"
#include "platform/clock.h"
#include "platform/folders.h"
#include "platform/image_codec.h"

namespace {

using namespace tilika::cloud;

void require(bool ok) {
    if (!ok) {
        __builtin_trap();
    }
}

Limits smallLimits() {
    Limits limits;
    limits.recordBytes = 64 << 10;
    limits.blobBytes = 256;
    limits.stringBytes = 256;
    limits.values = 2'000;
    limits.dayRows = 16;
    limits.listItems = 16;
    limits.images = 4;
    limits.nameBytes = 64;
    limits.gidChars = 40;
    return limits;
}

void sameRecord(const CloudRecord& a, const CloudRecord& b) {
    require(a.gid == b.gid && a.date == b.date && a.data == b.data && a.marks == b.marks &&
            a.constList == b.constList && a.images == b.images && a.kormdata == b.kormdata &&
            a.setup.has_value() == b.setup.has_value());
}

// Pictures of one kind only: "P" and two bytes of width and height.
class TinyCodec final : public tilika::platform::ImageCodec {
public:
    std::optional<tilika::platform::Image> decode(
        std::span<const std::uint8_t> bytes) const override {
        if (bytes.size() != 3 || bytes[0] != 'P' || bytes[1] == 0 || bytes[2] == 0) {
            return std::nullopt;
        }
        return blank(bytes[1], bytes[2]);
    }
    tilika::platform::Image scaled(const tilika::platform::Image&, int width,
                                   int height) const override {
        return blank(width, height);
    }
    std::vector<std::uint8_t> encodeJpeg(const tilika::platform::Image& image,
                                         double) const override {
        return {'J', static_cast<std::uint8_t>(image.width),
                static_cast<std::uint8_t>(image.height)};
    }

private:
    static tilika::platform::Image blank(int width, int height) {
        return {width, height,
                std::vector<std::uint8_t>(static_cast<std::size_t>(width * height * 4))};
    }
};

namespace fs = std::filesystem;

// One data folder inside a folder of its own, so that anything written
// beside it shows.
struct Device {
    fs::path outer;
    fs::path data;
    std::unique_ptr<tilika::platform::DataFolders> folders;
    std::unique_ptr<tilika::core::JsonSettingsStore> settings;
    tilika::platform::ManualClock clock{tilika::core::Date{}, "Europe/Moscow"};
    tilika::core::Dates dates{clock};
    std::unique_ptr<tilika::core::DatabaseStore> database;
    tilika::core::AppState state;
    std::unique_ptr<tilika::core::Context> context;
    TinyCodec codec;
    std::unique_ptr<Records> records;

    Device() {
        std::string pattern = (fs::temp_directory_path() / "cloud-fuzz-XXXXXX").string();
        outer = ::mkdtemp(pattern.data());
        data = outer / "data";
        folders = std::make_unique<tilika::platform::DataFolders>(data, TILIKA_FUZZ_RESOURCE_DIR);
        folders->createLayout();
        settings =
            std::make_unique<tilika::core::JsonSettingsStore>(data / "Library" / "settings.json");
        database = std::make_unique<tilika::core::DatabaseStore>(*folders, dates);
        database->fromOldVersionNewRestore();
        // Speed over durability: the folder goes with the run.
        if (SQLite::Database* db = database->connectToBase()) {
            db->exec("PRAGMA synchronous = OFF");
        }
        context = std::make_unique<tilika::core::Context>(
            tilika::core::Context{clock, *settings, *folders, dates, *database, state});
        records = std::make_unique<Records>(*context, codec, smallLimits());
    }

    // Every file lies in one of the data folder's own places, and nothing
    // but the data folder stands beside it.
    void checkPlaces() const {
        for (const auto& entry : fs::directory_iterator(outer)) {
            require(entry.path() == data);
        }
        for (const auto& entry : fs::recursive_directory_iterator(data)) {
            const fs::path relative = fs::relative(entry.path(), data);
            const fs::path parent = relative.parent_path();
            require(entry.is_directory() || entry.is_regular_file());
            if (entry.is_regular_file()) {
                require(parent == "Library" || parent == "Cloud" || parent == "tmp" ||
                        parent == "Documents/reserv" || parent == "Documents/picture" ||
                        parent == "Documents/picture-s" || parent == "Documents/analizy" ||
                        parent == "Documents/documents");
            }
        }
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span<const std::uint8_t> bytes(data, size);

    static const Limits small = smallLimits();
    const Decoded first = decodeRecord(bytes, small);
    require(first.record.has_value() == first.error.empty());
    if (first.record) {
        const Encoded written = encodeRecord(*first.record);
        require(written.ok());
        const Decoded second = decodeRecord(written.bytes);
        require(second.record.has_value());
        sameRecord(*first.record, *second.record);
        // Nothing is lost or made up the second time round.
        require(encodeRecord(*second.record).bytes == written.bytes);

        static Device device;
        const std::string name =
            std::string(first.record->marks ? "CLOUD-3-" : "CLOUD-2-") + first.record->gid + ".dat";
        const fs::path file = device.data / "Cloud" / "record.dat";
        if (writeRecordFile(file, bytes, false)) {
            device.records->dataFromCloud(file, name, std::nullopt);
        }
        device.checkPlaces();
    }

    const std::string_view name(reinterpret_cast<const char*>(data), size);
    if (const auto parsed = parseRecordName(name)) {
        require(recordName(*parsed) == name);
    }
    return 0;
}
