#include "common/TestRegistry.h"
#include "common/DataRows.h"

#include <velmora/StrF.h>

#include <QtTest/QTest>

#include <functional>
#include <stdexcept>

using velmora::StrF;
using velmora::test::columns;
using velmora::test::row;
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
        row("every occurrence", u"1.234,5"_s, u","_s, u"."_s, none, none, u"1.234.5"_s);
        row("suffix set, end passes", u"a,b,"_s, u","_s, u";"_s, none, digits, u"a,b;"_s);
        row("suffix set overrides prefix", u"1,2"_s, u","_s, u";"_s, u"x"_s, digits, u"1;2"_s);
        row("suffix tests own 2nd char", u"abc"_s, u"ab"_s, u"X"_s, none, u"b"_s, u"Xc"_s);
        row("suffix not the char after", u"abc"_s, u"ab"_s, u"X"_s, none, u"c"_s, u"abc"_s);
        row("prefix set", u"a,1,"_s, u","_s, u";"_s, u"1"_s, none, u"a,1;"_s);
        row("prefix, start passes", u",a"_s, u","_s, u";"_s, u"x"_s, none, u";a"_s);
        row("replacement not rescanned", u"aa"_s, u"a"_s, u"aa"_s, none, none, u"aaaa"_s);
        row("longest text", maxText, u"a"_s, none, none, none, none);
    }
    void Nahrad()
    {
        QFETCH(QString, text);
        QFETCH(QString, what);
        QFETCH(QString, with);
        QFETCH(QString, pref);
        QFETCH(QString, post);
        QTEST(StrF().Nahrad(text, what, with, pref, post), "expected");
    }

    void Filter_data()
    {
        columns<int, QString, QString>({"start", "startMark", "expected"});
        row("whole text", 1, none, u"123456"_s);
        row("from position 6", 6, none, u"56"_s);
        row("mark moves start back", 6, u"-"_s, u"3456"_s);
        row("mark after start ignored", 1, u"-"_s, u"123456"_s);
        row("start past end", 20, none, none);
    }
    void Filter()
    {
        QFETCH(int, start);
        QFETCH(QString, startMark);
        QTEST(StrF().Filter(u"12-34-56"_s, digits, qint16(start), startMark), "expected");
    }

    void VratCast_data()
    {
        columns<QString, QStringList>({"text", "parts"});
        row("three parts", u"ANO;NE;A"_s, QStringList {u"ANO"_s, u"NE"_s, u"A"_s});
        row("empty middle", u"A;;B"_s, QStringList {u"A"_s, none, u"B"_s});
        row("separator last", u"A;"_s, QStringList {u"A"_s});
        row("separator only", u";"_s, QStringList {none});
        row("empty text", none, QStringList());
        row("longest text", maxText.left(32765) + u";b"_s,
            QStringList {maxText.left(32765), u"b"_s});
    }
    void VratCast()
    {
        QFETCH(QString, text);
        StrF s;
        QStringList parts;
        QString part;
        for (bool more = s.VratCast(part, text, u';', 1); more; more = s.VratCast(part))
            parts.append(part);
        QTEST(parts, "parts");
        QVERIFY(!s.VratCast(part)); // stays exhausted
    }

    void Pocet_data()
    {
        columns<int, int, int>({"from", "to", "expected"});
        row("non-overlapping", -1, -1, 2);
        row("last may start before end", -1, 3, 2);
        row("up to 2", -1, 2, 1);
        row("from 2", 2, -1, 1);
        row("from past end", 9, -1, 0);
    }
    void Pocet()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        const QVariant n = StrF().Pocet(u"aaaa"_s, u"aa"_s, qint16(from), qint16(to));
        QCOMPARE(n.metaType(), QMetaType::fromType<qint16>());
        QTEST(n.toInt(), "expected");
    }

    void throws_data()
    {
        columns<StrFCall, bool>({"call", "overflow"}); // else std::invalid_argument
        auto call = [](StrFCall f) {
            return f;
        };
        row("Nahrad empty search", call([](StrF &s) { s.Nahrad(u"ab"_s, {}, u"x"_s); }), false);
        row("Nahrad 40k", call([](StrF &s) { s.Nahrad(tooLong, u"a"_s, {}); }), true);
        row("Filter start 0", call([](StrF &s) { s.Filter(u"12"_s, digits, 0, u"2"_s); }), false);
        row("Filter 40k", call([](StrF &s) { s.Filter(tooLong, digits); }), true);
        row("Pocet empty search", call([](StrF &s) { s.Pocet(u"abc"_s, {}); }), true);
        row("Pocet start 0", call([](StrF &s) { s.Pocet(u"abc"_s, u"a"_s, 0); }), false);
        row("Pocet 40k", call([](StrF &s) { s.Pocet(tooLong, u"a"_s); }), true);
        row("VratCast 40k", call([](StrF &s) {
                QString p;
                s.VratCast(p, tooLong, u';', 1);
            }),
            true);
    }
    void throws()
    {
        QFETCH(StrFCall, call);
        QFETCH(bool, overflow);
        StrF s;
        if (overflow)
            QVERIFY_THROWS_EXCEPTION(std::overflow_error, call(s));
        else
            QVERIFY_THROWS_EXCEPTION(std::invalid_argument, call(s));
    }
};

VELMORA_TEST(TestStrF)
#include "tst_strf.moc"
