#pragma once
#include <string>

namespace velmora {

// The sort keys of the surface functions. The points and the contour segments are ordered
// by the ordinal text of these keys; the fast paths compare the numbers instead and fall
// back to the text only where two numbers could give the same text.

// The number in the format "00000000000000000000.#########################": twenty
// integer digits zero-padded, up to 25 decimals without trailing zeros, a leading "-" for a
// negative value.
std::string FormatKey(double v);

// Compare, as their formatted text does, two values at or above 0: -1, 0 or 1.
int CompareKeyMag(double a, double b);

// One part of a row key (the Y part or the X part): its first character and the magnitude
// of the number formatted after it. Cls 0 is the empty part.
struct RowKeyPart {
  char Cls = 0;
  double Mag = 0;
};
// The Y part: "-" and the format of Y at or above 0, "+" and the format of 1/Y below 0.
RowKeyPart RowKeyY(double y);
// The X part: "-" and the format of X below 0, "+" and the format of 1/X above 0. X = 0
// has no part of its own (1/0): `ok` is false and the key keeps its previous X part.
RowKeyPart RowKeyX(double x, bool& ok);
// Compare two parts as their texts compare, as parts of a longer key: -1, 0 or 1.
int CompareRowKeyPart(const RowKeyPart& a, const RowKeyPart& b);

} // namespace velmora
