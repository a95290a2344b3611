#include "FormatParser.h"
#include "Regional.h"
#include "Text.h"

#include <velmora/StrF.h>

#include <QtCore/QDate>

#include <algorithm>

namespace velmora::detail {

namespace {

// Upper half of Windows-1250; 0 marks the five codes the page leaves undefined.
constexpr char16_t Cp1250High[128] = {
    0x20AC, 0,      0x201A, 0,      0x201E, 0x2026, 0x2020, 0x2021, 0,      0x2030, 0x0160, 0x2039,
    0x015A, 0x0164, 0x017D, 0x0179, 0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0,      0x2122, 0x0161, 0x203A, 0x015B, 0x0165, 0x017E, 0x017A, 0x00A0, 0x02C7, 0x02D8, 0x0141,
    0x00A4, 0x0104, 0x00A6, 0x00A7, 0x00A8, 0x00A9, 0x015E, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x017B,
    0x00B0, 0x00B1, 0x02DB, 0x0142, 0x00B4, 0x00B5, 0x00B6, 0x00B7, 0x00B8, 0x0105, 0x015F, 0x00BB,
    0x013D, 0x02DD, 0x013E, 0x017C, 0x0154, 0x00C1, 0x00C2, 0x0102, 0x00C4, 0x0139, 0x0106, 0x00C7,
    0x010C, 0x00C9, 0x0118, 0x00CB, 0x011A, 0x00CD, 0x00CE, 0x010E, 0x0110, 0x0143, 0x0147, 0x00D3,
    0x00D4, 0x0150, 0x00D6, 0x00D7, 0x0158, 0x016E, 0x00DA, 0x0170, 0x00DC, 0x00DD, 0x0162, 0x00DF,
    0x0155, 0x00E1, 0x00E2, 0x0103, 0x00E4, 0x013A, 0x0107, 0x00E7, 0x010D, 0x00E9, 0x0119, 0x00EB,
    0x011B, 0x00ED, 0x00EE, 0x010F, 0x0111, 0x0144, 0x0148, 0x00F3, 0x00F4, 0x0151, 0x00F6, 0x00F7,
    0x0159, 0x016F, 0x00FA, 0x0171, 0x00FC, 0x00FD, 0x0163, 0x02D9};

QChar effective(QChar configured, QChar system)
{
    return configured.isNull() ? system : configured;
}

QChar charAt1(const QString &s, int pos)
{
    return pos >= 1 && pos <= s.size() ? s.at(pos - 1) : QChar();
}

void setPosition(qint16 &start, qint16 &end, qint16 p)
{
    if (start == 0)
        start = p;
    else
        end = p;
}

// Strict overlap of one part's end with another part's range.
bool endInside(qint16 end, qint16 otherStart, qint16 otherEnd)
{
    return end < otherEnd && end > otherStart;
}

} // namespace

bool isAnsiCharacter(QChar c)
{
    const char16_t u = c.unicode();
    if (u < 0x80)
        return true;
    return std::find(std::begin(Cp1250High), std::end(Cp1250High), u) != std::end(Cp1250High);
}

QChar separatorFromText(const QString &text)
{
    if (text.isEmpty())
        return QChar();
    const QChar c = text.at(0);
    if (c.unicode() == 0)
        return QChar();
    return isAnsiCharacter(c) ? c : QLatin1Char('?');
}

QString separatorToText(QChar separator)
{
    return separator.isNull() ? QString() : QString(separator);
}

void readSystemNumberSeparators(ParsedFormat &pf, const RegionalSettings &rs,
                                const ConfiguredSeparators &configured)
{
    // Read off a formatted sample, as the platform renders it.
    const QString sample = formatNumber(1001.1, QStringLiteral("#,###.#"), rs);
    pf.regional = rs;
    pf.systemThousandsSeparator = charAt1(sample, 2);
    pf.systemDecimalSeparator = charAt1(sample, 6);
    pf.thousandsSeparator = effective(configured.thousands, pf.systemThousandsSeparator);
    pf.decimalSeparator = effective(configured.decimal, pf.systemDecimalSeparator);
}

void readSystemDateSeparator(ParsedFormat &pf, const RegionalSettings &rs,
                             const ConfiguredSeparators &configured)
{
    const QString sample = formatDate(QDate(1998, 12, 31), QStringLiteral("dd/mm/yyyy"), rs);
    pf.regional = rs;
    pf.systemDateSeparator = charAt1(sample, 3);
    pf.dateSeparator = effective(configured.date, pf.systemDateSeparator);
}

int parseNumFormat(ParsedFormat &pf, QString &formatStr, const RegionalSettings &rs,
                   const ConfiguredSeparators &configured)
{
    readSystemNumberSeparators(pf, rs, configured);
    pf.integerDigits = 0;
    pf.decimalDigits = 0;
    int integers = 0, decimals = 0;
    bool afterPoint = false;
    auto closeSection = [&] {
        pf.integerDigits
            = qint16(std::min<int>(std::max<int>(pf.integerDigits, integers), MaxTextLength));
        pf.decimalDigits
            = qint16(std::min<int>(std::max<int>(pf.decimalDigits, decimals), MaxTextLength));
    };
    for (QChar c : std::as_const(formatStr)) {
        if (c == QLatin1Char('0') || c == QLatin1Char('9') || c == QLatin1Char('#')) {
            ++(afterPoint ? decimals : integers);
        } else if (c == QLatin1Char('.')) {
            afterPoint = true;
        } else if (c == QLatin1Char(';')) {
            closeSection();
            integers = decimals = 0;
            afterPoint = false;
        }
    }
    if (pf.decimalSeparator == pf.thousandsSeparator) {
        formatStr.clear();
        pf.integerDigits = 10;
        pf.decimalDigits = 3;
        return 3;
    }
    closeSection();
    return 0;
}

int checkAlfaNumFormat(QString &formatStr)
{
    if (formatStr == QLatin1String("1>"))
        return 0;
    // A character comes back from the code page as itself, which the format holds, or
    // as "?": one search for "?" serves every character, so long formats take linear
    // time.
    const bool questionMark = formatStr.contains(QLatin1Char('?'));
    for (QChar c : std::as_const(formatStr)) {
        if (!isAnsiCharacter(c) && !questionMark) {
            formatStr.clear();
            return 4;
        }
    }
    return 0;
}

int parseDateFormat(ParsedFormat &pf, QString &formatStr, int slot, const RegionalSettings &rs,
                    const ConfiguredSeparators &configured)
{
    DateLayout &l = pf.dateLayout[std::clamp(slot, 0, 1)];
    l = DateLayout();
    readSystemDateSeparator(pf, rs, configured);
    if (formatStr.isEmpty())
        formatStr = DefaultDateFormat;

    QString empty;
    const int n = std::min<int>(int(formatStr.size()), MaxTextLength);
    for (int i = 0; i < n; ++i) {
        const QChar c = formatStr.at(i);
        const qint16 p = qint16(i + 1);
        if (c == QLatin1Char('m'))
            setPosition(l.monthStart, l.monthEnd, p);
        else if (c == QLatin1Char('d'))
            setPosition(l.dayStart, l.dayEnd, p);
        else if (c == QLatin1Char('y'))
            setPosition(l.yearStart, l.yearEnd, p);
        const bool letter = c == QLatin1Char('m') || c == QLatin1Char('d') || c == QLatin1Char('y');
        empty += letter ? QChar(QLatin1Char(' ')) : pf.dateSeparator;
    }

    const bool invalid = endInside(l.monthEnd, l.dayStart, l.dayEnd)
        || endInside(l.monthEnd, l.yearStart, l.yearEnd)
        || endInside(l.dayEnd, l.monthStart, l.monthEnd)
        || endInside(l.dayEnd, l.yearStart, l.yearEnd)
        || endInside(l.yearEnd, l.monthStart, l.monthEnd)
        || endInside(l.yearEnd, l.dayStart, l.dayEnd);
    if (invalid) {
        formatStr = DefaultDateFormat;
        l = DateLayout {4, 5, 1, 2, 7, 10};
        const QChar s = pf.dateSeparator;
        pf.emptyDateText
            = QStringLiteral("  ") + s + QStringLiteral("  ") + s + QStringLiteral("    ");
        return 5;
    }
    pf.emptyDateText = empty;
    return 0;
}

void parseBoolFormat(BoolFormat &bf, QString &formatStr)
{
    if (formatStr.isEmpty())
        formatStr = DefaultBoolFormat;
    // Formats longer than the split positions can address keep their first 32767 characters.
    const QString text = formatStr.left(MaxTextLength);
    StrF split;
    QString third;
    split.VratCast(bf.trueText, text, QLatin1Char(';'), 1);
    split.VratCast(bf.falseText);
    split.VratCast(third);
    bf.sqlType = third.isEmpty() ? char16_t(0) : third.at(0).toUpper().unicode();
}

} // namespace velmora::detail
