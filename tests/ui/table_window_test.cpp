#include <gtest/gtest.h>

#include <QAbstractItemModel>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QTableView>
#include <QTreeWidget>
#include <QValidator>

#include "../table/table_fixture.h"
#include "edit/move_ops.h"
#include "platform/qt/qt_host.h"
#include "qt_app.h"
#include "session/layer_life.h"
#include "table/table_page.h"
#include "ui/edit_feature_window.h"
#include "ui/identify_panel.h"
#include "ui/main_window.h"
#include "ui/table_dialogs.h"
#include "ui/table_window.h"
#include "ui/table_windows.h"

using namespace velmora;

namespace {

struct AppFirst {
  AppFirst() { test::App(); }
};

struct TableWindowTest : ::testing::Test, AppFirst {
  QtHost host;
  Session s{host};
  MainWindow w{s, host};
  std::string dir, path;
  int lyr = 0;

  void Open(int n, const char* name) {
    dir = test::TempDir(name);
    path = test::MakeGdalLayer(dir, n);
    AddShape(s, path, false);
    lyr = FindLyrByFile(s, path);
    ASSERT_GE(lyr, 1);
    s.Lyr[lyr].EEditable = 1;
  }
  void TearDown() override { CloseAllLyrs(s); }
  std::string Cell(int rec, int f) {
    ReadDbfRec(s, lyr, rec - 1);
    return Trim(GetFieldValue(s, lyr, f));
  }
  void SelectCells(TableWindow* t, int r1, int c1, int r2, int c2) {
    QAbstractItemModel* m = t->Grid()->model();
    t->Grid()->selectionModel()->select(QItemSelection(m->index(r1, c1), m->index(r2, c2)),
                                        QItemSelectionModel::ClearAndSelect);
  }
};

} // namespace

TEST_F(TableWindowTest, OpensWithCaptionColumnsAndCounter) {
  Open(50, "tblwin");
  TableWindow* t = w.Tables()->OpenTable(lyr);
  ASSERT_TRUE(t);
  EXPECT_EQ(t->windowTitle(), "pts.shp : Data Table");
  EXPECT_EQ(w.Tables()->OpenTable(lyr), t); // one table per layer
  EXPECT_TRUE(s.Lyr[lyr].TblOpen);
  QAbstractItemModel* m = t->Grid()->model();
  EXPECT_EQ(m->headerData(0, Qt::Horizontal).toString(), "Record No");
  EXPECT_EQ(m->headerData(2, Qt::Horizontal).toString(), "NAME");
  EXPECT_EQ(m->columnCount(), 6);
  EXPECT_EQ(m->index(0, 0).data().toInt(), 1);
  EXPECT_EQ(t->Counter()->text(), "Selected Records = ( 0 out of total 50 Records )");
  EXPECT_EQ(t->Scroller()->maximum(), 50);
  EXPECT_EQ(t->Scroller()->pageStep(), 6);
  EXPECT_TRUE(t->Scroller()->isEnabled());

  t->Scroller()->setValue(20); // the page moves with the scroller
  EXPECT_EQ(m->index(0, 0).data().toInt(), 20);

  // The selected view shows only the selected records, with the highlight.
  s.Lyr[lyr].SelBits.assign(8, 0);
  s.Lyr[lyr].SelBits[1] = 1 << 2; // record 10
  t->SetMode(1);
  EXPECT_EQ(m->index(0, 0).data().toInt(), 10);
  EXPECT_TRUE(m->index(0, 0).data(Qt::BackgroundRole).isValid());
  EXPECT_EQ(m->index(1, 0).data().toString(), "");
  EXPECT_FALSE(t->Scroller()->isEnabled());

  // Select Features takes the records of the table's range.
  t->SetMode(0);
  t->Scroller()->setValue(1);
  SelectCells(t, 2, 1, 4, 2); // records 3 to 5
  t->Action("mnuSelect")->trigger();
  EXPECT_TRUE(IsSelected(s, lyr, 3) && IsSelected(s, lyr, 4) && IsSelected(s, lyr, 5));
  EXPECT_TRUE(IsSelected(s, lyr, 10) && !IsSelected(s, lyr, 6));
  t->Action("mnuInvertSelection")->trigger();
  EXPECT_FALSE(IsSelected(s, lyr, 4));
  EXPECT_TRUE(IsSelected(s, lyr, 6));

  t->close();
  EXPECT_FALSE(s.Lyr[lyr].TblOpen);
}

