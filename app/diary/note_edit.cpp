#include "diary/note_edit.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/text.h"
#include "development/ruler_view.h"
#include "diary/photo_source.h"
#include "diary/reference_lists.h"
#include "diary/value_codecs.h"
#include "frame/form_kinds.h"
#include "frame/form_moments.h"
#include "frame/form_row_views.h"
#include "frame/form_values.h"
#include "frame/look.h"
#include "frame/pictures.h"
#include "frame/popup_layer.h"
#include "frame/popup_panels.h"
#include "frame/popups.h"
#include "medication/course_form.h"
#include "medication/dose_times.h"
#include "platform/qt_date.h"
#include "platform/qt_image_codec.h"
#include "platform/qt_pictures.h"

namespace tilika::diary {

namespace {

constexpr int kIconSize = 28;
constexpr int kThumbnail = 160;

QString qs(const std::string& text) {
    return QString::fromStdString(text);
}

bool isMultiRow(int kind) {
    return kind == tp::timedRows || kind == tp::reminders || kind == tp::medication ||
           kind == tp::periods || kind == tp::pressure || kind == tp::fluids;
}

// Rows of times are removed by their own mark; records open a menu.
bool hasTimedRows(int kind) {
    return kind == tp::timedRows || kind == tp::reminders;
}

QLabel* textLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setMinimumWidth(1);
    label->setContentsMargins(kIconSize + 12, 0, 8, 0);
    return label;
}

// The widget of a row, and the column it stacks its parts in.
std::pair<QWidget*, QVBoxLayout*> rowColumn(QWidget* parent) {
    auto* widget = new QWidget(parent);
    auto* box = new QVBoxLayout(widget);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(2);
    return {widget, box};
}

QToolButton* markButton(const QString& text, QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setText(text);
    button->setAutoRaise(true);
    button->setFixedSize(32, 28);
    return button;
}

}  // namespace

noteEdit::noteEdit(EditorServices services, QWidget* window)
    : QWidget(window),
      services_(std::move(services)),
      courses_(services_.context.dates),
      store_(services_.context, courses_),
      editor_(services_.context, store_, services_.images, services_.cloud) {
    setObjectName(QStringLiteral("noteEdit"));
    setAutoFillBackground(true);
    setAttribute(Qt::WA_StyledBackground);
    // A style sheet of its own turns off the widget's background: it is
    // given back, or the page behind shows through the caption.
    setStyleSheet(QStringLiteral(
        "#noteEdit { border: 1px solid palette(mid); background: palette(window); }"));
    setFocusPolicy(Qt::StrongFocus);
    hide();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto* header = new QWidget(this);
    header->setObjectName(QStringLiteral("noteEditHeader"));
    auto* bar = new QHBoxLayout(header);
    bar->setContentsMargins(4, 4, 4, 4);
    auto* back = new QToolButton(header);
    back->setObjectName(QStringLiteral("back"));
    back->setArrowType(Qt::LeftArrow);
    back->setToolTip(QStringLiteral("Назад"));
    auto* prev = new QToolButton(header);
    prev->setObjectName(QStringLiteral("prevDay"));
    prev->setText(QStringLiteral("◀"));
    auto* next = new QToolButton(header);
    next->setObjectName(QStringLiteral("nextDay"));
    next->setText(QStringLiteral("▶"));
    auto* day = new QPushButton(header);
    day->setObjectName(QStringLiteral("selDay"));
    day->setFlat(true);
    caption_ = new QLabel(day);
    caption_->setAlignment(Qt::AlignCenter);
    QFont font = caption_->font();
    font.setPixelSize(18);
    font.setBold(true);
    caption_->setFont(font);
    auto* dayLayout = new QHBoxLayout(day);
    dayLayout->setContentsMargins(0, 0, 0, 0);
    dayLayout->addWidget(caption_);
    day->setMinimumHeight(32);
    bar->addWidget(back);
    bar->addStretch();
    bar->addWidget(prev);
    bar->addWidget(day, 1);
    bar->addWidget(next);
    bar->addStretch();
    layout->addWidget(header);

    scroll_ = new QScrollArea(this);
    scroll_->setObjectName(QStringLiteral("noteEditRows"));
    scroll_->setWidgetResizable(true);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    layout->addWidget(scroll_, 1);

    connect(back, &QToolButton::clicked, this, [this] { close(); });
    connect(prev, &QToolButton::clicked, this, [this] { prevDay(); });
    connect(next, &QToolButton::clicked, this, [this] { nextDay(); });
    connect(day, &QPushButton::clicked, this, [this] { selDay(); });
    window->installEventFilter(this);
}

