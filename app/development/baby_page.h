#pragma once

#include <QAbstractButton>
#include <QPointer>

#include <string>
#include <vector>

#include "development/skills.h"
#include "frame/tab.h"

class QLabel;
class QTimer;
class QToolButton;

namespace tilika::core {
struct Context;
}
namespace tilika::frame {
class Popups;
class subcheck;
}  // namespace tilika::frame
namespace tilika::platform {
class QtPictures;
}

namespace tilika::development {

class chart;

// What the skills page needs of the program.
struct BabyServices {
    core::Context& context;
    const platform::QtPictures& pictures;
    frame::Popups& popups;
};

// One skill in the list: its ring (or a blank of the same size), caption
// and description; a press opens its text.
class SkillRow final : public QAbstractButton {
    Q_OBJECT

public:
    SkillRow(const Skill& skill, const platform::QtPictures& pictures, QWidget* parent);

    chart* ring() const { return ring_; }
    // Text in the colour of the theme.
    void setColor(const QColor& color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    chart* ring_ = nullptr;
    QLabel* caption_;
    QLabel* desc_;
};

// The skills a child learns, each with a ring of how far along it is for the
// child's age, and the child's age in weeks and in months.
class baby final : public frame::Tab {
    Q_OBJECT

public:
    static constexpr int kPageId = 4;

    baby(BabyServices services, QWidget* parent);

    void activateView(const std::string& gid) override;

    // One step of the rings' filling; the timer stops after the last.
    void onTimer();
    // Opens the text of the skill at this place of the list at the child's
    // week or month.
    void checkClick(int index);

    int gcurweek() const { return gcurweek_; }
    int gcurmonth() const { return gcurmonth_; }
    int step() const { return step_; }
    SkillRow* row(int index) const { return rows_.at(static_cast<std::size_t>(index)); }
    frame::subcheck* guide() const;

private:
    void applyLook();
    void showRings();

    BabyServices services_;
    std::string gid_;
    int gcurweek_ = 0;
    int gcurmonth_ = 0;
    int step_ = 0;

    QToolButton* back_;
    QLabel* caption_;
    QLabel* weeks_;
    QLabel* months_;
    std::vector<SkillRow*> rows_;
    QTimer* timer_;
    QPointer<frame::subcheck> guide_;
};

}  // namespace tilika::development
