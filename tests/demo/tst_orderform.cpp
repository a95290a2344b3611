// The order form over a scratch database: the order INSERT built from the fields' SQL
// literals, the settings file the form keeps, and Save refusing or writing the order.

#include "common/TestPlatform.h"
#include "common/TestRegistry.h"

#include "OrderForm.h"

#include <velmora/FormSettings.h>
#include <velmora/Velmora.h>

#include <QtCore/QFile>
#include <QtCore/QJsonObject>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTextStream>
#include <QtSql/QSqlQuery>

using namespace velmora;
using namespace velmora::test;
using namespace Qt::StringLiterals;

namespace {

enum SettingsFile { NoFile, Relabelled, Partial };
using Literals = QStringList; // customer, product, quantity, price, delivery, paid, note

// The saved orders, newest first, one line each.
QStringList storedOrders()
{
    QSqlQuery q(u"SELECT printf('%s %s %s %s %s %s %s', customer_id, product_id, quantity, "
                "unit_price, coalesce(delivery, 'NULL'), coalesce(paid, 'NULL'), "
                "coalesce(note, 'NULL')) FROM orders ORDER BY id DESC"_s);
    QStringList rows;
    while (q.next())
        rows << q.value(0).toString();
    return rows;
}

} // namespace

class TestOrderForm : public QObject
{
    Q_OBJECT

    QTemporaryDir dir;
    QString log;
    QTextStream logStream {&log};
    std::optional<demo::OrderDatabase> db;

private Q_SLOTS:
    void initTestCase()
    {
        QSqlDatabase connection = QSqlDatabase::addDatabase(u"QSQLITE"_s);
        connection.setDatabaseName(dir.filePath(u"form.db"_s));
        db.emplace(connection);
        QVERIFY2(db->prepare(50), qPrintable(db->lastError()));
    }

    // Literals as the fields hand them out, through the INSERT into SQLite, and what is
    // stored; a literal that is not what its field would give never reaches the SQL.
    void orderInsert_data()
    {
        columns<Literals, QString>({"literals", "stored"});
        row("a whole order", Literals {"7", "2", "12", "149.9", "12/15/2026", "-1", "rychle"},
            "7 2 12.0 149.9 2026-12-15 -1 rychle");
        row("quotes doubled by the field",
            Literals {"7", "2", "1", "0.5", "", "0", "O''Brien – ''x''); DROP TABLE orders; --"},
            "7 2 1.0 0.5 NULL 0 O'Brien – 'x'); DROP TABLE orders; --");
        row("empty optional fields are NULL", Literals {"7", "2", "3", "10", "", "", ""},
            "7 2 3.0 10.0 NULL NULL NULL");
        row("exponent, sign, zeros of a year",
            Literals {"7", "2", "1e3", "-2.5", "01/02/0999", "", ""},
            "7 2 1000.0 -2.5 0999-01-02 NULL NULL");
        row("malformed date", Literals {"7", "2", "1", "1", "24.12.2026", "", ""},
            "7 2 1.0 1.0 NULL NULL NULL");
        row("statement after a date",
            Literals {"7", "2", "1", "1", "12/24/2026'); DELETE FROM orders; --", "", ""},
            "7 2 1.0 1.0 NULL NULL NULL");
        row("regional number refused", Literals {"7", "2", "1,5", "10", "", "", ""}, "");
        row("query in a number refused",
            Literals {"7", "2", "1", "(SELECT count(*) FROM customers)", "", "", ""}, "");
        row("no customer refused", Literals {"", "2", "1", "1", "", "", ""}, "");
        row("zero quantity refused", Literals {"7", "2", "0", "1", "", "", ""}, "");
    }
    void orderInsert()
    {
        QFETCH(Literals, literals);
        QSqlQuery(u"DELETE FROM orders"_s);
        const Literals &l = literals;
        db->saveOrder({l[0], l[1], l[2], l[3], l[4], l[5], l[6]});
        QTEST(storedOrders().join(u'\n'), "stored");
    }

