#pragma once
#include <string>
#include <vector>

#include "model/safe_file.h"
#include "model/session.h"

namespace velmora {

// The geometry store: .shp and .shx read whole into memory and written whole from it.
// Every call takes the layer number; records are 1-based, parts and vertices 0-based.
// Errors go to s.ShpErr (0 or 1); nothing here logs.

// File side.
void OpenShp(Session& s, int lyr, const std::string& path);
void SaveShp(Session& s, int lyr, const std::string& path);
void SaveShpClean(Session& s, int lyr, const std::string& path);
void NewShp(Session& s, int lyr, const std::string& path, int shapeType);
void CloseShp(Session& s, int lyr);

// What a save of the geometry tells the layer, held back until its files are in place.
struct ShpSaved {
  ShpMainHeader ShpHeader, ShxHeader;
  int32_t RecOffset = 0, RecLength = 0, RecHdrNumber = 0;
  bool Clean = false;
  std::vector<uint8_t> SelBits; // a clean save: the selection under the new numbers
  std::string ShxPath;          // a clean save: the index that goes once the .shp is in place
};
// Writes the layer's .shx and .shp (a clean save: only the .shp) under `path` into `files`,
// to be committed with the layer's other files. The layer is not changed; after a good
// commit ApplyShpSaved tells it. False, with the reason in `files`, on any failure.
bool WriteShpFiles(Session& s, int lyr, const std::string& path, bool clean, SafeFileSet& files,
                   ShpSaved& out);
void ApplyShpSaved(Session& s, int lyr, const ShpSaved& saved);

// Record side.
bool IsDeleted(const Session& s, int lyr, int rec);
void DeleteRec(Session& s, int lyr, int rec, bool refresh);
void UndeleteRec(Session& s, int lyr, int rec, bool refresh);
void DeletePart(Session& s, int lyr, int rec, int part, bool refresh);
void UndeletePart(Session& s, int lyr, int rec, int part, bool refresh);
void DeletePartRange(Session& s, int lyr, int rec, int firstPart, int lastPart, bool refresh);
void DeleteVertices(Session& s, int lyr, int rec, int part, int first, int count);
void DeleteVerticesRing(Session& s, int lyr, int rec, int part, int first, int last, bool refresh);
void AddRec(Session& s, int lyr);
void ReserveRecs(Session& s, int lyr, int extra);
void SizeRecs(Session& s, int lyr, int capacity);
void CopyRecTo(Session& s, int srcLyr, int srcRec, int dstLyr, int dstRec, bool refresh);
void AddPart(Session& s, int lyr, int rec);
void AddVertex(Session& s, int lyr, int rec, int part, double x, double y, double z, double m);
void AddVertexRefresh(Session& s, int lyr, int rec, int part, double x, double y, double z,
                      double m);
void InsertVertex(Session& s, int lyr, int rec, int part, int at, double x, double y, double z,
                  double m);
void InsertVertexRefresh(Session& s, int lyr, int rec, int part, int at, double x, double y,
                         double z, double m);
void CopyVerticesFwd(Session& s, int srcLyr, int srcRec, int srcPart, int first, int last,
                     int dstLyr, int dstRec, int dstPart, int at);
void CopyVerticesBack(Session& s, int srcLyr, int srcRec, int srcPart, int first, int last,
                      int dstLyr, int dstRec, int dstPart, int at);
void MovePartUp(Session& s, int lyr, int rec, int part);
void MovePartDown(Session& s, int lyr, int rec, int part);
void ReversePart(Session& s, int lyr, int rec, int part);
void ConvertLineGon(Session& s, int lyr, int oldType, int newType);
void RecalcRecBox(Session& s, int lyr, int rec);
void RecalcExtent(Session& s, int lyr);
// The frame record in slot 0: the closed rectangle of the layer's extent.
void RebuildFrameRecord(Session& s, int lyr);
void RecLabelPoint(Session& s, int lyr, int rec);

// Measures, rounded to nine decimals.
double PartLengthPlain(const Session& s, int lyr, int rec, int part);
double PartLength(const Session& s, int lyr, int rec, int part);
double RecLength(const Session& s, int lyr, int rec);
double PartArea(const Session& s, int lyr, int rec, int part);
double RecArea(const Session& s, int lyr, int rec);

// "Validate Layer boundaries": every record's box again, in the running-function frame.
void ValidateLyrBoundaries(Session& s, int lyr);

} // namespace velmora
