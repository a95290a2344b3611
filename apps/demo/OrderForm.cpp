#include "OrderForm.h"

#include "ProductDialog.h"

#include <velmora/FormSettings.h>
#include <velmora/Platform.h>
#include <velmora/Velmora.h>

#include <QtCore/QFile>
#include <QtCore/QJsonObject>
#include <QtCore/QSet>
#include <QtCore/QTextStream>
#include <QtCore/QTimer>
#include <QtGui/QCloseEvent>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>
#include <QtSql/QSqlQueryModel>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableView>
#include <QtWidgets/QVBoxLayout>

using velmora::Velmora;

namespace demo {

namespace {

Velmora *makeField(const char *name, const QString &label, velmora::InpType type,
                   const QString &format = {})
{
    auto *field = new Velmora;
    field->setObjectName(QLatin1String(name));
    field->setLabel(label);
    field->setInputType(type);
    if (!format.isEmpty())
        field->setFormatStr(format);
    return field;
}

// A lookup list over the application's connection: the id is the value and stays hidden,
// the name is shown and searched.
void makeLookup(Velmora *field, const QString &sql, const QString &columns)
{
    field->setSetList(true);
    field->setSQLList(sql);
    field->setListFormatString(columns);
    field->setHideCol(QStringLiteral("0"));
    field->setValueCol(0);
    field->setTextCol(1);
    field->setMatchCol(1);
    field->setListCheckValue(true);
    field->setEnableEmpty(false);
}

} // namespace

OrderForm::OrderForm(OrderDatabase &db, QTextStream &log, QWidget *parent)
    : QWidget(parent), m_db(db), m_log(log), m_save(new QPushButton(QStringLiteral("&Uložit"))),
      m_status(new QLabel), m_orders(new QTableView), m_model(new QSqlQueryModel(this))
{
    setWindowTitle(QStringLiteral("Velmora – objednávky"));

    customer = makeField("customer", QStringLiteral("Zákazník"), velmora::itAlfaNum);
    makeLookup(customer, OrderDatabase::customerListSql(), QStringLiteral("N0|A|A"));
    product = makeField("product", QStringLiteral("Zboží"), velmora::itAlfaNum);
    makeLookup(product, OrderDatabase::productListSql(), QStringLiteral("N0|A|N#,##0.00"));
    product->setListAddNewItem(true);
    product->setListNewItemText(QStringLiteral("<nové zboží…>"));
    quantity = makeField("quantity", QStringLiteral("Množství"), velmora::itNum,
                         QStringLiteral("#,##0"));
    quantity->setEnableEmpty(false);
    quantity->setAlignment(velmora::vbRightJustify);
    price = makeField("unitPrice", QStringLiteral("Cena za jednotku"), velmora::itNum,
                      QStringLiteral("#,##0.00"));
    price->setEnableEmpty(false);
    price->setAlignment(velmora::vbRightJustify);
    delivery = makeField("delivery", QStringLiteral("Datum dodání"), velmora::itDate);
    delivery->setEnableEmpty(false);
    // True and false texts, then the database form: N writes -1 and 0.
    paid = makeField("paid", QStringLiteral("Zaplaceno"), velmora::itBool,
                     QStringLiteral("ANO;NE;N"));
    paid->setEnableEmpty(false);
    note = makeField("note", QStringLiteral("Poznámka"), velmora::itAlfaNum);
    note->setMaxLength(200);

    auto *form = new QFormLayout;
    for (Velmora *f : fields())
        form->addRow(f->Label() + u':', f);
    customer->setMinimumWidth(320);
    product->setMinimumWidth(320);
    note->setMinimumWidth(420);
    for (Velmora *f : {quantity, price, delivery, paid})
        f->setFixedWidth(140);
    auto *box = new QGroupBox(QStringLiteral("Nová objednávka"));
    box->setLayout(form);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_save);
    buttons->addWidget(m_status, 1);

    m_orders->setModel(m_model);
    m_orders->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_orders->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_orders->verticalHeader()->hide();
    m_orders->setAlternatingRowColors(true);
    m_orders->setFocusPolicy(Qt::NoFocus);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(box);
    layout->addLayout(buttons);
    layout->addWidget(new QLabel(QStringLiteral("<b>Uložené objednávky</b>")));
    layout->addWidget(m_orders, 1);

    // The click moved the focus out of a field, whose leave is checked once the click is
    // over; saving after it keeps that check from running on the emptied form.
    connect(m_save, &QPushButton::clicked, this,
            [this] { QTimer::singleShot(0, this, [this] { save(); }); });
    // The last save's outcome stays until the order is edited again.
    for (Velmora *f : fields())
        connect(f, &Velmora::Change, m_status, &QLabel::clear);
    connect(product, &Velmora::ListNewItem, this, &OrderForm::addNewProduct);
    connect(product, &Velmora::ListChanged, this, &OrderForm::fillPrice);

