#pragma once

#include <QAbstractTableModel>
#include <QList>
#include <QSet>
#include <QString>

namespace lumeth {

// The items of one of the list editor's views: a text (column 0, "MIC 1
// (Ch.0001)") and a key (column 1, "Ch.0001"), with an index of the keys so
// that asking whether a key is present does not walk every item. Items of a
// movable model can be dragged within their view; the view's owner performs
// the drop with MoveRowsTo.
class ListItemModel : public QAbstractTableModel {
    Q_OBJECT
public:
    struct Item {
        QString key;
        QString text;
    };

    // The MIME type the dragged rows travel as.
    static const QString kRowsMimeType;

    ListItemModel(const QString& textHeader, bool movable, QObject* parent);

    void setItems(QList<Item> items);
    void clear() { setItems({}); }
    const QList<Item>& items() const { return m_items; }
    bool containsKey(const QString& key) const { return m_keys.contains(key); }

    // Append `items` at the end in one step.
    void appendItems(const QList<Item>& items);
    // Remove the items at `rows` (any order, duplicates allowed).
    void removeItemsAt(QList<int> rows);
    // Move the items at `rows` one place up (delta -1) or down (+1); items
    // already at the edge, and those pressed against them, stay. Returns the
    // rows the moved items are at afterwards.
    QList<int> moveItemsBy(QList<int> rows, int delta);
    // Move the items at `rows`, keeping their order, so that they stand before
    // the item now at `destination` (the end for rowCount()). Returns their
    // new rows.
    QList<int> moveItemsTo(QList<int> rows, int destination);
    // The rows carried by MIME data this model made, empty for other data.
    static QList<int> RowsFromMimeData(const QMimeData* data);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    Qt::DropActions supportedDropActions() const override;

private:
    void Reorder(QList<Item> items);
    void RebuildKeys();

    QString m_textHeader;
    bool m_movable;
    QList<Item> m_items;
    QSet<QString> m_keys;
};

} // namespace lumeth
