"""Prints every row of a table as GDAL reads it: one line a row, cells separated by tabs,
"<null>" for no value. Reals as Python's repr, integers as integers, dates as yyyy-mm-dd."""
import sys
from osgeo import gdal, ogr

gdal.UseExceptions()
sys.stdout.reconfigure(encoding="utf-8")
ds = ogr.Open(sys.argv[1])
lyr = ds.GetLayer(0)
defn = lyr.GetLayerDefn()
print("\t".join(f"{defn.GetFieldDefn(i).GetName()}:{defn.GetFieldDefn(i).GetTypeName()}"
                for i in range(defn.GetFieldCount())))
for feat in lyr:
    cells = []
    for i in range(defn.GetFieldCount()):
        t = defn.GetFieldDefn(i).GetType()
        if not feat.IsFieldSetAndNotNull(i):
            cells.append("<null>")
        elif t == ogr.OFTReal:
            cells.append(repr(feat.GetFieldAsDouble(i)))
        elif t in (ogr.OFTInteger, ogr.OFTInteger64):
            cells.append(str(feat.GetFieldAsInteger64(i)))
        elif t == ogr.OFTDate:
            y, m, d = feat.GetFieldAsDateTime(i)[:3]
            cells.append("%04d-%02d-%02d" % (y, m, d))
        else:
            cells.append(feat.GetFieldAsString(i))
    print("\t".join(cells))
