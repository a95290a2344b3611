// A field with a lookup list: loading, the value's row and what the value forms give
// for it, and the drop-down window driven by real keys and clicks.

#include "common/TestForm.h"
#include "common/TestRegistry.h"
#include "lookup/ListWindow.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlQuery>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QProgressDialog>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableView>
#include <QtWidgets/QToolButton>

using namespace velmora;
using namespace velmora::test;
using namespace Qt::StringLiterals;

namespace {

// Customers as a host adds them: id, name, city.
const QStringList Customers {QStringLiteral("7\tNovák\tBrno"), QStringLiteral("12\tDvořák\tPraha"),
                             QStringLiteral("30\tČerný\tOstrava"),
                             QStringLiteral("12\tDvořák II\tPlzeň")};

// Loads a list of the rows given that shows its column 1.
void loadList(Velmora *f, const QString &format, const QStringList &rows)
{
    f->setSetList(true);
    f->setListFormatString(format);
    f->setTextCol(1);
    for (QString r : rows)
        f->AddItem(r);
    f->InitList();
}

// A field that lists the customers by name, with the id as its value.
void customerList(Velmora *f, bool newItemRow = false)
{
    f->setValueCol(0);
    f->setMatchCol(1);
    f->setListAddNewItem(newItemRow);
    loadList(f, QStringLiteral("N0|A|A"), Customers);
}

QTableView *listTable(Velmora *f)
{
    return f->findChild<QTableView *>(QStringLiteral("lstList"));
}

// The user at the list window: each time the window of the field is open, the next
// action runs in it (from the event loop the open window runs).
class ListUser : public QObject
{
public:
    using Action = std::function<void(QTableView *)>;
    ListUser(Velmora *field, QList<Action> actions) : m_field(field), m_actions(std::move(actions))
    {
        connect(&m_timer, &QTimer::timeout, this, [this] {
            QTableView *t = m_field ? listTable(m_field) : nullptr;
            if (t && t->isVisible() && !m_actions.isEmpty())
                m_actions.takeFirst()(t);
        });
        m_timer.start(5);
    }
    qsizetype left() const { return m_actions.size(); }

private:
    QPointer<Velmora> m_field;
    QList<Action> m_actions;
    QTimer m_timer;
};

const ListUser::Action escape = [](QTableView *table) {
    QTest::keyClick(table, Qt::Key_Escape);
};

// Drops the list down with Page Down; the user acts in the window.
qsizetype dropDown(TestForm &t, QList<ListUser::Action> actions)
{
    ListUser user(t.field, std::move(actions));
    t.field->setFocus();
    QTest::keyClick(t.box(), Qt::Key_PageDown);
    return user.left();
}

// Runs statements on the SQLite file of a connection name, made when missing.
void sqlite(const QString &name, const QString &file, const QStringList &statements)
{
    QSqlDatabase db = QSqlDatabase::contains(name) ? QSqlDatabase::database(name)
                                                   : QSqlDatabase::addDatabase("QSQLITE", name);
    db.setDatabaseName(file);
    QVERIFY(db.open());
    for (const QString &statement : statements)
        QVERIFY2(QSqlQuery(db).exec(statement), qPrintable(statement));
}

QPoint cellCenter(QTableView *table, int row)
{
    return table->visualRect(table->model()->index(row, 1)).center();
}

QStringList column(Velmora *f, int c)
{
    QStringList out;
    const QAbstractItemModel *m = listTable(f)->model();
    for (int r = 0; r < m->rowCount(); ++r)
        out << m->index(r, c).data().toString();
    return out;
}

} // namespace

