#pragma once

#include <QLabel>

#include <functional>
#include <string>

class QAbstractItemModel;

namespace lumeth {

// A label saying how many rows a model holds ("6 channels"), following the
// model as rows come and go. `noun` names a row for the moment ("channel",
// "list"): an editor's mode may change it, and refilling the model shows it.
class RowCountLabel : public QLabel {
    Q_OBJECT
public:
    RowCountLabel(QAbstractItemModel* model, std::function<std::string()> noun, QWidget* parent);

    void Refresh();

private:
    QAbstractItemModel* m_model;
    std::function<std::string()> m_noun;
};

} // namespace lumeth
