#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The limits of the configuration and the small helpers that apply them, in
// one place for the store, the files, the link and the editors.
namespace lumeth {

// Characters of a display list, user group or template name, and of a button
// label, as the panel data file stores them and the uploads send them.
inline constexpr size_t kNameWidth = 16;
inline constexpr size_t kLabelWidth = 8;
// Buttons a template has on a panel.
inline constexpr int kTemplateButtons = 32;
// The largest value a 14-bit wire field carries; also "no channel".
inline constexpr int kMax14Bit = 16383;

// Size an array for `count` entries: max(count, 1) elements.
constexpr size_t ArraySizeFor(int count) {
    return count < 1 ? 1u : static_cast<size_t>(count);
}

// A count field as a number of valid entries: a negative count (a damaged
// file stores it as read) counts as none.
constexpr int ValidCount(int count) {
    return std::max(count, 0);
}

// `text` without its trailing blanks.
inline std::string TrimTrailingBlanks(std::string_view text) {
    const size_t end = text.find_last_not_of(' ');
    return std::string(end == std::string_view::npos ? std::string_view() : text.substr(0, end + 1));
}

// A name or label as the server module holds it after an upload: cut to its
// width, trailing blanks dropped.
inline std::string AsSent(std::string_view text, size_t width) {
    return TrimTrailingBlanks(text.substr(0, std::min(width, text.size())));
}

// Entry `i` of `v`, or `fallback` when `i` is outside it: for counts that
// disagree with the array they describe.
template <typename T> T ValueAt(const std::vector<T>& v, int i, T fallback = T{}) {
    return i >= 0 && static_cast<size_t>(i) < v.size() ? v[static_cast<size_t>(i)] : fallback;
}

// A reference to entry `i` of `v`, or to a default value when `i` is outside it.
template <typename T> const T& RefAt(const std::vector<T>& v, int i) {
    static const T kNone{};
    return i >= 0 && static_cast<size_t>(i) < v.size() ? v[static_cast<size_t>(i)] : kNone;
}

} // namespace lumeth