    // The file is loaded only when it was written for exactly these fields; anything
    // else is replaced by the form's own settings, none of it loaded.
    void settingsFile_data()
    {
        columns<int>({"file"});
        row("no file yet", int(NoFile));
        row("a label changed in the file", int(Relabelled));
        row("a field missing from the file", int(Partial));
    }
    void settingsFile()
    {
        QFETCH(int, file);
        TestPlatform platform;
        demo::OrderForm fresh(*db, logStream);
        const QJsonObject own = saveFormSettings(&fresh).object();
        QJsonObject changed = own, quantity = own.value(u"quantity"_s).toObject();
        quantity.insert(u"Label"_s, u"Počet kusů"_s);
        changed.insert(u"quantity"_s, quantity);
        if (file == Partial)
            changed.remove(u"note"_s);
        QFile settings(dir.filePath(u"settings-%1.json"_s.arg(file)));
        if (file != NoFile) {
            QVERIFY(settings.open(QIODevice::WriteOnly));
            settings.write(QJsonDocument(changed).toJson());
            settings.close();
        }
        demo::OrderForm form(*db, logStream);
        form.keepSettings(settings.fileName());
        QCOMPARE(form.quantity->Label() == u"Počet kusů"_s, file == Relabelled);
        QVERIFY(settings.open(QIODevice::ReadOnly));
        QCOMPARE(QJsonDocument::fromJson(settings.readAll()).object(),
                 file == Relabelled ? changed : own);
        QCOMPARE(form.customer->ListCount(), 50); // the lists load either way
    }

    // A required field left empty: the exit check names it and nothing is saved. Saved,
    // the order holds what the fields show and the form is emptied.
    void save_data()
    {
        columns<QString>({"empty"});
        for (const char *name :
             {"", "customer", "product", "quantity", "unitPrice", "delivery", "paid", "note"})
            row(*name ? name : "nothing", name);
    }
    void save()
    {
        QFETCH(QString, empty);
        TestPlatform platform;
        demo::OrderForm form(*db, logStream);
        form.keepSettings(QString());
        // The unit price comes with the product.
        const QStringList values {u"5"_s,          u"3"_s,  u"12"_s,    {},
                                  u"15.12.2026"_s, u"-1"_s, u"O'Neil"_s};
        for (qsizetype i = 0; i < values.size(); ++i)
            if (!values[i].isEmpty())
                form.fields()[i]->setValue(values[i]);
        if (!empty.isEmpty())
            form.findChild<Velmora *>(empty)->Clear();
        const bool saves = empty.isEmpty() || empty == "note"_L1;
        const qsizetype before = storedOrders().size();
        QCOMPARE(form.save(), saves);
        QCOMPARE(storedOrders().size(), before + saves);
        if (!saves) {
            QCOMPARE(platform.boxes.size(), 1);
            QCOMPARE(platform.boxes.first().title, form.findChild<Velmora *>(empty)->Label());
            return;
        }
        QVERIFY(platform.boxes.isEmpty());
        QCOMPARE(storedOrders().first(),
                 u"5 3 12.0 24.9 2026-12-15 -1 "_s + (empty.isEmpty() ? u"O'Neil"_s : u"NULL"_s));
        for (Velmora *field : form.fields())
            QVERIFY2(field->SQLValue().isEmpty(), qPrintable(field->objectName()));
    }

    // The customer list follows Czech order, where code points put a háček after z.
    void customersSortTheCzechWay()
    {
        QHash<QString, int> first; // surname -> its first place in the list
        for (const demo::Customer &c : demo::makeCustomers(3000)) {
            const QString surname = c.name.section(u' ', 0, 0);
            first[surname] = qMin(first.value(surname, INT_MAX), c.sortOrder);
        }
        const QStringList order {u"Beneš"_s, u"Čermák"_s, u"Černý"_s,   u"Doležal"_s, u"Král"_s,
                                 u"Kříž"_s,  u"Kučera"_s, u"Svoboda"_s, u"Šťastná"_s, u"Urban"_s};
        for (qsizetype i = 1; i < order.size(); ++i)
            QVERIFY2(first.value(order[i - 1]) < first.value(order[i]), qPrintable(order[i]));
    }

    // A second start on the file finds its data, products added since included.
    void databaseIsKeptBetweenRuns()
    {
        const std::optional<int> added = db->addProduct(u"Lepidlo 'Extra'"_s, 12.5);
        QVERIFY(added);
        demo::OrderDatabase again(QSqlDatabase::database());
        QVERIFY(again.prepare(3000) && !again.created());
        QCOMPARE(again.count(u"customers"_s), 50);
        QCOMPARE(again.productPrice(*added), std::optional<double>(12.5));
    }
};

VELMORA_TEST(TestOrderForm)
#include "tst_orderform.moc"
