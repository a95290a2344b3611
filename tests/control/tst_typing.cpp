// A real field on a shown form: key events reach the inner QLineEdit and go through the
// entry rules, focus moves are observed on the form's focus widget, the mouse, drops and
// the context menu must not pass the rules by, and neither must a careless host.

#include "common/TestForm.h"
#include "common/TestRegistry.h"

#include <QtCore/QMimeData>
#include <QtCore/QTimer>
#include <QtGui/QClipboard>
#include <QtGui/QInputMethodEvent>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QMenu>

#include <ctime>

using namespace velmora;
using namespace velmora::test;
using namespace Qt::StringLiterals;

namespace {

// Processor time of a piece of work in milliseconds: a busy machine does not count.
template<class Work>
double msOf(Work work)
{
    const std::clock_t start = std::clock();
    work();
    return 1000.0 * double(std::clock() - start) / CLOCKS_PER_SEC;
}

#if defined(__SANITIZE_ADDRESS__)
constexpr int Slowdown = 20; // a sanitized build runs the same work much slower
#else
constexpr int Slowdown = 1;
#endif

// Notes the events of one type the objects given receive, by name.
struct EventLog : QObject
{
    EventLog(QEvent::Type type, const QList<QObject *> &watched) : type(type)
    {
        for (QObject *o : watched)
            o->installEventFilter(this);
    }
    bool eventFilter(QObject *o, QEvent *e) override
    {
        if (e->type() == type)
            seen << (o->objectName().isEmpty() ? o->metaObject()->className() : o->objectName());
        return false;
    }
    QEvent::Type type;
    QStringList seen;
};

} // namespace

class TestTyping : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestForm> t;
    QPointer<Velmora> field; // t->field, null once the host deleted it

    void enter(const RegionalSettings &rs, const Setup &setup)
    {
        t->platform.regional = rs;
        setup(t->field);
        t->field->setFocus();
    }

    // Pastes the text or commits it as an input method does.
    void feed(const QString &how, const QString &text)
    {
        if (how == u"paste") {
            QGuiApplication::clipboard()->setText(text);
            QTest::keyClick(t->box(), Qt::Key_V, Qt::ControlModifier);
        } else {
            QInputMethodEvent commit;
            commit.setCommitString(text);
            QApplication::sendEvent(t->box(), &commit);
        }
    }

    // Opens the box's context menu and, while it is up, triggers the action named (if
    // any) and notes the actions it offers enabled.
    QStringList contextMenu(const QString &trigger = {})
    {
        QObject context;
        QStringList enabled {u"(no menu)"_s};
        QTimer::singleShot(0, &context, [&] {
            if (auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget())) {
                enabled.clear();
                for (QAction *a : menu->actions()) {
                    if (!a->isSeparator() && a->isEnabled())
                        enabled << a->text();
                    if (a->text() == trigger)
                        a->trigger();
                }
                menu->close();
            }
        });
        QContextMenuEvent event(QContextMenuEvent::Keyboard, {}, t->box()->mapToGlobal(QPoint()));
        QApplication::sendEvent(t->box(), &event);
        return enabled;
    }

