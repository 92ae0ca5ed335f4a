#include "development/growth_page.h"

#include <QCheckBox>
#include <QGraphicsOpacityEffect>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QParallelAnimationGroup>
#include <QPropertyAnimation>
#include <QShortcut>
#include <QToolButton>
#include <QVBoxLayout>
#include <QVariantAnimation>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

#include "core/app_state.h"
#include "core/context.h"
#include "development/chart_view.h"
#include "diary/measure_table.h"
#include "frame/elided_label.h"
#include "frame/look.h"
#include "frame/pictures.h"
#include "frame/popup_panels.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"

namespace tilika::development {

namespace {

constexpr int kPageId = 3;
constexpr int kGrowMs = 1500;
constexpr QSize kFireSize{18, 24};
constexpr int kWheelNotch = 120;
constexpr const char* kRost = "Рост";
constexpr const char* kVes = "Вес";

platform::Rect widgetRect(const QWidget* widget) {
    return platform::Rect{0, 0, static_cast<double>(widget->width()),
                          static_cast<double>(widget->height())};
}

}  // namespace

// ---- one chart ----

GrowthChartView::GrowthChartView(const platform::QtPictures& pictures, const char* name,
                                 QWidget* parent)
    : QWidget(parent) {
    setObjectName(QString::fromLatin1(name));
    setMinimumHeight(160);
    // Colour and grey share the plot; each shows only its own side of today,
    // so that the labels, which the two place differently, never double.
    rest_ = new QWidget(this);
    rest_->setObjectName(QStringLiteral("rest"));
    gray_ = new chart(pictures, rest_);
    gray_->setObjectName(QStringLiteral("gray"));
    gray_->setGrey(true);
    // The colour shows only as far as today: its holder clips it.
    pbar_ = new QWidget(this);
    pbar_->setObjectName(QStringLiteral("pbar"));
    color_ = new chart(pictures, pbar_);
    color_->setObjectName(QStringLiteral("color"));
    fire_ = new QLabel(this);
    fire_->setObjectName(QStringLiteral("fire"));
    fire_->setFixedSize(kFireSize);
    fire_->setScaledContents(true);
    fire_->setAttribute(Qt::WA_TransparentForMouseEvents);
    fire_->setGraphicsEffect(new QGraphicsOpacityEffect(fire_));
    for (QWidget* child :
         {static_cast<QWidget*>(gray_), rest_, pbar_, static_cast<QWidget*>(color_)}) {
        child->setAttribute(Qt::WA_TransparentForMouseEvents);
    }
}

void GrowthChartView::setChart(const GrowthChart& chart, double today) {
    gray_->prepare(chart.gray);
    color_->prepare(chart.color);
    today_ = today;
    place();
}

void GrowthChartView::setMarker(const QPixmap& picture) {
    fire_->setPixmap(picture);
}

void GrowthChartView::setProgress(double progress) {
    progress_ = std::clamp(progress, 0.0, 1.0);
    place();
}

double GrowthChartView::todayX() const {
    const platform::Rect plot = plotRect(color_->gdic(), widgetRect(this));
    return plot.x + today_ * plot.width;
}

QPoint GrowthChartView::firePlace() const {
    const platform::Rect plot = plotRect(color_->gdic(), widgetRect(this));
    return {static_cast<int>(std::lround(todayX())) - kFireSize.width() / 2,
            std::max(0, static_cast<int>(plot.y) - kFireSize.height())};
}

QPoint GrowthChartView::fireStart() const {
    const platform::Rect plot = plotRect(color_->gdic(), widgetRect(this));
    return {static_cast<int>(std::lround(plot.x)) - kFireSize.width() / 2, firePlace().y()};
}

void GrowthChartView::place() {
    const int split = std::clamp(static_cast<int>(std::ceil(todayX() * progress_)), 0, width());
    pbar_->setGeometry(0, 0, split, height());
    color_->setGeometry(rect());
    rest_->setGeometry(split, 0, width() - split, height());
    gray_->setGeometry(-split, 0, width(), height());
    if (progress_ >= 1) {
        fire_->move(firePlace());
    }
    fire_->raise();
}

void GrowthChartView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    place();
}

// ---- the page ----

