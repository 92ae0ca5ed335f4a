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
#include <QPointer>
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
#include "frame/look.h"
#include "frame/pictures.h"
#include "frame/popup_layer.h"
#include "frame/popup_panels.h"
#include "frame/textdata.h"
#include "frame/translation.h"
#include "platform/settings_store.h"
#include "platform/qt_pictures.h"

namespace tilika::frame {

namespace {

constexpr int kHelpShownMs = 5000;

}  // namespace

using popup::captionLabel;
using popup::DimLayer;
using popup::makePanel;
using popup::placePanel;
using popup::ResizeWatcher;

// ---- Tooltip ----

void Popups::popupTooltip(const QString& file, QWidget* parent) {
    QFrame* panel = popupWindowCreate(360, parent);
    if (panel == nullptr) {
        return;
    }
    ppFlag_ = popupkind::tooltip;
    panel->setStyleSheet(
        QStringLiteral("#popupPanel { background: #2b2f33; border-radius: 14px; }"
                       "QPushButton { color: white; }"));
    auto* layout = new QVBoxLayout(panel);
    auto* view = new textdata(environment_, pictures_, panel);
    view->page().specialColor({1, 1, 1}, {1, 1, 1}, {1, 1, 1, 0.2});
    view->page().justGroup(1);
    view->prepareTextFromFile(file, true);
    layout->addWidget(view, 1);
    auto* buttons = new QHBoxLayout;
    QPushButton* back = capButton("text-back.png", panel);
    QPushButton* closeButton = pictureButton({}, own("Закрыть"), panel);
    closeButton->setFlat(true);
    QPushButton* next = capButton("text-next.png", panel);
    // White arrows on the dark panel.
    back->setIcon(QPixmap::fromImage(pictures_.image("text-back.png", QSize(64, 64))));
    next->setIcon(QPixmap::fromImage(pictures_.image("text-next.png", QSize(64, 64))));
    buttons->addWidget(back);
    buttons->addWidget(closeButton, 1);
    buttons->addWidget(next);
    layout->addLayout(buttons);
    connect(back, &QPushButton::clicked, view, [view, file] {
        view->page().prevGroup();
        view->prepareTextFromFile(file, true);
    });
    connect(next, &QPushButton::clicked, view, [view, file] {
        view->page().nextGroup();
        view->prepareTextFromFile(file, true);
    });
    connect(closeButton, &QPushButton::clicked, this, [this] { close(); });
    popupWindowShow();
}

// ---- Progress ----

void Popups::progressDialog(double percent, const QString& caption, const QString& message,
                            bool show, QWidget* parent) {
    if (!show) {
        if (progress_ != nullptr) {
            progress_->deleteLater();
        }
        progress_ = nullptr;
        return;
    }
    if (progress_ == nullptr && parent != nullptr) {
        QWidget* window = parent->window();
        auto* layer = new DimLayer(window, {});
        layer->panelHeight = 150;
        QFrame* panel = makePanel(layer);
        placePanel(layer, panel, layer->panelHeight);
        auto* layout = new QVBoxLayout(panel);
        layout->addWidget(captionLabel({}, panel));
        auto* text = new QLabel(panel);
        text->setWordWrap(true);
        layout->addWidget(text);
        auto* bar = new QProgressBar(panel);
        bar->setRange(0, 1000);
        layout->addWidget(bar);
        layer->show();
        layer->raise();
        progress_ = layer;
    }
    if (progress_ == nullptr) {
        return;
    }
    const auto labels = progress_->findChildren<QLabel*>();
    if (labels.size() >= 2) {
        labels[0]->setText(caption);
        labels[1]->setText(message);
    }
    if (auto* bar = progress_->findChild<QProgressBar*>()) {
        bar->setValue(static_cast<int>(std::clamp(percent, 0.0, 100.0) * 10));
    }
}

// ---- Hints ----

QToolButton* Popups::helpInit(QWidget* header, std::function<void()> action) {
    auto* button = new QToolButton(header);
    setTag(button, kHelpButtonTag);
    button->setAutoRaise(true);
    button->setIcon(QPixmap::fromImage(pictures_.image(
        pictures_.pictures().themed("help-icon2.png", state_.lightTheme), QSize(64, 64))));
    button->setIconSize(QSize(28, 28));
    button->setFixedSize(40, 40);
    const auto keepAtRight = [button, header] {
        button->move(header->width() - 44, (header->height() - 40) / 2);
    };
    keepAtRight();
    new ResizeWatcher(header, button, keepAtRight);
    auto* hide = new QTimer(button);
    hide->setObjectName(QStringLiteral("hideHelp"));
    hide->setSingleShot(true);
    hide->setInterval(kHelpShownMs);
    connect(hide, &QTimer::timeout, this, [this, header] { helpShow(header, false); });
    auto* effect = new QGraphicsOpacityEffect(button);
    effect->setOpacity(0);
    button->setGraphicsEffect(effect);
    button->hide();
    connect(button, &QToolButton::clicked, this, [action] {
        if (action) {
            action();
        }
    });
    return button;
}

void Popups::offerHelp(QWidget* page, const std::string& key, std::function<void()> open) {
    static const char* const kOffered = "helpOffered";
    if (page->property(kOffered).toBool() || !settings_.helpCheck(key)) {
        return;
    }
    page->setProperty(kOffered, true);
    QPointer<QWidget> guarded(page);
    QTimer::singleShot(1000, this, [this, guarded, key, open = std::move(open)] {
        if (guarded == nullptr || !guarded->isVisible()) {
            return;
        }
        QWidget* bar = guarded->findChild<QWidget*>(QStringLiteral("captionBar"));
        if (bar == nullptr) {
            return;
        }
        QToolButton* hint = helpInit(bar, [this, bar, key, open] {
            helpShow(bar, false);
            settings_.helpFinish(key);
            if (open) {
                open();
            }
        });
        if (hint != nullptr) {
            helpShow(bar, true);
        }
    });
}

void Popups::helpShow(QWidget* header, bool show) {
    auto* button = qobject_cast<QToolButton*>(childWithTag(header, kHelpButtonTag));
    if (button == nullptr) {
        return;
    }
    auto* effect = qobject_cast<QGraphicsOpacityEffect*>(button->graphicsEffect());
    auto* fade = new QPropertyAnimation(effect, "opacity", button);
    fade->setDuration(400);
    fade->setEndValue(show ? 1.0 : 0.0);
    if (show) {
        button->show();
        button->raise();
        // It goes again by itself; the hint is only a nudge.
        if (auto* hide = button->findChild<QTimer*>(QStringLiteral("hideHelp"))) {
            hide->start();
        }
    } else {
        connect(fade, &QPropertyAnimation::finished, button, &QWidget::hide);
    }
    fade->start(QAbstractAnimation::DeleteWhenStopped);
}

void Popups::animateHelp(QWidget* view, const QString& mode) {
    auto* hand = new QLabel(view);
    hand->setAttribute(Qt::WA_TransparentForMouseEvents);
    hand->setPixmap(QPixmap::fromImage(pictures_.image("hand.png", QSize(48, 48))));
    hand->resize(48, 48);
    const bool title = mode == QLatin1String("clickTitle");
    const QPoint from =
        title ? QPoint(view->width() / 2, 80) : QPoint(view->width() - 80, view->height() / 2);
    const QPoint to = title ? QPoint(view->width() / 2, 4) : QPoint(40, view->height() / 2);
    hand->move(from);
    auto* effect = new QGraphicsOpacityEffect(hand);
    effect->setOpacity(0);
    hand->setGraphicsEffect(effect);
    hand->show();
    hand->raise();

    auto* play = new QSequentialAnimationGroup(hand);
    play->addPause(1000);
    auto* in = new QPropertyAnimation(effect, "opacity");
    in->setDuration(150);
    in->setEndValue(1.0);
    auto* move = new QPropertyAnimation(hand, "pos");
    move->setDuration(300);
    move->setEndValue(to);
    auto* out = new QPropertyAnimation(effect, "opacity");
    out->setDuration(150);
    out->setEndValue(0.0);
    play->addAnimation(in);
    play->addAnimation(move);
    play->addAnimation(out);
    connect(play, &QAbstractAnimation::finished, hand, &QObject::deleteLater);
    play->start();
}

// ---- Welcome ----

void Popups::firstStart(QWidget* parent, IndexAction action, bool newversion) {
    if (parent == nullptr) {
        return;
    }
    const FirstStartPage page = firstStartPage(newversion);
    auto* panel = new QFrame(parent->window());
    setTag(panel, kFirstStartTag);
    panel->setObjectName(QStringLiteral("firstStart"));
    panel->setStyleSheet(
        QStringLiteral("#firstStart { background: #fbfaf7; } QLabel { color: #222; }"
                       "QPushButton { padding: 10px; font-size: 15px; }"));
    QWidget* window = parent->window();
    panel->setGeometry(window->rect());
    new ResizeWatcher(window, panel, [panel, window] { panel->setGeometry(window->rect()); });
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(20, 24, 20, 20);
    auto* icon = new QLabel(panel);
    icon->setPixmap(QPixmap::fromImage(pictures_.image(
        pictures_.pictures().colored("start-icon.png", state_.colorIcons), QSize(96, 96))));
    icon->setAlignment(Qt::AlignCenter);
    layout->addWidget(icon);
    QLabel* name = captionLabel(translated(QString::fromStdString(page.name)), panel);
    layout->addWidget(name);
    for (std::size_t i = 0; i < page.texts.size(); ++i) {
        auto* text = new QLabel(translated(QString::fromStdString(page.texts[i])), panel);
        text->setWordWrap(true);
        text->setAlignment(Qt::AlignCenter);
        layout->addWidget(text);
        if (i == 1) {
            // The numbered buttons stand under the line that leads to them.
            for (const auto& button : page.buttons) {
                QPushButton* numbered =
                    pictureButton({}, translated(QString::fromStdString(button.caption)), panel);
                const int tag = button.tag;
                connect(numbered, &QPushButton::clicked, panel, [panel, action, tag] {
                    panel->deleteLater();
                    if (action) {
                        action(tag);
                    }
                });
                layout->addWidget(numbered);
            }
        }
    }
    layout->addStretch(1);
    QPushButton* start = pictureButton({}, translated(QString::fromStdString(page.start)), panel);
    start->setObjectName(QStringLiteral("start"));
    start->setStyleSheet(
        QStringLiteral("QPushButton { color: white; background: #3f9b4f; border-radius: 10px; }"));
    connect(start, &QPushButton::clicked, panel, &QObject::deleteLater);
    layout->addWidget(start);
    panel->show();
    panel->raise();
    // Greeted once per version; the counts of the rating request start anew.
    firstStartDone(settings_, state_.versionKey);
}

}  // namespace tilika::frame
