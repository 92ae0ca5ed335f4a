#include <QButtonGroup>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include "core/app_state.h"
#include "core/dates.h"
#include "core/text.h"
#include "development/ruler_view.h"
#include "diary/reference_lists.h"
#include "frame/dic.h"
#include "frame/form_kinds.h"
#include "frame/form_moments.h"
#include "frame/form_row_views.h"
#include "frame/form_shared.h"
#include "frame/form_values.h"
#include "frame/look.h"
#include "frame/pictures.h"
#include "frame/popup_panels.h"
#include "platform/qt_canvas.h"
#include "platform/qt_date.h"
#include "platform/qt_image_codec.h"
#include "platform/qt_pictures.h"

namespace tilika::frame {
namespace {

using namespace form;

// The value of a switch that is on.
const std::string kOn = "1";

bool isTextKind(int tp) {
    return tp == formkind::textLine || tp == formkind::number || tp == formkind::figures ||
           tp == formkind::textEntry || tp == formkind::numberEntry;
}

// Rows that open something show an arrow.
bool opensSomething(int tp) {
    return tp == formkind::listPick || tp == formkind::dosePicker || tp == formkind::oftenPicker ||
           tp == formkind::lengthPicker || tp == formkind::action || tp == formkind::documents ||
           tp == formkind::measure;
}

// Rows that lie on the backdrop rather than on a card of their own.
bool onBackdrop(const FormRow& row) {
    const int tp = row.tp;
    return tp == formkind::separator || tp == formkind::heading || tp == formkind::label ||
           tp == formkind::derived || tp == formkind::picture || removesRecord(row);
}

// A picture drawn whole across its row, keeping its proportions.
class PictureRow final : public QWidget {
public:
    PictureRow(const platform::QtPictures& pictures, std::string picture, QWidget* parent)
        : QWidget(parent), pictures_(pictures), picture_(std::move(picture)) {
        const platform::Size natural = pictures_.pictures().naturalSize(picture_);
        aspect_ = natural.width > 0 ? natural.height / natural.width : 0.5;
        setMinimumHeight(80);
    }
    bool hasHeightForWidth() const override { return true; }
    // A picture heads a form; it leaves room for the rows below it.
    int heightForWidth(int width) const override {
        return static_cast<int>(std::min(width * aspect_, 200.0));
    }
    QSize sizeHint() const override { return {320, heightForWidth(320)}; }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        const double w = std::min<double>(width(), height() / aspect_);
        const double h = w * aspect_;
        pictures_.draw(painter, picture_, QRectF((width() - w) / 2, (height() - h) / 2, w, h));
    }

private:
    const platform::QtPictures& pictures_;
    std::string picture_;
    double aspect_ = 0.5;
};

}  // namespace

// ---- Drawing ----

