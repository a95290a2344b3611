#include "ListFormat.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

namespace velmora::detail {

namespace {

// The parts of a list separated by one character, as the field's part iterator gives
// them: a part between two separators may be empty, a separator at the very end
// starts no further part, and an empty text has no parts.
QList<QStringView> parts(QStringView text, QChar separator)
{
    QList<QStringView> out;
    qsizetype from = 0;
    while (from < text.size()) {
        const qsizetype at = text.indexOf(separator, from);
        if (at < 0) {
            out.append(text.sliced(from));
            break;
        }
        out.append(text.sliced(from, at - from));
        from = at + 1;
    }
    return out;
}

// Reads characters skipping the blanks the leading-number rule ignores.
class Cursor
{
public:
    explicit Cursor(QStringView text) : m_text(text) { skip(); }
    bool atEnd() const { return m_pos >= m_text.size(); }
    char16_t peek() const { return atEnd() ? u'\0' : m_text.at(m_pos).unicode(); }
    void next()
    {
        ++m_pos;
        skip();
    }

private:
    void skip()
    {
        while (
            m_pos < m_text.size()
            && (m_text.at(m_pos) == u' ' || m_text.at(m_pos) == u'\t' || m_text.at(m_pos) == u'\n'))
            ++m_pos;
    }
    QStringView m_text;
    qsizetype m_pos = 0;
};

bool isDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

int digitIn(char16_t c, int base)
{
    int d = -1;
    if (c >= u'0' && c <= u'9')
        d = c - u'0';
    else if (c >= u'a' && c <= u'f')
        d = c - u'a' + 10;
    else if (c >= u'A' && c <= u'F')
        d = c - u'A' + 10;
    return d < base ? d : -1;
}

// "&H" / "&O" integers: up to 4 digits are a 16-bit value, up to 8 a 32-bit one, both
// signed (so &HFFFF is -1); longer ones keep their plain value.
double radixNumber(Cursor &c, int base)
{
    quint64 value = 0;
    int digits = 0;
    for (int d; (d = digitIn(c.peek(), base)) >= 0; c.next()) {
        if (value < (quint64(1) << 58))
            value = value * quint64(base) + quint64(d);
        ++digits;
    }
    const int bits = base == 16 ? digits * 4 : digits * 3;
    if (bits <= 16 && value <= 0xFFFF)
        return double(qint16(quint16(value)));
    if (bits <= 32 && value <= 0xFFFFFFFFu)
        return double(qint32(quint32(value)));
    return double(value);
}

} // namespace

double leadingNumber(QStringView text)
{
    Cursor c(text);
    if (c.peek() == u'&') {
        c.next();
        const char16_t kind = c.peek();
        if (kind == u'H' || kind == u'h') {
            c.next();
            return radixNumber(c, 16);
        }
        if (kind == u'O' || kind == u'o') {
            c.next();
            return radixNumber(c, 8);
        }
        return 0;
    }
    std::string plain;
    if (c.peek() == u'-' || c.peek() == u'+') {
        if (c.peek() == u'-')
            plain += '-';
        c.next();
    }
    bool digits = false;
    for (; isDigit(c.peek()); c.next()) {
        plain += char(c.peek());
        digits = true;
    }
    if (c.peek() == u'.') {
        plain += digits ? "." : "0."; // from_chars wants a digit before the point
        c.next();
        for (; isDigit(c.peek()); c.next()) {
            plain += char(c.peek());
            digits = true;
        }
    }
    if (!digits)
        return 0;
    const char16_t e = c.peek();
    if (e == u'E' || e == u'e' || e == u'D' || e == u'd') {
        c.next();
        std::string exponent = "e";
        if (c.peek() == u'-' || c.peek() == u'+') {
            exponent += char(c.peek());
            c.next();
        }
        bool expDigits = false;
        for (; isDigit(c.peek()); c.next()) {
            if (exponent.size() < 8) // far beyond any double either way
                exponent += char(c.peek());
            expDigits = true;
        }
        if (expDigits)
            plain += exponent;
    }
    double value = 0;
    const auto res = std::from_chars(plain.data(), plain.data() + plain.size(), value);
    if (res.ec == std::errc::result_out_of_range) {
        // from_chars leaves the value alone then: decide between huge and tiny.
        const bool negativeExponent = plain.find("e-") != std::string::npos;
        value = negativeExponent ? 0.0 : HUGE_VAL;
        if (plain.front() == '-')
            value = -value;
    }
    return value;
}

int leadingIndex(QStringView text)
{
    const double n = std::nearbyint(leadingNumber(text)); // half to even
    if (!(n >= 0 && n <= ListColumns::MaxColumn))
        return -1;
    return int(n);
}

int parseListFormat(const QString &listFormatString, const ListFieldSettings &settings,
                    ListColumns &columns, ParsedFormat &pf)
{
    readSystemNumberSeparators(pf, settings.regional, settings.configured);
    readSystemDateSeparator(pf, settings.regional, settings.configured);
    columns.clearBoolFormats();

    const QList<QStringView> descriptions = parts(listFormatString, QLatin1Char('|'));
    for (qsizetype column = 0; column < descriptions.size() && column <= ListColumns::MaxColumn;
         ++column) {
        const QStringView part = descriptions.at(column);
        if (part.isEmpty())
            continue;
        // The type letter is one whole character, a surrogate pair included.
        const qsizetype letterLength
            = part.size() > 1 && part.at(0).isHighSurrogate() && part.at(1).isLowSurrogate() ? 2
                                                                                             : 1;
        const int col = int(column);
        columns.setDataType(col, letterLength == 1 ? part.at(0).unicode() : 0);
        QString rest = part.sliced(letterLength).toString();
        if (columns.dataType(col) == itBool) {
            BoolFormat bf;
            parseBoolFormat(bf, rest);
            columns.setFormatString(col, QString::number(columns.appendBoolFormat(bf)));
        } else {
            columns.setFormatString(col, rest);
        }
    }

    if (settings.textCol >= 0 && settings.textCol <= ListColumns::MaxColumn) {
        columns.setDataType(settings.textCol, settings.inputType);
        columns.setFormatString(settings.textCol, settings.formatStr);
    }

    int message = 0;
    if (settings.valueCol >= 0 && settings.valueCol <= ListColumns::MaxColumn
        && columns.dataType(settings.valueCol) == itDate) {
        // A copy: the column keeps its format as written (an empty one stays empty).
        QString format = columns.formatString(settings.valueCol);
        const QString ownEmptyDate = pf.emptyDateText;
        message = parseDateFormat(pf, format, 1, settings.regional, settings.configured);
        if (settings.inputType == itDate)
            pf.emptyDateText = ownEmptyDate;
    }
    return message;
}

QList<bool> parseHideCol(const QString &hideCol, int lastIndex)
{
    QList<bool> hidden(std::max(lastIndex + 1, 0), false);
    const QStringView text(hideCol);
    qsizetype from = 0;
    qsizetype items = 0;
    for (;;) {
        const qsizetype at = text.indexOf(QLatin1Char(';'), from);
        const QStringView raw = at < 0 ? text.sliced(from) : text.sliced(from, at - from);
        ++items;
        // Plain blanks only, as everywhere in the field.
        qsizetype b = 0, e = raw.size();
        while (b < e && raw.at(b) == u' ')
            ++b;
        while (e > b && raw.at(e - 1) == u' ')
            --e;
        const QStringView item = raw.sliced(b, e - b);
        if (!item.isEmpty()) {
            const int index = leadingIndex(item);
            if (index >= 0 && index <= lastIndex)
                hidden[index] = true;
        }
        if (at < 0 || items > hidden.size())
            break;
        from = at + 1;
    }
    return hidden;
}

} // namespace velmora::detail
