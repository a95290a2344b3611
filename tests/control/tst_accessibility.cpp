// What a screen reader learns of a field: the name and the hint of its edit box, the
// announcement of a message and the rows of the list window.

#include "common/TestForm.h"
#include "common/TestRegistry.h"
#include "control/FieldAccessibility.h"

#include <QtGui/QAccessible>
#include <QtWidgets/QLabel>
#include <QtWidgets/QTableView>

using namespace velmora;
using namespace velmora::test;

namespace {

// A step of the host on a form with one label and the field.
using Step = std::function<void(QLabel *label, Velmora *field)>;

struct Heard
{
    QObject *object;
    QAccessible::Event type;
    QString description; // of the object when the event came
};
QList<Heard> heard;

QString said(QObject *o, QAccessible::Text t)
{
    QAccessibleInterface *i = QAccessible::queryAccessibleInterface(o);
    return i ? i->text(t) : QStringLiteral("<no interface>");
}

void record(QAccessibleEvent *event)
{
    heard.append({event->object(), event->type(), said(event->object(), QAccessible::Description)});
}

void enter(Velmora *f)
{
    QApplication::setActiveWindow(f->window());
    f->setFocus();
    QCoreApplication::processEvents();
}

} // namespace

Q_DECLARE_METATYPE(Step)

class TestAccessibility : public QObject
{
    Q_OBJECT
    detail::AccessibilityListener m_previous = nullptr;

private slots:
    void initTestCase() { m_previous = detail::setAccessibilityListener(record); }
    void cleanupTestCase() { detail::setAccessibilityListener(m_previous); }

    void name_data()
    {
        const auto buddy = [](const char *text) {
            return Step([=](QLabel *l, Velmora *f) {
                l->setText(QString::fromUtf8(text));
                l->setBuddy(f);
            });
        };
        columns<Step, Step, QString>({"before", "after", "name"});
        row("Label", Step([](QLabel *, Velmora *f) { f->setLabel("Příjmení"); }), Step(),
            "Příjmení");
        row("buddy label, mnemonic dropped", buddy("&Jméno && titul"), Step(), "Jméno & titul");
        row("buddy label of the edit box", Step([](QLabel *l, Velmora *f) {
                l->setText("Obec");
                l->setBuddy(f->findChild<QLineEdit *>());
            }),
            Step(), "Obec");
        row("rich text buddy", buddy("<b>Ulice</b>"), Step(), "Ulice");
        row("host's name", Step([](QLabel *, Velmora *f) { f->setAccessibleName("PSČ"); }), Step(),
            "PSČ");
        row("Label before buddy", buddy("Jméno"),
            Step([](QLabel *, Velmora *f) { f->setLabel("Příjmení"); }), "Příjmení");
        row("empty buddy gives way to the host's name", Step([](QLabel *l, Velmora *f) {
                l->setBuddy(f);
                f->setAccessibleName("PSČ");
            }),
            Step(), "PSČ");
        row("Label emptied", buddy("Jméno"), Step([](QLabel *, Velmora *f) {
                f->setLabel("Příjmení");
                f->setLabel("");
            }),
            "Jméno");
        row("buddy renamed, read on entering", buddy("Jméno"), Step([](QLabel *l, Velmora *f) {
                l->setText("Křestní jméno");
                enter(f);
            }),
            "Křestní jméno");
    }
    void name()
    {
        TestPlatform platform(czechSpace());
        QWidget form;
        auto *label = new QLabel(&form);
        auto *field = new Velmora(&form);
        if (const Step &before = VFETCH(Step, before))
            before(label, field);
        form.show();
        if (const Step &after = VFETCH(Step, after))
            after(label, field);
        QCOMPARE(said(field->findChild<QLineEdit *>(), QAccessible::Name), VFETCH(QString, name));
    }

    void description_data()
    {
        const auto more = [](auto setter, auto value) {
            return QList<Setup> {set(setter, value)};
        };
        columns<Setup, QString>({"setup", "description"});
        row("text", type(itAlfaNum), "Text");
        row("text of 1", type(itAlfaNum, {}, more(&Velmora::setMaxLength, 1)),
            "Text, nejvýše 1 znak");
        row("text of 3", type(itAlfaNum, {}, more(&Velmora::setMaxLength, 3)),
            "Text, nejvýše 3 znaky");
        row("text of 20", type(itAlfaNum, {}, more(&Velmora::setMaxLength, 20)),
            "Text, nejvýše 20 znaků");
        row("number", type(itNum), "Číslo");
        row("whole number", type(itNum, "#,##0"), "Celé číslo");
        row("1 decimal", type(itNum, "0.0"), "Číslo, 1 desetinné místo");
        row("2 decimals", type(itNum, "#,##0.00"), "Číslo, 2 desetinná místa");
        row("5 decimals", type(itNum, "0.00000"), "Číslo, 5 desetinných míst");
        row("integer places checked",
            type(itNum, "####0.00", more(&Velmora::setControlLength, clBoth)),
            "Číslo, 2 desetinná místa, nejvýše 5 míst před desetinnou čárkou");
        row("date", type(itDate), "Datum ve tvaru DD.MM.RRRR");
        row("date, own order", type(itDate, "mm/dd/yy"), "Datum ve tvaru MM.DD.RR");
        row("date, own separator",
            type(itDate, {}, more(&Velmora::setFormatDatOddel, QStringLiteral("/"))),
            "Datum ve tvaru DD/MM/RRRR");
        row("boolean", type(itBool), "Hodnota ANO nebo NE");
        row("boolean, own texts", type(itBool, "Pravda;Nepravda;B"),
            "Hodnota Pravda nebo Nepravda");
        row("required", type(itAlfaNum, {}, more(&Velmora::setEnableEmpty, false)),
            "Text, povinné");
        row("required only where it can be edited",
            type(itAlfaNum, {},
                 {set(&Velmora::setEnableEmpty, false), set(&Velmora::setDisplayMode, dmLandable)}),
            "Text");
        row("list", type(itNum, "0", more(&Velmora::setSetList, true)),
            "Celé číslo, výběr ze seznamu klávesou Page Down");
        row("host's description stays", type(itDate, {}, {[](Velmora *f) {
                                                 f->setAccessibleDescription("Den splatnosti");
                                             }}),
            "Den splatnosti");
    }
    void description()
    {
        TestForm t;
        VFETCH(Setup, setup)(t.field);
        enter(t.field);
        QCOMPARE(said(t.box(), QAccessible::Description), VFETCH(QString, description));
    }

