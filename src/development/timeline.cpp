#include "development/timeline.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "core/app_state.h"
#include "core/context.h"
#include "core/database.h"
#include "core/dates.h"
#include "core/text.h"
#include "development/passport.h"
#include "diary/profiles.h"
#include "diary/reference_lists.h"
#include "frame/list_choices.h"
#include "frame/rich_text_source.h"
#include "frame/translation.h"
#include "platform/log.h"

namespace tilika::development {

namespace {

// The milestones the achievements list knows, each with its own mark; any
// other achievement is a short bar with the common picture.
struct Milestone {
    std::string_view caption;
    std::string_view icon;
};
constexpr std::array<Milestone, 7> kMilestones{{
    {"Встал", "4b.png"},
    {"Начал ползать", "5b.png"},
    {"Начал ходить держась", "6b.png"},
    {"Перевернулся с животика на спинку", "2b.png"},
    {"Перевернулся со спинки на животик", "2b.png"},
    {"Сказал первое слово", "8b.png"},
    {"Сел", "1b.png"},
}};
constexpr std::string_view kAchievementIcon = "c-ne-achiv128.png";

// The stages every child goes through, shown under the child's own marks.
struct Stage {
    std::string_view caption;
    int start;
    int length;
};
constexpr std::array<Stage, 3> kStages{{
    {"Учится садиться", 4, 6},
    {"Учится ползать", 6, 6},
    {"Учится ходить", 6, 13},
}};
constexpr std::string_view kStageIcon = "c-icon-child.png";

constexpr std::string_view kDoctorFile = "doctor-u";
constexpr std::string_view kGuideFile = "doctorhelp-u";
constexpr std::string_view kGuideCaption = "Анализы";

// A whole number, as text or as a JSON number; nothing else is one.
std::optional<int> wholeNumber(const nlohmann::json& value) {
    if (value.is_number_integer()) {
        const auto number = value.get<long long>();
        if (number >= -1'000'000 && number <= 1'000'000) {
            return static_cast<int>(number);
        }
        return std::nullopt;
    }
    if (!value.is_string()) {
        return std::nullopt;
    }
    const std::string_view text = core::trimmed(value.get_ref<const std::string&>());
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || text.empty()) {
        return std::nullopt;
    }
    return number;
}

std::optional<std::string> textOf(const nlohmann::json& item, const char* key) {
    const auto found = item.find(key);
    if (found == item.end()) {
        return std::nullopt;
    }
    if (found->is_string()) {
        return found->get<std::string>();
    }
    if (found->is_number()) {
        return found->dump();
    }
    return std::nullopt;
}

// Puts each "%@" of the pattern in turn by the next of the texts.
std::string fillPattern(std::string pattern, std::initializer_list<std::string_view> texts) {
    std::size_t from = 0;
    for (const std::string_view text : texts) {
        const auto at = pattern.find("%@", from);
        if (at == std::string::npos) {
            break;
        }
        pattern.replace(at, 2, text);
        from = at + text.size();
    }
    return pattern;
}

}  // namespace

std::string planeColumnLabel(int column) {
    const int month = column % 12;
    return std::to_string(month == 0 ? 12 : month);
}

Timeline::Timeline(core::Context& context, std::filesystem::path contentFolder,
                   const PlaneAppend& append)
    : context_(context), contentFolder_(std::move(contentFolder)), append_(append) {}

std::string Timeline::translated(std::string_view text) const {
    return frame::translate(context_.state, text);
}

void Timeline::addComment(std::string icon, std::string comment, int start, int length,
                          std::string lcomment, std::string link, std::string sublink) {
    mainData_.push_back(PlaneEvent{planetp::bar, std::move(icon), std::move(comment),
                                   std::move(lcomment), start, length, std::move(link),
                                   std::move(sublink)});
}

void Timeline::addComment(std::string icon, std::string comment, int pos, std::string lcomment) {
    mainData_.push_back(PlaneEvent{
        planetp::mark, std::move(icon), std::move(comment), std::move(lcomment), pos, 1, {}, {}});
}

void Timeline::addChildAchiv(core::Date sdat, std::string_view value,
                             const std::vector<frame::ListRow>& listData, core::Date birthdate) {
    const core::Dates& dates = context_.dates;
    // A day before birth is taken as the birth month.
    const int month = std::max(1, dates.getMonths(dates.noTime(birthdate), dates.noTime(sdat)) + 1);
    for (const std::string& guid : core::split(value, "<tr>")) {
        const frame::ListRow* row = frame::listByIndex(guid, listData);
        if (row == nullptr) {
            continue;
        }
        std::string cap = frame::captionText(row->cap);
        const auto milestone = std::find_if(kMilestones.begin(), kMilestones.end(),
                                            [&](const Milestone& m) { return m.caption == cap; });
        if (milestone != kMilestones.end()) {
            addComment(std::string(milestone->icon), std::move(cap), month, {});
        } else {
            addComment(std::string(kAchievementIcon), std::move(cap), month, 1, {}, {}, {});
        }
    }
}

