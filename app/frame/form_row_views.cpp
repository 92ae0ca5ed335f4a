#include "frame/form_row_views.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QResizeEvent>

#include <algorithm>

#include "frame/look.h"
#include "platform/qt_pictures.h"

namespace tilika::frame::form {
namespace {

// The jaw picture's own size, and where each tooth stands on it, in the
// picture's units: the centre and the size of the tooth's mark.
constexpr QSizeF kJawSize(300, 360);
constexpr double kMarkSize = 48;
constexpr double kTargetSize = 30;
// How far from a tooth's centre a tap still reaches it.
constexpr double kReach = 34;
struct ToothSpot {
    double x;
    double y;
};
constexpr std::array<ToothSpot, 20> kSpots{{
    {51, 126.5}, {62, 87.5},     {81.5, 59},   {105.5, 41.5},  {134, 32},
    {166, 32},   {194.5, 41.5},  {218.5, 59},  {238, 87.5},    {249, 126.5},
    {51, 233.5}, {62, 272.5},    {81.5, 301},  {105.5, 318.5}, {134, 328},
    {166, 328},  {194.5, 318.5}, {218.5, 301}, {238, 272.5},   {249, 233.5},
}};
// The free room inside each arch, where the labels go.
constexpr double kUpperLabelTop = 85;
constexpr double kLowerLabelTop = 210;
constexpr double kLabelHeight = 65;

// A tooth: what keyboards, assistive tools and callers press. A finger's
// tap goes to the chart, which gives it to the nearest tooth, since the
// front teeth stand closer together than a fingertip is wide. The chart
// draws the marks, which are larger than the room between two teeth.
class ToothButton final : public QAbstractButton {
public:
    ToothButton(int number, QWidget* parent) : QAbstractButton(parent) {
        setCheckable(true);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setAccessibleName(QStringLiteral("%1").arg(number));
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        if (!isDown()) {
            return;
        }
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 120, 215, 60));
        painter.drawEllipse(rect());
    }
};

// A wrapping label cuts a word it has no room for; it keeps room for its
// longest word, and the label beside it wraps instead.
void keepWholeWords(QLabel* label) {
    int longest = 1;
    for (const QString& word : label->text().split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        longest = std::max(longest, label->fontMetrics().horizontalAdvance(word));
    }
    label->setMinimumWidth(longest);
}

}  // namespace

void setIcon(QLabel* label, const platform::QtPictures& pictures, const std::string& picture,
             int size) {
    const qreal ratio = label->devicePixelRatioF();
    QImage image = pictures.image(picture, QSize(size, size) * ratio);
    image.setDevicePixelRatio(ratio);
    label->setPixmap(QPixmap::fromImage(image));
    label->setFixedSize(size, size);
}

// ---- TapRow ----

TapRow::TapRow(const platform::QtPictures& pictures, const std::string& icon,
               const QString& caption, QWidget* parent)
    : QAbstractButton(parent), pictures_(pictures) {
    setMinimumHeight(kTouchHeight);
    // A button would keep the width of its text on one line; a row wraps.
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setCursor(Qt::PointingHandCursor);
    setAccessibleName(caption);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 4, 4, 4);
    layout->setSpacing(6);
    if (!icon.empty()) {
        icon_ = new QLabel(this);
        form::setIcon(icon_, pictures_, icon, 32);
        layout->addWidget(icon_);
    }
    caption_ = new QLabel(caption, this);
    caption_->setWordWrap(true);
    // Small enough for a caption and a value to keep their words whole side
    // by side in a narrow panel.
    QFont font = caption_->font();
    font.setPixelSize(14);
    caption_->setFont(font);
    keepWholeWords(caption_);
    value_ = new QLabel(this);
    value_->setWordWrap(true);
    value_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    QFont bold = font;
    bold.setBold(true);
    value_->setFont(bold);
    value_->hide();
    arrow_ = new QLabel(this);
    arrow_->hide();
    layout->addWidget(caption_, 3);
    layout->addWidget(value_, 2);
    layout->addWidget(arrow_);
    for (QLabel* label : {caption_, value_, arrow_}) {
        label->setAttribute(Qt::WA_TransparentForMouseEvents);
    }
    // A wrapping label asks for a comfortable width; on a phone it gets
    // what there is and wraps.
    caption_->setMinimumWidth(1);
    value_->setMinimumWidth(1);
}

void TapRow::setValue(const QString& value) {
    value_->setText(value);
    value_->setVisible(!value.isEmpty());
    keepWholeWords(value_);
}

void TapRow::setArrow(const std::string& picture) {
    form::setIcon(arrow_, pictures_, picture, 20);
    arrow_->show();
}

void TapRow::setTextColor(const QColor& color) {
    QPalette palette = caption_->palette();
    palette.setColor(QPalette::WindowText, color);
    caption_->setPalette(palette);
    value_->setPalette(palette);
}

void TapRow::paintEvent(QPaintEvent* /*event*/) {
    if (!isDown()) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(128, 128, 128, 60));
    painter.drawRoundedRect(QRectF(rect()), 8, 8);
}

// ---- Switch ----

Switch::Switch(QWidget* parent) : QAbstractButton(parent) {
    setCheckable(true);
    setCursor(Qt::PointingHandCursor);
    setFixedSize(sizeHint());
}

