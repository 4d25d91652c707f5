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

Dim a(3), b(), m(2, 3), c, i, j, n
a(0) = "x" : a(3) = "y"
CheckT "fixed ubound", UBound(a), "3", "Long"
CheckT "lbound", LBound(a), "0", "Long"
CheckT "element", a(3), "y", "String"
CheckT "unset element", IsEmpty(a(1)), "True", "Boolean"
ReDim b(2)
b(2) = 5
ReDim Preserve b(4)
CheckT "redim preserve keeps", b(2), "5", "Integer"
CheckT "redim preserve grows", UBound(b), "4", "Long"
ReDim b(1)
CheckT "redim clears", IsEmpty(b(1)), "True", "Boolean"
For i = 0 To 2
  For j = 0 To 3
    m(i, j) = i * 10 + j
  Next
Next
CheckT "two dims", m(2, 3), "23", "Integer"
CheckT "second bound", UBound(m, 2), "3", "Long"
c = Array(1, 2, 3)
Dim d : d = c
d(0) = 99
CheckT "arrays copy on assignment", c(0), "1", "Integer"
CheckT "copy changed", d(0), "99", "Integer"
CheckT "isarray", IsArray(c), "True", "Boolean"
CheckT "typename array", TypeName(c), "Variant()", "String"
Erase d
CheckT "erase dynamic", IsArray(d), "True", "Boolean"
Erase a
CheckT "erase fixed keeps bounds", UBound(a), "3", "Long"
CheckT "erase fixed clears", IsEmpty(a(3)), "True", "Boolean"
On Error Resume Next
n = c(5)
CheckT "subscript out of range", Err.Number, "9", "Long"
Err.Clear
ReDim a(5)
CheckT "fixed array can't be redimmed", Err.Number, "10", "Long"
Err.Clear
n = UBound(b, 3)
CheckT "bad dimension", Err.Number, "9", "Long"
On Error GoTo 0
Sub Fill(arr)
  arr(0) = "filled"
End Sub
Fill c
CheckT "array element through byref", c(0), "filled", "String"
n = Array()
CheckT "empty array", UBound(n), "-1", "Long"
MsgBox "done"
