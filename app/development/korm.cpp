#include "development/korm.h"

#include <QAbstractItemView>
#include <QEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QPainter>
#include <QPainterPath>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

#include "core/app_state.h"
#include "core/context.h"
#include "core/dates.h"
#include "development/allergen_list.h"
#include "development/feeding_totals.h"
#include "development/korm_edit.h"
#include "development/passport.h"
#include "development/reaction.h"
#include "diary/profiles.h"
#include "diary/reference_lists.h"
#include "frame/dic.h"
#include "frame/elided_label.h"
#include "frame/form_values.h"
#include "frame/look.h"
#include "frame/popup_panels.h"
#include "frame/subcheck.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"
#include "session/form_dialogs.h"

namespace tilika::development {

namespace {

constexpr int kNoAnswerTag = 2;
constexpr int kSide = 12;
constexpr int kTimeColumn = 58;
constexpr int kSheetGap = 2;
constexpr const char* kPageCaption = "Кормление грудью и прикорм";
constexpr const char* kEmpty = "Кормлений пока нет. Нажмите «+», чтобы записать первое.";

QString qs(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QFont sized(const QFont& base, int pixels, bool bold) {
    QFont font = base;
    font.setPixelSize(pixels);
    font.setBold(bold);
    return font;
}

int viewWidth(const QStyleOptionViewItem& option) {
    if (const auto* view = qobject_cast<const QAbstractItemView*>(option.widget)) {
        return view->viewport()->width();
    }
    return std::max(option.rect.width(), 320);
}

// Where the text of a line goes inside its width.
QRect textBox(const KormLine& line, int width) {
    switch (line.kind) {
        case KormLine::Kind::day:
            return {kSide, 12, width - 2 * kSide, 0};
        case KormLine::Kind::feeding:
            return {kSide + kTimeColumn, 8, width - 2 * kSide - kTimeColumn, 0};
        case KormLine::Kind::totals:
            return {kSide + 8, 8, width - 2 * kSide - 16, 0};
    }
    return {};
}

}  // namespace

// ---- the list ----

void KormModel::setLines(std::vector<KormLine> lines) {
    beginResetModel();
    lines_ = std::move(lines);
    endResetModel();
}

int KormModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(lines_.size());
}

QVariant KormModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const KormLine& line = lines_[static_cast<std::size_t>(index.row())];
    if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole) {
        return line.time.isEmpty() ? line.text : line.time + QLatin1Char(' ') + line.text;
    }
    return {};
}

QSize KormDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const KormLine& line = model_.line(index.row());
    const int width = viewWidth(option);
    const QRect box = textBox(line, width);
    const QFont font = sized(option.font, line.kind == KormLine::Kind::day ? 15 : 14,
                             line.kind == KormLine::Kind::day);
    const QRect text = QFontMetrics(font).boundingRect(
        QRect(0, 0, std::max(box.width(), 40), 100000), Qt::TextWordWrap, line.text);
    int height = box.top() + text.height() + 8;
    if (line.kind == KormLine::Kind::totals) {
        height += QFontMetrics(sized(option.font, 13, true)).height() + 2;
    }
    return {width, height + kSheetGap};
}

void KormDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    const KormLine& line = model_.line(index.row());
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QRect rect = option.rect;
    const QRect box = textBox(line, rect.width()).translated(rect.topLeft());
    const QRect sheet = rect.adjusted(4, kSheetGap / 2, -4, -kSheetGap / 2);
    const bool focused = (option.state & QStyle::State_HasFocus) != 0;
    switch (line.kind) {
        case KormLine::Kind::day:
            painter->setFont(sized(option.font, 15, true));
            painter->setPen(heading_);
            painter->drawText(QRect(box.left(), box.top(), box.width(), rect.bottom() - box.top()),
                              Qt::TextWordWrap, line.text);
            break;
        case KormLine::Kind::feeding: {
            QPainterPath path;
            path.addRoundedRect(sheet, 8, 8);
            painter->fillPath(path, QColor(255, 255, 255, focused ? 255 : 235));
            if (focused) {
                painter->setPen(QPen(QColor(0x45, 0x8c, 0xd9), 2));
                painter->drawPath(path);
            }
            painter->setPen(QColor(0x1b, 0x1b, 0x1b));
            painter->setFont(sized(option.font, 14, true));
            painter->drawText(QRect(rect.left() + kSide, box.top(), kTimeColumn, 24),
                              Qt::AlignLeft | Qt::AlignTop, line.time);
            painter->setFont(sized(option.font, 14, false));
            painter->drawText(QRect(box.left(), box.top(), box.width(), rect.bottom() - box.top()),
                              Qt::TextWordWrap, line.text);
            break;
        }
        case KormLine::Kind::totals: {
            QPainterPath path;
            path.addRoundedRect(sheet, 8, 8);
            painter->fillPath(path, QColor(0xe6, 0xe6, 0xe6, 240));
            painter->setPen(QColor(0x55, 0x55, 0x55));
            const QFont caption = sized(option.font, 13, true);
            painter->setFont(caption);
            painter->drawText(QRect(box.left(), box.top(), box.width(), 20), Qt::AlignLeft,
                              qs(kKormTotalsCaption));
            const int below = box.top() + QFontMetrics(caption).height() + 2;
            painter->setPen(QColor(0x1b, 0x1b, 0x1b));
            painter->setFont(sized(option.font, 14, false));
            painter->drawText(QRect(box.left(), below, box.width(), rect.bottom() - below),
                              Qt::TextWordWrap, line.text);
            break;
        }
    }
    painter->restore();
}

