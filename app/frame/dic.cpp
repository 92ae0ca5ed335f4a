#include "frame/dic.h"

#include <QApplication>
#include <QButtonGroup>
#include <QDateTime>
#include <QFileDialog>
#include <QFrame>
#include <QGraphicsOpacityEffect>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QImageReader>
#include <QInputMethod>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QResizeEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QScroller>
#include <QVBoxLayout>

#include <chrono>

#include "core/app_state.h"
#include "core/dates.h"
#include "core/text.h"
#include "development/ruler_view.h"
#include "diary/reference_lists.h"
#include "frame/form_kinds.h"
#include "frame/form_row_views.h"
#include "frame/look.h"
#include "frame/pictures.h"
#include "frame/popup_panels.h"
#include "frame/translation.h"
#include "platform/qt_canvas.h"
#include "platform/qt_image_codec.h"
#include "platform/qt_pictures.h"

namespace tilika::frame {
namespace {

using form::kTouchHeight;

constexpr int kValueTagOffset = 1000;
constexpr int kStopwatchTag = 213;
constexpr int kFadeMs = 500;
// A photo from a camera is far larger than a form, a card or a page needs.
constexpr int kLargestPhoto = 2048;

const char* const kDateFormat = "dd.MM.yyyy";
const char* const kTimeFormat = "HH:mm";
const char* const kMomentFormat = "dd.MM.yyyy HH:mm";

// The picker a date or time row opens, and the format its value keeps.
struct MomentKind {
    int popup = 0;
    const char* format = nullptr;
};

std::optional<MomentKind> momentKind(int tp) {
    switch (tp) {
        case formkind::diaryDate:
        case formkind::dateEntry:
        case formkind::date:
            return MomentKind{popupkind::date, kDateFormat};
        case formkind::diaryTime:
        case formkind::time:
        case formkind::duration:
            return MomentKind{popupkind::time, kTimeFormat};
        case formkind::moment:
        case formkind::momentEntry:
        case formkind::dateTime:
            return MomentKind{popupkind::dateTime, kMomentFormat};
        default:
            return std::nullopt;
    }
}

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

// The row of a profile that removes the child.
bool isRemoval(const diary::CatalogueRow& row) {
    return row.tp == formkind::button && row.field == "remove";
}

// Rows that lie on the backdrop rather than on a card of their own.
bool onBackdrop(const diary::CatalogueRow& row) {
    const int tp = row.tp;
    return tp == formkind::separator || tp == formkind::heading || tp == formkind::label ||
           tp == formkind::derived || tp == formkind::picture || isRemoval(row);
}

QString qs(const std::string& text) {
    return QString::fromStdString(text);
}

double number(const std::string& text) {
    return core::floatValue(text);
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

void setValueText(QLabel* label, const QString& text) {
    label->setText(text);
    label->setVisible(!text.isEmpty());
}

QLabel* wrappedLabel(const QString& text, QWidget* parent, int pixelSize, bool bold) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setMinimumWidth(1);
    QFont font = label->font();
    font.setPixelSize(pixelSize);
    font.setBold(bold);
    label->setFont(font);
    return label;
}

std::optional<QImage> pickPhotoFromFile(QWidget* parent) {
    const QString file = QFileDialog::getOpenFileName(
        parent, QString(), QString(),
        QStringLiteral("Изображения (*.jpg *.jpeg *.png *.heic *.webp *.bmp)"));
    if (file.isEmpty()) {
        return std::nullopt;
    }
    QImageReader reader(file);
    reader.setAutoTransform(true);
    QImage image = reader.read();
    if (image.isNull()) {
        return std::nullopt;
    }
    return image;
}

}  // namespace

dic::dic(FormServices services, QWidget* parent)
    : QWidget(parent), services_(services), photoPicker_(pickPhotoFromFile) {
    setAttribute(Qt::WA_StyledBackground);
    hide();
    buildFrame();
    tick_.setInterval(1000);
    connect(&tick_, &QTimer::timeout, this, &dic::onStartTimer);
}

dic::~dic() {
    if (open_) {
        --services_.state.openForms;
    }
    delete sub_;
}

QString dic::own(const char* text) const {
    return qs(translate(services_.state, text));
}

std::string dic::cardIcon(const std::string& picture) const {
    // Cards are light whatever the backdrop, so their icons are the coloured
    // ones, even when the caller picked the variant for the backdrop.
    std::string_view base = picture;
    if (base.starts_with("b-")) {
        base.remove_prefix(2);
    }
    return services_.pictures.pictures().colored(base, true);
}

QString dic::shown(const std::string& text) const {
    return qs(translate(services_.state, text));
}

void dic::buildFrame() {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    // Close at the left, the title, OK at the right.
    auto* head = new QHBoxLayout;
    head->setContentsMargins(6, 6, 6, 6);
    cancel_ = new QPushButton(this);
    ok_ = new QPushButton(this);
    cancel_->setObjectName(QStringLiteral("cancel"));
    ok_->setObjectName(QStringLiteral("ok"));
    for (QPushButton* button : {cancel_, ok_}) {
        button->setFlat(true);
        button->setFixedSize(kTouchHeight, kTouchHeight);
        button->setIconSize(QSize(32, 32));
    }
    title_ = wrappedLabel(QString(), this, 18, true);
    title_->setAlignment(Qt::AlignCenter);
    head->addWidget(cancel_);
    head->addWidget(title_, 1);
    head->addWidget(ok_);
    layout->addLayout(head);
    connect(cancel_, &QPushButton::clicked, this, &dic::closeForm);
    connect(ok_, &QPushButton::clicked, this, &dic::closeOk);

    scroll_ = new QScrollArea(this);
    scroll_->setObjectName(QStringLiteral("formScroll"));
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setWidgetResizable(true);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll_->viewport()->setAutoFillBackground(false);
    // A finger drags the column and flings it; a mouse keeps its wheel and
    // the scroll bar, and its drags for the text fields and rulers.
    QScroller::grabGesture(scroll_->viewport(), QScroller::TouchGesture);
    layout->addWidget(scroll_, 1);
}

bool dic::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize && host_ != nullptr && watched == host_->window()) {
        setGeometry(host_->window()->rect());
    }
    return QWidget::eventFilter(watched, event);
}

