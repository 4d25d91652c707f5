#pragma once
#include <string>
#include <utility>
#include <vector>

#include "model/session.h"

namespace velmora {

// The bulk operations on a layer's selected features. Each runs under the busy frame on its
// layer (and "Past Features" on the destination), yields and tests for cancel after each
// record, journals what it changed, recomputes the extents and tells tables and map.
// Each returns the number of features it made or changed, or -1 when refused.

// Source and destination fields of the same name, as pairs of field numbers.
std::vector<std::pair<int, int>> FieldPairs(const Session& s, int src, int dst);
// The attribute row of record `rec` of `src` into record `dstRec` of `dst`: a new row when
// the destination grew, the fields matched by name (`pairs`), the rest dropped.
void CopyRecAttr(Session& s, int src, int rec, int dst, int dstRec,
                 const std::vector<std::pair<int, int>>& pairs);
void CopyRecAttr(Session& s, int src, int rec, int dst, int dstRec);

// "Copy Selected Features" and "Cut Selected Features": each selected feature converted to
// the destination's type, with its attributes; the cut deletes the sources.
int CopySelected(Session& s, int src, int dst);
int CutSelected(Session& s, int src, int dst);
// "Combine Selected Features": one new feature of all parts of the selected features, with
// the attributes of the first; the types must agree, or points go into a multipoint layer.
int CombineSelected(Session& s, int src, int dst);
// "Separate Selected Features": each part of each selected feature a feature of its own.
int SeparateSelected(Session& s, int src, int dst);
// "Combine Parts of Selected Features": each selected feature's parts joined into one part.
int CombinePartsSelected(Session& s, int src, int dst);
// "Delete Selection": the selected features deleted.
int DeleteSelected(Session& s, int lyr);
// "Close Selected Features Edges": each part of a selected line or polygon whose last vertex
// is not its first gets the first once more.
int CloseSelectedEdges(Session& s, int lyr);
// "Delete Features" and "UnDelete Features" over the records first .. last (either order).
int DeleteRange(Session& s, int lyr, int first, int last);
int UndeleteRange(Session& s, int lyr, int first, int last);

// The journal's lines of the operations above, run by undo and redo: records first .. last
// deleted or brought back; the records of the entry's snapshot of the layer deleted or
// brought back; and a cut (its sources and its copies) done again or undone.
void DeleteRecords(Session& s, int lyr, int first, int last, bool del);
void SnapshotRecords(Session& s, int lyr, bool del);
void CutSnapshot(Session& s, int src, int dst, int first, int last, bool redo);

} // namespace velmora