TEST_F(TableWindowTest, EditsUndoCopyPasteAndPrint) {
  Open(6, "tbledit");
  TableWindow* t = w.Tables()->OpenTable(lyr);
  t->resize(700, 500);
  QApplication::processEvents();
  QAbstractItemModel* m = t->Grid()->model();
  ASSERT_GE(m->rowCount(), 6);
  ASSERT_TRUE(m->flags(m->index(1, 3)) & Qt::ItemIsEditable);
  ASSERT_TRUE(m->setData(m->index(1, 3), "4.5"));
  EXPECT_EQ(m->index(1, 1).data().toString(), "save");
  t->Flush();
  EXPECT_EQ(StrToDbl(s, Cell(2, 2)), 4.5);
  EXPECT_EQ(m->index(1, 1).data().toString(), "");
  t->Action("mnuUndoDataEdit")->trigger();
  EXPECT_EQ(StrToDbl(s, Cell(2, 2)), 9);
  EXPECT_EQ(StrToDbl(s, m->index(1, 3).data().toString().toStdString()), 9);

  SelectCells(t, 0, 2, 1, 3);
  t->Action("mnuCopyCells")->trigger();
  EXPECT_EQ(FromQ(QGuiApplication::clipboard()->text()),
            "n0        \t     10.00\r\nn1        \t         9\r\n");

  QGuiApplication::clipboard()->setText("x\t1\r\ny\t2\r\n");
  SelectCells(t, 3, 2, 3, 3);
  t->Action("mnuPastCells")->trigger();
  EXPECT_EQ(Cell(4, 1), "x");
  EXPECT_EQ(Cell(5, 1), "y");
  EXPECT_EQ(StrToDbl(s, Cell(5, 2)), 2);
  EXPECT_EQ(m->index(4, 2).data().toString().trimmed(), "y");

  host.printFile = dir + "page.pdf";
  t->Action("mnuPrint")->trigger();
  EXPECT_TRUE(FileExists(dir + "page.pdf"));
  EXPECT_EQ(s.CommandBar.find(" *** Print"), std::string::npos);

  // A read-only layer takes no edits.
  s.Lyr[lyr].EEditable = 0;
  EXPECT_FALSE(m->flags(m->index(1, 3)) & Qt::ItemIsEditable);
}

TEST_F(TableWindowTest, FieldChangesRenewTheColumnsAndSortMovesRows) {
  Open(4, "tblfields");
  TableWindow* t = w.Tables()->OpenTable(lyr);
  QAbstractItemModel* m = t->Grid()->model();
  ArgStrSplit(s, "DELETE FIELD '" + path + "' DAY");
  ArgStrExecute(s);
  EXPECT_EQ(m->columnCount(), 5);
  EXPECT_EQ(m->headerData(4, Qt::Horizontal).toString(), "OK");

  SelectCells(t, 0, 3, 0, 3); // VAL
  t->Action("mnuSortAscending")->trigger();
  EXPECT_EQ(m->index(0, 2).data().toString().trimmed(), "n3");
  EXPECT_EQ(s.Lyr[lyr].Shp.ShpRecs[1].Part(0).PartPoints()[0].X, 3);
}

TEST_F(TableWindowTest, EditFeatureAndIdentify) {
  Open(5, "tblfeat");
  EditFeatureWindow* e = w.Tables()->ShowEditFeature(lyr, 3);
  QAbstractItemModel* m = e->Panel()->model();
  ASSERT_EQ(m->rowCount(), 4);
  EXPECT_EQ(m->index(0, 0).data().toString(), "NAME");
  EXPECT_EQ(m->index(0, 1).data().toString().trimmed(), "n2");
  ASSERT_TRUE(m->setData(m->index(0, 1), "renamed"));
  EXPECT_EQ(Cell(3, 1), "renamed"); // written at once
  UndoDataEdit(s, lyr, true);
  EXPECT_EQ(m->index(0, 1).data().toString().trimmed(), "n2");

  // Identify at the pixel of point 2 (x = 2, y = 2).
  const MapViewRec& v = s.MapView;
  const double px = (2 - v.MapLeft) / v.MapFactor, py = (v.MapTop - 2) / v.MapFactor;
  w.Tables()->Identify(px, py);
  QTreeWidget* tree = w.Tables()->Identifier()->Tree();
  ASSERT_EQ(tree->topLevelItemCount(), 1);
  EXPECT_EQ(tree->topLevelItem(0)->text(1), "Record No 3");
  EXPECT_EQ(tree->topLevelItem(0)->child(0)->text(1), "n2");
}

TEST_F(TableWindowTest, DialogsOfTheTable) {
  FillSeriesDialog f(s, "3", nullptr);
  EXPECT_EQ(f.windowTitle(), "Fill Series");
  EXPECT_EQ(f.Start(), "3");
  EXPECT_EQ(f.Step(), "1");
  EXPECT_EQ(f.Stop(), "");
  int pos = 0;
  QString typed = "1a";
  EXPECT_EQ(f.StepValue->validator()->validate(typed, pos), QValidator::Invalid);
  typed = "-0.5";
  EXPECT_NE(f.StepValue->validator()->validate(typed, pos), QValidator::Invalid);

  AddRecordsDialog a("roads.shp", nullptr);
  EXPECT_EQ(a.windowTitle(), "roads.shp : Add Records");
  EXPECT_EQ(a.Count(), 1);

  FieldDialog d("Change Field", "VAL", 'N', 10, 2, false, nullptr);
  EXPECT_EQ(d.Type(), 'N');
  EXPECT_EQ(d.Width(), 10);
  EXPECT_FALSE(d.FieldName->isEnabled());
}
