#include "frame/main_window.h"

#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>

#include "core/app_state.h"
#include "core/menu_rows.h"

namespace tilika::frame {

namespace {

QString rowCaption(const core::MenuRow& row) {
    // Service rows without a name, switches and the version line show their
    // comment instead.
    return QString::fromStdString(row.name.empty() ? row.comment : row.name);
}

}  // namespace

MainWindow::MainWindow(const core::AppState& state, QWidget* parent)
    : QWidget(parent), state_(state), list_(new QListWidget(this)) {
    setWindowTitle(QStringLiteral("Тилика"));

    auto* title = new QLabel(QStringLiteral("Тилика"), this);
    QFont titleFont = title->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.6);
    titleFont.setBold(true);
    title->setFont(titleFont);
    title->setAlignment(Qt::AlignCenter);

    list_->setWordWrap(true);
    list_->setAlternatingRowColors(true);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addWidget(list_, 1);

    reload();
}

void MainWindow::reload() {
    list_->clear();
    for (const core::MenuRow& row : state_.menuItems) {
        auto* item = new QListWidgetItem(rowCaption(row), list_);
        item->setData(Qt::UserRole, row.id);
        if (row.tp == core::menukind::version) {
            item->setTextAlignment(Qt::AlignCenter);
            item->setFlags(item->flags() & ~Qt::ItemIsSelectable);
        }
    }
}

}  // namespace tilika::frame
