#pragma once

#include <string_view>

class QLabel;
class QToolButton;
class QWidget;

namespace tilika::core {
struct AppState;
}

namespace tilika::frame {

class Tab;

// The caption bar of a page with nothing but reading on it.
struct PageBar {
    QWidget* bar = nullptr;
    QToolButton* back = nullptr;  // to the menu
    QLabel* caption = nullptr;
};

// Back to the menu on the left and the caption in the middle; the right is
// kept free as wide as the button, which keeps the caption centred and
// leaves room for the hint of the page's help.
PageBar readingBar(Tab* page, const core::AppState& state, std::string_view caption);

}  // namespace tilika::frame
