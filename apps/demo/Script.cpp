#include "Script.h"

#include "DemoPlatform.h"
#include "OrderForm.h"
#include "ProductDialog.h"

#include <velmora/Velmora.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QTextStream>
#include <QtCore/QTimer>
#include <QtGui/QPainter>
#include <QtSql/QSqlQueryModel>
#include <QtSql/QSqlRecord>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableView>
#include <QtWidgets/QToolButton>

using velmora::Velmora;

namespace demo {

namespace {

QLineEdit *editBox(const Velmora *field)
{
    return field->findChild<QLineEdit *>(QStringLiteral("txtInput"));
}

QTableView *listTable(const Velmora *field)
{
    return field->findChild<QTableView *>(QStringLiteral("lstList"));
}

void settle()
{
    for (int i = 0; i < 3; ++i)
        QCoreApplication::processEvents();
}

// Types the text key by key, as a keyboard would send it (letters with diacritics too).
void type(QWidget *target, const QString &text)
{
    for (const QChar c : text)
        QTest::sendKeyEvent(QTest::Click, target, Qt::Key(c.toUpper().unicode()), QString(c),
                            Qt::NoModifier);
}

// Clicks into a field's edit box, which gives it the focus as the mouse would.
void enter(Velmora *field)
{
    QTest::mouseClick(editBox(field), Qt::LeftButton, Qt::NoModifier, QPoint(4, 4));
    settle();
}

// Runs action once the widget is shown: for what a key opens in a loop of its own (the
// list window, a dialog), the action is queued before that key is sent.
void whenShown(const std::function<QWidget *()> &widget, const std::function<void()> &action)
{
    auto *timer = new QTimer;
    auto *waited = new QElapsedTimer;
    waited->start();
    QObject::connect(timer, &QTimer::timeout, [=] {
        QWidget *w = widget();
        if ((!w || !w->isVisible()) && waited->elapsed() < 3000)
            return;
        timer->stop();
        timer->deleteLater();
        delete waited;
        if (w && w->isVisible())
            action();
    });
    timer->start(10);
}

QString cell(const QSqlQueryModel *model, int row, const char *column)
{
    return model->data(model->index(row, model->record().indexOf(QString::fromUtf8(column))))
        .toString();
}

} // namespace

Script::Script(OrderForm &form, DemoPlatform &platform, const QDir &pictures, QTextStream &out)
    : m_form(form), m_platform(platform), m_pictures(pictures), m_out(out)
{
    m_pictures.mkpath(QStringLiteral("."));
}

void Script::picture(const QString &name, QWidget *over)
{
    QPixmap shot = m_form.grab();
    if (over && over->isVisible()) {
        // A list window or a dialog is a window of its own: drawn over the form where it is.
        const QPoint at = over->mapToGlobal(QPoint()) - m_form.mapToGlobal(QPoint());
        const QRect all = QRect(QPoint(), shot.size()).united(QRect(at, over->size()));
        QPixmap canvas(all.size());
        canvas.fill(m_form.palette().color(QPalette::Window));
        QPainter painter(&canvas);
        painter.drawPixmap(-all.topLeft(), shot);
        painter.drawPixmap(at - all.topLeft(), over->grab());
        if (over->isWindow() && !(over->windowFlags() & Qt::Popup)) {
            // Offscreen windows have no frame: a thin one tells the dialog from the form.
            painter.setPen(m_form.palette().color(QPalette::Dark));
            painter.drawRect(QRect(at - all.topLeft(), over->size()).adjusted(0, 0, -1, -1));
        }
        painter.end();
        shot = canvas;
    }
    const QString file = m_pictures.filePath(
        QStringLiteral("%1-%2.png").arg(++m_picturesTaken, 2, 10, QLatin1Char('0')).arg(name));
    if (!shot.save(file)) {
        m_out << "    cannot write " << file << "\n";
        m_allOk = false;
    }
}

bool Script::step(const QString &name, const std::function<void()> &action,
                  const std::function<Check()> &check)
{
    ++m_steps;
    m_out << "Step " << m_steps << ", " << name << "\n";
    m_out.flush();
    action();
    settle();
    picture(name);
    const Check result = check();
    m_out << "    " << (result.ok ? "ok: " : "FAILED: ") << result.detail << "\n";
    m_out.flush();
    m_allOk = m_allOk && result.ok;
    return result.ok;
}

bool Script::run()
{
    OrderForm &f = m_form;
    OrderDatabase db(QSqlDatabase::database());
    const int ordersBefore = db.count(QStringLiteral("orders"));
    const int productsBefore = db.count(QStringLiteral("products"));
    const QString newProduct = QStringLiteral("Páska lepicí 'Extra' č. %1").arg(productsBefore + 1);
    const QString note = QStringLiteral("Volat předem, vykládka na „rampě B“ – pozor, 'křehké'");
    QString customerName;

    step(
        QStringLiteral("form"), [] {},
        [&]() -> Check {
            return {f.customer->ListCount() >= 3000 && f.product->ListCount() > 1
                        && (f.ordersModel()->rowCount() > 0) == (ordersBefore > 0),
                    QStringLiteral("%1 customers and %2 product rows in the lists, %3 orders "
                                   "saved before")
                        .arg(f.customer->ListCount())
                        .arg(f.product->ListCount())
                        .arg(ordersBefore)};
        });

    // Page Down drops the customers down; typed letters find the first name that starts
    // with them, Down moves one row on and Enter chooses it.
    step(
        QStringLiteral("customer-list"),
        [&] {
            enter(f.customer);
            QTableView *table = listTable(f.customer);
            whenShown([=] { return table ? table->window() : nullptr; },
                      [&, table] {
                          type(table, QStringLiteral("Dvořák J"));
                          QTest::keyClick(table, Qt::Key_Down);
                          picture(QStringLiteral("customer-list-open"), table->window());
                          QTest::keyClick(table, Qt::Key_Enter);
                      });
            QTest::keyClick(editBox(f.customer), Qt::Key_PageDown);
            customerName = f.customer->FormValue();
        },
        [&]() -> Check {
            bool numeric = false;
            f.customer->Value().toInt(&numeric);
            return {customerName.startsWith(QStringLiteral("Dvořák J")) && numeric
                        && !f.customer->GetSelectedElem(2).isEmpty(),
                    QStringLiteral("chose \"%1\" from %2, value (id) %3")
                        .arg(customerName, f.customer->GetSelectedElem(2), f.customer->Value())};
        });

    // The list button drops the products down; the new-item row opens the dialog for a
    // new product, whose price then fills the order's unit price.
    step(
        QStringLiteral("new-product"),
        [&] {
            enter(f.product);
            QTableView *table = listTable(f.product);
            whenShown([=] { return table ? table->window() : nullptr; },
                      [&, table] {
                          whenShown(
                              [&] { return f.findChild<ProductDialog *>(); },
                              [&] {
                                  auto *dialog = f.findChild<ProductDialog *>();
                                  QApplication::setActiveWindow(dialog);
                                  enter(dialog->nameField());
                                  type(editBox(dialog->nameField()), newProduct);
                                  enter(dialog->priceField());
                                  type(editBox(dialog->priceField()), QStringLiteral("149,9"));
                                  settle();
                                  picture(QStringLiteral("new-product-dialog"), dialog);
                                  QTest::mouseClick(dialog->buttons()->button(QDialogButtonBox::Ok),
                                                    Qt::LeftButton);
                              });
                          QTest::keyClick(table, Qt::Key_Home, Qt::ControlModifier);
                          QTest::keyClick(table, Qt::Key_Enter);
                      });
            QTest::mouseClick(f.product->findChild<QToolButton *>(QStringLiteral("cmdList")),
                              Qt::LeftButton);
            QApplication::setActiveWindow(&f);
        },
        [&]() -> Check {
            const int products = db.count(QStringLiteral("products"));
            return {f.product->FormValue() == newProduct && products == productsBefore + 1
                        && f.price->FormValue() == QLatin1String("149,90")
                        && f.product->GetSelectedElem(2) == QLatin1String("149,90"),
                    QStringLiteral("product \"%1\" (id %2, list price %3) added, unit price "
                                   "filled in: %4")
                        .arg(f.product->FormValue(), f.product->Value(),
                             f.product->GetSelectedElem(2), f.price->FormValue())};
        });

    // The quantity is forgotten: the rest is typed in.
    step(
        QStringLiteral("date-paid-note"),
        [&] {
            enter(f.delivery);
            QTest::keyClick(editBox(f.delivery), Qt::Key_Home);
            type(editBox(f.delivery), QStringLiteral("15122026"));
            enter(f.paid);
            type(editBox(f.paid), QStringLiteral("a"));
            enter(f.note);
            type(editBox(f.note), note);
        },
        [&]() -> Check {
            return {f.delivery->FormValue() == QLatin1String("15.12.2026")
                        && f.paid->FormValue() == QLatin1String("ANO") && f.note->Value() == note,
                    QStringLiteral("delivery %1, paid %2, note \"%3\"")
                        .arg(f.delivery->FormValue(), f.paid->FormValue(), f.note->Value())};
        });

    // Save refuses the form: the exit check of the empty quantity reports it.
    const qsizetype boxesBefore = m_platform.boxes.size();
    step(
        QStringLiteral("save-refused"), [&] { QTest::mouseClick(f.saveButton(), Qt::LeftButton); },
        [&]() -> Check {
            const bool told = m_platform.boxes.size() == boxesBefore + 1
                && m_platform.boxes.last().title == f.quantity->Label();
            return {told && db.count(QStringLiteral("orders")) == ordersBefore
                        && f.status().startsWith(QStringLiteral("Objednávka nebyla uložena"))
                        && f.quantity->isAncestorOf(QApplication::focusWidget()),
                    QStringLiteral("the user was told \"%1\", nothing saved, the focus is in "
                                   "the quantity")
                        .arg(told ? m_platform.boxes.last().text : QStringLiteral("nothing"))};
        });

    step(
        QStringLiteral("quantity"), [&] { type(editBox(f.quantity), QStringLiteral("12")); },
        [&]() -> Check {
            return {f.quantity->Value() == QLatin1String("12"),
                    QStringLiteral("quantity %1").arg(f.quantity->FormValue())};
        });

    // Save writes the order, empties the form and lists the order on top of the table.
    step(
        QStringLiteral("saved"), [&] { QTest::mouseClick(f.saveButton(), Qt::LeftButton); },
        [&]() -> Check {
            const QSqlQueryModel *m = f.ordersModel();
            const bool row = m->rowCount() > 0 && cell(m, 0, "Zákazník") == customerName
                && cell(m, 0, "Zboží") == newProduct
                && cell(m, 0, "Celkem") == QLatin1String("1798,80")
                && cell(m, 0, "Dodání") == QLatin1String("15.12.2026")
                && cell(m, 0, "Zaplaceno") == QLatin1String("ano")
                && cell(m, 0, "Poznámka") == note;
            const bool cleared = f.customer->Value().isEmpty() && f.note->Value().isEmpty()
                && !f.customer->FormChanged();
            const bool told
                = f.status() == QStringLiteral("Objednávka č. %1 uložena.").arg(cell(m, 0, "Č."));
            return {row && cleared && told
                        && db.count(QStringLiteral("orders")) == ordersBefore + 1,
                    QStringLiteral("order %1 on top of the table (%2 × %3 = %4), form %5")
                        .arg(cell(m, 0, "Č."), cell(m, 0, "Množství"), cell(m, 0, "Cena/j."),
                             cell(m, 0, "Celkem"),
                             cleared ? QStringLiteral("emptied") : QStringLiteral("NOT emptied"))};
        });

    // Closing with a change that was not saved asks; the answer here is No.
    bool asked = false;
    f.confirmClose = [&] {
        asked = true;
        return false;
    };
    step(
        QStringLiteral("close-asks"),
        [&] {
            type(editBox(f.customer), QStringLiteral("Nov"));
            f.close();
        },
        [&]() -> Check {
            return {asked && f.isVisible(),
                    QStringLiteral("asked before closing: %1, the form stays open")
                        .arg(asked ? QStringLiteral("yes") : QStringLiteral("no"))};
        });

    asked = false;
    f.customer->ClearAll();
    f.customer->setFormChanged(false);
    const bool closed = f.close();
    m_out << "Closing the emptied form: " << (closed && !asked ? "closed without asking" : "FAILED")
          << "\n";
    m_allOk = m_allOk && closed && !asked;
    m_out << (m_allOk ? "Every step did what it should." : "Some steps FAILED.") << " Pictures in "
          << m_pictures.path() << "\n";
    m_out.flush();
    return m_allOk;
}

} // namespace demo
