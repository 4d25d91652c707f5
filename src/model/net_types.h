#pragma once

namespace velmora {

// The network block of a layer row: the .net and .ntx files and their tables.
struct NetBlock {
  int NetFile = 0, NtxFile = 0;
  bool NetOpen = false;
};

} // namespace velmora
