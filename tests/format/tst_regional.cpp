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
const RegionalSettings blankPoint = {u' ', QChar(0x202F), u'.', RegionalSettings::DayMonthYear};
const RegionalSettings blankDates = {u',', u'.', u' ', RegionalSettings::DayMonthYear};
const double NaN = qQNaN();
const QString long40k(40000, u'1');
} // namespace

class TestRegional : public QObject
{
    Q_OBJECT

private slots:
    void formatNumber_data()
    {
        columns<double, QString, RegionalSettings, QString>({"value", "pattern", "rs", "expected"});
        row("czech grouping", 1001.1, "#,###.#", czSp, "1 001,1");
        row("comma after places groups, no scaling", 1234567.0, "#,", en, "1,234,567");
        row("comma among decimals is literal", 1.25, "0.0,0", en, "1.2,5");
        row("negative section", -5.0, "0.0;(0.0)", en, "(5.0)");
        row("one section negative", -1234.5, "$#,##0.00", en, "-$1,234.50");
        row("zero section", 0.0, "0.0;(0.0);\"zero\"", en, "zero");
        row("no leading zero", 0.5, "#.#", cz, ",5");
        row("leftmost zero forces", 5.0, "#0#", en, "05");
        row("half away from zero", -2.5, "0", en, "-3");
        row("half at 15 digits", 1.005, "0.00", en, "1.01");
        row("carry through nines", 999999.5, "#,##0", en, "1,000,000");
        row("rounds to zero section", -0.004, "0.00;(0.00);nula", en, "nula");
        row("no binary noise", 0.1 + 0.2, "0.00000000000000000", en, "0.30000000000000000");
        row("percent", 0.125, "0.0%", cz, "12,5%");
        row("escaped placeholder", 5.0, "\\#0", en, "#5");
        row("quoted semicolon", -5.0, "0\";\"0;x0", en, "x5");
        row("empty pattern", 1234.5, QString(), cz, "1234,5");
        row("nan", NaN, "0", en, QString());
        row("non-ascii separators", 1234.5, "#,##0.0", exotic, "1\u00a0234ů5");
        row("equal separators", 1234.5, "#,##0.00", sameSeps, "1,234,50");
        row("40k places", 1.0, QString(40000, u'0'), en, QString(39999, u'0') + u'1');
    }
    void formatNumber()
    {
        QTEST(detail::formatNumber(VFETCH(double, value), VFETCH(QString, pattern),
                                   VFETCH(RegionalSettings, rs)),
              "expected");
    }

    void formatDate_data()
    {
        columns<QDate, QString, RegionalSettings, QString>({"date", "pattern", "rs", "expected"});
        const QDate xmas(2005, 12, 24), jan(2005, 1, 5);
        row("regional separator", xmas, "dd/mm/yyyy", cz, "24.12.2005");
        row("no padding", jan, "d/m/yy", en, "5/1/05");
        row("upper case", jan, "DD-MM-YYYY", cz, "05-01-2005");
        row("long runs", jan, "ddd mmmm yyy", cz, "05 01 2005");
        row("small year", QDate(999, 1, 2), "yyyy yy", en, "0999 99");
        row("empty pattern", xmas, QString(), cz, "24.12.2005");
        row("invalid date", QDate(), "dd", cz, QString());
    }
    void formatDate()
    {
        QTEST(detail::formatDate(VFETCH(QDate, date), VFETCH(QString, pattern),
                                 VFETCH(RegionalSettings, rs)),
              "expected");
    }

    void formatString_data()
    {
        columns<QString, QString, QString>({"value", "pattern", "expected"});
        row("placeholders with literals", "123456789", "@@@-@@@-@@@", "123-456-789");
        row("upper", "praha", ">", "PRAHA");
        row("spaces on the left", "ab", "@@@@", "  ab");
        row("left-over in front", "12345", "(@@@)", "12(345)");
        row("left-over at the end", "12345", "!(@@@)", "(123)45");
        row("literals then value", "abc", "x>", "xABC");
        row("surrogate pair is one character", "a\U0001F600", "@@@", " a\U0001F600");
        row("empty value", QString(), "@@", "  ");
    }
    void formatString()
    {
        QTEST(detail::formatString(VFETCH(QString, value), VFETCH(QString, pattern)), "expected");
    }

