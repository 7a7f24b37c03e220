#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/damaged_load.h"
#include "model/panel_snapshot.h"
#include "model/panel_store.h"
#include "model/parts.h"

namespace lumeth {

// The first line of the change report while the configuration has not been
// received in full.
inline constexpr const char* kNotReceivedInFullLine =
    "The configuration has not yet been received in full from the server module: each part is "
    "compared with what was last received or applied of it (an empty part if nothing was).";

// What this program knows the server module holds: which parts have arrived
// since the last request for everything, which the server module is known to
// hold (received since the link came up, applied, or replaced by a loaded
// file), each part as it arrived, and the configuration as last received in
// full.
//
// Each part is kept as it arrived, so a later answer for the same part that
// fails its checks after writing into the store changes neither what a fetch
// writes nor what a read-back compares.
class ServerMirror {
public:
    // `start` is the store before anything has been received: the parts never
    // received compare against it.
    explicit ServerMirror(const PanelStore& start = PanelStore{});

    // The link came up: nothing has been received and nothing is held yet.
    void LinkUp();
    // A request for everything went out: the parts are counted again.
    void RequestedEverything();
    // `part` arrived intact and `store` now holds it; `password` is the
    // password the server module sent (read only for Part::Password).
    void Received(Part part, const PanelStore& store, std::string_view password);
    // Apply sent the upload parts of `store` and the link stayed up: the
    // server module now holds them.
    void Applied(const PanelStore& store);
    // Only the upload parts `parts` of `store` were sent and the link stayed
    // up: the server module now holds those; the others stay as they were.
    void Applied(const PanelStore& store, PartSet parts);
    // A panel data file replaced the upload parts: the operator chose them.
    void Loaded();
    // Loading `file` failed or stopped part way: `before` is the store as it
    // was, `left` as the load left it. Apply asks first until a download, a
    // good load or an undo replaces it.
    void LoadStopped(std::string file, const PanelSnapshot& before, const PanelStore& left);
    // An undo or redo put `now` in place.
    void Restored(const PanelStore& now) { m_damaged.Restored(TakeSnapshot(now)); }
    // The load that stopped part way, while the store still holds it.
    const DamagedLoad& damagedLoad() const { return m_damaged; }

    // The parts received since the last request for everything.
    PartSet received() const { return m_received; }
    PartSet missing() const { return kAllParts - m_received; }
    // The upload parts received since the link came up, applied or loaded.
    PartSet held() const { return m_held; }
    // Each upload part as last received or applied (never received: as at
    // start).
    const PanelSnapshot& uploadParts() const { return m_uploads; }
    // The upload parts Apply would send over what the server module holds
    // without their having been received, loaded or edited: an edit is a
    // part of `now` that differs from uploadParts() as sent (Unapplied).
    PartSet Unconfirmed(const PanelStore& now) const;
    // The configuration as last received in full (all eleven parts since a
    // request for everything) or applied; none before that.
    const std::optional<PanelStore>& full() const { return m_full; }
    // The upload parts Apply would change on the server module: those of
    // `now` that differ, as sent, from uploadParts(). "Unapplied changes"
    // shows exactly when this is not empty.
    PartSet Unapplied(const PanelStore& now) const;
    // How `now` differs from uploadParts(), one line per change: empty
    // exactly when Unapplied() is. Before the configuration has been received
    // in full, a first line says what the parts are compared with.
    std::vector<std::string> ChangeLines(const PanelStore& now) const;

    // Put every part received since the last request for everything back
    // into `store` (the password into `password`) as it arrived.
    void RestoreReceived(PanelStore& store, std::string& password) const;

private:
    PartSet m_received;
    PartSet m_held;
    PanelSnapshot m_uploads;
    std::array<AlphaTable, kSubTypeCount> m_alphas;
    std::string m_password;
    std::optional<PanelStore> m_full;
    DamagedLoad m_damaged;
};

} // namespace lumeth
