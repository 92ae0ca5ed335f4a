#include "cloud/records.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <set>

#include "cloud/names.h"
#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/ids.h"
#include "core/settings_file.h"
#include "diary/diary_store.h"
#include "diary/profiles.h"
#include "medication/courses.h"
#include "platform/clock.h"
#include "platform/folders.h"
#include "support/core_fixture.h"
#include "support/fake_image_codec.h"
#include "support/temp_dir.h"

namespace tilika::cloud {
namespace {

namespace fs = std::filesystem;
using json = nlohmann::json;
using Bytes = std::vector<std::uint8_t>;

// The fake codec's pictures, scaled to exactly the box asked for, as the
// real one does for a box of the picture's own proportions.
class BoxCodec final : public platform::ImageCodec {
public:
    std::optional<platform::Image> decode(std::span<const std::uint8_t> bytes) const override {
        return fake.decode(bytes);
    }
    platform::Image scaled(const platform::Image&, int width, int height) const override {
        return test::FakeImageCodec::blank(width, height);
    }
    std::vector<std::uint8_t> encodeJpeg(const platform::Image& image,
                                         double quality) const override {
        return fake.encodeJpeg(image, quality);
    }

private:
    test::FakeImageCodec fake;
};

Bytes bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

std::string readText(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void writeText(const fs::path& file, const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
}

// One device: its own data folder, database, settings and records, with
// the diary synchronised through the cloud folder.
struct Device final : test::CoreFixture {
    void TestBody() override {}
    using CoreFixture::context;
    using CoreFixture::database;
    using CoreFixture::db;
    using CoreFixture::dir;
    using CoreFixture::folders;
    using CoreFixture::settings;
    using CoreFixture::state;

    diary::DiaryStore store{context, courses};
    BoxCodec codec;
    Records records{context, codec};

    Device() {
        state.cloudMode = core::cloudmode::icloud;
        state.appguid = core::newID();
    }

    std::string query(const std::string& sql) {
        SQLite::Statement statement(db(), sql);
        std::string rows;
        while (statement.executeStep()) {
            for (int i = 0; i < statement.getColumnCount(); ++i) {
                rows += statement.getColumn(i).getString() +
                        (i + 1 < statement.getColumnCount() ? "|" : "\n");
            }
        }
        return rows;
    }
    fs::path documents(const std::string& sub) const {
        return folders.path(platform::SystemFolder::Document) / sub;
    }
    fs::path cloud(const std::string& name) const {
        return folders.path(platform::SystemFolder::Cloud) / name;
    }
    core::Date day(const char* text) const { return *dates.dateFromString(text); }

    std::string addChild(const std::string& gid, const std::string& name) {
        diary::Profiles profiles(context);
        diary::SetupRecord record = profiles.loadSetupData(gid);
        record.name = name;
        record.sbirthdate = "2026-01-10";
        EXPECT_TRUE(profiles.saveSetupData(diary::saveflag::cloud, record, gid));
        return gid;
    }
    // The day's catalogue rows, for a test to fill in and save.
    std::vector<diary::CatalogueRow> rows(const char* date, const std::string& gid,
                                          std::vector<diary::ListRow>& list) {
        store.lists().loadConstList(list, diary::cotype::all, "");
        std::vector<diary::CatalogueRow> rows;
        store.noteStructToTodayNote(store.todayNoteForDay(day(date), gid), rows, list);
        return rows;
    }
    void setRow(std::vector<diary::CatalogueRow>& rows, std::string_view field,
                const std::string& source) {
        for (diary::CatalogueRow& row : rows) {
            if (row.field == field) {
                row.source = source;
                return;
            }
        }
        ADD_FAILURE() << "no row " << field;
    }
    // Saves a day with these values as the day editor does; the rows saved.
    std::vector<diary::CatalogueRow> saveDay(
        const char* date, const std::string& gid,
        const std::vector<std::pair<std::string_view, std::string>>& values) {
        std::vector<diary::ListRow> list;
        std::vector<diary::CatalogueRow> saved = rows(date, gid, list);
        for (const auto& [field, value] : values) {
            setRow(saved, field, value);
        }
        EXPECT_TRUE(store.saveNoteData(1, saved, list, gid, day(date)));
        return saved;
    }
    bool apply(const std::string& name, std::optional<core::Date> indate = std::nullopt) {
        return records.dataFromCloud(cloud(name), name, indate);
    }
    // Everything under the data folder but the cloud folder and the settings,
    // which a failed record must leave as it was.
    std::set<std::string> files() const {
        std::set<std::string> found;
        for (const auto& entry : fs::recursive_directory_iterator(dir.path())) {
            const std::string path = fs::relative(entry.path(), dir.path()).string();
            if (!path.starts_with("Cloud") && !path.starts_with("Library") &&
                !path.ends_with("-journal")) {
                found.insert(path + ":" + (entry.is_regular_file() ? readText(entry.path()) : ""));
            }
        }
        return found;
    }
};

const std::string kGid = "0A1B2C3D-0000-4000-8000-0000000000AA";

// A week's course of one medicine from 20 November.
std::string weekCourse() {
    return R"([{"pillname":")" + core::newID2(core::idkind::seededRow, 8) +
           R"(","pilldoza":"1<td>шт.","pillinter":"3<td>раз в день","pillperiod":")" +
           core::newID2(core::idkind::seededRow, 10) + R"(","pilleat":")" +
           core::newID2(core::idkind::seededRow, 18) +
           R"(","pilllength":"1<td>недели","pillsdate":"20.11.2026"}])";
}

