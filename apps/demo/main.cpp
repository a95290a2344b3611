// velmora-demo: a small form with one field of each input type, filled through Value,
// and a customer chosen from a lookup list loaded from the demo's SQLite database
// (created on the first run next to the program). With a display it opens the form;
// offscreen it writes a PNG of the form and prints what each field holds.

#include <velmora/Platform.h>
#include <velmora/Velmora.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QDir>
#include <QtCore/QTextStream>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>
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

// The demo's database: a few thousand customers, made once.
QString demoDatabase()
{
    const QString file
        = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("velmora-demo.db"));
    {
        QSqlDatabase db
            = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("make"));
        db.setDatabaseName(file);
        if (!db.open())
            return QString();
        QSqlQuery q(db);
        q.exec(QStringLiteral("CREATE TABLE IF NOT EXISTS customers "
                              "(id INTEGER PRIMARY KEY, name TEXT NOT NULL, city TEXT)"));
        q.exec(QStringLiteral("SELECT COUNT(*) FROM customers"));
        if (q.next() && q.value(0).toInt() == 0) {
            const QStringList names {"Novák",  "Svoboda", "Dvořák", "Černý", "Procházka",
                                     "Kučera", "Veselý",  "Horák",  "Němec", "Marek"};
            const QStringList firms {"a syn", "s.r.o.", "a spol.", "stavby", "obchod"};
            const QStringList cities {"Praha",   "Brno", "Ostrava", "Plzeň", "Liberec",
                                      "Olomouc", "Zlín", "Kladno",  "Opava", "Jihlava"};
            db.transaction();
            q.prepare(QStringLiteral("INSERT INTO customers (id, name, city) VALUES (?, ?, ?)"));
            for (int id = 1; id <= 3000; ++id) {
                q.addBindValue(id);
                q.addBindValue(names.at(id % names.size()) + u' ' + firms.at(id / 10 % firms.size())
                               + u' ' + QString::number(id));
                q.addBindValue(cities.at(id * 7 % cities.size()));
                q.exec();
            }
            db.commit();
        }
    }
    QSqlDatabase::removeDatabase(QStringLiteral("make"));
    return file;
}

// A customer chosen by name from the database; its id is the field's value.
Velmora *addCustomer(QFormLayout *form, const QString &database)
{
    auto *field = new Velmora;
    field->setObjectName(QStringLiteral("Zákazník"));
    field->setLabel(field->objectName());
    field->setSetList(true);
    field->setSQLConnect(QStringLiteral("Driver=QSQLITE;Database=") + database);
    field->setSQLList(QStringLiteral("SELECT id, name, city FROM customers ORDER BY name"));
    field->setListFormatString(QStringLiteral("N0|A|A"));
    field->setHideCol(QStringLiteral("0"));
    field->setValueCol(0);
    field->setTextCol(1);
    field->setMatchCol(1);
    field->setMinimumWidth(220);
    try {
        field->InitList();
    } catch (const velmora::DatabaseError &e) {
        std::fprintf(stderr, "velmora-demo: %s\n", e.what());
    }
    field->setValue(QStringLiteral("42"));
    form->addRow(field->objectName() + QLatin1Char(':'), field);
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
        addCustomer(form, demoDatabase()),
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
