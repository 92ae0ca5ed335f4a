#include "medication/inday.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPaintEvent>
#include <QPainter>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

#include "core/app_state.h"
#include "core/context.h"
#include "core/dates.h"
#include "frame/dic.h"
#include "frame/elided_label.h"
#include "frame/look.h"
#include "frame/popup_panels.h"
#include "frame/scroll_view.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"

namespace tilika::medication {

namespace {

constexpr int kPageId = 2;
constexpr int kNoAnswerTag = 2;
constexpr const char* kMealTimes = "Время приема пищи";
constexpr const char* kEditDay = "Редактировать";

}  // namespace

// ---- the list ----

InDayList::InDayList(const platform::QtPictures& pictures, QWidget* parent)
    : QWidget(parent), pictures_(pictures) {
    setObjectName(QStringLiteral("indayList"));
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void InDayList::setRows(std::vector<InDayRow> rows, InDayCellLook look) {
    rows_ = std::move(rows);
    look_ = look;
    updateGeometry();
    update();
}

int InDayList::heightForWidth(int width) const {
    const platform::QtCanvas measure(*this);
    const InDayCellPaint paint(look_);
    double height = 0;
    for (const InDayRow& row : rows_) {
        height += paint.height(row, width, measure);
    }
    return static_cast<int>(std::ceil(height));
}

QSize InDayList::sizeHint() const {
    const int width = std::max(this->width(), 320);
    return {width, heightForWidth(width)};
}

void InDayList::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    platform::QtCanvas canvas(painter, pictures_);
    const InDayCellPaint paint(look_);
    double y = 0;
    for (const InDayRow& row : rows_) {
        const double height = paint.height(row, width(), canvas);
        if (y + height >= event->rect().top() && y <= event->rect().bottom()) {
            paint.prepareInDayCell(row, platform::Rect{0, y, static_cast<double>(width()), height},
                                   canvas);
        }
        y += height;
    }
}

// ---- the page ----

inday::inday(InDayServices services, QWidget* parent)
    : frame::Tab(kPageId, parent), services_(std::move(services)), schedule_(services_.context) {
    setAutoFillBackground(true);
    const core::AppState& state = services_.context.state;

    back_ = frame::menuButton(this, state);
    dayBack_ = frame::textButton(QStringLiteral("◀"), "dayBack", this);
    dayBack_->setToolTip(frame::translatedText(state, "Предыдущий день"));
    dayNext_ = frame::textButton(QStringLiteral("▶"), "dayNext", this);
    dayNext_->setToolTip(frame::translatedText(state, "Следующий день"));
    connect(dayBack_, &QToolButton::clicked, this, [this] { changeDay(-1); });
    connect(dayNext_, &QToolButton::clicked, this, [this] { changeDay(1); });
    edit_ = frame::headerButton(frame::translatedText(state, kEditDay), this);
    edit_->setObjectName(QStringLiteral("edit"));
    connect(edit_, &QToolButton::clicked, this, &inday::edit);
    caption_ = new frame::ElidedLabel({}, this, 19, true);
    caption_->setObjectName(QStringLiteral("caption"));
    caption_->setAlignment(Qt::AlignCenter);

    QWidget* bar = frame::captionBar(back_, dayBack_, caption_, dayNext_, edit_, this);

    scroll_ = new frame::ScrollView(this);
    scroll_->setWidgetResizable(true);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_ = new InDayList(services_.pictures, scroll_);
    scroll_->setWidget(list_);
    frame::showBackdropThrough(scroll_);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 0);
    layout->addWidget(bar);
    layout->addWidget(scroll_, 1);
}

void inday::applyLook() {
    core::AppState& state = services_.context.state;
    frame::correctBackground(this, true, state, services_.pictures);
    const QColor text = platform::toQColor(state.textColor);
    frame::setTextColor(caption_, text);
    for (QToolButton* button : {dayBack_, dayNext_}) {
        button->setStyleSheet(
            QStringLiteral("QToolButton { color: %1; font-size: 18px; }").arg(text.name()));
    }
    frame::setHeaderButtonPicture(back_, services_.pictures, "text-back.png", state);
    frame::setHeaderButtonPicture(edit_, services_.pictures, "pm-edit.png", state);
}

void inday::activateView(const std::string& gid) {
    applyLook();
    schedule_.activateView(gid);
    prepare(services_.context.dates.now());
}

void inday::prepare(core::Date date) {
    const core::Dates& dates = services_.context.dates;
    date_ = dates.noTime(date);
    caption_->setText(QString::fromStdString(dates.dateToString(date_, core::formats::screenDay)));
    const core::AppState& state = services_.context.state;
    list_->setRows(schedule_.prepare(date_),
                   InDayCellLook{state.colorIcons, state.textColor, state.accentColor});
}

void inday::changeDay(int step) {
    prepare(services_.context.dates.addDays(date_, step));
}

void inday::edit() {
    const QString items = frame::translatedText(services_.context.state, kMealTimes) +
                          QStringLiteral("<td>pm-clock.png<tr>") +
                          frame::translatedText(services_.context.state, kEditDay) +
                          QStringLiteral("<td>pm-edit.png");
    QPointer<inday> self(this);
    services_.popups.popupMenu(
        items, window(),
        [self](const QString& /*sender*/, const QString& caption) {
            if (self != nullptr) {
                self->actionEdit(caption);
            }
        },
        QStringLiteral("inday"));
}

void inday::actionEdit(const QString& caption) {
    const core::AppState& state = services_.context.state;
    if (caption == frame::translatedText(state, kMealTimes)) {
        openMealForm();
    } else if (caption == frame::translatedText(state, kEditDay) && opener_) {
        // The day may have changed in the editor: its schedule is read anew.
        QPointer<inday> self(this);
        opener_(date_, schedule_.gid(), [self] {
            if (self != nullptr) {
                self->prepare(self->date_);
            }
        });
    }
}

frame::dic* inday::mealForm() const {
    return mealForm_ != nullptr && mealForm_->isOpen() ? mealForm_.data() : nullptr;
}

void inday::openMealForm() {
    core::Context& context = services_.context;
    if (mealForm_ == nullptr) {
        mealForm_ = new frame::dic(
            frame::FormServices{context.state, context.dates, services_.popups, services_.pictures},
            window());
    }
    MealForm form = schedule_.mealForm();
    mealForm_->prepare(std::move(form.rows), frame::translatedText(context.state, form.caption),
                       window(), this, 0, {},
                       [this](const frame::FormAnswer& answer) { return editObed(answer); });
}

bool inday::editObed(const frame::FormAnswer& answer) {
    const core::WriteResult result = schedule_.editObed(answer.rows);
    if (!result) {
        // The form stays with the times as the parent set them.
        services_.popups.message(
            frame::translatedText(services_.context.state, result.message()),
            frame::translatedText(services_.context.state, "Ошибка"), kNoAnswerTag,
            mealForm_ != nullptr ? static_cast<QWidget*>(mealForm_) : window());
        return false;
    }
    if (services_.rebuildNotifications) {
        services_.rebuildNotifications();
    }
    prepare(date_);
    return true;
}

}  // namespace tilika::medication
