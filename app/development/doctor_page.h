#pragma once

#include <QPointer>
#include <QString>

#include <functional>
#include <optional>
#include <string>

#include "development/doctor_plan.h"
#include "frame/tab.h"

class QLabel;
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
class textdata;
}  // namespace tilika::frame
namespace tilika::platform {
class QtPictures;
}

namespace tilika::development {

class planeTable;

// What the doctor's page needs of the program.
struct DoctorServices {
    core::Context& context;
    const platform::QtPictures& pictures;
    frame::Popups& popups;
    diary::ReferenceLists* lists = nullptr;
    diary::DayCloud& cloud;
    CheckCloud& checkCloud;
};

// The page of doctor visits and vaccinations: the plan by month of life
// with its ticks, the running month highlighted, and the vaccination card
// behind a button. A tick with a text for the diary offers to put it there.
class doctor final : public frame::Tab {
    Q_OBJECT

public:
    // More groups for the plan from the content server, by file name;
    // nothing until it answers.
    using AppendSource = std::function<std::optional<QString>(const QString& file)>;

    doctor(DoctorServices services, QWidget* parent);
    ~doctor() override;

    void activateView(const std::string& gid) override;
    void setAppendSource(AppendSource source) { append_ = std::move(source); }

    // A box of the plan was tapped.
    void checkClick(qlonglong tag);
    // Keeps a tick from the plan or from a text opened over it, and offers
    // the diary form where the tick asks for it.
    void tick(const std::string& guid, bool checked, const std::string& hiddenText, int basetp);
    // The vaccination card with the ticks as they are.
    void tableClick();
    // A help text over the page, its boxes kept as the plan's.
    void openHelp(const QString& caption, const QString& file, std::optional<long long> group,
                  int basetp);

    frame::textdata* text() const { return text_; }
    planeTable* table() const;
    frame::subcheck* help() const;
    // The diary form while it is open.
    frame::dic* noteForm() const;

private:
    void applyLook();
    // The plan's boxes as the ticks are kept.
    void showMarks();

    DoctorServices services_;
    DoctorPlan plan_;
    AppendSource append_;
    std::string gid_;

    QToolButton* back_;
    QLabel* caption_;
    QToolButton* card_;
    frame::textdata* text_;
    QPointer<planeTable> table_;
    QPointer<frame::subcheck> help_;
    QPointer<frame::dic> noteForm_;
};

}  // namespace tilika::development
