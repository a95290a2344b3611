#include "common/TestPlatform.h"
#include "common/TestRegistry.h"
#include "format/Regional.h"

#include <climits>

using namespace velmora;
using namespace velmora::detail;
using namespace velmora::test;
using namespace Qt::StringLiterals;

namespace {
const RegionalSettings cz = RegionalSettings::czech(); // thousands U+00A0
const RegionalSettings czSp = test::czechSpace();
const RegionalSettings en = RegionalSettings::english();
const RegionalSettings sameSeps = {u',', u',', u'.', RegionalSettings::DayMonthYear};
} // namespace

class TestRegional : public QObject
{
    Q_OBJECT

private slots:
    // A value through a pattern: a number, a date or a text (which reads no settings).
    void patterns_data()
    {
        columns<QVariant, QString, RegionalSettings, QString>(
            {"value", "pattern", "rs", "expected"});
        row("czech grouping", QVariant(1001.1), "#,###.#", czSp, "1 001,1");
        row("comma after places groups, no scaling", QVariant(1234567.0), "#,", en, "1,234,567");
        row("comma among decimals is literal", QVariant(1.25), "0.0,0", en, "1.2,5");
        // Two sections: the random checks always give three.
        row("negative section", QVariant(-5.0), "0.0;(0.0)", en, "(5.0)");
        row("no leading zero", QVariant(0.5), "#.#", cz, ",5");
        row("leftmost zero forces", QVariant(5.0), "#0#", en, "05");
        row("half away from zero", QVariant(-2.5), "0", en, "-3");
        row("half at 15 digits", QVariant(1.005), "0.00", en, "1.01");
        row("carry through nines", QVariant(999999.5), "#,##0", en, "1,000,000");
        row("no binary noise", QVariant(0.1 + 0.2), "0.00000000000000000", en,
            "0.30000000000000000");
        row("percent", QVariant(0.125), "0.0%", cz, "12,5%");
        row("equal separators", QVariant(1234.5), "#,##0.00", sameSeps, "1,234,50");
        row("40k places", QVariant(1.0), QString(40000, u'0'), en, QString(39999, u'0') + u'1');
        const QVariant jan(QDate(2005, 1, 5));
        row("no padding", jan, "d/m/yy", en, "5/1/05");
        row("long runs", jan, "ddd mmmm yyy", cz, "05 01 2005");
        row("small year", QVariant(QDate(999, 1, 2)), "yyyy yy", en, "0999 99");
        row("placeholders with literals", QVariant("123456789"), "@@@-@@@-@@@", en, "123-456-789");
        row("spaces on the left", QVariant("ab"), "@@@@", en, "  ab");
        row("left-over in front", QVariant("12345"), "(@@@)", en, "12(345)");
        row("left-over at the end", QVariant("12345"), "!(@@@)", en, "(123)45");
        row("literals then value", QVariant("abc"), "x>", en, "xABC");
    }
    void patterns()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, pattern);
        QFETCH(RegionalSettings, rs);
        QTEST(value.typeId() == QMetaType::Double      ? formatNumber(value.toDouble(), pattern, rs)
                  : value.typeId() == QMetaType::QDate ? formatDate(value.toDate(), pattern, rs)
                                                       : formatString(value.toString(), pattern),
              "expected");
    }

    void toDate_data()
    {
        columns<QString, RegionalSettings, QDate>({"text", "rs", "expected"}); // invalid: no date
        const QDate xmas(2005, 12, 24), none;
        row("blanks around", " 24 . 12 . 2005 ", cz, xmas);
        row("three-digit year kept", "1.1.999", cz, QDate(999, 1, 1));
        row("no leap day", "29.2.2005", cz, none);
        row("year zero", "0000-01-01", cz, none);
        row("two parts", "24.12", cz, none);
        row("40k digits", QString(40000, u'1'), cz, none);
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
        columns<double, RegionalSettings, QString>({"value", "rs", "expected"});
        row("15 digits", 2.0 / 3, cz, "0,666666666666667");
        row("rounds up to exponent", 999999999999999.9, cz, "1E+15");
        row("exponent", -1.5e20, cz, "-1,5E+20");
    }
    void toText()
    {
        QTEST(numberToString(VFETCH(double, value), VFETCH(RegionalSettings, rs)), "expected");
    }

    // Past the largest double is no number; past the smallest, zero. Months carry into
    // years however far; no argument overflows; an invalid date is written as no text.
    void extremes()
    {
        QVERIFY(!detail::toNumber(u"1e400"_s, cz));
        QCOMPARE(detail::toNumber(u"0,"_s + QString(39999, u'0') + u'1', cz).value_or(-1), 0.0);
        QCOMPARE(detail::makeDate(1, 24001, 1), QDate(2001, 1, 1));
        QCOMPARE(detail::makeDate(INT_MAX, INT_MAX, INT_MAX), QDate());
        QCOMPARE(dateToString(QDate(), cz), QString());
    }
};

VELMORA_TEST(TestRegional)
#include "tst_regional.moc"
