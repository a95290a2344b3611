#include "ListWindow.h"

#include <QtCore/QEventLoop>
#include <QtGui/QKeyEvent>
#include <QtGui/QScreen>
#include <QtWidgets/QApplication>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTableView>
#include <QtWidgets/QVBoxLayout>

namespace velmora::detail {

namespace {

// Room around a cell's text, so that the widest cell is not cut by the grid's margins.
constexpr int CellPadding = 8;

} // namespace

ListWindow::ListWindow(QWidget *field) : QFrame(field, Qt::Popup), m_table(new QTableView(this))
{
    setObjectName(QStringLiteral("frmList"));
    setFrameStyle(QFrame::Box | QFrame::Plain);
    setLineWidth(1);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(1, 1, 1, 1);
    layout->addWidget(m_table);

    m_table->setObjectName(QStringLiteral("lstList"));
    m_table->setFrameStyle(QFrame::NoFrame);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setShowGrid(false);
    m_table->setWordWrap(false);
    m_table->setTabKeyNavigation(false);
    m_table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_table->horizontalHeader()->hide();
    m_table->verticalHeader()->hide();
    // Every row has the same height, so that a list of a million rows opens at once.
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().height() + 2);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->installEventFilter(this);
    m_table->viewport()->installEventFilter(this);
}

ListWindow::~ListWindow()
{
    if (m_loop)
        m_loop->exit(-1);
}

void ListWindow::setModel(QAbstractItemModel *model)
{
    if (QItemSelectionModel *old = m_table->selectionModel())
        old->disconnect(this);
    m_table->setModel(model);
    if (QItemSelectionModel *selection = m_table->selectionModel())
        connect(selection, &QItemSelectionModel::currentRowChanged, this,
                [this](const QModelIndex &current) { Q_EMIT currentRowChanged(current.row()); });
}

void ListWindow::setColumns(const QList<int> &widths, const QList<bool> &hidden)
{
    m_table->verticalHeader()->setDefaultSectionSize(m_table->fontMetrics().height() + 2);
    for (int c = 0; c < widths.size(); ++c) {
        const bool hide = c < hidden.size() && hidden.at(c);
        m_table->setColumnHidden(c, hide);
        if (!hide)
            m_table->setColumnWidth(c, widths.at(c) + CellPadding);
    }
}

void ListWindow::setSearch(std::function<int(const QString &)> search)
{
    m_search = std::move(search);
}

QSize ListWindow::wantedSize() const
{
    const QAbstractItemModel *model = m_table->model();
    const int rows = model ? model->rowCount() : 0;
    int width = 0;
    for (int c = 0; model && c < model->columnCount(); ++c)
        if (!m_table->isColumnHidden(c))
            width += m_table->columnWidth(c);
    if (rows > VisibleRows)
        width += m_table->verticalScrollBar()->sizeHint().width();
    const int frame = 2 * (frameWidth() + 1);
    const int height
        = qMax(1, qMin(rows, VisibleRows)) * m_table->verticalHeader()->defaultSectionSize();
    return {width + frame, height + frame};
}

QRect ListWindow::placement(const QRect &anchor, const QSize &wanted, const QRect &screen)
{
    QSize size(qMin(qMax(wanted.width(), anchor.width()), screen.width()), wanted.height());
    const int below = screen.bottom() - anchor.bottom();
    const int above = anchor.top() - screen.top();
    int y;
    if (size.height() <= below || below >= above) {
        size.setHeight(qMin(size.height(), below));
        y = anchor.bottom() + 1;
    } else {
        size.setHeight(qMin(size.height(), above));
        y = anchor.top() - size.height();
    }
    const int x = qBound(screen.left(), anchor.left(), screen.right() + 1 - size.width());
    return {QPoint(x, y), size};
}

int ListWindow::choose(const QRect &anchor, int row)
{
    const QAbstractItemModel *model = m_table->model();
    if (!model || model->rowCount() == 0 || m_loop)
        return -1;
    const QScreen *screen = QGuiApplication::screenAt(anchor.center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    setGeometry(placement(anchor, wantedSize(), screen->availableGeometry()));

    row = qBound(0, row, model->rowCount() - 1);
    int column = 0;
    while (column < model->columnCount() - 1 && m_table->isColumnHidden(column))
        ++column;
    m_table->setCurrentIndex(model->index(row, column));
    m_table->scrollTo(m_table->currentIndex(), QAbstractItemView::PositionAtCenter);
    m_typed.clear();
    m_result = -1;

    QPointer<ListWindow> alive(this);
    QEventLoop loop;
    m_loop = &loop;
    // A popup takes the keyboard without taking the activation from the field's window.
    show();
    m_table->setFocus(Qt::PopupFocusReason);
    loop.exec(QEventLoop::DialogExec);
    if (!alive)
        return -1; // the window went with its field while it was open
    m_loop = nullptr;
    if (isVisible())
        hide();
    return m_result;
}

void ListWindow::finish(int row)
{
    if (!m_loop)
        return;
    m_result = row;
    QEventLoop *loop = m_loop;
    m_loop = nullptr;
    hide();
    loop->quit();
}

void ListWindow::hideEvent(QHideEvent *event)
{
    QFrame::hideEvent(event);
    finish(-1); // a click outside or the window closed: nothing chosen
}

bool ListWindow::typeAhead(const QString &text)
{
    if (!m_search)
        return false;
    if (!m_lastTyped.isValid() || m_lastTyped.elapsed() > TypeAheadMs)
        m_typed.clear();
    m_lastTyped.start();
    m_typed += text;
    const int row = m_search(m_typed);
    if (row < 0)
        return true;
    const QModelIndex current = m_table->currentIndex();
    m_table->setCurrentIndex(m_table->model()->index(row, qMax(0, current.column())));
    m_table->scrollTo(m_table->currentIndex());
    return true;
}

bool ListWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (!m_loop)
        return false;
    if (watched == m_table && event->type() == QEvent::KeyPress) {
        auto *key = static_cast<QKeyEvent *>(event);
        switch (key->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            finish(m_table->currentIndex().row());
            return true;
        case Qt::Key_Escape:
            finish(-1);
            return true;
        default:
            break;
        }
        const Qt::KeyboardModifiers mods = key->modifiers() & ~Qt::KeypadModifier;
        const QString text = key->text();
        if (!text.isEmpty() && text.at(0).isPrint()
            && (mods == Qt::NoModifier || mods == Qt::ShiftModifier))
            return typeAhead(text);
        return false;
    }
    if (watched == m_table->viewport()) {
        if (event->type() == QEvent::MouseButtonPress
            && static_cast<QMouseEvent *>(event)->button() == Qt::RightButton) {
            finish(-1);
            return true;
        }
        if (event->type() == QEvent::MouseButtonDblClick
            && static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
            const QModelIndex at
                = m_table->indexAt(static_cast<QMouseEvent *>(event)->position().toPoint());
            finish(at.isValid() ? at.row() : m_table->currentIndex().row());
            return true;
        }
    }
    return false;
}

} // namespace velmora::detail
