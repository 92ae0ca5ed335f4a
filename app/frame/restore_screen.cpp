#include "frame/restore_screen.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/app_state.h"
#include "core/dates.h"
#include "frame/elided_label.h"
#include "frame/form_shared.h"
#include "frame/look.h"
#include "frame/menu_views.h"
#include "frame/popup_panels.h"
#include "frame/scroll_view.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"

namespace tilika::frame {

namespace {

constexpr int kRowHeight = 64;
constexpr int kRadius = 16;
constexpr int kNoAnswerTag = 2;
constexpr int kStartEmptyTag = 3;
constexpr int kRestoreTag = 4;

QColor cardColor(const core::AppState& state) {
    return state.lightTheme ? QColor(255, 255, 255, 200) : QColor(0, 0, 0, 80);
}

// One copy on its card: the day in bold, what it holds under it; the chosen
// one framed. A damaged copy shows why it can't be chosen.
class CopyRow final : public QAbstractButton {
public:
    CopyRow(QString day, QString summary, QColor card, QColor text, QWidget* parent)
        : QAbstractButton(parent),
          day_(std::move(day)),
          summary_(std::move(summary)),
          card_(std::move(card)),
          text_(std::move(text)) {
        setCheckable(true);
        setFixedHeight(kRowHeight);
        setCursor(Qt::PointingHandCursor);
        setAccessibleName(day_ + QStringLiteral(", ") + summary_);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF card = QRectF(rect()).adjusted(2, 2, -2, -2);
        painter.setPen(isChecked() ? QPen(QColor(0xf2, 0x8c, 0x28), 3) : Qt::NoPen);
        painter.setBrush(card_);
        painter.drawRoundedRect(card, kRadius, kRadius);
        QColor text = text_;
        if (!isEnabled()) {
            text.setAlphaF(0.5);
        }
        painter.setPen(text);
        QFont font = painter.font();
        font.setPixelSize(17);
        font.setBold(true);
        painter.setFont(font);
        const QRectF inside = card.adjusted(16, 8, -16, -8);
        painter.drawText(inside, Qt::AlignLeft | Qt::AlignTop, day_);
        font.setPixelSize(14);
        font.setBold(false);
        painter.setFont(font);
        painter.drawText(inside, Qt::AlignLeft | Qt::AlignBottom,
                         painter.fontMetrics().elidedText(summary_, Qt::ElideRight,
                                                          static_cast<int>(inside.width())));
        if (hasFocus()) {
            paintFocusRing(painter, this, card, kRadius);
        }
    }

private:
    QString day_;
    QString summary_;
    QColor card_;
    QColor text_;
};

QPushButton* bigButton(const QString& text, bool accent, const core::AppState& state,
                       QWidget* parent) {
    auto* button = new QPushButton(text, parent);
    button->setMinimumHeight(48);
    button->setCursor(Qt::PointingHandCursor);
    const QColor face = accent ? QColor(0xf2, 0x8c, 0x28) : cardColor(state);
    const QColor ink = accent ? QColor(Qt::white) : platform::toQColor(state.textColor);
    button->setStyleSheet(
        QStringLiteral("QPushButton { background: %1; color: %2; border: none; border-radius: "
                       "16px; font-size: 16px; font-weight: bold; padding: 8px 16px; }"
                       "QPushButton:disabled { color: rgba(128, 128, 128, 200); }"
                       "QPushButton:focus { border: 2px solid rgba(128, 128, 128, 220); }")
            .arg(face.name(QColor::HexArgb), ink.name(QColor::HexArgb)));
    return button;
}

}  // namespace

restoreScreen::restoreScreen(std::vector<core::ReserveCopy> copies,
                             std::filesystem::path damagedFile, core::AppState& state,
                             const core::Dates& dates, const platform::QtPictures& pictures,
                             Popups& popups, Actions actions, QWidget* parent)
    : QWidget(parent),
      copies_(std::move(copies)),
      damaged_(!damagedFile.empty()),
      state_(state),
      dates_(dates),
      pictures_(pictures),
      popups_(popups),
      actions_(std::move(actions)),
      group_(new QButtonGroup(this)) {
    setObjectName(QStringLiteral("restore"));
    setAutoFillBackground(true);
    setFocusPolicy(Qt::StrongFocus);
    correctBackground(this, true, state_, pictures_);
    const QColor text = platform::toQColor(state_.textColor);

    auto* header = new QHBoxLayout;
    if (!damaged_) {
        back_ = headerButton(translatedText(state_, "Меню"), this);
        back_->setObjectName(QStringLiteral("back"));
        setHeaderButtonPicture(back_, pictures_, "text-back.png", state_);
        connect(back_, &QToolButton::clicked, this, &restoreScreen::finish);
        header->addWidget(back_);
    } else {
        header->addSpacing(44);
    }
    auto* title = new ElidedLabel(
        translatedText(state_, damaged_ ? "База данных повреждена" : "Восстановление из копии"),
        this, 19, true);
    title->setObjectName(QStringLiteral("caption"));
    title->setAlignment(Qt::AlignCenter);
    setTextColor(title, text);
    header->addWidget(title, 1);
    header->addSpacing(44);

    QString about;
    if (damaged_) {
        about = translatedText(state_,
                               "Дневник не удается прочитать: файл базы данных поврежден. Он "
                               "сохранен под именем «%1». Выберите копию, из которой "
                               "восстановить дневник.")
                    .arg(QString::fromStdString(damagedFile.filename().string()));
    } else {
        about = translatedText(state_,
                               "Выберите копию, из которой восстановить дневник. Нынешний "
                               "дневник не пропадет: он останется в папке копий.");
    }
    if (copies_.empty()) {
        about += QStringLiteral(" ") + translatedText(state_, "Копий пока нет.");
    }
    auto* intro = new menu::Card(cardColor(state_), this);
    auto* introLayout = new QVBoxLayout(intro);
    introLayout->setContentsMargins(16, 12, 16, 12);
    auto* aboutLabel = form::wrappedLabel(about, intro, 15, false);
    aboutLabel->setObjectName(QStringLiteral("about"));
    setTextColor(aboutLabel, text);
    introLayout->addWidget(aboutLabel);

    auto* list = new QWidget;
    list->setAttribute(Qt::WA_TranslucentBackground);
    auto* rows = new QVBoxLayout(list);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(6);
    for (std::size_t i = 0; i < copies_.size(); ++i) {
        const core::ReserveCopy& copy = copies_[i];
        auto* row = new CopyRow(QString::fromStdString(dates_.dateToString(copy.day, "dd.MM.yyyy")),
                                translatedText(state_, core::copySummary(copy)), cardColor(state_),
                                text, list);
        row->setObjectName(QStringLiteral("copy-%1").arg(i));
        row->setEnabled(copy.sound);
        group_->addButton(row, static_cast<int>(i));
        rows->addWidget(row);
    }
    rows->addStretch(1);
    // The list comes newest sound copy first: that is the one to offer.
    if (!copies_.empty() && copies_.front().sound) {
        group_->button(0)->setChecked(true);
    }
    auto* scroll = new ScrollView(this);
    scroll->setWidget(list);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    showBackdropThrough(scroll);

    restore_ = bigButton(translatedText(state_, "Восстановить из копии"), true, state_, this);
    restore_->setObjectName(QStringLiteral("restoreCopy"));
    restore_->setEnabled(group_->checkedButton() != nullptr);
    empty_ = bigButton(translatedText(state_, "Начать с пустого дневника"), false, state_, this);
    empty_->setObjectName(QStringLiteral("startEmpty"));
    connect(group_, &QButtonGroup::idClicked, this, [this] { restore_->setEnabled(true); });
    connect(restore_, &QPushButton::clicked, this, &restoreScreen::restoreChosen);
    connect(empty_, &QPushButton::clicked, this, &restoreScreen::askStartEmpty);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 8, 12, 16);
    layout->setSpacing(10);
    layout->addLayout(header);
    layout->addWidget(intro);
    layout->addWidget(scroll, 1);
    layout->addWidget(restore_);
    layout->addWidget(empty_);
}

