#pragma once

// The order-entry demo's data: customers, products and orders in one SQLite file.
// The customers and products are generated, always the same ones, when the file is
// created; orders are what the form saves.

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtSql/QSqlDatabase>

#include <optional>

namespace demo {

struct Customer
{
    int id = 0;
    QString name; // "Surname Firstname"
    QString city;
    int sortOrder = 0; // position by Czech collation (SQLite only compares code points)
};

struct Product
{
    int id = 0;
    QString name;
    double price = 0;
};

// An order as the form's fields give it: each member is the field's SQLValue, "" for an
// empty field.
struct OrderLiterals
{
    QString customer, product, quantity, unitPrice, delivery, paid, note;
};

// The customers of a new database: count of them with ids 1..count, the same on every
// machine. A person's name and city is never repeated (up to 18,000 customers).
QList<Customer> makeCustomers(int count);
// The products of a new database, ids from 1.
QList<Product> makeProducts();

// The INSERT of one order. Numbers go in as the plain literals the fields give, texts
// quoted (their quotes are already doubled), the mm/dd/yyyy date literal is turned into
// the ISO text SQLite keeps dates as; an empty or malformed literal becomes NULL.
QString orderInsert(const OrderLiterals &order);

// "12/24/2026" -> "2026-12-24"; "" for anything that is not a literal of that form.
QString isoDateFromLiteral(const QString &literal);

class OrderDatabase
{
public:
    explicit OrderDatabase(QSqlDatabase db) : m_db(std::move(db)) { }

    // Creates the tables that are missing and fills customers and products when they are
    // empty; an existing file is used as it is. Returns false with lastError() set on a
    // failure.
    bool prepare(int customerCount = 3000);
    // Whether prepare() created the data (a new file) rather than found it.
    bool created() const { return m_created; }

    // Inserts a new product and returns its id, or nullopt.
    std::optional<int> addProduct(const QString &name, double price);
    std::optional<double> productPrice(int productId) const;
    // Runs orderInsert(order); the new order's id, or nullopt.
    std::optional<int> saveOrder(const OrderLiterals &order);
    int count(const QString &table) const;

    // The SQL of the lookup lists and of the table of saved orders (newest first).
    static QString customerListSql();
    static QString productListSql();
    static QString ordersSql();

    QString lastError() const { return m_error; }
    QSqlDatabase database() const { return m_db; }

private:
    bool exec(const QString &sql);

    QSqlDatabase m_db;
    QString m_error;
    bool m_created = false;
};

} // namespace demo
