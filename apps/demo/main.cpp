// velmora-demo: order entry on a small SQLite database of customers, products and orders.
// With a display it opens the order form; offscreen it plays a scripted session through
// real key events, writes a picture per step and exits 0 only when every step did what it
// should.

#include "DemoPlatform.h"
#include "OrderDatabase.h"
#include "OrderForm.h"
#include "Script.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QTextStream>
#include <QtCore/QTimer>
#include <QtSql/QSqlDatabase>
#include <QtWidgets/QApplication>

#include <cstdio>
#include <cstdlib>

namespace {

// Offscreen, Qt notes every window feature the plugin lacks (raising a window, grabbing
// the keyboard); the session's own output is easier to read without them.
QtMessageHandler qtHandler = nullptr;
void quietOffscreen(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type == QtWarningMsg && text.startsWith(QLatin1String("This plugin does not support")))
        return;
    qtHandler(type, context, text);
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("velmora-demo"));
    demo::DemoPlatform platform;
    velmora::Platform::install(&platform);
    if (demo::DemoPlatform::offscreen())
        qtHandler = qInstallMessageHandler(quietOffscreen);

    QCommandLineParser cli;
    cli.setApplicationDescription(QStringLiteral("Velmora order-entry demo"));
    cli.addHelpOption();
    QCommandLineOption dataDir(QStringLiteral("data"),
                               QStringLiteral("Folder of the database and the field settings "
                                              "(default: the program's folder)."),
                               QStringLiteral("dir"), QCoreApplication::applicationDirPath());
    QCommandLineOption stepsDir(QStringLiteral("steps"),
                                QStringLiteral("Folder of the pictures of the scripted session "
                                               "(default: velmora-demo-steps in the data folder)."),
                                QStringLiteral("dir"));
    cli.addOptions({dataDir, stepsDir});
    cli.process(app);

    QTextStream out(stdout);
    const QDir data(cli.value(dataDir));
    QElapsedTimer clock;
    clock.start();
    QSqlDatabase connection = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    connection.setDatabaseName(data.filePath(QStringLiteral("velmora-demo.db")));
    demo::OrderDatabase db(connection);
    if (!db.prepare()) {
        std::fprintf(stderr, "velmora-demo: %s: %s\n", qPrintable(connection.databaseName()),
                     qPrintable(db.lastError()));
        return 1;
    }
    out << (db.created() ? "Database created: " : "Database reused: ") << connection.databaseName()
        << " (" << db.count(QStringLiteral("customers")) << " customers, "
        << db.count(QStringLiteral("products")) << " products, "
        << db.count(QStringLiteral("orders")) << " orders) in " << clock.elapsed() << " ms\n";

    demo::OrderForm form(db, out);
    form.resize(900, 540);
    form.keepSettings(data.filePath(QStringLiteral("velmora-demo-form.json")));
    form.show();
    if (!demo::DemoPlatform::offscreen())
        return app.exec();

    // Nobody answers offscreen: a session that hangs is a failed one.
    QTimer::singleShot(60000, [] {
        std::fprintf(stderr, "velmora-demo: the scripted session did not finish in 60 s\n");
        std::_Exit(2);
    });
    QApplication::setActiveWindow(&form);
    const QString steps = cli.isSet(stepsDir) ? cli.value(stepsDir)
                                              : data.filePath(QStringLiteral("velmora-demo-steps"));
    demo::Script script(form, platform, QDir(steps), out);
    int result = 1;
    QTimer::singleShot(0, [&] {
        result = script.run() ? 0 : 1;
        out << "Session finished in " << clock.elapsed() << " ms\n";
        out.flush();
        QApplication::exit(result);
    });
    app.exec();
    return result;
}
