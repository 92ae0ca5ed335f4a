#include "diary/note.h"

#include <QDialog>
#include <QEvent>
#include <QFutureWatcher>
#include <QHBoxLayout>
#include <QImage>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPromise>
#include <QScrollBar>
#include <QStackedWidget>
#include <QStyle>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>
#include <QtConcurrent/QtConcurrentRun>

#include <chrono>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/settings_keys.h"
#include "diary/day_deletion.h"
#include "diary/diary_search.h"
#include "diary/profiles.h"
#include "diary/table_days.h"
#include "frame/elided_label.h"
#include "frame/form_shared.h"
#include "frame/look.h"
#include "frame/popup_panels.h"
#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"
#include "platform/settings_store.h"

namespace tilika::diary {

namespace {

constexpr int kPageId = 9;
// A message with nothing to answer.
constexpr int kNoAnswerTag = 2;
constexpr int kLastYear = 14;
constexpr const char* kLoading =
    "Идет загрузка дневника. Чтобы загрузка была быстрее, отключитe показ пустых дней на "
    "стартовой странице программы ...";
constexpr const char* kNoData =
    "Нет данных. Для добавление записей или фотографий нажмите на кнопку +.";

// Double clicks on the caption bar stand for the tap on a phone's status bar.
class CaptionTaps final : public QObject {
public:
    CaptionTaps(QWidget* bar, std::function<void()> tapped)
        : QObject(bar), tapped_(std::move(tapped)) {
        bar->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        if (event->type() == QEvent::MouseButtonDblClick) {
            tapped_();
            return true;
        }
        return false;
    }

private:
    std::function<void()> tapped_;
};

// The days a table opens on: around the day it scrolls to, `focus` or else
// the last day up to today.
std::pair<std::size_t, std::size_t> firstShown(const std::vector<DayNote>& days,
                                               std::optional<core::Date> focus, core::Date now,
                                               const core::Dates& dates) {
    constexpr std::size_t kAbove = 8;
    constexpr std::size_t kBelow = 24;
    std::size_t at = 0;
    std::optional<std::size_t> focused;
    for (std::size_t i = 0; i < days.size(); ++i) {
        if (!days[i].dat) {
            continue;
        }
        if (dates.getDays(*days[i].dat, now) >= 0) {
            at = i;
        }
        if (focus && !focused && dates.getDays(*days[i].dat, *focus) == 0) {
            focused = i;
        }
    }
    at = focused.value_or(at);
    return {at > kAbove ? at - kAbove : 0, std::min(days.size(), at + kBelow)};
}

}  // namespace

struct note::Loaded {
    std::vector<DayNote> days;
    std::vector<ListRow> list;
    SetupRecord setup;
    TableDays table;
    std::vector<int> heights;
    int width = 0;
    // The first part of a load brings the days, laid out where the table
    // opens; the rest, when it comes, brings them all laid out.
    bool rest = false;
    bool complete = true;
};

note::note(NoteServices services, QWidget* parent)
    : frame::Tab(kPageId, parent),
      services_(std::move(services)),
      courses_(services_.context.dates),
      store_(services_.context, courses_) {
    setAutoFillBackground(true);
    core::AppState& state = services_.context.state;

    back_ = frame::menuButton(this, state);
    yearBack_ = frame::textButton(QStringLiteral("◀"), "yearBack", this);
    yearBack_->setToolTip(frame::translatedText(state, "Предыдущий год"));
    yearNext_ = frame::textButton(QStringLiteral("▶"), "yearNext", this);
    yearNext_->setToolTip(frame::translatedText(state, "Следующий год"));
    add_ = frame::textButton(QStringLiteral("+"), "addNote", this);
    add_->setToolTip(frame::translatedText(state, "Новая запись"));
    connect(yearBack_, &QToolButton::clicked, this, [this] { changeYear(-1); });
    connect(yearNext_, &QToolButton::clicked, this, [this] { changeYear(1); });
    connect(add_, &QToolButton::clicked, this, &note::addNote);
    caption_ = new frame::ElidedLabel({}, this, 19, true);
    caption_->setObjectName(QStringLiteral("caption"));
    caption_->setAlignment(Qt::AlignCenter);

    QWidget* bar = frame::captionBar(back_, yearBack_, caption_, yearNext_, add_, this);
    new CaptionTaps(bar, [this] { twoTouch(); });
    new CaptionTaps(caption_, [this] { twoTouch(); });

    // The search runs on the button or Enter only: a year of days is too
    // much to search again on every letter.
    search_ = new QLineEdit(this);
    search_->setObjectName(QStringLiteral("search"));
    search_->setPlaceholderText(frame::translatedText(state, "Поиск"));
    searchButton_ = frame::textButton(frame::translatedText(state, "Найти"), "searchButton", this);
    cancel_ = frame::textButton(frame::translatedText(state, "Отмена"), "cancelSearch", this);
    cancel_->hide();
    connect(search_, &QLineEdit::returnPressed, this, [this] { updateSearch(search_->text()); });
    connect(searchButton_, &QToolButton::clicked, this, [this] { updateSearch(search_->text()); });
    connect(search_, &QLineEdit::textChanged, this,
            [this](const QString& text) { cancel_->setVisible(!text.isEmpty()); });
    connect(cancel_, &QToolButton::clicked, this, [this] {
        search_->clear();
        cancel_->hide();
        updateSearch({});
    });
    auto* searchRow = new QHBoxLayout;
    searchRow->addWidget(search_, 1);
    searchRow->addWidget(searchButton_);
    searchRow->addWidget(cancel_);

    pages_ = new QStackedWidget(this);
    model_ = new NoteModel(year_, this);
    table_ = new NoteListView(pages_);
    delegate_ = new NoteDelegate(services_.pictures, *model_, table_);
    table_->setModel(model_);
    table_->setItemDelegate(delegate_);
    connect(table_, &NoteListView::rowClicked, this, &note::editNote);
    connect(table_, &NoteListView::deleteConfirmed, this, &note::deleteRow);
    connect(table_, &NoteListView::homePressed, this, &note::twoTouch);

    empty_ = frame::form::wrappedLabel(frame::translatedText(state, kNoData), pages_, 15, false);
    empty_->setObjectName(QStringLiteral("noData"));
    empty_->setAlignment(Qt::AlignCenter);
    empty_->setMargin(16);

    auto* loading = new QWidget(pages_);
    loading->setObjectName(QStringLiteral("loading"));
    spinnerText_ =
        frame::form::wrappedLabel(frame::translatedText(state, kLoading), loading, 14, false);
    spinnerText_->setAlignment(Qt::AlignCenter);
    spinner_ = new QProgressBar(loading);
    spinner_->setObjectName(QStringLiteral("spinner"));
    spinner_->setRange(0, 0);  // busy, with no measure of how far
    spinner_->setTextVisible(false);
    auto* loadingLayout = new QVBoxLayout(loading);
    loadingLayout->addStretch(1);
    loadingLayout->addWidget(spinnerText_);
    loadingLayout->addWidget(spinner_);
    loadingLayout->addStretch(2);
    loadingLayout->setContentsMargins(24, 0, 24, 0);

    pages_->addWidget(table_);
    pages_->addWidget(empty_);
    pages_->addWidget(loading);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 0);
    layout->addWidget(bar);
    layout->addLayout(searchRow);
    layout->addWidget(pages_, 1);
}