class TestList : public QObject
{
    Q_OBJECT

private slots:
    void valueFindsItsRow_data()
    {
        columns<QString, int, QString, QString, bool>({"value", "row", "shown", "sql", "listOK"});
        row("an id", "30", 2, "Černý", "30", true);
        row("the upper of two equal rows", "12", 1, "Dvořák", "12", true);
        row("blanks around", "  7 ", 0, "Novák", "7", true);
        row("no such id", "99", -1, "", "", false);
    }
    void valueFindsItsRow()
    {
        TestForm t;
        t.field->setListCheckValue(false);
        customerList(t.field);
        t.field->setValue(VFETCH(QString, value));
        QCOMPARE(t.field->GetSelectedElem(0), VFETCH(QString, sql));
        QCOMPARE(t.field->ListItemSelected(), VFETCH(int, row) >= 0);
        QCOMPARE(t.field->ListOK(), VFETCH(bool, listOK));
        if (VFETCH(int, row) >= 0) {
            QCOMPARE(t.box()->text(), VFETCH(QString, shown));
            QCOMPARE(t.field->GetSelectedElem(1), VFETCH(QString, shown));
            QCOMPARE(t.field->Value(), VFETCH(QString, sql));
            QCOMPARE(t.field->varValue(), QVariant(VFETCH(QString, sql).toDouble()));
            QCOMPARE(t.field->PrecValue(), VFETCH(QString, sql));
        }
        QCOMPARE(t.field->SQLValue(), VFETCH(QString, sql));
    }

    // Rows past the 16-bit range are rows like the others.
    void longListRows()
    {
        TestForm t;
        QStringList rows;
        for (int i = 0; i < 70000; ++i)
            rows << u"k%1\tname %1"_s.arg(i);
        loadList(t.field, {}, rows);
        t.field->setValue(u"k65541"_s);
        QCOMPARE(t.box()->text(), u"name 65541"_s);
        QCOMPARE(t.field->Value(), u"k65541"_s);
        QVERIFY(t.field->ListOK());
    }

    // With the list check on, a value outside the list is refused with message 1 and the
    // field keeps what it showed; blanks, and zero in a numeric value column, are empty.
    void listCheckRefusesOutsiders()
    {
        TestForm t;
        customerList(t.field);
        t.field->setValue(QStringLiteral("7"));
        t.field->setValue(QStringLiteral("99"));
        QCOMPARE(t.platform.boxes.size(), 1);
        QCOMPARE(t.field->Error(), qint16(1));
        QCOMPARE(t.box()->text(), QStringLiteral("Novák"));
        t.field->setValue(QStringLiteral("0"));
        QCOMPARE(t.box()->text(), QString());
        QCOMPARE(t.field->ListOK(), false);
        t.field->setValue(QStringLiteral("7"));
        t.field->setValue(QStringLiteral("  "));
        QCOMPARE(t.box()->text(), QString());
        QCOMPARE(t.platform.boxes.size(), 1);
    }

    void loadsColumnsAsDescribed()
    {
        TestForm t;
        t.field->setHideCol(QStringLiteral("0"));
        t.field->setListAddNewItem(true);
        t.field->setListNewItemText(QStringLiteral("(nový)"));
        loadList(t.field, u"N#,##0.00|A|D"_s, {u"1234,5\t a \t24.12.2005\textra"_s, u"2"_s});
        QCOMPARE(t.field->ListCount(), 3);
        QCOMPARE(column(t.field, 0), QStringList({"(nový)", "1 234,50", "2,00"}));
        QCOMPARE(column(t.field, 1), QStringList({"", "a", ""}));
        QCOMPARE(column(t.field, 2), QStringList({"", "24.12.2005", ""}));
        QVERIFY(listTable(t.field)->isColumnHidden(0));
        QVERIFY(!listTable(t.field)->isColumnHidden(1));
        t.field->ListFont()->setSize(21); // the list font follows its object
        QCOMPARE(listTable(t.field)->font().pointSizeF(), 21.0);
        // The rows were taken: the next load without new rows has none.
        t.field->setListAddNewItem(false);
        t.field->InitList();
        QCOMPARE(t.field->ListCount(), 0);
    }

    // A date value column without a format shows its dates in the layout they are read
    // back in, whatever the regional short date: the literal is the same date.
    void dateValueColumn()
    {
        TestForm t(RegionalSettings::english());
        loadList(t.field, u"D|A"_s, {u"2005-12-24\tChristmas"_s});
        t.field->setValue(QStringLiteral("2005-12-24"));
        QCOMPARE(t.box()->text(), QStringLiteral("Christmas"));
        QCOMPARE(t.field->SQLValue(), QStringLiteral("12/24/2005"));
    }

