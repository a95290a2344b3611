// Taking a value into a field, without a widget: what is shown, stored and reported.

#include "common/DataRows.h"
#include "common/TestRegistry.h"
#include "format/FormatParser.h"
#include "format/ValueAssignment.h"

using namespace velmora;
using namespace velmora::detail;
using namespace velmora::test;

namespace {

// A field of the type and format under Czech settings; "list" and "nocheck" in the
// options put it on a list with and without the list check, "noempty" forbids empty.
struct Settings
{
    ParsedFormat pf;
    FieldValueSettings s;

    Settings(int type, QString format, const QString &options = QString())
    {
        const RegionalSettings rs = RegionalSettings::czech(QLatin1Char(' '));
        pf.regional = rs;
        if (type == itNum)
            parseNumFormat(pf, format, rs, {});
        else if (type == itDate)
            parseDateFormat(pf, format, 0, rs, {});
        else if (type == itBool)
            parseBoolFormat(pf.boolFormat, format);
        s.format = {type, format, &pf, pf.boolFormat, 0, atLeftRight, rs};
        s.setList = options.contains(QLatin1String("list"));
        s.listCheck = !options.contains(QLatin1String("nocheck"));
        s.enableEmpty = !options.contains(QLatin1String("noempty"));
        s.maxLength = options.contains(QLatin1String("max3")) ? 3 : 0;
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
        const auto r
            = [](const char *name, int type, const char *format, const char *options,
                 const char *input, const char *shown, const char *stored, const char *outcome) {
                  row(name, type, QString::fromUtf8(format), QString::fromUtf8(options),
                      QString::fromUtf8(input), QString::fromUtf8(shown), QString::fromUtf8(stored),
                      QString::fromUtf8(outcome));
              };
        r("text trimmed and cut", itAlfaNum, "", "max3", "  abcd ", "abc", "abc", "notify");
        r("number shown grouped, stored plain", itNum, "#,##0.00", "", "1234,5", "1 234,50",
          "1234,50", "notify");
        r("no number taken all the same", itNum, "", "", "x1", "x1", "1", "msg6 notify");
        r("date in the layout", itDate, "", "", "5.3.2005", "05.03.2005", "05.03.2005", "notify");
        r("half-typed date kept in place", itDate, "", "", "12.  .", "12.  .    ", "12.  .    ",
          "notify");
        r("impossible date reported", itDate, "", "", "31.02.2005", "31.02.2005", "31.02.2005",
          "msg7 notify");
        r("truth value", itBool, "", "", "-1", "ANO", "ANO", "notify");
        r("empty truth value refused", itBool, "", "noempty", "", "-", "-", "msg1");
        r("list refuses without a row", itAlfaNum, "", "list", "x", "old", "old", "msg1 notify");
        r("list takes empty", itAlfaNum, "", "list", " ", "-", "-", "clear");
        r("list without check clears first", itAlfaNum, "", "list nocheck", "x", "x", "x",
          "clear notify");
    }
    void assign()
    {
        const Settings f(VFETCH(int, type), VFETCH(QString, format), VFETCH(QString, options));
        const Assignment a = assignValue(VFETCH(QString, input), f.s, QStringLiteral("old"));
        QStringList outcome;
        for (const Report &r : a.reports)
            outcome << QStringLiteral("msg%1").arg(r.number);
        if (a.clearFirst)
            outcome << QStringLiteral("clear");
        if (a.notifyValue)
            outcome << QStringLiteral("notify");
        QCOMPARE(outcome.join(QLatin1Char(' ')), VFETCH(QString, outcome));
        QCOMPARE(a.show ? a.show->shown : QStringLiteral("-"), VFETCH(QString, shown));
        QCOMPARE(a.show ? a.show->stored : QStringLiteral("-"), VFETCH(QString, stored));
    }

    void numberKeptWhole()
    {
        const Settings f(itNum, QStringLiteral("0.00"));
        const ShownValue v = showValue(QStringLiteral("1,2345"), f.s);
        QCOMPARE(v.shown, QStringLiteral("1,23"));
        QCOMPARE(v.number, std::optional<double>(1.2345));
    }

    // A half-typed date moves part by part into a new layout; anything else stays.
    void datePartsMove_data()
    {
        columns<QString, QString, QString>({"format", "text", "moved"});
        row("year first", u"yyyy/mm/dd"_qs, u"12.3 .20  "_qs, u"20  .3 .12"_qs);
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