note::~note() {
    // A load still running reads through this page's store.
    for (auto* watcher : findChildren<QFutureWatcher<std::shared_ptr<Loaded>>*>()) {
        watcher->cancel();
        watcher->waitForFinished();
    }
}

void note::applyLook() {
    core::AppState& state = services_.context.state;
    frame::correctBackground(this, true, state, services_.pictures);
    const QColor text = platform::toQColor(state.textColor);
    for (QLabel* label : {static_cast<QLabel*>(caption_), empty_, spinnerText_}) {
        frame::setTextColor(label, text);
    }
    for (QToolButton* button : {yearBack_, yearNext_, add_, searchButton_, cancel_}) {
        button->setStyleSheet(
            QStringLiteral("QToolButton { color: %1; font-size: 18px; }").arg(text.name()));
    }
    frame::setHeaderButtonPicture(back_, services_.pictures, "text-back.png", state);
    delegate_->setLook(NoteCellLook{state.darkBars, state.colorIcons, state.textColor});
}

void note::activateView(const std::string& gid) {
    applyLook();
    prepare(gid, true);
}

void note::activate() {
    // The help of this page is a reading page still to come.
    services_.popups.offerHelp(this, "noteHelp", [this] { services_.comingSoon("Дневник"); });
}

void note::prepare(const std::string& gid, bool anew) {
    // A load under way is let be, unless the page is now for another child.
    if (generating_ && !(anew && gid != gid_)) {
        return;
    }
    generating_ = true;
    ++generation_;
    if (loading_ != nullptr) {
        loading_->cancel();  // what is left of it is of no use
    }
    gid_ = gid;
    core::Context& context = services_.context;
    year_.noteReg = context.settings.boolValue(core::keys::emptyNote) ? loadregim::withoutEmptyDays
                                                                      : loadregim::everyDay;
    table_->hideDelete();
    pages_->setCurrentIndex(2);
    if (anew) {
        const SetupRecord setup = Profiles(context).loadSetupData(gid);
        const core::Date today = context.dates.now();
        const auto age =
            setup.sbirthdate ? context.dates.difference(setup.birthdate, today) : std::nullopt;
        gyear_ = (age ? std::max(0, age->years) : 0) + 1;
    }
    caption_->setText(QString::fromStdString(std::to_string(gyear_) + "-й год"));
    startLoad();
}

