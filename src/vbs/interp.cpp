// The evaluator: statements and expressions over the syntax tree.
#include "vbs/interp.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace vbs {

struct Frame {
  Proc* proc = nullptr;
  ClassInstance* me = nullptr;
  std::vector<Value> store;
  std::vector<Value*> refs;
  std::unordered_map<std::string, std::unique_ptr<Value>> extra; // made by assignment or Execute
  std::vector<Value> with;
  bool resumeNext = false;
};

int EngineHost::MsgBox(const std::string& prompt, int buttons, const std::string&) {
  std::fputs(prompt.c_str(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
  // the default button of each button set
  switch (buttons & 7) {
  case 1:
    return 1; // OK/Cancel: OK
  case 2:
    return 3; // Abort/Retry/Ignore: Abort
  case 3:
    return 6; // Yes/No/Cancel: Yes
  case 4:
    return 6; // Yes/No: Yes
  case 5:
    return 4; // Retry/Cancel: Retry
  default:
    return 1;
  }
}

std::string EngineHost::InputBox(const std::string&, const std::string&, const std::string& def,
                                 bool& cancelled) {
  cancelled = false;
  return def;
}

Interp::Interp(EngineHost* host, char decimalSep) : host_(host ? host : &defaultHost_) {
  conv_.Dec = decimalSep;
  globalFrame_ = std::make_unique<Frame>();
  frame_ = globalFrame_.get();
  err_ = NewErrObject();
}

Interp::~Interp() {
  // instances still held run their Class_Terminate while the engine is whole
  dying_ = true;
  for (Value& v : globals_) v = Value();
  globalFrame_->extra.clear();
}

void Interp::AddObject(const std::string& name, std::shared_ptr<Object> obj, bool globalMembers) {
  hostObjs_.push_back({ToLower(name), std::move(obj), globalMembers});
}

Value& Interp::Global(const std::string& name) {
  std::string l = ToLower(name);
  auto it = globalIdx_.find(l);
  if (it != globalIdx_.end()) return globals_[it->second];
  globalIdx_[l] = static_cast<int>(globals_.size());
  globals_.emplace_back();
  globalConst_.push_back(false);
  return globals_.back();
}

Value* Interp::FindGlobal(const std::string& lname) {
  auto it = globalIdx_.find(lname);
  return it == globalIdx_.end() ? nullptr : &globals_[it->second];
}

std::shared_ptr<Program> Interp::Compile(const std::string& text) {
  auto p = std::make_shared<Program>();
  Error e;
  if (!Parse(text, *p, e)) {
    last_ = e;
    return nullptr;
  }
  return p;
}

void Interp::Register(Program& prog) {
  for (Proc* p : prog.procs) procs_[p->lname] = p;
  for (ClassDef* c : prog.classes) classes_[c->lname] = c;
  if (prog.optionExplicit) optionExplicit_ = true;
}

bool Interp::Run(const std::shared_ptr<Program>& prog) {
  if (!prog) return false;
  if ((!prog->procs.empty() || !prog->classes.empty()) && (keep_.empty() || keep_.back() != prog))
    keep_.push_back(prog);
  return RunProgram(*prog);
}

bool Interp::RunProgram(Program& prog) {
  Register(prog);
  cancel_ = false;
  Frame* saved = frame_;
  frame_ = globalFrame_.get();
  frame_->resumeNext = false;
  int savedDepth = depth_;
  const char* savedBase = stackBase_;
  if (!stackBase_) stackBase_ = static_cast<const char*>(__builtin_frame_address(0));
  struct BaseReset {
    const char*& b;
    const char* v;
    ~BaseReset() { b = v; }
  } baseReset{stackBase_, savedBase};
  try {
    ExecBlock(prog.top);
    frame_ = saved;
    return true;
  } catch (Error& e) {
    if (e.Source.empty()) e.Source = "Microsoft VBScript runtime error";
    last_ = e;
  } catch (Cancelled&) {
    last_ = Error{};
    last_.Number = -1;
    last_.Description = "Script canceled";
  }
  frame_ = saved;
  depth_ = savedDepth;
  globalFrame_->with.clear();
  return false;
}

bool Interp::ExecuteStatement(const std::string& text) {
  auto p = Compile(text);
  if (!p) return false;
  return Run(p);
}

bool Interp::Eval(const std::string& expr, Value& out) {
  auto p = std::make_shared<Program>();
  Error e;
  if (!Parse(expr, *p, e, true)) {
    last_ = e;
    return false;
  }
  Frame* saved = frame_;
  frame_ = globalFrame_.get();
  const char* savedBase = stackBase_;
  if (!stackBase_) stackBase_ = static_cast<const char*>(__builtin_frame_address(0));
  struct BaseReset {
    const char*& b;
    const char* v;
    ~BaseReset() { b = v; }
  } baseReset{stackBase_, savedBase};
  try {
    out = EvalE(p->top[0]->rhs);
    frame_ = saved;
    return true;
  } catch (Error& er) {
    if (er.Source.empty()) er.Source = "Microsoft VBScript runtime error";
    last_ = er;
  } catch (Cancelled&) {
    last_ = Error{};
    last_.Number = -1;
    last_.Description = "Script canceled";
  }
  frame_ = saved;
  return false;
}

void Interp::RunText(const std::string& text, bool global) {
  auto p = std::make_shared<Program>();
  Error e;
  if (!Parse(text, *p, e)) throw e;
  if (!p->procs.empty() || !p->classes.empty()) keep_.push_back(p);
  Register(*p);
  Frame* saved = frame_;
  if (global) frame_ = globalFrame_.get();
  try {
    ExecBlock(p->top);
  } catch (...) {
    frame_ = saved;
    throw;
  }
  frame_ = saved;
}

Value Interp::EvalText(const std::string& text) {
  auto p = std::make_shared<Program>();
  Error e;
  if (!Parse(text, *p, e, true)) throw e;
  return EvalE(p->top[0]->rhs);
}

Proc* Interp::FindProc(const std::string& lname) {
  auto it = procs_.find(lname);
  return it == procs_.end() ? nullptr : it->second;
}

std::shared_ptr<Object> Interp::ErrObject() {
  return err_;
}

void Interp::SetErr(const Error& e) {
  Error& st = ErrState(*err_);
  st = e;
  if (st.Source.empty()) st.Source = "Microsoft VBScript runtime error";
}

void Interp::ClearErr() {
  ErrState(*err_) = Error{};
}

std::shared_ptr<Object> Interp::NewInstance(const std::string& lname) {
  auto it = classes_.find(lname);
  if (it == classes_.end()) Throw(506);
  auto inst = std::make_shared<ClassInstance>(*this, it->second);
  ClassDef* def = it->second;
  for (size_t i = 0; i < def->fields.size(); ++i)
    if (def->fields[i].isArray)
      inst->Fields[i] =
          Value::Arr(MakeArray(def->fields[i].bounds, !def->fields[i].bounds.empty()));
  if (def->init) CallProc(def->init, inst.get(), {});
  return inst;
}

void Interp::CheckCancel() {
  if (cancel_ || host_->Cancelled()) {
    cancel_ = false;
    throw Cancelled{};
  }
}

// ---- statements

int Interp::ExecBlock(std::vector<Stmt*>& body) {
  for (Stmt* s : body) {
    if ((++tick_ & 1023) == 0) CheckCancel();
    try {
      int r = ExecStmt(s);
      if (r) return r;
    } catch (Error& e) {
      if (!e.Line) e.Line = s->line;
      if (!frame_->resumeNext) throw;
      SetErr(e);
    }
  }
  return 0;
}

namespace {
struct WithGuard {
  std::vector<Value>& w;
  ~WithGuard() { w.pop_back(); }
};
} // namespace

int Interp::ExecStmt(Stmt* s) {
  switch (s->k) {
  case SK::Assign: {
    Value v = EvalE(s->rhs);
    Assign(s->lhs, std::move(v), false);
    return 0;
  }
  case SK::Set: {
    Value v = EvalE(s->rhs);
    Assign(s->lhs, std::move(v), true);
    return 0;
  }
  case SK::CallStmt: {
    Expr* c = s->lhs;
    EvalCall(c, c->a, &c->args, c->parens);
    return 0;
  }
  case SK::Dim:
    ExecDim(s);
    return 0;
  case SK::ReDim:
    ExecReDim(s);
    return 0;
  case SK::Erase: {
    Value* v = VarRef(s->dims[0].target);
    if (!v || v->t != VT::Array) Throw(13);
    if (v->arr->Locks) Throw(10);
    if (v->arr->Fixed) {
      auto a = std::make_shared<Array>(*v->arr);
      for (Value& x : a->Data) x = Value();
      v->arr = a;
    } else {
      v->arr = std::make_shared<Array>();
    }
    return 0;
  }
  case SK::Const: {
    for (DimItem& d : s->dims) {
      Value v = EvalE(d.bounds[0]);
      if (frame_->proc && d.slot >= 0) {
        *frame_->refs[d.slot] = std::move(v);
      } else if (frame_ == globalFrame_.get()) {
        Value& g = Global(d.name);
        g = std::move(v);
        globalConst_[globalIdx_[d.lname]] = true;
      } else {
        auto& p = frame_->extra[d.lname];
        p = std::make_unique<Value>(std::move(v));
      }
    }
    return 0;
  }
  case SK::If: {
    for (size_t i = 0; i < s->conds.size(); ++i) {
      Expr* c = s->conds[i];
      bool take = true;
      if (c) {
        Value v = EvalE(c);
        take = v.t == VT::Null ? false : conv_.ToBool(v);
      }
      if (take) return ExecBlock(s->branches[i]);
    }
    return 0;
  }
  case SK::Select:
    return ExecSelect(s);
  case SK::For:
    return ExecFor(s);
  case SK::ForEach:
    return ExecForEach(s);
  case SK::Do:
    return ExecDo(s);
  case SK::Exit:
    return static_cast<int>(s->exit);
  case SK::With: {
    frame_->with.push_back(EvalE(s->rhs));
    WithGuard g{frame_->with};
    return ExecBlock(s->body);
  }
  case SK::OnError:
    frame_->resumeNext = s->resumeNext;
    ClearErr();
    return 0;
  default:
    return 0;
  }
}

std::shared_ptr<Array> Interp::MakeArray(const std::vector<Expr*>& bounds, bool fixed) {
  auto a = std::make_shared<Array>();
  a->Fixed = fixed;
  if (bounds.size() > 60) Throw(5);
  size_t total = 1;
  for (Expr* b : bounds) {
    if (!b) Throw(1002);
    int64_t ub = conv_.ToLong(EvalE(b));
    if (ub < -1) Throw(9);
    a->UBound.push_back(ub);
    total *= static_cast<size_t>(ub + 1);
    if (total > kMaxArrayElements) Throw(7);
  }
  if (!bounds.empty()) a->Data.resize(total);
  return a;
}

void Interp::ExecDim(Stmt* s) {
  for (DimItem& d : s->dims) {
    Value* v;
    if (frame_->proc && d.slot >= 0) {
      v = frame_->refs[d.slot];
    } else if (frame_ == globalFrame_.get()) {
      v = &Global(d.name);
    } else {
      auto& p = frame_->extra[d.lname];
      if (!p) p = std::make_unique<Value>();
      v = p.get();
    }
    if (d.isArray) *v = Value::Arr(MakeArray(d.bounds, !d.bounds.empty()));
  }
}

void Interp::ExecReDim(Stmt* s) {
  for (DimItem& d : s->dims) {
    Value* v = VarRef(d.target);
    if (!v) v = MakeVar(d.target);
    if (v->t == VT::Array && (v->arr->Fixed || v->arr->Locks)) Throw(10);
    auto a = MakeArray(d.bounds, false);
    if (s->preserve && v->t == VT::Array && !v->arr->UBound.empty()) {
      Array& old = *v->arr;
      if (old.UBound.size() != a->UBound.size()) Throw(9);
      for (size_t k = 0; k + 1 < old.UBound.size(); ++k)
        if (old.UBound[k] != a->UBound[k]) Throw(9);
      size_t per = 1;
      for (size_t k = 0; k + 1 < old.UBound.size(); ++k)
        per *= static_cast<size_t>(old.UBound[k] + 1);
      size_t n = std::min(old.Data.size(), a->Data.size());
      (void)per;
      for (size_t i = 0; i < n; ++i) a->Data[i] = old.Data[i];
    }
    *v = Value::Arr(std::move(a));
  }
}

int Interp::ExecFor(Stmt* s) {
  Value from = conv_.ToNumeric(EvalE(s->from));
  Value to = conv_.ToNumeric(EvalE(s->to));
  Value step = s->step ? conv_.ToNumeric(EvalE(s->step)) : Value::Int(1);
  if (from.t == VT::Null || to.t == VT::Null || step.t == VT::Null) Throw(94);
  double st = conv_.ToDouble(step), lim = conv_.ToDouble(to);
  Value* var = VarRef(s->lhs);
  if (!var) var = MakeVar(s->lhs);
  *var = from;
  for (;;) {
    double c = conv_.ToDouble(*var);
    if (st >= 0 ? c > lim : c < lim) break;
    int r = ExecBlock(s->body);
    if (r == static_cast<int>(ExitKind::For)) break;
    if (r) return r;
    var = VarRef(s->lhs);
    if (!var) var = MakeVar(s->lhs);
    *var = BinOp(conv_, Op::Add, *var, step);
    if ((++tick_ & 1023) == 0) CheckCancel();
  }
  return 0;
}

int Interp::ExecForEach(Stmt* s) {
  Value coll = EvalE(s->from);
  std::vector<Value> items;
  std::shared_ptr<Array> held;
  if (coll.t == VT::Array) {
    held = coll.arr;
    if (held->UBound.empty()) Throw(92);
  } else if (coll.t == VT::Object && coll.obj) {
    if (!coll.obj->Items(items)) Throw(451);
  } else {
    Throw(451);
  }
  struct Lock {
    std::shared_ptr<Array> a;
    ~Lock() {
      if (a) --a->Locks;
    }
  } lock{held};
  if (held) ++held->Locks;
  size_t n = held ? held->Data.size() : items.size();
  for (size_t i = 0; i < n; ++i) {
    Value* var = VarRef(s->lhs);
    if (!var) var = MakeVar(s->lhs);
    *var = held ? held->Data[i] : items[i];
    int r = ExecBlock(s->body);
    if (r == static_cast<int>(ExitKind::For)) break;
    if (r) return r;
  }
  return 0;
}

int Interp::ExecDo(Stmt* s) {
  for (;;) {
    if (s->loopKind == 1 || s->loopKind == 2) {
      Value c = EvalE(s->cond);
      bool b = c.t == VT::Null ? false : conv_.ToBool(c);
      if (s->loopKind == 1 ? !b : b) break;
    }
    int r = ExecBlock(s->body);
    if (r == static_cast<int>(ExitKind::Do)) break;
    if (r) return r;
    if (s->loopKind == 3 || s->loopKind == 4) {
      Value c = EvalE(s->cond);
      bool b = c.t == VT::Null ? false : conv_.ToBool(c);
      if (s->loopKind == 3 ? !b : b) break;
    }
    if ((++tick_ & 1023) == 0) CheckCancel();
  }
  return 0;
}

int Interp::ExecSelect(Stmt* s) {
  Value v = EvalE(s->cond);
  for (CaseClause& cc : s->cases) {
    bool hit = cc.tests.empty();
    for (auto& t : cc.tests) {
      if (hit) break;
      if (t.kind == 0) {
        hit = Compare(conv_, v, EvalE(t.a)) == 0;
      } else if (t.kind == 1) {
        int lo = Compare(conv_, v, EvalE(t.a));
        int hi = Compare(conv_, v, EvalE(t.b));
        hit = lo != 2 && hi != 2 && lo >= 0 && hi <= 0;
      } else {
        int c = Compare(conv_, v, EvalE(t.a));
        if (c == 2) continue;
        switch (t.op) {
        case Op::Eq:
          hit = c == 0;
          break;
        case Op::Ne:
          hit = c != 0;
          break;
        case Op::Lt:
          hit = c < 0;
          break;
        case Op::Gt:
          hit = c > 0;
          break;
        case Op::Le:
          hit = c <= 0;
          break;
        case Op::Ge:
          hit = c >= 0;
          break;
        default:
          break;
        }
      }
    }
    if (hit) return ExecBlock(cc.body);
  }
  return 0;
}

// ---- names

int Interp::ConstIndex(const std::string& lname) const {
  auto it = globalIdx_.find(lname);
  return it == globalIdx_.end() ? -1 : it->second;
}

Interp::Lookup Interp::Find(Expr* e, bool) {
  Lookup L;
  Frame* f = frame_;
  switch (e->bind) {
  case Bind::Local:
    if (f->proc) {
      L.kind = Found::Var;
      L.var = f->refs[e->slot];
      return L;
    }
    break;
  case Bind::Global:
    L.kind = Found::Var;
    L.var = &globals_[e->slot];
    L.isConst = globalConst_[e->slot];
    return L;
  case Bind::Field:
    if (f->me && f->me->Def() == e->bindOwner) {
      L.kind = Found::Var;
      L.var = &f->me->Fields[e->slot];
      return L;
    }
    break;
  default:
    break;
  }
  const std::string& n = e->lname;
  if (f->proc) {
    auto it = f->proc->locals.find(n);
    if (it != f->proc->locals.end()) {
      L.kind = Found::Var;
      L.var = f->refs[it->second];
      return L;
    }
  }
  if (!f->extra.empty()) {
    auto it = f->extra.find(n);
    if (it != f->extra.end()) {
      L.kind = Found::Var;
      L.var = it->second.get();
      return L;
    }
  }
  if (f->me) {
    ClassDef* d = f->me->Def();
    auto fi = d->fieldIndex.find(n);
    if (fi != d->fieldIndex.end()) {
      e->bind = Bind::Field;
      e->slot = fi->second;
      e->bindOwner = d;
      L.kind = Found::Var;
      L.var = &f->me->Fields[fi->second];
      return L;
    }
    auto mi = d->memberIndex.find(n);
    if (mi != d->memberIndex.end()) {
      L.kind = Found::ClassMember;
      L.obj = f->me;
      L.id = 100000 + mi->second;
      return L;
    }
  }
  auto gi = globalIdx_.find(n);
  if (gi != globalIdx_.end()) {
    e->bind = Bind::Global;
    e->slot = gi->second;
    L.kind = Found::Var;
    L.var = &globals_[gi->second];
    L.isConst = globalConst_[gi->second];
    return L;
  }
  auto pi = procs_.find(n);
  if (pi != procs_.end()) {
    L.kind = Found::Proc;
    L.proc = pi->second;
    return L;
  }
  int b = FindBuiltin(n);
  if (b >= 0) {
    L.kind = Found::Builtin;
    L.builtin = b;
    return L;
  }
  for (HostObj& h : hostObjs_) {
    if (h.lname == n) {
      L.kind = Found::HostObject;
      L.objRef = h.obj;
      return L;
    }
    if (h.global) {
      int id = h.obj->MemberId(n);
      if (id >= 0) {
        L.kind = Found::HostMember;
        L.obj = h.obj.get();
        L.id = id;
        return L;
      }
    }
  }
  return L;
}

Value* Interp::MakeVar(Expr* e) {
  if (e->k != EK::Ident) Throw(501);
  if (optionExplicit_) {
    Error er;
    er.Number = 500;
    er.Description = "Variable is undefined: '" + e->name + "'";
    throw er;
  }
  if (frame_ == globalFrame_.get()) return &Global(e->name);
  auto& p = frame_->extra[e->lname];
  if (!p) p = std::make_unique<Value>();
  return p.get();
}

Value* Interp::VarRef(Expr* e) {
  if (e->k != EK::Ident) return nullptr;
  Lookup L = Find(e, true);
  if (L.kind == Found::Var) {
    if (L.isConst) Throw(501);
    return L.var;
  }
  if (L.kind == Found::None) return nullptr;
  Throw(501); // a procedure's or built-in's name
}

Object* Interp::WithTop() {
  for (Frame* f = frame_; f;) {
    if (!f->with.empty()) {
      Value& w = f->with.back();
      if (w.t != VT::Object || !w.obj) Throw(424);
      return w.obj.get();
    }
    break;
  }
  Throw(505);
}

// ---- expressions

Value Interp::Deref(Value v) {
  if (v.t != VT::Object) return v;
  if (!v.obj) Throw(91);
  int id = v.obj->DefaultId();
  if (id < 0) Throw(438);
  return CallObj(v.obj.get(), id, {}, Invoke::Get);
}

Value Interp::CallObj(Object* o, int id, std::span<Value*> args, Invoke kind) {
  Value r;
  std::string desc;
  int rc = o->Call(*this, id, args, kind, r, desc);
  if (rc) Throw(rc, desc);
  return r;
}

Value Interp::Index(Value& arr, std::span<Value*> idx) {
  Array& a = *arr.arr;
  if (idx.size() != a.UBound.size()) Throw(9);
  if (idx.size() == 1) {
    int64_t k = conv_.ToLong(*idx[0]);
    if (k < 0 || k > a.UBound[0]) Throw(9);
    return a.Data[static_cast<size_t>(k)];
  }
  std::vector<int64_t> ix;
  for (Value* v : idx) ix.push_back(conv_.ToLong(*v));
  return a.Data[a.Index(ix)];
}

Value* Interp::ElemRef(Value& arr, std::span<Value*> idx) {
  if (arr.arr.use_count() > 1) {
    if (arr.arr->Locks) {
      // For Each holds it: write through to the held array
    } else {
      arr.arr = std::make_shared<Array>(*arr.arr);
    }
  }
  Array& a = *arr.arr;
  std::vector<int64_t> ix;
  for (Value* v : idx) ix.push_back(conv_.ToLong(*v));
  return &a.Data[a.Index(ix)];
}

void Interp::BuildArgs(std::vector<Expr*>& exprs, std::vector<Value>& temps,
                       std::vector<Value*>& ptrs, bool byRefOk) {
  temps.clear();
  temps.reserve(exprs.size());
  ptrs.clear();
  ptrs.reserve(exprs.size());
  for (Expr* x : exprs) {
    if (!x) {
      temps.push_back(Value::Err(0x80020004)); // a missing argument
      ptrs.push_back(&temps.back());
      continue;
    }
    if (byRefOk && x->k == EK::Ident) {
      Lookup L = Find(x, false);
      if (L.kind == Found::Var && !L.isConst) {
        ptrs.push_back(L.var);
        continue;
      }
    }
    temps.push_back(EvalE(x));
    ptrs.push_back(&temps.back());
  }
}

Value Interp::CallBuiltin(int b, std::span<Value*> args) {
  const BuiltinInfo& bi = Builtin(b);
  if (static_cast<int>(args.size()) < bi.minArgs || static_cast<int>(args.size()) > bi.maxArgs)
    Throw(450);
  return bi.fn(*this, args);
}

Value Interp::CallValue(const Value& callee, std::span<Value*> args) {
  if (callee.t != VT::Object || !callee.obj) Throw(424);
  int id = callee.obj->DefaultId();
  if (id < 0) Throw(438);
  return CallObj(callee.obj.get(), id, args, Invoke::Get);
}

Value Interp::EvalCall(Expr* e, Expr* target, std::vector<Expr*>* argExprs, bool parens) {
  static std::vector<Expr*> none;
  std::vector<Expr*>& ax = argExprs ? *argExprs : none;
  if (target->k == EK::Member) return EvalMember(target, &ax, parens);
  std::vector<Value> temps;
  std::vector<Value*> ptrs;
  if (target->k != EK::Ident) {
    // f(1)(2): index or call what the left side gave
    Value base = EvalE(target);
    BuildArgs(ax, temps, ptrs, false);
    if (base.t == VT::Array) return Index(base, ptrs);
    if (base.t == VT::Object) return CallValue(base, ptrs);
    Throw(13);
  }
  Lookup L = Find(target, false);
  if (L.kind == Found::Var && !ax.empty() && frame_->proc && target->lname == frame_->proc->lname &&
      L.var->t != VT::Array && L.var->t != VT::Object) {
    // F(x) inside F calls F again
    BuildArgs(ax, temps, ptrs, true);
    return CallProc(frame_->proc, frame_->me, ptrs);
  }
  switch (L.kind) {
  case Found::Var: {
    Value& v = *L.var;
    if (ax.empty()) {
      if (parens && v.t == VT::Object && v.obj) return Deref(v);
      return v;
    }
    BuildArgs(ax, temps, ptrs, false);
    if (v.t == VT::Array) return Index(v, ptrs);
    if (v.t == VT::Object) return CallValue(v, ptrs);
    Error er;
    er.Number = 13;
    er.Description = "Type mismatch: '" + target->name + "'";
    throw er;
  }
  case Found::Proc:
    BuildArgs(ax, temps, ptrs, true);
    return CallProc(L.proc, nullptr, ptrs);
  case Found::Builtin:
    BuildArgs(ax, temps, ptrs, false);
    return CallBuiltin(L.builtin, ptrs);
  case Found::ClassMember:
    BuildArgs(ax, temps, ptrs, true);
    return CallObj(L.obj, L.id, ptrs, Invoke::Get);
  case Found::HostMember:
    BuildArgs(ax, temps, ptrs, false);
    return CallObj(L.obj, L.id, ptrs, Invoke::Get);
  case Found::HostObject:
    if (ax.empty()) return Value::Obj(L.objRef);
    BuildArgs(ax, temps, ptrs, false);
    return CallValue(Value::Obj(L.objRef), ptrs);
  case Found::None: {
    Value c;
    if (FindConstant(target->lname, c) && ax.empty()) return c;
    bool plain = e == target;
    if (plain && !optionExplicit_) return Value(); // an unset variable
    Error er;
    er.Number = plain ? 500 : 13; // a call of no procedure is a type mismatch in this language
    er.Description = ErrorText(er.Number) + ": '" + target->name + "'";
    throw er;
  }
  default:
    Throw(13);
  }
}

Object* Interp::MemberObject(Expr* m, Value& base) {
  if (!m->a) return WithTop();
  base = EvalE(m->a);
  if (base.t != VT::Object) Throw(424);
  if (!base.obj) Throw(91);
  return base.obj.get();
}

Value Interp::EvalMember(Expr* m, std::vector<Expr*>* argExprs, bool parens) {
  (void)parens;
  Value base;
  Object* o = MemberObject(m, base);
  int id = o->MemberId(m->lname);
  if (id < 0) {
    Error er;
    er.Number = 438;
    er.Description = ErrorText(438) + ": '" + m->name + "'";
    throw er;
  }
  std::vector<Value> temps;
  std::vector<Value*> ptrs;
  static std::vector<Expr*> none;
  BuildArgs(argExprs ? *argExprs : none, temps, ptrs, dynamic_cast<ClassInstance*>(o) != nullptr);
  return CallObj(o, id, ptrs, Invoke::Get);
}

Value Interp::EvalE(Expr* e) {
  switch (e->k) {
  case EK::Literal:
    return e->val;
  case EK::Ident: {
    if (e->bind == Bind::Local && frame_->proc) return *frame_->refs[e->slot];
    return EvalCall(e, e, nullptr, false);
  }
  case EK::Call:
    return EvalCall(e, e->a, &e->args, e->parens);
  case EK::Member:
    return EvalMember(e, nullptr, false);
  case EK::Paren:
    return EvalE(e->a);
  case EK::Unary:
    return UnOp(conv_, e->op, EvalE(e->a));
  case EK::Binary: {
    if (e->op == Op::Is) {
      Value a = EvalE(e->a), b = EvalE(e->b);
      if (a.t != VT::Object || b.t != VT::Object) Throw(424);
      return Value::Bool(a.obj == b.obj);
    }
    Value a = EvalE(e->a);
    Value b = EvalE(e->b);
    if (a.t == VT::Object) a = Deref(std::move(a));
    if (b.t == VT::Object) b = Deref(std::move(b));
    if (e->op == Op::Cat && a.s.size() + b.s.size() > kMaxStringBytes) Throw(14);
    return BinOp(conv_, e->op, a, b);
  }
  case EK::New: {
    if (e->lname == "regexp") return Value::Obj(NewRegExp());
    return Value::Obj(NewInstance(e->lname));
  }
  case EK::Me: {
    if (!frame_->me) Throw(424);
    try {
      return Value::Obj(frame_->me->shared_from_this());
    } catch (const std::bad_weak_ptr&) {
      return Value::Nothing();
    }
  }
  }
  Throw(51);
}

void Interp::Assign(Expr* lhs, Value v, bool isSet) {
  if (isSet) {
    if (v.t != VT::Object) Throw(424);
  } else if (v.t == VT::Object) {
    v = Deref(std::move(v));
  }
  if (lhs->k == EK::Ident) {
    if (lhs->bind == Bind::Local && frame_->proc) {
      *frame_->refs[lhs->slot] = std::move(v);
      return;
    }
    Lookup L = Find(lhs, true);
    if (L.kind == Found::Var) {
      if (L.isConst) Throw(501);
      *L.var = std::move(v);
      return;
    }
    if (L.kind == Found::ClassMember) {
      Value* p = &v;
      CallObj(L.obj, L.id, std::span<Value*>(&p, 1), isSet ? Invoke::Set : Invoke::Let);
      return;
    }
    if (L.kind == Found::HostMember) {
      Value* p = &v;
      CallObj(L.obj, L.id, std::span<Value*>(&p, 1), isSet ? Invoke::Set : Invoke::Let);
      return;
    }
    if (L.kind != Found::None) Throw(501);
    Value c;
    if (FindConstant(lhs->lname, c)) Throw(501);
    *MakeVar(lhs) = std::move(v);
    return;
  }
  if (lhs->k == EK::Member) {
    Value base;
    Object* o = MemberObject(lhs, base);
    int id = o->MemberId(lhs->lname);
    if (id < 0) Throw(438);
    Value* p = &v;
    CallObj(o, id, std::span<Value*>(&p, 1), isSet ? Invoke::Set : Invoke::Let);
    return;
  }
  if (lhs->k == EK::Call) {
    std::vector<Value> temps;
    std::vector<Value*> ptrs;
    Expr* t = lhs->a;
    if (t->k == EK::Ident) {
      Lookup L = Find(t, true);
      if (L.kind == Found::Var) {
        BuildArgs(lhs->args, temps, ptrs, false);
        if (L.var->t == VT::Array) {
          *ElemRef(*L.var, ptrs) = std::move(v);
          return;
        }
        if (L.var->t == VT::Object && L.var->obj) {
          int id = L.var->obj->DefaultId();
          if (id < 0) Throw(438);
          ptrs.push_back(&v);
          CallObj(L.var->obj.get(), id, ptrs, isSet ? Invoke::Set : Invoke::Let);
          return;
        }
        Throw(13);
      }
      if (L.kind == Found::ClassMember || L.kind == Found::HostMember) {
        BuildArgs(lhs->args, temps, ptrs, false);
        ptrs.push_back(&v);
        CallObj(L.obj, L.id, ptrs, isSet ? Invoke::Set : Invoke::Let);
        return;
      }
      if (L.kind == Found::None) Throw(13);
      Throw(501);
    }
    if (t->k == EK::Member) {
      Value base;
      Object* o = MemberObject(t, base);
      int id = o->MemberId(t->lname);
      if (id < 0) Throw(438);
      BuildArgs(lhs->args, temps, ptrs, false);
      ptrs.push_back(&v);
      CallObj(o, id, ptrs, isSet ? Invoke::Set : Invoke::Let);
      return;
    }
  }
  Throw(501);
}

Value Interp::CallProc(Proc* p, ClassInstance* me, std::span<Value*> args) {
  if (args.size() != p->params.size()) {
    Error er;
    er.Number = 450;
    er.Description = ErrorText(450) + ": '" + p->name + "'";
    throw er;
  }
  const char* here = static_cast<const char*>(__builtin_frame_address(0));
  if (depth_ >= kMaxCallDepth ||
      (stackBase_ && stackBase_ > here && size_t(stackBase_ - here) > kMaxStackBytes))
    Throw(28);
  Frame f;
  f.proc = p;
  f.me = me;
  f.store.resize(static_cast<size_t>(p->nSlots));
  f.refs.resize(static_cast<size_t>(p->nSlots));
  for (int i = 0; i < p->nSlots; ++i) f.refs[i] = &f.store[i];
  for (size_t i = 0; i < args.size(); ++i) {
    if (p->params[i].byVal) {
      f.store[i] = *args[i];
    } else {
      f.refs[i] = args[i];
    }
  }
  Frame* saved = frame_;
  frame_ = &f;
  ++depth_;
  struct Restore {
    Interp& in;
    Frame* saved;
    ~Restore() {
      in.frame_ = saved;
      --in.depth_;
    }
  } restore{*this, saved};
  ExecBlock(p->body);
  if (p->resultSlot >= 0) return std::move(*f.refs[p->resultSlot]);
  return Value();
}

double Interp::RndNext(double arg) {
  if (arg < 0) {
    // the same number for the same negative argument
    float fv = static_cast<float>(arg);
    uint32_t bits;
    std::memcpy(&bits, &fv, 4);
    rnd_ = (bits + (bits >> 24)) & 0xFFFFFF;
  } else if (arg == 0) {
    return lastRnd_;
  }
  rnd_ = (rnd_ * 1140671485u + 12820163u) & 0xFFFFFF;
  lastRnd_ = rnd_ / 16777216.0;
  return lastRnd_;
}

void Interp::Randomize(double seed, bool useTimer) {
  if (useTimer) {
    auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    seed = static_cast<double>(now % 86400000) / 1000.0;
  }
  float fv = static_cast<float>(seed);
  uint32_t bits;
  std::memcpy(&bits, &fv, 4);
  uint32_t t = ((bits & 0xFFFF) ^ (bits >> 16)) << 8;
  rnd_ = (rnd_ & 0xFF0000FFu) | (t & 0xFFFF00);
  rnd_ &= 0xFFFFFF;
}

// ---- class instances

ClassInstance::ClassInstance(Interp& in, ClassDef* def) : in_(&in), def_(def) {
  Fields.resize(def->fields.size());
}

ClassInstance::~ClassInstance() {
  if (def_->term && !in_->InTerminate()) {
    try {
      in_->CallProc(def_->term, this, {});
    } catch (...) {
      // a failing Class_Terminate is dropped, as the language does
    }
  }
}

int ClassInstance::MemberId(std::string_view lname) {
  std::string l(lname);
  auto fi = def_->fieldIndex.find(l);
  if (fi != def_->fieldIndex.end()) return fi->second;
  auto mi = def_->memberIndex.find(l);
  if (mi != def_->memberIndex.end()) return 100000 + mi->second;
  return -1;
}

int ClassInstance::DefaultId() {
  return def_->defaultMember < 0 ? -1 : 100000 + def_->defaultMember;
}

int ClassInstance::Call(Interp& in, int id, std::span<Value*> args, Invoke kind, Value& result,
                        std::string&) {
  auto keep = shared_from_this(); // the call may drop the last outside reference
  if (id < 100000) {
    Value& f = Fields[static_cast<size_t>(id)];
    if (kind == Invoke::Get) {
      if (args.empty()) {
        result = f;
        return 0;
      }
      if (f.t == VT::Array) {
        std::vector<Value*> idx(args.begin(), args.end());
        result = f.arr->Data[f.arr->Index([&] {
          std::vector<int64_t> ix;
          for (Value* v : idx) ix.push_back(in.Cv().ToLong(*v));
          return ix;
        }())];
        return 0;
      }
      if (f.t == VT::Object) {
        result = in.CallValue(f, args);
        return 0;
      }
      return 13;
    }
    if (args.size() == 1) {
      f = *args[0];
      return 0;
    }
    if (f.t == VT::Array) {
      std::vector<int64_t> ix;
      for (size_t k = 0; k + 1 < args.size(); ++k) ix.push_back(in.Cv().ToLong(*args[k]));
      if (f.arr.use_count() > 1) f.arr = std::make_shared<Array>(*f.arr);
      f.arr->Data[f.arr->Index(ix)] = *args.back();
      return 0;
    }
    return 13;
  }
  ClassDef::Member& m = def_->members[static_cast<size_t>(id - 100000)];
  Proc* p = kind == Invoke::Get   ? m.get
            : kind == Invoke::Let ? (m.let ? m.let : m.set)
                                  : (m.set ? m.set : m.let);
  if (!p) return kind == Invoke::Get ? 438 : 440;
  if (kind == Invoke::Get && p->kind == ProcKind::Sub && false) return 0;
  result = in.CallProc(p, this, args);
  return 0;
}

} // namespace vbs