bool Timeline::loadFromDataFile(std::string_view name, std::optional<std::string_view> append) {
    const frame::ContentFile file = frame::loadContentFile(contentFolder_, name);
    nlohmann::json groups = file.json ? nlohmann::json::parse(file.text, nullptr, false)
                                      : nlohmann::json(nlohmann::json::value_t::discarded);
    if (!groups.is_array()) {
        platform::log("The timeline has no plan: " + std::string(name) +
                      ".jsn is missing or does not parse");
        return false;
    }
    // The append is read as the file is and follows it, whatever its groups.
    std::vector<nlohmann::json> sources{std::move(groups)};
    if (append) {
        nlohmann::json extra = nlohmann::json::parse(*append, nullptr, false);
        if (extra.is_array()) {
            sources.push_back(std::move(extra));
        }
    }
    for (const nlohmann::json& source : sources) {
        for (const nlohmann::json& group : source) {
            if (!group.is_object()) {
                continue;
            }
            const auto content = group.find("Content");
            if (content == group.end() || !content->is_array()) {
                continue;
            }
            for (const nlohmann::json& item : *content) {
                if (!item.is_object()) {
                    continue;
                }
                const auto icon = textOf(item, "planeicon");
                const auto comment = textOf(item, "planecomment");
                const auto start = item.find("planestart");
                const auto length = item.find("planelength");
                if (!icon || !comment || start == item.end() || length == item.end()) {
                    continue;
                }
                const auto first = wholeNumber(*start);
                const auto months = wholeNumber(*length);
                if (!first || !months || *first < 1 || *first > kPlaneColumns || *months < 1) {
                    continue;
                }
                addComment(
                    *icon, *comment, *first, *months, textOf(item, "planelcomment").value_or(""),
                    textOf(item, "planelink").value_or(""), textOf(item, "sublink").value_or(""));
            }
        }
    }
    return true;
}

void Timeline::buildPlane(std::string_view gid) {
    mainData_.clear();
    gseldic_.reset();
    sdat1_.reset();
    const diary::SetupRecord setup = diary::Profiles(context_).loadSetupData(gid);
    if (setup.sbirthdate) {
        sdat1_ = context_.dates.dateFromString(*setup.sbirthdate);
    }
    currentMonth_ = 0;
    if (sdat1_) {
        const int month = Passport(context_).getCurMonth(*sdat1_);
        currentMonth_ = month >= 1 && month <= kPlaneColumns ? month : 0;
    }

    if (regim_ == planeregim::doctor) {
        const std::optional<std::string> extra = append_.getAppend("doctor");
        loadFromDataFile(kDoctorFile, extra ? std::optional<std::string_view>(*extra)
                                            : std::optional<std::string_view>());
    } else {
        for (const Stage& stage : kStages) {
            addComment(std::string(kStageIcon), translated(stage.caption), stage.start,
                       stage.length, {}, {}, {});
        }
        SQLite::Database* db = context_.database.connectToBase();
        if (db != nullptr && sdat1_) {
            std::vector<frame::ListRow> lists;
            diary::ReferenceLists(context_).loadConstList(lists, diary::cotype::all, "");
            core::runGuarded("buildPlane", [&] {
                SQLite::Statement query(*db,
                                        "select sdat, value from childdata where childguid=? and "
                                        "type='achive' order by date(sdat)");
                query.bind(1, std::string(gid));
                while (query.executeStep()) {
                    const auto day =
                        context_.dates.dateFromString(core::stringFromBase(query, 0).value_or(""));
                    if (day) {
                        addChildAchiv(*day, core::stringFromBase(query, 1).value_or(""), lists,
                                      *sdat1_);
                    }
                }
            });
        }
    }
    layoutPlane();
}

bool Timeline::changeRegim(std::string_view caption) {
    int regim = 0;
    if (caption == translated(kPlaneChildCaption)) {
        regim = planeregim::child;
    } else if (caption == translated(kPlaneDoctorCaption)) {
        regim = planeregim::doctor;
    }
    if (regim == 0 || regim == regim_) {
        return false;
    }
    regim_ = regim;
    return true;
}

