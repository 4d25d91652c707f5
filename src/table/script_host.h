#pragma once
#include <memory>
#include <string>

#include "model/session.h"
#include "vbs/interp.h"

namespace velmora {

// The scripting object clsVBS, added to the engine as QMTVBS with its members global: a
// script's access to layers, records, geometry and selection. LayerNo and RecNo are the
// current layer and record; an argument of 0 stands for them.
class QmtVbs : public vbs::Object {
public:
  explicit QmtVbs(Session& s) : s_(s) {}
  std::string TypeName() const override { return "clsVBS"; }
  int MemberId(std::string_view lname) override;
  int Call(vbs::Interp& in, int id, std::span<vbs::Value*> args, vbs::Invoke kind,
           vbs::Value& result, std::string& desc) override;
  int32_t LayerNo = 0;
  int32_t RecNo = 0;

private:
  Session& s_;
};

// The engine's dialogs and cancel test through the session's host; with a layer, the
// terminate flag of that layer stops a running script.
class SessionEngineHost : public vbs::EngineHost {
public:
  SessionEngineHost(Session& s, int lyr) : s_(s), lyr_(lyr) {}
  int MsgBox(const std::string& prompt, int buttons, const std::string& title) override;
  std::string InputBox(const std::string& prompt, const std::string& title, const std::string& def,
                       bool& cancelled) override;
  bool Cancelled() override;
  void SetLyr(int lyr) { lyr_ = lyr; }

private:
  Session& s_;
  int lyr_;
};

// "0#": whole degrees and whole minutes; seconds through "0#.#####".
std::string DegreesText(double dd);
std::string MinutesText(double dd);
double SecondsOf(double dd);
// The writer of text for generated JavaScript: eval(unescape("\x..")) ;
std::string EncryptStr(const std::string& text);

} // namespace velmora
