#include "ui/selection_actions.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QInputDialog>
#include <QMenu>
#include <QSpinBox>

#include "edit/edit_menus.h"
#include "frame/busy.h"
#include "platform/qt/qt_host.h"
#include "query/selection_menu.h"
#include "session/remove_deleted.h"

namespace velmora {

namespace {

// The destination layer of a copy, from the shape layers; 0 when cancelled.
int AskDestination(QWidget* parent, Session& s, const QString& caption) {
  QStringList names;
  std::vector<int> rows;
  for (int i = 1; i <= s.LyrCount; ++i) {
    if (s.Lyr[i].LyrKind != 1) continue;
    names << QString::number(i) + "  " + ToQ(s.Lyr[i].LyrName);
    rows.push_back(i);
  }
  if (rows.empty()) return 0;
  bool ok = false;
  const QString got =
      QInputDialog::getItem(parent, caption, "Destination layer:", names, 0, false, &ok);
  if (!ok) return 0;
  const int at = int(names.indexOf(got));
  return at >= 0 ? rows[size_t(at)] : 0;
}

// A range of records of the layer; false when cancelled.
bool AskRange(QWidget* parent, Session& s, int lyr, const QString& caption, int& first, int& last) {
  QDialog d(parent);
  d.setWindowTitle(ToQ(s.Lyr[lyr].LyrName) + " : " + caption);
  auto* form = new QFormLayout(&d);
  const int n = std::max(s.Lyr[lyr].Shp.RecCount, 1);
  auto* from = new QSpinBox(&d);
  auto* to = new QSpinBox(&d);
  from->setObjectName("FirstRec");
  to->setObjectName("LastRec");
  for (QSpinBox* b : {from, to}) b->setRange(1, n);
  from->setValue(1);
  to->setValue(n);
  form->addRow("From Record", from);
  form->addRow("To Record", to);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &d);
  form->addRow(buttons);
  QObject::connect(buttons, &QDialogButtonBox::accepted, &d, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, &d, &QDialog::reject);
  if (d.exec() != QDialog::Accepted) return false;
  first = from->value(), last = to->value();
  return true;
}

} // namespace

void RunSelectionAction(QWidget* parent, Session& s, const std::string& name,
                        const std::function<void()>& openFind) {
  if (name == "mnuFindByData") return openFind();
  const int lyr = s.ActiveLyr;
  if (lyr < 1 || lyr > s.LyrCount || s.Lyr[lyr].LyrKind != 1) return;
  PopupMenu m;
  AddSelectionEntries(s, m);
  const MenuEntry* e = m.Find(name);
  const QString caption = e ? ToQ(e->Caption).remove("...") : ToQ(name);
  if (name == "mnuRemoveDeletedFeatures") {
    RemoveDeleted(s, lyr);
    return;
  }
  int dst = 0, first = 0, last = 0;
  if (NeedsDestination(name) && !(dst = AskDestination(parent, s, caption))) return;
  if (NeedsRange(name) && !AskRange(parent, s, lyr, caption, first, last)) return;
  RunSelectionEntry(s, name, lyr, dst, first, last);
}

void FillSelectionMenu(QMenu* m, Session& s, const std::function<void(const std::string&)>& run) {
  QObject::connect(m, &QMenu::aboutToShow, m, [m, &s, run] {
    m->clear();
    PopupMenu entries;
    AddSelectionEntries(s, entries);
    bool first = true;
    for (const MenuEntry& e : entries.Entries) {
      if (e.Name == "-") {
        if (!first) m->addSeparator();
        continue;
      }
      first = false;
      QAction* a = m->addAction(ToQ(e.Caption));
      a->setObjectName(ToQ(e.Name));
      a->setEnabled(e.Enabled);
      const std::string name = e.Name;
      QObject::connect(a, &QAction::triggered, m, [run, name] { run(name); });
    }
  });
}

} // namespace velmora
