#include <QLabel>
#include <QProgressBar>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

#include <filesystem>
#include <fstream>

#include "core/ids.h"
#include "core/settings_keys.h"
#include "frame/old_files_run.h"
#include "platform/folders.h"
#include "platform/settings_store.h"
#include "support/session_world.h"

using namespace tilika;
namespace fs = std::filesystem;

// The renames of old photos and scans when the program first shows itself.
class UpgradeFilesTest : public QObject, protected test::SessionWorld {
    Q_OBJECT

private slots:
    void init() { openFolder(); }
    void cleanup() { closeSession(); }

    void oldPhotosAreRenamedOnceAtTheFirstAppearance() {
        launch();
        const fs::path documents = this->documents();
        put(documents / "picture" / "1-100.jpg");
        put(documents / "documents" / "d-1-1.jpg");
        redo();
        session_.reset();

        launch();
        QTRY_VERIFY(context().settings.boolValue(core::keys::oldfiles));
        QVERIFY(fs::exists(documents / "picture" / (guid() + "-100.jpg")));
        QVERIFY(fs::exists(documents / "documents" / ("d-" + guid() + "-1.jpg")));
        QVERIFY(!fs::exists(documents / "picture" / "1-100.jpg"));

        // Once done, a later start leaves any name alone.
        put(documents / "picture" / "1-200.jpg");
        session_.reset();
        launch();
        QTest::qWait(300);
        QVERIFY(fs::exists(documents / "picture" / "1-200.jpg"));
    }

    void theWindowStaysAliveWhileTheFilesAreRenamed() {
        launchPastWelcome();
        const fs::path documents = this->documents();
        for (int n = 1; n <= 4; ++n) {
            put(documents / "picture" / (std::to_string(n) + "-100.jpg"));
        }
        redo();

        // The worker waits halfway until the test has seen the window.
        QSemaphore halfway;
        QSemaphore release;
        auto* run = frame::OldFilesRun::fromOldVersionFiles(root_, root_->popups(), context(),
                                                            [&](std::size_t done, std::size_t) {
                                                                if (done == 2) {
                                                                    halfway.release();
                                                                    release.tryAcquire(1, 10000);
                                                                }
                                                            });
        QVERIFY(run != nullptr);
        QSignalSpy finished(run, &frame::OldFilesRun::finished);
        QVERIFY(halfway.tryAcquire(1, 10000));

        int ticks = 0;
        QTimer ticker;
        connect(&ticker, &QTimer::timeout, this, [&] { ++ticks; });
        ticker.start(10);
        QProgressBar* bar = nullptr;
        QTRY_VERIFY((bar = root_->window()->findChild<QProgressBar*>()) != nullptr);
        QTRY_COMPARE(bar->value(), 500);
        QTRY_VERIFY(ticks >= 5);
        QStringList texts;
        for (const QLabel* label : bar->parentWidget()->findChildren<QLabel*>()) {
            texts << label->text();
        }
        QVERIFY(texts.contains(QStringLiteral("Подготовка к работе")));
        QVERIFY(texts.contains(QStringLiteral("Идет подготовка фотографий ...")));
        save(root_->grab(), "upgrade_progress.png");

        release.release();
        QTRY_COMPARE(finished.count(), 1);
        QTRY_VERIFY(root_->window()->findChild<QProgressBar*>() == nullptr);
        for (int n = 1; n <= 4; ++n) {
            QVERIFY(fs::exists(documents / "picture" / (guid(n) + "-100.jpg")));
        }
        QVERIFY(context().settings.boolValue(core::keys::oldfiles));
    }

private:
    fs::path documents() { return context().folders.path(platform::SystemFolder::Document); }
    static std::string guid(int chid = 1) { return core::newID2(core::idkind::profile, chid); }
    static void put(const fs::path& file) {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << file.filename().string();
    }
    // As if the renames had never run on this diary.
    void redo() {
        context().settings.remove(core::keys::oldfiles);
        context().settings.synchronize();
    }
};

QTEST_MAIN(UpgradeFilesTest)
#include "upgrade_files_test.moc"
