// Taking a value into a field, without a widget: what is shown, stored and reported.

#include "common/DataRows.h"
#include "common/TestRegistry.h"
#include "format/FormatParser.h"
#include "format/ValueAssignment.h"

using namespace velmora;
using namespace velmora::detail;
using namespace velmora::test;
using namespace Qt::StringLiterals;

namespace {

// A field of the type and format under Czech settings; "list" and "nocheck" in the
// options put it on a list with and without the list check, "noempty" forbids empty.
struct Settings
{
    ParsedFormat pf;
    FieldValueSettings s;

    Settings(int type, QString format, const QString &options = QString())
    {
        const RegionalSettings rs = RegionalSettings::czech(u' ');
        pf.regional = rs;
        if (type == itNum)
            parseNumFormat(pf, format, rs, {});
        else if (type == itDate)
            parseDateFormat(pf, format, 0, rs, {});
        else if (type == itBool)
            parseBoolFormat(pf.boolFormat, format);
        s.format = {type, format, &pf, pf.boolFormat, 0, atLeftRight, rs};
        s.setList = options.contains(u"list");
        s.listCheck = !options.contains(u"nocheck");
        s.enableEmpty = !options.contains(u"noempty");
        s.maxLength = options.contains(u"max3") ? 3 : 0;
    }
};

} // namespace

class TestAssignment : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void assign_data()
    {
        columns<int, QString, QString, QString, QString, QString, QString>(
            {"type", "format", "options", "input", "shown", "stored", "outcome"});
        const int a = itAlfaNum, n = itNum, d = itDate, b = itBool;
        row("text trimmed and cut", a, "", "max3", "  abcd ", "abc", "abc", "notify");
        row("number shown grouped, stored plain", n, "#,##0.00", "", "1234,5", "1 234,50",
            "1234,50", "notify");
        row("no number taken all the same", n, "", "", "x1", "x1", "1", "msg6 notify");
        row("date in the layout", d, "", "", "5.3.2005", "05.03.2005", "05.03.2005", "notify");
        row("half-typed date kept in place", d, "", "", "12.  .", "12.  .    ", "12.  .    ",
            "notify");
        row("impossible date reported", d, "", "", "31.02.2005", "31.02.2005", "31.02.2005",
            "msg7 notify");
        row("truth value", b, "", "", "-1", "ANO", "ANO", "notify");
        row("empty truth value refused", b, "", "noempty", "", "-", "-", "msg1");
        row("list refuses without a row", a, "", "list", "x", "old", "old", "msg1 notify");
        row("list takes empty", a, "", "list", " ", "-", "-", "clear");
        row("list without check clears first", a, "", "list nocheck", "x", "x", "x",
            "clear notify");
    }
    void assign()
    {
        const Settings f(VFETCH(int, type), VFETCH(QString, format), VFETCH(QString, options));
        const Assignment a = assignValue(VFETCH(QString, input), f.s, u"old"_s);
        QStringList outcome;
        for (const Report &r : a.reports)
            outcome << u"msg%1"_s.arg(r.number);
        if (a.clearFirst)
            outcome << u"clear"_s;
        if (a.notifyValue)
            outcome << u"notify"_s;
        QCOMPARE(outcome.join(u' '), VFETCH(QString, outcome));
        QCOMPARE(a.show ? a.show->shown : u"-"_s, VFETCH(QString, shown));
        QCOMPARE(a.show ? a.show->stored : u"-"_s, VFETCH(QString, stored));
    }

    // A half-typed date moves part by part into a new layout; anything else stays.
    void datePartsMove_data()
    {
        columns<QString, QString, QString>({"format", "text", "moved"});
        row("month first", u"mm/dd/yyyy"_qs, u"12.3 .20  "_qs, u"3 .12.20  "_qs);
        row("not in the layout", u"mm/dd/yyyy"_qs, u"x"_qs, u"x"_qs);
    }
    void datePartsMove()
    {
        const Settings from(itDate, QString());
        const Settings to(itDate, VFETCH(QString, format));
        QCOMPARE(moveDateParts(VFETCH(QString, text), from.pf, to.pf), VFETCH(QString, moved));
    }
};

VELMORA_TEST(TestAssignment)
#include "tst_assignment.moc"
