#include "diary/teeth_replay.h"

#include <vector>

#include "core/text.h"

namespace tilika::diary {

void ToothReplay::apply(std::string_view value) {
    for (const std::string& item : core::split(value, "<tr>")) {
        const int n = core::intValue(item);
        if (n >= 1 && n <= kMilkTeeth) {
            present_[static_cast<std::size_t>(n)] = true;
        } else if (n > kToothLost && n <= kToothLost + kMilkTeeth) {
            present_[static_cast<std::size_t>(n - kToothLost)] = false;
        }
    }
}

bool ToothReplay::has(int tooth) const {
    return tooth >= 1 && tooth <= kMilkTeeth && present_[static_cast<std::size_t>(tooth)];
}

std::string ToothReplay::text() const {
    std::vector<std::string> teeth;
    for (int n = 1; n <= kMilkTeeth; ++n) {
        if (has(n)) {
            teeth.push_back(std::to_string(n));
        }
    }
    return core::join(teeth, "<tr>");
}

}  // namespace tilika::diary
