#include "diary/profiles.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "core/ids.h"
#include "diary/profile_form.h"
#include "support/core_fixture.h"
#include "support/fake_image_codec.h"

namespace tilika::diary {
namespace {

namespace fs = std::filesystem;

class ProfilesTest : public test::CoreFixture {
protected:
    Profiles profiles{context};
    test::FakeImageCodec images;
    ProfileForm form{context, images};

    // Fills the form the way a parent would and saves it.
    void saveFromForm(std::optional<std::string> gid, const std::string& guidToSave,
                      const std::map<std::string, std::string>& values) {
        ProfileFormContent content = form.setupDialog(gid);
        for (CatalogueRow& row : content.rows) {
            if (auto it = values.find(row.field); it != values.end()) {
                row.source = it->second;
            }
        }
        SetupRecord record = form.setupArrayToDic(content.rows, guidToSave);
        EXPECT_TRUE(profiles.saveSetupData(saveflag::form, record, guidToSave));
    }

    static std::string readFile(const fs::path& file) {
        std::ifstream in(file, std::ios::binary);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }
};

TEST_F(ProfilesTest, ANewProfileIsCreatedReadAndListed) {
    const std::string lena = core::newID();
    SetupRecord fresh = profiles.loadSetupData(lena);
    EXPECT_TRUE(fresh.active.value_or(false));
    EXPECT_FALSE(fresh.sbirthdate);
    EXPECT_EQ(fresh.blood, core::newID2(core::idkind::listRow, 31));
    EXPECT_EQ(fresh.ves, "0");
    EXPECT_EQ(dates.dateToString(fresh.birthdate, core::formats::moment), "2026-11-22 00:00:00");
    EXPECT_FALSE(profiles.loadSetupData(std::nullopt).active);

    saveFromForm(std::nullopt, lena,
                 {{"birthdate2", "03.02.2025"},
                  {"name", "Лена"},
                  {"sex", "1"},
                  {"rost", "51"},
                  {"ves", "3.45"},
                  {"sbirthtime", "07:40"},
                  {"blood", core::newID2(core::idkind::listRow, 34)}});

    const SetupRecord stored = profiles.loadSetupData(lena);
    EXPECT_EQ(stored.name, "Лена");
    EXPECT_EQ(stored.sbirthdate, "2025-02-03");
    EXPECT_EQ(dates.dateToString(stored.birthdate, core::formats::day), "2025-02-03");
    EXPECT_EQ(stored.sex, 1);
    EXPECT_EQ(stored.rost, "51");
    EXPECT_EQ(stored.ves, "3.45");
    EXPECT_EQ(stored.sbirthtime, "07:40");
    EXPECT_FALSE(stored.birthtime);  // only a full moment text gives one
    EXPECT_EQ(stored.blood, core::newID2(core::idkind::listRow, 34));
    EXPECT_EQ(stored.allerg, "");
    EXPECT_FALSE(stored.documents);

    // The first profile of the template is born today, so Лена comes first.
    const auto list = profiles.profileList();
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0].chname, "Лена");
    EXPECT_EQ(dates.dateToString(list[0].sbirthdate, core::formats::day), "2025-02-03");
    const auto rows = profiles.loadProfils();
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].childguid, lena);
    EXPECT_EQ(rows[0].guid, lena);
    EXPECT_EQ(rows[0].sex, 1);
}

TEST_F(ProfilesTest, SavingFromTheFormKeepsTheAllergens) {
    const std::string gid = core::newID2(core::idkind::profile, 1);
    SetupRecord fromCloud = profiles.loadSetupData(gid);
    fromCloud.sbirthdate = "2026-11-22";
    fromCloud.allerg = core::newID2(core::idkind::listRow, 100);
    EXPECT_TRUE(profiles.saveSetupData(saveflag::cloud, fromCloud, gid));
    EXPECT_EQ(profiles.loadSetupData(gid).allerg, fromCloud.allerg);

    saveFromForm(gid, gid, {{"name", "Миша"}});
    const SetupRecord stored = profiles.loadSetupData(gid);
    EXPECT_EQ(stored.name, "Миша");
    EXPECT_EQ(stored.allerg, fromCloud.allerg);

    // A record from another device brings its own list, even an empty one.
    SetupRecord cleared = stored;
    cleared.allerg = "";
    EXPECT_TRUE(profiles.saveSetupData(saveflag::cloud, cleared, gid));
    EXPECT_EQ(profiles.loadSetupData(gid).allerg, "");
}

