#pragma once
#include <string>
#include <vector>

#include "platform/http_fetch.h"

namespace velmora {

class Canvas;
class ImageIO;

enum class MsgButtons { OkOnly, YesNo, YesNoCancel };
enum class MsgAnswer { Ok, Yes, No, Cancel };

// What the core needs from the world around it: the window, the event loop, the shell.
// Every member has a harmless default so that a headless session or a test needs to
// override only what it looks at. The window's implementation lives in platform/qt.
class Host {
public:
  virtual ~Host() = default;

  // One turn of the event loop: lets the user act between steps of a long function.
  virtual void Yield() {}
  // A message box; headless, the default answer is taken.
  virtual MsgAnswer MsgBox(const std::string& text, const std::string& title, MsgButtons buttons,
                           MsgAnswer dflt) {
    (void)text, (void)title, (void)buttons;
    return dflt;
  }
  virtual void Beep() {}
  // Called after LogMsg appended `msg` to the command bar.
  virtual void LogAppended(const std::string& msg) { (void)msg; }
  virtual void WaitCursor(bool on) { (void)on; }
  // ProgBar: value out of max; max 0 hides it.
  virtual void Progress(long long value, long long max) { (void)value, (void)max; }
  // txtFunc: the caption of the running operation.
  virtual void FuncText(const std::string& text) { (void)text; }
  // The layer list is rebuilt from Lyr; one item is redrawn from its row.
  virtual void LayerListChanged() {}
  virtual void LayerItemChanged(int lyr) { (void)lyr; }
  virtual void MapRedraw() {}
  // MapBuf: the off-screen surface of the window's map; null when there is no window.
  virtual Canvas* MapBuf() { return nullptr; }
  // EditPic takes the image of MapBuf.
  virtual void MapShow() {}
  // The picture store; null when pictures can't be decoded here.
  virtual ImageIO* Images() { return nullptr; }
  // BlkTable / UnBlkTable: the data grid of the layer's open table and edit-feature window.
  virtual void BlockTable(int lyr, bool blocked) { (void)lyr, (void)blocked; }
  // Is the form known by this caption open (the names of the dialog-exclusion lists)?
  virtual bool IsDialogOpen(const std::string& caption) {
    (void)caption;
    return false;
  }
  // The shell's "open" verb: the desktop's default application.
  virtual bool ShellOpen(const std::string& path) {
    (void)path;
    return false;
  }
  // New Project: a second copy of the program in a new process.
  virtual bool StartSecondProcess() { return false; }
  // Asks for a path to save to (the Save Project dialog); "" when cancelled.
  virtual std::string SaveFileDialog(const std::string& title, const std::string& filter,
                                     const std::string& defaultName) {
    (void)title, (void)filter, (void)defaultName;
    return "";
  }
  // Cells of the layer changed outside its table (undo and redo of data edits): the open
  // table, Identify and Edit Feature refresh their rows if they show this layer.
  virtual void TableDataChanged(int lyr) { (void)lyr; }
  // The clipboard's text; "" when it holds none.
  virtual std::string ClipboardText() { return ""; }
  virtual void SetClipboardText(const std::string& text) { (void)text; }
  // Prints lines of tab-separated cells as a table under `title`; false when no printer.
  virtual bool PrintTable(const std::string& title, const std::vector<std::string>& lines) {
    (void)title, (void)lines;
    return false;
  }
  // The layer's field table changed: its open table sets up its columns again.
  virtual void TableFieldsChanged(int lyr) { (void)lyr; }
  // The open table of the layer writes its page into the store (before an outside change).
  virtual void FlushTable(int lyr) { (void)lyr; }
  // The layer goes away: its table, Identify and Edit Feature let go of it.
  virtual void CloseTable(int lyr) { (void)lyr; }
  // Opens `path` with the program `program` (a hyperlink's own program).
  virtual bool OpenWith(const std::string& program, const std::string& path) {
    (void)program, (void)path;
    return false;
  }
  // A script's MsgBox: the button pressed (vbOK 1 .. vbNo 7), or -1 when this host shows
  // none (the prompt then goes to standard output and the default button is taken).
  virtual int ScriptMsgBox(const std::string& prompt, int buttons, const std::string& title) {
    (void)prompt, (void)buttons, (void)title;
    return -1;
  }
  // A script's InputBox: false when this host shows none (the default is the answer);
  // `cancelled` when the user cancelled.
  virtual bool ScriptInputBox(const std::string& prompt, const std::string& title,
                              const std::string& dflt, std::string& answer, bool& cancelled) {
    (void)prompt, (void)title, (void)dflt, (void)answer, (void)cancelled;
    return false;
  }
  // The text at an http:// or https:// address; false when it can't be fetched.
  virtual bool FetchText(const std::string& url, std::string& text) {
    return HttpGetText(url, text);
  }
};

} // namespace velmora
