// Caches that Qt's font and platform layers keep for the life of the process are no leaks
// of ours; the leak checker of the sanitizer build reads this list.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libQt6Gui.so\nleak:libQt6Widgets.so\nleak:libfontconfig.so\n"
         "leak:libfreetype.so\nleak:libharfbuzz.so\n";
}
