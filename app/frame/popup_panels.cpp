#include "frame/popup_panels.h"

#include <QCalendarWidget>
#include <QFrame>
#include <QGraphicsOpacityEffect>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPainter>
#include <QProgressBar>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QScrollArea>
#include <QSequentialAnimationGroup>
#include <QStackedWidget>
#include <QTextEdit>
#include <QTimeEdit>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/app_state.h"
#include "core/dates.h"
#include "frame/look.h"
#include "frame/pictures.h"
#include "frame/popup_layer.h"
#include "frame/scroll_view.h"
#include "frame/textdata.h"
#include "frame/translation.h"
#include "platform/qt_date.h"
#include "platform/qt_pictures.h"

namespace tilika::frame {

namespace {

constexpr int kMenuCell = 96;
constexpr int kMenuDelayMs = 500;
constexpr int kCloseMs = 300;
constexpr int kSlideMs = 250;

}  // namespace

using popup::captionLabel;
using popup::DimLayer;
using popup::makePanel;
using popup::placePanel;
using popup::wheel;

Popups::Popups(core::AppState& state, platform::SettingsStore& settings,
               const platform::QtPictures& pictures, TextPageEnvironment environment)
    : state_(state), settings_(settings), pictures_(pictures), environment_(environment) {}

Popups::~Popups() {
    close();
    progressDialog(0, {}, {}, false, nullptr);
}

QString Popups::translated(const QString& text) const {
    return QString::fromStdString(translate(state_, text.toStdString()));
}

QString Popups::own(const char* source) const {
    return translated(QString::fromUtf8(source));
}

void Popups::setOpen(bool open) {
    state_.popupShown = open;
}

void Popups::close(bool animated) {
    if (layer_ != nullptr) {
        if (animated) {
            // The panel fades away while the caller carries on; it takes no
            // more taps.
            layer_->setEnabled(false);
            layer_->setAttribute(Qt::WA_TransparentForMouseEvents);
            auto* effect = new QGraphicsOpacityEffect(layer_);
            layer_->setGraphicsEffect(effect);
            auto* fade = new QPropertyAnimation(effect, "opacity", layer_);
            fade->setDuration(kCloseMs);
            fade->setStartValue(1.0);
            fade->setEndValue(0.0);
            connect(fade, &QPropertyAnimation::finished, layer_.data(), &QObject::deleteLater);
            fade->start();
        } else {
            layer_->hide();
            layer_->deleteLater();
        }
    }
    layer_ = nullptr;
    panel_ = nullptr;
    askField_ = nullptr;
    wheels_.reset();
    ppFlag_ = 0;
    setOpen(false);
    state_.blurShown = false;
}

void Popups::closeAfter(std::function<void()> then, int delayMs) {
    const QPointer<QWidget> parent = parent_;
    close();
    if (!then) {
        return;
    }
    if (delayMs <= 0) {
        then();
    } else if (parent != nullptr) {
        // Given to the parent: if its screen is gone by then, so is the call.
        QTimer::singleShot(delayMs, parent.data(), std::move(then));
    }
}

QPushButton* Popups::pictureButton(const QString& picture, const QString& caption,
                                   QWidget* parent) {
    auto* button = new QPushButton(caption, parent);
    button->setMinimumHeight(44);
    if (!picture.isEmpty()) {
        const QImage image = pictures_.image(picture.toStdString(), QSize(48, 48));
        button->setIcon(QPixmap::fromImage(image));
        button->setIconSize(QSize(32, 32));
    }
    return button;
}

void Popups::onPicture(QPushButton* button, const char* picture) const {
    // The picture stretches behind the caption, white on it.
    const QString file = QString::fromStdString(pictures_.pictures().file(picture).string());
    button->setStyleSheet(QStringLiteral("QPushButton { color: white; border: none;"
                                         " border-image: url(%1) 0 0 0 0 stretch stretch;"
                                         " padding: 10px; font-size: 15px; }")
                              .arg(file));
    button->setMinimumHeight(46);
}

QPushButton* Popups::capButton(const char* picture, QWidget* parent) {
    const std::string name =
        pictures_.pictures().themed(picture, /*lightTheme=*/true);  // panels are light
    auto* button = new QPushButton(parent);
    button->setFlat(true);
    button->setFixedSize(44, 44);
    button->setIcon(QPixmap::fromImage(pictures_.image(name, QSize(64, 64))));
    button->setIconSize(QSize(32, 32));
    return button;
}

QPushButton* Popups::pickerHead(const QString& caption, QFrame* panel, QVBoxLayout* layout) {
    // Close at the left, the caption, OK at the right.
    auto* head = new QHBoxLayout;
    QPushButton* cancel = capButton("cap-close.png", panel);
    QPushButton* ok = capButton("cap-ok2.png", panel);
    cancel->setObjectName(QStringLiteral("cancel"));
    ok->setObjectName(QStringLiteral("ok"));
    head->addWidget(cancel);
    head->addWidget(captionLabel(caption, panel), 1);
    head->addWidget(ok);
    layout->addLayout(head);
    connect(cancel, &QPushButton::clicked, this, [this] { ppCancel(); });
    return ok;
}

// ---- Message boxes ----

void Popups::message(const QString& text, const QString& caption, int tag, QWidget* parent,
                     Delegate delegate) {
    auto* box = new QMessageBox(QMessageBox::NoIcon, caption, text, QMessageBox::NoButton, parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->addButton(own("ОК"), QMessageBox::AcceptRole);
    connect(box, &QMessageBox::finished, box, [tag, delegate](int) {
        if (delegate) {
            delegate(tag, 0);
        }
    });
    box->open();
}

void Popups::messageAsk(const QString& text, const QString& caption, int tag, QWidget* parent,
                        Delegate delegate) {
    auto* box =
        new QMessageBox(QMessageBox::Question, caption, text, QMessageBox::NoButton, parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    QAbstractButton* no = box->addButton(own("Нет"), QMessageBox::RejectRole);
    QAbstractButton* yes = box->addButton(own("Да"), QMessageBox::AcceptRole);
    connect(box, &QMessageBox::buttonClicked, box, [=](QAbstractButton* clicked) {
        if (delegate && (clicked == no || clicked == yes)) {
            delegate(tag, clicked == yes ? 1 : 0);
        }
    });
    box->open();
}

void Popups::messageAskString(const QString& text, const QString& caption, int tag, QWidget* parent,
                              TextDelegate delegate) {
    auto* dialog = new QInputDialog(parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(caption);
    dialog->setLabelText(text);
    dialog->setCancelButtonText(own("Отменить"));
    dialog->setOkButtonText(own("Ok"));
    connect(dialog, &QInputDialog::finished, dialog, [=](int result) {
        if (delegate) {
            delegate(tag, result == QDialog::Accepted ? 1 : 0, dialog->textValue());
        }
    });
    dialog->open();
}

// ---- The grid menu ----

void Popups::popupMenu(const QString& items, QWidget* parent, MenuAction action,
                       const QString& sender) {
    const auto menu = parseMenuItems(items.toStdString());
    const int rows = menuRows(menu.size());
    QFrame* panel = popupWindowCreate(rows * (kMenuCell + 6) + 40, parent);
    if (panel == nullptr) {
        return;
    }
    ppFlag_ = popupkind::menu;
    // Dark, as the menu of a dark panel over the page.
    panel->setStyleSheet(
        QStringLiteral("#popupPanel { background: #2b2f33; border-radius: 14px; }"));
    auto* scroll = new ScrollView(panel);
    scroll->setObjectName(QStringLiteral("menuScroll"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // The panel is as high as three rows; more than that scroll.
    const bool scrolls = menu.size() > static_cast<std::size_t>(3 * kMenuColumns);
    scroll->setVerticalScrollBarPolicy(scrolls ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    scroll->viewport()->setAutoFillBackground(false);
    auto* grid = new QWidget;
    grid->setObjectName(QStringLiteral("menuGrid"));
    grid->setStyleSheet(QStringLiteral(
        "#menuGrid { background: #2b2f33; }"
        "QToolButton { color: white; background: transparent; border: none; padding: 6px;"
        " font-size: 13px; }"
        "QToolButton:pressed { background: rgba(255,255,255,40); border-radius: 10px; }"));
    auto* layout = new QGridLayout(grid);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(6);
    for (std::size_t i = 0; i < menu.size(); ++i) {
        auto* button = new QToolButton(grid);
        const QString caption = translated(QString::fromStdString(menu[i].caption));
        button->setText(caption);
        button->setToolButtonStyle(menu[i].picture.empty() ? Qt::ToolButtonTextOnly
                                                           : Qt::ToolButtonTextUnderIcon);
        if (!menu[i].picture.empty()) {
            // White lines on the dark panel.
            button->setIcon(QPixmap::fromImage(pictures_.image(menu[i].picture, QSize(96, 96))));
            button->setIconSize(QSize(40, 40));
        }
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        button->setFixedHeight(kMenuCell);
        connect(button, &QToolButton::clicked, this, [this, action, sender, caption] {
            closeAfter([action, sender, caption] { action(sender, caption); }, kMenuDelayMs);
        });
        layout->addWidget(button, static_cast<int>(i) / kMenuColumns,
                          static_cast<int>(i) % kMenuColumns);
    }
    scroll->setWidget(grid);
    auto* outer = new QVBoxLayout(panel);
    outer->setContentsMargins(10, 12, 10, 12);
    outer->addWidget(scroll);
    popupWindowShow();
}

// ---- Pickers ----

void Popups::popupDetail(int kind, const QString& caption, const QVariant& old, QWidget* parent,
                         int parentFlag, DetailAction action) {
    const bool moment = kind >= popupkind::date && kind <= popupkind::dateTime;
    QFrame* panel = popupWindowCreate(moment ? 420 : 320, parent);
    if (panel == nullptr) {
        return;
    }
    ppFlag_ = kind;
    auto* layout = new QVBoxLayout(panel);
    QPushButton* ok = pickerHead(caption, panel, layout);

    if (moment) {
        // Without a moment of its own the picker starts at the clock's now.
        const QDateTime start =
            old.toDateTime().isValid()
                ? old.toDateTime()
                : platform::toQDateTime(environment_.dates.now(), environment_.dates.timeZoneId());
        QCalendarWidget* calendar = nullptr;
        QTimeEdit* clock = nullptr;
        if (kind != popupkind::time) {
            calendar = new QCalendarWidget(panel);
            calendar->setLocale(QLocale(QStringLiteral("ru_RU")));
            calendar->setSelectedDate(start.date());
            calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
            layout->addWidget(calendar, 1);
        }
        if (kind != popupkind::date) {
            clock = new QTimeEdit(start.time(), panel);
            clock->setDisplayFormat(QStringLiteral("HH:mm"));
            clock->setLocale(QLocale(QStringLiteral("ru_RU")));
            QFont font = clock->font();
            font.setPixelSize(28);
            clock->setFont(font);
            clock->setAlignment(Qt::AlignCenter);
            clock->setMinimumHeight(56);
            layout->addWidget(clock, kind == popupkind::time ? 1 : 0);
        }
        connect(ok, &QPushButton::clicked, this, [=, this] {
            const QDate date = calendar != nullptr ? calendar->selectedDate() : start.date();
            const QTime time = clock != nullptr ? clock->time() : start.time();
            const QDateTime picked(date, QTime(time.hour(), time.minute()), start.timeZone());
            closeAfter([=] { action(parentFlag, picked); }, 0);
        });
    } else {
        wheels_ = std::make_unique<WheelPicker>(kind, old.toString().toStdString());
        auto* row = new QHBoxLayout;
        QListWidget* lists[2];
        for (int component = 0; component < 2; ++component) {
            lists[component] = wheel(wheels_->rows(component), wheels_->selected(component), panel);
            lists[component]->setObjectName(QStringLiteral("wheel%1").arg(component));
            row->addWidget(lists[component]);
        }
        layout->addLayout(row, 1);
        for (int component = 0; component < 2; ++component) {
            connect(lists[component], &QListWidget::currentRowChanged, this,
                    [this, lists, component](int current) {
                        if (!wheels_ || current < 0) {
                            return;
                        }
                        if (wheels_->select(component, current)) {
                            // The wheel turns back to the longest course there is.
                            QListWidget* count = lists[0];
                            const QSignalBlocker quiet(count);
                            count->setCurrentRow(wheels_->selected(0));
                            count->scrollToItem(count->currentItem(),
                                                QAbstractItemView::PositionAtCenter);
                        }
                    });
        }
        connect(ok, &QPushButton::clicked, this, [this, action, parentFlag] {
            if (!wheels_) {
                return;
            }
            const QString value = QString::fromStdString(wheels_->value());
            closeAfter([=] { action(parentFlag, value); }, 0);
        });
    }
    popupWindowShow();
}

void Popups::popupDetailList(const QString& caption, const QString& oldValue, QWidget* parent,
                             int parentFlag, DetailAction action, std::vector<ListEntry> data) {
    QFrame* panel = popupWindowCreate(360, parent);
    if (panel == nullptr) {
        return;
    }
    ppFlag_ = popupkind::list;
    auto* layout = new QVBoxLayout(panel);
    QPushButton* ok = pickerHead(caption, panel, layout);
    std::vector<std::string> captions;
    for (const auto& entry : data) {
        captions.push_back(translate(state_, entry.caption));
    }
    QListWidget* list = wheel(captions, listStartRow(data, oldValue.toStdString()), panel);
    list->setObjectName(QStringLiteral("wheel0"));
    layout->addWidget(list, 1);
    connect(ok, &QPushButton::clicked, this, [=, this] {
        const QString value = QString::fromStdString(listResult(std::max(0, list->currentRow())));
        closeAfter([=] { action(parentFlag, value); }, 0);
    });
    popupWindowShow();
}

void Popups::selectList(const QString& title, const QString& buttons, QWidget* parent,
                        IndexAction action) {
    const QStringList lines = buttons.split(QStringLiteral("<br>"));
    QFrame* panel = popupWindowCreate(static_cast<int>(lines.size() + 2) * 52, parent);
    if (panel == nullptr) {
        return;
    }
    auto* layout = new QVBoxLayout(panel);
    if (!title.isEmpty()) {
        layout->addWidget(captionLabel(title, panel));
    }
    for (int i = 0; i < lines.size(); ++i) {
        QPushButton* button = pictureButton({}, translated(lines[i]), panel);
        connect(button, &QPushButton::clicked, this,
                [this, action, i] { closeAfter([=] { action(i); }, 0); });
        layout->addWidget(button);
    }
    // The last line cancels, and tells its position as the others do.
    QPushButton* cancel = pictureButton({}, own("Отменить"), panel);
    const int cancelIndex = static_cast<int>(lines.size());
    connect(cancel, &QPushButton::clicked, this,
            [this, action, cancelIndex] { closeAfter([=] { action(cancelIndex); }, 0); });
    layout->addWidget(cancel);
    popupWindowShow();
}

// ---- Windows ----

QFrame* Popups::popupWindowCreate(int height, QWidget* parent) {
    QFrame* panel = popupFreeWindowCreate(height, parent);
    popupBlurShow();
    return panel;
}

void Popups::popupBlurShow() {
    if (auto* layer = dynamic_cast<DimLayer*>(layer_.data())) {
        layer->setBlur(true);
        state_.blurShown = true;
    }
}

void Popups::popupBlurHide() {
    if (auto* layer = dynamic_cast<DimLayer*>(layer_.data())) {
        layer->setBlur(false);
    }
    state_.blurShown = false;
}

QStackedWidget* Popups::popupPages() {
    if (panel_ == nullptr) {
        return nullptr;
    }
    auto* pages = panel_->findChild<QStackedWidget*>(QStringLiteral("pages"));
    if (pages == nullptr) {
        pages = new QStackedWidget(panel_);
        pages->setObjectName(QStringLiteral("pages"));
        auto* layout = qobject_cast<QVBoxLayout*>(panel_->layout());
        if (layout == nullptr) {
            layout = new QVBoxLayout(panel_);
        }
        layout->addWidget(pages, 1);
    }
    return pages;
}

void Popups::slide(int step) {
    QStackedWidget* pages = popupPages();
    if (pages == nullptr) {
        return;
    }
    const int next = pages->currentIndex() + step;
    if (next < 0 || next >= pages->count()) {
        return;
    }
    QWidget* incoming = pages->widget(next);
    pages->setCurrentIndex(next);
    // The new page comes in from the side it lies on.
    auto* move = new QPropertyAnimation(incoming, "pos", incoming);
    move->setDuration(kSlideMs);
    move->setStartValue(QPoint(step * pages->width(), 0));
    move->setEndValue(QPoint(0, 0));
    move->setEasingCurve(QEasingCurve::OutCubic);
    move->start(QAbstractAnimation::DeleteWhenStopped);
}

void Popups::ppNext() {
    slide(1);
}

void Popups::ppBack() {
    slide(-1);
}

void Popups::ppCancel() {
    close(true);
}

QFrame* Popups::popupFreeWindowCreate(int height, QWidget* parent) {
    if (parent == nullptr) {
        return nullptr;
    }
    close();
    QWidget* window = parent->window();
    QPointer<Popups> self(this);
    auto* layer = new DimLayer(window, [self] {
        // Only a menu or a tooltip closes by a tap beside it; a picker or
        // a prompt might lose what was entered.
        if (self != nullptr &&
            (self->ppFlag_ == popupkind::menu || self->ppFlag_ == popupkind::tooltip)) {
            self->close();
        }
    });
    layer->hide();
    layer->panelHeight = height;
    layer_ = layer;
    parent_ = parent;
    panel_ = makePanel(layer);
    placePanel(layer, panel_, height);
    setOpen(true);
    return panel_;
}

void Popups::popupWindowShow() {
    if (layer_ != nullptr) {
        layer_->raise();
        layer_->show();
        if (panel_ != nullptr) {
            panel_->setFocus();
        }
    }
}

void Popups::popupWindowHide() {
    close();
}

void Popups::popupFreeWindowShow() {
    popupWindowShow();
}

void Popups::popupFreeWindowHide() {
    close();
}

// ---- Text prompt ----

void Popups::askText(const QString& title, const QString& help, const QString& text,
                     const QString& commit, QWidget* parent, std::function<void()> action) {
    QFrame* panel = popupWindowCreate(300, parent);
    if (panel == nullptr) {
        return;
    }
    auto* layout = new QVBoxLayout(panel);
    layout->addWidget(captionLabel(title, panel));
    auto* helpLine = new QLabel(help, panel);
    helpLine->setWordWrap(true);
    layout->addWidget(helpLine);
    auto* field = new QTextEdit(panel);
    field->setPlainText(text);
    field->setAcceptRichText(false);
    setTag(field, kAskTextFieldTag);
    askField_ = field;
    layout->addWidget(field, 1);
    auto* buttons = new QHBoxLayout;
    QPushButton* cancel = pictureButton({}, own("Отменить"), panel);
    QPushButton* ok = pictureButton({}, commit, panel);
    ok->setObjectName(QStringLiteral("ok"));
    onPicture(ok, "orangeB2.png");
    buttons->addWidget(cancel);
    buttons->addWidget(ok);
    layout->addLayout(buttons);
    connect(cancel, &QPushButton::clicked, this, [this] { close(); });
    // The action reads the text and closes the prompt itself.
    connect(ok, &QPushButton::clicked, this, [action] {
        if (action) {
            action();
        }
    });
    popupWindowShow();
    field->setFocus();
}

QString Popups::askTextGetResult() const {
    return askField_ != nullptr ? askField_->toPlainText() : QStringLiteral("");
}

}  // namespace tilika::frame
