// clsVBS: the members a script calls on layers and records, in the order of its interface.
#include "table/script_host.h"

#include <cmath>
#include <cstdio>

#include "edit/move_ops.h"
#include "frame/busy.h"
#include "model/file_util.h"
#include "store/dbf_store.h"
#include "store/shp_access.h"
#include "store/shp_store.h"

namespace velmora {

namespace {

enum M {
  GetLayerNo,
  SetLayerNo,
  GetRecNo,
  SetRecNo,
  IsSelectedM,
  SelectIt,
  UnSelectIt,
  IsDeletedM,
  DeleteIt,
  UnDeleteIt,
  BOF,
  EOF_,
  RecNoM,
  LayerName,
  PartsCount,
  VertexesCount,
  RecordsCount,
  Length,
  Area,
  GetMaxX,
  GetMaxY,
  GetMaxM,
  GetMaxZ,
  GetMinX,
  GetMinY,
  GetMinM,
  GetMinZ,
  MoveToMaxX,
  MoveToMinX,
  MoveToMaxY,
  MoveToMinY,
  MoveToMaxM,
  MoveToMinM,
  MoveToMaxZ,
  MoveToMinZ,
  AddVertexM,
  GetVertexX,
  GetVertexY,
  GetVertexM,
  GetVertexZ,
  MoveToVertexX,
  MoveToVertexY,
  MoveToVertexM,
  MoveToVertexZ,
  Intersect,
  Inside,
  GetFieldValueM,
  Degrees,
  Minutes,
  Seconds,
  EncryptStrM,
  kCount
};

const char* const kNames[kCount] = {
    "getlayerno",    "setlayerno",    "getrecno",      "setrecno",      "isselected",
    "selectit",      "unselectit",    "isdeleted",     "deleteit",      "undeleteit",
    "bof",           "eof",           "recno",         "layername",     "partscount",
    "vertexescount", "recordscount",  "length",        "area",          "getmaxx",
    "getmaxy",       "getmaxm",       "getmaxz",       "getminx",       "getminy",
    "getminm",       "getminz",       "movetomaxx",    "movetominx",    "movetomaxy",
    "movetominy",    "movetomaxm",    "movetominm",    "movetomaxz",    "movetominz",
    "addvertex",     "getvertexx",    "getvertexy",    "getvertexm",    "getvertexz",
    "movetovertexx", "movetovertexy", "movetovertexm", "movetovertexz", "intersect",
    "inside",        "getfieldvalue", "degrees",       "minutes",       "seconds",
    "encryptstr"};

void SetSelBit(LyrRec& l, int rec, bool on) {
  if (rec < 0) return;
  size_t i = size_t(rec) / 8;
  if (i >= l.SelBits.size()) {
    if (!on) return;
    l.SelBits.resize(i + 1, 0);
  }
  uint8_t mask = uint8_t(1u << (rec % 8));
  bool was = (l.SelBits[i] & mask) != 0;
  if (was == on) return;
  if (on) {
    l.SelBits[i] |= mask;
    ++l.SelCount;
  } else {
    l.SelBits[i] &= uint8_t(~mask);
    --l.SelCount;
  }
}

} // namespace

int QmtVbs::MemberId(std::string_view lname) {
  for (int i = 0; i < kCount; ++i)
    if (lname == kNames[i]) return i;
  return -1;
}

int QmtVbs::Call(vbs::Interp& in, int id, std::span<vbs::Value*> a, vbs::Invoke kind, vbs::Value& r,
                 std::string& desc) {
  using vbs::Value;
  if (kind != vbs::Invoke::Get) return 438;
  const vbs::Conv& c = in.Cv();
  auto num = [&](size_t i) {
    return i < a.size() && a[i]->t != vbs::VT::Error ? c.ToDouble(*a[i]) : 0.0;
  };
  auto lng = [&](size_t i) {
    return i < a.size() && a[i]->t != vbs::VT::Error ? static_cast<int>(c.ToLong(*a[i])) : 0;
  };
  // the 0-means-current rule, for the layer and for both
  auto lyrAt = [&](size_t i) {
    int l = lng(i);
    return l == 0 ? LayerNo : l;
  };
  auto recAt = [&](size_t i) {
    int k = lng(i);
    return k == 0 ? RecNo : k;
  };
  auto lyrOk = [&](int l) { return l >= 1 && l <= s_.LyrCount && s_.Lyr[l].LyrKind != 0; };
  auto badLyr = [&](int l) {
    desc = "Layer " + std::to_string(l) + " is not open";
    return 9;
  };
  auto recOk = [&](int l, int k) { return lyrOk(l) && k >= 1 && k <= s_.Lyr[l].Shp.RecCount; };

  switch (id) {
  case GetLayerNo:
    r = Value::Lng(LayerNo);
    return 0;
  case SetLayerNo:
    LayerNo = lng(0);
    return 0;
  case GetRecNo:
    r = Value::Lng(RecNo);
    return 0;
  case SetRecNo:
    RecNo = lng(0);
    return 0;
  case IsSelectedM:
  case SelectIt:
  case UnSelectIt:
  case IsDeletedM:
  case DeleteIt:
  case UnDeleteIt:
  case PartsCount:
  case Length:
  case Area:
  case GetMaxX:
  case GetMaxY:
  case GetMaxM:
  case GetMaxZ:
  case GetMinX:
  case GetMinY:
  case GetMinM:
  case GetMinZ: {
    int k = recAt(0), l = lyrAt(1);
    if (!lyrOk(l)) return badLyr(l);
    if (!recOk(l, k)) return 9;
    const ShpRecord& rec = s_.Lyr[l].Shp.ShpRecs[size_t(k)];
    switch (id) {
    case IsSelectedM:
      r = Value::Bool(IsSelected(s_, l, k));
      break;
    case SelectIt:
      SetSelBit(s_.Lyr[l], k, true);
      break;
    case UnSelectIt:
      SetSelBit(s_.Lyr[l], k, false);
      break;
    case IsDeletedM:
      r = Value::Bool(IsDeleted(s_, l, k));
      break;
    case DeleteIt:
      DeleteRec(s_, l, k, false);
      break;
    case UnDeleteIt:
      UndeleteRec(s_, l, k, false);
      break;
    case PartsCount:
      r = Value::Lng(rec.NumParts);
      break;
    case Length:
      r = Value::Lng(static_cast<int64_t>(std::llround(RecLength(s_, l, k))));
      break;
    case Area:
      r = Value::Lng(static_cast<int64_t>(std::llround(RecArea(s_, l, k))));
      break;
    case GetMaxX:
      r = Value::Dbl(rec.Xmax);
      break;
    case GetMaxY:
      r = Value::Dbl(rec.Ymax);
      break;
    case GetMaxM:
      r = Value::Dbl(rec.Mmax);
      break;
    case GetMaxZ:
      r = Value::Dbl(rec.Zmax);
      break;
    case GetMinX:
      r = Value::Dbl(rec.Xmin);
      break;
    case GetMinY:
      r = Value::Dbl(rec.Ymin);
      break;
    case GetMinM:
      r = Value::Dbl(rec.Mmin);
      break;
    case GetMinZ:
      r = Value::Dbl(rec.Zmin);
      break;
    }
    return 0;
  }
  case BOF:
  case EOF_:
  case RecNoM:
  case LayerName:
  case RecordsCount: {
    int l = lyrAt(0);
    if (!lyrOk(l)) return badLyr(l);
    const LyrRec& L = s_.Lyr[l];
    if (id == BOF)
      r = Value::Bool(L.Dbf.DbfCurRec == 0);
    else if (id == EOF_)
      r = Value::Bool(L.Dbf.DbfCurRec == L.Dbf.DbfRecCount - 1);
    else if (id == RecNoM)
      r = Value::Lng(L.Dbf.DbfCurRec + 1);
    else if (id == LayerName)
      r = Value::Str(L.LyrName);
    else
      r = Value::Lng(L.Shp.RecCount);
    return 0;
  }
  case VertexesCount: {
    int p = lng(0), k = recAt(1), l = lyrAt(2);
    if (!lyrOk(l)) return badLyr(l);
    if (!recOk(l, k)) return 9;
    const ShpRecord& rec = s_.Lyr[l].Shp.ShpRecs[size_t(k)];
    if (p < 0 || p >= int(rec.Parts().size())) return 9;
    r = Value::Lng(rec.Parts()[size_t(p)].PartCount);
    return 0;
  }
  case MoveToMaxX:
  case MoveToMinX:
  case MoveToMaxY:
  case MoveToMinY:
  case MoveToMaxM:
  case MoveToMinM:
  case MoveToMaxZ:
  case MoveToMinZ: {
    double v = num(0);
    int k = recAt(1), l = lyrAt(2);
    if (!lyrOk(l)) return badLyr(l);
    if (!recOk(l, k)) return 9;
    const ShpRecord& rec = s_.Lyr[l].Shp.ShpRecs[size_t(k)];
    double dx = 0, dy = 0, dm = 0, dz = 0;
    int flag = 0;
    switch (id) {
    case MoveToMaxX:
      dx = v - rec.Xmax;
      flag = kMoveX;
      break;
    case MoveToMinX:
      dx = v - rec.Xmin;
      flag = kMoveX;
      break;
    case MoveToMaxY:
      dy = v - rec.Ymax;
      flag = kMoveY;
      break;
    case MoveToMinY:
      dy = v - rec.Ymin;
      flag = kMoveY;
      break;
    case MoveToMaxM:
      dm = v - rec.Mmax;
      flag = kMoveM;
      break;
    case MoveToMinM:
      dm = v - rec.Mmin;
      flag = kMoveM;
      break;
    case MoveToMaxZ:
      dz = v - rec.Zmax;
      flag = kMoveZ;
      break;
    case MoveToMinZ:
      dz = v - rec.Zmin;
      flag = kMoveZ;
      break;
    }
    MoveFeatureBy(s_, l, k, dx, dy, flag, dm, dz);
    return 0;
  }
  case AddVertexM: {
    int p = lng(4), k = recAt(5), l = lyrAt(6);
    if (!lyrOk(l)) return badLyr(l);
    if (!recOk(l, k)) return 9;
    AddVertex(s_, l, k, p, num(0), num(1), num(2), num(3));
    return 0;
  }
  case GetVertexX:
  case GetVertexY:
  case GetVertexM:
  case GetVertexZ: {
    int v = lng(0), p = lng(1), k = recAt(2), l = lyrAt(3);
    r = Value::Dbl(0); // a bad index is ignored here
    if (!recOk(l, k)) return 0;
    const ShpRecord& rec = s_.Lyr[l].Shp.ShpRecs[size_t(k)];
    const ShpPart* part = shpio::PartAt(&rec, p);
    if (!part || v < 0 || size_t(v) >= part->Size()) return 0;
    if (id == GetVertexX)
      r = Value::Dbl(part->PartPoints()[size_t(v)].X);
    else if (id == GetVertexY)
      r = Value::Dbl(part->PartPoints()[size_t(v)].Y);
    else if (id == GetVertexM)
      r = Value::Dbl(part->HasM() ? part->PartM()[size_t(v)] : 0.0);
    else
      r = Value::Dbl(part->HasZ() ? part->PartZ()[size_t(v)] : 0.0);
    return 0;
  }
  case MoveToVertexX:
  case MoveToVertexY:
  case MoveToVertexM:
  case MoveToVertexZ: {
    double val = num(0);
    int v = lng(1), p = lng(2), k = recAt(3), l = lyrAt(4);
    if (!lyrOk(l)) return badLyr(l);
    if (!recOk(l, k)) return 9;
    const ShpPart* part = shpio::PartAt(&s_.Lyr[l].Shp.ShpRecs[size_t(k)], p);
    if (!part || v < 0 || size_t(v) >= part->Size()) return 9;
    XY pt = part->PartPoints()[size_t(v)];
    double m = part->HasM() ? part->PartM()[size_t(v)] : 0.0;
    double z = part->HasZ() ? part->PartZ()[size_t(v)] : 0.0;
    int flag = id == MoveToVertexX   ? kMoveX
               : id == MoveToVertexY ? kMoveY
               : id == MoveToVertexM ? kMoveM
                                     : kMoveZ;
    if (flag == kMoveX) pt.X = val;
    if (flag == kMoveY) pt.Y = val;
    if (flag == kMoveM) m = val;
    if (flag == kMoveZ) z = val;
    MoveVertexTo(s_, l, k, p, v, pt.X, pt.Y, flag, m, z);
    return 0;
  }
  case Intersect:
  case Inside: {
    int k = recAt(0), l = lyrAt(1), k2 = lng(2), l2 = lng(3);
    if (k2 == 0) k2 = RecNo;
    if (l2 == 0) l2 = LayerNo;
    if (!recOk(l, k) || !recOk(l2, k2)) return 9;
    if (!s_.Script.SpatialTest) return 438;
    r = Value::Bool(s_.Script.SpatialTest(s_, l, k, l2, k2, id == Intersect ? 1 : 3));
    return 0;
  }
  case GetFieldValueM: {
    std::string name = a.empty() ? "" : c.ToStr(*a[0]);
    int k = recAt(1), l = lyrAt(2);
    if (!lyrOk(l)) return badLyr(l);
    if (k < 1 || k > s_.Lyr[l].Dbf.DbfRecCount) return 9;
    ReadDbfRec(s_, l, k - 1);
    int f = FindField(s_, l, Trim(name));
    r = Value::Str(f < 0 ? "" : GetFieldValue(s_, l, f));
    return 0;
  }
  case Degrees:
    r = Value::Str(DegreesText(num(0)));
    return 0;
  case Minutes:
    r = Value::Str(MinutesText(num(0)));
    return 0;
  case Seconds:
    r = Value::Dbl(SecondsOf(num(0)));
    return 0;
  case EncryptStrM:
    r = Value::Str(EncryptStr(a.empty() ? "" : c.ToStr(*a[0])));
    return 0;
  }
  return 438;
}

std::string DegreesText(double dd) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%02lld", static_cast<long long>(std::trunc(dd)));
  return buf;
}

