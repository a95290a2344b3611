// A field in its form: leaving it by every way there is, the shortcut buttons, its
// first and last signals, and the operations over the fields of a group.

#include "common/DataRows.h"
#include "common/TestForm.h"
#include "common/TestRegistry.h"

#include <QtCore/QTimer>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QTabWidget>

using namespace velmora;
using namespace velmora::test;
using namespace Qt::StringLiterals;

namespace {

// Counts the focus events a widget sees.
struct FocusCount : QObject
{
    int in = 0, out = 0;
    bool eventFilter(QObject *, QEvent *e) override
    {
        in += e->type() == QEvent::FocusIn;
        out += e->type() == QEvent::FocusOut;
        return false;
    }
};

void settle()
{
    for (int i = 0; i < 3; ++i)
        QApplication::processEvents();
}

} // namespace

// A form of the application's own, embedded in the window of another.
class SubForm : public QWidget
{
    Q_OBJECT
};

class TestHostForm : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The field holds a date and refuses an empty one; rows without keys leave it empty.
    void leaving_data()
    {
        columns<QString, QString, bool, int, QString, int, int>(
            {"keys", "way", "messages", "cancel", "focus", "validateEx", "errors"});
        for (const char *way : {"tab", "backtab", "click", "enter", "down", "setFocus"}) {
            const QByteArray w(way);
            row(w + " accepted", "24122005", way, true, 0, w == "backtab" ? "before" : "after", 1,
                0);
            row(w + " refused", "", way, true, 0, "field", 0, 1);
        }
        row("autotab accepted", "2412200{AutoTab}5", "none", true, 0, "after", 1, 0);
        row("messages off: host accepts", "", "tab", false, 0, "after", 1, 1);
        row("messages off: host refuses", "", "tab", false, 1, "field", 1, 1);
        row("messages on: host refuses", "24122005", "tab", true, 1, "field", 1, 0);
    }
    void leaving()
    {
        velmora::test::TestForm t;
        const QString way = VFETCH(QString, way);
        QString keys = VFETCH(QString, keys);
        type(itDate, {},
             {set(&Velmora::setEnableEmpty, false),
              set(&Velmora::setMessages, VFETCH(bool, messages)),
              set(&Velmora::setAutoTab, keys.contains(u"{AutoTab}"_s))})(t.field);
        keys.remove(u"{AutoTab}"_s);
        t.field->setFocus();
        QSignalSpy validated(t.field, &Velmora::ValidateEx),
            errors(t.field, qOverload<qint16 &, QString &>(&Velmora::Error)),
            changed(t.field, &Velmora::ValueChanged);
        bool refuse = VFETCH(int, cancel);
        connect(t.field, &Velmora::ValidateEx, [&refuse](bool &cancel) { cancel = refuse; });
        FocusCount other;
        t.after->installEventFilter(&other);
        t.before->installEventFilter(&other);
        QTest::keyClicks(t.box(), keys);
        const QHash<QString, Qt::Key> wayKeys {{"tab", Qt::Key_Tab},
                                               {"backtab", Qt::Key_Backtab},
                                               {"enter", Qt::Key_Return},
                                               {"down", Qt::Key_Down}};
        if (wayKeys.contains(way))
            QTest::keyClick(t.box(), wayKeys[way]);
        else if (way == u"click")
            QTest::mouseClick(t.after, Qt::LeftButton);
        else if (way == u"setFocus")
            t.after->setFocus();
        settle();
        QCOMPARE(t.focusName(), VFETCH(QString, focus));
        QCOMPARE(validated.size(), VFETCH(int, validateEx));
        QCOMPARE(errors.size(), VFETCH(int, errors));
        QCOMPARE(t.field->Error(), errors.isEmpty() ? 0 : 13);
        // The other widget saw an ordinary visit; the field was left once or not at all.
        QCOMPARE(other.in, other.out + (t.focusName() == u"field" ? 0 : 1));
        QCOMPARE(changed.size(), t.focusName() == u"field" || keys.isEmpty() ? 0 : 1);
        QCOMPARE(t.field->BackColor() == FocusHighlightColor, t.focusName() == u"field");
        if (t.focusName() != u"field")
            return;
        // Put right, the field is left as if it had never been refused.
        refuse = false;
        QTest::keyClicks(t.box(), u"24122005"_s);
        QTest::keyClick(t.box(), Qt::Key_Tab);
        settle();
        QCOMPARE(t.focusName(), u"after"_s);
        QCOMPARE(changed.size(), 1);
    }

    // After a refused leave the field is being edited again: a number is made ready for
    // entry, other text gets the caret and selection it had, or the start when completing
    // it rewrote the box.
    void refusedLeaveResumesEntry_data()
    {
        columns<Setup, QString, QString, int, int>(
            {"setup", "keys", "shown", "selStart", "selLength"});
        row("number", type(itNum, u"000"_s, {set(&Velmora::setSelectText, true)}), "7{Left}", "7",
            0, 1);
        row("text: caret", type(itAlfaNum), "abc{Left}", "abc", 2, 0);
        row("text: selection", type(itAlfaNum), "abc{+Left}", "abc", 2, 1);
        row("completed date", type(itDate), "2412", "24.12.2026", 0, 0);
    }
    void refusedLeaveResumesEntry()
    {
        velmora::test::TestForm t;
        VFETCH(Setup, setup)(t.field);
        t.field->setMessages(false);
        connect(t.field, &Velmora::ValidateEx, [](bool &cancel) { cancel = true; });
        t.field->setFocus();
        keys(VFETCH(QString, keys)).simulate(t.box());
        QTest::keyClick(t.box(), Qt::Key_Tab);
        settle();
        QCOMPARE(t.focusName(), u"field"_s);
        QCOMPARE(t.box()->text(), VFETCH(QString, shown));
        QCOMPARE(t.field->SelStart(), VFETCH(int, selStart));
        QCOMPARE(t.field->SelLength(), VFETCH(int, selLength));
    }

    // Leaving, coming back and leaving again before the check has run is one move, even
    // when the message box runs the event loop while it is open.
    void oneCheckPerMove()
    {
        velmora::test::TestForm t;
        t.field->setEnableEmpty(false);
        t.platform.whileBoxOpen = [] { // a real box, with its event loop, for a moment
            QMessageBox box;
            QTimer::singleShot(20, &box, &QMessageBox::accept);
            box.exec();
        };
        t.field->setFocus();
        t.after->setFocus();
        t.field->setFocus();
        t.after->setFocus();
        settle();
        QCOMPARE(t.platform.boxes.size(), 1);
        QCOMPARE(t.form.focusWidget(), t.box()); // the focus once the form is active again
    }

    // Two empty fields that both refuse to be left: the refused leave of the first takes
    // the focus back from the second, which was never really entered and checks nothing.
    void refusalTakesFocusBack()
    {
        velmora::test::TestForm t;
        auto *second = new Velmora(&t.form);
        second->show();
        QWidget::setTabOrder(t.field, second);
        for (Velmora *f : {t.field, second})
            f->setEnableEmpty(false);
        QSignalSpy checks(second, &Velmora::ValidateEx);
        t.field->setFocus();
        QTest::keyClick(t.box(), Qt::Key_Tab);
        settle();
        QCOMPARE(t.focusName(), u"field"_s);
        QCOMPARE(t.platform.boxes.size(), 1);
        QCOMPARE(checks.size(), 0);
        QVERIFY(second->BackColor() != FocusHighlightColor);
    }

    // Another window, or a field that cannot be edited, is no leave to check.
    void notLeaving()
    {
        velmora::test::TestForm t;
        t.field->setEnableEmpty(false);
        QSignalSpy validated(t.field, &Velmora::ValidateEx),
            errors(t.field, qOverload<qint16 &, QString &>(&Velmora::Error));
        t.field->setFocus();
        QWidget other;
        other.show();
        QApplication::setActiveWindow(&other);
        settle();
        QApplication::setActiveWindow(&t.form);
        settle();
        QCOMPARE(t.focusName(), u"field"_s);
        QCOMPARE(validated.size() + errors.size(), 0);
        t.field->setValue(u"x"_s);
        t.after->setFocus();
        settle();
        t.field->setValue(QString());
        t.field->setDisplayMode(dmLandable);
        t.field->setFocus();
        QVERIFY(t.field->BackColor() != FocusHighlightColor);
        t.after->setFocus();
        settle();
        QCOMPARE(t.focusName(), u"after"_s);
        QCOMPARE(validated.size(), 1);
        QCOMPARE(errors.size(), 0);
    }

    void shortcutButtons_data()
    {
        columns<bool, DisplMode, QString, bool>({"nt", "mode", "caption", "entered"});
        row("bare letter", true, dmChangeable, "a", true);
        row("access key", false, dmLandable, "&a", true);
        row("visible only: nothing", true, dmVisible, "a", false);
    }
    void shortcutButtons()
    {
        velmora::test::TestForm t;
        t.platform.ntFamily = VFETCH(bool, nt);
        auto *field = new Velmora(&t.form);
        field->setDisplayMode(VFETCH(DisplMode, mode));
        field->show();
        const auto buttons = field->findChildren<QAbstractButton *>(u"cmdShortCut"_s);
        QCOMPARE(buttons.size(), 26);
        QCOMPARE(buttons[0]->text(), VFETCH(QString, caption));
        for (int i : {15, 20, 25})
            QVERIFY(buttons[i]->text().isEmpty());
        QCOMPARE(buttons[25]->property("Index").toInt(), 25);
        t.after->setFocus();
        buttons[1]->click();
        const bool entered = VFETCH(bool, entered);
        QCOMPARE(field->hasFocus(), entered);
        QCOMPARE(t.platform.beeps.size(), int(entered));
        QVERIFY(!entered || t.platform.beeps[0] == qMakePair(400, 150));
    }

    void initializeAndTerminate()
    {
        TestPlatform platform;
        QStringList seen;
        const auto previous = Velmora::setCreationHook([&](Velmora *f) {
            connect(f, &Velmora::Initialize, [&] { seen << u"Initialize"_s; });
            connect(f, &Velmora::Terminate,
                    [&seen, f] { seen << u"Terminate %1"_s.arg(f->ListCount()); });
        });
        auto *field = new Velmora;
        Velmora::setCreationHook(previous);
        field->setSetList(true);
        QString row = u"a\tb"_s;
        field->AddItem(row);
        field->InitList();
        QCOMPARE(field->ListCount(), 1);
        delete field;
        QCOMPARE(seen, QStringList({u"Initialize"_s, u"Terminate 0"_s}));
    }

    // Fields of one form in a group box, a tab page and a scroll area, created in another
    // order than they sit; a form of the application's class and a marked plain widget
    // inside the window keep their own fields.
    void groups()
    {
        TestPlatform platform;
        QWidget window;
        auto *box = new QGroupBox(&window);
        auto *tabs = new QTabWidget(&window);
        auto *page = new QWidget;
        tabs->addTab(page, u"p"_s);
        auto *scroll = new QScrollArea(&window);
        scroll->setWidget(new QWidget);
        auto *sub = new SubForm;
        sub->setParent(&window);
        auto *marked = new QWidget(&window);
        marked->setProperty("VelmoraForm", true);
        const auto make = [](QWidget *parent, const char *label) {
            auto *f = new Velmora(parent);
            f->setLabel(QString::fromLatin1(label));
            f->setEnableEmpty(false);
            return f;
        };
        Velmora *a = make(scroll->widget(), "A"), *b = make(box, "B"), *c = make(page, "C"),
                *other = make(box, "group 1"), *inSub = make(sub, "sub"),
                *inMarked = make(marked, "marked");
        other->setGroup(1);
        c->setDisplayMode(dmVisible);
        window.show();
        QSignalSpy validatedB(b, &Velmora::ValidateEx);

        // The first created member that fails speaks; members after it are not checked.
        QVERIFY(!c->DoValidateAll());
        QCOMPARE(platform.boxes.size(), 1);
        QCOMPARE(platform.boxes[0].title, u"A"_s);
        QCOMPARE(validatedB.size(), 0);
        QCOMPARE(c->ControlAll(), QVariant(false));
        QCOMPARE(platform.boxes.last().title, u"A"_s);
        a->setValue(u"x"_s);
        b->setValue(u"y"_s);
        QVERIFY(a->DoValidateAll()); // the visible-only C is empty but passes
        QCOMPARE(validatedB.size(), 1);
        QCOMPARE(b->ControlAll(), QVariant(true));

        QVERIFY(c->FormChanged());
        c->setFormChanged(false);
        QVERIFY(!a->Changed() && !b->Changed() && !c->FormChanged());
        c->ClearAll();
        QCOMPARE(a->Value() + b->Value(), QString());

        inSub->setValue(u"kept"_s);
        other->setValue(u"kept"_s);
        a->setSQLConnect(u"Driver=QSQLITE;Database=own.db"_s);
        QString connect = u"Driver=QSQLITE;Database=:memory:"_s;
        b->ChangeConnectAll(connect);
        a->setFormCheckValues(false);
        QCOMPARE(a->SQLConnect(), u"Driver=QSQLITE;Database=own.db"_s);
        QCOMPARE(c->SQLConnect(), connect);
        QVERIFY(!a->CheckValues() && !b->CheckValues() && !c->CheckValues());
        for (Velmora *f : {other, inSub, inMarked}) {
            QVERIFY(f->SQLConnect().isEmpty());
            QVERIFY(f->CheckValues());
        }
        QCOMPARE(inSub->Value() + other->Value(), u"keptkept"_s);

        // Every member with a list loads; a failure comes after the others have loaded.
        for (Velmora *f : {a, b, c})
            f->setSQLList(u"select 1, 'one'"_s);
        b->setSetList(true);
        c->setSetList(true);
        a->setSetList(true);
        a->setSQLConnect(u"Driver=NOSUCH"_s);
        c->setSetList(false);
        QVERIFY_THROWS_EXCEPTION(DatabaseError, b->InitListAll());
        QCOMPARE(b->ListCount(), 1);
        QCOMPARE(c->ListCount(), 0);
    }
};

VELMORA_TEST(TestHostForm)
#include "tst_form.moc"
