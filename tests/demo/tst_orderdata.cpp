// The order-entry demo's data: the generated customers, the order INSERT built from the
// fields' SQL literals, and the database kept between runs.

#include "common/TestPlatform.h"
#include "common/TestRegistry.h"

#include "OrderDatabase.h"

#include <velmora/Velmora.h>

#include <QtCore/QSet>
#include <QtCore/QTemporaryDir>
#include <QtSql/QSqlQuery>
#include <QtTest/QTest>

using namespace velmora;
using namespace Qt::StringLiterals;

namespace {

// A database with the demo's tables and a few customers, on a connection of its own.
struct Scratch
{
    explicit Scratch(const QString &file, const QString &name = u"scratch"_s) : name(name)
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        db.setDatabaseName(file);
        data.emplace(db);
    }
    ~Scratch()
    {
        data.reset();
        QSqlDatabase::removeDatabase(name);
    }
    // The stored columns of an order, NULL as "NULL".
    QStringList stored(int id) const
    {
        QSqlQuery q(data->database());
        q.prepare(u"SELECT customer_id, product_id, quantity, unit_price, delivery, paid, note "
                  "FROM orders WHERE id = ?"_s);
        q.addBindValue(id);
        QStringList cells;
        if (q.exec() && q.next())
            for (int c = 0; c < 7; ++c)
                cells << (q.isNull(c) ? u"NULL"_s : q.value(c).toString());
        return cells;
    }

    QString name;
    std::optional<demo::OrderDatabase> data;
};

using Literals = QStringList; // customer, product, quantity, price, delivery, paid, note

demo::OrderLiterals order(const Literals &l)
{
    return {l.value(0), l.value(1), l.value(2), l.value(3), l.value(4), l.value(5), l.value(6)};
}

} // namespace

class TestOrderData : public QObject
{
    Q_OBJECT

    QTemporaryDir dir;

private Q_SLOTS:
    void customersAreTheSameEverywhereAndNeverRepeated()
    {
        const QList<demo::Customer> a = demo::makeCustomers(3000);
        QCOMPARE(a.size(), 3000);
        QSet<QString> seen;
        QSet<int> orders;
        for (qsizetype i = 0; i < a.size(); ++i) {
            QCOMPARE(a[i].id, int(i + 1));
            seen.insert(a[i].name + u'|' + a[i].city);
            orders.insert(a[i].sortOrder);
        }
        QCOMPARE(seen.size(), a.size());
        QCOMPARE(orders.size(), a.size()); // the sort order is a permutation
        QCOMPARE(*std::max_element(orders.begin(), orders.end()), 2999);
        const QList<demo::Customer> b = demo::makeCustomers(3000);
        for (qsizetype i = 0; i < a.size(); ++i)
            QVERIFY(a[i].name == b[i].name && a[i].city == b[i].city);
        // Asked for more than there are combinations: each one once.
        QCOMPARE(demo::makeCustomers(100000).size(), 18000);
    }

    // The list is ordered by sortOrder: Czech order, where a code-point order puts
    // letters with a háček after z.
    void customersSortTheCzechWay_data()
    {
        test::columns<QString, QString>({"before", "after"});
        test::row("C before Č", "Beneš", "Čermák");
        test::row("Č before D", "Černý", "Doležal");
        test::row("ř after r, before u", "Kříž", "Kučera");
        test::row("Š before U", "Šťastný", "Urban");
        test::row("S before Š", "Svoboda", "Šťastná");
        test::row("á as a, then the rest", "Král", "Kučera");
    }
    void customersSortTheCzechWay()
    {
        QFETCH(QString, before);
        QFETCH(QString, after);
        int lastBefore = -1, firstAfter = INT_MAX;
        for (const demo::Customer &c : demo::makeCustomers(3000)) {
            const QString surname = c.name.section(u' ', 0, 0);
            if (surname == before)
                lastBefore = qMax(lastBefore, c.sortOrder);
            else if (surname == after)
                firstAfter = qMin(firstAfter, c.sortOrder);
        }
        QVERIFY2(lastBefore >= 0 && firstAfter < INT_MAX, "both names among the customers");
        QVERIFY(lastBefore < firstAfter);
    }

    void isoDate_data()
    {
        test::columns<QString, QString>({"literal", "iso"});
        test::row("month first", "12/24/2026", "2026-12-24");
        test::row("leading zeros kept", "01/02/0999", "0999-01-02");
        test::row("empty", "", "");
        test::row("regional form", "24.12.2026", "");
        test::row("one-digit parts", "1/2/2026", "");
        test::row("two-digit year", "12/24/26", "");
        test::row("trailing text", "12/24/2026' --", "");
    }
    void isoDate()
    {
        QFETCH(QString, literal);
        QFETCH(QString, iso);
        QCOMPARE(demo::isoDateFromLiteral(literal), iso);
    }

