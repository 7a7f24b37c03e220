#pragma once

#include <QObject>
#include <QString>

#include <optional>
#include <string>
#include <vector>

#include "app/server_reader.h"
#include "model/panel_store.h"
#include "model/parts.h"

class QMenu;

namespace lumeth {

class MainWindow;

// The Edit menu's safe sends beside Apply: "Compare with Server Module..."
// (mnuCompare) reads the server module's configuration over a second
// connection and shows how it differs; "Apply Selected..."
// (mnuApplySelected) sends chosen parts after such a comparison and reads
// them back; "Backups..." (mnuBackups) lists the backups kept before each
// send and loads one as Load All does.
class SafeApply : public QObject {
    Q_OBJECT
public:
    explicit SafeApply(MainWindow& window);

    void AddMenuItems(QMenu* edit);

    void Compare();
    void ApplySelected();
    void ShowBackups();

    // How long one read of the server module may take.
    void setReadLimitMs(int ms) { m_readLimitMs = ms; }

    // The report of Compare: what Apply would change on the server module
    // holding `server`, then what changed there since `base` (the parts of
    // `received` only; the others are named as not received).
    static std::vector<std::string> CompareLines(const PanelStore& base, PartSet received,
                                                 const PanelStore& server, const PanelStore& mine);

private:
    // The server module's configuration read over a second connection, with
    // a progress dialog and Cancel; none when that failed (the operator has
    // been told) or was cancelled. `during` names the command; `consequence`
    // ends what the operator is told when the read fails.
    std::optional<PanelStore> ReadServer(const QString& during, const QString& consequence);
    // The upload parts as this window last received or applied them, over
    // the store's channel names.
    PanelStore Base() const;
    // Send `parts` with the document's messages after keeping `server` as a
    // backup; the parts that went out with the link still up.
    PartSet Send(PartSet parts, const PanelStore& server);
    // Read the sent parts back and say whether the server module holds them;
    // `unsent` were chosen but could not be written.
    void Verify(PartSet sent, PartSet unsent);
    void Say(const QString& text);

    MainWindow& m_window;
    int m_readLimitMs = ServerReader::kDefaultLimitMs;
    bool m_busy = false;
};

} // namespace lumeth