void note::startLoad() {
    core::Context& context = services_.context;
    const int generation = generation_;
    const std::string gid = gid_;
    const int regim = year_.noteReg;
    const int year = gyear_;
    const core::Date now = context.dates.now();
    // What the load needs of the owning connection is read here; the year's
    // rows are read on a worker with a connection of its own, while the
    // spinner turns. The worker also lays every day out for the table and
    // the search, so that showing the year is only a layout of known sizes.
    Loaded prepared;
    store_.lists().loadConstList(prepared.list, cotype::all, "");
    prepared.setup = Profiles(context).loadSetupData(gid);
    prepared.width = expectedRowWidth();
    // The days are measured on an image of the table's resolution: a widget
    // is no paint device away from the UI thread.
    QImage device(1, 1, QImage::Format_ARGB32_Premultiplied);
    const int dotsPerMeter = qRound(table_->viewport()->logicalDpiY() / 0.0254);
    device.setDotsPerMeterX(dotsPerMeter);
    device.setDotsPerMeterY(dotsPerMeter);
    auto* watcher = new QFutureWatcher<std::shared_ptr<Loaded>>(this);
    connect(watcher, &QFutureWatcherBase::resultReadyAt, this, [this, watcher, generation](int i) {
        finishLoad(generation, *watcher->future().resultAt(i));
    });
    connect(watcher, &QFutureWatcherBase::finished, watcher, &QObject::deleteLater);
    loading_ = watcher;
    const DiaryStore& store = store_;
    const core::DatabaseStore& database = context.database;
    const core::Dates& dates = context.dates;
    const std::optional<core::Date> focus = searchText_.isEmpty() ? lastDic_ : std::nullopt;
    const bool whole = !searchText_.isEmpty();
    watcher->setFuture(QtConcurrent::run(
        [&store, &database, &dates, result = std::move(prepared), regim, year, now, gid, device,
         focus, whole](QPromise<std::shared_ptr<Loaded>>& promise) mutable {
            // A diary that won't open shows as a year without days.
            if (const auto connection = database.openConnection()) {
                store.loadNoteData(*connection, result.list, result.setup, result.days, regim, year,
                                   now, gid);
            }
            completeDays(store, result.days, result.list, result.setup, regim);
            const std::size_t count = result.days.size();
            result.table.rows.resize(count);
            result.table.search.resize(count);
            result.heights.assign(count, -1);
            std::vector<CatalogueRow> catalogue;
            const platform::QtCanvas measure(device, true);
            const auto layOut = [&](std::size_t i) {
                layOutDay(store, result.days[i], result.list, catalogue, result.table.rows[i],
                          result.table.search[i]);
                result.heights[i] = NoteDelegate::dayHeight(result.days[i], result.table.rows[i],
                                                            result.width, measure);
            };
            // Laying out and measuring a year is most of its load. The days the
            // table opens on go first, and the table shows with the others at
            // a likely height; they follow while the table is already in use.
            const auto [begin, end] = whole ? std::pair<std::size_t, std::size_t>{0, count}
                                            : firstShown(result.days, focus, now, dates);
            for (std::size_t i = begin; i < end; ++i) {
                layOut(i);
            }
            if (end - begin < count) {
                auto first = std::make_shared<Loaded>(result);
                first->complete = false;
                int sum = 0;
                for (std::size_t i = begin; i < end; ++i) {
                    sum += result.heights[i];
                }
                const int likely = end > begin ? sum / static_cast<int>(end - begin) : 64;
                for (int& height : first->heights) {
                    height = height < 0 ? likely : height;
                }
                promise.addResult(std::move(first));
                for (std::size_t i = 0; i < count; ++i) {
                    if ((i < begin || i >= end) && !promise.isCanceled()) {
                        layOut(i);
                    }
                }
                result.rest = true;
            }
            promise.addResult(std::make_shared<Loaded>(std::move(result)));
        }));
}

