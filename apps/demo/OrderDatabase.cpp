#include "OrderDatabase.h"

#include <QtCore/QCollator>
#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>
#include <QtCore/QVariant>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>

#include <algorithm>
#include <numeric>

namespace demo {

namespace {

struct Surname
{
    const char *male, *female;
};

constexpr Surname Surnames[] = {
    {"Novák", "Nováková"},    {"Svoboda", "Svobodová"},   {"Novotný", "Novotná"},
    {"Dvořák", "Dvořáková"},  {"Černý", "Černá"},         {"Procházka", "Procházková"},
    {"Kučera", "Kučerová"},   {"Veselý", "Veselá"},       {"Horák", "Horáková"},
    {"Němec", "Němcová"},     {"Marek", "Marková"},       {"Pospíšil", "Pospíšilová"},
    {"Pokorný", "Pokorná"},   {"Hájek", "Hájková"},       {"Král", "Králová"},
    {"Jelínek", "Jelínková"}, {"Růžička", "Růžičková"},   {"Beneš", "Benešová"},
    {"Fiala", "Fialová"},     {"Sedláček", "Sedláčková"}, {"Doležal", "Doležalová"},
    {"Zeman", "Zemanová"},    {"Kolář", "Kolářová"},      {"Navrátil", "Navrátilová"},
    {"Čermák", "Čermáková"},  {"Vaněk", "Vaňková"},       {"Urban", "Urbanová"},
    {"Blažek", "Blažková"},   {"Kříž", "Křížová"},        {"Šťastný", "Šťastná"},
};

// The first fifteen are men's names, the rest women's.
constexpr const char *FirstNames[] = {
    "Jiří",   "Jan",    "Petr",   "Josef",  "Pavel",     "Tomáš",    "Martin", "Jaroslav",
    "Zdeněk", "Václav", "Michal", "Lukáš",  "František", "Jakub",    "Ondřej", "Jana",
    "Marie",  "Eva",    "Hana",   "Anna",   "Lenka",     "Kateřina", "Věra",   "Lucie",
    "Alena",  "Petra",  "Ivana",  "Zuzana", "Šárka",     "Dagmar",
};
constexpr int MenNames = 15;

constexpr const char *Cities[] = {
    "Praha",
    "Brno",
    "Ostrava",
    "Plzeň",
    "Liberec",
    "Olomouc",
    "České Budějovice",
    "Hradec Králové",
    "Ústí nad Labem",
    "Pardubice",
    "Zlín",
    "Havířov",
    "Kladno",
    "Most",
    "Opava",
    "Frýdek-Místek",
    "Karviná",
    "Jihlava",
    "Teplice",
    "Děčín",
};

struct ProductRow
{
    const char *name;
    double price;
};

constexpr ProductRow Products[] = {
    {"Šroub M6 × 40 (100 ks)", 89.00},
    {"Matice M6 (100 ks)", 39.50},
    {"Podložka 6,4 (100 ks)", 24.90},
    {"Hmoždinka 8 × 40 (50 ks)", 59.00},
    {"Vrut do dřeva 4 × 35 (200 ks)", 119.00},
    {"Kotva chemická 300 ml", 349.00},
    {"Silikon sanitární bílý", 129.90},
    {"Pěna montážní 750 ml", 189.00},
    {"Lepidlo na dlažbu 25 kg", 299.00},
    {"Omítka štuková 25 kg", 245.00},
    {"Sádrokarton 12,5 mm", 219.00},
    {"Profil CW 50 × 3000", 96.50},
    {"Cement 25 kg", 159.00},
    {"Písek praný 25 kg", 65.00},
    {"Cihla plná", 14.20},
    {"Tvárnice 30 × 25 × 24", 62.90},
    {"Latě 40 × 60 × 4000", 148.00},
    {"Prkno smrkové 24 × 100", 87.00},
    {"OSB deska 18 mm", 489.00},
    {"Barva fasádní bílá 15 l", 1290.00},
    {"Penetrace hloubková 5 l", 279.00},
    {"Štětec plochý 50 mm", 45.00},
    {"Váleček malířský 25 cm", 119.00},
    {"Páska zakrývací 38 mm", 54.90},
    {"Rukavice pracovní", 39.00},
    {"Kbelík 12 l", 59.90},
    {"Žebřík hliníkový 3 × 7", 3490.00},
    {"Kolečko stavební 100 l", 1890.00},
    {"Vodováha 60 cm", 329.00},
    {"Metr svinovací 5 m", 149.00},
    {"Kladivo zámečnické 500 g", 229.00},
    {"Pilka na železo", 189.00},
};

QString quoted(const QString &escapedText)
{
    return QLatin1Char('\'') + escapedText + QLatin1Char('\'');
}

// A plain number as the fields write it: sign, digits, "." and digits, an exponent.
bool isPlainNumber(const QString &literal)
{
    static const QRegularExpression number(
        QStringLiteral("^-?(\\d+(\\.\\d*)?|\\.\\d+)([eE][-+]?\\d+)?$"));
    return number.match(literal).hasMatch();
}

QString numberOrNull(const QString &literal)
{
    return isPlainNumber(literal) ? literal : QStringLiteral("NULL");
}

} // namespace

QList<Customer> makeCustomers(int count)
{
    constexpr int surnames = int(std::size(Surnames));
    constexpr int firstNames = int(std::size(FirstNames));
    constexpr int cities = int(std::size(Cities));
    constexpr int combinations = surnames * firstNames * cities;
    // A step prime to the number of combinations visits each one once before repeating.
    constexpr int step = 7919;
    static_assert(std::gcd(step, combinations) == 1);
    count = std::clamp(count, 0, combinations);

    QList<Customer> list;
    list.reserve(count);
    for (int i = 0; i < count; ++i) {
        const int k = int(qint64(i) * step % combinations);
        const int city = k % cities;
        const int first = k / cities % firstNames;
        const Surname &surname = Surnames[k / (cities * firstNames)];
        Customer c;
        c.id = i + 1;
        c.name = QString::fromUtf8(first < MenNames ? surname.male : surname.female) + u' '
            + QString::fromUtf8(FirstNames[first]);
        c.city = QString::fromUtf8(Cities[city]);
        list.append(c);
    }

    QList<int> order(count);
    std::iota(order.begin(), order.end(), 0);
    QCollator czech {QLocale(QLocale::Czech, QLocale::Czechia)};
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
        const int byName = czech.compare(list[a].name, list[b].name);
        return byName != 0 ? byName < 0 : czech.compare(list[a].city, list[b].city) < 0;
    });
    for (int position = 0; position < count; ++position)
        list[order[position]].sortOrder = position;
    return list;
}

