#pragma once

#include <QAbstractListModel>
#include <QListView>
#include <QPointer>
#include <QStyledItemDelegate>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "diary/diary_store.h"
#include "diary/note_cell_paint.h"
#include "diary/table_days.h"

class QPushButton;

namespace tilika::platform {
class QtCanvas;
class QtPictures;
}  // namespace tilika::platform

namespace tilika::diary {

// The year on the screen: every day loaded with what its row shows and what
// the search reads, the days the search kept (as positions among them) and
// their month groups.
struct NoteYear {
    std::vector<DayNote> mainData;
    TableDays tableDays;
    std::vector<std::size_t> noteData;
    std::vector<DayGroup> groupData;
    std::vector<ListRow> listData;
    SetupRecord setup;
    int noteReg = loadregim::everyDay;
};

// The table as one flat list: a header for each month, then its days.
class NoteModel final : public QAbstractListModel {
    Q_OBJECT

public:
    struct Row {
        int section = 0;
        std::optional<std::size_t> day;  // a position in mainData; none for a header
    };

    explicit NoteModel(NoteYear& year, QObject* parent) : QAbstractListModel(parent), year_(year) {}

    // Builds the rows again from the year's groups.
    void reset();
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    const Row& row(int index) const { return rows_[static_cast<std::size_t>(index)]; }
    // The flat row of a section's row; -1 stands for the header itself.
    int flatRow(int section, int row) const;
    NoteYear& year() { return year_; }

private:
    NoteYear& year_;
    std::vector<Row> rows_;
    std::vector<int> sectionStarts_;
};

// Paints month headers and days; a day through NoteCellPaint. Heights are
// kept per day until the year is loaded again or the width changes; a load
// brings them measured, so that laying out a year costs nothing.
class NoteDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    NoteDelegate(const platform::QtPictures& pictures, NoteModel& model, QObject* parent);
    ~NoteDelegate() override;

    // The height of a day's row at a width, measured on a canvas of the
    // resolution it is drawn at.
    static int dayHeight(const DayNote& day, const std::vector<CatalogueRow>& rows, int width,
                         const platform::Canvas& measure);
    // The width the rows of a view are laid out at.
    static int rowWidth(const QWidget* view);

    void setLook(NoteCellLook look);
    // A new year's day heights, measured at `width`; -1 for one to measure.
    void setHeights(std::vector<int> heights, int width);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    // The tap areas of a day as last drawn, relative to its row's top left.
    std::optional<NoteCellButtons> buttons(std::size_t day) const;

private:
    const platform::QtPictures& pictures_;
    NoteModel& model_;
    NoteCellLook look_;
    // Measures the texts of the rows drawn, each once per load.
    mutable std::unique_ptr<platform::QtCanvas> measure_;
    mutable std::vector<int> heights_;
    mutable int heightsWidth_ = -1;
    mutable std::vector<std::optional<NoteCellButtons>> buttons_;
};

// The list of the diary. A drag to the left on a day, a right click or the
// Delete key reveal the day's "Удалить" button; a click elsewhere hides it.
class NoteListView final : public QListView {
    Q_OBJECT

public:
    explicit NoteListView(QWidget* parent);

    // The day row whose delete button shows, or -1.
    int revealedRow() const { return revealed_; }
    void revealDelete(int row);
    void hideDelete();

signals:
    // A click that was not a drag, at a point in the row's own coordinates.
    void rowClicked(int row, QPoint inRow);
    void deleteConfirmed(int row);
    void homePressed();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    bool isDay(int row) const;

    std::optional<QPoint> pressAt_;
    int pressRow_ = -1;
    bool dragged_ = false;
    int revealed_ = -1;
    QPushButton* delete_;
};

}  // namespace tilika::diary