noteEdit::~noteEdit() {
    if (open_) {
        --services_.context.state.openForms;
    }
}

void noteEdit::prepare(const DayNote& day, const std::string& gid, std::function<void()> onClose,
                       std::optional<QRect> anchor) {
    // A day already open is left the usual way before another one opens.
    if (open_ && !told(editor_.save(true))) {
        return;
    }
    editor_.prepare(day, gid);
    onClose_ = std::move(onClose);
    anchor_ = anchor;
    if (!open_) {
        open_ = true;
        // The pages stay where they are while the editor is up.
        ++services_.context.state.openForms;
    }
    place();
    reload();
    show();
    raise();
    setFocus();
}

void noteEdit::open(core::Date day, const std::string& gid, std::function<void()> onClose,
                    std::optional<QRect> anchor) {
    prepare(store_.todayNoteForDay(services_.context.dates.noTime(day), gid), gid,
            std::move(onClose), anchor);
}

void noteEdit::place() {
    QWidget* window = parentWidget();
    if (window->width() <= frame::popup::kPhoneWidth) {
        setGeometry(window->rect());
        return;
    }
    const int height = std::min(kPanelHeight, window->height());
    const QRect at =
        anchor_.value_or(QRect(window->width() / 2 - kPanelWidth / 2, window->height() / 2, 0, 0));
    int x = at.right() + 8;
    if (x + kPanelWidth > window->width()) {
        x = at.left() - kPanelWidth - 8;
    }
    x = std::clamp(x, 0, std::max(0, window->width() - kPanelWidth));
    const int y = std::clamp(at.top() - height / 4, 0, window->height() - height);
    setGeometry(x, y, kPanelWidth, height);
}

QWidget* noteEdit::rowView(std::size_t index) const {
    return index < rows_.size() ? rows_[index] : nullptr;
}

void noteEdit::reload() {
    caption_->setText(qs(editor_.caption()));
    const int kept = scroll_->widget() != nullptr ? scroll_->verticalScrollBar()->value() : 0;
    content_ = new QWidget;
    auto* column = new QVBoxLayout(content_);
    column->setContentsMargins(6, 6, 6, 6);
    column->setSpacing(4);
    rows_.clear();
    for (std::size_t i = 0; i < editor_.noteData().size(); ++i) {
        QWidget* row = buildRow(i, content_);
        rows_.push_back(row);
        column->addWidget(row);
        if (i + 1 < editor_.noteData().size()) {
            auto* line = new QFrame(content_);
            line->setFrameShape(QFrame::HLine);
            line->setFrameShadow(QFrame::Sunken);
            column->addWidget(line);
        }
    }
    column->addStretch();
    scroll_->setWidget(content_);
    scroll_->verticalScrollBar()->setValue(kept);
}

QWidget* noteEdit::buildRow(std::size_t index, QWidget* parent) {
    const CatalogueRow& row = editor_.noteData()[index];
    if (row.tp == tp::photo) {
        return photoRow(index, parent);
    }
    if (row.tp == tp::kilograms || row.tp == tp::centimetres) {
        return sliderRow(index, parent);
    }
    if (isMultiRow(row.tp)) {
        return multiRow(index, parent);
    }
    auto [widget, box] = rowColumn(parent);
    auto* head =
        new frame::form::TapRow(services_.forms.pictures, icon(row.pic), qs(row.caption), widget);
    head->setArrow("arrow.png");
    connect(head, &QAbstractButton::clicked, this, [this, index] { detailClick(index); });
    box->addWidget(head);
    if (!row.text.empty()) {
        box->addWidget(textLabel(qs(row.text), widget));
    }
    return widget;
}

