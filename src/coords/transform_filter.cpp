#include "coords/transform_filter.h"

#include <charconv>
#include <istream>
#include <ostream>

#include "coords/prj_file.h"
#include "coords/utm_transform.h"
#include "coords/utm_zone.h"

namespace velmora {

namespace {

bool ParseInt(const std::string& text, int& v) {
  const char* end = text.data() + text.size();
  auto [p, ec] = std::from_chars(text.data(), end, v);
  return ec == std::errc() && p == end;
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

// Exactly two numbers separated by blanks, blanks allowed around them.
bool TwoNumbers(const std::string& line, double& a, double& b) {
  const char* p = line.data();
  const char* end = p + line.size();
  double* out[2] = {&a, &b};
  for (double* v : out) {
    while (p < end && IsBlank(*p)) ++p;
    if (p < end && *p == '+') ++p; // from_chars takes no leading plus
    auto [q, ec] = std::from_chars(p, end, *v);
    if (ec != std::errc() || q == p) return false;
    p = q;
    if (p < end && !IsBlank(*p)) return false;
  }
  while (p < end && IsBlank(*p)) ++p;
  return p == end;
}

void PutNumber(std::string& buf, double v) {
  char tmp[32];
  auto [p, ec] = std::to_chars(tmp, tmp + sizeof tmp, v, std::chars_format::general, 17);
  buf.append(tmp, ec == std::errc() ? p : tmp);
}

} // namespace

bool ParseTransformArgs(const std::vector<std::string>& args, TransformOptions& opt,
                        std::string& error) {
  bool datumGiven = false;
  size_t i = 0;
  if (!args.empty() && args[0] == "--transform") i = 1;
  for (; i < args.size(); ++i) {
    const std::string& a = args[i];
    auto value = [&](std::string& v) {
      if (i + 1 >= args.size()) {
        error = a + " needs a value";
        return false;
      }
      v = args[++i];
      return true;
    };
    std::string v;
    if (a == "--datum") {
      if (!value(v)) return false;
      if (!ParseInt(v, opt.Datum) || opt.Datum < 1) {
        error = "--datum needs a record number of 1 or more: " + v;
        return false;
      }
      datumGiven = true;
    } else if (a == "--prj") {
      if (!value(opt.PrjFile)) return false;
    } else if (a == "--zone") {
      if (!value(v)) return false;
      if (!ParseInt(v, opt.Zone) || opt.Zone < 1 || opt.Zone > 60) {
        error = "--zone needs a zone of 1 to 60: " + v;
        return false;
      }
    } else if (a == "--south") {
      opt.South = true;
    } else if (a == "--inverse") {
      opt.Inverse = true;
    } else {
      error = "unknown argument: " + a;
      return false;
    }
  }
  if (datumGiven && !opt.PrjFile.empty()) {
    error = "--datum and --prj exclude each other";
    return false;
  }
  if (opt.Inverse && opt.Zone == 0) {
    // A grid point does not tell its zone; a .prj grid has its own meridian.
    if (opt.PrjFile.empty()) {
      error = "--inverse needs --zone";
      return false;
    }
  }
  return true;
}

int RunTransformFilter(Session& s, std::istream& in, std::ostream& out, std::ostream& err,
                       const TransformOptions& opt) {
  int datum = opt.Datum;
  if (!opt.PrjFile.empty()) {
    size_t before = s.DatumTbl.size();
    LoadPrjFile(s, opt.PrjFile);
    if (s.DatumTbl.size() == before) {
      err << opt.PrjFile << ": no Transverse Mercator projection read\n";
      return 2;
    }
    datum = int(s.DatumTbl.size()) - 1;
  }
  if (datum < 1 || size_t(datum) >= s.DatumTbl.size()) {
    err << "no coordinate system record " << datum << "\n";
    return 2;
  }
  const int fixedZone = opt.Zone > 0 ? opt.Zone : 1;

  std::string line, buf;
  long long lineNo = 0;
  int status = 0;
  while (std::getline(in, line)) {
    ++lineNo;
    double a, b;
    if (!TwoNumbers(line, a, b)) {
      err << "line " << lineNo << ": not two numbers: " << line << "\n";
      status = 1;
    } else if (opt.Inverse) {
      XY r = UTMToLatLon(s, a, b, fixedZone, opt.South, datum);
      PutNumber(buf, r.Y);
      buf += ' ';
      PutNumber(buf, r.X);
    } else {
      int zone = opt.Zone > 0 ? opt.Zone : UTMZone(a, b);
      XY r = LatLonToUTM(s, a, b, zone, opt.South, datum);
      PutNumber(buf, r.X);
      buf += ' ';
      PutNumber(buf, r.Y);
    }
    buf += '\n';
    if (buf.size() >= (1 << 16)) {
      out.write(buf.data(), std::streamsize(buf.size()));
      buf.clear();
    }
  }
  out.write(buf.data(), std::streamsize(buf.size()));
  out.flush();
  return status;
}

} // namespace velmora
