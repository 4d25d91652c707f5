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

Dim re, m, ms, s
Set re = New RegExp
re.Pattern = "(\d+)-(\d+)"
CheckT "test", re.Test("call 555-1234 now"), "True", "Boolean"
Set ms = re.Execute("555-1234 and 666-9999")
CheckT "first only", ms.Count, "1", "Long"
re.Global = True
Set ms = re.Execute("555-1234 and 666-9999")
CheckT "global count", ms.Count, "2", "Long"
CheckT "match value", ms(1).Value, "666-9999", "String"
CheckT "first index", ms(1).FirstIndex, "13", "Long"
CheckT "submatch", ms(0).SubMatches(1), "1234", "String"
s = ""
For Each m In ms
  s = s & m.Length & ","
Next
CheckT "for each match", s, "8,8,", "String"
CheckT "replace groups", re.Replace("1-2 3-4", "$2-$1"), "2-1 4-3", "String"
re.Pattern = "abc"
re.IgnoreCase = True
CheckT "ignore case", re.Test("xABCx"), "True", "Boolean"
Dim r2 : Set r2 = CreateObject("VBScript.RegExp")
r2.Pattern = "^\s+|\s+$"
r2.Global = True
CheckT "createobject regexp", r2.Replace("  trim me  ", ""), "trim me", "String"
On Error Resume Next
r2.Pattern = "(unclosed"
s = r2.Test("x")
CheckT "bad pattern", Err.Number, "5017", "Long"
MsgBox "done"
