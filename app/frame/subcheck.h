#pragma once

#include <QWidget>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "frame/text_page.h"

class QLabel;
class QToolButton;

namespace tilika::core {
struct AppState;
}
namespace tilika::platform {
class QtPictures;
}

namespace tilika::frame {

class textdata;

// A reading page laid over the whole window: a content file under its
// caption, opened at a group that it highlights. Back, Escape or the
// mouse's back button close it. Its check boxes stay as they are unless an
// owner keeps the ticks: then a tap flips the box and tells the owner, with
// the page's base type, which says what else a tick may lead to.
class subcheck final : public QWidget {
    Q_OBJECT

public:
    // Told of a flipped box: its guid, its new state and the text the page
    // keeps for it for the diary ("" when none).
    using CheckHandler = std::function<void(const std::string& guid, bool checked,
                                            const std::string& hiddenText, int basetp)>;

    subcheck(const TextPageEnvironment& environment, core::AppState& state,
             const platform::QtPictures& pictures, QWidget* host);
    ~subcheck() override;

    void prepare(const QString& caption, const QString& file, std::optional<long long> group,
                 int basetp = 0);
    // The boxes ticked when the page opens, and who keeps a tick; before
    // prepare().
    void setCheckData(std::vector<std::string> marks, CheckHandler handler);
    textdata* text() const { return text_; }
    int basetp() const { return basetp_; }

signals:
    void closed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void closeView();
    void checkClick(long long tag);

    core::AppState& state_;
    const platform::QtPictures& pictures_;
    QLabel* caption_;
    QToolButton* back_;
    textdata* text_;
    bool open_ = false;
    int basetp_ = 0;
    std::vector<std::string> marks_;
    CheckHandler checkHandler_;
};

}  // namespace tilika::frame
