#include <velmora/RegionalSettings.h>

namespace velmora {

namespace {
QChar firstChar(const QString &s, QChar fallback)
{
    return s.isEmpty() ? fallback : s.at(0);
}
} // namespace

RegionalSettings RegionalSettings::fromLocale(const QLocale &locale)
{
    RegionalSettings rs;
    rs.decimalSeparator = firstChar(locale.decimalPoint(), QLatin1Char('.'));
    rs.thousandsSeparator = firstChar(locale.groupSeparator(), QLatin1Char(','));
    // The short date format tells both the separator and the order of the parts.
    const QString fmt = locale.dateFormat(QLocale::ShortFormat);
    const qsizetype d = fmt.indexOf(QLatin1Char('d'));
    const qsizetype m = fmt.indexOf(QLatin1Char('M'));
    const qsizetype y = fmt.indexOf(QLatin1Char('y'));
    if (y >= 0 && y < d && y < m)
        rs.dateOrder = YearMonthDay;
    else if (m >= 0 && m < d)
        rs.dateOrder = MonthDayYear;
    else
        rs.dateOrder = DayMonthYear;
    rs.dateSeparator = QLatin1Char('/');
    for (QChar c : fmt) {
        if (!c.isLetter() && !c.isSpace()) {
            rs.dateSeparator = c;
            break;
        }
    }
    return rs;
}

RegionalSettings RegionalSettings::czech(QChar thousands)
{
    return {QLatin1Char(','), thousands, QLatin1Char('.'), DayMonthYear};
}

RegionalSettings RegionalSettings::english()
{
    return {QLatin1Char('.'), QLatin1Char(','), QLatin1Char('/'), MonthDayYear};
}

} // namespace velmora