QList<Product> makeProducts()
{
    QList<Product> list;
    int id = 0;
    for (const ProductRow &p : Products)
        list.append({++id, QString::fromUtf8(p.name), p.price});
    return list;
}

QString isoDateFromLiteral(const QString &literal)
{
    static const QRegularExpression date(QStringLiteral("^(\\d\\d)/(\\d\\d)/(\\d{4})$"));
    const QRegularExpressionMatch m = date.match(literal);
    if (!m.hasMatch())
        return QString();
    return m.captured(3) + u'-' + m.captured(1) + u'-' + m.captured(2);
}

QString orderInsert(const OrderLiterals &order)
{
    const QString date = isoDateFromLiteral(order.delivery);
    const QStringList values {
        numberOrNull(order.customer),
        numberOrNull(order.product),
        numberOrNull(order.quantity),
        numberOrNull(order.unitPrice),
        date.isEmpty() ? QStringLiteral("NULL") : quoted(date),
        numberOrNull(order.paid),
        order.note.isEmpty() ? QStringLiteral("NULL") : quoted(order.note),
    };
    return QStringLiteral("INSERT INTO orders (customer_id, product_id, quantity, unit_price, "
                          "delivery, paid, note) VALUES (")
        + values.join(QStringLiteral(", ")) + u')';
}

bool OrderDatabase::exec(const QString &sql)
{
    QSqlQuery q(m_db);
    if (q.exec(sql))
        return true;
    m_error = q.lastError().text();
    return false;
}

