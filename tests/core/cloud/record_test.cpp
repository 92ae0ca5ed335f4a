#include "cloud/record.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <future>
#include <sys/stat.h>

#include "cloud/names.h"
#include "core/dates.h"
#include "platform/clock.h"
#include "support/temp_dir.h"

namespace tilika::cloud {
namespace {

namespace fs = std::filesystem;
using json = nlohmann::json;
using namespace std::chrono_literals;

using Bytes = std::vector<std::uint8_t>;

const std::string kGid = "0A1B2C3D-0000-4000-8000-00000000000F";

CloudRecord fullRecord() {
    CloudRecord record;
    record.gid = kGid;
    diary::SetupRecord setup;
    setup.name = "Маша";
    setup.sbirthdate = "2025-03-01";
    setup.birthdate = core::Date(1'740'787'200'000ms);
    setup.sex = 1;
    setup.allerg = "молоко";
    setup.ves = "3.2";
    setup.birthtime = core::Date(1'740'820'000'123ms);
    setup.sbirthtime = "09:06";
    setup.documents = R"([{"file":"a.pdf"}])";
    setup.active = true;
    record.setup = setup;
    record.date = "2026-11-22";
    record.data = std::vector<DayRow>{{14, "temp", "36.6"}, {26, "analiz", ""}};
    record.constList = std::vector<frame::ListRow>{{"Кашель", "G-1", 2, 0, 1, false}};
    record.images = std::vector<Attachment>{
        {"photo", kGid + "-22-11-2026.jpg", kGid + "-22-11-2026-s.jpg", {0xFF, 0xD8, 0x00, 0xFF}},
        {"analiz", "scan.pdf", std::nullopt, {}}};
    record.kormdata = std::vector<FeedingRow>{{"2026-11-22 08:00:00", 3, "[]", 120}};
    return record;
}

Bytes cbor(const json& value) {
    return json::to_cbor(value);
}

bool refused(const Bytes& bytes, const Limits& limits = {}) {
    const Decoded decoded = decodeRecord(bytes, limits);
    EXPECT_FALSE(decoded.error.empty());
    return !decoded.record.has_value();
}

TEST(CloudRecordTest, AFullRecordComesBackAsItWent) {
    const CloudRecord record = fullRecord();
    const Encoded encoded = encodeRecord(record);
    ASSERT_TRUE(encoded.ok()) << encoded.error;

    const Decoded decoded = decodeRecord(encoded.bytes);
    ASSERT_TRUE(decoded.record) << decoded.error;
    const CloudRecord& back = *decoded.record;
    EXPECT_EQ(back.gid, record.gid);
    EXPECT_EQ(back.date, record.date);
    EXPECT_EQ(back.data, record.data);
    EXPECT_EQ(back.constList, record.constList);
    EXPECT_EQ(back.images, record.images);
    EXPECT_EQ(back.kormdata, record.kormdata);
    EXPECT_FALSE(back.marks);
    ASSERT_TRUE(back.setup);
    EXPECT_EQ(back.setup->name, "Маша");
    EXPECT_EQ(back.setup->birthdate, record.setup->birthdate);
    EXPECT_EQ(back.setup->birthtime, record.setup->birthtime);
    EXPECT_EQ(back.setup->sbirthtime, "09:06");
    EXPECT_EQ(back.setup->documents, record.setup->documents);
    EXPECT_EQ(back.setup->active, true);
    EXPECT_EQ(back.setup->sex, 1);

    // Other machines read the keys by name: dates are whole milliseconds,
    // files byte strings, the list under "const".
    const json raw = json::from_cbor(encoded.bytes);
    EXPECT_EQ(raw["setup"]["birthtime"], 1'740'820'000'123);
    EXPECT_TRUE(raw["images"][0]["data"].is_binary());
    EXPECT_EQ(raw["const"][0]["index"], "G-1");
    EXPECT_FALSE(raw["images"][1].contains("names"));
}

TEST(CloudRecordTest, MarksTravelAsADictionaryUnderData) {
    CloudRecord record;
    record.gid = kGid;
    record.marks = std::map<std::string, MarkEntry>{{"T1", {"T1", true, core::Date(5ms), 1}},
                                                    {"T2", {"T2", false, std::nullopt, {}}}};
    const Decoded decoded = decodeRecord(encodeRecord(record).bytes);
    ASSERT_TRUE(decoded.record) << decoded.error;
    EXPECT_EQ(decoded.record->marks, record.marks);
    EXPECT_FALSE(decoded.record->data);
    EXPECT_FALSE(decoded.record->setup);

    // A key that disagrees with its entry's tagguid is no mark of either.
    EXPECT_TRUE(refused(cbor({{"gid", kGid}, {"data", {{"T1", {{"tagguid", "T9"}}}}}})));
}

TEST(CloudRecordTest, MissingAndNullKeysReadAsAbsentAndUnknownOnesArePassedOver) {
    const Decoded decoded =
        decodeRecord(cbor({{"gid", kGid},
                           {"setup", {{"name", "Ваня"}}},
                           {"date", nullptr},
                           {"future", {1, 2, 3}},
                           {"images", {{{"type", "photo"}, {"name", "a.jpg"}}}}}));
    ASSERT_TRUE(decoded.record) << decoded.error;
    const CloudRecord& record = *decoded.record;
    EXPECT_FALSE(record.date);
    EXPECT_FALSE(record.data || record.marks || record.constList || record.kormdata);
    ASSERT_TRUE(record.setup);
    EXPECT_EQ(record.setup->name, "Ваня");
    EXPECT_FALSE(record.setup->active);
    EXPECT_FALSE(record.setup->sbirthdate);
    ASSERT_EQ(record.images->size(), 1u);
    EXPECT_TRUE(record.images->front().data.empty());
}

TEST(CloudRecordTest, AKnownKeyOfTheWrongTypeFailsTheWholeRecord) {
    const json good = {{"gid", kGid}};
    const std::vector<std::pair<std::string, json>> cases = {
        {"gid", 5},
        {"setup", json::array()},
        {"setup", {{"active", "yes"}}},
        {"setup", {{"birthdate", "2025-03-01"}}},
        {"date", 20261122},
        {"data", "rows"},
        {"data", {{{"tp", "14"}}}},
        {"data", {{{"tp", 1LL << 40}}}},
        {"const", {{"index", "G"}}},
        {"images", {{{"name", "a.jpg"}, {"data", "not bytes"}}}},
        {"kormdata", {{{"kosum", 1.5}}}},
    };
    for (const auto& [key, value] : cases) {
        json record = good;
        record[key] = value;
        EXPECT_TRUE(refused(cbor(record))) << key << " " << value.dump();
    }
    EXPECT_TRUE(refused(cbor(json::array({kGid}))));
}

TEST(CloudRecordTest, HostileBytesAreRefusedWithoutHarm) {
    const auto withImageName = [](const std::string& name) {
        return cbor({{"gid", kGid}, {"images", {{{"type", "photo"}, {"name", name}}}}});
    };
    Bytes full = encodeRecord(fullRecord()).bytes;
    Bytes truncated(full.begin(), full.end() - 3);
    Bytes trailing = full;
    trailing.push_back(0x00);
    Bytes nested(10'000, 0x81);  // arrays of one, each inside the one before
    nested.push_back(0x00);
    // A map of one key whose array claims 2^40 elements, and a byte string
    // as long.
    Bytes hugeArray = {0xA1, 0x64, 'd', 'a', 't', 'a', 0x9B, 0, 0, 0x01, 0, 0, 0, 0, 0};
    Bytes hugeBlob = {0xA1, 0x63, 'g', 'i', 'd', 0x5B, 0, 0, 0x01, 0, 0, 0, 0, 0};
    Bytes badUtf8 = {0xA1, 0x63, 'g', 'i', 'd', 0x62, 0xC3, 0x28};
    Bytes badKey = {0xA1, 0x62, 0xFF, 0xFE, 0x01};
    Bytes tagged = {0xA1, 0x63, 'g', 'i', 'd', 0xC0, 0x61, 'x'};

    const std::vector<std::pair<const char*, Bytes>> cases = {
        {"name ../x.jpg", withImageName("../x.jpg")},
        {"name a/b", withImageName("a/b")},
        {"name ..", withImageName("..")},
        {"empty name", withImageName("")},
        {"300-byte name", withImageName(std::string(300, 'x'))},
        {"names outside",
         cbor({{"gid", kGid}, {"images", {{{"name", "a.jpg"}, {"names", "../../b.jpg"}}}}})},
        {"gid ..", cbor({{"gid", ".."}})},
        {"gid with a slash", cbor({{"gid", "a/b"}})},
        {"long gid", cbor({{"gid", std::string(65, 'A')}})},
        {"no gid", cbor(json::object())},
        {"empty", {}},
        {"truncated", truncated},
        {"trailing garbage", trailing},
        {"deep nesting", nested},
        {"2^40 elements", hugeArray},
        {"2^40 bytes", hugeBlob},
        {"invalid UTF-8", badUtf8},
        {"invalid UTF-8 key", badKey},
        {"a tag", tagged},
    };
    for (const auto& [what, bytes] : cases) {
        EXPECT_TRUE(refused(bytes)) << what;
    }
}

TEST(CloudRecordTest, EveryBoundHoldsAndTheWriterKeepsToIt) {
    Limits small;
    small.blobBytes = 8;
    small.stringBytes = 16;
    small.images = 2;
    small.dayRows = 2;
    small.listItems = 2;
    small.values = 40;
    small.depth = 3;

    CloudRecord record;
    record.gid = "G";
    ASSERT_TRUE(encodeRecord(record, small).ok());

    const auto outOfBounds = [&](auto change) {
        CloudRecord changed = record;
        change(changed);
        const Encoded encoded = encodeRecord(changed, small);
        EXPECT_FALSE(encoded.ok());
        EXPECT_TRUE(encoded.bytes.empty());
        // The same bytes from another writer fail the reader too.
        const Bytes bytes = encodeRecord(changed).bytes;
        return refused(bytes, small);
    };
    EXPECT_TRUE(outOfBounds([](CloudRecord& r) {
        r.images = std::vector<Attachment>{{"photo", "a.jpg", {}, Bytes(9, 1)}};
    }));
    EXPECT_TRUE(outOfBounds([](CloudRecord& r) { r.date = std::string(17, '1'); }));
    EXPECT_TRUE(outOfBounds([](CloudRecord& r) {
        r.images = std::vector<Attachment>(3, {"photo", "a.jpg", {}, {}});
    }));
    EXPECT_TRUE(outOfBounds([](CloudRecord& r) { r.data = std::vector<DayRow>(3); }));
    EXPECT_TRUE(outOfBounds([](CloudRecord& r) { r.kormdata = std::vector<FeedingRow>(3); }));
    EXPECT_TRUE(outOfBounds([](CloudRecord& r) { r.constList = std::vector<frame::ListRow>(3); }));
    EXPECT_TRUE(outOfBounds([](CloudRecord& r) {
        r.marks = std::map<std::string, MarkEntry>{
            {"a", {"a", true, {}, {}}}, {"b", {"b", true, {}, {}}}, {"c", {"c", true, {}, {}}}};
    }));
    // Nesting deeper than a record needs.
    const json deep = json::array({json::array({json::array({1})})});
    EXPECT_TRUE(refused(cbor({{"gid", "G"}, {"x", deep}}), small));
    // More values than the bound in an array that declares no length.
    Bytes endless = {0xA2, 0x63, 'g', 'i', 'd', 0x61, 'G', 0x61, 'x', 0x9F};
    endless.insert(endless.end(), 50, 0x01);
    endless.push_back(0xFF);
    EXPECT_TRUE(decodeRecord(endless).record);
    EXPECT_TRUE(refused(endless, small));

    Limits tiny;
    tiny.recordBytes = 4;
    EXPECT_TRUE(refused(cbor({{"gid", "G"}}), tiny));
}

class CloudRecordFileTest : public ::testing::Test {
protected:
    test::TempDir dir;

    std::vector<std::string> entries() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(dir.path())) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }
};

TEST_F(CloudRecordFileTest, AWrittenRecordReadsBackAndLeavesNoTemporaryFile) {
    const fs::path file = dir.path() / profileRecordName(kGid);
    const Bytes bytes = encodeRecord(fullRecord()).bytes;
    ASSERT_TRUE(writeRecordFile(file, bytes));
    ASSERT_TRUE(writeRecordFile(file, Bytes{1, 2, 3}, false));
    EXPECT_EQ(readRecordFile(file), (Bytes{1, 2, 3}));
    EXPECT_EQ(entries(), std::vector<std::string>{file.filename().string()});

    Limits small;
    small.recordBytes = 2;
    EXPECT_FALSE(readRecordFile(file, small));
    EXPECT_FALSE(readRecordFile(dir.path() / "missing.dat"));
    EXPECT_FALSE(writeRecordFile(dir.path() / "no-folder" / "x.dat", bytes));
    EXPECT_FALSE(fs::exists(dir.path() / "no-folder"));
}

TEST_F(CloudRecordFileTest, LinksPipesAndFoldersAreNeitherReadNorWrittenThrough) {
    const fs::path outside = dir.path() / "outside.txt";
    std::ofstream(outside) << "keep";
    const fs::path link = dir.path() / "CLOUD-1-L.dat";
    fs::create_symlink(outside, link);
    EXPECT_FALSE(readRecordFile(link));

    // The write replaces the link; what it pointed to is untouched.
    ASSERT_TRUE(writeRecordFile(link, Bytes{7}));
    EXPECT_FALSE(fs::is_symlink(link));
    EXPECT_EQ(readRecordFile(link), Bytes{7});
    std::ifstream in(outside);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "keep");

