#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "link/decoded.h"
#include "model/panel_store.h"
#include "model/parts.h"

namespace lumeth::sim {

// The server module's configuration, shared by every client of one emulator:
// the panel data (alpha tables by channel order in `alpha(s).channelNames`,
// display lists, user groups, templates) and the panel password. Answers are
// built from it on demand and kept until the next change. Every change goes
// through Replace, which calls the change listener (the state file writer).
class SimState {
public:
    SimState() = default;
    SimState(PanelStore store, std::string password);

    // Replace the whole configuration (loading); the change listener is not called.
    void Reset(PanelStore store, std::string password);

    const PanelStore& store() const { return m_store; }
    const std::string& password() const { return m_password; }
    // Alpha name width on the wire; 0 means the longest name of each table.
    int alphaWidth() const { return m_alphaWidth; }
    void setAlphaWidth(int width);
    // Incremented on every change.
    uint64_t version() const { return m_version; }

    // The complete message that sends `part`, built from the current state.
    const std::string& Answer(Part part);

    // Replace one part with an uploaded value (the password as its text).
    void Replace(Part part, PartValue value);

    // Called after every change; a failure it returns is the caller's to log.
    using ChangeListener = std::function<std::string(const SimState&)>;
    void setChangeListener(ChangeListener listener) { m_listener = std::move(listener); }
    // Error text of the last listener call ("" when it succeeded).
    const std::string& lastPersistError() const { return m_persistError; }

private:
    void Changed();

    PanelStore m_store;
    std::string m_password;
    int m_alphaWidth = 0;
    uint64_t m_version = 0;
    std::array<std::optional<std::string>, kPartCount> m_answers;
    ChangeListener m_listener;
    std::string m_persistError;
};

// Set an alpha table from names in channel order. Only the channel-order names
// and the count are filled: the emulator never shows the sorted form, and
// sorting 16383 names with the administrator's exchange sort would dominate
// start-up.
void SetChannelNames(AlphaTable& table, std::vector<std::string> channelNames);

} // namespace lumeth::sim
