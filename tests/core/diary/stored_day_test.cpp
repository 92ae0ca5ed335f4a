// A day of two children as the screens will read it: profiles made and
// listed, a value of every catalogue kind stored, and each read back into the
// text the diary shows.

#include <gtest/gtest.h>

#include "core/ids.h"
#include "diary/diary_store.h"
#include "diary/profiles.h"
#include "diary/reference_lists.h"
#include "support/core_fixture.h"

namespace tilika::diary {
namespace {

class StoredDayTest : public test::CoreFixture {
protected:
    Profiles profiles{context};

    std::string addChild(const std::string& name, const std::string& birth) {
        const std::string gid = core::newID();
        SetupRecord record = profiles.loadSetupData(gid);
        record.name = name;
        record.sbirthdate = birth;
        EXPECT_TRUE(profiles.saveSetupData(saveflag::cloud, record, gid));
        return gid;
    }

    void store(const std::string& gid, const std::string& type, const std::string& value) {
        SQLite::Statement insert(db(),
                                 "insert into childdata (type, value, sdat, childguid) "
                                 "values (?, ?, '2026-11-22', ?)");
        insert.bind(1, type);
        insert.bind(2, value);
        insert.bind(3, gid);
        insert.exec();
    }

    // A row's reading as one line: its text, or its rows joined.
    static std::string shownText(const CatalogueRow& row) {
        if (row.multiarray.empty()) {
            return row.text;
        }
        std::string text;
        for (const MultiRow& r : row.multiarray) {
            text += (text.empty() ? "" : "; ") + (r.text.empty() ? r.time + " " + r.cap : r.text);
        }
        return text;
    }
};

TEST_F(StoredDayTest, EveryKindOfEntryReadsBack) {
    const std::string lena = addChild("Лена", "2025-02-03");
    const std::string misha = addChild("Миша", "2023-06-10");
    const auto children = profiles.profileList();
    ASSERT_EQ(children.size(), 3u);  // with the first profile of a new installation
    EXPECT_EQ(children[0].chname, "Миша");
    EXPECT_EQ(children[1].chname, "Лена");
    EXPECT_EQ(profiles.childNames().at(lena), "Лена");

    const std::map<std::string, std::string> values{
        {"achive",
         core::newID2(core::idkind::listRow, 1) + "<tr>" + core::newID2(core::idkind::listRow, 15)},
        {"health", "43"},  // an old numeric id still reads
        {"doctor", "Спросить про витамин D"},
        {"priv", "АКДС, вторая"},
        {"pills", "Нурофен 1/2 таблетки"},
        {"bolezn", core::newID2(core::idkind::listRow, 65)},
        {"temp", R"([{"time":"08:00","temp":"37.2"},{"time":"20:00","temp":"38.1"}])"},
        {"ves", "9.450"},
        {"rost", "74.5"},
        {"smile", "Смеялся над котом"},
        {"alarm", R"([{"time":"12:00","temp":"Дать сироп"}])"},
        {"biosize", R"({"bio1":"45","bio5":"12.5"})"},
        {"tooth", "5<tr>15"},
        {"analizy", R"([{"tp":"1","captiontype":")" + core::newID2(core::idkind::seededRow, 33) +
                        R"(","file":"a-1.jpg","tag":"1"}])"},
        {"sleep", R"([{"start":"13:00","end":"15:00","interval":"02:00"}])"},
        {"walk", R"([{"start":"10:00","end":"11:30","interval":"01:30"}])"},
        {"note", "Первый раз в бассейне"},
    };
    for (const auto& [type, value] : values) {
        store(lena, type, value);
    }
    store(misha, "note", "Другой ребенок");

    DiaryStore store(context, courses);
    std::vector<ListRow> list;
    store.lists().loadConstList(list, cotype::all, "");
    std::vector<CatalogueRow> catalogue;
    store.noteStructToTodayNote(store.todayNoteForDay(*dates.dateFromString("2026-11-22"), lena),
                                catalogue, list);

    std::map<std::string, std::string> shown;
    for (const CatalogueRow& entry : catalogue) {
        if (entry.tp != tp::photo) {
            shown[entry.field] = shownText(entry);
        }
    }
    EXPECT_EQ(shown.size(), 17u);
    EXPECT_EQ(shown["achive"], "Первая улыбка\nПервые шаги");
    EXPECT_EQ(shown["health"], "Кашель");
    EXPECT_EQ(shown["bolezn"], "Ветряная оспа (ветрянка)");
    EXPECT_EQ(shown["doctor"], "Спросить про витамин D");
    EXPECT_EQ(shown["temp"], "08:00 37.2; 20:00 38.1");
    EXPECT_EQ(shown["alarm"], "12:00 Дать сироп");
    EXPECT_EQ(shown["ves"], "9.450");
    EXPECT_EQ(shown["rost"], "74.5");
    EXPECT_EQ(shown["biosize"], "Окружность головы: 45\nДлина стопы: 12.5");
    EXPECT_EQ(shown["tooth"],
              "Прорезался верхний центральный резец (51)\n"
              "Прорезался нижний центральный резец (81)");
    EXPECT_EQ(shown["analizy"], "Общий анализ мочи");
    EXPECT_EQ(shown["sleep"], "с 13:00 до 15:00 (02:00)");
    EXPECT_EQ(shown["walk"], "с 10:00 до 11:30 (01:30)");
    EXPECT_EQ(shown["pills"], "Нурофен 1/2 таблетки");  // an old plain text stays as it is
    EXPECT_EQ(shown["note"], "Первый раз в бассейне");
    EXPECT_EQ(store.todayNoteForDay(*dates.dateFromString("2026-11-22"), misha).value("note"),
              "Другой ребенок");
}

}  // namespace
}  // namespace tilika::diary