void dic::updateData(bool keepPlace) {
    frame::fillEmptyMoments(detailAr_, services_.dates, services_.dates.now());
    const int kept = keepPlace ? scroll_->verticalScrollBar()->value() : 0;

    content_ = new QWidget;
    content_->setObjectName(QStringLiteral("formContent"));
    content_->setAttribute(Qt::WA_StyledBackground);
    // Rows that take input lie on light cards, so they read the same on
    // every backdrop; headings and labels lie on the backdrop in its colour.
    const QString textColor = platform::toQColor(services_.state.textColor).name(QColor::HexArgb);
    content_->setStyleSheet(
        QStringLiteral("#formContent { background: transparent; }"
                       "QLabel { color: %1; }"
                       "#formCard { background: rgba(255,255,255,225); border-radius: 10px; }"
                       "#formCard QLabel { color: #202020; }"
                       "QLineEdit, QPlainTextEdit { background: white; color: #202020;"
                       " border: 1px solid rgba(0,0,0,50); border-radius: 8px; padding: 6px; "
                       "font-size: 16px; }"
                       "QLineEdit { min-height: 30px; }"
                       "#formCard QPushButton { min-height: 44px; font-size: 16px; color: #202020;"
                       " background: white; border: 1px solid rgba(0,0,0,50); border-radius: 8px; }"
                       "#formCard QPushButton:checked { background: #3d8bd9; color: white; }"
                       "#formCard QPushButton:pressed { background: #dde8f3; }"
                       "#formCard QPushButton#photo { border: none; background: transparent; }")
            .arg(textColor));

    auto* layout = new QVBoxLayout(content_);
    layout->setContentsMargins(10, 6, 10, 16);
    layout->setSpacing(8);
    controls_.assign(detailAr_.size(), nullptr);
    values_.assign(detailAr_.size(), nullptr);

    QHBoxLayout* pair = nullptr;
    for (std::size_t i = 0; i < detailAr_.size(); ++i) {
        const auto& row = detailAr_[i];
        QWidget* widget = buildRow(i, content_);
        if (!onBackdrop(row)) {
            auto* card = new QFrame(content_);
            card->setObjectName(QStringLiteral("formCard"));
            auto* cardLayout = new QVBoxLayout(card);
            cardLayout->setContentsMargins(6, 4, 6, 4);
            widget->setParent(card);
            cardLayout->addWidget(widget);
            widget = card;
        }
        // Two short fields share a line, the first on the left.
        if (row.location == "first") {
            pair = new QHBoxLayout;
            pair->setSpacing(8);
            pair->addWidget(widget, 1);
            layout->addLayout(pair);
            continue;
        }
        if (row.location == "second" && pair != nullptr) {
            pair->addWidget(widget, 1);
            pair = nullptr;
            continue;
        }
        pair = nullptr;
        layout->addWidget(widget);
    }
    layout->addStretch(1);

    QWidget* old = scroll_->takeWidget();
    scroll_->setWidget(content_);
    if (old != nullptr) {
        old->deleteLater();
    }
    // A rebuild after a change keeps the place the user was looking at; a
    // form opened afresh starts at the top. The new column is laid out
    // before the place can be set.
    scroll_->verticalScrollBar()->setValue(0);
    QTimer::singleShot(0, content_, [this, kept] { scroll_->verticalScrollBar()->setValue(kept); });
}

