#pragma once
#include <deque>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "vbs/ast.h"
#include "vbs/object.h"
#include "vbs/value.h"

namespace vbs {

// What the engine needs from the program around it: the dialogs, the decimal separator
// and a cancel test. The defaults answer as a headless run does.
class EngineHost {
public:
  virtual ~EngineHost() = default;
  // Returns the button pressed (vbOK = 1 ... vbNo = 7); headless: the default button.
  virtual int MsgBox(const std::string& prompt, int buttons, const std::string& title);
  // Returns the text; `cancelled` when the user cancelled (the script sees "").
  virtual std::string InputBox(const std::string& prompt, const std::string& title,
                               const std::string& def, bool& cancelled);
  // Asked every so many statements: true stops the script.
  virtual bool Cancelled() { return false; }
};

// Limits against runaway scripts.
inline constexpr int kMaxCallDepth = 1000;
inline constexpr size_t kMaxStackBytes = 3u
                                         << 20; // of the thread's stack, whatever the frames cost
inline constexpr size_t kMaxStringBytes = 64u << 20;  // String(), Space(), concatenation
inline constexpr size_t kMaxArrayElements = 4u << 20; // Dim, ReDim

class ClassInstance;
struct Frame;

// The interpreter: one global namespace that host objects join, statements executed
// into it and expressions evaluated against it.
class Interp {
public:
  explicit Interp(EngineHost* host = nullptr, char decimalSep = '.');
  ~Interp();
  Interp(const Interp&) = delete;
  Interp& operator=(const Interp&) = delete;

  // ---- the host's interface; false leaves the failure in LastError()
  // An object under `name`; with `globalMembers` its members are callable without a prefix.
  void AddObject(const std::string& name, std::shared_ptr<Object> obj, bool globalMembers);
  bool ExecuteStatement(const std::string& text);
  bool Eval(const std::string& expr, Value& out);
  // Parse once, run many: the program keeps its procedures registered while it lives here.
  std::shared_ptr<Program> Compile(const std::string& text);
  bool Run(const std::shared_ptr<Program>& prog);
  const Error& LastError() const { return last_; }
  // A global variable, made when missing.
  Value& Global(const std::string& name);
  // A global variable, or null when none has the name.
  Value* FindGlobal(const std::string& lname);
  const Conv& Cv() const { return conv_; }
  void SetDecimalSep(char c) { conv_.Dec = c; }
  EngineHost& Host() { return *host_; }
  // Stops the running script at its next statement (from a host callback).
  void Cancel() { cancel_ = true; }

  // ---- for built-ins and objects
  Value CallValue(const Value& callee,
                  std::span<Value*> args);            // a GetRef result or a default member
  void RunText(const std::string& text, bool global); // Execute / ExecuteGlobal
  Value EvalText(const std::string& text);            // Eval in the current scope
  Value CallProc(Proc* p, ClassInstance* me, std::span<Value*> args);
  Proc* FindProc(const std::string& lname);
  std::shared_ptr<Object> ErrObject();
  std::shared_ptr<Object> NewInstance(const std::string& lname);
  void SetErr(const Error& e);
  void ClearErr();
  double RndNext(double arg);
  void Randomize(double seed, bool useTimer);
  // Objects' Let of a value that is an object takes its default member.
  Value Deref(Value v);
  bool InTerminate() const { return dying_; }

private:
  friend class ClassInstance;
  struct HostObj {
    std::string lname;
    std::shared_ptr<Object> obj;
    bool global;
  };
  enum class Found : uint8_t { None, Var, Proc, Builtin, HostMember, HostObject, ClassMember };
  struct Lookup {
    Found kind = Found::None;
    Value* var = nullptr;
    bool isConst = false;
    Proc* proc = nullptr;
    int builtin = -1;
    Object* obj = nullptr;
    std::shared_ptr<Object> objRef;
    int id = -1;
  };

  bool RunProgram(Program& prog);
  void Register(Program& prog);
  int ExecBlock(std::vector<Stmt*>& body);
  int ExecStmt(Stmt* s);
  void ExecDim(Stmt* s);
  void ExecReDim(Stmt* s);
  int ExecFor(Stmt* s);
  int ExecForEach(Stmt* s);
  int ExecDo(Stmt* s);
  int ExecSelect(Stmt* s);

