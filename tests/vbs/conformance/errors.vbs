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

Dim n, x
On Error Resume Next
n = 1 / 0
CheckT "err number", Err.Number, "11", "Long"
CheckT "err description", Err.Description, "Division by zero", "String"
Err.Clear
CheckT "err cleared", Err.Number, "0", "Long"
x = CInt("abc")
CheckT "type mismatch", Err.Number, "13", "Long"
Err.Clear
x = CInt(100000)
CheckT "overflow", Err.Number, "6", "Long"
Err.Clear
Err.Raise 1000, "me", "custom"
CheckT "raise number", Err.Number, "1000", "Long"
CheckT "raise description", Err.Description, "custom", "String"
CheckT "raise source", Err.Source, "me", "String"
Err.Clear
Sub Fails()
  n = "before"
  x = 1 / 0
  n = "after"
End Sub
Fails
CheckT "error in sub ends the sub", n, "before", "String"
CheckT "error comes back to the caller", Err.Number, "11", "Long"
On Error GoTo 0
CheckT "goto 0 clears", Err.Number, "0", "Long"
Function Safe()
  On Error Resume Next
  Safe = 1 / 0
  Safe = "recovered"
End Function
CheckT "resume next in function", Safe(), "recovered", "String"
On Error Resume Next
x = Null + 1
CheckT "null propagates quietly", Err.Number, "0", "Long"
x = Len(Null)
CheckT "len of null", IsNull(x), "True", "Boolean"
x = CStr(Null)
CheckT "cstr null", Err.Number, "94", "Long"
Err.Clear
x = Mid("abc", 0)
CheckT "invalid argument", Err.Number, "5", "Long"
Err.Clear
Set x = Nothing : x = x.Foo
CheckT "object variable not set", Err.Number, "91", "Long"
Err.Clear
Dim o
o.Foo
CheckT "object required", Err.Number, "424", "Long"
Err.Clear
x = UndefinedFunc(1)
CheckT "undefined function", Err.Number, "13", "Long"
MsgBox "done"
