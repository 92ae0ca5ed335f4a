#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/date.h"
#include "frame/rich_text_source.h"
#include "platform/canvas.h"

namespace tilika::core {
struct AppState;
class Dates;
}  // namespace tilika::core

namespace tilika::frame {

class Pictures;

// What a tap on an item asks for.
enum class PageAction {
    None,
    Link,      // the owner's linkClick with the tag
    OpenLink,  // the owner's openLink with the address
    Check,     // the owner's checkClick with the tag
    Previous,  // the window of groups moves back
    Next,      // the window of groups moves on
};

// One thing laid out on the page, in page coordinates.
struct PageElement {
    enum class Kind {
        Text,
        Picture,
        Area,  // tappable, not drawn
    };
    Kind kind = Kind::Text;
    platform::Rect frame;
    std::string text;  // the text, or the name of the picture
    platform::Font font;
    platform::Color color;
    platform::TextAlign align = platform::TextAlign::Left;
    PageAction action = PageAction::None;
    long long tag = 0;
    // Dimming: the alpha it goes to and the alpha it comes from.
    double alpha = 1;
    double fromAlpha = 1;
};

struct PageGroup {
    long long groupid = 0;
    double top = 0;
    double bottom = 0;
};

struct HiddenEntry {
    std::string hiddentext;
    std::optional<std::string> checkid;
};

struct CheckEntry {
    std::string guid;
    bool checked = false;
};

struct PageHit {
    PageAction action = PageAction::None;
    long long tag = 0;
    std::string url;  // for OpenLink
};

// What a page needs from the rest of the program.
struct TextPageEnvironment {
    const core::AppState& state;  // language, theme and scale
    const Pictures& pictures;
    const core::Dates& dates;
    std::filesystem::path contentFolder;
};

// A page of reading matter: built from the markup or the JSON form, laid out
// from top to bottom at a width, divided into numbered groups that serve as
// chapters for scrolling, highlighting, dimming and loading in windows. It
// knows nothing of a screen: a view draws it on a canvas and passes taps
// to hitTest.
class TextPage {
public:
    TextPage(TextPageEnvironment environment, const platform::Canvas& metrics);

    // The canvas whose text metrics the layout uses.
    void setMetrics(const platform::Canvas& metrics) { metrics_ = &metrics; }
    // A new width lays the page out anew, keeping check marks, dimming and
    // the highlight.
    void setWidth(double width);
    double width() const { return width_; }

    void prepareTextFromFile(std::string_view name, bool withscroll,
                             std::optional<std::string> append = std::nullopt);
    void prepareTextFromString(std::string_view markup, bool withscroll);
    void prepareTextFromJSONString(std::string_view json, bool withscroll,
                                   std::optional<std::string> append = std::nullopt);

    // Settings that survive a rebuild; they take effect on the next one.
    void specialTop(int top) { gtop_ = top; }
    void specialLineDistance(int distance) { gls_ = distance; }
    void setInsets(int insets) { ginsets_ = insets; }
    void setStartDate(core::Date date) { gstartdate_ = date; }
    void specialColor(platform::Color text, platform::Color title, platform::Color hilite);
    void setLinkImage(std::string picture) { linkimage_ = std::move(picture); }
    void specialPartial(long long group);
    void justGroup(long long group) { ggroupid_ = group; }
    void nextGroup();
    void prevGroup();

    // The window of groups moves on or back by five and the page is built
    // anew; going back answers where to scroll to keep the reader's place.
    void contClick();
    long long prevClick();

    // The position to scroll to so the group shows, or -1 when there is no
    // such group. With justthis the group must have exactly that number;
    // without, the last one not above it is taken. hiliteGroup also lays the
    // highlight over it.
    long long hiliteGroup(long long group, bool justthis);
    long long visibleGroup(long long group, bool justthis);
    // Groups up to the number (or, with justthis, just that one) at full
    // strength and the others faded.
    void alphaGroup(long long group, bool justthis);

