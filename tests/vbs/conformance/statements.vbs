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

Dim i, n, s, x
' If forms
x = 5
If x > 3 Then s = "big" Else s = "small"
CheckT "single-line if", s, "big", "String"
If x < 3 Then s = "a" : n = 1 Else s = "b" : n = 2
CheckT "single-line colon else", s & n, "b2", "String"
If x = 1 Then
  s = "one"
ElseIf x = 5 Then
  s = "five"
Else
  s = "other"
End If
CheckT "elseif", s, "five", "String"
If Null Then s = "null true" Else s = "null false"
CheckT "if null", s, "null false", "String"
' Select Case
Function Kind(v)
  Select Case v
    Case 1, 2: Kind = "small"
    Case 3 To 5
      Kind = "middle"
    Case "x"
      Kind = "letter"
    Case Is > 100
      Kind = "huge"
    Case Else
      Kind = "other"
  End Select
End Function
CheckT "case list", Kind(2), "small", "String"
CheckT "case range", Kind(4), "middle", "String"
CheckT "case is", Kind(101), "huge", "String"
CheckT "case text", Kind("x"), "letter", "String"
CheckT "case else", Kind(50), "other", "String"
' For loops
n = 0
For i = 1 To 10
  n = n + i
Next
CheckT "for sum", n, "55", "Integer"
CheckT "for counter after", i, "11", "Integer"
n = 0
For i = 10 To 1 Step -2
  n = n + 1
Next
CheckT "for step", n, "5", "Integer"
n = 0
For i = 0 To 1 Step 0.25
  n = n + 1
Next
CheckT "for fraction", n, "5", "Integer"
n = 0
For i = 1 To 100
  If i = 7 Then Exit For
  n = i
Next
CheckT "exit for", n, "6", "Integer"
n = 0
For Each x In Array(1, 2, 3)
  n = n + x
Next
CheckT "for each", n, "6", "Integer"
' Do loops in all forms
n = 0 : Do While n < 5 : n = n + 1 : Loop
CheckT "do while", n, "5", "Integer"
n = 0 : Do Until n >= 5 : n = n + 1 : Loop
CheckT "do until", n, "5", "Integer"
n = 10 : Do : n = n + 1 : Loop While n < 5
CheckT "loop while runs once", n, "11", "Integer"
n = 0 : Do : n = n + 1 : Loop Until n = 3
CheckT "loop until", n, "3", "Integer"
n = 0
Do
  n = n + 1
  If n = 4 Then Exit Do
Loop
CheckT "exit do", n, "4", "Integer"
n = 0
While n < 3
  n = n + 1
Wend
CheckT "while wend", n, "3", "Integer"
' nested exit leaves only the inner loop
n = 0
For i = 1 To 3
  Do
    n = n + 1
    Exit Do
  Loop
Next
CheckT "nested exit", n, "3", "Integer"
' Const
Const Pi = 3.14, Greeting = "hi"
CheckT "const", Greeting, "hi", "String"
On Error Resume Next
Err.Clear
Execute "Pi = 3"
CheckT "const is read-only", Err.Number, "501", "Long"
On Error GoTo 0
' With
Dim d : Set d = CreateObject("Scripting.Dictionary")
With d
  .Add "a", 1
  .Add "b", 2
  CheckT "with count", .Count, "2", "Long"
End With
CheckT "dictionary item", d("b"), "2", "Integer"
d("c") = 3
CheckT "dictionary set", d.Item("c"), "3", "Integer"
CheckT "dictionary exists", d.Exists("z"), "False", "Boolean"
n = ""
For Each x In d
  n = n & x
Next
CheckT "dictionary keys", n, "abc", "String"
' Execute, ExecuteGlobal, Eval
Execute "n = 40 + 2"
CheckT "execute", n, "42", "Integer"
ExecuteGlobal "Function Sq(v) : Sq = v * v : End Function"
CheckT "executeglobal", Sq(7), "49", "Integer"
CheckT "eval", Eval("n * 2"), "84", "Integer"
CheckT "eval compare", Eval("n = 42"), "True", "Boolean"
' GetRef
Function AddOne(v) : AddOne = v + 1 : End Function
Dim f : Set f = GetRef("AddOne")
CheckT "getref", f(1), "2", "Integer"
' Randomize / Rnd
Randomize 1
Dim r : r = Rnd
CheckT "rnd range", (r >= 0 And r < 1), "True", "Boolean"
CheckT "rnd single", TypeName(r), "Single", "String"
MsgBox "done"
