#pragma once

#include <QLabel>
#include <QStringList>

namespace tilika::frame {

// A label of a few lines at most, for a child's name and the headers: the
// text wraps between words (or inside a word too long for a line), and
// what does not fit in the last line ends in an ellipsis. text() stays the
// whole text.
class ElidedLabel final : public QLabel {
    Q_OBJECT

public:
    ElidedLabel(const QString& text, QWidget* parent, int pixelSize, bool bold, int maxLines = 2);

    // The lines as drawn at the label's width.
    QStringList shownLines() const;

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QStringList linesFor(int textWidth) const;
    // What the frame and the margins take from the label's size.
    QSize overhead() const;

    int maxLines_;
};

}  // namespace tilika::frame
