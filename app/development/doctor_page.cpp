#include "development/doctor_page.h"

#include <QLabel>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/app_state.h"
#include "core/context.h"
#include "development/passport.h"
#include "development/plane_table.h"
#include "diary/profiles.h"
#include "frame/dic.h"
#include "frame/elided_label.h"
#include "frame/look.h"
#include "frame/popup_panels.h"
#include "frame/subcheck.h"
#include "frame/textdata.h"
#include "platform/qt_pictures.h"
#include "session/form_dialogs.h"

namespace tilika::development {

namespace {

constexpr int kPageId = 8;
constexpr std::string_view kCaption = "К доктору";
constexpr std::string_view kHelpCaption = "Анализы";
// The tag the popups hand back for a message that asks nothing.
constexpr int kNoAnswerTag = 0;

QString qs(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

doctor::doctor(DoctorServices services, QWidget* parent)
    : frame::Tab(kPageId, parent),
      services_(std::move(services)),
      plan_(services_.context, services_.checkCloud, services_.cloud) {
    setAutoFillBackground(true);
    const core::AppState& state = services_.context.state;

    back_ = frame::menuButton(this, state);
    caption_ = new frame::ElidedLabel({}, this, 19, true);
    caption_->setObjectName(QStringLiteral("caption"));
    caption_->setAlignment(Qt::AlignCenter);
    card_ = frame::headerButton(frame::translatedText(state, kCardCaption), this);
    card_->setObjectName(QStringLiteral("cardButton"));
    connect(card_, &QToolButton::clicked, this, &doctor::tableClick);
    QWidget* bar = frame::captionBar(back_, nullptr, caption_, nullptr, card_, this);

    text_ = new frame::textdata(services_.popups.environment(), services_.pictures, this);
    text_->setObjectName(QStringLiteral("plan"));
    connect(text_, &frame::textdata::checkClicked, this, &doctor::checkClick);
    // A line of the plan leads to what its test is and how to get ready.
    connect(text_, &frame::textdata::linkClick, this, [this](qlonglong group) {
        openHelp(frame::translatedText(services_.context.state, kHelpCaption), qs(kDoctorHelpFile),
                 group, kDiaryBaseType);
    });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 0);
    layout->addWidget(bar);
    layout->addWidget(text_, 1);
}

doctor::~doctor() = default;

void doctor::applyLook() {
    core::AppState& state = services_.context.state;
    frame::correctBackground(this, true, state, services_.pictures);
    frame::setTextColor(caption_, platform::toQColor(state.textColor));
    frame::setHeaderButtonPicture(back_, services_.pictures, "text-back.png", state);
    frame::setHeaderButtonPicture(card_, services_.pictures, "ne-vaccin.png", state);
    caption_->setText(frame::translatedText(state, kCaption));
}

void doctor::activateView(const std::string& gid) {
    gid_ = gid;
    applyLook();
    const QString file = qs(kDoctorFile);
    text_->prepareTextFromFile(file, true, append_ ? append_(file) : std::nullopt);
    showMarks();

    core::Context& context = services_.context;
    const diary::SetupRecord setup = diary::Profiles(context).loadSetupData(gid_);
    if (setup.sbirthdate) {
        const long long period = Passport(context).getCurPeriod(setup);
        // The page lays itself out once shown at its width.
        QTimer::singleShot(0, this, [this, period] { text_->hiliteGroup(period, false); });
    }
}

void doctor::checkClick(qlonglong tag) {
    frame::TextPage& page = text_->page();
    const auto guid = page.tagguid(tag);
    if (!guid) {
        return;
    }
    text_->checkClick(tag);
    tick(*guid, page.checkState(*guid), page.getHiddenText(*guid), kDiaryBaseType);
}

void doctor::tick(const std::string& guid, bool checked, const std::string& hiddenText,
                  int basetp) {
    core::AppState& state = services_.context.state;
    const CheckOutcome outcome = plan_.checkClick(guid, checked, hiddenText, basetp, gid_);
    if (!outcome.result) {
        services_.popups.message(frame::translatedText(state, outcome.result.message()),
                                 frame::translatedText(state, "Ошибка"), kNoAnswerTag, window());
        // The box shows what is kept.
        showMarks();
        return;
    }
    if (!outcome.offer) {
        return;
    }
    if (noteForm_ == nullptr) {
        core::Context& context = services_.context;
        noteForm_ = new frame::dic(frame::FormServices{state, context.dates, services_.popups,
                                                       services_.pictures, services_.lists},
                                   window());
        noteForm_->setObjectName(QStringLiteral("noteForm"));
    }
    noteForm_->setGid(gid_);
    session::DetailRequest request;
    request.kind = kNoteFormKind;
    request.cap = outcome.offer->caption;
    request.msg = outcome.offer->prompt;
    request.dat = outcome.offer->text;
    QWidget* host = help_ != nullptr && help_->isVisible() ? static_cast<QWidget*>(help_) : this;
    noteForm_->detailPrepare(request, host, this, [this](const frame::FormAnswer& answer) {
        const std::string message =
            plan_.insertIntoNote(frame::fieldValue(answer.rows, "text").value_or(""),
                                 frame::fieldValue(answer.rows, "date").value_or(""), gid_);
        if (!message.empty()) {
            const core::AppState& st = services_.context.state;
            services_.popups.message(frame::translatedText(st, message),
                                     frame::translatedText(st, "Ошибка"), kNoAnswerTag, noteForm_);
            return false;
        }
        return true;
    });
}

void doctor::tableClick() {
    if (table_ == nullptr) {
        table_ = new planeTable(services_.context.state, services_.pictures, this);
    }
    table_->prepare(plan_.loadMarks(gid_));
}

void doctor::openHelp(const QString& caption, const QString& file, std::optional<long long> group,
                      int basetp) {
    if (help_ == nullptr) {
        help_ = new frame::subcheck(services_.popups.environment(), services_.context.state,
                                    services_.pictures, this);
        // Ticks made over the plan show on it once the text is closed.
        connect(help_, &frame::subcheck::closed, this, &doctor::showMarks);
    }
    help_->setCheckData(plan_.loadMarks(gid_),
                        [this](const std::string& guid, bool checked, const std::string& hidden,
                               int base) { tick(guid, checked, hidden, base); });
    help_->prepare(caption, file, group, basetp);
}

void doctor::showMarks() {
    frame::TextPage& page = text_->page();
    page.uncheckAll();
    page.setCheckData(plan_.loadMarks(gid_));
    text_->refresh();
}

planeTable* doctor::table() const {
    return table_;
}

frame::subcheck* doctor::help() const {
    return help_;
}

frame::dic* doctor::noteForm() const {
    return noteForm_ != nullptr && noteForm_->isOpen() ? noteForm_.data() : nullptr;
}

}  // namespace tilika::development
