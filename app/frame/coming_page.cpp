#include "frame/coming_page.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/app_state.h"
#include "frame/look.h"
#include "frame/translation.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"

namespace tilika::frame {

namespace {

QString translated(const core::AppState& state, const char* text) {
    return QString::fromStdString(translate(state, text));
}

}  // namespace

comingPage::comingPage(int pageId, const QString& caption, core::AppState& state,
                       const platform::QtPictures& pictures, QWidget* parent)
    : Tab(pageId, parent), state_(state), pictures_(pictures) {
    setAutoFillBackground(true);

    back_ = headerButton(translated(state, "Меню"), this);
    back_->setObjectName(QStringLiteral("toMenu"));
    next_ = headerButton(translated(state, "Следующий раздел"), this);
    next_->setObjectName(QStringLiteral("toNextPage"));
    connect(back_, &QToolButton::clicked, this, &Tab::menuRequested);
    connect(next_, &QToolButton::clicked, this, &Tab::nextPageRequested);

    caption_ = new QLabel(caption, this);
    caption_->setObjectName(QStringLiteral("caption"));
    caption_->setAlignment(Qt::AlignCenter);
    caption_->setWordWrap(true);
    QFont big = caption_->font();
    big.setPixelSize(19);
    big.setBold(true);
    caption_->setFont(big);

    soon_ = new QLabel(this);
    soon_->setObjectName(QStringLiteral("soon"));
    soon_->setAlignment(Qt::AlignCenter);
    soon_->setWordWrap(true);
    QFont middle = soon_->font();
    middle.setPixelSize(16);
    soon_->setFont(middle);

    help_ = new QLabel(translated(state,
                                  "Проведите по экрану вправо, чтобы вернуться в меню, "
                                  "или влево, чтобы перейти к следующему разделу."),
                       this);
    help_->setAlignment(Qt::AlignCenter);
    help_->setWordWrap(true);
    QFont small = help_->font();
    small.setPixelSize(13);
    help_->setFont(small);

    auto* header = new QHBoxLayout;
    header->addWidget(back_);
    header->addWidget(caption_, 1);
    header->addWidget(next_);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 24);
    layout->addLayout(header);
    layout->addStretch(2);
    layout->addWidget(soon_);
    layout->addSpacing(16);
    layout->addWidget(help_);
    layout->addStretch(3);
    for (QLabel* label : {caption_, soon_, help_}) {
        label->setMargin(8);
    }
}

void comingPage::activateView(const std::string& /*gid*/) {
    correctBackground(this, true, state_, pictures_);
    const QColor text = platform::toQColor(state_.textColor);
    for (QLabel* label : {caption_, soon_, help_}) {
        setTextColor(label, text);
    }
    soon_->setText(translated(state_, "Этот раздел скоро появится в программе."));
    setHeaderButtonPicture(back_, pictures_, "text-back.png", state_);
    setHeaderButtonPicture(next_, pictures_, "text-next.png", state_);
}

}  // namespace tilika::frame
