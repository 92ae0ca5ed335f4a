#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/write_result.h"
#include "platform/canvas.h"
#include "platform/image_codec.h"

namespace tilika::core {
struct AppState;
}
namespace tilika::platform {
class SettingsStore;
}

namespace tilika::frame {

// Backgrounds 1 to 9 are pictures; -1 (black) and -2 (light grey) are plain
// backdrops for screens that need a calm one.
inline constexpr int kBackgroundCount = 9;
inline constexpr int kBlackBackdrop = -1;
inline constexpr int kGreyBackdrop = -2;

// What stands behind a screen: a picture, or a plain colour, or (for an
// unknown number) nothing that changes.
struct Backdrop {
    std::string picture;
    std::optional<platform::Color> plain;
};

// Sets the look of the state's background (theme, text, accent, highlight
// and bar colours) and returns the backdrop of a screen; with bd the picture
// is the quieter one, for screens with much text.
Backdrop correctBackground(core::AppState& state, bool bd);

// One picture of the background chooser.
struct BackgroundItem {
    std::string file;  // "bs-3.png"
    std::string id;    // "3"
};
std::vector<BackgroundItem> backgroundItems();

// Stores the chosen background and applies it; the menu and every page are
// marked for drawing anew. It applies even when the settings file can't be
// written; the result says so.
core::WriteResult changeBackground(core::AppState& state, platform::SettingsStore& settings,
                                   long long id);

// The colour made darker by the amount (lighter for a negative one), each
// component kept within 0 and 1. Nothing for an amount of 0.
std::optional<platform::Color> darkerColor(const platform::Color& color, double size);

// The colour of one pixel, read as it would be from a premultiplied buffer;
// nothing outside the picture.
std::optional<platform::Color> getRGBFromImage(const platform::Image& image, int x, int y);

}  // namespace tilika::frame