// ---- Opening ----

void dic::prepare(FormRows rows, const QString& caption, QWidget* host, QObject* target,
                  int parentFlag, const std::map<std::string, std::string>& defaults,
                  Action action) {
    detailAr_ = std::move(rows);
    fillSources(detailAr_, defaults);
    teeth_.clear();
    readingLists_.clear();
    gparent_ = target;
    hasTarget_ = target != nullptr;
    gaction_ = std::move(action);
    gParentFlag_ = parentFlag;

    if (host != nullptr && host != host_) {
        if (host_ != nullptr) {
            host_->window()->removeEventFilter(this);
        }
        host_ = host;
        setParent(host->window());
        host->window()->installEventFilter(this);
    }
    if (host_ != nullptr) {
        setGeometry(host_->window()->rect());
    }

    correctBackground(this, false, services_.state, services_.pictures);
    const auto cap = [this](const char* name) {
        const std::string themed =
            services_.pictures.pictures().themed(name, services_.state.lightTheme);
        return QIcon(QPixmap::fromImage(services_.pictures.image(themed, QSize(64, 64))));
    };
    cancel_->setIcon(cap("cap-close.png"));
    ok_->setIcon(cap("cap-ok2.png"));
    cancel_->setAccessibleName(own("Закрыть"));
    ok_->setAccessibleName(own("Готово"));
    title_->setText(caption);
    setTextColor(title_, platform::toQColor(services_.state.textColor));
    ok_->setVisible(!hidesOk(detailAr_));

    if (!open_) {
        ++services_.state.openForms;
        open_ = true;
    }
    updateData();
    scroll_->verticalScrollBar()->setValue(0);
    show();
    raise();
}

void dic::detailPrepare(const DetailRequest& request, QWidget* host, QObject* target,
                        Action action) {
    DetailRequest filled = request;
    if (filled.list.empty()) {
        filled.list = list_;
    }
    const DetailContext context{services_.dates, services_.dates.now(), services_.lists,
                                services_.state.lightTheme};
    FormContent content = frame::detailPrepare(filled, context);
    prepare(std::move(content.rows), qs(content.caption), host, target, content.parentFlag, {},
            std::move(action));
}

void dic::detailAddToList(std::string index, std::string cap, bool checked, int deleted) {
    diary::ListRow row;
    row.index = std::move(index);
    row.cap = std::move(cap);
    row.checked = checked;
    row.deleted = deleted;
    row.tp = 1;
    list_.push_back(std::move(row));
}

std::size_t dic::posByField(std::string_view field) const {
    return frame::posByField(detailAr_, field);
}

std::optional<std::string> dic::fieldValue(std::string_view field) const {
    return frame::fieldValue(detailAr_, field);
}

