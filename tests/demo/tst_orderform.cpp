// The order form over a scratch database: the settings file it keeps, the price that
// follows the product, and Save refusing or writing the order.

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
#include <QtSql/QSqlQueryModel>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>

using namespace velmora;
using namespace Qt::StringLiterals;

namespace {

enum SettingsFile { NoFile, ThisForm, Relabelled, Partial, OlderForm, NotJson };

} // namespace

class TestOrderForm : public QObject
{
    Q_OBJECT

    QTemporaryDir dir;
    QString log;
    QTextStream logStream {&log};
    std::optional<demo::OrderDatabase> db;

    // A form on the default connection, with its fields filled in as a valid order.
    struct Filled
    {
        Filled(demo::OrderDatabase &db, QTextStream &log) : form(db, log)
        {
            form.keepSettings(QString()); // no file: the lists load, nothing is written
            form.show();
            QApplication::setActiveWindow(&form);
            form.customer->setValue(u"5"_s);
            form.product->setValue(u"3"_s);
            form.quantity->setValue(u"12"_s);
            form.delivery->setValue(u"15.12.2026"_s);
            form.paid->setValue(u"-1"_s);
            form.note->setValue(u"O'Neil"_s);
        }
        Velmora *field(const QString &name) const { return form.findChild<Velmora *>(name); }
        test::TestPlatform platform;
        demo::OrderForm form;
    };

private Q_SLOTS:
    void initTestCase()
    {
        QSqlDatabase connection = QSqlDatabase::addDatabase(u"QSQLITE"_s);
        connection.setDatabaseName(dir.filePath(u"form.db"_s));
        db.emplace(connection);
        QVERIFY2(db->prepare(50), qPrintable(db->lastError()));
    }

    // The file is loaded only when it was written for exactly these fields; anything
    // else is replaced by the form's own settings, none of it loaded.
    void settingsFile_data()
    {
        test::columns<int, bool, QString>({"file", "written", "quantityLabel"});
        test::row("no file yet", int(NoFile), true, "Množství");
        test::row("this form's file", int(ThisForm), false, "Množství");
        test::row("a label changed in the file", int(Relabelled), false, "Počet kusů");
        test::row("a field missing from the file", int(Partial), true, "Množství");
        test::row("an older form's file", int(OlderForm), true, "Množství");
        test::row("not JSON", int(NotJson), true, "Množství");
    }
    void settingsFile()
    {
        QFETCH(int, file);
        QFETCH(bool, written);
        QFETCH(QString, quantityLabel);
        test::TestPlatform platform;
        QJsonObject own;
        {
            demo::OrderForm fresh(*db, logStream);
            own = saveFormSettings(&fresh).object();
        }
        QJsonObject relabelled = own;
        QJsonObject quantity = relabelled.value(u"quantity"_s).toObject();
        quantity.insert(u"Label"_s, u"Počet kusů"_s);
        relabelled.insert(u"quantity"_s, quantity);
        QJsonObject partial = relabelled;
        partial.remove(u"note"_s);
        const QJsonObject older {{u"Zákazník"_s, own.value(u"customer"_s)}};
        const QByteArray content = file == ThisForm ? QJsonDocument(own).toJson()
            : file == Relabelled                    ? QJsonDocument(relabelled).toJson()
            : file == Partial                       ? QJsonDocument(partial).toJson()
            : file == OlderForm                     ? QJsonDocument(older).toJson()
            : file == NotJson                       ? "{\"customer\":"_ba
                                                    : QByteArray();

        const QString path = dir.filePath(QStringLiteral("settings-%1.json").arg(file));
        if (file != NoFile) {
            QFile out(path);
            QVERIFY(out.open(QIODevice::WriteOnly));
            out.write(content);
        }
        demo::OrderForm form(*db, logStream);
        form.keepSettings(path);
        QCOMPARE(form.quantity->Label(), quantityLabel);
        QFile in(path);
        QVERIFY(in.open(QIODevice::ReadOnly));
        const QByteArray after = in.readAll();
        QCOMPARE(after != content, written);
        if (written)
            QCOMPARE(QJsonDocument::fromJson(after).object(), own);
        QCOMPARE(form.customer->ListCount(), 50); // the lists load either way
    }

    void priceFollowsTheProduct()
    {
        Filled f(*db, logStream);
        const QList<demo::Product> products = demo::makeProducts();
        QCOMPARE(f.form.price->varValue().toDouble(), products.at(2).price);
        f.form.price->setValue(u"1"_s);
        f.form.product->setValue(u"7"_s);
        QCOMPARE(f.form.price->varValue().toDouble(), products.at(6).price);
    }

    // A required field left empty: the exit check tells the user and nothing is saved.
    void saveRefusesAnIncompleteOrder_data()
    {
        test::columns<QString, QString>({"empty", "title"});
        test::row("customer", "customer", "Zákazník");
        test::row("product", "product", "Zboží");
        test::row("quantity", "quantity", "Množství");
        test::row("unit price", "unitPrice", "Cena za jednotku");
        test::row("delivery date", "delivery", "Datum dodání");
        test::row("paid", "paid", "Zaplaceno");
        test::row("note is optional", "note", "");
    }
    void saveRefusesAnIncompleteOrder()
    {
        QFETCH(QString, empty);
        QFETCH(QString, title);
        Filled f(*db, logStream);
        f.field(empty)->Clear();
        const int before = db->count(u"orders"_s);
        QCOMPARE(f.form.save(), title.isEmpty());
        QCOMPARE(db->count(u"orders"_s), before + (title.isEmpty() ? 1 : 0));
        QCOMPARE(f.platform.boxes.size(), title.isEmpty() ? 0 : 1);
        if (!title.isEmpty())
            QCOMPARE(f.platform.boxes.first().title, title);
    }

    void saveWritesTheOrderAndEmptiesTheForm()
    {
        Filled f(*db, logStream);
        QVERIFY(f.form.customer->FormChanged());
        QVERIFY(f.form.save());
        QSqlQuery q(u"SELECT customer_id, product_id, quantity, unit_price, delivery, paid, "
                    "note, id FROM orders ORDER BY id DESC LIMIT 1"_s);
        QVERIFY(q.next());
        const QStringList stored {q.value(0).toString(), q.value(1).toString(),
                                  q.value(2).toString(), q.value(3).toString(),
                                  q.value(4).toString(), q.value(5).toString(),
                                  q.value(6).toString()};
        QCOMPARE(stored,
                 (QStringList {u"5"_s, u"3"_s, u"12"_s, u"24.9"_s, u"2026-12-15"_s, u"-1"_s,
                               u"O'Neil"_s}));
        QCOMPARE(f.form.status(), u"Objednávka č. %1 uložena."_s.arg(q.value(7).toInt()));
        for (Velmora *field : f.form.fields())
            QVERIFY2(field->SQLValue().isEmpty(), qPrintable(field->objectName()));
        QVERIFY(!f.form.customer->FormChanged()); // closing now does not ask
        QCOMPARE(f.form.ordersModel()->index(0, 0).data().toInt(), q.value(7).toInt());
    }
};

VELMORA_TEST(TestOrderForm)
#include "tst_orderform.moc"
