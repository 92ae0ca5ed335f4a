#include "frame/background_screen.h"

#include <QAbstractButton>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QScrollArea>
#include <QScrollBar>
#include <QScroller>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/app_state.h"
#include "frame/elided_label.h"
#include "frame/look.h"
#include "frame/scroll_view.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"

namespace tilika::frame {

namespace {

constexpr int kPreviewWidth = 150;
constexpr int kPreviewHeight = 266;

// One background as a picture of a phone's screen, framed when it is the
// one in use.
class Preview final : public QAbstractButton {
public:
    Preview(std::string picture, long long id, const core::AppState& state,
            const platform::QtPictures& pictures, QWidget* parent)
        : QAbstractButton(parent),
          picture_(std::move(picture)),
          id_(id),
          state_(state),
          pictures_(pictures) {
        setFixedSize(kPreviewWidth, kPreviewHeight);
        setCursor(Qt::PointingHandCursor);
        setAccessibleName(QStringLiteral("Фон %1").arg(id));
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF frame = QRectF(rect()).adjusted(4, 4, -4, -4);
        QPainterPath clip;
        clip.addRoundedRect(frame, 12, 12);
        painter.setClipPath(clip);
        pictures_.draw(painter, picture_, frame, isDown() ? 0.7 : 1.0);
        painter.setClipping(false);
        const bool chosen = state_.backgroundId == id_;
        painter.setPen(
            QPen(chosen ? QColor(0xf2, 0x8c, 0x28) : QColor(255, 255, 255, 160), chosen ? 5 : 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(frame, 12, 12);
    }

private:
    std::string picture_;
    long long id_;
    const core::AppState& state_;
    const platform::QtPictures& pictures_;
};

}  // namespace

background::background(const QString& caption, std::vector<BackgroundItem> items,
                       core::AppState& state, const platform::QtPictures& pictures, Choose choose,
                       QWidget* parent)
    : QWidget(parent), state_(state), pictures_(pictures), choose_(std::move(choose)) {
    setObjectName(QStringLiteral("background"));
    setAutoFillBackground(true);
    setFocusPolicy(Qt::StrongFocus);

    back_ = headerButton(translatedText(state, "Меню"), this);
    back_->setObjectName(QStringLiteral("back"));
    connect(back_, &QToolButton::clicked, this, [this] {
        hide();
        emit closed();
        deleteLater();
    });
    auto* title = new ElidedLabel(caption, this, 19, true);
    title->setObjectName(QStringLiteral("caption"));
    title->setAlignment(Qt::AlignCenter);
    auto* header = new QHBoxLayout;
    header->addWidget(back_);
    header->addWidget(title, 1);
    header->addSpacing(44);

    auto* strip = new QWidget;
    strip->setAttribute(Qt::WA_TranslucentBackground);
    auto* row = new QHBoxLayout(strip);
    row->setContentsMargins(12, 0, 12, 0);
    row->setSpacing(8);
    for (const BackgroundItem& entry : items) {
        const long long id = std::stoll(entry.id);
        auto* preview = new Preview(entry.file, id, state, pictures, strip);
        preview->setObjectName(QStringLiteral("bg-%1").arg(id));
        connect(preview, &QAbstractButton::clicked, this, [this, id] {
            if (choose_) {
                choose_(id);
            }
            refresh();
        });
        row->addWidget(preview);
        items_.push_back(preview);
    }
    auto* scroll = new ScrollView(this);
    scroll->setWidget(strip);
    scroll->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // A thin bar: it tells there is more to the right without weighing on
    // the pictures.
    scroll->horizontalScrollBar()->setStyleSheet(QStringLiteral(
        "QScrollBar:horizontal { height: 6px; background: transparent; margin: 0 12px; }"
        "QScrollBar::handle:horizontal { background: rgba(128, 128, 128, 150);"
        " border-radius: 3px; min-width: 40px; }"
        "QScrollBar::add-line, QScrollBar::sub-line { width: 0; }"
        "QScrollBar::add-page, QScrollBar::sub-page { background: none; }"));
    scroll->setFixedHeight(kPreviewHeight + 24);
    showBackdropThrough(scroll);
    QScroller::grabGesture(scroll->viewport(), QScroller::LeftMouseButtonGesture);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->addLayout(header);
    layout->addStretch(1);
    layout->addWidget(scroll);
    layout->addStretch(2);
    refresh();
}

QAbstractButton* background::item(long long id) const {
    for (QAbstractButton* preview : items_) {
        if (preview->objectName() == QStringLiteral("bg-%1").arg(id)) {
            return preview;
        }
    }
    return nullptr;
}

void background::refresh() {
    correctBackground(this, false, state_, pictures_);
    if (auto* title = findChild<QLabel*>(QStringLiteral("caption"))) {
        setTextColor(title, platform::toQColor(state_.textColor));
    }
    setHeaderButtonPicture(back_, pictures_, "text-back.png", state_);
    for (QAbstractButton* preview : items_) {
        preview->update();
    }
}

void background::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape || event->key() == Qt::Key_Back) {
        back_->click();
        return;
    }
    QWidget::keyPressEvent(event);
}

}  // namespace tilika::frame