// ---- the page ----

korm::korm(KormServices services, QWidget* parent)
    : frame::Tab(kKormPage, parent), services_(services) {
    setAutoFillBackground(true);
    const core::AppState& state = services_.context.state;

    back_ = frame::menuButton(this, state);
    help_ = frame::headerButton(frame::translatedText(state, "Подсказки"), this);
    help_->setObjectName(QStringLiteral("help"));
    connect(help_, &QToolButton::clicked, this, &korm::help);
    add_ = frame::textButton(QStringLiteral("+"), "add", this);
    add_->setToolTip(frame::translatedText(state, "Новое кормление"));
    connect(add_, &QToolButton::clicked, this, &korm::addKorm);
    caption_ = new frame::ElidedLabel(frame::translatedText(state, kPageCaption), this, 19, true);
    caption_->setObjectName(QStringLiteral("caption"));
    caption_->setAlignment(Qt::AlignCenter);
    QWidget* bar = frame::captionBar(back_, help_, caption_, nullptr, add_, this);

    model_ = new KormModel(this);
    delegate_ = new KormDelegate(*model_, this);
    list_ = new QListView(this);
    list_->setObjectName(QStringLiteral("kormList"));
    list_->setModel(model_);
    list_->setItemDelegate(delegate_);
    list_->setResizeMode(QListView::Adjust);
    list_->setUniformItemSizes(false);
    list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setFrameShape(QFrame::NoFrame);
    list_->setSelectionMode(QAbstractItemView::NoSelection);
    list_->viewport()->setAutoFillBackground(false);
    list_->setStyleSheet(QStringLiteral("QListView { background: transparent; }"));
    list_->installEventFilter(this);
    connect(list_, &QListView::clicked, this,
            [this](const QModelIndex& index) { editKorm(index.row()); });

    empty_ = new QLabel(frame::translatedText(state, kEmpty), this);
    empty_->setObjectName(QStringLiteral("empty"));
    empty_->setWordWrap(true);
    empty_->setAlignment(Qt::AlignCenter);
    empty_->hide();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 0);
    layout->addWidget(bar);
    layout->addWidget(empty_);
    layout->addWidget(list_, 1);

    editor_ = new kormEdit(KormEditServices{services_.context, services_.pictures, services_.popups,
                                            services_.lists, services_.cloud},
                           this);
}

korm::~korm() = default;

bool korm::eventFilter(QObject* watched, QEvent* event) {
    // Enter on a feeding opens it, as a tap does.
    if (watched == list_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if ((key == Qt::Key_Return || key == Qt::Key_Enter) && list_->currentIndex().isValid()) {
            editKorm(list_->currentIndex().row());
            return true;
        }
    }
    return frame::Tab::eventFilter(watched, event);
}

void korm::applyLook() {
    core::AppState& state = services_.context.state;
    frame::correctBackground(this, true, state, services_.pictures);
    const QColor text = platform::toQColor(state.textColor);
    frame::setTextColor(caption_, text);
    frame::setTextColor(empty_, text);
    delegate_->setHeadingColor(text);
    add_->setStyleSheet(
        QStringLiteral("QToolButton { color: %1; font-size: 24px; }").arg(text.name()));
    frame::setHeaderButtonPicture(back_, services_.pictures, "text-back.png", state);
    frame::setHeaderButtonPicture(help_, services_.pictures, "pm-help.png", state);
}

void korm::activateView(const std::string& gid) {
    gid_ = gid;
    applyLook();
    refresh();
}

void korm::refresh() {
    core::Context& context = services_.context;
    Feeding(context).loadKorm(rows_, groups_, gid_);
    std::vector<frame::ListRow> everything;
    if (services_.lists != nullptr) {
        services_.lists->loadConstList(everything, diary::cotype::all, "");
    }
    std::vector<KormLine> lines;
    lines.reserve(rows_.size() + groups_.size());
    for (const KormGroup& group : groups_) {
        lines.push_back({KormLine::Kind::day, -1, {}, qs(group.name2)});
        for (int i = group.first; i < group.first + group.count; ++i) {
            const KormRow& row = rows_[static_cast<std::size_t>(i)];
            if (row.tp == KormRow::totals) {
                QStringList shown;
                for (const std::string& total : kormTotals(row)) {
                    shown << qs(total);
                }
                lines.push_back({KormLine::Kind::totals, i, {}, shown.join(QLatin1Char('\n'))});
            } else {
                const KormCellText cell = kormCellText(context.dates, row, everything);
                lines.push_back({KormLine::Kind::feeding, i, qs(cell.time), qs(cell.text)});
            }
        }
    }
    model_->setLines(std::move(lines));
    empty_->setVisible(rows_.empty());
    // The newest day is the one a parent comes for.
    list_->scrollToBottom();
}

