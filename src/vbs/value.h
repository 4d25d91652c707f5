#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vbs {

// Variant subtypes, numbered as VarType reports them.
enum class VT : uint16_t {
  Empty = 0,
  Null = 1,
  Integer = 2,
  Long = 3,
  Single = 4,
  Double = 5,
  Currency = 6,
  Date = 7,
  String = 8,
  Object = 9,
  Error = 10,
  Boolean = 11,
  Byte = 17,
  Array = 8204, // vbArray + vbVariant
};

struct Array;
class Object;

// A run-time failure: VBScript's number and description. Thrown inside the engine only.
struct Error {
  int Number = 0;
  std::string Description;
  std::string Source;
  int Line = 0;
};
[[noreturn]] void Throw(int number, std::string description = "");
std::string ErrorText(int number);

// The Variant: a tag, a number slot, the text and one reference (array or object).
struct Value {
  VT t = VT::Empty;
  union {
    int64_t i; // Integer, Long, Byte, Boolean (-1/0), Currency (scaled by 10000), Error
    double d;  // Single, Double, Date
  };
  std::string s;
  std::shared_ptr<Array> arr;
  std::shared_ptr<Object> obj; // null with t == Object: Nothing

  Value() : i(0) {}
  static Value Int(int64_t v) {
    Value r;
    r.t = VT::Integer;
    r.i = v;
    return r;
  }
  static Value Lng(int64_t v) {
    Value r;
    r.t = VT::Long;
    r.i = v;
    return r;
  }
  static Value Byt(int64_t v) {
    Value r;
    r.t = VT::Byte;
    r.i = v;
    return r;
  }
  static Value Dbl(double v) {
    Value r;
    r.t = VT::Double;
    r.d = v;
    return r;
  }
  static Value Sng(double v) {
    Value r;
    r.t = VT::Single;
    r.d = static_cast<float>(v);
    return r;
  }
  static Value Dat(double v) {
    Value r;
    r.t = VT::Date;
    r.d = v;
    return r;
  }
  static Value Cur(int64_t scaled) {
    Value r;
    r.t = VT::Currency;
    r.i = scaled;
    return r;
  }
  static Value Bool(bool v) {
    Value r;
    r.t = VT::Boolean;
    r.i = v ? -1 : 0;
    return r;
  }
  static Value Str(std::string v) {
    Value r;
    r.t = VT::String;
    r.s = std::move(v);
    return r;
  }
  static Value NullV() {
    Value r;
    r.t = VT::Null;
    return r;
  }
  static Value Obj(std::shared_ptr<Object> o) {
    Value r;
    r.t = VT::Object;
    r.obj = std::move(o);
    return r;
  }
  static Value Nothing() {
    Value r;
    r.t = VT::Object;
    return r;
  }
  static Value Err(int64_t n) {
    Value r;
    r.t = VT::Error;
    r.i = n;
    return r;
  }
  static Value Arr(std::shared_ptr<Array> a) {
    Value r;
    r.t = VT::Array;
    r.arr = std::move(a);
    return r;
  }

  bool IsNumericType() const {
    return t == VT::Integer || t == VT::Long || t == VT::Single || t == VT::Double ||
           t == VT::Currency || t == VT::Byte || t == VT::Date || t == VT::Boolean;
  }
};

// A VBScript array: bounds per dimension (lower bound 0), values in column-major order.
struct Array {
  std::vector<int64_t> UBound; // one per dimension; -1 for an empty dynamic array
  std::vector<Value> Data;
  bool Fixed = false; // declared with bounds: ReDim refuses it
  int Locks = 0;      // held by For Each: Erase/ReDim refuse
  size_t Index(const std::vector<int64_t>& idx) const;
};

// The conversions every operator and built-in share. The decimal separator is the
// session's; conversions that read or write numbers as text take it.
struct Conv {
  char Dec = '.';
  bool ParseNumber(std::string_view text, double& out) const;
  std::string NumText(const Value& v) const;
  double ToDouble(const Value& v) const;
  int64_t ToLong(const Value& v) const; // rounded to even, Long range checked
  int64_t ToInteger(const Value& v) const;
  bool ToBool(const Value& v) const;
  std::string ToStr(const Value& v) const;
  double ToDate(const Value& v) const;
  // Numeric view for arithmetic: Empty/Boolean/String become numbers.
  Value ToNumeric(const Value& v) const;
};

double RoundEven(double v);
// Date serial <-> calendar. Serial 0 is 1899-12-30.
double DateFromYmd(int64_t y, int64_t m, int64_t d);
void YmdFromDate(double serial, int& y, int& m, int& d);
void HmsFromDate(double serial, int& h, int& n, int& sec);
std::string DateText(double serial);
bool ParseDateText(std::string_view text, double& serial);
std::string ToLower(std::string_view s);

} // namespace vbs
