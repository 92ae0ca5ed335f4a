#pragma once

#include <QPointer>
#include <QWidget>

#include <functional>
#include <string>

#include "diary/diary_store.h"
#include "diary/measure_table.h"
#include "frame/dic.h"
#include "medication/courses.h"

class QLabel;
class QListWidget;
class QPushButton;

namespace tilika::core {
struct Context;
}

namespace tilika::diary {

class DayCloud;

// The screen of all weights or all heights of a child, over the window: a
// row a measure, "+" to add one, and a delete in two steps, as on a phone,
// by a leftward drag on the row, by its context menu or by the Delete key.
class edittable final : public QWidget {
    Q_OBJECT

public:
    edittable(core::Context& context, frame::FormServices forms, DayCloud& cloud, QWidget* window);
    ~edittable() override;

    // `regim` is MeasureTable::kWeight or kHeight; `action` runs on close.
    void prepare(int regim, const std::string& gid, std::function<void()> action);
    void close();

    const MeasureTable& table() const { return table_; }
    QListWidget* list() const { return list_; }
    QLabel* captionLabel() const { return caption_; }
    frame::dic* form() const { return form_; }
    // The first step of a delete: the row shows its "Удалить" button.
    void revealDelete(int row);
    // The revealed button of a row, or none.
    QPushButton* deleteButton(int row) const;
    void addClick();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void reloadData();
    void deleteRow(int row);
    void tell(const core::WriteResult& result);

    core::Context& context_;
    frame::FormServices forms_;
    medication::CourseReconciler courses_;
    DiaryStore store_;
    MeasureTable table_;
    std::function<void()> action_;
    bool open_ = false;

    QLabel* caption_;
    QListWidget* list_;
    std::vector<QPushButton*> deletes_;
    QPointer<frame::dic> form_;
    // A drag on a row: where it started.
    std::optional<QPoint> pressAt_;
};

}  // namespace tilika::diary