    bool checkState(std::string_view guid) const;
    // Ticks the boxes of these guids or short numbers.
    void setCheckData(const std::vector<std::string>& values);
    void uncheckAll();
    std::optional<std::string> getFirstCheckGuid() const;
    std::optional<std::string> tagguid(long long tag) const;
    // Flips the box with this tag.
    void checkClick(long long tag);
    // The hidden text kept under the check id of this guid, or "".
    std::string getHiddenText(std::string_view guid) const;

    // What a tap at this point of the page means.
    PageHit hitTest(platform::Point point) const;

    // Draws what falls into the visible rectangle. The progress of dimming
    // goes from 0 to 1, the highlight fades in by its opacity.
    void draw(platform::Canvas& canvas, const platform::Rect& visible, double dimProgress = 1,
              double highlightOpacity = 1) const;

    const std::vector<PageElement>& elements() const { return elements_; }
    const std::vector<PageGroup>& groupData() const { return groupData_; }
    const std::vector<HiddenEntry>& hiddenData() const { return hiddenData_; }
    const std::vector<std::string>& htmlData() const { return htmlData_; }
    const std::vector<CheckEntry>& checkAr() const { return checkAr_; }
    std::optional<platform::Rect> highlight() const { return highlight_; }
    platform::Color highlightColor() const;

    long long ggroupid() const { return ggroupid_; }
    long long ggroupmax() const { return ggroupmax_; }
    long long partialstart() const { return partialstart_; }
    const std::string& gfl() const { return gfl_; }
    bool gwithscroll() const { return gwithscroll_; }
    int insets() const { return ginsets_; }
    // The height of everything laid out, with the margin below.
    double contentHeight() const { return contentHeight_; }

private:
    struct Source {
        bool json = false;
        std::string text;
        std::optional<std::string> append;
    };

    void build(const Source& source, bool withscroll);
    void buildMarkup(std::string_view markup);
    void buildJson(std::string_view json, const std::optional<std::string>& append);
    void reload();
    void keepHiddenText(const RichItem& item);
    // The window of lazy loading: true when the item of this group is left
    // out, after drawing the button that leads to it.
    bool outsideWindow(long long group, double& top);

    double addText(const RichItem& item, double top);
    double addPic(const RichItem& item, double top);
    double addButton(const RichItem& item, double top);
    double partBtn(int kind, double top);
    void addGroup(long long group, double top, double bottom);

    long long hlGroup(long long group, bool justthis, bool hilite);
    void setChecked(std::size_t index, bool checked);
    std::string expandFormat(const RichItem& item) const;
    std::string themed(std::string_view picture) const;
    double scale() const;
    double gap() const;

    TextPageEnvironment env_;
    const platform::Canvas* metrics_;
    double width_ = 320;

    std::vector<PageElement> elements_;
    std::vector<PageGroup> groupData_;
    std::vector<HiddenEntry> hiddenData_;
    std::vector<std::string> htmlData_;
    std::vector<CheckEntry> checkAr_;
    // The element of each check box, by its place in checkAr_.
    std::vector<std::size_t> checkElements_;
    std::optional<platform::Rect> highlight_;
    double contentHeight_ = 0;

    long long ggroupid_ = -1;
    long long ggroupmax_ = 0;
    long long partialstart_ = -1;
    bool backButtonDrawn_ = false;
    bool nextButtonDrawn_ = false;
    std::string gfl_;
    bool gwithscroll_ = true;
    int gtop_ = 12;
    int gls_ = 0;
    int ginsets_ = 0;
    std::optional<core::Date> gstartdate_;
    std::string linkimage_ = "text-next.png";
    bool scolor_ = false;
    platform::Color gcolor_;
    platform::Color gtcolor_;
    std::optional<platform::Color> ghcolor_;

    // What the page was last built from, and the looks laid over it, so a
    // new width or a new window can build it again.
    std::optional<Source> source_;
    std::optional<std::pair<long long, bool>> lastAlpha_;
    std::optional<std::pair<long long, bool>> lastHighlight_;
};

}  // namespace tilika::frame
