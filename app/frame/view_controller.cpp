#include "frame/view_controller.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QTabBar>
#include <QTextEdit>
#include <QTimer>
#include <QVariantAnimation>

#include "cloud/records.h"
#include "core/context.h"
#include "development/baby_page.h"
#include "development/doctor_page.h"
#include "development/growth_page.h"
#include "development/korm.h"
#include "development/passport_page.h"
#include "development/plane_page.h"
#include "development/play_page.h"
#include "development/ruler_view.h"
#include "development/tooth_page.h"
#include "diary/day_cloud.h"
#include "diary/edit_table.h"
#include "diary/note.h"
#include "diary/note_edit.h"
#include "diary/photo_source.h"
#include "diary/reference_lists.h"
#include "frame/app_lock.h"
#include "frame/background_screen.h"
#include "frame/dialog_width.h"
#include "frame/dic.h"
#include "frame/look.h"
#include "frame/main_menu.h"
#include "frame/old_files_run.h"
#include "frame/password_view.h"
#include "frame/popup_panels.h"
#include "frame/restore_screen.h"
#include "frame/tab.h"
#include "frame/text_page.h"
#include "frame/tilt_sensor.h"
#include "frame/translation.h"
#include "medication/inday.h"
#include "platform/fingerprint_reader.h"
#include "platform/qt_pictures.h"
#include "platform/shell.h"
#include "session/application.h"
#include "session/menu_blocks.h"

