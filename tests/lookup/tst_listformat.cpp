// The column properties of a list, the column description (ListFormatString), the
// hidden columns (HideCol) and the leading-number rule both of them read numbers by.
// The list fuzz checks the same rules on random texts; these are the cases it cannot
// tell from the code alone.

#include "common/DataRows.h"
#include "common/TestRegistry.h"
#include "lookup/ListColumns.h"
#include "lookup/ListFormat.h"

#include <QtCore/QStringList>

#include <limits>
#include <stdexcept>

using namespace velmora;
using namespace velmora::detail;
using velmora::test::columns;
using velmora::test::row;
using namespace Qt::StringLiterals;

class TestListFormat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void columnDefaultsAndGrowth()
    {
        ListColumns c;
        QVERIFY(c.isEmpty());
        QCOMPARE(c.dataType(3), int(itAlfaNum));
        QCOMPARE(c.boolFormat(3).trueText, u"ANO"_s); // no entry: the default format
        c.setLength(2, 40);
        QCOMPARE(c.upperBound(), 2);
        QCOMPARE(c.dataType(0), int(itAlfaNum)); // a column never stored reads as "A"
        c.setFormatString(4, u"0.00"_s); // grows, keeping what is there
        QCOMPARE(c.upperBound(), 4);
        QCOMPARE(c.length(2), 40);
        c.setDataType(1, 78 + 65536); // no type code: "A"
        QCOMPARE(c.dataType(1), int(itAlfaNum));
        c.setUpperBound(1); // every column back to the defaults
        QCOMPARE(c.length(0), 0);
        QCOMPARE(c.formatString(4), QString());
        c.setUpperBound(-1);
        QVERIFY(c.isEmpty());
    }

    void badColumnIndexThrows_data()
    {
        columns<int>({"index"});
        row("negative", -2); // -1 is an upper bound that empties the columns
        row("beyond 16 bits", ListColumns::MaxColumn + 1);
    }
    void badColumnIndexThrows()
    {
        const int index = VFETCH(int, index);
        ListColumns c;
        QVERIFY_THROWS_EXCEPTION(std::out_of_range, c.formatString(index));
        QVERIFY_THROWS_EXCEPTION(std::out_of_range, c.setLength(index, 1));
        QVERIFY_THROWS_EXCEPTION(std::out_of_range, c.setUpperBound(index));
        QVERIFY(c.isEmpty()); // a refused store changes nothing
    }

    void listFormat_data()
    {
        // Parsed over three columns, as a three-column source sizes them.
        columns<QString, int, int, QString, QString>(
            {"text", "textCol", "inputType", "formatStr", "columns"});
        row("empty part keeps the defaults", "|D|N0", 0, int(itAlfaNum), "", "A:|D:|N:0");
        row("text column takes the field's own format", "N#,##0|A|D", 1, int(itAlfaNum), ">",
            "N:#,##0|A:>|D:");
        row("unknown letter is A, rest is the format", "X123", 2, int(itAlfaNum), "",
            "A:123|A:|A:");
        row("two B columns number their formats", "B|BYes;No;N", 2, int(itAlfaNum), "",
            "B:0|B:1|A:");
    }
    void listFormat()
    {
        ListColumns c;
        c.setUpperBound(2);
        c.appendBoolFormat({}); // left over from an earlier parse: starts again
        ListFieldSettings s;
        s.textCol = VFETCH(int, textCol);
        s.inputType = VFETCH(int, inputType);
        s.formatStr = VFETCH(QString, formatStr);
        s.regional = RegionalSettings::czech(QLatin1Char(' '));
        ParsedFormat pf;
        QCOMPARE(parseListFormat(VFETCH(QString, text), s, c, pf), 0);
        QStringList got;
        for (int i = 0; i <= c.upperBound(); ++i)
            got << QChar(c.dataType(i)) + u':' + c.formatString(i);
        QCOMPARE(got.join(u'|'), VFETCH(QString, columns));
        QCOMPARE(c.boolFormatCount(), int(VFETCH(QString, text).count(u'B')));
    }

    // A date value column lays out slot 1; the field's own layout and, for a date
    // field, its empty-date text stay.
    void dateValueColumn_data()
    {
        columns<QString, int, int, int, int, QString>(
            {"text", "inputType", "message", "monthStart", "yearEnd", "emptyDate"});
        row("month first", "N|Dmm/dd/yyyy", int(itAlfaNum), 0, 1, 10, "  .  .    ");
        row("empty format reads as the default", "N|D", int(itAlfaNum), 0, 4, 10, "  .  .    ");
        row("date field keeps its empty-date text", "N|Dyyyy-mm-dd", int(itDate), 0, 6, 4, "OWN");
        row("interleaved parts fall back", "N|Dddmmdd", int(itAlfaNum), 5, 4, 10, "  .  .    ");
    }
    void dateValueColumn()
    {
        ListColumns c;
        ListFieldSettings s;
        s.valueCol = 1;
        s.inputType = VFETCH(int, inputType);
        s.regional = RegionalSettings::czech(QLatin1Char(' '));
        ParsedFormat pf;
        pf.emptyDateText = u"OWN"_s;
        pf.dateLayout[0] = DateLayout {1, 2, 3, 4, 5, 6};
        const QString text = VFETCH(QString, text);
        QCOMPARE(parseListFormat(text, s, c, pf), VFETCH(int, message));
        QCOMPARE(int(pf.dateLayout[1].monthStart), VFETCH(int, monthStart));
        QCOMPARE(int(pf.dateLayout[1].yearEnd), VFETCH(int, yearEnd));
        QCOMPARE(pf.dateLayout[0], (DateLayout {1, 2, 3, 4, 5, 6}));
        QCOMPARE(pf.emptyDateText, VFETCH(QString, emptyDate));
        QCOMPARE(c.formatString(1), text.mid(3)); // the column keeps its format as written
    }

    void hideCol_data()
    {
        columns<QString, int, QString>({"text", "lastIndex", "hidden"});
        row("two items with blanks", "1; 3", 3, "0101");
        row("beyond the columns", "7", 2, "000");
        // With three columns four items are read; the fourth still counts.
        row("empty items count: fourth read", ";;;2", 2, "001");
        row("empty items count: fifth not read", ";;;;2", 2, "000");
        row("leading number", "2x", 2, "001");
        row("halves round to even", "0.5;1.5;2.5", 3, "1010");
        row("no number is column 0", "x", 1, "10");
    }
    void hideCol()
    {
        QString got;
        for (bool h : parseHideCol(VFETCH(QString, text), VFETCH(int, lastIndex)))
            got += h ? u'1' : u'0';
        QCOMPARE(got, VFETCH(QString, hidden));
    }

    void leadingNumber_data()
    {
        columns<QString, double>({"text", "value"});
        row("sign, point, exponent", "  -3.5e1z", -35.0);
        row("exponent without digits", "1e", 1.0);
        row("hexadecimal is 16-bit signed", "&HFFFF", -1.0);
        row("octal", "&O17", 15.0);
        row("too large", "1e400", std::numeric_limits<double>::infinity());
    }
    void leadingNumber()
    {
        QCOMPARE(velmora::detail::leadingNumber(VFETCH(QString, text)), VFETCH(double, value));
    }
};

VELMORA_TEST(TestListFormat)
#include "tst_listformat.moc"
