#include "model/merge_plan.h"

#include "model/store_diff.h"

namespace lumeth {

MergePlan PlanMerge(const PanelStore& base, const PanelStore& server, const PanelStore& mine,
                    PartSet wanted, bool force) {
    MergePlan plan;
    wanted = wanted & kUploadParts;
    plan.edited = DifferingParts(base, mine);
    plan.serverChanged = DifferingParts(base, server);
    // Both sides changed a part the same way: sending it changes nothing.
    const PartSet bothSame = (plan.edited & plan.serverChanged) - DifferingParts(server, mine);
    plan.conflicts = (wanted & plan.edited & plan.serverChanged) - bothSame;
    plan.keptServer = (wanted & plan.serverChanged) - plan.edited;
    plan.toSend = force ? wanted : wanted - plan.keptServer - plan.conflicts;
    return plan;
}

std::string ServerChangedLine(Part part, std::string_view since) {
    std::string line = "the server module's ";
    line += PartName(part);
    line += " changed since ";
    line += since;
    return line;
}

} // namespace lumeth
