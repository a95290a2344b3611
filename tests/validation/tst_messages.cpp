// The message texts and the switch test.

#include "common/DataRows.h"
#include "common/TestRegistry.h"
#include "validation/Messages.h"

using namespace velmora::detail;
using namespace velmora::test;

class TestMessages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The value goes into the text where the message has a place for it; numbers that
    // name no message give no text.
    void texts_data()
    {
        columns<int, QString, QString>({"number", "value", "text"});
        row("value in parentheses", 6, "x,1", "Neplatně zadaná numerická hodnota (x,1).");
        row("no place for the value", 13, "x", "Pole musí obsahovat nějakou hodnotu.");
        row("0 is no message", 0, "x", QString());
        row("past the last", 15, "x", QString());
    }
    void texts() { QTEST(messageText(VFETCH(int, number), VFETCH(QString, value)), "text"); }

    void isSet_data()
    {
        columns<QString, bool, bool, bool, int>(
            {"name", "checkValues", "listCheck", "enableEmpty", "result"}); // -1: unknown name
        row("list check follows its switch", "ListCheckValue", true, false, true, 0);
        row("empty follows its switch", "EnableEmpty", true, true, false, 0);
        row("master off: list check false", "ListCheckValue", false, true, false, 0);
        row("master off: empty allowed", "EnableEmpty", false, true, false, 1);
        row("case and blanks ignored", "  enableempty ", true, true, true, 1);
        row("unknown name", "Nullable", true, true, true, -1);
    }
    void isSet()
    {
        const auto got = velmora::detail::isSet(
            VFETCH(QString, name),
            {VFETCH(bool, checkValues), VFETCH(bool, listCheck), VFETCH(bool, enableEmpty)});
        QTEST(got ? int(*got) : -1, "result");
    }
};

VELMORA_TEST(TestMessages)
#include "tst_messages.moc"