std::string MinutesText(double dd) {
  double a = std::fabs(dd);
  char buf[32];
  std::snprintf(buf, sizeof buf, "%02lld",
                static_cast<long long>(std::trunc((a - std::trunc(a)) * 60.0)));
  return buf;
}

double SecondsOf(double dd) {
  double a = std::fabs(dd);
  double minutes = (a - std::trunc(a)) * 60.0;
  double secs = (minutes - std::trunc(minutes)) * 60.0;
  return std::round(secs * 100000.0) / 100000.0;
}

std::string EncryptStr(const std::string& text) {
  if (text.empty()) return "";
  std::string r = "eval(unescape(\"";
  char buf[8];
  for (unsigned char ch : text) {
    std::snprintf(buf, sizeof buf, "\\x%02x", ch);
    r += buf;
  }
  r += "\")) ;";
  return r;
}

int SessionEngineHost::MsgBox(const std::string& prompt, int buttons, const std::string& title) {
  int r = s_.host->ScriptMsgBox(prompt, buttons, title);
  return r >= 0 ? r : vbs::EngineHost::MsgBox(prompt, buttons, title);
}

std::string SessionEngineHost::InputBox(const std::string& prompt, const std::string& title,
                                        const std::string& def, bool& cancelled) {
  std::string answer;
  cancelled = false;
  if (s_.host->ScriptInputBox(prompt, title, def, answer, cancelled)) return answer;
  return def;
}

bool SessionEngineHost::Cancelled() {
  // the event loop turns now and then, so that Terminate can be pressed during a long script
  s_.host->Yield();
  return lyr_ > 0 && LyrMustStop(s_, lyr_);
}

} // namespace velmora
