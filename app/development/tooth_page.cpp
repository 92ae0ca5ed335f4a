#include "development/tooth_page.h"

#include <QGraphicsOpacityEffect>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QPropertyAnimation>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

#include "core/app_state.h"
#include "core/context.h"
#include "core/dates.h"
#include "development/ruler_view.h"
#include "frame/elided_label.h"
#include "frame/form_row_views.h"
#include "frame/form_shared.h"
#include "frame/look.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"

namespace tilika::development {

namespace {

constexpr int kPageId = 6;
constexpr int kFadeMs = 500;
// The ruler runs a little below birth, so that birth itself is reached in
// the middle, and on to fifteen years.
constexpr int kRulerMin = -3;
constexpr int kRulerMax = 15;

// One tooth's picture; its opacity is the effect's.
class ToothPicture final : public QWidget {
public:
    ToothPicture(const platform::QtPictures& pictures, int n, QWidget* parent)
        : QWidget(parent), pictures_(pictures), name_("tooth-" + std::to_string(n) + ".png") {
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        pictures_.draw(painter, name_, QRectF(rect()));
    }

private:
    const platform::QtPictures& pictures_;
    std::string name_;
};

}  // namespace

// ---- the jaw ----

ToothJaw::ToothJaw(const platform::QtPictures& pictures, QWidget* parent)
    : QWidget(parent), pictures_(pictures) {
    setObjectName(QStringLiteral("jaw"));
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    for (std::size_t i = 0; i < teeth_.size(); ++i) {
        const int n = static_cast<int>(i) + 1;
        Tooth& tooth = teeth_[i];
        tooth.picture = new ToothPicture(pictures_, n, this);
        frame::setTag(tooth.picture, kFirstToothTag + static_cast<int>(i));
        tooth.effect = new QGraphicsOpacityEffect(tooth.picture);
        tooth.effect->setOpacity(0);
        tooth.picture->setGraphicsEffect(tooth.effect);
        tooth.fade = new QPropertyAnimation(tooth.effect, "opacity", this);
        tooth.fade->setDuration(kFadeMs);
    }
}

void ToothJaw::showTeeth(const ToothOpacity& opacity) {
    for (std::size_t i = 0; i < teeth_.size(); ++i) {
        Tooth& tooth = teeth_[i];
        const double target = std::clamp(opacity[i], 0.0, 1.0);
        if (target == tooth.target && tooth.fade->state() != QAbstractAnimation::Running) {
            continue;
        }
        tooth.target = target;
        // A fade under way turns round from where it has got to.
        tooth.fade->stop();
        tooth.fade->setStartValue(tooth.effect->opacity());
        tooth.fade->setEndValue(target);
        tooth.fade->start();
    }
}

double ToothJaw::target(int tooth) const {
    return tooth >= 1 && tooth <= diary::kMilkTeeth
               ? teeth_[static_cast<std::size_t>(tooth - 1)].target
               : 0;
}

double ToothJaw::shown(int tooth) const {
    return tooth >= 1 && tooth <= diary::kMilkTeeth
               ? teeth_[static_cast<std::size_t>(tooth - 1)].effect->opacity()
               : 0;
}

void ToothJaw::finishAnimations() {
    for (Tooth& tooth : teeth_) {
        if (tooth.fade->state() == QAbstractAnimation::Running) {
            tooth.fade->setCurrentTime(tooth.fade->totalDuration());
        }
    }
}

int ToothJaw::heightForWidth(int width) const {
    return width * 6 / 5;
}

QSize ToothJaw::sizeHint() const {
    return {300, 360};
}

void ToothJaw::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const QRectF jaw = frame::form::jawRectIn(QSizeF(size()));
    for (std::size_t i = 0; i < teeth_.size(); ++i) {
        teeth_[i].picture->setGeometry(
            frame::form::toothPictureRect(jaw, static_cast<int>(i) + 1).toRect());
    }
}

void ToothJaw::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    pictures_.draw(painter, "tooth-m.png", frame::form::jawRectIn(QSizeF(size())));
}

