// The field object: its properties and their defaults, the format, separator and
// value assignments, Changed, and error reporting.

#include "common/TestPlatform.h"
#include "common/TestRegistry.h"

#include <velmora/Velmora.h>

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QLineEdit>

using namespace velmora;
using velmora::test::TestPlatform;

class TestField : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestPlatform> platform;
    std::unique_ptr<QWidget> form;
    Velmora *field = nullptr;

    Velmora *make(InpType type, const QString &format = QString())
    {
        auto *f = new Velmora(form.get());
        f->setInputType(type);
        if (!format.isEmpty())
            f->setFormatStr(format);
        return f;
    }

private Q_SLOTS:
    void init()
    {
        platform = std::make_unique<TestPlatform>(test::czechSpace());
        form = std::make_unique<QWidget>();
        field = new Velmora(form.get());
    }
    void cleanup()
    {
        form.reset();
        platform.reset();
    }

    void defaults_data()
    {
        QTest::addColumn<QString>("property");
        QTest::addColumn<QVariant>("value");
        const auto row = [](const char *name, const QVariant &v) {
            QTest::newRow(name) << name << v;
        };
        row("InputType", QVariant::fromValue(itAlfaNum));
        row("EnterAction", QVariant::fromValue(eaTab));
        row("ArrowAction", QVariant::fromValue(aaUpDownTab));
        row("DisplayMode", QVariant::fromValue(dmChangeable));
        row("ControlLength", QVariant::fromValue(clDecimalPart));
        row("VisibleByLbl", true);
        row("CheckValues", true);
        row("EnableEmpty", true);
        row("Nullable", false);
        row("ListBackColor", QVariant::fromValue(0x80000005u));
        row("ListCount", QVariant::fromValue(qint32(0)));
        row("ListItemSelected", false);
        row("Value", QString());
        row("Changed", false);
    }
    void defaults()
    {
        QFETCH(QString, property);
        QFETCH(QVariant, value);
        const QVariant got = field->property(property.toLatin1());
        QVERIFY2(got.isValid(), qPrintable(property));
        QCOMPARE(got, value);
    }

    void propertiesAreAddressedByName()
    {
        QVERIFY(field->setProperty("FormatStr", QStringLiteral("1>")));
        QCOMPARE(field->FormatStr(), QStringLiteral("1>"));
        QVERIFY(field->setProperty("InputType", QVariant::fromValue(itNum)));
        QCOMPARE(field->property("InputType").toInt(), 78);
        field->setFormatTisOddel(QStringLiteral(".,")); // only the first character counts
        QCOMPARE(field->FormatTisOddel(), QStringLiteral("."));
        field->setFormatTisOddel(QString());
        QCOMPARE(field->FormatTisOddel(), QString());
    }

    void innerControlsCarryTheirNames()
    {
        for (const char *name : {"txtInput", "lblVis", "cmdList", "imgFrame", "shpMriz"})
            QVERIFY2(field->findChild<QWidget *>(QLatin1String(name)), name);
    }

    void typeChangeSetsNullableAlsoAtDesignTime()
    {
        form->setProperty("UserMode", false);
        Velmora *f = make(itNum);
        QVERIFY(!f->Nullable());
        f->setInputType(itDate);
        QVERIFY(f->Nullable());
        f->setInputType(itNum);
        QVERIFY(!f->Nullable());
        // At design time nothing is parsed: the field keeps showing no mask.
        QCOMPARE(f->FormValue(), QString());
    }

    void formatTheValueCannotSatisfyIsUndone()
    {
        Velmora *f = make(itAlfaNum);
        f->setValue(QStringLiteral("abc"));
        f->setInputType(itNum); // "abc" is no number
        QCOMPARE(f->InputType(), itAlfaNum);
        QCOMPARE(f->Value(), QStringLiteral("abc"));
        QCOMPARE(f->Error(), qint16(6));

        Velmora *d = make(itDate);
        d->setValue(QStringLiteral("24.12.2005"));
        d->setFormatStr(QStringLiteral("ddmmdd")); // interleaved parts
        QCOMPARE(d->FormatStr(), QStringLiteral("dd/mm/yyyy"));
        QCOMPARE(d->Error(), qint16(5));
        QCOMPARE(d->FormValue(), QStringLiteral("24.12.2005"));
    }

    void dateTypeShowsItsMaskAndOverwrites()
    {
        Velmora *d = make(itDate);
        QCOMPARE(d->FormValue(), QStringLiteral("  .  .    "));
        QVERIFY(d->InsMode());
        QCOMPARE(d->Value(), QString());
        QCOMPARE(d->varValue(), QVariant::fromValue(nullptr)); // dates are nullable by default
        QCOMPARE(d->SQLValue(), QString());
    }

    void separatorClashIsUndone()
    {
        Velmora *n = make(itNum, QStringLiteral("#,##0.00"));
        n->setValue(QStringLiteral("1234,5"));
        n->setFormatDesOddel(QStringLiteral(" ")); // the regional thousands separator
        QCOMPARE(n->FormatDesOddel(), QString());
        QCOMPARE(n->Error(), qint16(3));
        QCOMPARE(n->Value(), QStringLiteral("1234,5"));
    }

    void values_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("formValue");
        QTest::addColumn<QString>("sqlValue");
        QTest::addColumn<QString>("precValue");
        QTest::addColumn<QVariant>("varValue");

        QTest::newRow("text trimmed and cased") << int(itAlfaNum) << "1>"
                                                << "  pRAHA "
                                                << "Praha"
                                                << "Praha"
                                                << "Praha"
                                                << "" << QVariant("Praha");
        QTest::newRow("number grouped for display") << int(itNum) << "#,##0.00"
                                                    << "1234,5"
                                                    << "1234,50"
                                                    << "1 234,50"
                                                    << "1234.5"
                                                    << "1234.5" << QVariant(1234.5);
        QTest::newRow("negative number") << int(itNum) << ""
                                         << " -0,25 "
                                         << "-0,25"
                                         << "-0,25"
                                         << "-0.25"
                                         << "-0.25" << QVariant(-0.25);
        QTest::newRow("iso date") << int(itDate) << ""
                                  << "2005-12-24"
                                  << "24.12.2005"
                                  << "24.12.2005"
                                  << "12/24/2005"
                                  << "" << QVariant(QDate(2005, 12, 24));
        QTest::newRow("bool by number") << int(itBool) << "ANO;NE;N"
                                        << "-1"
                                        << "-1"
                                        << "ANO"
                                        << "-1"
                                        << "" << QVariant(-1.0);
        QTest::newRow("bool by word") << int(itBool) << "ANO;NE;B"
                                      << "False"
                                      << "False"
                                      << "NE"
                                      << "False"
                                      << "" << QVariant(false);
    }
    void values()
    {
        Velmora *f = make(InpType(VFETCH(int, type)), VFETCH(QString, format));
        f->setValue(VFETCH(QString, input));
        QCOMPARE(f->Value(), VFETCH(QString, value));
        QCOMPARE(f->FormValue(), VFETCH(QString, formValue));
        QCOMPARE(f->SQLValue(), VFETCH(QString, sqlValue));
        QCOMPARE(f->PrecValue(), VFETCH(QString, precValue));
        QCOMPARE(f->varValue(), VFETCH(QVariant, varValue));
        QCOMPARE(f->Error(), qint16(0));
        QCOMPARE(f->findChild<QLineEdit *>(QStringLiteral("txtInput"))->text(), f->FormValue());
    }

    void varValueRoundTrips()
    {
        Velmora *n = make(itNum, QStringLiteral("0.000"));
        n->setvarValue(2.5);
        QCOMPARE(n->varValue(), QVariant(2.5));
        n->setvarValue(QVariant());
        QCOMPARE(n->varValue(), QVariant::fromValue(qint16(0)));
        Velmora *d = make(itDate);
        d->setvarValue(QDate(1999, 1, 2));
        QCOMPARE(d->FormValue(), QStringLiteral("02.01.1999"));
        Velmora *b = make(itBool, QStringLiteral("Ano;Ne;B"));
        b->setvarValue(true);
        QCOMPARE(b->FormValue(), QStringLiteral("Ano"));
    }

    void badValuesAreTakenAndReported_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("input");
        QTest::addColumn<int>("error");
        QTest::newRow("not a number") << int(itNum) << "12a" << 6;
        QTest::newRow("not a date") << int(itDate) << "31.02.2005" << 7;
        QTest::newRow("empty bool not allowed") << int(itBool) << "" << 1;
    }
    void badValuesAreTakenAndReported()
    {
        Velmora *f = make(InpType(VFETCH(int, type)));
        f->setEnableEmpty(false);
        f->setLabel(QStringLiteral("Pole"));
        QSignalSpy errors(f, qOverload<qint16 &, QString &>(&Velmora::Error));
        f->setValue(VFETCH(QString, input));
        QFETCH(int, error);
        QCOMPARE(f->Error(), qint16(error));
        QCOMPARE(errors.size(), 1);
        QCOMPARE(platform->boxes.size(), 1);
        QCOMPARE(platform->boxes.first().title, QStringLiteral("Pole"));
        QCOMPARE(platform->beeps.size(), 1);
        QCOMPARE(platform->beeps.first(), qMakePair(400, 150));
    }

    void messagesOffRaisesOnlyTheEvent()
    {
        Velmora *f = make(itNum);
        f->setMessages(false);
        QString text;
        connect(f, qOverload<qint16 &, QString &>(&Velmora::Error), this,
                [&](qint16 &, QString &msg) { text = msg; });
        f->setValue(QStringLiteral("x"));
        QCOMPARE(f->Error(), qint16(6));
        QCOMPARE(text, QStringLiteral("Neplatně zadaná numerická hodnota (x)."));
        QVERIFY(platform->boxes.isEmpty());
        QVERIFY(platform->beeps.isEmpty());
    }

    void crrrSilencesTheTone()
    {
        Velmora *f = make(itNum);
        f->setCrrr(false);
        f->setValue(QStringLiteral("x"));
        QCOMPARE(platform->boxes.size(), 1);
        QVERIFY(platform->beeps.isEmpty());
    }

    void msgShowsHostTextOnlyInAVisibleForm()
    {
        QString text = QStringLiteral("Hotovo.");
        field->setLabel(QStringLiteral("Objednávka"));
        field->Msg(text);
        QVERIFY(platform->boxes.isEmpty());
        form->show();
        field->Msg(text);
        QCOMPARE(platform->boxes.size(), 1);
        QCOMPARE(platform->boxes.first().text, text);
        QCOMPARE(field->Error(), qint16(0));
    }

    void changedIsStickyUntilReset()
    {
        Velmora *f = make(itNum);
        f->setValue(QStringLiteral("1"));
        f->setChanged(false);
        f->setValue(QStringLiteral("2"));
        QVERIFY(f->Changed());
        f->setValue(QStringLiteral("1"));
        QVERIFY(f->Changed()); // the earlier text is back, the flag stays
        f->setChanged(false);
        QVERIFY(!f->Changed());
        // Equal typed values are no change: 1 and 1,0 are the same number.
        f->setValue(QStringLiteral("1,0"));
        QVERIFY(!f->Changed());
    }

    void valueChangedOnlyWhenTheTypedValueChanges()
    {
        Velmora *f = make(itNum);
        QSignalSpy spy(f, &Velmora::ValueChanged);
        f->setValue(QStringLiteral("5"));
        f->setValue(QStringLiteral("5,0"));
        QCOMPARE(spy.size(), 1);
        f->setValue(QString()); // 0 for a field that is not nullable
        QCOMPARE(spy.size(), 2);
        f->Clear();
        QCOMPARE(spy.size(), 2); // Clear raises nothing
    }

    void listCheckRefusesValuesWithoutAList()
    {
        Velmora *f = make(itAlfaNum);
        f->setValue(QStringLiteral("old"));
        f->setSetList(true);
        f->setValue(QStringLiteral("new"));
        QCOMPARE(f->Error(), qint16(1));
        QCOMPARE(f->Value(), QStringLiteral("old"));
        f->setValue(QStringLiteral("  "));
        QCOMPARE(f->Value(), QString());
        f->setListCheckValue(false);
        f->setValue(QStringLiteral("free"));
        QCOMPARE(f->Value(), QStringLiteral("free"));
    }

    void badInputNeverCrashes()
    {
        const QString huge(40000, QLatin1Char('7'));
        Velmora *a = make(itAlfaNum);
        a->setValue(huge);
        QCOMPARE(a->Value().size(), 32767);
        a->setFormatStr(huge);
        QCOMPARE(a->FormatStr().size(), 32767);
        Velmora *n = make(itNum, QStringLiteral("0.00"));
        n->setValue(huge);
        QVERIFY(!n->FormValue().isEmpty());
        Velmora *d = make(itDate);
        d->setValue(huge);
        QCOMPARE(d->Error(), qint16(7));

        // A type code outside the four: a plain text field without a format.
        Velmora *x = make(InpType(5), QStringLiteral("##"));
        x->setValue(QStringLiteral(" a'b "));
        QCOMPARE(x->FormValue(), QStringLiteral("a'b")); // trimmed as every non-text type
        QCOMPARE(x->SQLValue(), QStringLiteral("a''b"));
        QVERIFY(x->setProperty("InputType", 1234));
        QCOMPARE(int(x->InputType()), 1234);
    }
};

VELMORA_TEST(TestField)
#include "tst_field.moc"
