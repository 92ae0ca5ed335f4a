#include "frame/elided_label.h"

#include <QPainter>
#include <QStyle>
#include <QTextLayout>

#include <algorithm>

namespace tilika::frame {

namespace {

// A label asks for no more than a comfortable line; it wraps in less.
constexpr int kComfortableChars = 40;

}  // namespace

ElidedLabel::ElidedLabel(const QString& text, QWidget* parent, int pixelSize, bool bold,
                         int maxLines)
    : QLabel(text, parent), maxLines_(std::max(1, maxLines)) {
    QFont font = this->font();
    font.setPixelSize(pixelSize);
    font.setBold(bold);
    setFont(font);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

QStringList ElidedLabel::linesFor(int textWidth) const {
    QStringList lines;
    QString whole = text();
    whole.replace(QLatin1Char('\n'), QLatin1Char(' '));
    if (whole.trimmed().isEmpty() || textWidth <= 0) {
        return lines;
    }
    QTextLayout layout(whole, font());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(textWidth);
        if (lines.size() + 1 == maxLines_) {
            // The last line takes all the rest, cut short.
            lines << fontMetrics().elidedText(whole.mid(line.textStart()).trimmed(), Qt::ElideRight,
                                              textWidth);
            break;
        }
        lines << whole.mid(line.textStart(), line.textLength()).trimmed();
    }
    layout.endLayout();
    return lines;
}

QStringList ElidedLabel::shownLines() const {
    return linesFor(width() - overhead().width());
}

QSize ElidedLabel::overhead() const {
    const QMargins margins = contentsMargins();
    return {margins.left() + margins.right() + 2 * margin(),
            margins.top() + margins.bottom() + 2 * margin()};
}

int ElidedLabel::heightForWidth(int width) const {
    const auto lines = static_cast<int>(linesFor(width - overhead().width()).size());
    const QFontMetrics metrics = fontMetrics();
    const int textHeight = lines > 0 ? lines * metrics.lineSpacing() - metrics.leading() : 0;
    return textHeight + overhead().height();
}

QSize ElidedLabel::sizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    const int natural = metrics.horizontalAdvance(text());
    const int width =
        std::min(natural, kComfortableChars * metrics.averageCharWidth()) + overhead().width();
    return {width, heightForWidth(width)};
}

QSize ElidedLabel::minimumSizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    const int width = metrics.horizontalAdvance(QChar(0x2026)) + overhead().width();
    return {width, (text().isEmpty() ? 0 : metrics.height()) + overhead().height()};
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/) {
    const QRect area = contentsRect().adjusted(margin(), margin(), -margin(), -margin());
    const QStringList lines = linesFor(area.width());
    if (lines.isEmpty()) {
        return;
    }
    QPainter painter(this);
    painter.setFont(font());
    const QFontMetrics metrics = fontMetrics();
    const int textHeight =
        static_cast<int>(lines.size()) * metrics.lineSpacing() - metrics.leading();
    const Qt::Alignment align = QStyle::visualAlignment(layoutDirection(), alignment());
    int y = area.top();
    if (align & Qt::AlignVCenter) {
        y += (area.height() - textHeight) / 2;
    } else if (align & Qt::AlignBottom) {
        y += area.height() - textHeight;
    }
    const int across = static_cast<int>(align & Qt::AlignHorizontal_Mask) | Qt::AlignTop;
    for (const QString& line : lines) {
        style()->drawItemText(&painter, QRect(area.left(), y, area.width(), metrics.height()),
                              across, palette(), isEnabled(), line, foregroundRole());
        y += metrics.lineSpacing();
    }
}

}  // namespace tilika::frame
