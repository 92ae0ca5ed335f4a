#pragma once

#include <QWidget>

class QListWidget;

namespace tilika::core {
struct AppState;
}

namespace tilika::frame {

// The first screen: the program's name over the rows of the main menu.
class MainWindow final : public QWidget {
    Q_OBJECT

public:
    explicit MainWindow(const core::AppState& state, QWidget* parent = nullptr);

    // Rebuilds the list from the menu rows of the process state.
    void reload();

    QListWidget* menuList() const { return list_; }

private:
    const core::AppState& state_;
    QListWidget* list_;
};

}  // namespace tilika::frame