// Copies a record from one device's folder into the other's.
void carry(const Device& from, const Device& to, const std::string& name) {
    fs::copy_file(from.cloud(name), to.cloud(name), fs::copy_options::overwrite_existing);
}

TEST(CloudRecordsTest, AProfileAndADayTravelWholeFromOneFolderToAnother) {
    Device a;
    Device b;
    a.addChild(kGid, "Маша");
    const std::string medicine =
        a.store.lists().addConst(diary::cotype::medicines, "Энтерофурил", 0).guid.value();
    writeText(a.documents("analizy") / "scan.pdf", "%PDF скан");
    writeText(a.documents("picture") / (kGid + "-20-11-2026.jpg"), "PIC 400x300");
    writeText(a.documents("picture") / ("child-" + kGid + ".jpg"), "PIC 90x90");
    a.saveDay(
        "2026-11-20", kGid,
        {{"pills", weekCourse()},
         {"note", "заметка"},
         {"analizy", R"([{"file":"scan.pdf"},{"file":"../../etc/passwd"},{"file":"нет.pdf"}])"}});

    // In any other mode a save leaves nothing in the folder.
    a.state.cloudMode = core::cloudmode::off;
    a.records.saved(kind::day, a.day("2026-11-20"), kGid);
    EXPECT_TRUE(fs::is_empty(a.folders.path(platform::SystemFolder::Cloud)));
    a.state.cloudMode = core::cloudmode::icloud;

    a.records.saved(kind::profile, a.day("2026-11-20"), kGid);
    a.records.saved(kind::day, a.day("2026-11-20"), kGid);
    const std::string profile = "CLOUD-1-" + kGid + ".dat";
    const std::string day = "CLOUD-2-" + kGid + "-20-11-2026.dat";
    for (const std::string& name : {profile, day}) {
        ASSERT_TRUE(fs::exists(a.cloud(name))) << name;
        // The writer has seen its own record, to the millisecond.
        EXPECT_EQ(a.settings.dateValue(name), Records::fileDate(a.cloud(name))) << name;
        carry(a, b, name);
    }
    // Nothing but the record itself is left in the folder.
    EXPECT_EQ(std::distance(fs::directory_iterator(a.folders.path(platform::SystemFolder::Cloud)),
                            fs::directory_iterator()),
              2);

    EXPECT_TRUE(b.apply(profile));
    EXPECT_TRUE(b.apply(day));
    const std::string dayRows =
        "select sdat, type, value from childdata where childguid='" + kGid + "' order by 1, 2";
    EXPECT_EQ(b.query(dayRows), a.query(dayRows));
    EXPECT_EQ(b.query("select count(distinct sdat) from childdata where type='pills'"), "7\n");
    EXPECT_EQ(b.query("select coname, cotype from childconst where coguid='" + medicine + "'"),
              "Энтерофурил|101\n");
    EXPECT_EQ(b.query("select chname from child where childguid='" + kGid + "'"), "Маша\n");
    EXPECT_EQ(readText(b.documents("picture") / (kGid + "-20-11-2026.jpg")), "PIC 400x300");
    EXPECT_EQ(readText(b.documents("picture-s") / (kGid + "-20-11-2026-s.jpg")),
              "JPEG 160x120 q=100");
    EXPECT_EQ(readText(b.documents("picture") / ("child-" + kGid + ".jpg")), "PIC 90x90");
    EXPECT_EQ(readText(b.documents("analizy") / "scan.pdf"), "%PDF скан");
    EXPECT_FALSE(fs::exists(b.documents("analizy") / "нет.pdf"));
    EXPECT_TRUE(b.state.pageDirty[0]);
}

