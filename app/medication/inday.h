#pragma once

#include <QPointer>
#include <QWidget>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/date.h"
#include "frame/tab.h"
#include "medication/day_schedule.h"

class QLabel;
class QToolButton;

namespace tilika::core {
struct Context;
}
namespace tilika::frame {
class Popups;
class ScrollView;
class dic;
struct FormAnswer;
}  // namespace tilika::frame
namespace tilika::platform {
class QtPictures;
}

namespace tilika::medication {

// What the day schedule page needs of the program.
struct InDayServices {
    core::Context& context;
    const platform::QtPictures& pictures;
    frame::Popups& popups;
    // Brings the pending reminders in line with the diary and the meals.
    std::function<void()> rebuildNotifications;
};

// The rows of a day's schedule, drawn one under another at the list's width.
class InDayList final : public QWidget {
    Q_OBJECT

public:
    InDayList(const platform::QtPictures& pictures, QWidget* parent);

    void setRows(std::vector<InDayRow> rows, InDayCellLook look);
    const std::vector<InDayRow>& rows() const { return rows_; }

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const platform::QtPictures& pictures_;
    std::vector<InDayRow> rows_;
    InDayCellLook look_;
};

// The page of one day's schedule: the date with a day back and a day on,
// the day's reminders and doses between the meals, and a menu to set the
// meal times or to open the day in the editor.
class inday final : public frame::Tab {
    Q_OBJECT

public:
    // Opens the day editor on a day of the child; `onClose` runs once it
    // has closed.
    using DayOpener =
        std::function<void(core::Date day, const std::string& gid, std::function<void()> onClose)>;

    inday(InDayServices services, QWidget* parent);

    void activateView(const std::string& gid) override;
    void setDayOpener(DayOpener opener) { opener_ = std::move(opener); }

    // Shows the schedule of a day.
    void prepare(core::Date date);
    // One day back (-1) or on (+1).
    void changeDay(int step);
    // The menu of the edit button, and what its items do.
    void edit();
    void actionEdit(const QString& caption);

    core::Date shownDate() const { return date_; }
    const std::vector<InDayRow>& inData() const { return schedule_.inData(); }
    InDayList* list() const { return list_; }
    // The form of meal times while it is up.
    frame::dic* mealForm() const;

private:
    void openMealForm();
    bool editObed(const frame::FormAnswer& answer);
    void applyLook();

    InDayServices services_;
    DaySchedule schedule_;
    DayOpener opener_;
    core::Date date_{};

    QLabel* caption_;
    QToolButton* back_;
    QToolButton* dayBack_;
    QToolButton* dayNext_;
    QToolButton* edit_;
    frame::ScrollView* scroll_;
    InDayList* list_;
    QPointer<frame::dic> mealForm_;
};

}  // namespace tilika::medication