    confirmClose = [this] {
        return QMessageBox::question(this, windowTitle(),
                                     QStringLiteral("Objednávka není uložená. Zavřít?"))
            == QMessageBox::Yes;
    };
    refreshOrders();
}

QList<Velmora *> OrderForm::fields() const
{
    return {customer, product, quantity, price, delivery, paid, note};
}

QString OrderForm::status() const
{
    return m_status->text();
}

void OrderForm::keepSettings(const QString &fileName)
{
    QFile file(fileName);
    QSet<QString> names;
    for (const Velmora *f : fields())
        names.insert(f->objectName());
    const QJsonDocument saved = !fileName.isEmpty() && file.open(QIODevice::ReadOnly)
        ? QJsonDocument::fromJson(file.readAll())
        : QJsonDocument();
    file.close();
    const QStringList keys = saved.object().keys();
    if (saved.isObject() && QSet<QString>(keys.begin(), keys.end()) == names) {
        const velmora::FormSettingsReport report = velmora::loadFormSettings(this, saved);
        m_log << "Field settings loaded from " << file.fileName() << ": " << report.loaded.size()
              << " fields";
        for (auto it = report.ignored.cbegin(); it != report.ignored.cend(); ++it)
            m_log << "; " << it.key() << " ignored " << it.value().join(QStringLiteral(", "));
        m_log << "\n";
    } else if (!fileName.isEmpty() && file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        // A missing file, or one of another version of the form: this form's settings.
        file.write(velmora::saveFormSettings(this).toJson());
        m_log << "Field settings written to " << file.fileName() << "\n";
    }
    try {
        customer->InitListAll();
    } catch (const velmora::DatabaseError &e) {
        velmora::Platform::instance().messageBox(e.message(), windowTitle(), this);
    }
    m_log << "Lists loaded: " << customer->ListCount() << " customers, " << product->ListCount()
          << " rows of products (the new-product row included)\n";
    m_log.flush();
}

void OrderForm::fillPrice()
{
    bool ok = false;
    const int id = product->Value().toInt(&ok);
    if (!ok)
        return;
    if (const std::optional<double> p = m_db.productPrice(id))
        price->setvarValue(*p);
}

void OrderForm::addNewProduct(QString &item)
{
    ProductDialog dialog(this);
    if (dialog.exec() != QDialog::Accepted)
        return; // no row: the list is offered again
    const QString name = dialog.name();
    const std::optional<int> id = m_db.addProduct(name, dialog.price());
    if (!id) {
        velmora::Platform::instance().messageBox(m_db.lastError(), product->Label(), this);
        return;
    }
    // The row as the list's query would give it: id, name, price.
    item = QString::number(*id) + u'\t' + name + u'\t' + dialog.priceText();
    m_log << "New product " << *id << " \"" << name << "\" at " << dialog.priceText() << "\n";
    m_log.flush();
}

bool OrderForm::save()
{
    if (!customer->DoValidateAll()) {
        m_status->setText(QStringLiteral("Objednávka nebyla uložena: opravte označené pole."));
        return false;
    }
    const OrderLiterals order {customer->SQLValue(), product->SQLValue(),  quantity->SQLValue(),
                               price->SQLValue(),    delivery->SQLValue(), paid->SQLValue(),
                               note->SQLValue()};
    const std::optional<int> id = m_db.saveOrder(order);
    if (!id) {
        velmora::Platform::instance().messageBox(m_db.lastError(), windowTitle(), this);
        m_status->setText(QStringLiteral("Objednávka nebyla uložena."));
        return false;
    }
    m_log << "Saved order " << *id << ": " << orderInsert(order) << "\n";
    m_log.flush();
    customer->ClearAll();
    // Clear takes the empty state as the baseline, but a field that already reported a
    // change keeps reporting it: the saved form starts unchanged again.
    customer->setFormChanged(false);
    refreshOrders();
    m_status->setText(QStringLiteral("Objednávka č. %1 uložena.").arg(*id));
    customer->setFocus(Qt::OtherFocusReason);
    return true;
}

void OrderForm::refreshOrders()
{
    m_model->setQuery(OrderDatabase::ordersSql(), m_db.database());
    if (m_model->lastError().isValid())
        m_log << "Orders: " << m_model->lastError().text() << "\n";
    m_orders->resizeColumnsToContents();
}

void OrderForm::closeEvent(QCloseEvent *event)
{
    if (customer->FormChanged() && confirmClose && !confirmClose()) {
        event->ignore();
        return;
    }
    event->accept();
}

} // namespace demo