void korm::addKorm() {
    if (gid_.empty()) {
        return;
    }
    QPointer<korm> self(this);
    editor_->prepare(prepareKorm(services_.context.dates.now()), gid_, [self] {
        if (self != nullptr) {
            self->refresh();
        }
    });
}

void korm::editKorm(int line) {
    if (line < 0 || line >= model_->rowCount()) {
        return;
    }
    const KormLine& shown = model_->line(line);
    if (shown.kind != KormLine::Kind::feeding) {
        return;
    }
    QPointer<korm> self(this);
    editor_->prepare(prepareKorm(rows_[static_cast<std::size_t>(shown.row)]), gid_, [self] {
        if (self != nullptr) {
            self->refresh();
        }
    });
}

void korm::help() {
    QPointer<korm> self(this);
    services_.popups.popupMenu(
        qs(kKormHelpMenu), window(),
        [self](const QString& /*sender*/, const QString& caption) {
            if (self != nullptr) {
                self->actionKorm(caption);
            }
        },
        QStringLiteral("help"));
}

void korm::actionKorm(const QString& caption) {
    const core::AppState& state = services_.context.state;
    if (caption == frame::translatedText(state, "Как вводить прикорм")) {
        openGuide();
    } else if (caption == frame::translatedText(state, kReactionCaption)) {
        reaction();
    } else if (caption == frame::translatedText(state, "Аллергены")) {
        allergens();
    }
}

frame::subcheck* korm::guide() const {
    return guide_.data();
}

frame::dic& korm::listDialog() {
    if (listForm_ == nullptr) {
        core::Context& context = services_.context;
        listForm_ =
            new frame::dic(frame::FormServices{context.state, context.dates, services_.popups,
                                               services_.pictures, services_.lists},
                           window());
    }
    return *listForm_;
}

frame::dic* korm::listForm() const {
    return listForm_ != nullptr && listForm_->isOpen() ? listForm_.data() : nullptr;
}

void korm::reaction() {
    core::Context& context = services_.context;
    const core::AppState& state = context.state;
    std::vector<frame::ListRow> everything;
    if (services_.lists != nullptr) {
        services_.lists->loadConstList(everything, diary::cotype::all, "");
    }
    const std::vector<std::string> names =
        reactionProducts(context.dates, context.dates.now(), rows_, everything);
    if (names.empty()) {
        services_.popups.message(frame::translatedText(state, kReactionNone),
                                 frame::translatedText(state, kReactionCaption), kNoAnswerTag,
                                 window());
        return;
    }
    session::DetailRequest request;
    request.kind = 1;
    request.parentFlag = kReactionFlag;
    request.cap = std::string(kReactionCaption);
    request.msg = std::string(kReactionPrompt);
    request.dat = "WASADDED";
    request.cotype = diary::cotype::allergens;
    request.list = reactionList(names);
    frame::dic& form = listDialog();
    form.detailClearList();
    form.detailPrepare(request, window(), this, [this, names](const frame::FormAnswer& answer) {
        const core::WriteResult result =
            Reaction(services_.context)
                .saveReaction(names, frame::fieldValue(answer.rows, "list").value_or(""), gid_,
                              services_.cloud);
        if (!result) {
            const core::AppState& st = services_.context.state;
            services_.popups.message(frame::translatedText(st, result.message()),
                                     frame::translatedText(st, "Ошибка"), kNoAnswerTag, listForm_);
            return false;
        }
        refresh();
        return true;
    });
}

void korm::allergens() {
    core::Context& context = services_.context;
    openAllergenList(
        listDialog(), context, services_.popups, gid_, window(), this,
        [this](const std::string& checked) {
            core::WriteResult result =
                Reaction(services_.context).saveAllergens(checked, gid_, services_.cloud);
            if (result) {
                refresh();
            }
            return result;
        });
}

void korm::openGuide() {
    core::Context& context = services_.context;
    if (guide_ == nullptr) {
        guide_ = new frame::subcheck(services_.popups.environment(), context.state,
                                     services_.pictures, this);
    }
    const diary::SetupRecord setup = diary::Profiles(context).loadSetupData(gid_);
    std::optional<long long> group;
    if (setup.sbirthdate) {
        if (const auto month = kormGuideGroup(Passport(context).getCurMonth(setup.birthdate))) {
            group = *month;
        }
    }
    guide_->prepare(qs(kKormGuideCaption), qs(kKormGuideFile), group);
}

}  // namespace tilika::development
