#pragma once

#include <QWidget>

#include <filesystem>
#include <functional>
#include <vector>

#include "core/reserve_copies.h"

class QAbstractButton;
class QButtonGroup;
class QLabel;
class QPushButton;
class QToolButton;

namespace tilika::core {
struct AppState;
class Dates;
}  // namespace tilika::core
namespace tilika::platform {
class QtPictures;
}

namespace tilika::frame {

class Popups;

// The restore of the diary from one of its daily copies: the copies with
// their dates and what they hold, the newest sound one chosen, a button that
// restores it and one that starts an empty diary (after asking). It comes up
// by itself when the diary was found damaged, and then there is no way back
// to a diary that isn't there; from the menu it can be left.
class restoreScreen final : public QWidget {
    Q_OBJECT

public:
    struct Actions {
        std::function<bool(const std::filesystem::path& copy)> restore;
        std::function<bool()> startEmpty;
    };

    // `damagedFile` is the name the damaged diary was kept under; empty when
    // the screen was opened from the menu.
    restoreScreen(std::vector<core::ReserveCopy> copies, std::filesystem::path damagedFile,
                  core::AppState& state, const core::Dates& dates,
                  const platform::QtPictures& pictures, Popups& popups, Actions actions,
                  QWidget* parent);

    // The row of each copy, in the order of the list.
    std::vector<QAbstractButton*> copyRows() const;
    QPushButton* restoreButton() const { return restore_; }
    QPushButton* emptyButton() const { return empty_; }

signals:
    // The diary was restored or started empty, or the screen was left.
    void closed();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void restoreChosen();
    void askStartEmpty();
    void finish();
    void failed();

    std::vector<core::ReserveCopy> copies_;
    bool damaged_;
    core::AppState& state_;
    const core::Dates& dates_;
    const platform::QtPictures& pictures_;
    Popups& popups_;
    Actions actions_;
    QButtonGroup* group_;
    QToolButton* back_ = nullptr;
    QPushButton* restore_;
    QPushButton* empty_;
};

}  // namespace tilika::frame
