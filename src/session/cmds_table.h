#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// The commands of the data table and the field structure, and the journalled forms of
// the table window's structure changes and row sort.
//
//   FILL SERIES <path> <field> <firstRec> <lastRec> <start> <step> [<stop>]
//   ADD RECORDS <path> <count>
//   DELETE FIELD <path> <name>
//   RENAME FIELD <path> <name> <newName>
//   CHANGE FIELD <path> <name> <type> <width> <decimals>
//   SORT ROWS <path> <field> ASCENDING|DESCENDING
//   UNSORT ROWS <path> <order>            (the undo line of a sort)
//   CONVERT UTF8 <path> <field> <firstRec> <lastRec>   (UTF-8 bytes to characters)
//   CONVERT ASCII <path> <field> <firstRec> <lastRec>  (characters to UTF-8 bytes)
int RunFillSeriesCmd(Session& s);
int RunAddRecordsCmd(Session& s);
int RunDeleteFieldCmd(Session& s);
int RunRenameFieldCmd(Session& s);
int RunChangeFieldCmd(Session& s);
int RunSortRowsCmd(Session& s);
int RunUnsortRowsCmd(Session& s);
int RunConvertUtf8Cmd(Session& s);
int RunConvertAsciiCmd(Session& s);

// The window's forms: the same operations with their undo and redo lines in the journal.
bool SortRowsJournalled(Session& s, int lyr, int field, bool descending);
bool AddFieldJournalled(Session& s, int lyr, const std::string& name, char type, int width,
                        int decimals);
bool RenameFieldJournalled(Session& s, int lyr, const std::string& name,
                           const std::string& newName);

} // namespace velmora
