#pragma once

#include <string>
#include <string_view>

// Every key of the settings store. Other subsystems own most of them, but
// they all live here so that no two parts of the program ever pick the same
// name for different things.
namespace tilika::core::keys {

// Process state read at launch.
inline constexpr std::string_view icloud = "icloud";
inline constexpr std::string_view newscount = "newscount";
inline constexpr std::string_view accelerate = "accelerate";
inline constexpr std::string_view pillsAlarm = "pillsAlarm";
// The program has offered to set up the timer that shows reminders while it
// is closed.
inline constexpr std::string_view reminderTimerOffered = "reminderTimerOffered";
inline constexpr std::string_view chatIndi = "chatIndi";
inline constexpr std::string_view showRec = "showRec";
inline constexpr std::string_view backgroundId = "backgroundId";
inline constexpr std::string_view appguid = "appguid";
inline constexpr std::string_view deactive = "deactive";
inline constexpr std::string_view webKitDiskImageCacheEnabled = "WebKitDiskImageCacheEnabled";
inline constexpr std::string_view firstStart = "FirstStart";
inline constexpr std::string_view becomeActive = "becomeActive";
inline constexpr std::string_view rating = "Rating";
inline constexpr std::string_view appStore = "appStore";
inline constexpr std::string_view emptyNote = "emptyNote";
inline constexpr std::string_view pass = "pass";
inline constexpr std::string_view password = "password";
// The salted hash of the lock's code; the digits themselves are never kept.
inline constexpr std::string_view passwordHash = "passwordHash";

// The growth charts show the WHO centile lines.
inline constexpr std::string_view growthCentiles = "growthCentiles";

// Cloud.
inline constexpr std::string_view cloudall = "cloudall";
inline constexpr std::string_view dropboxCursor = "dropboxCursor";
inline constexpr std::string_view optimizecloud = "optimizecloud";
inline constexpr std::string_view oldcloud = "oldcloud";

// Content server.
inline constexpr std::string_view oproscount = "oproscount";
inline constexpr std::string_view progcount = "progcount";
inline constexpr std::string_view sellcount = "sellcount";
inline constexpr std::string_view dchatcount = "dchatcount";
inline constexpr std::string_view newsdate = "newsdate";
inline constexpr std::string_view oprosdate = "oprosdate";
inline constexpr std::string_view selldate = "selldate";
inline constexpr std::string_view chatdate = "chatdate";
inline constexpr std::string_view chatmessages = "chatmessages";
inline constexpr std::string_view chatid = "chatid";
inline constexpr std::string_view chatname = "chatname";
inline constexpr std::string_view chatimage = "chatimage";
inline constexpr std::string_view doclogin = "doclogin";
inline constexpr std::string_view docpass = "docpass";
inline constexpr std::string_view doctorAuthCode = "doctorAuthCode";
inline constexpr std::string_view location = "location";

// One-shot help overlays and upgrade marks.
inline constexpr std::string_view planeHelp = "planeHelp";
inline constexpr std::string_view passportHelp = "passportHelp";
inline constexpr std::string_view mediaHelp = "mediaHelp";
inline constexpr std::string_view mapHelp = "mapHelp";
inline constexpr std::string_view graphHelp = "graphHelp";
inline constexpr std::string_view doctorHelp = "doctorHelp";
inline constexpr std::string_view toothHelp = "toothHelp";
inline constexpr std::string_view noteHelp = "noteHelp";
inline constexpr std::string_view kormHelp = "kormHelp";
inline constexpr std::string_view oldVersionPill3 = "OldVersionPill3";
// Photos and scans carry their profile's guid, not its number.
inline constexpr std::string_view oldfiles = "oldfiles";

// Where the very first versions kept the child's birthday and sex.
inline constexpr std::string_view legacyBirthday = "Date";
inline constexpr std::string_view legacySex = "Sex";
// Their measures: "regim%dcount" entries of "regim%dvalue%d" on
// "regim%ddate%d", regim 1 the height and 2 the weight.
inline std::string legacyRegimCount(int regim) {
    return "regim" + std::to_string(regim) + "count";
}
inline std::string legacyRegimValue(int regim, long long n) {
    return "regim" + std::to_string(regim) + "value" + std::to_string(n);
}
inline std::string legacyRegimDate(int regim, long long n) {
    return "regim" + std::to_string(regim) + "date" + std::to_string(n);
}

// "version" and the version key: this version has greeted the user.
inline std::string versionGreeted(std::string_view versionKey) {
    return "version" + std::string(versionKey);
}

// The birthday greeting for this child and age has been shown.
inline std::string birthdayGreeted(long long chid, int age) {
    return "appStore-" + std::to_string(chid) + "-" + std::to_string(age);
}

}  // namespace tilika::core::keys