// A hand-made record in a device's folder, as another device could write it.
std::string put(Device& device, const std::string& name, const json& record) {
    writeRecordFile(device.cloud(name), json::to_cbor(record));
    return name;
}

json setupOf(const std::string& name, bool active = true) {
    return {{"name", name}, {"sbirthdate", "2025-05-05"}, {"active", active}};
}

TEST(CloudRecordsTest, ADayIsReplacedWholeAndOnlyNewListItemsAreAdded) {
    Device b;
    b.addChild(kGid, "Маша");
    const std::vector<diary::CatalogueRow> rows =
        b.saveDay("2026-11-20", kGid, {{"note", "старая заметка"}});
    std::vector<diary::ListRow> list;
    b.store.lists().loadConstList(list, diary::cotype::all, "");
    const diary::ListRow& known = list.front();

    json data = json::array();
    for (const diary::CatalogueRow& row : rows) {
        data.push_back({{"tp", row.tp}, {"field", row.field}, {"source", ""}});
    }
    data.push_back({{"tp", 14}, {"field", "womanday"}, {"source", "1"}});
    const std::string fresh = "AAAAAAAA-1111-4111-8111-000000000001";
    const json record = {
        {"gid", kGid},
        {"setup", setupOf("Маша")},
        {"date", "2026-11-20"},
        {"data", data},
        {"const",
         {{{"index", known.index}, {"tp", known.tp}, {"cap", "Другое имя"}, {"deleted", 0}},
          {{"index", fresh}, {"tp", 2}, {"cap", "Икота"}, {"deleted", 1}}}},
        {"images", json::array()}};
    EXPECT_TRUE(b.apply(put(b, "CLOUD-2-" + kGid + "-20-11-2026.dat", record)));

    EXPECT_EQ(b.query("select count(*) from childdata where childguid='" + kGid + "'"), "0\n");
    EXPECT_EQ(b.query("select coname from childconst where coguid='" + known.index + "'"),
              known.cap + "\n");
    EXPECT_EQ(
        b.query("select coname, cotype, deleted from childconst where coguid='" + fresh + "'"),
        "Икота|2|1\n");

    // A date that doesn't read leaves the day alone: no rows at 1970.
    json undated = record;
    undated["date"] = "20.11.2026";
    undated["data"] = {{{"tp", 3}, {"field", "note"}, {"source", "в никуда"}}};
    EXPECT_TRUE(b.apply(put(b, "CLOUD-2-" + kGid + "-21-11-2026.dat", undated)));
    EXPECT_EQ(b.query("select count(*) from childdata"), "0\n");
}