QWidget* noteEdit::sliderRow(std::size_t index, QWidget* parent) {
    const CatalogueRow& row = editor_.noteData()[index];
    auto [widget, box] = rowColumn(parent);
    auto* caption = new QLabel(qs(row.caption), widget);
    caption->setWordWrap(true);
    caption->setMinimumWidth(1);
    box->addWidget(caption);
    const bool weight = row.tp == tp::kilograms;
    auto* slider = new development::vesslider(widget);
    slider->setObjectName(qs(row.field));
    slider->prepareRuller(weight ? -1 : 20, weight ? 80 : 180, weight ? 3 : 1, false, false);
    slider->setPosition(editor_.sliderStart(index).value_or(0), row.active.value_or(false));
    // Told only after it stands where it starts: placing it is no choice.
    slider->setSelector([this, index, weight](double position) {
        std::string value = frame::sliderSource(position, weight ? "3" : "1");
        if (value != editor_.noteData()[index].source) {
            editor_.editData(index, std::move(value));
        }
    });
    box->addWidget(slider);
    return widget;
}

QWidget* noteEdit::multiRow(std::size_t index, QWidget* parent) {
    const CatalogueRow& row = editor_.noteData()[index];
    auto [widget, box] = rowColumn(parent);
    auto* headLine = new QHBoxLayout;
    auto* head =
        new frame::form::TapRow(services_.forms.pictures, icon(row.pic), qs(row.caption), widget);
    connect(head, &QAbstractButton::clicked, this, [this, index] { detailClick(index); });
    headLine->addWidget(head, 1);
    auto* add = markButton(QStringLiteral("+"), widget);
    add->setObjectName(QStringLiteral("add"));
    connect(add, &QToolButton::clicked, this, [this, index] { detailClick(index); });
    headLine->addWidget(add);
    box->addLayout(headLine);
    const bool timed = row.tp == tp::timedRows || row.tp == tp::reminders ||
                       row.tp == tp::pressure || row.tp == tp::fluids;
    for (std::size_t k = 0; k < row.multiarray.size(); ++k) {
        const MultiRow& element = row.multiarray[k];
        auto* line = new QHBoxLayout;
        const QString text =
            timed ? qs(element.time) + QStringLiteral("  ") + qs(element.cap) : qs(element.text);
        line->addWidget(textLabel(text, widget), 1);
        auto* mark =
            markButton(hasTimedRows(row.tp) ? QStringLiteral("✕") : QStringLiteral("…"), widget);
        mark->setObjectName(QStringLiteral("element%1").arg(k));
        connect(mark, &QToolButton::clicked, this, [this, index, k] {
            if (hasTimedRows(editor_.noteData()[index].tp)) {
                editor_.deleteTimedRow(index, k);
                reload();
            } else {
                editMulti2(index, k);
            }
        });
        line->addWidget(mark);
        box->addLayout(line);
    }
    // An old plain value has no elements, and still shows.
    if (row.multiarray.empty() && !row.source.empty() && !jsonIs(row.source)) {
        box->addWidget(textLabel(qs(row.source), widget));
    }
    return widget;
}