    // Literals as the fields hand them out, through the INSERT into SQLite, and what is
    // stored; a literal that is not what its field would give never reaches the SQL.
    void orderInsertStores_data()
    {
        test::columns<Literals, bool, Literals>({"literals", "saved", "stored"});
        test::row("a whole order", Literals {"7", "2", "12", "149.9", "12/15/2026", "-1", "rychle"},
                  true, Literals {"7", "2", "12", "149.9", "2026-12-15", "-1", "rychle"});
        test::row(
            "quotes doubled by the field",
            Literals {"7", "2", "1", "0.5", "", "0", "O''Brien – ''x''); DROP TABLE orders; --"},
            true,
            Literals {"7", "2", "1", "0.5", "NULL", "0", "O'Brien – 'x'); DROP TABLE orders; --"});
        test::row("empty optional fields are NULL", Literals {"7", "2", "3", "10", "", "", ""},
                  true, Literals {"7", "2", "3", "10", "NULL", "NULL", "NULL"});
        test::row("exponent and sign", Literals {"7", "2", "1e3", "-2.5", "", "", ""}, true,
                  Literals {"7", "2", "1000", "-2.5", "NULL", "NULL", "NULL"});
        test::row("regional number refused", Literals {"7", "2", "1,5", "10", "", "", ""}, false,
                  Literals {});
        test::row("statement in a number refused",
                  Literals {"7", "2", "1); DELETE FROM orders; --", "1", "", "", ""}, false,
                  Literals {});
        test::row("no customer refused", Literals {"", "2", "1", "1", "", "", ""}, false,
                  Literals {});
        test::row("zero quantity refused by the table", Literals {"7", "2", "0", "1", "", "", ""},
                  false, Literals {});
    }
    void orderInsertStores()
    {
        QFETCH(Literals, literals);
        QFETCH(bool, saved);
        QFETCH(Literals, stored);
        Scratch db(dir.filePath(u"insert.db"_s));
        QVERIFY2(db.data->prepare(20), qPrintable(db.data->lastError()));
        const int before = db.data->count(u"orders"_s);
        const std::optional<int> id = db.data->saveOrder(order(literals));
        QCOMPARE(id.has_value(), saved);
        QCOMPARE(db.data->count(u"orders"_s), before + (saved ? 1 : 0));
        if (saved)
            QCOMPARE(db.stored(*id), stored);
    }

    // The fields' own literals: what a user enters under Czech settings is stored as the
    // value it stands for.
    void fieldLiteralsStoreTheirValues_data()
    {
        test::columns<int, QString, QString, QString>({"type", "format", "value", "stored"});
        test::row("number with decimals", int(itNum), "#,##0.00", "1234,5", "1234.5");
        test::row("whole number", int(itNum), "#,##0", "12", "12");
        test::row("date", int(itDate), "", "24.12.2026", "2026-12-24");
        test::row("paid", int(itBool), "ANO;NE;N", "-1", "-1");
        test::row("not paid", int(itBool), "ANO;NE;N", "0", "0");
        test::row("note with quotes", int(itAlfaNum), "", "Volat „předem“, 'rampa B'",
                  "Volat „předem“, 'rampa B'");
    }
    void fieldLiteralsStoreTheirValues()
    {
        QFETCH(int, type);
        QFETCH(QString, format);
        QFETCH(QString, value);
        QFETCH(QString, stored);
        test::TestPlatform platform;
        Velmora field;
        field.setInputType(InpType(type));
        if (!format.isEmpty())
            field.setFormatStr(format);
        field.setValue(value);

        Literals literals {"1", "1", "1", "1", "", "", ""};
        const int column = type == itDate ? 4 : type == itBool ? 5 : type == itAlfaNum ? 6 : 3;
        literals[column] = field.SQLValue();
        Scratch db(dir.filePath(u"fields.db"_s));
        QVERIFY(db.data->prepare(5));
        const std::optional<int> id = db.data->saveOrder(order(literals));
        QVERIFY2(id,
                 qPrintable(db.data->lastError() + u" in "_s + demo::orderInsert(order(literals))));
        QCOMPARE(db.stored(*id).value(column), stored);
    }

    // The file is made once and kept: a second start finds the data and the orders.
    void databaseIsKeptBetweenRuns()
    {
        const QString file = dir.filePath(u"kept.db"_s);
        int productId = 0;
        {
            Scratch db(file);
            QVERIFY(db.data->prepare(40));
            QVERIFY(db.data->created());
            QCOMPARE(db.data->count(u"customers"_s), 40);
            const int products = db.data->count(u"products"_s);
            QCOMPARE(products, int(demo::makeProducts().size()));
            const std::optional<int> id = db.data->addProduct(u"Lepidlo 'Extra'"_s, 12.5);
            QVERIFY(id);
            QCOMPARE(*id, products + 1);
            productId = *id;
            QVERIFY(db.data->saveOrder(
                order({"3", QString::number(productId), "2", "12.5", "", "", ""})));
        }
        Scratch again(file, u"again"_s);
        QVERIFY(again.data->prepare(3000));
        QVERIFY(!again.data->created());
        QCOMPARE(again.data->count(u"customers"_s), 40);
        QCOMPARE(again.data->count(u"orders"_s), 1);
        QCOMPARE(again.data->productPrice(productId), std::optional<double>(12.5));
        QCOMPARE(again.data->productPrice(9999), std::optional<double>());

        // The table under the form: the order with its customer and product, Czech forms.
        QSqlQuery q(demo::OrderDatabase::ordersSql(), again.data->database());
        QVERIFY(q.next());
        QCOMPARE(q.value(u"Zboží"_s).toString(), u"Lepidlo 'Extra'"_s);
        QCOMPARE(q.value(u"Celkem"_s).toString(), u"25,00"_s);
        QCOMPARE(q.value(u"Zákazník"_s).toString(), demo::makeCustomers(40).at(2).name);
    }
};

VELMORA_TEST(TestOrderData)
#include "tst_orderdata.moc"
