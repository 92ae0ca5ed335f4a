#pragma once

#include <filesystem>
#include <string_view>

#include "core/context.h"
#include "core/date.h"

namespace tilika::documents {

// Puts a file (a page kept from the web, say) into the analyses of a day of
// the first profile, whichever child is active, as a new item named `name`.
// The file is copied into analizy, replacing a file of the same name. False
// when the file can't be read or written, or the day can't be saved.
bool addToAnaliz(core::Context& context, std::string_view name, const std::filesystem::path& path,
                 core::Date day);

}  // namespace tilika::documents
