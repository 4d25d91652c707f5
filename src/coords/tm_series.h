#pragma once
#include <cmath>

#include "model/angles.h"
#include "model/datum_types.h"

// The Transverse Mercator series and the geocentric datum shift. Inline: they run once
// per vertex and once per pixel of a warped image.
namespace velmora {

// sin 2v, sin 4v, sin 6v, sin 8v from sin v and cos v by the multiple-angle identities: the
// series need all four for every point, and one sine and cosine cost a quarter of four sines.
struct SinMultiples {
  double S2, S4, S6, S8;
};
inline SinMultiples SinesOfMultiples(double s, double c) {
  const double s2 = 2 * s * c, c2 = (c - s) * (c + s);
  const double s4 = 2 * s2 * c2, c4 = (c2 - s2) * (c2 + s2);
  return SinMultiples{s2, s4, s4 * c2 + c4 * s2, 2 * s4 * c4};
}

// Length of the meridian arc from the equator to latitude phi (radians), given its sine and
// cosine as well.
inline double ArcLengthOfMeridian(double phi, double sinPhi, double cosPhi, const DatumRec& d) {
  const double a = d.SMA, b = d.SMB;
  const double n = (a - b) / (a + b);
  const double n2 = n * n, n3 = n2 * n, n4 = n3 * n, n5 = n4 * n;
  const double alpha = ((a + b) / 2) * (1 + n2 / 4 + n4 / 64);
  const double beta = -3 * n / 2 + 9 * n3 / 16 - 3 * n5 / 32;
  const double gamma = 15 * n2 / 16 - 15 * n4 / 32;
  const double delta = -35 * n3 / 48 + 105 * n5 / 256;
  const double epsilon = 315 * n4 / 512;
  const SinMultiples sm = SinesOfMultiples(sinPhi, cosPhi);
  return alpha * (phi + beta * sm.S2 + gamma * sm.S4 + delta * sm.S6 + epsilon * sm.S8);
}

inline double ArcLengthOfMeridian(double phi, const DatumRec& d) {
  return ArcLengthOfMeridian(phi, std::sin(phi), std::cos(phi), d);
}

// The latitude whose meridian arc is y. Also gives its sine and cosine: the latitude is y'
// plus a small correction d (under 0.003 radians on any real ellipsoid), so they follow from
// those of y', which the series needs anyway, and a short Taylor series of d.
inline double FootpointLatitude(double y, const DatumRec& d, double& sinF, double& cosF) {
  const double a = d.SMA, b = d.SMB;
  const double n = (a - b) / (a + b);
  const double n2 = n * n, n3 = n2 * n, n4 = n3 * n, n5 = n4 * n;
  const double alpha = ((a + b) / 2) * (1 + n2 / 4 + n4 / 64);
  const double yp = y / alpha;
  const double beta = 3 * n / 2 - 27 * n3 / 32 + 269 * n5 / 512;
  const double gamma = 21 * n2 / 16 - 55 * n4 / 32;
  const double delta = 151 * n3 / 96 - 417 * n5 / 128;
  const double epsilon = 1097 * n4 / 512;
  const double sy = std::sin(yp), cy = std::cos(yp);
  const SinMultiples sm = SinesOfMultiples(sy, cy);
  const double corr = beta * sm.S2 + gamma * sm.S4 + delta * sm.S6 + epsilon * sm.S8;
  const double phi = yp + corr;
  if (std::abs(corr) < 0.01) { // remainders below 1e-17
    const double c2 = corr * corr;
    const double sd = corr * (1 - c2 / 6 * (1 - c2 / 20 * (1 - c2 / 42)));
    const double cd = 1 - c2 / 2 * (1 - c2 / 12 * (1 - c2 / 30));
    sinF = sy * cd + cy * sd;
    cosF = cy * cd - sy * sd;
  } else {
    sinF = std::sin(phi), cosF = std::cos(phi);
  }
  return phi;
}

inline double FootpointLatitude(double y, const DatumRec& d) {
  double s, c;
  return FootpointLatitude(y, d, s, c);
}

// The arc at the record's latitude of origin; exactly 0 at the equator, so skipped there.
inline double ArcAtOrigin(const DatumRec& d) {
  return d.LatOrg == 0 ? 0.0 : ArcLengthOfMeridian(DegToRad(d.LatOrg), d);
}

struct GridXY {
  double X = 0, Y = 0;
};

// Forward Transverse Mercator, a series of order 8 in the longitude difference. Radians in,
// unscaled metres out, no false origin.
inline GridXY MapLatLonToXY(double phi, double lambda, double lambda0, const DatumRec& d) {
  const double a = d.SMA, b = d.SMB;
  const double ep2 = (a * a - b * b) / (b * b);
  const double sp = std::sin(phi), c = std::cos(phi);
  const double nu2 = ep2 * c * c;
  const double N = a * a / (b * std::sqrt(1 + nu2));
  const double t = sp / c;
  const double t2 = t * t;
  const double l = lambda - lambda0;
  const double c2 = c * c, c3 = c2 * c, c4 = c3 * c, c5 = c4 * c, c6 = c5 * c, c7 = c6 * c,
               c8 = c7 * c;
  const double l2 = l * l, l3 = l2 * l, l4 = l3 * l, l5 = l4 * l, l6 = l5 * l, l7 = l6 * l,
               l8 = l7 * l;
  GridXY r;
  r.X = N * c * l + (N / 6) * c3 * (1 - t2 + nu2) * l3 +
        (N / 120) * c5 * (5 - 18 * t2 + t2 * t2 + 14 * nu2 - 58 * t2 * nu2) * l5 +
        (N / 5040) * c7 * (61 - 479 * t2 + 179 * t2 * t2 - t2 * t2 * t2) * l7;
  r.Y = ArcLengthOfMeridian(phi, sp, c, d) - ArcAtOrigin(d) + (t / 2) * N * c2 * l2 +
        (t / 24) * N * c4 * (5 - t2 + 9 * nu2 + 4 * nu2 * nu2) * l4 +
        (t / 720) * N * c6 * (61 - 58 * t2 + t2 * t2 + 270 * nu2 - 330 * t2 * nu2) * l6 +
        (t / 40320) * N * c8 * (1385 - 3111 * t2 + 543 * t2 * t2 - t2 * t2 * t2) * l8;
  return r;
}

// Inverse Transverse Mercator: unscaled metres without false origin in, (lon, lat) radians out.
inline GridXY MapXYToLatLon(double x, double y, double lambda0, const DatumRec& d) {
  const double a = d.SMA, b = d.SMB;
  double sf, cf;
  const double phif = FootpointLatitude(ArcAtOrigin(d) + y, d, sf, cf);
  const double ep2 = (a * a - b * b) / (b * b);
  const double nuf2 = ep2 * cf * cf;
  const double root = std::sqrt(1 + nuf2);
  // x1 = 1/(Nf cf), x2 = tf/(2 Nf^2), x3 = 1/(6 Nf^3 cf) ... x8 = tf/(40320 Nf^8), written
  // with the reciprocals of Nf and cf so that the point costs two divisions instead of ten.
  // Nf = a^2 / (b sqrt(1 + nuf2)) and tf = tan phif enter only through 1/Nf and sf/cf.
  const double iN = b * root / (a * a), ic = 1 / cf;
  const double tf = sf * ic;
  const double tf2 = tf * tf, tf4 = tf2 * tf2;
  const double iN2 = iN * iN, iN3 = iN2 * iN, iN4 = iN3 * iN, iN5 = iN4 * iN, iN6 = iN5 * iN,
               iN7 = iN6 * iN, iN8 = iN7 * iN;
  const double x1 = iN * ic;
  const double x2 = tf * iN2 * (1.0 / 2);
  const double x3 = iN3 * ic * (1.0 / 6);
  const double x4 = tf * iN4 * (1.0 / 24);
  const double x5 = iN5 * ic * (1.0 / 120);
  const double x6 = tf * iN6 * (1.0 / 720);
  const double x7 = iN7 * ic * (1.0 / 5040);
  const double x8 = tf * iN8 * (1.0 / 40320);
  const double p2 = -1 - nuf2;
  const double p3 = -1 - 2 * tf2 - nuf2;
  const double p4 =
      5 + 3 * tf2 + 6 * nuf2 - 6 * tf2 * nuf2 - 3 * (nuf2 * nuf2) - 9 * tf2 * (nuf2 * nuf2);
  const double p5 = 5 + 28 * tf2 + 24 * tf4 + 6 * nuf2 + 8 * tf2 * nuf2;
  const double p6 = -61 - 90 * tf2 - 45 * tf4 - 107 * nuf2 + 162 * tf2 * nuf2;
  const double p7 = -61 - 662 * tf2 - 1320 * tf4 - 720 * (tf4 * tf2);
  const double p8 = 1385 + 3633 * tf2 + 4095 * tf4 + 1575 * (tf4 * tf2);
  const double xx2 = x * x, xx3 = xx2 * x, xx4 = xx3 * x, xx5 = xx4 * x, xx6 = xx5 * x,
               xx7 = xx6 * x, xx8 = xx7 * x;
  GridXY r;
  r.Y = phif + x2 * p2 * xx2 + x4 * p4 * xx4 + x6 * p6 * xx6 + x8 * p8 * xx8;
  r.X = lambda0 + x1 * x + x3 * p3 * xx3 + x5 * p5 * xx5 + x7 * p7 * xx7;
  return r;
}

struct Cart {
  double X = 0, Y = 0, Z = 0;
};

// Geodetic to geocentric, height 0.
inline Cart GeoToCart(double lon, double lat, const DatumRec& d) {
  const double a = d.SMA, b = d.SMB;
  const double e2 = (a * a - b * b) / (a * a);
  const double sl = std::sin(lat), cl = std::cos(lat);
  const double N = a / std::sqrt(1 - e2 * sl * sl);
  return Cart{N * cl * std::cos(lon), N * cl * std::sin(lon), (1 - e2) * N * sl};
}

// The seven-parameter similarity, rotations in radians, scale in ppm. Each line uses the
// results of the lines before it: that chaining is this system's definition of the shift.
inline Cart BursaWolf(const Cart& p, double dx, double dy, double dz, double rx, double ry,
                      double rz, double s) {
  const double m = 1e-6 * s + 1;
  Cart r;
  r.X = (p.X - rz * p.Y + ry * p.Z) * m + dx;
  r.Y = (r.X * rz + p.Y - rx * p.Z) * m + dy;
  r.Z = (-ry * r.X + rx * r.Y + p.Z) * m + dz;
  return r;
}

// Geocentric to geodetic in one closed step (Bowring), returned as (lon, lat) radians. The
// longitude comes from the one-argument arc tangent and so stays within +-90 degrees.
inline GridXY CartToGeo(const Cart& p, const DatumRec& d) {
  const double a = d.SMA, b = d.SMB;
  const double e2 = (a * a - b * b) / (a * a);
  const double ep2 = e2 / (1 - e2);
  const double pp = std::sqrt(p.X * p.X + p.Y * p.Y);
  const double theta = std::atan(p.Z * a / (pp * b));
  const double st = std::sin(theta), ct = std::cos(theta);
  GridXY r;
  r.X = std::atan(p.Y / p.X);
  r.Y = std::atan((p.Z + ep2 * b * st * st * st) / (pp - e2 * a * ct * ct * ct));
  return r;
}

} // namespace velmora
