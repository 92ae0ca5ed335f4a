#include "frame/main_menu.h"

#include <QCoreApplication>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QScroller>
#include <QTimer>
#include <QVBoxLayout>
#include <QVariantAnimation>

#include "core/app_state.h"
#include "core/context.h"
#include "core/dates.h"
#include "frame/form_shared.h"
#include "frame/look.h"
#include "frame/menu_views.h"
#include "frame/navigation.h"
#include "frame/pictures.h"
#include "frame/scroll_view.h"
#include "frame/translation.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"
#include "session/menu_blocks.h"

namespace tilika::frame {

namespace {

// On a tablet the menu stays a readable column in the middle.
constexpr int kMenuMaxWidth = 560;
constexpr int kOpenMs = 500;

core::MenuRow translated(const core::AppState& state, core::MenuRow row) {
    row.name = translate(state, row.name);
    row.comment = translate(state, row.comment);
    return row;
}

menu::Look lookOf(const core::AppState& state) {
    menu::Look look;
    look.text = platform::toQColor(state.textColor);
    // Text stays legible over any picture on a card of the theme's own tone.
    look.card = state.lightTheme ? QColor(255, 255, 255, 200) : QColor(0, 0, 0, 80);
    look.lightTheme = state.lightTheme;
    look.colorIcons = state.colorIcons;
    return look;
}

QFrame* separator(const QColor& text, QWidget* parent) {
    auto* line = new QFrame(parent);
    line->setFixedHeight(1);
    QColor color = text;
    color.setAlphaF(0.2F);
    line->setStyleSheet(QStringLiteral("background: %1;").arg(color.name(QColor::HexArgb)));
    return line;
}

}  // namespace

mainMenu::mainMenu(core::Context& context, const platform::QtPictures& pictures,
                   MenuActions actions, QWidget* parent)
    : QWidget(parent),
      context_(context),
      pictures_(pictures),
      actions_(std::move(actions)),
      scroll_(new ScrollView(this)),
      timer_(new QTimer(this)) {
    setObjectName(QStringLiteral("menuTab"));
    scroll_->setObjectName(QStringLiteral("menuScroll"));
    scroll_->setWidgetResizable(true);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    showBackdropThrough(scroll_);
    // The keyboard goes from row to row; the area itself is no stop.
    scroll_->setFocusPolicy(Qt::NoFocus);
    QScroller::grabGesture(scroll_->viewport(), QScroller::TouchGesture);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(scroll_);

    timer_->setInterval(kTickMs);
    connect(timer_, &QTimer::timeout, this, &mainMenu::onTick);
    timer_->start();
    updateMenu();
}

mainMenu::~mainMenu() = default;

void mainMenu::onTick() {
    if (context_.state.menuDirty) {
        updateMenu();
    }
}

bool mainMenu::isStale() const {
    return builtOn_ != context_.dates.dateToString(context_.dates.now(), "yyyy-MM-dd");
}

void mainMenu::updateMenu() {
    core::AppState& state = context_.state;
    state.menuDirty = false;
    builtOn_ = context_.dates.dateToString(context_.dates.now(), "yyyy-MM-dd");
    rowList_.clear();
    correctBackground(this, false, state, pictures_);
    const menu::Look look = lookOf(state);
    const int place = scroll_->verticalScrollBar()->value();

    auto* content = new QWidget;
    content->setObjectName(QStringLiteral("menuContent"));
    content->setAttribute(Qt::WA_TranslucentBackground);
    auto* centre = new QHBoxLayout(content);
    centre->setContentsMargins(0, 0, 0, 0);
    auto* columnView = new QWidget(content);
    columnView->setObjectName(QStringLiteral("menuColumn"));
    columnView->setMaximumWidth(kMenuMaxWidth);
    centre->addWidget(columnView);
    auto* column = new QVBoxLayout(columnView);
    column->setContentsMargins(12, 12, 12, 16);
    column->setSpacing(12);

    auto* title = form::wrappedLabel(QStringLiteral("Тилика"), columnView, 26, true);
    title->setObjectName(QStringLiteral("title"));
    title->setAlignment(Qt::AlignCenter);
    setTextColor(title, look.text);
    column->addWidget(title);

    for (session::ChildBlock& block : session::childBlocks(context_)) {
        for (core::MenuRow& row : block.rows) {
            row = translated(state, std::move(row));
        }
        auto* view = new menu::ChildBlockView(block, pictures_, look, columnView);
        const std::string gid = block.guid;
        connect(view->circle(), &QAbstractButton::clicked, this, [this, gid] { circleClick(gid); });
        rowList_.insert(rowList_.end(), block.rows.begin(), block.rows.end());
        for (std::size_t i = 0; i < block.rows.size(); ++i) {
            const core::MenuRow row = block.rows[i];
            connect(view->rowViews()[i], &QAbstractButton::clicked, this, [this, row] {
                if (actions_.menuClick) {
                    actions_.menuClick(row);
                }
            });
        }
        column->addWidget(view);
    }
    addCommonRows(column);
    column->addStretch(1);

    // The old menu may be what is being clicked right now: it goes once the
    // event loop is back, not here.
    if (QWidget* old = scroll_->takeWidget()) {
        old->hide();
        old->setParent(this);
        old->deleteLater();
    }
    scroll_->setWidget(content);
    content_ = content;
    realignMenu(false);
    scroll_->verticalScrollBar()->setValue(place);
}

void mainMenu::addCommonRows(QVBoxLayout* column) {
    core::AppState& state = context_.state;
    const menu::Look look = lookOf(state);
    QWidget* parent = column->parentWidget();
    auto* services = new menu::Card(look.card, parent);
    auto* servicesColumn = new QVBoxLayout(services);
    servicesColumn->setContentsMargins(4, 4, 4, 4);
    servicesColumn->setSpacing(0);
    auto* switches = new menu::Card(look.card, parent);
    auto* switchesColumn = new QVBoxLayout(switches);
    switchesColumn->setContentsMargins(4, 4, 4, 4);
    QLabel* version = nullptr;

    for (core::MenuRow row : session::commonRows(state.menuItems)) {
        row = translated(state, std::move(row));
        if (menuSettingKey(row.id)) {
            row.checked = menuSetting(context_.settings, row.id);
        }
        row.hint = session::menuCounter(context_.settings, state, row.id);
        rowList_.push_back(row);
        // Every shared row answers with itself; a switch with its new state.
        const auto answer = [this, row](QAbstractButton* view) {
            connect(view, &QAbstractButton::clicked, this, [this, row](bool checked) {
                if (actions_.mainMenuClick) {
                    actions_.mainMenuClick(row, checked);
                }
            });
        };
        switch (row.tp) {
            case core::menukind::addChild: {
                auto* add = new menu::PictureButton(
                    row, pictures_.pictures().themed("orangeB.png", state.lightTheme), Qt::white,
                    pictures_, parent);
                add->setObjectName(QStringLiteral("main-%1").arg(row.id));
                add->setFixedHeight(add->sizeHint().height());
                answer(add);
                column->addWidget(add);
                break;
            }
            case core::menukind::service: {
                if (servicesColumn->count() > 0) {
                    servicesColumn->addWidget(separator(look.text, services));
                }
                auto* view = new menu::RowView(row, pictures_, look, services);
                view->setObjectName(QStringLiteral("main-%1").arg(row.id));
                answer(view);
                servicesColumn->addWidget(view);
                break;
            }
            case core::menukind::toggle: {
                auto* view = new menu::SwitchRow(row, look, switches);
                answer(view->toggle());
                switchesColumn->addWidget(view);
                break;
            }
            case core::menukind::version: {
                version = form::wrappedLabel(form::qs(row.comment), parent, 12, false);
                version->setObjectName(QStringLiteral("version"));
                version->setAlignment(Qt::AlignCenter);
                setTextColor(version, look.text);
                break;
            }
            default:
                break;
        }
    }
    column->addWidget(services);
    column->addWidget(switches);
    if (version != nullptr) {
        column->addWidget(version);
    }
}

void mainMenu::realignMenu(bool animated) {
    const std::optional<std::string>& selected = context_.state.activeGid;
    for (menu::ChildBlockView* block : childBlocks()) {
        const bool open = selected == block->guid();
        const int target = session::blockHeight(open, block->rowViews().size());
        // A closed block's rows are out of reach, for the keyboard too; they
        // go once the block has closed over them.
        if (open) {
            block->setRowsShown(true);
        }
        // A second tap while the block moves takes over from the first.
        if (auto* running = block->findChild<QVariantAnimation*>()) {
            running->stop();
        }
        if (!animated || block->height() == target) {
            block->setFixedHeight(target);
            block->setRowsShown(open);
            continue;
        }
        auto* animation = new QVariantAnimation(block);
        animation->setDuration(kOpenMs);
        animation->setEasingCurve(QEasingCurve::OutCubic);
        animation->setStartValue(block->height());
        animation->setEndValue(target);
        connect(animation, &QVariantAnimation::valueChanged, block,
                [block](const QVariant& value) { block->setFixedHeight(value.toInt()); });
        connect(animation, &QVariantAnimation::finished, this, [this, block, open] {
            block->setRowsShown(open);
            if (open) {
                scrollTo(block);
            }
        });
        animation->start(QAbstractAnimation::DeleteWhenStopped);
    }
    relayout();
}

void mainMenu::relayout() {
    // The blocks' heights are set by hand; the column and the scrolled area
    // take them in now rather than at the next pass of the event loop, so
    // that scrolling to a block finds it where it is drawn.
    if (content_ == nullptr) {
        return;
    }
    for (QWidget* column : content_->findChildren<QWidget*>(QStringLiteral("menuColumn"))) {
        QCoreApplication::sendPostedEvents(column, QEvent::LayoutRequest);
    }
    QCoreApplication::sendPostedEvents(content_, QEvent::LayoutRequest);
    // The scroll area sizes what it scrolls when asked for a new layout.
    QEvent request(QEvent::LayoutRequest);
    QCoreApplication::sendEvent(scroll_, &request);
}

void mainMenu::circleClick(const std::string& gid) {
    core::AppState& state = context_.state;
    if (state.activeGid == gid) {
        state.activeGid.reset();
    } else {
        state.activeGid = gid;
    }
    state.markAllPagesDirty();
    realignMenu(true);
}

void mainMenu::showChild(const std::string& gid) {
    if (menu::ChildBlockView* block = childBlock(gid)) {
        relayout();
        scrollTo(block);
    }
}

void mainMenu::scrollTo(QWidget* block) {
    // As much of the block as fits, and never without its top.
    QScrollBar* bar = scroll_->verticalScrollBar();
    const int top = block->mapTo(content_, QPoint(0, 0)).y() - 8;
    const int bottom = top + block->height() + 16;
    bar->setValue(std::min(top, std::max(bar->value(), bottom - scroll_->viewport()->height())));
}

menu::ChildBlockView* mainMenu::childBlock(const std::string& gid) const {
    for (menu::ChildBlockView* block : childBlocks()) {
        if (block->guid() == gid) {
            return block;
        }
    }
    return nullptr;
}

std::vector<menu::ChildBlockView*> mainMenu::childBlocks() const {
    if (content_ == nullptr) {
        return {};
    }
    const auto found = content_->findChildren<menu::ChildBlockView*>();
    return {found.begin(), found.end()};
}

QAbstractButton* mainMenu::mainRow(int id) const {
    if (content_ == nullptr) {
        return nullptr;
    }
    if (auto* row = content_->findChild<QAbstractButton*>(QStringLiteral("main-%1").arg(id))) {
        return row;
    }
    return content_->findChild<QAbstractButton*>(QStringLiteral("switch-%1").arg(id));
}

}  // namespace tilika::frame
