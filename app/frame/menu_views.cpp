#include "frame/menu_views.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

#include "frame/elided_label.h"
#include "frame/form_row_views.h"
#include "frame/form_shared.h"
#include "frame/look.h"
#include "frame/pictures.h"
#include "platform/qt_pictures.h"

namespace tilika::frame::menu {

using form::qs;

namespace {

constexpr int kRowGap = 5;
constexpr int kPhotoSize = 150;
constexpr int kCardRadius = 16;

QLabel* onCard(QLabel* label, const QColor& color) {
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    // Inside a button a label would draw in the button's text role.
    label->setForegroundRole(QPalette::WindowText);
    setTextColor(label, color);
    return label;
}

QLabel* textLabel(const QString& text, int pixelSize, bool bold, const QColor& color,
                  QWidget* parent) {
    return onCard(form::wrappedLabel(text, parent, pixelSize, bold), color);
}

// A soft shade while the button is pressed, and the focus ring.
void paintState(QAbstractButton* button, qreal radius) {
    QPainter painter(button);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF shape(button->rect());
    if (button->isDown()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(128, 128, 128, 70));
        painter.drawRoundedRect(shape, 8, 8);
    }
    paintFocusRing(painter, button, shape, radius);
}

// A photo cut into a circle, or the placeholder picture when there is none.
class PhotoView final : public QWidget {
public:
    PhotoView(QImage photo, std::string placeholder, const platform::QtPictures& pictures,
              QWidget* parent)
        : QWidget(parent),
          photo_(std::move(photo)),
          placeholder_(std::move(placeholder)),
          pictures_(pictures) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        const QRectF circle = QRectF(rect()).adjusted(2, 2, -2, -2);
        if (photo_.isNull()) {
            pictures_.draw(painter, placeholder_, circle);
        } else {
            QPainterPath clip;
            clip.addEllipse(circle);
            painter.setClipPath(clip);
            // Fill the circle with the middle of the photo.
            const QSizeF size =
                QSizeF(photo_.size()).scaled(circle.size(), Qt::KeepAspectRatioByExpanding);
            const QRectF target(circle.center().x() - size.width() / 2,
                                circle.center().y() - size.height() / 2, size.width(),
                                size.height());
            painter.drawImage(target, photo_);
            painter.setClipping(false);
        }
        painter.setPen(QPen(QColor(255, 255, 255, 220), 3));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(circle);
    }

private:
    QImage photo_;
    std::string placeholder_;
    const platform::QtPictures& pictures_;
};

// The circle over the upper part of a block: clear, with a soft shade while
// pressed.
class CircleButton final : public QAbstractButton {
public:
    using QAbstractButton::QAbstractButton;

protected:
    void paintEvent(QPaintEvent* /*event*/) override { paintState(this, kCardRadius); }
};

}  // namespace

// ---- RowView ----

RowView::RowView(const core::MenuRow& row, const platform::QtPictures& pictures, const Look& look,
                 QWidget* parent)
    : QAbstractButton(parent), row_(row) {
    setCursor(Qt::PointingHandCursor);
    const bool service = row.tp == core::menukind::service;
    setAccessibleName(qs(row.name.empty() ? row.comment : row.name));

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, service ? 8 : 2, 4, service ? 8 : 2);
    layout->setSpacing(10);
    if (!row.pic.empty()) {
        auto* icon = new QLabel(this);
        icon->setAttribute(Qt::WA_TransparentForMouseEvents);
        const Pictures& set = pictures.pictures();
        const std::string picture =
            look.colorIcons ? set.colored(row.pic, true) : set.themed(row.pic, look.lightTheme);
        form::setIcon(icon, pictures, picture, service ? 36 : 28);
        layout->addWidget(icon, 0, Qt::AlignVCenter);
    }
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    if (!row.name.empty()) {
        texts->addWidget(textLabel(qs(row.name), 15, service, look.text, this));
    }
    if (service && !row.comment.empty()) {
        QColor quiet = look.text;
        quiet.setAlphaF(0.75F);
        texts->addWidget(textLabel(qs(row.comment), 13, false, quiet, this));
    }
    layout->addLayout(texts, 1);
    if (row.hint > 0) {
        badge_ = textLabel(QString::number(row.hint), 12, true, Qt::white, this);
        badge_->setObjectName(QStringLiteral("badge"));
        badge_->setWordWrap(false);
        badge_->setAlignment(Qt::AlignCenter);
        badge_->setMinimumSize(22, 22);
        badge_->setStyleSheet(
            QStringLiteral("#badge { background: #e0463a; border-radius: 11px; padding: 0 6px; }"));
        layout->addWidget(badge_, 0, Qt::AlignVCenter);
    }
    auto* arrow = new QLabel(this);
    arrow->setAttribute(Qt::WA_TransparentForMouseEvents);
    form::setIcon(arrow, pictures, pictures.pictures().themed("menu-next.png", look.lightTheme),
                  18);
    layout->addWidget(arrow, 0, Qt::AlignVCenter);

    if (service) {
        setMinimumHeight(56);
    } else {
        setFixedHeight(session::kMenuRowHeight);
    }
}

QString RowView::badgeText() const {
    return badge_ != nullptr ? badge_->text() : QString();
}

void RowView::paintEvent(QPaintEvent* /*event*/) {
    paintState(this, 8);
}

// ---- PictureButton ----

