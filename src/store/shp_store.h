#pragma once
#include <string>

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
