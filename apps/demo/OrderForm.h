#pragma once

// The order form: a customer and a product chosen from lookup lists, quantity, unit
// price, delivery date, paid and a note. Save checks the whole form, writes the order
// from the fields' SQL literals and empties the form; the saved orders are listed below.

#include "OrderDatabase.h"

#include <QtWidgets/QWidget>

#include <functional>

class QLabel;
class QPushButton;
class QSqlQueryModel;
class QTableView;
class QTextStream;
namespace velmora {
class Velmora;
}

namespace demo {

class OrderForm : public QWidget
{
    Q_OBJECT
public:
    OrderForm(OrderDatabase &db, QTextStream &log, QWidget *parent = nullptr);

    // Loads the fields' settings from the file, or writes it when it is missing or was
    // written for other fields; then loads the lists. An empty name keeps no file.
    void keepSettings(const QString &file);
    // Checks the form; when it passes, writes the order and empties the form.
    bool save();
    void refreshOrders();

    // Asked before the form closes with unsaved changes; true lets it close.
    std::function<bool()> confirmClose;

    velmora::Velmora *customer, *product, *quantity, *price, *delivery, *paid, *note;
    QList<velmora::Velmora *> fields() const;
    QPushButton *saveButton() const { return m_save; }
    QTableView *ordersView() const { return m_orders; }
    QSqlQueryModel *ordersModel() const { return m_model; }
    QString status() const;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void addNewProduct(QString &item);
    void fillPrice();

    OrderDatabase &m_db;
    QTextStream &m_log;
    QPushButton *m_save;
    QLabel *m_status;
    QTableView *m_orders;
    QSqlQueryModel *m_model;
};

} // namespace demo
