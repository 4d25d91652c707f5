// Placeholders until the store lands; this file goes when it does.
#include "store/shp_store.h"

namespace velmora {

void OpenShp(Session& /*s*/, int /*lyr*/, const std::string& /*path*/) {}
void SaveShp(Session& /*s*/, int /*lyr*/, const std::string& /*path*/) {}
void SaveShpClean(Session& /*s*/, int /*lyr*/, const std::string& /*path*/) {}
void NewShp(Session& /*s*/, int /*lyr*/, const std::string& /*path*/, int /*shapeType*/) {}
void CloseShp(Session& /*s*/, int /*lyr*/) {}
bool IsDeleted(const Session& /*s*/, int /*lyr*/, int /*rec*/) {
  return false;
}
void DeleteRec(Session& /*s*/, int /*lyr*/, int /*rec*/, bool /*refresh*/) {}
void UndeleteRec(Session& /*s*/, int /*lyr*/, int /*rec*/, bool /*refresh*/) {}
void DeletePart(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*part*/, bool /*refresh*/) {}
void UndeletePart(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*part*/, bool /*refresh*/) {}
void DeletePartRange(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*firstPart*/, int /*lastPart*/,
                     bool /*refresh*/) {}
void DeleteVertices(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*part*/, int /*first*/,
                    int /*count*/) {}
void DeleteVerticesRing(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*part*/, int /*first*/,
                        int /*last*/, bool /*refresh*/) {}
void AddRec(Session& /*s*/, int /*lyr*/) {}
void ReserveRecs(Session& /*s*/, int /*lyr*/, int /*extra*/) {}
void SizeRecs(Session& /*s*/, int /*lyr*/, int /*capacity*/) {}
void CopyRecTo(Session& /*s*/, int /*srcLyr*/, int /*srcRec*/, int /*dstLyr*/, int /*dstRec*/,
               bool /*refresh*/) {}
void AddPart(Session& /*s*/, int /*lyr*/, int /*rec*/) {}
void AddVertex(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*part*/, double /*x*/, double /*y*/,
               double /*z*/, double /*m*/) {}
void AddVertexRefresh(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*part*/, double /*x*/,
                      double /*y*/, double /*z*/, double /*m*/) {}
void InsertVertex(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*part*/, int /*at*/, double /*x*/,
                  double /*y*/, double /*z*/, double /*m*/) {}
void InsertVertexRefresh(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*part*/, int /*at*/,
                         double /*x*/, double /*y*/, double /*z*/, double /*m*/) {}
void CopyVerticesFwd(Session& /*s*/, int /*srcLyr*/, int /*srcRec*/, int /*srcPart*/, int /*first*/,
                     int /*last*/, int /*dstLyr*/, int /*dstRec*/, int /*dstPart*/, int /*at*/) {}
void CopyVerticesBack(Session& /*s*/, int /*srcLyr*/, int /*srcRec*/, int /*srcPart*/,
                      int /*first*/, int /*last*/, int /*dstLyr*/, int /*dstRec*/, int /*dstPart*/,
                      int /*at*/) {}
void MovePartUp(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*part*/) {}
void MovePartDown(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*part*/) {}
void ReversePart(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*part*/) {}
void ConvertLineGon(Session& /*s*/, int /*lyr*/, int /*oldType*/, int /*newType*/) {}
void RecalcRecBox(Session& /*s*/, int /*lyr*/, int /*rec*/) {}
void RecalcExtent(Session& /*s*/, int /*lyr*/) {}
void RecLabelPoint(Session& /*s*/, int /*lyr*/, int /*rec*/) {}
double PartLengthPlain(const Session& /*s*/, int /*lyr*/, int /*rec*/, int /*part*/) {
  return 0;
}
double PartLength(const Session& /*s*/, int /*lyr*/, int /*rec*/, int /*part*/) {
  return 0;
}
double RecLength(const Session& /*s*/, int /*lyr*/, int /*rec*/) {
  return 0;
}
double PartArea(const Session& /*s*/, int /*lyr*/, int /*rec*/, int /*part*/) {
  return 0;
}
double RecArea(const Session& /*s*/, int /*lyr*/, int /*rec*/) {
  return 0;
}
void ValidateLyrBoundaries(Session& /*s*/, int /*lyr*/) {}
} // namespace velmora

// Storage of parts and records: placeholders that hold nothing.
namespace velmora {
ShpPart::ShpPart(const ShpPart&) {}
ShpPart::ShpPart(ShpPart&&) noexcept {}
ShpPart& ShpPart::operator=(const ShpPart&) {
  return *this;
}
ShpPart& ShpPart::operator=(ShpPart&&) noexcept {
  return *this;
}
ShpPart::~ShpPart() {}
ShpRecord::ShpRecord(const ShpRecord&) {}
ShpRecord::ShpRecord(ShpRecord&&) noexcept {}
ShpRecord& ShpRecord::operator=(const ShpRecord&) {
  return *this;
}
ShpRecord& ShpRecord::operator=(ShpRecord&&) noexcept {
  return *this;
}
ShpRecord::~ShpRecord() {}
} // namespace velmora
