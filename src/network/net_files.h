#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "model/session.h"

namespace velmora {

// The network files beside a line layer's source: .ntx, one 8-byte row a feature (i32
// offset into .net, i32 count), and .net, a run of 24-byte records (i32 other feature,
// f64 X, f64 Y, i32 vertex), all little-endian and without a header.
inline constexpr int kNetRecBytes = 24;
inline constexpr int kNtxRowBytes = 8;

std::string NetPathOf(const LyrRec& l);
std::string NtxPathOf(const LyrRec& l);

void AppendNetLink(std::string& out, const NetLink& k);
void AppendNtxRow(std::string& out, int32_t offset, int32_t count);

// Reads the two files' bytes into a node table of `recCount` nodes. Refuses, with the
// reason in `why`, files that are short of rows or records (a stale or partial build),
// whose rows are not contiguous, or whose records name a feature outside the layer or
// carry a point that is not a number; nothing is read outside the bytes given.
bool ReadNetTables(std::string_view ntx, std::string_view net, int recCount, NetNodeTable& t,
                   std::string& why);

// LoadNet: the network of a line layer (types 3 and 13) from its files. A layer of another
// type, or without both files, loads nothing and quietly returns false; damaged files are
// refused with a log line.
bool LoadNet(Session& s, int lyr);
// Is the layer of a type the search runs on, with both files beside it?
bool NetFilesReady(const Session& s, int lyr);

} // namespace velmora
