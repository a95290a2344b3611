// velmora-demo: a small form with one field of each input type, filled through Value.
// With a display it opens the form; offscreen it writes a PNG of the form and prints
// what each field holds.

#include <velmora/Platform.h>
#include <velmora/Velmora.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QTextStream>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include <cstdio>

using velmora::Velmora;

namespace {

// The form is Czech: it fixes Czech regional settings whatever the machine's locale is.
class CzechPlatform : public velmora::Platform
{
public:
    velmora::RegionalSettings regionalSettings() const override
    {
        return velmora::RegionalSettings::czech();
    }
};

Velmora *addField(QFormLayout *form, const QString &label, velmora::InpType type,
                  const QString &format, const QString &value)
{
    auto *field = new Velmora;
    field->setObjectName(label);
    field->setInputType(type);
    field->setFormatStr(format);
    field->setLabel(label);
    field->setValue(value);
    field->setMinimumWidth(220);
    form->addRow(label + QLatin1Char(':'), field);
    return field;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    CzechPlatform platform;
    velmora::Platform::install(&platform);
    QApplication::setApplicationName(QStringLiteral("velmora-demo"));

    QCommandLineParser cli;
    cli.setApplicationDescription(QStringLiteral("Velmora demo form"));
    cli.addHelpOption();
    QCommandLineOption png(QStringLiteral("png"), QStringLiteral("Where to write the PNG."),
                           QStringLiteral("file"), QStringLiteral("velmora-demo.png"));
    cli.addOption(png);
    cli.process(app);

    QWidget window;
    window.setWindowTitle(QStringLiteral("Velmora – ukázkový formulář"));
    auto *layout = new QVBoxLayout(&window);
    auto *title = new QLabel(QStringLiteral("<b>Objednávka</b>"));
    layout->addWidget(title);
    auto *form = new QFormLayout;
    layout->addLayout(form);

    const QList<Velmora *> fields = {
        addField(form, QStringLiteral("Odběratel"), velmora::itAlfaNum, QStringLiteral("1>"),
                 QStringLiteral("nOVÁK a syn")),
        addField(form, QStringLiteral("Částka"), velmora::itNum, QStringLiteral("#,##0.00"),
                 QStringLiteral("1234,5")),
        addField(form, QStringLiteral("Datum dodání"), velmora::itDate, QString(),
                 QStringLiteral("24.12.2005")),
        addField(form, QStringLiteral("Zaplaceno"), velmora::itBool, QStringLiteral("ANO;NE;A"),
                 QStringLiteral("A")),
    };
    window.resize(420, window.sizeHint().height());

    QTextStream out(stdout);
    for (Velmora *f : fields) {
        out << f->objectName() << ": Value=\"" << f->Value() << "\" FormValue=\"" << f->FormValue()
            << "\" SQLValue=\"" << f->SQLValue() << "\"\n";
    }
    out.flush();

    if (QGuiApplication::platformName() == QLatin1String("offscreen")) {
        window.show();
        QApplication::processEvents();
        const QString file = cli.value(png);
        if (!window.grab().save(file)) {
            std::fprintf(stderr, "velmora-demo: cannot write %s\n", qPrintable(file));
            return 1;
        }
        out << "Form written to " << file << "\n";
        return 0;
    }
    window.show();
    return app.exec();
}
