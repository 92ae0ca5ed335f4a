#include "frame/view_controller.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/ids.h"
#include "core/settings_keys.h"
#include "development/passport_page.h"
#include "diary/note_edit.h"
#include "diary/profiles.h"
#include "frame/background_screen.h"
#include "frame/dic.h"
#include "frame/elided_label.h"
#include "frame/look.h"
#include "frame/main_menu.h"
#include "frame/menu_views.h"
#include "frame/password_view.h"
#include "frame/popup_panels.h"
#include "frame/session.h"
#include "frame/tab.h"
#include "frame/tilt_sensor.h"
#include "platform/clock.h"
#include "platform/settings_store.h"
#include "session/application.h"
#include "session/menu_blocks.h"
#include "support/session_world.h"

using namespace tilika;

class ViewControllerTest : public QObject, protected test::SessionWorld {
    Q_OBJECT

private slots:
    void init() { openFolder(); }
    void cleanup() { closeSession(); }

    void firstStartGreetsOnceAndLeadsToTheChildsSettings() {
        launch();
        QFrame* welcome = nullptr;
        QTRY_VERIFY((welcome = root_->findChild<QFrame*>(QStringLiteral("firstStart"))));
        QStringList texts;
        for (QLabel* label : welcome->findChildren<QLabel*>()) {
            texts << label->text();
        }
        QVERIFY(texts.contains(QStringLiteral("Добро пожаловать в программу")));
        const std::size_t blocks = menu()->childBlocks().size();
        buttonWithText(welcome, QStringLiteral("Настройки"))->click();
        frame::dic* form = root_->setupForm();
        QVERIFY(form != nullptr && form->isOpen());
        QVERIFY(!state().activeGid);

        // The form is that of the nameless child the program starts with:
        // saved, it names that child, with no "Без имени" left beside it.
        auto* name = widgetWithTag<QLineEdit>(form, static_cast<int>(form->posByField("name")));
        QVERIFY(name != nullptr);
        name->setText(QStringLiteral("Маша"));
        form->closeOk();
        QCOMPARE(menu()->childBlocks().size(), blocks);
        QVERIFY(blockNamed(QStringLiteral("Маша")) != nullptr);
        QVERIFY(blockNamed(QStringLiteral("Без имени")) == nullptr);
        const auto names = diary::Profiles(session_->application().context()).childNames();
        QCOMPARE(names.size(), std::size_t{1});
        QCOMPARE(names.begin()->second, std::string("Маша"));

        // The version has greeted; the next start goes straight to the menu.
        relaunch();
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
        QVERIFY(root_->findChild<QFrame*>(QStringLiteral("firstStart")) == nullptr);
        QVERIFY(root_->menuTab()->isVisible());
    }

    void settingsOfAWelcomeOnFilledDataAddAChild() {
        // A parent who has named their child and sees the welcome page again
        // (a new version) gets a new child's form from "Настройки".
        launch();
        QFrame* welcome = nullptr;
        QTRY_VERIFY((welcome = root_->findChild<QFrame*>(QStringLiteral("firstStart"))));
        diary::Profiles profiles(session_->application().context());
        const std::string first = profiles.childNames().begin()->first;
        diary::SetupRecord named = profiles.loadSetupData(first);
        named.name = "Оля";
        QVERIFY(profiles.saveSetupData(diary::saveflag::form, named, first));
        buttonWithText(welcome, QStringLiteral("Настройки"))->click();
        frame::dic* form = root_->setupForm();
        QVERIFY(form != nullptr && form->isOpen());
        auto* name = widgetWithTag<QLineEdit>(form, static_cast<int>(form->posByField("name")));
        QVERIFY(name != nullptr);
        QCOMPARE(name->text(), QString());
        name->setText(QStringLiteral("Петя"));
        form->closeOk();
        QCOMPARE(profiles.childNames().size(), std::size_t{2});
        QCOMPARE(profiles.childNames().at(first), std::string("Оля"));
    }

