#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace vbs {

// Texts are UTF-8; the string functions count characters, as the language counts its
// 16-bit characters. A byte that starts no valid sequence counts as one character.

inline size_t U8Step(std::string_view s, size_t i) {
  unsigned char c = static_cast<unsigned char>(s[i]);
  size_t n = c >= 0xF0 && c < 0xF8 ? 4 : c >= 0xE0 ? 3 : c >= 0xC2 && c < 0xE0 ? 2 : 1;
  if (c >= 0xF8) n = 1;
  if (n == 1 || i + n > s.size()) return 1;
  for (size_t k = 1; k < n; ++k)
    if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80) return 1;
  return n;
}

inline size_t U8Len(std::string_view s) {
  size_t n = 0;
  for (size_t i = 0; i < s.size(); i += U8Step(s, i)) ++n;
  return n;
}

// The byte offset after `chars` characters (the end when there are fewer).
inline size_t U8Off(std::string_view s, size_t chars) {
  size_t i = 0;
  while (chars > 0 && i < s.size()) {
    i += U8Step(s, i);
    --chars;
  }
  return i;
}

// The characters before byte offset `off`.
inline size_t U8Chars(std::string_view s, size_t off) {
  return U8Len(s.substr(0, off));
}

inline uint32_t U8Decode(std::string_view s, size_t i) {
  size_t n = U8Step(s, i);
  unsigned char c = static_cast<unsigned char>(s[i]);
  if (n == 1) return c;
  uint32_t cp = c & (0x7F >> n);
  for (size_t k = 1; k < n; ++k) cp = (cp << 6) | (static_cast<unsigned char>(s[i + k]) & 0x3F);
  return cp;
}

inline std::string U8Encode(uint32_t cp) {
  std::string r;
  if (cp < 0x80) {
    r += static_cast<char>(cp);
  } else if (cp < 0x800) {
    r += static_cast<char>(0xC0 | (cp >> 6));
    r += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    r += static_cast<char>(0xE0 | (cp >> 12));
    r += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    r += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    r += static_cast<char>(0xF0 | (cp >> 18));
    r += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    r += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    r += static_cast<char>(0x80 | (cp & 0x3F));
  }
  return r;
}

} // namespace vbs
