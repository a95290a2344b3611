// A careless or hostile host and user: texts that are not well formed, very long
// pastes and commits, fields destroyed while their own message box is open, font
// objects that go away, and the forms of one value that must agree.

#include "common/TestPlatform.h"
#include "common/TestRegistry.h"

#include <velmora/Velmora.h>

#include <QtGui/QClipboard>
#include <QtGui/QInputMethodEvent>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>

#include <ctime>

using namespace velmora;

namespace {

// A platform whose message box runs what the host would run meanwhile.
class BoxPlatform : public test::TestPlatform
{
public:
    std::function<void()> whileOpen;
    void messageBox(const QString &text, const QString &title, QWidget *owner) override
    {
        TestPlatform::messageBox(text, title, owner);
        if (whileOpen)
            std::exchange(whileOpen, {})();
    }
};

// A text of UTF-16 units, lone surrogates and NUL included.
QString units(std::initializer_list<char16_t> list)
{
    QString s;
    for (char16_t c : list)
        s += QChar(c);
    return s;
}

bool wellFormed(const QString &s)
{
    for (qsizetype i = 0; i < s.size(); ++i) {
        const QChar c = s.at(i);
        if ((c.unicode() < 0x20 && c != u'\t') || c.isLowSurrogate())
            return false;
        if (c.isHighSurrogate() && (++i >= s.size() || !s.at(i).isLowSurrogate()))
            return false;
    }
    return true;
}

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

    std::unique_ptr<BoxPlatform> platform;
    std::unique_ptr<QWidget> form;
    QPointer<Velmora> field;

    QLineEdit *box() const { return field->findChild<QLineEdit *>(QStringLiteral("txtInput")); }

    void show()
    {
        form->show();
        field->setFocus();
        QVERIFY(QTest::qWaitForWindowExposed(form.get()));
    }

    // The three ways a text arrives from outside besides typing.
    void enter(const QString &how, const QString &text)
    {
        if (how == QLatin1String("value")) {
            field->setValue(text);
        } else if (how == QLatin1String("paste")) {
            QGuiApplication::clipboard()->setText(text);
            QTest::keyClick(box(), Qt::Key_V, Qt::ControlModifier);
        } else {
            QInputMethodEvent commit;
            commit.setCommitString(text);
            QApplication::sendEvent(box(), &commit);
        }
    }

private Q_SLOTS:
    void init()
    {
        platform = std::make_unique<BoxPlatform>();
        form = std::make_unique<QWidget>();
        field = new Velmora(form.get());
        field->setMessages(false);
    }
    void cleanup()
    {
        form.reset();
        platform.reset();
    }

