#include <QFile>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QToolButton>
#include <QtTest>

#include <filesystem>

#include "core/ids.h"
#include "diary/day_cloud.h"
#include "diary/day_rows.h"
#include "diary/note_edit.h"
#include "diary/photo_source.h"
#include "diary/profiles.h"
#include "diary/reference_lists.h"
#include "frame/popup_panels.h"
#include "platform/qt_image_codec.h"
#include "support/screen_world.h"

using namespace tilika;

namespace {

// The album is a file the test names; the camera is none, or a picture.
class TestPhotos final : public diary::PhotoSource {
public:
    bool hasCamera() const override { return camera.has_value(); }
    void takePhoto(QWidget* /*over*/, Done done) override { done(camera); }
    std::optional<QString> pickFile(QWidget* /*parent*/) override { return file; }

    std::optional<QImage> camera;
    std::optional<QString> file;
};

}  // namespace

class DayEditorTest : public QObject, protected test::ScreenWorld {
    Q_OBJECT

private slots:
    void init() {
        openWorld();
        lists_ = std::make_unique<diary::ReferenceLists>(*context_);
        gid_ = addChild("2026-01-10");
        alarms_ = 0;
        closed_ = 0;
    }

    void cleanup() {
        delete editor_;
        closeWorld();
    }

    void panelInAWideWindowCoverInANarrowOne() {
        put("2026-11-20", "doctor", "Спросить про прививку");
        put("2026-11-20", "temp",
            R"([{"time":"08:10","temp":"37.4"},{"time":"20:00","temp":"36.8"}])");
        put("2026-11-20", "sleep", R"([{"start":"13:00","end":"15:10","interval":"02:10"}])");
        put("2026-11-20", "ves", "7.250");
        window_->resize(1024, 768);
        QTest::qWait(20);
        open("2026-11-20", QRect(40, 300, 300, 60));
        QCOMPARE(editor_->width(), diary::noteEdit::kPanelWidth);
        QCOMPARE(editor_->height(), 768);
        QVERIFY(editor_->x() >= 340);
        QCOMPARE(editor_->captionLabel()->text(), QStringLiteral("20.11.2026"));
        // The pages keep still while the editor is up.
        QCOMPARE(state_->openForms, 1);
        test::ScreenWorld::saveScreenshot(window_->grab().toImage(), "diary_tablet_editor.png");
        editor_->close();
        QCOMPARE(state_->openForms, 0);

        window_->resize(360, 640);
        QTest::qWait(20);
        open("2026-11-20");
        QCOMPARE(editor_->geometry(), window_->rect());
        test::ScreenWorld::saveScreenshot(window_->grab().toImage(), "day_editor.png");
    }

    void escapeSavesAndCloses() {
        open("2026-11-20");
        QVERIFY(!editor_->editor().needSave());
        editor_->editor().editData(indexOf("note"), "записали");
        QTest::keyClick(editor_, Qt::Key_Escape);
        QVERIFY(!editor_->isVisible());
        QCOMPARE(stored("2026-11-20", "note"), std::string("записали"));
        QCOMPARE(closed_, 1);
        QCOMPARE(alarms_, 1);
        QVERIFY(state_->pageDirty[9]);

        // Opening and leaving a day untouched changes nothing, the sliders
        // that start from the last measure included.
        put("2026-11-01", "ves", "5.100");
        state_->pageDirty.fill(false);
        open("2026-11-21");
        QTest::qWait(50);
        editor_->findChild<QToolButton*>(QStringLiteral("back"))->click();
        QCOMPARE(stored("2026-11-21", "ves"), std::string());
        QVERIFY(!state_->pageDirty[9]);
    }

    void aDayThatCannotBeSavedStaysOpen() {
        open("2026-11-20");
        editor_->editor().editData(indexOf("note"), "важное");
        database_->connectToBase()->exec("PRAGMA query_only = 1");
        QTest::keyClick(editor_, Qt::Key_Escape);
        QVERIFY(editor_->isVisible());
        QMessageBox* box = nullptr;
        QTRY_VERIFY((box = window_->findChild<QMessageBox*>()) != nullptr && box->isVisible());
        QVERIFY(box->text().startsWith(QStringLiteral("Не удалось сохранить данные")));
        QCOMPARE(closed_, 0);
        box->close();
        database_->connectToBase()->exec("PRAGMA query_only = 0");
        QVERIFY(editor_->close());
        QCOMPARE(stored("2026-11-20", "note"), std::string("важное"));
    }

    void closingTheWindowSaves() {
        open("2026-11-20");
        editor_->editor().editData(indexOf("smile"), "смеялась");
        window_->close();
        QCOMPARE(stored("2026-11-20", "smile"), std::string("смеялась"));
    }

