#pragma once
#include <cstdint>
#include <cstdio>
#include <string>

namespace velmora {

// Path helpers. "/" is the separator; "\" is accepted as well, so that paths written
// on other systems still open.
bool FileExists(const std::string& path);
void KillFile(const std::string& path);          // no error when missing
std::string FileNameOf(const std::string& path); // all behind the last separator
std::string FolderOf(const std::string& path);   // all up to and with the last separator
std::string ExtOf(const std::string& path);      // lower-cased, without the point
std::string ChangeExt(const std::string& path, const std::string& ext);
// Replaces the extension of the file name (not of a folder) by `ext`, or appends it. An
// extension that already is `ext` in another case stays as it is.
std::string ReplaceExt(const std::string& path, const std::string& ext);
// A unique new file in `folder` whose name starts with `prefix` ("qmt"); the file exists
// (empty) when this returns, as with the system's temporary-name service. "" on failure.
std::string TempName(const std::string& folder, const std::string& prefix = "qmt");
// Turns "\" into "/" so that the file system finds the path.
std::string NativePath(const std::string& path);

uint32_t SwapBytes32(uint32_t n);
uint16_t SwapBytes16(uint16_t n);

// A 32-bit little-endian length, then that many 8-bit characters.
bool ReadLStr(std::FILE* f, std::string& s);
bool WriteLStr(std::FILE* f, const std::string& s);

std::string UCase(std::string s);
std::string LCase(std::string s);
std::string Trim(const std::string& s);

} // namespace velmora