    void enteredTextIsWellFormed_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("value");
        const QString quote = QStringLiteral("'||(SELECT 1) --");
        for (const char *how : {"value", "paste", "commit"}) {
            const auto row = [how](const char *name, const QString &text, const QString &value) {
                QTest::addRow("%s: %s", how, name) << QString::fromLatin1(how) << text << value;
            };
            row("lone high surrogate before a quote", units({'x', 0xD800}) + quote,
                units({'x', 0xFFFD}) + quote);
            row("lone low surrogate", units({'x', 0xDC00, '\''}), units({'x', 0xFFFD, '\''}));
            row("pair kept", units({'a', 0xD83D, 0xDE00, 'b'}), units({'a', 0xD83D, 0xDE00, 'b'}));
            row("NUL and controls removed", units({'a', 0, 'b', 1, 0x7F, 'c'}),
                QStringLiteral("abc"));
        }
        QTest::addRow("value: tab kept") << "value"
                                         << "a\tb"
                                         << "a\tb";
    }
    void enteredTextIsWellFormed()
    {
        QFETCH(QString, how);
        QFETCH(QString, text);
        show();
        enter(how, text);
        QCOMPARE(field->Value(), VFETCH(QString, value));
        QVERIFY(wellFormed(field->SQLValue()));
        QCOMPARE(field->SQLValue(), field->Value().replace(u'\'', QStringLiteral("''")));
    }

    // A paste or commit costs its characters, not their square.
    void longPasteIsLinear_data()
    {
        QTest::addColumn<InpType>("type");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("how");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QChar>("character");
        QTest::addColumn<int>("length"); // of the text that results
        for (const char *how : {"paste", "commit"}) {
            QTest::addRow("%s: letters into an empty text", how)
                << itAlfaNum << "" << how << "" << QChar(u'x') << 32767;
            QTest::addRow("%s: letters into an upper-case text", how)
                << itAlfaNum << ">" << how << "" << QChar(u'x') << 32767;
            QTest::addRow("%s: letters into a full text", how)
                << itAlfaNum << "" << how << QString(32767, u'a') << QChar(u'x') << 32767;
            QTest::addRow("%s: digits into an empty number", how)
                << itNum << "" << how << "" << QChar(u'7') << 32767;
        }
    }
    void longPasteIsLinear()
    {
        QFETCH(InpType, type);
        QFETCH(QString, how);
        field->setInputType(type);
        field->setFormatStr(VFETCH(QString, format));
        field->setValue(VFETCH(QString, start));
        show();
        QTest::keyClick(box(), Qt::Key_End);
        const double ms = msOf([&] { enter(how, QString(32767, VFETCH(QChar, character))); });
        QVERIFY2(ms < 100 * Slowdown, qPrintable(QString::number(ms)));
        QCOMPARE(field->FormValue().size(), VFETCH(int, length));
    }

    void longCommitIntoALongDate()
    {
        field->setInputType(itDate);
        field->setFormatStr(QStringLiteral("dd/mm/yyyy") + QString(32757, u'-'));
        show();
        const double ms = msOf([&] { enter(QStringLiteral("commit"), QString(800, u'1')); });
        QVERIFY2(ms < 100 * Slowdown, qPrintable(QString::number(ms)));
        QVERIFY(field->FormValue().startsWith(QStringLiteral("11.11.1111")));
    }

    void fullFieldRefusesWithTone()
    {
        field->setValue(QString(32767, u'a'));
        show();
        QTest::keyClick(box(), Qt::Key_Home);
        platform->beeps.clear();
        QTest::keyClicks(box(), QStringLiteral("b"));
        QCOMPARE(field->Value(), QString(32767, u'a'));
        QCOMPARE(platform->beeps.size(), 1);
    }

    // The host deletes the field while its box is open, as a form that closes does.
    void fieldDeletedWhileItsBoxIsOpen_data()
    {
        QTest::addColumn<QString>("box");
        QTest::newRow("Msg") << "Msg";
        QTest::newRow("a reported error") << "error";
        QTest::newRow("an error of a typed key") << "key";
    }
    void fieldDeletedWhileItsBoxIsOpen()
    {
        QFETCH(QString, box);
        show();
        field->setMessages(true);
        field->setInputType(itNum);
        field->setFormatStr(QStringLiteral("0.0"));
        platform->whileOpen = [this] {
            delete field;
        };
        if (box == QLatin1String("Msg")) {
            QString text = QStringLiteral("host");
            field->Msg(text);
        } else if (box == QLatin1String("error")) {
            field->setValue(QStringLiteral("abc"));
        } else {
            QTest::keyClicks(this->box(), QStringLiteral("1,23"));
        }
        QVERIFY(field.isNull());
        QCOMPARE(platform->boxes.size(), 1);
    }

    void fontObjectOutlivesItsOwner()
    {
        auto *font = new FieldFont;
        font->setName(QStringLiteral("DejaVu Serif"));
        font->setBold(true);
        field->setFont(font);
        field->setListFont(font);
        font->setSize(13);
        delete font;
        QVERIFY(field->Font() && field->ListFont());
        QCOMPARE(field->Font()->Name(), QStringLiteral("DejaVu Serif"));
        QCOMPARE(field->Font()->Size(), 13.0);
        QVERIFY(field->Font()->Bold() && field->ListFont()->Bold());
    }

    void formsOfOneValueAgree_data()
    {
        QTest::addColumn<InpType>("type");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QVariant>("typed");
        QTest::newRow("placeholders applied once") << itAlfaNum << "@@@-@@@"
                                                   << "123456"
                                                   << "123-456"
                                                   << "123-456" << QVariant("123-456");
        QTest::newRow("first letter upper case")
            << itAlfaNum << "1>" << QString::fromUtf8("ßtraße") << QString::fromUtf8("SStraße")
            << QString::fromUtf8("SStraße") << QVariant(QString::fromUtf8("SStraße"));
        QTest::newRow("impossible date is no date anywhere") << itDate << ""
                                                             << "31.02.2005"
                                                             << "31.02.2005"
                                                             << "" << QVariant();
        QTest::newRow("a calendar date") << itDate << ""
                                         << "24.12.2005"
                                         << "24.12.2005"
                                         << "12/24/2005" << QVariant(QDate(2005, 12, 24));
    }
    void formsOfOneValueAgree()
    {
        QFETCH(InpType, type);
        field->setInputType(type);
        field->setFormatStr(VFETCH(QString, format));
        field->setValue(VFETCH(QString, input));
        QCOMPARE(field->Value(), VFETCH(QString, value));
        QCOMPARE(field->SQLValue(), VFETCH(QString, sql));
        QCOMPARE(field->varValue(), VFETCH(QVariant, typed));
    }

    // A half-typed date survives whatever re-assigns it, and gives no literal.
    void halfTypedDateKeepsItsLayout_data()
    {
        QTest::addColumn<QString>("what");
        QTest::newRow("same FormatStr") << "format";
        QTest::newRow("new separator") << "separator";
        QTest::newRow("ControlLength") << "length";
        QTest::newRow("its own Value") << "value";
    }
    void halfTypedDateKeepsItsLayout()
    {
        field->setInputType(itDate);
        show();
        QTest::keyClicks(box(), QStringLiteral("12"));
        QCOMPARE(field->SQLValue(), QString());
        QFETCH(QString, what);
        if (what == QLatin1String("format"))
            field->setFormatStr(field->FormatStr());
        else if (what == QLatin1String("separator"))
            field->setFormatDatOddel(QStringLiteral("-"));
        else if (what == QLatin1String("length"))
            field->setControlLength(clBoth);
        else
            field->setValue(field->Value());
        const QString sep = what == QLatin1String("separator") ? QStringLiteral("-") : ".";
        QCOMPARE(field->FormValue(), QStringLiteral("12") + sep + "  " + sep + "    ");
        QCOMPARE(field->Error(), qint16(0));
        QTest::keyClick(box(), Qt::Key_Home);
        QTest::keyClicks(box(), QStringLiteral("12052005"));
        QCOMPARE(field->SQLValue(), QStringLiteral("05/12/2005"));
    }

    void typeChangedInsideChangeShowsTheNewType()
    {
        show();
        connect(
            field, &Velmora::Change, field, [this] { field->setInputType(itBool); },
            Qt::SingleShotConnection);
        QTest::keyClicks(box(), QStringLiteral("a"));
        QCOMPARE(field->InputType(), itBool);
        QCOMPARE(field->FormValue(), QStringLiteral("ANO"));
        QCOMPARE(field->Value(), QStringLiteral("A"));
    }

    // PrecValue is the number as assigned, and then as edited.
    void precValueKeepsTheAssignedNumber()
    {
        field->setInputType(itNum);
        field->setFormatStr(QStringLiteral("0.00"));
        field->setValue(QStringLiteral("1,2345"));
        QCOMPARE(field->Value(), QStringLiteral("1,23"));
        QCOMPARE(field->PrecValue(), QStringLiteral("1.2345"));
        show();
        QCOMPARE(field->PrecValue(), QStringLiteral("1.2345")); // entering is no edit
        QTest::keyClick(box(), Qt::Key_End);
        QTest::keyClick(box(), Qt::Key_Backspace);
        QCOMPARE(field->PrecValue(), QStringLiteral("1.2"));
    }
};

VELMORA_TEST(TestHostile)
#include "tst_hostile.moc"
