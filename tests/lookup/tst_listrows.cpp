// The row store of a list and the search for a value's row: the indexed search must
// answer exactly as the row-by-row one, on fixed cases and on random rows.

#include "common/DataRows.h"
#include "common/TestRegistry.h"
#include "lookup/ListRows.h"

#include <algorithm>
#include <random>

using namespace velmora::detail;
using namespace velmora::test;
using namespace Qt::StringLiterals;

namespace {

// A short random text of pieces the comparison treats specially: case pairs, Czech
// letters, letters whose upper case is longer or ASCII, blanks that are no spaces.
QString randomText(std::mt19937 &random)
{
    static const QStringList pieces
        = {u"a"_s,  u"A"_s,  u"b"_s,      u"č"_s, u"Č"_s, u"ř"_s,  u"Ř"_s,      u"ß"_s,
           u"SS"_s, u"ss"_s, u"\u0131"_s, u"I"_s, u"i"_s, u"\t"_s, u"\u00a0"_s, u"7"_s};
    QString s(int(random() % 3), u' ');
    for (int n = int(random() % 4); n > 0; --n)
        s += pieces.at(int(random() % pieces.size()));
    return s + QString(int(random() % 3), u' ');
}

} // namespace

class TestListRows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsKeepTheirColumnCount()
    {
        ListRows rows(2);
        rows.appendRow({u"a", u"b", u"c"}); // the third cell is dropped
        rows.prependRow({u"<NOVÝ>"}); // the second cell stays empty
        QCOMPARE(rows.cell(0, 0), u"<NOVÝ>");
        QVERIFY(rows.cell(0, 1).isEmpty());
        QCOMPARE(rows.cell(1, 1), u"b");
        for (auto [r, c] : {std::pair {1, 2}, {2, 0}, {-1, 0}}) // no such cell
            QVERIFY(rows.cell(r, c).isEmpty());
        ListRows moved = std::move(rows);
        QCOMPARE(moved.cell(1, 0), u"a");
        rows.setColumnCount(1); // a moved-from table is empty and usable
        rows.prependRow({u"again"});
        QCOMPARE(rows.cell(0, 0), u"again");
    }

    void findRow_data()
    {
        columns<QString, QString, int, int>({"cells", "text", "firstRow", "row"});
        row("blanks and case do not count", "abcd|  ABC  ", "abc", 0, 1);
        row("upper row wins", "x|B|b", " b", 0, 1);
        row("from a row on", "a|b|a", "A", 1, 2);
        row("Czech letters", "cr|ČŘ", "čř", 0, 1);
        row("upper case longer than the letter", "STRASSE", "straße", 0, 0);
        row("only plain blanks are trimmed", "\tabc|abc\u00a0|abc", "abc", 0, 2);
        row("first row past the end", "a", "a", 5, -1);
    }
    void findRow()
    {
        ListRows rows(1);
        for (const QString &c : VFETCH(QString, cells).split(u'|'))
            rows.appendRow({QStringView(c)});
        const QString text = VFETCH(QString, text);
        const int firstRow = VFETCH(int, firstRow);
        QCOMPARE(rows.findRowScan(0, text, firstRow), VFETCH(int, row));
        QCOMPARE(rows.findRow(0, text, firstRow), VFETCH(int, row));
        QCOMPARE(rows.findRow(1, text, firstRow), -1); // no such column
    }

    // Every change drops the index: rows added at the end and in front are found.
    void indexAnswersAsTheScan()
    {
        std::mt19937 random(20260517u);
        ListRows rows(2);
        for (int i = 0; i < 20000; ++i) {
            const QString a = randomText(random), b = randomText(random);
            rows.appendRow({QStringView(a), QStringView(b)});
        }
        for (int round = 0; round < 3; ++round) {
            if (round == 1)
                rows.appendRow({u" ß ", u"ıČ"});
            if (round == 2) {
                rows.prependRow({u"  čř  "});
                QCOMPARE(rows.findRow(0, u"ČŘ"), 0);
            }
            for (int q = 0; q < 2000; ++q) {
                const QString text = randomText(random);
                const int column = int(random() % 2);
                const int from = int(random() % 4) == 0 ? int(random() % rows.rowCount()) : 0;
                const QString where = u"\"%1\" in %2 from %3"_s.arg(text).arg(column).arg(from);
                QVERIFY2(rows.findRow(column, text, from) == rows.findRowScan(column, text, from),
                         qPrintable(where));
            }
        }
    }
};

VELMORA_TEST(TestListRows)
#include "tst_listrows.moc"
