#include "model/edit_steps.h"

#include <utility>

namespace lumeth {

bool EditSteps::Record(const PanelStore& store) {
    PanelSnapshot now = TakeSnapshot(store, &m_base);
    if (now == m_base)
        return false;
    m_history.Record(std::exchange(m_base, std::move(now)));
    EndDownloads();
    return true;
}

void EditSteps::RecordFrom(PanelSnapshot before, const PanelStore& store) {
    m_base = TakeSnapshot(store, &before);
    m_history.Record(std::move(before));
}

void EditSteps::RecordDownload(const PanelSnapshot& arrived, PartSet parts, bool extendLast,
                               const PanelStore& store) {
    PanelSnapshot before = m_base;
    CopyParts(arrived, parts, before);
    if (!extendLast || !m_history.AmendLast(before, parts))
        m_history.Record(std::move(before));
    Rebase(store, parts);
}

void EditSteps::Rebase(const PanelStore& store, PartSet parts) {
    CopyParts(TakeSnapshot(store, &m_base), parts, m_base);
}

bool EditSteps::Undo(PanelStore& store) {
    if (!m_history.Undo(store))
        return false;
    Rebase(store);
    EndDownloads();
    return true;
}

bool EditSteps::Redo(PanelStore& store) {
    if (!m_history.Redo(store))
        return false;
    Rebase(store);
    EndDownloads();
    return true;
}

void EditSteps::Arriving(Part part, const PanelStore& store) {
    if (!kUploadParts.has(part) || m_arriving.has(part))
        return;
    CopyParts(TakeSnapshot(store, &m_base), PartSet{part}, m_arrived);
    m_arriving.add(part);
}

bool EditSteps::Arrived(Part part, const PanelStore& store, const PanelSnapshot& held) {
    if (!m_arriving.has(part))
        return false;
    m_arriving.remove(part);
    const bool edited = DifferAsSent(m_arrived, held).has(part);
    const bool replaced = DifferAsSent(m_arrived, TakeSnapshot(store, &m_arrived)).has(part);
    if (!edited || !replaced)
        return false;
    const bool sameDownload =
        m_downloadStep && !m_history.canRedo() && m_history.undoDepth() == m_downloadDepth;
    RecordDownload(m_arrived, PartSet{part}, sameDownload, store);
    StartDownloadStep();
    return true;
}

void EditSteps::StartDownloadStep() {
    m_downloadStep = true;
    m_downloadDepth = m_history.undoDepth();
}

void EditSteps::EndDownloads() {
    m_downloadStep = false;
    m_arriving = {};
}

} // namespace lumeth
