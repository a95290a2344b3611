// Format strings of the four input types and the resolution of the separators.

#include "common/TestPlatform.h"
#include "common/TestRegistry.h"
#include "format/FormatParser.h"

using namespace velmora;
using namespace velmora::detail;
using velmora::test::columns;
using velmora::test::czechSpace;
using velmora::test::row;
using namespace Qt::StringLiterals;

namespace {
const QString none;
}

class TestFormatParser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numericFormat_data()
    {
        columns<QString, QString, QString, int, int, int, QString>(
            {"format", "des", "tis", "integers", "decimals", "message", "formatAfter"});
        const auto kept = [](const char *name, const QString &format, int integers, int decimals) {
            row(name, format, none, none, integers, decimals, 0, format);
        };
        kept("widest section wins", "#,##0.00;-#,##0.0", 4, 2);
        kept("maxima from different sections", "###;#.####", 3, 4);
        kept("second point changes nothing", "9.99.9", 1, 3);
        kept("literal text is ignored", "Kč 0.0 \"x\"", 1, 1);
        kept("empty format has no places", none, 0, 0);
        row("clash of separators falls back", "#,##0.00", ",", ",", 10, 3, 3, none);
        row("decimal equal to regional thousands", "0.0", " ", none, 10, 3, 3, none);
    }
    void numericFormat()
    {
        QFETCH(QString, format);
        ParsedFormat pf;
        const ConfiguredSeparators seps {separatorFromText(VFETCH(QString, des)),
                                         separatorFromText(VFETCH(QString, tis)), QChar()};
        QTEST(parseNumFormat(pf, format, czechSpace(), seps), "message");
        QCOMPARE(int(pf.integerDigits), VFETCH(int, integers));
        QCOMPARE(int(pf.decimalDigits), VFETCH(int, decimals));
        QTEST(format, "formatAfter");
    }

    void separatorText_data()
    {
        columns<QString, QString>({"text", "stored"});
        row("empty means none", none, none);
        row("several characters keep the first", ".,;", ".");
        row("code-page letter", "ů", "ů");
        row("no-break space", "\u00a0", "\u00a0");
        row("outside the code page", "\u6f22", "?");
        row("outside the basic plane", "\U0001F600x", "?");
    }
    void separatorText()
    {
        QTEST(separatorToText(separatorFromText(VFETCH(QString, text))), "stored");
    }

    void alfaNumFormat_data()
    {
        columns<QString, int>({"format", "message"});
        for (const char *f : {"1>", "<<", "@@@-@@@", "&&&!", "Kč € @@"})
            row(f, f, 0);
        row("character outside the code page", "\u6f22@", 4);
        // The check is deliberately weak: "?" in the format lets any character pass.
        row("question mark lets it pass", "\u6f22?", 0);
        // One search per character took seconds on a format this long.
        row("long format with a question mark", QString(32760, QChar(0x6F22)) + u'?', 0);
    }
    void alfaNumFormat()
    {
        QFETCH(QString, format);
        const QString before = format;
        const int message = VFETCH(int, message);
        QCOMPARE(checkAlfaNumFormat(format), message);
        QCOMPARE(format, message ? QString() : before);
    }

    void dateFormat_data()
    {
        // layout: month, day, year, each start and end
        columns<QString, QString, QList<int>, QString, int, QString>(
            {"format", "dat", "layout", "emptyText", "message", "formatAfter"});
        const QString dmy = "dd/mm/yyyy";
        row("month first", "mm/dd/yyyy", none, QList<int> {1, 2, 4, 5, 7, 10}, "  .  .    ", 0,
            "mm/dd/yyyy");
        row("empty is the default", none, "-", QList<int> {4, 5, 1, 2, 7, 10}, "  -  -    ", 0,
            dmy);
        row("iso order, any separator", "yyyy-mm-dd", none, QList<int> {6, 7, 9, 10, 1, 4},
            "    .  .  ", 0, "yyyy-mm-dd");
        row("single letters keep end 0", "d.m.yy", none, QList<int> {3, 0, 1, 0, 5, 6}, " . .  ", 0,
            "d.m.yy");
        row("interleaved parts fall back", "ddmmdd", none, QList<int> {4, 5, 1, 2, 7, 10},
            "  .  .    ", 5, dmy);
        row("upper-case letters are literals", "DD/MM/YYYY", none, QList<int>(6, 0), "..........",
            0, "DD/MM/YYYY");
    }
    void dateFormat()
    {
        QFETCH(QString, format);
        ParsedFormat pf;
        const ConfiguredSeparators seps {QChar(), QChar(), separatorFromText(VFETCH(QString, dat))};
        QTEST(parseDateFormat(pf, format, 0, czechSpace(), seps), "message");
        const DateLayout &l = pf.dateLayout[0];
        QTEST((QList<int> {l.monthStart, l.monthEnd, l.dayStart, l.dayEnd, l.yearStart, l.yearEnd}),
              "layout");
        QTEST(pf.emptyDateText, "emptyText");
        QTEST(format, "formatAfter");
    }

    void boolFormat_data()
    {
        columns<QString, QString, QString, QString, QString>(
            {"format", "trueText", "falseText", "sqlType", "formatAfter"});
        row("default", none, "ANO", "NE", "A", "ANO;NE;A");
        row("two sections", "ANO;NE", "ANO", "NE", none, "ANO;NE");
        row("letter upper-cased", "Yes;No;n", "Yes", "No", "N", "Yes;No;n");
        row("empty false text", "X;;B", "X", none, "B", "X;;B");
        row("other letter kept", "+;-;Q", "+", "-", "Q", "+;-;Q");
    }
    void boolFormat()
    {
        QFETCH(QString, format);
        BoolFormat bf;
        parseBoolFormat(bf, format);
        QTEST(bf.trueText, "trueText");
        QTEST(bf.falseText, "falseText");
        QTEST(bf.sqlType ? QString(QChar(bf.sqlType)) : QString(), "sqlType");
        QTEST(format, "formatAfter");
    }

    void hugeFormatsDoNotCrash()
    {
        ParsedFormat pf;
        QString num(40000, u'#'), date(40000, u'd'), boolean(40000, u'x');
        QCOMPARE(parseNumFormat(pf, num, czechSpace(), {}), 0);
        parseDateFormat(pf, date, 0, czechSpace(), {});
        parseBoolFormat(pf.boolFormat, boolean);
        QCOMPARE(pf.integerDigits, 32767);
        QCOMPARE(pf.emptyDateText.size(), 32767);
        QCOMPARE(pf.boolFormat.trueText.size(), 32767);
    }
};

VELMORA_TEST(TestFormatParser)
#include "tst_formatparser.moc"