    void anAddedChildGetsItsOpenBlock() {
        launchPastWelcome();
        const std::size_t before = menu()->childBlocks().size();
        menu()->mainRow(31)->click();
        frame::dic* form = root_->setupForm();
        QVERIFY(form != nullptr && form->isOpen());
        const std::size_t nameRow = form->posByField("name");
        auto* name = widgetWithTag<QLineEdit>(form, static_cast<int>(nameRow));
        QVERIFY(name != nullptr);
        name->setText(QStringLiteral("Маша"));
        form->closeOk();

        QCOMPARE(menu()->childBlocks().size(), before + 1);
        frame::menu::ChildBlockView* masha = blockNamed(QStringLiteral("Маша"));
        QVERIFY(masha != nullptr);
        QCOMPARE(state().activeGid, std::optional(masha->guid()));
        QTRY_COMPARE(masha->height(), session::blockHeight(true, masha->rowViews().size()));
        save(root_->grab(), "menu_phone.png");

        // A tablet-sized window scales the layout and keeps the menu a column.
        root_->resize(768, 1024);
        QTRY_COMPARE(state().scaleX, 768.0 / 320.0);
        QCOMPARE(state().scaleY, 1024.0 / 480.0);
        QVERIFY(masha->width() <= 560);
        save(root_->grab(), "menu_tablet.png");

        // Its settings open its own form, and save under its own guid.
        const std::string gid = masha->guid();
        masha->rowViews().back()->click();
        QVERIFY(form->isOpen());
        name = widgetWithTag<QLineEdit>(form, static_cast<int>(form->posByField("name")));
        QCOMPARE(name->text(), QStringLiteral("Маша"));
        name->setText(QStringLiteral("Мария"));
        form->closeOk();
        QCOMPARE(menu()->childBlocks().size(), before + 1);
        frame::menu::ChildBlockView* maria = blockNamed(QStringLiteral("Мария"));
        QVERIFY(maria != nullptr);
        QCOMPARE(maria->guid(), gid);

        // A second tap on the photo closes the block and lets the child go.
        maria->circle()->click();
        QVERIFY(!state().activeGid);
        QTRY_VERIFY(!maria->rowViews().front()->isVisible());
        QCOMPARE(maria->height(), session::kClosedBlockHeight);
    }

    void aProfileThatCannotBeSavedStaysInItsForm() {
        launchPastWelcome();
        const std::size_t before = menu()->childBlocks().size();
        menu()->mainRow(31)->click();
        frame::dic* form = root_->setupForm();
        QVERIFY(form != nullptr && form->isOpen());
        auto* name = widgetWithTag<QLineEdit>(form, static_cast<int>(form->posByField("name")));
        QVERIFY(name != nullptr);
        name->setText(QStringLiteral("Маша"));
        auto* ok = form->findChild<QPushButton*>(QStringLiteral("ok"), Qt::FindDirectChildrenOnly);

        // The diary stops taking writes under the running program.
        SQLite::Database* db = session_->application().context().database.connectToBase();
        QVERIFY(db != nullptr);
        db->exec("PRAGMA query_only = 1");
        ok->click();
        QMessageBox* box = nullptr;
        QTRY_VERIFY((box = form->findChild<QMessageBox*>()) != nullptr && box->isVisible());
        QCOMPARE(box->text(), QStringLiteral("Не удалось сохранить данные: папка с данными "
                                             "доступна только для чтения."));
        QVERIFY(form->isOpen());
        QCOMPARE(name->text(), QStringLiteral("Маша"));
        QCOMPARE(menu()->childBlocks().size(), before);

        // The message is a window of its own, drawn over the form as the
        // parent sees it, narrowed to the phone's width where it is wider.
        QPixmap shot = root_->grab();
        {
            QPixmap message = box->grab();
            if (message.width() > shot.width() - 16) {
                message = message.scaledToWidth(shot.width() - 16, Qt::SmoothTransformation);
            }
            QPainter painter(&shot);
            painter.drawPixmap((shot.width() - message.width()) / 2,
                               (shot.height() - message.height()) / 2, message);
        }
        save(shot, "save_failed.png");
        box->close();

        // Writable again, the same OK saves what was typed.
        db->exec("PRAGMA query_only = 0");
        ok->click();
        QVERIFY(!form->isOpen());
        QCOMPARE(menu()->childBlocks().size(), before + 1);
        frame::menu::ChildBlockView* masha = blockNamed(QStringLiteral("Маша"));
        QVERIFY(masha != nullptr);
        QCOMPARE(state().activeGid, std::optional(masha->guid()));
    }

