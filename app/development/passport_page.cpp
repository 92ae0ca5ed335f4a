#include "development/passport_page.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

#include "core/app_state.h"
#include "core/context.h"
#include "core/dates.h"
#include "development/allergen_list.h"
#include "development/passport.h"
#include "diary/profiles.h"
#include "diary/reference_lists.h"
#include "frame/dic.h"
#include "frame/elided_label.h"
#include "frame/look.h"
#include "frame/page_bar.h"
#include "frame/pictures.h"
#include "frame/popup_panels.h"
#include "frame/scroll_view.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"

namespace tilika::development {

namespace {

constexpr int kPageId = 1;
constexpr int kDocumentsTag = 61;
constexpr int kVaccinationsTag = 62;
// The bottom margin a card keeps under its last line.
constexpr int kBodyMargin = 10;
constexpr int kCardRadius = 12;
constexpr int kCardSpacing = 12;
// The scroll runs this far past the last card.
constexpr int kColumnTail = 40;
constexpr const char* kPageCaption = "Анкетные данные на сегодня";

// The cards' lines are dark on a light sheet whatever the backdrop.
QString cardStyle() {
    return QStringLiteral(
               "QFrame#passportCard { background: rgba(255, 255, 255, 235); border-radius: %1px; }"
               "QLabel#cardCaption { color: #1b1b1b; font-size: 17px; font-weight: 600; }")
        .arg(kCardRadius);
}

}  // namespace

// ---- a card's lines ----

PassportCardBody::PassportCardBody(int tp, const platform::QtPictures& pictures, QWidget* parent)
    : QWidget(parent), tp_(tp), pictures_(pictures) {
    setObjectName(QStringLiteral("passportCardBody%1").arg(tp));
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setMouseTracking(true);
}

void PassportCardBody::setCard(std::unique_ptr<PassportCard> card) {
    card_ = std::move(card);
    updateGeometry();
    update();
}

int PassportCardBody::heightForWidth(int width) const {
    if (card_ == nullptr) {
        return 0;
    }
    platform::QtCanvas measure(*this);
    const double bottom = card_->drawContent(measure, tp_, false,
                                             platform::Rect{0, 0, static_cast<double>(width), 0});
    return static_cast<int>(std::ceil(bottom)) + kBodyMargin;
}

QSize PassportCardBody::sizeHint() const {
    const int width = std::max(this->width(), 320);
    return {width, heightForWidth(width)};
}

void PassportCardBody::paintEvent(QPaintEvent* /*event*/) {
    if (card_ == nullptr) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    platform::QtCanvas canvas(painter, pictures_);
    card_->drawContent(
        canvas, tp_, true,
        platform::Rect{0, 0, static_cast<double>(width()), static_cast<double>(height())});
}

int PassportCardBody::buttonAt(QPointF point) const {
    if (card_ == nullptr) {
        return 0;
    }
    const auto inside = [point](const std::optional<platform::Rect>& rect) {
        return rect && point.x() >= rect->x && point.x() < rect->x + rect->width &&
               point.y() >= rect->y && point.y() < rect->y + rect->height;
    };
    if (inside(card_->doc1Rect())) {
        return kDocumentsTag;
    }
    return inside(card_->doc2Rect()) ? kVaccinationsTag : 0;
}

void PassportCardBody::mousePressEvent(QMouseEvent* event) {
    switch (buttonAt(event->position())) {
        case kDocumentsTag:
            emit documentsRequested();
            break;
        case kVaccinationsTag:
            emit vaccinationsRequested();
            break;
        default:
            QWidget::mousePressEvent(event);
    }
}

void PassportCardBody::mouseMoveEvent(QMouseEvent* event) {
    setCursor(buttonAt(event->position()) != 0 ? Qt::PointingHandCursor : Qt::ArrowCursor);
    QWidget::mouseMoveEvent(event);
}

// ---- the page ----

passport::passport(PassportServices services, QWidget* parent)
    : frame::Tab(kPageId, parent), services_(std::move(services)) {
    setAutoFillBackground(true);
    const core::AppState& state = services_.context.state;

    const frame::PageBar bar = frame::readingBar(this, state, kPageCaption);
    back_ = bar.back;
    caption_ = bar.caption;

    scroll_ = new frame::ScrollView(this);
    scroll_->setWidgetResizable(true);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    column_ = new QWidget(scroll_);
    column_->setObjectName(QStringLiteral("passportColumn"));
    column_->setStyleSheet(cardStyle());
    auto* cards = new QVBoxLayout(column_);
    cards->setContentsMargins(4, 4, 4, kColumnTail);
    cards->setSpacing(kCardSpacing);
    cards->addWidget(cardFrame(card::main, "Основные данные", kEditProfile));
    cards->addWidget(cardFrame(card::illnesses, "Болезни", kEditIllnesses));
    cards->addWidget(cardFrame(card::allergens, "Аллергены", kEditAllergens));
    cards->addWidget(cardFrame(card::sizes, "Размеры одежды и обуви", kEditSizes));
    cards->addStretch(1);
    scroll_->setWidget(column_);
    frame::showBackdropThrough(scroll_);

    PassportCardBody* main = card(card::main);
    connect(main, &PassportCardBody::documentsRequested, this,
            [this] { editClick(kDocumentsTag); });
    connect(main, &PassportCardBody::vaccinationsRequested, this,
            [this] { editClick(kVaccinationsTag); });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 0);
    layout->addWidget(bar.bar);
    layout->addWidget(scroll_, 1);
}

