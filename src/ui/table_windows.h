#pragma once
#include <QObject>
#include <QPointer>
#include <map>
#include <string>

#include "model/session.h"

class QMainWindow;

namespace velmora {

class EditFeatureWindow;
class IdentifyPanel;
class QtHost;
class TableWindow;

// The main window's holder of the data tables (one per layer), Edit Feature and Identify:
// it opens them and passes the refresh calls of the session on to them.
class TableWindows : public QObject {
  Q_OBJECT
public:
  TableWindows(Session& s, QtHost& host, QMainWindow* main);

  // OpenAttributeTable: the layer's table, raised when it is open.
  TableWindow* OpenTable(int lyr);
  // The open table of the layer, or null.
  TableWindow* TableOf(int lyr) const;
  // Edit Feature on a record (opened when closed).
  EditFeatureWindow* ShowEditFeature(int lyr, int rec);
  EditFeatureWindow* EditFeature() const;
  // The pick of tool 11 changed: an open Edit Feature shows the hit, or blocks on a miss.
  void EditHitChanged();
  // Tool 8 and tool 9 clicks at pixel (x, y) of the map.
  void Identify(double x, double y);
  void HyperLink(double x, double y);
  IdentifyPanel* Identifier() const;

signals:
  void PropertiesRequested(int lyr);

private:
  void DataChanged(int lyr);
  void FieldsChanged(int lyr);
  void Blocked(int lyr, bool blocked);

  Session& s_;
  QMainWindow* main_;
  std::map<std::string, QPointer<TableWindow>> tables_; // by the layer's source
  QPointer<EditFeatureWindow> editFeature_;
  QPointer<IdentifyPanel> identify_;
};

} // namespace velmora
