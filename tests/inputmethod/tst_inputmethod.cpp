// Letters composed on a real X keyboard, with dead keys and the Compose key, reach the
// field as input-method text and must go through the entry rules as typed letters do.
// The test needs the xcb platform and Qt's compose input context on a display whose
// keyboard has dead keys and a Compose key; scripts/run-xcb-test.sh provides them (ctest
// runs it so). The keys are typed by xdotool through the X server's XTEST extension into
// the focused window, as a person's keyboard would.

#include "common/TestPlatform.h"
#include "common/TestRegistry.h"

#include <velmora/Velmora.h>

#include <QtCore/QProcess>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QApplication>
#include <QtWidgets/QVBoxLayout>

#include <optional>

using namespace velmora;
using namespace velmora::test;
using namespace Qt::StringLiterals;

namespace {

// Runs xdotool with the arguments and returns what it printed, nothing when it could
// not run or failed.
std::optional<QString> xdotool(const QStringList &args)
{
    QProcess p;
    p.start(u"xdotool"_s, args);
    if (!p.waitForFinished(10000) || p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0)
        return std::nullopt;
    return QString::fromUtf8(p.readAllStandardOutput()).trimmed();
}

} // namespace

class TestComposedKeys : public QObject
{
    Q_OBJECT

    TestPlatform platform {czechSpace()};
    QWidget form;
    Velmora *text = new Velmora(&form);
    Velmora *date = new Velmora(&form);
    QString heard; // the characters the host was told of in KeyPress
    int errors = 0;

    Velmora *field(const QString &name) const { return name == u"date" ? date : text; }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY2(QGuiApplication::platformName() == u"xcb",
                 "composed keys need a real X display: run this test through "
                 "scripts/run-xcb-test.sh (ctest -R inputmethod does)");
        QVERIFY2(xdotool({u"version"_s}), "xdotool cannot run");
        text->setInputType(itAlfaNum);
        text->setFormatStr(u">"_s); // upper case
        date->setInputType(itDate);
        for (Velmora *f : {text, date}) {
            connect(f, &Velmora::KeyPress, this, [this](qint16 &k) { heard += QChar(k); });
            connect(f, qOverload<qint16 &, QString &>(&Velmora::Error), this,
                    [this](qint16 &, QString &) { ++errors; });
        }
        auto *layout = new QVBoxLayout(&form);
        layout->addWidget(text);
        layout->addWidget(date);
        form.show();
        form.activateWindow();
        QVERIFY2(QTest::qWaitForWindowActive(&form), "the form did not become the active window");
    }

    // Keys (X key names) typed into a field, each row followed by the digit 1: once the
    // digit has arrived every key before it has been handled, and the compose sequence
    // is known to be over. A letter that arrives composed raises KeyPress with the
    // composed letter and is upper-cased by the text field's format like a typed one;
    // the date field refuses it with the tone, as it refuses a typed letter.
    void composedKeys_data()
    {
        columns<QString, QString, QString, QString, int>(
            {"field", "keys", "heard", "value", "tones"});
        const QString t = "text", d = "date";
        row("typed letter", t, "e", "e1", "E1", 0);
        row("dead acute", t, "dead_acute e", "é1", "É1", 0);
        row("dead acute, shifted letter", t, "dead_acute shift+e", "É1", "É1", 0);
        row("dead acute on a space gives the accent alone", t, "dead_acute space", "'1", "'1", 0);
        row("compose apostrophe e", t, "Multi_key apostrophe e", "é1", "É1", 0);
        row("compose c comma", t, "Multi_key c comma", "ç1", "Ç1", 0);
        row("compose s s: upper case is two letters", t, "Multi_key s s", "ß1", "SS1", 0);
        row("two composed letters in a row", t, "dead_caron c dead_acute e", "čé1", "ČÉ1", 0);
        row("date: typed digit", d, "2", "21", "21.  .    ", 0);
        row("date: typed letter", d, "x", "x1", "1 .  .    ", 1);
        row("date: dead acute", d, "dead_acute e", "é1", "1 .  .    ", 1);
        row("date: composed fraction is no digit", d, "Multi_key 1 2", "½1", "1 .  .    ", 1);
    }
    void composedKeys()
    {
        Velmora *f = field(VFETCH(QString, field));
        f->Clear();
        f->setFocus();
        QTRY_VERIFY(f->isAncestorOf(QApplication::focusWidget()));
        QCOMPARE(xdotool({u"getwindowfocus"_s}).value_or(QString()).toULongLong(),
                 quint64(form.winId())); // the X keyboard focus: where xdotool types
        heard.clear();
        errors = 0;
        platform.beeps.clear();
        const QStringList keys = VFETCH(QString, keys).split(u' ') << u"1"_s;
        QVERIFY(xdotool(QStringList {u"key"_s, u"--delay"_s, u"20"_s} + keys));
        QTRY_COMPARE(heard.right(1), u"1"_s);
        QTEST(heard, "heard");
        QTEST(f->FormValue(), "value");
        QTEST(int(platform.beeps.size()), "tones");
        QCOMPARE(errors, 0);
        QCOMPARE(f->Error(), qint16(0));
    }
};

VELMORA_TEST(TestComposedKeys)
#include "tst_inputmethod.moc"
