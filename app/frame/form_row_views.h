#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QWidget>

#include <array>
#include <functional>
#include <string>
#include <vector>

class QLabel;

namespace tilika::platform {
class QtPictures;
}

// The controls of form rows that Qt has no ready widget for. They are drawn
// for a finger: every one that takes a tap is at least kTouchHeight high,
// and the teeth take a tap anywhere near them.
namespace tilika::frame::form {

inline constexpr int kTouchHeight = 48;

// A whole row that answers a tap: an icon, the caption, the value at the
// right and, for rows that open something, an arrow.
class TapRow final : public QAbstractButton {
    Q_OBJECT

public:
    TapRow(const platform::QtPictures& pictures, const std::string& icon, const QString& caption,
           QWidget* parent);
    QLabel* valueLabel() const { return value_; }
    QLabel* iconLabel() const { return icon_; }
    // The value at the right; with none, the caption takes the whole row.
    void setValue(const QString& value);
    void setArrow(const std::string& picture);
    void setTextColor(const QColor& color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const platform::QtPictures& pictures_;
    QLabel* icon_ = nullptr;
    QLabel* caption_;
    QLabel* value_;
    QLabel* arrow_;
};

// An icon that scales with the label it stands in.
void setIcon(QLabel* label, const platform::QtPictures& pictures, const std::string& picture,
             int size);

// On or off, drawn as a sliding knob.
class Switch final : public QAbstractButton {
    Q_OBJECT

public:
    explicit Switch(QWidget* parent);
    QSize sizeHint() const override { return {64, 40}; }

protected:
    void paintEvent(QPaintEvent* event) override;
};

// The jaw picture ("tooth-m.png") laid out in the middle of an area, and the
// place of the picture of tooth n (1 to 20) on it ("tooth-n.png"); an empty
// rectangle for a number outside the chart.
QRectF jawRectIn(QSizeF area);
QRectF toothPictureRect(const QRectF& jaw, int n);

// A child's jaw with its 20 teeth: a tap on a tooth marks it or takes the
// mark away. Teeth are numbered 1 to 20, the upper ones first, from the
// viewer's left.
class TeethChart final : public QWidget {
    Q_OBJECT

public:
    static constexpr int kFirstToothTag = 701;

    // The labels name the upper and the lower teeth.
    TeethChart(const platform::QtPictures& pictures, std::vector<bool> marks,
               std::array<QString, 2> labels, QWidget* parent);
    const std::vector<bool>& marks() const { return marks_; }
    // The tooth button of tooth n (1 to 20).
    QAbstractButton* tooth(int n) const;
    // The tooth nearest to a point of the chart within a finger's reach, or 0.
    int toothAt(QPointF point) const;

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;

signals:
    void toothClicked(int n);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QRectF jawRect() const;
    int pressed_ = 0;

    const platform::QtPictures& pictures_;
    std::vector<bool> marks_;
    std::array<QString, 2> labels_;
    std::array<QAbstractButton*, 20> teeth_{};
};

}  // namespace tilika::frame::form
