#pragma once

#include <velmora/Global.h>

#include <QtCore/QChar>
#include <QtCore/QLocale>

namespace velmora {

// The regional settings that number and date formatting read. A value type so that
// tests and hosts can fix them whatever the machine's locale is.
struct VELMORA_EXPORT RegionalSettings
{
    enum DateOrder { DayMonthYear, MonthDayYear, YearMonthDay };

    QChar decimalSeparator = QLatin1Char('.');
    QChar thousandsSeparator = QLatin1Char(',');
    QChar dateSeparator = QLatin1Char('/');
    DateOrder dateOrder = MonthDayYear;

    // Separators and date order of a Qt locale (the first character of each).
    static RegionalSettings fromLocale(const QLocale &locale);
    // "," / U+00A0 / "." / day-month-year, as Czech Windows sets it up.
    static RegionalSettings czech(QChar thousands = QChar(0x00A0));
    // "." / "," / "/" / month-day-year.
    static RegionalSettings english();

    friend bool operator==(const RegionalSettings &, const RegionalSettings &) = default;
};

} // namespace velmora
