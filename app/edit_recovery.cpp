#include "app/edit_recovery.h"

#include <QTimer>

#include <utility>

namespace lumeth {

EditRecovery::EditRecovery(const PanelStore& start, const std::string& folder, ErrorReporter report,
                           QObject* parent)
    : QObject(parent), m_kept(start), m_path(folder + kRecoveryFileName),
      m_report(std::move(report)) {
    m_timer = new QTimer(this);
    m_timer->setObjectName("tmrRecovery");
    m_timer->setSingleShot(true);
    m_timer->setInterval(kDelayMs);
    connect(m_timer, &QTimer::timeout, this, &EditRecovery::Write);
}

bool EditRecovery::Load() {
    RecoveredEdits recovered;
    const Status read = ReadRecoveryFile(m_path, recovered);
    if (!read) {
        if (read.failure().code == ErrorCode::FileNotFound)
            return false;
        if (m_report)
            m_report("Error Reading Recovery File", "File Error", read.failure());
        m_onDisk = true; // replaced by the next edits, removed without any
        return false;
    }
    m_onDisk = true;
    m_kept.Adopt(recovered.parts, std::move(recovered.edits));
    return !m_kept.parts().empty();
}

void EditRecovery::Received(Part part, const PanelStore& store) {
    const PartSet before = m_kept.parts();
    m_kept.Received(part, store);
    if (!(before == m_kept.parts()))
        Schedule();
}

void EditRecovery::Changed(const PanelStore& store) {
    if (m_kept.Note(store))
        Schedule();
}

void EditRecovery::Discard() {
    m_kept.Discard();
    m_timer->stop();
    Write();
}

void EditRecovery::Flush() {
    if (m_timer->isActive()) {
        m_timer->stop();
        Write();
    }
}

void EditRecovery::Schedule() {
    m_timer->start();
}

void EditRecovery::Write() {
    if (m_kept.parts().empty()) {
        if (!m_onDisk)
            return;
        const Status removed = RemoveRecoveryFile(m_path);
        if (!removed && m_report)
            m_report("Error Removing Recovery File", "File Error", removed.failure());
        m_onDisk = !removed.ok();
        return;
    }
    const Status written = WriteRecoveryFile(m_path, {m_kept.parts(), m_kept.edits()});
    if (!written && m_report)
        m_report("Error Writing Recovery File", "File Error", written.failure());
    m_onDisk = m_onDisk || written.ok();
}

} // namespace lumeth
