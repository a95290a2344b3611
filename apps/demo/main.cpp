// velmora-demo: a small form with one field of each input type, filled through Value,
// and a customer chosen from a lookup list loaded from the demo's SQLite database
// (created on the first run next to the program). Save validates the form with
// DoValidateAll; closing with unsaved changes asks first; the fields' settings live in
// a JSON file beside the database, written on the first run and loaded on the next ones.
// With a display it opens the form; offscreen it writes a PNG of the form, validates it
// once as it stands and once with the amount emptied, and prints what it did.

#include <velmora/FormSettings.h>
#include <velmora/Platform.h>
#include <velmora/Velmora.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTextStream>
#include <QtGui/QCloseEvent>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
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
    // Offscreen nobody can close a message box: the message is printed instead.
    void messageBox(const QString &text, const QString &title, QWidget *owner) override
    {
        if (QGuiApplication::platformName() != QLatin1String("offscreen"))
            return velmora::Platform::messageBox(text, title, owner);
        std::printf("Message box \"%s\": %s\n", qPrintable(title), qPrintable(text));
        std::fflush(stdout);
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

// The order form: asks before it closes with changes that were not saved.
class OrderForm : public QWidget
{
public:
    Velmora *anyField = nullptr;

protected:
    void closeEvent(QCloseEvent *event) override
    {
        if (anyField && anyField->FormChanged()
            && QMessageBox::question(this, windowTitle(),
                                     QStringLiteral("Formulář obsahuje neuložené změny. Zavřít?"))
                != QMessageBox::Yes) {
            event->ignore();
            return;
        }
        event->accept();
    }
};

// Saves the fields' settings on the first run, loads them on the next ones.
void keepSettings(QWidget *form, QTextStream &out)
{
    QFile file(QDir(QCoreApplication::applicationDirPath())
                   .filePath(QStringLiteral("velmora-demo-form.json")));
    if (file.open(QIODevice::ReadOnly)) {
        const velmora::FormSettingsReport report = velmora::loadFormSettings(form, file.readAll());
        out << "Field settings loaded from " << file.fileName() << ": " << report.loaded.size()
            << " fields"
            << (report.ok() ? QString() : QStringLiteral(" (") + report.parseError + u')') << "\n";
        return;
    }
    if (file.open(QIODevice::WriteOnly))
        file.write(velmora::saveFormSettings(form).toJson());
    out << "Field settings written to " << file.fileName() << "\n";
}

// Save: the whole form must pass its exit checks; then the changes count as saved.
bool save(Velmora *anyField, QTextStream &out)
{
    const bool valid = anyField->DoValidateAll();
    if (valid)
        anyField->setFormChanged(false);
    out << "Save: " << (valid ? "the form is valid, saved" : "refused, the form is not valid")
        << "\n";
    out.flush();
    return valid;
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

    OrderForm window;
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
    QTextStream out(stdout);
    auto *saveButton = new QPushButton(QStringLiteral("&Uložit"));
    layout->addWidget(saveButton);
    window.anyField = fields.first();
    QObject::connect(saveButton, &QPushButton::clicked, [&] { save(fields.first(), out); });
    window.resize(420, window.sizeHint().height());

    // The settings are the form's own; the values are this order's.
    QStringList values;
    for (Velmora *f : fields)
        values << f->Value();
    keepSettings(&window, out);
    fields.first()->InitListAll();
    for (qsizetype i = 0; i < fields.size(); ++i)
        fields[i]->setValue(values[i]);
    fields.first()->setFormChanged(false);

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
        // A valid form saves; with the amount emptied it does not (amounts are required).
        const bool first = save(fields.first(), out);
        fields[2]->setEnableEmpty(false);
        fields[2]->setValue(QString());
        const bool second = save(fields.first(), out);
        out << "Error of the amount: " << fields[2]->Error() << "\n";
        return first && !second ? 0 : 1;
    }
    window.show();
    return app.exec();
}
