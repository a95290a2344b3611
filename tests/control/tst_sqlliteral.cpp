// Hostile texts through the field's SQL literal into real tables. Hosts put SQLValue
// between apostrophes straight into the statement text, so whatever entered the field
// the statement must stay one literal and store exactly Value, and Value must be text
// every database stores as it is: no lone surrogate, no control character but tab.

#include "common/TestPlatform.h"
#include "common/TestRegistry.h"
#include "common/TestServer.h"

#include <velmora/Velmora.h>

#include <QtCore/QTemporaryDir>
#include <QtGui/QClipboard>
#include <QtSql/QSqlQuery>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>

using namespace velmora;
using namespace Qt::StringLiterals;

namespace {

const QString SQLite = u"SQLite"_s, PostgreSQL = u"PostgreSQL"_s;

// The whole table, a row as "id:text".
QStringList rows(const QSqlDatabase &db)
{
    QSqlQuery q(u"SELECT id, a FROM t ORDER BY id"_s, db);
    QStringList all;
    while (q.next())
        all << q.value(0).toString() + u':' + q.value(1).toString();
    return all;
}

} // namespace

class TestSqlLiteral : public QObject
{
    Q_OBJECT

    test::TestPlatform platform {test::czechSpace()};
    QWidget form;
    QTemporaryDir dir;
    QHash<QString, QString> why; // why a database cannot be used

private Q_SLOTS:
    void initTestCase()
    {
        form.show();
        QApplication::setActiveWindow(&form);
        QVERIFY(QTest::qWaitForWindowActive(&form));
        QSqlDatabase lite = QSqlDatabase::addDatabase(u"QSQLITE"_s, SQLite);
        lite.setDatabaseName(dir.filePath(u"literal.db"_s));
        if (!lite.open())
            why[SQLite] = lite.lastError().text();
        test::openTestServer(PostgreSQL, why[PostgreSQL]);
    }

    void hostileTextStaysOneLiteral_data()
    {
        test::columns<QString, bool, QString, QString>({"connection", "paste", "input", "value"});
        // A row per database; `value` is what the field keeps (well formed), the input
        // when null.
        const auto add = [](const char *name, bool paste, const QString &input,
                            const QString &value = QString()) {
            for (const QString &db : {SQLite, PostgreSQL})
                test::row((QByteArray(name) + " / " + db.toLatin1()).constData(), db, paste, input,
                          value.isNull() ? input : value);
        };
        const QString injection = u"'||(SELECT group_concat(name) FROM sqlite_master)) --"_s;
        const QString replaced = u"x\uFFFD"_s + injection;
        add("apostrophes and a statement break", false, u"O'Brien's ''x'); DROP TABLE t; --"_s);
        // With backslash escapes on, \' would end the literal one apostrophe early.
        add("backslash before apostrophe", false, u"C:\\dir\\' OR ''='"_s);
        add("high surrogate before apostrophe", false, u"x\xD800"_s + injection, replaced);
        add("low surrogate before apostrophe", false, u"x\xDC00' --"_s, u"x\uFFFD' --"_s);
        add("lone surrogate at the end", false, u"O'Neil\xD83D"_s, u"O'Neil\uFFFD"_s);
        add("surrogate pair", false, u"a'\U0001F600"_s);
        add("NUL inside", false, u"a\0'b"_s, u"a'b"_s);
        add("controls, DEL, line break", false, u"a\x01\x1F'b\x7F\x85\r\n"_s, u"a'b"_s);
        add("tab", false, u"a\t'b"_s);
        add("leading and trailing blanks", false, u"  ' x '  "_s);
        // Paste drops line breaks and tabs before the entry rule sees the text.
        add("pasted apostrophes and line break", true, u"O'Brien\r\n'x'"_s, u"O'Brien'x'"_s);
        add("pasted high surrogate before apostrophe", true, u"x\xD800"_s + injection, replaced);
    }
    void hostileTextStaysOneLiteral()
    {
        std::unique_ptr<Velmora> field(new Velmora(&form));
        field->show();
        field->setAlfaNumTrim(atNone);
        if (VFETCH(bool, paste)) {
            field->setFocus();
            QGuiApplication::clipboard()->setText(VFETCH(QString, input));
            QTest::keyClick(field->findChild<QLineEdit *>(u"txtInput"_s), Qt::Key_V,
                            Qt::ControlModifier);
        } else {
            field->setValue(VFETCH(QString, input));
        }
        const QString value = field->Value();
        QCOMPARE(value, VFETCH(QString, value));

        const QString connection = VFETCH(QString, connection);
        QSqlDatabase db = QSqlDatabase::database(connection, false);
        QVERIFY2(db.isOpen() && why[connection].isEmpty(), qPrintable(why[connection]));
        QSqlQuery q(db);
        for (const char *setup : {"CREATE TABLE IF NOT EXISTS t (id integer PRIMARY KEY, a text)",
                                  "DELETE FROM t", "INSERT INTO t VALUES (1, 'O''Hara'), (3, 'x')"})
            QVERIFY2(q.exec(QLatin1String(setup)), qPrintable(q.lastError().text()));
        const QStringList tables = db.tables();
        const QString sql = u"INSERT INTO t(id, a) VALUES (2, '"_s + field->SQLValue() + u"')"_s;
        QVERIFY2(q.exec(sql), qPrintable(q.lastError().text()));
        QCOMPARE(rows(db), (QStringList {u"1:O'Hara"_s, u"2:"_s + value, u"3:x"_s}));
        QCOMPARE(db.tables(), tables);
    }
};

VELMORA_TEST(TestSqlLiteral)
#include "tst_sqlliteral.moc"
