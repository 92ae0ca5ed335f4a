#include <gtest/gtest.h>

#include "core/app_state.h"
#include "core/settings_file.h"
#include "core/settings_keys.h"
#include "frame/backgrounds.h"
#include "frame/pictures.h"
#include "frame/translation.h"
#include "platform/settings_store.h"
#include "support/temp_dir.h"

namespace tilika::frame {
namespace {

using platform::Color;

TEST(BackgroundsTest, EachBackgroundGivesItsLook) {
    struct Row {
        long long id;
        bool light;
        bool darkBars;
        Color text;
        Color accent;
    };
    const Color black{0, 0, 0};
    const Color white{1, 1, 1};
    const Color gold{1, 0.812, 0.255};
    const Color red{0.7, 0, 0};
    const Row rows[] = {
        {-2, true, true, black, red},   {-1, false, false, white, gold},
        {1, true, false, black, white}, {2, false, false, white, gold},
        {3, false, false, white, gold}, {4, true, true, black, red},
        {5, false, false, white, gold}, {6, false, false, white, gold},
        {7, true, true, black, red},    {8, true, true, black, red},
        {9, true, true, black, red},
    };
    for (const auto& row : rows) {
        core::AppState state;
        state.backgroundId = row.id;
        const Backdrop backdrop = correctBackground(state, false);
        EXPECT_EQ(state.lightTheme, row.light) << row.id;
        EXPECT_EQ(state.darkBars, row.darkBars) << row.id;
        EXPECT_EQ(state.textColor, row.text) << row.id;
        EXPECT_EQ(state.accentColor, row.accent) << row.id;
        if (row.id > 0) {
            EXPECT_EQ(backdrop.picture, "bg640-" + std::to_string(row.id) + ".png");
            EXPECT_FALSE(backdrop.plain);
        } else {
            EXPECT_TRUE(backdrop.picture.empty());
            EXPECT_EQ(backdrop.plain, row.id == -1 ? black : (Color{0.93, 0.93, 0.93}));
        }
    }

    core::AppState state;
    state.backgroundId = 3;
    EXPECT_EQ(correctBackground(state, true).picture, "bd640-3.png");
    EXPECT_EQ(state.hiliteColor, (Color{0.706, 0.471, 0, 1}));
    EXPECT_EQ(state.barColor, (Color{0.278, 0.557, 0.098}));
    // A background missing from a table leaves that colour as it was.
    state.backgroundId = 7;
    correctBackground(state, false);
    EXPECT_EQ(state.hiliteColor, (Color{0.706, 0.471, 0, 1}));
    EXPECT_EQ(state.barColor, (Color{0.537, 0.11, 0.11}));
    state.backgroundId = 0;
    state.lightTheme = false;
    state.textColor = Color{0.5, 0.5, 0.5};
    EXPECT_TRUE(correctBackground(state, false).picture.empty());
    EXPECT_FALSE(state.lightTheme);
    EXPECT_EQ(state.textColor, (Color{0.5, 0.5, 0.5}));
}

TEST(BackgroundsTest, ChoosingStoresAndMarksEverythingForRedrawing) {
    test::TempDir dir;
    core::JsonSettingsStore settings(dir.path() / "settings.json");
    core::AppState state;
    ASSERT_EQ(backgroundItems().size(), 9u);
    EXPECT_EQ(backgroundItems()[8].file, "bs-9.png");
    EXPECT_EQ(backgroundItems()[8].id, "9");

    EXPECT_TRUE(changeBackground(state, settings, 8));
    EXPECT_EQ(state.backgroundId, 8);
    EXPECT_TRUE(state.lightTheme);
    EXPECT_TRUE(state.menuDirty);
    EXPECT_TRUE(state.pageDirty[5]);
    core::JsonSettingsStore reread(dir.path() / "settings.json");
    EXPECT_EQ(reread.intValue(core::keys::backgroundId), 8);
}

TEST(BackgroundsTest, ColourHelpers) {
    EXPECT_FALSE(darkerColor({0.5, 0.5, 0.5}, 0));
    const auto darker = darkerColor({0.5, 0.2, 0.9, 0.4}, 0.3);
    ASSERT_TRUE(darker);
    EXPECT_NEAR(darker->r, 0.2, 1e-9);
    EXPECT_EQ(darker->g, 0);
    EXPECT_NEAR(darker->b, 0.6, 1e-9);
    EXPECT_EQ(darker->a, 0.4);
    EXPECT_EQ(darkerColor({0.5, 0.9, 0}, -0.3), (Color{0.8, 1, 0.3}));

    platform::Image image{2, 1, {255, 0, 0, 255, 200, 100, 50, 128}};
    EXPECT_EQ(getRGBFromImage(image, 0, 0), (Color{1, 0, 0, 1}));
    const auto faint = getRGBFromImage(image, 1, 0);
    ASSERT_TRUE(faint);
    EXPECT_NEAR(faint->r, 200 / 255.0, 0.01);
    EXPECT_NEAR(faint->a, 128 / 255.0, 1e-9);
    EXPECT_FALSE(getRGBFromImage(image, 2, 0));
    EXPECT_FALSE(getRGBFromImage(image, 0, -1));
}

TEST(TranslationTest, LanguagesFromTheBundleDatabase) {
    const auto database = test::resourceDir() / "translate.sqlite";
    core::AppState state;
    prepareTranslate(state, database);
    EXPECT_TRUE(state.trandic.empty());
    EXPECT_EQ(translate(state, "Дневник"), "Дневник");

    state.langid = language::german;
    prepareTranslate(state, database);
    EXPECT_EQ(translate(state, "Дневник"), "Tagebuch");
    EXPECT_EQ(translate(state, "Здесь пока пусто.\nЗагляните позже."),
              "Hier ist noch nichts.\nSchauen Sie später vorbei.");
    EXPECT_EQ(translate(state, "Вес"), "Вес");  // no German text for it
    EXPECT_EQ(translate(state, "Нет такого"), "Нет такого");

    state.langid = language::french;
    prepareTranslate(state, database);
    EXPECT_EQ(translate(state, "Вес"), "Poids");
    EXPECT_EQ(translate(state, "Рост"), "Рост");

    prepareTranslate(state, test::resourceDir() / "no-such.sqlite");
    EXPECT_EQ(translate(state, "Вес"), "Вес");
}

TEST(PicturesTest, TheBundledSetHasEveryVariant) {
    const Pictures pictures(test::resourceDir() / "pictures");
    for (const char* name :
         {"ne-achiv128.png", "ne-health128.png",  "ne-nurse.png",     "ne-vaccin.png",
          "ne-pills128.png", "ne-doctor.png",     "ne-temp128.png",   "ne-weight.png",
          "ne-ruler.png",    "ne-smileicon.png",  "ne-alarm128.png",  "ne-childsize.png",
          "ne-tooth.png",    "ne-analizy128.png", "ne-sleep.png",     "ne-walk.png",
          "ne-notepad.png",  "text-next.png",     "etc-up2.png",      "etc-down2.png",
          "text-doc.png",    "pills1.png",        "pills7.png",       "size.png",
          "num1.png",        "num5.png",          "clear-photo2.png", "add-row.png",
          "stopwatch.png",   "pm-photo.png",      "pm-image.png"}) {
        EXPECT_TRUE(pictures.exists(name)) << name;
        EXPECT_EQ(pictures.themed(name, true), std::string("b-") + name);
        EXPECT_EQ(pictures.colored(name, true), std::string("c-") + name);
        EXPECT_EQ(pictures.themed(name, false), name);
    }
    for (const char* name : {"checkgreen.png", "checkempty.png", "grayB.png"}) {
        EXPECT_TRUE(pictures.exists(name)) << name;
        EXPECT_EQ(pictures.themed(name, true), name);  // no variant: the plain one
        EXPECT_EQ(pictures.file(std::string("b-") + name), pictures.file(name));
    }
    // The teeth chart: the jaw and a mark for each of the 20 teeth.
    EXPECT_TRUE(pictures.exists("tooth-m.png"));
    for (int n = 1; n <= 20; ++n) {
        EXPECT_TRUE(pictures.exists("tooth-" + std::to_string(n) + ".png")) << n;
    }
    for (int i = 1; i <= kBackgroundCount; ++i) {
        for (const char* form : {"bg640-", "bd640-", "bs-"}) {
            EXPECT_TRUE(pictures.exists(form + std::to_string(i) + ".png")) << form << i;
        }
    }
    EXPECT_EQ(pictures.naturalSize("ne-tooth.png"), (platform::Size{64, 64}));
    EXPECT_FALSE(pictures.exists("no-such.png"));
    EXPECT_FALSE(pictures.exists(""));
    EXPECT_EQ(pictures.colored("no-such.png", true), "no-such.png");
}

}  // namespace
}  // namespace tilika::frame
