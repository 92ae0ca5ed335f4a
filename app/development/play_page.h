#pragma once

#include <string>

#include "frame/tab.h"

class QLabel;
class QToolButton;

namespace tilika::core {
struct Context;
}
namespace tilika::frame {
class Popups;
class textdata;
}  // namespace tilika::frame
namespace tilika::platform {
class QtPictures;
}

namespace tilika::development {

// What the toys page needs of the program.
struct PlayServices {
    core::Context& context;
    const platform::QtPictures& pictures;
    frame::Popups& popups;
};

// Toys and games by month of life: a reading page that opens at the running
// month of the child.
class play final : public frame::Tab {
    Q_OBJECT

public:
    static constexpr int kPageId = 5;
    static constexpr const char* kFile = "pl-igrushki-u";

    play(PlayServices services, QWidget* parent);

    void activateView(const std::string& gid) override;
    // Brings the running month into view once the page is on top.
    void activate() override;

    frame::textdata* text() const { return text_; }
    // The month of life highlighted, 0 before a child with a birth date.
    int month() const { return month_; }

private:
    void applyLook();

    PlayServices services_;
    int month_ = 0;
    QToolButton* back_;
    QLabel* caption_;
    frame::textdata* text_;
};

}  // namespace tilika::development
