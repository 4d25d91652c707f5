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

CheckT "len", Len("hello"), "5", "Long"
CheckT "len null", Len(Null), "Null", "Null"
CheckT "left", Left("hello", 2), "he", "String"
CheckT "left long", Left("he", 5), "he", "String"
CheckT "right", Right("hello", 3), "llo", "String"
CheckT "mid", Mid("hello", 2, 3), "ell", "String"
CheckT "mid rest", Mid("hello", 3), "llo", "String"
CheckT "mid past", Mid("hello", 9), "", "String"
CheckT "instr", InStr("hello", "l"), "3", "Long"
CheckT "instr start", InStr(4, "hello", "l"), "4", "Long"
CheckT "instr text", InStr(1, "HELLO", "ll", vbTextCompare), "3", "Long"
CheckT "instr none", InStr("hello", "z"), "0", "Long"
CheckT "instrrev", InStrRev("hello", "l"), "4", "Long"
CheckT "replace", Replace("a-b-c", "-", "+"), "a+b+c", "String"
CheckT "replace count", Replace("a-b-c", "-", "+", 1, 1), "a+b-c", "String"
CheckT "replace start", Replace("a-b-c", "-", "+", 3), "b+c", "String"
CheckT "replace text", Replace("aXa", "x", "y", 1, -1, 1), "aya", "String"
CheckT "split join", Join(Split("a,b,c", ","), "|"), "a|b|c", "String"
CheckT "split ubound", UBound(Split("a,b,c", ",")), "2", "Long"
CheckT "split empty", UBound(Split("", ",")), "-1", "Long"
CheckT "split count", Join(Split("a,b,c", ",", 2), "|"), "a|b,c", "String"
CheckT "trim", Trim("  x  "), "x", "String"
CheckT "ltrim", LTrim("  x  "), "x  ", "String"
CheckT "rtrim", RTrim("  x  "), "  x", "String"
CheckT "ucase", UCase("abC"), "ABC", "String"
CheckT "lcase", LCase("AbC"), "abc", "String"
CheckT "strcomp", StrComp("a", "B"), "1", "Integer"
CheckT "strcomp text", StrComp("a", "B", 1), "-1", "Integer"
CheckT "strreverse", StrReverse("abc"), "cba", "String"
CheckT "string", String(3, "x"), "xxx", "String"
CheckT "string code", String(2, 65), "AA", "String"
CheckT "space", Space(3), "   ", "String"
CheckT "asc", Asc("A"), "65", "Integer"
CheckT "chr", Chr(66), "B", "String"
CheckT "ascw", AscW("a"), "97", "Integer"
CheckT "chrw", ChrW(67), "C", "String"
CheckT "filter", Join(Filter(Array("apple", "pear", "grape"), "ap"), ","), "apple,grape", "String"
CheckT "filter exclude", Join(Filter(Array("apple", "pear", "grape"), "ap", False), ","), "pear", "String"
CheckT "quote", "say ""hi""", "say ""hi""", "String"
CheckT "vbcrlf", Len(vbCrLf), "2", "Long"
CheckT "continuation", "a" & _
  "b", "ab", "String"
Dim s : s = "x" : s = s & "y"
CheckT "colon separators", s, "xy", "String"
Rem a comment line
CheckT "after rem", 1, "1", "Integer" ' trailing comment
' Texts count characters, not bytes
Dim u : u = "M" & ChrW(252) & "ller"
CheckT "len of non-ascii", Len(u), "6", "Long"
CheckT "left of non-ascii", Left(u, 2), "M" & ChrW(252), "String"
CheckT "mid of non-ascii", Mid(u, 2, 1), ChrW(252), "String"
CheckT "right of non-ascii", Right(u, 5), ChrW(252) & "ller", "String"
CheckT "instr after non-ascii", InStr(u, "l"), "3", "Long"
CheckT "instrrev after non-ascii", InStrRev(u, "l"), "4", "Long"
CheckT "strreverse non-ascii", StrReverse(u), "rell" & ChrW(252) & "M", "String"
CheckT "asc of latin", Asc(ChrW(252)), "252", "Integer"
CheckT "ascw of latin", AscW(Chr(252)), "252", "Integer"
CheckT "chrw euro", AscW(ChrW(8364)), "8364", "Integer"
CheckT "string of non-ascii", Len(String(3, ChrW(252))), "3", "Long"
CheckT "replace start counts characters", Replace(u, "l", "L", 3), "LLer", "String"
MsgBox "done"
