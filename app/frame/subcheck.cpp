#include "frame/subcheck.h"

#include <QTimer>

#include "frame/textdata.h"

namespace tilika::frame {

subcheck::subcheck(const TextPageEnvironment& environment, core::AppState& state,
                   const platform::QtPictures& pictures, QWidget* host)
    : OverlayView(state, pictures, host) {
    setObjectName(QStringLiteral("subcheck"));
    text_ = new textdata(environment, pictures, this);
    connect(text_, &textdata::checkClicked, this, &subcheck::checkClick);
    setBody(text_);
}

void subcheck::setCheckData(std::vector<std::string> marks, CheckHandler handler) {
    marks_ = std::move(marks);
    checkHandler_ = std::move(handler);
}

void subcheck::prepare(const QString& caption, const QString& file, std::optional<long long> group,
                       int basetp) {
    basetp_ = basetp;
    showOver(caption);
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

}  // namespace tilika::frame
