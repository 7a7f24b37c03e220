#include "tools/sim/sim_state.h"

#include "link/codec.h"

namespace lumeth::sim {

SimState::SimState(PanelStore store, std::string password)
    : m_store(std::move(store)), m_password(std::move(password)) {}

void SimState::Reset(PanelStore store, std::string password) {
    m_store = std::move(store);
    m_password = std::move(password);
    for (auto& answer : m_answers) {
        answer.reset();
    }
    ++m_version;
}

void SimState::setAlphaWidth(int width) {
    m_alphaWidth = width;
    for (auto& answer : m_answers) {
        answer.reset();
    }
}

const std::string& SimState::Answer(Part part) {
    auto& cached = m_answers[static_cast<size_t>(part)];
    if (cached) {
        return *cached;
    }
    const PartInfo& info = Info(part);
    switch (info.kind) {
    case PartKind::Password:
        cached = codec::PasswordMessage(m_password);
        break;
    case PartKind::Alphas:
        cached = codec::AlphaTableMessage(*info.subType, m_store.alpha(*info.subType).channelNames,
                                          m_alphaWidth);
        break;
    case PartKind::DisplayLists:
    case PartKind::UserGroups:
    case PartKind::Templates:
        cached = codec::UploadMessage(m_store, part).message;
        break;
    }
    return *cached;
}

void SimState::Changed() {
    ++m_version;
    m_persistError = m_listener ? m_listener(*this) : std::string();
}

void SimState::Replace(Part part, PartValue value) {
    if (auto* password = std::get_if<std::string>(&value)) {
        m_password = std::move(*password);
    } else {
        StorePart(m_store, part, std::move(value));
    }
    m_answers[static_cast<size_t>(part)].reset();
    Changed();
}

void SetChannelNames(AlphaTable& table, std::vector<std::string> channelNames) {
    table = AlphaTable{};
    table.count = static_cast<int16_t>(channelNames.size());
    table.channelNames = std::move(channelNames);
}

} // namespace lumeth::sim
