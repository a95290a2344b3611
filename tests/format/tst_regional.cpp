#include "common/TestPlatform.h"
#include "common/TestRegistry.h"
#include "format/Regional.h"

#include <QtTest/QTest>

#include <climits>

using namespace velmora;
using namespace velmora::detail;
using velmora::test::columns;
using velmora::test::row;
using namespace Qt::StringLiterals;

namespace {
const RegionalSettings cz = RegionalSettings::czech(); // thousands U+00A0
const RegionalSettings czSp = test::czechSpace();
const RegionalSettings en = RegionalSettings::english();
const RegionalSettings ymd = {u'.', u' ', u'.', RegionalSettings::YearMonthDay};
const RegionalSettings dotGroups = {u',', u'.', u'.', RegionalSettings::DayMonthYear};
const RegionalSettings sameSeps = {u',', u',', u'.', RegionalSettings::DayMonthYear};
const RegionalSettings exotic = {u'ů', QChar(0x00A0), u'ů', RegionalSettings::DayMonthYear};
const RegionalSettings blankDates = {u',', u'.', u' ', RegionalSettings::DayMonthYear};
const double NaN = qQNaN();
const double Inf = qInf();
const QString long40k(40000, u'1');
} // namespace

class TestRegional : public QObject
{
    Q_OBJECT

private slots:
    void formatNumber_data()
    {
        columns<double, QString, RegionalSettings, QString>({"value", "pattern", "rs", "expected"});
        row("czech grouping", 1001.1, u"#,###.#"_s, czSp, u"1 001,1"_s);
        row("english grouping", 1001.1, u"#,###.#"_s, en, u"1,001.1"_s);
        row("fixed decimals", 1234.5, u"#,##0.00"_s, en, u"1,234.50"_s);
        row("comma after places groups, no scaling", 1234567.0, u"#,"_s, en, u"1,234,567"_s);
        row("comma among decimals is literal", 1.25, u"0.0,0"_s, en, u"1.2,5"_s);
        row("negative section", -5.0, u"0.0;(0.0)"_s, en, u"(5.0)"_s);
        row("one section negative", -1234.5, u"$#,##0.00"_s, en, u"-$1,234.50"_s);
        row("empty negative section", -5.0, u"0.0;;zero"_s, en, u"-5.0"_s);
        row("zero section", 0.0, u"0.0;(0.0);\"zero\""_s, en, u"zero"_s);
        row("empty first section", -2.5, u";"_s, cz, u"-2,5"_s);
        row("leading zero", 0.5, u"0.00"_s, cz, u"0,50"_s);
        row("no leading zero", 0.5, u"#.#"_s, cz, u",5"_s);
        row("zero on hashes", 0.0, u"#"_s, en, QString());
        row("point without decimals", 12.0, u"0."_s, cz, u"12,"_s);
        row("zero decimal stays", 1.0, u"0.0#"_s, en, u"1.0"_s);
        row("leftmost zero forces", 5.0, u"#0#"_s, en, u"05"_s);
        row("surplus digits shown", 12345.0, u"00"_s, en, u"12345"_s);
        row("half away from zero", -2.5, u"0"_s, en, u"-3"_s);
        row("half at 15 digits", 1.005, u"0.00"_s, en, u"1.01"_s);
        row("carry through nines", 999999.5, u"#,##0"_s, en, u"1,000,000"_s);
        row("negative rounds to zero", -0.004, u"0.00"_s, en, u"0.00"_s);
        row("rounds to zero section", -0.004, u"0.00;(0.00);nula"_s, en, u"nula"_s);
        row("no binary noise", 0.1 + 0.2, u"0.00000000000000000"_s, en, u"0.30000000000000000"_s);
        row("percent", 0.125, u"0.0%"_s, cz, u"12,5%"_s);
        row("literals around", 5.0, u"Kč 0 celkem"_s, cz, u"Kč 5 celkem"_s);
        row("literals among places", 5551234567.0, u"(###) ###-####"_s, en, u"(555) 123-4567"_s);
        row("escaped placeholder", 5.0, u"\\#0"_s, en, u"#5"_s);
        row("quoted semicolon", -5.0, u"0\";\"0;x0"_s, en, u"x5"_s);
        row("empty pattern", 1234.5, QString(), cz, u"1234,5"_s);
        row("nan", NaN, u"0"_s, en, QString());
        row("infinity", -Inf, u"0"_s, en, QString());
        row("non-ascii separators", 1234.5, u"#,##0.0"_s, exotic, u"1\u00a0234ů5"_s);
        row("equal separators", 1234.5, u"#,##0.00"_s, sameSeps, u"1,234,50"_s);
        row("40k places", 1.0, QString(40000, u'0'), en, QString(39999, u'0') + u'1');
    }
    void formatNumber()
    {
        QFETCH(double, value);
        QFETCH(QString, pattern);
        QFETCH(RegionalSettings, rs);
        QTEST(detail::formatNumber(value, pattern, rs), "expected");
    }

