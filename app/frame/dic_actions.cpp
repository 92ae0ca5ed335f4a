#include <QDateTime>
#include <QFileDialog>
#include <QFrame>
#include <QGraphicsOpacityEffect>
#include <QImageReader>
#include <QLabel>
#include <QProgressBar>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QVBoxLayout>

#include <chrono>

#include "core/app_state.h"
#include "core/dates.h"
#include "core/text.h"
#include "diary/catalogue.h"
#include "diary/entry_forms.h"
#include "diary/reference_lists.h"
#include "frame/dic.h"
#include "frame/form_kinds.h"
#include "frame/form_moments.h"
#include "frame/form_row_views.h"
#include "frame/form_shared.h"
#include "frame/look.h"
#include "frame/pictures.h"
#include "frame/popup_panels.h"
#include "platform/qt_date.h"
#include "platform/qt_image_codec.h"
#include "platform/qt_pictures.h"

namespace tilika::frame {
namespace {

using namespace form;

constexpr int kStopwatchTag = 213;
constexpr int kFadeMs = 500;

}  // namespace

namespace form {

std::optional<QImage> pickPhotoFromFile(QWidget* parent) {
    const QString file = QFileDialog::getOpenFileName(
        parent, QString(), QString(),
        QStringLiteral("Изображения (*.jpg *.jpeg *.png *.heic *.webp *.bmp)"));
    if (file.isEmpty()) {
        return std::nullopt;
    }
    QImageReader reader(file);
    reader.setAutoTransform(true);
    QImage image = reader.read();
    if (image.isNull()) {
        return std::nullopt;
    }
    return image;
}

}  // namespace form

// ---- Sub-forms ----

void dic::replaceSubForm() {
    if (sub_ != nullptr) {
        // The old one may still be on the stack that brought us here.
        sub_->closeForm();
        sub_->deleteLater();
    }
    sub_ = new dic(services_, this);
}

void dic::subDetail(std::size_t index) {
    correctField();
    const auto& row = detailAr_[index];
    replaceSubForm();
    session::DetailRequest request;
    request.kind = 2;
    request.parentFlag = static_cast<int>(index) + 1;
    request.cap = row.editcap;
    request.msg = row.editdescr;
    request.dat = row.source;
    request.cotype = row.listid;
    request.edit = row.edit;
    if (!row.listdata.empty()) {
        // A list of the caller's own: its items, ticked by the value.
        const auto chosen = core::split(row.source, "<tr>");
        request.list = row.listdata;
        for (auto& item : request.list) {
            item.checked = std::find(chosen.begin(), chosen.end(), item.index) != chosen.end();
        }
        request.dat = "WASADDED";
    }
    sub_->setFollowRows({});
    sub_->detailPrepare(request, this, this, [this, index](const FormAnswer& answer) {
        subDetailCommit(index, answer.rows);
        return true;
    });
}

void dic::subDetailCommit(std::size_t index, const FormRows& rows) {
    if (index >= detailAr_.size()) {
        return;
    }
    correctField();
    auto& row = detailAr_[index];
    // The sub-form's value is in the row under its heading.
    row.source = rows.size() > 1 ? rows[1].source : std::string();
    // The list may have grown in the sub-form.
    readingLists_.erase(row.listid);
    followRows(row.field);
    updateData();
}

void dic::timeClick(std::size_t index, std::size_t position) {
    correctField();
    const auto times = timesOf(detailAr_[index].source);
    if (position >= times.size()) {
        return;
    }
    const auto& row = detailAr_[index];
    const core::Date now = services_.dates.now();
    const QDateTime old =
        // A time that is no time (from another device) starts the dial at midnight.
        platform::toQDateTime(
            timeOnDay(times[position], services_.dates, now).value_or(services_.dates.noTime(now)),
            services_.dates.timeZoneId());
    QPointer<dic> self(this);
    services_.popups.popupDetail(
        popupkind::time, shown(row.editdescr.empty() ? row.caption : row.editdescr), old, this,
        static_cast<int>(index + 1) * 1000 + static_cast<int>(position),
        [self, index, position](int /*flag*/, const QVariant& value) {
            if (self == nullptr || index >= self->detailAr_.size()) {
                return;
            }
            const QString time =
                qs(momentSource(formkind::time, platform::fromQDateTime(value.toDateTime()),
                                self->services_.dates));
            auto& row = self->detailAr_[index];
            row.source = replaceTime(row.source, position, time.toStdString());
            const int tag = static_cast<int>(index + 1) * 1000 + static_cast<int>(position);
            for (auto* button : self->controls_[index]->findChildren<QPushButton*>()) {
                if (frame::tag(button) == tag) {
                    button->setText(time);
                }
            }
        });
}

void dic::addToList(std::size_t index) {
    correctField();
    const auto& row = detailAr_[index];
    diary::EntryForm form = diary::newListRowForm(row.listedittype);
    replaceSubForm();
    sub_->prepare(std::move(form.rows), shown(form.caption), this, this,
                  static_cast<int>(index) + 1, {},
                  [this, index](const FormAnswer& answer) { return afterAdd(index, answer.rows); });
}

bool dic::afterAdd(std::size_t index, const FormRows& rows) {
    if (index >= detailAr_.size() || services_.lists == nullptr) {
        return true;
    }
    auto& row = detailAr_[index];
    const std::optional<diary::NewListRow> added =
        diary::newListRowOf(row.listedittype, row.listid, rows);
    if (!added) {
        return true;
    }
    correctField();
    // A list the caller put together keeps its items; the new one is stored
    // and joins them. Any other list is read again with it.
    const bool callersList = !row.listdata.empty();
    std::vector<ListRow> scratch;
    const diary::AddedRow stored =
        services_.lists->addFromListScreen(*added, callersList ? scratch : row.list);
    if (!stored.result) {
        // The form with the new name stays, so that it can be sent again.
        services_.popups.message(shown(stored.result.message()), own("Ошибка"), 0, sub_.data());
        return false;
    }
    if (callersList && stored.guid) {
        for (const auto& fresh : scratch) {
            if (fresh.index == *stored.guid) {
                row.list.push_back(fresh);
                row.listdata.push_back(fresh);
            }
        }
    }
    row.source = checkedIndices(row.list);
    updateData();
    return true;
}

// ---- Photo ----

void dic::photoClick(std::size_t index) {
    QPointer<dic> self(this);
    const QString menu = own("Новая фотография") + QStringLiteral("<td>pm-photo.png<tr>") +
                         own("Из альбома") + QStringLiteral("<td>pm-image.png<tr>") +
                         own("Очистить") + QStringLiteral("<td>pm-clear.png");
    const std::uint64_t generation = generation_;
    services_.popups.popupMenu(
        menu, this,
        [self, index, generation](const QString& /*sender*/, const QString& caption) {
            const auto current = [&] {
                return self != nullptr && self->open_ && self->generation_ == generation;
            };
            if (!current()) {
                return;
            }
            if (caption == self->own("Новая фотография")) {
                self->services_.popups.message(
                    self->own("Ваше устройство не умеет делать фотографии"), QString(), 0,
                    self.data());
            } else if (caption == self->own("Из альбома")) {
                std::optional<QImage> image = self->photoPicker_(self.data());
                // The picker may have run its own event loop, long enough for
                // the form to close or to be opened with other rows.
                if (!image || image->isNull() || !current()) {
                    return;
                }
                self->correctField();
                auto& row = self->detailAr_[index];
                row.image = fittedPhoto(platform::QtImageCodec(),
                                        platform::QtImageCodec::fromQImage(*image));
                row.save = 1;
                self->updateData();
            } else if (caption == self->own("Очистить")) {
                self->correctField();
                auto& row = self->detailAr_[index];
                row.image.reset();
                row.save = 2;
                self->updateData();
            }
        },
        QStringLiteral("photo"));
}

// ---- Stopwatch ----

void dic::startClick(std::size_t index) {
    if (startPos_ > 0 || index >= detailAr_.size()) {
        return;
    }
    correctField();
    const auto& row = detailAr_[index];
    startPos_ = index + 1;
    // A count that ran before goes on from the stored minutes.
    lastStartInterval_ = services_.dates.now() - std::chrono::minutes(ttm(row.source));

    auto* overlay = new QFrame(this);
    overlay_ = overlay;
    setTag(overlay, kStopwatchTag);
    overlay->setObjectName(QStringLiteral("stopwatch"));
    overlay->setStyleSheet(QStringLiteral(
        "#stopwatch { background: rgba(20,20,24,215); }"
        "#stopwatch QLabel { color: white; }"
        "#stopwatch QPushButton { color: white; background: #d9534f; border: none;"
        " border-radius: 24px; font-size: 18px; padding: 0 36px; min-height: 48px; }"));
    overlay->setGeometry(rect());
    auto* box = new QVBoxLayout(overlay);
    box->setAlignment(Qt::AlignCenter);
    box->setSpacing(18);
    auto* busy = new QProgressBar(overlay);
    busy->setRange(0, 0);
    busy->setTextVisible(false);
    busy->setFixedWidth(180);
    box->addWidget(busy, 0, Qt::AlignHCenter);
    auto* progress = wrappedLabel(shown(row.startprogress), overlay, 18, false);
    progress->setAlignment(Qt::AlignCenter);
    box->addWidget(progress);
    elapsed_ = wrappedLabel(QString(), overlay, 40, true);
    elapsed_->setAlignment(Qt::AlignCenter);
    elapsed_->setObjectName(QStringLiteral("elapsed"));
    box->addWidget(elapsed_);
    auto* stop = new QPushButton(own("Стоп"), overlay);
    stop->setObjectName(QStringLiteral("stopButton"));
    connect(stop, &QPushButton::clicked, this, &dic::stopClick);
    box->addWidget(stop, 0, Qt::AlignHCenter);
    elapsed_->setText(qs(elapsedText((services_.dates.now() - lastStartInterval_).count())));

    auto* effect = new QGraphicsOpacityEffect(overlay);
    effect->setOpacity(0);
    overlay->setGraphicsEffect(effect);
    overlay->show();
    overlay->raise();
    auto* fade = new QPropertyAnimation(effect, "opacity", overlay);
    fade->setDuration(kFadeMs);
    fade->setStartValue(0.0);
    fade->setEndValue(1.0);
    connect(fade, &QPropertyAnimation::finished, this, [this] {
        onStartTimer();
        tick_.start();
    });
    fade->start(QAbstractAnimation::DeleteWhenStopped);
}

void dic::onStartTimer() {
    if (startPos_ == 0 || elapsed_ == nullptr) {
        tick_.stop();
        return;
    }
    // Read from the clock each time: ticks may come late or not at all
    // while the program is held up.
    elapsed_->setText(qs(elapsedText((services_.dates.now() - lastStartInterval_).count())));
}

void dic::stopClick() {
    if (startPos_ == 0 || overlay_ == nullptr) {
        return;
    }
    // The time is taken and written at the tap; the fade that follows only
    // shows it, so an OK pressed meanwhile already sees the value.
    tick_.stop();
    const auto minutes = std::chrono::duration_cast<std::chrono::minutes>(services_.dates.now() -
                                                                          lastStartInterval_);
    const std::size_t index = startPos_ - 1;
    startPos_ = 0;
    elapsed_ = nullptr;
    changeDetail(index, qs(mtt(minutes.count())));

    QWidget* overlay = overlay_;
    overlay_ = nullptr;
    overlay->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto* effect = qobject_cast<QGraphicsOpacityEffect*>(overlay->graphicsEffect());
    if (effect == nullptr) {
        overlay->deleteLater();
        return;
    }
    auto* fade = new QPropertyAnimation(effect, "opacity", overlay);
    fade->setDuration(kFadeMs);
    fade->setStartValue(effect->opacity());
    fade->setEndValue(0.0);
    connect(fade, &QPropertyAnimation::finished, overlay, &QObject::deleteLater);
    fade->start();
}

void dic::dropStopwatch() {
    tick_.stop();
    startPos_ = 0;
    elapsed_ = nullptr;
    if (overlay_ != nullptr) {
        overlay_->deleteLater();
        overlay_ = nullptr;
    }
}

}  // namespace tilika::frame
