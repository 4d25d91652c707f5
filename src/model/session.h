#pragma once
#include <array>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "model/datum_types.h"
#include "model/edit_types.h"
#include "model/held_lyrs.h"
#include "model/location_types.h"
#include "model/lyr_table.h"
#include "model/map_view.h"
#include "model/net_types.h"
#include "model/query_types.h"
#include "model/script_types.h"
#include "model/surface_types.h"
#include "model/table_types.h"
#include "model/undo_types.h"
#include "platform/host.h"

namespace velmora {

// Locale settings of the session, applied where numbers, dates and text cross to and from
// files and the screen.
struct LocaleSettings {
  char DecimalSep = '.';
  std::string ShortDate = "dd/mm/yyyy";
  int CodePage = 1252;
};

// The whole state of one session. Every core operation takes it as its first argument.
struct Session {
  LyrTable Lyr;
  int32_t LyrCount = 0;
  int32_t ActiveLyr = 0;
  std::string ProjFile;
  int16_t ProjChanged = 0;
  int16_t LyrErr = 0;     // 0 good, 1 failed, 2 the file is a frame file
  std::string LyrErrText; // why the last open or save of a layer failed: the log's second line
  std::string LastDir;
  std::string ProgramDir;
  double ProjVersion = 0;
  std::array<uint8_t, 8> ProjReserved{}; // carried from the project file unchanged

  MapViewRec MapView;
  ViewVars View;
  uint8_t MapUnit = 0, MapCoordsIdx = 0, MapZone = 0, MapSouth = 0;
  uint8_t MeasUnit = 0, MeasCoordsIdx = 0, MeasZone = 0, MeasSouth = 0;
  std::vector<DatumRec> DatumTbl; // coordinate systems: 0 .. 23 built in, user records after
  PrjStageRec PrjStage;           // the last .prj file read

  std::vector<UndoEntry> UndoList;
  int32_t UndoPos = 0, UndoCount = 0;
  bool UndoOn = false, RedoOn = false; // the undo and redo buttons and menu items

  QueryVars Query;  // selection and find by data
  EditVars Edit;    // the map editor: hit slots, drag, drawing, movement settings
  LocationVars Loc; // find by location: the last crossing, the raster mask
  TableState Tbl;   // the data tables: orders kept for the undo of row sorts
  NetVars Net;      // shortest path: the stops and the network dialogs

  std::vector<ViewHistEntry> ViewHist;
  int32_t ViewPos = 0, ViewCount = 0;

  std::vector<std::string> ArgStr{""};

  // The command bar: the log, always ending in the prompt.
  std::string CommandBar;
  int32_t LogKeepFrom = 0;

  HeldLyrs Held;
  SurfaceState Surface; // the arrays of the TIN and contour functions

  // Error channels of the stores, read right after a call.
  int16_t ShpErr = 0;
  int16_t DbfErr = 0;
  // The stores' calls to the floors above them, which set these once they hold state that
  // must follow the stores; null until then.
  void (*ShpFileRead)(Session& s, const std::string& path) = nullptr; // a .shp was read anew
  void (*ControlRowWritten)(Session& s, int lyr, int row) = nullptr;  // a row of an image's table
  std::string DbfErrText; // why the attribute store failed, when it knows

  bool GdipReady = false; // TIFF and PNG codecs are present
  TiffState Tiff;
  bool ExitUnderWay = false;

  LocaleSettings Locale;
  ScriptVars Script; // the script host: queued runs, calls into the subsystems above
  std::mt19937 Rng;

  Host* host; // never null
  Session();
  explicit Session(Host& h);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

private:
  std::unique_ptr<Host> ownHost_;
};

// A random number in [0, 1), from the session's generator.
double Rnd(Session& s);
// Seeds the generator (from the clock at start; tests seed it themselves).
void Randomize(Session& s, uint32_t seed);

} // namespace velmora
