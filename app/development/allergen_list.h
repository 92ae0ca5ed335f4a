#pragma once

#include <functional>
#include <string>

#include "core/write_result.h"

class QObject;
class QWidget;

namespace tilika::core {
struct Context;
}
namespace tilika::frame {
class Popups;
class dic;
}  // namespace tilika::frame

namespace tilika::development {

// Opens the check list of a child's allergens in the form, ticked as the
// profile has them. On OK the ticked guids ("<tr>" between them) go to
// `save`; a save that fails is told over the form, which stays with the
// ticks as they were left.
void openAllergenList(frame::dic& form, core::Context& context, frame::Popups& popups,
                      const std::string& gid, QWidget* host, QObject* target,
                      std::function<core::WriteResult(const std::string& checked)> save);

}  // namespace tilika::development
