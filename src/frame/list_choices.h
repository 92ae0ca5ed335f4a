#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "frame/form_row.h"

// How a stored choice of list items reads: values name the items by their
// guids joined by "<tr>", and a caption may carry a tail after "<tr>" that
// is never shown.
namespace tilika::frame {

// Old values refer to rows by their number; such a number becomes the guid
// the row has had since (a text shorter than 10 characters can't be a guid).
std::string widenOldId(std::string_view guid);

// The row of this guid, or of an old numeric id (a text shorter than 10
// characters, widened to the kind-2 guid of that number).
const ListRow* listByIndex(std::string_view guid, const std::vector<ListRow>& list);

// The guid of the row of list `tp` whose caption (without its tail) is
// `caption`, or "" when there is none.
std::string indexByCaption(const std::vector<ListRow>& list, int tp, std::string_view caption);

// A caption is shown up to its tail: the part from the first "<tr>" on.
std::string captionText(std::string_view coname);

// The captions of the list rows a value names, one a line; rows that are no
// longer in the list are left out without a trace.
std::string checkStringToRead(std::string_view value, const std::vector<ListRow>& listDat);

}  // namespace tilika::frame
