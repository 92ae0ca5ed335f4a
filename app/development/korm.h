#pragma once

#include <QAbstractListModel>
#include <QPointer>
#include <QStyledItemDelegate>

#include <functional>
#include <string>
#include <vector>

#include "development/feeding.h"
#include "frame/tab.h"

class QLabel;
class QListView;
class QToolButton;

namespace tilika::core {
struct Context;
}
namespace tilika::diary {
class DayCloud;
class ReferenceLists;
}  // namespace tilika::diary
namespace tilika::frame {
class Popups;
class dic;
class subcheck;
}  // namespace tilika::frame
namespace tilika::platform {
class QtPictures;
}

namespace tilika::development {

class kormEdit;

// What the feeding page needs of the program.
struct KormServices {
    core::Context& context;
    const platform::QtPictures& pictures;
    frame::Popups& popups;
    diary::ReferenceLists* lists = nullptr;
    diary::DayCloud& cloud;
};

// One line of the feeding list: a day's heading, a feeding, or the day's
// totals, with its texts worked out once.
struct KormLine {
    enum class Kind { day, feeding, totals };
    Kind kind = Kind::feeding;
    int row = -1;  // among the loaded rows; -1 for a heading
    QString time;  // a feeding's "HH:mm"
    QString text;  // the day, the foods, or the totals' lines
};

// The feeding list as a flat run of lines, oldest day first.
class KormModel final : public QAbstractListModel {
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    void setLines(std::vector<KormLine> lines);
    const KormLine& line(int index) const { return lines_[static_cast<std::size_t>(index)]; }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    std::vector<KormLine> lines_;
};

// Draws the lines: the day as a heading on the backdrop, a feeding on a
// light sheet with its time at the left, the totals on light grey.
class KormDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    KormDelegate(const KormModel& model, QObject* parent)
        : QStyledItemDelegate(parent), model_(model) {}
    void setHeadingColor(const QColor& color) { heading_ = color; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    const KormModel& model_;
    QColor heading_ = Qt::white;
};

// The feeding diary of a child: every feeding by day, each day closed by
// its totals against the day before that has feedings. "+" adds a feeding,
// a tap on one edits it, and the help button offers the guide to
// complementary food, the reaction analysis and the allergens.
class korm final : public frame::Tab {
    Q_OBJECT

public:
    korm(KormServices services, QWidget* parent);
    ~korm() override;

    void activateView(const std::string& gid) override;

    // Reads the feedings again and shows them.
    void refresh();
    void addKorm();
    void editKorm(int line);
    // The help button's menu, and what its items do.
    void help();
    void actionKorm(const QString& caption);

    const std::vector<KormRow>& rows() const { return rows_; }
    const std::vector<KormGroup>& groups() const { return groups_; }
    QListView* list() const { return list_; }
    kormEdit* editor() const { return editor_; }
    frame::dic* listForm() const;
    frame::subcheck* guide() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // The check list the reaction and the allergens use.
    frame::dic& listDialog();
    void reaction();
    void allergens();
    void openGuide();
    void applyLook();

    KormServices services_;
    std::string gid_;
    std::vector<KormRow> rows_;
    std::vector<KormGroup> groups_;

    QLabel* caption_;
    QLabel* empty_;
    QToolButton* back_;
    QToolButton* add_;
    QToolButton* help_;
    QListView* list_;
    KormModel* model_;
    KormDelegate* delegate_;
    kormEdit* editor_;
    QPointer<frame::dic> listForm_;
    QPointer<frame::subcheck> guide_;
};

}  // namespace tilika::development
