// The smallest program on an installed Velmora: a form with one numeric field, given a
// format and a value. It prints what the field hands out and exits 0 only when that is
// the value as the format keeps it.
#include <velmora/Platform.h>
#include <velmora/Velmora.h>

#include <QtWidgets/QApplication>
#include <QtWidgets/QVBoxLayout>

#include <cstdio>

namespace {

// Fixed regional settings: the result must not depend on the machine's locale.
class FixedPlatform : public velmora::Platform
{
public:
    velmora::RegionalSettings regionalSettings() const override
    {
        return velmora::RegionalSettings::english();
    }
};

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    FixedPlatform platform;
    velmora::Platform::install(&platform);

    QWidget form;
    auto *layout = new QVBoxLayout(&form);
    auto *amount = new velmora::Velmora(&form);
    layout->addWidget(amount);
    amount->setInputType(velmora::itNum);
    amount->setFormatStr(QStringLiteral("#,##0.00"));
    amount->setValue(QStringLiteral("1234.5"));

    const QString value = amount->Value();
    const QString shown = amount->FormValue();
    std::printf("Value=%s FormValue=%s\n", qPrintable(value), qPrintable(shown));

    const bool ok = value == QLatin1String("1234.50") && shown == QLatin1String("1,234.50");
    delete amount; // before the platform it uses goes
    velmora::Platform::install(nullptr);
    return ok ? 0 : 1;
}
