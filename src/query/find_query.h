#pragma once
#include <string>
#include <utility>
#include <vector>

#include "model/query_types.h"
#include "model/session.h"

namespace velmora {

// Find by data: an evaluator of its own over field text and doubles.

// Methods and criteria of the dialog, in its order.
enum FindMethod { kNewSelection = 1, kAddToSelection = 2, kClearFromSelection = 3 };
enum FindCriteria { kAllFeatures = 1, kInsideSelected = 2, kOutsideSelected = 3 };

// The captions of the relations (LstRel), index 0 = relation 1.
const std::vector<std::string>& RelationCaptions();

// Trailing spaces off each value, and upper case unless the term matches case.
void PrepareTerms(std::vector<QueryTerm>& terms);
// Is the term on (a field set, or the whole row)?
bool TermOn(const QueryTerm& t);
// The term against the row in the layer's buffer; the term is prepared.
bool QueryMatch(Session& s, int lyr, const QueryTerm& t);

// "Find Query": the rows of the layer against all terms that are on (a logical and), applied
// to the selection by `method` and `criteria` (1 .. 3 each). The busy frame, a yield and
// cancel test per row. Returns the number of matches (also in s.Query.FoundCount), or -1
// when the find did not run or was cut short.
int FindQuery(Session& s, int lyr, int method, int criteria, std::vector<QueryTerm> terms);

// The "Find" button: the terminate question when the layer is busy (title "<name> : Query
// Message Box "), else FindQuery with its messages, the tables and the map refreshed, and,
// for a `scale` above 0, the found features shown at that map scale.
int FindValues(Session& s, int lyr, int method, int criteria, const std::vector<QueryTerm>& terms,
               double scale = 0);

// The nested find: the terms marked into QryBits over the records that `criteria` admits,
// then QryBits applied to the selection by `method`. Returns the number marked, -1 if refused.
int NestedFind(Session& s, int lyr, int method, int criteria, std::vector<QueryTerm> terms);

// "Update Unique Value": the distinct trimmed values of field `field` over the records that
// `criteria` admits (1 all not deleted, 2 selected, 3 not selected), those that contain
// `value` when it is not empty; as (sort key, value) pairs ordered by the key's text. Field
// 0 ("None") gives the single entry "None". Empty when refused.
std::vector<std::pair<std::string, std::string>> UpdateUnique(Session& s, int lyr, int criteria,
                                                              int field, const std::string& value);
// The sort key of a value in the unique list: dates as YYYYMMDD, numbers so that the text
// order follows the numbers ("+" and the reciprocal for negatives, "-" and twelve padded
// digits for the others), any other text trimmed.
std::string UniqueSortKey(const Session& s, const std::string& v);

} // namespace velmora