PictureButton::PictureButton(const core::MenuRow& row, std::string picture, QColor text,
                             const platform::QtPictures& pictures, QWidget* parent)
    : QAbstractButton(parent),
      row_(row),
      picture_(std::move(picture)),
      textColor_(std::move(text)),
      pictures_(pictures) {
    setCursor(Qt::PointingHandCursor);
    setText(qs(row.name));
    QFont font = this->font();
    font.setPixelSize(15);
    font.setBold(true);
    setFont(font);
}

QSize PictureButton::sizeHint() const {
    return {240, row_.tp == core::menukind::addChild ? 48 : session::kMenuRowHeight - 6};
}

void PictureButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isDown() ? 0.75 : 1.0);
    pictures_.draw(painter, picture_, QRectF(rect()));
    painter.setOpacity(1.0);
    painter.setPen(textColor_);
    painter.drawText(rect(), Qt::AlignCenter, text());
    paintFocusRing(painter, this, QRectF(rect()), 10);
}

// ---- SwitchRow ----

SwitchRow::SwitchRow(const core::MenuRow& row, const Look& look, QWidget* parent)
    : QWidget(parent) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 6, 8, 6);
    layout->addWidget(textLabel(qs(row.comment), 14, false, look.text, this), 1);
    switch_ = new form::Switch(this);
    switch_->setObjectName(QStringLiteral("switch-%1").arg(row.id));
    switch_->setAccessibleName(qs(row.comment));
    switch_->setChecked(row.checked);
    layout->addWidget(switch_, 0, Qt::AlignVCenter);
}

// ---- ChildBlockView ----

ChildBlockView::ChildBlockView(const session::ChildBlock& block,
                               const platform::QtPictures& pictures, const Look& look,
                               QWidget* parent)
    : QWidget(parent), guid_(block.guid), card_(look.card) {
    setObjectName(qs("child-" + block.guid));
    QImage photo;
    if (!block.photo.empty()) {
        photo.load(QString::fromStdString(block.photo.string()));
    }
    photo_ = new PhotoView(std::move(photo), block.placeholder, pictures, this);
    sex_ = new QLabel(this);
    sex_->setAttribute(Qt::WA_TransparentForMouseEvents);
    form::setIcon(sex_, pictures, block.sexPicture, 40);
    // However long the name, it keeps to its two lines above the birth date.
    name_ = onCard(new ElidedLabel(qs(block.name), this, 21, true), look.text);
    name_->setObjectName(QStringLiteral("name"));
    birth_ =
        textLabel(QStringLiteral("Дата рождения: ") + qs(block.birth), 14, false, look.text, this);
    birth_->setObjectName(QStringLiteral("birth"));
    age_ = textLabel(qs(block.age), 14, false, look.text, this);
    age_->setObjectName(QStringLiteral("age"));
    day_ = new QLabel(this);
    day_->setAttribute(Qt::WA_TransparentForMouseEvents);
    form::setIcon(day_, pictures, block.dayPicture, 24);
    day_->setVisible(!block.age.empty());
    for (QLabel* label : {name_, birth_, age_}) {
        label->setAlignment(Qt::AlignCenter);
    }

    circle_ = new CircleButton(this);
    circle_->setObjectName(QStringLiteral("circle"));
    circle_->setAccessibleName(qs(block.name));
    circle_->setCursor(Qt::PointingHandCursor);

    for (const core::MenuRow& row : block.rows) {
        QAbstractButton* view = nullptr;
        if (row.tp == core::menukind::action) {
            view = new PictureButton(row, "grayB.png", QColor(0x33, 0x33, 0x33), pictures, this);
        } else {
            view = new RowView(row, pictures, look, this);
        }
        view->setObjectName(QStringLiteral("row-%1").arg(row.id));
        rows_.push_back(view);
    }
    // Closed until the menu opens it.
    setFixedHeight(session::blockHeight(false, rows_.size()));
    setRowsShown(false);
}

void ChildBlockView::setRowsShown(bool shown) {
    for (QAbstractButton* row : rows_) {
        row->setVisible(shown);
    }
}

void ChildBlockView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(card_);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0, 0, 0, -kRowGap), kCardRadius, kCardRadius);
}

void ChildBlockView::resizeEvent(QResizeEvent* /*event*/) {
    const int w = width();
    const int photoLeft = (w - kPhotoSize) / 2;
    photo_->setGeometry(photoLeft, 16, kPhotoSize, kPhotoSize);
    sex_->move(photoLeft + kPhotoSize - 36, 16 + kPhotoSize - 40);
    name_->setGeometry(12, 176, w - 24, 52);
    birth_->setGeometry(12, 228, w - 24, 22);
    // The day sign stands just left of the age, both centred together.
    const int ageWidth = std::min(w - 60, age_->fontMetrics().horizontalAdvance(age_->text()) + 8);
    const int left = (w - ageWidth - 28) / 2;
    day_->move(left, 256);
    age_->setGeometry(left + 28, 252, ageWidth, 32);
    circle_->setGeometry(0, 0, w, session::kClosedBlockHeight - kRowGap);
    int y = session::kClosedBlockHeight + kRowGap;
    for (QAbstractButton* row : rows_) {
        if (qobject_cast<PictureButton*>(row) != nullptr) {
            row->setGeometry(24, y + 3, w - 48, session::kMenuRowHeight - 6);
        } else {
            row->setGeometry(8, y, w - 16, session::kMenuRowHeight);
        }
        y += session::kMenuRowHeight;
    }
}

// ---- Card ----

Card::Card(QColor color, QWidget* parent) : QWidget(parent), color_(std::move(color)) {}

void Card::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color_);
    painter.drawRoundedRect(QRectF(rect()), kCardRadius, kCardRadius);
}

}  // namespace tilika::frame::menu
