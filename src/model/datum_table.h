#pragma once
#include <string>
#include <utility>
#include <vector>

#include "model/session.h"

namespace velmora {

// The table of coordinate systems in s.DatumTbl: records 0 .. 23 built in, user records
// (from .prj files, the calculator's dialog, the project file) from 24 up.

// Sizes the table to the 24 built-in records and fills them.
void InitDatums(Session& s);

// The definition and the seven transformation values of a record, in argument order.
struct DatumDef {
  std::string CrdName, SphName;
  double SMA = 0, SMB = 0, Flat = 0;
  double FEast = 0, FNorth = 0, FNorthS = 0, CM = 0, SF = 0, LatOrg = 0;
};
struct DatumTrans {
  double DX = 0, DY = 0, DZ = 0, RX = 0, RY = 0, RZ = 0, Scale = 0; // metres, arc-seconds, ppm
};

// Writes record `index` when it is within the table, else does nothing. A `Flat` of
// exactly 0 is computed from the axes.
void SetDatum(Session& s, int index, const DatumDef& d, const DatumTrans& t);
// Grows the table by one and writes the new last record; returns its index.
int AddDatum(Session& s, const DatumDef& d, const DatumTrans& t);
// Stores the seven values; rotations are kept in arc-seconds and in radians.
void SetDatumTrans(Session& s, int index, const DatumTrans& t);
// Moves the following records one place down and shrinks the table by one.
void RemoveDatum(Session& s, int index);

// The definition and transformation of a record, as SetDatum takes them.
DatumDef DatumDefOf(const DatumRec& r);
DatumTrans DatumTransOf(const DatumRec& r);

// A list's items: the text and the record index as the item's data.
using DatumItems = std::vector<std::pair<std::string, int>>;
// CrdName of records `first` to the table's end.
DatumItems FillDatumCmb(const Session& s, int first);
// The same, but never past record 23.
DatumItems FillSpheroidCmb(const Session& s, int first);

double FlatFromAxes(double a, double b);
double MinorFromFlat(double a, double flat);

} // namespace velmora