int note::expectedRowWidth() const {
    // A year fills more than a screen, so its rows are laid out beside the
    // scroll bar; a width that turns out otherwise is measured again.
    int width = table_->maximumViewportSize().width();
    QScrollBar* bar = table_->verticalScrollBar();
    if (!table_->style()->styleHint(QStyle::SH_ScrollBar_Transient, nullptr, bar)) {
        width -= bar->sizeHint().width();
    }
    return width;
}

void note::finishLoad(int generation, Loaded& result) {
    if (generation != generation_) {
        return;  // a later load took its place
    }
    if (result.rest) {
        if (!laidOut_) {
            laidOut_ = true;
            year_.tableDays = std::move(result.table);
            // The rows above the first one in view change height; that row
            // stays where it is.
            const QModelIndex top = table_->indexAt(QPoint(0, 0));
            const int offset = top.isValid() ? table_->visualRect(top).top() : 0;
            delegate_->setHeights(std::move(result.heights), result.width);
            table_->doItemsLayout();
            if (top.isValid()) {
                table_->scrollTo(top, QAbstractItemView::PositionAtTop);
                QScrollBar* bar = table_->verticalScrollBar();
                bar->setValue(bar->value() - offset);
            }
        }
        return;
    }
    laidOut_ = result.complete;
    year_.mainData = std::move(result.days);
    year_.listData = std::move(result.list);
    year_.setup = std::move(result.setup);
    year_.tableDays = std::move(result.table);
    delegate_->setHeights(std::move(result.heights), result.width);
    generating_ = false;
    showYear(true);
    emit loaded();
}

void note::finishLayout() {
    // The search reads every day; a load still laying out its later days
    // is waited for, which is only ever the moment after a year opens.
    if (laidOut_ || loading_ == nullptr) {
        return;
    }
    auto* watcher = static_cast<QFutureWatcher<std::shared_ptr<Loaded>>*>(loading_.data());
    watcher->waitForFinished();
    const QFuture<std::shared_ptr<Loaded>> future = watcher->future();
    if (future.resultCount() > 0) {
        const std::shared_ptr<Loaded> last = future.resultAt(future.resultCount() - 1);
        if (last->rest) {
            finishLoad(generation_, *last);
        }
    }
}

void note::updateSearch(const QString& text) {
    searchText_ = text;
    if (generating_) {
        return;  // the load ends with the search
    }
    finishLayout();
    showYear(false);
}

void note::showYear(bool scroll) {
    const std::string text = searchText_.toStdString();
    year_.noteData = DiarySearch(text).find(year_.tableDays.search);
    if (year_.noteData.size() == year_.mainData.size()) {
        todayDic_ = store_.prepareGroupData(year_.mainData, year_.setup, year_.groupData);
    } else {
        std::vector<DayNote> kept;
        kept.reserve(year_.noteData.size());
        for (std::size_t i : year_.noteData) {
            kept.push_back(year_.mainData[i]);
        }
        todayDic_ = store_.prepareGroupData(kept, year_.setup, year_.groupData);
    }
    table_->hideDelete();
    model_->reset();
    if (year_.noteData.empty()) {
        pages_->setCurrentIndex(1);
        lastDic_.reset();
        return;
    }
    pages_->setCurrentIndex(0);
    if (!scroll) {
        table_->scrollToTop();
        return;
    }
    int target = -1;
    if (lastDic_) {
        for (int row = 0; row < model_->rowCount(); ++row) {
            const auto& day = model_->row(row).day;
            if (day && year_.mainData[*day].dat == lastDic_) {
                target = row;
                break;
            }
        }
        lastDic_.reset();
    }
    if (target < 0) {
        target = model_->flatRow(todayDic_.section, todayDic_.row);
    }
    scrollToRow(target);
}

