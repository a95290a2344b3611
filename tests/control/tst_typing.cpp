// Typing into a real field on a real form: key events reach the inner QLineEdit, go
// through the entry rules, and focus moves are observed on the form's focus widget.

#include "common/TestPlatform.h"
#include "common/TestRegistry.h"

#include <velmora/Velmora.h>

#include <QtGui/QClipboard>
#include <QtGui/QInputMethodEvent>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QVBoxLayout>

using namespace velmora;

// Sets up a field; the rows of the tables name one of these.
using Setup = std::function<void(Velmora *)>;
Q_DECLARE_METATYPE(Setup)

class TestTyping : public QObject
{
    Q_OBJECT

    std::unique_ptr<test::TestPlatform> platform;
    std::unique_ptr<QWidget> form;
    QLineEdit *before = nullptr;
    Velmora *field = nullptr;
    QLineEdit *after = nullptr;

    QLineEdit *box() const { return field->findChild<QLineEdit *>(QStringLiteral("txtInput")); }

    QString focusName() const
    {
        QWidget *w = QApplication::focusWidget();
        if (w == before)
            return QStringLiteral("before");
        if (w == after)
            return QStringLiteral("after");
        return w && field->isAncestorOf(w) ? QStringLiteral("field") : QStringLiteral("none");
    }

    static Setup type(InpType t, const QString &format = QString(), const Setup &more = {})
    {
        return [=](Velmora *f) {
            f->setInputType(t);
            if (!format.isEmpty())
                f->setFormatStr(format);
            if (more)
                more(f);
        };
    }

private Q_SLOTS:
    void init()
    {
        platform = std::make_unique<test::TestPlatform>(test::czechSpace());
        form = std::make_unique<QWidget>();
        auto *layout = new QVBoxLayout(form.get());
        before = new QLineEdit(form.get());
        field = new Velmora(form.get());
        after = new QLineEdit(form.get());
        layout->addWidget(before);
        layout->addWidget(field);
        layout->addWidget(after);
        form->show();
        QApplication::setActiveWindow(form.get());
        QVERIFY(QTest::qWaitForWindowActive(form.get()));
    }
    void cleanup()
    {
        form.reset();
        platform.reset();
    }

    void keys_data()
    {
        QTest::addColumn<Setup>("setup");
        QTest::addColumn<QTestEventList>("keys");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("focus");

        auto typed = [](const char *text) {
            QTestEventList k;
            k.addKeyClicks(QString::fromUtf8(text));
            return k;
        };
        auto plus = [](QTestEventList k, Qt::Key key, Qt::KeyboardModifiers m = Qt::NoModifier) {
            k.addKeyClick(key, m);
            return k;
        };
        const auto autoTab = [](Velmora *f) {
            f->setAutoTab(true);
        };

        QTest::newRow("number typed whole") << type(itNum, "0.00") << typed("-12,5") << "-12,5"
                                            << "field";
        QTest::newRow("full number moves on")
            << type(itNum, "0.00", autoTab) << typed("1,23") << "1,23"
            << "after";
        QTest::newRow("date fills its positions")
            << type(itDate) << typed("24122005") << "24.12.2005"
            << "field";
        QTest::newRow("full date moves on")
            << type(itDate, QString(), autoTab) << typed("01012000") << "01.01.2000"
            << "after";
        QTest::newRow("text cased by its format")
            << type(itAlfaNum, "1>") << typed("pRAHA") << "Praha"
            << "field";
        QTest::newRow("text full at MaxLength moves on") << type(itAlfaNum, QString(),
                                                                 [](Velmora *f) {
                                                                     f->setMaxLength(3);
                                                                     f->setAutoTab(true);
                                                                 })
                                                         << typed("abcd") << "abc"
                                                         << "after";
        QTest::newRow("boolean by first letter") << type(itBool) << typed("xn") << "NE"
                                                 << "field";
        QTest::newRow("enter moves on")
            << type(itAlfaNum) << plus(typed("a"), Qt::Key_Return) << "a"
            << "after";
        QTest::newRow("enter clears the rest of a date")
            << type(itDate, QString(), [](Velmora *f) { f->setEnterAction(eaClearRest); })
            << plus(plus(plus(typed("24122005"), Qt::Key_Home), Qt::Key_Right), Qt::Key_Enter)
            << "02.05.2026"
            << "after"; // cleared to "2 .  .    ", completed on leaving
        QTest::newRow("up goes back") << type(itAlfaNum) << plus({}, Qt::Key_Up) << ""
                                      << "before";
        QTest::newRow("left at the start with all arrows")
            << type(itAlfaNum, QString(), [](Velmora *f) { f->setArrowAction(aaAllTab); })
            << plus({}, Qt::Key_Left) << ""
            << "before";
        QTest::newRow("undo and redo")
            << type(itAlfaNum)
            << plus(plus(plus(typed("ab"), Qt::Key_Z, Qt::ControlModifier), Qt::Key_Z,
                         Qt::ControlModifier),
                    Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier)
            << "a"
            << "field";
        QTest::newRow("ctrl+y clears")
            << type(itAlfaNum) << plus(typed("abc"), Qt::Key_Y, Qt::ControlModifier) << ""
            << "field";
    }
    void keys()
    {
        VFETCH(Setup, setup)(field);
        field->setFocus();
        QCOMPARE(focusName(), QStringLiteral("field"));
        VFETCH(QTestEventList, keys).simulate(box());
        QApplication::processEvents(); // queued focus moves
        QCOMPARE(field->FormValue(), VFETCH(QString, shown));
        QCOMPARE(focusName(), VFETCH(QString, focus));
    }