    void formatDate_data()
    {
        columns<QDate, QString, RegionalSettings, QString>({"date", "pattern", "rs", "expected"});
        const QDate xmas(2005, 12, 24), jan(2005, 1, 5);
        row("regional separator", xmas, u"dd/mm/yyyy"_s, cz, u"24.12.2005"_s);
        row("no padding", jan, u"d/m/yy"_s, en, u"5/1/05"_s);
        row("upper case", jan, u"DD-MM-YYYY"_s, cz, u"05-01-2005"_s);
        row("long runs", jan, u"ddd mmmm yyy"_s, cz, u"05 01 2005"_s);
        row("small year", QDate(999, 1, 2), u"yyyy yy"_s, en, u"0999 99"_s);
        row("empty pattern", xmas, QString(), cz, u"24.12.2005"_s);
        row("invalid date", QDate(), u"dd"_s, cz, QString());
    }
    void formatDate()
    {
        QFETCH(QDate, date);
        QFETCH(QString, pattern);
        QFETCH(RegionalSettings, rs);
        QTEST(detail::formatDate(date, pattern, rs), "expected");
    }

    void formatString_data()
    {
        columns<QString, QString, QString>({"value", "pattern", "expected"});
        row("placeholders with literals", u"123456789"_s, u"@@@-@@@-@@@"_s, u"123-456-789"_s);
        row("upper", u"praha"_s, u">"_s, u"PRAHA"_s);
        row("lower czech", u"ŽLUŤOUČKÝ"_s, u"<"_s, u"žluťoučký"_s);
        row("spaces on the left", u"ab"_s, u"@@@@"_s, u"  ab"_s);
        row("spaces on the right", u"ab"_s, u"!@@@@"_s, u"ab  "_s);
        row("ampersands add nothing", u"ab"_s, u"&&&&"_s, u"ab"_s);
        row("left-over in front", u"12345"_s, u"(@@@)"_s, u"12(345)"_s);
        row("left-over at the end", u"12345"_s, u"!(@@@)"_s, u"(123)45"_s);
        row("literals then value", u"abc"_s, u"x>"_s, u"xABC"_s);
        row("surrogate pair is one character", u"a\U0001F600"_s, u"@@@"_s, u" a\U0001F600"_s);
        row("empty value", QString(), u"@@"_s, u"  "_s);
    }
    void formatString()
    {
        QFETCH(QString, value);
        QFETCH(QString, pattern);
        QTEST(detail::formatString(value, pattern), "expected");
    }

