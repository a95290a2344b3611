// The column properties of a list, the column description (ListFormatString), the
// hidden columns (HideCol) and the leading-number rule both of them read numbers by.

#include "common/DataRows.h"
#include "common/TestRegistry.h"
#include "lookup/ListColumns.h"
#include "lookup/ListFormat.h"

#include <QtCore/QStringList>

#include <cmath>
#include <limits>
#include <stdexcept>

using namespace velmora;
using namespace velmora::detail;
using velmora::test::columns;
using velmora::test::row;
using namespace Qt::StringLiterals;

namespace {

RegionalSettings czechSpace()
{
    return RegionalSettings::czech(QLatin1Char(' '));
}

// The columns 0..upperBound as "type:format|type:format", types as letters.
QString describe(const ListColumns &c)
{
    QStringList parts;
    for (int i = 0; i <= c.upperBound(); ++i)
        parts << QChar(c.dataType(i)) + u':' + c.formatString(i);
    return parts.join(u'|');
}

QString hiddenText(const QList<bool> &hidden)
{
    QString out;
    for (bool h : hidden)
        out += h ? u'1' : u'0';
    return out;
}

} // namespace

class TestListFormat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void columnDefaultsAndGrowth()
    {
        ListColumns c;
        QVERIFY(c.isEmpty());
        QCOMPARE(c.upperBound(), -1);
        QCOMPARE(c.dataType(3), int(itAlfaNum));
        QCOMPARE(c.length(3), 0);

        c.setLength(2, 40);
        QVERIFY(!c.isEmpty());
        QCOMPARE(c.upperBound(), 2);
        QCOMPARE(c.dataType(0), int(itAlfaNum)); // a column never stored reads as "A"
        c.setFormatString(4, u"0.00"_s); // grows, keeping what is there
        QCOMPARE(c.upperBound(), 4);
        QCOMPARE(c.length(2), 40);
        QCOMPARE(c.formatString(9), QString()); // beyond the array: the default

        c.setUpperBound(1); // every column back to the defaults
        QCOMPARE(c.upperBound(), 1);
        QCOMPARE(c.length(0), 0);
        QCOMPARE(c.formatString(4), QString());
        c.setUpperBound(-1);
        QVERIFY(c.isEmpty());
    }

    void columnTypeCodes_data()
    {
        columns<int, int>({"code", "reads"});
        row("B", 66, 66);
        row("zero", 0, 65);
        row("lower-case n", 110, 65);
        row("N beyond 16 bits", 78 + 65536, 65);
    }
    void columnTypeCodes()
    {
        ListColumns c;
        c.setDataType(1, VFETCH(int, code));
        QCOMPARE(c.dataType(1), VFETCH(int, reads));
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

    void boolFormatBeyondEntriesIsDefault()
    {
        ListColumns c;
        const BoolFormat bf = c.boolFormat(3);
        QCOMPARE(bf.trueText, u"ANO"_s);
        QCOMPARE(bf.falseText, u"NE"_s);
        QCOMPARE(bf.sqlType, u'A');
    }

    void listFormat_data()
    {
        columns<QString, int, int, QString, QString, int>(
            {"text", "textCol", "inputType", "formatStr", "columns", "boolFormats"});
        // Every row parses over three columns sized first, as a three-column source gives.
        row("empty: only the text column changes", "", 1, int(itNum), "#,##0.00",
            "A:|N:#,##0.00|A:", 0);
        row("text column takes the field's own format", "N#,##0|A|D", 1, int(itAlfaNum), ">",
            "N:#,##0|A:>|D:", 0);
        row("unknown letter is A, rest is the format", "X123", 2, int(itAlfaNum), "",
            "A:123|A:|A:", 0);
        row("lower-case letter is no type", "n0.0|d", 2, int(itAlfaNum), "", "A:0.0|A:|A:", 0);
        row("two B columns number their formats", "B|BYes;No;N", 2, int(itAlfaNum), "",
            "B:0|B:1|A:", 2);
        row("B over the text column still takes an entry", "B|B", 0, int(itNum), "0.00",
            "N:0.00|B:1|A:", 2);
        row("empty part keeps the defaults", "|D|N0", 0, int(itAlfaNum), "", "A:|D:|N:0", 0);
        row("text column beyond the parts grows them", "N", 4, int(itDate), "dd.mm.yyyy",
            "N:|A:|A:|A:|D:dd.mm.yyyy", 0);
        row("letter outside the BMP is one character", "\U0001F600x|N", 2, int(itAlfaNum), "",
            "A:x|N:|A:", 0);
        row("negative text column names no column", "N|D", -1, int(itAlfaNum), ">", "N:|D:|A:", 0);
    }
    void listFormat()
    {
        ListColumns c;
        c.setUpperBound(2);
        c.appendBoolFormat({}); // left over from an earlier parse: starts again
        ListFieldSettings s;
        s.textCol = VFETCH(int, textCol);
        s.valueCol = 0;
        s.inputType = VFETCH(int, inputType);
        s.formatStr = VFETCH(QString, formatStr);
        s.regional = czechSpace();
        ParsedFormat pf;
        QCOMPARE(parseListFormat(VFETCH(QString, text), s, c, pf), 0);
        QCOMPARE(describe(c), VFETCH(QString, columns));
        QCOMPARE(c.boolFormatCount(), VFETCH(int, boolFormats));
    }

    // A date value column lays out slot 1; the field's own layout and, for a date
    // field, its empty-date text stay.
    void dateValueColumn_data()
    {
        columns<QString, int, int, int, int, QString>(
            {"text", "inputType", "message", "monthStart", "yearEnd", "emptyDate"});
        row("month first, alphanumeric field", "N|Dmm/dd/yyyy", int(itAlfaNum), 0, 1, 10,
            "  .  .    ");
        row("empty format reads as the default", "N|D", int(itAlfaNum), 0, 4, 10, "  .  .    ");
        row("date field keeps its empty-date text", "N|Dyyyy-mm-dd", int(itDate), 0, 6, 4, "OWN");
        row("interleaved parts fall back", "N|Dddmmdd", int(itAlfaNum), 5, 4, 10, "  .  .    ");
    }
    void dateValueColumn()
    {
        ListColumns c;
        ListFieldSettings s;
        s.textCol = 0;
        s.valueCol = 1;
        s.inputType = VFETCH(int, inputType);
        s.regional = czechSpace();
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
        row("empty", "", 2, "000");
        row("empty item skipped", "0;;2", 2, "101");
        // With three columns four items are read; the fourth still counts.
        row("empty items count: fourth read", ";;;2", 2, "001");
        row("empty items count: fifth not read", ";;;;2", 2, "000");
        row("leading number", "2x", 2, "001");
        row("halves round to even", "0.5;1.5;2.5", 3, "1010");
        row("no number is column 0", "x", 1, "10");
    }
    void hideCol()
    {
        QCOMPARE(hiddenText(parseHideCol(VFETCH(QString, text), VFETCH(int, lastIndex))),
                 VFETCH(QString, hidden));
    }

    void leadingNumber_data()
    {
        columns<QString, double>({"text", "value"});
        row("digits then text", "2x", 2.0);
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
