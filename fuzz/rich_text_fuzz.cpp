// Lays out one input as a page in both source formats, the way content from
// the server would be, and works the page: windows of groups, the cursor,
// highlight and dimming, check marks and hidden text, and taps. The first
// byte chooses the window and the group; the rest is the source. Besides the
// sanitizers it checks that the layout stays finite and inside the page.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/app_state.h"
#include "core/dates.h"
#include "frame/pictures.h"
#include "frame/rich_text_source.h"
#include "frame/text_page.h"
#include "platform/clock.h"
#include "platform/recording_canvas.h"

namespace {

using namespace tilika;

void require(bool ok) {
    if (!ok) {
        __builtin_trap();
    }
}

void checkLayout(const frame::TextPage& page) {
    require(std::isfinite(page.contentHeight()));
    for (const auto& element : page.elements()) {
        require(std::isfinite(element.frame.y) && std::isfinite(element.frame.height));
        require(element.frame.height >= 0 && element.frame.y >= 0);
        require(element.frame.x >= 0 && element.frame.right() <= page.width() + 1e-6);
    }
    for (const auto& group : page.groupData()) {
        require(group.top <= group.bottom);
    }
}

void exercise(frame::TextPage& page, std::uint8_t control) {
    checkLayout(page);
    page.hiliteGroup(control % 7, (control & 1) != 0);
    page.alphaGroup(control % 5, (control & 2) != 0);
    page.nextGroup();
    page.prevGroup();
    page.checkClick(1001 + control % 3);
    page.setCheckData({"1", "2", std::string(control % 40, 'A')});
    page.getFirstCheckGuid();
    page.getHiddenText("1");
    for (const auto& element : page.elements()) {
        page.hitTest({element.frame.x + 1, element.frame.y + 1});
    }
    platform::RecordingCanvas canvas;
    page.draw(canvas, {0, 0, page.width(), 1e9}, 0.5, 0.5);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const platform::ManualClock clock{core::Date{}, "Europe/Moscow"};
    static const core::Dates dates{clock};
    static core::AppState state;
    static const frame::Pictures pictures;
    static const platform::RecordingCanvas metrics;
    if (size == 0) {
        return 0;
    }
    const std::uint8_t control = data[0];
    const std::string_view source(reinterpret_cast<const char*>(data + 1), size - 1);

    frame::TextPage page(frame::TextPageEnvironment{state, pictures, dates, "/nonexistent"},
                         metrics);
    page.setStartDate(core::Date{std::chrono::milliseconds(1767225600000)});
    page.specialPartial((control & 0x80) != 0 ? control % 13 : -1);
    page.justGroup((control & 0x40) != 0 ? control % 4 : -1);
    page.setWidth(200 + control);

    page.prepareTextFromString(source, true);
    exercise(page, control);
    frame::extractGroupText(source, control % 4);

    // The JSON form, with the same bytes cut in two as the page and its
    // appended groups.
    const std::size_t half = source.size() / 2;
    page.prepareTextFromJSONString(source.substr(0, half), false, std::string(source.substr(half)));
    exercise(page, control);
    page.prepareTextFromJSONString(source, true);
    exercise(page, control);
    return 0;
}
