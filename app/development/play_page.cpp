#include "development/play_page.h"

#include <QScrollArea>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/app_state.h"
#include "core/context.h"
#include "development/passport.h"
#include "diary/profiles.h"
#include "frame/elided_label.h"
#include "frame/look.h"
#include "frame/page_bar.h"
#include "frame/popup_panels.h"
#include "frame/textdata.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"

namespace tilika::development {

namespace {

constexpr const char* kPageCaption = "Игрушки";
// The brown of reading pages' headings, which reads well on light backdrops.
constexpr platform::Color kLightTitle{0.4, 0.2, 0};

}  // namespace

play::play(PlayServices services, QWidget* parent)
    : frame::Tab(kPageId, parent), services_(std::move(services)) {
    setAutoFillBackground(true);
    const core::AppState& state = services_.context.state;

    const frame::PageBar bar = frame::readingBar(this, state, kPageCaption);
    back_ = bar.back;
    caption_ = bar.caption;

    text_ = new frame::textdata(services_.popups.environment(), services_.pictures, this);
    text_->setObjectName(QStringLiteral("toys"));

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 0);
    layout->addWidget(bar.bar);
    layout->addWidget(text_, 1);
}

void play::applyLook() {
    core::AppState& state = services_.context.state;
    frame::correctBackground(this, true, state, services_.pictures);
    frame::correctBackgroundText(this, state);
    frame::setTextColor(caption_, platform::toQColor(state.textColor));
    frame::setHeaderButtonPicture(back_, services_.pictures, "text-back.png", state);
}

void play::activateView(const std::string& gid) {
    applyLook();
    core::Context& context = services_.context;
    const diary::SetupRecord setup = diary::Profiles(context).loadSetupData(gid);
    month_ = 0;
    if (setup.sbirthdate) {
        // The texts' date templates count from the birth.
        text_->page().setStartDate(setup.birthdate);
        month_ = Passport(context).getCurMonth(setup.birthdate);
    }
    // The page's own black text would vanish on a dark backdrop; the
    // colours are set either way, as the theme may have changed since.
    const core::AppState& state = context.state;
    frame::TextPage& page = text_->page();
    page.specialColor(state.textColor, state.lightTheme ? kLightTitle : state.accentColor,
                      page.highlightColor());
    text_->prepareTextFromFile(QString::fromLatin1(kFile), true);
    // The toys run to many screens. A scroll bar that turned up only after
    // the first layout would narrow the page and move every group away from
    // the place the running month was scrolled to.
    text_->scrollArea()->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
}

void play::activate() {
    if (month_ < 1) {
        return;
    }
    // The page lays itself out once shown at its width.
    QTimer::singleShot(0, this, [this] { text_->hiliteGroup(month_, false); });
}

}  // namespace tilika::development