TEST(CloudRecordsTest, MarksTravelPerDeviceAndOlderOnesAreSkipped) {
    Device a;
    Device b;
    a.addChild(kGid, "Маша");
    const std::string visit = "BBBBBBBB-1111-4111-8111-000000000001";
    const std::string other = "BBBBBBBB-1111-4111-8111-000000000002";
    MarkEntry inVisits;
    inVisits.seltypeid = 1;
    ASSERT_TRUE(a.records.keyValueToCloud(1, visit, inVisits, kGid));
    ASSERT_TRUE(a.records.keyValueToCloud(1, other, std::nullopt, kGid));
    const std::optional<std::string> name = a.records.keyValueToCloud(0, visit, inVisits, kGid);
    ASSERT_EQ(name, "CLOUD-3-" + kGid + "-" + a.state.appguid + ".dat");

    const Decoded written = decodeRecord(*readRecordFile(a.cloud(*name)));
    ASSERT_TRUE(written.record && written.record->marks);
    ASSERT_EQ(written.record->marks->size(), 2u);
    EXPECT_FALSE(written.record->marks->at(visit).state);
    EXPECT_TRUE(written.record->marks->at(other).state);

    b.db().exec("insert into childselect (seltypeid, tagguid, childguid) values (1, '" + visit +
                "', '" + kGid + "')");
    carry(a, b, *name);
    EXPECT_TRUE(b.apply(*name));
    // Applying twice changes nothing more.
    EXPECT_TRUE(b.apply(*name));
    EXPECT_EQ(b.query("select seltypeid, tagguid from childselect"), "0|" + other + "\n");
    EXPECT_TRUE(b.state.pageDirty[8]);

    // Entries as old as the last seen date come again; older ones don't.
    const json marks = {
        {"gid", kGid},
        {"data",
         {{visit, {{"tagguid", visit}, {"state", true}, {"date", 1000}, {"seltypeid", 1}}},
          {other, {{"tagguid", other}, {"state", false}, {"date", 999}}}}}};
    const std::string device = put(b, "CLOUD-3-" + kGid + "-" + core::newID() + ".dat", marks);
    EXPECT_TRUE(b.apply(device, core::Date(std::chrono::milliseconds(1000))));
    EXPECT_EQ(b.query("select seltypeid, tagguid from childselect order by 1"),
              "0|" + other + "\n1|" + visit + "\n");
    EXPECT_TRUE(b.apply(device));
    EXPECT_EQ(b.query("select seltypeid, tagguid from childselect"), "1|" + visit + "\n");

    // A profile removal goes the way of the marks and removes nobody.
    const std::string removal = a.records.dataToCloud(kind::marks, std::nullopt, kGid);
    ASSERT_EQ(removal, "CLOUD-3-" + kGid + ".dat");
    b.addChild(kGid, "Маша");
    carry(a, b, removal);
    EXPECT_TRUE(b.apply(removal));
    EXPECT_EQ(b.query("select ifnull(deleted, 0) from child where childguid='" + kGid + "'"),
              "0\n");

    // A marks file of its own that can't be read is left alone.
    writeText(a.cloud(*name), "не запись");
    EXPECT_FALSE(a.records.keyValueToCloud(1, visit, std::nullopt, kGid));
    EXPECT_EQ(readText(a.cloud(*name)), "не запись");
}

