#include "TestRegistry.h"

#include <QtTest/QTest>
#include <QtWidgets/QApplication>

namespace velmora::test {
std::vector<Registration> &registry()
{
    static std::vector<Registration> all;
    return all;
}
} // namespace velmora::test

// Runs every registered class; "-class NAME" runs one, other arguments go to Qt Test.
int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QStringList args = app.arguments();
    const qsizetype i = args.indexOf(QStringLiteral("-class"));
    const QString only = i > 0 && i + 1 < args.size() ? args.takeAt(i + 1) : QString();
    if (!only.isEmpty())
        args.removeAt(i);
    int failed = 0, ran = 0;
    for (const auto &reg : velmora::test::registry()) {
        if (only.isEmpty() || only == QLatin1String(reg.name)) {
            failed += QTest::qExec(reg.make().get(), args) != 0 ? 1 : 0;
            ++ran;
        }
    }
    std::printf("%d passed, %d failed\n", ran - failed, failed);
    return failed == 0 && ran > 0 ? 0 : 1;
}