    void nationalLettersAreTyped()
    {
        // A Czech keyboard sends these with key codes Qt has no letter for.
        field->setFormatStr(QStringLiteral("1>"));
        field->setFocus();
        for (QChar c : QStringLiteral("žLUŤOUČKÝ"))
            QTest::sendKeyEvent(QTest::Click, box(), Qt::Key(c.toUpper().unicode()), QString(c),
                                Qt::NoModifier);
        QCOMPARE(field->Value(), QStringLiteral("Žluťoučký"));
    }

    void everyKeyKeepsTheValueInStep()
    {
        field->setInputType(itNum);
        field->setFormatStr(QStringLiteral("0.00"));
        field->setFocus();
        QStringList values;
        connect(field, &Velmora::Change, this, [&] { values << field->Value(); });
        QTest::keyClicks(box(), QStringLiteral("12,5"));
        QCOMPARE(values, (QStringList {"1", "12", "12,", "12,5"}));
    }

    void hostChangesTheKeys()
    {
        field->setFocus();
        connect(field, &Velmora::KeyPress, this, [](qint16 &k) {
            if (k == 'x')
                k = 'y';
        });
        connect(field, &Velmora::KeyDown, this, [](qint16 &code, qint16 &) {
            if (code == 'Q')
                code = 0; // the host swallows Q
        });
        QTest::keyClicks(box(), QStringLiteral("axqb"));
        QCOMPARE(field->Value(), QStringLiteral("ayb"));
    }

    void f1NeverReachesTheBoxAtRunTime()
    {
        field->setFocus();
        QSignalSpy downs(field, &Velmora::KeyDown);
        QSignalSpy ups(field, &Velmora::KeyUp);
        QTest::keyClick(box(), Qt::Key_F1);
        QCOMPARE(downs.size(), 1);
        QCOMPARE(ups.size(), 1);
        QCOMPARE(field->FormValue(), QString());
    }

    void f1GoesOnToTheFormAtDesignTime()
    {
        struct Counter : QObject
        {
            int keys = 0;
            bool eventFilter(QObject *, QEvent *e) override
            {
                keys += e->type() == QEvent::KeyPress;
                return false;
            }
        } counter;
        form->setProperty("UserMode", false);
        form->installEventFilter(&counter);
        field->setFocus();
        QSignalSpy downs(field, &Velmora::KeyDown);
        QTest::keyClick(box(), Qt::Key_F1);
        QCOMPARE(downs.size(), 1); // raised once, although the box sees the key twice
        QCOMPARE(counter.keys, 1);
    }

    void pasteGoesThroughTheRules()
    {
        field->setInputType(itDate);
        field->setFocus();
        QGuiApplication::clipboard()->setText(QStringLiteral("2005-12-24"));
        QTest::keyClick(box(), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(field->FormValue(), QStringLiteral("24.12.2005"));
        QCOMPARE(field->Value(), QStringLiteral("24.12.2005"));

        field->Clear(); // a date would not fit a number: the type change would be undone
        field->setInputType(itNum);
        field->setFormatStr(QStringLiteral("0.0"));
        QGuiApplication::clipboard()->setText(QStringLiteral("12,55"));
        QTest::keyClick(box(), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(field->FormValue(), QString()); // one decimal too many: refused whole
        QVERIFY(!platform->beeps.isEmpty());
    }

    void inputMethodTextGoesThroughTheRules()
    {
        field->setInputType(itNum);
        field->setFocus();
        QInputMethodEvent commit;
        commit.setCommitString(QStringLiteral("4a2"));
        QApplication::sendEvent(box(), &commit);
        QCOMPARE(field->FormValue(), QStringLiteral("42"));
        QCOMPARE(field->Value(), QStringLiteral("42"));
    }

    void leavingCompletesADate()
    {
        field->setInputType(itDate);
        field->setFocus();
        QTest::keyClicks(box(), QStringLiteral("0102"));
        QSignalSpy changed(field, &Velmora::ValueChanged);
        after->setFocus();
        QCOMPARE(field->FormValue(), QStringLiteral("01.02.2026"));
        QCOMPARE(field->varValue(), QVariant(QDate(2026, 2, 1)));
        QCOMPARE(changed.size(), 1);
        QVERIFY(field->Changed());
    }

    void focusHighlightsTheBox()
    {
        field->setBackColor(0x00FFFFFF);
        field->setFocus();
        QCOMPARE(field->BackColor(), FocusHighlightColor);
        after->setFocus();
        QCOMPARE(field->BackColor(), 0x00FFFFFFu);
    }
};

VELMORA_TEST(TestTyping)
#include "tst_typing.moc"