namespace tilika::frame {

namespace {

constexpr int kSlideMs = 400;
constexpr int kPassportPage = 1;
constexpr int kDayPage = 2;
constexpr int kGrowthPage = 3;
constexpr int kToothPage = 6;
constexpr int kFeedingPage = 7;
constexpr int kDoctorPage = 8;
constexpr int kDiaryPage = 9;
constexpr int kPlanePage = 10;
// A drag becomes a swipe once it has gone this far, mostly sideways.
constexpr int kSwipeStart = 12;

// The fields that hold each page, by its id.
constexpr std::array<const char*, 11> kTabNames = {
    "",         "passportTab", "indayTab",  "titleTab", "babyTab", "playTab",
    "toothTab", "kormTab",     "doctorTab", "noteTab",  "planeTab"};

bool editsText(const QWidget* widget) {
    return qobject_cast<const QLineEdit*>(widget) != nullptr ||
           qobject_cast<const QTextEdit*>(widget) != nullptr ||
           qobject_cast<const QPlainTextEdit*>(widget) != nullptr ||
           qobject_cast<const QAbstractSpinBox*>(widget) != nullptr;
}

// Controls whose own keys are the arrows (and Escape, for the text ones).
bool usesArrows(const QWidget* widget) {
    return editsText(widget) || qobject_cast<const QComboBox*>(widget) != nullptr ||
           qobject_cast<const QAbstractSlider*>(widget) != nullptr ||
           qobject_cast<const QAbstractItemView*>(widget) != nullptr ||
           qobject_cast<const QTabBar*>(widget) != nullptr ||
           qobject_cast<const development::vesslider*>(widget) != nullptr;
}

// Enter and Return press the focused button, as Space does.
bool pressButton(QWidget* widget, const QKeyEvent& event) {
    auto* button = qobject_cast<QAbstractButton*>(widget);
    if (button == nullptr || (event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter) ||
        (event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) {
        return false;
    }
    if (!event.isAutoRepeat() && button->isEnabled()) {
        button->click();
    }
    return true;
}

// Lists whose rows a drag to the left works (it reveals a row's delete).
bool usesLeftDrags(const QWidget* widget) {
    for (const QWidget* w = widget; w != nullptr && !w->isWindow(); w = w->parentWidget()) {
        if (w->property("ownsLeftDrags").toBool()) {
            return true;
        }
    }
    return false;
}

// Controls that a sideways drag works, inside a text view's viewport too.
bool usesDrags(const QWidget* widget) {
    for (const QWidget* w = widget; w != nullptr; w = w->parentWidget()) {
        if (editsText(w) || qobject_cast<const QAbstractSlider*>(w) != nullptr ||
            qobject_cast<const development::vesslider*>(w) != nullptr ||
            qobject_cast<const development::PlaneStrip*>(w) != nullptr) {
            return true;
        }
        if (w->isWindow()) {
            break;
        }
    }
    return false;
}

}  // namespace

ViewController::ViewController(RootServices services, QWidget* parent)
    : QWidget(parent),
      services_(std::move(services)),
      state_(services_.application.state()),
      context_(services_.application.context()),
      tilt_(new TiltSensor(this)),
      lock_(std::make_unique<AppLock>(context_.settings, context_.clock)) {
    setWindowTitle(QStringLiteral("Тилика"));
    new DialogWidthLimit(this);
    setFocusPolicy(Qt::StrongFocus);
    popups_ =
        std::make_unique<Popups>(state_, context_.settings, services_.pictures,
                                 TextPageEnvironment{state_, services_.pictures.pictures(),
                                                     context_.dates, services_.contentFolder});
    lists_ = std::make_unique<diary::ReferenceLists>(context_);

    menu_ = new mainMenu(
        context_, services_.pictures,
        MenuActions{[this](const core::MenuRow& row) { menuClick(row); },
                    [this](const core::MenuRow& row, bool on) { mainMenuClick(row, on); }},
        this);
    for (QWidget*& holder : holders_) {
        holder = new QWidget(this);
        holder->hide();
    }
    holders_[0]->setObjectName(QStringLiteral("body"));
    holders_[1]->setObjectName(QStringLiteral("body2"));

    connect(tilt_, &TiltSensor::tilted, this, &ViewController::onTilt);
    correctTilt();
    // Swipes start on any widget of a page, and the arrow keys work whatever
    // on the page has the focus, so both are watched for the whole program.
    qApp->installEventFilter(this);
    // A damaged diary was put aside at the start; before anything else the
    // user chooses a copy to go on with, or an empty start.
    if (services_.application.baseDamaged()) {
        showRestore();
    }
}

ViewController::~ViewController() {
    qApp->removeEventFilter(this);
    // The forms, pages and dialogs hold the popups and the lists, which are
    // members and would go first.
    qDeleteAll(findChildren<QWidget*>(Qt::FindDirectChildrenOnly));
}

// ---- pages ----

Tab* ViewController::tab(int pageId) {
    if (pageId < 1 || pageId >= static_cast<int>(tabs_.size())) {
        return nullptr;
    }
    QPointer<Tab>& slot = tabs_[static_cast<std::size_t>(pageId)];
    if (slot == nullptr) {
        if (pageId == kDiaryPage) {
            auto* diary = new diary::note(
                diary::NoteServices{context_, services_.pictures, *popups_,
                                    [this](const std::string& caption) { comingSoon(caption); }},
                this);
            // The editor comes back to the diary, which reloads its year
            // and finds the day it was opened from.
            QPointer<diary::note> page = diary;
            diary->setDayOpener([this, page](const diary::DayNote& day, QRect anchor) {
                if (!day.dat) {
                    return;
                }
                const QRect here(mapFrom(window(), anchor.topLeft()), anchor.size());
                openDayEditor(
                    *day.dat, page->gid(),
                    [page] {
                        if (page != nullptr) {
                            page->reload();
                        }
                    },
                    here);
            });
            slot = diary;
        } else if (pageId == kPassportPage) {
            auto* sheet = new development::passport(
                development::PassportServices{
                    context_, services_.pictures, *popups_, lists_.get(),
                    [this](const std::string& caption) { comingSoon(caption); }},
                this);
            sheet->setProfileOpener([this](const std::string& gid) { setupShow(gid); });
            sheet->setDayOpener(
                [this](core::Date date, const std::string& gid, std::function<void()> onClose) {
                    openDayEditor(date, gid, std::move(onClose));
                });
            slot = sheet;
        } else if (pageId == kFeedingPage) {
            slot =
                new development::korm(development::KormServices{context_, services_.pictures,
                                                                *popups_, lists_.get(), dayCloud()},
                                      this);
        } else if (pageId == kDayPage) {
            auto* day = new medication::inday(
                medication::InDayServices{context_, services_.pictures, *popups_,
                                          [this] { services_.application.rebuildNotifications(); }},
                this);
            day->setDayOpener(
                [this](core::Date date, const std::string& gid, std::function<void()> onClose) {
                    openDayEditor(date, gid, std::move(onClose));
                });
            slot = day;
        } else if (pageId == kGrowthPage) {
            auto* growth = new development::title(
                development::GrowthServices{context_, services_.pictures, *popups_}, this);
            growth->setTableOpener(
                [this](int regim, const std::string& gid, std::function<void()> onClose) {
                    // One table over the window, made when first asked for.
                    auto* table = findChild<diary::edittable*>(QStringLiteral("edittable"),
                                                               Qt::FindDirectChildrenOnly);
                    if (table == nullptr) {
                        table = new diary::edittable(context_,
                                                     FormServices{state_, context_.dates, *popups_,
                                                                  services_.pictures, lists_.get()},
                                                     dayCloud(), this);
                    }
                    table->prepare(regim, gid, std::move(onClose));
                });
            slot = growth;
        } else if (pageId == kToothPage) {
            auto* teeth = new development::tooth(
                development::ToothServices{context_, services_.pictures}, this);
            teeth->setDayOpener(
                [this](core::Date date, const std::string& gid, std::function<void()> onClose) {
                    openDayEditor(date, gid, std::move(onClose));
                });
            slot = teeth;
        } else if (pageId == development::baby::kPageId || pageId == development::play::kPageId) {
            // The skills and the toys only read.
            if (pageId == development::baby::kPageId) {
                slot = new development::baby(
                    development::BabyServices{context_, services_.pictures, *popups_}, this);
            } else {
                slot = new development::play(
                    development::PlayServices{context_, services_.pictures, *popups_}, this);
            }
        } else if (pageId == kDoctorPage) {
            slot = new development::doctor(
                development::DoctorServices{context_, services_.pictures, *popups_, lists_.get(),
                                            dayCloud(), checkCloud()},
                this);
        } else {
            static_assert(kPlanePage + 1 == std::tuple_size_v<decltype(tabs_)>,
                          "the timeline is the last page");
            slot = new development::plane(
                development::PlaneServices{context_, services_.pictures, *popups_,
                                           services_.application.shell()},
                this);
        }
        if (pageId < static_cast<int>(kTabNames.size())) {
            slot->setObjectName(QString::fromLatin1(kTabNames[static_cast<std::size_t>(pageId)]));
        }
        slot->hide();
        connect(slot, &Tab::menuRequested, this, &ViewController::gotoMenu);
        connect(slot, &Tab::nextPageRequested, this, &ViewController::gotoNextPage);
    }
    return slot;
}

QWidget* ViewController::topHolder() const {
    return holders_[reg_ == 1 ? 0 : 1];
}

QWidget* ViewController::underHolder() const {
    return holders_[reg_ == 1 ? 1 : 0];
}

void ViewController::updateTab(int pageId, const std::string& gid, bool animation) {
    if (pageId < 0 || pageId >= core::kPageCount) {
        return;
    }
    bool& dirty = state_.pageDirty[static_cast<std::size_t>(pageId)];
    if (dirty) {
        dirty = false;
        if (pageId == 0) {
            menu_->updateMenu();
        } else if (Tab* page = tab(pageId)) {
            page->activateView(gid);
        }
    }
    if (animation && pageId >= 1 && pageId <= 10) {
        if (Tab* page = tab(pageId)) {
            page->activate();
        }
    }
}

void ViewController::openTab(int pageId, const std::string& gid) {
    state_.activeGid = gid;
    updateTab(pageId, gid, true);
    const int position = session::pagePosition(state_.menuItems, pageId);
    if (position == 0) {
        return;
    }
    const int next =
        session::pageIdAt(state_.menuItems, nextPagePosition(position, state_.pageCount));
    updateTab(next, gid, false);
    setActivePage(position, gCurTab_ == 0 ? Entrance::slide : Entrance::none);
}

void ViewController::setActivePage(int position, Entrance entrance) {
    const int pageId = session::pageIdAt(state_.menuItems, position);
    Tab* page = tab(pageId);
    if (page == nullptr) {
        return;
    }
    gCurTab_ = pageId;
    gPage_ = position;
    Tab* next =
        tab(session::pageIdAt(state_.menuItems, nextPagePosition(position, state_.pageCount)));

    // The page that a swipe brought in already lies in the lower holder: it
    // becomes the upper one where it is.
    if (page->parentWidget() == underHolder()) {
        reg_ = reg_ == 1 ? 2 : 1;
    }
    for (QWidget* holder : holders_) {
        for (QWidget* widget : holder->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            if (widget != page && widget != next) {
                widget->hide();
                widget->setParent(this);
            }
        }
    }
    const auto place = [](Tab* tab, QWidget* holder) {
        if (tab->parentWidget() != holder) {
            tab->setParent(holder);
        }
        tab->setGeometry(holder->rect());
        tab->show();
    };
    place(page, topHolder());
    if (next != nullptr && next != page) {
        place(next, underHolder());
    }
    for (QWidget* holder : holders_) {
        holder->show();
    }
    underHolder()->raise();
    topHolder()->raise();
    // Enter or space must not reach a menu row hidden under the page.
    if (QWidget* focus = QApplication::focusWidget();
        focus != nullptr && menu_->isAncestorOf(focus)) {
        setFocus();
    }

    if (slide_ != nullptr) {
        slide_->stop();
    }
    switch (entrance) {
        case Entrance::slide:
            setOffset(width());
            animateOffset(0, kSlideMs, {});
            break;
        case Entrance::none:
            setOffset(0);
            break;
    }
}

void ViewController::setOffset(int offset) {
    offset_ = offset;
    const int w = width();
    topHolder()->setGeometry(offset, 0, w, height());
    underHolder()->setGeometry(offset + w, 0, w, height());
    // The menu shows from under the page at a quarter of its pace.
    const int menuShift = offset > 0 ? -(w - offset) / 4 : -w / 4;
    menu_->setGeometry(menuShift, 0, w, height());
    // A menu wholly under a page takes neither taps nor the focus.
    menu_->setVisible(gCurTab_ == 0 || offset > 0);
}

void ViewController::animateOffset(int to, int durationMs, std::function<void()> done) {
    if (slide_ != nullptr) {
        slide_->stop();
    }
    auto* animation = new QVariantAnimation(this);
    animation->setDuration(durationMs);
    animation->setEasingCurve(QEasingCurve::OutCubic);
    animation->setStartValue(offset_);
    animation->setEndValue(to);
    connect(animation, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& value) { setOffset(value.toInt()); });
    if (done) {
        connect(animation, &QVariantAnimation::finished, this, std::move(done));
    }
    slide_ = animation;
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}

void ViewController::gotoMenu() {
    if (gCurTab_ == 0) {
        return;
    }
    gCurTab_ = 0;
    setFocus();
    animateOffset(width(), kSlideMs, [this] {
        for (QWidget* holder : holders_) {
            holder->hide();
        }
        setOffset(width());
        updateTab(0, state_.activeGid.value_or(""), true);
    });
}

void ViewController::gotoNextPage() {
    if (!state_.activeGid) {
        return;
    }
    const int position = nextPagePosition(gPage_, state_.pageCount);
    const int pageId = session::pageIdAt(state_.menuItems, position);
    const std::string gid = *state_.activeGid;
    if (gCurTab_ == 0) {
        openTab(pageId, gid);
        return;
    }
    animateOffset(-width(), kSlideMs, [this, pageId, gid] { openTab(pageId, gid); });
}

// ---- swipes, keys and tilts ----

bool ViewController::isSliding() const {
    return slide_ != nullptr && slide_->state() == QAbstractAnimation::Running;
}

bool ViewController::nothingOver() const {
    return !state_.popupShown && state_.openForms == 0 && background_ == nullptr &&
           restore_ == nullptr && (passDialog_ == nullptr || passDialog_->isHidden()) &&
           cover_ == nullptr && QApplication::activeModalWidget() == nullptr && isActiveWindow();
}

bool ViewController::canMove() const {
    return gCurTab_ != 0 && nothingOver();
}

bool ViewController::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type != QEvent::MouseButtonPress && type != QEvent::MouseMove &&
        type != QEvent::MouseButtonRelease && type != QEvent::KeyPress) {
        return false;
    }
    auto* widget = qobject_cast<QWidget*>(watched);
    if (widget == nullptr || cancellingPress_) {
        return false;
    }
    if (type == QEvent::KeyPress) {
        // Keys go to whatever has the focus in this window, which may be the
        // menu row that opened the page; controls that move with the arrows
        // keep them.
        if ((widget != this && !isAncestorOf(widget)) || usesArrows(widget)) {
            return false;
        }
        const auto& key = *static_cast<QKeyEvent*>(event);
        return pressButton(widget, key) || handleNavigationKey(key);
    }
    if (!topHolder()->isAncestorOf(widget)) {
        return false;
    }
    auto* mouse = static_cast<QMouseEvent*>(event);
    const QPoint global = mouse->globalPosition().toPoint();
    switch (type) {
        case QEvent::MouseButtonPress:
            if (mouse->button() == Qt::BackButton && canMove() && !isSliding()) {
                gotoMenu();
                return true;
            }
            if (mouse->button() == Qt::ForwardButton && canMove() && !isSliding()) {
                gotoNextPage();
                return true;
            }
            // Dragging across a text, a slider or a scroll bar is their own.
            pressAt_.reset();
            if (mouse->button() == Qt::LeftButton && !usesDrags(widget)) {
                pressAt_ = global;
                pressed_ = widget;
            }
            swiping_ = false;
            return false;
        case QEvent::MouseMove:
            if (!pressAt_ || !(mouse->buttons() & Qt::LeftButton)) {
                return false;
            }
            if (!swiping_) {
                const QPoint moved = global - *pressAt_;
                if (std::abs(moved.x()) < kSwipeStart ||
                    std::abs(moved.x()) < 2 * std::abs(moved.y()) || !canMove() || isSliding()) {
                    return false;
                }
                if (moved.x() < 0 && pressed_ != nullptr && usesLeftDrags(pressed_)) {
                    pressAt_.reset();
                    return false;
                }
                swiping_ = true;
                swipeStartOffset_ = offset_;
                cancelPress(global);
            }
            swipeMove(global);
            return true;
        case QEvent::MouseButtonRelease: {
            const bool was = swiping_;
            pressAt_.reset();
            swiping_ = false;
            if (was) {
                swipeEnd();
            }
            return was;
        }
        default:
            return false;
    }
}

