// The exit check as a decision on what a field shows and holds.

#include "common/DataRows.h"
#include "common/TestRegistry.h"
#include "validation/ExitCheck.h"

#include <functional>

using namespace velmora;
using namespace velmora::detail;
using namespace velmora::test;

using Field = std::function<void(ExitCheckInput &)>;
Q_DECLARE_METATYPE(Field)

namespace {

const QString EmptyDate = QStringLiteral("  .  .    ");

// A field as the rows describe it: a date field of the Czech set, empty values refused.
Field date(const QString &box, const QString &value = {})
{
    return [=](ExitCheckInput &in) {
        in.inputType = itDate;
        in.switches.enableEmpty = false;
        in.emptyDateText = EmptyDate;
        in.boxText = box;
        in.fieldValue = value;
    };
}
Field listed(int row, bool newItemRow = false, char16_t column = u'A', bool emptyOk = false)
{
    return [=](ExitCheckInput &in) {
        in.setList = true;
        in.listIndex = row;
        in.listAddNewItem = newItemRow;
        in.valueColumnType = column;
        in.switches.enableEmpty = emptyOk;
    };
}
Field with(Field a, Field b)
{
    return [=](ExitCheckInput &in) {
        a(in);
        b(in);
    };
}
Field mode(DisplMode m)
{
    return [=](ExitCheckInput &in) {
        in.displayMode = m;
        in.switches.enableEmpty = false;
    };
}
Field numeric = [](ExitCheckInput &in) {
    in.inputType = itNum;
};
Field masterOff = [](ExitCheckInput &in) {
    in.switches = {false, true, false};
};

} // namespace

class TestExitCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decision_data()
    {
        columns<Field, QString, int, int>({"field", "value", "result", "message"});
        row("landable passes empty", mode(dmLandable), "", 0, 0);
        row("crossed out passes empty", mode(dmCrossline), "", 0, 0);
        row("changeable refuses empty", mode(dmChangeable), "", 4, 13);
        row("master switch off: no list test", with(masterOff, listed(-1)), "x", 0, 0);
        row("invalid number", numeric, "1,2,3", 2, 11);
        row("number with thousands", numeric, "1 234,5", 0, 0);
        row("empty date mask is empty", date(EmptyDate), EmptyDate, 0, 0);
        row("empty date value refused", date(EmptyDate), "", 4, 13);
        row("date read from the field's value", date("31.02.2026", ""), "31.02.2026", 3, 12);
        row("valid date", date("01.02.2026", "01.02.2026"), "01.02.2026", 0, 0);
        row("list: empty and no row is not in the list", listed(-1), "", 1, 10);
        row("list: new-item row is no choice", listed(0, true), "x", 1, 10);
        row("list: row 0 without new-item row", listed(0), "x", 0, 0);
        row("list: numeric column, text value", listed(2, false, u'N'), "abc", 2, 11);
        row("list: date column, invalid value",
            with(date("x", "99.99.2026"), listed(1, false, u'D')), "99.99.2026", 3, 12);
        row("list: boolean field passes",
            with(listed(-1), [](ExitCheckInput &in) { in.inputType = itBool; }), "", 0, 0);
        row("list: empty allowed", with(date(EmptyDate), listed(-1, false, u'A', true)), "", 0, 0);
    }
    void decision()
    {
        ExitCheckInput in;
        in.regional = RegionalSettings::czech(QLatin1Char(' '));
        VFETCH(Field, field)(in);
        const ExitResult result = exitCheck(VFETCH(QString, value), in);
        QCOMPARE(int(result), VFETCH(int, result));
        QCOMPARE(exitMessage(result), VFETCH(int, message));
    }
};

VELMORA_TEST(TestExitCheck)
#include "tst_exitcheck.moc"
