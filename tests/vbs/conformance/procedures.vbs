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

Dim a, b, g
Sub Inc(v)
  v = v + 1
End Sub
Sub IncVal(ByVal v)
  v = v + 1
End Sub
a = 1
Inc a
CheckT "byref default", a, "2", "Integer"
Call Inc(a)
CheckT "byref through call", a, "3", "Integer"
Inc(a)
CheckT "parenthesised argument goes by value", a, "3", "Integer"
IncVal a
CheckT "byval", a, "3", "Integer"
Function Fact(n)
  If n <= 1 Then
    Fact = 1
  Else
    Fact = n * Fact(n - 1)
  End If
End Function
CheckT "recursion", Fact(10), "3628800", "Long"
Function Early(n)
  Early = "start"
  If n > 0 Then Exit Function
  Early = "end"
End Function
CheckT "exit function", Early(1), "start", "String"
CheckT "exit function not taken", Early(0), "end", "String"
Sub Early2(ByRef out)
  out = 1
  Exit Sub
  out = 2
End Sub
Early2 b
CheckT "exit sub", b, "1", "Integer"
Function UsesLocalLater()
  x = 5
  Dim x
  UsesLocalLater = x
End Function
g = "global"
CheckT "local dim after use", UsesLocalLater(), "5", "Integer"
Function ShadowG()
  Dim g
  g = "local"
  ShadowG = g
End Function
CheckT "local shadows global", ShadowG() & "/" & g, "local/global", "String"
Sub SetGlobal()
  g = "changed"
End Sub
SetGlobal
CheckT "global from sub", g, "changed", "String"
Function NoResult()
End Function
CheckT "function without result", IsEmpty(NoResult()), "True", "Boolean"
Sub Swap(x, y)
  Dim t : t = x : x = y : y = t
End Sub
a = "left" : b = "right"
Swap a, b
CheckT "swap", a & b, "rightleft", "String"
Function Sum(arr)
  Dim v, t
  For Each v In arr
    t = t + v
  Next
  Sum = t
End Function
CheckT "array argument", Sum(Array(1, 2, 3, 4)), "10", "Integer"
On Error Resume Next
Inc 1, 2
CheckT "wrong argument count", Err.Number, "450", "Long"
On Error GoTo 0
MsgBox "done"
