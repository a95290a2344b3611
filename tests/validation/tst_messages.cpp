// The message table and the switch test.

#include "common/TestRegistry.h"
#include "validation/Messages.h"

#include <QtTest/QTest>

using namespace velmora::detail;

class TestMessages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void table_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("text");
        const QString v = QStringLiteral("x,1");
        QTest::newRow("0 is no message") << 0 << v << QString();
        QTest::newRow("1") << 1 << v << QStringLiteral("Neplatně zadaná hodnota (x,1).");
        QTest::newRow("2") << 2 << v << QStringLiteral("Neplatně zadané datum (x,1).");
        QTest::newRow("3") << 3 << v
                           << QStringLiteral("Neplatně zadaný numerický formátovací řetězec.");
        QTest::newRow("4") << 4 << v
                           << QStringLiteral("Neplatně zadaný alfanumerický formátovací řetězec.");
        QTest::newRow("5") << 5 << v
                           << QStringLiteral("Neplatně zadaný datumový formátovací řetězec.");
        QTest::newRow("6") << 6 << v << QStringLiteral("Neplatně zadaná numerická hodnota (x,1).");
        QTest::newRow("7") << 7 << v << QStringLiteral("Neplatně zadané datum (x,1).");
        QTest::newRow("8") << 8 << "2"
                           << QStringLiteral("Do tohoto pole nelze vložit za desetinnou čárku "
                                             "více znaků než 2.");
        QTest::newRow("9") << 9 << "10"
                           << QStringLiteral("Do tohoto pole nelze vložit před desetinnou čárku "
                                             "více znaků než 10.");
        QTest::newRow("10") << 10 << v
                            << QStringLiteral("Údaj není obsažen v seznamu povolených hodnot.");
        QTest::newRow("11") << 11 << v
                            << QStringLiteral("Neplatně zadaná numerická hodnota (x,1).");
        QTest::newRow("12") << 12 << v << QStringLiteral("Neplatně zadané datum (x,1).");
        QTest::newRow("13") << 13 << v << QStringLiteral("Pole musí obsahovat nějakou hodnotu.");
        QTest::newRow("14") << 14 << "5"
                            << QStringLiteral("Do tohoto pole nelze vložit více než 5 znaků.");
        QTest::newRow("15 is no message") << 15 << v << QString();
        QTest::newRow("negative is no message") << -1 << v << QString();
    }
    void table()
    {
        QCOMPARE(messageText(VFETCH(int, number), VFETCH(QString, value)), VFETCH(QString, text));
    }

    void isSet_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("checkValues");
        QTest::addColumn<bool>("listCheck");
        QTest::addColumn<bool>("enableEmpty");
        QTest::addColumn<int>("result"); // -1 = unknown name

        QTest::newRow("list check follows its switch")
            << "ListCheckValue" << true << false << true << 0;
        QTest::newRow("empty follows its switch") << "EnableEmpty" << true << true << false << 0;
        QTest::newRow("master off: list check false")
            << "ListCheckValue" << false << true << false << 0;
        QTest::newRow("master off: empty allowed") << "EnableEmpty" << false << true << false << 1;
        QTest::newRow("case and blanks ignored") << "  enableempty " << true << true << true << 1;
        QTest::newRow("unknown name") << "Nullable" << true << true << true << -1;
    }
    void isSet()
    {
        const auto got = velmora::detail::isSet(
            VFETCH(QString, name),
            {VFETCH(bool, checkValues), VFETCH(bool, listCheck), VFETCH(bool, enableEmpty)});
        QCOMPARE(got ? int(*got) : -1, VFETCH(int, result));
    }

    void unknownSwitchQuotesTheNameAsPassed()
    {
        QCOMPARE(unknownSwitchText(QStringLiteral(" foo ")),
                 QStringLiteral("Chyba programátora. Neznámý parametr funkce IsSet ( foo )."));
    }
};

VELMORA_TEST(TestMessages)
#include "tst_messages.moc"