QWidget* passport::cardFrame(int tp, const char* caption, int editTag) {
    const core::AppState& state = services_.context.state;
    auto* frame = new QFrame(column_);
    frame->setObjectName(QStringLiteral("passportCard"));
    auto* label = new QLabel(frame::translatedText(state, caption), frame);
    label->setObjectName(QStringLiteral("cardCaption"));
    label->setWordWrap(true);
    auto* edit = new QToolButton(frame);
    edit->setObjectName(QStringLiteral("edit%1").arg(editTag));
    edit->setAutoRaise(true);
    edit->setIconSize(QSize(24, 24));
    edit->setToolTip(frame::translatedText(state, "Редактировать"));
    connect(edit, &QToolButton::clicked, this, [this, editTag] { editClick(editTag); });

    auto* header = new QHBoxLayout;
    header->setContentsMargins(10, 6, 4, 0);
    header->addWidget(label, 1);
    header->addWidget(edit, 0, Qt::AlignTop);
    auto* body = new PassportCardBody(tp, services_.pictures, frame);
    auto* layout = new QVBoxLayout(frame);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(header);
    layout->addWidget(body);

    cards_[tp - 1] = body;
    editButtons_[tp - 1] = edit;
    return frame;
}

PassportCardBody* passport::card(int tp) const {
    return tp >= 1 && tp <= 4 ? cards_[tp - 1] : nullptr;
}

void passport::applyLook() {
    core::AppState& state = services_.context.state;
    frame::correctBackground(this, true, state, services_.pictures);
    frame::setTextColor(caption_, platform::toQColor(state.textColor));
    frame::setHeaderButtonPicture(back_, services_.pictures, "text-back.png", state);
    // The sheet of a card is light, so its pencil is the dark one.
    const QImage pencil = services_.pictures.image(
        services_.pictures.pictures().themed("pm-edit.png", true), QSize(48, 48));
    for (QToolButton* edit : editButtons_) {
        edit->setIcon(QIcon(QPixmap::fromImage(pencil)));
    }
}

void passport::activateView(const std::string& gid) {
    gid_ = gid;
    applyLook();
    prepare();
}

void passport::activate() {
    // The help of this page is a reading page still to come.
    services_.popups.offerHelp(this, "passportHelp", [this] {
        if (services_.comingSoon) {
            services_.comingSoon("Анкета");
        }
    });
}

void passport::prepare() {
    core::Context& context = services_.context;
    const diary::SetupRecord setup = diary::Profiles(context).loadSetupData(gid_);
    const PassportCardData data = passportCardData(context, setup, gid_);
    for (PassportCardBody* body : cards_) {
        body->setCard(std::make_unique<PassportCard>(context.state, data));
    }
}

void passport::editClick(int tag) {
    const auto reload = [self = QPointer<passport>(this)] {
        if (self != nullptr) {
            self->prepare();
        }
    };
    switch (tag) {
        case kEditProfile:
            // The profile form's save marks the pages for reloading, and
            // the page on top is drawn again at once.
            if (profileOpener_) {
                profileOpener_(gid_);
            }
            break;
        case kEditIllnesses:
        case kEditSizes:
            if (dayOpener_) {
                dayOpener_(services_.context.dates.now(), gid_, reload);
            } else if (services_.comingSoon) {
                services_.comingSoon("Дневник");
            }
            break;
        case kEditAllergens:
            openAllergens();
            break;
        case kDocumentsTag:
            if (services_.comingSoon) {
                services_.comingSoon("Документы ребенка");
            }
            break;
        case kVaccinationsTag:
            if (services_.comingSoon) {
                services_.comingSoon("Карта прививок");
            }
            break;
        default:
            break;
    }
}

frame::dic* passport::allergenForm() const {
    return allergenForm_ != nullptr && allergenForm_->isOpen() ? allergenForm_.data() : nullptr;
}

void passport::openAllergens() {
    core::Context& context = services_.context;
    if (allergenForm_ == nullptr) {
        allergenForm_ =
            new frame::dic(frame::FormServices{context.state, context.dates, services_.popups,
                                               services_.pictures, services_.lists},
                           window());
    }
    openAllergenList(*allergenForm_, context, services_.popups, gid_, window(), this,
                     [this](const std::string& checked) {
                         core::WriteResult result =
                             Passport(services_.context).saveAllergen(gid_, checked);
                         if (result) {
                             prepare();
                         }
                         return result;
                     });
}

}  // namespace tilika::development