// ---- the page ----

tooth::tooth(ToothServices services, QWidget* parent)
    : frame::Tab(kPageId, parent), services_(std::move(services)), teeth_(services_.context) {
    setAutoFillBackground(true);
    const core::AppState& state = services_.context.state;

    back_ = frame::menuButton(this, state);
    caption_ = new frame::ElidedLabel({}, this, 19, true);
    caption_->setObjectName(QStringLiteral("caption"));
    caption_->setAlignment(Qt::AlignCenter);
    state_ = frame::headerButton(frame::translatedText(state, "Статистика или зубы ребенка"), this);
    state_->setObjectName(QStringLiteral("stateChange"));
    connect(state_, &QToolButton::clicked, this, &tooth::stateChange);
    edit_ = frame::headerButton(frame::translatedText(state, "Редактировать"), this);
    edit_->setObjectName(QStringLiteral("edit"));
    connect(edit_, &QToolButton::clicked, this, &tooth::edit);

    auto* header = new QHBoxLayout;
    header->addWidget(back_);
    header->addWidget(caption_, 1);
    header->addWidget(state_);
    header->addWidget(edit_);

    jaw_ = new ToothJaw(services_.pictures, this);
    empty_ = frame::form::wrappedLabel(frame::translatedText(state, "Нет данных"), this, 16, false);
    empty_->setObjectName(QStringLiteral("noData"));
    empty_->setAlignment(Qt::AlignCenter);
    empty_->hide();
    month_ = new QLabel(this);
    month_->setObjectName(QStringLiteral("month"));
    month_->setAlignment(Qt::AlignCenter);
    QFont font = month_->font();
    font.setPixelSize(18);
    month_->setFont(font);

    ruler_ = new vesslider(this);
    ruler_->setObjectName(QStringLiteral("ruler"));
    ruler_->prepareRuller(kRulerMin, kRulerMax, rulertype::months, true, true);
    ruler_->setSelector([this](double /*position*/) { changeMonth(); });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 16);
    layout->addLayout(header);
    layout->addWidget(jaw_, 1);
    layout->addWidget(empty_);
    layout->addWidget(month_);
    layout->addWidget(ruler_);
}

void tooth::applyLook() {
    core::AppState& state = services_.context.state;
    frame::correctBackground(this, true, state, services_.pictures);
    const QColor text = platform::toQColor(state.textColor);
    for (QLabel* label : {caption_, empty_, month_}) {
        frame::setTextColor(label, text);
    }
    frame::setHeaderButtonPicture(back_, services_.pictures, "text-back.png", state);
    frame::setHeaderButtonPicture(edit_, services_.pictures, "pm-edit.png", state);
}

void tooth::showState() {
    caption_->setText(QString::fromStdString(teeth_.caption()));
    frame::setHeaderButtonPicture(state_, services_.pictures, teeth_.statePicture(),
                                  services_.context.state);
}

void tooth::activateView(const std::string& gid) {
    applyLook();
    teeth_.activateView(gid);
    showState();
    ruler_->setPosition(teeth_.startMonth(), true);
}

void tooth::stateChange() {
    teeth_.stateChange();
    showState();
    updateTeeth();
}

void tooth::changeMonth() {
    month_->setText(QString::fromStdString(toothAgeCaption(toothMonth(ruler_->getPosition()))));
    updateTeeth();
}

void tooth::updateTeeth() {
    // The child's own teeth need a birth date to stand on the ruler.
    empty_->setVisible(teeth_.gState() == toothstate::child && !teeth_.birth());
    jaw_->showTeeth(teeth_.update(ruler_->getPosition()));
}

void tooth::edit() {
    if (!opener_ || teeth_.gchildguid().empty()) {
        return;
    }
    const QPointer<tooth> page(this);
    opener_(services_.context.dates.now(), teeth_.gchildguid(), [page] {
        if (page != nullptr) {
            page->teeth_.reload();
            page->updateTeeth();
        }
    });
}

void tooth::finishAnimations() {
    jaw_->finishAnimations();
}

}  // namespace tilika::development
