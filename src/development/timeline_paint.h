#pragma once

#include "platform/canvas.h"

namespace tilika::core {
struct AppState;
}

namespace tilika::development {

class Timeline;

// Draws the part of the timeline's strip that falls in `visible`, in the
// strip's own coordinates: the year bands, the month numbers with the
// running month marked, and the events in their lanes.
void paintPlane(platform::Canvas& canvas, const Timeline& timeline, const core::AppState& state,
                const platform::Rect& visible);

}  // namespace tilika::development