void ViewController::cancelPress(QPoint global) {
    // The press that began the swipe taps nothing: the widget under it is
    // told the finger lifted far outside it.
    if (pressed_ == nullptr) {
        return;
    }
    const QPointF outside(-10000, -10000);
    QMouseEvent release(QEvent::MouseButtonRelease, outside, QPointF(global) + outside,
                        Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    cancellingPress_ = true;
    QApplication::sendEvent(pressed_, &release);
    cancellingPress_ = false;
    pressed_ = nullptr;
}

void ViewController::swipeMove(QPoint global) {
    const int w = width();
    const int dragged = swipeStartOffset_ + (global.x() - pressAt_->x());
    setOffset(std::clamp(dragged, -w, w));
}

void ViewController::swipeEnd() {
    switch (frame::swipeEnd(offset_, width())) {
        case SwipeEnd::menu:
            gotoMenu();
            break;
        case SwipeEnd::nextPage:
            gotoNextPage();
            break;
        case SwipeEnd::rest:
            animateOffset(0, kSlideMs, {});
            break;
    }
}

bool ViewController::handleNavigationKey(const QKeyEvent& event) {
    const int key = event.key();
    if (key != Qt::Key_Right && key != Qt::Key_Left && key != Qt::Key_Escape &&
        key != Qt::Key_Back) {
        return false;
    }
    if (!canMove()) {
        return false;
    }
    // A held key, or one pressed while the pages are moving, waits for them.
    if (event.isAutoRepeat() || isSliding()) {
        return true;
    }
    if (key == Qt::Key_Right) {
        gotoNextPage();
    } else {
        gotoMenu();
    }
    return true;
}

QWidget* ViewController::layerOnTop() const {
    // Children lie in their stacking order, the last on top.
    const QObjectList& layers = children();
    for (auto it = layers.rbegin(); it != layers.rend(); ++it) {
        auto* widget = qobject_cast<QWidget*>(*it);
        if (widget != nullptr && !widget->isWindow() && widget->isVisible() &&
            widget->geometry().contains(rect())) {
            return widget;
        }
    }
    return nullptr;
}

bool ViewController::focusNextPrevChild(bool next) {
    // Tab walks what lies on top; what it covers takes no keys, as it takes
    // no taps.
    QWidget* layer = layerOnTop();
    if (layer == nullptr) {
        return QWidget::focusNextPrevChild(next);
    }
    QWidget* start = QApplication::focusWidget();
    if (start == nullptr || start->window() != this) {
        start = this;
    }
    QWidget* widget = start;
    do {
        widget = next ? widget->nextInFocusChain() : widget->previousInFocusChain();
        // The layer itself is no stop: what shows the focus is on it.
        if (widget != nullptr && widget != layer && layer->isAncestorOf(widget) &&
            widget->isVisible() && widget->isEnabled() && widget->focusProxy() == nullptr &&
            (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus) {
            widget->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            // A row that scrolled away comes into view.
            for (QWidget* p = widget->parentWidget(); p != layer; p = p->parentWidget()) {
                if (auto* area = qobject_cast<QScrollArea*>(p)) {
                    area->ensureWidgetVisible(widget, 8, 8);
                }
            }
            return true;
        }
    } while (widget != nullptr && widget != start);
    return false;
}

void ViewController::onTilt(double x, bool upsideDown) {
    if (!state_.accelerate || !nothingOver() || isSliding() || !state_.activeGid) {
        tiltNavigator_.update(x, upsideDown, false);
        return;
    }
    switch (tiltNavigator_.update(x, upsideDown, true)) {
        case TiltNavigator::Move::toMenu:
            gotoMenu();
            break;
        case TiltNavigator::Move::nextPage:
            gotoNextPage();
            break;
        case TiltNavigator::Move::none:
            break;
    }
}

void ViewController::correctTilt() {
    // The sensor only runs while the switch is on; without one it stays off.
    if (state_.accelerate) {
        tilt_->start();
    } else {
        tilt_->stop();
    }
}

// ---- the window ----

void ViewController::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    session::applyScreenSize(
        state_, platform::ScreenSize{static_cast<double>(width()), static_cast<double>(height())});
    setOffset(gCurTab_ == 0 ? width() : 0);
    if (background_ != nullptr) {
        background_->setGeometry(rect());
    }
    if (restore_ != nullptr) {
        restore_->setGeometry(rect());
    }
    for (QWidget* over : {static_cast<QWidget*>(passDialog_), static_cast<QWidget*>(cover_)}) {
        if (over != nullptr) {
            over->setGeometry(rect());
        }
    }
    for (QWidget* holder : holders_) {
        for (QWidget* page : holder->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            page->setGeometry(holder->rect());
        }
    }
}

void ViewController::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!appeared_) {
        appeared_ = true;
        // Once the window is up, so the welcome lies over the menu; a start
        // into the restore screen has no welcome.
        if (restore_ == nullptr) {
            QTimer::singleShot(0, this, &ViewController::viewDidAppear);
            // After the welcome, so that the progress lies over it.
            QTimer::singleShot(
                0, this, [this] { OldFilesRun::fromOldVersionFiles(this, *popups_, context_); });
        }
    }
}