TEST(CloudRecordsTest, ARecordBringsAnUnknownChildAndCanRemoveOne) {
    Device b;
    const std::string second = "0A1B2C3D-0000-4000-8000-0000000000BB";
    EXPECT_TRUE(
        b.apply(put(b, "CLOUD-1-" + kGid + ".dat",
                    {{"gid", kGid}, {"setup", setupOf("Маша")}, {"images", json::array()}})));
    EXPECT_TRUE(b.apply(put(b, "CLOUD-2-" + second + "-20-11-2026.dat",
                            {{"gid", second},
                             {"setup", setupOf("Петя")},
                             {"date", "2026-11-20"},
                             {"data", json::array()},
                             {"images", json::array()}})));
    EXPECT_EQ(b.query("select chname from child where childguid in ('" + kGid + "','" + second +
                      "') order by 1"),
              "Маша\nПетя\n");

    // Without a profile in it, a record leaves the profile alone.
    EXPECT_TRUE(b.apply(put(b, "CLOUD-4-" + kGid + "-20-11-2026.dat",
                            {{"gid", kGid},
                             {"date", "2026-11-20"},
                             {"kormdata",
                              {{{"kodates", "2026-11-20 08:00:00"},
                                {"kotype", 3},
                                {"kovalue", "[]"},
                                {"kosum", 120}}}}})));
    EXPECT_EQ(b.query("select kodates, kotype, kosum from childkorm"),
              "2026-11-20 08:00:00|3|120\n");
    EXPECT_EQ(b.query("select ifnull(deleted, 0) from child where childguid='" + kGid + "'"),
              "0\n");

    writeText(b.documents("picture") / ("child-" + kGid + ".jpg"), "PIC 90x90");
    EXPECT_TRUE(b.apply(
        put(b, "CLOUD-1-" + kGid + ".dat", {{"gid", kGid}, {"setup", setupOf("Маша", false)}})));
    EXPECT_EQ(b.query("select ifnull(deleted, 0) from child where childguid='" + kGid + "'"),
              "1\n");
    EXPECT_FALSE(fs::exists(b.documents("picture") / ("child-" + kGid + ".jpg")));
}

TEST(CloudRecordsTest, ASmallCopyKeepsThePhotosProportions) {
    EXPECT_EQ(thumbnailSize(400, 300), (ThumbnailSize{160, 120}));
    EXPECT_EQ(thumbnailSize(300, 400), (ThumbnailSize{120, 160}));
    EXPECT_EQ(thumbnailSize(96, 96), (ThumbnailSize{160, 160}));
    EXPECT_EQ(thumbnailSize(1000, 3), (ThumbnailSize{160, 1}));
    EXPECT_EQ(thumbnailSize(3, 1000), (ThumbnailSize{1, 160}));

    // A photo that doesn't decode still comes, without its small copy.
    Device b;
    const auto photo = [&](const std::string& bytes) {
        return json{{"gid", kGid},
                    {"images",
                     {{{"type", "photo"},
                       {"name", "p.jpg"},
                       {"names", "p-s.jpg"},
                       {"data", json::binary(bytesOf(bytes))}}}}};
    };
    EXPECT_TRUE(b.apply(put(b, "CLOUD-1-" + kGid + ".dat", photo("PIC 1000x3"))));
    EXPECT_EQ(readText(b.documents("picture-s") / "p-s.jpg"), "JPEG 160x1 q=100");
    fs::remove(b.documents("picture-s") / "p-s.jpg");
    EXPECT_TRUE(b.apply(put(b, "CLOUD-1-" + kGid + ".dat", photo("не картинка"))));
    EXPECT_EQ(readText(b.documents("picture") / "p.jpg"), "не картинка");
    EXPECT_FALSE(fs::exists(b.documents("picture-s") / "p-s.jpg"));
}

