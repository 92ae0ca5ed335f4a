// What the rows of the main menu and the welcome page do.

#include <QAbstractButton>
#include <QFrame>
#include <QTimer>

#include "cloud/records.h"
#include "core/context.h"
#include "core/ids.h"
#include "core/settings_keys.h"
#include "diary/day_cloud.h"
#include "diary/note_edit.h"
#include "diary/photo_source.h"
#include "diary/profile_form.h"
#include "diary/profiles.h"
#include "frame/app_lock.h"
#include "frame/background_screen.h"
#include "frame/dic.h"
#include "frame/look.h"
#include "frame/main_menu.h"
#include "frame/popup_panels.h"
#include "frame/popups.h"
#include "frame/translation.h"
#include "frame/view_controller.h"
#include "platform/settings_store.h"
#include "session/application.h"
#include "session/menu_blocks.h"

namespace tilika::frame {

namespace {

// The tag of a message that needs no answer.
constexpr int kNoAnswerTag = 2;

}  // namespace

dic* ViewController::setupForm() const {
    return setupForm_;
}

background* ViewController::backgroundScreen() const {
    return background_;
}

void ViewController::menuClick(const core::MenuRow& row) {
    // A row half hidden under a page doesn't take taps.
    if (gCurTab_ != 0) {
        return;
    }
    switch (session::menuCommand(row.id)) {
        case session::MenuCommand::openPage:
            openTab(row.id, row.gid);
            break;
        case session::MenuCommand::childSettings:
            setupShow(row.gid);
            break;
        default:
            comingSoon(row.name);
            break;
    }
}

void ViewController::mainMenuClick(const core::MenuRow& row, bool checked) {
    if (gCurTab_ != 0) {
        // A row glimpsed while a page slides in does nothing; a switch goes
        // back to what it was.
        if (QAbstractButton* view = menu_->mainRow(row.id);
            view != nullptr && view->isCheckable()) {
            view->setChecked(!checked);
        }
        return;
    }
    switch (session::menuCommand(row.id)) {
        case session::MenuCommand::addChild:
            setupShow(std::nullopt);
            break;
        case session::MenuCommand::background:
            showBackgrounds();
            break;
        case session::MenuCommand::restore:
            showRestore();
            break;
        case session::MenuCommand::rateProgram:
            if (!services_.application.gotoAppStore()) {
                popups_->message(
                    translatedText(state_, "Страница программы в магазине пока недоступна."),
                    QString::fromStdString(row.comment), kNoAnswerTag, this);
            }
            break;
        case session::MenuCommand::setting:
            settingClick(row, checked);
            break;
        case session::MenuCommand::coming:
            comingSoon(row.name.empty() ? row.comment : row.name);
            break;
        default:
            break;
    }
}

void ViewController::settingClick(const core::MenuRow& row, bool on) {
    const session::SwitchEffect effect = session::switchEffect(row.id, on);
    if (effect == session::SwitchEffect::setPassword) {
        showPass(2);
        return;
    }
    if (effect == session::SwitchEffect::dropPassword) {
        // Turning the lock off needs no code: whoever holds the open
        // program could read it all anyway.
        saved(lock_->turnOff(), this);
        return;
    }
    saved(changeMenuSetting(context_.settings, state_, row.id, on), this);
    if (effect == session::SwitchEffect::tilt) {
        correctTilt();
    } else if (effect == session::SwitchEffect::redrawMenuCounts) {
        QTimer::singleShot(1000, menu_, [this] { menu_->updateMenu(); });
    } else if (effect == session::SwitchEffect::rebuildReminders) {
        services_.application.rebuildNotifications();
    }
}

void ViewController::setupShow(std::optional<std::string> gid) {
    const diary::ProfileFormContent content =
        diary::ProfileForm(context_, services_.images)
            .setupDialog(gid ? std::optional<std::string_view>(*gid) : std::nullopt);
    if (setupForm_ == nullptr) {
        setupForm_ = new dic(
            FormServices{state_, context_.dates, *popups_, services_.pictures, lists_.get()}, this);
        setupForm_->setDocumentsOpener(
            [this](const dic::DocumentsRequest& request, const auto& /*done*/) {
                comingSoon(request.caption.toStdString());
            });
    }
    setupForm_->setGid(gid.value_or(""));
    // A new child gets its guid as the form opens, so that a second OK after
    // a save that failed stores the same child, portrait and all.
    const std::string guid = gid ? *gid : core::newID();
    setupForm_->prepare(content.rows, translatedText(state_, content.caption), this, this,
                        content.parentFlag, {},
                        [this, guid](const FormAnswer& answer) { return editDic(answer, guid); });
}

bool ViewController::editDic(const FormAnswer& answer, const std::string& guid) {
    const bool isNew = answer.parentFlag == diary::formflag::newChild;
    if (guid.empty()) {
        return true;
    }
    diary::SetupRecord record =
        diary::ProfileForm(context_, services_.images).setupArrayToDic(answer.rows, guid);
    if (!saved(
            diary::Profiles(context_).saveSetupData(diary::saveflag::form, std::move(record), guid),
            setupForm_)) {
        return false;
    }
    if (answer.rows.empty() && state_.activeGid == guid) {
        state_.activeGid.reset();
    } else if (isNew) {
        // A child just added is the one the parent means to go on with.
        state_.activeGid = guid;
    }
    if (!answer.rows.empty()) {
        dayCloud().dataToCloud(diary::DayCloud::kProfileRecord, context_.dates.now(), guid);
    }
    state_.markAllPagesDirty();
    state_.menuDirty = true;
    // The parent has just pressed OK: the menu shows the change at once
    // rather than at the next tick, and so does a page of the child on top.
    menu_->updateMenu();
    if (gCurTab_ != 0 && state_.activeGid) {
        updateTab(gCurTab_, *state_.activeGid, false);
    }
    if (isNew) {
        menu_->showChild(guid);
    }
    return true;
}

void ViewController::showBackgrounds() {
    if (background_ != nullptr) {
        return;
    }
    background_ = new background(
        translatedText(state_, "Фон программы"), backgroundItems(), state_, services_.pictures,
        [this](long long id) { changeBackground(id); }, this);
    background_->setGeometry(rect());
    background_->show();
    background_->raise();
    background_->setFocus();
}

void ViewController::changeBackground(long long id) {
    const core::WriteResult result = frame::changeBackground(state_, context_.settings, id);
    menu_->updateMenu();
    saved(result, background_ != nullptr ? static_cast<QWidget*>(background_) : this);
}

cloud::RecordsCloud& ViewController::recordsCloud() {
    if (cloud_ == nullptr) {
        records_ = std::make_unique<cloud::Records>(context_, services_.images);
        cloud_ = std::make_unique<cloud::RecordsCloud>(*records_);
    }
    return *cloud_;
}

diary::DayCloud& ViewController::dayCloud() {
    return recordsCloud();
}

development::CheckCloud& ViewController::checkCloud() {
    return recordsCloud();
}

diary::noteEdit* ViewController::dayEditor() const {
    return dayEditor_;
}

void ViewController::openDayEditor(core::Date day, const std::string& gid,
                                   std::function<void()> onClose, std::optional<QRect> anchor) {
    if (gid.empty()) {
        return;
    }
    if (dayEditor_ == nullptr) {
        photos_ = std::make_unique<diary::SystemPhotoSource>();
        dayEditor_ = new diary::noteEdit(
            diary::EditorServices{
                context_,
                FormServices{state_, context_.dates, *popups_, services_.pictures, lists_.get()},
                services_.images, dayCloud(), *photos_,
                [this](const std::string& caption) { comingSoon(caption); },
                [this] { services_.application.rebuildNotifications(); }},
            this);
    }
    dayEditor_->open(day, gid, std::move(onClose), anchor);
}

void ViewController::comingSoon(const std::string& caption) {
    popups_->message(translatedText(state_, "Этот раздел скоро появится в программе."),
                     translatedText(state_, caption), kNoAnswerTag, this);
}

bool ViewController::saved(const core::WriteResult& result, QWidget* over) {
    if (result) {
        return true;
    }
    popups_->message(translatedText(state_, result.message()), translatedText(state_, "Ошибка"),
                     kNoAnswerTag, over);
    return false;
}

void ViewController::viewDidAppear() {
    platform::SettingsStore& settings = context_.settings;
    if (!firstStartDue(settings, state_.versionKey)) {
        return;
    }
    // A first run with fresh data has closed "FirstStart"; on data from an
    // earlier version it is still open, and the page greets a new version.
    const bool newversion = settings.helpCheck(core::keys::firstStart);
    popups_->firstStart(
        this, [this](int tag) { newVersion(tag); }, newversion);
    firstStartDone(settings, state_.versionKey);
}

void ViewController::newVersion(int tag) {
    switch (tag) {
        case 1:
            comingSoon("Что нового");
            break;
        case 2:
            comingSoon("О программе");
            break;
        case 3:
            state_.activeGid.reset();
            menu_->realignMenu(false);
            // A new parent fills in the nameless child the program starts
            // with, rather than adding their own beside it.
            setupShow(diary::Profiles(context_).untouchedTemplateChild());
            break;
        case 4:
            comingSoon("Облако");
            break;
        default:
            break;
    }
}

}  // namespace tilika::frame
