#include "frame/dic.h"

#include <QApplication>
#include <QDateTime>
#include <QFrame>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QInputMethod>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
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
#include "frame/elided_label.h"
#include "frame/form_kinds.h"
#include "frame/form_moments.h"
#include "frame/form_row_views.h"
#include "frame/form_shared.h"
#include "frame/look.h"
#include "frame/pictures.h"
#include "frame/popup_panels.h"
#include "frame/scroll_view.h"
#include "frame/translation.h"
#include "platform/qt_canvas.h"
#include "platform/qt_date.h"
#include "platform/qt_pictures.h"

namespace tilika::frame {

using namespace form;

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
    title_ = new ElidedLabel(QString(), this, 18, true);
    title_->setAlignment(Qt::AlignCenter);
    head->addWidget(cancel_);
    head->addWidget(title_, 1);
    head->addWidget(ok_);
    layout->addLayout(head);
    connect(cancel_, &QPushButton::clicked, this, &dic::closeForm);
    connect(ok_, &QPushButton::clicked, this, &dic::closeOk);

    scroll_ = new ScrollView(this);
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
    if (event->type() == QEvent::Resize && watched == parentWidget()) {
        setGeometry(parentWidget()->rect());
    }
    return QWidget::eventFilter(watched, event);
}

// ---- Opening ----

void dic::prepare(FormRows rows, const QString& caption, QWidget* host, QObject* target,
                  int parentFlag, const std::map<std::string, std::string>& defaults,
                  Action action) {
    // Whatever the form was doing for its last caller ends here.
    dropStopwatch();
    if (sub_ != nullptr) {
        sub_->closeForm();
    }
    ++generation_;
    detailAr_ = std::move(rows);
    fillSources(detailAr_, defaults);
    teeth_.clear();
    readingLists_.clear();
    gparent_ = target;
    hasTarget_ = target != nullptr;
    gaction_ = std::move(action);
    gParentFlag_ = parentFlag;

    // The form lies over what it belongs to, or moves to the host's window.
    if (host != nullptr && (parentWidget() == nullptr || host->window() != window())) {
        if (parentWidget() != nullptr) {
            parentWidget()->removeEventFilter(this);
        }
        setParent(host->window());
        parentWidget()->installEventFilter(this);
    }
    if (parentWidget() != nullptr) {
        setGeometry(parentWidget()->rect());
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
    updateData(false);
    show();
    raise();
}

void dic::detailPrepare(const session::DetailRequest& request, QWidget* host, QObject* target,
                        Action action) {
    session::DetailRequest filled = request;
    if (filled.list.empty()) {
        filled.list = list_;
    }
    const session::DetailContext context{services_.dates, services_.dates.now(), services_.lists,
                                         services_.state.lightTheme};
    session::FormContent content = session::detailPrepare(filled, context);
    if (filled.dat.starts_with("WASADDED")) {
        // The caller's own items: adding to them keeps them.
        for (auto& row : content.rows) {
            if (row.tp == formkind::list) {
                row.listdata = row.list;
            }
        }
    }
    prepare(std::move(content.rows), qs(content.caption), host, target, content.parentFlag, {},
            std::move(action));
}

void dic::detailAddToList(std::string index, std::string cap, bool checked, int deleted) {
    ListRow row;
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
            if (row.tp == formkind::number || row.tp == formkind::numberEntry) {
                // A Russian keyboard's decimal mark is the comma; numbers are
                // kept and read with a point.
                std::replace(row.source.begin(), row.source.end(), ',', '.');
            }
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
    const core::Date now = services_.dates.now();
    const QDateTime old = platform::toQDateTime(rowMoment(row, services_.dates, now).value_or(now),
                                                services_.dates.timeZoneId());
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
    const int tp = detailAr_[index].tp;
    if (momentKind(tp)) {
        changeDetail(index, qs(momentSource(tp, platform::fromQDateTime(value), services_.dates)));
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
    followRows(row.field);
    updateData();
}

void dic::followRows(std::string_view changed) {
    if (followRows_) {
        followRows_(detailAr_, changed);
    }
}

const std::vector<ListRow>& dic::listOf(const FormRow& row) {
    if (!row.listdata.empty()) {
        return row.listdata;
    }
    auto [it, fresh] = readingLists_.try_emplace(row.listid);
    if (fresh && services_.lists != nullptr && row.listid != 0) {
        services_.lists->loadConstList(it->second, row.listid, "");
    }
    return it->second;
}

// ---- Answers ----

void dic::actionClick(std::size_t index) {
    correctField();
    answer(index, detailAr_);
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
    answer(std::nullopt, detailAr_);
}

void dic::answer(std::optional<std::size_t> sender, FormRows rows) {
    const Action action = gaction_;
    if (!action || (hasTarget_ && gparent_ == nullptr)) {
        closeForm();
        return;
    }
    // The caller hears while the form is still up, so that a save that
    // failed can keep it up with what the user typed.
    const QPointer<dic> self(this);
    const std::uint64_t generation = generation_;
    if (!action(FormAnswer{gParentFlag_, std::move(rows), sender})) {
        return;
    }
    // The caller may have let the form go, or opened it again at once with
    // new rows; those stay.
    if (self != nullptr && generation_ == generation) {
        closeForm();
    }
}

void dic::closeForm() {
    if (!open_) {
        return;
    }
    // A stopwatch running under a closed form measures nothing.
    dropStopwatch();
    if (sub_ != nullptr) {
        sub_->closeForm();
    }
    open_ = false;
    --services_.state.openForms;
    hide();
    emit closed();
}

void dic::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (overlay_ != nullptr) {
        overlay_->setGeometry(rect());
    }
}

}  // namespace tilika::frame