title::title(GrowthServices services, QWidget* parent)
    : frame::Tab(kPageId, parent), services_(services), growth_(services.context) {
    setAutoFillBackground(true);
    const core::AppState& state = services_.context.state;

    back_ = frame::menuButton(this, state);
    yearBack_ = frame::textButton(QStringLiteral("◀"), "yearBack", this);
    yearBack_->setToolTip(frame::translatedText(state, "Предыдущий год"));
    yearNext_ = frame::textButton(QStringLiteral("▶"), "yearNext", this);
    yearNext_->setToolTip(frame::translatedText(state, "Следующий год"));
    connect(yearBack_, &QToolButton::clicked, this, &title::prevYear);
    connect(yearNext_, &QToolButton::clicked, this, &title::nextYear);
    edit_ = frame::headerButton(frame::translatedText(state, "Редактировать"), this);
    edit_->setObjectName(QStringLiteral("edit"));
    connect(edit_, &QToolButton::clicked, this, &title::editData);
    caption_ = new frame::ElidedLabel({}, this, 19, true);
    caption_->setObjectName(QStringLiteral("caption"));
    caption_->setAlignment(Qt::AlignCenter);
    caption_->installEventFilter(this);
    QWidget* bar = frame::captionBar(back_, yearBack_, caption_, yearNext_, edit_, this);

    // The arrows turn the pages; the years go by Page Up and Page Down.
    auto* pageUp = new QShortcut(QKeySequence(Qt::Key_PageUp), this);
    pageUp->setContext(Qt::WindowShortcut);
    connect(pageUp, &QShortcut::activated, this, [this] {
        if (nothingOver()) {
            prevYear();
        }
    });
    auto* pageDown = new QShortcut(QKeySequence(Qt::Key_PageDown), this);
    pageDown->setContext(Qt::WindowShortcut);
    connect(pageDown, &QShortcut::activated, this, [this] {
        if (nothingOver()) {
            nextYear();
        }
    });

    centiles_ = new QCheckBox(frame::translatedText(state, "Центили ВОЗ"), this);
    centiles_->setObjectName(QStringLiteral("centiles"));
    connect(centiles_, &QCheckBox::toggled, this, [this](bool on) {
        if (on != growth_.centilesOn()) {
            // A setting that could not be written still shows this time.
            (void)growth_.setCentilesOn(on);
        }
        changeText(false);
    });

    empty_ = new QLabel(frame::translatedText(state, "Нет данных"), this);
    empty_->setObjectName(QStringLiteral("empty"));
    empty_->setAlignment(Qt::AlignCenter);
    empty_->hide();

    ch1_ = new GrowthChartView(services_.pictures, "ch1", this);
    ch2_ = new GrowthChartView(services_.pictures, "ch2", this);
    centile1_ = new QLabel(this);
    centile1_->setObjectName(QStringLiteral("rostCentile"));
    centile2_ = new QLabel(this);
    centile2_->setObjectName(QStringLiteral("vesCentile"));
    for (QLabel* label : {centile1_, centile2_}) {
        label->setAlignment(Qt::AlignCenter);
        label->setWordWrap(true);
        label->hide();
    }

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addWidget(bar);
    layout->addWidget(centiles_, 0, Qt::AlignRight);
    layout->addWidget(empty_, 1);
    layout->addWidget(ch1_, 1);
    layout->addWidget(centile1_);
    layout->addWidget(ch2_, 1);
    layout->addWidget(centile2_);
}

bool title::nothingOver() const {
    // The keys are the window's: a form or a popup over the page keeps them.
    const core::AppState& state = services_.context.state;
    return state.openForms == 0 && !state.popupShown;
}

void title::applyLook() {
    core::AppState& state = services_.context.state;
    frame::correctBackground(this, true, state, services_.pictures);
    const QColor text = platform::toQColor(state.textColor);
    for (QLabel* label : {static_cast<QLabel*>(caption_), empty_, centile1_, centile2_}) {
        frame::setTextColor(label, text);
    }
    frame::setTextColor(centiles_, text);
    for (QToolButton* button : {yearBack_, yearNext_}) {
        button->setStyleSheet(
            QStringLiteral("QToolButton { color: %1; font-size: 18px; }").arg(text.name()));
    }
    frame::setHeaderButtonPicture(back_, services_.pictures, "text-back.png", state);
    frame::setHeaderButtonPicture(edit_, services_.pictures, "pm-edit.png", state);
    // The flame with a light rim on a dark background.
    const char* fire = state.lightTheme ? "fire.png" : "b-fire.png";
    const qreal ratio = devicePixelRatioF();
    QPixmap marker = QPixmap::fromImage(services_.pictures.image(fire, kFireSize * ratio));
    marker.setDevicePixelRatio(ratio);
    ch1_->setMarker(marker);
    ch2_->setMarker(marker);
}

void title::activateView(const std::string& gid) {
    applyLook();
    growth_.activateView(gid);
    {
        const QSignalBlocker quiet(centiles_);
        centiles_->setChecked(growth_.centilesOn());
    }
    changeText(true);
}

void title::activate() {
    // Coming on top, the charts grow up to today again.
    if (view_.hasData) {
        startAnimation();
    }
}