    void aSavedProfileGoesToTheCloudFolderOnlyWhenSynchronised() {
        const auto addChildInForm = [&](const QString& childName) {
            menu()->mainRow(31)->click();
            frame::dic* form = root_->setupForm();
            QVERIFY(form != nullptr && form->isOpen());
            widgetWithTag<QLineEdit>(form, static_cast<int>(form->posByField("name")))
                ->setText(childName);
            form->closeOk();
            QVERIFY(blockNamed(childName) != nullptr);
        };
        const auto settingsText = [&] {
            QFile file(dir_->path() + QStringLiteral("/Library/settings.json"));
            return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
        };
        launchPastWelcome();
        context().settings.setInt(core::keys::icloud, core::cloudmode::icloud);
        QVERIFY(context().settings.synchronize());
        relaunch();
        addChildInForm(QStringLiteral("Маша"));
        const QString masha =
            QStringLiteral("CLOUD-1-%1.dat")
                .arg(QString::fromStdString(blockNamed(QStringLiteral("Маша"))->guid()));
        QVERIFY(QFile::exists(dir_->path() + QStringLiteral("/Cloud/") + masha));
        QVERIFY(settingsText().contains(masha));

        context().settings.setInt(core::keys::icloud, core::cloudmode::off);
        QVERIFY(context().settings.synchronize());
        relaunch();
        addChildInForm(QStringLiteral("Петя"));
        QCOMPARE(QDir(dir_->path() + QStringLiteral("/Cloud")).entryList(QDir::Files),
                 QStringList{masha});
    }

    void settingSwitchesKeepTheirKeys() {
        launchPastWelcome();
        platform::SettingsStore& settings = session_->application().context().settings;
        QAbstractButton* tilt = menu()->mainRow(53);
        QVERIFY(tilt != nullptr && !tilt->isChecked());
        tilt->click();
        QVERIFY(settings.boolValue(core::keys::accelerate));
        QVERIFY(state().accelerate);

        menu()->mainRow(51)->click();
        QVERIFY(settings.boolValue(core::keys::emptyNote));
        QVERIFY(menu()->mainRow(56)->isChecked());  // on unless turned off
        menu()->mainRow(56)->click();
        QVERIFY(!settings.boolValue(core::keys::showRec));

        // The password's switch asks for a code first; given none, it goes
        // back off.
        QAbstractButton* pass = menu()->mainRow(52);
        pass->click();
        QVERIFY(root_->passDialog() != nullptr && root_->passDialog()->isVisible());
        QTest::keyClick(root_->passDialog(), Qt::Key_Backspace);
        QVERIFY(!root_->passDialog()->isVisible());
        QVERIFY(!pass->isChecked());
        QVERIFY(!settings.boolValue(core::keys::pass));

        relaunch();
        QVERIFY(menu()->mainRow(53)->isChecked());
        QVERIFY(menu()->mainRow(51)->isChecked());
        QVERIFY(!menu()->mainRow(56)->isChecked());
    }

    void pagesFollowInOrderAndSwipeBackToTheMenu() {
        launchPastWelcome();
        root_->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(root_));
        frame::menu::ChildBlockView* block = menu()->childBlocks().front();
        const std::string gid = block->guid();
        block->circle()->click();
        QCOMPARE(state().activeGid, std::optional(block->guid()));
        block->rowViews().front()->setFocus();
        QTest::keyClick(block->rowViews().front(), Qt::Key_Space);
        QCOMPARE(root_->gCurTab(), 1);
        QCOMPARE(root_->topHolder()->findChild<frame::Tab*>()->objectName(),
                 QStringLiteral("passportTab"));
        // The next page waits under it.
        QCOMPARE(root_->underHolder()->findChild<frame::Tab*>()->pageId(), 2);
        QTRY_VERIFY(!root_->isSliding());
        QVERIFY(qobject_cast<development::passport*>(root_->topHolder()->findChild<frame::Tab*>()));
        // The menu under a page takes neither taps nor the keyboard.
        QVERIFY(!menu()->isVisible());

