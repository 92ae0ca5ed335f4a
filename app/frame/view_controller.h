#pragma once

#include <QPoint>
#include <QPointer>
#include <QRect>
#include <QWidget>

#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "core/date.h"
#include "core/write_result.h"
#include "frame/navigation.h"

class QKeyEvent;
class QVariantAnimation;

namespace tilika::session {
class Application;
}  // namespace tilika::session
namespace tilika::core {
struct AppState;
struct Context;
struct MenuRow;
}  // namespace tilika::core
namespace tilika::cloud {
class Records;
class RecordsCloud;
}  // namespace tilika::cloud
namespace tilika::development {
class CheckCloud;
}  // namespace tilika::development
namespace tilika::diary {
class DayCloud;
class ReferenceLists;
class SystemPhotoSource;
class noteEdit;
}  // namespace tilika::diary
namespace tilika::platform {
class FingerprintReader;
class ImageCodec;
class QtPictures;
}  // namespace tilika::platform

namespace tilika::frame {

class AppLock;
class LockCover;
class Popups;
class Tab;
class TiltSensor;
class background;
class dic;
class mainMenu;
class passwordView;
class restoreScreen;
struct FormAnswer;

// What the root screen needs of the running program.
struct RootServices {
    session::Application& application;
    const platform::QtPictures& pictures;
    const platform::ImageCodec& images;
    // The folder of the program's reading matter.
    std::filesystem::path contentFolder;
};

// The root screen: the main menu underneath and, over it, the pages of the
// child selected on it. A page comes from its row on the menu; a swipe to
// the left (or the right arrow key, or a tilt) brings the next page, a
// swipe to the right (or the left arrow key, Escape, a tilt) the menu.
//
// Two holders carry the pages: the page shown, and under it, to its right,
// the page that follows, so that a swipe shows it at once.
class ViewController final : public QWidget {
    Q_OBJECT

public:
    explicit ViewController(RootServices services, QWidget* parent = nullptr);
    ~ViewController() override;

    // How a page comes on top: sliding in over the menu, or at once where
    // a swipe already brought it.
    enum class Entrance { slide, none };

    // Opens the page of a menu row for a child.
    void openTab(int pageId, const std::string& gid);
    // Reloads a page when it is marked for it; with `animation` also tells
    // it that it came on top.
    void updateTab(int pageId, const std::string& gid, bool animation);
    // Puts the page at a position of the menu table on top.
    void setActivePage(int position, Entrance entrance);
    void gotoMenu();
    void gotoNextPage();

    // The program has become active: the page shown is reloaded if it was
    // marked, and the menu redrawn if it changed or a day has passed.
    void becomeActive();

    // The profile form of a child, or of a new one without a guid.
    void setupShow(std::optional<std::string> gid);
    // The buttons of the welcome page: 1 what's new, 2 about the program,
    // 3 the first child's profile, 4 the cloud.
    void newVersion(int tag);

    // What is shown: 0 for the menu, else the page's id; and the page's
    // position in the menu table, from 1.
    int gCurTab() const { return gCurTab_; }
    int gPage() const { return gPage_; }
    mainMenu* menuTab() const { return menu_; }
    Popups& popups() { return *popups_; }
    // The page of this id, made when first asked for.
    Tab* tab(int pageId);
    // The holder of the page on top, and the one under it.
    QWidget* topHolder() const;
    QWidget* underHolder() const;
    // The profile form, once opened; the background chooser while it is up.
    dic* setupForm() const;
    background* backgroundScreen() const;
    TiltSensor* tiltSensor() const { return tilt_; }
    // The editor of a child's day, over the pages; `onClose` runs once it is
    // saved and closed, `anchor` is what it was opened from, in this
    // screen's coordinates. Every screen that opens a day comes here.
    void openDayEditor(core::Date day, const std::string& gid, std::function<void()> onClose = {},
                       std::optional<QRect> anchor = std::nullopt);
    diary::noteEdit* dayEditor() const;

