#include "frame/text_page.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <set>

#include "core/app_state.h"
#include "core/dates.h"
#include "core/ids.h"
#include "core/text.h"
#include "frame/pictures.h"
#include "frame/translation.h"

namespace tilika::frame {

namespace {

using platform::Color;
using platform::Font;
using platform::FontWeight;
using platform::Rect;

constexpr Color kBlack{0, 0, 0};
// Headings of the child edition are a warm brown.
constexpr Color kChildTitle{0.4, 0.2, 0};
constexpr Color kChildHighlight{1, 0.5, 0, 0.2};

constexpr double kMargin = 15;
constexpr double kCheckSize = 30;
constexpr double kPictureSize = 35;
constexpr double kArrowSize = 20;
constexpr double kSpacing = 5;
constexpr double kPictureWidth = 300;
constexpr double kButtonHeight = 40;
constexpr double kPartButtonHeight = 30;
constexpr double kPartPictureSize = 26;
constexpr double kBottomMargin = 20;
// A window of lazy loading holds six groups and moves by five, so one group
// is seen on both sides of a step.
constexpr long long kWindowLast = 5;
constexpr long long kWindowStep = 5;
// Far beyond any page, and far from overflowing when the window moves on.
constexpr long long kLastGroup = std::numeric_limits<long long>::max() / 4;

struct ItemStyle {
    double fontSize;
    double above;
    bool title;
    bool bold;
};

std::optional<ItemStyle> styleOf(int tp) {
    switch (tp) {
        case richtp::heading:
            return ItemStyle{17, 7, true, true};
        case richtp::subheading:
        case richtp::button:  // in the markup a button reads as a sub-heading
            return ItemStyle{15, 7, tp == richtp::subheading, true};
        case richtp::body:
            return ItemStyle{12, 1, false, false};
        case richtp::large:
            return ItemStyle{17, 7, false, false};
        case richtp::linkRow:
            return ItemStyle{14, 7, false, false};
        default:
            return std::nullopt;
    }
}

// Short check ids are numbers of the shipped content; longer ones are guids.
std::string checkGuid(std::string_view value) {
    return value.size() <= 9 ? core::newID2(core::idkind::listRow, value) : std::string(value);
}

PageElement pictureElement(const Rect& frame, std::string picture,
                           PageAction action = PageAction::None, long long tag = 0) {
    PageElement element;
    element.kind = PageElement::Kind::Picture;
    element.frame = frame;
    element.text = std::move(picture);
    element.action = action;
    element.tag = tag;
    return element;
}

PageElement areaElement(const Rect& frame, PageAction action, long long tag) {
    PageElement element;
    element.kind = PageElement::Kind::Area;
    element.frame = frame;
    element.action = action;
    element.tag = tag;
    return element;
}

PageElement textElement(const Rect& frame, std::string text, const Font& font, const Color& color,
                        platform::TextAlign align = platform::TextAlign::Left) {
    PageElement element;
    element.frame = frame;
    element.text = std::move(text);
    element.font = font;
    element.color = color;
    element.align = align;
    return element;
}

bool isDigits(std::string_view text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

TextPage::TextPage(TextPageEnvironment environment, const platform::Canvas& metrics)
    : env_(std::move(environment)), metrics_(&metrics) {}

double TextPage::scale() const {
    return env_.state.scaleX > 0 ? env_.state.scaleX : 1.0;
}

double TextPage::gap() const {
    return (kSpacing + gls_) * scale();
}

std::string TextPage::themed(std::string_view picture) const {
    return env_.pictures.themed(picture, env_.state.lightTheme);
}

platform::Color TextPage::highlightColor() const {
    return ghcolor_.value_or(kChildHighlight);
}

void TextPage::specialColor(Color text, Color title, Color hilite) {
    scolor_ = true;
    gcolor_ = text;
    gtcolor_ = title;
    ghcolor_ = hilite;
}

void TextPage::setWidth(double width) {
    if (width <= 0 || width == width_) {
        return;
    }
    width_ = width;
    if (!source_) {
        return;
    }
    std::vector<std::string> checked;
    for (const auto& entry : checkAr_) {
        if (entry.checked) {
            checked.push_back(entry.guid);
        }
    }
    const auto alpha = lastAlpha_;
    const auto highlight = lastHighlight_;
    build(*source_, gwithscroll_);
    setCheckData(checked);
    if (alpha) {
        alphaGroup(alpha->first, alpha->second);
        for (auto& element : elements_) {
            element.fromAlpha = element.alpha;
        }
    }
    if (highlight) {
        hlGroup(highlight->first, highlight->second, true);
    }
}

// ---- Building ----

void TextPage::prepareTextFromFile(std::string_view name, bool withscroll,
                                   std::optional<std::string> append) {
    gfl_ = name;
    ContentFile file = loadContentFile(env_.contentFolder, name);
    // Only the JSON form knows how to merge more groups in.
    build(Source{file.json, std::move(file.text), file.json ? std::move(append) : std::nullopt},
          withscroll);
}

void TextPage::prepareTextFromString(std::string_view markup, bool withscroll) {
    gfl_.clear();
    build(Source{false, std::string(markup), std::nullopt}, withscroll);
}

void TextPage::prepareTextFromJSONString(std::string_view json, bool withscroll,
                                         std::optional<std::string> append) {
    gfl_.clear();
    build(Source{true, std::string(json), std::move(append)}, withscroll);
}

void TextPage::reload() {
    if (!gfl_.empty()) {
        const auto append = source_ ? source_->append : std::nullopt;
        prepareTextFromFile(std::string(gfl_), gwithscroll_, append);
    } else if (source_) {
        build(Source(*source_), gwithscroll_);
    }
}

void TextPage::build(const Source& source, bool withscroll) {
    Source kept = source;
    gwithscroll_ = withscroll;
    ggroupmax_ = 0;
    elements_.clear();
    groupData_.clear();
    hiddenData_.clear();
    htmlData_.clear();
    checkAr_.clear();
    checkElements_.clear();
    highlight_.reset();
    lastAlpha_.reset();
    lastHighlight_.reset();
    backButtonDrawn_ = false;
    nextButtonDrawn_ = false;

    if (kept.json) {
        buildJson(kept.text, kept.append);
    } else {
        buildMarkup(kept.text);
    }
    source_ = std::move(kept);
}

void TextPage::keepHiddenText(const RichItem& item) {
    // Kept for every item, drawn or not, so a box ticked on one window of
    // the page still finds its text.
    if (!item.hiddentext.empty()) {
        hiddenData_.push_back({item.hiddentext, item.checkid});
    }
}

bool TextPage::outsideWindow(long long group, double& top) {
    if (partialstart_ < 0 || (group >= partialstart_ && group <= partialstart_ + kWindowLast)) {
        return false;
    }
    if (group < partialstart_ && !backButtonDrawn_) {
        backButtonDrawn_ = true;
        top = partBtn(1, top);
    } else if (group > partialstart_ + kWindowLast && !nextButtonDrawn_) {
        nextButtonDrawn_ = true;
        top = partBtn(2, top);
    }
    return true;
}

void TextPage::buildMarkup(std::string_view markup) {
    double top = gtop_ * scale();
    long long open = 0;
    double groupTop = top;
    for (RichItem& item : parseMarkup(markup)) {
        item.text = translate(env_.state, item.text);
        ggroupmax_ = std::max(ggroupmax_, item.groupid);
        keepHiddenText(item);

        const long long current = item.tp == richtp::groupStart ? item.groupid : open;
        // The start of the group after the window still closes the last
        // group inside it.
        if (open != partialstart_ + kWindowLast && outsideWindow(current, top)) {
            continue;
        }
        if (item.tp == richtp::groupStart) {
            if (open >= 1) {
                addGroup(open, groupTop, top);
            }
            open = item.groupid;
            groupTop = top;
            continue;
        }
        if (ggroupid_ < 0 || (item.tp >= richtp::body && ggroupid_ == open)) {
            top = item.tp == richtp::picture ? addPic(item, top) : addText(item, top);
        }
    }
    addGroup(open, groupTop, top);
    contentHeight_ = top + kBottomMargin * scale();
}

void TextPage::buildJson(std::string_view json, const std::optional<std::string>& append) {
    double top = gtop_ * scale();
    const auto groups =
        parseJson(json, append ? std::optional<std::string_view>(*append) : std::nullopt);
    for (const auto& group : groups) {
        ggroupmax_ = std::max(ggroupmax_, group.groupid);
        const double groupTop = top;
        for (const auto& item : group.items) {
            keepHiddenText(item);
            if (outsideWindow(group.groupid, top)) {
                continue;
            }
            if (ggroupid_ >= 0 && !(item.tp >= richtp::body && group.groupid == ggroupid_)) {
                continue;
            }
            if (item.tp == richtp::button) {
                top = addButton(item, top);
            } else if (item.tp == richtp::picture) {
                // A picture may carry a caption below it.
                top = addText(item, addPic(item, top));
            } else {
                top = addText(item, top);
            }
        }
        addGroup(group.groupid, groupTop, top);
    }
    contentHeight_ = top + kBottomMargin * scale();
}

// ---- Items ----

std::string TextPage::expandFormat(const RichItem& item) const {
    if (item.format.empty()) {
        return item.text;
    }
    std::string result = item.format;
    std::vector<std::string> tokens{""};
    for (char c : item.format) {
        if (c == ' ' || c == '-' || c == '(' || c == ')') {
            tokens.emplace_back();
        } else {
            tokens.back().push_back(c);
        }
    }
    // Each token is replaced once, everywhere it stands: a text that itself
    // holds "CAP" is not expanded again and again.
    std::set<std::string> done;
    for (const auto& token : tokens) {
        if (!done.insert(token).second) {
            continue;
        }
        if (token == "CAP") {
            result = core::replaceAll(result, "CAP", item.text);
            continue;
        }
        const bool weekStart = token.starts_with("WS");
        if (token.size() < 3 || !(weekStart || token.starts_with("WE")) || !gstartdate_ ||
            !isDigits(std::string_view(token).substr(2)) || token.size() > 8) {
            continue;
        }
        // Weeks are counted in whole seconds from the start date, as the
        // content that uses them was written for.
        const long long week = core::intValue(std::string_view(token).substr(2));
        const long long seconds = weekStart ? week * 604800 - 604800 : week * 604800 - 86400;
        const core::Date date = *gstartdate_ + std::chrono::seconds(seconds);
        result = core::replaceAll(result, token, env_.dates.dateToString(date, "dd.MM"));
    }
    return result;
}

double TextPage::addText(const RichItem& item, double top) {
    const double s = scale();
    const std::string text = expandFormat(item);

    // Under a picture of the JSON form the item's text is its caption; the
    // picture itself is already drawn, its check box and link are not.
    const bool caption = item.tp == richtp::picture;
    const auto style = caption ? std::optional(ItemStyle{12, 0, false, false}) : styleOf(item.tp);
    if (!style ||
        (caption && text.empty() && !item.checkid && item.linkid == 0 && item.weblink.empty())) {
        return caption ? top : top + gap();
    }
    top += style->above * s;
    const Font font{style->fontSize * s, style->bold ? FontWeight::Bold : FontWeight::Regular};
    const Color color =
        scolor_ ? (style->title ? gtcolor_ : gcolor_) : (style->title ? kChildTitle : kBlack);
    const auto align = caption ? platform::TextAlign::Center : platform::TextAlign::Left;

    double left = kMargin * s;
    double right = width_ - kMargin * s;
    double lineHeight = 0;
    std::vector<PageElement> pictures;
    auto square = [&](std::string picture, double x, double size, PageAction action,
                      long long tag) {
        pictures.push_back(
            pictureElement(Rect{x, top, size, size}, std::move(picture), action, tag));
        lineHeight = std::max(lineHeight, size);
    };

    std::optional<std::size_t> checkIndex;
    if (item.checkid) {
        std::string guid = checkGuid(*item.checkid);
        const bool checked = checkState(guid);
        checkAr_.push_back({std::move(guid), checked});
        checkIndex = checkAr_.size() - 1;
        square(checked ? "checkgreen.png" : "checkempty.png", left, kCheckSize * s,
               PageAction::Check, static_cast<long long>(checkAr_.size()) + 1000);
        left += (kCheckSize + kSpacing) * s;
    }
    if (!item.pic.empty() && !caption) {
        square(themed(item.pic), left, kPictureSize * s, PageAction::None, 0);
        left += (kPictureSize + kSpacing) * s;
    }
    if (!item.bigpic.empty() && !caption) {
        right -= kPictureSize * s;
        square(themed(item.bigpic), right, kPictureSize * s, PageAction::None, 0);
        right -= kSpacing * s;
    }
    const bool link = item.linkid != 0 || !item.weblink.empty();
    if (link) {
        right -= kArrowSize * s;
        square(themed(linkimage_), right, kArrowSize * s, PageAction::None, 0);
        right -= kSpacing * s;
    }

    const double textWidth = std::max(1.0, right - left);
    const platform::Size textSize = metrics_->measureText(text, font, textWidth);
    lineHeight = std::max(lineHeight, textSize.height);

    if (link) {
        // The whole line answers a tap, below the check box that may sit on it.
        const Rect line{0, top, width_, lineHeight};
        if (item.linkid != 0) {
            elements_.push_back(areaElement(line, PageAction::Link, item.linkid));
        } else {
            htmlData_.push_back(item.weblink);
            elements_.push_back(
                areaElement(line, PageAction::OpenLink, static_cast<long long>(htmlData_.size())));
        }
    }
    for (auto& picture : pictures) {
        picture.frame.y = top + (lineHeight - picture.frame.height) / 2;
        if (checkIndex && picture.action == PageAction::Check) {
            checkElements_.push_back(elements_.size());
        }
        elements_.push_back(std::move(picture));
    }
    if (!text.empty()) {
        elements_.push_back(textElement(
            Rect{left, top + (lineHeight - textSize.height) / 2, textWidth, textSize.height}, text,
            font, color, align));
    }
    return top + lineHeight + gap();
}

double TextPage::addPic(const RichItem& item, double top) {
    const double s = scale();
    const platform::Size natural = env_.pictures.naturalSize(item.pic);
    if (item.pic.empty() || natural.width <= 0 || natural.height <= 0) {
        return top + kSpacing * s;
    }
    const double width = std::min(kPictureWidth * s, width_);
    const double height = width * natural.height / natural.width;
    elements_.push_back(pictureElement(Rect{(width_ - width) / 2, top, width, height}, item.pic));
    return top + height + kSpacing * s;
}

double TextPage::addButton(const RichItem& item, double top) {
    const double s = scale();
    const Font font{14 * s};
    const double width = std::max(1.0, width_ - 2 * kMargin * s);
    const double textHeight = metrics_->measureText(item.text, font, width).height;
    // A long caption makes the button taller rather than spill out of it.
    const Rect frame{kMargin * s, top, width,
                     std::max(kButtonHeight * s, textHeight + 2 * kSpacing * s)};
    elements_.push_back(pictureElement(frame, "grayB.png", PageAction::Link, item.linkid));
    elements_.push_back(
        textElement(Rect{frame.x, top + (frame.height - textHeight) / 2, frame.width, textHeight},
                    item.text, font, kBlack, platform::TextAlign::Center));
    return frame.bottom() + kSpacing * s;
}

double TextPage::partBtn(int kind, double top) {
    const double s = scale();
    const bool back = kind == 1;
    const PageAction action = back ? PageAction::Previous : PageAction::Next;
    const long long tag = back ? -11 : -12;
    // The arrow is small; the whole width of its strip takes the tap.
    elements_.push_back(areaElement(Rect{0, top, width_, kPartButtonHeight * s}, action, tag));
    const double size = kPartPictureSize * s;
    elements_.push_back(pictureElement(
        Rect{(width_ - size) / 2, top + (kPartButtonHeight * s - size) / 2, size, size},
        themed(back ? "etc-up2.png" : "etc-down2.png"), action, tag));
    return top + kPartButtonHeight * s;
}

void TextPage::addGroup(long long group, double top, double bottom) {
    groupData_.push_back({group, top, bottom});
}

// ---- Groups ----

void TextPage::specialPartial(long long group) {
    group = std::min(group, kLastGroup);
    if (group < 0) {
        partialstart_ = -1;
    } else if (group < 3) {
        partialstart_ = 0;
    } else {
        // The wanted group stands fourth in its window.
        partialstart_ = group - 3;
    }
}

void TextPage::nextGroup() {
    ggroupid_ = ggroupid_ >= ggroupmax_ ? 1 : ggroupid_ + 1;
}

void TextPage::prevGroup() {
    ggroupid_ = ggroupid_ <= 1 ? ggroupmax_ : ggroupid_ - 1;
}

void TextPage::contClick() {
    partialstart_ = std::min(partialstart_ + kWindowStep, kLastGroup);
    reload();
}

long long TextPage::prevClick() {
    const long long old = partialstart_;
    partialstart_ = std::max(0LL, partialstart_ - kWindowStep);
    reload();
    return visibleGroup(old, false);
}

long long TextPage::hlGroup(long long group, bool justthis, bool hilite) {
    const PageGroup* found = nullptr;
    for (const auto& entry : groupData_) {
        if (justthis) {
            if (entry.groupid == group) {
                found = &entry;
                break;
            }
        } else {
            if (entry.groupid > group) {
                break;
            }
            found = &entry;
        }
    }
    if (found == nullptr) {
        return -1;
    }
    if (hilite) {
        highlight_ = Rect{0, found->top, width_, found->bottom - found->top};
        lastHighlight_ = {group, justthis};
    }
    return std::max(0LL, static_cast<long long>(found->top - 10));
}

long long TextPage::hiliteGroup(long long group, bool justthis) {
    return hlGroup(group, justthis, true);
}

long long TextPage::visibleGroup(long long group, bool justthis) {
    return hlGroup(group, justthis, false);
}

void TextPage::alphaGroup(long long group, bool justthis) {
    lastAlpha_ = {group, justthis};
    // Groups are laid one below the other, so each element finds the one it
    // lies in by its position.
    for (auto& element : elements_) {
        element.fromAlpha = element.alpha;
        const auto after =
            std::upper_bound(groupData_.begin(), groupData_.end(), element.frame.y,
                             [](double y, const PageGroup& entry) { return y < entry.top; });
        if (after == groupData_.begin()) {
            continue;
        }
        const PageGroup& entry = *std::prev(after);
        if (element.frame.y >= entry.bottom) {
            continue;
        }
        if ((justthis && entry.groupid == group) ||
            (!justthis && entry.groupid >= 1 && entry.groupid <= group)) {
            element.alpha = 1.0;
        } else if (justthis || entry.groupid > group) {
            element.alpha = 0.3;
        }
    }
}

// ---- Check boxes and hidden text ----

void TextPage::setChecked(std::size_t index, bool checked) {
    checkAr_[index].checked = checked;
    if (index < checkElements_.size()) {
        elements_[checkElements_[index]].text = checked ? "checkgreen.png" : "checkempty.png";
    }
}

bool TextPage::checkState(std::string_view guid) const {
    const std::string wanted = checkGuid(guid);
    return std::any_of(checkAr_.begin(), checkAr_.end(), [&](const CheckEntry& entry) {
        return entry.checked && checkGuid(entry.guid) == wanted;
    });
}

void TextPage::setCheckData(const std::vector<std::string>& values) {
    for (const auto& value : values) {
        const std::string guid = checkGuid(value);
        for (std::size_t i = 0; i < checkAr_.size(); ++i) {
            if (checkAr_[i].guid == guid) {
                setChecked(i, true);
                break;
            }
        }
    }
}

void TextPage::uncheckAll() {
    for (std::size_t i = 0; i < checkAr_.size(); ++i) {
        setChecked(i, false);
    }
}

std::optional<std::string> TextPage::getFirstCheckGuid() const {
    for (const auto& entry : checkAr_) {
        if (entry.checked) {
            return entry.guid;
        }
    }
    return std::nullopt;
}

std::optional<std::string> TextPage::tagguid(long long tag) const {
    const long long index = tag - 1001;
    if (index < 0 || index >= static_cast<long long>(checkAr_.size())) {
        return std::nullopt;
    }
    return checkAr_[static_cast<std::size_t>(index)].guid;
}

void TextPage::checkClick(long long tag) {
    const long long index = tag - 1001;
    if (index >= 0 && index < static_cast<long long>(checkAr_.size())) {
        const auto at = static_cast<std::size_t>(index);
        setChecked(at, !checkAr_[at].checked);
    }
}

std::string TextPage::getHiddenText(std::string_view guid) const {
    const std::string wanted = checkGuid(guid);
    for (const auto& entry : hiddenData_) {
        if (entry.checkid && checkGuid(*entry.checkid) == wanted) {
            return entry.hiddentext;
        }
    }
    return {};
}

// ---- Taps and drawing ----

PageHit TextPage::hitTest(platform::Point point) const {
    // Later elements lie on top: a check box over the line that holds it.
    for (auto it = elements_.rbegin(); it != elements_.rend(); ++it) {
        if (it->action == PageAction::None || !it->frame.contains(point)) {
            continue;
        }
        PageHit hit{it->action, it->tag, {}};
        if (it->action == PageAction::OpenLink && it->tag >= 1 &&
            it->tag <= static_cast<long long>(htmlData_.size())) {
            hit.url = htmlData_[static_cast<std::size_t>(it->tag - 1)];
        }
        return hit;
    }
    return {};
}

void TextPage::draw(platform::Canvas& canvas, const Rect& visible, double dimProgress,
                    double highlightOpacity) const {
    if (highlight_ && highlightOpacity > 0 && highlight_->intersects(visible)) {
        Color color = highlightColor();
        color.a *= highlightOpacity;
        canvas.fillRect(*highlight_, color);
    }
    for (const auto& element : elements_) {
        if (element.kind == PageElement::Kind::Area || !element.frame.intersects(visible)) {
            continue;
        }
        const double alpha = element.fromAlpha + (element.alpha - element.fromAlpha) * dimProgress;
        if (element.kind == PageElement::Kind::Picture) {
            canvas.drawImage(element.text, element.frame, alpha);
        } else {
            Color color = element.color;
            color.a *= alpha;
            canvas.drawText(element.text, element.frame, element.font, color, element.align);
        }
    }
}

}  // namespace tilika::frame
