#include "surface/tin_points.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "surface/tin_geometry.h"
#include "surface/tin_keys.h"

namespace velmora {

double TinScaleOf(double left, double bottom, double right, double top) {
  return left >= -360 && top <= 180 && right <= 360 && bottom >= -180 ? 100000000.0 : 1.0;
}

void ResetSurface(SurfaceState& st) {
  bool busy = st.Busy;
  st = SurfaceState{};
  st.Busy = busy;
}

namespace {
// An assignment of a double to an i32 that doesn't fit leaves the target as it was.
void SetTrunc(int32_t& target, double v) {
  double t = std::trunc(v);
  if (t >= -2147483648.0 && t <= 2147483647.0) target = int32_t(t);
}
} // namespace

void ScanBounds(SurfaceState& st, double x, double y, double z) {
  if (!st.BoundsSet) {
    st.BoundsSet = true;
    SetTrunc(st.TinMinX, x), SetTrunc(st.TinMaxX, x);
    SetTrunc(st.TinMinY, y), SetTrunc(st.TinMaxY, y);
    st.TinMinZ = st.TinMaxZ = z;
    st.LastX = x, st.LastY = y;
    st.TinNotGrid = 0;
    return;
  }
  if (x < st.TinMinX) SetTrunc(st.TinMinX, x);
  if (x > st.TinMaxX) SetTrunc(st.TinMaxX, x);
  if (y < st.TinMinY) SetTrunc(st.TinMinY, y);
  if (y > st.TinMaxY) SetTrunc(st.TinMaxY, y);
  if (z < st.TinMinZ) st.TinMinZ = z;
  if (z > st.TinMaxZ) st.TinMaxZ = z;
  if (!st.TinNotGrid) {
    if (st.LastY - y <= 0.000001 && y - st.LastY <= 0.000001) {
      if (x < st.LastX) st.TinNotGrid = -1;
    } else if (y - st.LastY > 0.000001) {
      st.TinNotGrid = -1;
    }
  }
  st.LastX = x, st.LastY = y;
}

double RefDist(const SurfaceState& st, const TinPoint& p) {
  return TinDist(st.TinMinX, st.TinMinY, p.X, p.Y);
}

std::vector<int> OrderPoints(const SurfaceState& st, const std::vector<TinPoint>& raw, int method) {
  std::vector<int> order(raw.size());
  for (size_t i = 0; i < raw.size(); ++i) order[i] = int(i);
  if (method == 1) {
    std::vector<double> d(raw.size());
    for (size_t i = 0; i < raw.size(); ++i) d[i] = RefDist(st, raw[i]);
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return CompareKeyMag(d[size_t(a)], d[size_t(b)]) < 0; });
  } else {
    struct Key {
      RowKeyPart Y, X;
    };
    std::vector<Key> k(raw.size());
    RowKeyPart lastX; // the X part a point with X = 0 keeps
    for (size_t i = 0; i < raw.size(); ++i) {
      bool ok = false;
      RowKeyPart x = RowKeyX(raw[i].X, ok);
      if (ok) lastX = x;
      k[i] = {RowKeyY(raw[i].Y), lastX};
    }
    // Descending.
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
      const Key &ka = k[size_t(a)], &kb = k[size_t(b)];
      int c = CompareRowKeyPart(ka.Y, kb.Y);
      if (c == 0) c = CompareRowKeyPart(ka.X, kb.X);
      return c > 0;
    });
  }
  return order;
}

namespace {

// Walking back over the points at exactly the same distance from the corner: one within
// 0.005 of the new point makes it a duplicate.
bool NotDuplicate(const SurfaceState& st, int n) {
  const TinPoint& p = st.TinPoints[size_t(n)];
  const double d = RefDist(st, p);
  for (int k = n - 1; k >= 1; --k) {
    const TinPoint& q = st.TinPoints[size_t(k)];
    if (RefDist(st, q) != d) break;
    if (TinDist(p.X, p.Y, q.X, q.Y) < 0.005) return false;
  }
  return true;
}

void SortRow(SurfaceState& st, int first, int last) {
  for (int i = last; i > first; --i)
    for (int k = first; k < i; ++k)
      if (st.TinPoints[size_t(k)].X > st.TinPoints[size_t(k + 1)].X)
        std::swap(st.TinPoints[size_t(k)], st.TinPoints[size_t(k + 1)]);
}

} // namespace

bool PreparePoints(SurfaceState& st, const std::vector<TinPoint>& raw,
                   const std::vector<int>& order, int method, const TinTick& tick) {
  try {
    st.TinPoints.assign(1, TinPoint{});
    st.TinPoints.reserve(raw.size() + 2);
    st.TinPointCount = 0;
    int rowStart = 1;
    for (int idx : order) {
      const int n = st.TinPointCount + 1;
      if (size_t(n) >= st.TinPoints.size()) st.TinPoints.resize(size_t(n) + 10000);
      st.TinPoints[size_t(n)] = raw[size_t(idx)];
      if (NotDuplicate(st, n)) {
        st.TinPointCount = n;
        if (method == 2 && n >= 2 &&
            std::fabs(st.TinPoints[size_t(n)].Y - st.TinPoints[size_t(n - 1)].Y) < 0.005) {
          SortRow(st, rowStart, n);
          rowStart = n + 1;
        }
      }
      if (tick && tick(0.4)) break;
    }
    st.TinPoints.resize(size_t(st.TinPointCount) + 1);
    return true;
  } catch (const std::bad_alloc&) {
    st.TinPoints = {};
    st.TinPointCount = 0;
    st.Err = true;
    return false;
  }
}

bool StorePoints(SurfaceState& st, const std::vector<TinPoint>& raw) {
  try {
    st.TinPoints.assign(raw.size() + 1, TinPoint{});
    std::copy(raw.begin(), raw.end(), st.TinPoints.begin() + 1);
    st.TinPointCount = int32_t(raw.size());
    return true;
  } catch (const std::bad_alloc&) {
    st.TinPoints = {};
    st.TinPointCount = 0;
    st.Err = true;
    return false;
  }
}

} // namespace velmora