    void textValues_data()
    {
        columns<QString, QString, bool, QString>({"value", "pattern", "isDatePattern", "expected"});
        row("number", u"1234,5"_s, u"#,##0.00"_s, false, u"1\u00a0234,50"_s);
        row("not a number", u"abc"_s, u"0"_s, false, u"abc"_s);
        row("date", u"24.12.2005"_s, u"yyyy-mm-dd"_s, true, u"2005-12-24"_s);
        row("not a date", u"32.12.2005"_s, u"yyyy"_s, true, u"32.12.2005"_s);
    }
    void textValues()
    {
        QFETCH(QString, value);
        QFETCH(QString, pattern);
        QFETCH(bool, isDatePattern);
        QTEST(isDatePattern ? formatDateText(value, pattern, cz)
                            : formatNumberText(value, pattern, cz),
              "expected");
    }

    void toNumber_data()
    {
        columns<QString, RegionalSettings, double>({"text", "rs", "expected"}); // NaN: not a number
        row("no-break thousands", u"1\u00a0234,50"_s, cz, 1234.5);
        row("space for no-break", u"1 234,50"_s, cz, 1234.5);
        row("narrow no-break", u"1\u202f234"_s, czSp, 1234.0);
        row("blanks around", u" \u00a012,5\u00a0 "_s, cz, 12.5);
        row("leading minus", u"-12,5"_s, cz, -12.5);
        row("trailing minus", u"12,5-"_s, cz, -12.5);
        row("both signs", u"-3-"_s, cz, NaN);
        row("two decimal separators", u"1,2,3"_s, cz, NaN);
        row("lone separator", u","_s, cz, NaN);
        row("lone sign", u"-"_s, cz, NaN);
        row("sign and separator", u"-,"_s, cz, NaN);
        row("empty", QString(), cz, NaN);
        row("point not decimal in czech", u"1.5"_s, cz, NaN);
        row("point as thousands", u"1.234,5"_s, dotGroups, 1234.5);
        row("separator last", u"5,"_s, cz, 5.0);
        row("exponent", u"1,5e3"_s, cz, 1500.0);
        row("negative exponent", u"-1E-2"_s, cz, -0.01);
        row("exponent without digits", u"1e+"_s, cz, NaN);
        row("overflow", u"1e400"_s, cz, NaN);
        row("non-ascii digits", u"\u0661\u0662"_s, cz, NaN);
        row("40k digits overflow", long40k, cz, NaN);
        row("40k decimals underflow", u"0,"_s + QString(39999, u'0') + u'1', cz, 0.0);
        row("non-ascii decimal", u"1\u00a0234ů5"_s, exotic, 1234.5);
        row("equal separators: no grouping", u"1,234,5"_s, sameSeps, NaN);
    }
    void toNumber()
    {
        QFETCH(QString, text);
        QFETCH(RegionalSettings, rs);
        QFETCH(double, expected);
        const std::optional<double> got = detail::toNumber(text, rs);
        QCOMPARE(got.has_value(), !qIsNaN(expected));
        QCOMPARE(isNumeric(text, rs), !qIsNaN(expected));
        if (got)
            QCOMPARE(*got, expected);
    }

    void toDate_data()
    {
        columns<QString, RegionalSettings, QDate>(
            {"text", "rs", "expected"}); // invalid: not a date
        const QDate xmas(2005, 12, 24), none;
        row("czech", u"24.12.2005"_s, cz, xmas);
        row("slash and dash", u"24/12-2005"_s, cz, xmas);
        row("blanks around", u" 24 . 12 . 2005 "_s, cz, xmas);
        row("iso", u"2005-12-24"_s, en, xmas);
        row("month first", u"12/24/2005"_s, en, xmas);
        row("swapped for english", u"31/12/1998"_s, en, QDate(1998, 12, 31));
        row("swapped for czech", u"12.31.1998"_s, cz, QDate(1998, 12, 31));
        row("ambiguous english", u"01/02/2005"_s, en, QDate(2005, 1, 2));
        row("year order", u"05.12.24"_s, ymd, xmas);
        row("year 30", u"1.1.30"_s, cz, QDate(1930, 1, 1));
        row("year 29", u"1.1.29"_s, cz, QDate(2029, 1, 1));
        row("one-digit year", u"1.1.5"_s, cz, QDate(2005, 1, 1));
        row("three-digit year kept", u"1.1.999"_s, cz, QDate(999, 1, 1));
        row("leap day", u"29.2.2004"_s, cz, QDate(2004, 2, 29));
        row("no leap day", u"29.2.2005"_s, cz, none);
        row("year zero", u"0000-01-01"_s, cz, none);
        row("two parts", u"24.12"_s, cz, none);
        row("letters", u"24.XII.2005"_s, cz, none);
        row("40k digits", long40k, cz, none);
        row("non-ascii separator", u"24ů12ů2005"_s, exotic, xmas);
        row("blank separator", u" 24 12 2005 "_s, blankDates, xmas);
    }
    void toDate()
    {
        QFETCH(QString, text);
        QFETCH(RegionalSettings, rs);
        QFETCH(QDate, expected);
        QCOMPARE(detail::toDate(text, rs).value_or(QDate()), expected);
        QCOMPARE(isDate(text, rs), expected.isValid());
    }

