#pragma once

#include <velmora/Global.h>

#include <QtCore/QObject>

/// @file
/// The enumerations of a field's properties, the legacy colour encoding and the
/// constants that go with them.

/// Everything the library offers: the field velmora::Velmora, its helpers and StrF.
namespace velmora {
Q_NAMESPACE_EXPORT(VELMORA_EXPORT)

// Every enumeration holds any int: a host may pass a code outside the named ones (a
// stored form from elsewhere), and the field then documents what it does with it.

/// Input type of a field (Velmora::InputType); the values are the character codes of
/// A, N, D and B, the same letters that type the columns of a lookup list. A code
/// outside the four has no format: the field edits plain text.
enum InpType : int {
    itAlfaNum = 65, ///< Text ("A"), shown through a string pattern; the default.
    itNum = 78, ///< Number ("N"), typed against a number pattern and its place limits.
    itDate = 68, ///< Date ("D"), typed over the empty layout of a date pattern.
    itBool = 66 ///< Boolean ("B"): one of two texts, chosen by its first letter.
};
Q_ENUM_NS(InpType)

/// Which plain blanks (U+0020) are cut from a text value when it is assigned and read
/// (Velmora::AlfaNumTrim). Only text fields trim by it; other white space stays. An
/// unknown code trims nothing.
enum AlfaNumTrim : int {
    atLeftRight = 0, ///< Blanks cut on both sides; the default.
    atLeft = 1, ///< Blanks cut on the left only.
    atRight = 2, ///< Blanks cut on the right only.
    atNone = 3 ///< The text is kept as it is.
};
Q_ENUM_NS(AlfaNumTrim)

/// What the Enter key does in a field (Velmora::EnterAction); Enter never reaches the
/// edit box. An unknown code acts as eaDefault.
enum EntAction : int {
    eaDefault = 0, ///< The focus stays in the field.
    eaTab = 1, ///< The focus moves on as with Tab; the default.
    /// The text from the caret to the end is cleared (a date gets its empty layout back
    /// from there, a boolean is left alone, a landable field is not changed), then the
    /// focus moves on as with Tab.
    eaClearRest = 2
};
Q_ENUM_NS(EntAction)

/// Which arrow keys move the focus out of a field (Velmora::ArrowAction). Left and
/// Right count only at the edge of the text (Left at its start, Right at its end); Up
/// and Down always. Left and Up move to the previous widget, Right and Down to the next.
/// The ArrowAction signal is raised for every such key whatever the setting says; an
/// unknown code moves on no arrow.
enum ArrAction : int {
    aaNoneTab = 0, ///< No arrow leaves the field.
    aaLeftRightTab = 1, ///< Left and Right leave the field at the edge of the text.
    aaUpDownTab = 2, ///< Up and Down leave the field; the default.
    aaAllTab = 3 ///< All four arrows leave the field.
};
Q_ENUM_NS(ArrAction)

/// How a field shows its value and whether it can be edited (Velmora::DisplayMode).
/// Only a changeable field is edited and checked on exit; a changeable or landable
/// field opens its list and takes the focus back after a message.
enum DisplMode : int {
    dmChangeable = 0, ///< The value is edited in the edit box; the default.
    /// The focus can land in the field, and its list drops down, but the edit box is
    /// read-only.
    dmLandable = 1,
    /// The value is shown read-only: in a label when Velmora::VisibleByLbl is set, else
    /// in the read-only edit box.
    dmVisible = 2,
    dmInvisible = 3, ///< Nothing is shown: no frame, no edit box, no list button.
    /// The value is shown read-only as with dmVisible, struck through by a line.
    dmCrossline = 4
};
Q_ENUM_NS(DisplMode)

/// The frame drawn around a field (Velmora::SpecialEffect). An unknown code draws the
/// sunken frame.
enum SpecialEffectConst : int {
    fmSpecialEffectFlat = 0, ///< A plain one-pixel line.
    fmSpecialEffectRaised = 1, ///< A raised panel.
    fmSpecialEffectSunken = 2, ///< A sunken panel in the style's look; the default.
    fmSpecialEffectEtchel = 3, ///< An etched (sunken) line.
    fmSpecialEffectBump = 6 ///< A raised line.
};
Q_ENUM_NS(SpecialEffectConst)

/// Which digit places of a number field are limited by its format while typing
/// (Velmora::ControlLength). A key that would pass a limit is refused with message 8
/// (decimal places) or 9 (integer places); an unknown code limits both.
enum ControlLengthConst : int {
    clNone = 0, ///< No limit: as many digits as the user types.
    clIntegerPart = 1, ///< Only the places before the decimal separator are limited.
    clDecimalPart = 2, ///< Only the places after the decimal separator; the default.
    clBoth = 3 ///< The places on both sides are limited.
};
Q_ENUM_NS(ControlLengthConst)

/// Horizontal alignment of the value in the edit box and in the label
/// (Velmora::Alignment). An unknown code aligns left.
enum AlignConst : int {
    vbLeftJustify = 1, ///< Left; the default.
    vbCenter = 2, ///< Centred.
    vbRightJustify = 3 ///< Right.
};
Q_ENUM_NS(AlignConst)

/// A colour in the legacy encoding: 0x00BBGGRR, or SystemColorBit + n for system colour
/// n (5 the window background, 8 the window text, as the defaults of a field use).
using OleColor = quint32;
/// The bit that marks an OleColor as a system colour; the low bits give its index.
constexpr OleColor SystemColorBit = 0x80000000u;
/// The back colour of a changeable field while it has the focus: red 129, green 232,
/// blue 250.
constexpr OleColor FocusHighlightColor = 0x00FAE881u;

/// The column index that names the field itself, not a column of its lookup list, in
/// the display formatter.
constexpr quint16 FieldColumn = 65535;

} // namespace velmora