std::string Timeline::caption() const {
    return translated(regim_ == planeregim::doctor ? kPlaneDoctorCaption : kPlaneChildCaption);
}

void Timeline::layoutPlane() {
    const auto columns = static_cast<std::size_t>(kPlaneColumns);
    std::vector<std::array<bool, kPlaneLanes>> taken(columns + 1);
    lanes_.assign(mainData_.size(), -1);
    lanesUsed_ = 0;
    for (std::size_t i = 0; i < mainData_.size(); ++i) {
        const PlaneEvent& event = mainData_[i];
        if (event.start > kPlaneColumns) {
            continue;
        }
        const int span = event.tp == planetp::mark ? 1 : std::max(1, event.length);
        const auto first = static_cast<std::size_t>(std::max(1, event.start));
        const auto last = std::min(
            columns, static_cast<std::size_t>(event.start) + static_cast<std::size_t>(span) - 1);
        int lane = 0;
        for (int l = 0; l < kPlaneLanes; ++l) {
            bool free = true;
            for (std::size_t c = first; c <= last && free; ++c) {
                free = !taken[c][static_cast<std::size_t>(l)];
            }
            if (free) {
                lane = l;
                for (std::size_t c = first; c <= last; ++c) {
                    taken[c][static_cast<std::size_t>(l)] = true;
                }
                break;
            }
        }
        lanes_[i] = lane;
        lanesUsed_ = std::max(lanesUsed_, lane + 1);
    }
}

std::string Timeline::scrollCaption(int column) const {
    const core::Dates& dates = context_.dates;
    std::string caption =
        core::replaceAll(translated("%d-й месяц (%@-%@)"), "%d", std::to_string(column));
    if (!sdat1_) {
        return fillPattern(std::move(caption), {"", ""});
    }
    const std::string from =
        dates.dateToString(dates.addMonths(*sdat1_, column - 1), core::formats::screenDay);
    const std::string to =
        dates.dateToString(dates.addMonths(*sdat1_, column), core::formats::screenDay);
    return fillPattern(std::move(caption), {from, to});
}

platform::Size Timeline::stripSize() const {
    return {kPlaneColumns * geometry_.wsize,
            geometry_.lanesTop() + std::max(lanesUsed_, 1) * geometry_.laneHeight + geometry_.gap};
}

double Timeline::columnX(int column) const {
    return (column - 1) * geometry_.wsize;
}

int Timeline::columnAt(double x) const {
    return std::clamp(static_cast<int>(x / geometry_.wsize) + 1, 1, kPlaneColumns);
}

platform::Rect Timeline::eventRect(std::size_t index) const {
    if (index >= mainData_.size() || lanes_.size() != mainData_.size() || lanes_[index] < 0) {
        return {};
    }
    const PlaneEvent& event = mainData_[index];
    const int span = event.tp == planetp::mark
                         ? 1
                         : std::min(std::max(1, event.length), kPlaneColumns - event.start + 1);
    const double y = geometry_.lanesTop() + lanes_[index] * geometry_.laneHeight;
    return {columnX(std::max(1, event.start)) + 2, y + 2, span * geometry_.wsize - 4,
            geometry_.laneHeight - 4};
}

std::optional<std::size_t> Timeline::eventAt(platform::Point point) const {
    for (std::size_t i = mainData_.size(); i-- > 0;) {
        if (eventRect(i).contains(point)) {
            return i;
        }
    }
    return std::nullopt;
}

std::optional<PlaneMessage> Timeline::clickTag(std::size_t index) {
    if (index >= mainData_.size()) {
        return std::nullopt;
    }
    gseldic_ = index;
    const PlaneEvent& event = mainData_[index];
    const bool more = !event.link.empty() || !event.sublink.empty();
    if (event.lcomment.empty() && !more) {
        return std::nullopt;
    }
    return PlaneMessage{event.comment, event.lcomment, more};
}

const PlaneEvent* Timeline::gseldic() const {
    return gseldic_ && *gseldic_ < mainData_.size() ? &mainData_[*gseldic_] : nullptr;
}

PlaneLink Timeline::openLink() const {
    const PlaneEvent* event = gseldic();
    if (event == nullptr) {
        return {};
    }
    if (!event->sublink.empty()) {
        PlaneLink link{
            PlaneLink::Kind::guide, std::string(kGuideFile), translated(kGuideCaption), 0, {}};
        link.group = core::intValue(event->sublink);
        return link;
    }
    if (!event->link.empty()) {
        return {PlaneLink::Kind::web, {}, event->comment, 0, event->link};
    }
    return {};
}

}  // namespace tilika::development
