#include <QAbstractButton>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QToolButton>
#include <QtTest>
#include <SQLiteCpp/Statement.h>

#include <algorithm>

#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "development/passport_page.h"
#include "diary/day_rows.h"
#include "diary/profiles.h"
#include "frame/dic.h"
#include "frame/look.h"
#include "frame/popup_panels.h"
#include "platform/recording_canvas.h"
#include "support/session_world.h"

namespace tilika {

using development::passport;

class PassportTest : public QObject, public test::SessionWorld {
    Q_OBJECT

private slots:
    void init() { openFolder(); }
    void cleanup() { closeSession(); }

    void showsTheFourCardsWithMeasuresAndSizes() {
        launchPastWelcome();
        // Nine months old on the day the tests' clock stands at.
        const std::string gid = addChild(QStringLiteral("Аня"), "2026-02-15");
        put(gid, "2026-11-20", "rost", "74");
        put(gid, "2026-10-01", "ves", "8.9");
        passport* page = open(gid);
        QCOMPARE(page->objectName(), QStringLiteral("passportTab"));

        const QStringList main = texts(page, development::card::main);
        for (const char* text :
             {"Возраст", "9 месяцев и 7 дней или \n40 недель", "Биометрические данные", "74.0",
              "8.900", "меньше месяца", "Группа крови", "Карта прививок", "Посмотреть карту"}) {
            QVERIFY2(main.contains(QString::fromUtf8(text)), text);
        }
        // A profile with a plain birth day has no birth block.
        QVERIFY(!main.contains(QStringLiteral("Данные при рождении")));
        QVERIFY(texts(page, development::card::illnesses)
                    .contains(QStringLiteral("В этот раздел попадают серьезные болезни, которые "
                                             "Вы заносите в дневник")));
        const QStringList sizes = texts(page, development::card::sizes);
        for (const char* text :
             {"Россия", "22", "Евросоюз", "74", "Англия", "9 (month)", "США", "9-12M"}) {
            QVERIFY2(sizes.contains(QString::fromUtf8(text)), text);
        }

        // The cards are stacked as tall as they draw, one under another.
        int bottom = 0;
        for (int tp = 1; tp <= 4; ++tp) {
            development::PassportCardBody* body = page->card(tp);
            QVERIFY(body->height() >= body->heightForWidth(body->width()));
            const QPoint top = body->mapTo(page, QPoint(0, 0));
            QVERIFY(top.y() > bottom);
            bottom = top.y() + body->height();
        }
        save(page->grab(), "passport.png");
        auto* scroll = page->findChild<QScrollArea*>();
        scroll->ensureWidgetVisible(page->card(development::card::sizes), 0, 0);
        QTest::qWait(20);
        save(page->grab(), "passport-sizes.png");
    }

    void allergensAreTickedSavedAndShown() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2025-03-20");
        const std::string other = addChild(QStringLiteral("Боря"), "2024-01-10");
        passport* page = open(gid);
        QVERIFY(texts(page, development::card::allergens)
                    .contains(QStringLiteral("Занесите в этот раздел аллергены, которые вызывают "
                                             "у ребенка аллергические реакции нажав на кнопку "
                                             "редактирования")));

        click(page, "edit13");
        frame::dic* form = nullptr;
        QTRY_VERIFY((form = page->allergenForm()) != nullptr);
        QAbstractButton* egg = nullptr;
        for (auto* item : form->findChildren<QAbstractButton*>(QStringLiteral("listItem"))) {
            const auto labels = item->findChildren<QLabel*>();
            if (std::any_of(labels.begin(), labels.end(), [](const QLabel* label) {
                    return label->text() == QStringLiteral("Куриное яйцо");
                })) {
                egg = item;
            }
        }
        QVERIFY(egg != nullptr);
        egg->click();
        form->findChild<QPushButton*>(QStringLiteral("ok"), Qt::FindDirectChildrenOnly)->click();
        QTRY_VERIFY(page->allergenForm() == nullptr);

        QCOMPARE(texts(page, development::card::allergens),
                 QStringList({QStringLiteral("Куриное яйцо")}));
        diary::Profiles profiles(context());
        QVERIFY(!profiles.loadSetupData(gid).allerg.empty());
        QVERIFY(profiles.loadSetupData(other).allerg.empty());

        // Opened again, the form shows the saved tick.
        click(page, "edit13");
        QTRY_VERIFY((form = page->allergenForm()) != nullptr);
        const auto rows = form->detailAr();
        QVERIFY(std::any_of(rows.begin(), rows.end(), [&](const frame::FormRow& row) {
            return row.source == profiles.loadSetupData(gid).allerg;
        }));
    }

    void theProfileEditRedrawsTheSheet() {
        launchPastWelcome();
        const std::string gid = addChild(QStringLiteral("Аня"), "2025-03-20");
        passport* page = open(gid);
        click(page, "edit11");
        frame::dic* form = nullptr;
        QTRY_VERIFY((form = root_->findChild<frame::dic*>()) != nullptr && form->isOpen());
        QVERIFY(form->posByField("name") != 0);

        // A birth weight typed in the form comes up on the sheet as it closes.
        // Row n of the form carries the tag n.
        const std::size_t weight = form->posByField("ves");
        QVERIFY(weight != 0);
        QLineEdit* field = nullptr;
        for (auto* line : form->findChildren<QLineEdit*>()) {
            if (frame::tag(line) == static_cast<int>(weight)) {
                field = line;
            }
        }
        QVERIFY(field != nullptr);
        field->clear();
        QTest::keyClicks(field, QStringLiteral("3.4"));
        form->findChild<QPushButton*>(QStringLiteral("ok"), Qt::FindDirectChildrenOnly)->click();
        QTRY_VERIFY(!form->isOpen());
        QTRY_VERIFY(
            texts(page, development::card::main).contains(QStringLiteral("Данные при рождении")));
    }

private:
    passport* open(const std::string& gid) {
        root_->activateWindow();
        context().state.pageDirty[1] = true;
        root_->openTab(1, gid);
        auto* page = qobject_cast<passport*>(root_->tab(1));
        [&] { QTRY_COMPARE(root_->gCurTab(), 1); }();
        return page;
    }

    // The texts a card draws, in their order.
    static QStringList texts(passport* page, int tp) {
        development::PassportCard card = *page->card(tp)->card();
        platform::RecordingCanvas canvas;
        card.drawContent(canvas, tp, true, platform::Rect{0, 0, 320, 2000});
        QStringList shown;
        for (const platform::DrawCommand& command : canvas.commands()) {
            if (command.kind == platform::DrawCommand::Kind::Text) {
                shown << QString::fromStdString(command.text);
            }
        }
        return shown;
    }

    static void click(QWidget* page, const char* name) {
        page->findChild<QAbstractButton*>(QString::fromLatin1(name))->click();
    }
};

}  // namespace tilika

QTEST_MAIN(tilika::PassportTest)
#include "passport_test.moc"