    // The restore of the diary from a daily copy, over everything; it comes
    // up by itself when the diary was found damaged.
    void showRestore();
    restoreScreen* restoreScreenShown() const;
    // Whether the pages are on their way somewhere; a swipe waits for them.
    bool isSliding() const;

    // The keypad of the program's code over everything: 1 asks for the
    // code, 2 sets a new one (in view_controller_lock.cpp).
    void showPass(int mode);
    passwordView* passDialog() const;
    // The cover that hides the content while the window is elsewhere.
    void lockView();
    void unlockView();
    QWidget* lockCover() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    // ---- the pager ----
    // Whether the pages may move now: a page is up, and no popup, form or
    // dialog lies over it.
    bool canMove() const;
    // No popup, form, chooser or dialog lies over the screen, and the window
    // has the focus.
    bool nothingOver() const;
    // Lays the holders out with the page on top `offset` pixels to the right
    // of its place, and the menu following at a quarter of the way.
    void setOffset(int offset);
    void animateOffset(int to, int durationMs, std::function<void()> done);
    void swipeMove(QPoint global);
    void swipeEnd();
    bool handleNavigationKey(const QKeyEvent& event);
    // What lies on top and covers the window: a popup's layer, a form, the
    // chooser, the page, or the menu; nothing while the pages move.
    QWidget* layerOnTop() const;
    void cancelPress(QPoint global);
    void onTilt(double x, bool upsideDown);
    void correctTilt();

    // ---- the menu's rows (in view_controller_actions.cpp) ----
    void menuClick(const core::MenuRow& row);
    void mainMenuClick(const core::MenuRow& row, bool checked);
    void settingClick(const core::MenuRow& row, bool on);
    // Saves the profile form under the child's guid; false when it could not
    // be saved, and the form stays.
    bool editDic(const FormAnswer& answer, const std::string& gid);
    void showBackgrounds();
    void changeBackground(long long id);
    void comingSoon(const std::string& caption);
    // Tells the user that what they chose or typed was not saved; false when
    // it was not.
    bool saved(const core::WriteResult& result, QWidget* over);
    void viewDidAppear();

    // ---- the lock (in view_controller_lock.cpp) ----
    void onPassTimer();
    void passwordFinished(int action);
    // The switch of the lock shows what is stored, whatever the keypad did.
    void afterPassword();

    RootServices services_;
    core::AppState& state_;
    core::Context& context_;
    std::unique_ptr<Popups> popups_;
    std::unique_ptr<diary::ReferenceLists> lists_;
    mainMenu* menu_;
    // body and body2; `reg_` tells which is on top.
    std::array<QWidget*, 2> holders_{};
    int reg_ = 1;
    // By page id, 1 to 10.
    std::array<QPointer<Tab>, 11> tabs_{};
    int gCurTab_ = 0;
    int gPage_ = 1;
    int offset_ = 0;
    QPointer<QVariantAnimation> slide_;

    // A drag that may become a swipe: where it started, and whether it has.
    std::optional<QPoint> pressAt_;
    QPointer<QWidget> pressed_;
    bool swiping_ = false;
    bool cancellingPress_ = false;
    int swipeStartOffset_ = 0;

    TiltSensor* tilt_;
    TiltNavigator tiltNavigator_;

    // Where changes go to be mirrored in the cloud folder.
    diary::DayCloud& dayCloud();
    development::CheckCloud& checkCloud();
    cloud::RecordsCloud& recordsCloud();
    std::unique_ptr<cloud::Records> records_;
    std::unique_ptr<cloud::RecordsCloud> cloud_;
    std::unique_ptr<diary::SystemPhotoSource> photos_;
    QPointer<diary::noteEdit> dayEditor_;
    QPointer<dic> setupForm_;
    QPointer<background> background_;
    QPointer<restoreScreen> restore_;
    bool appeared_ = false;

    std::unique_ptr<AppLock> lock_;
    std::unique_ptr<platform::FingerprintReader> fingerprint_;
    QPointer<passwordView> passDialog_;
    QPointer<LockCover> cover_;
};

}  // namespace tilika::frame
