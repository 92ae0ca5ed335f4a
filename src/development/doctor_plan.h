#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/write_result.h"

namespace tilika::core {
struct Context;
}
namespace tilika::diary {
class DayCloud;
}

namespace tilika::development {

inline constexpr std::string_view kDoctorFile = "doctor-u";
inline constexpr std::string_view kDoctorHelpFile = "doctorhelp-u";
// The plan's ticks are kept under this kind of tick list.
inline constexpr int kDoctorSelType = 1;
// Pages with this base type offer a ticked line to the diary.
inline constexpr int kDiaryBaseType = 1;
inline constexpr int kNoteFormKind = 104;
inline constexpr std::string_view kNoteFormCaption = "Прививки и исследования";
inline constexpr std::string_view kNoteFormPrompt =
    "Это событие можно поместить в дневник. Для этого отредактируйте текст и нажмите вверху на "
    "правую кнопку ...";
inline constexpr std::string_view kBadNoteDate = "Неверная дата";
// The diary's kind of entry for vaccinations and tests.
inline constexpr std::string_view kVaccinationType = "priv";

// Where a changed tick goes to be mirrored in the cloud. Ticks stay on the
// device until the cloud keeps them.
class CheckCloud {
public:
    virtual ~CheckCloud() = default;
    virtual void keyValueToCloud(int seltypeid, std::string_view tagguid, bool check,
                                 std::string_view gid) = 0;
};

class NoCheckCloud final : public CheckCloud {
public:
    void keyValueToCloud(int /*seltypeid*/, std::string_view /*tagguid*/, bool /*check*/,
                         std::string_view /*gid*/) override {}
};

// What a tick asks the screen to do next: the diary form, filled in.
struct NoteOffer {
    std::string caption;
    std::string prompt;
    std::string text;
};

struct CheckOutcome {
    core::WriteResult result;
    std::optional<NoteOffer> offer;
};

// The ticks of the doctor's plan and of the texts opened from it, and the
// diary entries they make.
class DoctorPlan {
public:
    DoctorPlan(core::Context& context, CheckCloud& checkCloud, diary::DayCloud& dayCloud)
        : context_(context), checkCloud_(checkCloud), dayCloud_(dayCloud) {}

    // The guids of the lines ticked for the child.
    std::vector<std::string> loadMarks(std::string_view gid) const;

    // Keeps a tick (or its removal). A line of a page of the diary's base
    // type that was just ticked and has a text for the diary offers it.
    CheckOutcome checkClick(std::string_view tagguid, bool checked, std::string_view hiddenText,
                            int basetp, std::string_view gid);

    // Puts the text into the diary on the date ("dd.MM.yyyy"), after what
    // the day already has of it. Answers "" when it is written, else what
    // to tell the user: the form stays open and nothing is written.
    std::string insertIntoNote(std::string_view text, std::string_view date, std::string_view gid);

private:
    core::Context& context_;
    CheckCloud& checkCloud_;
    diary::DayCloud& dayCloud_;
};

}  // namespace tilika::development
