#include "diary/edit_table.h"

#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/app_state.h"
#include "core/context.h"
#include "frame/look.h"
#include "frame/popup_panels.h"

namespace tilika::diary {

namespace {

// A drag this far to the left on a row shows its delete button.
constexpr int kSwipeToDelete = 40;
constexpr const char* kRowProperty = "measureRow";

QString qs(const std::string& text) {
    return QString::fromStdString(text);
}

}  // namespace

edittable::edittable(core::Context& context, frame::FormServices forms, DayCloud& cloud,
                     QWidget* window)
    : QWidget(window),
      context_(context),
      forms_(forms),
      courses_(context.dates),
      store_(context, courses_),
      table_(context, store_, cloud) {
    setObjectName(QStringLiteral("edittable"));
    setAutoFillBackground(true);
    setFocusPolicy(Qt::StrongFocus);
    hide();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(4, 4, 4, 4);
    auto* back = new QToolButton(this);
    back->setObjectName(QStringLiteral("back"));
    back->setArrowType(Qt::LeftArrow);
    caption_ = new QLabel(this);
    caption_->setAlignment(Qt::AlignCenter);
    QFont font = caption_->font();
    font.setPixelSize(18);
    font.setBold(true);
    caption_->setFont(font);
    auto* add = new QToolButton(this);
    add->setObjectName(QStringLiteral("add"));
    add->setText(QStringLiteral("+"));
    bar->addWidget(back);
    bar->addWidget(caption_, 1);
    bar->addWidget(add);
    layout->addLayout(bar);
    list_ = new QListWidget(this);
    list_->setObjectName(QStringLiteral("measures"));
    list_->setSelectionMode(QAbstractItemView::SingleSelection);
    list_->installEventFilter(this);
    layout->addWidget(list_, 1);
    connect(back, &QToolButton::clicked, this, [this] { close(); });
    connect(add, &QToolButton::clicked, this, [this] { addClick(); });
    window->installEventFilter(this);
}

edittable::~edittable() {
    if (open_) {
        --context_.state.openForms;
    }
}

void edittable::prepare(int regim, const std::string& gid, std::function<void()> action) {
    action_ = std::move(action);
    table_.prepare(regim, gid);
    caption_->setText(frame::translatedText(context_.state, table_.caption()));
    if (!open_) {
        open_ = true;
        ++context_.state.openForms;
    }
    setGeometry(parentWidget()->rect());
    reloadData();
    show();
    raise();
    setFocus();
}

void edittable::close() {
    if (!open_) {
        return;
    }
    if (form_ != nullptr && form_->isOpen()) {
        form_->closeForm();
    }
    open_ = false;
    --context_.state.openForms;
    hide();
    if (std::function<void()> action = std::move(action_)) {
        action();
    }
}

void edittable::reloadData() {
    list_->clear();
    deletes_.clear();
    const auto& rows = table_.rows();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const MeasureTable::Row& row = rows[i];
        auto* view = new QWidget;
        view->setProperty(kRowProperty, static_cast<int>(i));
        view->installEventFilter(this);
        auto* line = new QHBoxLayout(view);
        line->setContentsMargins(8, 4, 8, 4);
        auto* value = new QLabel(qs(row.value), view);
        QFont font = value->font();
        font.setBold(true);
        font.setPixelSize(16);
        value->setFont(font);
        auto* when = new QLabel(qs(row.day) + QStringLiteral("\n") + qs(row.age), view);
        when->setWordWrap(true);
        when->setMinimumWidth(1);
        auto* remove = new QPushButton(QStringLiteral("Удалить"), view);
        remove->setObjectName(QStringLiteral("delete"));
        remove->setStyleSheet(QStringLiteral("background: #d33; color: white; padding: 4px 10px;"));
        remove->hide();
        connect(remove, &QPushButton::clicked, this, [this, i] { deleteRow(static_cast<int>(i)); });
        line->addWidget(value);
        line->addWidget(when, 1);
        line->addWidget(remove);
        for (QWidget* child : {static_cast<QWidget*>(value), static_cast<QWidget*>(when)}) {
            child->setAttribute(Qt::WA_TransparentForMouseEvents);
        }
        auto* item = new QListWidgetItem(list_);
        item->setSizeHint(QSize(0, 52));
        list_->setItemWidget(item, view);
        deletes_.push_back(remove);
    }
}