QWidget* dic::buildRow(std::size_t index, QWidget* parent) {
    const auto& row = detailAr_[index];
    const int tag = static_cast<int>(index) + 1;
    QWidget* widget = nullptr;
    if (momentKind(row.tp)) {
        widget = momentRow(index, parent);
    } else if (isTextKind(row.tp) || row.tp == formkind::longText) {
        widget = textRow(index, parent);
    } else {
        switch (row.tp) {
            case formkind::separator:
                widget = new QWidget(parent);
                widget->setFixedHeight(16);
                break;
            case formkind::heading:
                widget = wrappedLabel(shown(row.caption), parent, 17, true);
                break;
            case formkind::label:
                widget = wrappedLabel(shown(row.caption), parent, 15, false);
                break;
            case formkind::derived:
                widget =
                    wrappedLabel(qs(row.text.empty() ? row.caption : row.text), parent, 15, false);
                break;
            case formkind::segments: {
                widget = new QWidget(parent);
                auto* box = new QVBoxLayout(widget);
                box->setContentsMargins(0, 0, 0, 0);
                auto* buttons = new QHBoxLayout;
                buttons->setSpacing(0);
                auto* group = new QButtonGroup(widget);
                group->setExclusive(true);
                const auto segments = core::split(row.caption, "|");
                for (std::size_t s = 0; s < segments.size(); ++s) {
                    auto* button = new QPushButton(shown(segments[s]), widget);
                    button->setCheckable(true);
                    button->setMinimumHeight(kTouchHeight);
                    group->addButton(button, static_cast<int>(s));
                    buttons->addWidget(button);
                }
                // No value chooses nothing, rather than the first segment.
                QAbstractButton* chosen =
                    row.source.empty() ? nullptr : group->button(core::intValue(row.source));
                if (chosen != nullptr) {
                    chosen->setChecked(true);
                }
                connect(group, &QButtonGroup::idClicked, this,
                        [this, index](int id) { detailAr_[index].source = std::to_string(id); });
                box->addLayout(buttons);
                break;
            }
            case formkind::photo:
                widget = photoRow(index, parent);
                break;
            case formkind::slider:
                widget = sliderRow(index, parent);
                break;
            case formkind::list:
                widget = listRow(index, parent);
                break;
            case formkind::times:
                widget = timesRow(index, parent);
                break;
            case formkind::button: {
                if (removesRecord(row)) {
                    widget = removalButton(index, parent);
                    break;
                }
                widget = new QWidget(parent);
                auto* box = new QHBoxLayout(widget);
                box->setContentsMargins(8, 4, 8, 4);
                if (!row.pic.empty()) {
                    auto* icon = new QLabel(widget);
                    form::setIcon(icon, services_.pictures, cardIcon(row.pic), 40);
                    box->addWidget(icon);
                }
                box->addWidget(wrappedLabel(shown(row.caption), widget, 15, false), 1);
                break;
            }
            case formkind::toggle: {
                widget = new QWidget(parent);
                widget->setMinimumHeight(kTouchHeight);
                auto* box = new QHBoxLayout(widget);
                box->setContentsMargins(8, 0, 8, 0);
                box->addWidget(wrappedLabel(shown(row.caption), widget, 15, false), 1);
                auto* toggle = new form::Switch(widget);
                toggle->setChecked(row.source == "1");
                toggle->setAccessibleName(shown(row.caption));
                connect(toggle, &QAbstractButton::toggled, this, [this, index](bool on) {
                    detailAr_[index].source = on ? kOn : std::string();
                });
                box->addWidget(toggle);
                setTag(toggle, tag);
                controls_[index] = toggle;
                return widget;
            }
            case formkind::picture:
                widget = new PictureRow(services_.pictures, row.pic, parent);
                break;
            case formkind::teeth:
                widget = teethRow(index, parent);
                break;
            case formkind::listPick:
            case formkind::dosePicker:
            case formkind::oftenPicker:
            case formkind::lengthPicker:
            case formkind::action:
            case formkind::documents:
            case formkind::measure:
                widget = tapRow(index, parent);
                break;
            default:
                // A kind this program doesn't know draws nothing and has no value.
                widget = new QWidget(parent);
                widget->setFixedHeight(0);
                break;
        }
    }
    if (controls_[index] == nullptr) {
        controls_[index] = widget;
        setTag(widget, tag);
    }
    return widget;
}

QWidget* dic::removalButton(std::size_t index, QWidget* parent) {
    const auto& row = detailAr_[index];
    auto* button = new QPushButton(shown(row.caption), parent);
    button->setObjectName(QStringLiteral("remove"));
    button->setMinimumHeight(kTouchHeight);
    // The picture stretches behind the caption.
    const QString file =
        QString::fromStdString(services_.pictures.pictures().file(row.pic).generic_string());
    button->setStyleSheet(QStringLiteral("QPushButton { color: white; border: none;"
                                         " border-image: url(%1) 0 0 0 0 stretch stretch;"
                                         " padding: 10px; font-size: 16px; }")
                              .arg(file));
    connect(button, &QPushButton::clicked, this, [this] {
        QPointer<dic> self(this);
        services_.popups.messageAsk(own("Вы действительно хотите удалить эту учетную запись?"),
                                    own("Удаление"), 3, this, [self](int /*tag*/, int button) {
                                        if (self != nullptr && button == 1) {
                                            // No rows at all tell the caller to remove;
                                            // the form keeps its own in case that fails.
                                            self->answer(std::nullopt, {});
                                        }
                                    });
    });
    return button;
}