TEST_F(ProfilesTest, RemovalHidesTheChildButKeepsTheDiary) {
    const std::string gid = core::newID2(core::idkind::profile, 1);
    db().exec(
        "insert into childdata (type, value, sdat, childguid) values ('note', 'Первый день', "
        "'2026-11-22', '" +
        gid + "')");
    fs::create_directories(profiles.portraitPath(gid).parent_path());
    std::ofstream(profiles.portraitPath(gid)) << "PIC 4x4";

    SetupRecord removal = form.setupArrayToDic({}, gid);
    EXPECT_EQ(removal.active, false);
    EXPECT_TRUE(profiles.saveSetupData(saveflag::form, removal, gid));

    EXPECT_TRUE(profiles.profileList().empty());
    EXPECT_TRUE(profiles.childNames().empty());
    EXPECT_FALSE(fs::exists(profiles.portraitPath(gid)));
    EXPECT_EQ(queryText("select count(*) from childdata where childguid='" + gid + "'"), "1");
    EXPECT_EQ(queryText("select deleted from child where childguid='" + gid + "'"), "1");

    // Removing a child that was never saved changes nothing.
    SetupRecord nobody = form.setupArrayToDic({}, "NOBODY");
    EXPECT_TRUE(profiles.saveSetupData(saveflag::form, nobody, "NOBODY"));
    EXPECT_EQ(queryText("select count(*) from child"), "1");
}

TEST_F(ProfilesTest, AProfileThatCannotBeWrittenStaysAsItWas) {
    const std::string gid = core::newID2(core::idkind::profile, 1);
    saveFromForm(gid, gid, {{"name", "Миша"}});
    fs::create_directories(profiles.portraitPath(gid).parent_path());
    std::ofstream(profiles.portraitPath(gid)) << "PIC 4x4";
    const std::string children = queryText("select count(*) from child");

    db().exec("PRAGMA query_only = 1");
    SetupRecord renamed = profiles.loadSetupData(gid);
    renamed.name = "Михаил";
    const core::WriteResult saved = profiles.saveSetupData(saveflag::form, renamed, gid);
    EXPECT_EQ(saved.failure(), core::WriteFailure::readOnly);
    EXPECT_EQ(saved.message(),
              "Не удалось сохранить данные: папка с данными доступна только для чтения.");
    SetupRecord newborn = profiles.loadSetupData("NEW-CHILD");
    newborn.name = "Лена";
    EXPECT_FALSE(profiles.saveSetupData(saveflag::form, newborn, "NEW-CHILD"));
    // A removal that fails keeps the child's portrait too.
    EXPECT_FALSE(profiles.saveSetupData(saveflag::form, form.setupArrayToDic({}, gid), gid));
    EXPECT_TRUE(fs::exists(profiles.portraitPath(gid)));
    EXPECT_EQ(profiles.loadSetupData(gid).name, "Миша");
    EXPECT_EQ(queryText("select count(*) from child"), children);
    EXPECT_EQ(profiles.profileList().size(), 1u);

    db().exec("PRAGMA query_only = 0");
    EXPECT_TRUE(profiles.saveSetupData(saveflag::form, renamed, gid));
    EXPECT_EQ(profiles.loadSetupData(gid).name, "Михаил");
}

TEST_F(ProfilesTest, SavingAChildWithoutABirthDateNeverDoublesIt) {
    const std::string first = core::newID2(core::idkind::profile, 1);
    db().exec("update child set sbirthdate=NULL where chid=1");
    saveFromForm(first, first, {{"name", "Оля"}, {"birthdate2", "31.02.2024"}});
    saveFromForm(first, first, {{"name", "Оля"}});
    EXPECT_EQ(queryText("select count(*) from child where childguid='" + first + "'"), "1");
    EXPECT_EQ(profiles.loadSetupData(first).name, "Оля");

    // A date that can't be read keeps the stored one.
    saveFromForm(first, first, {{"birthdate2", "01.06.2025"}});
    saveFromForm(first, first, {{"birthdate2", "31.02.2024"}});
    EXPECT_EQ(profiles.loadSetupData(first).sbirthdate, "2025-06-01");
}

TEST_F(ProfilesTest, TheTemplateChildIsUntouchedUntilSavedOrJoined) {
    const std::string first = core::newID2(core::idkind::profile, 1);
    EXPECT_EQ(profiles.untouchedTemplateChild(), first);

    // A second child beside it: the parent has made their own.
    const std::string other = core::newID();
    saveFromForm(std::nullopt, other, {{"name", "Лена"}});
    EXPECT_FALSE(profiles.untouchedTemplateChild());
    EXPECT_TRUE(profiles.saveSetupData(saveflag::form, form.setupArrayToDic({}, other), other));
    EXPECT_EQ(profiles.untouchedTemplateChild(), first);

    // Saved once, even without a name, it is the parent's child.
    saveFromForm(first, first, {{"name", ""}});
    EXPECT_FALSE(profiles.untouchedTemplateChild());

    // A named child is never the template's, nor is another guid in its row.
    db().exec("update child set ves=NULL, rost=NULL where chid=1");
    EXPECT_EQ(profiles.untouchedTemplateChild(), first);
    db().exec("update child set chname='Оля' where chid=1");
    EXPECT_FALSE(profiles.untouchedTemplateChild());
    db().exec("update child set chname=NULL, childguid='" + other + "x' where chid=1");
    EXPECT_FALSE(profiles.untouchedTemplateChild());
}

