#include "ui/row_count_label.h"

#include <QAbstractItemModel>

#include <utility>

#include "model/number_text.h"
#include "ui/qt_text.h"

namespace lumeth {

RowCountLabel::RowCountLabel(QAbstractItemModel* model, std::function<std::string()> noun,
                             QWidget* parent)
    : QLabel(parent), m_model(model), m_noun(std::move(noun)) {
    setTextFormat(Qt::PlainText);
    connect(model, &QAbstractItemModel::modelReset, this, &RowCountLabel::Refresh);
    connect(model, &QAbstractItemModel::layoutChanged, this, &RowCountLabel::Refresh);
    connect(model, &QAbstractItemModel::rowsInserted, this, &RowCountLabel::Refresh);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &RowCountLabel::Refresh);
    Refresh();
}

void RowCountLabel::Refresh() {
    setText(ToQt(Counted(m_model->rowCount(), m_noun())));
}

} // namespace lumeth
