// The lexer and the recursive-descent parser: text to a syntax tree, with a procedure's
// variables bound to slots once the whole procedure is read.
#include <algorithm>
#include <cstring>
#include <functional>

#include "vbs/ast.h"

namespace vbs {

namespace {

enum class TT : uint8_t { Ident, Num, Str, Date, Sym, NL, End };

struct Tok {
  TT t = TT::End;
  std::string text, ltext;
  Value val;
  int line = 0;
  bool colon = false; // NL written as ':'
};

struct SyntaxError {
  int number;
  int line;
};

const char* const kReserved[] = {
    "and",    "byref",  "byval", "call",     "case",    "class",  "const",   "dim",
    "do",     "each",   "else",  "elseif",   "empty",   "end",    "eqv",     "erase",
    "exit",   "false",  "for",   "function", "if",      "imp",    "in",      "is",
    "loop",   "me",     "mod",   "new",      "next",    "not",    "nothing", "null",
    "on",     "option", "or",    "preserve", "private", "public", "redim",   "rem",
    "select", "set",    "sub",   "then",     "to",      "true",   "until",   "wend",
    "while",  "with",   "xor",   "goto",     "stop",    "let",    "get"};

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
bool IsAlpha(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool IsIdChar(char c) {
  return IsAlpha(c) || IsDigit(c) || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}

class Lexer {
public:
  explicit Lexer(const std::string& s) : s_(s) {}
  std::vector<Tok> Run() {
    std::vector<Tok> out;
    size_t i = 0, n = s_.size();
    int line = 1;
    auto push = [&](TT t, std::string text) {
      Tok k;
      k.t = t;
      k.line = line;
      k.text = std::move(text);
      out.push_back(std::move(k));
      return &out.back();
    };
    while (i < n) {
      char c = s_[i];
      if (c == ' ' || c == '\t' || c == '\f' || c == '\v') {
        ++i;
        continue;
      }
      if (c == '\r' || c == '\n') {
        if (c == '\r' && i + 1 < n && s_[i + 1] == '\n') ++i;
        ++i;
        push(TT::NL, "");
        ++line;
        continue;
      }
      if (c == '\'') {
        while (i < n && s_[i] != '\r' && s_[i] != '\n') ++i;
        continue;
      }
      if (c == '_' && (i + 1 >= n || !IsIdChar(s_[i + 1]))) {
        // continuation: only blanks may stand before the line's end
        size_t j = i + 1;
        while (j < n && (s_[j] == ' ' || s_[j] == '\t')) ++j;
        if (j >= n || s_[j] == '\r' || s_[j] == '\n') {
          if (j < n && s_[j] == '\r' && j + 1 < n && s_[j + 1] == '\n') ++j;
          i = j + 1;
          ++line;
          continue;
        }
        throw SyntaxError{1032, line};
      }
      if (c == ':') {
        push(TT::NL, ":")->colon = true;
        ++i;
        continue;
      }
      if (c == '"') {
        std::string v;
        ++i;
        for (;;) {
          if (i >= n || s_[i] == '\r' || s_[i] == '\n') throw SyntaxError{1033, line};
          if (s_[i] == '"') {
            if (i + 1 < n && s_[i + 1] == '"') {
              v += '"';
              i += 2;
              continue;
            }
            ++i;
            break;
          }
          v += s_[i++];
        }
        Tok* k = push(TT::Str, "");
        k->val = Value::Str(std::move(v));
        continue;
      }
      if (c == '#') {
        size_t j = s_.find('#', i + 1);
        size_t eol = s_.find_first_of("\r\n", i + 1);
        if (j == std::string::npos || (eol != std::string::npos && eol < j))
          throw SyntaxError{1002, line};
        double serial;
        if (!ParseDateText(std::string_view(s_).substr(i + 1, j - i - 1), serial))
          throw SyntaxError{1002, line};
        push(TT::Date, "")->val = Value::Dat(serial);
        i = j + 1;
        continue;
      }
      bool afterValue = !out.empty() && (out.back().t == TT::Ident ||
                                         (out.back().t == TT::Sym && out.back().text == ")"));
      if (IsDigit(c) || (c == '.' && i + 1 < n && IsDigit(s_[i + 1]) && !afterValue)) {
        size_t j = i;
        while (j < n && IsDigit(s_[j])) ++j;
        if (j < n && s_[j] == '.') {
          ++j;
          while (j < n && IsDigit(s_[j])) ++j;
        }
        if (j < n && (s_[j] == 'e' || s_[j] == 'E')) {
          size_t k = j + 1;
          if (k < n && (s_[k] == '+' || s_[k] == '-')) ++k;
          if (k < n && IsDigit(s_[k])) {
            j = k;
            while (j < n && IsDigit(s_[j])) ++j;
          }
        }
        Tok* k = push(TT::Num, s_.substr(i, j - i));
        if (!ParseNumberLiteral(k->text, k->val)) throw SyntaxError{1002, line};
        if (j < n && (s_[j] == '#' || s_[j] == '!' || s_[j] == '@' || s_[j] == '%' || s_[j] == '&'))
          ++j;
        i = j;
        continue;
      }
      if (c == '&' && i + 1 < n &&
          (s_[i + 1] == 'h' || s_[i + 1] == 'H' || s_[i + 1] == 'o' || s_[i + 1] == 'O' ||
           IsDigit(s_[i + 1]))) {
        bool hex = s_[i + 1] == 'h' || s_[i + 1] == 'H';
        size_t j = i + (IsDigit(s_[i + 1]) ? 1 : 2);
        uint64_t v = 0;
        size_t st = j;
        while (j < n && (hex ? std::isxdigit(static_cast<unsigned char>(s_[j])) != 0
                             : (s_[j] >= '0' && s_[j] <= '7'))) {
          int dg = IsDigit(s_[j]) ? s_[j] - '0'
                                  : (std::tolower(static_cast<unsigned char>(s_[j])) - 'a' + 10);
          v = v * (hex ? 16 : 8) + dg;
          if (v > 0xFFFFFFFFull) throw SyntaxError{1002, line};
          ++j;
        }
        if (j == st) throw SyntaxError{1002, line};
        if (j < n && s_[j] == '&') ++j;
        Tok* k = push(TT::Num, s_.substr(i, j - i));
        if (v <= 0xFFFF && j - st <= 4 && hex)
          k->val = Value::Int(static_cast<int16_t>(v));
        else if (!hex && v <= 0xFFFF)
          k->val = Value::Int(static_cast<int16_t>(v));
        else
          k->val = Value::Lng(static_cast<int32_t>(static_cast<uint32_t>(v)));
        i = j;
        continue;
      }
      if (IsAlpha(c) || static_cast<unsigned char>(c) >= 0x80) {
        size_t j = i;
        while (j < n && IsIdChar(s_[j])) ++j;
        std::string w = s_.substr(i, j - i);
        std::string lw = ToLower(w);
        bool member = !out.empty() && out.back().t == TT::Sym && out.back().text == ".";
        if (lw == "rem" && !member) {
          while (j < n && s_[j] != '\r' && s_[j] != '\n') ++j;
          i = j;
          continue;
        }
        Tok* k = push(TT::Ident, std::move(w));
        k->ltext = std::move(lw);
        i = j;
        continue;
      }
      if (c == '[') {
        size_t j = s_.find(']', i);
        if (j == std::string::npos) throw SyntaxError{1002, line};
        Tok* k = push(TT::Ident, s_.substr(i + 1, j - i - 1));
        k->ltext = ToLower(k->text);
        k->val = Value::Bool(true); // bracketed: never a keyword
        i = j + 1;
        continue;
      }
      static const char* const two[] = {"<>", "<=", ">=", "=<", "=>"};
      bool done = false;
      for (const char* t : two)
        if (s_.compare(i, 2, t) == 0) {
          std::string sym = t;
          if (sym == "=<") sym = "<=";
          if (sym == "=>") sym = ">=";
          push(TT::Sym, sym);
          i += 2;
          done = true;
          break;
        }
      if (done) continue;
      if (std::strchr("()=<>+-*/\\^&,.", c)) {
        push(TT::Sym, std::string(1, c));
        ++i;
        continue;
      }
      throw SyntaxError{1032, line}; // Invalid character
    }
    push(TT::NL, "");
    push(TT::End, "");
    return out;
  }

private:
  const std::string& s_;
};

class Parser {
public:
  Parser(std::vector<Tok>& toks, Program& prog) : t_(toks), p_(prog) {}

  void ParseProgram() {
    while (!AtEnd()) {
      if (SkipNL()) continue;
      ParseStatementInto(p_.top, true);
    }
  }

  Expr* ParseSoleExpr() {
    while (Cur().t == TT::NL) ++i_;
    Expr* e = ParseExpr();
    while (Cur().t == TT::NL) ++i_;
    if (!AtEnd()) Fail(1002);
    return e;
  }

private:
  std::vector<Tok>& t_;
  Program& p_;
  size_t i_ = 0;
  int depth_ = 0;
  Proc* proc_ = nullptr;
  ClassDef* class_ = nullptr;

  const Tok& Cur() const { return t_[i_]; }
  const Tok& Peek(size_t k = 1) const { return t_[std::min(i_ + k, t_.size() - 1)]; }
  bool AtEnd() const { return Cur().t == TT::End; }
  [[noreturn]] void Fail(int number) { throw SyntaxError{number, Cur().line}; }
  bool IsKw(const char* w) const {
    return Cur().t == TT::Ident && Cur().val.t == VT::Empty && Cur().ltext == w;
  }
  bool IsKwAt(size_t k, const char* w) const {
    const Tok& x = Peek(k);
    return x.t == TT::Ident && x.val.t == VT::Empty && x.ltext == w;
  }
  bool AcceptKw(const char* w) {
    if (!IsKw(w)) return false;
    ++i_;
    return true;
  }
  void ExpectKw(const char* w, int number = 1002) {
    if (!AcceptKw(w)) Fail(number);
  }
  bool IsSym(const char* s) const { return Cur().t == TT::Sym && Cur().text == s; }
  bool AcceptSym(const char* s) {
    if (!IsSym(s)) return false;
    ++i_;
    return true;
  }
  void ExpectSym(const char* s, int number = 1002) {
    if (!AcceptSym(s)) Fail(number);
  }
  bool SkipNL() {
    if (Cur().t != TT::NL) return false;
    ++i_;
    return true;
  }
  bool AtStmtEnd() const { return Cur().t == TT::NL || Cur().t == TT::End || IsKw("else"); }
  void EndStmt() {
    if (Cur().t == TT::NL) {
      ++i_;
      return;
    }
    if (IsKw("else")) return; // a single-line If goes on
    if (Cur().t == TT::End) return;
    Fail(1025); // Expected end of statement
  }
  std::string Name(std::string* lname = nullptr) {
    if (Cur().t != TT::Ident) Fail(1010); // Expected identifier
    if (Cur().val.t == VT::Empty && IsReserved(Cur().ltext)) Fail(1010);
    std::string n = Cur().text;
    if (lname) *lname = Cur().ltext;
    ++i_;
    return n;
  }

  Expr* NewExpr(EK k) {
    p_.exprs.push_back(std::make_unique<Expr>());
    Expr* e = p_.exprs.back().get();
    e->k = k;
    e->line = Cur().line;
    return e;
  }
  Stmt* NewStmt(SK k) {
    p_.stmts.push_back(std::make_unique<Stmt>());
    Stmt* s = p_.stmts.back().get();
    s->k = k;
    s->line = Cur().line;
    return s;
  }

  // ---- expressions, from the loosest operator to the tightest
  struct Depth {
    Parser& p;
    explicit Depth(Parser& q) : p(q) {
      if (++p.depth_ > 300) p.Fail(28);
    }
    ~Depth() { --p.depth_; }
  };

  Expr* Bin(Op op, Expr* a, Expr* b) {
    Expr* e = NewExpr(EK::Binary);
    e->op = op;
    e->a = a;
    e->b = b;
    return e;
  }

  Expr* ParseExpr() {
    Depth d(*this);
    Expr* a = ParseEqv();
    while (AcceptKw("imp")) a = Bin(Op::Imp, a, ParseEqv());
    return a;
  }
  Expr* ParseEqv() {
    Expr* a = ParseXor();
    while (AcceptKw("eqv")) a = Bin(Op::Eqv, a, ParseXor());
    return a;
  }
  Expr* ParseXor() {
    Expr* a = ParseOr();
    while (AcceptKw("xor")) a = Bin(Op::Xor, a, ParseOr());
    return a;
  }
  Expr* ParseOr() {
    Expr* a = ParseAnd();
    while (AcceptKw("or")) a = Bin(Op::Or, a, ParseAnd());
    return a;
  }
  Expr* ParseAnd() {
    Expr* a = ParseNot();
    while (AcceptKw("and")) a = Bin(Op::And, a, ParseNot());
    return a;
  }
  Expr* ParseNot() {
    if (AcceptKw("not")) {
      Depth d(*this);
      Expr* e = NewExpr(EK::Unary);
      e->op = Op::Not;
      e->a = ParseNot();
      return e;
    }
    return ParseCmp();
  }
  Expr* ParseCmp() {
    Expr* a = ParseCat();
    for (;;) {
      Op op;
      if (IsSym("="))
        op = Op::Eq;
      else if (IsSym("<>"))
        op = Op::Ne;
      else if (IsSym("<"))
        op = Op::Lt;
      else if (IsSym(">"))
        op = Op::Gt;
      else if (IsSym("<="))
        op = Op::Le;
      else if (IsSym(">="))
        op = Op::Ge;
      else if (IsKw("is"))
        op = Op::Is;
      else
        return a;
      ++i_;
      a = Bin(op, a, ParseCat());
    }
  }
  Expr* ParseCat() {
    Expr* a = ParseAdd();
    while (AcceptSym("&")) a = Bin(Op::Cat, a, ParseAdd());
    return a;
  }
  Expr* ParseAdd() {
    Expr* a = ParseMod();
    for (;;) {
      if (AcceptSym("+"))
        a = Bin(Op::Add, a, ParseMod());
      else if (AcceptSym("-"))
        a = Bin(Op::Sub, a, ParseMod());
      else
        return a;
    }
  }
  Expr* ParseMod() {
    Expr* a = ParseIDiv();
    while (AcceptKw("mod")) a = Bin(Op::Mod, a, ParseIDiv());
    return a;
  }
  Expr* ParseIDiv() {
    Expr* a = ParseMul();
    while (AcceptSym("\\")) a = Bin(Op::IDiv, a, ParseMul());
    return a;
  }
  Expr* ParseMul() {
    Expr* a = ParseNeg();
    for (;;) {
      if (AcceptSym("*"))
        a = Bin(Op::Mul, a, ParseNeg());
      else if (AcceptSym("/"))
        a = Bin(Op::Div, a, ParseNeg());
      else
        return a;
    }
  }
  Expr* ParseNeg() {
    if (AcceptSym("-")) {
      Depth d(*this);
      Expr* e = NewExpr(EK::Unary);
      e->op = Op::Neg;
      e->a = ParseNeg();
      return e;
    }
    if (AcceptSym("+")) {
      Depth d(*this);
      return ParseNeg();
    }
    return ParsePow();
  }
  Expr* ParsePow() {
    Expr* a = ParsePostfix();
    while (AcceptSym("^")) {
      Expr* b;
      if (IsSym("-") || IsSym("+")) {
        Depth d(*this);
        bool neg = IsSym("-");
        ++i_;
        b = ParsePostfix();
        if (neg) {
          Expr* u = NewExpr(EK::Unary);
          u->op = Op::Neg;
          u->a = b;
          b = u;
        }
      } else {
        b = ParsePostfix();
      }
      a = Bin(Op::Pow, a, b);
    }
    return a;
  }

  Expr* ParsePrimary() {
    const Tok& k = Cur();
    if (k.t == TT::Num || k.t == TT::Str || k.t == TT::Date) {
      Expr* e = NewExpr(EK::Literal);
      e->val = k.val;
      ++i_;
      return e;
    }
    if (k.t == TT::Sym && k.text == "(") {
      Depth d(*this);
      ++i_;
      Expr* e = NewExpr(EK::Paren);
      e->a = ParseExpr();
      ExpectSym(")", 1006);
      return e;
    }
    if (k.t == TT::Sym && k.text == ".") {
      ++i_;
      if (Cur().t != TT::Ident) Fail(1010);
      Expr* e = NewExpr(EK::Member);
      e->name = Cur().text;
      e->lname = Cur().ltext;
      ++i_;
      return e;
    }
    if (k.t == TT::Ident) {
      bool kw = k.val.t == VT::Empty;
      if (kw) {
        const std::string& w = k.ltext;
        auto lit = [&](Value v) {
          Expr* e = NewExpr(EK::Literal);
          e->val = std::move(v);
          ++i_;
          return e;
        };
        if (w == "true") return lit(Value::Bool(true));
        if (w == "false") return lit(Value::Bool(false));
        if (w == "null") return lit(Value::NullV());
        if (w == "empty") return lit(Value());
        if (w == "nothing") return lit(Value::Nothing());
        if (w == "me") {
          ++i_;
          return NewExpr(EK::Me);
        }
        if (w == "new") {
          ++i_;
          Expr* e = NewExpr(EK::New);
          if (Cur().t != TT::Ident) Fail(1010);
          e->name = Cur().text;
          e->lname = Cur().ltext;
          ++i_;
          return e;
        }
        if (IsReserved(w)) Fail(1002);
      }
      Expr* e = NewExpr(EK::Ident);
      e->name = k.text;
      e->lname = k.ltext;
      ++i_;
      return e;
    }
    Fail(1002);
  }

  void ParseArgs(std::vector<Expr*>& args, const char* close) {
    if (close && AcceptSym(close)) return;
    for (;;) {
      if (IsSym(",")) {
        args.push_back(nullptr); // a left-out argument
      } else {
        args.push_back(ParseExpr());
      }
      if (AcceptSym(",")) continue;
      break;
    }
    if (close) ExpectSym(close, 1006);
  }

  // Postfix chain; `lastParen` gets the token index of the last '(' opened on the chain and
  // `beforeParen` the node it applied to.
  Expr* ParsePostfix(size_t* lastParen = nullptr, Expr** beforeParen = nullptr) {
    Expr* e = ParsePrimary();
    for (;;) {
      if (IsSym("(") && e->k != EK::Literal && e->k != EK::Paren) {
        if (lastParen) *lastParen = i_;
        if (beforeParen) *beforeParen = e;
        Depth d(*this);
        ++i_;
        Expr* c = NewExpr(EK::Call);
        c->a = e;
        c->parens = true;
        ParseArgs(c->args, ")");
        e = c;
        continue;
      }
      if (IsSym(".") && e->k != EK::Literal) {
        ++i_;
        if (Cur().t != TT::Ident) Fail(1010);
        Expr* m = NewExpr(EK::Member);
        m->a = e;
        m->name = Cur().text;
        m->lname = Cur().ltext;
        ++i_;
        e = m;
        continue;
      }
      return e;
    }
  }

  // ---- statements
  void ParseBlock(std::vector<Stmt*>& out, std::initializer_list<const char*> stops) {
    for (;;) {
      if (AtEnd()) Fail(1002);
      if (SkipNL()) continue;
      for (const char* s : stops)
        if (IsKw(s)) return;
      ParseStatementInto(out, false);
    }
  }

  void ParseStatementInto(std::vector<Stmt*>& out, bool top) {
    bool pub = true, priv = false;
    if (IsKw("public") || IsKw("private")) {
      priv = IsKw("private");
      pub = !priv;
      ++i_;
      bool isDefault = AcceptKw("default");
      if (IsKw("sub") || IsKw("function") || IsKw("property")) {
        if (!top && !class_) Fail(1002);
        ParseProc(pub, isDefault);
        return;
      }
      if (isDefault) Fail(1002);
      if (IsKw("const")) {
        ++i_;
        out.push_back(ParseConst());
        EndStmt();
        return;
      }
      if (class_ && !proc_) {
        ParseFields(pub);
        return;
      }
      Stmt* s = ParseDim();
      out.push_back(s);
      EndStmt();
      return;
    }
    (void)pub;
    if (IsKw("sub") || IsKw("function")) {
      if (!top && !class_) Fail(1002);
      ParseProc(true, false);
      return;
    }
    if (IsKw("class")) {
      if (!top) Fail(1002);
      ParseClass();
      return;
    }
    if (class_ && !proc_) {
      if (IsKw("dim")) {
        ++i_;
        ParseFields(true);
        return;
      }
      if (IsKw("property")) {
        ParseProc(true, false);
        return;
      }
      Fail(1002);
    }
    Stmt* s = ParseSimple(top);
    if (s) out.push_back(s);
  }

  void ParseFields(bool pub) {
    do {
      ClassDef::Field f;
      f.name = Name(&f.lname);
      f.isPublic = pub;
      if (AcceptSym("(")) {
        f.isArray = true;
        if (!IsSym(")")) ParseArgs(f.bounds, nullptr);
        ExpectSym(")", 1006);
      }
      if (class_->fieldIndex.count(f.lname) || class_->memberIndex.count(f.lname)) Fail(1041);
      class_->fieldIndex[f.lname] = static_cast<int>(class_->fields.size());
      class_->fields.push_back(std::move(f));
    } while (AcceptSym(","));
    EndStmt();
  }

  Stmt* ParseDim() {
    Stmt* s = NewStmt(SK::Dim);
    do {
      DimItem d;
      d.name = Name(&d.lname);
      if (AcceptSym("(")) {
        d.isArray = true;
        if (!IsSym(")")) ParseArgs(d.bounds, nullptr);
        ExpectSym(")", 1006);
      }
      if (proc_) {
        if (!proc_->locals.count(d.lname)) proc_->locals[d.lname] = proc_->nSlots++;
      }
      s->dims.push_back(std::move(d));
    } while (AcceptSym(","));
    return s;
  }

  Stmt* ParseConst() {
    Stmt* s = NewStmt(SK::Const);
    do {
      DimItem d;
      d.name = Name(&d.lname);
      ExpectSym("=", 1011);
      d.bounds.push_back(ParseExpr());
      if (proc_ && !proc_->locals.count(d.lname)) proc_->locals[d.lname] = proc_->nSlots++;
      s->dims.push_back(std::move(d));
    } while (AcceptSym(","));
    return s;
  }

  void ParseProc(bool pub, bool isDefault) {
    if (proc_) Fail(1002);
    p_.procStore.push_back(std::make_unique<Proc>());
    Proc* pr = p_.procStore.back().get();
    pr->isPublic = pub;
    pr->isDefault = isDefault;
    pr->line = Cur().line;
    const char* endWord;
    if (AcceptKw("sub")) {
      pr->kind = ProcKind::Sub;
      endWord = "sub";
    } else if (AcceptKw("function")) {
      pr->kind = ProcKind::Function;
      endWord = "function";
    } else {
      ExpectKw("property");
      if (!class_) Fail(1002);
      if (AcceptKw("get"))
        pr->kind = ProcKind::PropGet;
      else if (AcceptKw("let"))
        pr->kind = ProcKind::PropLet;
      else if (AcceptKw("set"))
        pr->kind = ProcKind::PropSet;
      else
        Fail(1002);
      endWord = "property";
    }
    pr->name = Name(&pr->lname);
    if (AcceptSym("(")) {
      if (!IsSym(")")) {
        do {
          Param p;
          if (AcceptKw("byval"))
            p.byVal = true;
          else
            AcceptKw("byref");
          p.name = Name(&p.lname);
          if (AcceptSym("(")) ExpectSym(")");
          for (const Param& q : pr->params)
            if (q.lname == p.lname) Fail(1041);
          pr->params.push_back(std::move(p));
        } while (AcceptSym(","));
      }
      ExpectSym(")", 1006);
    }
    EndStmt();
    for (const Param& p : pr->params) pr->locals[p.lname] = pr->nSlots++;
    if (pr->kind == ProcKind::Function || pr->kind == ProcKind::PropGet) {
      if (!pr->locals.count(pr->lname)) pr->locals[pr->lname] = pr->nSlots++;
      pr->resultSlot = pr->locals[pr->lname];
    }
    proc_ = pr;
    ParseBlock(pr->body, {"end"});
    ExpectKw("end");
    ExpectKw(endWord);
    EndStmt();
    proc_ = nullptr;
    BindProc(pr);
    if (class_) {
      pr->owner = class_;
      auto it = class_->memberIndex.find(pr->lname);
      int idx;
      if (it == class_->memberIndex.end()) {
        if (class_->fieldIndex.count(pr->lname)) Fail(1041);
        idx = static_cast<int>(class_->members.size());
        class_->members.emplace_back();
        class_->memberNames.push_back(pr->name);
        class_->memberIndex[pr->lname] = idx;
      } else {
        idx = it->second;
      }
      ClassDef::Member& m = class_->members[idx];
      Proc*& slotp = pr->kind == ProcKind::PropLet   ? m.let
                     : pr->kind == ProcKind::PropSet ? m.set
                                                     : m.get;
      if (slotp) Fail(1041); // Name redefined
      slotp = pr;
      if (isDefault) {
        if (class_->defaultMember >= 0 && class_->defaultMember != idx) Fail(1052);
        class_->defaultMember = idx;
      }
      if (pr->lname == "class_initialize") class_->init = pr;
      if (pr->lname == "class_terminate") class_->term = pr;
    } else {
      p_.procs.push_back(pr);
    }
  }

  void ParseClass() {
    ExpectKw("class");
    p_.classStore.push_back(std::make_unique<ClassDef>());
    ClassDef* c = p_.classStore.back().get();
    c->name = Name(&c->lname);
    EndStmt();
    class_ = c;
    for (;;) {
      if (AtEnd()) Fail(1002);
      if (SkipNL()) continue;
      if (IsKw("end")) break;
      std::vector<Stmt*> none;
      ParseStatementInto(none, false);
      if (!none.empty()) Fail(1002);
    }
    ExpectKw("end");
    ExpectKw("class");
    EndStmt();
    class_ = nullptr;
    p_.classes.push_back(c);
  }

  // Binds the procedure's identifiers to its slots, now that all its Dim lines are known.
  void BindProc(Proc* pr) {
    std::function<void(Expr*)> be = [&](Expr* e) {
      if (!e) return;
      if (e->k == EK::Ident) {
        auto it = pr->locals.find(e->lname);
        if (it != pr->locals.end()) {
          e->bind = Bind::Local;
          e->slot = it->second;
        }
      }
      be(e->a);
      be(e->b);
      for (Expr* x : e->args) be(x);
    };
    std::function<void(std::vector<Stmt*>&)> bs = [&](std::vector<Stmt*>& v) {
      for (Stmt* s : v) {
        be(s->lhs);
        be(s->rhs);
        be(s->cond);
        be(s->from);
        be(s->to);
        be(s->step);
        for (Expr* c : s->conds) be(c);
        for (auto& br : s->branches) bs(br);
        bs(s->body);
        for (CaseClause& cc : s->cases) {
          for (auto& t : cc.tests) {
            be(t.a);
            be(t.b);
          }
          bs(cc.body);
        }
        for (DimItem& d : s->dims) {
          for (Expr* x : d.bounds) be(x);
          be(d.target);
          auto it = pr->locals.find(d.lname);
          if (it != pr->locals.end()) d.slot = it->second;
        }
      }
    };
    bs(pr->body);
  }

  // Statements other than declarations of procedures and classes.
  Stmt* ParseSimple(bool top) {
    (void)top;
    int line = Cur().line;
    Stmt* s = ParseSimpleInner();
    if (s) s->line = line;
    return s;
  }

  Stmt* ParseSimpleInner() {
    if (AcceptKw("dim")) {
      Stmt* s = ParseDim();
      EndStmt();
      return s;
    }
    if (AcceptKw("const")) {
      Stmt* s = ParseConst();
      EndStmt();
      return s;
    }
    if (AcceptKw("option")) {
      if (Cur().t != TT::Ident || Cur().ltext != "explicit") Fail(1002);
      ++i_;
      p_.optionExplicit = true;
      EndStmt();
      return nullptr;
    }
    if (AcceptKw("redim")) {
      Stmt* s = NewStmt(SK::ReDim);
      s->preserve = AcceptKw("preserve");
      do {
        DimItem d;
        d.name = Name(&d.lname);
        Expr* id = NewExpr(EK::Ident);
        id->name = d.name;
        id->lname = d.lname;
        d.target = id;
        ExpectSym("(");
        ParseArgs(d.bounds, ")");
        if (d.bounds.empty()) Fail(1002);
        d.isArray = true;
        if (proc_ && !proc_->locals.count(d.lname)) {
          // ReDim of an unknown name declares it, as Dim does
          proc_->locals[d.lname] = proc_->nSlots++;
        }
        s->dims.push_back(std::move(d));
      } while (AcceptSym(","));
      EndStmt();
      return s;
    }
    if (AcceptKw("erase")) {
      Stmt* s = NewStmt(SK::Erase);
      DimItem d;
      d.target = ParsePostfix();
      s->dims.push_back(std::move(d));
      EndStmt();
      return s;
    }
    if (AcceptKw("set")) {
      Stmt* s = NewStmt(SK::Set);
      s->lhs = ParsePostfix();
      ExpectSym("=", 1011);
      s->rhs = ParseExpr();
      EndStmt();
      return s;
    }
    if (AcceptKw("let")) return ParseAssignOrCall();
    if (AcceptKw("call")) {
      Stmt* s = NewStmt(SK::CallStmt);
      Expr* e = ParsePostfix();
      if (e->k != EK::Call) {
        Expr* c = NewExpr(EK::Call);
        c->a = e;
        e = c;
      }
      s->lhs = e;
      EndStmt();
      return s;
    }
    if (IsKw("if")) return ParseIf();
    if (AcceptKw("select")) {
      ExpectKw("case");
      Stmt* s = NewStmt(SK::Select);
      s->cond = ParseExpr();
      EndStmt();
      while (SkipNL()) {
      }
      while (AcceptKw("case")) {
        CaseClause cc;
        if (!AcceptKw("else")) {
          do {
            CaseClause::Test t;
            if (AcceptKw("is")) {
              t.kind = 2;
              if (IsSym("="))
                t.op = Op::Eq;
              else if (IsSym("<>"))
                t.op = Op::Ne;
              else if (IsSym("<"))
                t.op = Op::Lt;
              else if (IsSym(">"))
                t.op = Op::Gt;
              else if (IsSym("<="))
                t.op = Op::Le;
              else if (IsSym(">="))
                t.op = Op::Ge;
              else
                Fail(1002);
              ++i_;
              t.a = ParseExpr();
            } else {
              t.a = ParseExpr();
              if (AcceptKw("to")) {
                t.kind = 1;
                t.b = ParseExpr();
              }
            }
            cc.tests.push_back(t);
          } while (AcceptSym(","));
        }
        if (Cur().t == TT::NL) ++i_;
        ParseBlock(cc.body, {"case", "end"});
        s->cases.push_back(std::move(cc));
      }
      ExpectKw("end");
      ExpectKw("select");
      EndStmt();
      return s;
    }
    if (AcceptKw("for")) {
      if (AcceptKw("each")) {
        Stmt* s = NewStmt(SK::ForEach);
        s->lhs = ParsePostfix();
        if (s->lhs->k != EK::Ident) Fail(1010);
        ExpectKw("in");
        s->from = ParseExpr();
        EndStmt();
        ParseBlock(s->body, {"next"});
        ExpectKw("next");
        if (Cur().t == TT::Ident && !IsReserved(Cur().ltext)) ++i_;
        EndStmt();
        return s;
      }
      Stmt* s = NewStmt(SK::For);
      s->lhs = ParsePrimary();
      if (s->lhs->k != EK::Ident) Fail(1010);
      ExpectSym("=", 1011);
      s->from = ParseExpr();
      ExpectKw("to", 1013);
      s->to = ParseExpr();
      if (AcceptKw("step")) s->step = ParseExpr();
      EndStmt();
      ParseBlock(s->body, {"next"});
      ExpectKw("next");
      if (Cur().t == TT::Ident && !IsReserved(Cur().ltext)) ++i_;
      EndStmt();
      return s;
    }
    if (AcceptKw("do")) {
      Stmt* s = NewStmt(SK::Do);
      if (AcceptKw("while")) {
        s->loopKind = 1;
        s->cond = ParseExpr();
      } else if (AcceptKw("until")) {
        s->loopKind = 2;
        s->cond = ParseExpr();
      }
      EndStmt();
      ParseBlock(s->body, {"loop"});
      ExpectKw("loop");
      if (s->loopKind == 0) {
        if (AcceptKw("while")) {
          s->loopKind = 3;
          s->cond = ParseExpr();
        } else if (AcceptKw("until")) {
          s->loopKind = 4;
          s->cond = ParseExpr();
        }
      }
      EndStmt();
      return s;
    }
    if (AcceptKw("while")) {
      Stmt* s = NewStmt(SK::Do);
      s->loopKind = 1;
      s->cond = ParseExpr();
      EndStmt();
      ParseBlock(s->body, {"wend"});
      ExpectKw("wend");
      EndStmt();
      return s;
    }
    if (AcceptKw("exit")) {
      Stmt* s = NewStmt(SK::Exit);
      if (AcceptKw("do"))
        s->exit = ExitKind::Do;
      else if (AcceptKw("for"))
        s->exit = ExitKind::For;
      else if (AcceptKw("sub") || AcceptKw("function") || AcceptKw("property")) {
        if (!proc_) Fail(1002);
        s->exit = ExitKind::Proc;
      } else
        Fail(1002);
      EndStmt();
      return s;
    }
    if (AcceptKw("with")) {
      Stmt* s = NewStmt(SK::With);
      s->rhs = ParseExpr();
      EndStmt();
      ParseBlock(s->body, {"end"});
      ExpectKw("end");
      ExpectKw("with");
      EndStmt();
      return s;
    }
    if (AcceptKw("on")) {
      Stmt* s = NewStmt(SK::OnError);
      if (Cur().t != TT::Ident || Cur().ltext != "error") Fail(1002);
      ++i_;
      if (AcceptKw("goto")) {
        if (Cur().t != TT::Num || Cur().text != "0") Fail(1002);
        ++i_;
        s->resumeNext = false;
      } else {
        if (Cur().t != TT::Ident || Cur().ltext != "resume") Fail(1002);
        ++i_;
        ExpectKw("next");
        s->resumeNext = true;
      }
      EndStmt();
      return s;
    }
    if (AcceptKw("stop")) {
      EndStmt();
      return nullptr;
    }
    if (Cur().t == TT::Ident && Cur().val.t == VT::Empty && IsReserved(Cur().ltext))
      Fail(1024); // Expected statement
    return ParseAssignOrCall();
  }

  Stmt* ParseAssignOrCall() {
    size_t start = i_;
    size_t lastParen = 0;
    Expr* before = nullptr;
    Expr* target = ParsePostfix(&lastParen, &before);
    if (AcceptSym("=")) {
      Stmt* s = NewStmt(SK::Assign);
      s->lhs = target;
      s->rhs = ParseExpr();
      EndStmt();
      return s;
    }
    Stmt* s = NewStmt(SK::CallStmt);
    if (AtStmtEnd()) {
      if (target->k == EK::Call && target->parens && target->args.size() == 1 && target->args[0]) {
        // Name(x) without Call: the parentheses belong to x, which goes by value
        Expr* p = NewExpr(EK::Paren);
        p->a = target->args[0];
        target->args[0] = p;
      } else if (target->k == EK::Call && target->parens && target->args.size() > 1) {
        Fail(1044); // Cannot use parentheses when calling a Sub
      }
      if (target->k != EK::Call) {
        Expr* c = NewExpr(EK::Call);
        c->a = target;
        target = c;
      }
      s->lhs = target;
    } else {
      Expr* callee = target;
      if (target->k == EK::Call && before) {
        i_ = lastParen;
        callee = before;
      }
      (void)start;
      if (callee->k != EK::Ident && callee->k != EK::Member) Fail(1025);
      Expr* c = NewExpr(EK::Call);
      c->a = callee;
      ParseArgs(c->args, nullptr);
      s->lhs = c;
    }
    if (!AtStmtEnd()) Fail(1025);
    if (!IsKw("else")) EndStmt();
    return s;
  }

  Stmt* ParseIf() {
    ExpectKw("if");
    Stmt* s = NewStmt(SK::If);
    s->conds.push_back(ParseExpr());
    ExpectKw("then", 1017);
    if (Cur().t != TT::NL || Cur().colon) {
      // single line: statements to the line's end, an Else part
      if (Cur().colon) ++i_;
      s->branches.emplace_back();
      ParseLineStmts(s->branches.back());
      if (AcceptKw("else")) {
        s->conds.push_back(nullptr);
        s->branches.emplace_back();
        ParseLineStmts(s->branches.back());
      }
      if (AcceptKw("end")) ExpectKw("if");
      EndStmt();
      return s;
    }
    ++i_;
    s->branches.emplace_back();
    ParseBlock(s->branches.back(), {"elseif", "else", "end"});
    for (;;) {
      if (AcceptKw("elseif")) {
        s->conds.push_back(ParseExpr());
        ExpectKw("then", 1017);
        EndStmt();
        s->branches.emplace_back();
        ParseBlock(s->branches.back(), {"elseif", "else", "end"});
        continue;
      }
      if (AcceptKw("else")) {
        s->conds.push_back(nullptr);
        s->branches.emplace_back();
        if (Cur().t != TT::NL) {
          ParseLineStmts(s->branches.back());
        }
        ParseBlock(s->branches.back(), {"end"});
      }
      break;
    }
    ExpectKw("end");
    ExpectKw("if", 1018);
    EndStmt();
    return s;
  }

  // Statements of a single-line If up to the line's end or its Else.
  void ParseLineStmts(std::vector<Stmt*>& out) {
    for (;;) {
      if (Cur().t == TT::NL && !Cur().colon) return;
      if (Cur().t == TT::End) return;
      if (IsKw("else")) return;
      if (IsKw("end") && IsKwAt(1, "if")) return;
      if (Cur().t == TT::NL) {
        ++i_;
        continue;
      }
      size_t before = i_;
      Stmt* s = ParseSimpleLine();
      if (s) out.push_back(s);
      if (i_ == before) Fail(1002);
      // ParseSimple ate the ':' or the newline: a real newline ends the line
      if (i_ > 0 && t_[i_ - 1].t == TT::NL && !t_[i_ - 1].colon) {
        --i_;
        return;
      }
    }
  }
  Stmt* ParseSimpleLine() {
    if (IsKw("if")) {
      return ParseIf();
    }
    return ParseSimple(false);
  }
};

} // namespace

bool IsReserved(std::string_view lname) {
  for (const char* w : kReserved)
    if (lname == w) return true;
  return false;
}

bool ParseNumberLiteral(std::string_view text, Value& out) {
  bool isInt = text.find_first_of(".eE") == std::string_view::npos;
  if (isInt) {
    // digits only
    uint64_t v = 0;
    bool big = false;
    for (char c : text) {
      if (!IsDigit(c)) return false;
      if (v > 100000000000000000ull)
        big = true;
      else
        v = v * 10 + (c - '0');
    }
    if (!big && v <= 32767) {
      out = Value::Int(static_cast<int64_t>(v));
      return true;
    }
    if (!big && v <= 2147483647ull) {
      out = Value::Lng(static_cast<int64_t>(v));
      return true;
    }
  }
  std::string s(text);
  char* end = nullptr;
  double d = std::strtod(s.c_str(), &end);
  if (!end || *end) {
    // strtod follows the C locale's separator; the literal always has '.'
    Conv c;
    if (!c.ParseNumber(text, d)) return false;
  }
  out = Value::Dbl(d);
  return true;
}

bool Parse(const std::string& text, Program& prog, Error& err, bool exprOnly) {
  try {
    Lexer lx(text);
    std::vector<Tok> toks = lx.Run();
    Parser p(toks, prog);
    if (exprOnly) {
      Expr* e = p.ParseSoleExpr();
      prog.stmts.push_back(std::make_unique<Stmt>());
      prog.stmts.back()->k = SK::Nop;
      prog.stmts.back()->rhs = e;
      prog.top.push_back(prog.stmts.back().get());
    } else {
      p.ParseProgram();
    }
    return true;
  } catch (const SyntaxError& e) {
    err.Number = e.number;
    err.Description = ErrorText(e.number);
    err.Line = e.line;
    err.Source = "Microsoft VBScript compilation error";
    return false;
  }
}

} // namespace vbs