QWidget* dic::momentRow(std::size_t index, QWidget* parent) {
    const auto& row = detailAr_[index];
    auto* tap = new form::TapRow(services_.pictures, cardIcon(row.pic), shown(row.caption), parent);
    tap->setValue(qs(shownValue(row, {})));
    QLabel* value = tap->valueLabel();
    setTag(value, static_cast<int>(index) + 1 + kValueTagOffset);
    values_[index] = value;
    connect(tap, &QAbstractButton::clicked, this, [this, index] { detailClick(index); });
    if (!row.startbutton) {
        return tap;
    }
    // The stopwatch stands beside the time it measures.
    auto* line = new QWidget(parent);
    auto* box = new QHBoxLayout(line);
    box->setContentsMargins(0, 0, 0, 0);
    tap->setParent(line);
    box->addWidget(tap, 1);
    auto* start = new QPushButton(line);
    start->setObjectName(QStringLiteral("startButton"));
    start->setFixedSize(kTouchHeight, kTouchHeight);
    start->setFlat(true);
    start->setIcon(
        QPixmap::fromImage(services_.pictures.image(cardIcon("stopwatch.png"), QSize(64, 64))));
    start->setIconSize(QSize(34, 34));
    start->setAccessibleName(own("Секундомер"));
    connect(start, &QPushButton::clicked, this, [this, index] { startClick(index); });
    box->addWidget(start);
    controls_[index] = tap;
    setTag(tap, static_cast<int>(index) + 1);
    return line;
}

QVBoxLayout* dic::captionedColumn(const FormRow& row, QWidget* widget) const {
    auto* box = new QVBoxLayout(widget);
    box->setContentsMargins(4, 4, 4, 4);
    box->setSpacing(4);
    if (row.caption.empty()) {
        return box;
    }
    auto* caption = new QHBoxLayout;
    if (!row.pic.empty()) {
        auto* icon = new QLabel(widget);
        form::setIcon(icon, services_.pictures, cardIcon(row.pic), 28);
        caption->addWidget(icon);
    }
    caption->addWidget(wrappedLabel(shown(row.caption), widget, 15, false), 1);
    box->addLayout(caption);
    return box;
}

QWidget* dic::textRow(std::size_t index, QWidget* parent) {
    const auto& row = detailAr_[index];
    auto* widget = new QWidget(parent);
    QVBoxLayout* box = captionedColumn(row, widget);
    QWidget* editor = nullptr;
    if (row.tp == formkind::longText) {
        auto* text = new QPlainTextEdit(qs(row.source), widget);
        text->setPlaceholderText(shown(row.text));
        text->setMinimumHeight(120);
        text->setTabChangesFocus(true);
        editor = text;
    } else {
        auto* line = new QLineEdit(qs(row.source), widget);
        line->setPlaceholderText(shown(row.text));
        line->setMinimumHeight(kTouchHeight - 4);
        line->setClearButtonEnabled(true);
        if (row.tp == formkind::number || row.tp == formkind::numberEntry) {
            // The number pad: digits, and one decimal mark for a volume or a
            // weight.
            line->setInputMethodHints(Qt::ImhFormattedNumbersOnly);
            line->setValidator(new QRegularExpressionValidator(
                QRegularExpression(QStringLiteral("[0-9]*([.,][0-9]*)?")), line));
        } else if (row.tp == formkind::figures) {
            line->setInputMethodHints(Qt::ImhPreferNumbers);
        }
        editor = line;
    }
    editor->setAccessibleName(shown(row.caption));
    box->addWidget(editor);
    setTag(editor, static_cast<int>(index) + 1);
    controls_[index] = editor;
    return widget;
}

