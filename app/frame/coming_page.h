#pragma once

#include <QString>

#include "frame/tab.h"

class QLabel;
class QToolButton;

namespace tilika::core {
struct AppState;
}
namespace tilika::platform {
class QtPictures;
}

namespace tilika::frame {

// The page of a section this program doesn't have yet: its caption, the
// child it is for, and a friendly line that it is coming, over the
// background, with the buttons that move on.
class comingPage final : public Tab {
    Q_OBJECT

public:
    comingPage(int pageId, const QString& caption, core::AppState& state,
               const platform::QtPictures& pictures, QWidget* parent);

    void activateView(const std::string& gid) override;

private:
    core::AppState& state_;
    const platform::QtPictures& pictures_;
    QLabel* caption_;
    QLabel* soon_;
    QLabel* help_;
    QToolButton* back_;
    QToolButton* next_;
};

}  // namespace tilika::frame
