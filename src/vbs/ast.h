#pragma once
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "vbs/value.h"

namespace vbs {

struct Proc;
struct ClassDef;

enum class Op : uint8_t {
  Pow,
  Neg,
  Mul,
  Div,
  IDiv,
  Mod,
  Add,
  Sub,
  Cat,
  Eq,
  Ne,
  Lt,
  Gt,
  Le,
  Ge,
  Is,
  Not,
  And,
  Or,
  Xor,
  Eqv,
  Imp,
};

enum class EK : uint8_t {
  Literal, // val
  Ident,   // name
  Member,  // a.name (a null: the With object)
  Call,    // target(args): target is Ident or Member
  Unary,   // op a
  Binary,  // op a b
  Paren,   // (a): passed by value
  New,     // New name
  Me,
};

// How an identifier was found, cached on its node after the first look-up.
enum class Bind : uint8_t { None, Local, Global, Field };

struct Expr {
  EK k;
  Op op = Op::Add;
  bool parens = false; // Call: written with parentheses
  Bind bind = Bind::None;
  int slot = -1; // Local slot / Global index / Field index
  const void* bindOwner = nullptr;
  int line = 0;
  std::string name;  // Ident/Member/New: as written
  std::string lname; // lower case
  Value val;
  Expr* a = nullptr;
  Expr* b = nullptr;
  std::vector<Expr*> args;
  // Member: cached member id for the last object type seen
  const void* cacheType = nullptr;
  int cacheId = -1;
};

enum class SK : uint8_t {
  Assign,
  Set,
  CallStmt,
  Dim,
  ReDim,
  Erase,
  Const,
  If,
  Select,
  For,
  ForEach,
  Do,
  While,
  Exit,
  With,
  OnError,
  OptionExplicit,
  Nop,
};

enum class ExitKind : uint8_t { None, Do, For, Proc };

struct CaseClause {
  // Each test: kind 0 value, 1 range a To b, 2 Is <op> a
  struct Test {
    int kind = 0;
    Op op = Op::Eq;
    Expr* a = nullptr;
    Expr* b = nullptr;
  };
  std::vector<Test> tests; // empty: Case Else
  std::vector<struct Stmt*> body;
};

struct DimItem {
  std::string name, lname;
  std::vector<Expr*> bounds; // empty and !isArray: scalar
  bool isArray = false;
  Expr* target = nullptr; // ReDim/Erase: the variable
  int slot = -1;          // local slot, bound at parse
};

struct Stmt {
  SK k;
  int line = 0;
  Expr* lhs = nullptr;
  Expr* rhs = nullptr;
  Expr* cond = nullptr;
  std::vector<Expr*> conds; // If: one per branch (null for Else)
  std::vector<std::vector<Stmt*>> branches;
  std::vector<Stmt*> body;
  std::vector<CaseClause> cases;
  std::vector<DimItem> dims;
  Expr* from = nullptr;
  Expr* to = nullptr;
  Expr* step = nullptr;
  // Do: 0 none, 1 While pre, 2 Until pre, 3 While post, 4 Until post
  int loopKind = 0;
  ExitKind exit = ExitKind::None;
  bool preserve = false;
  bool resumeNext = false;
};

struct Param {
  std::string name, lname;
  bool byVal = false;
};

enum class ProcKind : uint8_t { Sub, Function, PropGet, PropLet, PropSet };

struct Proc {
  ProcKind kind = ProcKind::Sub;
  std::string name, lname;
  std::vector<Param> params;
  std::vector<Stmt*> body;
  std::unordered_map<std::string, int> locals; // params first, then Dim'd and the result
  int nSlots = 0;
  int resultSlot = -1; // Function / Property Get: the slot named like the procedure
  bool isPublic = true;
  bool isDefault = false;
  ClassDef* owner = nullptr;
  int line = 0;
};

struct ClassDef {
  std::string name, lname;
  struct Field {
    std::string name, lname;
    bool isPublic = true;
    bool isArray = false;
    std::vector<Expr*> bounds;
  };
  std::vector<Field> fields;
  std::unordered_map<std::string, int> fieldIndex;
  // Members by lower-case name: Get (Function or Property Get or Sub), Let, Set.
  struct Member {
    Proc* get = nullptr;
    Proc* let = nullptr;
    Proc* set = nullptr;
  };
  std::vector<Member> members;
  std::vector<std::string> memberNames;
  std::unordered_map<std::string, int> memberIndex;
  int defaultMember = -1;
  Proc* init = nullptr;
  Proc* term = nullptr;
};

// One parsed text: its top-level statements, procedures and classes, and the nodes they own.
struct Program {
  std::vector<Stmt*> top;
  std::vector<Proc*> procs;
  std::vector<ClassDef*> classes;
  bool optionExplicit = false;
  std::vector<std::unique_ptr<Expr>> exprs;
  std::vector<std::unique_ptr<Stmt>> stmts;
  std::vector<std::unique_ptr<Proc>> procStore;
  std::vector<std::unique_ptr<ClassDef>> classStore;
};

// Parses a text into a program; false with `err` (number, text, line) on a syntax error.
// `exprOnly`: the text is one expression (Eval), kept in `top[0]->rhs`.
bool Parse(const std::string& text, Program& prog, Error& err, bool exprOnly = false);
// Words the parser keeps for itself: a variable can't be named so.
bool IsReserved(std::string_view lname);
// A number literal's value as the parser reads it (Integer, Long or Double).
bool ParseNumberLiteral(std::string_view text, Value& out);

} // namespace vbs
