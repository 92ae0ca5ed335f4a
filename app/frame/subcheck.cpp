#include "frame/subcheck.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/app_state.h"
#include "frame/elided_label.h"
#include "frame/look.h"
#include "frame/textdata.h"
#include "platform/qt_pictures.h"

namespace tilika::frame {

subcheck::subcheck(const TextPageEnvironment& environment, core::AppState& state,
                   const platform::QtPictures& pictures, QWidget* host)
    : QWidget(host->window()), state_(state), pictures_(pictures) {
    setObjectName(QStringLiteral("subcheck"));
    setAutoFillBackground(true);
    setFocusPolicy(Qt::StrongFocus);
    back_ = headerButton(translatedText(state, "Назад"), this);
    back_->setObjectName(QStringLiteral("back"));
    connect(back_, &QToolButton::clicked, this, &subcheck::closeView);
    caption_ = new ElidedLabel({}, this, 19, true);
    caption_->setObjectName(QStringLiteral("caption"));
    caption_->setAlignment(Qt::AlignCenter);
    // The caption stays in the middle of the bar.
    auto* balance = new QWidget(this);
    balance->setFixedWidth(44);
    QWidget* bar = captionBar(back_, nullptr, caption_, nullptr, balance, this);
    text_ = new textdata(environment, pictures, this);
    connect(text_, &textdata::checkClicked, this, &subcheck::checkClick);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 0);
    layout->addWidget(bar);
    layout->addWidget(text_, 1);
    // It covers the window whatever size the window takes.
    parentWidget()->installEventFilter(this);
}

void subcheck::setCheckData(std::vector<std::string> marks, CheckHandler handler) {
    marks_ = std::move(marks);
    checkHandler_ = std::move(handler);
}

void subcheck::prepare(const QString& caption, const QString& file, std::optional<long long> group,
                       int basetp) {
    basetp_ = basetp;
    correctBackground(this, true, state_, pictures_);
    setTextColor(caption_, platform::toQColor(state_.textColor));
    setHeaderButtonPicture(back_, pictures_, "text-back.png", state_);
    caption_->setText(translatedText(state_, caption.toStdString()));
    setGeometry(parentWidget()->rect());
    if (!open_) {
        // The pages under it hold still while it is up.
        open_ = true;
        ++state_.openForms;
    }
    show();
    raise();
    setFocus();
    text_->prepareTextFromFile(file, true);
    if (checkHandler_) {
        text_->page().setCheckData(marks_);
        text_->refresh();
    }
    if (group) {
        // The page lays itself out once shown at its width.
        QTimer::singleShot(0, this, [this, group] { text_->hiliteGroup(*group, false); });
    }
}

void subcheck::checkClick(long long tag) {
    if (!checkHandler_) {
        return;
    }
    TextPage& page = text_->page();
    const auto guid = page.tagguid(tag);
    if (!guid) {
        return;
    }
    text_->checkClick(tag);
    const bool checked = page.checkState(*guid);
    // Opened again, the page shows the ticks as they are now.
    std::erase(marks_, *guid);
    if (checked) {
        marks_.push_back(*guid);
    }
    checkHandler_(*guid, checked, page.getHiddenText(*guid), basetp_);
}

bool subcheck::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        setGeometry(parentWidget()->rect());
    }
    return QWidget::eventFilter(watched, event);
}

void subcheck::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape || event->key() == Qt::Key_Back) {
        closeView();
        return;
    }
    QWidget::keyPressEvent(event);
}

void subcheck::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::BackButton) {
        closeView();
        return;
    }
    QWidget::mouseReleaseEvent(event);
}

subcheck::~subcheck() {
    if (open_) {
        --state_.openForms;
    }
}

void subcheck::closeView() {
    if (open_) {
        open_ = false;
        --state_.openForms;
    }
    hide();
    emit closed();
}

}  // namespace tilika::frame