TEST(CloudRecordsTest, AHostileRecordChangesNothing) {
    Device b;
    b.addChild(kGid, "Маша");
    const json good = {
        {"gid", kGid},
        {"setup", setupOf("Чужое имя")},
        {"date", "2026-11-20"},
        {"data", {{{"tp", 3}, {"field", "note"}, {"source", "чужая заметка"}}}},
        {"images", {{{"type", "analiz"}, {"name", "a.pdf"}, {"data", json::binary({1, 2})}}}}};
    const auto withName = [&](const std::string& name) {
        json record = good;
        record["images"].push_back(
            {{"type", "photo"}, {"name", name}, {"data", json::binary({1})}});
        return json::to_cbor(record);
    };
    Bytes truncated = json::to_cbor(good);
    truncated.resize(truncated.size() - 3);
    Bytes trailing = json::to_cbor(good);
    trailing.push_back(0x00);
    Bytes nested(10'000, 0x81);  // arrays of one array each
    nested.push_back(0x00);
    // A byte string that says it is 2^40 bytes long.
    Bytes huge = {0xA1, 0x64, 'd', 'a', 't', 'a', 0x5B, 0, 0, 1, 0, 0, 0, 0, 0};
    json badText = good;
    badText["setup"]["name"] = "x";
    Bytes invalidUtf8 = json::to_cbor(badText);
    const auto at = std::find(invalidUtf8.begin(), invalidUtf8.end(), 'x');
    *at = 0xFF;

    const struct {
        const char* what;
        Bytes bytes;
    } cases[] = {
        {"a name that climbs out", withName("../x.jpg")},
        {"a name with a folder", withName("a/b")},
        {"a name of the folder above", withName("..")},
        {"an empty name", withName("")},
        {"a name of 300 bytes", withName(std::string(300, 'x'))},
        {"truncated bytes", truncated},
        {"trailing garbage", trailing},
        {"10,000 nested arrays", nested},
        {"a length of 2^40", huge},
        {"invalid UTF-8", invalidUtf8},
    };
    const std::string name = "CLOUD-2-" + kGid + "-20-11-2026.dat";
    const std::set<std::string> before = b.files();
    const std::string database =
        b.query("select * from child") + b.query("select * from childdata");
    for (const auto& hostile : cases) {
        writeRecordFile(b.cloud(name), hostile.bytes);
        EXPECT_FALSE(b.apply(name)) << hostile.what;
        EXPECT_EQ(b.files(), before) << hostile.what;
    }
    // A link in the folder under a record's name isn't followed.
    const Bytes sound = json::to_cbor(good);
    writeText(b.dir.path() / "elsewhere.dat", std::string(sound.begin(), sound.end()));
    fs::remove(b.cloud(name));
    fs::create_symlink(b.dir.path() / "elsewhere.dat", b.cloud(name));
    EXPECT_FALSE(b.apply(name));
    EXPECT_EQ(b.query("select * from child") + b.query("select * from childdata"), database);

    // The same record, sound, is taken.
    fs::remove(b.cloud(name));
    writeRecordFile(b.cloud(name), sound);
    EXPECT_TRUE(b.apply(name));
    EXPECT_EQ(b.store.todayNoteForDay(b.day("2026-11-20"), kGid).value("note"), "чужая заметка");
}

TEST(CloudRecordsTest, AnApplyThatFailsHalfwayLeavesEverythingAsItWas) {
    Device b;
    b.addChild(kGid, "Маша");
    b.saveDay("2026-11-20", kGid, {{"note", "старая заметка"}});
    writeText(b.documents("picture") / ("child-" + kGid + ".jpg"), "портрет");
    const std::set<std::string> before = b.files();

    // The last list item of the record can't be stored.
    b.db().exec(
        "create temp trigger failList before insert on childconst when new.coname='сбой' "
        "begin select raise(abort, 'disk full'); end");
    const json record = {
        {"gid", kGid},
        {"setup", setupOf("Новое имя", false)},
        {"date", "2026-11-20"},
        {"data", {{{"tp", 3}, {"field", "note"}, {"source", "новая заметка"}}}},
        {"const",
         {{{"index", "CCCCCCCC-1111-4111-8111-000000000001"},
           {"tp", 2},
           {"cap", "сбой"},
           {"deleted", 0}}}},
        {"images",
         {{{"type", "photo"},
           {"name", kGid + "-20-11-2026.jpg"},
           {"names", kGid + "-20-11-2026-s.jpg"},
           {"data", json::binary(bytesOf("PIC 400x300"))}},
          {{"type", "analiz"}, {"name", "a.pdf"}, {"data", json::binary({1, 2})}}}}};
    EXPECT_FALSE(b.apply(put(b, "CLOUD-2-" + kGid + "-20-11-2026.dat", record)));

    EXPECT_EQ(
        b.query("select chname, ifnull(deleted, 0) from child where childguid='" + kGid + "'"),
        "Маша|0\n");
    EXPECT_EQ(b.store.todayNoteForDay(b.day("2026-11-20"), kGid).value("note"), "старая заметка");
    // No file came, none went, and no temporary is left behind.
    EXPECT_EQ(b.files(), before);
}

TEST(CloudRecordsTest, ARewriteSendsEveryProfileDayAndFeedingDay) {
    Device a;
    a.addChild(kGid, "Маша");
    a.saveDay("2026-11-20", kGid, {{"note", "заметка"}});
    a.db().exec(
        "insert into childkorm (kodates, kotype, kovalue, kosum, childguid) values "
        "('2026-11-21 08:00:00', 3, '[]', 120, '" +
        kGid + "')");
    const fs::path pictures = a.documents("picture");
    for (const std::string& name :
         {kGid + "-18-11-2026.jpg", "child-" + kGid + ".jpg", std::string("tmp.jpg"),
          std::string("scan.png"), std::string("x-99-99-9999.jpg"), std::string("short.jpg")}) {
        writeText(pictures / name, "PIC 10x10");
    }

    std::vector<std::pair<int, std::string>> steps;
    const std::vector<std::string> keep = a.records.dataToCloudAll(
        [&](int percent, const std::string& message) { steps.emplace_back(percent, message); });
    for (const std::string& name :
         {"CLOUD-1-" + kGid + ".dat", "CLOUD-2-" + kGid + "-20-11-2026.dat",
          "CLOUD-2-" + kGid + "-18-11-2026.dat", "CLOUD-4-" + kGid + "-21-11-2026.dat"}) {
        EXPECT_NE(std::find(keep.begin(), keep.end(), name), keep.end()) << name;
        EXPECT_TRUE(fs::exists(a.cloud(name))) << name;
    }
    EXPECT_EQ(keep.size(), 5u);  // and the profile of the first start
    // Only photos stay in the picture folder.
    EXPECT_FALSE(fs::exists(pictures / "tmp.jpg"));
    EXPECT_FALSE(fs::exists(pictures / "scan.png"));
    EXPECT_TRUE(fs::exists(pictures / ("child-" + kGid + ".jpg")));
    EXPECT_TRUE(fs::exists(pictures / "short.jpg"));

    ASSERT_FALSE(steps.empty());
    EXPECT_EQ(steps.front(), (std::pair<int, std::string>{0, "Идет копирование данных профилей"}));
    EXPECT_EQ(steps.back(),
              (std::pair<int, std::string>{95, "Идет копирование данных пищевого дневника"}));
    // The feeding days count their own way from 15 again.
    EXPECT_NE(std::find(steps.begin(), steps.end(),
                        std::pair<int, std::string>{95, "Идет копирование данных дневника"}),
              steps.end());
}

TEST(CloudRecordsTest, FilesOfTheFormerLayoutComeInPlace) {
    Device a;
    Device b;
    a.addChild(kGid, "Маша");
    a.database.disconnectFromBase();
    fs::copy_file(a.database.path(), b.cloud("child.sqlite"));
    writeText(b.cloud("child5.jpg"), "портрет");
    writeText(b.cloud("broken.sqlite"), "не база");

    int upgrades = 0;
    const auto upgrade = [&] { ++upgrades; };
    EXPECT_FALSE(b.records.dataFromCloudOld(b.cloud("broken.sqlite"), "broken.sqlite", upgrade));
    EXPECT_EQ(b.query("select count(*) from child where childguid='" + kGid + "'"), "0\n");
    EXPECT_TRUE(b.records.dataFromCloudOld(b.cloud("child.sqlite"), "child.sqlite", upgrade));
    EXPECT_EQ(upgrades, 1);
    EXPECT_EQ(b.query("select chname from child where childguid='" + kGid + "'"), "Маша\n");
    EXPECT_TRUE(fs::exists(b.cloud("child.sqlite")));

    EXPECT_TRUE(b.records.dataFromCloudOld(b.cloud("child5.jpg"), "child5.jpg", upgrade));
    EXPECT_EQ(readText(b.documents("picture") /
                       ("child-" + core::newID2(core::idkind::profile, 5) + ".jpg")),
              "портрет");
    EXPECT_FALSE(b.records.dataFromCloudOld(b.cloud("nothing.jpg"), "nothing.jpg", upgrade));
}

}  // namespace
}  // namespace tilika::cloud
