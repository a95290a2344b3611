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

QString said(QObject *o, QAccessible::Text t = QAccessible::Description)
{
    return QAccessible::queryAccessibleInterface(o)->text(t);
}

// The alerts sent, each with what its object said at that moment.
QList<QPair<QObject *, QString>> alerts;
void record(QAccessibleEvent *e)
{
    if (e->type() == QAccessible::Alert)
        alerts.append({e->object(), said(e->object())});
}

void enter(Velmora *f)
{
    QApplication::setActiveWindow(f->window());
    f->setFocus();
    QCoreApplication::processEvents();
}

} // namespace

class TestAccessibility : public QObject
{
    Q_OBJECT
    detail::AccessibilityListener m_previous = nullptr;

private slots:
    void initTestCase() { m_previous = detail::setAccessibilityListener(record); }
    void cleanupTestCase() { detail::setAccessibilityListener(m_previous); }

    // Built before the form is shown: the buddy label and the host's name; after it: the
    // Label and the buddy's new text, which the field reads when it is entered.
    void name_data()
    {
        columns<QString, bool, QString, QString, QString, QString>(
            {"buddy", "ofBox", "host", "label", "renamed", "name"});
        row("buddy, mnemonic dropped", "&Jméno && titul", false, "", "", "", "Jméno & titul");
        row("buddy of the edit box", "Obec", true, "", "", "", "Obec");
        row("rich text buddy", "<b>Ulice</b>", false, "", "", "", "Ulice");
        row("host's name", "", false, "PSČ", "", "", "PSČ");
        row("Label first", "Jméno", false, "PSČ", "Příjmení", "", "Příjmení");
        row("buddy before host's name", "Jméno", false, "PSČ", "", "", "Jméno");
        row("buddy renamed", "Jméno", false, "", "", "Křestní jméno", "Křestní jméno");
    }
    void name()
    {
        TestPlatform platform(czechSpace());
        QWidget form;
        auto *label = new QLabel(VFETCH(QString, buddy), &form);
        auto *field = new Velmora(&form);
        QLineEdit *box = field->findChild<QLineEdit *>();
        label->setBuddy(VFETCH(bool, ofBox) ? static_cast<QWidget *>(box) : field);
        field->setAccessibleName(VFETCH(QString, host));
        form.show();
        field->setLabel(VFETCH(QString, label));
        if (!VFETCH(QString, renamed).isEmpty()) {
            label->setText(VFETCH(QString, renamed));
            enter(field);
        }
        QCOMPARE(said(box, QAccessible::Name), VFETCH(QString, name));
    }

    // One row per kind of hint; a host's own description wins. A message, when keys (or
    // "{validate}") bring one, is announced and read before the hint until the recovery.
    void description_data()
    {
        columns<Setup, QString, QString, QString>({"setup", "description", "keys", "recovery"});
        row("text of 3", type(itAlfaNum, {}, {set(&Velmora::setMaxLength, 3)}),
            "Text, nejvýše 3 znaky", "", "");
        row("number", type(itNum), "Číslo", "", "");
        row("whole number", type(itNum, "#,##0"), "Celé číslo", "", "");
        row("1 decimal", type(itNum, "0.0"), "Číslo, 1 desetinné místo", "", "");
        row("typed past the decimals, key", type(itNum, "0.00"), "Číslo, 2 desetinná místa",
            "1,234", "{Bs}");
        row("typed past the decimals, validate", type(itNum, "0.00"), "Číslo, 2 desetinná místa",
            "1,234", "{validate}");
        row("integer places checked",
            type(itNum, "####0.00", {set(&Velmora::setControlLength, clBoth)}),
            "Číslo, 2 desetinná místa, nejvýše 5 míst před desetinnou čárkou", "", "");
        row("date, own order", type(itDate, "mm/dd/yy"), "Datum ve tvaru MM.DD.RR", "", "");
        row("date, own separator",
            type(itDate, {}, {set(&Velmora::setFormatDatOddel, QString("/"))}),
            "Datum ve tvaru DD/MM/RRRR", "", "");
        row("boolean", type(itBool, "Pravda;Nepravda;B"), "Hodnota Pravda nebo Nepravda", "", "");
        row("required, empty on validating",
            type(itAlfaNum, {}, {set(&Velmora::setEnableEmpty, false)}), "Text, povinné",
            "{validate}", "x");
        row("required, not editable",
            type(itAlfaNum, {},
                 {set(&Velmora::setEnableEmpty, false), set(&Velmora::setDisplayMode, dmLandable)}),
            "Text", "", "");
        row("list", type(itNum, "0", {set(&Velmora::setSetList, true)}),
            "Celé číslo, výběr ze seznamu klávesou Page Down", "", "");
        const Setup hostsOwn = [](Velmora *f) {
            f->setAccessibleDescription("Den splatnosti");
        };
        row("host's description", type(itDate, {}, {hostsOwn}), "Den splatnosti", "", "");
    }
    void description()
    {
        TestForm t;
        t.field->setMessages(false);
        VFETCH(Setup, setup)(t.field);
        QString message;
        connect(t.field, qOverload<qint16 &, QString &>(&Velmora::Error), this,
                [&](qint16 &, QString &m) { message = m; });
        const auto act = [&](const QString &keys) {
            keys == "{validate}" ? void(t.field->DoValidate())
                                 : velmora::test::keys(keys).simulate(t.box());
        };
        enter(t.field);
        const QString hint = VFETCH(QString, description);
        QCOMPARE(said(t.box()), hint);
        if (VFETCH(QString, keys).isEmpty())
            return;
        alerts.clear();
        act(VFETCH(QString, keys));
        QVERIFY(!message.isEmpty());
        QCOMPARE(alerts, (QList<QPair<QObject *, QString>> {{t.box(), message + ' ' + hint}}));
        act(VFETCH(QString, recovery));
        QCOMPARE(said(t.box()), hint);
    }

    void listRows_data()
    {
        columns<bool, int, int, int, QString>({"newItemRow", "rows", "row", "column", "text"});
        row("a value", false, 3, 1, 0, "12");
        row("the new-item row", true, 4, 0, 0, "<NOVÝ>");
        row("below the new-item row", true, 4, 1, 1, "Novák");
    }
    void listRows()
    {
        TestForm t;
        t.field->setLabel("Zákazník");
        t.field->setSetList(true);
        t.field->setListFormatString("N0|A|A");
        t.field->setListAddNewItem(VFETCH(bool, newItemRow));
        for (QString r : {"7\tNovák\tBrno", "12\tDvořák\tPraha", "30\tČerný\tOstrava"})
            t.field->AddItem(r);
        t.field->InitList();
        auto *table = t.field->findChild<QTableView *>("lstList");
        QCOMPARE(said(table, QAccessible::Name), "Zákazník – seznam");
        QCOMPARE(said(table->window(), QAccessible::Name), "Zákazník – seznam");
        QAccessibleTableInterface *cells
            = QAccessible::queryAccessibleInterface(table)->tableInterface();
        QCOMPARE(cells->rowCount(), VFETCH(int, rows));
        QCOMPARE(cells->columnCount(), 3);
        QCOMPARE(cells->cellAt(VFETCH(int, row), VFETCH(int, column))->text(QAccessible::Name),
                 VFETCH(QString, text));
    }
};

VELMORA_TEST(TestAccessibility)
#include "tst_accessibility.moc"
