#pragma once

#include <QPointer>
#include <QWidget>

#include <functional>
#include <string>
#include <vector>

#include "core/menu_rows.h"

class QAbstractButton;
class QScrollArea;
class QTimer;
class QVBoxLayout;

namespace tilika::core {
struct Context;
}
namespace tilika::platform {
class QtPictures;
}

namespace tilika::frame {

namespace menu {
class ChildBlockView;
}

// What the menu asks of the screen around it when a row is tapped.
struct MenuActions {
    // A row of a child's block; the row carries the child's guid.
    std::function<void(const core::MenuRow& row)> menuClick;
    // A row everybody shares; a switch passes its new state.
    std::function<void(const core::MenuRow& row, bool checked)> mainMenuClick;
};

// The main menu: a block for each child, the one selected open with its
// rows, then the rows everybody shares, the switches of the settings and
// the version. It lies under the pages of the root screen.
class mainMenu final : public QWidget {
    Q_OBJECT

public:
    static constexpr int kTickMs = 5000;

    mainMenu(core::Context& context, const platform::QtPictures& pictures, MenuActions actions,
             QWidget* parent);
    ~mainMenu() override;

    // Builds the menu anew from the profiles, the rows and the settings.
    void updateMenu();
    // Sizes the blocks: the selected child's open, the others closed.
    void realignMenu(bool animated);
    // Selects the child of the block, or lets it go when it was selected.
    void circleClick(const std::string& gid);
    // Scrolls the child's block into view.
    void showChild(const std::string& gid);

    // Whether the menu was drawn on an earlier day than today.
    bool isStale() const;

    // The rows as drawn, each child's with its guid.
    const std::vector<core::MenuRow>& rowList() const { return rowList_; }
    // The child's block, or nothing.
    menu::ChildBlockView* childBlock(const std::string& gid) const;
    std::vector<menu::ChildBlockView*> childBlocks() const;
    // The view of a shared row (a switch for rows 51 to 56), or nothing.
    QAbstractButton* mainRow(int id) const;
    // Redraws the menu when something on it changed.
    QTimer* menuTimer() const { return timer_; }

private:
    void onTick();
    void relayout();
    void scrollTo(QWidget* block);
    void addCommonRows(QVBoxLayout* column);

    core::Context& context_;
    const platform::QtPictures& pictures_;
    MenuActions actions_;
    QScrollArea* scroll_;
    QPointer<QWidget> content_;
    QTimer* timer_;
    std::vector<core::MenuRow> rowList_;
    std::string builtOn_;
};

}  // namespace tilika::frame
