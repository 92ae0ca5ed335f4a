#include <QAbstractButton>
#include <QDir>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include <filesystem>

#include "core/database.h"
#include "core/ids.h"
#include "diary/profiles.h"
#include "frame/main_menu.h"
#include "frame/restore_screen.h"
#include "frame/session.h"
#include "frame/view_controller.h"
#include "platform/clock.h"
#include "session/application.h"
#include "support/session_world.h"

using namespace tilika;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

// The start into a damaged diary, and the restore from its daily copies.
class RestoreTest : public QObject, protected test::SessionWorld {
    Q_OBJECT

private slots:
    void init() { openFolder(); }
    void cleanup() { closeSession(); }

    void aDiaryCutShortStartsIntoTheRestoreOfYesterdaysCopy() {
        // Yesterday the diary had Вера; today's first start copied it.
        launch();
        addChild("Вера");
        session_.reset();
        clock_.advance(24h);
        launch();
        const fs::path live = session_->application().database().path();
        const fs::path reserv = live.parent_path();
        session_.reset();
        fs::resize_file(live, 100);

        launch();
        frame::restoreScreen* screen = root_->restoreScreenShown();
        QVERIFY(screen != nullptr && screen->isVisible());
        QCOMPARE(caption(screen), QStringLiteral("База данных повреждена"));
        QVERIFY(screen->findChild<QAbstractButton*>(QStringLiteral("back")) == nullptr);
        // Nothing was made in the damaged diary's place.
        QVERIFY(!fs::exists(live));
        QVERIFY(session_->application().reserveCopies().front().file.filename() ==
                dayName(clock_.now() - 24h));

        const std::vector<QAbstractButton*> rows = screen->copyRows();
        QVERIFY(rows.size() >= 2);
        QVERIFY(rows.front()->isChecked());
        QVERIFY(rows.front()->accessibleName().contains(QStringLiteral("2 ребенка")));
        save(root_->grab(), "restore_from_copy.png");

        screen->restoreButton()->click();
        QTRY_VERIFY(root_->restoreScreenShown() == nullptr);
        QVERIFY(hasChild("Вера"));
        QVERIFY(!session_->application().baseDamaged());
        QCOMPARE(fs::file_size(reserv / "child.sqlite.damaged"), std::uintmax_t{100});
    }

    void theMenuOpensTheRestoreAndAnEmptyStartIsAskedFirst() {
        launch();
        addChild("Вера");
        // Past the welcome, as a user would be.
        QTRY_VERIFY(root_->findChild<QFrame*>(QStringLiteral("firstStart")) != nullptr);
        root_->findChild<QFrame*>(QStringLiteral("firstStart"))
            ->findChild<QPushButton*>(QStringLiteral("start"))
            ->click();
        QTRY_VERIFY(root_->findChild<QFrame*>(QStringLiteral("firstStart")) == nullptr);
        root_->menuTab()->updateMenu();

        QAbstractButton* row = root_->menuTab()->mainRow(43);
        QVERIFY(row != nullptr);
        row->click();
        frame::restoreScreen* screen = root_->restoreScreenShown();
        QVERIFY(screen != nullptr);
        QCOMPARE(caption(screen), QStringLiteral("Восстановление из копии"));

        screen->emptyButton()->click();
        QMessageBox* box = nullptr;
        QTRY_VERIFY((box = screen->findChild<QMessageBox*>()) != nullptr);
        buttonWithText(box, QStringLiteral("Нет"))->click();
        QVERIFY(hasChild("Вера"));

        screen->emptyButton()->click();
        QTRY_VERIFY((box = screen->findChild<QMessageBox*>()) != nullptr);
        buttonWithText(box, QStringLiteral("Да"))->click();
        QTRY_VERIFY(root_->restoreScreenShown() == nullptr);
        QVERIFY(!hasChild("Вера"));
        // The diary it replaced is kept.
        const fs::path live = session_->application().database().path();
        QVERIFY(fs::exists(live.parent_path() / "child.sqlite.replaced"));
    }

private:
    bool hasChild(const char* name) {
        for (const auto& child : diary::Profiles(session_->application().context()).profileList()) {
            if (child.chname == name) {
                return true;
            }
        }
        return false;
    }

    std::string dayName(core::Date day) const {
        return session_->application().dates().dateToString(day, "yyMMdd") + ".sqlite";
    }

    static QString caption(QWidget* screen) {
        auto* label = screen->findChild<QLabel*>(QStringLiteral("caption"));
        return label != nullptr ? label->text() : QString();
    }

    static QAbstractButton* buttonWithText(QWidget* parent, const QString& text) {
        for (QAbstractButton* button : parent->findChildren<QAbstractButton*>()) {
            if (button->text() == text) {
                return button;
            }
        }
        return nullptr;
    }
};

QTEST_MAIN(RestoreTest)
#include "restore_test.moc"