TEST_F(ProfilesTest, NamesShorterThanTwoLettersReadAsNameless) {
    const std::string first = core::newID2(core::idkind::profile, 1);
    for (const auto& [name, shown] : std::vector<std::pair<std::string, std::string>>{
             {"Я", "Без имени"}, {"", "Без имени"}, {"Ян", "Ян"}, {"Z", "Без имени"}}) {
        saveFromForm(first, first, {{"name", name}});
        EXPECT_EQ(profiles.childNames().at(first), shown) << name;
    }
}

TEST_F(ProfilesTest, TheFormFollowsTheRecord) {
    const ProfileFormContent fresh = form.setupDialog(std::nullopt);
    EXPECT_EQ(fresh.caption, "Новая запись");
    EXPECT_EQ(fresh.parentFlag, formflag::newChild);
    std::vector<std::string> fields;
    for (const CatalogueRow& row : fresh.rows) {
        fields.push_back(row.field);
    }
    EXPECT_EQ(fields, (std::vector<std::string>{"birthdate2", "line", "name", "line", "", "sex",
                                                "line", "", "rost", "ves", "line", "sbirthtime",
                                                "line", "blood", "line", "photo"}));
    EXPECT_EQ(fresh.rows[0].source, "22.11.2026");
    EXPECT_EQ(fresh.rows[5].caption, "Мальчик|Девочка");
    EXPECT_EQ(fresh.rows[5].source, "0");
    EXPECT_EQ(fresh.rows[8].location, "first");
    EXPECT_EQ(fresh.rows[9].location, "second");
    EXPECT_EQ(fresh.rows[11].source, "");  // a new child's time of birth starts empty
    EXPECT_EQ(fresh.rows[13].listid, 4);
    EXPECT_EQ(fresh.rows[13].editdescr, "Укажите группу крови малыша");

    const std::string gid = core::newID2(core::idkind::profile, 1);
    std::ofstream(profiles.portraitPath(gid)) << "PIC 30x40";
    saveFromForm(gid, gid, {{"name", "Миша"}, {"sbirthtime", "06:00"}});
    const ProfileFormContent existing = form.setupDialog(gid);
    EXPECT_EQ(existing.caption, "Настройки");
    EXPECT_EQ(existing.parentFlag, formflag::existingChild);
    EXPECT_EQ(existing.gid, gid);
    ASSERT_EQ(existing.rows.size(), 19u);
    EXPECT_EQ(existing.rows[2].source, "Миша");
    EXPECT_EQ(existing.rows[11].source, "06:00");
    EXPECT_EQ(existing.rows[15].field, "documents");
    EXPECT_EQ(existing.rows[17].field, "photo");
    ASSERT_TRUE(existing.rows[17].image);
    EXPECT_EQ(existing.rows[17].image->width, 30);
    EXPECT_EQ(existing.rows[18].caption, "Удалить учетную запись");
    EXPECT_EQ(existing.rows[18].pic, "b-orangeB.png");
}

TEST_F(ProfilesTest, ThePhotoRowWritesOrDeletesThePortrait) {
    const std::string gid = core::newID2(core::idkind::profile, 1);
    ProfileFormContent content = form.setupDialog(gid);
    CatalogueRow& photo = content.rows[17];
    ASSERT_EQ(photo.field, "photo");

    photo.save = 1;
    photo.image = test::FakeImageCodec::blank(20, 10);
    form.setupArrayToDic(content.rows, gid);
    EXPECT_EQ(readFile(profiles.portraitPath(gid)), "JPEG 20x10 q=100");

    photo.save = 0;
    photo.image = test::FakeImageCodec::blank(1, 1);
    form.setupArrayToDic(content.rows, gid);
    EXPECT_EQ(readFile(profiles.portraitPath(gid)), "JPEG 20x10 q=100");

    photo.save = 2;
    form.setupArrayToDic(content.rows, gid);
    EXPECT_FALSE(fs::exists(profiles.portraitPath(gid)));

    // A guid from elsewhere never leads out of the pictures folder.
    photo.save = 1;
    photo.image = test::FakeImageCodec::blank(2, 2);
    form.setupArrayToDic(content.rows, "../../escape");
    EXPECT_TRUE(profiles.portraitPath("../../escape").empty());
    EXPECT_FALSE(fs::exists(folders.path(platform::SystemFolder::Document) / "escape.jpg"));
    EXPECT_FALSE(fs::exists(dir.path() / "child-...jpg"));
}

TEST_F(ProfilesTest, ReadsNothingWithoutADatabase) {
    database.disconnectFromBase();
    fs::remove(database.path());
    EXPECT_TRUE(profiles.profileList().empty());
    EXPECT_TRUE(profiles.childNames().empty());
    const SetupRecord record = profiles.loadSetupData("X");
    EXPECT_TRUE(record.active.value_or(false));
    EXPECT_FALSE(record.sbirthdate);
    SetupRecord save = record;
    EXPECT_EQ(profiles.saveSetupData(saveflag::form, save, "X").failure(),
              core::WriteFailure::noDatabase);
    EXPECT_FALSE(fs::exists(database.path()));
}

}  // namespace
}  // namespace tilika::diary