private Q_SLOTS:
    void init()
    {
        t = std::make_unique<TestForm>();
        field = t->field;
        QVERIFY(QTest::qWaitForWindowActive(&t->form));
    }
    void cleanup() { t.reset(); }

    // Keys through the box: what the field shows and where the focus goes. A host that
    // reads Value in Change sees the key it was raised for: the last key raises Change
    // once when it edits and never when the rules refuse it.
    void typing_data()
    {
        columns<RegionalSettings, Setup, QString, QString, int, QString, QString>(
            {"rs", "setup", "keys", "key", "changes", "shown", "focus"});
        const Setup autoTab = set(&Velmora::setAutoTab, true);
        const QString field = "field", after = "after", before = "before";
        const Setup num = type(itNum, "0.00"), text = type(itAlfaNum), date = type(itDate);
        const auto clip = [](const QString &text) -> Setup {
            return [=](Velmora *) {
                QGuiApplication::clipboard()->setText(text);
            };
        };
        rowPerSet("digit", num, "1", "2", 1, "12", field);
        rowPerSet("letter in a number", num, "1", "a", 0, "1", field);
        rowPerSet("either separator key", num, "1", PerSet(".", ","), 1, PerSet("1,", "1."), field);
        rowPerSet("digit over the overwrite caret", num, "12{Ins}{Home}", "3", 1, "32", field);
        rowPerSet("paste refused whole", type(itNum, {}, {clip("1a")}), "", "{^V}", 0, "", field);
        rowPerSet("backspace", text, "ab", "{Bs}", 1, "a", field);
        rowPerSet("Alt+letter", text, "ab", "{%A}", 0, "ab", field);
        rowPerSet("undo and redo", text, "ab{^Z}{^Z}", "{^+Z}", 1, "a", field);
        rowPerSet("ctrl+y clears", text, "abc", "{^Y}", 1, "", field);
        rowPerSet("full at MaxLength moves on",
                  type(itAlfaNum, {}, {set(&Velmora::setMaxLength, 3), autoTab}), "ab", "c", 1,
                  "abc", after);
        rowPerSet("up goes back", text, "", "{Up}", 0, "", before);
        rowPerSet("digit in a date", date, "1", "2", 1, PerSet("12.  .    ", "12/  /    "), field);
        // Enter clears to "2 .  .    " and leaves, which completes the date with this month
        // and year: a second Change.
        rowPerSet("enter clears the rest of a date",
                  type(itDate, {}, {set(&Velmora::setEnterAction, eaClearRest)}),
                  "24122005{Home}{Right}", "{Enter}", 2, PerSet("02.05.2026", "02/05/2026"), after);
        rowPerSet("paste of a date in another form", type(itDate, {}, {clip("2005-12-24")}), "",
                  "{^V}", 1, PerSet("24.12.2005", "24/12/2005"), field);
        rowPerSet("boolean letter", type(itBool), "", "a", 1, "ANO", field);
        // The host changes keys in KeyPress and swallows them in KeyDown.
        const Setup hostKeys = [](Velmora *f) {
            QObject::connect(f, &Velmora::KeyPress, f, [](qint16 &k) { k = k == 'x' ? 'y' : k; });
            QObject::connect(f, &Velmora::KeyDown, f,
                             [](qint16 &code, qint16 &) { code = code == 'Q' ? 0 : code; });
        };
        rowPerSet("host changes the keys", hostKeys, "axq", "b", 1, "ayb", field);
    }
    void typing()
    {
        enter(VFETCH(RegionalSettings, rs), VFETCH(Setup, setup));
        test::keys(VFETCH(QString, keys)).simulate(t->box());
        const QString shown = t->field->FormValue();
        QStringList seen;
        QObject context;
        connect(t->field, &Velmora::Change, &context, [&] { seen << t->field->Value(); });
        test::keys(VFETCH(QString, key)).simulate(t->box());
        QApplication::processEvents(); // queued focus moves, then the queued leave
        QApplication::processEvents();
        QCOMPARE(seen.size(), VFETCH(int, changes));
        if (seen.isEmpty())
            QCOMPARE(t->field->FormValue(), shown);
        else
            QCOMPARE(seen.last(), t->field->Value());
        QTEST(t->field->FormValue(), "shown");
        QTEST(t->focusName(), "focus");
    }

    // The host's KeyDown tells the keypad from the main block.
    void keypadCodes_data()
    {
        columns<RegionalSettings, int, QString, bool, int, QString>(
            {"rs", "key", "text", "keypad", "code", "shown"});
        rowPerSet("digit", int(Qt::Key_7), "7", true, 103, "7");
        rowPerSet("main-block digit", int(Qt::Key_7), "7", false, 55, "7");
        rowPerSet("decimal point", int(Qt::Key_Period), ".", true, 110, PerSet(",", "."));
        rowPerSet("decimal comma", int(Qt::Key_Comma), ",", true, 110, PerSet(",", "."));
        rowPerSet("minus", int(Qt::Key_Minus), "-", true, 109, "-");
        rowPerSet("main-block minus", int(Qt::Key_Minus), "-", false, 189, "-");
        rowPerSet("times", int(Qt::Key_Asterisk), "*", true, 106, "");
    }
    void keypadCodes()
    {
        enter(VFETCH(RegionalSettings, rs), type(itNum));
        QList<int> codes;
        QObject context;
        connect(t->field, &Velmora::KeyDown, &context,
                [&](qint16 &code, qint16 &) { codes << code; });
        QTest::sendKeyEvent(QTest::Click, t->box(), Qt::Key(VFETCH(int, key)),
                            VFETCH(QString, text),
                            VFETCH(bool, keypad) ? Qt::KeypadModifier : Qt::NoModifier);
        QCOMPARE(codes, QList<int> {VFETCH(int, code)});
        QTEST(t->field->FormValue(), "shown");
    }

    void nationalLettersAreTyped()
    {
        // A Czech keyboard sends these with key codes Qt has no letter for.
        enter(czechSpace(), type(itAlfaNum, u"1>"_s));
        for (QChar c : u"žLUŤOUČKÝ"_s)
            QTest::sendKeyEvent(QTest::Click, t->box(), Qt::Key(c.toUpper().unicode()), QString(c),
                                Qt::NoModifier);
        QCOMPARE(t->field->Value(), u"Žluťoučký"_s);
    }

    // F1 is the form's help key at design time; at run time the field keeps it. The host
    // hears of it once either way, although at design time the box sees it twice.
    void f1GoesOnToTheFormOnlyAtDesignTime()
    {
        EventLog formKeys(QEvent::KeyPress, {&t->form});
        t->field->setFocus();
        QSignalSpy downs(t->field, &Velmora::KeyDown);
        QSignalSpy ups(t->field, &Velmora::KeyUp);
        QTest::keyClick(t->box(), Qt::Key_F1);
        QCOMPARE(formKeys.seen.size(), 0);
        t->form.setProperty("UserMode", false);
        QTest::keyClick(t->box(), Qt::Key_F1);
        QCOMPARE(formKeys.seen.size(), 1);
        QCOMPARE(downs.size(), 2);
        QCOMPARE(ups.size(), 2);
    }

    // The colours reach the box (the legacy order is blue, green, red). Entering shows
    // the focus colour; leaving restores the colour.
    void focusInAndOut()
    {
        const auto base = [this] {
            return t->box()->palette().color(QPalette::Base);
        };
        t->field->setBackColor(0x000000FFu);
        QCOMPARE(base(), QColor(Qt::red));
        t->field->setForeColor(0x00FF0000u);
        QCOMPARE(t->box()->palette().color(QPalette::Text), QColor(Qt::blue));
        t->field->setFocus();
        QCOMPARE(t->field->BackColor(), FocusHighlightColor);
        QCOMPARE(base(), QColor(129, 232, 250));
        t->after->setFocus();
        QApplication::processEvents(); // leaving is checked once the move is done
        QCOMPARE(base(), QColor(Qt::red));
    }

    // The box fills every pixel it owns, so a key repaints the box and nothing behind it:
    // neither the frame, nor the field, nor the form.
    void keyRepaintsTheBoxAlone()
    {
        type(itDate)(field);
        field->setFocus();
        QApplication::processEvents();
        EventLog paints(
            QEvent::Paint,
            {&t->form, field.data(), field->findChild<QObject *>(u"imgFrame"_s), t->box()});
        QTest::keyClick(t->box(), Qt::Key_1);
        QEvent update(QEvent::UpdateRequest);
        QApplication::sendEvent(&t->form, &update);
        QCOMPARE(paints.seen, QStringList {u"txtInput"_s});
    }

    // Neither a middle click (X11 pastes the selection with it) nor a drop may put text
    // into the box past the rules or move the caret the rules have placed. A drop lands
    // where the drag entered: the enter event names the target.
    void mouseAndDropsLeaveTheBoxAlone()
    {
        QClipboard *clipboard = QGuiApplication::clipboard();
        if (clipboard->supportsSelection())
            clipboard->setText(u"xyz"_s, QClipboard::Selection);
        t->field->setSelectText(false);
        t->field->setValue(u"abc"_s);
        t->field->setFocus();
        QTest::mouseClick(t->box(), Qt::MiddleButton, {},
                          QPoint(t->box()->width() - 2, t->box()->height() / 2));
        QMimeData data;
        data.setText(u"xyz"_s);
        QDragEnterEvent enter({2, 2}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(t->box(), &enter);
        QDropEvent drop({2, 2}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(t->box(), &drop);
        QCOMPARE(t->field->Value() + u'|' + t->field->FormValue(), u"abc|abc"_s);
        QCOMPARE(t->field->SelStart(), qint16(0));
        QCOMPARE(t->field->SelLength(), qint16(0));
    }

    void contextMenuOffersWhatTheFieldAllows_data()
    {
        columns<Setup, QString, QStringList>({"setup", "keys", "enabled"});
        const auto selected = [](DisplMode mode) -> Setup {
            return [=](Velmora *f) {
                f->setDisplayMode(mode);
                f->setSelStart(1);
                f->setSelLength(1);
            };
        };
        const QString paste = "Vložit", all = "Vybrat vše";
        const Setup nothing = [](Velmora *) {
        };
        row("nothing selected", nothing, QString(), QStringList {paste, all});
        row("a selection", selected(dmChangeable), QString(),
            QStringList {"Vyjmout", "Kopírovat", paste, all});
        row("a selection in a landable field", selected(dmLandable), QString(),
            QStringList {"Kopírovat", all});
        row("after a key", nothing, "x", QStringList {"Zpět", paste, all});
        row("after undo", nothing, "x{^Z}", QStringList {"Znovu", paste, all});
    }
    void contextMenuOffersWhatTheFieldAllows()
    {
        t->field->setFocus();
        t->field->setValue(u"abc"_s);
        VFETCH(Setup, setup)(t->field);
        test::keys(VFETCH(QString, keys)).simulate(t->box());
        QTEST(contextMenu(), "enabled");
    }

    void contextMenuPasteGoesThroughTheRules()
    {
        type(itNum, u"0.0"_s)(t->field);
        t->field->setFocus();
        QGuiApplication::clipboard()->setText(u"2,5"_s);
        contextMenu(u"Vložit"_s);
        QCOMPARE(t->field->Value(), u"2,5"_s);
        QGuiApplication::clipboard()->setText(u"1a"_s);
        contextMenu(u"Vložit"_s);
        QCOMPARE(t->field->FormValue(), u"2,5"_s);
    }

    // A careless or hostile host and user: very long pastes and commits, fields deleted
    // while their own box is open, fonts that go away. (Hostile values end in real tables
    // in tst_sqlliteral.) A paste or commit costs its characters, not their square.
    void longPasteIsLinear_data()
    {
        columns<InpType, QString, QString, QString, QChar, int, int>(
            {"type", "format", "how", "start", "character", "count", "shown"});
        const int all = 32767;
        const QChar x(u'x');
        for (const char *how : {"paste", "commit"}) {
            const QByteArray on = QByteArray(how) + ": ";
            row(on + "letters into an empty text", itAlfaNum, "", how, "", x, all, all);
            row(on + "letters into an upper-case text", itAlfaNum, ">", how, "", x, all, all);
            row(on + "letters into a full text", itAlfaNum, "", how, QString(all, u'a'), x, all,
                all);
            row(on + "digits into an empty number", itNum, "", how, "", QChar(u'7'), all, all);
            row(on + "digits into a long date", itDate, "dd/mm/yyyy" + QString(32757, u'-'), how,
                "", QChar(u'1'), all, all);
            row(on + "first letter upper", itAlfaNum, "1>", how, "", x, all, all);
            // A pattern's own characters become part of the text with every character.
            row(on + "places filled from the right", itAlfaNum, "@@@-@@@", how, "", x, 16000,
                32005);
            row(on + "places filled from the left, lower case", itAlfaNum, "!<@@/&&", how, "",
                QChar(u'X'), 16000, 32001);
            row(on + "no places", itAlfaNum, "x", how, "", x, 16000, 32000);
        }
    }
    void longPasteIsLinear()
    {
        QFETCH(QString, how);
        field->setFocus();
        type(VFETCH(InpType, type), VFETCH(QString, format))(field);
        field->setValue(VFETCH(QString, start));
        QTest::keyClick(t->box(), Qt::Key_End);
        const QString text(VFETCH(int, count), VFETCH(QChar, character));
        const double ms = msOf([&] { feed(how, text); });
        QVERIFY2(ms < 100 * Slowdown, qPrintable(QString::number(ms)));
        QCOMPARE(field->FormValue().size(), VFETCH(int, shown));
    }

    // The host deletes the field while its box is open, as a form that closes does.
    void fieldDeletedWhileItsBoxIsOpen_data()
    {
        columns<Setup>({"open"});
        row("Msg", Setup([](Velmora *f) {
                QString text = u"host"_s;
                f->Msg(text);
            }));
        row("a reported error", set(&Velmora::setValue, "abc"));
        row("an error of a typed key",
            Setup([](Velmora *f) { QTest::keyClicks(f->findChild<QLineEdit *>(), u"1,23"_s); }));
    }
    void fieldDeletedWhileItsBoxIsOpen()
    {
        field->setFocus();
        type(itNum, u"0.0"_s)(field);
        t->platform.whileBoxOpen = [this] {
            delete field;
        };
        VFETCH(Setup, open)(field);
        QVERIFY(field.isNull());
        QCOMPARE(t->platform.boxes.size(), 1);
    }

    void fontObjectOutlivesItsOwner()
    {
        auto *font = new FieldFont;
        font->setName(u"DejaVu Serif"_s);
        field->setFont(font);
        field->setListFont(font);
        font->setSize(13);
        delete font;
        QVERIFY(field->Font() && field->ListFont());
        QCOMPARE(field->Font()->Name(), u"DejaVu Serif"_s);
        QCOMPARE(field->ListFont()->Size(), 13.0);
    }

    // A half-typed date survives whatever re-assigns it, and gives no literal.
    void halfTypedDateKeepsItsLayout_data()
    {
        columns<Setup, QString>({"assign", "separator"});
        row("format", Setup([](Velmora *f) { f->setFormatStr(f->FormatStr()); }), ".");
        row("separator", set(&Velmora::setFormatDatOddel, "-"), "-");
        row("length", set(&Velmora::setControlLength, clBoth), ".");
        row("value", Setup([](Velmora *f) { f->setValue(f->Value()); }), ".");
    }
    void halfTypedDateKeepsItsLayout()
    {
        field->setFocus();
        type(itDate)(field);
        QTest::keyClicks(t->box(), u"12"_s);
        QCOMPARE(field->SQLValue(), QString());
        VFETCH(Setup, assign)(field);
        QFETCH(QString, separator);
        QCOMPARE(field->FormValue(), u"12"_s + separator + u"  "_s + separator + u"    "_s);
        QCOMPARE(field->Error(), qint16(0));
        QTest::keyClick(t->box(), Qt::Key_Home);
        QTest::keyClicks(t->box(), u"12052005"_s);
        QCOMPARE(field->SQLValue(), u"05/12/2005"_s);
    }

    void typeChangedInsideChangeShowsTheNewType()
    {
        field->setFocus();
        connect(
            field, &Velmora::Change, field, [this] { field->setInputType(itBool); },
            Qt::SingleShotConnection);
        QTest::keyClicks(t->box(), u"a"_s);
        QCOMPARE(field->InputType(), itBool);
        QCOMPARE(field->FormValue(), u"ANO"_s);
    }

    // PrecValue is the number as assigned, and then as edited; entering is no edit.
    void precValueKeepsTheAssignedNumber()
    {
        t->after->setFocus();
        type(itNum, u"0.00"_s)(field);
        field->setValue(u"1,2345"_s);
        QCOMPARE(field->Value(), u"1,23"_s);
        field->setFocus();
        QCOMPARE(field->PrecValue(), u"1.2345"_s);
        QTest::keyClick(t->box(), Qt::Key_End);
        QTest::keyClick(t->box(), Qt::Key_Backspace);
        QCOMPARE(field->PrecValue(), u"1.2"_s);
    }
};

VELMORA_TEST(TestTyping)
#include "tst_typing.moc"
