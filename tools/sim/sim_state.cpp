#include "tools/sim/sim_state.h"

#include "link/codec.h"
#include "link/link_state.h"

namespace lumeth::sim {

RequestBit RequestBitOf(AnswerKind kind) {
    switch (kind) {
    case AnswerKind::Password:
        return {'A', request::kPassword};
    case AnswerKind::InputAlphas:
        return {'A', request::kInputAlphas};
    case AnswerKind::OutputAlphas:
        return {'A', request::kOutputAlphas};
    case AnswerKind::OptoAlphas:
        return {'A', request::kOptoAlphas};
    case AnswerKind::RelayAlphas:
        return {'A', request::kRelayAlphas};
    case AnswerKind::InputLists:
        return {'C', request::kInputLists};
    case AnswerKind::OutputLists:
        return {'C', request::kOutputLists};
    case AnswerKind::OptoLists:
        return {'C', request::kOptoLists};
    case AnswerKind::RelayLists:
        return {'C', request::kRelayLists};
    case AnswerKind::UserGroups:
        return {'C', request::kUserGroups};
    case AnswerKind::Templates:
        return {'C', request::kTemplates};
    }
    return {'A', 0};
}

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

const std::string& SimState::Answer(AnswerKind kind) {
    auto& cached = m_answers[static_cast<size_t>(kind)];
    if (cached) {
        return *cached;
    }
    const int k = static_cast<int>(kind);
    if (kind == AnswerKind::Password) {
        cached = codec::PasswordMessage(m_password);
    } else if (k <= static_cast<int>(AnswerKind::RelayAlphas)) {
        const auto s = static_cast<SubType>(k - static_cast<int>(AnswerKind::InputAlphas));
        cached = codec::AlphaTableMessage(s, m_store.alpha(s).channelNames, m_alphaWidth);
    } else if (k <= static_cast<int>(AnswerKind::RelayLists)) {
        const auto s = static_cast<SubType>(k - static_cast<int>(AnswerKind::InputLists));
        cached = codec::DisplayListMessage(m_store, s);
    } else if (kind == AnswerKind::UserGroups) {
        cached = codec::GroupMessage(m_store);
    } else {
        cached = codec::ButtonMessage(m_store);
    }
    return *cached;
}

void SimState::Changed() {
    ++m_version;
    m_persistError = m_listener ? m_listener(*this) : std::string();
}

void SimState::ReplacePassword(std::string password) {
    m_password = std::move(password);
    m_answers[static_cast<size_t>(AnswerKind::Password)].reset();
    Changed();
}

void SimState::ReplaceDisplayLists(SubType subType, PanelStore& from) {
    m_store.listTable(subType) = std::move(from.listTable(subType));
    m_answers[static_cast<size_t>(AnswerKind::InputLists) + static_cast<size_t>(subType)].reset();
    Changed();
}

void SimState::ReplaceUserGroups(PanelStore& from) {
    m_store.groups = std::move(from.groups);
    m_answers[static_cast<size_t>(AnswerKind::UserGroups)].reset();
    Changed();
}

void SimState::ReplaceTemplates(PanelStore& from) {
    m_store.templates = std::move(from.templates);
    m_answers[static_cast<size_t>(AnswerKind::Templates)].reset();
    Changed();
}

PanelStore SimState::ScratchFor(uint8_t command) const {
    PanelStore copy;
    if (command == 0xDF) {
        copy.displayLists = m_store.displayLists;
    } else if (command == 0xCC) {
        copy.groups = m_store.groups;
    } else if (command == 0xFD) {
        copy.templates = m_store.templates;
    }
    return copy;
}

void SetChannelNames(AlphaTable& table, std::vector<std::string> channelNames) {
    table = AlphaTable{};
    table.count = static_cast<int16_t>(channelNames.size());
    table.channelNames = std::move(channelNames);
}

} // namespace lumeth::sim
