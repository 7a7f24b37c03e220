#include "ui/channel_list_models.h"

#include <QStringListModel>

#include "model/button_catalogue.h"
#include "ui/qt_text.h"

namespace lumeth {

ChannelListModels::ChannelListModels(QObject* parent) : QObject(parent) {
    const QStringList undefined{QStringLiteral("Undefined")};
    m_undefined = new QStringListModel(undefined, this);
    for (QStringListModel*& model : m_models)
        model = new QStringListModel(undefined, this);
}

void ChannelListModels::Rebuild(const PanelStore& store, SubType subType) {
    const std::vector<std::string> entries = ChannelNameList(store, subType);
    QStringList list;
    list.reserve(static_cast<qsizetype>(entries.size()));
    for (const std::string& entry : entries)
        list.append(ToQt(entry));
    emit aboutToRebuild();
    m_models[static_cast<size_t>(subType)]->setStringList(list);
    emit rebuilt();
}

void ChannelListModels::RebuildAll(const PanelStore& store) {
    for (SubType s : kAllSubTypes)
        Rebuild(store, s);
}

QStringListModel* ChannelListModels::model(std::optional<SubType> subType) const {
    return subType ? m_models[static_cast<size_t>(*subType)] : m_undefined;
}

} // namespace lumeth
