#include "view/raster_layer.h"

#include <cmath>

#include "frame/busy.h"
#include "frame/lyr_slots.h"
#include "model/file_util.h"
#include "store/dbf_store.h"
#include "store/shp_store.h"
#include "view/tiff_dir.h"
#include "view/world_file.h"

namespace velmora {

namespace {

ImageIO* Images(Session& s) {
  return s.host->Images();
}

struct ControlPt {
  double SrcX, SrcY, DisX, DisY;
};

int LoadControlPts(Session& s, int n, ControlPt pts[2]) {
  int found = 0;
  for (int rec = 1; rec <= s.Lyr[n].Shp.RecCount && found < 2; ++rec) {
    if (IsDeleted(s, n, rec)) continue;
    ReadDbfRec(s, n, rec - 1);
    pts[found++] = {StrToDbl(s, GetFieldValue(s, n, 2)), StrToDbl(s, GetFieldValue(s, n, 3)),
                    StrToDbl(s, GetFieldValue(s, n, 4)), StrToDbl(s, GetFieldValue(s, n, 5))};
  }
  return found;
}

int PicWidth(Session& s, int n) {
  ImageIO* io = Images(s);
  return io ? io->Width(s.Lyr[n].Img.ImgPic) : s.Lyr[n].Img.ImgWidth;
}
int PicHeight(Session& s, int n) {
  ImageIO* io = Images(s);
  return io ? io->Height(s.Lyr[n].Img.ImgPic) : s.Lyr[n].Img.ImgHeight;
}

// A frame with its table, or false.
bool FrameTable(Session& s, int n, const std::string& path) {
  OpenDbf(s, n, path);
  if (s.DbfErr) {
    NewDbfControl(s, n, path);
    if (s.DbfErr) {
      s.Lyr[n].LyrKind = 0;
      s.LyrErr = s.DbfErr;
      return false;
    }
  }
  s.Lyr[n].LyrKind = 2;
  s.ControlRowWritten = ControlPtFromRow; // the table's rows move the frame's control points
  return true;
}

} // namespace

void OpenImgFrame(Session& s, int n, const std::string& path) {
  std::string shp = ChangeExt(path, "shp");
  if (FileExists(shp)) {
    OpenShp(s, n, shp);
    if (s.ShpErr == 0 && s.Lyr[n].Shp.ShpType == 99)
      FrameTable(s, n, shp);
    else
      s.Lyr[n].LyrKind = 0, s.LyrErr = 1;
    return;
  }
  int w = FindFreeWorkLyr(s);
  LyrLock(s, w, true, "Make New Image Shape File");
  NewShp(s, w, shp, 99);
  CloseShp(s, w);
  s.Lyr[w].Shp.RecCount = 0;
  NewDbfControl(s, w, shp);
  CloseDbf(s, w);
  LyrLock(s, w, false, "");
  ClearLyr(s, w);

  OpenShp(s, n, shp);
  if (s.ShpErr) {
    s.Lyr[n].LyrKind = 0;
    s.LyrErr = s.ShpErr;
    return;
  }
  s.Lyr[n].LyrKind = 1;
  RecalcExtent(s, n);
  s.Lyr[n].Shp.ShpChanged = 0;
  FrameTable(s, n, shp);
}

void ApplyTiffGeo(Session& s, int n) {
  ImgBlock& im = s.Lyr[n].Img;
  const TiffState& t = s.Tiff;
  im.HasWorld = t.TiffHasGeo;
  im.WorldLeft = t.TiffTie[3];
  im.WorldTop = t.TiffTie[4];
  im.WorldRight = t.TiffWidth * t.TiffScale[0] + im.WorldLeft;
  im.WorldBottom = im.WorldTop - t.TiffHeight * t.TiffScale[1];
}

void OpenImage(Session& s, int n, const std::string& path) {
  s.LyrErr = 0;
  LyrRec& l = s.Lyr[n];
  l.Img.HasWorld = 0;
  ImageIO* io = Images(s);
  auto fail = [&] {
    s.LyrErr = 1;
    s.Lyr[n].Img.ImgOpen = 0;
  };
  if (!io) return fail();
  if (ExtOf(path) != "tif") {
    l.Img.ImgPic = io->Load(path);
    if (!l.Img.ImgPic) return fail();
  } else {
    ReadTiffTags(s, path);
    bool idl = s.Tiff.TiffSoftware.find("IDL") != std::string::npos;
    if (!idl) l.Img.ImgPic = io->Load(path);
    if (!l.Img.ImgPic) {
      DibBits bits;
      if (!ReadIdlTiffBits(s, path, bits)) return fail();
      l.Img.ImgPic = io->FromBits(bits);
      if (!l.Img.ImgPic) return fail();
    }
    if (s.Tiff.TiffHasGeo) ApplyTiffGeo(s, n);
  }
  l.Img.ImgWidth = io->Width(l.Img.ImgPic);
  l.Img.ImgHeight = io->Height(l.Img.ImgPic);
  ReadWorldFile(s, path, l.Img.WorldLeft, l.Img.WorldTop, l.Img.WorldRight, l.Img.WorldBottom,
                l.Img.ImgWidth, l.Img.ImgHeight, l.Img.HasWorld);
  OpenImgFrame(s, n, path);
  if (s.Lyr[n].LyrKind == 0) return fail();
  s.Lyr[n].Fsource = path;
  RebuildImgFrame(s, n);
  if (s.Lyr[n].Img.HasWorld)
    ApplyWorldExtent(s, n);
  else
    RectifyImage(s, n);
  s.Lyr[n].Img.ImgOpen = -1;
  s.Lyr[n].Img.WorldChanged = 0;
  s.Lyr[n].Shp.ShpChanged = 0;
}

void ApplyWorldExtent(Session& s, int n) {
  LyrRec& l = s.Lyr[n];
  if (l.Img.HasWorld == -1) {
    LeftExtend(l) = l.Img.WorldLeft;
    TopExtend(l) = l.Img.WorldTop;
    RightExtend(l) = l.Img.WorldRight;
    BottomExtend(l) = l.Img.WorldBottom;
  } else {
    LeftExtend(l) = 0;
    TopExtend(l) = 0;
    RightExtend(l) = PicWidth(s, n);
    BottomExtend(l) = -PicHeight(s, n);
  }
  l.Img.ImgRectified = 0;
  RebuildImgFrame(s, n);
}

void RebuildImgFrame(Session& s, int n) {
  RebuildFrameRecord(s, n);
}

void ShiftImage(Session& s, int n, double srcX, double srcY, double disX, double disY) {
  LyrRec& l = s.Lyr[n];
  double dx = disX - srcX, dy = disY - srcY;
  // From the picture's size, not from the present extent.
  LeftExtend(l) = dx;
  TopExtend(l) = dy;
  RightExtend(l) = PicWidth(s, n) + dx;
  BottomExtend(l) = dy - PicHeight(s, n);
  l.Img.ImgRectified = -1;
}

void ScaleImageAbout(Session& s, int n, double ax, double ay, double bx, double by, double cx,
                     double cy) {
  LyrRec& l = s.Lyr[n];
  double& xmin = LeftExtend(l);
  double& xmax = RightExtend(l);
  double& ymin = BottomExtend(l);
  double& ymax = TopExtend(l);
  double w = std::fabs(bx - ax);
  if (w != 0) {
    double k = std::fabs(cx - ax) / w;
    if (bx <= ax) {
      xmax = (xmax - ax) * k + ax;
      xmin = cx - (bx - xmin) * k;
    } else {
      xmin = ax - (ax - xmin) * k;
      xmax = (xmax - bx) * k + cx;
    }
  }
  double h = std::fabs(by - ay);
  if (h == 0) return;
  double k = std::fabs(cy - ay) / h;
  if (by >= ay) {
    ymin = ay - (ay - ymin) * k;
    ymax = (ymax - by) * k + cy;
  } else {
    ymax = (ymax - ay) * k + ay;
    ymin = cy - (by - ymin) * k;
  }
}

void RectifyImage(Session& s, int n) {
  if (s.Lyr[n].LyrKind != 2) return;
  RunningFunction rf(s, n, "Rectify Image Layer");
  if (!rf.Started()) return;
  ControlPt pts[2];
  int count = LoadControlPts(s, n, pts);
  if (count == 0) {
    ApplyWorldExtent(s, n);
  } else {
    ShiftImage(s, n, pts[0].SrcX, pts[0].SrcY, pts[0].DisX, pts[0].DisY);
    if (count == 2) {
      double dx = pts[0].DisX - pts[0].SrcX, dy = pts[0].DisY - pts[0].SrcY;
      ScaleImageAbout(s, n, pts[0].DisX, pts[0].DisY, pts[1].SrcX + dx, pts[1].SrcY + dy,
                      pts[1].DisX, pts[1].DisY);
    }
  }
  RebuildImgFrame(s, n);
  SaveWorld(s, n, s.Lyr[n].Fsource);
  rf.Finish(false);
}

void UnRectifyImage(Session& s, int n) {
  if (s.Lyr[n].LyrKind != 2) return;
  RunningFunction rf(s, n, "UnRectify Image Layer");
  if (!rf.Started()) return;
  ApplyWorldExtent(s, n);
  rf.Finish(false);
}

void AutoBalanceBits(DibBits& b) {
  int stride = b.Stride();
  size_t rowBytes = size_t(b.Width) * 3;
  std::vector<double> hist(256, 0);
  double total = 0;
  for (int y = 0; y < b.Height; ++y) {
    uint8_t* row = &b.Bits[size_t(y) * size_t(stride)];
    for (size_t x = 0; x < rowBytes; x += 3) {
      if (!row[x] && !row[x + 1] && !row[x + 2]) row[x] = row[x + 1] = row[x + 2] = 255;
      hist[size_t((row[x] + row[x + 1] + row[x + 2]) / 3.0)] += 1;
    }
    total += (stride + 3) / 3; // pixels counted from the padded row, as the scanner did
  }
  for (int i = 1; i < 256; ++i) hist[size_t(i)] += hist[size_t(i - 1)];
  if (total <= 0) return;
  for (int y = 0; y < b.Height; ++y) {
    uint8_t* row = &b.Bits[size_t(y) * size_t(stride)];
    for (size_t x = 0; x < rowBytes; ++x)
      row[x] = uint8_t(std::clamp(hist[row[x]] / total * 255.0, 0.0, 255.0));
  }
}

void AutoBalanceImage(Session& s, int n) {
  ImageIO* io = Images(s);
  LyrRec& l = s.Lyr[n];
  if (!io || !l.Img.ImgPic) return;
  DibBits bits;
  if (!io->GetBits(l.Img.ImgPic, bits)) return;
  AutoBalanceBits(bits);
  io->SetBits(l.Img.ImgPic, bits);
  s.Lyr[n].Img.ImgChanged = -1;
}

bool SaveImage(Session& s, int n, const std::string& path) {
  LyrRec& l = s.Lyr[n];
  ImageIO* io = Images(s);
  if (l.Shp.ShpType != 99 || !io) return false;
  std::string ext = ExtOf(path);
  if (ext == "gif" || ext == "jpg" || ext == "png" || ext == "tif") {
    std::string mime = ext == "jpg" ? "image/jpeg" : ext == "tif" ? "image/tiff" : "image/" + ext;
    return io->Save(l.Img.ImgPic, path, mime, 100);
  }
  return io->Save(l.Img.ImgPic, ChangeExt(path, "bmp"), "image/bmp", 100);
}

bool SaveImageAs(Session& s, int n, const std::string& path) {
  bool ok = SaveImage(s, n, path);
  std::string ext = ExtOf(path);
  bool other = !(ext == "gif" || ext == "jpg" || ext == "png" || ext == "tif");
  SaveWorld(s, n, other ? ChangeExt(path, "bmp") : path);
  return ok;
}

void SaveWorld(Session& s, int n, const std::string& path) {
  LyrRec& l = s.Lyr[n];
  if (l.Shp.ShpType != 99 || l.Img.ImgWidth <= 0 || l.Img.ImgHeight <= 0) return;
  WriteWorldFile(path, LeftExtend(l), TopExtend(l), RightExtend(l), BottomExtend(l), l.Img.ImgWidth,
                 l.Img.ImgHeight);
  // The world values are known from now on: they are the ones just written.
  l.Img.HasWorld = -1;
  l.Img.WorldLeft = LeftExtend(l), l.Img.WorldTop = TopExtend(l);
  l.Img.WorldRight = RightExtend(l), l.Img.WorldBottom = BottomExtend(l);
}

void UpdateControlPt(Session& s, int n, int rec) {
  LyrRec& l = s.Lyr[n];
  if (rec < 1 || rec > l.Shp.RecCount || size_t(rec) >= l.Shp.ShpRecs.size()) return;
  const ShpRecord& r = l.Shp.ShpRecs[size_t(rec)];
  if (r.NumParts < 1 || r.Part(0).Size() < 2) return;
  auto pts = r.Part(0).PartPoints();
  ReadDbfRec(s, n, rec - 1);
  auto num = [&](double v) {
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.13f", v);
    std::string t(buf);
    for (char& c : t)
      if (c == '.') c = s.Locale.DecimalSep;
    return t;
  };
  SetFieldValue(s, n, 2, num(pts[0].X));
  SetFieldValue(s, n, 3, num(pts[0].Y));
  SetFieldValue(s, n, 4, num(pts[1].X));
  SetFieldValue(s, n, 5, num(pts[1].Y));
  WriteDbfRecSwap(s, n, rec - 1);
}

} // namespace velmora

namespace velmora {

void ControlPtFromRow(Session& s, int n, int row) {
  LyrRec& l = s.Lyr[n];
  int rec = row + 1;
  if (rec < 1 || rec > l.Shp.RecCount || size_t(rec) >= l.Shp.ShpRecs.size()) return;
  ShpRecord& r = l.Shp.ShpRecs[size_t(rec)];
  if (r.NumParts < 1 || r.Part(0).Size() < 2) return;
  auto pts = r.Part(0).PartPoints();
  pts[0] = {StrToDbl(s, GetFieldValue(s, n, 2)), StrToDbl(s, GetFieldValue(s, n, 3))};
  pts[1] = {StrToDbl(s, GetFieldValue(s, n, 4)), StrToDbl(s, GetFieldValue(s, n, 5))};
  RecalcRecBox(s, n, rec);
}

} // namespace velmora
