#include "link/wire.h"

namespace lumeth::wire {

void Append14(std::string& out, int value) {
    const int v = value & 0x3FFF;
    out.push_back(static_cast<char>(v & 127));
    out.push_back(static_cast<char>(v >> 7));
}

void Append28(std::string& out, uint32_t value) {
    for (int k = 0; k < 4; ++k) {
        out.push_back(static_cast<char>((value >> (7 * k)) & 127));
    }
}

std::string SplitBytes(std::string& text, size_t count) {
    if (count >= text.size()) {
        std::string all = std::move(text);
        text.clear();
        return all;
    }
    std::string head = text.substr(0, count);
    text.erase(0, count);
    return head;
}

uint8_t Checksum(std::string_view message, int tail) {
    if (message.empty()) {
        return 0;
    }
    const long long last = static_cast<long long>(message.size()) - 1 - tail;
    unsigned sum = 0;
    for (long long i = 1; i <= last; ++i) {
        sum = (sum + static_cast<uint8_t>(message[static_cast<size_t>(i)])) & 127u;
    }
    return static_cast<uint8_t>(sum);
}

void Finish(std::string& message) {
    message.push_back(static_cast<char>(Checksum(message, 0)));
    message.push_back(static_cast<char>(0xFF));
}

} // namespace lumeth::wire