    void withoutACameraTheMenuSaysSo() {
        diary::SystemPhotoSource system;
        makeEditor(system);
        editor_->open(*dates_.dateFromString("2026-11-20"), gid_, {}, std::nullopt);
        if (system.hasCamera()) {
            QSKIP("this machine has a camera");
        }
        choosePhotoItem(QStringLiteral("Новая фотография"));
        QMessageBox* box = nullptr;
        QTRY_VERIFY((box = window_->findChild<QMessageBox*>()) != nullptr && box->isVisible());
        QCOMPARE(box->text(), QStringLiteral("Ваше устройство не умеет делать фотографии"));
        QVERIFY(!editor_->editor().needSave());
    }

    void photoFromTheAlbumIsSavedAndBadFilesAreRefused() {
        const QString bad = QString::fromStdString((folderPath() / "not-a-picture.jpg").string());
        QFile text(bad);
        QVERIFY(text.open(QIODevice::WriteOnly));
        text.write("\xff\xd8\xff\xe0 truncated");
        text.close();
        photos_.file = bad;
        open("2026-11-20");
        choosePhotoItem(QStringLiteral("Из альбома"));
        QMessageBox* box = nullptr;
        QTRY_VERIFY((box = window_->findChild<QMessageBox*>()) != nullptr && box->isVisible());
        QVERIFY(!editor_->editor().needSave());
        box->close();
        QTRY_VERIFY(window_->findChild<QMessageBox*>() == nullptr);

        const QString good = QString::fromStdString((folderPath() / "photo.png").string());
        QImage image(3000, 2000, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        QVERIFY(image.save(good));
        photos_.file = good;
        choosePhotoItem(QStringLiteral("Из альбома"));
        QTRY_VERIFY(editor_->editor().needSave());
        // Fitted as any photo of the program is.
        QCOMPARE(editor_->editor().newPhoto()->width, 2048);
        QVERIFY(editor_->findChild<QLabel*>(QStringLiteral("photo")) != nullptr);
        QVERIFY(editor_->close());

        const auto documents = folders_->path(platform::SystemFolder::Document);
        const QImage thumbnail(QString::fromStdString(
            (documents / "picture-s" / (gid_ + "-20-11-2026-s.jpg")).string()));
        QCOMPARE(thumbnail.size(), QSize(160, 107));
        QVERIFY(std::filesystem::exists(documents / "picture" / (gid_ + "-20-11-2026.jpg")));
    }

    void stepsFromDayToDay() {
        open("2026-11-20");
        editor_->editor().editData(indexOf("note"), "пятница");
        editor_->findChild<QToolButton*>(QStringLiteral("nextDay"))->click();
        QCOMPARE(editor_->captionLabel()->text(), QStringLiteral("21.11.2026"));
        QCOMPARE(stored("2026-11-20", "note"), std::string("пятница"));
        // A step is no leaving: the pages are marked only on close.
        QVERIFY(!state_->pageDirty[9]);
        editor_->findChild<QToolButton*>(QStringLiteral("prevDay"))->click();
        editor_->findChild<QToolButton*>(QStringLiteral("prevDay"))->click();
        QCOMPARE(editor_->captionLabel()->text(), QStringLiteral("19.11.2026"));
        QVERIFY(editor_->isVisible());
    }

private:
    void makeEditor(diary::PhotoSource& photos) {
        delete editor_;
        editor_ = new diary::noteEdit(
            diary::EditorServices{
                *context_,
                frame::FormServices{*state_, dates_, *popups_, qtPictures_, lists_.get()}, images_,
                cloud_, photos, [](const std::string&) {}, [this] { ++alarms_; }},
            window_.get());
    }

    void open(const char* day, std::optional<QRect> anchor = std::nullopt) {
        if (editor_ == nullptr) {
            makeEditor(photos_);
        }
        editor_->open(
            *dates_.dateFromString(day), gid_, [this] { ++closed_; }, anchor);
        QVERIFY(editor_->isVisible());
    }

    std::size_t indexOf(std::string_view field) const {
        const auto& rows = editor_->editor().noteData();
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (rows[i].field == field) {
                return i;
            }
        }
        return rows.size();
    }

    void put(const char* day, const char* type, const char* value) {
        putValue(gid_, day, type, value);
    }
    std::string stored(const char* day, const char* type) { return storedValue(gid_, day, type); }

    std::filesystem::path folderPath() const { return dir_->path().toStdString(); }

    void choosePhotoItem(const QString& caption) {
        editor_->photoClick();
        QToolButton* item = nullptr;
        QVERIFY(popups_->panel() != nullptr);
        for (auto* button : popups_->panel()->findChildren<QToolButton*>()) {
            if (button->text() == caption) {
                item = button;
            }
        }
        QVERIFY(item != nullptr);
        item->click();
    }

    std::unique_ptr<diary::ReferenceLists> lists_;
    platform::QtImageCodec images_;
    diary::NoCloud cloud_;
    TestPhotos photos_;
    QPointer<diary::noteEdit> editor_;
    std::string gid_;
    int alarms_ = 0;
    int closed_ = 0;
};

QTEST_MAIN(DayEditorTest)
#include "day_editor_test.moc"