void ViewController::showRestore() {
    if (restore_ != nullptr) {
        return;
    }
    session::Application& application = services_.application;
    const std::filesystem::path damaged =
        application.baseDamaged() ? application.database().damagedFile() : std::filesystem::path();
    restore_ = new restoreScreen(
        application.reserveCopies(),
        // A file that could not even be put aside still has its own name.
        application.baseDamaged() && damaged.empty() ? application.database().path() : damaged,
        state_, context_.dates, services_.pictures, *popups_,
        restoreScreen::Actions{[&application](const std::filesystem::path& copy) {
                                   return application.restoreFromCopy(copy);
                               },
                               [&application] { return application.startEmpty(); }},
        this);
    connect(restore_, &restoreScreen::closed, this, [this] {
        menu_->updateMenu();
        setFocus();
    });
    restore_->setGeometry(rect());
    restore_->show();
    restore_->raise();
    restore_->setFocus();
}

restoreScreen* ViewController::restoreScreenShown() const {
    return restore_;
}

void ViewController::becomeActive() {
    // Back after long enough, the program shows nothing of itself until the
    // code is typed; back sooner, it shows itself again.
    if (lock_->lockDue()) {
        lockView();
        QTimer::singleShot(200, this, &ViewController::onPassTimer);
    } else {
        unlockView();
    }
    if (!isVisible() || QApplication::activeModalWidget() != nullptr) {
        return;
    }
    if (gCurTab_ != 0 && state_.activeGid) {
        updateTab(gCurTab_, *state_.activeGid, true);
    }
    // Coming back on another day, the ages have grown.
    if (state_.menuDirty || menu_->isStale()) {
        menu_->updateMenu();
    }
}

}  // namespace tilika::frame