    // A message is announced on the edit box and read in front of the hint until the
    // field changes or validates.
    void error_data()
    {
        columns<Setup, QString, qint16, QString, QString>(
            {"setup", "keys", "error", "recovery", "hint"});
        row("decimal place too many", type(itNum, "0.00"), "1,234", qint16(8), "{Bs}",
            "Číslo, 2 desetinná místa");
        row("text too long", type(itAlfaNum, {}, {set(&Velmora::setMaxLength, 2)}), "abc",
            qint16(14), "{Bs}", "Text, nejvýše 2 znaky");
        row("empty value on validating",
            type(itAlfaNum, {}, {set(&Velmora::setEnableEmpty, false)}), "{validate}", qint16(13),
            "x", "Text, povinné");
        row("cleared by validating", type(itNum, "0.00"), "1,234", qint16(8), "{validate}",
            "Číslo, 2 desetinná místa");
    }
    void error()
    {
        TestForm t;
        t.field->setMessages(false);
        VFETCH(Setup, setup)(t.field);
        QString message;
        connect(t.field, qOverload<qint16 &, QString &>(&Velmora::Error), this,
                [&](qint16 &, QString &m) { message = m; });
        const auto act = [&](const QString &keys) {
            if (keys == "{validate}")
                t.field->DoValidate();
            else
                velmora::test::keys(keys).simulate(t.box());
        };
        enter(t.field);
        heard.clear();
        act(VFETCH(QString, keys));
        QCOMPARE(t.field->Error(), VFETCH(qint16, error));
        const QString expected = message + ' ' + VFETCH(QString, hint);
        QCOMPARE(said(t.box(), QAccessible::Description), expected);
        const auto alert = std::find_if(heard.cbegin(), heard.cend(), [&](const Heard &h) {
            return h.object == t.box() && h.type == QAccessible::Alert;
        });
        QVERIFY(alert != heard.cend());
        QCOMPARE(alert->description, expected);

        act(VFETCH(QString, recovery));
        QCOMPARE(said(t.box(), QAccessible::Description), VFETCH(QString, hint));
    }

    void listRows_data()
    {
        columns<bool, int, int, int, QString>({"newItemRow", "rows", "row", "column", "text"});
        row("an id", false, 3, 1, 0, "12");
        row("a name", false, 3, 0, 1, "Novák");
        row("a city", false, 3, 2, 2, "Ostrava");
        row("the new-item row", true, 4, 0, 0, "<NOVÝ>");
        row("a row after the new-item row", true, 4, 1, 1, "Novák");
    }
    void listRows()
    {
        TestForm t;
        t.field->setLabel("Zákazník");
        t.field->setSetList(true);
        t.field->setListFormatString("N0|A|A");
        t.field->setTextCol(1);
        t.field->setListAddNewItem(VFETCH(bool, newItemRow));
        for (QString r : {"7\tNovák\tBrno", "12\tDvořák\tPraha", "30\tČerný\tOstrava"})
            t.field->AddItem(r);
        t.field->InitList();
        auto *table = t.field->findChild<QTableView *>("lstList");
        QVERIFY(table);
        QCOMPARE(said(table, QAccessible::Name), "Zákazník – seznam");
        QCOMPARE(said(table->window(), QAccessible::Name), "Zákazník – seznam");
        QAccessibleTableInterface *cells
            = QAccessible::queryAccessibleInterface(table)->tableInterface();
        QVERIFY(cells);
        QCOMPARE(cells->rowCount(), VFETCH(int, rows));
        QCOMPARE(cells->columnCount(), 3);
        QAccessibleInterface *cell = cells->cellAt(VFETCH(int, row), VFETCH(int, column));
        QVERIFY(cell);
        QCOMPARE(cell->text(QAccessible::Name), VFETCH(QString, text));
    }
};

VELMORA_TEST(TestAccessibility)
#include "tst_accessibility.moc"
