#include "store/codepage.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <iconv.h>

#include "store/codepage_tables.h"

namespace velmora {

namespace {

const uint16_t* UpperHalf(int page) {
  const SingleBytePage* first = kSingleBytePages;
  const SingleBytePage* last = kSingleBytePages + kSingleBytePageCount;
  const SingleBytePage* it = std::lower_bound(
      first, last, page, [](const SingleBytePage& p, int n) { return p.Page < n; });
  return it != last && it->Page == page ? it->Upper : nullptr;
}

const char* IconvName(int page) {
  switch (page) {
  case 932:
    return "CP932";
  case 936:
    return "CP936";
  case 949:
    return "CP949";
  case 950:
    return "CP950";
  default:
    return nullptr;
  }
}

void AppendUtf8(std::string& out, uint32_t cp) {
  if (cp < 0x80) {
    out += char(cp);
  } else if (cp < 0x800) {
    out += char(0xC0 | (cp >> 6));
    out += char(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += char(0xE0 | (cp >> 12));
    out += char(0x80 | ((cp >> 6) & 0x3F));
    out += char(0x80 | (cp & 0x3F));
  } else {
    out += char(0xF0 | (cp >> 18));
    out += char(0x80 | ((cp >> 12) & 0x3F));
    out += char(0x80 | ((cp >> 6) & 0x3F));
    out += char(0x80 | (cp & 0x3F));
  }
}

// Length of the UTF-8 sequence starting at s[i], and its code point; a malformed byte is
// taken alone as U+FFFD.
size_t NextUtf8(std::string_view s, size_t i, uint32_t& cp) {
  auto b = uint8_t(s[i]);
  size_t len = b < 0x80 ? 1 : (b >> 5) == 6 ? 2 : (b >> 4) == 14 ? 3 : (b >> 3) == 30 ? 4 : 0;
  if (len == 0 || i + len > s.size()) {
    cp = 0xFFFD;
    return 1;
  }
  cp = len == 1 ? b : len == 2 ? (b & 0x1F) : len == 3 ? (b & 0x0F) : (b & 0x07);
  for (size_t k = 1; k < len; ++k) {
    auto c = uint8_t(s[i + k]);
    if ((c & 0xC0) != 0x80) {
      cp = 0xFFFD;
      return 1;
    }
    cp = (cp << 6) | (c & 0x3F);
  }
  return len;
}

// Converts through iconv; what it cannot take is replaced one unit at a time.
std::string Iconv(const char* to, const char* from, std::string_view in, bool toUtf8) {
  iconv_t cd = iconv_open(to, from);
  if (cd == iconv_t(-1)) return std::string(in);
  std::string out;
  out.resize(in.size() * 4 + 8);
  char* src = const_cast<char*>(in.data());
  size_t srcLeft = in.size();
  char* dst = out.data();
  size_t dstLeft = out.size();
  while (srcLeft > 0) {
    if (iconv(cd, &src, &srcLeft, &dst, &dstLeft) != size_t(-1)) break;
    if (errno == E2BIG) break; // cannot happen with four bytes a unit
    // One unit of the input that the other side lacks: a replacement for it.
    size_t skip = 1;
    if (!toUtf8) {
      uint32_t cp;
      skip = NextUtf8(std::string_view(src, srcLeft), 0, cp);
    }
    const char* rep = toUtf8 ? "\xEF\xBF\xBD" : "?";
    size_t repLen = toUtf8 ? 3 : 1;
    if (dstLeft < repLen) break;
    std::copy(rep, rep + repLen, dst);
    dst += repLen;
    dstLeft -= repLen;
    src += skip;
    srcLeft -= skip;
    iconv(cd, nullptr, nullptr, nullptr, nullptr);
  }
  iconv_close(cd);
  out.resize(out.size() - dstLeft);
  return out;
}

std::string UpperAlnum(std::string_view text) {
  std::string r;
  for (char c : text)
    if (std::isalnum(static_cast<unsigned char>(c)))
      r += char(std::toupper(static_cast<unsigned char>(c)));
  return r;
}

} // namespace

bool KnownCodePage(int page) {
  return page == kUtf8Page || UpperHalf(page) != nullptr || IconvName(page) != nullptr;
}

void AppendDecoded(std::string& out, int page, const uint8_t* p, size_t n) {
  size_t i = 0;
  // Plain ASCII runs, the usual case, go over unchanged.
  while (i < n && p[i] < 0x80) ++i;
  out.append(reinterpret_cast<const char*>(p), i);
  if (i == n) return;
  if (page == kUtf8Page) {
    out.append(reinterpret_cast<const char*>(p + i), n - i);
    return;
  }
  if (const uint16_t* upper = UpperHalf(page)) {
    for (; i < n; ++i) {
      if (p[i] < 0x80)
        out += char(p[i]);
      else
        AppendUtf8(out, upper[p[i] - 0x80]);
    }
    return;
  }
  std::string_view rest(reinterpret_cast<const char*>(p + i), n - i);
  if (const char* name = IconvName(page))
    out += Iconv("UTF-8", name, rest, true);
  else
    out.append(rest); // an unknown page: the bytes as they are
}

std::string DecodeText(int page, std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size());
  AppendDecoded(out, page, reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  return out;
}

std::string EncodeText(int page, std::string_view utf8) {
  if (page == kUtf8Page) return std::string(utf8);
  bool ascii = std::all_of(utf8.begin(), utf8.end(), [](char c) { return uint8_t(c) < 0x80; });
  if (ascii) return std::string(utf8);
  if (const char* name = IconvName(page)) return Iconv(name, "UTF-8", utf8, false);
  const uint16_t* upper = UpperHalf(page);
  if (!upper) return std::string(utf8);
  std::string out;
  out.reserve(utf8.size());
  for (size_t i = 0; i < utf8.size();) {
    uint32_t cp;
    i += NextUtf8(utf8, i, cp);
    if (cp < 0x80) {
      out += char(cp);
      continue;
    }
    char b = '?';
    if (cp != 0xFFFD)
      for (int k = 0; k < 128; ++k)
        if (upper[k] == cp) {
          b = char(0x80 + k);
          break;
        }
    out += b;
  }
  return out;
}

size_t FitBytes(int page, std::string_view bytes, size_t width) {
  if (bytes.size() <= width) return bytes.size();
  if (page != kUtf8Page) return width;
  size_t n = width;
  // Back off continuation bytes to the start of the character that would be cut.
  while (n > 0 && (uint8_t(bytes[n]) & 0xC0) == 0x80) --n;
  return n;
}

int CodePageOfCpg(std::string_view text) {
  std::string t = UpperAlnum(text);
  if (t.empty()) return 0;
  if (t == "UTF8" || t == "65001") return kUtf8Page;
  if (t == "KOI8R") return 20866;
  if (t == "KOI8U") return 21866;
  if (t == "MACROMAN" || t == "MACINTOSH") return 10000;
  if (t == "BIG5") return 950;
  if (t == "GBK" || t == "GB2312") return 936;
  if (t == "SJIS" || t == "SHIFTJIS") return 932;
  if (t == "EUCKR" || t == "UHC") return 949;
  if (t == "LATIN1") return 28591;
  // ISO-8859-n, also written 8859-n or 8859n.
  size_t iso = t.find("8859");
  if (iso != std::string::npos) {
    std::string part = t.substr(iso + 4);
    if (part.empty() || part.size() > 2 ||
        !std::all_of(part.begin(), part.end(), [](char c) { return std::isdigit(uint8_t(c)); }))
      return 0;
    int n = std::stoi(part);
    return n >= 1 && n <= 16 ? 28590 + n : 0;
  }
  // "1252", "CP1252", "WINDOWS-1252", "ANSI 1252", "OEM 866", "IBM866", "DOS-866".
  size_t d = t.find_first_of("0123456789");
  if (d == std::string::npos) return 0;
  std::string prefix = t.substr(0, d);
  std::string digits = t.substr(d);
  if (digits.size() > 5 ||
      !std::all_of(digits.begin(), digits.end(), [](char c) { return std::isdigit(uint8_t(c)); }))
    return 0;
  static constexpr std::string_view kPrefixes[] = {"",    "CP",  "WINDOWS", "ANSI",
                                                   "OEM", "IBM", "DOS",     "MS"};
  if (std::find(std::begin(kPrefixes), std::end(kPrefixes), prefix) == std::end(kPrefixes))
    return 0;
  return std::stoi(digits);
}

int CodePageOfLdid(uint8_t ldid) {
  switch (ldid) {
  case 0x01:
  case 0x09:
  case 0x0B:
  case 0x0D:
  case 0x0F:
  case 0x11:
  case 0x15:
  case 0x18:
  case 0x19:
  case 0x1B:
    return 437;
  case 0x02:
  case 0x0A:
  case 0x0E:
  case 0x10:
  case 0x12:
  case 0x14:
  case 0x16:
  case 0x1A:
  case 0x1D:
  case 0x25:
  case 0x37:
    return 850;
  case 0x03:
  case 0x58:
  case 0x59:
    return 1252;
  case 0x04:
    return 10000;
  case 0x08:
  case 0x17:
  case 0x66:
    return 865;
  case 0x13:
  case 0x7B:
    return 932;
  case 0x1C:
  case 0x6C:
    return 863;
  case 0x1F:
  case 0x22:
  case 0x23:
  case 0x40:
  case 0x64:
  case 0x87:
    return 852;
  case 0x24:
    return 860;
  case 0x26:
  case 0x65:
    return 866;
  case 0x4D:
  case 0x7A:
    return 936;
  case 0x4E:
  case 0x79:
    return 949;
  case 0x4F:
  case 0x78:
    return 950;
  case 0x50:
  case 0x7C:
    return 874;
  case 0x57:
    return 28591;
  case 0x67:
    return 861;
  case 0x6A:
  case 0x86:
    return 737;
  case 0x6B:
  case 0x88:
    return 857;
  case 0x7D:
    return 1255;
  case 0x7E:
    return 1256;
  case 0xC8:
    return 1250;
  case 0xC9:
    return 1251;
  case 0xCA:
    return 1254;
  case 0xCB:
    return 1253;
  case 0xCC:
    return 1257;
  default:
    return 0;
  }
}

std::string CpgTextOf(int page) {
  if (page == kUtf8Page) return "UTF-8";
  if (page >= 28591 && page <= 28606) return "ISO-8859-" + std::to_string(page - 28590);
  if (page == 20866) return "KOI8-R";
  if (page == 21866) return "KOI8-U";
  return std::to_string(page);
}

} // namespace velmora
