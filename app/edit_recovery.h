#pragma once

#include <QObject>

#include <string>

#include "files/recovery_file.h"
#include "model/kept_edits.h"
#include "ui/error_reporter.h"

class QTimer;

namespace lumeth {

// Keeps the unapplied edits in the recovery file of the program's folder: a
// single-shot timer writes the file a moment after the last change (never
// while the operator types), and removes it once nothing is kept.
class EditRecovery : public QObject {
    Q_OBJECT
public:
    static constexpr int kDelayMs = 2000;

    EditRecovery(const PanelStore& start, const std::string& folder, ErrorReporter report,
                 QObject* parent = nullptr);

    // Take up the edits a earlier run left in the file (a damaged file is
    // logged and left for the next write to replace); true when there are some.
    bool Load();
    // `part` was downloaded and `store` holds it.
    void Received(Part part, const PanelStore& store);
    // The store may have moved on.
    void Changed(const PanelStore& store);
    // The operator gave the edits up: the file goes now.
    void Discard();
    // Write (or remove) the file now if a change is waiting.
    void Flush();

    const KeptEdits& kept() const { return m_kept; }
    const std::string& path() const { return m_path; }

private:
    void Schedule();
    void Write();

    KeptEdits m_kept;
    std::string m_path;
    ErrorReporter m_report;
    QTimer* m_timer = nullptr;
    bool m_onDisk = false;
};

} // namespace lumeth
