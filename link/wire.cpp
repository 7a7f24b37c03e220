#include "link/wire.h"

#include "link/protocol.h"
#include "model/limits.h"

namespace lumeth::wire {

void Append14(std::string& out, int value) {
    const int v = value & kMax14Bit;
    out.push_back(static_cast<char>(v & 127));
    out.push_back(static_cast<char>(v >> 7));
}

void Append28(std::string& out, uint32_t value) {
    for (int k = 0; k < 4; ++k) {
        out.push_back(static_cast<char>((value >> (7 * k)) & 127));
    }
}

int Read14(std::string_view bytes) {
    return static_cast<int>(Read28(bytes.substr(0, 2)));
}

uint32_t Read28(std::string_view bytes) {
    uint32_t value = 0;
    for (size_t k = 0; k < 4 && k < bytes.size(); ++k) {
        value |= (static_cast<uint32_t>(static_cast<uint8_t>(bytes[k])) & 127u) << (7 * k);
    }
    return value;
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

std::string HexByte(uint8_t b) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    return {kDigits[b >> 4], kDigits[b & 15]};
}

void Finish(std::string& message) {
    message.push_back(static_cast<char>(Checksum(message, 0)));
    message.push_back(static_cast<char>(kEndMarker));
}

} // namespace lumeth::wire
