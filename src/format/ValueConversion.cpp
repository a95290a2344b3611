#include "ValueConversion.h"
#include "Regional.h"
#include "Text.h"

#include <velmora/StrF.h>

#include <cmath>

namespace velmora::detail {

namespace {

const QChar Placeholder(0x016F); // "ů": parks the decimal separator while the others move

// Replaces every occurrence of a separator; a null or unchanged separator is left alone.
QString replaceChar(const QString &text, QChar from, QChar to, const QString &sets = QString())
{
    if (from.isNull() || to.isNull() || from == to)
        return text;
    if (sets.isEmpty() || text.size() > MaxTextLength) // no neighbour test: every occurrence
        return QString(text).replace(from, to);
    return StrF().Nahrad(text, QString(from), QString(to), sets, sets);
}

QString trimmed(const QString &s)
{
    return trimBlanks(s);
}

const ParsedFormat &parsedOf(const ValueFormat &vf)
{
    static const ParsedFormat none;
    return vf.parsed ? *vf.parsed : none;
}

void writePart(QString &text, int start, int end, int value)
{
    if (start <= 0 || end < start || end > text.size())
        return;
    const int width = end - start + 1;
    QString digits = QString::number(value).rightJustified(width, QLatin1Char('0'));
    digits = digits.right(width);
    text.replace(start - 1, width, digits);
}

} // namespace

QString displayText(const QString &value, const ValueFormat &vf)
{
    const ParsedFormat &pf = parsedOf(vf);
    switch (vf.type) {
    case itAlfaNum:
        if (vf.format.isEmpty())
            return value;
        if (vf.format == QLatin1String("1>"))
            return value.left(1).toUpper() + value.mid(1).toLower();
        return formatString(value, vf.format);
    case itBool:
        return boolDisplayText(value, vf.boolFormat, vf.regional, false).text;
    case itDate: {
        if (trimmed(value).isEmpty())
            return pf.emptyDateText;
        QString out = formatDateText(value, vf.format, vf.regional);
        out = replaceChar(out, pf.systemDateSeparator, pf.dateSeparator);
        if (out.size() < pf.emptyDateText.size())
            out.prepend(QLatin1Char(' '));
        return out;
    }
    case itNum: {
        if (value.isEmpty())
            return QString();
        const QString digitsOrHash = QStringLiteral("0123456789#");
        QString out = formatNumberText(value, vf.format, vf.regional);
        // The placeholder keeps the passes apart when the configured separators are
        // the regional ones swapped.
        out = replaceChar(out, pf.systemDecimalSeparator, Placeholder, digitsOrHash);
        out = replaceChar(out, pf.systemThousandsSeparator, pf.thousandsSeparator, digitsOrHash);
        out = replaceChar(out, Placeholder, pf.decimalSeparator, digitsOrHash);
        return out;
    }
    default:
        return value;
    }
}

BoolDisplay boolDisplayText(const QString &value, const BoolFormat &bf, const RegionalSettings &rs,
                            bool listHasRows)
{
    if (value.isEmpty())
        return {QString(), listHasRows ? 2 : -1};
    if (const auto n = toNumber(value, rs))
        return *n == 0 ? BoolDisplay {bf.falseText, 1} : BoolDisplay {bf.trueText, 0};
    const QChar first = value.at(0).toUpper();
    if (QStringLiteral("AYT").contains(first))
        return {bf.trueText, 0};
    return {bf.falseText, 1};
}

QString boolToSql(const QString &value, const BoolFormat &bf)
{
    if (value.isEmpty())
        return QString();
    int which = -1;
    if (value == bf.trueText)
        which = 0;
    else if (value == bf.falseText)
        which = 1;
    if (which < 0)
        return QString();
    switch (bf.sqlType) {
    case u'B':
        return which == 0 ? QStringLiteral("True") : QStringLiteral("False");
    case u'N':
        return which == 0 ? QStringLiteral("-1") : QStringLiteral("0");
    case u'A':
        return which == 0 ? QStringLiteral("A") : QStringLiteral("N");
    default:
        return QString();
    }
}

QString applyAlfaNumTrim(const QString &text, const ValueFormat &vf)
{
    return displayText(trimSides(text, vf.trim), vf);
}

DatePartValue readDatePart(QStringView text, int start, int end)
{
    DatePartValue part;
    if (start <= 0 || end < start)
        return part; // not in the layout, or written with one letter: never read
    for (int i = start; i <= end && i <= text.size(); ++i) {
        const QChar c = text.at(i - 1);
        if (c >= QLatin1Char('0') && c <= QLatin1Char('9')) {
            part.blank = false;
            if (part.value < 100000) // a part this long is no date part anyway
                part.value = part.value * 10 + (c.unicode() - '0');
        } else if (c != QLatin1Char(' ')) {
            part.valid = false;
        } else {
            part.gaps = true;
        }
    }
    return part;
}

DateParts readDateParts(const QString &text, const DateLayout &l)
{
    const DatePartValue d = readDatePart(text, l.dayStart, l.dayEnd);
    const DatePartValue m = readDatePart(text, l.monthStart, l.monthEnd);
    const DatePartValue y = readDatePart(text, l.yearStart, l.yearEnd);
    DateParts parts;
    parts.day = d.valid ? d.value : -1;
    parts.month = m.valid ? m.value : -1;
    parts.year = y.valid ? y.value : -1;
    parts.yearBlank = y.blank && y.valid;
    return parts;
}

QString dateLayoutText(const QDate &date, const ParsedFormat &pf, int slot)
{
    const DateLayout &l = pf.dateLayout[slot & 1];
    QString out = pf.emptyDateText;
    writePart(out, l.dayStart, l.dayEnd, date.day());
    writePart(out, l.monthStart, l.monthEnd, date.month());
    writePart(out, l.yearStart, l.yearEnd, date.year());
    return out;
}

QString trimSides(const QString &text, AlfaNumTrim trim)
{
    return trimBlanks(text, trim == atLeftRight || trim == atLeft,
                      trim == atLeftRight || trim == atRight);
}

bool isEmptyDate(const QString &text, const ParsedFormat &pf)
{
    return trimmed(text).isEmpty() || text == pf.emptyDateText;
}

QString textToValue(const QString &text, const ValueFormat &vf, bool isListColumn)
{
    const ParsedFormat &pf = parsedOf(vf);
    switch (vf.type) {
    case itDate: {
        if (isEmptyDate(text, pf))
            return QString();
        const QDate date = calendarDate(text, pf, vf.dateSlot);
        // A text that makes no calendar date (a half-typed one, 31.02.2005) is the value
        // as it stands; the exit check reports it.
        return date.isValid() ? dateToString(date, vf.regional) : text;
    }
    case itAlfaNum:
        return isListColumn ? displayText(text, vf) : applyAlfaNumTrim(text, vf);
    case itNum: {
        if (trimmed(text).isEmpty())
            return QString();
        QString out = replaceChar(text, pf.decimalSeparator, Placeholder);
        out = replaceChar(out, pf.thousandsSeparator, pf.systemThousandsSeparator);
        out = replaceChar(out, Placeholder, pf.systemDecimalSeparator);
        return trimmed(out);
    }
    case itBool:
        return boolToSql(text, vf.boolFormat);
    default:
        return text;
    }
}

QString plainNumber(double value)
{
    return QString::number(value, 'g', 15);
}

QDate calendarDate(const QString &text, const ParsedFormat &pf, int slot)
{
    if (isEmptyDate(text, pf))
        return {};
    const DateLayout &l = pf.dateLayout[slot & 1];
    const DatePartValue d = readDatePart(text, l.dayStart, l.dayEnd);
    const DatePartValue m = readDatePart(text, l.monthStart, l.monthEnd);
    const DatePartValue y = readDatePart(text, l.yearStart, l.yearEnd);
    // Every part typed in full: a half-typed year is no year yet.
    for (const DatePartValue &part : {d, m, y})
        if (!part.valid || part.blank || part.gaps)
            return {};
    return QDate(y.value, m.value, d.value); // invalid for 31.02. and the like: no carrying
}

QString sqlValue(const QString &value, const ValueFormat &vf)
{
    const ParsedFormat &pf = parsedOf(vf);
    switch (vf.type) {
    case itNum: {
        if (trimmed(value).isEmpty())
            return QString();
        // Unquoted in SQL: only a real number ever comes out, with "." as decimal point.
        const auto n = toNumber(textToValue(value, vf), vf.regional);
        return n ? plainNumber(*n) : QString();
    }
    case itDate: {
        if (isEmptyDate(value, pf))
            return QString();
        // Only a calendar date becomes a literal; anything else would be a date the
        // database reads differently or refuses.
        const QDate date = calendarDate(value, pf, vf.dateSlot);
        if (!date.isValid())
            return QString();
        return twoDigits(date.month()) + QLatin1Char('/') + twoDigits(date.day()) + QLatin1Char('/')
            + QString::number(date.year());
    }
    case itBool:
        return boolToSql(value, vf.boolFormat);
    default:
        // The value as Value gives it (the pattern was applied when it was shown), from
        // well-formed text only: a lone surrogate could swallow the doubled quote once
        // the text is encoded for the database.
        return wellFormed(trimSides(value, vf.trim))
            .replace(QLatin1Char('\''), QStringLiteral("''"));
    }
}

QVariant typedValue(const QString &value, const ValueFormat &vf, bool nullable)
{
    const QVariant null = QVariant::fromValue(nullptr);
    const bool empty = vf.type == itAlfaNum ? value.isEmpty() : trimmed(value).isEmpty();
    switch (vf.type) {
    case itNum:
        if (empty)
            return nullable ? null : QVariant::fromValue(qint16(0));
        if (const auto n = toNumber(value, vf.regional))
            return *n;
        return QVariant();
    case itDate:
        if (empty)
            return nullable ? null : QVariant();
        if (const auto d = toDate(value, vf.regional))
            return *d;
        return QVariant();
    case itBool:
        if (empty)
            return nullable ? null : QVariant();
        if (vf.boolFormat.sqlType == u'B')
            return value.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0;
        if (vf.boolFormat.sqlType == u'N') {
            if (const auto n = toNumber(value, vf.regional))
                return *n;
            return value == QLatin1String("-1") ? -1.0 : 0.0;
        }
        return value;
    default:
        if (empty)
            return nullable ? null : QVariant(QString());
        return value;
    }
}

QString storedValue(const QString &stored, const ValueFormat &vf)
{
    // A string pattern is applied once, when the text is shown; the stored text is
    // already in that form and only the trimming applies.
    return vf.type == itAlfaNum ? trimSides(stored, vf.trim) : textToValue(stored, vf);
}

QVariant storedTypedValue(const QString &stored, const ValueFormat &vf, bool nullable)
{
    if (vf.type == itDate && vf.parsed && !isEmptyDate(stored, *vf.parsed)
        && !calendarDate(stored, *vf.parsed, vf.dateSlot).isValid())
        return QVariant();
    return typedValue(storedValue(stored, vf), vf, nullable);
}

std::optional<QString> completeDate(const QString &text, const ValueFormat &vf, const QDate &today)
{
    const ParsedFormat &pf = parsedOf(vf);
    const DateLayout &l = pf.dateLayout[vf.dateSlot & 1];
    const DateParts p = readDateParts(text, l);
    if (p.day < 0 || p.month < 0 || p.year < 0)
        return std::nullopt;
    const int month = p.month == 0 ? today.month() : p.month;
    int year = p.yearBlank ? today.year() : p.year;
    if (year < 30)
        year += 2000;
    else if (year < 100)
        year += 1900;
    const QDate date = makeDate(year, month, p.day);
    if (!date.isValid())
        return std::nullopt;
    QString out = text;
    writePart(out, l.dayStart, l.dayEnd, date.day());
    writePart(out, l.monthStart, l.monthEnd, date.month());
    writePart(out, l.yearStart, l.yearEnd, date.year());
    return out;
}

QString wholeValueText(int type, const QString &pasted, const ParsedFormat &pf,
                       const RegionalSettings &rs)
{
    const QString t = pasted.trimmed();
    if (type == itDate) {
        const auto date = toDate(t, rs);
        return date ? dateLayoutText(*date, pf, 0) : QString();
    }
    if (type == itNum) {
        const auto n = toNumber(t, rs);
        if (!n)
            return QString();
        // The digits as written (trailing zeros included), without grouping and with a
        // leading sign; an exponent form is written out as a plain number.
        QString plain;
        if (t.contains(QLatin1Char('e'), Qt::CaseInsensitive)) {
            // Written out in full: 15 significant digits, never an exponent.
            const int magnitude = *n == 0 ? 0 : int(std::floor(std::log10(std::abs(*n))));
            plain = QString::number(*n, 'f', qBound(0, 14 - magnitude, 340));
            if (plain.contains(QLatin1Char('.'))) {
                while (plain.endsWith(QLatin1Char('0')))
                    plain.chop(1);
                if (plain.endsWith(QLatin1Char('.')))
                    plain.chop(1);
            }
            plain.replace(QLatin1Char('.'), rs.decimalSeparator);
        } else {
            for (QChar c : t) {
                if (c.isDigit() || c == rs.decimalSeparator)
                    plain += c;
            }
            if (*n < 0)
                plain.prepend(QLatin1Char('-'));
        }
        if (!pf.decimalSeparator.isNull())
            plain.replace(rs.decimalSeparator, pf.decimalSeparator);
        return plain;
    }
    return QString();
}

bool isLoneNumericSign(const QString &text, QChar decimalSeparator)
{
    const QString t = trimmed(text);
    const QString d(decimalSeparator);
    return t == QLatin1String("-") || t == QLatin1String("+") || t == d
        || t == QLatin1String("-") + d || t == QLatin1String("+") + d;
}

} // namespace velmora::detail