        swipe(-150);
        QTRY_COMPARE(root_->gCurTab(), 2);
        QTRY_VERIFY(!root_->isSliding());
        // The key goes wherever the focus is in the window.
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
        QTRY_COMPARE(root_->gCurTab(), 3);
        QTRY_VERIFY(!root_->isSliding());

        // A short drag puts the page back.
        swipe(-60);
        QTRY_VERIFY(!root_->isSliding());
        QCOMPARE(root_->topHolder()->x(), 0);
        QCOMPARE(root_->gCurTab(), 3);

        // Nothing moves under a popup.
        root_->popups().popupMenu(QStringLiteral("Редактировать<td>pm-edit.png"), root_, {}, {});
        QVERIFY(state().popupShown);
        swipe(-150);
        QTest::keyClick(currentPage(), Qt::Key_Right);
        QCOMPARE(root_->gCurTab(), 3);
        root_->popups().ppCancel();
        QTRY_VERIFY(!state().popupShown);

        // The diary's row is the last page, and the first follows it.
        root_->openTab(9, gid);
        QCOMPARE(root_->gPage(), state().pageCount);
        QTest::keyClick(currentPage(), Qt::Key_Right);
        QTRY_COMPARE(root_->gCurTab(), 1);
        QTRY_VERIFY(!root_->isSliding());

        // A tilt moves once, and again only after coming back to level.
        state().accelerate = true;
        frame::TiltSensor* tilt = root_->tiltSensor();
        emit tilt->tilted(-0.7, false);
        QTRY_COMPARE(root_->gCurTab(), 2);
        QTRY_VERIFY(!root_->isSliding());
        emit tilt->tilted(-0.7, false);
        QTest::qWait(50);
        QCOMPARE(root_->gCurTab(), 2);

        // Escape and the mouse's back button lead to the menu too. Back on
        // the menu, it is drawn anew: the block is found again.
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QTRY_COMPARE(root_->gCurTab(), 0);
        QTRY_VERIFY(!root_->isSliding());
        menu()->childBlock(gid)->rowViews().front()->click();
        QTRY_VERIFY(!root_->isSliding());
        QTest::mouseClick(currentPage(), Qt::BackButton);
        QTRY_COMPARE(root_->gCurTab(), 0);
        QTRY_VERIFY(!root_->isSliding());

