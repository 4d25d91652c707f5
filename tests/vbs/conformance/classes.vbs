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

Dim log
Class Counter
  Private mCount
  Public Name
  Private Sub Class_Initialize()
    mCount = 0
    Name = "counter"
  End Sub
  Private Sub Class_Terminate()
    log = log & "bye "
  End Sub
  Public Default Property Get Count()
    Count = mCount
  End Property
  Public Property Let Count(v)
    If v < 0 Then Err.Raise 5
    mCount = v
  End Property
  Public Sub Add(n)
    mCount = mCount + n
  End Sub
  Public Function Twice()
    Twice = Me.Count * 2
  End Function
End Class
Class Holder
  Private mItem
  Public Property Set Item(o)
    Set mItem = o
  End Property
  Public Property Get Item()
    Set Item = mItem
  End Property
End Class
Dim c, h, v
Set c = New Counter
CheckT "initialize", c.Name, "counter", "String"
c.Add 5
CheckT "method", c.Count, "5", "Integer"
c.Count = 7
CheckT "property let", c.Count, "7", "Integer"
CheckT "function member", c.Twice(), "14", "Integer"
CheckT "default property", c + 1, "8", "Integer"
v = c
CheckT "assignment takes default", v, "7", "Integer"
CheckT "typename of instance", TypeName(c), "Counter", "String"
CheckT "isobject", IsObject(c), "True", "Boolean"
Set h = New Holder
Set h.Item = c
CheckT "property set and get", h.Item.Count, "7", "Integer"
CheckT "is same object", h.Item Is c, "True", "Boolean"
c.Name = "renamed"
CheckT "public field", h.Item.Name, "renamed", "String"
On Error Resume Next
c.Count = -1
CheckT "raise in property", Err.Number, "5", "Long"
Err.Clear
c.NoSuch
CheckT "no such member", Err.Number, "438", "Long"
Err.Clear
v = c.mCount
CheckT "private stays private", Err.Number <> 0 Or IsEmpty(v) = False, "True", "Boolean"
On Error GoTo 0
Set h = Nothing
Set c = Nothing
CheckT "terminate", log, "bye ", "String"
CheckT "nothing", c Is Nothing, "True", "Boolean"
MsgBox "done"
