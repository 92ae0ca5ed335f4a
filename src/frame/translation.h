#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tilika::core {
struct AppState;
}

namespace tilika::frame {

namespace language {
inline constexpr int russian = 1;
inline constexpr int german = 2;
inline constexpr int french = 3;
}  // namespace language

// Fills the state's table of translations for its language from the bundle
// database; Russian, the language the texts are written in, needs none. A
// missing or damaged database leaves the table empty, so texts stay Russian.
void prepareTranslate(core::AppState& state, const std::filesystem::path& database);

// The text in the state's language, or the text itself when it has no
// translation.
std::string translate(const core::AppState& state, std::string_view text);

}  // namespace tilika::frame
