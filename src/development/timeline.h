#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/date.h"
#include "frame/form_row.h"
#include "platform/canvas.h"

namespace tilika::core {
struct Context;
}

namespace tilika::development {

// What an event of the timeline is: a bar over a span of months, or a mark
// on one month.
namespace planetp {
inline constexpr int bar = 1;
inline constexpr int mark = 2;
}  // namespace planetp

// What the timeline shows: the child's development, or the doctor's plan.
namespace planeregim {
inline constexpr int child = 1;
inline constexpr int doctor = 2;
}  // namespace planeregim

inline constexpr std::string_view kPlaneChildCaption = "Развитие ребенка";
inline constexpr std::string_view kPlaneDoctorCaption = "К доктору";
// The menu that switches the regime; the menu translates its captions.
inline constexpr std::string_view kPlaneRegimMenu =
    "Развитие ребенка<td>pm-plane.png<tr>К доктору<td>pm-doctor.png";

// Fourteen years, month by month.
inline constexpr int kPlaneColumns = 168;
inline constexpr int kPlaneLanes = 20;

struct PlaneEvent {
    int tp = planetp::bar;
    std::string icon;
    std::string comment;
    std::string lcomment;
    int start = 1;  // the month of life, from 1
    int length = 1;
    std::string link;
    std::string sublink;

    bool operator==(const PlaneEvent&) const = default;
};

// Extra items of the doctor's plan that come from the content server; none
// while there is no server to ask.
class PlaneAppend {
public:
    virtual ~PlaneAppend() = default;
    // The JSON text to add to the plan of this name, if there is one.
    virtual std::optional<std::string> getAppend(std::string_view name) const = 0;
};

class NoPlaneAppend final : public PlaneAppend {
public:
    std::optional<std::string> getAppend(std::string_view /*name*/) const override { return {}; }
};

// What a touch on an event shows: a message under the event's short text,
// with a button to read further when the event leads somewhere.
struct PlaneMessage {
    std::string title;
    std::string text;
    bool more = false;

    bool operator==(const PlaneMessage&) const = default;
};

// Where "Подробно" leads: a group of the tests guide, or a web page.
struct PlaneLink {
    enum class Kind { none, guide, web };
    Kind kind = Kind::none;
    std::string file;
    std::string caption;
    long long group = 0;
    std::string url;

    bool operator==(const PlaneLink&) const = default;
};

// The sizes the strip is drawn at, in the canvas's units.
struct PlaneGeometry {
    double wsize = 72;        // one month
    double bandHeight = 24;   // the year bands
    double labelHeight = 24;  // the month numbers
    double laneHeight = 58;
    double gap = 8;  // between the month numbers and the first lane

    double lanesTop() const { return bandHeight + labelHeight + gap; }
};

// The timeline of the first fourteen years: its events, the lanes they are
// laid in, and what a touch on one of them does.
class Timeline {
public:
    // Content files are read from `contentFolder`; the doctor's plan takes
    // what `append` adds to it.
    Timeline(core::Context& context, std::filesystem::path contentFolder,
             const PlaneAppend& append);

    // A bar over `length` months from `start`.
    void addComment(std::string icon, std::string comment, int start, int length,
                    std::string lcomment, std::string link, std::string sublink);
    // A mark on month `pos`.
    void addComment(std::string icon, std::string comment, int pos, std::string lcomment);
    // The achievements of one diary row: `value` names list rows by their
    // guids joined by "<tr>"; a row no longer in the lists is left out.
    void addChildAchiv(core::Date sdat, std::string_view value,
                       const std::vector<frame::ListRow>& listData, core::Date birthdate);
    // The events of a JSON content file (<name>.jsn), then those of the
    // `append` text, in that order. False when the file is missing or does
    // not parse; nothing is added from it then.
    bool loadFromDataFile(std::string_view name, std::optional<std::string_view> append);

    // Loads the child's events in the regime in force and lays them out.
    void buildPlane(std::string_view gid);
    // Sets the regime by its menu caption; false when it stays as it was.
    bool changeRegim(std::string_view caption);
    int regim() const { return regim_; }
    std::string caption() const;

    // Places every event in the first lane free over all its months, or in
    // lane 0 over the others when none is.
    void layoutPlane();

    const std::vector<PlaneEvent>& mainData() const { return mainData_; }
    // The lane of each event, -1 for one that starts past the last month.
    const std::vector<int>& lanes() const { return lanes_; }
    int lanesUsed() const { return lanesUsed_; }
    std::optional<core::Date> sdat1() const { return sdat1_; }
    // The running month of life, marked on the strip; 0 when it is not on it.
    int currentMonth() const { return currentMonth_; }
    int columns() const { return kPlaneColumns; }

    // The caption of the month at the left edge of the view.
    std::string scrollCaption(int column) const;

    // Geometry of the strip.
    const PlaneGeometry& geometry() const { return geometry_; }
    platform::Size stripSize() const;
    platform::Rect eventRect(std::size_t index) const;
    // The event under the point, the last drawn on top first.
    std::optional<std::size_t> eventAt(platform::Point point) const;
    // The month whose column holds x, from 1 to columns().
    int columnAt(double x) const;
    double columnX(int column) const;

    // A touch on an event: remembers it and says what to show, if anything.
    std::optional<PlaneMessage> clickTag(std::size_t index);
    // Where the remembered event leads.
    PlaneLink openLink() const;
    const PlaneEvent* gseldic() const;

private:
    std::string translated(std::string_view text) const;

    core::Context& context_;
    std::filesystem::path contentFolder_;
    const PlaneAppend& append_;
    PlaneGeometry geometry_;
    int regim_ = planeregim::child;
    std::optional<core::Date> sdat1_;
    int currentMonth_ = 0;
    std::vector<PlaneEvent> mainData_;
    std::vector<int> lanes_;
    int lanesUsed_ = 0;
    std::optional<std::size_t> gseldic_;
};

// The label of a month's column: its month within the year, 12 at a whole
// year.
std::string planeColumnLabel(int column);

}  // namespace tilika::development
