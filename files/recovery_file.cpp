#include "files/recovery_file.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>

#include "files/file_io.h"
#include "files/panel_data_file.h"

namespace lumeth {

namespace {

constexpr std::string_view kMarker = "LMXRECV1";
// The marker, the parts (2 bytes), the payload length and checksum (4 each).
constexpr size_t kHeaderSize = kMarker.size() + 2 + 4 + 4;

// 32-bit FNV-1a: enough to tell a torn or damaged file from a whole one.
uint32_t Checksum(std::string_view bytes) {
    uint32_t hash = 2166136261u;
    for (const char c : bytes) {
        hash ^= static_cast<unsigned char>(c);
        hash *= 16777619u;
    }
    return hash;
}

void PutLittleEndian(std::string& out, uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
}

uint32_t GetLittleEndian(std::string_view in, size_t at, int bytes) {
    uint32_t value = 0;
    for (int i = 0; i < bytes; ++i)
        value |= uint32_t(static_cast<unsigned char>(in[at + size_t(i)])) << (8 * i);
    return value;
}

Status Damaged(std::string detail) {
    return Status::Fail(ErrorCode::InvalidFileFormat, std::move(detail));
}

} // namespace

std::string EncodeRecoveryFile(const RecoveredEdits& recovered) {
    PanelStore store;
    RestoreSnapshot(recovered.edits, store);
    const std::string payload = EncodePanelData(store);
    std::string out;
    out.reserve(kHeaderSize + payload.size());
    out.append(kMarker);
    PutLittleEndian(out, (recovered.parts & kUploadParts).bits(), 2);
    PutLittleEndian(out, static_cast<uint32_t>(payload.size()), 4);
    PutLittleEndian(out, Checksum(payload), 4);
    out.append(payload);
    return out;
}

Status DecodeRecoveryFile(std::string_view bytes, RecoveredEdits& recovered) {
    if (bytes.size() < kHeaderSize || bytes.substr(0, kMarker.size()) != kMarker)
        return Damaged("not a recovery file");
    const auto bits = static_cast<uint16_t>(GetLittleEndian(bytes, kMarker.size(), 2));
    const uint32_t length = GetLittleEndian(bytes, kMarker.size() + 2, 4);
    const uint32_t checksum = GetLittleEndian(bytes, kMarker.size() + 6, 4);
    const std::string_view payload = bytes.substr(kHeaderSize);
    if (payload.size() != length || Checksum(payload) != checksum)
        return Damaged("the recovery file is incomplete or damaged");
    const PartSet parts = PartSet::FromBits(bits);
    if (!(parts - kUploadParts).empty() || parts.bits() != bits)
        return Damaged("the recovery file names unknown parts");
    PanelStore store;
    const LoadResult loaded = LoadPanelData(payload, store);
    if (loaded.outcome != LoadOutcome::Loaded)
        return Damaged("the recovery file's configuration cannot be read");
    recovered.parts = parts;
    recovered.edits = TakeSnapshot(store);
    return {};
}

Status WriteRecoveryFile(const std::string& path, const RecoveredEdits& recovered) {
    return ReplaceFileContents(path, EncodeRecoveryFile(recovered));
}

Status ReadRecoveryFile(const std::string& path, RecoveredEdits& recovered) {
    std::string bytes;
    const Status read = ReadFileBytes(path, bytes);
    if (!read)
        return read;
    return DecodeRecoveryFile(bytes, recovered);
}

Status RemoveRecoveryFile(const std::string& path) {
    if (std::remove(path.c_str()) == 0 || errno == ENOENT)
        return {};
    return Status(FailureFromErrno(errno, ErrorCode::PathFileAccessError, path,
                                   ErrorCode::PathNotFound));
}

} // namespace lumeth
