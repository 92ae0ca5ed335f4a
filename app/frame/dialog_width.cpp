#include "frame/dialog_width.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QLabel>
#include <QLayout>
#include <QTextDocument>
#include <QWidget>

namespace tilika::frame {

namespace {

constexpr QChar kBreak(0x200B);  // zero width space: a place a line may break

// The text with a place to break after every letter of the words wider
// than a line; other words wrap as they are.
QString breakLongWords(const QString& text, const QFontMetrics& metrics, int lineWidth) {
    QString result;
    QString word;
    const auto flush = [&] {
        if (metrics.horizontalAdvance(word) > lineWidth) {
            for (const QChar letter : word) {
                result += letter;
                result += kBreak;
            }
        } else {
            result += word;
        }
        word.clear();
    };
    for (const QChar letter : text) {
        if (letter.isSpace()) {
            flush();
            result += letter;
        } else {
            word += letter;
        }
    }
    flush();
    return result;
}

}  // namespace

DialogWidthLimit::DialogWidthLimit(QWidget* window) : QObject(window), window_(window) {
    // Dialogs are windows of their own: their events are seen from the
    // application.
    qApp->installEventFilter(this);
}

bool DialogWidthLimit::eventFilter(QObject* watched, QEvent* event) {
    // A dialog sets its own size as it is shown and whenever its layout
    // changes; each time, the width is checked after it.
    if (event->type() == QEvent::Resize) {
        auto* dialog = qobject_cast<QDialog*>(watched);
        if (dialog != nullptr && dialog->isWindow() && dialog->parentWidget() != nullptr &&
            dialog->parentWidget()->window() == window_ && dialog->width() > window_->width()) {
            fit(dialog);
        }
    }
    return QObject::eventFilter(watched, event);
}

void DialogWidthLimit::fit(QWidget* dialog) const {
    const int width = window_->width();
    QLayout* layout = dialog->layout();
    if (layout == nullptr) {
        dialog->setFixedWidth(width);
        return;
    }
    const QMargins margins = layout->contentsMargins();
    const int lineWidth = width - margins.left() - margins.right();
    for (QLabel* label : dialog->findChildren<QLabel*>()) {
        const bool rich =
            label->textFormat() == Qt::RichText ||
            (label->textFormat() == Qt::AutoText && Qt::mightBeRichText(label->text()));
        if (label->text().isEmpty() || rich) {
            continue;
        }
        const QString broken = breakLongWords(label->text(), label->fontMetrics(), lineWidth);
        if (broken != label->text()) {
            label->setText(broken);
        }
        if (label->sizeHint().width() > lineWidth) {
            label->setWordWrap(true);
        }
    }
    dialog->setMinimumSize(0, 0);
    layout->invalidate();
    layout->activate();
    const int height = layout->hasHeightForWidth() ? layout->totalHeightForWidth(width)
                                                   : layout->totalMinimumSize().height();
    dialog->setFixedSize(width, height);
    const QPoint centre = window_->mapToGlobal(window_->rect().center());
    dialog->move(centre.x() - width / 2, dialog->y());
}

}  // namespace tilika::frame
