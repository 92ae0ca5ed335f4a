#pragma once

#include <QLabel>
#include <QScrollArea>
#include <QTimer>
#include <QWidget>

#include <array>
#include <functional>
#include <optional>

#include "development/ruler.h"

namespace tilika::development {

// The scale under a ruler: ticks, and the units or years of whole ticks.
class vessliderpaint final : public QWidget {
    Q_OBJECT

public:
    explicit vessliderpaint(QWidget* parent = nullptr);
    // The content has room on either side of the ruler itself.
    void prepare(const Ruler& ruler, double left, double right);
    // The second ruler of a thousandths ruler: tenths of a tenth.
    void prepareDigits(double scale, double left, double right);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::vector<RulerTick> ticks_;
    double scale_ = 1;
    // The positions of 37, 38 and 39 degrees on a temperature ruler.
    std::optional<std::array<double, 3>> temperature_;
};

// A ruler on which a number is picked by scrolling it under a pointer. The
// value under the pointer shows above; a tap on it clears the value.
class vesslider final : public QWidget {
    Q_OBJECT

public:
    explicit vesslider(QWidget* parent = nullptr);

    // With resize, every size follows the screen's scale factor.
    void prepareRuller(int min, int max, int type, bool border, bool resize, double scale = 1);
    void setPosition(double value, bool active);
    double getPosition() const { return gposition_; }
    QString text() const { return value_->text(); }
    // Moves the ruler by whole ticks (months on a month ruler), as a wheel
    // notch or an arrow key does.
    void step(int ticks);
    // Told the value when scrolling stops or a value is set.
    void setSelector(std::function<void(double)> selector) { selector_ = std::move(selector); }

    QScrollArea* mainScroll() const { return main_; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void setCurOffset();
    void place(double value, bool active);
    void rulersResized();
    double mainLeft() const;
    double secondLeft() const;
    void tell();
    void stepScroll(QScrollArea* scroll, double tick, int ticks);
    void layoutRulers();
    void placePointers();

    std::optional<Ruler> ruler_;
    QLabel* value_;
    QScrollArea* main_;
    QScrollArea* second_;
    vessliderpaint* mainScale_;
    vessliderpaint* secondScale_;
    std::array<QWidget*, 2> pointers_{};
    QTimer settle_;
    std::function<void(double)> selector_;
    double gposition_ = 0;
    bool marks_ = false;
    bool border_ = false;
    bool placing_ = false;
    // The value the ruler stands for, set or scrolled to; a new layout goes
    // back to it.
    double kept_ = 0;
    bool keptActive_ = false;
    bool clamping_ = false;
    bool replacing_ = false;
    // A touchpad's wheel comes in slivers; a tick moves once they add up to
    // a notch.
    int wheelAngle_ = 0;
};

}  // namespace tilika::development
