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
    QString only;
    const qsizetype i = args.indexOf(QStringLiteral("-class"));
    if (i > 0 && i + 1 < args.size()) {
        only = args.at(i + 1);
        args.remove(i, 2);
    }

    int failed = 0, ran = 0;
    for (const auto &reg : velmora::test::registry()) {
        if (!only.isEmpty() && only != QLatin1String(reg.name))
            continue;
        auto object = reg.make();
        failed += QTest::qExec(object.get(), args) != 0 ? 1 : 0;
        ++ran;
    }
    std::printf("%d passed, %d failed\n", ran - failed, failed);
    return failed == 0 && ran > 0 ? 0 : 1;
}
