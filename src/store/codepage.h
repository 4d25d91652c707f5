#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace velmora {

// The one place where the bytes of a table meet the UTF-8 text of the rest of the program.
// Code pages go by their Windows numbers: 1252, 866, 28591 for ISO-8859-1 ... 28606 for
// ISO-8859-16, 20866 KOI8-R, 10000 Mac Roman, 65001 UTF-8; 932, 936, 949 and 950 go through
// the C library's iconv.

inline constexpr int kUtf8Page = 65001;

// Appends the text of `n` bytes in `page` to `out` as UTF-8. Bytes a single-byte page leaves
// undefined come back as characters that turn into the same bytes again.
void AppendDecoded(std::string& out, int page, const uint8_t* p, size_t n);
std::string DecodeText(int page, std::string_view bytes);
// UTF-8 text as bytes of `page`; a character the page lacks becomes "?".
std::string EncodeText(int page, std::string_view utf8);
// How many of the leading `width` bytes of `bytes` can stay without cutting a character in
// two (UTF-8 only; other pages: width).
size_t FitBytes(int page, std::string_view bytes, size_t width);

// The page a .cpg file names ("UTF-8", "1252", "CP1251", "ISO-8859-5", "88591", "OEM 866",
// "KOI8-R" ...); 0 when unknown.
int CodePageOfCpg(std::string_view text);
// The page of a dBase language-driver byte (header byte 29); 0 for none or unknown.
int CodePageOfLdid(uint8_t ldid);
// The text a .cpg beside a table holds for `page`, as other GIS programs read it.
std::string CpgTextOf(int page);
// True when `page` can be converted here.
bool KnownCodePage(int page);

} // namespace velmora
