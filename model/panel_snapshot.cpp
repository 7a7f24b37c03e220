#include "model/panel_snapshot.h"

#include <algorithm>

#include "model/same_as_sent.h"

namespace lumeth {

namespace {

// The part `current` as a shared value: `shared` itself when it holds the
// same content, else a new copy.
template <typename T>
std::shared_ptr<const T> Share(const T& current, const std::shared_ptr<const T>* shared) {
    if (shared && *shared && **shared == current)
        return *shared;
    return std::make_shared<const T>(current);
}

// Shared pointers to equal content, or to the same content.
template <typename T>
bool SamePart(const std::shared_ptr<const T>& a, const std::shared_ptr<const T>& b) {
    return a == b || (a && b && *a == *b);
}

int16_t Inside(int16_t value, int count) {
    return static_cast<int16_t>(std::clamp<int>(value, 0, std::max(count - 1, 0)));
}

} // namespace

bool PanelSnapshot::operator==(const PanelSnapshot& other) const {
    return ChangedParts(*this, other).empty();
}

PanelSnapshot TakeSnapshot(const PanelStore& store, const PanelSnapshot* shareWith) {
    PanelSnapshot snapshot;
    for (SubType s : kAllSubTypes)
        snapshot.lists[Index(s)] =
            Share(store.listTable(s), shareWith ? &shareWith->lists[Index(s)] : nullptr);
    snapshot.groups = Share(store.groups, shareWith ? &shareWith->groups : nullptr);
    snapshot.templates = Share(store.templates, shareWith ? &shareWith->templates : nullptr);
    return snapshot;
}

void RestoreParts(const PanelSnapshot& snapshot, PartSet parts, PanelStore& store) {
    for (SubType s : kAllSubTypes)
        if (parts.has(ListsPart(s)) && snapshot.lists[Index(s)])
            store.listTable(s) = *snapshot.lists[Index(s)];
    if (parts.has(Part::UserGroups) && snapshot.groups)
        store.groups = *snapshot.groups;
    if (parts.has(Part::Templates) && snapshot.templates)
        store.templates = *snapshot.templates;
    store.currentUserGroup = Inside(store.currentUserGroup, store.groups.userGroupCount);
    if (const auto subType = SubTypeFromListCode(store.currentListType))
        store.currentList = Inside(store.currentList, store.listCount(*subType));
}

void CopyParts(const PanelSnapshot& from, PartSet parts, PanelSnapshot& to) {
    for (SubType s : kAllSubTypes)
        if (parts.has(ListsPart(s)))
            to.lists[Index(s)] = from.lists[Index(s)];
    if (parts.has(Part::UserGroups))
        to.groups = from.groups;
    if (parts.has(Part::Templates))
        to.templates = from.templates;
}

void RestoreSnapshot(const PanelSnapshot& snapshot, PanelStore& store) {
    RestoreParts(snapshot, kUploadParts, store);
}

PartSet ChangedParts(const PanelStore& a, const PanelStore& b) {
    return DifferAsSent(a, b);
}

PartSet DifferAsSent(const PanelSnapshot& a, const PanelSnapshot& b) {
    // Shared parts are the same; the others are compared as sent.
    const auto differ = [](const auto& x, const auto& y) {
        return x != y && (!x || !y || !SameAsSent(*x, *y));
    };
    PartSet parts;
    for (SubType s : kAllSubTypes)
        if (differ(a.lists[Index(s)], b.lists[Index(s)]))
            parts.add(ListsPart(s));
    if (differ(a.groups, b.groups))
        parts.add(Part::UserGroups);
    if (differ(a.templates, b.templates))
        parts.add(Part::Templates);
    return parts;
}

PartSet ChangedParts(const PanelSnapshot& a, const PanelSnapshot& b) {
    PartSet changed;
    for (SubType s : kAllSubTypes)
        if (!SamePart(a.lists[Index(s)], b.lists[Index(s)]))
            changed.add(ListsPart(s));
    if (!SamePart(a.groups, b.groups))
        changed.add(Part::UserGroups);
    if (!SamePart(a.templates, b.templates))
        changed.add(Part::Templates);
    return changed;
}

} // namespace lumeth
