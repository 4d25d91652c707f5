#include "coords/coord_conv.h"

#include "coords/utm_transform.h"

namespace velmora {

XY ConvertPoint(const Session& s, const CoordConv& c, XY p) {
  if (c.Dir == CoordDir::GeoToGrid) return LatLonToUTM(s, p.Y, p.X, c.Zone, c.South, c.Datum);
  return UTMToLatLon(s, p.X, p.Y, c.Zone, c.South, c.Datum);
}

void ConvertBox(const Session& s, const CoordConv& c, double& xmin, double& ymin, double& xmax,
                double& ymax) {
  XY lt = ConvertPoint(s, c, XY{xmin, ymax});
  XY rb = ConvertPoint(s, c, XY{xmax, ymin});
  xmin = lt.X, ymax = lt.Y;
  xmax = rb.X, ymin = rb.Y;
}

void ConvertRecCoords(const Session& s, const CoordConv& c, ShpRecord& r) {
  ConvertBox(s, c, r.Xmin, r.Ymin, r.Xmax, r.Ymax);
  for (ShpPart& part : r.Parts())
    for (XY& p : part.PartPoints()) p = ConvertPoint(s, c, p);
  XY label = ConvertPoint(s, c, XY{r.LabelX, r.LabelY});
  r.LabelX = label.X, r.LabelY = label.Y;
}

} // namespace velmora