    // Below the field, above it when the screen has no room below, never off the screen.
    void windowPlacement_data()
    {
        columns<QRect, QRect>({"field", "window"});
        row("room below", QRect(100, 100, 200, 20), QRect(100, 120, 300, 200));
        row("no room below", QRect(100, 700, 200, 20), QRect(100, 500, 300, 200));
        row("at the right edge", QRect(900, 100, 100, 20), QRect(724, 120, 300, 200));
        row("narrower than the field", QRect(0, 0, 500, 20), QRect(0, 20, 500, 200));
    }
    void windowPlacement()
    {
        const QRect screen(0, 0, 1024, 768);
        QCOMPARE(detail::ListWindow::placement(VFETCH(QRect, field), QSize(300, 200), screen),
                 VFETCH(QRect, window));
    }

    void booleanFieldListsItsTexts()
    {
        TestForm t;
        t.field->setInputType(itBool);
        t.field->setFormatStr(QStringLiteral("Ano;Ne;A"));
        t.field->setSetList(true);
        t.field->setListAddNewItem(true); // never for a boolean field
        t.field->InitList();
        QCOMPARE(column(t.field, 0), QStringList({"Ano", "Ne", ""}));
        QCOMPARE(t.field->MatchCol(), qint16(1));
        t.field->setEnableEmpty(false);
        t.field->InitList();
        QCOMPARE(t.field->ListCount(), 2);
    }