  Value EvalE(Expr* e);
  Value EvalCall(Expr* e, Expr* target, std::vector<Expr*>* args, bool parens);
  Value EvalMember(Expr* m, std::vector<Expr*>* args, bool parens);
  void Assign(Expr* lhs, Value v, bool isSet);
  Lookup Find(Expr* e, bool forWrite);
  Value* MakeVar(Expr* e);
  Value* VarRef(Expr* e); // the variable an argument names (for ByRef), or null
  void BuildArgs(std::vector<Expr*>& exprs, std::vector<Value>& temps, std::vector<Value*>& ptrs,
                 bool byRefOk);
  Value Index(Value& arr, std::span<Value*> idx);
  Value* ElemRef(Value& arr, std::span<Value*> idx);
  Value CallObj(Object* o, int id, std::span<Value*> args, Invoke kind);
  Value CallBuiltin(int b, std::span<Value*> args);
  Object* WithTop();
  // The object a member expression acts on: its base, held in `base`, or the With object.
  Object* MemberObject(Expr* m, Value& base);
  std::shared_ptr<Array> MakeArray(const std::vector<Expr*>& bounds, bool fixed);
  void CheckCancel();
  int ConstIndex(const std::string& lname) const;

  EngineHost defaultHost_;
  EngineHost* host_;
  Conv conv_;
  std::deque<Value> globals_;
  std::vector<bool> globalConst_;
  std::unordered_map<std::string, int> globalIdx_;
  std::unordered_map<std::string, Proc*> procs_;
  std::unordered_map<std::string, ClassDef*> classes_;
  std::vector<std::shared_ptr<Program>> keep_;
  std::vector<HostObj> hostObjs_;
  std::shared_ptr<Object> err_;
  Frame* frame_ = nullptr;
  std::unique_ptr<Frame> globalFrame_;
  int depth_ = 0;
  const char* stackBase_ = nullptr; // where the outermost run began
  unsigned tick_ = 0;
  bool optionExplicit_ = false;
  bool cancel_ = false;
  bool dying_ = false;
  uint32_t rnd_ = 0x50000;
  double lastRnd_ = 0;
  Error last_;
};

// Thrown through the engine when the host cancels: On Error Resume Next doesn't catch it.
struct Cancelled {};

// Built-in functions: index by lower-case name, or -1.
int FindBuiltin(std::string_view lname);
struct BuiltinInfo {
  const char* name;
  Value (*fn)(Interp&, std::span<Value*>);
  int minArgs, maxArgs;
};
const BuiltinInfo& Builtin(int i);
// A named constant (vbCrLf, vbYes, ...): true with its value.
bool FindConstant(std::string_view lname, Value& out);

// Operators over Variants.
Value BinOp(const Conv& c, Op op, const Value& a, const Value& b);
Value UnOp(const Conv& c, Op op, const Value& a);
// -1, 0, 1; 2 when either side is Null. `text`: case-insensitive strings.
int Compare(const Conv& c, const Value& a, const Value& b, bool text = false);
std::string TypeNameOf(const Value& v);
int VarTypeOf(const Value& v);

// Objects the engine itself provides.
std::shared_ptr<Object> NewRegExp();
std::shared_ptr<Object> NewDictionary();
std::shared_ptr<Object> NewErrObject();
std::shared_ptr<Object> NewProcRef(Proc* p);
Error& ErrState(Object& errObj);

// An instance of a script class.
class ClassInstance : public Object, public std::enable_shared_from_this<ClassInstance> {
public:
  ClassInstance(Interp& in, ClassDef* def);
  ~ClassInstance() override;
  std::string TypeName() const override { return def_->name; }
  int MemberId(std::string_view lname) override;
  int DefaultId() override;
  int Call(Interp& in, int id, std::span<Value*> args, Invoke kind, Value& result,
           std::string& desc) override;
  ClassDef* Def() const { return def_; }
  std::vector<Value> Fields;
  bool Alive = true;

private:
  Interp* in_;
  ClassDef* def_;
};

} // namespace vbs