QWidget* dic::sliderRow(std::size_t index, QWidget* parent) {
    const auto& row = detailAr_[index];
    auto* widget = new QWidget(parent);
    QVBoxLayout* box = captionedColumn(row, widget);
    auto* slider = new development::vesslider(widget);
    slider->prepareRuller(static_cast<int>(core::floatValue(row.scalemin)),
                          static_cast<int>(core::floatValue(row.scalemax)),
                          core::intValue(row.scaletype), false, false);
    // A value already there is shown, whether or not the row asked to start
    // at it: leaving the ruler off would lose it on OK.
    const double value = core::floatValue(row.source);
    slider->setPosition(value, row.startactive || value > 0);
    slider->setSelector([this, index](double position) {
        detailAr_[index].source = sliderSource(position, detailAr_[index].scaletype);
    });
    box->addWidget(slider);
    setTag(slider, static_cast<int>(index) + 1);
    controls_[index] = slider;
    return widget;
}

QWidget* dic::listRow(std::size_t index, QWidget* parent) {
    const auto& row = detailAr_[index];
    auto* widget = new QWidget(parent);
    auto* box = new QVBoxLayout(widget);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(0);
    auto icons = std::make_shared<std::vector<QLabel*>>();
    const auto tick = [this](const ListRow& item) {
        return item.checked ? "checkgreen.png" : "checkempty.png";
    };
    for (std::size_t k = 0; k < row.list.size(); ++k) {
        const auto& item = row.list[k];
        auto* entry = new form::TapRow(services_.pictures, tick(item),
                                       shown(diary::captionText(item.cap)), widget);
        entry->setObjectName(QStringLiteral("listItem"));
        icons->push_back(entry->iconLabel());
        const bool hilite =
            std::find(hiliteData_.begin(), hiliteData_.end(), item.index) != hiliteData_.end();
        if (hilite) {
            QFont font = entry->font();
            font.setBold(true);
            entry->setFont(font);
        }
        connect(entry, &QAbstractButton::clicked, this, [this, index, k, icons, tick] {
            auto& list = detailAr_[index];
            checkTableItem(list, k);
            for (std::size_t j = 0; j < icons->size() && j < list.list.size(); ++j) {
                form::setIcon((*icons)[j], services_.pictures, tick(list.list[j]), 32);
            }
        });
        box->addWidget(entry);
    }
    if (row.edit && services_.lists != nullptr) {
        auto* add = new form::TapRow(services_.pictures, cardIcon("add-row.png"),
                                     own("Добавить тип"), widget);
        add->setObjectName(QStringLiteral("addItem"));
        connect(add, &QAbstractButton::clicked, this, [this, index] { addToList(index); });
        box->addWidget(add);
    }
    return widget;
}

QWidget* dic::timesRow(std::size_t index, QWidget* parent) {
    const auto& row = detailAr_[index];
    auto* widget = new QWidget(parent);
    QVBoxLayout* box = captionedColumn(row, widget);
    auto* grid = new QGridLayout;
    const auto times = timesOf(row.source);
    constexpr int kColumns = 4;
    for (std::size_t p = 0; p < times.size(); ++p) {
        auto* button = new QPushButton(qs(times[p]), widget);
        setTag(button, static_cast<int>(index + 1) * 1000 + static_cast<int>(p));
        connect(button, &QPushButton::clicked, this, [this, index, p] { timeClick(index, p); });
        grid->addWidget(button, static_cast<int>(p) / kColumns, static_cast<int>(p) % kColumns);
    }
    box->addLayout(grid);
    return widget;
}

