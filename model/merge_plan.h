#pragma once

#include <string>
#include <string_view>

#include "model/panel_store.h"
#include "model/parts.h"

namespace lumeth {

// How a configuration edited from `base` stands against what the server
// module holds now, part by part, for a send that must not overwrite another
// administrator's change.
struct MergePlan {
    // The upload parts `mine` changes from `base`.
    PartSet edited;
    // The upload parts the server module changed since `base`.
    PartSet serverChanged;
    // Wanted parts changed on both sides and now different: sending one
    // would overwrite the other change.
    PartSet conflicts;
    // Wanted parts only the server module changed: not sent, so the other
    // change is kept.
    PartSet keptServer;
    // What to send: the wanted parts without those kept, and without the
    // conflicts unless forced.
    PartSet toSend;
};

// The plan for sending the `wanted` upload parts of `mine`, edited from
// `base`, to a server module that now holds `server`. Parts are compared as
// the server module would get them (as Review Changes compares). `force`
// sends every wanted part regardless.
MergePlan PlanMerge(const PanelStore& base, const PanelStore& server, const PanelStore& mine,
                    PartSet wanted = kUploadParts, bool force = false);

// One line per part of `parts`: "the server module's Relay display lists
// changed since BASE", with `since` in place of BASE.
std::string ServerChangedLine(Part part, std::string_view since);

} // namespace lumeth
