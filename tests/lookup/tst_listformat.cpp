// The column properties of a list, its column description (ListFormatString) and hidden
// columns (HideCol): the cases the list fuzz cannot tell from the code alone.

#include "common/DataRows.h"
#include "common/TestRegistry.h"
#include "lookup/ListColumns.h"
#include "lookup/ListFormat.h"

#include <QtCore/QStringList>

#include <stdexcept>

using namespace velmora;
using namespace velmora::detail;
using namespace velmora::test;
using namespace Qt::StringLiterals;

class TestListFormat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void columnDefaultsAndGrowth()
    {
        ListColumns c;
        for (int bad : {-2, ListColumns::MaxColumn + 1}) { // -1 is an upper bound: no columns
            QVERIFY_THROWS_EXCEPTION(std::out_of_range, c.formatString(bad));
            QVERIFY_THROWS_EXCEPTION(std::out_of_range, c.setLength(bad, 1));
            QVERIFY_THROWS_EXCEPTION(std::out_of_range, c.setUpperBound(bad));
        }
        QVERIFY(c.isEmpty()); // a refused store changes nothing
        QCOMPARE(c.boolFormat(3).trueText, u"ANO"_s); // no entry: the default format
        c.setLength(2, 40);
        QCOMPARE(c.upperBound(), 2);
        QCOMPARE(c.dataType(0), int(itAlfaNum)); // a column never stored reads as "A"
        c.setFormatString(4, u"0.00"_s); // grows, keeping what is there
        QCOMPARE(c.upperBound(), 4);
        QCOMPARE(c.length(2), 40);
        c.setDataType(1, 78 + 65536); // no type code: "A"
        QCOMPARE(c.dataType(1), int(itAlfaNum));
        c.setUpperBound(2); // every column back to the defaults
        QCOMPARE(c.length(2), 0);
        QCOMPARE(c.formatString(4), QString());
        c.setUpperBound(-1);
        QVERIFY(c.isEmpty());
    }

    // Every parse runs over three columns, as a three-column source sizes them, with
    // column 1 as the value column and ">" as the field's format. "slot1": the message,
    // monthStart-yearEnd of date slot 1 and the empty-date text ("OWN" before the parse).
    void listFormat_data()
    {
        columns<QString, int, int, QString, QString>(
            {"text", "textCol", "inputType", "columns", "slot1"});
        row("empty part keeps the defaults", "|D|N0", 0, int(itAlfaNum), "A:>|D:|N:0",
            "0 4-10 [  .  .    ]");
        row("text column takes the field's format", "N#,##0|N|D", 1, int(itAlfaNum),
            "N:#,##0|A:>|D:", "0 0-0 [OWN]");
        row("unknown letter is A, rest is the format", "X123", 2, int(itAlfaNum), "A:123|A:|A:>",
            "0 0-0 [OWN]");
        row("two B columns number their formats", "B|BYes;No;N", 2, int(itAlfaNum), "B:0|B:1|A:>",
            "0 0-0 [OWN]");
        row("date value column lays out slot 1", "N|Dmm/dd/yyyy", 0, int(itAlfaNum),
            "A:>|D:mm/dd/yyyy|A:", "0 1-10 [  .  .    ]");
        row("date field keeps its empty-date text", "N|Dyyyy-mm-dd", 0, int(itDate),
            "D:>|D:yyyy-mm-dd|A:", "0 6-4 [OWN]");
        row("interleaved date parts fall back", "N|Dddmmdd", 0, int(itAlfaNum),
            "A:>|D:ddmmdd|A:", "5 4-10 [  .  .    ]");
    }
    void listFormat()
    {
        ListColumns c;
        c.setUpperBound(2);
        c.appendBoolFormat({}); // left over from an earlier parse: starts again
        const ListFieldSettings s {VFETCH(int, textCol),          1, VFETCH(int, inputType), u">"_s,
                                   RegionalSettings::czech(u' '), {}};
        ParsedFormat pf;
        pf.emptyDateText = u"OWN"_s;
        const int message = parseListFormat(VFETCH(QString, text), s, c, pf);
        QStringList got;
        for (int i = 0; i <= c.upperBound(); ++i)
            got << QChar(c.dataType(i)) + u':' + c.formatString(i);
        QCOMPARE(got.join(u'|'), VFETCH(QString, columns));
        QCOMPARE(c.boolFormatCount(), int(VFETCH(QString, text).count(u'B')));
        const DateLayout &d = pf.dateLayout[1];
        QCOMPARE(
            u"%1 %2-%3 [%4]"_s.arg(message).arg(d.monthStart).arg(d.yearEnd).arg(pf.emptyDateText),
            VFETCH(QString, slot1));
    }

    // An item names a column by the number it starts with (rounded half to even).
    void hideCol_data()
    {
        columns<QString, int, QString>({"text", "lastIndex", "hidden"});
        row("two items with blanks", "1; 3", 3, "0101");
        // With three columns four items are read; the fourth still counts.
        row("empty items count: fourth read", ";;;2", 2, "001");
        row("empty items count: fifth not read", ";;;;2", 2, "000");
        row("leading number", "2x", 2, "001");
        row("no number is column 0", "x", 1, "10");
        row("halves round to even", "0.5;1.5;2.5", 3, "1010");
        row("point and exponent", "0.25e1z;1e", 3, "0110");
        row("hexadecimal and octal", "&H2;&O3", 3, "0011");
        row("hexadecimal beyond the columns", "&HFFFF;&H1", 2, "010");
        row("too large", "1e400;2", 2, "001");
    }
    void hideCol()
    {
        QString got;
        for (bool h : parseHideCol(VFETCH(QString, text), VFETCH(int, lastIndex)))
            got += h ? u'1' : u'0';
        QCOMPARE(got, VFETCH(QString, hidden));
    }
};

VELMORA_TEST(TestListFormat)
#include "tst_listformat.moc"
