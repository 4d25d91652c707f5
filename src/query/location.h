#pragma once
// Find by location: select the features of one layer by their relation to the features of
// another, and optionally copy attributes across ("Find and Data Transfer by Location").
#include <string>
#include <vector>

#include "model/session.h"

namespace velmora {

// The dialog's choices, in its codes.
struct LocationQuery {
  int FindLyr = 0;
  int Method = 1;   // 1 New Selection, 2 Add to Selection, 3 Clear From Selection
  int Criteria = 1; // 1 All Features, 2 Inside Selected Features, 3 Outside Selected Features
  int Relation = 1; // 1 .. 9, in the order of LocationRelationNames
  int RefLyr = 0;
  bool RefSelectedOnly = false;
  double Tol = 0;                          // map units; 0 without a tolerance
  std::vector<std::string> TransferFields; // checked field names; empty: no transfer
};

// The names of the lists, in code order from 1.
extern const char* const kLocationMethods[3];
extern const char* const kLocationCriteria[3];
extern const char* const kLocationRelations[9];
extern const char* const kLocationRefCriteria[2];

// Relations 2, 4 and 6 select the complement and never transfer data.
bool LocationRelationPositive(int relation);
// The predicate of a relation for find feature f and reference feature g.
bool LocationPredicate(const Session& s, int relation, int find, int f, int ref, int g, double tol);
// Relations 7 and 8 walk the find layer outside and the reference layer inside.
bool LocationFindOuter(int relation);
// The tolerance text a dialog starts with: degrees or projected map units.
std::string LocationDefaultTolerance(const Session& s);

// Runs the query under the busy frame of both layers; the number of features marked, or
// -1 when it was refused. A terminate keeps the marks found so far.
int FindByLocation(Session& s, const LocationQuery& q);

// The field names that both layers have, in the order of `from`.
std::vector<std::string> SimilarFieldNames(const Session& s, int from, int to);
// Copies the named fields of record g of `from` into record f of `to` (its swap file).
void TransferData(Session& s, int from, int g, int to, int f,
                  const std::vector<std::string>& fields);

} // namespace velmora
