#include "ui/fill_dialog.h"

#include <QComboBox>
#include <QFormLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "model/button_catalogue.h"
#include "model/record_names.h"
#include "ui/named_widgets.h"
#include "ui/natural_size.h"
#include "ui/qt_text.h"

namespace lumeth {

namespace {

// A list entry carries its sub type and position.
QVariant ListData(SubType s, int position) {
    return QList<QVariant>{int(s), position};
}

QString ChannelCount(int count) {
    return count == 1 ? QStringLiteral("1 channel") : QStringLiteral("%1 channels").arg(count);
}

} // namespace

FillDialog::FillDialog(const PanelStore& store, int firstKey, QWidget* parent)
    : QDialog(parent), m_store(store) {
    setObjectName("frmFill");
    setWindowTitle("Fill from Display List");
    setModal(true);

    m_list = new QComboBox(this);
    m_list->setObjectName("cmbList");
    m_list->setToolTip("The display list whose channels the keys take, in list order");
    for (SubType s : kAllSubTypes) {
        for (int p = 0; p < ValidCount(store.listCount(s)); ++p) {
            const DisplayList& list = RefAt(store.lists(s), p);
            m_list->addItem(QStringLiteral("%1 (%2)")
                                .arg(ToQt(ListRecordName(store, s, p)))
                                .arg(ChannelCount(ValidCount(list.channelCount))),
                            ListData(s, p));
        }
    }
    m_function = new QComboBox(this);
    m_function->setObjectName("cmbFunction");
    m_function->setToolTip("The function every filled key gets");
    m_firstKey = new QComboBox(this);
    m_firstKey->setObjectName("cmbStartKey");
    m_firstKey->setToolTip("The first key to fill; the fill stops at the template's last key");
    for (int b = 0; b < kTemplateButtons; ++b)
        m_firstKey->addItem(ToQt(ButtonKey(b)));
    m_firstKey->setCurrentIndex(std::clamp(firstKey, 0, kTemplateButtons - 1));

    m_ok = MakeButton(this, "cmdOk", "OK", "Fill the keys");
    auto* cancel = MakeButton(this, "cmdCancel", "Cancel", "Close without filling");
    connect(m_ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_list, &QComboBox::currentIndexChanged, this, &FillDialog::LoadFunctions);

    auto* form = new QFormLayout;
    form->addRow("Display list", m_list);
    form->addRow("Function", m_function);
    form->addRow("Starting key", m_firstKey);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(ButtonRow({m_ok, cancel}));
    LoadFunctions();
    KeepNaturalSize(this);
}

void FillDialog::LoadFunctions() {
    // Only functions whose channel is of the list's kind: a Relay list gives
    // relay keys, an Input list source selects.
    m_function->clear();
    const QVariantList data = m_list->currentData().toList();
    m_ok->setEnabled(!data.isEmpty());
    if (data.isEmpty())
        return;
    for (int16_t code : FunctionsForChannels(static_cast<SubType>(data[0].toInt())))
        m_function->addItem(ToQt(ButtonFunctionOf(code).longName), int(code));
}

KeyFill FillDialog::fill() const {
    const QVariantList data = m_list->currentData().toList();
    KeyFill fill;
    if (data.size() == 2) {
        fill.subType = static_cast<SubType>(data[0].toInt());
        fill.list = data[1].toInt();
    }
    fill.function = static_cast<int16_t>(m_function->currentData().toInt());
    fill.firstKey = m_firstKey->currentIndex();
    return fill;
}

} // namespace lumeth
