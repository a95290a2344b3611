#pragma once

#include <velmora/Global.h>

#include <QtCore/QObject>

namespace velmora {
Q_NAMESPACE_EXPORT(VELMORA_EXPORT)

// Every enumeration holds any int: a host may pass a code outside the named ones (a
// stored form from elsewhere), and the field then documents what it does with it.

// Input type of a field; the values are the character codes of A, N, D and B,
// the same letters that type the columns of a lookup list.
enum InpType : int { itAlfaNum = 65, itNum = 78, itDate = 68, itBool = 66 };
Q_ENUM_NS(InpType)

enum AlfaNumTrim : int { atLeftRight = 0, atLeft = 1, atRight = 2, atNone = 3 };
Q_ENUM_NS(AlfaNumTrim)

enum EntAction : int { eaDefault = 0, eaTab = 1, eaClearRest = 2 };
Q_ENUM_NS(EntAction)

enum ArrAction : int { aaNoneTab = 0, aaLeftRightTab = 1, aaUpDownTab = 2, aaAllTab = 3 };
Q_ENUM_NS(ArrAction)

enum DisplMode : int {
    dmChangeable = 0,
    dmLandable = 1,
    dmVisible = 2,
    dmInvisible = 3,
    dmCrossline = 4
};
Q_ENUM_NS(DisplMode)

enum SpecialEffectConst : int {
    fmSpecialEffectFlat = 0,
    fmSpecialEffectRaised = 1,
    fmSpecialEffectSunken = 2,
    fmSpecialEffectEtchel = 3,
    fmSpecialEffectBump = 6
};
Q_ENUM_NS(SpecialEffectConst)

enum ControlLengthConst : int { clNone = 0, clIntegerPart = 1, clDecimalPart = 2, clBoth = 3 };
Q_ENUM_NS(ControlLengthConst)

enum AlignConst : int { vbLeftJustify = 1, vbCenter = 2, vbRightJustify = 3 };
Q_ENUM_NS(AlignConst)

// Colours in the legacy encoding: 0x00BBGGRR, or 0x80000000 + n for system colour n.
using OleColor = quint32;
constexpr OleColor SystemColorBit = 0x80000000u;
constexpr OleColor FocusHighlightColor = 0x00FAE881u; // red 129, green 232, blue 250

// The column index that names the field itself in the display formatter.
constexpr quint16 FieldColumn = 65535;

} // namespace velmora