QWidget* noteEdit::photoRow(std::size_t index, QWidget* parent) {
    const CatalogueRow& row = editor_.noteData()[index];
    auto [widget, box] = rowColumn(parent);
    widget->setObjectName(QStringLiteral("photoRow"));
    widget->setAcceptDrops(true);
    widget->installEventFilter(this);
    auto* head = new frame::form::TapRow(services_.forms.pictures, icon("ne-photo.png"),
                                         qs(row.caption), widget);
    connect(head, &QAbstractButton::clicked, this, [this] { photoClick(); });
    box->addWidget(head);
    if (row.isphoto) {
        QImage image = editor_.newPhoto() ? platform::QtImageCodec::toQImage(*editor_.newPhoto())
                                          : QImage(qs(row.photopath));
        if (!image.isNull()) {
            auto* picture = new QLabel(widget);
            picture->setObjectName(QStringLiteral("photo"));
            picture->setPixmap(QPixmap::fromImage(image.scaled(
                kThumbnail, kThumbnail, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
            picture->setAlignment(Qt::AlignCenter);
            box->addWidget(picture);
        }
    }
    return widget;
}

std::string noteEdit::icon(const std::string& picture) const {
    // The editor is light whatever the backdrop, as the forms are.
    return services_.forms.pictures.pictures().colored(picture, services_.context.state.colorIcons);
}

int noteEdit::formHeight(int kind) const {
    switch (kind) {
        case tp::text:
        case tp::timedRows:
        case tp::centimetres:
        case tp::kilograms:
        case tp::ultrasound:
            return 400;
        case tp::reminders:
            return 500;
        default:
            return 700;
    }
}

void noteEdit::openForm(diary::EntryForm form, std::size_t index,
                        std::function<bool(const frame::FormAnswer&)> action) {
    QWidget* window = parentWidget();
    QWidget* host = window;
    if (form_ != nullptr) {
        form_->closeForm();
        form_->deleteLater();
    }
    if (formHost_ != nullptr) {
        formHost_->deleteLater();
    }
    const int kind = index < editor_.noteData().size() ? editor_.noteData()[index].tp : 0;
    if (window->width() > frame::popup::kPhoneWidth) {
        // A panel of its own beside the editor, as high as its rows need.
        auto* frame = new QFrame(window);
        frame->setObjectName(QStringLiteral("noteEditForm"));
        const int height = std::min(formHeight(kind), window->height());
        int x = geometry().right() + 1;
        if (x + kPanelWidth > window->width()) {
            x = std::max(0, geometry().left() - kPanelWidth);
        }
        frame->setGeometry(x, std::clamp(y(), 0, window->height() - height), kPanelWidth, height);
        frame->show();
        frame->raise();
        formHost_ = frame;
        host = frame;
    }
    form_ = new frame::dic(services_.forms, host);
    form_->setGid(editor_.gid());
    form_->setDocumentsOpener(
        [this](const frame::dic::DocumentsRequest& request, const auto& /*done*/) {
            services_.comingSoon(request.caption.toStdString());
        });
    QPointer<QWidget> separateHost = formHost_;
    connect(form_, &frame::dic::closed, this, [separateHost] {
        if (separateHost != nullptr) {
            separateHost->deleteLater();
        }
    });
    form_->prepare(std::move(form.rows),
                   frame::translatedText(services_.context.state, form.caption), host, this,
                   static_cast<int>(index), form.defaults, std::move(action));
}

void noteEdit::detailClick(std::size_t index) {
    if (index >= editor_.noteData().size()) {
        return;
    }
    const CatalogueRow& row = editor_.noteData()[index];
    switch (row.tp) {
        case tp::photo:
            photoClick();
            return;
        case tp::kilograms:
        case tp::centimetres:
            // The slider is the editor of these.
            return;
        case tp::teeth:
            openForm(editor_.toothForm(index), index, [this, index](const frame::FormAnswer& a) {
                afterEdit(index, a);
                return true;
            });
            return;
        case tp::popupList:
        case tp::popupText: {
            // The value is read and written as the form's time or date rows
            // keep theirs, through the core's dates.
            frame::FormRow moment = row;
            moment.tp = row.tp == tp::popupList ? frame::formkind::time : frame::formkind::date;
            const core::Dates& dates = services_.context.dates;
            const core::Date now = dates.now();
            services_.forms.popups.popupDetail(
                frame::momentKind(moment.tp)->popup, qs(row.editdescr),
                platform::toQDateTime(frame::rowMoment(moment, dates, now).value_or(now),
                                      dates.timeZoneId()),
                this, 0, [this, index, kind = moment.tp](int /*flag*/, const QVariant& value) {
                    const std::string picked = frame::momentSource(
                        kind, platform::fromQDateTime(value.toDateTime()), services_.context.dates);
                    if (editor_.editData(index, picked)) {
                        reload();
                    }
                });
            return;
        }
        case tp::medication:
        case tp::periods:
        case tp::pressure:
        case tp::fluids:
            editDicDialog(index, -1);
            return;
        case tp::analyses:
            services_.comingSoon("Анализы и исследования");
            return;
        default:
            break;
    }
    session::DetailRequest request;
    request.kind = row.tp;
    request.parentFlag = static_cast<int>(index);
    request.cap = row.editcap;
    request.msg = row.editdescr;
    request.dat = row.source;
    request.cotype = row.listid;
    request.edit = row.edit;
    diary::EntryForm ready;
    const session::FormContent content = session::detailPrepare(
        request, session::DetailContext{services_.context.dates, services_.context.dates.now(),
                                        services_.forms.lists, services_.context.state.lightTheme});
    ready.caption = content.caption;
    ready.rows = content.rows;
    openForm(std::move(ready), index, [this, index](const frame::FormAnswer& answer) {
        afterEdit(index, answer);
        return true;
    });
}

void noteEdit::afterEdit(std::size_t index, const frame::FormAnswer& answer) {
    if (editor_.afterEdit(index, answer.rows)) {
        reload();
    }
}

void noteEdit::editDicDialog(std::size_t index, int pos) {
    const CatalogueRow& row = editor_.noteData()[index];
    std::optional<std::string> record;
    if (pos >= 0 && static_cast<std::size_t>(pos) < row.multiarray.size()) {
        record = row.multiarray[static_cast<std::size_t>(pos)].source;
    }
    const std::optional<std::string_view> recordView =
        record ? std::optional<std::string_view>(*record) : std::nullopt;
    const core::Dates& dates = services_.context.dates;
    diary::EntryForm form =
        row.field == "pills"
            ? medication::courseForm(recordView, editor_.caption(), editor_.listData())
            : periodForm(row.field, dates.dateToString(dates.now(), core::formats::timeOfDay),
                         recordView);
    if (form.rows.empty()) {
        services_.comingSoon(row.editcap);
        return;
    }
    const bool course = row.field == "pills";
    openForm(std::move(form), index, [this, index, pos](const frame::FormAnswer& answer) {
        const bool redraw = pos < 0 ? editor_.newPills(index, answer.rows)
                                    : editor_.editPills(index, pos, answer.rows);
        if (redraw) {
            reload();
        }
        return true;
    });
    if (course) {
        // A course's times follow its doses a day and its meals; a time set by
        // hand stays until one of those changes.
        form_->setFollowRows([this](frame::FormRows& rows, std::string_view changed) {
            medication::followCourseTimes(rows, changed, [this](const auto& fields) {
                return std::optional<std::string>(courseTimes(fields));
            });
        });
    }
}

std::string noteEdit::courseTimes(const std::map<std::string, std::string>& course) const {
    // The lists are read afresh: the form may have just added a meal relation.
    std::vector<ListRow> lists;
    if (services_.forms.lists != nullptr) {
        services_.forms.lists->loadConstList(lists, diary::cotype::all, "");
    }
    const medication::DoseTimes times(
        services_.context.dates, lists,
        medication::getObed(services_.context.database.connectToBase()));
    return times.courseTimes(course);
}

void noteEdit::editMulti2(std::size_t index, std::size_t pos) {
    QPointer<noteEdit> self(this);
    services_.forms.popups.popupMenu(
        qs(editor_.elementMenu(index)), this,
        [self, index, pos](const QString& /*sender*/, const QString& caption) {
            if (self == nullptr || !self->open_) {
                return;
            }
            if (caption == QStringLiteral("Редактировать")) {
                self->editDicDialog(index, static_cast<int>(pos));
            } else if (caption == QStringLiteral("Удалить")) {
                self->editor_.deleteElement(index, pos);
                self->reload();
            }
        },
        QStringLiteral("multi"));
}

void noteEdit::photoClick() {
    QPointer<noteEdit> self(this);
    services_.forms.popups.popupMenu(
        QStringLiteral("Новая фотография<td>pm-photo.png<tr>Из альбома<td>pm-image.png<td><tr>"
                       "Очистить<td>pm-clear.png"),
        this,
        [self](const QString& /*sender*/, const QString& caption) {
            if (self != nullptr && self->open_) {
                self->actionPhoto(caption);
            }
        },
        QStringLiteral("photo"));
}

void noteEdit::actionPhoto(const QString& caption) {
    if (caption == QStringLiteral("Новая фотография")) {
        if (!services_.photos.hasCamera()) {
            message(QStringLiteral("Ваше устройство не умеет делать фотографии"));
            return;
        }
        QPointer<noteEdit> self(this);
        services_.photos.takePhoto(this, [self](std::optional<QImage> image) {
            if (self != nullptr && self->open_ && image && !image->isNull()) {
                self->setPhoto(*image);
            }
        });
    } else if (caption == QStringLiteral("Из альбома")) {
        if (const std::optional<QString> file = services_.photos.pickFile(this)) {
            takePhotoFile(*file);
        }
    } else if (caption == QStringLiteral("Очистить")) {
        editor_.clearPhoto();
        reload();
    }
}

void noteEdit::takePhotoFile(const QString& file) {
    const LoadedPhoto loaded = loadPhotoFile(file);
    if (!loaded.image) {
        message(loaded.error);
        return;
    }
    setPhoto(*loaded.image);
}

void noteEdit::setPhoto(const QImage& image) {
    editor_.setPhoto(
        frame::fittedPhoto(services_.images, platform::QtImageCodec::fromQImage(image)));
    reload();
}

void noteEdit::message(const QString& text) {
    services_.forms.popups.message(
        frame::translatedText(services_.context.state, text.toStdString()), QString(), 0,
        parentWidget());
}

bool noteEdit::told(const DaySaved& saved) {
    if (!saved.ok()) {
        message(qs(saved.message()));
    }
    return saved.rows.ok();
}

bool noteEdit::close() {
    if (!open_) {
        return true;
    }
    if (form_ != nullptr && form_->isOpen()) {
        form_->closeForm();
    }
    if (!told(editor_.save(true))) {
        return false;
    }
    if (services_.updateAlarms) {
        services_.updateAlarms();
    }
    open_ = false;
    --services_.context.state.openForms;
    hide();
    if (std::function<void()> done = std::move(onClose_)) {
        done();
    }
    return true;
}

void noteEdit::moveTo(core::Date date) {
    if (told(editor_.moveTo(date))) {
        reload();
        scroll_->verticalScrollBar()->setValue(0);
    }
}

void noteEdit::prevDay() {
    moveTo(services_.context.dates.addDays(editor_.curdate(), -1));
}

void noteEdit::nextDay() {
    moveTo(services_.context.dates.addDays(editor_.curdate(), 1));
}

void noteEdit::selDay() {
    QPointer<noteEdit> self(this);
    const core::Dates& dates = services_.context.dates;
    services_.forms.popups.popupDetail(
        frame::popupkind::date, QStringLiteral("Укажите дату"),
        platform::toQDateTime(editor_.curdate(), dates.timeZoneId()), this, 0,
        [self](int /*flag*/, const QVariant& value) {
            if (self != nullptr && self->open_ && value.toDateTime().isValid()) {
                self->moveTo(platform::fromQDateTime(value.toDateTime()));
            }
        });
}

void noteEdit::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape || event->key() == Qt::Key_Back) {
        close();
        return;
    }
    QWidget::keyPressEvent(event);
}

bool noteEdit::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget()) {
        if (event->type() == QEvent::Resize && open_) {
            place();
        } else if (event->type() == QEvent::Close && open_ && !close()) {
            // What was typed can't be saved: the window stays with it.
            event->ignore();
            return true;
        }
        return false;
    }
    auto* widget = qobject_cast<QWidget*>(watched);
    if (widget != nullptr && widget->objectName() == QStringLiteral("photoRow")) {
        if (event->type() == QEvent::DragEnter) {
            auto* drag = static_cast<QDragEnterEvent*>(event);
            if (drag->mimeData()->hasUrls() && drag->mimeData()->urls().first().isLocalFile()) {
                drag->acceptProposedAction();
                return true;
            }
        } else if (event->type() == QEvent::Drop) {
            auto* drop = static_cast<QDropEvent*>(event);
            const QList<QUrl> urls = drop->mimeData()->urls();
            if (!urls.isEmpty() && urls.first().isLocalFile()) {
                drop->acceptProposedAction();
                takePhotoFile(urls.first().toLocalFile());
                return true;
            }
        }
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace tilika::diary
