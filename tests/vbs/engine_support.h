#pragma once
#include <string>
#include <vector>

#include "vbs/interp.h"

// A host that keeps what MsgBox was given, for the tests of the engine.
class RecordingEngineHost : public vbs::EngineHost {
public:
  std::vector<std::string> Boxes;
  int Answer = 1;
  int CancelAfter = -1; // Cancelled() turns true after this many asks
  int MsgBox(const std::string& prompt, int, const std::string&) override {
    Boxes.push_back(prompt);
    return Answer;
  }
  bool Cancelled() override { return CancelAfter >= 0 && CancelAfter-- == 0; }
};