    // A pipe nobody writes to must not hold the reader.
    const fs::path fifo = dir.path() / "CLOUD-1-F.dat";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    auto read = std::async(std::launch::async, [&] { return readRecordFile(fifo); });
    ASSERT_EQ(read.wait_for(5s), std::future_status::ready);
    EXPECT_FALSE(read.get());

    fs::create_directory(dir.path() / "CLOUD-1-D.dat");
    EXPECT_FALSE(readRecordFile(dir.path() / "CLOUD-1-D.dat"));
}

TEST(CloudRecordNameTest, TheFiveKindsOfNameGoBothWays) {
    platform::ManualClock clock{core::Date{}, "Europe/Moscow"};
    core::Dates dates{clock};
    const core::Date day = *dates.dateFromString("2026-03-07");
    const std::string device = "11111111-2222-4333-8444-555555555555";

    EXPECT_EQ(profileRecordName(kGid), "CLOUD-1-" + kGid + ".dat");
    EXPECT_EQ(dayRecordName(kGid, day, dates), "CLOUD-2-" + kGid + "-07-03-2026.dat");
    EXPECT_EQ(marksRecordName(kGid, device), "CLOUD-3-" + kGid + "-" + device + ".dat");
    EXPECT_EQ(removalRecordName(kGid), "CLOUD-3-" + kGid + ".dat");
    EXPECT_EQ(feedingRecordName(kGid, day, dates), "CLOUD-4-" + kGid + "-07-03-2026.dat");

    const std::vector<RecordName> names = {
        {1, kGid, "", ""}, {2, kGid, "07-03-2026", ""}, {3, kGid, "", device},
        {3, kGid, "", ""}, {4, kGid, "07-03-2026", ""}, {2, "child-7", "31-12-2025", ""}};
    for (const RecordName& name : names) {
        EXPECT_EQ(parseRecordName(recordName(name)), name) << recordName(name);
    }

    for (const char* other :
         {"CLOUD-1-.dat", "CLOUD-1-..dat", "CLOUD-5-G.dat", "CLOUD-1-G.txt", "cloud-1-G.dat",
          "CLOUD-2-G.dat", "CLOUD-2-G-7-3-2026.dat", "CLOUD-2--07-03-2026.dat", "CLOUD-1-a/b.dat",
          "CLOUD-1.dat", ".CLOUD-1-G.dat.tilika-abc123", "CLOUD-1-G.dat.del"}) {
        EXPECT_FALSE(parseRecordName(other)) << other;
    }
    EXPECT_FALSE(parseRecordName("CLOUD-1-" + std::string(65, 'A') + ".dat"));
}

}  // namespace
}  // namespace tilika::cloud
