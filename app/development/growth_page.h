#pragma once

#include <QPointer>
#include <QWidget>

#include <functional>
#include <string>

#include "development/growth.h"
#include "frame/tab.h"

class QCheckBox;
class QLabel;
class QParallelAnimationGroup;
class QToolButton;

namespace tilika::core {
struct Context;
}
namespace tilika::frame {
class Popups;
}
namespace tilika::platform {
class QtPictures;
}

namespace tilika::development {

class chart;

// What the growth page needs of the program.
struct GrowthServices {
    core::Context& context;
    const platform::QtPictures& pictures;
    frame::Popups& popups;
};

// One chart of the page: the whole of it in grey, and over it the coloured
// copy in `pbar`, as wide as the span up to today, with the marker of today
// above it.
class GrowthChartView final : public QWidget {
    Q_OBJECT

public:
    GrowthChartView(const platform::QtPictures& pictures, const char* name, QWidget* parent);

    void setChart(const GrowthChart& chart, double today);
    void setMarker(const QPixmap& picture);
    // 0 to 1 of the way to today: the colour's width, the marker's place.
    void setProgress(double progress);

    chart* colorChart() const { return color_; }
    chart* grayChart() const { return gray_; }
    QWidget* pbar() const { return pbar_; }
    QLabel* fire() const { return fire_; }
    // Where the marker stands once it has reached today.
    QPoint firePlace() const;
    // Where it sets out from: the start of the span.
    QPoint fireStart() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    // The x of today on the chart, in its own coordinates.
    double todayX() const;
    void place();

    QWidget* rest_;
    chart* gray_;
    QWidget* pbar_;
    chart* color_;
    QLabel* fire_;
    double today_ = 0;
    double progress_ = 1;
};

// The height and weight charts of a child, by year of life or for the whole
// life; the year steps with the buttons, Page Up and Page Down, or the wheel
// over the caption.
class title final : public frame::Tab {
    Q_OBJECT

public:
    // Opens the table of a child's measures (regim as the measure table
    // counts), calling `onClose` when it closes.
    using TableOpener =
        std::function<void(int regim, const std::string& gid, std::function<void()> onClose)>;

    title(GrowthServices services, QWidget* parent);

    void activateView(const std::string& gid) override;
    void activate() override;
    void setTableOpener(TableOpener opener) { opener_ = std::move(opener); }

    // Rebuilds the page for the shown year; `animate` grows the colour up to
    // today again.
    void changeText(bool animate = true);
    void prevYear();
    void nextYear();
    // The edit button's menu, and what its items do.
    void editData();
    void actionEdit(const QString& caption);

    const Growth& growth() const { return growth_; }
    const GrowthView& view() const { return view_; }
    GrowthChartView* rostChart() const { return ch1_; }
    GrowthChartView* vesChart() const { return ch2_; }
    QCheckBox* centilesBox() const { return centiles_; }
    // Brings the running animations to their end at once (for tests and
    // anyone who must see the final picture now).
    void finishAnimations();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool nothingOver() const;
    void applyLook();
    void startAnimation();

    GrowthServices services_;
    Growth growth_;
    GrowthView view_;
    TableOpener opener_;

    QLabel* caption_;
    QToolButton* back_;
    QToolButton* yearBack_;
    QToolButton* yearNext_;
    QToolButton* edit_;
    QCheckBox* centiles_;
    QLabel* empty_;
    GrowthChartView* ch1_;
    GrowthChartView* ch2_;
    QLabel* centile1_;
    QLabel* centile2_;
    QPointer<QParallelAnimationGroup> animation_;
    int wheel_ = 0;
};

}  // namespace tilika::development
