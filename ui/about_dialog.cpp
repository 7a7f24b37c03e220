#include "ui/about_dialog.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShowEvent>
#include <QVBoxLayout>

#include "files/organisation.h"
#include "link/link_state.h"
#include "ui/natural_size.h"
#include "ui/qt_text.h"

namespace lumeth {

namespace {
QString FromView(std::string_view text) {
    return QString::fromUtf8(text.data(), text.size());
}
} // namespace

AboutDialog::AboutDialog(const LinkState& state, QWidget* parent)
    : QDialog(parent), m_state(state) {
    setObjectName("frmAbout");
    setWindowTitle("KOV AdminPanel Information");
    setModal(true);

    auto* frmVersionInfo = new QGroupBox("Version Information", this);
    frmVersionInfo->setObjectName("frmVersionInfo");
    auto* lblVersionInfo = new QLabel(frmVersionInfo);
    lblVersionInfo->setObjectName("lblVersionInfo");
    // The version text separates its two lines with a lone carriage return;
    // shown here as a line break.
    lblVersionInfo->setText(QString::fromLatin1(kVersionInfo).replace('\r', '\n'));
    lblVersionInfo->setTextInteractionFlags(Qt::TextSelectableByMouse);
    (new QVBoxLayout(frmVersionInfo))->addWidget(lblVersionInfo);

    auto* frmSetupInfo = new QGroupBox(this);
    frmSetupInfo->setObjectName("frmSetupInfo");
    auto* setupLayout = new QVBoxLayout(frmSetupInfo);
    for (int i = 0; i < 2; ++i) {
        auto* label = new QLabel(frmSetupInfo);
        label->setObjectName(QStringLiteral("lblServer_%1").arg(i));
        label->setProperty("controlArray", "lblServer");
        label->setProperty("controlIndex", i);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        setupLayout->addWidget(label);
    }

    auto* lblKOVtitle = new QLabel(FromView(organisation::kName), this);
    lblKOVtitle->setObjectName("lblKOVtitle");
    QFont titleFont = lblKOVtitle->font();
    titleFont.setBold(true);
    lblKOVtitle->setFont(titleFont);
    auto* lblKOVaddress = new QLabel(
        FromView(organisation::kStreet) + ", " + FromView(organisation::kCityLine), this);
    lblKOVaddress->setObjectName("lblKOVaddress");
    auto* lblKOVaddress2 = new QLabel(
        "Tel. " + FromView(organisation::kTelephone) + "   " + FromView(organisation::kWeb), this);
    lblKOVaddress2->setObjectName("lblKOVaddress2");

    auto* quit = new QPushButton("OK", this);
    quit->setObjectName("cmdAboutquit");
    quit->setDefault(true);
    connect(quit, &QPushButton::clicked, this, &QDialog::accept);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(quit);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(frmVersionInfo);
    layout->addWidget(frmSetupInfo);
    layout->addSpacing(6);
    layout->addWidget(lblKOVtitle);
    layout->addWidget(lblKOVaddress);
    layout->addWidget(lblKOVaddress2);
    layout->addSpacing(6);
    layout->addLayout(buttons);
    KeepNaturalSize(this);
}

void AboutDialog::LoadFromState() {
    findChild<QLabel*>("lblServer_0")
        ->setText("Server Module IP Address: " + ToQt(m_state.serverAddress));
    findChild<QLabel*>("lblServer_1")
        ->setText("Server Module IP Port: " + QString::number(m_state.serverPort));
}

void AboutDialog::showEvent(QShowEvent* event) {
    if (!event->spontaneous())
        LoadFromState();
    QDialog::showEvent(event);
}

} // namespace lumeth