// ---- Drawing ----

void dic::fillEmptyMoments() {
    const core::Date now = services_.dates.now();
    for (auto& row : detailAr_) {
        if (!row.source.empty()) {
            continue;
        }
        if (row.tp == formkind::diaryDate || row.tp == formkind::date) {
            row.source = services_.dates.dateToString(now, kDateFormat);
        } else if (row.tp == formkind::diaryTime || row.tp == formkind::time) {
            row.source = services_.dates.dateToString(now, kTimeFormat);
        }
    }
}

void dic::updateData() {
    fillEmptyMoments();
    const int kept = scroll_->verticalScrollBar()->value();

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
    // A rebuild after a change keeps the place the user was looking at.
    QTimer::singleShot(0, this, [this, kept] { scroll_->verticalScrollBar()->setValue(kept); });
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
                if (auto* chosen = group->button(core::intValue(row.source))) {
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
                if (isRemoval(row)) {
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
                connect(toggle, &QAbstractButton::toggled, this,
                        [this, index](bool on) { detailAr_[index].source = on ? "1" : ""; });
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
                                            // No rows at all tell the caller to remove.
                                            self->detailAr_.clear();
                                            self->answer(nullptr);
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

QVBoxLayout* dic::captionedColumn(const diary::CatalogueRow& row, QWidget* widget) const {
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
    slider->prepareRuller(static_cast<int>(number(row.scalemin)),
                          static_cast<int>(number(row.scalemax)), core::intValue(row.scaletype),
                          false, false);
    // A value already there is shown, whether or not the row asked to start
    // at it: leaving the ruler off would lose it on OK.
    const double value = number(row.source);
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
    const auto tick = [this](const diary::ListRow& item) {
        return item.checked ? "checkgreen.png" : "checkempty.png";
    };
    for (std::size_t k = 0; k < row.list.size(); ++k) {
        const auto& item = row.list[k];
        auto* entry = new form::TapRow(services_.pictures, tick(item),
                                       shown(diary::captionText(item.cap)), widget);
        entry->setObjectName(QStringLiteral("listItem"));
        icons->push_back(entry->findChild<QLabel*>());
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
                    documents_(row, [self, index](std::string value) {
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

// ---- Values ----

void dic::correctField() {
    for (std::size_t i = 0; i < detailAr_.size() && i < controls_.size(); ++i) {
        auto& row = detailAr_[i];
        QWidget* control = controls_[i];
        if (control == nullptr) {
            continue;
        }
        if (auto* line = qobject_cast<QLineEdit*>(control)) {
            row.source = line->text().toStdString();
        } else if (auto* text = qobject_cast<QPlainTextEdit*>(control)) {
            row.source = text->toPlainText().toStdString();
        } else if (auto* slider = qobject_cast<development::vesslider*>(control)) {
            row.source = sliderSource(slider->getPosition(), row.scaletype);
        }
    }
}

void dic::changeDetail(std::size_t index, const QString& value) {
    if (index >= detailAr_.size() || !momentKind(detailAr_[index].tp)) {
        return;
    }
    auto& row = detailAr_[index];
    row.source = value.toStdString();
    if (values_[index] != nullptr) {
        setValueText(values_[index], qs(shownValue(row, {})));
    }
    if (row.tp == formkind::time || row.tp == formkind::diaryTime) {
        if (const auto changed = autocalc(detailAr_, index)) {
            if (QLabel* label = values_[*changed]) {
                setValueText(label, qs(detailAr_[*changed].source));
            }
        }
    }
}

void dic::detailClick(std::size_t index) {
    const auto& row = detailAr_[index];
    const auto kind = momentKind(row.tp);
    if (!kind) {
        return;
    }
    const QString source = qs(row.source);
    QDateTime old;
    if (kind->popup == popupkind::time) {
        old = QDateTime(QDate::currentDate(),
                        QTime::fromString(source, QString::fromLatin1(kind->format)));
    } else {
        old = QDateTime::fromString(source, QString::fromLatin1(kind->format));
        if (!old.isValid() && kind->popup == popupkind::date) {
            old =
                QDateTime(QDate::fromString(source, QString::fromLatin1(kDateFormat)), QTime(0, 0));
        }
    }
    QPointer<dic> self(this);
    services_.popups.popupDetail(
        kind->popup, shown(row.editdescr.empty() ? row.caption : row.editdescr), old, this,
        static_cast<int>(index), [self](int flag, const QVariant& value) {
            if (self != nullptr) {
                self->changeDate(static_cast<std::size_t>(flag), value.toDateTime());
            }
        });
}

void dic::changeDate(std::size_t index, const QDateTime& value) {
    if (index >= detailAr_.size()) {
        return;
    }
    if (const auto kind = momentKind(detailAr_[index].tp)) {
        changeDetail(index, value.toString(QString::fromLatin1(kind->format)));
    }
}

void dic::changeData(std::size_t index, const QString& value) {
    if (index >= detailAr_.size()) {
        return;
    }
    correctField();
    auto& row = detailAr_[index];
    if (row.tp == formkind::measure) {
        row.source = diary::meraToRead(value.toInt() + 1);
    } else {
        row.source = value.toStdString();
    }
    if (row.field == "pillinter") {
        recomputePillTimes();
    }
    updateData();
}

void dic::recomputePillTimes() {
    if (!pillTimes_) {
        return;
    }
    const std::size_t times = frame::posByField(detailAr_, "pilltime");
    if (times > 0) {
        detailAr_[times - 1].source = pillTimes_(detailAr_).value_or("");
    }
}

const std::vector<diary::ListRow>& dic::listOf(const diary::CatalogueRow& row) {
    if (!row.listdata.empty()) {
        return row.listdata;
    }
    auto [it, fresh] = readingLists_.try_emplace(row.listid);
    if (fresh && services_.lists != nullptr && row.listid != 0) {
        services_.lists->loadConstList(it->second, row.listid, "");
    }
    return it->second;
}

// ---- Sub-forms ----

void dic::subDetail(std::size_t index) {
    correctField();
    const auto& row = detailAr_[index];
    delete sub_;
    sub_ = new dic(services_);
    DetailRequest request;
    request.kind = 2;
    request.parentFlag = static_cast<int>(index) + 1;
    request.cap = row.editcap;
    request.msg = row.editdescr;
    request.dat = row.source;
    request.cotype = row.listid;
    request.edit = row.edit;
    if (!row.listdata.empty()) {
        // A list of the caller's own: its items, ticked by the value.
        const auto chosen = core::split(row.source, "<tr>");
        request.list = row.listdata;
        for (auto& item : request.list) {
            item.checked = std::find(chosen.begin(), chosen.end(), item.index) != chosen.end();
        }
        request.dat = "WASADDED";
    }
    sub_->setPills({});
    sub_->detailPrepare(request, this, this, [this, index](const FormAnswer& answer) {
        subDetailCommit(index, answer.rows);
    });
}

void dic::subDetailCommit(std::size_t index, const FormRows& rows) {
    if (index >= detailAr_.size()) {
        return;
    }
    correctField();
    auto& row = detailAr_[index];
    // The sub-form's value is in the row under its heading.
    row.source = rows.size() > 1 ? rows[1].source : std::string();
    // The list may have grown in the sub-form.
    readingLists_.erase(row.listid);
    if (row.field == "pilleat") {
        recomputePillTimes();
    }
    updateData();
}

void dic::timeClick(std::size_t index, std::size_t position) {
    correctField();
    const auto times = timesOf(detailAr_[index].source);
    if (position >= times.size()) {
        return;
    }
    const auto& row = detailAr_[index];
    const QDateTime old(QDate::currentDate(),
                        QTime::fromString(qs(times[position]), QString::fromLatin1(kTimeFormat)));
    QPointer<dic> self(this);
    services_.popups.popupDetail(
        popupkind::time, shown(row.editdescr.empty() ? row.caption : row.editdescr), old, this,
        static_cast<int>(index + 1) * 1000 + static_cast<int>(position),
        [self, index, position](int /*flag*/, const QVariant& value) {
            if (self == nullptr || index >= self->detailAr_.size()) {
                return;
            }
            const QString time = value.toDateTime().toString(QString::fromLatin1(kTimeFormat));
            auto& row = self->detailAr_[index];
            row.source = replaceTime(row.source, position, time.toStdString());
            const int tag = static_cast<int>(index + 1) * 1000 + static_cast<int>(position);
            for (auto* button : self->controls_[index]->findChildren<QPushButton*>()) {
                if (frame::tag(button) == tag) {
                    button->setText(time);
                }
            }
        });
}

void dic::addToList(std::size_t index) {
    correctField();
    const auto& row = detailAr_[index];
    FormRows rows;
    diary::addToNoteInit(rows, "", "Название", formkind::textLine, 0, "Название",
                         "Введите название", "name", false, true);
    if (row.listedittype == 2) {
        diary::addToNoteInit(rows, "", "Добавлять болезнь в анкету", formkind::toggle, 0, "", "",
                             "card", false, false);
    } else if (row.listedittype == 3) {
        diary::addToNoteInit(rows, "", "Единица измерения", formkind::measure, 0,
                             "Единица измерения", "Единица измерения", "measure", false, true);
    }
    const QString caption = row.listedittype == 3 ? own("Новый продукт") : own("Новый тип");
    delete sub_;
    sub_ = new dic(services_);
    sub_->prepare(std::move(rows), caption, this, this, static_cast<int>(index) + 1, {},
                  [this, index](const FormAnswer& answer) { afterAdd(index, answer.rows); });
}

void dic::afterAdd(std::size_t index, const FormRows& rows) {
    if (index >= detailAr_.size() || services_.lists == nullptr) {
        return;
    }
    auto& row = detailAr_[index];
    const std::string name =
        std::string(core::trimmed(frame::fieldValue(rows, "name").value_or("")));
    if (name.empty()) {
        return;
    }
    diary::NewListRow added = diary::NewListRow::plain(row.listid, name);
    if (row.listedittype == 2) {
        added = diary::NewListRow::illness(row.listid, name,
                                           frame::fieldValue(rows, "card").value_or("") == "1");
    } else if (row.listedittype == 3) {
        added = diary::NewListRow::food(row.listid, name,
                                        frame::fieldValue(rows, "measure").value_or(""));
    }
    correctField();
    services_.lists->addFromListScreen(added, row.list);
    row.source = checkedIndices(row.list);
    updateData();
}

// ---- Photo ----

void dic::photoClick(std::size_t index) {
    QPointer<dic> self(this);
    services_.popups.popupMenu(
        own("Новая фотография<td>pm-photo.png<tr>Из альбома<td>pm-image.png<tr>"
            "Очистить<td>pm-clear.png"),
        this,
        [self, index](const QString& /*sender*/, const QString& caption) {
            if (self == nullptr || index >= self->detailAr_.size()) {
                return;
            }
            auto& row = self->detailAr_[index];
            if (caption == self->own("Новая фотография")) {
                self->services_.popups.message(
                    self->own("Ваше устройство не умеет делать фотографии"), QString(), 0,
                    self.data());
            } else if (caption == self->own("Из альбома")) {
                std::optional<QImage> image = self->photoPicker_(self.data());
                if (!image || image->isNull() || self == nullptr) {
                    return;
                }
                if (image->width() > kLargestPhoto || image->height() > kLargestPhoto) {
                    *image = image->scaled(kLargestPhoto, kLargestPhoto, Qt::KeepAspectRatio,
                                           Qt::SmoothTransformation);
                }
                self->correctField();
                row.image = platform::QtImageCodec::fromQImage(*image);
                row.save = 1;
                self->updateData();
            } else if (caption == self->own("Очистить")) {
                self->correctField();
                row.image.reset();
                row.save = 2;
                self->updateData();
            }
        },
        QStringLiteral("photo"));
}

// ---- Answers ----

void dic::actionClick(std::size_t index) {
    correctField();
    answer(&detailAr_[index]);
}

void dic::closeOk() {
    if (QWidget* focused = QApplication::focusWidget()) {
        focused->clearFocus();
    }
    QGuiApplication::inputMethod()->hide();
    correctField();
    if (const auto error = checkField(detailAr_)) {
        services_.popups.message(shown(error->message), shown(error->caption), 0, this);
        return;
    }
    answer(nullptr);
}

void dic::answer(const diary::CatalogueRow* sender) {
    // The form closes before the caller hears of it, so a caller may open
    // it again at once with new rows.
    const FormRows rows = detailAr_;
    const Action action = gaction_;
    const int flag = gParentFlag_;
    const bool alive = !hasTarget_ || gparent_ != nullptr;
    const std::ptrdiff_t senderIndex = sender != nullptr ? sender - detailAr_.data() : -1;
    closeForm();
    if (action && alive) {
        action(FormAnswer{
            flag, rows, senderIndex >= 0 ? &rows[static_cast<std::size_t>(senderIndex)] : nullptr});
    }
}

void dic::closeForm() {
    if (!open_) {
        return;
    }
    if (startPos_ > 0) {
        // A stopwatch running under a closed form measures nothing.
        tick_.stop();
        startPos_ = 0;
        delete overlay_;
    }
    if (sub_ != nullptr) {
        sub_->closeForm();
    }
    open_ = false;
    --services_.state.openForms;
    hide();
    emit closed();
}

// ---- Stopwatch ----

void dic::startClick(std::size_t index) {
    if (startPos_ > 0 || index >= detailAr_.size()) {
        return;
    }
    correctField();
    const auto& row = detailAr_[index];
    startPos_ = index + 1;
    // A count that ran before goes on from the stored minutes.
    lastStartInterval_ = services_.dates.now() - std::chrono::minutes(ttm(row.source));

    auto* overlay = new QFrame(this);
    overlay_ = overlay;
    setTag(overlay, kStopwatchTag);
    overlay->setObjectName(QStringLiteral("stopwatch"));
    overlay->setStyleSheet(QStringLiteral(
        "#stopwatch { background: rgba(20,20,24,215); }"
        "#stopwatch QLabel { color: white; }"
        "#stopwatch QPushButton { color: white; background: #d9534f; border: none;"
        " border-radius: 24px; font-size: 18px; padding: 0 36px; min-height: 48px; }"));
    overlay->setGeometry(rect());
    auto* box = new QVBoxLayout(overlay);
    box->setAlignment(Qt::AlignCenter);
    box->setSpacing(18);
    auto* busy = new QProgressBar(overlay);
    busy->setRange(0, 0);
    busy->setTextVisible(false);
    busy->setFixedWidth(180);
    box->addWidget(busy, 0, Qt::AlignHCenter);
    auto* progress = wrappedLabel(shown(row.startprogress), overlay, 18, false);
    progress->setAlignment(Qt::AlignCenter);
    box->addWidget(progress);
    elapsed_ = wrappedLabel(QString(), overlay, 40, true);
    elapsed_->setAlignment(Qt::AlignCenter);
    elapsed_->setObjectName(QStringLiteral("elapsed"));
    box->addWidget(elapsed_);
    auto* stop = new QPushButton(own("Стоп"), overlay);
    stop->setObjectName(QStringLiteral("stopButton"));
    connect(stop, &QPushButton::clicked, this, &dic::stopClick);
    box->addWidget(stop, 0, Qt::AlignHCenter);
    elapsed_->setText(qs(elapsedText((services_.dates.now() - lastStartInterval_).count())));

    auto* effect = new QGraphicsOpacityEffect(overlay);
    effect->setOpacity(0);
    overlay->setGraphicsEffect(effect);
    overlay->show();
    overlay->raise();
    auto* fade = new QPropertyAnimation(effect, "opacity", overlay);
    fade->setDuration(kFadeMs);
    fade->setStartValue(0.0);
    fade->setEndValue(1.0);
    connect(fade, &QPropertyAnimation::finished, this, [this] {
        onStartTimer();
        tick_.start();
    });
    fade->start(QAbstractAnimation::DeleteWhenStopped);
}

void dic::onStartTimer() {
    if (startPos_ == 0 || elapsed_ == nullptr) {
        tick_.stop();
        return;
    }
    // Read from the clock each time: ticks may come late or not at all
    // while the program is held up.
    elapsed_->setText(qs(elapsedText((services_.dates.now() - lastStartInterval_).count())));
}

void dic::stopClick() {
    if (startPos_ == 0 || overlay_ == nullptr) {
        return;
    }
    tick_.stop();
    auto* effect = qobject_cast<QGraphicsOpacityEffect*>(overlay_->graphicsEffect());
    overlay_->setAttribute(Qt::WA_TransparentForMouseEvents);
    auto* fade = new QPropertyAnimation(effect, "opacity", overlay_);
    fade->setDuration(kFadeMs);
    fade->setStartValue(effect != nullptr ? effect->opacity() : 1.0);
    fade->setEndValue(0.0);
    connect(fade, &QPropertyAnimation::finished, this, &dic::finishStopwatch);
    fade->start();
}

void dic::finishStopwatch() {
    if (startPos_ == 0) {
        return;
    }
    const auto minutes = std::chrono::duration_cast<std::chrono::minutes>(services_.dates.now() -
                                                                          lastStartInterval_);
    const std::size_t index = startPos_ - 1;
    startPos_ = 0;
    if (overlay_ != nullptr) {
        overlay_->deleteLater();
    }
    elapsed_ = nullptr;
    changeDetail(index, qs(mtt(minutes.count())));
}

void dic::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (overlay_ != nullptr) {
        overlay_->setGeometry(rect());
    }
}

}  // namespace tilika::frame
