#include "ValueAssignment.h"
#include "Regional.h"
#include "Text.h"

namespace velmora::detail {

namespace {

// A date text in the field's layout, or the start of one, padded out to the whole
// layout; a null QString when the text is not in the layout.
QString inDateLayout(const QString &text, const ParsedFormat &pf)
{
    const QString &empty = pf.emptyDateText;
    if (text.isEmpty() || text.size() > empty.size())
        return {};
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const bool separatorPlace = empty.at(i) != QLatin1Char(' ');
        const bool digitOrBlank
            = c == QLatin1Char(' ') || (c >= QLatin1Char('0') && c <= QLatin1Char('9'));
        if (separatorPlace ? c != empty.at(i) : !digitOrBlank)
            return {};
    }
    return text + empty.mid(text.size());
}

QString keepNumberCharacters(const QString &text, QChar decimalSeparator)
{
    QString out = text;
    out.removeIf([decimalSeparator](QChar c) {
        return !(c == QLatin1Char('-') || (c >= QLatin1Char('0') && c <= QLatin1Char('9'))
                 || (!decimalSeparator.isNull() && c == decimalSeparator));
    });
    return out;
}

} // namespace

ShownValue showValue(const QString &text, const FieldValueSettings &s)
{
    const ValueFormat &vf = s.format;
    const ParsedFormat &pf = vf.parsed ? *vf.parsed : ParsedFormat();
    ShownValue result;
    if (vf.type == itDate && !isDate(trimBlanks(text), vf.regional)) {
        // A text in the field's own layout that is no date yet (what Value gives for a
        // half-typed date) goes back into the layout as it was; only a complete text
        // that makes no date is reported.
        const QString laidOut = inDateLayout(trimBlanks(text, false, true), pf);
        if (!laidOut.isNull()) {
            result.shown = result.stored = laidOut;
            if (!isEmptyDate(laidOut, pf) && !laidOut.contains(QLatin1Char(' ')))
                result.report = Report {7, trimBlanks(laidOut)};
            return result;
        }
    }
    QString v = vf.type == itAlfaNum ? trimSides(text, vf.trim) : trimBlanks(text);
    if (!v.isEmpty()) {
        if (vf.type == itNum && !isNumeric(v, vf.regional))
            result.report = Report {6, v};
        else if (vf.type == itDate && !isDate(v, vf.regional))
            result.report = Report {7, v};
    }
    if (vf.type == itNum && !v.isEmpty())
        result.number = toNumber(v, vf.regional);
    if (vf.type == itAlfaNum && s.maxLength > 0)
        v = v.left(s.maxLength);
    if (!v.isEmpty())
        result.shown = capped(displayText(v, vf));
    else if (vf.type == itDate)
        result.shown = pf.emptyDateText;
    result.stored
        = vf.type == itNum ? keepNumberCharacters(result.shown, pf.decimalSeparator) : result.shown;
    return result;
}

Assignment assignValue(const QString &value, const FieldValueSettings &s,
                       const QString &currentStored)
{
    const ValueFormat &vf = s.format;
    Assignment a;
    if (vf.type == itBool) {
        if (value.isEmpty() && !s.enableEmpty) {
            a.reports.append({1, value});
            return a;
        }
        const BoolDisplay shown = boolDisplayText(value, vf.boolFormat, vf.regional, false);
        a.listIndex = qint16(shown.row);
        a.show = ShownValue {shown.text, shown.text, std::nullopt, std::nullopt};
        a.checkValueChanged = a.notifyValue = true;
        return a;
    }
    QString t = value;
    if (s.setList && s.listRow >= 0) {
        // A row of the list holds the value: the field shows the row's text.
        a.listIndex = s.listRow;
        t = s.listText;
    } else if (s.setList) {
        const bool zero = s.valueColumnNumeric && toNumber(value, vf.regional) == 0.0;
        const bool empty = s.enableEmpty && (trimBlanks(value).isEmpty() || zero);
        if (s.listCheck) {
            if (empty) {
                a.clearFirst = true;
                a.checkValueChanged = true;
                return a;
            }
            a.reports.append({1, value});
            t = currentStored;
        } else {
            a.clearFirst = true;
            if (empty)
                return a;
        }
    }
    a.show = showValue(t, s);
    if (a.show->report)
        a.reports.append(*a.show->report);
    a.checkValueChanged = a.notifyValue = true;
    return a;
}

QString variantText(const QVariant &value, int type, const RegionalSettings &rs)
{
    if (!value.isValid() || value.isNull())
        return {};
    switch (value.metaType().id()) {
    case QMetaType::Bool:
        if (type == itBool)
            return value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
        return value.toBool() ? QStringLiteral("-1") : QStringLiteral("0");
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return numberToString(value.toDouble(), rs);
    case QMetaType::QDate:
        return dateToString(value.toDate(), rs);
    case QMetaType::QDateTime:
        return dateToString(value.toDateTime().date(), rs);
    default:
        return value.toString();
    }
}

Completion completeEntry(const QString &boxText, const FieldValueSettings &s, const QDate &today)
{
    const ValueFormat &vf = s.format;
    const ParsedFormat &pf = vf.parsed ? *vf.parsed : ParsedFormat();
    Completion c;
    if (vf.type == itDate) {
        if (isEmptyDate(boxText, pf))
            return c;
        const auto done = completeDate(boxText, vf, today);
        if (!done) {
            c.failed = true;
            return c;
        }
        if (*done != boxText)
            c.shown = c.stored = *done;
    } else if (vf.type == itNum) {
        if (isLoneNumericSign(boxText, pf.decimalSeparator)) {
            c.shown = c.stored = QString(); // the value agrees with what is shown
        } else if (!boxText.isEmpty()) {
            const QString shown = displayText(textToValue(boxText, vf), vf);
            if (shown != boxText)
                c.shown = shown; // the stored text keeps the digits as typed
        }
    }
    return c;
}

QString moveDateParts(const QString &text, const ParsedFormat &from, const ParsedFormat &to)
{
    if (from.dateLayout[0] == to.dateLayout[0] && from.emptyDateText == to.emptyDateText)
        return text;
    if (text.size() != from.emptyDateText.size() || inDateLayout(text, from) != text)
        return text;
    const DateLayout &a = from.dateLayout[0];
    const DateLayout &b = to.dateLayout[0];
    QString out = to.emptyDateText;
    const auto move = [&](int fromStart, int fromEnd, int toStart, int toEnd) {
        if (fromStart < 1 || fromEnd < fromStart || toStart < 1 || toEnd < toStart)
            return;
        const QString part = text.mid(fromStart - 1, fromEnd - fromStart + 1);
        const int width = toEnd - toStart + 1;
        out.replace(toStart - 1, width, part.leftJustified(width, QLatin1Char(' '), true));
    };
    move(a.dayStart, a.dayEnd, b.dayStart, b.dayEnd);
    move(a.monthStart, a.monthEnd, b.monthStart, b.monthEnd);
    move(a.yearStart, a.yearEnd, b.yearStart, b.yearEnd);
    return out;
}

} // namespace velmora::detail
