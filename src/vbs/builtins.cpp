// The built-in functions and named constants.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <unordered_map>

#include "vbs/format.h"
#include "vbs/interp.h"
#include "vbs/utf8.h"

namespace vbs {

namespace {

using Args = std::span<Value*>;

bool Has(Args a, size_t i) {
  return a.size() > i && a[i]->t != VT::Error;
}
std::string S(Interp& in, const Value& v) {
  return v.t == VT::String ? v.s : in.Cv().ToStr(v);
}
int64_t L(Interp& in, const Value& v) {
  return in.Cv().ToLong(v);
}
double D(Interp& in, const Value& v) {
  return in.Cv().ToDouble(v);
}
bool AnyNull(Args a, size_t n) {
  for (size_t i = 0; i < std::min(n, a.size()); ++i)
    if (a[i]->t == VT::Null) return true;
  return false;
}
void CheckLen(int64_t n) {
  if (n < 0) Throw(5);
  if (static_cast<uint64_t>(n) > kMaxStringBytes) Throw(14);
}

Value MakeStrArray(std::vector<std::string> v) {
  auto a = std::make_shared<Array>();
  a->UBound.push_back(static_cast<int64_t>(v.size()) - 1);
  a->Data.reserve(v.size());
  for (auto& s : v) a->Data.push_back(Value::Str(std::move(s)));
  return Value::Arr(a);
}

size_t FindStr(const std::string& hay, const std::string& needle, size_t from, bool text) {
  if (!text) return hay.find(needle, from);
  return ToLower(hay).find(ToLower(needle), from);
}

// ---- strings
Value FLen(Interp& in, Args a) {
  if (a[0]->t == VT::Null) return Value::NullV();
  return Value::Lng(static_cast<int64_t>(U8Len(S(in, *a[0]))));
}
Value FLeft(Interp& in, Args a) {
  if (a[0]->t == VT::Null) return Value::NullV();
  int64_t n = L(in, *a[1]);
  if (n < 0) Throw(5);
  std::string s = S(in, *a[0]);
  return Value::Str(s.substr(0, U8Off(s, static_cast<size_t>(n))));
}
Value FRight(Interp& in, Args a) {
  if (a[0]->t == VT::Null) return Value::NullV();
  int64_t n = L(in, *a[1]);
  if (n < 0) Throw(5);
  std::string s = S(in, *a[0]);
  size_t total = U8Len(s);
  if (static_cast<size_t>(n) >= total) return Value::Str(s);
  return Value::Str(s.substr(U8Off(s, total - static_cast<size_t>(n))));
}
Value FMid(Interp& in, Args a) {
  if (a[0]->t == VT::Null) return Value::NullV();
  int64_t st = L(in, *a[1]);
  if (st < 1) Throw(5);
  std::string s = S(in, *a[0]);
  size_t b = U8Off(s, static_cast<size_t>(st - 1));
  if (b >= s.size()) return Value::Str("");
  if (!Has(a, 2)) return Value::Str(s.substr(b));
  int64_t k = L(in, *a[2]);
  if (k < 0) Throw(5);
  std::string_view rest(s.data() + b, s.size() - b);
  return Value::Str(std::string(rest.substr(0, U8Off(rest, static_cast<size_t>(k)))));
}
Value FInStr(Interp& in, Args a) {
  size_t off = 0;
  int64_t start = 1;
  if (a.size() >= 3) {
    if (a[0]->t == VT::Null) Throw(94);
    start = L(in, *a[0]);
    if (start < 1) Throw(5);
    off = 1;
  }
  if (a.size() < off + 2) Throw(450);
  if (a[off]->t == VT::Null || a[off + 1]->t == VT::Null) return Value::NullV();
  bool text = a.size() > off + 2 && Has(a, off + 2) && L(in, *a[off + 2]) == 1;
  std::string h = S(in, *a[off]), n = S(in, *a[off + 1]);
  if (static_cast<size_t>(start) > U8Len(h)) return Value::Lng(0);
  if (n.empty()) return Value::Lng(start);
  size_t p = FindStr(h, n, U8Off(h, static_cast<size_t>(start - 1)), text);
  return Value::Lng(p == std::string::npos ? 0 : static_cast<int64_t>(U8Chars(h, p)) + 1);
}
Value FInStrRev(Interp& in, Args a) {
  if (a[0]->t == VT::Null || a[1]->t == VT::Null) return Value::NullV();
  std::string h = S(in, *a[0]), n = S(in, *a[1]);
  int64_t start = Has(a, 2) ? L(in, *a[2]) : -1;
  if (start == 0 || start < -1) Throw(5);
  bool text = Has(a, 3) && L(in, *a[3]) == 1;
  int64_t total = static_cast<int64_t>(U8Len(h));
  if (start == -1) start = total;
  if (start > total) return Value::Lng(0);
  if (n.empty()) return Value::Lng(start);
  if (text) {
    h = ToLower(h);
    n = ToLower(n);
  }
  size_t limit = U8Off(h, static_cast<size_t>(start));
  if (n.size() > limit) return Value::Lng(0);
  size_t p = h.rfind(n, limit - n.size());
  return Value::Lng(p == std::string::npos ? 0 : static_cast<int64_t>(U8Chars(h, p)) + 1);
}
Value FReplace(Interp& in, Args a) {
  if (a[0]->t == VT::Null) return Value::NullV();
  if (a[1]->t == VT::Null || a[2]->t == VT::Null) Throw(94);
  std::string s = S(in, *a[0]), f = S(in, *a[1]), r = S(in, *a[2]);
  int64_t start = Has(a, 3) ? L(in, *a[3]) : 1;
  int64_t count = Has(a, 4) ? L(in, *a[4]) : -1;
  bool text = Has(a, 5) && L(in, *a[5]) == 1;
  if (start < 1 || count < -1) Throw(5);
  if (static_cast<size_t>(start) > U8Len(s)) return Value::Str("");
  s = s.substr(U8Off(s, static_cast<size_t>(start - 1)));
  if (f.empty() || count == 0) return Value::Str(s);
  std::string out;
  std::string ls = text ? ToLower(s) : std::string();
  std::string lf = text ? ToLower(f) : std::string();
  size_t pos = 0;
  int64_t done = 0;
  for (;;) {
    size_t p = text ? ls.find(lf, pos) : s.find(f, pos);
    if (p == std::string::npos || (count >= 0 && done >= count)) break;
    out.append(s, pos, p - pos);
    out += r;
    if (out.size() > kMaxStringBytes) Throw(14);
    pos = p + f.size();
    ++done;
  }
  out.append(s, pos, std::string::npos);
  return Value::Str(std::move(out));
}
Value FSplit(Interp& in, Args a) {
  if (a[0]->t == VT::Null) Throw(94);
  std::string s = S(in, *a[0]);
  std::string d = Has(a, 1) ? S(in, *a[1]) : " ";
  int64_t count = Has(a, 2) ? L(in, *a[2]) : -1;
  bool text = Has(a, 3) && L(in, *a[3]) == 1;
  std::vector<std::string> parts;
  if (s.empty()) return MakeStrArray(parts);
  if (d.empty() || count == 1) return MakeStrArray({s});
  size_t pos = 0;
  for (;;) {
    if (count > 0 && static_cast<int64_t>(parts.size()) == count - 1) break;
    size_t p = FindStr(s, d, pos, text);
    if (p == std::string::npos) break;
    parts.push_back(s.substr(pos, p - pos));
    pos = p + d.size();
  }
  parts.push_back(s.substr(pos));
  return MakeStrArray(std::move(parts));
}
Value FJoin(Interp& in, Args a) {
  if (a[0]->t != VT::Array) Throw(13);
  std::string d = Has(a, 1) ? S(in, *a[1]) : " ";
  std::string r;
  bool first = true;
  for (Value& v : a[0]->arr->Data) {
    if (!first) r += d;
    first = false;
    r += v.t == VT::Null ? "" : S(in, v);
    if (r.size() > kMaxStringBytes) Throw(14);
  }
  return Value::Str(std::move(r));
}
Value FFilter(Interp& in, Args a) {
  if (a[0]->t != VT::Array || a[0]->arr->UBound.size() != 1) Throw(13);
  std::string m = S(in, *a[1]);
  bool include = Has(a, 2) ? in.Cv().ToBool(*a[2]) : true;
  bool text = Has(a, 3) && L(in, *a[3]) == 1;
  std::vector<std::string> out;
  for (Value& v : a[0]->arr->Data) {
    std::string s = v.t == VT::Null ? "" : S(in, v);
    bool hit = FindStr(s, m, 0, text) != std::string::npos;
    if (hit == include) out.push_back(s);
  }
  return MakeStrArray(std::move(out));
}
Value Trimmed(Interp& in, Args a, bool left, bool right) {
  if (a[0]->t == VT::Null) return Value::NullV();
  std::string s = S(in, *a[0]);
  size_t b = 0, e = s.size();
  if (left)
    while (b < e && s[b] == ' ') ++b;
  if (right)
    while (e > b && s[e - 1] == ' ') --e;
  return Value::Str(s.substr(b, e - b));
}
Value FTrim(Interp& in, Args a) {
  return Trimmed(in, a, true, true);
}
Value FLTrim(Interp& in, Args a) {
  return Trimmed(in, a, true, false);
}
Value FRTrim(Interp& in, Args a) {
  return Trimmed(in, a, false, true);
}
Value FUCase(Interp& in, Args a) {
  if (a[0]->t == VT::Null) return Value::NullV();
  std::string s = S(in, *a[0]);
  for (char& c : s)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return Value::Str(std::move(s));
}
Value FLCase(Interp& in, Args a) {
  if (a[0]->t == VT::Null) return Value::NullV();
  return Value::Str(ToLower(S(in, *a[0])));
}
Value FStrComp(Interp& in, Args a) {
  if (AnyNull(a, 2)) return Value::NullV();
  bool text = Has(a, 2) && L(in, *a[2]) == 1;
  std::string x = S(in, *a[0]), y = S(in, *a[1]);
  if (text) {
    x = ToLower(x);
    y = ToLower(y);
  }
  int r = x.compare(y);
  return Value::Int(r < 0 ? -1 : r > 0 ? 1 : 0);
}
Value FStrReverse(Interp& in, Args a) {
  if (a[0]->t == VT::Null) Throw(94);
  std::string s = S(in, *a[0]), r;
  r.reserve(s.size());
  for (size_t i = 0; i < s.size();) {
    size_t n = U8Step(s, i);
    r.insert(0, s, i, n);
    i += n;
  }
  return Value::Str(std::move(r));
}
Value FString(Interp& in, Args a) {
  if (AnyNull(a, 2)) return Value::NullV();
  int64_t n = L(in, *a[0]);
  std::string c;
  if (a[1]->t == VT::String) {
    if (a[1]->s.empty()) Throw(5);
    c = a[1]->s.substr(0, U8Step(a[1]->s, 0));
  } else {
    int64_t code = L(in, *a[1]) & 0xFF;
    c = code < 0x80 ? std::string(1, static_cast<char>(code))
                    : U8Encode(static_cast<uint32_t>(code));
  }
  CheckLen(n * static_cast<int64_t>(c.size()));
  std::string r;
  r.reserve(static_cast<size_t>(n) * c.size());
  for (int64_t i = 0; i < n; ++i) r += c;
  return Value::Str(std::move(r));
}
Value FSpace(Interp& in, Args a) {
  int64_t n = L(in, *a[0]);
  CheckLen(n);
  return Value::Str(std::string(static_cast<size_t>(n), ' '));
}
Value FAsc(Interp& in, Args a) {
  std::string s = S(in, *a[0]);
  if (s.empty()) Throw(5);
  uint32_t cp = U8Decode(s, 0);
  return Value::Int(cp < 256 ? cp : 63); // outside the code page: '?'
}
Value FAscW(Interp& in, Args a) {
  std::string s = S(in, *a[0]);
  if (s.empty()) Throw(5);
  unsigned char c0 = static_cast<unsigned char>(s[0]);
  // a UTF-8 sequence gives its code point
  if (c0 >= 0xC0 && s.size() >= 2) {
    int n = c0 >= 0xF0 ? 3 : c0 >= 0xE0 ? 2 : 1;
    if (s.size() > static_cast<size_t>(n)) {
      uint32_t cp = c0 & (0x3F >> n);
      bool ok = true;
      for (int k = 1; k <= n; ++k) {
        unsigned char ck = static_cast<unsigned char>(s[k]);
        if ((ck & 0xC0) != 0x80) ok = false;
        cp = (cp << 6) | (ck & 0x3F);
      }
      if (ok) return cp > 32767 ? Value::Lng(cp) : Value::Int(cp);
    }
  }
  return Value::Int(c0);
}
Value FChr(Interp& in, Args a) {
  int64_t n = L(in, *a[0]);
  if (n < 0 || n > 255) Throw(5);
  if (n < 0x80) return Value::Str(std::string(1, static_cast<char>(n)));
  return Value::Str(U8Encode(static_cast<uint32_t>(n)));
}
Value FChrW(Interp& in, Args a) {
  int64_t n = L(in, *a[0]);
  if (n < -32768 || n > 65535) Throw(5);
  if (n < 0) n += 65536;
  if (n < 0x80) return Value::Str(std::string(1, static_cast<char>(n)));
  return Value::Str(U8Encode(static_cast<uint32_t>(n)));
}

// ---- numbers
Value KeepType(VT t, double v) {
  switch (t) {
  case VT::Integer:
    return Value::Int(static_cast<int64_t>(v));
  case VT::Long:
    return Value::Lng(static_cast<int64_t>(v));
  case VT::Byte:
    return Value::Byt(static_cast<int64_t>(v));
  case VT::Single:
    return Value::Sng(v);
  case VT::Currency:
    return Value::Cur(static_cast<int64_t>(v * 10000));
  case VT::Date:
    return Value::Dat(v);
  default:
    return Value::Dbl(v);
  }
}
Value FAbs(Interp& in, Args a) {
  if (a[0]->t == VT::Null) return Value::NullV();
  Value x = in.Cv().ToNumeric(*a[0]);
  if (x.t == VT::Integer && x.i == -32768) return Value::Lng(32768);
  if (x.t == VT::Long && x.i == -2147483648LL) return Value::Dbl(2147483648.0);
  if (x.t == VT::Currency) return Value::Cur(x.i < 0 ? -x.i : x.i);
  return KeepType(x.t == VT::Date ? VT::Double : x.t, std::fabs(D(in, x)));
}
Value FSgn(Interp& in, Args a) {
  if (a[0]->t == VT::Null) return Value::NullV();
  double d = D(in, *a[0]);
  return Value::Int(d > 0 ? 1 : d < 0 ? -1 : 0);
}
Value FInt(Interp& in, Args a) {
  if (a[0]->t == VT::Null) return Value::NullV();
  Value x = in.Cv().ToNumeric(*a[0]);
  if (x.t == VT::Currency)
    return Value::Cur(static_cast<int64_t>(std::floor(x.i / 10000.0)) * 10000);
  return KeepType(x.t, std::floor(D(in, x)));
}
Value FFix(Interp& in, Args a) {
  if (a[0]->t == VT::Null) return Value::NullV();
  Value x = in.Cv().ToNumeric(*a[0]);
  if (x.t == VT::Currency) return Value::Cur(x.i / 10000 * 10000);
  return KeepType(x.t, std::trunc(D(in, x)));
}
Value FRound(Interp& in, Args a) {
  if (a[0]->t == VT::Null) return Value::NullV();
  Value x = in.Cv().ToNumeric(*a[0]);
  int64_t n = Has(a, 1) ? L(in, *a[1]) : 0;
  if (n < 0) Throw(5);
  if (x.t == VT::Integer || x.t == VT::Long || x.t == VT::Byte) return x;
  double v = D(in, x);
  double r;
  if (n == 0) {
    r = RoundEven(v);
  } else {
    double p = std::pow(10.0, static_cast<double>(std::min<int64_t>(n, 22)));
    double scaled = v * p;
    // take the decimal text's view of the value so 2.675 rounds as written
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.15g", scaled);
    scaled = std::strtod(buf, nullptr);
    r = RoundEven(scaled) / p;
  }
  return KeepType(x.t, r);
}
Value FSqr(Interp& in, Args a) {
  double d = D(in, *a[0]);
  if (d < 0) Throw(5);
  return Value::Dbl(std::sqrt(d));
}
Value FExp(Interp& in, Args a) {
  double v = std::exp(D(in, *a[0]));
  if (!std::isfinite(v)) Throw(6);
  return Value::Dbl(v);
}
Value FLog(Interp& in, Args a) {
  double d = D(in, *a[0]);
  if (d <= 0) Throw(5);
  return Value::Dbl(std::log(d));
}
Value FSin(Interp& in, Args a) {
  return Value::Dbl(std::sin(D(in, *a[0])));
}
Value FCos(Interp& in, Args a) {
  return Value::Dbl(std::cos(D(in, *a[0])));
}
Value FTan(Interp& in, Args a) {
  return Value::Dbl(std::tan(D(in, *a[0])));
}
Value FAtn(Interp& in, Args a) {
  return Value::Dbl(std::atan(D(in, *a[0])));
}
Value FRnd(Interp& in, Args a) {
  return Value::Sng(in.RndNext(Has(a, 0) ? D(in, *a[0]) : 1.0));
}
Value FRandomize(Interp& in, Args a) {
  in.Randomize(Has(a, 0) ? D(in, *a[0]) : 0, !Has(a, 0));
  return Value();
}
Value Radix(Interp& in, Args a, int base) {
  if (a[0]->t == VT::Null) return Value::NullV();
  Value x = in.Cv().ToNumeric(*a[0]);
  int64_t v = L(in, x);
  uint64_t u =
      v >= 0 ? static_cast<uint64_t>(v)
             : (x.t == VT::Integer || x.t == VT::Byte ? static_cast<uint64_t>(v & 0xFFFF)
                                                      : static_cast<uint64_t>(v & 0xFFFFFFFFLL));
  char buf[32];
  std::snprintf(buf, sizeof buf, base == 16 ? "%llX" : "%llo", static_cast<unsigned long long>(u));
  return Value::Str(buf);
}
Value FHex(Interp& in, Args a) {
  return Radix(in, a, 16);
}
Value FOct(Interp& in, Args a) {
  return Radix(in, a, 8);
}

// ---- conversions
Value FCBool(Interp& in, Args a) {
  return Value::Bool(in.Cv().ToBool(*a[0]));
}
Value FCByte(Interp& in, Args a) {
  int64_t v = L(in, *a[0]);
  if (v < 0 || v > 255) Throw(6);
  return Value::Byt(v);
}
Value FCInt(Interp& in, Args a) {
  return Value::Int(in.Cv().ToInteger(*a[0]));
}
Value FCLng(Interp& in, Args a) {
  return Value::Lng(L(in, *a[0]));
}
Value FCSng(Interp& in, Args a) {
  double d = D(in, *a[0]);
  if (std::fabs(d) > 3.402823466e38) Throw(6);
  return Value::Sng(d);
}
Value FCDbl(Interp& in, Args a) {
  return Value::Dbl(D(in, *a[0]));
}
Value FCCur(Interp& in, Args a) {
  double d = D(in, *a[0]) * 10000.0;
  if (std::fabs(d) > 9.2e18) Throw(6);
  return Value::Cur(static_cast<int64_t>(RoundEven(d)));
}
Value FCDate(Interp& in, Args a) {
  if (a[0]->t == VT::Null) Throw(94);
  return Value::Dat(in.Cv().ToDate(*a[0]));
}
Value FCStr(Interp& in, Args a) {
  return Value::Str(S(in, *a[0]));
}

// ---- tests
Value FIsArray(Interp&, Args a) {
  return Value::Bool(a[0]->t == VT::Array);
}
Value FIsDate(Interp&, Args a) {
  if (a[0]->t == VT::Date) return Value::Bool(true);
  double d;
  return Value::Bool(a[0]->t == VT::String && ParseDateText(a[0]->s, d));
}
Value FIsEmpty(Interp&, Args a) {
  return Value::Bool(a[0]->t == VT::Empty);
}
Value FIsNull(Interp&, Args a) {
  return Value::Bool(a[0]->t == VT::Null);
}
Value FIsObject(Interp&, Args a) {
  return Value::Bool(a[0]->t == VT::Object);
}
Value FIsNumeric(Interp& in, Args a) {
  const Value& v = *a[0];
  switch (v.t) {
  case VT::Integer:
  case VT::Long:
  case VT::Single:
  case VT::Double:
  case VT::Currency:
  case VT::Byte:
  case VT::Boolean:
  case VT::Empty:
    return Value::Bool(true);
  case VT::String: {
    double d;
    return Value::Bool(in.Cv().ParseNumber(v.s, d));
  }
  default:
    return Value::Bool(false);
  }
}
Value FVarType(Interp&, Args a) {
  return Value::Int(VarTypeOf(*a[0]));
}
Value FTypeName(Interp&, Args a) {
  return Value::Str(TypeNameOf(*a[0]));
}

// ---- dates
double NowSerial() {
  std::time_t t = std::time(nullptr);
  std::tm tm{};
  localtime_r(&t, &tm);
  return DateFromYmd(tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday) +
         (tm.tm_hour * 3600 + tm.tm_min * 60 + tm.tm_sec) / 86400.0;
}
double DateArg(Interp& in, const Value& v) {
  if (v.t == VT::Null) Throw(94);
  return in.Cv().ToDate(v);
}
Value FNow(Interp&, Args) {
  return Value::Dat(NowSerial());
}
Value FDate(Interp&, Args) {
  return Value::Dat(std::floor(NowSerial()));
}
Value FTime(Interp&, Args) {
  double n = NowSerial();
  return Value::Dat(n - std::floor(n));
}
Value FTimer(Interp&, Args) {
  double n = NowSerial();
  return Value::Sng((n - std::floor(n)) * 86400.0);
}
Value FDateSerial(Interp& in, Args a) {
  int64_t y = L(in, *a[0]), m = L(in, *a[1]), d = L(in, *a[2]);
  if (y >= 0 && y < 100) y += y < 30 ? 2000 : 1900;
  double r = DateFromYmd(y, m, d);
  if (r < -657434 || r > 2958465) Throw(5);
  return Value::Dat(r);
}
Value FTimeSerial(Interp& in, Args a) {
  double s = static_cast<double>(L(in, *a[0]) * 3600 + L(in, *a[1]) * 60 + L(in, *a[2]));
  return Value::Dat(s / 86400.0);
}
Value FDateValue(Interp& in, Args a) {
  double d = DateArg(in, *a[0]);
  return Value::Dat(std::trunc(d));
}
Value FTimeValue(Interp& in, Args a) {
  double d = DateArg(in, *a[0]);
  return Value::Dat(std::fabs(d - std::trunc(d)));
}
Value DatePiece(Interp& in, Args a, int which) {
  if (a[0]->t == VT::Null) return Value::NullV();
  double d = DateArg(in, *a[0]);
  int y, m, dd, h, n, s;
  YmdFromDate(d, y, m, dd);
  HmsFromDate(d, h, n, s);
  int v[] = {y, m, dd, h, n, s};
  return Value::Int(v[which]);
}
Value FYear(Interp& in, Args a) {
  return DatePiece(in, a, 0);
}
Value FMonth(Interp& in, Args a) {
  return DatePiece(in, a, 1);
}
Value FDay(Interp& in, Args a) {
  return DatePiece(in, a, 2);
}
Value FHour(Interp& in, Args a) {
  return DatePiece(in, a, 3);
}
Value FMinute(Interp& in, Args a) {
  return DatePiece(in, a, 4);
}
Value FSecond(Interp& in, Args a) {
  return DatePiece(in, a, 5);
}
int WeekdayOf(double serial, int first) {
  int64_t day = static_cast<int64_t>(std::floor(serial));
  int wd = static_cast<int>(((day % 7) + 7 + 6) % 7) + 1; // 1 Sunday
  if (first < 1) first = 1;
  return ((wd - first + 7) % 7) + 1;
}
Value FWeekday(Interp& in, Args a) {
  if (a[0]->t == VT::Null) return Value::NullV();
  return Value::Int(WeekdayOf(DateArg(in, *a[0]), Has(a, 1) ? static_cast<int>(L(in, *a[1])) : 1));
}
Value FWeekdayName(Interp& in, Args a) {
  int64_t n = L(in, *a[0]);
  bool abbr = Has(a, 1) && in.Cv().ToBool(*a[1]);
  int64_t first = Has(a, 2) ? L(in, *a[2]) : 1;
  if (n < 1 || n > 7 || first < 0 || first > 7) Throw(5);
  if (first == 0) first = 1;
  int idx = static_cast<int>((n - 1 + first - 1) % 7);
  return Value::Str(WeekdayText(idx, abbr));
}
Value FMonthName(Interp& in, Args a) {
  int64_t n = L(in, *a[0]);
  if (n < 1 || n > 12) Throw(5);
  return Value::Str(MonthText(static_cast<int>(n) - 1, Has(a, 1) && in.Cv().ToBool(*a[1])));
}
double AddMonths(double d, int64_t months) {
  int y, m, dd;
  YmdFromDate(d, y, m, dd);
  int64_t tm = (y * 12LL + (m - 1)) + months;
  int64_t ny = tm >= 0 ? tm / 12 : -((11 - tm) / 12);
  int nm = static_cast<int>(tm - ny * 12) + 1;
  double first = DateFromYmd(ny, nm, 1);
  double next = DateFromYmd(ny, nm + 1, 1);
  int dim = static_cast<int>(next - first);
  double frac = d - std::trunc(d);
  return first + std::min(dd, dim) - 1 + frac;
}
Value FDateAdd(Interp& in, Args a) {
  std::string iv = ToLower(S(in, *a[0]));
  double n = D(in, *a[1]);
  if (a[2]->t == VT::Null) return Value::NullV();
  double d = DateArg(in, *a[2]);
  int64_t k = static_cast<int64_t>(std::trunc(n));
  double r;
  if (iv == "yyyy")
    r = AddMonths(d, k * 12);
  else if (iv == "q")
    r = AddMonths(d, k * 3);
  else if (iv == "m")
    r = AddMonths(d, k);
  else if (iv == "d" || iv == "y" || iv == "w")
    r = d + static_cast<double>(k);
  else if (iv == "ww")
    r = d + 7.0 * static_cast<double>(k);
  else if (iv == "h")
    r = d + static_cast<double>(k) / 24.0;
  else if (iv == "n")
    r = d + static_cast<double>(k) / 1440.0;
  else if (iv == "s")
    r = d + static_cast<double>(k) / 86400.0;
  else
    Throw(5);
  if (r < -657434 || r > 2958466) Throw(5);
  return Value::Dat(r);
}
Value FDateDiff(Interp& in, Args a) {
  std::string iv = ToLower(S(in, *a[0]));
  if (a[1]->t == VT::Null || a[2]->t == VT::Null) return Value::NullV();
  double d1 = DateArg(in, *a[1]), d2 = DateArg(in, *a[2]);
  int y1, m1, dd1, y2, m2, dd2;
  YmdFromDate(d1, y1, m1, dd1);
  YmdFromDate(d2, y2, m2, dd2);
  int64_t r;
  auto secs = [](double d) { return static_cast<int64_t>(std::llround(d * 86400.0)); };
  if (iv == "yyyy")
    r = y2 - y1;
  else if (iv == "q")
    r = (y2 * 4 + (m2 - 1) / 3) - (y1 * 4 + (m1 - 1) / 3);
  else if (iv == "m")
    r = (y2 * 12 + m2) - (y1 * 12 + m1);
  else if (iv == "d" || iv == "y")
    r = static_cast<int64_t>(std::floor(d2) - std::floor(d1));
  else if (iv == "w")
    r = static_cast<int64_t>(std::floor(d2) - std::floor(d1)) / 7;
  else if (iv == "ww") {
    int first = Has(a, 3) ? static_cast<int>(L(in, *a[3])) : 1;
    auto weekStart = [&](double d) { return std::floor(d) - (WeekdayOf(d, first) - 1); };
    r = static_cast<int64_t>(weekStart(d2) - weekStart(d1)) / 7;
  } else if (iv == "h")
    r = secs(d2) / 3600 - secs(d1) / 3600;
  else if (iv == "n")
    r = secs(d2) / 60 - secs(d1) / 60;
  else if (iv == "s")
    r = secs(d2) - secs(d1);
  else
    Throw(5);
  return Value::Lng(r);
}
Value FDatePart(Interp& in, Args a) {
  std::string iv = ToLower(S(in, *a[0]));
  if (a[1]->t == VT::Null) return Value::NullV();
  double d = DateArg(in, *a[1]);
  int first = Has(a, 2) ? static_cast<int>(L(in, *a[2])) : 1;
  int y, m, dd, h, n, s;
  YmdFromDate(d, y, m, dd);
  HmsFromDate(d, h, n, s);
  if (iv == "yyyy") return Value::Int(y);
  if (iv == "q") return Value::Int((m - 1) / 3 + 1);
  if (iv == "m") return Value::Int(m);
  if (iv == "y") return Value::Int(static_cast<int64_t>(std::floor(d) - DateFromYmd(y, 1, 1)) + 1);
  if (iv == "d") return Value::Int(dd);
  if (iv == "w") return Value::Int(WeekdayOf(d, first));
  if (iv == "ww") {
    double jan1 = DateFromYmd(y, 1, 1);
    double ws = jan1 - (WeekdayOf(jan1, first) - 1);
    return Value::Int(static_cast<int64_t>(std::floor(d) - ws) / 7 + 1);
  }
  if (iv == "h") return Value::Int(h);
  if (iv == "n") return Value::Int(n);
  if (iv == "s") return Value::Int(s);
  Throw(5);
}

// ---- formatting
int Tri(Interp& in, Args a, size_t i) {
  return Has(a, i) ? static_cast<int>(L(in, *a[i])) : -2;
}
Value FFormatNumber(Interp& in, Args a) {
  if (a[0]->t == VT::Null) Throw(13);
  int digits = Has(a, 1) ? static_cast<int>(L(in, *a[1])) : -1;
  return Value::Str(
      FormatNum(in.Cv(), D(in, *a[0]), digits, Tri(in, a, 2), Tri(in, a, 3), Tri(in, a, 4), 0));
}
Value FFormatCurrency(Interp& in, Args a) {
  if (a[0]->t == VT::Null) Throw(13);
  int digits = Has(a, 1) ? static_cast<int>(L(in, *a[1])) : -1;
  return Value::Str(
      FormatNum(in.Cv(), D(in, *a[0]), digits, Tri(in, a, 2), Tri(in, a, 3), Tri(in, a, 4), 1));
}
Value FFormatPercent(Interp& in, Args a) {
  if (a[0]->t == VT::Null) Throw(13);
  int digits = Has(a, 1) ? static_cast<int>(L(in, *a[1])) : -1;
  return Value::Str(FormatNum(in.Cv(), D(in, *a[0]) * 100.0, digits, Tri(in, a, 2), Tri(in, a, 3),
                              Tri(in, a, 4), 2));
}
Value FFormatDateTime(Interp& in, Args a) {
  if (a[0]->t == VT::Null) Throw(13);
  return Value::Str(FormatDate(DateArg(in, *a[0]), Has(a, 1) ? static_cast<int>(L(in, *a[1])) : 0));
}

// ---- arrays
Value FArray(Interp&, Args a) {
  auto arr = std::make_shared<Array>();
  arr->UBound.push_back(static_cast<int64_t>(a.size()) - 1);
  for (Value* v : a) arr->Data.push_back(*v);
  return Value::Arr(arr);
}
Value Bound(Interp& in, Args a, bool upper) {
  if (a[0]->t != VT::Array) Throw(13);
  Array& arr = *a[0]->arr;
  int64_t dim = Has(a, 1) ? L(in, *a[1]) : 1;
  if (dim < 1 || dim > static_cast<int64_t>(arr.UBound.size())) Throw(9);
  return Value::Lng(upper ? arr.UBound[static_cast<size_t>(dim - 1)] : 0);
}
Value FUBound(Interp& in, Args a) {
  return Bound(in, a, true);
}
Value FLBound(Interp& in, Args a) {
  return Bound(in, a, false);
}

// ---- the host, the engine
Value FMsgBox(Interp& in, Args a) {
  std::string p = a[0]->t == VT::Null ? "" : S(in, *a[0]);
  int b = Has(a, 1) ? static_cast<int>(L(in, *a[1])) : 0;
  std::string t = Has(a, 2) ? S(in, *a[2]) : "";
  return Value::Int(in.Host().MsgBox(p, b, t));
}
Value FInputBox(Interp& in, Args a) {
  std::string p = S(in, *a[0]);
  std::string t = Has(a, 1) ? S(in, *a[1]) : "";
  std::string d = Has(a, 2) ? S(in, *a[2]) : "";
  bool cancelled = false;
  std::string r = in.Host().InputBox(p, t, d, cancelled);
  return Value::Str(cancelled ? "" : r);
}
Value FExecute(Interp& in, Args a) {
  in.RunText(S(in, *a[0]), false);
  return Value();
}
Value FExecuteGlobal(Interp& in, Args a) {
  in.RunText(S(in, *a[0]), true);
  return Value();
}
Value FEval(Interp& in, Args a) {
  return in.EvalText(S(in, *a[0]));
}
Value FGetRef(Interp& in, Args a) {
  Proc* p = in.FindProc(ToLower(S(in, *a[0])));
  if (!p) Throw(5);
  return Value::Obj(NewProcRef(p));
}
Value FCreateObject(Interp& in, Args a) {
  std::string id = ToLower(S(in, *a[0]));
  if (id == "scripting.dictionary") return Value::Obj(NewDictionary());
  if (id == "vbscript.regexp") return Value::Obj(NewRegExp());
  Error e;
  e.Number = 429;
  e.Description = ErrorText(429) + ": '" + S(in, *a[0]) + "'";
  throw e;
}
Value FErr(Interp& in, Args) {
  return Value::Obj(in.ErrObject());
}
Value FRGB(Interp& in, Args a) {
  auto c = [&](int i) { return std::clamp<int64_t>(L(in, *a[i]), 0, 255); };
  return Value::Lng(c(0) | (c(1) << 8) | (c(2) << 16));
}
Value FScriptEngine(Interp&, Args) {
  return Value::Str("VBScript");
}
Value FLenB(Interp& in, Args a) {
  if (a[0]->t == VT::Null) return Value::NullV();
  return Value::Lng(static_cast<int64_t>(S(in, *a[0]).size()) * 2);
}

constexpr int kMany = 1 << 20;

const BuiltinInfo kBuiltins[] = {
    {"len", FLen, 1, 1},
    {"lenb", FLenB, 1, 1},
    {"left", FLeft, 2, 2},
    {"right", FRight, 2, 2},
    {"mid", FMid, 2, 3},
    {"instr", FInStr, 2, 4},
    {"instrrev", FInStrRev, 2, 4},
    {"replace", FReplace, 3, 6},
    {"split", FSplit, 1, 4},
    {"join", FJoin, 1, 2},
    {"filter", FFilter, 2, 4},
    {"trim", FTrim, 1, 1},
    {"ltrim", FLTrim, 1, 1},
    {"rtrim", FRTrim, 1, 1},
    {"ucase", FUCase, 1, 1},
    {"lcase", FLCase, 1, 1},
    {"strcomp", FStrComp, 2, 3},
    {"strreverse", FStrReverse, 1, 1},
    {"string", FString, 2, 2},
    {"space", FSpace, 1, 1},
    {"asc", FAsc, 1, 1},
    {"ascb", FAsc, 1, 1},
    {"ascw", FAscW, 1, 1},
    {"chr", FChr, 1, 1},
    {"chrb", FChr, 1, 1},
    {"chrw", FChrW, 1, 1},
    {"abs", FAbs, 1, 1},
    {"sgn", FSgn, 1, 1},
    {"int", FInt, 1, 1},
    {"fix", FFix, 1, 1},
    {"round", FRound, 1, 2},
    {"sqr", FSqr, 1, 1},
    {"exp", FExp, 1, 1},
    {"log", FLog, 1, 1},
    {"sin", FSin, 1, 1},
    {"cos", FCos, 1, 1},
    {"tan", FTan, 1, 1},
    {"atn", FAtn, 1, 1},
    {"rnd", FRnd, 0, 1},
    {"randomize", FRandomize, 0, 1},
    {"hex", FHex, 1, 1},
    {"oct", FOct, 1, 1},
    {"cbool", FCBool, 1, 1},
    {"cbyte", FCByte, 1, 1},
    {"cint", FCInt, 1, 1},
    {"clng", FCLng, 1, 1},
    {"csng", FCSng, 1, 1},
    {"cdbl", FCDbl, 1, 1},
    {"ccur", FCCur, 1, 1},
    {"cdate", FCDate, 1, 1},
    {"cstr", FCStr, 1, 1},
    {"isarray", FIsArray, 1, 1},
    {"isdate", FIsDate, 1, 1},
    {"isempty", FIsEmpty, 1, 1},
    {"isnull", FIsNull, 1, 1},
    {"isnumeric", FIsNumeric, 1, 1},
    {"isobject", FIsObject, 1, 1},
    {"vartype", FVarType, 1, 1},
    {"typename", FTypeName, 1, 1},
    {"now", FNow, 0, 0},
    {"date", FDate, 0, 0},
    {"time", FTime, 0, 0},
    {"timer", FTimer, 0, 0},
    {"dateserial", FDateSerial, 3, 3},
    {"timeserial", FTimeSerial, 3, 3},
    {"datevalue", FDateValue, 1, 1},
    {"timevalue", FTimeValue, 1, 1},
    {"year", FYear, 1, 1},
    {"month", FMonth, 1, 1},
    {"day", FDay, 1, 1},
    {"hour", FHour, 1, 1},
    {"minute", FMinute, 1, 1},
    {"second", FSecond, 1, 1},
    {"weekday", FWeekday, 1, 2},
    {"weekdayname", FWeekdayName, 1, 3},
    {"monthname", FMonthName, 1, 2},
    {"dateadd", FDateAdd, 3, 3},
    {"datediff", FDateDiff, 3, 5},
    {"datepart", FDatePart, 2, 4},
    {"formatnumber", FFormatNumber, 1, 5},
    {"formatcurrency", FFormatCurrency, 1, 5},
    {"formatpercent", FFormatPercent, 1, 5},
    {"formatdatetime", FFormatDateTime, 1, 2},
    {"array", FArray, 0, kMany},
    {"ubound", FUBound, 1, 2},
    {"lbound", FLBound, 1, 2},
    {"msgbox", FMsgBox, 1, 5},
    {"inputbox", FInputBox, 1, 7},
    {"execute", FExecute, 1, 1},
    {"executeglobal", FExecuteGlobal, 1, 1},
    {"eval", FEval, 1, 1},
    {"getref", FGetRef, 1, 1},
    {"createobject", FCreateObject, 1, 2},
    {"err", FErr, 0, 0},
    {"rgb", FRGB, 3, 3},
    {"scriptengine", FScriptEngine, 0, 0},
};

struct NamedConst {
  const char* name;
  int kind; // 0 number, 1 text
  int64_t num;
  const char* text;
};

const NamedConst kConsts[] = {
    {"vbcrlf", 1, 0, "\r\n"},
    {"vbnewline", 1, 0, "\r\n"},
    {"vbcr", 1, 0, "\r"},
    {"vblf", 1, 0, "\n"},
    {"vbtab", 1, 0, "\t"},
    {"vbnullstring", 1, 0, ""},
    {"vbformfeed", 1, 0, "\f"},
    {"vbverticaltab", 1, 0, "\v"},
    {"vbokonly", 0, 0, nullptr},
    {"vbokcancel", 0, 1, nullptr},
    {"vbabortretryignore", 0, 2, nullptr},
    {"vbyesnocancel", 0, 3, nullptr},
    {"vbyesno", 0, 4, nullptr},
    {"vbretrycancel", 0, 5, nullptr},
    {"vbcritical", 0, 16, nullptr},
    {"vbquestion", 0, 32, nullptr},
    {"vbexclamation", 0, 48, nullptr},
    {"vbinformation", 0, 64, nullptr},
    {"vbdefaultbutton1", 0, 0, nullptr},
    {"vbdefaultbutton2", 0, 256, nullptr},
    {"vbdefaultbutton3", 0, 512, nullptr},
    {"vbok", 0, 1, nullptr},
    {"vbcancel", 0, 2, nullptr},
    {"vbabort", 0, 3, nullptr},
    {"vbretry", 0, 4, nullptr},
    {"vbignore", 0, 5, nullptr},
    {"vbyes", 0, 6, nullptr},
    {"vbno", 0, 7, nullptr},
    {"vbbinarycompare", 0, 0, nullptr},
    {"vbtextcompare", 0, 1, nullptr},
    {"vbsunday", 0, 1, nullptr},
    {"vbmonday", 0, 2, nullptr},
    {"vbtuesday", 0, 3, nullptr},
    {"vbwednesday", 0, 4, nullptr},
    {"vbthursday", 0, 5, nullptr},
    {"vbfriday", 0, 6, nullptr},
    {"vbsaturday", 0, 7, nullptr},
    {"vbusesystemdayofweek", 0, 0, nullptr},
    {"vbfirstjan1", 0, 1, nullptr},
    {"vbgeneraldate", 0, 0, nullptr},
    {"vblongdate", 0, 1, nullptr},
    {"vbshortdate", 0, 2, nullptr},
    {"vblongtime", 0, 3, nullptr},
    {"vbshorttime", 0, 4, nullptr},
    {"vbusedefault", 0, -2, nullptr},
    {"vbtrue", 0, -1, nullptr},
    {"vbfalse", 0, 0, nullptr},
    {"vbempty", 0, 0, nullptr},
    {"vbnull", 0, 1, nullptr},
    {"vbinteger", 0, 2, nullptr},
    {"vblong", 0, 3, nullptr},
    {"vbsingle", 0, 4, nullptr},
    {"vbdouble", 0, 5, nullptr},
    {"vbcurrency", 0, 6, nullptr},
    {"vbdate", 0, 7, nullptr},
    {"vbstring", 0, 8, nullptr},
    {"vbobject", 0, 9, nullptr},
    {"vberror", 0, 10, nullptr},
    {"vbboolean", 0, 11, nullptr},
    {"vbvariant", 0, 12, nullptr},
    {"vbdataobject", 0, 13, nullptr},
    {"vbbyte", 0, 17, nullptr},
    {"vbarray", 0, 8192, nullptr},
    {"vbobjecterror", 0, -2147221504LL, nullptr},
    {"vbblack", 0, 0, nullptr},
    {"vbred", 0, 255, nullptr},
    {"vbgreen", 0, 65280, nullptr},
    {"vbyellow", 0, 65535, nullptr},
    {"vbblue", 0, 16711680, nullptr},
    {"vbmagenta", 0, 16711935, nullptr},
    {"vbcyan", 0, 16776960, nullptr},
    {"vbwhite", 0, 16777215, nullptr},
};

} // namespace

int FindBuiltin(std::string_view lname) {
  static const std::unordered_map<std::string_view, int> index = [] {
    std::unordered_map<std::string_view, int> m;
    for (size_t i = 0; i < std::size(kBuiltins); ++i) m[kBuiltins[i].name] = static_cast<int>(i);
    return m;
  }();
  auto it = index.find(lname);
  return it == index.end() ? -1 : it->second;
}

const BuiltinInfo& Builtin(int i) {
  return kBuiltins[i];
}

bool FindConstant(std::string_view lname, Value& out) {
  if (lname.size() < 3 || lname[0] != 'v' || lname[1] != 'b') return false;
  for (const NamedConst& c : kConsts)
    if (lname == c.name) {
      if (c.kind == 1) {
        out = Value::Str(c.text);
      } else {
        out = (c.num >= -32768 && c.num <= 32767) ? Value::Int(c.num) : Value::Lng(c.num);
      }
      return true;
    }
  return false;
}

} // namespace vbs
