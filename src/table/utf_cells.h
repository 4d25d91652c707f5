#pragma once
#include <string>

namespace velmora {

// The conversions of "Convert UTF Cells", on texts as bytes of a one-byte code page and
// as characters (code points). They serve two-byte scripts: longer sequences are not read.

// Do the bytes (without the last one) hold a UTF-8 sequence at their first high byte?
bool IsUtf8Text(const std::string& bytes);
// Two-byte sequences to their characters; other bytes stay.
std::u32string Utf8ToWide(const std::string& bytes);
// Characters below 2048 as UTF-8 bytes; characters from 2048 on are dropped.
std::string WideToUtf8(const std::u32string& text);

} // namespace velmora
