#pragma once

#include <algorithm>
#include <cstddef>

#include "model/limits.h"
#include "model/panel_store.h"
#include "model/parts.h"

namespace lumeth {

// How many entries of a record's parallel arrays an upload sends: the count
// field, but never more than the shortest array holds (a count that ran ahead
// of its arrays) nor a 14-bit field can say. Entries past it never reach the
// server module.
template <typename... Arrays> size_t SentCount(int count, const Arrays&... arrays) {
    return std::min(
        {static_cast<size_t>(ValidCount(count)), static_cast<size_t>(kMax14Bit), arrays.size()...});
}

// Whether two parts (or buttons) are the same as the server module holds them
// after an upload: only the entries sent, names and labels cut to their width
// with trailing blanks dropped, and none of the index arrays that stay local.
// A template grown to 32 buttons is a change (it sends more buttons), lists
// or channels past their counts are not.
bool SameAsSent(const DisplayListTable& a, const DisplayListTable& b);
bool SameAsSent(const UserGroupTable& a, const UserGroupTable& b);
bool SameAsSent(const TemplateTable& a, const TemplateTable& b);
bool SameAsSent(const PanelButton& a, const PanelButton& b);

// The upload parts that differ between `a` and `b` as the server module would
// get them.
PartSet DifferAsSent(const PanelStore& a, const PanelStore& b);

} // namespace lumeth
