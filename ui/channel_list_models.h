#pragma once

#include <QObject>

#include <array>
#include <optional>

#include "model/panel_store.h"

class QStringListModel;

namespace lumeth {

// The channel drop-down lists of the button template editor, one shared model
// per sub type ("Undefined", then "MIC 1 [0001]", ...) and one holding only
// "Undefined" for functions without that channel. Router tables hold up to
// 16383 channels, so the lists are built once per download of a sub type's
// channel names and every combo box shows the same model.
class ChannelListModels : public QObject {
    Q_OBJECT
public:
    explicit ChannelListModels(QObject* parent = nullptr);

    // Rebuild the list of one sub type, or of all four, from the store.
    void Rebuild(const PanelStore& store, SubType subType);
    void RebuildAll(const PanelStore& store);

    // The list for a channel field drawing from `subType`; "Undefined" alone
    // without a sub type.
    QStringListModel* model(std::optional<SubType> subType) const;

signals:
    // Around every rebuild: combo boxes showing a list lose their selection
    // while it is replaced.
    void aboutToRebuild();
    void rebuilt();

private:
    std::array<QStringListModel*, 4> m_models{};
    QStringListModel* m_undefined = nullptr;
};

} // namespace lumeth
