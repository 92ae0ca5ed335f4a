#pragma once

#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>
#include <string>

#include "core/date.h"
#include "development/passport_card.h"
#include "frame/tab.h"

class QLabel;
class QToolButton;
class QVBoxLayout;

namespace tilika::core {
struct Context;
}
namespace tilika::diary {
class ReferenceLists;
}
namespace tilika::frame {
class Popups;
class ScrollView;
class dic;
}  // namespace tilika::frame
namespace tilika::platform {
class QtPictures;
}

namespace tilika::development {

// What the passport page needs of the program.
struct PassportServices {
    core::Context& context;
    const platform::QtPictures& pictures;
    frame::Popups& popups;
    // The lists the allergen form picks from and adds to.
    diary::ReferenceLists* lists = nullptr;
    // Tells that a section is still to come.
    std::function<void(const std::string& caption)> comingSoon;
};

// The drawn part of a card: the lines of the passport's card `tp`, at the
// width it is given. The two buttons of the main card are drawn too and
// answer a click.
class PassportCardBody final : public QWidget {
    Q_OBJECT

public:
    PassportCardBody(int tp, const platform::QtPictures& pictures, QWidget* parent);

    void setCard(std::unique_ptr<PassportCard> card);
    const PassportCard* card() const { return card_.get(); }
    int tp() const { return tp_; }

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;

signals:
    void documentsRequested();
    void vaccinationsRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    // Which of the drawn buttons lies under the point: 61 the documents,
    // 62 the vaccination card, 0 none.
    int buttonAt(QPointF point) const;

    int tp_;
    const platform::QtPictures& pictures_;
    std::unique_ptr<PassportCard> card_;
};

// The child's summary sheet: one column of four cards (the main data, the
// serious illnesses, the allergens and the clothing sizes), each with an
// edit button at its top right that opens what changes it.
class passport final : public frame::Tab {
    Q_OBJECT

public:
    // Opens the profile form of a child.
    using ProfileOpener = std::function<void(const std::string& gid)>;
    // Opens the day editor on a day of the child; `onClose` runs once it
    // has closed.
    using DayOpener =
        std::function<void(core::Date day, const std::string& gid, std::function<void()> onClose)>;

    // The edit buttons, by the card they sit on.
    static constexpr int kEditProfile = 11;
    static constexpr int kEditIllnesses = 12;
    static constexpr int kEditAllergens = 13;
    static constexpr int kEditSizes = 14;

    passport(PassportServices services, QWidget* parent);

    void activateView(const std::string& gid) override;
    void activate() override;
    void setProfileOpener(ProfileOpener opener) { profileOpener_ = std::move(opener); }
    void setDayOpener(DayOpener opener) { dayOpener_ = std::move(opener); }

    // Reads the child's data again and redraws the cards.
    void prepare();
    // What an edit button does, by its tag.
    void editClick(int tag);

    PassportCardBody* card(int tp) const;
    // The allergen form while it is up.
    frame::dic* allergenForm() const;

private:
    QWidget* cardFrame(int tp, const char* caption, int editTag);
    void openAllergens();
    void applyLook();

    PassportServices services_;
    ProfileOpener profileOpener_;
    DayOpener dayOpener_;
    std::string gid_;

    QLabel* caption_;
    QToolButton* back_;
    frame::ScrollView* scroll_;
    QWidget* column_;
    PassportCardBody* cards_[4] = {};
    QToolButton* editButtons_[4] = {};
    QPointer<frame::dic> allergenForm_;
};

}  // namespace tilika::development
