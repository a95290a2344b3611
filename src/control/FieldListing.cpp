// The lookup list of a field: loading it, finding a value's row, and the drop-down that
// writes a chosen row back through the one exit of an edit.

#include "Velmora_p.h"
#include "format/Text.h"
#include "lookup/ListFormat.h"

#include <velmora/DatabaseError.h>
#include <velmora/Platform.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtGui/QFontMetrics>
#include <QtSql/QSqlDatabase>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QProgressDialog>
#include <QtWidgets/QTableView>

#include <atomic>
#include <cmath>
#include <exception>
#include <memory>
#include <thread>
#include <vector>

namespace velmora {

using namespace detail;

namespace {

const QString DefaultNewItemText = QStringLiteral("<NOVÝ>");
const QString WrongColumnCount = QStringLiteral(
    "Chybný počet sloupců při vkládání nových hodnot do seznamu povolených údajů.");

} // namespace

ListWindow *VelmoraPrivate::listWindow()
{
    if (!list.window) {
        list.window = new ListWindow(q);
        list.model = new ListTableModel(list.rows, list.window);
        list.window->setModel(list.model);
        list.window->setSearch([this](const QString &prefix) { return typeAheadRow(prefix); });
        applyListLook();
        refreshAccessibility();
    }
    return list.window;
}

int VelmoraPrivate::typeAheadRow(const QString &text)
{
    const int column = set.matchCol;
    if (column < 0 || column >= list.rows.columnCount() || text.isEmpty())
        return -1; // MatchCol -1: typing does not search
    FieldList::TypeAhead &t = list.typeAhead;
    const int first = hasNewItemRow() ? 1 : 0;
    const auto folded = [](QChar c) {
        return c.toCaseFolded().unicode();
    };
    if (t.column != column || t.loads != list.loads) {
        t = {column, list.loads, {}, {}, -1};
        for (int r = list.rows.rowCount() - 1; r >= first; --r)
            if (const QStringView cell = list.rows.cell(r, column); !cell.isEmpty())
                t.firstRow.insert(folded(cell.at(0)), r);
    }
    // A longer text of the same start is found at the row of the shorter one or after it.
    const bool goesOn = !t.text.isEmpty() && text.startsWith(t.text, Qt::CaseInsensitive);
    if (goesOn && t.row < 0)
        return -1;
    int from = goesOn ? t.row : t.firstRow.value(folded(text.at(0)), -1);
    t.text = text;
    t.row = -1;
    for (int r = qMax(from, first); from >= 0 && r < list.rows.rowCount(); ++r) {
        if (list.rows.cell(r, column).startsWith(text, Qt::CaseInsensitive)) {
            t.row = r;
            break;
        }
    }
    return t.row;
}

void VelmoraPrivate::applyListLook()
{
    if (!list.window)
        return;
    QTableView *table = list.window->table();
    table->setFont(look.listFont()->toQFont(table->font()));
    QPalette p = table->palette();
    p.setColor(QPalette::Base, Appearance::toQColor(set.listBackColor, QPalette::Base));
    p.setColor(QPalette::Text, Appearance::toQColor(set.listForeColor, QPalette::Text));
    table->setPalette(p);
}

ListCellFormatter VelmoraPrivate::cellFormatter() const
{
    return ListCellFormatter(list.columns, &set.parsed, set.parsed.regional);
}

ValueFormat VelmoraPrivate::columnFormat(int column) const
{
    ValueFormat vf = cellFormatter().valueFormat(column);
    vf.trim = atNone; // a list's cells are taken as they are
    return vf;
}

void VelmoraPrivate::layoutListColumns()
{
    if (!list.window)
        return;
    QList<int> widths;
    for (int c = 0; c < list.rows.columnCount(); ++c)
        widths.append(list.columns.length(c));
    list.window->setColumns(widths, list.hidden);
}

namespace {

// Where a load takes its rows from.
enum class Source { Bool, HostQuery, DefaultConnection, OwnConnection, Items };

// Everything a load reads from its field, copied, so that the load can run beside the
// field (in a thread of its own) and the field can go away meanwhile.
struct LoadPlan
{
    Source source = Source::Items;
    ListLoadOptions options;
    ListFieldSettings field;
    QString listFormat, connect, sql;
    ListRows items;
    BoolFormat boolFormat;
    bool enableEmpty = true;
    ParsedFormat parsed; // the field's, with slot 1 filled by the list format
    int formatMessage = 0;
};

LoadedList runLoad(LoadPlan &plan, QSqlQuery *rs)
{
    plan.options.parsed = &plan.parsed;
    const ListLoader loader(plan.options);
    const ColumnsReady ready = [&plan](ListColumns &columns, int count) {
        columns.setUpperBound(count - 1);
        plan.formatMessage = parseListFormat(plan.listFormat, plan.field, columns, plan.parsed);
        // A date value column without a format shows its dates in the layout they are
        // read back in (the default one), whatever the regional short date is.
        const int valueCol = plan.field.valueCol;
        if (valueCol >= 0 && valueCol < count && columns.dataType(valueCol) == itDate
            && columns.formatString(valueCol).isEmpty())
            columns.setFormatString(valueCol, DefaultDateFormat);
    };
    switch (plan.source) {
    case Source::Bool:
        return loader.fromBool(plan.boolFormat, plan.enableEmpty);
    case Source::HostQuery:
        return loader.fromQuery(*rs, ready);
    case Source::DefaultConnection:
        return loader.fromDatabase(QSqlDatabase::database(), plan.sql, ready);
    case Source::OwnConnection:
        return loader.fromConnection(plan.connect, plan.sql, ready);
    case Source::Items:
        break;
    }
    return loader.fromItems(plan.items, ready);
}

// A bound of a text's width in a font: the sum of its characters' own advances (from a
// table filled as characters are met), plus a pixel for each to cover rounding and
// kerning; a text with marks, surrogates or right-to-left letters gets no bound below
// the widest character times its length. Shaping a text costs far more than this, and
// only texts whose bound passes their column's width need it.
std::function<int(QStringView)> advanceSum(const QFont &font)
{
    auto table = std::make_shared<std::vector<float>>(0x3000, -1.0f);
    auto metrics = std::make_shared<QFontMetricsF>(font);
    const float widest = float(metrics->maxWidth());
    return [table, metrics, widest](QStringView text) {
        double sum = 0;
        for (const QChar c : text) {
            const char16_t u = c.unicode();
            if (u >= table->size() || c.isMark() || c.direction() == QChar::DirR
                || c.direction() == QChar::DirAL) {
                sum += widest;
                continue;
            }
            float &w = (*table)[u];
            if (w < 0)
                w = float(metrics->horizontalAdvance(c));
            sum += w + 1.0;
        }
        return int(std::ceil(sum));
    };
}

// How long a load the user waits for runs before it shows its progress.
constexpr int ProgressAfterMs = 500;
// How often the window is served while a load runs beside it.
constexpr int ServeEveryMs = 20;

// A load the user started: it runs beside the user interface (in a thread of its own when
// the field opens its own connection, else in steps between which the window is
// served), shows its progress after half a second, and stops when the user cancels or
// the field goes away. Nothing when it was cancelled; a failure is thrown.
std::optional<LoadedList> loadWithProgress(LoadPlan &plan, QWidget *field, const QString &title)
{
    QPointer<QWidget> alive(field);
    std::atomic<bool> cancel {false}, done {false};
    std::atomic<int> rowsRead {0};
    plan.options.cancel = &cancel;
    QProgressDialog dialog(QStringLiteral("Načítá se seznam…"), QStringLiteral("Zrušit"), 0, 0);
    dialog.setWindowTitle(title);
    dialog.setWindowModality(Qt::ApplicationModal);
    dialog.setAutoClose(false);
    dialog.setAutoReset(false);
    dialog.setMinimumDuration(0);
    dialog.hide();
    QObject::connect(&dialog, &QProgressDialog::canceled, [&cancel] { cancel = true; });
    QElapsedTimer clock;
    clock.start();
    const auto serve = [&] {
        if (!alive)
            cancel = true;
        if (!dialog.isVisible() && clock.elapsed() >= ProgressAfterMs && !done)
            dialog.show();
        if (dialog.isVisible())
            dialog.setLabelText(QStringLiteral("Načteno řádků: %L1").arg(rowsRead.load()));
    };

    std::optional<LoadedList> result;
    std::exception_ptr failure;
    if (plan.source == Source::OwnConnection) {
        plan.options.progress = [&rowsRead](int n) {
            rowsRead = n;
        };
        QEventLoop loop;
        QTimer tick;
        QObject::connect(&tick, &QTimer::timeout, [&] {
            serve();
            if (done)
                loop.quit();
        });
        tick.start(ServeEveryMs);
        std::thread worker([&] {
            try {
                result = runLoad(plan, nullptr);
            } catch (...) {
                failure = std::current_exception();
            }
            done = true;
        });
        loop.exec();
        worker.join();
    } else {
        // The application's connection may be used only here: the load runs in steps.
        QElapsedTimer sinceServed;
        sinceServed.start();
        plan.options.checkEvery = 1024;
        plan.options.progress = [&](int n) {
            rowsRead = n;
            if (sinceServed.elapsed() < ServeEveryMs)
                return;
            serve();
            QCoreApplication::processEvents();
            sinceServed.start();
        };
        try {
            result = runLoad(plan, nullptr);
        } catch (...) {
            failure = std::current_exception();
        }
        done = true;
    }
    if (failure)
        std::rethrow_exception(failure);
    if (cancel || !result || result->canceled)
        return std::nullopt;
    return result;
}

} // namespace

void VelmoraPrivate::initList(QSqlQuery *rs, bool keepOnFailure)
{
    val.listIndex = -1;
    listWindow();
    if (!keepOnFailure) {
        list.model->beginReplace();
        list.rows.clear();
        list.model->endReplace();
    }
    LoadPlan plan;
    const QFontMetrics metrics(list.window->table()->font());
    plan.options.regional = set.parsed.regional;
    plan.options.formatCells = runMode();
    plan.options.measure.width = [metrics](QStringView text) {
        return metrics.horizontalAdvance(text.toString());
    };
    plan.options.measure.maxCharWidth = metrics.maxWidth();
    plan.options.measure.bound = advanceSum(list.window->table()->font());
    if (hasNewItemRow())
        plan.options.newItemRow
            = set.listNewItemText.isEmpty() ? DefaultNewItemText : set.listNewItemText;
    plan.field = {set.textCol,   set.valueCol,        set.inputType,
                  set.formatStr, set.parsed.regional, {set.desOddel, set.tisOddel, set.datOddel}};
    plan.listFormat = set.listFormatString;
    plan.connect = set.sqlConnect;
    plan.sql = set.sqlList;
    plan.parsed = set.parsed;
    plan.boolFormat = set.parsed.boolFormat;
    plan.enableEmpty = switchOn(Switch::EnableEmpty);
    if (set.inputType == itBool)
        plan.source = Source::Bool;
    else if (rs)
        plan.source = Source::HostQuery;
    else if (!set.sqlList.isEmpty())
        plan.source = trimBlanks(set.sqlConnect).isEmpty() ? Source::DefaultConnection
                                                           : Source::OwnConnection;
    else
        plan.items = list.items.rows();

    QPointer<Velmora> alive(q);
    const quint64 formatGeneration = set.formatGeneration;
    LoadedList loaded;
    if (keepOnFailure && plan.source != Source::HostQuery && plan.source != Source::Items) {
        // A reload the user started by dropping down: with progress and a way out. The
        // window is served meanwhile, so a second drop-down must wait for this one.
        list.loading = true;
        std::optional<LoadedList> done;
        try {
            done = loadWithProgress(plan, q, set.label);
        } catch (...) {
            if (alive)
                list.loading = false;
            throw;
        }
        if (!alive)
            return;
        list.loading = false;
        if (!done || done->canceled)
            return; // the rows shown before stay
        loaded = std::move(*done);
    } else {
        loaded = runLoad(plan, rs);
    }
    if (plan.source == Source::Bool) {
        set.matchCol = 1;
        set.textCol = 0;
        set.valueCol = 0;
        for (const char *name : {"MatchCol", "TextCol", "ValueCol"})
            notify(name);
    } else if (set.formatGeneration == formatGeneration) {
        set.parsed = plan.parsed; // the value column's date layout (slot 1)
    }
    if (loaded.sourceRows == 0 && !set.listAddNewItem) {
        // Nothing to show: the list stays empty and counts as never loaded.
        list.model->beginReplace();
        list.rows.clear();
        list.model->endReplace();
    } else {
        list.hidden = parseHideCol(set.hideCol, qMax(loaded.columns.upperBound(), 0));
        list.model->beginReplace();
        list.rows = std::move(loaded.rows);
        list.columns = std::move(loaded.columns);
        list.model->endReplace();
        layoutListColumns();
        list.items.reset();
        list.fromSql
            = plan.source == Source::DefaultConnection || plan.source == Source::OwnConnection;
        list.loadedAt = Platform::instance().now();
        ++list.loads;
        list.notifiedIndex = -1;
    }
    if (plan.formatMessage != 0)
        report(plan.formatMessage, QString());
}

void VelmoraPrivate::addItem(const QString &line)
{
    if (set.setList)
        list.items.add(wellFormed(capped(line)));
}

int VelmoraPrivate::findListRow(int column, const QString &text) const
{
    if (!list.window)
        return -1;
    return list.rows.findRow(column, text, hasNewItemRow() ? 1 : 0);
}

int VelmoraPrivate::valueRow(const QString &value) const
{
    if (!list.window || list.rows.isEmpty())
        return -1;
    const QString cell = runMode() ? cellFormatter().format(value, set.valueCol) : value;
    return findListRow(set.valueCol, cell);
}

std::optional<QString> VelmoraPrivate::chosenValueCell() const
{
    const int row = val.listIndex;
    if (!list.window || row < 0 || row >= list.rows.rowCount() || (row == 0 && hasNewItemRow()))
        return std::nullopt;
    return list.rows.cell(row, set.valueCol).toString();
}

bool VelmoraPrivate::notifyListChanged()
{
    const int row = val.listIndex;
    if (row == -1) {
        list.notifiedIndex = -1;
        return true;
    }
    if (!set.setList || row < 0 || row == list.notifiedIndex || (row == 0 && hasNewItemRow()))
        return true;
    list.notifiedIndex = row;
    QPointer<Velmora> alive(q);
    Q_EMIT q->ListChanged();
    return alive;
}

bool VelmoraPrivate::showList()
{
    const qint64 minutes
        = list.loadedAt.isValid() ? list.loadedAt.secsTo(Platform::instance().now()) / 60 : 0;
    const bool stale = list.fromSql && !set.sqlList.isEmpty()
        && (set.refreshInt == -1 || (set.refreshInt > 0 && minutes > set.refreshInt));
    if (stale) {
        QPointer<Velmora> alive(q);
        const int row = val.listIndex;
        const QString value = valueGet();
        const quint64 loadsBefore = list.loads;
        try {
            initList(nullptr, true);
            if (!alive)
                return false;
            // The value's row in the new rows; the same row when the load was cancelled.
            val.listIndex = list.loads != loadsBefore && row >= 0 ? valueRow(value) : row;
        } catch (const DatabaseError &e) {
            // The previous rows stay; the user learns why the list is not fresh.
            val.listIndex = row;
            Platform::instance().messageBox(e.message(), set.label, q);
            if (!alive)
                return false;
        }
    }
    return true;
}

bool VelmoraPrivate::dropDown()
{
    if (!list.window || list.loading)
        return true;
    QPointer<Velmora> alive(q);
    for (;;) {
        if (list.rows.isEmpty()) {
            warningBeep();
            return true;
        }
        if (!showList())
            return false;
        if (list.rows.isEmpty()) {
            warningBeep();
            return true;
        }
        const QRect anchor(q->mapToGlobal(QPoint(0, 0)), q->size());
        const int chosen = list.window->choose(anchor, qMax<int>(val.listIndex, 0));
        if (!alive)
            return false;
        if (txtInput->isVisible()) {
            // The field's window may have lent its activation to the popup.
            if (!q->window()->isActiveWindow())
                q->window()->activateWindow();
            txtInput->setFocus(Qt::PopupFocusReason);
        }
        if (chosen < 0)
            return true; // cancelled: nothing in the field changes
        if (chosen != 0 || !hasNewItemRow())
            return takeListRow(chosen);
        QString item;
        Q_EMIT q->ListNewItem(item);
        if (!alive)
            return false;
        if (item.isEmpty())
            continue; // no new row: the list is offered again
        const bool added = addNewItem(item);
        if (!alive)
            return false;
        if (added)
            return takeListRow(list.rows.rowCount() - 1);
    }
}

bool VelmoraPrivate::addNewItem(const QString &line)
{
    const QString text = wellFormed(capped(line));
    if (list.rows.rowCount() == 1) {
        // Only the new-item row: the list is built anew from the new row alone.
        const QString sql = set.sqlList;
        set.sqlList.clear();
        list.items.reset();
        list.items.add(text);
        initList(nullptr); // from the collected row: no database is asked
        set.sqlList = sql;
        return true;
    }
    const QStringList pieces = text.split(QLatin1Char('\t'));
    const int last = list.rows.columnCount() - 1;
    if (pieces.size() - 1 != last) {
        // Shown whatever Messages says: the user typed the row and must learn why it
        // was not taken.
        Platform::instance().messageBox(WrongColumnCount, set.label, q);
        return false;
    }
    const ListCellFormatter formatter = cellFormatter();
    const QFontMetrics metrics(list.window->table()->font());
    const TextMeasure measure {
        [&metrics](QStringView t) { return metrics.horizontalAdvance(t.toString()); }, 0, {}};
    QStringList cells;
    for (int c = 0; c <= last; ++c) {
        cells.append(runMode() ? formatter.format(pieces.at(c), c) : pieces.at(c));
        fitColumn(list.columns, c, cells.last(), measure);
    }
    QList<QStringView> views(cells.begin(), cells.end());
    list.typeAhead = {}; // the new row may be the first of its letter
    list.model->beginAppend();
    list.rows.appendRow(std::span<const QStringView>(views.begin(), views.size()));
    list.model->endAppend();
    layoutListColumns();
    return true;
}

bool VelmoraPrivate::takeListRow(int row)
{
    if (row < 0 || row >= list.rows.rowCount())
        return true;
    const QString valueCell = list.rows.cell(row, set.valueCol).toString();
    const QString textCell = list.rows.cell(row, set.textCol).toString();
    if (!valueLet(textToValue(valueCell, columnFormat(set.valueCol), true)))
        return false;
    // The row the user chose, even where an equal row stands above it.
    val.listIndex = row;
    if (!writeText(textCell, textToValue(textCell, fieldFormat()), Origin::Assigned))
        return false;
    if (!notifyListChanged())
        return false;
    QPointer<Velmora> alive(q);
    Q_EMIT q->ListSel();
    return alive;
}

void VelmoraPrivate::openList()
{
    if (set.displayMode == dmChangeable || set.displayMode == dmLandable)
        dropDown();
    else
        warningBeep();
}

} // namespace velmora
