#include "common/DataRows.h"
#include "common/TestRegistry.h"

#include <velmora/StrF.h>

#include <functional>
#include <stdexcept>

using velmora::StrF;
using namespace velmora::test;
using namespace Qt::StringLiterals;

using StrFCall = std::function<void(StrF &)>;
Q_DECLARE_METATYPE(StrFCall)

namespace {
const QString digits = u"0123456789"_s;
const QString maxText(32767, u'a'); // the longest text a 16-bit position can walk
const QString tooLong(40000, u'a');
const QString none;
} // namespace

class TestStrF : public QObject
{
    Q_OBJECT

private slots:
    void Nahrad_data()
    {
        columns<QString, QString, QString, QString, QString, QString>(
            {"text", "what", "with", "pref", "post", "expected"});
        row("suffix set, end passes", "a,b,", ",", ";", none, digits, "a,b;");
        row("suffix set overrides prefix", "1,2", ",", ";", "x", digits, "1;2");
        row("suffix tests own 2nd char", "abc", "ab", "X", none, "b", "Xc");
        row("suffix not the char after", "abc", "ab", "X", none, "c", "abc");
        row("prefix set", "a,1,", ",", ";", "1", none, "a,1;");
        row("longest text", maxText, "a", none, none, none, none);
    }
    void Nahrad()
    {
        QTEST(StrF().Nahrad(VFETCH(QString, text), VFETCH(QString, what), VFETCH(QString, with),
                            VFETCH(QString, pref), VFETCH(QString, post)),
              "expected");
    }

    void Filter_data()
    {
        columns<int, QString, QString>({"start", "startMark", "expected"});
        row("whole text", 1, none, "123456");
        row("from position 6", 6, none, "56");
        row("mark moves start back", 6, "-", "3456");
        row("start past end", 20, none, none);
    }
    void Filter()
    {
        QTEST(StrF().Filter(u"12-34-56"_s, digits, qint16(VFETCH(int, start)),
                            VFETCH(QString, startMark)),
              "expected");
    }

    // The longest text a 16-bit position can walk splits to its end.
    void VratCastLongestText()
    {
        const QString first = maxText.left(32765);
        StrF s;
        QString part;
        QVERIFY(s.VratCast(part, first + u";b"_s, u';', 1));
        QCOMPARE(part, first);
        QVERIFY(s.VratCast(part));
        QCOMPARE(part, u"b"_s);
    }

    void Pocet_data()
    {
        columns<int, int, int>({"from", "to", "expected"});
        row("last may start before end", -1, 3, 2);
        row("from 2", 2, -1, 1);
        row("from past end", 9, -1, 0);
    }
    void Pocet()
    {
        const QVariant n
            = StrF().Pocet(u"aaaa"_s, u"aa"_s, qint16(VFETCH(int, from)), qint16(VFETCH(int, to)));
        QCOMPARE(n.metaType(), QMetaType::fromType<qint16>());
        QTEST(n.toInt(), "expected");
    }

    void throws_data()
    {
        columns<StrFCall, bool>({"call", "overflow"}); // else std::invalid_argument
        using call = StrFCall;
        row("Nahrad empty search", call([](StrF &s) { s.Nahrad("ab", {}, "x"); }), false);
        row("Nahrad 40k", call([](StrF &s) { s.Nahrad(tooLong, "a", {}); }), true);
        row("Filter start 0", call([](StrF &s) { s.Filter("12", digits, 0, "2"); }), false);
        row("Filter 40k", call([](StrF &s) { s.Filter(tooLong, digits); }), true);
        row("Pocet empty search", call([](StrF &s) { s.Pocet("abc", {}); }), true);
        row("Pocet start 0", call([](StrF &s) { s.Pocet("abc", "a", 0); }), false);
        row("Pocet 40k", call([](StrF &s) { s.Pocet(tooLong, "a"); }), true);
    }
    void throws()
    {
        StrF s;
        if (VFETCH(bool, overflow))
            QVERIFY_THROWS_EXCEPTION(std::overflow_error, VFETCH(StrFCall, call)(s));
        else
            QVERIFY_THROWS_EXCEPTION(std::invalid_argument, VFETCH(StrFCall, call)(s));
    }
};

VELMORA_TEST(TestStrF)
#include "tst_strf.moc"