    // SQLList over SQLConnect; a failing load throws, leaves the list empty, the field
    // usable and no connection behind.
    void sqliteLoadAndFailure()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath(QStringLiteral("shop.db"));
        sqlite("setup", file,
               {"CREATE TABLE c(id INTEGER, name TEXT)",
                "INSERT INTO c VALUES (1, 'Brno'), (2, NULL), (3, 'Zlín')"});
        QSqlDatabase::removeDatabase("setup");
        const QStringList before = QSqlDatabase::connectionNames();
        TestForm t;
        t.field->setSetList(true);
        t.field->setTextCol(1);
        t.field->setSQLConnect(QStringLiteral("driver=QSQLITE;DATABASE=") + file);
        t.field->setSQLList(QStringLiteral("SELECT id, name FROM c ORDER BY id"));
        t.field->InitList();
        QCOMPARE(column(t.field, 1), QStringList({"Brno", "", "Zlín"}));
        t.field->setSQLList(QStringLiteral("SELECT nothing FROM nowhere"));
        QVERIFY_THROWS_EXCEPTION(DatabaseError, t.field->InitList());
        QCOMPARE(t.field->ListCount(), 0);
        QCOMPARE(QSqlDatabase::connectionNames(), before);
        t.field->setListCheckValue(false);
        t.field->setValue(QStringLiteral("still here"));
        QCOMPARE(t.field->Value(), QStringLiteral("still here"));
    }

    // Choosing with the keyboard and the mouse, cancelling, type-ahead.
    void dropDownChooses_data()
    {
        columns<QString, int>({"value", "listSel"});
        row("Down, Enter", "12", 1);
        row("Esc", "7", 0);
        row("right click", "7", 0);
        row("double click", "30", 1);
        row("type-ahead", "12", 1);
    }
    void dropDownChooses()
    {
        TestForm t;
        QVERIFY(QTest::qWaitForWindowActive(&t.form)); // the focus is then where it goes
        customerList(t.field);
        t.field->setValue(QStringLiteral("7"));
        QSignalSpy sel(t.field, &Velmora::ListSel), changed(t.field, &Velmora::ListChanged);
        const QString how = QString::fromUtf8(QTest::currentDataTag());
        const ListUser::Action act = [how](QTableView *table) {
            QCOMPARE(table->currentIndex().row(), 0);
            QWidget *vp = table->viewport();
            if (how == "Down, Enter") {
                QTest::keyClick(table, Qt::Key_Down);
                QTest::keyClick(table, Qt::Key_Return);
            } else if (how == "Esc") {
                QTest::keyClick(table, Qt::Key_Down);
                QTest::keyClick(table, Qt::Key_Escape);
            } else if (how == "right click") {
                QTest::mouseClick(vp, Qt::RightButton, {}, cellCenter(table, 2));
            } else if (how == "double click") {
                QTest::mouseDClick(vp, Qt::LeftButton, {}, cellCenter(table, 2));
            } else {
                QTest::keyClicks(table, QStringLiteral("dvo"));
                QTest::keyClick(table, Qt::Key_Enter);
            }
        };
        QCOMPARE(dropDown(t, {act}), 0);
        QVERIFY(!t.field->ListVisible());
        QCOMPARE(t.field->Value(), VFETCH(QString, value));
        QCOMPARE(sel.size(), VFETCH(int, listSel));
        QCOMPARE(changed.size(), VFETCH(int, listSel));
        QTRY_COMPARE(t.focusName(), QStringLiteral("field")); // once the form is active again
    }

    // A double click drops the list down unless the host cancels it.
    void doubleClick()
    {
        TestForm t;
        QVERIFY(QTest::qWaitForWindowActive(&t.form));
        customerList(t.field);
        bool cancel = false;
        connect(t.field, &Velmora::TxtBoxDblClick, [&cancel](bool &c) { c = cancel; });
        for (const qsizetype left : {0, 1}) {
            ListUser user(t.field, {escape});
            QTest::mouseDClick(t.box(), Qt::LeftButton);
            QCOMPARE(user.left(), left);
            cancel = true;
        }
    }

    void buttonAndEmptyList()
    {
        TestForm t;
        t.field->setSetList(true);
        QSignalSpy click(t.field, &Velmora::ButtonClick);
        auto *button = t.field->findChild<QToolButton *>(QStringLiteral("cmdList"));
        button->click(); // no list window yet: nothing happens
        t.field->InitList(); // no rows: an empty list sounds the tone
        button->click();
        QCOMPARE(click.size(), 2);
        QCOMPARE(t.platform.beeps.size(), 1);
        // A field that is only shown does not drop down: its button is not enabled.
        t.field->setDisplayMode(dmVisible);
        loadList(t.field, {}, Customers);
        QVERIFY(!button->isEnabled());
    }

    // The new-item row: the host's text becomes a row and the field's value; a row of the
    // wrong width is refused with the message and the list is offered again.
    void newItemRow()
    {
        TestForm t;
        customerList(t.field, true);
        QCOMPARE(t.field->ListCount(), 5);
        QStringList answers {QStringLiteral("5\tNový"), QStringLiteral("5\tNový\tKolín")};
        connect(t.field, &Velmora::ListNewItem, t.field,
                [&](QString &item) { item = answers.takeFirst(); });
        const ListUser::Action chooseNew = [](QTableView *table) {
            QTest::keyClick(table, Qt::Key_Home);
            QTest::keyClick(table, Qt::Key_Return);
        };
        QCOMPARE(dropDown(t, {chooseNew, chooseNew}), 0); // offered again after the refused row
        QCOMPARE(t.platform.boxes.size(), 1);
        QVERIFY(t.platform.boxes.at(0).text.contains(u"počet sloupců"_s));
        QCOMPARE(t.field->ListCount(), 6);
        QCOMPARE(t.field->Value(), QStringLiteral("5"));
        QCOMPARE(t.box()->text(), QStringLiteral("Nový"));
        QVERIFY(!t.field->ListItemSelected() || t.field->ListOK());
    }

    // A list from a query is loaded again when it is older than RefreshInt minutes; a
    // reload that fails is reported and the rows shown before stay. The value's row moved
    // in the reload: the host hears of it once, when the user leaves the field.
    void refreshWhenStale()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath(QStringLiteral("c.db"));
        sqlite("stale", file, {"CREATE TABLE c(id INTEGER)", "INSERT INTO c VALUES (1)"});
        TestForm t;
        t.field->setSetList(true);
        t.field->setSQLConnect(QStringLiteral("Driver=QSQLITE;Database=") + file);
        t.field->setSQLList(QStringLiteral("SELECT id FROM c ORDER BY id DESC"));
        t.field->setRefreshInt(5);
        t.field->InitList();
        t.field->setValue(QStringLiteral("1"));
        QSignalSpy listChanged(t.field, &Velmora::ListChanged);
        sqlite("stale", file, {"INSERT INTO c VALUES (2)"});
        const auto rowsShown = [&](int minutesLater) {
            t.platform.minutesLater = minutesLater;
            return dropDown(t, {escape}) == 0 ? t.field->ListCount() : -1;
        };
        QCOMPARE(rowsShown(5), 1); // five minutes: still fresh
        QCOMPARE(rowsShown(6), 2);
        sqlite("stale", file, {"DROP TABLE c"});
        QCOMPARE(rowsShown(12), 2);
        QCOMPARE(t.platform.boxes.size(), 1);
        QCOMPARE(listChanged.size(), 0);
        for (int leave = 0; leave < 2; ++leave) {
            QTRY_VERIFY(t.field->hasFocus());
            QTest::keyClick(t.box(), Qt::Key_Tab);
            QCOMPARE(t.focusName(), QStringLiteral("after"));
            QApplication::processEvents(); // the queued leave
            QCOMPARE(listChanged.size(), 1);
            QCOMPARE(t.field->GetSelectedElem(0), QStringLiteral("1"));
            t.field->setFocus();
        }
        QSqlDatabase::removeDatabase("stale");
    }

    // A reload the user waits for shows its progress after half a second, keeps the
    // window served, and Cancel keeps the rows shown before.
    void longReloadCancels_data()
    {
        columns<bool>({"ownConnection"});
        row("the field's own connection", true);
        row("the application's connection", false);
    }
    void longReloadCancels()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath(QStringLiteral("long.db"));
        const bool own = VFETCH(bool, ownConnection);
        const QString name = own ? QStringLiteral("control") : QSqlDatabase::defaultConnection;
        sqlite(name, file, {"CREATE TABLE control(n INTEGER)", "INSERT INTO control VALUES (3)"});
        TestForm t;
        t.field->setSetList(true);
        if (own)
            t.field->setSQLConnect(QStringLiteral("Driver=QSQLITE;Database=") + file);
        t.field->setSQLList(
            QStringLiteral("WITH RECURSIVE r(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM r "
                           "WHERE i < (SELECT n FROM control)) SELECT i FROM r"));
        t.field->setRefreshInt(-1); // reloaded on every drop-down
        t.field->InitList();
        QCOMPARE(t.field->ListCount(), 3);
        sqlite(name, file, {"UPDATE control SET n = 100000000"});

        QElapsedTimer clock;
        qint64 last = 0, longest = 0;
        bool cancelled = false;
        QTimer watch;
        connect(&watch, &QTimer::timeout, [&] {
            longest = qMax(longest, clock.elapsed() - last);
            last = clock.elapsed();
            for (QWidget *w : QApplication::topLevelWidgets())
                if (auto *p = qobject_cast<QProgressDialog *>(w);
                    p && p->isVisible() && !cancelled) {
                    cancelled = true;
                    QTest::mouseClick(p->findChild<QPushButton *>(), Qt::LeftButton);
                }
        });
        clock.start();
        watch.start(10);
        QCOMPARE(dropDown(t, {escape}), 0);
        watch.stop();
        QVERIFY(cancelled);
        QVERIFY2(clock.elapsed() >= 500, "the progress showed before half a second");
        QVERIFY2(longest < 100, qPrintable(QStringLiteral("the window waited %1 ms").arg(longest)));
        QCOMPARE(t.field->ListCount(), 3);
        QSqlDatabase::removeDatabase(name);
    }

    // The host closes the form while the list is open: the field goes, nothing touches it.
    void fieldDeletedWhileListOpen()
    {
        TestForm t;
        customerList(t.field);
        QPointer<Velmora> field = t.field;
        ListUser user(t.field, {[&](QTableView *) {
                          delete t.field;
                      }});
        t.field->setFocus();
        QTest::keyPress(t.box(), Qt::Key_PageDown); // the release would go to no one
        QVERIFY(!field);
        t.field = nullptr;
    }
};

VELMORA_TEST(TestList)
#include "tst_list.moc"