void edittable::revealDelete(int row) {
    for (std::size_t i = 0; i < deletes_.size(); ++i) {
        deletes_[i]->setVisible(static_cast<int>(i) == row);
    }
}

QPushButton* edittable::deleteButton(int row) const {
    if (row < 0 || static_cast<std::size_t>(row) >= deletes_.size() ||
        !deletes_[static_cast<std::size_t>(row)]->isVisible()) {
        return nullptr;
    }
    return deletes_[static_cast<std::size_t>(row)];
}

void edittable::deleteRow(int row) {
    tell(table_.deleteRow(static_cast<std::size_t>(row)));
    reloadData();
}

void edittable::tell(const core::WriteResult& result) {
    if (!result) {
        forms_.popups.message(frame::translatedText(context_.state, result.message()),
                              frame::translatedText(context_.state, "Ошибка"), 0, parentWidget());
    }
}

void edittable::addClick() {
    if (form_ != nullptr) {
        form_->closeForm();
        form_->deleteLater();
    }
    EntryForm form = table_.addForm();
    form_ = new frame::dic(forms_, parentWidget());
    form_->prepare(std::move(form.rows), frame::translatedText(context_.state, form.caption),
                   parentWidget(), this, 0, form.defaults, [this](const frame::FormAnswer& answer) {
                       const core::WriteResult result = table_.editData(answer.rows);
                       if (!result) {
                           tell(result);
                           return false;
                       }
                       reloadData();
                       return true;
                   });
}

void edittable::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape || event->key() == Qt::Key_Back) {
        close();
        return;
    }
    QWidget::keyPressEvent(event);
}

bool edittable::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget()) {
        if (event->type() == QEvent::Resize && open_) {
            setGeometry(parentWidget()->rect());
        }
        return false;
    }
    if (watched == list_ && event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Delete && list_->currentRow() >= 0) {
            revealDelete(list_->currentRow());
            return true;
        }
        if (key->key() == Qt::Key_Escape) {
            close();
            return true;
        }
        return false;
    }
    auto* view = qobject_cast<QWidget*>(watched);
    if (view == nullptr || !view->property(kRowProperty).isValid()) {
        return QWidget::eventFilter(watched, event);
    }
    const int row = view->property(kRowProperty).toInt();
    switch (event->type()) {
        case QEvent::MouseButtonPress: {
            auto* mouse = static_cast<QMouseEvent*>(event);
            list_->setCurrentRow(row);
            pressAt_.reset();
            if (mouse->button() == Qt::LeftButton) {
                pressAt_ = mouse->globalPosition().toPoint();
            }
            return false;
        }
        case QEvent::MouseMove: {
            auto* mouse = static_cast<QMouseEvent*>(event);
            if (pressAt_ &&
                pressAt_->x() - mouse->globalPosition().toPoint().x() >= kSwipeToDelete) {
                pressAt_.reset();
                revealDelete(row);
                return true;
            }
            return false;
        }
        case QEvent::MouseButtonRelease:
            pressAt_.reset();
            return false;
        case QEvent::ContextMenu: {
            auto* menu = new QMenu(this);
            menu->setAttribute(Qt::WA_DeleteOnClose);
            menu->addAction(QStringLiteral("Удалить"), this, [this, row] { revealDelete(row); });
            menu->popup(static_cast<QContextMenuEvent*>(event)->globalPos());
            return true;
        }
        default:
            return QWidget::eventFilter(watched, event);
    }
}

}  // namespace tilika::diary