void note::scrollToRow(int flatRow) {
    if (flatRow < 0) {
        table_->scrollToTop();
        return;
    }
    table_->scrollTo(model_->index(flatRow, 0), QAbstractItemView::PositionAtTop);
}

void note::changeYear(int step) {
    if (generating_) {
        return;
    }
    const int year = step < 0 ? std::max(1, gyear_ - 1) : std::min(kLastYear, gyear_ + 1);
    if (year != gyear_) {
        gyear_ = year;
        prepare(gid_, false);
    }
}

void note::twoTouch() {
    const core::Date now = services_.context.dates.now();
    if (lastTwoDate_ && now - *lastTwoDate_ < std::chrono::seconds(1)) {
        return;
    }
    lastTwoDate_ = now;
    if (model_->rowCount() == 0) {
        return;
    }
    const QRect first = table_->visualRect(model_->index(0, 0));
    const bool firstInView =
        first.isValid() && first.top() >= 0 && first.bottom() <= table_->viewport()->height();
    if (firstInView && todayDic_.section >= 0) {
        scrollToRow(model_->flatRow(todayDic_.section, todayDic_.row));
    } else {
        table_->scrollToTop();
    }
}

void note::addNote() {
    if (generating_ || !opener_) {
        return;
    }
    // Whatever year is shown, a new entry is for today; the editor moves on
    // to other days itself.
    const DayNote today = store_.todayNoteForDay(services_.context.dates.now(), gid_);
    opener_(today, QRect(add_->mapTo(window(), QPoint(0, 0)), add_->size()));
}

void note::editNote(int row, QPoint inRow) {
    if (generating_) {
        return;
    }
    const auto& position = model_->row(row).day;
    if (!position) {
        return;
    }
    const DayNote& day = year_.mainData[*position];
    const QRect rowRect = table_->visualRect(model_->index(row, 0));
    if (const auto buttons = delegate_->buttons(*position)) {
        const platform::Point at{double(inRow.x()), double(inRow.y())};
        if (buttons->picture && buttons->picture->contains(at)) {
            const QImage image(QString::fromStdString(day.photopath2));
            if (image.isNull()) {
                return;
            }
            auto* preview = new QDialog(this);
            preview->setAttribute(Qt::WA_DeleteOnClose);
            preview->setObjectName(QStringLiteral("photoPreview"));
            auto* picture = new QLabel(preview);
            picture->setPixmap(QPixmap::fromImage(image.scaled(
                window()->size() * 0.9, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
            auto* layout = new QVBoxLayout(preview);
            layout->addWidget(picture);
            preview->open();
            return;
        }
        if (buttons->analysis && buttons->analysis->contains(at)) {
            services_.comingSoon("Анализы и исследования");
            return;
        }
    }
    if (!opener_ || !day.dat) {
        return;
    }
    lastDic_ = day.dat;
    const DayNote fresh = store_.todayNoteForDay(*day.dat, gid_);
    opener_(fresh, QRect(table_->viewport()->mapTo(window(), rowRect.topLeft()), rowRect.size()));
}

void note::openDChat(const std::string& data) {
    // The chat on a document's data is still to come.
    QTimer::singleShot(500, this, [this, data] {
        (void)data;
        services_.comingSoon("Чат");
    });
}

void note::deleteRow(int row) {
    if (generating_) {
        return;
    }
    const auto& position = model_->row(row).day;
    if (!position) {
        return;
    }
    const core::WriteResult result =
        deleteDiaryDay(store_, services_.context, year_.mainData[*position], gid_);
    if (!result) {
        services_.popups.message(frame::translatedText(services_.context.state, result.message()),
                                 frame::translatedText(services_.context.state, "Ошибка"),
                                 kNoAnswerTag, this);
        return;
    }
    prepare(gid_, false);
}

}  // namespace tilika::diary