void Switch::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF track = QRectF(rect()).adjusted(4, 8, -4, -8);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isChecked() ? QColor(0x4c, 0xaf, 0x50) : QColor(0xbd, 0xbd, 0xbd));
    painter.drawRoundedRect(track, track.height() / 2, track.height() / 2);
    const double knob = track.height() + 6;
    const double x = isChecked() ? track.right() - knob + 3 : track.left() - 3;
    painter.setBrush(Qt::white);
    painter.setPen(QPen(QColor(0, 0, 0, 40), 1));
    painter.drawEllipse(QRectF(x, track.center().y() - knob / 2, knob, knob));
    paintFocusRing(painter, this, QRectF(rect()), height() / 2.0);
}

// ---- TeethChart ----

TeethChart::TeethChart(const platform::QtPictures& pictures, std::vector<bool> marks,
                       std::array<QString, 2> labels, QWidget* parent)
    : QWidget(parent), pictures_(pictures), marks_(std::move(marks)), labels_(std::move(labels)) {
    marks_.resize(kSpots.size(), false);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    for (std::size_t i = 0; i < kSpots.size(); ++i) {
        const int n = static_cast<int>(i) + 1;
        auto* tooth = new ToothButton(n, this);
        setTag(tooth, kFirstToothTag + static_cast<int>(i));
        tooth->setChecked(marks_[i]);
        connect(tooth, &QAbstractButton::clicked, this, [this, i, n](bool checked) {
            marks_[i] = checked;
            update();
            emit toothClicked(n);
        });
        teeth_[i] = tooth;
    }
}

QAbstractButton* TeethChart::tooth(int n) const {
    return n >= 1 && n <= static_cast<int>(teeth_.size()) ? teeth_[static_cast<std::size_t>(n - 1)]
                                                          : nullptr;
}

int TeethChart::heightForWidth(int width) const {
    const int jawWidth = std::min(width, 360);
    return static_cast<int>(jawWidth * kJawSize.height() / kJawSize.width());
}

QSize TeethChart::sizeHint() const {
    return {300, heightForWidth(300)};
}

QRectF jawRectIn(QSizeF area) {
    const double scale =
        std::min(area.width() / kJawSize.width(), std::min(area.height() / kJawSize.height(), 1.2));
    const QSizeF size = kJawSize * scale;
    return {(area.width() - size.width()) / 2, (area.height() - size.height()) / 2, size.width(),
            size.height()};
}

QRectF toothPictureRect(const QRectF& jaw, int n) {
    if (n < 1 || n > static_cast<int>(kSpots.size())) {
        return {};
    }
    const double scale = jaw.width() / kJawSize.width();
    const double side = kMarkSize * scale;
    const ToothSpot& spot = kSpots[static_cast<std::size_t>(n - 1)];
    return {jaw.left() + spot.x * scale - side / 2, jaw.top() + spot.y * scale - side / 2, side,
            side};
}

QRectF TeethChart::jawRect() const {
    return jawRectIn(QSizeF(size()));
}

void TeethChart::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const QRectF jaw = jawRect();
    const double scale = jaw.width() / kJawSize.width();
    // As large as the room between the two front teeth allows.
    const double side = kTargetSize * scale;
    for (std::size_t i = 0; i < kSpots.size(); ++i) {
        const QPointF centre(jaw.left() + kSpots[i].x * scale, jaw.top() + kSpots[i].y * scale);
        teeth_[i]->setGeometry(
            QRectF(centre.x() - side / 2, centre.y() - side / 2, side, side).toRect());
    }
}

int TeethChart::toothAt(QPointF point) const {
    const QRectF jaw = jawRect();
    const double scale = jaw.width() / kJawSize.width();
    int nearest = 0;
    double best = kReach * scale;
    for (std::size_t i = 0; i < kSpots.size(); ++i) {
        const QPointF centre(jaw.left() + kSpots[i].x * scale, jaw.top() + kSpots[i].y * scale);
        const double distance = std::hypot(point.x() - centre.x(), point.y() - centre.y());
        if (distance < best) {
            best = distance;
            nearest = static_cast<int>(i) + 1;
        }
    }
    return nearest;
}

void TeethChart::mousePressEvent(QMouseEvent* event) {
    pressed_ = toothAt(event->position());
    event->accept();
}

void TeethChart::mouseReleaseEvent(QMouseEvent* event) {
    const int tooth = toothAt(event->position());
    if (tooth != 0 && tooth == pressed_) {
        teeth_[static_cast<std::size_t>(tooth - 1)]->click();
    }
    pressed_ = 0;
    event->accept();
}

void TeethChart::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF jaw = jawRect();
    pictures_.draw(painter, "tooth-m.png", jaw);
    for (std::size_t i = 0; i < kSpots.size(); ++i) {
        if (marks_[i]) {
            const int n = static_cast<int>(i) + 1;
            pictures_.draw(painter, "tooth-" + std::to_string(n) + ".png",
                           toothPictureRect(jaw, n));
        }
    }
    QFont font = painter.font();
    font.setPixelSize(std::max(11, static_cast<int>(jaw.width() / 22)));
    painter.setFont(font);
    painter.setPen(QColor(0x3a, 0x3a, 0x3a));
    const double scale = jaw.width() / kJawSize.width();
    const QRectF upper(jaw.left(), jaw.top() + kUpperLabelTop * scale, jaw.width(),
                       kLabelHeight * scale);
    const QRectF lower(jaw.left(), jaw.top() + kLowerLabelTop * scale, jaw.width(),
                       kLabelHeight * scale);
    painter.drawText(upper, Qt::AlignCenter, labels_[0]);
    painter.drawText(lower, Qt::AlignCenter, labels_[1]);
}

}  // namespace tilika::frame::form