QWidget* dic::photoRow(std::size_t index, QWidget* parent) {
    const auto& row = detailAr_[index];
    auto* button = new QPushButton(parent);
    button->setObjectName(QStringLiteral("photo"));
    button->setFlat(true);
    button->setMinimumHeight(170);
    button->setAccessibleName(own("Фотография"));
    constexpr QSize kPhoto(240, 160);
    if (row.image && !row.image->empty()) {
        const QImage image = platform::QtImageCodec::toQImage(*row.image);
        button->setIcon(QPixmap::fromImage(
            image.scaled(kPhoto * 2, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
    } else {
        button->setIcon(QPixmap::fromImage(services_.pictures.image(
            services_.pictures.pictures().themed("clear-photo2.png", true), kPhoto * 2)));
    }
    button->setIconSize(kPhoto);
    connect(button, &QPushButton::clicked, this, [this, index] { photoClick(index); });
    return button;
}

QWidget* dic::teethRow(std::size_t index, QWidget* parent) {
    const auto& row = detailAr_[index];
    auto marks = teeth_.find(index);
    if (marks == teeth_.end()) {
        marks = teeth_.emplace(index, teethMarks(row.tooth, row.source)).first;
    }
    auto* chart = new form::TeethChart(services_.pictures, marks->second,
                                       {own("Верхние\nзубы"), own("Нижние\nзубы")}, parent);
    chart->setMinimumHeight(420);
    connect(chart, &form::TeethChart::toothClicked, this, [this, index, chart](int /*n*/) {
        teeth_[index] = chart->marks();
        detailAr_[index].source = teethSource(detailAr_[index].tooth, chart->marks());
    });
    return chart;
}

QWidget* dic::tapRow(std::size_t index, QWidget* parent) {
    const auto& row = detailAr_[index];
    auto* tap = new form::TapRow(services_.pictures, cardIcon(row.pic), shown(row.caption), parent);
    if (row.tp != formkind::action) {
        tap->setValue(qs(shownValue(row, listOf(row))));
        values_[index] = tap->valueLabel();
    }
    if (opensSomething(row.tp)) {
        // The cards are light on every backdrop.
        tap->setArrow(services_.pictures.pictures().themed("text-next.png", true));
    }
    connect(tap, &QAbstractButton::clicked, this, [this, index] {
        const auto& row = detailAr_[index];
        const auto picker = [this, index](int kind) {
            const auto& row = detailAr_[index];
            QPointer<dic> self(this);
            services_.popups.popupDetail(
                kind, shown(row.editdescr.empty() ? row.caption : row.editdescr), qs(row.source),
                this, static_cast<int>(index), [self](int flag, const QVariant& value) {
                    if (self != nullptr) {
                        self->changeData(static_cast<std::size_t>(flag), value.toString());
                    }
                });
        };
        switch (row.tp) {
            case formkind::listPick:
                subDetail(index);
                break;
            case formkind::dosePicker:
                picker(popupkind::doza);
                break;
            case formkind::oftenPicker:
                picker(popupkind::inter);
                break;
            case formkind::lengthPicker:
                picker(popupkind::length);
                break;
            case formkind::action:
                actionClick(index);
                break;
            case formkind::documents:
                if (documents_) {
                    QPointer<dic> self(this);
                    const DocumentsRequest request{own("Документы ребенка"), qs("d-" + gid_),
                                                   qs(row.source)};
                    documents_(request, [self, index](std::string value) {
                        if (self != nullptr && index < self->detailAr_.size()) {
                            self->correctField();
                            self->detailAr_[index].source = std::move(value);
                            self->updateData();
                        }
                    });
                }
                break;
            case formkind::measure: {
                std::vector<ListEntry> entries;
                std::string old;
                for (int code = 1; !diary::meraToRead(code).empty(); ++code) {
                    entries.push_back({diary::meraToRead(code), std::to_string(code - 1)});
                    if (diary::meraToRead(code) == row.source) {
                        old = std::to_string(code - 1);
                    }
                }
                QPointer<dic> self(this);
                services_.popups.popupDetailList(
                    shown(row.editdescr.empty() ? row.caption : row.editdescr), qs(old), this,
                    static_cast<int>(index),
                    [self](int flag, const QVariant& value) {
                        if (self != nullptr) {
                            self->changeData(static_cast<std::size_t>(flag), value.toString());
                        }
                    },
                    std::move(entries));
                break;
            }
            default:
                break;
        }
    });
    return tap;
}

}  // namespace tilika::frame
