// Operators over Variants, with the language's result types and Null rules.
#include <cmath>
#include <cstring>

#include "vbs/interp.h"

namespace vbs {

namespace {

// Rank for the arithmetic result type.
int Rank(VT t) {
  switch (t) {
  case VT::Byte:
    return 1;
  case VT::Integer:
    return 2;
  case VT::Long:
    return 3;
  case VT::Single:
    return 4;
  case VT::Double:
    return 5;
  case VT::Currency:
    return 6;
  case VT::Date:
    return 7;
  default:
    return 5;
  }
}

Value IntResult(int64_t v, int rank) {
  // overflow promotes: Byte to Integer, Integer to Long, Long to Double
  if (rank <= 1 && v >= 0 && v <= 255) return Value::Byt(v);
  if (rank <= 2 && v >= -32768 && v <= 32767) return Value::Int(v);
  if (v >= -2147483648LL && v <= 2147483647LL) return Value::Lng(v);
  return Value::Dbl(static_cast<double>(v));
}

Value Arith(const Conv& c, Op op, const Value& a0, const Value& b0) {
  if (a0.t == VT::Null || b0.t == VT::Null) return Value::NullV();
  if (op == Op::Add && a0.t == VT::String && b0.t == VT::String) return Value::Str(a0.s + b0.s);
  if (op == Op::Add &&
      ((a0.t == VT::String && b0.t == VT::Empty) || (a0.t == VT::Empty && b0.t == VT::String)))
    return Value::Str(a0.s + b0.s);
  Value a = c.ToNumeric(a0), b = c.ToNumeric(b0);
  int ra = Rank(a.t), rb = Rank(b.t);
  int r = std::max(ra, rb);
  bool dbl = false;
  if (r == 7) {
    // dates add and subtract as days
    double x = c.ToDouble(a), y = c.ToDouble(b);
    double v = op == Op::Add ? x + y : op == Op::Sub ? x - y : x * y;
    if (op == Op::Sub && ra == 7 && rb == 7) return Value::Dbl(v);
    if (op == Op::Mul) return Value::Dbl(v);
    return Value::Dat(v);
  }
  if (r == 6) {
    if (ra == 5 || rb == 5 || ra == 4 || rb == 4) {
      dbl = true;
    } else {
      auto scaled = [&](const Value& v) { return v.t == VT::Currency ? v.i : v.i * 10000; };
      int64_t x = scaled(a), y = scaled(b);
      double res;
      if (op == Op::Add)
        res = static_cast<double>(x) + static_cast<double>(y);
      else if (op == Op::Sub)
        res = static_cast<double>(x) - static_cast<double>(y);
      else
        res = std::nearbyint(static_cast<double>(x) * static_cast<double>(y) / 10000.0);
      if (std::fabs(res) > 9.2e18) Throw(6);
      return Value::Cur(static_cast<int64_t>(res));
    }
  }
  if (r <= 3 && !dbl) {
    int64_t x = a.i, y = b.i;
    int64_t v = op == Op::Add ? x + y : op == Op::Sub ? x - y : x * y;
    return IntResult(v, r);
  }
  double x = c.ToDouble(a), y = c.ToDouble(b);
  double v = op == Op::Add ? x + y : op == Op::Sub ? x - y : x * y;
  if (!std::isfinite(v)) Throw(6);
  // Single with Byte or Integer stays Single; with Long it becomes Double
  if (r == 4 && !dbl && !(ra == 3 || rb == 3)) {
    if (std::fabs(v) > 3.402823e38) Throw(6);
    return Value::Sng(v);
  }
  return Value::Dbl(v);
}

int IntRank(const Value& v) {
  switch (v.t) {
  case VT::Byte:
    return 1;
  case VT::Integer:
  case VT::Boolean:
  case VT::Empty:
    return 2;
  default:
    return 3;
  }
}

int64_t BitsOf(const Conv& c, const Value& v) {
  if (v.t == VT::Boolean || v.t == VT::Integer || v.t == VT::Long || v.t == VT::Byte) return v.i;
  return c.ToLong(v);
}

Value Logic(const Conv& c, Op op, const Value& a, const Value& b) {
  bool an = a.t == VT::Null, bn = b.t == VT::Null;
  if (an || bn) {
    // three-valued: a known side can still decide
    const Value& k = an ? b : a;
    bool kn = an && bn;
    int64_t kv = kn ? 0 : BitsOf(c, k);
    switch (op) {
    case Op::And:
      if (!kn && kv == 0) return k.t == VT::Boolean ? Value::Bool(false) : IntResult(0, IntRank(k));
      return Value::NullV();
    case Op::Or:
      if (!kn && kv == -1)
        return k.t == VT::Boolean ? Value::Bool(true) : IntResult(-1, IntRank(k));
      return Value::NullV();
    case Op::Imp:
      if (an && !bn && kv == -1)
        return b.t == VT::Boolean ? Value::Bool(true) : IntResult(-1, IntRank(b));
      if (bn && !an && kv == 0)
        return a.t == VT::Boolean ? Value::Bool(true) : IntResult(-1, IntRank(a));
      return Value::NullV();
    default:
      return Value::NullV();
    }
  }
  int64_t x = BitsOf(c, a), y = BitsOf(c, b), v;
  switch (op) {
  case Op::And:
    v = x & y;
    break;
  case Op::Or:
    v = x | y;
    break;
  case Op::Xor:
    v = x ^ y;
    break;
  case Op::Eqv:
    v = ~(x ^ y);
    break;
  default:
    v = (~x) | y;
    break;
  }
  if (a.t == VT::Boolean && b.t == VT::Boolean) return Value::Bool(v != 0);
  int r = std::max(IntRank(a), IntRank(b));
  if (r == 1) return Value::Byt(v & 0xFF);
  if (r == 2) return Value::Int(static_cast<int16_t>(v));
  return Value::Lng(static_cast<int32_t>(v));
}

int Cmp3(double x, double y) {
  return x < y ? -1 : x > y ? 1 : 0;
}

int StrCmp(const std::string& a, const std::string& b, bool text) {
  if (!text) {
    int r = a.compare(b);
    return r < 0 ? -1 : r > 0 ? 1 : 0;
  }
  std::string x = ToLower(a), y = ToLower(b);
  int r = x.compare(y);
  return r < 0 ? -1 : r > 0 ? 1 : 0;
}

} // namespace

int Compare(const Conv& c, const Value& a, const Value& b, bool text) {
  if (a.t == VT::Null || b.t == VT::Null) return 2;
  if (a.t == VT::Object || b.t == VT::Object || a.t == VT::Array || b.t == VT::Array) Throw(13);
  bool as = a.t == VT::String, bs = b.t == VT::String;
  if (as && bs) return StrCmp(a.s, b.s, text);
  if (as && b.t == VT::Empty) return StrCmp(a.s, "", text);
  if (bs && a.t == VT::Empty) return StrCmp("", b.s, text);
  if (as || bs) {
    // a number against a text: numerically when the text is a number, else the number is less
    const Value& sv = as ? a : b;
    const Value& nv = as ? b : a;
    double d;
    if (c.ParseNumber(sv.s, d)) {
      double n = c.ToDouble(nv);
      return as ? Cmp3(d, n) : Cmp3(n, d);
    }
    return as ? 1 : -1;
  }
  if (a.t == VT::Currency && b.t == VT::Currency) return a.i < b.i ? -1 : a.i > b.i ? 1 : 0;
  return Cmp3(c.ToDouble(a), c.ToDouble(b));
}

Value BinOp(const Conv& c, Op op, const Value& a, const Value& b) {
  switch (op) {
  case Op::Add:
  case Op::Sub:
  case Op::Mul:
    return Arith(c, op, a, b);
  case Op::Div: {
    if (a.t == VT::Null || b.t == VT::Null) return Value::NullV();
    Value x = c.ToNumeric(a), y = c.ToNumeric(b);
    double dy = c.ToDouble(y), dx = c.ToDouble(x);
    if (dy == 0) Throw(dx == 0 ? 6 : 11);
    double v = dx / dy;
    if (!std::isfinite(v)) Throw(6);
    if ((x.t == VT::Single || y.t == VT::Single) && Rank(x.t) <= 4 && Rank(y.t) <= 4 &&
        x.t != VT::Long && y.t != VT::Long)
      return Value::Sng(v);
    return Value::Dbl(v);
  }
  case Op::IDiv:
  case Op::Mod: {
    if (a.t == VT::Null || b.t == VT::Null) return Value::NullV();
    Value x = c.ToNumeric(a), y = c.ToNumeric(b);
    int64_t lx = c.ToLong(x), ly = c.ToLong(y);
    if (ly == 0) Throw(11);
    int64_t v = op == Op::IDiv ? lx / ly : lx % ly;
    int r = std::max(IntRank(x), IntRank(y));
    return IntResult(v, r);
  }
  case Op::Pow: {
    if (a.t == VT::Null || b.t == VT::Null) return Value::NullV();
    double x = c.ToDouble(c.ToNumeric(a)), y = c.ToDouble(c.ToNumeric(b));
    if (x == 0 && y < 0) Throw(5);
    double v = std::pow(x, y);
    if (std::isnan(v)) Throw(5);
    if (!std::isfinite(v)) Throw(6);
    return Value::Dbl(v);
  }
  case Op::Cat: {
    if (a.t == VT::Null && b.t == VT::Null) return Value::NullV();
    std::string r = a.t == VT::Null ? "" : c.ToStr(a);
    if (b.t != VT::Null) {
      if (b.t == VT::String)
        r += b.s;
      else
        r += c.ToStr(b);
    }
    return Value::Str(std::move(r));
  }
  case Op::Eq:
  case Op::Ne:
  case Op::Lt:
  case Op::Gt:
  case Op::Le:
  case Op::Ge: {
    int r = Compare(c, a, b);
    if (r == 2) return Value::NullV();
    bool v = op == Op::Eq   ? r == 0
             : op == Op::Ne ? r != 0
             : op == Op::Lt ? r < 0
             : op == Op::Gt ? r > 0
             : op == Op::Le ? r <= 0
                            : r >= 0;
    return Value::Bool(v);
  }
  case Op::And:
  case Op::Or:
  case Op::Xor:
  case Op::Eqv:
  case Op::Imp:
    return Logic(c, op, a, b);
  default:
    Throw(5);
  }
}

Value UnOp(const Conv& c, Op op, const Value& a0) {
  Value a = a0.t == VT::Object ? a0 : a0;
  if (a.t == VT::Null) return Value::NullV();
  if (op == Op::Not) {
    if (a.t == VT::Boolean) return Value::Bool(a.i == 0);
    int64_t v = ~BitsOf(c, a);
    int r = IntRank(a);
    if (r == 1) return Value::Byt(v & 0xFF);
    if (r == 2) return Value::Int(static_cast<int16_t>(v));
    return Value::Lng(static_cast<int32_t>(v));
  }
  Value x = c.ToNumeric(a);
  switch (x.t) {
  case VT::Byte:
  case VT::Integer:
    return IntResult(-x.i, 2);
  case VT::Long:
    return IntResult(-x.i, 3);
  case VT::Single:
    return Value::Sng(-x.d);
  case VT::Currency:
    return Value::Cur(-x.i);
  case VT::Date:
    return Value::Dat(-x.d);
  default:
    return Value::Dbl(-c.ToDouble(x));
  }
}

int VarTypeOf(const Value& v) {
  return static_cast<int>(v.t);
}

std::string TypeNameOf(const Value& v) {
  switch (v.t) {
  case VT::Empty:
    return "Empty";
  case VT::Null:
    return "Null";
  case VT::Integer:
    return "Integer";
  case VT::Long:
    return "Long";
  case VT::Single:
    return "Single";
  case VT::Double:
    return "Double";
  case VT::Currency:
    return "Currency";
  case VT::Date:
    return "Date";
  case VT::String:
    return "String";
  case VT::Object:
    return v.obj ? v.obj->TypeName() : "Nothing";
  case VT::Error:
    return "Error";
  case VT::Boolean:
    return "Boolean";
  case VT::Byte:
    return "Byte";
  case VT::Array:
    return "Variant()";
  }
  return "Unknown";
}

} // namespace vbs
