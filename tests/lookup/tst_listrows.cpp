// The row store of a list and the search for a value's row: the indexed search must
// answer exactly as the row-by-row one, on fixed cases and on random rows.

#include "common/DataRows.h"
#include "common/TestRegistry.h"
#include "lookup/ListRows.h"

#include <QtCore/QElapsedTimer>

#include <algorithm>
#include <random>

using namespace velmora::detail;
using velmora::test::columns;
using velmora::test::row;
using namespace Qt::StringLiterals;

namespace {

#if defined(__SANITIZE_ADDRESS__) || !defined(NDEBUG)
constexpr bool Slow = true; // a sanitized or debug build: timings mean nothing
#else
constexpr bool Slow = false;
#endif

// A short random text from pieces that the comparison treats specially: case pairs,
// Czech letters, letters whose upper case is longer or ASCII, and blanks that are no
// plain spaces.
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
        rows.appendRow({u"x"}); // the second stays empty
        QCOMPARE(rows.cell(0, 1), u"b");
        QVERIFY(rows.cell(1, 1).isEmpty());
        QVERIFY(rows.cell(0, 2).isEmpty()); // no such column
        QVERIFY(rows.cell(-1, 0).isEmpty()); // no such row
        rows.prependRow({u"<NOVÝ>"});
        QCOMPARE(rows.rowCount(), 3);
        QCOMPARE(rows.cell(0, 0), u"<NOVÝ>");
        QVERIFY(rows.cell(0, 1).isEmpty());
        QCOMPARE(rows.cell(1, 1), u"b");
        QCOMPARE(rows.cell(2, 0), u"x");
        ListRows moved = std::move(rows);
        QCOMPARE(moved.cell(1, 0), u"a");
        rows.appendRow({u"again"}); // a moved-from table is usable (empty, no columns)
        QCOMPARE(rows.rowCount(), 1);
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
            const QString tail = randomText(random);
            if (round == 1)
                rows.appendRow({QStringView(tail), QStringView(tail)});
            if (round == 2) {
                rows.prependRow({u"  čř  "});
                QCOMPARE(rows.findRow(0, u"ČŘ"), 0);
            }
            for (int q = 0; q < 2000; ++q) {
                const QString text = randomText(random);
                const int column = int(random() % 2);
                const int from = int(random() % 4) == 0 ? int(random() % rows.rowCount()) : 0;
                const int scanned = rows.findRowScan(column, text, from);
                if (rows.findRow(column, text, from) != scanned)
                    QFAIL(qPrintable(
                        u"round %1, column %2, from %3: not row %4 for \"%5\""_s.arg(round)
                            .arg(column)
                            .arg(from)
                            .arg(scanned)
                            .arg(text)));
            }
        }
    }

    // The field looks a value up on every assignment: constant time at a million rows.
    void lookupTimeAtAMillionRows()
    {
        const int count = Slow ? 100000 : 1000000;
        ListRows rows(1);
        rows.reserve(count, qsizetype(count) * 12);
        for (int i = 0; i < count; ++i)
            rows.appendRow({QStringView(u"Item %1"_s.arg(i))});
        QCOMPARE(rows.findRow(0, u" ITEM 999 "), 999); // builds the index
        std::mt19937 random(7);
        std::vector<qint64> perLookup; // the median of 40 batches, against a busy machine
        for (int batch = 0; batch < 40; ++batch) {
            QStringList queries;
            for (int i = 0; i < 100; ++i)
                queries << u"item %1"_s.arg(int(random() % quint32(count + count / 10)));
            QElapsedTimer timer;
            timer.start();
            for (const QString &q : queries)
                rows.findRow(0, q);
            perLookup.push_back(timer.nsecsElapsed() / 100);
        }
        std::nth_element(perLookup.begin(), perLookup.begin() + 20, perLookup.end());
        qInfo("median lookup %lld ns at %d rows, %lld MB held", perLookup[20], count,
              rows.bytesUsed() >> 20);
        QVERIFY2(Slow || perLookup[20] <= 1000, qPrintable(u"%1 ns"_s.arg(perLookup[20])));
    }
};

VELMORA_TEST(TestListRows)
#include "tst_listrows.moc"