void title::changeText(bool animate) {
    view_ = growth_.changeText(centiles_->isChecked());
    const platform::Color text = services_.context.state.textColor;
    // The centile lines in the text's colour stand out on any backdrop.
    const platform::Color lines{text.r, text.g, text.b, 0.7};
    for (GraphDic* dic : {&view_.rost.color, &view_.rost.gray, &view_.ves.color, &view_.ves.gray}) {
        dic->textColor = text;
        for (ExtraCurve& curve : dic->extraCurves) {
            curve.color = lines;
        }
        for (LegendEntry& entry : dic->legenda) {
            if (entry.color) {
                entry.color = lines;
            }
        }
    }
    caption_->setText(QString::fromStdString(view_.caption));
    const bool turns = growth_.months() >= 12;
    yearBack_->setEnabled(turns);
    yearNext_->setEnabled(turns);
    empty_->setVisible(!view_.hasData);
    ch1_->setVisible(view_.hasData);
    ch2_->setVisible(view_.hasData);
    ch1_->setChart(view_.rost, view_.today);
    ch2_->setChart(view_.ves, view_.today);
    const std::pair<QLabel*, const std::string*> texts[] = {{centile1_, &view_.rost.lastMeasure},
                                                            {centile2_, &view_.ves.lastMeasure}};
    for (const auto& [label, text] : texts) {
        label->setText(QString::fromStdString(*text));
        label->setVisible(view_.hasData && !text->empty());
    }
    if (animate) {
        startAnimation();
    } else {
        finishAnimations();
        ch1_->setProgress(1);
        ch2_->setProgress(1);
    }
}

void title::startAnimation() {
    if (animation_ != nullptr) {
        animation_->stop();
        delete animation_;
    }
    auto* group = new QParallelAnimationGroup(this);
    auto* grow = new QVariantAnimation(group);
    grow->setDuration(kGrowMs);
    grow->setStartValue(0.0);
    grow->setEndValue(1.0);
    grow->setEasingCurve(QEasingCurve::OutCubic);
    connect(grow, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        ch1_->setProgress(value.toDouble());
        ch2_->setProgress(value.toDouble());
    });
    group->addAnimation(grow);
    for (GrowthChartView* view : {ch1_, ch2_}) {
        QLabel* fire = view->fire();
        const QPoint end = view->firePlace();
        auto* move = new QPropertyAnimation(fire, "pos", group);
        move->setDuration(kGrowMs);
        move->setStartValue(view->fireStart());
        move->setEndValue(end);
        move->setEasingCurve(QEasingCurve::OutCubic);
        group->addAnimation(move);
        auto* appear = new QPropertyAnimation(fire->graphicsEffect(), "opacity", group);
        appear->setDuration(kGrowMs);
        appear->setStartValue(0.0);
        appear->setEndValue(1.0);
        group->addAnimation(appear);
    }
    // The page may have been laid out anew on the way: the end is placed
    // by the final geometry.
    connect(group, &QAbstractAnimation::finished, this, [this] {
        ch1_->setProgress(1);
        ch2_->setProgress(1);
    });
    animation_ = group;
    group->start(QAbstractAnimation::DeleteWhenStopped);
}

void title::finishAnimations() {
    if (animation_ != nullptr) {
        // Jumping to the end leaves every value where the animation would.
        animation_->setCurrentTime(animation_->totalDuration());
        animation_->stop();
    }
}

void title::prevYear() {
    const int before = growth_.gyear();
    growth_.prevYear();
    if (growth_.gyear() != before) {
        changeText(true);
    }
}

void title::nextYear() {
    const int before = growth_.gyear();
    growth_.nextYear();
    if (growth_.gyear() != before) {
        changeText(true);
    }
}

void title::editData() {
    const core::AppState& state = services_.context.state;
    const QString items = frame::translatedText(state, kRost) +
                          QStringLiteral("<td>pm-edit.png<tr>") +
                          frame::translatedText(state, kVes) + QStringLiteral("<td>pm-edit.png");
    QPointer<title> self(this);
    services_.popups.popupMenu(
        items, window(),
        [self](const QString& /*sender*/, const QString& caption) {
            if (self != nullptr) {
                self->actionEdit(caption);
            }
        },
        QStringLiteral("title"));
}

void title::actionEdit(const QString& caption) {
    const core::AppState& state = services_.context.state;
    int regim = 0;
    if (caption == frame::translatedText(state, kRost)) {
        regim = diary::MeasureTable::kHeight;
    } else if (caption == frame::translatedText(state, kVes)) {
        regim = diary::MeasureTable::kWeight;
    }
    if (regim == 0 || !opener_ || growth_.gid().empty()) {
        return;
    }
    // The measures may have changed in the table: the charts are built anew.
    QPointer<title> self(this);
    opener_(regim, growth_.gid(), [self] {
        if (self != nullptr) {
            self->changeText(false);
        }
    });
}

bool title::eventFilter(QObject* watched, QEvent* event) {
    if (watched == caption_ && event->type() == QEvent::Wheel) {
        // One year a notch: up goes back in time, as a list scrolls up. A
        // touchpad sends small steps, which add up to a notch.
        wheel_ += static_cast<QWheelEvent*>(event)->angleDelta().y();
        while (std::abs(wheel_) >= kWheelNotch) {
            const bool back = wheel_ > 0;
            wheel_ -= back ? kWheelNotch : -kWheelNotch;
            if (back) {
                prevYear();
            } else {
                nextYear();
            }
        }
        return true;
    }
    return frame::Tab::eventFilter(watched, event);
}

}  // namespace tilika::development
