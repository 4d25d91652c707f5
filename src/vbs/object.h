#pragma once
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "vbs/value.h"

namespace vbs {

class Interp;

enum class Invoke : uint8_t { Get, Let, Set };

// An object a script can hold: the host's, the built-in ones (Err, RegExp, Dictionary) and
// instances of script classes. Members are found by lower-case name once and then called by id.
class Object {
public:
  virtual ~Object() = default;
  virtual std::string TypeName() const = 0;
  // The member's id, or -1 when there is none.
  virtual int MemberId(std::string_view lname) = 0;
  // The default member's id, or -1.
  virtual int DefaultId() { return -1; }
  // Calls a member. For Let and Set the value is the last argument. Returns 0 or VBScript's
  // error number (with `desc` when not the standard text).
  virtual int Call(Interp& in, int id, std::span<Value*> args, Invoke kind, Value& result,
                   std::string& desc) = 0;
  // For Each: the items. False when the object is not a collection.
  virtual bool Items(std::vector<Value>&) { return false; }
};

} // namespace vbs
