#pragma once

// The drop-down list window of a field: a frameless popup holding the list table
// (lstList). The field creates it on its first load and keeps it; it gives the window a
// model, the column widths and a search for typed text, and asks it for a row with
// choose(), which runs the window modally and answers with the row the user chose or -1.
// The window knows nothing of the field's value.

#include <QtCore/QElapsedTimer>
#include <QtCore/QPointer>
#include <QtWidgets/QFrame>

#include <functional>

class QAbstractItemModel;
class QEventLoop;
class QTableView;

namespace velmora::detail {

class ListWindow final : public QFrame
{
    Q_OBJECT
public:
    // Typed letters add up to one search text while they come within this time.
    static constexpr int TypeAheadMs = 1000;
    // Rows shown at most without scrolling.
    static constexpr int VisibleRows = 12;

    explicit ListWindow(QWidget *field);
    ~ListWindow() override;

    QTableView *table() const { return m_table; }
    void setModel(QAbstractItemModel *model);
    // Widths in pixels of the columns; a hidden column gets no width at all.
    void setColumns(const QList<int> &widths, const QList<bool> &hidden);
    // The first row whose searched cell starts with a text (case-insensitive), or -1.
    // Without a search, typing does not move the current row.
    void setSearch(std::function<int(const QString &prefix)> search);

    // Shows the window below the screen rectangle `anchor` (above it when the screen has
    // no room below), makes `row` current and runs until the user chooses a row (Enter,
    // double click) or cancels (Esc, the right button, a click outside, closing). Returns
    // the chosen row, or -1. Returns -1 at once if the window is destroyed meanwhile,
    // without touching it again.
    int choose(const QRect &anchor, int row);
    bool isChoosing() const { return m_loop != nullptr; }
    // Where the window goes for an anchor rectangle on a screen of the given area.
    static QRect placement(const QRect &anchor, const QSize &wanted, const QRect &screen);

Q_SIGNALS:
    // The current row moved while the window was open (keys, type-ahead or the mouse).
    void currentRowChanged(int row);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void finish(int row);
    bool typeAhead(const QString &text);
    QSize wantedSize() const;

    QTableView *m_table;
    std::function<int(const QString &)> m_search;
    QString m_typed;
    QElapsedTimer m_lastTyped;
    QEventLoop *m_loop = nullptr;
    int m_result = -1;
};

} // namespace velmora::detail
