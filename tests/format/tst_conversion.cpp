// Conversions between stored text, display text, SQL literal and typed value.

#include "common/TestRegistry.h"
#include "format/FormatParser.h"
#include "format/ValueConversion.h"

#include <QtTest/QTest>

using namespace velmora;
using namespace velmora::detail;

namespace {

// A field's value format as the field builds it: parsed for its type with the given
// configured separators ("" = regional) under Czech settings with a plain space.
struct Field
{
    ParsedFormat pf;
    ValueFormat vf;

    Field(int type, QString format, const QString &des = QString(), const QString &tis = QString(),
          const QString &dat = QString(),
          RegionalSettings rs = RegionalSettings::czech(QLatin1Char(' ')))
    {
        const ConfiguredSeparators seps {separatorFromText(des), separatorFromText(tis),
                                         separatorFromText(dat)};
        if (type == itNum)
            parseNumFormat(pf, format, rs, seps);
        else if (type == itDate)
            parseDateFormat(pf, format, 0, rs, seps);
        else if (type == itBool)
            parseBoolFormat(pf.boolFormat, format);
        vf.type = type;
        vf.format = format;
        vf.parsed = &pf;
        vf.boolFormat = pf.boolFormat;
        vf.regional = rs;
    }
};

} // namespace

class TestConversion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void displayAndBack_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("des");
        QTest::addColumn<QString>("tis");
        QTest::addColumn<QString>("dat");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("back"); // textToValue of the shown text

        QTest::newRow("first letter upper")
            << int(itAlfaNum) << "1>"
            << ""
            << ""
            << "" << QStringLiteral("nOVÁK") << QStringLiteral("Novák") << QStringLiteral("Novák");
        QTest::newRow("upper pattern")
            << int(itAlfaNum) << ">"
            << ""
            << ""
            << "" << QStringLiteral("žluť") << QStringLiteral("ŽLUŤ") << QStringLiteral("ŽLUŤ");
        QTest::newRow("number, regional separators") << int(itNum) << "#,##0.00"
                                                     << ""
                                                     << ""
                                                     << ""
                                                     << "1234,5"
                                                     << "1 234,50"
                                                     << "1 234,50";
        // The configured separators are the regional ones swapped: the placeholder pass
        // keeps them apart, and reading back gives the regional form.
        QTest::newRow("number, swapped separators") << int(itNum) << "#,##0.00"
                                                    << "."
                                                    << ","
                                                    << ""
                                                    << "1234,5"
                                                    << "1,234.50"
                                                    << "1 234,50";
        QTest::newRow("number, empty format") << int(itNum) << ""
                                              << ""
                                              << ""
                                              << ""
                                              << "-0,5"
                                              << "-0,5"
                                              << "-0,5";
        QTest::newRow("number that is no number stays") << int(itNum) << "0.00"
                                                        << ""
                                                        << ""
                                                        << ""
                                                        << "12abc"
                                                        << "12abc"
                                                        << "12abc";
        QTest::newRow("date, own separator") << int(itDate) << ""
                                             << ""
                                             << ""
                                             << "-"
                                             << "24.12.2005"
                                             << "24-12-2005"
                                             << "24.12.2005";
        QTest::newRow("date, month first") << int(itDate) << "mm/dd/yyyy"
                                           << ""
                                           << ""
                                           << ""
                                           << "24.12.2005"
                                           << "12.24.2005"
                                           << "24.12.2005";
        QTest::newRow("empty date") << int(itDate) << ""
                                    << ""
                                    << ""
                                    << ""
                                    << ""
                                    << "  .  .    "
                                    << "";
        QTest::newRow("bool true by letter") << int(itBool) << "ANO;NE;N"
                                             << ""
                                             << ""
                                             << ""
                                             << "Yes"
                                             << "ANO"
                                             << "-1";
        QTest::newRow("bool numeric zero") << int(itBool) << "ANO;NE;B"
                                           << ""
                                           << ""
                                           << ""
                                           << "0"
                                           << "NE"
                                           << "False";
        QTest::newRow("unknown type leaves the value") << 5 << "##"
                                                       << ""
                                                       << ""
                                                       << ""
                                                       << " x "
                                                       << " x "
                                                       << " x ";
    }
    void displayAndBack()
    {
        Field f(VFETCH(int, type), VFETCH(QString, format), VFETCH(QString, des),
                VFETCH(QString, tis), VFETCH(QString, dat));
        const QString shown = displayText(VFETCH(QString, value), f.vf);
        QCOMPARE(shown, VFETCH(QString, shown));
        QCOMPARE(textToValue(shown, f.vf), VFETCH(QString, back));
    }

    void sqlAndTyped_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("text"); // the edited text
        QTest::addColumn<QString>("sql");
        QTest::addColumn<bool>("nullable");
        QTest::addColumn<QVariant>("typed"); // of textToValue(text)

        const QVariant null = QVariant::fromValue(nullptr);
        QTest::newRow("apostrophe doubled")
            << int(itAlfaNum) << ""
            << "O'Brien"
            << "O''Brien" << false << QVariant(QStringLiteral("O'Brien"));
        QTest::newRow("empty text, nullable") << int(itAlfaNum) << ""
                                              << ""
                                              << "" << true << null;
        QTest::newRow("empty text") << int(itAlfaNum) << ""
                                    << ""
                                    << "" << false << QVariant(QString());
        QTest::newRow("number with point") << int(itNum) << "0.00"
                                           << "-1234,5"
                                           << "-1234.5" << false << QVariant(-1234.5);
        QTest::newRow("empty number gives 0") << int(itNum) << ""
                                              << "  "
                                              << "" << false << QVariant::fromValue(qint16(0));
        QTest::newRow("empty number, nullable") << int(itNum) << ""
                                                << ""
                                                << "" << true << null;
        QTest::newRow("date as mm/dd/yyyy") << int(itDate) << ""
                                            << "05.03.2005"
                                            << "03/05/2005" << true << QVariant(QDate(2005, 3, 5));
        QTest::newRow("empty date") << int(itDate) << ""
                                    << "  .  .    "
                                    << "" << false << QVariant();
        QTest::newRow("empty date, nullable") << int(itDate) << ""
                                              << "  .  .    "
                                              << "" << true << null;
        QTest::newRow("bool B") << int(itBool) << "ANO;NE;B"
                                << "ANO"
                                << "True" << false << QVariant(true);
        QTest::newRow("bool N") << int(itBool) << "ANO;NE;N"
                                << "NE"
                                << "0" << false << QVariant(0.0);
        QTest::newRow("bool A") << int(itBool) << "ANO;NE;A"
                                << "ANO"
                                << "A" << false << QVariant(QStringLiteral("A"));
        QTest::newRow("bool text not of the format") << int(itBool) << "ANO;NE;A"
                                                     << "JA"
                                                     << "" << false << QVariant();
    }
    void sqlAndTyped()
    {
        Field f(VFETCH(int, type), VFETCH(QString, format));
        QFETCH(QString, text);
        QCOMPARE(sqlValue(text, f.vf), VFETCH(QString, sql));
        const QVariant got = typedValue(textToValue(text, f.vf), f.vf, VFETCH(bool, nullable));
        QFETCH(QVariant, typed);
        QCOMPARE(got.metaType(), typed.metaType());
        QCOMPARE(got, typed);
    }

    void completeDate_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("completed"); // "" = cannot be completed

        QTest::newRow("short year widened to 20xx") << ""
                                                    << " 1. 2.5   "
                                                    << "01.02.2005";
        QTest::newRow("45 is 1945") << ""
                                    << " 1. 2.45  "
                                    << "01.02.1945";
        QTest::newRow("29 is 2029") << ""
                                    << " 1. 2.29  "
                                    << "01.02.2029";
        QTest::newRow("30 is 1930") << ""
                                    << " 1. 2.30  "
                                    << "01.02.1930";
        QTest::newRow("blank year is this year") << ""
                                                 << "24.12.    "
                                                 << "24.12.2026";
        QTest::newRow("blank month is this month") << ""
                                                   << "24.  .2005"
                                                   << "24.05.2005";
        QTest::newRow("year 100 kept") << ""
                                       << "01.01. 100"
                                       << "01.01.0100";
        QTest::newRow("day overflow carries") << ""
                                              << "31.04.2005"
                                              << "01.05.2005";
        QTest::newRow("two-digit year part") << "dd.mm.yy"
                                             << "24.12.05"
                                             << "24.12.05";
        QTest::newRow("garbage cannot be completed") << ""
                                                     << "2x.12.2005"
                                                     << "";
    }
    void completeDate()
    {
        Field f(itDate, VFETCH(QString, format));
        const auto done = detail::completeDate(VFETCH(QString, text), f.vf, QDate(2026, 5, 17));
        QFETCH(QString, completed);
        QCOMPARE(done.value_or(QString()), completed);
    }

    void wholeValues_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("pasted");
        QTest::addColumn<QString>("text");
        QTest::newRow("grouped number, zeros kept") << int(itNum) << ""
                                                    << " 1 234,50 "
                                                    << "1234,50";
        QTest::newRow("trailing sign to the front") << int(itNum) << ""
                                                    << "12,5-"
                                                    << "-12,5";
        QTest::newRow("exponent written out") << int(itNum) << ""
                                              << "1,5e3"
                                              << "1500";
        QTest::newRow("large exponent written out in full") << int(itNum) << ""
                                                            << "1e20"
                                                            << "100000000000000000000";
        QTest::newRow("small exponent written out in full") << int(itNum) << ""
                                                            << "-1,5e-7"
                                                            << "-0,00000015";
        QTest::newRow("no number") << int(itNum) << ""
                                   << "12.5" << QString();
        QTest::newRow("iso date into a month-first layout") << int(itDate) << "mm/dd/yyyy"
                                                            << "2005-12-24"
                                                            << "12.24.2005";
        QTest::newRow("impossible date") << int(itDate) << ""
                                         << "31.02.2005" << QString();
        QTest::newRow("text is never whole") << int(itAlfaNum) << ""
                                             << "abc" << QString();
    }
    void wholeValues()
    {
        Field f(VFETCH(int, type), VFETCH(QString, format));
        QCOMPARE(wholeValueText(f.vf.type, VFETCH(QString, pasted), f.pf, f.vf.regional),
                 VFETCH(QString, text));
    }

    void loneSigns()
    {
        for (const char *t : {"-", "+", ",", "-,", " +, "})
            QVERIFY2(isLoneNumericSign(QString::fromLatin1(t), QLatin1Char(',')), t);
        for (const char *t : {"", "-1", ",5", "--", "+-"})
            QVERIFY2(!isLoneNumericSign(QString::fromLatin1(t), QLatin1Char(',')), t);
    }
};

VELMORA_TEST(TestConversion)
#include "tst_conversion.moc"