        menu()->childBlock(gid)->rowViews().front()->click();
        QTRY_VERIFY(!root_->isSliding());
        swipe(150);
        QTRY_COMPARE(root_->gCurTab(), 0);
        QTRY_VERIFY(!root_->topHolder()->isVisible());
        QCOMPARE(menu()->x(), 0);
        QVERIFY(menu()->isVisible());
    }

    void aDirtyMenuIsRedrawnOnTheNextTick() {
        launchPastWelcome();
        QTimer* tick = menu()->menuTimer();
        QCOMPARE(tick->interval(), 5000);
        QVERIFY(tick->isActive());

        diary::Profiles profiles(session_->application().context());
        const std::string gid = core::newID();
        diary::SetupRecord record = profiles.loadSetupData(gid);
        record.name = "Петя";
        QVERIFY(profiles.saveSetupData(diary::saveflag::cloud, record, gid));
        const std::size_t before = menu()->childBlocks().size();

        session_->application().context().settings.setInt(core::keys::oproscount, 3);

        QMetaObject::invokeMethod(tick, "timeout");
        QCOMPARE(menu()->childBlocks().size(), before);  // nothing said it changed
        state().menuDirty = true;
        QMetaObject::invokeMethod(tick, "timeout");
        QCOMPARE(menu()->childBlocks().size(), before + 1);
        QVERIFY(blockNamed(QStringLiteral("Петя")) != nullptr);
        QVERIFY(!state().menuDirty);
        // The polls not yet answered show on their row's badge.
        auto* polls = qobject_cast<frame::menu::RowView*>(menu()->mainRow(45));
        QCOMPARE(polls->badgeText(), QStringLiteral("3"));
    }

    void theChosenBackgroundStays() {
        launchPastWelcome();
        menu()->mainRow(42)->click();
        frame::background* chooser = root_->backgroundScreen();
        QVERIFY(chooser != nullptr && chooser->isVisible());
        state().pageDirty.fill(false);
        chooser->item(1)->click();
        QCOMPARE(state().backgroundId, 1LL);
        QVERIFY(state().lightTheme);
        QVERIFY(state().pageDirty[1]);
        auto* backdrop =
            static_cast<frame::BackdropView*>(frame::childWithTag(menu(), frame::kBackdropTag));
        QCOMPARE(backdrop->picture(), std::string("bg640-1.png"));
        save(root_->grab(), "background_chooser.png");
        QTest::keyClick(chooser, Qt::Key_Escape);
        QTRY_VERIFY(root_->backgroundScreen() == nullptr);

        relaunch();
        QCOMPARE(state().backgroundId, 1LL);
    }

    void aLongNameKeepsToItsPlace() {
        launchPastWelcome();
        QString words;
        while (words.size() < 300) {
            words += QStringLiteral("Анна Ивановна ");
        }
        words.truncate(300);
        const QString oneWord(300, QChar(u'Ж'));
        for (const QString& name : {words, oneWord, QStringLiteral("Маша")}) {
            addChild(name, "2025-03-14");
        }
        state().menuDirty = true;
        menu()->updateMenu();

        // On the card: two lines at most, the second cut short, above the
        // birth date; a short name as it is.
        for (const QString& name : {words, oneWord, QStringLiteral("Маша")}) {
            frame::menu::ChildBlockView* block = blockNamed(name);
            QVERIFY(block != nullptr);
            auto* label = qobject_cast<frame::ElidedLabel*>(
                block->findChild<QLabel*>(QStringLiteral("name")));
            QVERIFY(label != nullptr);
            QTRY_VERIFY(label->width() > 100);
            const QStringList lines = label->shownLines();
            if (name.size() < 10) {
                QCOMPARE(lines, QStringList{name});
                continue;
            }
            QCOMPARE(lines.size(), 2);
            QVERIFY(lines.back().endsWith(QChar(0x2026)));
            for (const QString& line : lines) {
                QVERIFY(label->fontMetrics().horizontalAdvance(line) <= label->width());
            }
            QVERIFY(label->heightForWidth(label->width()) <= label->height());
            QCOMPARE(inkLines(label), 2);
            const QLabel* birth = block->findChild<QLabel*>(QStringLiteral("birth"));
            QVERIFY(label->geometry().bottom() < birth->geometry().top());
            if (name == words) {
                save(block->grab(), "menu_long_name.png");
            }
        }

        // The birthday greeting names the child in full, and still keeps
        // within the phone's window, all its text shown.
        const core::Dates& dates = session_->application().context().dates;
        addChild(oneWord,
                 dates.dateToString(dates.addYears(dates.noTime(dates.now()), -1), "yyyy-MM-dd"));
        session_->application().checkAppStoreAlert();
        QMessageBox* box = nullptr;
        QTRY_VERIFY((box = root_->findChild<QMessageBox*>()) != nullptr && box->isVisible());
        QTRY_VERIFY(box->width() <= root_->width());
        auto* text = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"));
        QVERIFY(QString(text->text()).remove(QChar(0x200B)).contains(oneWord));
        QVERIFY(text->geometry().right() < box->width());
        QVERIFY(text->height() >= text->heightForWidth(text->width()));
        box->close();
    }

    void theMenuWorksFromTheKeyboard() {
        launchPastWelcome();
        for (const char* name : {"Аня", "Боря"}) {
            addChild(QString::fromUtf8(name), "2025-03-14");
        }
        state().activeGid.reset();
        state().menuDirty = true;
        menu()->updateMenu();
        root_->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(root_));
        root_->setFocus();

        // Tab goes round the rows and switches that show, each in turn
        // ringed and scrolled into view; Shift+Tab goes back the same way.
        std::vector<QWidget*> round;
        for (QWidget* focus = tab(false); focus != nullptr && round.size() < 100;
             focus = tab(false)) {
            if (!round.empty() && focus == round.front()) {
                break;
            }
            round.push_back(focus);
            QVERIFY2(menu()->isAncestorOf(focus) && focus->isVisible(),
                     qPrintable(focus->objectName()));
            QVERIFY(showsFocusRing(focus));
            QVERIFY(menuViewport()->rect().contains(
                QRect(focus->mapTo(menuViewport(), QPoint(0, 0)), focus->size())));
        }
        const auto visited = [&round](const QWidget* widget) {
            return std::find(round.begin(), round.end(), widget) != round.end();
        };
        QVERIFY(visited(menu()->childBlocks().front()->circle()));
        QVERIFY(visited(menu()->mainRow(31)));
        QVERIFY(visited(menu()->mainRow(42)));
        QVERIFY(visited(menu()->mainRow(53)));
        QVERIFY(!visited(menu()->childBlocks().front()->rowViews().front()));  // closed
        QVERIFY(!showsFocusRing(round.back()));
        save(root_->grab(), "menu_keyboard_focus.png");
        for (auto it = round.rbegin(); it != round.rend(); ++it) {
            QCOMPARE(tab(true), *it);
        }

        // Enter opens a block and then a row's page; the arrows and Escape
        // move between the pages and back as before.
        frame::menu::ChildBlockView* block = menu()->childBlocks().front();
        QCOMPARE(QApplication::focusWidget(), block->circle());
        QTest::keyClick(block->circle(), Qt::Key_Return);
        QCOMPARE(state().activeGid, std::optional(block->guid()));
        QTRY_VERIFY(block->rowViews().front()->isVisible());
        QCOMPARE(tab(false), block->rowViews().front());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(root_->gCurTab(), 1);
        QTRY_VERIFY(!root_->isSliding());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
        QTRY_COMPARE(root_->gCurTab(), 2);
        QTRY_VERIFY(!root_->isSliding());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QTRY_COMPARE(root_->gCurTab(), 0);
        QTRY_VERIFY(!root_->isSliding());

        // Space and Enter turn a switch.
        QAbstractButton* tilt = menu()->mainRow(53);
        tilt->setFocus(Qt::TabFocusReason);
        QTest::keyClick(tilt, Qt::Key_Space);
        QVERIFY(tilt->isChecked());
        QTest::keyClick(tilt, Qt::Key_Return);
        QVERIFY(!tilt->isChecked());

        // Over the menu, the chooser keeps the keys to itself.
        QAbstractButton* backgrounds = menu()->mainRow(42);
        backgrounds->setFocus(Qt::TabFocusReason);
        QTest::keyClick(backgrounds, Qt::Key_Return);
        frame::background* chooser = root_->backgroundScreen();
        QVERIFY(chooser != nullptr);
        for (int i = 0; i < 12; ++i) {
            QVERIFY(chooser->isAncestorOf(tab(i % 3 == 0)));
        }
        QAbstractButton* second = chooser->item(2);
        second->setFocus(Qt::TabFocusReason);
        QTest::keyClick(second, Qt::Key_Return);
        QCOMPARE(state().backgroundId, 2LL);
        QTest::keyClick(second, Qt::Key_Escape);
        QTRY_VERIFY(root_->backgroundScreen() == nullptr);
    }

    void sectionsNotYetBuiltSaySo() {
        launchPastWelcome();
        menu()->mainRow(40)->click();
        QMessageBox* box = root_->findChild<QMessageBox*>();
        QVERIFY(box != nullptr);
        QCOMPARE(box->text(), QStringLiteral("Этот раздел скоро появится в программе."));
        box->close();
    }

    void newNoteShortcutOpensTodayInTheDayEditor() {
        launchPastWelcome();
        addChild(QStringLiteral("Маша"));
        const std::string gid =
            diary::Profiles(session_->application().context()).loadProfils().back().childguid;
        session_->application().quickStart("NEWNOTE|" + gid);
        diary::noteEdit* editor = root_->dayEditor();
        QVERIFY(editor != nullptr && editor->isVisible());
        const core::Dates& dates = session_->application().dates();
        QCOMPARE(editor->captionLabel()->text(),
                 QString::fromStdString(dates.dateToString(dates.now(), core::formats::screenDay)));
        QCOMPARE(editor->editor().gid(), gid);
        // The pager keeps still under it, and Escape is the editor's.
        QTest::keyClick(editor, Qt::Key_Escape);
        QVERIFY(!editor->isVisible());
        QCOMPARE(state().openForms, 0);
    }

