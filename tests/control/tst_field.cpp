// The field object without typing: value assignments and what they read back as, the
// format, type and separator assignments, Changed, and error reporting.

#include "common/TestForm.h"
#include "common/TestRegistry.h"

#include <QtTest/QSignalSpy>

using namespace velmora;
using namespace velmora::test;
using namespace Qt::StringLiterals;

class TestField : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestPlatform> platform;
    std::unique_ptr<QWidget> form;
    Velmora *field = nullptr;

private Q_SLOTS:
    void init()
    {
        platform = std::make_unique<TestPlatform>(czechSpace());
        form = std::make_unique<QWidget>();
        field = new Velmora(form.get());
    }
    void cleanup()
    {
        form.reset();
        platform.reset();
    }

    // A text goes in through setValue, any other value through setvarValue.
    void values_data()
    {
        columns<RegionalSettings, Setup, QVariant, QString, QString, QString, QString, QVariant>(
            {"rs", "setup", "input", "value", "formValue", "sqlValue", "precValue", "varValue"});
        rowPerSet("text trimmed and cased", type(itAlfaNum, "1>"), QVariant("  ßTRAßE "), "SStraße",
                  "SStraße", "SStraße", "", QVariant("SStraße"));
        rowPerSet("placeholders applied once", type(itAlfaNum, "@@@-@@@"), QVariant("123456"),
                  "123-456", "123-456", "123-456", "", QVariant("123-456"));
        rowPerSet("the same text again", type(itAlfaNum, {}, {set(&Velmora::setValue, "abc")}),
                  QVariant("abc"), "abc", "abc", "abc", "", QVariant("abc"));
        rowPerSet("text cut at MaxLength", type(itAlfaNum, {}, {set(&Velmora::setMaxLength, 3)}),
                  QVariant(" abcdef"), "abc", "abc", "abc", "", QVariant("abc"));
        const QString cut(32767, u'7');
        rowPerSet("text cut at its longest", type(itAlfaNum), QVariant(QString(40000, u'7')), cut,
                  cut, cut, "", QVariant(cut));
        rowPerSet("false into a text", type(itAlfaNum), QVariant(false), "0", "0", "0", "",
                  QVariant("0"));
        rowPerSet("number grouped for display", type(itNum, "#,##0.00"), QVariant("1234"),
                  PerSet("1234,00", "1234.00"), PerSet("1 234,00", "1,234.00"), "1234", "1234",
                  QVariant(1234.0));
        rowPerSet("double into a number", type(itNum, "0.000"), QVariant(2.5),
                  PerSet("2,500", "2.500"), PerSet("2,500", "2.500"), "2.5", "2.5", QVariant(2.5));
        rowPerSet("nothing into a number", type(itNum), QVariant(), "", "", "", "",
                  QVariant::fromValue(qint16(0)));
        rowPerSet("true into a number", type(itNum), QVariant(true), "-1", "-1", "-1", "-1",
                  QVariant(-1.0));
        rowPerSet("iso date", type(itDate), QVariant("2005-12-24"),
                  PerSet("24.12.2005", "12/24/2005"), PerSet("24.12.2005", "24/12/2005"),
                  "12/24/2005", "", QVariant(QDate(2005, 12, 24)));
        rowPerSet("date-time into a date", type(itDate), QVariant(QDateTime(QDate(1999, 1, 2), {})),
                  PerSet("02.01.1999", "01/02/1999"), PerSet("02.01.1999", "02/01/1999"),
                  "01/02/1999", "", QVariant(QDate(1999, 1, 2)));
        rowPerSet("empty date", type(itDate), QVariant(""), "", PerSet("  .  .    ", "  /  /    "),
                  "", "", QVariant::fromValue(nullptr));
        rowPerSet("boolean by number", type(itBool, "ANO;NE;N"), QVariant("-1"), "-1", "ANO", "-1",
                  "", QVariant(-1.0));
        rowPerSet("true into a boolean", type(itBool, "Ano;Ne;B"), QVariant(true), "True", "Ano",
                  "True", "", QVariant(true));
        // A type code outside the four: a plain text field without a format.
        rowPerSet("unknown type", type(InpType(1234), "##"), QVariant(" a'b "), "a'b", "a'b",
                  "a''b", "", QVariant("a'b"));
    }
    // A host that follows Value through PropertyChanged hears of each assignment once.
    void values()
    {
        platform->regional = VFETCH(RegionalSettings, rs);
        VFETCH(Setup, setup)(field);
        int announced = 0;
        QObject context;
        connect(field, &Velmora::PropertyChanged, &context,
                [&](const QString &name) { announced += name == u"Value"_s; });
        QFETCH(QVariant, input);
        if (input.typeId() == QMetaType::QString)
            field->setValue(input.toString());
        else
            field->setvarValue(input);
        QCOMPARE(announced, 1);
        QTEST(field->Value(), "value");
        QTEST(field->FormValue(), "formValue");
        QTEST(field->SQLValue(), "sqlValue");
        QTEST(field->PrecValue(), "precValue");
        QTEST(field->varValue(), "varValue");
        QCOMPARE(field->Error(), qint16(0));
    }

    // At run time an assignment the value cannot take is undone; at design time every
    // assignment is only stored: nothing is parsed, and the value is not assigned again.
    void assignments_data()
    {
        columns<bool, Setup, Setup, QString, QVariant, int>(
            {"design", "setup", "assign", "property", "stored", "error"});
        const Setup date = type(itDate, {}, {set(&Velmora::setValue, "24.12.2005")});
        const Setup badDate = set(&Velmora::setFormatStr, "ddmmdd");
        row("run: date format", false, date, badDate, "FormatStr", QVariant("dd/mm/yyyy"), 5);
        row("design: date format", true, date, badDate, "FormatStr", QVariant("ddmmdd"), 0);
        const Setup number = type(
            itNum, {}, {set(&Velmora::setFormatTisOddel, "x"), set(&Velmora::setValue, "1234,5")});
        const Setup clash = set(&Velmora::setFormatDesOddel, "x");
        row("run: separator clash", false, number, clash, "FormatDesOddel", QVariant(""), 3);
        row("design: separator clash", true, number, clash, "FormatDesOddel", QVariant("x"), 0);
        const Setup text = type(itAlfaNum, {}, {set(&Velmora::setValue, "abc")});
        row("run: type", false, text, set(&Velmora::setInputType, itNum), "InputType",
            QVariant::fromValue(itAlfaNum), 6);
        // The date type makes a field nullable also at design time.
        row("design: type", true, text, set(&Velmora::setInputType, itDate), "Nullable",
            QVariant(true), 0);
        row("design: format cut at its longest", true, text,
            set(&Velmora::setFormatStr, QString(40000, u'7')), "FormatStr",
            QVariant(QString(32767, u'7')), 0);
        row("design: control length", true, number, set(&Velmora::setControlLength, clBoth),
            "ControlLength", QVariant::fromValue(clBoth), 0);
    }
    void assignments()
    {
        VFETCH(Setup, setup)(field);
        const bool design = VFETCH(bool, design);
        form->setProperty("UserMode", !design);
        const QString before = field->Value();
        platform->boxes.clear();
        QStringList announced;
        QObject context;
        connect(field, &Velmora::PropertyChanged, &context,
                [&](const QString &name) { announced << name; });
        VFETCH(Setup, assign)(field);
        QTEST(field->property(VFETCH(QString, property).toLatin1()), "stored");
        QCOMPARE(field->Error(), qint16(VFETCH(int, error)));
        if (!design)
            QCOMPARE(field->Value(), before);
        else if (field->Value() == before)
            QVERIFY2(!announced.contains(u"Value"_s), qPrintable(announced.join(u' ')));
        QCOMPARE(platform->boxes.isEmpty(), design);
    }

    // An error is raised as the Error event, and shown with a tone while Messages and
    // Crrr are on; what is shown is what was raised.
    void errorsAreTold_data()
    {
        columns<int, QString, int, bool, bool>({"type", "input", "error", "messages", "crrr"});
        row("not a number", int(itNum), "12a", 6, true, true);
        row("empty boolean not allowed", int(itBool), QString(), 1, true, true);
        row("no tone", int(itNum), "12a", 6, true, false);
        row("no message", int(itNum), "12a", 6, false, true);
    }
    void errorsAreTold()
    {
        type(InpType(VFETCH(int, type)))(field);
        field->setEnableEmpty(false);
        field->setLabel(u"Pole"_s);
        QFETCH(bool, messages);
        field->setMessages(messages);
        field->setCrrr(VFETCH(bool, crrr));
        QStringList raised;
        QObject context;
        connect(field, qOverload<qint16 &, QString &>(&Velmora::Error), &context,
                [&](qint16 &, QString &text) { raised << text; });
        field->setValue(VFETCH(QString, input));
        QCOMPARE(field->Error(), qint16(VFETCH(int, error)));
        QCOMPARE(raised.size(), 1);
        QVERIFY2(raised.first().contains(VFETCH(QString, input)), qPrintable(raised.first()));
        QCOMPARE(platform->boxes.size(), messages ? 1 : 0);
        if (messages)
            QCOMPARE(platform->boxes.first().text + u'|' + platform->boxes.first().title,
                     raised.first() + u"|Pole"_s);
        const int tones = messages && VFETCH(bool, crrr) ? 1 : 0;
        QCOMPARE(platform->beeps, (QList<QPair<int, int>>(tones, {400, 150})));
    }

    void msgShowsHostTextOnlyInAVisibleForm()
    {
        QString text = u"Hotovo."_s;
        field->setLabel(u"Objednávka"_s);
        field->Msg(text);
        QVERIFY(platform->boxes.isEmpty());
        form->show();
        field->Msg(text);
        QCOMPARE(platform->boxes.size(), 1);
        QCOMPARE(platform->boxes.first().text, text);
        QCOMPARE(field->Error(), qint16(0));
    }

    // Changed is sticky until the host resets it; both it and ValueChanged follow the
    // typed value: 1 and 1,0 are the same number.
    void changesFollowTheTypedValue()
    {
        field->setInputType(itNum);
        QSignalSpy valueChanged(field, &Velmora::ValueChanged);
        field->setValue(u"1"_s);
        field->setChanged(false);
        field->setValue(u"1,0"_s);
        QVERIFY(!field->Changed());
        QCOMPARE(valueChanged.size(), 1);
        field->setValue(u"2"_s);
        QVERIFY(field->Changed());
        field->setValue(u"1"_s);
        QVERIFY(field->Changed()); // the earlier value is back, the flag stays
        field->setChanged(false);
        QVERIFY(!field->Changed());
        field->setValue(QString()); // 0 for a field that is not nullable
        QCOMPARE(valueChanged.size(), 4);
        field->Clear();
        QCOMPARE(valueChanged.size(), 4); // Clear raises nothing
    }
};

VELMORA_TEST(TestField)
#include "tst_field.moc"
