// A careless or hostile host and user: very long pastes and commits, texts an input
// method commits that are not well formed, fields destroyed while their own message box
// is open, font objects that go away. (Hostile values through setValue and paste end in
// real tables in tst_sqlliteral; the forms of one value agree in tst_field.)

#include "common/TestForm.h"
#include "common/TestRegistry.h"

#include <QtGui/QClipboard>
#include <QtGui/QInputMethodEvent>

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

} // namespace

class TestHostile : public QObject
{
    Q_OBJECT

    std::unique_ptr<TestForm> t;
    QPointer<Velmora> field;

    void enter(const QString &how, const QString &text)
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

private Q_SLOTS:
    void init()
    {
        t = std::make_unique<TestForm>();
        field = t->field;
        field->setMessages(false);
        field->setFocus();
    }
    void cleanup() { t.reset(); }

    void committedTextIsWellFormed()
    {
        enter(u"commit"_s, u"x\xD800'\0\x85"_s);
        QCOMPARE(field->Value(), u"x\uFFFD'"_s);
        QCOMPARE(field->SQLValue(), u"x\uFFFD''"_s);
    }

    // A paste or commit costs its characters, not their square.
    void longPasteIsLinear_data()
    {
        columns<InpType, QString, QString, QString, QChar, int, int>(
            {"type", "format", "how", "start", "character", "count", "shown"});
        const int all = 32767;
        for (const char *how : {"paste", "commit"}) {
            const QByteArray on = QByteArray(how) + ": ";
            row(on + "letters into an empty text", itAlfaNum, "", how, "", QChar(u'x'), all, all);
            row(on + "letters into an upper-case text", itAlfaNum, ">", how, "", QChar(u'x'), all,
                all);
            row(on + "letters into a full text", itAlfaNum, "", how, QString(all, u'a'),
                QChar(u'x'), all, all);
            row(on + "digits into an empty number", itNum, "", how, "", QChar(u'7'), all, all);
            row(on + "digits into a long date", itDate, "dd/mm/yyyy" + QString(32757, u'-'), how,
                "", QChar(u'1'), all, all);
            row(on + "first letter upper", itAlfaNum, "1>", how, "", QChar(u'x'), all, all);
            // A pattern's own characters become part of the text with every character.
            row(on + "places filled from the right", itAlfaNum, "@@@-@@@", how, "", QChar(u'x'),
                16000, 32005);
            row(on + "places filled from the left, lower case", itAlfaNum, "!<@@/&&", how, "",
                QChar(u'X'), 16000, 32001);
            row(on + "no places", itAlfaNum, "x", how, "", QChar(u'x'), 16000, 32000);
        }
    }
    void longPasteIsLinear()
    {
        QFETCH(QString, how);
        type(VFETCH(InpType, type), VFETCH(QString, format))(field);
        field->setValue(VFETCH(QString, start));
        QTest::keyClick(t->box(), Qt::Key_End);
        const QString text(VFETCH(int, count), VFETCH(QChar, character));
        const double ms = msOf([&] { enter(how, text); });
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
        type(itNum, u"0.0"_s, {set(&Velmora::setMessages, true)})(field);
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

VELMORA_TEST(TestHostile)
#include "tst_hostile.moc"