private:
    void relaunch() {
        session_.reset();
        launch();
    }

    // Tab, or Shift+Tab, where the focus is; the widget it goes to.
    static QWidget* tab(bool back) {
        QWidget* focus = QApplication::focusWidget();
        QTest::keyClick(focus, back ? Qt::Key_Backtab : Qt::Key_Tab,
                        back ? Qt::ShiftModifier : Qt::NoModifier);
        return QApplication::focusWidget();
    }

    // The lines of text a widget draws: runs of rows with ink, drawn
    // without any background.
    static int inkLines(QWidget* widget) {
        QImage image(widget->size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        widget->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        int lines = 0;
        bool inLine = false;
        for (int y = 0; y < image.height(); ++y) {
            bool ink = false;
            for (int x = 0; x < image.width() && !ink; ++x) {
                ink = qAlpha(image.pixel(x, y)) > 128;
            }
            lines += ink && !inLine ? 1 : 0;
            inLine = ink;
        }
        return lines;
    }

    // The focus ring's blue is in the widget's own drawing.
    static bool showsFocusRing(QWidget* widget) {
        const QImage image = widget->grab().toImage();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor c = image.pixelColor(x, y);
                if (std::abs(c.red() - 0x3d) < 24 && std::abs(c.green() - 0x8b) < 24 &&
                    std::abs(c.blue() - 0xd9) < 24) {
                    return true;
                }
            }
        }
        return false;
    }

    QWidget* menuViewport() {
        return menu()->findChild<QScrollArea*>(QStringLiteral("menuScroll"))->viewport();
    }

    core::AppState& state() { return session_->application().state(); }
    frame::mainMenu* menu() { return root_->menuTab(); }
    QWidget* currentPage() { return root_->topHolder()->findChild<frame::Tab*>(); }

    frame::menu::ChildBlockView* blockNamed(const QString& name) {
        for (frame::menu::ChildBlockView* block : menu()->childBlocks()) {
            if (block->findChild<QLabel*>(QStringLiteral("name"))->text() == name) {
                return block;
            }
        }
        return nullptr;
    }

    template <class T>
    static T* widgetWithTag(QWidget* parent, int wanted) {
        for (T* widget : parent->findChildren<T*>()) {
            if (frame::tag(widget) == wanted) {
                return widget;
            }
        }
        return nullptr;
    }

    static QAbstractButton* buttonWithText(QWidget* parent, const QString& text) {
        for (QAbstractButton* button : parent->findChildren<QAbstractButton*>()) {
            if (button->text() == text) {
                return button;
            }
        }
        return nullptr;
    }

    // A finger dragged sideways across the page on top.
    void swipe(int dx) {
        QWidget* target = currentPage();
        const QPoint start = target->rect().center();
        // The page moves under the finger; the finger's place on the screen
        // is what counts.
        const QPoint screenStart = target->mapToGlobal(start);
        const auto send = [&](QEvent::Type type, QPoint at, Qt::MouseButton button,
                              Qt::MouseButtons buttons) {
            QMouseEvent event(type, QPointF(at), QPointF(screenStart + at - start), button, buttons,
                              Qt::NoModifier);
            QApplication::sendEvent(target, &event);
        };
        send(QEvent::MouseButtonPress, start, Qt::LeftButton, Qt::LeftButton);
        for (int step = 1; step <= 5; ++step) {
            send(QEvent::MouseMove, start + QPoint(dx * step / 5, 0), Qt::NoButton, Qt::LeftButton);
        }
        send(QEvent::MouseButtonRelease, start + QPoint(dx, 0), Qt::LeftButton, Qt::NoButton);
    }
};

QTEST_MAIN(ViewControllerTest)
#include "view_controller_test.moc"
