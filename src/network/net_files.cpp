#include "network/net_files.h"

#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>

#include "frame/refusal_log.h"
#include "model/companion_file.h"
#include "model/file_util.h"

namespace velmora {

namespace {

template <class T> void Put(std::string& out, T v) {
  char b[sizeof(T)];
  std::memcpy(b, &v, sizeof(T)); // the machine is little-endian, as the files are
  out.append(b, sizeof(T));
}

template <class T> T Get(const char* p) {
  T v;
  std::memcpy(&v, p, sizeof(T));
  return v;
}

bool ReadAll(const std::string& path, std::string& out, std::string& why) {
  std::ifstream f(NativePath(path), std::ios::binary);
  if (!f) {
    why = "cannot read " + path;
    return false;
  }
  out.assign(std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>());
  if (f.bad()) {
    why = "cannot read " + path;
    return false;
  }
  return true;
}

} // namespace

std::string NetPathOf(const LyrRec& l) {
  return CompanionPath(l.Fsource, "net");
}
std::string NtxPathOf(const LyrRec& l) {
  return CompanionPath(l.Fsource, "ntx");
}

void AppendNetLink(std::string& out, const NetLink& k) {
  Put(out, k.LinkFeature);
  Put(out, k.LinkX);
  Put(out, k.LinkY);
  Put(out, k.LinkVertex);
}

void AppendNtxRow(std::string& out, int32_t offset, int32_t count) {
  Put(out, offset);
  Put(out, count);
}

bool ReadNetTables(std::string_view ntx, std::string_view net, int recCount, NetNodeTable& t,
                   std::string& why) {
  t = NetNodeTable{};
  if (recCount < 0) recCount = 0;
  if (ntx.size() / kNtxRowBytes < size_t(recCount)) {
    why = "the network index has " + std::to_string(ntx.size() / kNtxRowBytes) + " rows for " +
          std::to_string(recCount) + " features: build the network again";
    return false;
  }
  // Rows are contiguous, so the links of all nodes together are the head of .net: the
  // table never grows beyond the file.
  t.First.resize(size_t(recCount) + 2);
  int64_t total = 0;
  for (int i = 1; i <= recCount; ++i) {
    const char* row = ntx.data() + size_t(i - 1) * kNtxRowBytes;
    const int64_t off = Get<int32_t>(row), cnt = Get<int32_t>(row + 4);
    if (cnt < 0 || off != total * kNetRecBytes ||
        uint64_t(off) + uint64_t(cnt) * kNetRecBytes > net.size()) {
      why = "the network index row " + std::to_string(i) +
            " points outside the network file: build the network again";
      t = NetNodeTable{};
      return false;
    }
    t.First[size_t(i)] = total;
    total += cnt;
  }
  t.First[0] = 0;
  t.First[size_t(recCount) + 1] = total;
  t.Links.resize(size_t(total));
  for (int64_t k = 0; k < total; ++k) {
    const char* p = net.data() + size_t(k) * kNetRecBytes;
    NetLink& L = t.Links[size_t(k)];
    L.LinkFeature = Get<int32_t>(p);
    L.LinkX = Get<double>(p + 4);
    L.LinkY = Get<double>(p + 12);
    L.LinkVertex = Get<int32_t>(p + 20);
    if (L.LinkFeature < 1 || L.LinkFeature > recCount || !std::isfinite(L.LinkX) ||
        !std::isfinite(L.LinkY)) {
      why = "the network file record " + std::to_string(k + 1) +
            " does not fit the layer: build the network again";
      t = NetNodeTable{};
      return false;
    }
  }
  t.NetNodeUB = recCount;
  t.Remaining.assign(size_t(recCount) + 1, 0.0);
  t.Seen.assign(size_t(recCount) + 1, 0);
  t.Loaded = true;
  return true;
}

bool NetFilesReady(const Session& s, int lyr) {
  if (lyr < 1 || lyr > s.LyrCount) return false;
  const LyrRec& l = s.Lyr[lyr];
  const int t = l.Shp.ShpType;
  if (l.LyrKind != 1 || (t != 3 && t != 13)) return false;
  return FileExists(NetPathOf(l)) && FileExists(NtxPathOf(l));
}

bool LoadNet(Session& s, int lyr) {
  if (lyr < 1 || lyr > s.LyrCount) return false;
  LyrRec& l = s.Lyr[lyr];
  l.Net.NetNodes = NetNodeTable{};
  if (!NetFilesReady(s, lyr)) return false;
  std::string ntx, net, why;
  if (!ReadAll(NtxPathOf(l), ntx, why) || !ReadAll(NetPathOf(l), net, why) ||
      !ReadNetTables(ntx, net, l.Shp.RecCount, l.Net.NetNodes, why)) {
    LogCanceled(s, "Load Shortest Path NetWork " + l.LyrName, why);
    return false;
  }
  return true;
}

} // namespace velmora
