#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// The prompt the command bar always ends in.
inline constexpr const char* kPrompt = " >>  ";

// Sets the command bar to its start text: the prompt, the banner, a new prompt.
void LogInit(Session& s, const std::string& banner);
// Appends a line to the command bar (only when the map draws to the window); a message
// that begins with " *** " is a refusal or an error and beeps.
void LogMsg(Session& s, const std::string& text);

} // namespace velmora
