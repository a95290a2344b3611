// Format strings of the four input types and the resolution of the separators.

#include "common/TestRegistry.h"
#include "format/FormatParser.h"

#include <QtTest/QTest>

Q_DECLARE_METATYPE(velmora::RegionalSettings)

using namespace velmora;
using namespace velmora::detail;

namespace {
RegionalSettings czechSpace()
{
    return RegionalSettings::czech(QLatin1Char(' '));
}
} // namespace

class TestFormatParser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numericFormat_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("des");
        QTest::addColumn<QString>("tis");
        QTest::addColumn<int>("integers");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<int>("message");
        QTest::addColumn<QString>("formatAfter");

        QTest::newRow("widest section wins") << "#,##0.00;-#,##0.0"
                                             << ""
                                             << "" << 4 << 2 << 0 << "#,##0.00;-#,##0.0";
        QTest::newRow("maxima from different sections") << "###;#.####"
                                                        << ""
                                                        << "" << 3 << 4 << 0 << "###;#.####";
        QTest::newRow("second point changes nothing") << "9.99.9"
                                                      << ""
                                                      << "" << 1 << 3 << 0 << "9.99.9";
        QTest::newRow("literal text is ignored") << "Kč 0.0 \"x\""
                                                 << ""
                                                 << "" << 1 << 1 << 0 << "Kč 0.0 \"x\"";
        QTest::newRow("empty format has no places") << ""
                                                    << ""
                                                    << "" << 0 << 0 << 0 << "";
        QTest::newRow("clash of separators falls back") << "#,##0.00"
                                                        << ","
                                                        << "," << 10 << 3 << 3 << "";
        QTest::newRow("configured decimal equal to regional thousands") << "0.0"
                                                                        << " "
                                                                        << "" << 10 << 3 << 3 << "";
    }
    void numericFormat()
    {
        QFETCH(QString, format);
        QFETCH(QString, des);
        QFETCH(QString, tis);
        ParsedFormat pf;
        const ConfiguredSeparators seps {separatorFromText(des), separatorFromText(tis), QChar()};
        QCOMPARE(parseNumFormat(pf, format, czechSpace(), seps), VFETCH(int, message));
        QCOMPARE(pf.integerDigits, VFETCH(int, integers));
        QCOMPARE(pf.decimalDigits, VFETCH(int, decimals));
        QCOMPARE(format, VFETCH(QString, formatAfter));
    }

    void separators_data()
    {
        QTest::addColumn<RegionalSettings>("rs");
        QTest::addColumn<QString>("des");
        QTest::addColumn<QString>("tis");
        QTest::addColumn<QString>("dat");
        QTest::addColumn<QString>("expected"); // system dec, thou, date; effective dec, thou, date

        QTest::newRow("czech regional, none configured") << czechSpace() << ""
                                                         << ""
                                                         << ""
                                                         << ", ., .";
        QTest::newRow("czech with no-break space") << RegionalSettings::czech() << ""
                                                   << ""
                                                   << "" << QStringLiteral(",\u00a0.,\u00a0.");
        QTest::newRow("configured swap of the regional ones") << czechSpace() << "."
                                                              << ","
                                                              << "-"
                                                              << ", ..,-";
        QTest::newRow("english regional") << RegionalSettings::english() << ""
                                          << ""
                                          << ""
                                          << ".,/.,/";
        QTest::newRow("only the first character counts") << czechSpace() << ".;"
                                                         << "'x"
                                                         << "//"
                                                         << ", ..'/";
    }
    void separators()
    {
        QFETCH(RegionalSettings, rs);
        ParsedFormat pf;
        const ConfiguredSeparators seps {separatorFromText(VFETCH(QString, des)),
                                         separatorFromText(VFETCH(QString, tis)),
                                         separatorFromText(VFETCH(QString, dat))};
        readSystemNumberSeparators(pf, rs, seps);
        readSystemDateSeparator(pf, rs, seps);
        const QString got = QString(pf.systemDecimalSeparator) + pf.systemThousandsSeparator
            + pf.systemDateSeparator + pf.decimalSeparator + pf.thousandsSeparator
            + pf.dateSeparator;
        QCOMPARE(got, VFETCH(QString, expected));
    }

    void separatorText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("stored");
        QTest::newRow("empty means none") << ""
                                          << "";
        QTest::newRow("several characters keep the first") << ".,;"
                                                           << ".";
        QTest::newRow("code-page letter") << QStringLiteral("ů") << QStringLiteral("ů");
        QTest::newRow("no-break space") << QStringLiteral("\u00a0") << QStringLiteral("\u00a0");
        QTest::newRow("outside the code page") << QStringLiteral("\u6f22") << "?";
        QTest::newRow("outside the basic plane") << QStringLiteral("\U0001F600x") << "?";
    }
    void separatorText()
    {
        QCOMPARE(separatorToText(separatorFromText(VFETCH(QString, text))),
                 VFETCH(QString, stored));
    }

    void alfaNumFormat_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<int>("message");
        for (const char *f : {"1>", ">", "<<", "A>", "@@@-@@@", "&&&!"})
            QTest::newRow(f) << QString::fromLatin1(f) << 0;
        QTest::newRow("Czech letters and euro") << QStringLiteral("Kč € @@") << 0;
        QTest::newRow("character outside the code page") << QStringLiteral("\u6f22@") << 4;
        // The check is deliberately weak: "?" in the format lets any character pass.
        QTest::newRow("question mark lets it pass") << QStringLiteral("\u6f22?") << 0;
        // One search per character took seconds on a format this long.
        QTest::newRow("long format with a question mark")
            << QString(32760, QChar(0x6F22)) + QLatin1Char('?') << 0;
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
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("dat");
        QTest::addColumn<QList<int>>("layout"); // month, day, year: start and end
        QTest::addColumn<QString>("emptyText");
        QTest::addColumn<int>("message");
        QTest::addColumn<QString>("formatAfter");

        QTest::newRow("month first")
            << "mm/dd/yyyy"
            << "" << QList<int> {1, 2, 4, 5, 7, 10} << "  .  .    " << 0 << "mm/dd/yyyy";
        QTest::newRow("empty is the default")
            << ""
            << "-" << QList<int> {4, 5, 1, 2, 7, 10} << "  -  -    " << 0 << "dd/mm/yyyy";
        QTest::newRow("iso order, any separator")
            << "yyyy-mm-dd"
            << "" << QList<int> {6, 7, 9, 10, 1, 4} << "    .  .  " << 0 << "yyyy-mm-dd";
        QTest::newRow("single letters keep end 0")
            << "d.m.yy"
            << "" << QList<int> {3, 0, 1, 0, 5, 6} << " . .  " << 0 << "d.m.yy";
        QTest::newRow("interleaved parts fall back")
            << "ddmmdd"
            << "" << QList<int> {4, 5, 1, 2, 7, 10} << "  .  .    " << 5 << "dd/mm/yyyy";
        QTest::newRow("upper-case letters are literals")
            << "DD/MM/YYYY"
            << "" << QList<int> {0, 0, 0, 0, 0, 0} << ".........." << 0 << "DD/MM/YYYY";
    }
    void dateFormat()
    {
        QFETCH(QString, format);
        ParsedFormat pf;
        const ConfiguredSeparators seps {QChar(), QChar(), separatorFromText(VFETCH(QString, dat))};
        QCOMPARE(parseDateFormat(pf, format, 0, czechSpace(), seps), VFETCH(int, message));
        const DateLayout &l = pf.dateLayout[0];
        QCOMPARE(
            (QList<int> {l.monthStart, l.monthEnd, l.dayStart, l.dayEnd, l.yearStart, l.yearEnd}),
            VFETCH(QList<int>, layout));
        QCOMPARE(pf.emptyDateText, VFETCH(QString, emptyText));
        QCOMPARE(format, VFETCH(QString, formatAfter));
    }

    void boolFormat_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("trueText");
        QTest::addColumn<QString>("falseText");
        QTest::addColumn<QString>("sqlType");
        QTest::addColumn<QString>("formatAfter");
        QTest::newRow("default") << ""
                                 << "ANO"
                                 << "NE"
                                 << "A"
                                 << "ANO;NE;A";
        QTest::newRow("two sections") << "ANO;NE"
                                      << "ANO"
                                      << "NE"
                                      << ""
                                      << "ANO;NE";
        QTest::newRow("letter upper-cased") << "Yes;No;n"
                                            << "Yes"
                                            << "No"
                                            << "N"
                                            << "Yes;No;n";
        QTest::newRow("empty false text") << "X;;B"
                                          << "X"
                                          << ""
                                          << "B"
                                          << "X;;B";
        QTest::newRow("other letter kept") << "+;-;Q"
                                           << "+"
                                           << "-"
                                           << "Q"
                                           << "+;-;Q";
    }
    void boolFormat()
    {
        QFETCH(QString, format);
        BoolFormat bf;
        parseBoolFormat(bf, format);
        QCOMPARE(bf.trueText, VFETCH(QString, trueText));
        QCOMPARE(bf.falseText, VFETCH(QString, falseText));
        QCOMPARE(bf.sqlType ? QString(QChar(bf.sqlType)) : QString(), VFETCH(QString, sqlType));
        QCOMPARE(format, VFETCH(QString, formatAfter));
    }

    void hugeFormatsDoNotCrash()
    {
        ParsedFormat pf;
        QString num(40000, QLatin1Char('#'));
        QCOMPARE(parseNumFormat(pf, num, czechSpace(), {}), 0);
        QCOMPARE(pf.integerDigits, 32767);
        QString date = QString(40000, QLatin1Char('d'));
        parseDateFormat(pf, date, 0, czechSpace(), {});
        QCOMPARE(pf.emptyDateText.size(), 32767);
        QString boolean = QString(40000, QLatin1Char('x'));
        parseBoolFormat(pf.boolFormat, boolean);
        QCOMPARE(pf.boolFormat.trueText.size(), 32767);
    }
};

VELMORA_TEST(TestFormatParser)
#include "tst_formatparser.moc"
