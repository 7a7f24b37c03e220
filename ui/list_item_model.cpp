#include "ui/list_item_model.h"

#include <QDataStream>
#include <QIODevice>
#include <QMimeData>

#include <algorithm>

namespace lumeth {

const QString ListItemModel::kRowsMimeType = QStringLiteral("application/x-lumeth-list-rows");

namespace {

QList<int> SortedUnique(QList<int> rows, int count) {
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    rows.removeIf([count](int row) { return row < 0 || row >= count; });
    return rows;
}

} // namespace

ListItemModel::ListItemModel(const QString& textHeader, bool movable, QObject* parent)
    : QAbstractTableModel(parent), m_textHeader(textHeader), m_movable(movable) {}

void ListItemModel::setItems(QList<Item> items) {
    beginResetModel();
    m_items = std::move(items);
    RebuildKeys();
    endResetModel();
}

void ListItemModel::appendItems(const QList<Item>& items) {
    if (items.isEmpty())
        return;
    const auto first = static_cast<int>(m_items.size());
    beginInsertRows({}, first, first + static_cast<int>(items.size()) - 1);
    m_items.append(items);
    for (const Item& item : items)
        m_keys.insert(item.key);
    endInsertRows();
}

void ListItemModel::removeItemsAt(QList<int> rows) {
    rows = SortedUnique(std::move(rows), rowCount());
    // Contiguous runs from the end, so earlier rows keep their numbers.
    for (qsizetype end = rows.size(); end > 0;) {
        qsizetype start = end - 1;
        while (start > 0 && rows[start - 1] == rows[start] - 1)
            --start;
        beginRemoveRows({}, rows[start], rows[end - 1]);
        m_items.remove(rows[start], rows[end - 1] - rows[start] + 1);
        endRemoveRows();
        end = start;
    }
    RebuildKeys();
}

QList<int> ListItemModel::moveItemsBy(QList<int> rows, int delta) {
    rows = SortedUnique(std::move(rows), rowCount());
    QList<bool> selected(m_items.size(), false);
    for (int row : rows)
        selected[row] = true;
    QList<Item> items = m_items;
    const auto count = static_cast<int>(items.size());
    // Walk towards the edge the items move to; an item moves when the place
    // before it is free, so a block stuck at the edge stays together.
    for (int step = 0; step < count; ++step) {
        const int row = delta < 0 ? step : count - 1 - step;
        const int to = row + (delta < 0 ? -1 : 1);
        if (!selected[row] || to < 0 || to >= count || selected[to])
            continue;
        std::swap(items[row], items[to]);
        std::swap(selected[row], selected[to]);
    }
    Reorder(std::move(items));
    QList<int> moved;
    for (int row = 0; row < count; ++row) {
        if (selected[row])
            moved.push_back(row);
    }
    return moved;
}

QList<int> ListItemModel::moveItemsTo(QList<int> rows, int destination) {
    rows = SortedUnique(std::move(rows), rowCount());
    destination = std::clamp(destination, 0, rowCount());
    QList<Item> moving;
    QList<Item> staying;
    int insertAt = destination;
    for (int row = 0; row < rowCount(); ++row) {
        if (std::binary_search(rows.begin(), rows.end(), row)) {
            moving.push_back(m_items[row]);
            if (row < destination)
                --insertAt;
        } else {
            staying.push_back(m_items[row]);
        }
    }
    QList<Item> items = staying.mid(0, insertAt);
    items.append(moving);
    items.append(staying.mid(insertAt));
    Reorder(std::move(items));
    QList<int> moved;
    for (qsizetype i = 0; i < moving.size(); ++i)
        moved.push_back(insertAt + static_cast<int>(i));
    return moved;
}

void ListItemModel::Reorder(QList<Item> items) {
    emit layoutAboutToBeChanged();
    m_items = std::move(items);
    emit layoutChanged();
}

void ListItemModel::RebuildKeys() {
    m_keys.clear();
    m_keys.reserve(m_items.size());
    for (const Item& item : m_items)
        m_keys.insert(item.key);
}

int ListItemModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_items.size());
}

int ListItemModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : 2;
}

QVariant ListItemModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Item& item = m_items[index.row()];
    if (role == Qt::DisplayRole)
        return index.column() == 0 ? item.text : item.key;
    if (role == Qt::UserRole)
        return item.key;
    return {};
}

QVariant ListItemModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == 0 ? m_textHeader : QStringLiteral("Key");
}

Qt::ItemFlags ListItemModel::flags(const QModelIndex& index) const {
    if (!index.isValid())
        return m_movable ? Qt::ItemIsDropEnabled : Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    if (m_movable)
        flags |= Qt::ItemIsDragEnabled;
    return flags;
}

QStringList ListItemModel::mimeTypes() const {
    return {kRowsMimeType};
}

QMimeData* ListItemModel::mimeData(const QModelIndexList& indexes) const {
    QList<int> rows;
    for (const QModelIndex& index : indexes)
        rows.push_back(index.row());
    rows = SortedUnique(std::move(rows), rowCount());
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << rows;
    auto* data = new QMimeData;
    data->setData(kRowsMimeType, bytes);
    return data;
}

QList<int> ListItemModel::RowsFromMimeData(const QMimeData* data) {
    QList<int> rows;
    if (data && data->hasFormat(kRowsMimeType)) {
        const QByteArray bytes = data->data(kRowsMimeType);
        QDataStream stream(bytes);
        stream >> rows;
    }
    return rows;
}

Qt::DropActions ListItemModel::supportedDropActions() const {
    return m_movable ? Qt::MoveAction : Qt::IgnoreAction;
}

} // namespace lumeth
