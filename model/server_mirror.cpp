#include "model/server_mirror.h"

#include <memory>
#include <utility>

#include "model/store_diff.h"

namespace lumeth {

namespace {

// Copy `part` (not the password, which the store does not hold) from one
// store to another.
void CopyPart(Part part, const PanelStore& from, PanelStore& to) {
    const PartInfo& info = Info(part);
    switch (info.kind) {
    case PartKind::Password:
        break;
    case PartKind::Alphas:
        to.alpha(*info.subType) = from.alpha(*info.subType);
        break;
    case PartKind::DisplayLists:
        to.listTable(*info.subType) = from.listTable(*info.subType);
        break;
    case PartKind::UserGroups:
        to.groups = from.groups;
        break;
    case PartKind::Templates:
        to.templates = from.templates;
        break;
    }
}

} // namespace

ServerMirror::ServerMirror(const PanelStore& start) : m_uploads(TakeSnapshot(start)) {}

void ServerMirror::LinkUp() {
    m_received = {};
    m_held = {};
}

void ServerMirror::RequestedEverything() {
    m_received = {};
}

void ServerMirror::Received(Part part, const PanelStore& store, std::string_view password) {
    const PartInfo& info = Info(part);
    switch (info.kind) {
    case PartKind::Password:
        m_password = password;
        break;
    case PartKind::Alphas:
        m_alphas[Index(*info.subType)] = store.alpha(*info.subType);
        break;
    case PartKind::DisplayLists:
        m_uploads.lists[Index(*info.subType)] =
            std::make_shared<const DisplayListTable>(store.listTable(*info.subType));
        break;
    case PartKind::UserGroups:
        m_uploads.groups = std::make_shared<const UserGroupTable>(store.groups);
        break;
    case PartKind::Templates:
        m_uploads.templates = std::make_shared<const TemplateTable>(store.templates);
        break;
    }
    m_held |= PartSet{part} & kUploadParts;
    m_damaged.Replaced(part);

    const bool wasComplete = m_received == kAllParts;
    m_received.add(part);
    // Taken whole when the last part arrives; a part that arrives again
    // afterwards replaces only itself, so local edits never get in.
    if (wasComplete && m_full)
        CopyPart(part, store, *m_full);
    else if (m_received == kAllParts)
        m_full = store;
}

void ServerMirror::Applied(const PanelStore& store) {
    m_uploads = TakeSnapshot(store, &m_uploads);
    m_held = kUploadParts;
    m_full = store;
}

void ServerMirror::Applied(const PanelStore& store, PartSet parts) {
    parts = parts & kUploadParts;
    CopyParts(TakeSnapshot(store, &m_uploads), parts, m_uploads);
    m_held |= parts;
    if (m_full)
        RestoreParts(m_uploads, parts, *m_full);
}

void ServerMirror::Loaded() {
    m_held = kUploadParts;
    m_damaged.Clear();
}

void ServerMirror::LoadStopped(std::string file, const PanelSnapshot& before,
                               const PanelStore& left) {
    m_damaged.Mark(std::move(file), before, TakeSnapshot(left, &before));
}

PartSet ServerMirror::Unconfirmed(const PanelStore& now) const {
    return kUploadParts - (m_held | Unapplied(now));
}

PartSet ServerMirror::Unapplied(const PanelStore& now) const {
    return DifferAsSent(m_uploads, TakeSnapshot(now, &m_uploads));
}

std::vector<std::string> ServerMirror::ChangeLines(const PanelStore& now) const {
    PanelStore held = now;
    RestoreParts(m_uploads, kUploadParts, held);
    std::vector<std::string> lines = DiffStores(held, now);
    if (!m_full && !lines.empty())
        lines.insert(lines.begin(), kNotReceivedInFullLine);
    return lines;
}

void ServerMirror::RestoreReceived(PanelStore& store, std::string& password) const {
    RestoreParts(m_uploads, m_received & kUploadParts, store);
    for (SubType s : kAllSubTypes)
        if (m_received.has(AlphasPart(s)))
            store.alpha(s) = m_alphas[Index(s)];
    if (m_received.has(Part::Password))
        password = m_password;
}

} // namespace lumeth
