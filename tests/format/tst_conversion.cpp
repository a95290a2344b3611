// Conversions between stored text, display text, SQL literal and typed value.

#include "common/TestPlatform.h"
#include "common/TestRegistry.h"
#include "format/FormatParser.h"
#include "format/ValueConversion.h"

using namespace velmora;
using namespace velmora::detail;
using namespace velmora::test;
using namespace Qt::StringLiterals;

namespace {

const QString none;

// A field's value format as the field builds it: parsed for its type with the given
// configured separators ("" = regional) under Czech settings with a plain space.
struct Field
{
    ParsedFormat pf;
    ValueFormat vf;

    Field(int type, QString format, const QString &des = {}, const QString &tis = {},
          const QString &dat = {})
    {
        const RegionalSettings rs = czechSpace();
        const ConfiguredSeparators seps {separatorFromText(des), separatorFromText(tis),
                                         separatorFromText(dat)};
        if (type == itNum)
            parseNumFormat(pf, format, rs, seps);
        else if (type == itDate)
            parseDateFormat(pf, format, 0, rs, seps);
        else if (type == itBool)
            parseBoolFormat(pf.boolFormat, format);
        vf = {type, format, &pf, pf.boolFormat, 0, atLeftRight, rs};
    }
};

} // namespace

class TestConversion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void displayAndBack_data()
    {
        columns<int, QString, QString, QString, QString, QString, QString, QString>(
            {"type", "format", "des", "tis", "dat", "value", "shown", "back"});
        const int n = itNum, d = itDate, b = itBool;
        // The configured separators are the regional ones swapped: the placeholder pass
        // keeps them apart, and reading back gives the regional form.
        row("swapped separators", n, "#,##0.00", ".", ",", none, "1234,5", "1,234.50", "1 234,50");
        row("no number stays", n, "0.00", none, none, none, "12abc", "12abc", "12abc");
        const QString xmas = u"24.12.2005"_s;
        row("date, own separator", d, none, none, none, "-", xmas, "24-12-2005", xmas);
        row("date, month first", d, "mm/dd/yyyy", none, none, none, xmas, "12.24.2005", xmas);
        row("bool true by letter", b, "ANO;NE;N", none, none, none, "Yes", "ANO", "-1");
        row("bool numeric zero", b, "ANO;NE;B", none, none, none, "0", "NE", "False");
    }
    void displayAndBack()
    {
        Field f(VFETCH(int, type), VFETCH(QString, format), VFETCH(QString, des),
                VFETCH(QString, tis), VFETCH(QString, dat));
        const QString shown = displayText(VFETCH(QString, value), f.vf);
        QTEST(shown, "shown");
        QTEST(textToValue(shown, f.vf), "back");
    }

    void sqlAndTyped_data()
    {
        // typed: of textToValue(text)
        columns<int, QString, QString, QString, bool, QVariant>(
            {"type", "format", "text", "sql", "nullable", "typed"});
        const QVariant null = QVariant::fromValue(nullptr);
        const int a = itAlfaNum, n = itNum, d = itDate, b = itBool;
        row("empty text, nullable", a, none, none, none, true, null);
        row("empty text", a, none, none, none, false, QVariant(none));
        row("empty number, nullable", n, none, none, none, true, null);
        row("empty date", d, none, "  .  .    ", none, false, QVariant());
        row("impossible date", d, none, "31.02.2005", none, false, QVariant());
        row("bool B", b, "ANO;NE;B", "ANO", "True", false, QVariant(true));
        row("bool A", b, "ANO;NE;A", "ANO", "A", false, QVariant("A"));
    }
    void sqlAndTyped()
    {
        Field f(VFETCH(int, type), VFETCH(QString, format));
        QFETCH(QString, text);
        QTEST(sqlValue(text, f.vf), "sql");
        const QVariant got = typedValue(textToValue(text, f.vf), f.vf, VFETCH(bool, nullable));
        QFETCH(QVariant, typed);
        QCOMPARE(got.metaType(), typed.metaType());
        QCOMPARE(got, typed);
    }

    void completeDate_data()
    {
        columns<QString, QString, QString>({"format", "text", "completed"}); // "": cannot be
        row("29 is 2029", none, " 1. 2.29  ", "01.02.2029");
        row("30 is 1930", none, " 1. 2.30  ", "01.02.1930");
        row("year 100 kept", none, "01.01. 100", "01.01.0100");
        row("day overflow carries", none, "31.04.2005", "01.05.2005");
        row("two-digit year part", "dd.mm.yy", "24.12.05", "24.12.05");
        row("garbage cannot be completed", none, "2x.12.2005", none);
    }
    void completeDate()
    {
        Field f(itDate, VFETCH(QString, format));
        const auto done = detail::completeDate(VFETCH(QString, text), f.vf, QDate(2026, 5, 17));
        QTEST(done.value_or(QString()), "completed");
    }

    void wholeValues_data()
    {
        columns<int, QString, QString, QString>({"type", "format", "pasted", "text"});
        row("grouped number, zeros kept", int(itNum), none, " 1 234,50 ", "1234,50");
        row("trailing sign to the front", int(itNum), none, "12,5-", "-12,5");
        row("exponent written out", int(itNum), none, "1,5e3", "1500");
        row("large exponent in full", int(itNum), none, "1e20", "100000000000000000000");
        row("small exponent in full", int(itNum), none, "-1,5e-7", "-0,00000015");
        row("no number", int(itNum), none, "12.5", none);
        row("impossible date", int(itDate), none, "31.02.2005", none);
        row("text is never whole", int(itAlfaNum), none, "abc", none);
    }
    void wholeValues()
    {
        Field f(VFETCH(int, type), VFETCH(QString, format));
        QTEST(wholeValueText(f.vf.type, VFETCH(QString, pasted), f.pf, f.vf.regional), "text");
    }

    void loneSigns()
    {
        const QStringList lone {"-", "+", ",", "-,", " +, "}, notLone {"", "-1", ",5", "--", "+-"};
        for (const QString &t : lone + notLone)
            QVERIFY2(isLoneNumericSign(t, u',') == lone.contains(t), qPrintable(t));
    }
};

VELMORA_TEST(TestConversion)
#include "tst_conversion.moc"
