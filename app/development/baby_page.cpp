#include "development/baby_page.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/app_state.h"
#include "core/context.h"
#include "core/dates.h"
#include "development/chart_view.h"
#include "development/passport.h"
#include "diary/profiles.h"
#include "frame/elided_label.h"
#include "frame/form_shared.h"
#include "frame/look.h"
#include "frame/page_bar.h"
#include "frame/popup_panels.h"
#include "frame/scroll_view.h"
#include "frame/subcheck.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"

namespace tilika::development {

namespace {

constexpr const char* kPageCaption = "Развитие ребенка";
constexpr int kRingSize = 56;
// Ten steps of a ring over about half a second.
constexpr int kTimerInterval = 50;

QString qs(const std::string& text) {
    return QString::fromStdString(text);
}

}  // namespace

// ---- one skill ----

SkillRow::SkillRow(const Skill& skill, const platform::QtPictures& pictures, QWidget* parent)
    : QAbstractButton(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setAccessibleName(qs(skill.caption));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 6, 8, 6);
    layout->setSpacing(10);
    if (skill.maxweek > 0) {
        ring_ = new chart(pictures, this);
        ring_->setObjectName(QStringLiteral("ring"));
        ring_->setFixedSize(kRingSize, kRingSize);
        ring_->setAttribute(Qt::WA_TransparentForMouseEvents);
        layout->addWidget(ring_);
    } else {
        layout->addSpacing(kRingSize);
    }
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    caption_ = frame::form::wrappedLabel(qs(skill.caption), this, 16, true);
    desc_ = frame::form::wrappedLabel(qs(skill.desc), this, 13, false);
    for (QLabel* label : {caption_, desc_}) {
        label->setAttribute(Qt::WA_TransparentForMouseEvents);
        texts->addWidget(label);
    }
    layout->addLayout(texts, 1);
}

void SkillRow::setColor(const QColor& color) {
    // The scroll area's style sheet reaches the labels and would keep them
    // black whatever their palette says.
    const QString sheet = QStringLiteral("QLabel { color: %1; }").arg(color.name());
    caption_->setStyleSheet(sheet);
    desc_->setStyleSheet(sheet);
}

void SkillRow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF shape = QRectF(rect()).adjusted(1, 1, -1, -1);
    // A light card under each skill, darker while pressed.
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, isDown() ? 110 : 60));
    painter.drawRoundedRect(shape, 10, 10);
    frame::paintFocusRing(painter, this, shape, 10);
}

// ---- the page ----

baby::baby(BabyServices services, QWidget* parent)
    : frame::Tab(kPageId, parent), services_(std::move(services)) {
    setAutoFillBackground(true);
    const core::AppState& state = services_.context.state;

    const frame::PageBar bar = frame::readingBar(this, state, kPageCaption);
    back_ = bar.back;
    caption_ = bar.caption;

    weeks_ = new QLabel(this);
    weeks_->setObjectName(QStringLiteral("weeks"));
    months_ = new QLabel(this);
    months_->setObjectName(QStringLiteral("months"));
    for (QLabel* label : {weeks_, months_}) {
        label->setAlignment(Qt::AlignCenter);
        label->setWordWrap(true);
    }

    auto* scroll = new frame::ScrollView(this);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* column = new QWidget(scroll);
    column->setObjectName(QStringLiteral("skills"));
    auto* list = new QVBoxLayout(column);
    list->setContentsMargins(4, 4, 4, 16);
    list->setSpacing(6);
    const auto& skills = candoi();
    for (std::size_t i = 0; i < skills.size(); ++i) {
        auto* row = new SkillRow(skills[i], services_.pictures, column);
        row->setObjectName(QStringLiteral("skill%1").arg(i));
        connect(row, &QAbstractButton::clicked, this,
                [this, i] { checkClick(static_cast<int>(i)); });
        list->addWidget(row);
        rows_.push_back(row);
    }
    list->addStretch(1);
    scroll->setWidget(column);
    frame::showBackdropThrough(scroll);

    timer_ = new QTimer(this);
    timer_->setInterval(kTimerInterval);
    connect(timer_, &QTimer::timeout, this, &baby::onTimer);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 0);
    layout->addWidget(bar.bar);
    layout->addWidget(weeks_);
    layout->addWidget(months_);
    layout->addWidget(scroll, 1);
}

void baby::applyLook() {
    core::AppState& state = services_.context.state;
    frame::correctBackground(this, true, state, services_.pictures);
    const QColor text = platform::toQColor(state.textColor);
    frame::setTextColor(weeks_, text);
    frame::setTextColor(months_, text);
    for (SkillRow* row : rows_) {
        row->setColor(text);
    }
    frame::setTextColor(caption_, platform::toQColor(state.textColor));
    frame::setHeaderButtonPicture(back_, services_.pictures, "text-back.png", state);
}

void baby::activateView(const std::string& gid) {
    gid_ = gid;
    applyLook();
    core::Context& context = services_.context;
    const diary::SetupRecord setup = diary::Profiles(context).loadSetupData(gid);
    const Passport passport(context);
    if (setup.sbirthdate) {
        gcurweek_ = passport.getCurWeek(setup.birthdate);
        gcurmonth_ = passport.getCurMonth(setup.birthdate) - 1;
        weeks_->setText(qs(passport.ageString(agemode::weeks, setup)));
        months_->setText(
            qs(context.dates.monthAge(setup.birthdate, context.dates.now(), true, false)));
    } else {
        gcurweek_ = 0;
        gcurmonth_ = 0;
        weeks_->clear();
        months_->clear();
    }
    step_ = 0;
    showRings();
    timer_->start();
}

void baby::onTimer() {
    if (step_ >= kRingSteps) {
        timer_->stop();
        return;
    }
    ++step_;
    showRings();
    if (step_ >= kRingSteps) {
        timer_->stop();
    }
}

void baby::showRings() {
    const auto& skills = candoi();
    for (std::size_t i = 0; i < skills.size(); ++i) {
        if (chart* ring = rows_[i]->ring()) {
            // The ring writes its value in its middle; it gets the whole
            // percent its label reads, so 32.5 shows as 33.
            ring->prepareChart(chart::kProgress,
                               shownPercent(ringPercent(skills[i], gcurweek_, step_)),
                               platform::toQColor(kRingColor), platform::toQColor(kRingBackColor));
            const QString label = qs(ringLabel(ringPercent(skills[i], gcurweek_, step_)));
            ring->setToolTip(label);
            rows_[i]->setAccessibleDescription(label);
        }
    }
}

void baby::checkClick(int index) {
    const auto& skills = candoi();
    if (index < 0 || index >= static_cast<int>(skills.size())) {
        return;
    }
    const Skill& skill = skills[static_cast<std::size_t>(index)];
    if (guide_ == nullptr) {
        guide_ = new frame::subcheck(services_.popups.environment(), services_.context.state,
                                     services_.pictures, this);
    }
    guide_->prepare(qs(skill.caption), qs(skill.file), skillGroup(skill, gcurweek_, gcurmonth_));
}

frame::subcheck* baby::guide() const {
    return guide_.data();
}

}  // namespace tilika::development
