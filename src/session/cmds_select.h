#pragma once
#include "model/session.h"

namespace velmora {

// The commands of selection, find by data and the bulk operations (rows of word_cmds.cpp).
// Numbers are 1-based; a layer not in the session is opened first, except in the lines the
// journal writes.
//
//   FIND QUERY <path> <method> <criteria> <field|NONE> <relation> [<value>] [MATCHCASE]
//              [AND <field|NONE> <relation> <value> [MATCHCASE]] ...
//   FIND NESTED <path> ... as FIND QUERY, through the second bit set
//   SELECTION ADD|REMOVE <path> <first> <last>; SELECTION INVERT|CLEAR|ZOOM <path>
//   COPY|CUT|COMBINE|SEPARATE|COMBINEPARTS SELECTED <src> <dst>
//   DELETE SELECTED <path>; CLOSE SELECTED <path>; REMOVE DELETED <path>
//   DELETE FEATURES|UNDELETE FEATURES <path> <first> <last>
// Journal lines: DELETE|UNDELETE RECORDS <path> <first> <last>, DELETE|UNDELETE SNAPSHOT
// <path>, CUT|UNCUT SNAPSHOT <src> <dst> <first> <last>.
int CmdFindQuery(Session& s);
int CmdFindNested(Session& s);
int CmdSelection(Session& s);
int CmdCopySelected(Session& s);
int CmdCutSelected(Session& s);
int CmdCombineSelected(Session& s);
int CmdSeparateSelected(Session& s);
int CmdCombinePartsSelected(Session& s);
int CmdDeleteSelected(Session& s);
int CmdCloseSelected(Session& s);
int CmdRemoveDeleted(Session& s);
int CmdDeleteFeatures(Session& s);
int CmdUndeleteFeatures(Session& s);
int CmdDeleteRecords(Session& s);
int CmdUndeleteRecords(Session& s);
int CmdDeleteSnapshot(Session& s);
int CmdUndeleteSnapshot(Session& s);
int CmdCutSnapshot(Session& s);
int CmdUncutSnapshot(Session& s);

} // namespace velmora
