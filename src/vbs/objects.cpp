// The objects the engine provides: Err, RegExp with its matches, Dictionary, GetRef's reference.
#include <regex>

#include "vbs/interp.h"

namespace vbs {

namespace {

int Id(std::string_view l, std::initializer_list<const char*> names) {
  int i = 0;
  for (const char* n : names) {
    if (l == n) return i;
    ++i;
  }
  return -1;
}

class ErrObj : public Object {
public:
  Error st;
  std::string TypeName() const override { return "ErrObject"; }
  int MemberId(std::string_view l) override {
    return Id(l, {"number", "description", "source", "clear", "raise", "helpfile", "helpcontext"});
  }
  int DefaultId() override { return 0; }
  int Call(Interp& in, int id, std::span<Value*> a, Invoke k, Value& r, std::string&) override {
    const Conv& c = in.Cv();
    switch (id) {
    case 0:
      if (k == Invoke::Get)
        r = Value::Lng(st.Number);
      else
        st.Number = static_cast<int>(c.ToLong(*a.back()));
      return 0;
    case 1:
      if (k == Invoke::Get)
        r = Value::Str(st.Description);
      else
        st.Description = c.ToStr(*a.back());
      return 0;
    case 2:
      if (k == Invoke::Get)
        r = Value::Str(st.Source);
      else
        st.Source = c.ToStr(*a.back());
      return 0;
    case 3:
      st = Error{};
      return 0;
    case 4: {
      if (a.empty()) return 450;
      Error e;
      e.Number = static_cast<int>(c.ToLong(*a[0]));
      auto given = [&](size_t i) { return a.size() > i && a[i]->t != VT::Error; };
      e.Source = given(1) ? c.ToStr(*a[1]) : "";
      e.Description = given(2) ? c.ToStr(*a[2]) : ErrorText(e.Number);
      throw e;
    }
    case 5:
      r = Value::Str("");
      return 0;
    case 6:
      r = Value::Lng(0);
      return 0;
    }
    return 438;
  }
};

class SubMatchesObj : public Object {
public:
  std::vector<Value> items;
  std::string TypeName() const override { return "ISubMatches"; }
  int MemberId(std::string_view l) override { return Id(l, {"item", "count"}); }
  int DefaultId() override { return 0; }
  int Call(Interp& in, int id, std::span<Value*> a, Invoke, Value& r, std::string&) override {
    if (id == 1) {
      r = Value::Lng(static_cast<int64_t>(items.size()));
      return 0;
    }
    if (a.size() != 1) return 450;
    int64_t i = in.Cv().ToLong(*a[0]);
    if (i < 0 || i >= static_cast<int64_t>(items.size())) return 5;
    r = items[static_cast<size_t>(i)];
    return 0;
  }
  bool Items(std::vector<Value>& out) override {
    out = items;
    return true;
  }
};

class MatchObj : public Object {
public:
  std::string value;
  int64_t first = 0;
  std::shared_ptr<SubMatchesObj> subs = std::make_shared<SubMatchesObj>();
  std::string TypeName() const override { return "IMatch2"; }
  int MemberId(std::string_view l) override {
    return Id(l, {"value", "firstindex", "length", "submatches"});
  }
  int DefaultId() override { return 0; }
  int Call(Interp& in, int id, std::span<Value*> a, Invoke, Value& r, std::string& d) override {
    switch (id) {
    case 0:
      r = Value::Str(value);
      return 0;
    case 1:
      r = Value::Lng(first);
      return 0;
    case 2:
      r = Value::Lng(static_cast<int64_t>(value.size()));
      return 0;
    case 3:
      if (!a.empty()) return subs->Call(in, 0, a, Invoke::Get, r, d);
      r = Value::Obj(subs);
      return 0;
    }
    return 438;
  }
};

class MatchesObj : public Object {
public:
  std::vector<Value> items;
  std::string TypeName() const override { return "IMatchCollection2"; }
  int MemberId(std::string_view l) override { return Id(l, {"item", "count"}); }
  int DefaultId() override { return 0; }
  int Call(Interp& in, int id, std::span<Value*> a, Invoke, Value& r, std::string&) override {
    if (id == 1) {
      r = Value::Lng(static_cast<int64_t>(items.size()));
      return 0;
    }
    if (a.size() != 1) return 450;
    int64_t i = in.Cv().ToLong(*a[0]);
    if (i < 0 || i >= static_cast<int64_t>(items.size())) return 5;
    r = items[static_cast<size_t>(i)];
    return 0;
  }
  bool Items(std::vector<Value>& out) override {
    out = items;
    return true;
  }
};

// Texts longer than this are refused: the matcher recurses per character.
constexpr size_t kMaxRegexText = 32u << 10;

class RegExpObj : public Object {
public:
  std::string pattern;
  bool ignoreCase = false, global = false, multiLine = false;
  std::string TypeName() const override { return "IRegExp2"; }
  int MemberId(std::string_view l) override {
    return Id(l, {"pattern", "ignorecase", "global", "multiline", "test", "replace", "execute"});
  }
  bool Compile(std::regex& re, std::string& desc) {
    auto f = std::regex::ECMAScript;
    if (ignoreCase) f |= std::regex::icase;
    if (multiLine) f |= std::regex::multiline;
    try {
      re = std::regex(pattern, f);
      return true;
    } catch (const std::regex_error&) {
      desc = ErrorText(5017);
      return false;
    }
  }
  int Call(Interp& in, int id, std::span<Value*> a, Invoke k, Value& r,
           std::string& desc) override {
    const Conv& c = in.Cv();
    if (id <= 3) {
      if (k == Invoke::Get) {
        if (id == 0)
          r = Value::Str(pattern);
        else
          r = Value::Bool(id == 1 ? ignoreCase : id == 2 ? global : multiLine);
        return 0;
      }
      if (id == 0)
        pattern = c.ToStr(*a.back());
      else
        (id == 1 ? ignoreCase : id == 2 ? global : multiLine) = c.ToBool(*a.back());
      return 0;
    }
    std::regex re;
    if (!Compile(re, desc)) return 5017;
    if (a.empty()) return 450;
    std::string text = a[0]->t == VT::Null ? "" : c.ToStr(*a[0]);
    if (text.size() > kMaxRegexText) return 14;
    try {
      if (id == 4) {
        r = Value::Bool(std::regex_search(text, re));
        return 0;
      }
      if (id == 5) {
        if (a.size() != 2) return 450;
        std::string with = c.ToStr(*a[1]);
        auto fl =
            global ? std::regex_constants::format_default : std::regex_constants::format_first_only;
        r = Value::Str(std::regex_replace(text, re, with, fl));
        return 0;
      }
      auto m = std::make_shared<MatchesObj>();
      for (auto it = std::sregex_iterator(text.begin(), text.end(), re);
           it != std::sregex_iterator(); ++it) {
        auto mo = std::make_shared<MatchObj>();
        mo->value = (*it)[0].str();
        mo->first = it->position(0);
        for (size_t g = 1; g < it->size(); ++g)
          mo->subs->items.push_back((*it)[g].matched ? Value::Str((*it)[g].str()) : Value());
        m->items.push_back(Value::Obj(mo));
        if (!global) break;
      }
      r = Value::Obj(m);
      return 0;
    } catch (const std::regex_error&) {
      return 5017;
    }
  }
};

class DictObj : public Object {
public:
  std::vector<std::pair<Value, Value>> items;
  int compareMode = 0;
  std::string TypeName() const override { return "Dictionary"; }
  int MemberId(std::string_view l) override {
    return Id(l, {"item", "add", "exists", "count", "keys", "items", "remove", "removeall",
                  "comparemode", "key"});
  }
  int DefaultId() override { return 0; }
  int Find(Interp& in, const Value& k) {
    for (size_t i = 0; i < items.size(); ++i) {
      const Value& x = items[i].first;
      if (x.t == VT::Object || k.t == VT::Object) {
        if (x.t == k.t && x.obj == k.obj) return static_cast<int>(i);
        continue;
      }
      if ((x.t == VT::String) != (k.t == VT::String)) continue;
      if (Compare(in.Cv(), x, k, compareMode == 1) == 0) return static_cast<int>(i);
    }
    return -1;
  }
  int Call(Interp& in, int id, std::span<Value*> a, Invoke k, Value& r, std::string&) override {
    switch (id) {
    case 0: {
      if (a.empty()) return 450;
      int i = Find(in, *a[0]);
      if (k == Invoke::Get) {
        if (i < 0) {
          items.emplace_back(*a[0], Value());
          return 0;
        }
        r = items[static_cast<size_t>(i)].second;
        return 0;
      }
      if (a.size() != 2) return 450;
      if (i < 0)
        items.emplace_back(*a[0], *a[1]);
      else
        items[static_cast<size_t>(i)].second = *a[1];
      return 0;
    }
    case 1:
      if (a.size() != 2) return 450;
      if (Find(in, *a[0]) >= 0) return 457;
      items.emplace_back(*a[0], *a[1]);
      return 0;
    case 2:
      if (a.size() != 1) return 450;
      r = Value::Bool(Find(in, *a[0]) >= 0);
      return 0;
    case 3:
      r = Value::Lng(static_cast<int64_t>(items.size()));
      return 0;
    case 4:
    case 5: {
      auto arr = std::make_shared<Array>();
      arr->UBound.push_back(static_cast<int64_t>(items.size()) - 1);
      for (auto& p : items) arr->Data.push_back(id == 4 ? p.first : p.second);
      r = Value::Arr(arr);
      return 0;
    }
    case 6: {
      if (a.size() != 1) return 450;
      int i = Find(in, *a[0]);
      if (i < 0) return 32811;
      items.erase(items.begin() + i);
      return 0;
    }
    case 7:
      items.clear();
      return 0;
    case 8:
      if (k == Invoke::Get)
        r = Value::Lng(compareMode);
      else
        compareMode = static_cast<int>(in.Cv().ToLong(*a.back()));
      return 0;
    case 9: {
      if (k == Invoke::Get || a.size() != 2) return 438;
      int i = Find(in, *a[0]);
      if (i < 0) return 32811;
      items[static_cast<size_t>(i)].first = *a[1];
      return 0;
    }
    }
    return 438;
  }
  bool Items(std::vector<Value>& out) override {
    out.clear();
    for (auto& p : items) out.push_back(p.first);
    return true;
  }
};

class ProcRefObj : public Object {
public:
  Proc* p;
  explicit ProcRefObj(Proc* q) : p(q) {}
  std::string TypeName() const override { return "Object"; }
  int MemberId(std::string_view) override { return -1; }
  int DefaultId() override { return 0; }
  int Call(Interp& in, int, std::span<Value*> a, Invoke k, Value& r, std::string&) override {
    if (k != Invoke::Get) return 438;
    r = in.CallProc(p, nullptr, a);
    return 0;
  }
};

} // namespace

std::shared_ptr<Object> NewRegExp() {
  return std::make_shared<RegExpObj>();
}
std::shared_ptr<Object> NewDictionary() {
  return std::make_shared<DictObj>();
}
std::shared_ptr<Object> NewErrObject() {
  return std::make_shared<ErrObj>();
}
std::shared_ptr<Object> NewProcRef(Proc* p) {
  return std::make_shared<ProcRefObj>(p);
}
Error& ErrState(Object& errObj) {
  return static_cast<ErrObj&>(errObj).st;
}

} // namespace vbs
