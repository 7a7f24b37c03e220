#pragma once

#include <string>
#include <string_view>

namespace lumeth {

// Checks a typed dotted address and clamps its four parts to 0..255.
// The text needs three dots; each of the four parts is read with the
// leading-number conversion (no number gives 0). On success `normalised`
// receives the four numbers joined by "." and true is returned; without three
// dots `normalised` is left as it was and false is returned, so the caller
// keeps the last address that did normalise.
bool NormaliseAddress(std::string_view text, std::string& normalised);

// Accepted key codes of the address boxes: digits, "." and backspace.
bool AcceptsAddressKey(int code);
// Accepted key codes of the numeric boxes: 47..57 (the slash and the digits)
// and backspace. The slash is accepted on purpose; the leading-number
// conversion stops at it.
bool AcceptsNumberKey(int code);

} // namespace lumeth
