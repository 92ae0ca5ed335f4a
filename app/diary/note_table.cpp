#include "diary/note_table.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>

#include <cmath>

#include "platform/qt_canvas.h"
#include "platform/qt_pictures.h"

namespace tilika::diary {

namespace {

constexpr int kHeaderHeight = 46;
// A drag to the left longer than this, and mostly sideways, reveals delete.
constexpr int kSwipe = 24;
constexpr int kDeleteWidth = 96;

}  // namespace

// ---- model ----

void NoteModel::reset() {
    beginResetModel();
    rows_.clear();
    sectionStarts_.clear();
    std::size_t next = 0;
    for (std::size_t s = 0; s < year_.groupData.size(); ++s) {
        sectionStarts_.push_back(static_cast<int>(rows_.size()));
        rows_.push_back(Row{static_cast<int>(s), std::nullopt});
        for (int i = 0; i < year_.groupData[s].count && next < year_.noteData.size(); ++i) {
            rows_.push_back(Row{static_cast<int>(s), year_.noteData[next++]});
        }
    }
    endResetModel();
}

int NoteModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant NoteModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || role != Qt::AccessibleTextRole) {
        return {};
    }
    const Row& r = row(index.row());
    if (!r.day) {
        return QString::fromStdString(year_.groupData[static_cast<std::size_t>(r.section)].name);
    }
    const DayNote& day = year_.mainData[*r.day];
    return QString::fromStdString(day.day + " " + day.weekday);
}

int NoteModel::flatRow(int section, int row) const {
    if (section < 0 || section >= static_cast<int>(sectionStarts_.size())) {
        return -1;
    }
    return std::min(sectionStarts_[static_cast<std::size_t>(section)] + 1 + row,
                    static_cast<int>(rows_.size()) - 1);
}

// ---- delegate ----

NoteDelegate::NoteDelegate(const platform::QtPictures& pictures, NoteModel& model, QObject* parent)
    : QStyledItemDelegate(parent), pictures_(pictures), model_(model) {}

NoteDelegate::~NoteDelegate() = default;

int NoteDelegate::dayHeight(const DayNote& day, const std::vector<CatalogueRow>& rows, int width,
                            const platform::Canvas& measure) {
    // The look changes colours and pictures only, never a size.
    return static_cast<int>(std::ceil(NoteCellPaint({}).height(day, rows, width, measure)));
}

int NoteDelegate::rowWidth(const QWidget* view) {
    const auto* list = qobject_cast<const QAbstractItemView*>(view);
    return list != nullptr ? list->viewport()->width() : 360;
}

void NoteDelegate::setLook(NoteCellLook look) {
    look_ = look;
}

void NoteDelegate::setHeights(std::vector<int> heights, int width) {
    heights_ = std::move(heights);
    heightsWidth_ = width;
    measure_.reset();
    buttons_.assign(model_.year().mainData.size(), std::nullopt);
}

QSize NoteDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const NoteModel::Row& row = model_.row(index.row());
    const int width = rowWidth(option.widget);
    if (!row.day) {
        return {width, kHeaderHeight};
    }
    const NoteYear& year = model_.year();
    if (heightsWidth_ != width || heights_.size() != year.mainData.size()) {
        heights_.assign(year.mainData.size(), -1);
        heightsWidth_ = width;
    }
    int& height = heights_[*row.day];
    if (height < 0) {
        height = option.widget != nullptr && *row.day < year.tableDays.rows.size()
                     ? dayHeight(year.mainData[*row.day], year.tableDays.rows[*row.day], width,
                                 platform::QtCanvas(*option.widget))
                     : 64;
    }
    return {width, height};
}

void NoteDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    const NoteModel::Row& row = model_.row(index.row());
    const QRect r = option.rect;
    painter->save();
    platform::QtCanvas canvas(*painter, pictures_);
    const platform::Color text = look_.textColor;
    if (!row.day) {
        const DayGroup& group = model_.year().groupData[static_cast<std::size_t>(row.section)];
        canvas.fillRect({double(r.x()), double(r.y()), double(r.width()), double(r.height())},
                        platform::Color{text.r, text.g, text.b, 0.12});
        canvas.drawText(group.name, {r.x() + 10.0, r.y() + 5.0, r.width() - 20.0, 20},
                        platform::Font{15, platform::FontWeight::Bold}, text);
        canvas.drawText(group.name2, {r.x() + 10.0, r.y() + 25.0, r.width() - 20.0, 16},
                        platform::Font{11}, text);
    } else {
        const NoteYear& year = model_.year();
        // On the view's own viewport, which outlives any one paint: a grab
        // paints on a picture that is gone the moment after.
        const auto* view = qobject_cast<const QAbstractItemView*>(option.widget);
        if (!measure_ && view != nullptr) {
            measure_ = std::make_unique<platform::QtCanvas>(*view->viewport(), true);
        }
        static const std::vector<CatalogueRow> kNoRows;
        const DayNote& day = year.mainData[*row.day];
        const std::vector<CatalogueRow>& rows =
            *row.day < year.tableDays.rows.size() ? year.tableDays.rows[*row.day] : kNoRows;
        const platform::Rect rect{double(r.x()), double(r.y()), double(r.width()),
                                  double(r.height())};
        NoteCellButtons drawn =
            NoteCellPaint(look_).draw(day, rows, rect, day.flags.istoday, canvas, measure_.get());
        // Kept relative to the row, which moves as the list scrolls.
        const auto shift = [&](platform::Rect& b) {
            b.x -= rect.x;
            b.y -= rect.y;
        };
        shift(drawn.row);
        if (drawn.picture) {
            shift(*drawn.picture);
        }
        if (drawn.analysis) {
            shift(*drawn.analysis);
        }
        if (buttons_.size() != model_.year().mainData.size()) {
            buttons_.assign(model_.year().mainData.size(), std::nullopt);
        }
        buttons_[*row.day] = drawn;
        if (option.state & QStyle::State_Selected) {
            painter->fillRect(r, QColor(128, 128, 128, 40));
        }
    }
    painter->restore();
}

