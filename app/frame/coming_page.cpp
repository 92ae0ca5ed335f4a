#include "frame/coming_page.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/app_state.h"
#include "frame/elided_label.h"
#include "frame/form_shared.h"
#include "frame/look.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"

namespace tilika::frame {

comingPage::comingPage(int pageId, const QString& caption, core::AppState& state,
                       const platform::QtPictures& pictures, QWidget* parent)
    : Tab(pageId, parent), state_(state), pictures_(pictures) {
    setAutoFillBackground(true);

    back_ = menuButton(this, state);
    next_ = headerButton(translatedText(state, "Следующий раздел"), this);
    next_->setObjectName(QStringLiteral("toNextPage"));
    connect(next_, &QToolButton::clicked, this, &Tab::nextPageRequested);

    caption_ = new ElidedLabel(caption, this, 19, true);
    caption_->setObjectName(QStringLiteral("caption"));
    soon_ = form::wrappedLabel({}, this, 16, false);
    soon_->setObjectName(QStringLiteral("soon"));
    help_ = form::wrappedLabel(translatedText(state,
                                              "Проведите по экрану вправо, чтобы вернуться в меню, "
                                              "или влево, чтобы перейти к следующему разделу."),
                               this, 13, false);

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
        label->setAlignment(Qt::AlignCenter);
        label->setMargin(8);
    }
}

void comingPage::activateView(const std::string& /*gid*/) {
    correctBackground(this, true, state_, pictures_);
    const QColor text = platform::toQColor(state_.textColor);
    for (QLabel* label : {caption_, soon_, help_}) {
        setTextColor(label, text);
    }
    soon_->setText(translatedText(state_, "Этот раздел скоро появится в программе."));
    setHeaderButtonPicture(back_, pictures_, "text-back.png", state_);
    setHeaderButtonPicture(next_, pictures_, "text-next.png", state_);
}

}  // namespace tilika::frame
