Option Explicit

Sub CheckT(name, actual, text, typ)
  If TypeName(actual) <> typ Then
    MsgBox "FAIL " & name & ": type " & TypeName(actual) & ", expected " & typ
  ElseIf IsNull(actual) Then
    If text <> "Null" Then MsgBox "FAIL " & name & ": Null"
  ElseIf CStr(actual) <> text Then
    MsgBox "FAIL " & name & ": " & CStr(actual) & ", expected " & text
  End If
End Sub

Dim d
d = DateSerial(2020, 2, 29)
CheckT "dateserial", d, "2/29/2020", "Date"
CheckT "year", Year(d), "2020", "Integer"
CheckT "month", Month(d), "2", "Integer"
CheckT "day", Day(d), "29", "Integer"
CheckT "dateserial roll", DateSerial(2020, 13, 1), "1/1/2021", "Date"
CheckT "dateserial day zero", DateSerial(2020, 3, 0), "2/29/2020", "Date"
CheckT "serial number", CDbl(DateSerial(1900, 1, 1)), "2", "Double"
CheckT "date literal", #1/15/2021#, "1/15/2021", "Date"
CheckT "timeserial", TimeSerial(13, 30, 15), "1:30:15 PM", "Date"
CheckT "hour", Hour(TimeSerial(13, 30, 15)), "13", "Integer"
CheckT "minute", Minute(#1/1/2020 10:45:30 AM#), "45", "Integer"
CheckT "second", Second(#1/1/2020 10:45:30 AM#), "30", "Integer"
CheckT "weekday", Weekday(DateSerial(2024, 1, 1)), "2", "Integer"
CheckT "weekdayname", WeekdayName(2), "Monday", "String"
CheckT "weekdayname abbr", WeekdayName(7, True), "Sat", "String"
CheckT "monthname", MonthName(3), "March", "String"
CheckT "monthname abbr", MonthName(12, True), "Dec", "String"
CheckT "dateadd month end", DateAdd("m", 1, DateSerial(2021, 1, 31)), "2/28/2021", "Date"
CheckT "dateadd days", DateAdd("d", 10, DateSerial(2021, 12, 25)), "1/4/2022", "Date"
CheckT "dateadd years", DateAdd("yyyy", -1, d), "2/28/2019", "Date"
CheckT "dateadd hours", DateAdd("h", 36, DateSerial(2021, 1, 1)), "1/2/2021 12:00:00 PM", "Date"
CheckT "datediff days", DateDiff("d", DateSerial(2021, 1, 1), DateSerial(2021, 3, 1)), "59", "Long"
CheckT "datediff months", DateDiff("m", DateSerial(2020, 11, 30), DateSerial(2021, 1, 1)), "2", "Long"
CheckT "datediff years", DateDiff("yyyy", DateSerial(2020, 12, 31), DateSerial(2021, 1, 1)), "1", "Long"
CheckT "datepart quarter", DatePart("q", DateSerial(2021, 8, 1)), "3", "Integer"
CheckT "datepart dayofyear", DatePart("y", DateSerial(2021, 2, 1)), "32", "Integer"
CheckT "datevalue", DateValue("2021-03-04"), "3/4/2021", "Date"
CheckT "timevalue", TimeValue("14:05:00"), "2:05:00 PM", "Date"
CheckT "cdate text", CDate("12/25/2020"), "12/25/2020", "Date"
CheckT "isdate", IsDate("2021-02-30"), "False", "Boolean"
CheckT "isdate yes", IsDate("2021-02-28"), "True", "Boolean"
CheckT "date minus date", DateSerial(2021, 1, 2) - DateSerial(2021, 1, 1), "1", "Double"
CheckT "date plus number", DateSerial(2021, 1, 1) + 1, "1/2/2021", "Date"
CheckT "formatdatetime short", FormatDateTime(d, vbShortDate), "2/29/2020", "String"
CheckT "formatdatetime long", FormatDateTime(d, vbLongDate), "Saturday, February 29, 2020", "String"
CheckT "formatdatetime shorttime", FormatDateTime(TimeSerial(7, 5, 0), vbShortTime), "07:05", "String"
CheckT "now is a date", VarType(Now), "7", "Integer"
CheckT "date is whole", Date = Int(Now), "True", "Boolean"
MsgBox "done"
