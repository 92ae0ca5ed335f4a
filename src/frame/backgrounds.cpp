#include "frame/backgrounds.h"

#include <algorithm>
#include <cmath>

#include "core/app_state.h"
#include "core/settings_keys.h"
#include "platform/settings_store.h"

namespace tilika::frame {

namespace {

using platform::Color;

constexpr Color kBlack{0, 0, 0};
constexpr Color kWhite{1, 1, 1};
constexpr Color kGrey{0.93, 0.93, 0.93};
constexpr Color kGold{1, 0.812, 0.255};
constexpr Color kDarkRed{0.7, 0, 0};

struct Theme {
    bool lightTheme;
    bool darkBars;
    Color text;
    Color accent;
};

std::optional<Theme> themeOf(long long id) {
    switch (id) {
        case kGreyBackdrop:
            return Theme{true, true, kBlack, kDarkRed};
        case kBlackBackdrop:
            return Theme{false, false, kWhite, kGold};
        case 1:
            return Theme{true, false, kBlack, kWhite};
        case 2:
        case 3:
        case 5:
        case 6:
            return Theme{false, false, kWhite, kGold};
        case 4:
        case 7:
        case 8:
        case 9:
            return Theme{true, true, kBlack, kDarkRed};
        default:
            return std::nullopt;
    }
}

std::optional<Color> hiliteOf(long long id) {
    switch (id) {
        case 1:
            return Color{0.706, 0.471, 0, 0.4};
        case 2:
        case 4:
        case 5:
        case 6:
            return Color{1, 0.804, 0.255, 0.4};
        case 3:
            return Color{0.706, 0.471, 0, 1};
        default:
            return std::nullopt;
    }
}

std::optional<Color> barOf(long long id) {
    switch (id) {
        case 1:
            return Color{0.922, 0.749, 0};
        case 2:
        case 6:
        case 8:
            return Color{0.212, 0.467, 0.69};
        case 3:
            return Color{0.278, 0.557, 0.098};
        case 4:
        case 5:
        case 7:
        case 9:
            return Color{0.537, 0.11, 0.11};
        default:
            return std::nullopt;
    }
}

}  // namespace

Backdrop correctBackground(core::AppState& state, bool bd) {
    const long long id = state.backgroundId;
    Backdrop backdrop;
    if (id == kBlackBackdrop) {
        backdrop.plain = kBlack;
    } else if (id == kGreyBackdrop) {
        backdrop.plain = kGrey;
    } else if (id >= 1) {
        backdrop.picture = (bd ? "bd640-" : "bg640-") + std::to_string(id) + ".png";
    }

    if (const auto theme = themeOf(id)) {
        state.lightTheme = theme->lightTheme;
        state.darkBars = theme->darkBars;
        state.textColor = theme->text;
        state.accentColor = theme->accent;
    }
    if (const auto hilite = hiliteOf(id)) {
        state.hiliteColor = hilite;
    }
    if (const auto bar = barOf(id)) {
        state.barColor = bar;
    }
    return backdrop;
}

std::vector<BackgroundItem> backgroundItems() {
    std::vector<BackgroundItem> items;
    for (int i = 1; i <= kBackgroundCount; ++i) {
        items.push_back({"bs-" + std::to_string(i) + ".png", std::to_string(i)});
    }
    return items;
}

core::WriteResult changeBackground(core::AppState& state, platform::SettingsStore& settings,
                                   long long id) {
    settings.setInt(core::keys::backgroundId, id);
    const bool stored = settings.synchronize();
    state.backgroundId = id;
    correctBackground(state, false);
    state.menuDirty = true;
    state.markAllPagesDirty();
    if (!stored) {
        return core::WriteFailure::settings;
    }
    return {};
}

std::optional<Color> darkerColor(const Color& color, double size) {
    if (size == 0 || !std::isfinite(size)) {
        return std::nullopt;
    }
    auto shift = [size](double component) { return std::clamp(component - size, 0.0, 1.0); };
    return Color{shift(color.r), shift(color.g), shift(color.b), color.a};
}

std::optional<Color> getRGBFromImage(const platform::Image& image, int x, int y) {
    if (image.empty() || x < 0 || y < 0 || x >= image.width || y >= image.height) {
        return std::nullopt;
    }
    const std::size_t at = (static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                            static_cast<std::size_t>(x)) *
                           4;
    if (at + 3 >= image.rgba.size()) {
        return std::nullopt;
    }
    // Pictures are drawn into a premultiplied buffer, so the stored colour
    // loses precision where the pixel is faint; dividing by alpha gives
    // back what a reader of such a buffer sees.
    const int alpha = image.rgba[at + 3];
    if (alpha == 0) {
        return Color{0, 0, 0, 0};
    }
    auto component = [&](std::size_t offset) {
        const int premultiplied = (image.rgba[at + offset] * alpha + 127) / 255;
        return std::min(1.0, static_cast<double>(premultiplied) / alpha);
    };
    return Color{component(0), component(1), component(2), alpha / 255.0};
}

}  // namespace tilika::frame
