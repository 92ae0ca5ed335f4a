#pragma once

#include <QWidget>

#include <array>
#include <functional>
#include <string>

#include "core/date.h"
#include "development/teeth.h"
#include "frame/tab.h"

class QGraphicsOpacityEffect;
class QLabel;
class QPropertyAnimation;
class QToolButton;

namespace tilika::core {
struct Context;
}
namespace tilika::platform {
class QtPictures;
}

namespace tilika::development {

class vesslider;

// The jaw with the 20 milk teeth over it, each a picture of its own that
// fades to the opacity it is given.
class ToothJaw final : public QWidget {
    Q_OBJECT

public:
    static constexpr int kFirstToothTag = 701;

    ToothJaw(const platform::QtPictures& pictures, QWidget* parent);

    // Fades each tooth to its opacity over half a second.
    void showTeeth(const ToothOpacity& opacity);
    // The opacity a tooth is going to (1 to 20).
    double target(int tooth) const;
    // The opacity it shows now.
    double shown(int tooth) const;
    // Ends every fade where it is going.
    void finishAnimations();

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Tooth {
        QWidget* picture = nullptr;
        QGraphicsOpacityEffect* effect = nullptr;
        QPropertyAnimation* fade = nullptr;
        double target = 0;
    };

    const platform::QtPictures& pictures_;
    std::array<Tooth, diary::kMilkTeeth> teeth_{};
};

// What the teeth page needs of the program.
struct ToothServices {
    core::Context& context;
    const platform::QtPictures& pictures;
};

// The page of milk teeth: a ruler of age from birth to fifteen years, and
// the jaw at that age, either as the diary has the child's teeth or as teeth
// usually come and go.
class tooth final : public frame::Tab {
    Q_OBJECT

public:
    // Opens the day editor on a day of the child; `onClose` runs once it
    // has closed.
    using DayOpener =
        std::function<void(core::Date day, const std::string& gid, std::function<void()> onClose)>;

    tooth(ToothServices services, QWidget* parent);

    void activateView(const std::string& gid) override;
    void setDayOpener(DayOpener opener) { opener_ = std::move(opener); }

    // Switches between the child's teeth and the statistics.
    void stateChange();
    // The ruler has stopped: the age caption, then the teeth.
    void changeMonth();
    // The jaw for the ruler's age in the mode in force.
    void updateTeeth();
    // Today's day in the editor; the teeth are read again once it closes.
    void edit();

    const Teeth& teeth() const { return teeth_; }
    vesslider* ruler() const { return ruler_; }
    ToothJaw* jaw() const { return jaw_; }
    // Ends the teeth's fades at once, for a picture of where they go.
    void finishAnimations();

private:
    void applyLook();
    void showState();

    ToothServices services_;
    Teeth teeth_;
    DayOpener opener_;

    QToolButton* back_;
    QLabel* caption_;
    QToolButton* state_;
    QToolButton* edit_;
    ToothJaw* jaw_;
    QLabel* empty_;
    QLabel* month_;
    vesslider* ruler_;
};

}  // namespace tilika::development