    void numberToString_data()
    {
        columns<double, RegionalSettings, QString>({"value", "rs", "expected"});
        row("zero", 0.0, cz, u"0"_s);
        row("no grouping", 1234.5, cz, u"1234,5"_s);
        row("no binary noise", 0.1 + 0.2, cz, u"0,3"_s);
        row("15 digits", 2.0 / 3, cz, u"0,666666666666667"_s);
        row("rounds up to exponent", 999999999999999.9, cz, u"1E+15"_s);
        row("exponent", -1.5e20, cz, u"-1,5E+20"_s);
        row("nan", NaN, cz, QString());
        row("infinity", Inf, cz, QString());
    }
    void numberToString()
    {
        QFETCH(double, value);
        QFETCH(RegionalSettings, rs);
        QTEST(detail::numberToString(value, rs), "expected");
    }

    void dateToString_data()
    {
        columns<QDate, RegionalSettings, QString>({"date", "rs", "expected"});
        const QDate jan(2005, 1, 5);
        row("day month year", jan, cz, u"05.01.2005"_s);
        row("month day year", jan, en, u"01/05/2005"_s);
        row("year month day", jan, ymd, u"2005.01.05"_s);
        row("small year", QDate(999, 1, 5), cz, u"05.01.0999"_s);
        row("invalid", QDate(), cz, QString());
    }
    void dateToString()
    {
        QFETCH(QDate, date);
        QFETCH(RegionalSettings, rs);
        QTEST(detail::dateToString(date, rs), "expected");
    }

    void makeDate_data()
    {
        columns<int, int, int, QDate>({"year", "month", "day", "expected"});
        row("plain", 2005, 12, 24, QDate(2005, 12, 24));
        row("month 13", 2005, 13, 5, QDate(2006, 1, 5));
        row("month 0", 2005, 0, 5, QDate(2004, 12, 5));
        row("months carry far", 1, 24001, 1, QDate(2001, 1, 1));
        row("day 0", 2004, 3, 0, QDate(2004, 2, 29));
        row("day 32", 2005, 1, 32, QDate(2005, 2, 1));
        row("first day", 100, 1, 1, QDate(100, 1, 1));
        row("last day", 9999, 12, 31, QDate(9999, 12, 31));
        row("carried into range", 99, 13, 1, QDate(100, 1, 1));
        row("before range", 99, 12, 31, QDate());
        row("after range", 9999, 12, 32, QDate());
        row("all max", INT_MAX, INT_MAX, INT_MAX, QDate());
        row("all min", INT_MIN, INT_MIN, INT_MIN, QDate());
        row("day max", 2000, 1, INT_MAX, QDate());
    }
    void makeDate()
    {
        QFETCH(int, year);
        QFETCH(int, month);
        QFETCH(int, day);
        QTEST(detail::makeDate(year, month, day), "expected");
    }
};

VELMORA_TEST(TestRegional)
#include "tst_regional.moc"