std::optional<NoteCellButtons> NoteDelegate::buttons(std::size_t day) const {
    return day < buttons_.size() ? buttons_[day] : std::nullopt;
}

// ---- view ----

NoteListView::NoteListView(QWidget* parent) : QListView(parent) {
    setObjectName(QStringLiteral("noteTable"));
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    viewport()->setAutoFillBackground(false);
    setStyleSheet(QStringLiteral("QListView { background: transparent; }"));
    // A drag to the left on a day is its own (it reveals the delete); the
    // pager must not take it for a swipe to the next page.
    viewport()->setProperty("ownsLeftDrags", true);
    delete_ = new QPushButton(QStringLiteral("Удалить"), viewport());
    delete_->setObjectName(QStringLiteral("deleteDay"));
    delete_->setStyleSheet(
        QStringLiteral("QPushButton { background: rgb(204, 40, 40); color: white; border: none; "
                       "font-weight: bold; }"));
    delete_->hide();
    connect(delete_, &QPushButton::clicked, this, [this] {
        const int row = revealed_;
        hideDelete();
        if (row >= 0) {
            emit deleteConfirmed(row);
        }
    });
}

bool NoteListView::isDay(int row) const {
    auto* notes = qobject_cast<NoteModel*>(model());
    return notes != nullptr && row >= 0 && row < notes->rowCount() && notes->row(row).day;
}

void NoteListView::revealDelete(int row) {
    if (!isDay(row)) {
        hideDelete();
        return;
    }
    revealed_ = row;
    const QRect r = visualRect(model()->index(row, 0));
    delete_->setGeometry(r.right() - kDeleteWidth + 1, r.top(), kDeleteWidth, r.height());
    delete_->show();
    delete_->raise();
}

void NoteListView::hideDelete() {
    revealed_ = -1;
    delete_->hide();
}

void NoteListView::mousePressEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    pressAt_.reset();
    dragged_ = false;
    pressRow_ = indexAt(at).row();
    if (event->button() == Qt::LeftButton) {
        pressAt_ = at;
    }
    QListView::mousePressEvent(event);
}

void NoteListView::mouseMoveEvent(QMouseEvent* event) {
    if (pressAt_ && (event->buttons() & Qt::LeftButton)) {
        const QPoint moved = event->position().toPoint() - *pressAt_;
        if (!dragged_ && moved.x() < -kSwipe && std::abs(moved.x()) > 2 * std::abs(moved.y())) {
            dragged_ = true;
            revealDelete(pressRow_);
        }
        if (dragged_ || moved.manhattanLength() > kSwipe) {
            dragged_ = true;
        }
        return;
    }
    QListView::mouseMoveEvent(event);
}

void NoteListView::mouseReleaseEvent(QMouseEvent* event) {
    QListView::mouseReleaseEvent(event);
    const bool click = pressAt_ && !dragged_ && event->button() == Qt::LeftButton;
    pressAt_.reset();
    if (!click) {
        return;
    }
    const QPoint at = event->position().toPoint();
    const int row = indexAt(at).row();
    if (revealed_ >= 0) {
        // The first tap anywhere else only puts the revealed button away.
        hideDelete();
        return;
    }
    if (row >= 0 && row == pressRow_) {
        emit rowClicked(row, at - visualRect(model()->index(row, 0)).topLeft());
    }
}

void NoteListView::contextMenuEvent(QContextMenuEvent* event) {
    const int row = indexAt(event->pos()).row();
    if (isDay(row)) {
        setCurrentIndex(model()->index(row, 0));
        revealDelete(row);
    }
}

void NoteListView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Delete && isDay(currentIndex().row())) {
        revealDelete(currentIndex().row());
        return;
    }
    if (event->key() == Qt::Key_Home) {
        emit homePressed();
        return;
    }
    if (event->key() == Qt::Key_Escape && revealed_ >= 0) {
        hideDelete();
        return;
    }
    QListView::keyPressEvent(event);
}

void NoteListView::scrollContentsBy(int dx, int dy) {
    QListView::scrollContentsBy(dx, dy);
    if (revealed_ >= 0) {
        revealDelete(revealed_);
    }
}

}  // namespace tilika::diary
