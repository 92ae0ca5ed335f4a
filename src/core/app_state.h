#pragma once

#include <array>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/menu_rows.h"
#include "platform/canvas.h"

namespace tilika::core {

// Editions that share the data formats; this program is the child edition.
namespace edition {
inline constexpr int pregnancy = 1;
inline constexpr int child = 2;
inline constexpr int woman = 3;
inline constexpr int pregnancy3d = 14;
}  // namespace edition

// Where the diary is mirrored.
namespace cloudmode {
inline constexpr int off = 1;
inline constexpr int icloud = 11;
inline constexpr int dropbox = 12;
inline constexpr int loadingOld = 3;
}  // namespace cloudmode

inline constexpr int kPageCount = 20;

// What the whole process shares, set up at launch and living until the end.
// Everything here is used on the main thread only.
struct AppState {
    int appid = edition::child;
    int langid = 1;  // 1 Russian, 2 German, 3 French
    bool isIPad = false;

    int cloudMode = cloudmode::off;
    int cloudPercent = 0;
    int cloudChosen = 0;
    bool cloudOldSeen = false;
    bool dropboxChanged = false;
    bool dropboxReady = false;

    bool menuDirty = false;
    // Indexed by the page id of a menu row; a page reloads on opening only
    // when its flag is set, and clears it.
    std::array<bool, kPageCount> pageDirty{};

    long long newscount = 0;
    bool accelerate = false;
    bool pillsAlarm = false;
    bool chatIndi = true;
    bool showRec = true;
    long long backgroundId = 3;
    // The look that the background gives; screens read it when they are
    // built. A background without an entry in a colour's table leaves that
    // colour as it was.
    bool lightTheme = true;
    bool darkBars = true;
    bool colorIcons = true;
    platform::Color textColor{0, 0, 0};
    platform::Color accentColor{0.7, 0, 0};
    std::optional<platform::Color> hiliteColor;
    std::optional<platform::Color> barColor;

    // Texts of the interface by their Russian source, for other languages.
    std::unordered_map<std::string, std::string> trandic;

    double scaleX = 1.0;
    double scaleY = 1.0;

    std::string appguid;
    std::string versionKey;
    std::string pushToken;
    std::string supportLog;
    std::optional<bool> chatAwake;
    bool blurShown = false;
    // A popup is up: the pages don't swipe under it.
    bool popupShown = false;
    // Forms open over the screens, counted while they are up.
    int openForms = 0;

    std::optional<std::string> activeGid;
    std::optional<std::string> pendingShortcut;
    std::optional<std::string> pendingFileUrl;

    std::vector<MenuRow> menuItems;
    int pageCount = 0;

    void markAllPagesDirty() { pageDirty.fill(true); }
};

}  // namespace tilika::core
