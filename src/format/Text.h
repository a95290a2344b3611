#pragma once

// Small text helpers that every part of the field shares: the 16-bit length limit,
// the well-formed form of any text that enters a field, and blank trimming.

#include <QtCore/QString>

namespace velmora::detail {

// Positions and lengths in a field are 16-bit.
constexpr int MaxTextLength = 32767;
constexpr int MaxPosition = MaxTextLength;

// The text cut to MaxTextLength characters.
QString capped(const QString &text);

// Every text that enters a field passes here: a lone UTF-16 surrogate becomes U+FFFD,
// NUL and the other control characters (C0, DEL, C1) except tab are removed. A surrogate pair is
// kept, so the result is valid UTF-16 that every database encoding can take whole.
QString wellFormed(const QString &text);
// Whether wellFormed(text) == text.
bool isWellFormed(QStringView text);

// Plain blanks (U+0020) cut on the left and/or right; other white space stays.
QString trimBlanks(const QString &text, bool left = true, bool right = true);
// The text without the blanks (U+0020) on both sides, as a view of it.
QStringView trimmedBlanks(QStringView text);

// A number 0..99 with two digits ("05"); larger numbers keep all their digits.
QString twoDigits(int n);

} // namespace velmora::detail