    void toNumber_data()
    {
        columns<QString, RegionalSettings, double>({"text", "rs", "expected"}); // NaN: not a number
        row("no-break thousands", "1\u00a0234,50", cz, 1234.5);
        row("blanks around", " \u00a012,5\u00a0 ", cz, 12.5);
        row("trailing minus", "12,5-", cz, -12.5);
        row("both signs", "-3-", cz, NaN);
        row("two decimal separators", "1,2,3", cz, NaN);
        row("lone separator", ",", cz, NaN);
        row("empty", QString(), cz, NaN);
        row("point not decimal in czech", "1.5", cz, NaN);
        row("point as thousands", "1.234,5", dotGroups, 1234.5);
        row("exponent", "1,5e3", cz, 1500.0);
        row("overflow", "1e400", cz, NaN);
        row("40k decimals underflow", "0," + QString(39999, u'0') + u'1', cz, 0.0);
        row("non-ascii decimal", "1\u00a0234ů5", exotic, 1234.5);
        row("equal separators: no grouping", "1,234,5", sameSeps, NaN);
        row("blank decimal beside blank groups", "1\u202f234 5", blankPoint, 1234.5);
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
        row("blanks around", " 24 . 12 . 2005 ", cz, xmas);
        row("iso", "2005-12-24", en, xmas);
        row("swapped for english", "31/12/1998", en, QDate(1998, 12, 31));
        row("ambiguous english", "01/02/2005", en, QDate(2005, 1, 2));
        row("year order", "05.12.24", ymd, xmas);
        row("year 30", "1.1.30", cz, QDate(1930, 1, 1));
        row("year 29", "1.1.29", cz, QDate(2029, 1, 1));
        row("three-digit year kept", "1.1.999", cz, QDate(999, 1, 1));
        row("no leap day", "29.2.2005", cz, none);
        row("year zero", "0000-01-01", cz, none);
        row("two parts", "24.12", cz, none);
        row("40k digits", long40k, cz, none);
        row("non-ascii separator", "24ů12ů2005", exotic, xmas);
        row("blank separator", " 24 12 2005 ", blankDates, xmas);
    }
    void toDate()
    {
        QFETCH(QString, text);
        QFETCH(RegionalSettings, rs);
        QFETCH(QDate, expected);
        QCOMPARE(detail::toDate(text, rs).value_or(QDate()), expected);
        QCOMPARE(isDate(text, rs), expected.isValid());
    }

    // Numbers and dates as the regional settings write them, for setting typed values.
    void toText_data()
    {
        columns<QVariant, RegionalSettings, QString>({"value", "rs", "expected"});
        row("no grouping", QVariant(1234.5), cz, "1234,5");
        row("no binary noise", QVariant(0.1 + 0.2), cz, "0,3");
        row("15 digits", QVariant(2.0 / 3), cz, "0,666666666666667");
        row("rounds up to exponent", QVariant(999999999999999.9), cz, "1E+15");
        row("exponent", QVariant(-1.5e20), cz, "-1,5E+20");
        row("nan", QVariant(NaN), cz, QString());
        row("year month day", QVariant(QDate(2005, 1, 5)), ymd, "2005.01.05");
        row("invalid date", QVariant(QDate()), cz, QString());
    }
    void toText()
    {
        QFETCH(QVariant, value);
        QFETCH(RegionalSettings, rs);
        QTEST(value.typeId() == QMetaType::QDate ? dateToString(value.toDate(), rs)
                                                 : numberToString(value.toDouble(), rs),
              "expected");
    }

    void makeDate_data()
    {
        columns<int, int, int, QDate>({"year", "month", "day", "expected"});
        row("month 13", 2005, 13, 5, QDate(2006, 1, 5));
        row("month 0", 2005, 0, 5, QDate(2004, 12, 5));
        row("months carry far", 1, 24001, 1, QDate(2001, 1, 1));
        row("day 0", 2004, 3, 0, QDate(2004, 2, 29));
        row("carried into range", 99, 13, 1, QDate(100, 1, 1));
        row("before range", 99, 12, 31, QDate());
        row("after range", 9999, 12, 32, QDate());
        row("all max", INT_MAX, INT_MAX, INT_MAX, QDate());
    }
    void makeDate()
    {
        QTEST(detail::makeDate(VFETCH(int, year), VFETCH(int, month), VFETCH(int, day)),
              "expected");
    }
};

VELMORA_TEST(TestRegional)
#include "tst_regional.moc"
