#pragma once

#include <velmora/Global.h>

#include <QtCore/QChar>
#include <QtCore/QLocale>

/// @file
/// The regional settings of number and date formatting.

namespace velmora {

/// The regional settings that number and date formatting read. A value type so that
/// tests and hosts can fix them whatever the machine's locale is (see
/// Platform::regionalSettings). A default-constructed value holds the English settings.
struct VELMORA_EXPORT RegionalSettings
{
    /// The order of day, month and year in a short date; it decides how a typed or
    /// assigned date is read.
    enum DateOrder {
        DayMonthYear, ///< 24.12.2005
        MonthDayYear, ///< 12/24/2005
        YearMonthDay ///< 2005-12-24
    };

    /// The decimal separator shown for "." in a number pattern.
    QChar decimalSeparator = QLatin1Char('.');
    /// The separator of thousands shown for "," in a number pattern.
    QChar thousandsSeparator = QLatin1Char(',');
    /// The separator shown for "/" in a date pattern.
    QChar dateSeparator = QLatin1Char('/');
    /// The order of the parts of a short date.
    DateOrder dateOrder = MonthDayYear;

    /// Separators and date order of a Qt locale (the first character of each); the
    /// date separator and order come from the locale's short date format.
    static RegionalSettings fromLocale(const QLocale &locale);
    /// "," / U+00A0 / "." / day-month-year, as Czech Windows sets it up; @p thousands
    /// replaces the no-break space.
    static RegionalSettings czech(QChar thousands = QChar(0x00A0));
    /// "." / "," / "/" / month-day-year.
    static RegionalSettings english();

    /// Equal when all four settings are.
    friend bool operator==(const RegionalSettings &, const RegionalSettings &) = default;
};

} // namespace velmora
