#pragma once

// The parsers of the four kinds of format string and the resolution of the three
// separators. They write only the ParsedFormat they are given and report failures
// by message number (0 = none); the caller reports the message.

#include "ParsedFormat.h"

#include <velmora/RegionalSettings.h>

#include <QtCore/QString>

namespace velmora::detail {

// The separators configured on the field; a null QChar means "use the regional one".
struct ConfiguredSeparators
{
    QChar decimal;
    QChar thousands;
    QChar date;
};

// The one character a separator text stands for: its first character as the
// system's code page keeps it ('?' for a character the code page has no place for),
// or a null QChar for an empty text.
QChar separatorFromText(const QString &text);
QString separatorToText(QChar separator);

// Whether a character survives the round trip through the system's ANSI code page
// (Windows-1250, Central European).
bool isAnsiCharacter(QChar c);

void readSystemNumberSeparators(ParsedFormat &pf, const RegionalSettings &rs,
                                const ConfiguredSeparators &configured);
void readSystemDateSeparator(ParsedFormat &pf, const RegionalSettings &rs,
                             const ConfiguredSeparators &configured);

// Number format: counts the digit places of the widest section. Returns 3 (and empties
// formatStr, with 10 and 3 places) when the decimal and thousands separators clash.
int parseNumFormat(ParsedFormat &pf, QString &formatStr, const RegionalSettings &rs,
                   const ConfiguredSeparators &configured);
// String format: returns 4 (and empties formatStr) when a character does not survive
// the code page.
int checkAlfaNumFormat(QString &formatStr);
// Date format: fills the layout of the slot and the empty-date text; an empty format
// becomes "dd/mm/yyyy"; returns 5 (and falls back to that default) for interleaved parts.
int parseDateFormat(ParsedFormat &pf, QString &formatStr, int slot, const RegionalSettings &rs,
                    const ConfiguredSeparators &configured);
// Boolean format "true text;false text;database letter"; an empty format becomes "ANO;NE;A".
void parseBoolFormat(BoolFormat &bf, QString &formatStr);

inline const QString DefaultDateFormat = QStringLiteral("dd/mm/yyyy");
inline const QString DefaultBoolFormat = QStringLiteral("ANO;NE;A");

} // namespace velmora::detail
