#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/date.h"
#include "frame/form_values.h"

namespace tilika::core {
class Dates;
}
namespace tilika::diary {
class ReferenceLists;
}

namespace tilika::session {

// A form ready to be shown: its title, the caller's tag handed back with the
// result, and its rows.
struct FormContent {
    std::string caption;
    int parentFlag = 0;
    frame::FormRows rows;
};

// The ready-made forms, by their number.
struct DetailRequest {
    int kind = 0;
    int parentFlag = 0;
    std::string cap;  // the title
    std::string msg;  // the heading every form starts with
    std::string dat;  // the value the form starts from
    int cotype = 0;   // the reference list of a list form
    bool edit = false;
    // For a list form whose value is "WASADDED" (or "WASADDEDREQUIRED"):
    // the items the caller has already put together.
    std::vector<frame::ListRow> list;
};

// What the forms need besides the request.
struct DetailContext {
    const core::Dates& dates;
    core::Date now;
    // Lists come from the reference lists; without them a list starts empty.
    diary::ReferenceLists* lists = nullptr;
    bool lightTheme = true;
};

// The rows of a ready-made form. Unknown kinds give the heading alone.
FormContent detailPrepare(const DetailRequest& request, const DetailContext& context);

}  // namespace tilika::session