bool OrderDatabase::prepare(int customerCount)
{
    m_created = false;
    if (!m_db.isOpen() && !m_db.open()) {
        m_error = m_db.lastError().text();
        return false;
    }
    const bool tables
        = exec(QStringLiteral("CREATE TABLE IF NOT EXISTS customers (id INTEGER PRIMARY KEY, "
                              "name TEXT NOT NULL, city TEXT NOT NULL, sort_order INTEGER)"))
        && exec(QStringLiteral("CREATE TABLE IF NOT EXISTS products (id INTEGER PRIMARY KEY, "
                               "name TEXT NOT NULL, price REAL NOT NULL)"))
        && exec(QStringLiteral(
            "CREATE TABLE IF NOT EXISTS orders (id INTEGER PRIMARY KEY, "
            "customer_id INTEGER NOT NULL REFERENCES customers(id), "
            "product_id INTEGER NOT NULL REFERENCES products(id), "
            "quantity REAL NOT NULL CHECK (quantity > 0), unit_price REAL NOT NULL, "
            "delivery TEXT, paid INTEGER, note TEXT, "
            "saved_at TEXT NOT NULL DEFAULT CURRENT_TIMESTAMP)"));
    if (!tables)
        return false;
    if (count(QStringLiteral("customers")) > 0 && count(QStringLiteral("products")) > 0)
        return true;

    m_db.transaction();
    QSqlQuery q(m_db);
    bool ok = exec(QStringLiteral("DELETE FROM customers"))
        && exec(QStringLiteral("DELETE FROM products"))
        && q.prepare(QStringLiteral(
            "INSERT INTO customers (id, name, city, sort_order) VALUES (?, ?, ?, ?)"));
    const QList<Customer> customers = ok ? makeCustomers(customerCount) : QList<Customer>();
    for (qsizetype i = 0; ok && i < customers.size(); ++i) {
        const Customer &c = customers.at(i);
        q.addBindValue(c.id);
        q.addBindValue(c.name);
        q.addBindValue(c.city);
        q.addBindValue(c.sortOrder);
        ok = q.exec();
    }
    ok = ok && q.prepare(QStringLiteral("INSERT INTO products (id, name, price) VALUES (?, ?, ?)"));
    const QList<Product> products = ok ? makeProducts() : QList<Product>();
    for (qsizetype i = 0; ok && i < products.size(); ++i) {
        q.addBindValue(products.at(i).id);
        q.addBindValue(products.at(i).name);
        q.addBindValue(products.at(i).price);
        ok = q.exec();
    }
    if (!ok) {
        if (m_error.isEmpty())
            m_error = q.lastError().text();
        m_db.rollback();
        return false;
    }
    m_created = m_db.commit();
    if (!m_created)
        m_error = m_db.lastError().text();
    return m_created;
}

std::optional<int> OrderDatabase::addProduct(const QString &name, double price)
{
    QSqlQuery q(m_db);
    q.prepare(QStringLiteral("INSERT INTO products (name, price) VALUES (?, ?)"));
    q.addBindValue(name);
    q.addBindValue(price);
    if (!q.exec()) {
        m_error = q.lastError().text();
        return std::nullopt;
    }
    return q.lastInsertId().toInt();
}

std::optional<double> OrderDatabase::productPrice(int productId) const
{
    QSqlQuery q(m_db);
    q.prepare(QStringLiteral("SELECT price FROM products WHERE id = ?"));
    q.addBindValue(productId);
    if (q.exec() && q.next())
        return q.value(0).toDouble();
    return std::nullopt;
}

std::optional<int> OrderDatabase::saveOrder(const OrderLiterals &order)
{
    QSqlQuery q(m_db);
    if (!q.exec(orderInsert(order))) {
        m_error = q.lastError().text();
        return std::nullopt;
    }
    return q.lastInsertId().toInt();
}

int OrderDatabase::count(const QString &table) const
{
    QSqlQuery q(m_db);
    if (q.exec(QStringLiteral("SELECT COUNT(*) FROM ") + table) && q.next())
        return q.value(0).toInt();
    return -1;
}

QString OrderDatabase::customerListSql()
{
    return QStringLiteral("SELECT id, name, city FROM customers ORDER BY sort_order");
}

QString OrderDatabase::productListSql()
{
    return QStringLiteral("SELECT id, name, price FROM products ORDER BY id");
}

QString OrderDatabase::ordersSql()
{
    // Czech number and date forms are made here, so the table shows what the form shows.
    return QStringLiteral(
        "SELECT o.id AS \"Č.\", c.name AS \"Zákazník\", c.city AS \"Město\", "
        "p.name AS \"Zboží\", replace(printf('%g', o.quantity), '.', ',') AS \"Množství\", "
        "replace(printf('%.2f', o.unit_price), '.', ',') AS \"Cena/j.\", "
        "replace(printf('%.2f', o.quantity * o.unit_price), '.', ',') AS \"Celkem\", "
        "strftime('%d.%m.%Y', o.delivery) AS \"Dodání\", "
        "CASE o.paid WHEN 0 THEN 'ne' WHEN -1 THEN 'ano' ELSE '' END AS \"Zaplaceno\", "
        "o.note AS \"Poznámka\" "
        "FROM orders o JOIN customers c ON c.id = o.customer_id "
        "JOIN products p ON p.id = o.product_id ORDER BY o.id DESC");
}

} // namespace demo