std::vector<QAbstractButton*> restoreScreen::copyRows() const {
    std::vector<QAbstractButton*> rows;
    for (std::size_t i = 0; i < copies_.size(); ++i) {
        rows.push_back(group_->button(static_cast<int>(i)));
    }
    return rows;
}

void restoreScreen::restoreChosen() {
    const int chosen = group_->checkedId();
    if (chosen < 0 || static_cast<std::size_t>(chosen) >= copies_.size()) {
        return;
    }
    const std::filesystem::path file = copies_[static_cast<std::size_t>(chosen)].file;
    const auto restore = [this, file] {
        if (actions_.restore && actions_.restore(file)) {
            finish();
        } else {
            failed();
        }
    };
    if (damaged_) {
        // There is nothing to lose: the damaged file is already kept aside.
        restore();
        return;
    }
    const QString day = QString::fromStdString(
        dates_.dateToString(copies_[static_cast<std::size_t>(chosen)].day, "dd.MM.yyyy"));
    popups_.messageAsk(translatedText(state_,
                                      "Заменить дневник копией от %1? Нынешний дневник останется в "
                                      "папке копий.")
                           .arg(day),
                       translatedText(state_, "Восстановление из копии"), kRestoreTag, this,
                       [restore](int /*tag*/, int button) {
                           if (button == 1) {
                               restore();
                           }
                       });
}

void restoreScreen::askStartEmpty() {
    popups_.messageAsk(
        translatedText(state_,
                       "Начать с пустого дневника? Записи останутся только в копиях и в "
                       "сохраненном файле."),
        translatedText(state_, "Пустой дневник"), kStartEmptyTag, this,
        [this](int /*tag*/, int button) {
            if (button != 1) {
                return;
            }
            if (actions_.startEmpty && actions_.startEmpty()) {
                finish();
            } else {
                failed();
            }
        });
}

void restoreScreen::failed() {
    popups_.message(translatedText(state_,
                                   "Не удалось восстановить дневник. Попробуйте другую "
                                   "копию или повторите позже."),
                    translatedText(state_, "Ошибка"), kNoAnswerTag, this);
}

void restoreScreen::finish() {
    hide();
    emit closed();
    deleteLater();
}

void restoreScreen::keyPressEvent(QKeyEvent* event) {
    if (back_ != nullptr && (event->key() == Qt::Key_Escape || event->key() == Qt::Key_Back)) {
        back_->click();
        return;
    }
    QWidget::keyPressEvent(event);
}

}  // namespace tilika::frame
