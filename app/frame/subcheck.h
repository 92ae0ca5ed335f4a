#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "frame/overlay_view.h"
#include "frame/text_page.h"

namespace tilika::frame {

class textdata;

// A reading page laid over the whole window: a content file under its
// caption, opened at a group that it highlights. Its check boxes stay as
// they are unless an owner keeps the ticks: then a tap flips the box and
// tells the owner, with the page's base type, which says what else a tick
// may lead to.
class subcheck final : public OverlayView {
    Q_OBJECT

public:
    // Told of a flipped box: its guid, its new state and the text the page
    // keeps for it for the diary ("" when none).
    using CheckHandler = std::function<void(const std::string& guid, bool checked,
                                            const std::string& hiddenText, int basetp)>;

    subcheck(const TextPageEnvironment& environment, core::AppState& state,
             const platform::QtPictures& pictures, QWidget* host);

    void prepare(const QString& caption, const QString& file, std::optional<long long> group,
                 int basetp = 0);
    // The boxes ticked when the page opens, and who keeps a tick; before
    // prepare().
    void setCheckData(std::vector<std::string> marks, CheckHandler handler);
    textdata* text() const { return text_; }
    int basetp() const { return basetp_; }

private:
    void checkClick(long long tag);

    textdata* text_;
    int basetp_ = 0;
    std::vector<std::string> marks_;
    CheckHandler checkHandler_;
};

}  // namespace tilika::frame
