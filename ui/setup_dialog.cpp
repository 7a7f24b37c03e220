#include "ui/setup_dialog.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

#include "files/settings.h"
#include "link/connection.h"
#include "link/link_state.h"
#include "ui/key_filter.h"
#include "ui/natural_size.h"
#include "ui/normalise_address.h"
#include "ui/password_validator.h"
#include "ui/port_check.h"
#include "ui/qt_text.h"

namespace lumeth {

namespace {

QLineEdit* MakeEdit(QWidget* parent, const char* name, const QString& tip = {}) {
    auto* edit = new QLineEdit(parent);
    edit->setObjectName(name);
    if (!tip.isEmpty())
        edit->setToolTip(tip);
    return edit;
}

QCheckBox* MakeCheck(QWidget* parent, const char* name, const QString& caption,
                     const QString& tip) {
    auto* check = new QCheckBox(caption, parent);
    check->setObjectName(name);
    check->setToolTip(tip);
    return check;
}

QLabel* MakeLabel(QWidget* parent, const char* name, const QString& caption) {
    auto* label = new QLabel(caption, parent);
    label->setObjectName(name);
    return label;
}

} // namespace

SetupDialog::SetupDialog(Settings& settings, LinkState& state, Connection& connection,
                         std::string& normalisedAddress, QWidget* parent)
    : QDialog(parent), m_settings(settings), m_state(state), m_connection(connection),
      m_normalisedAddress(normalisedAddress) {
    setObjectName("frmSetup");
    setWindowTitle("Setup");
    setModal(true);

    const QString archiveTip = "When maximum size of a log file is reached, archive the file.";
    const QString sizeTip = "Maximum Log File Size - 0 means no limit.";

    // Server module: address, port and the panel setup password.
    auto* frServer = new QGroupBox("Server Module", this);
    frServer->setObjectName("frServer");
    m_address = MakeEdit(frServer, "txtIpAddress");
    m_address->setText("127.0.0.1");
    KeyFilter::Install(m_address, AcceptsAddressKey);
    m_port = MakeEdit(frServer, "txtIPPort");
    m_port->setText("1250");
    KeyFilter::Install(m_port, AcceptsNumberKey);
    m_password = MakeEdit(frServer, "txtPassword");
    m_password->setEchoMode(QLineEdit::PasswordEchoOnEdit);
    PasswordValidator::Install(m_password);
    // Two labels share the name lblIP; the index tells them apart.
    auto* lblIP0 = MakeLabel(frServer, "lblIP_0", "IP Address");
    auto* lblIP1 = MakeLabel(frServer, "lblIP_1", "IP Port");
    for (auto [label, index] : {std::pair{lblIP0, 0}, std::pair{lblIP1, 1}}) {
        label->setProperty("controlArray", "lblIP");
        label->setProperty("controlIndex", index);
    }
    lblIP0->setBuddy(m_address);
    lblIP1->setBuddy(m_port);
    auto* lblPassword =
        MakeLabel(frServer, "LblPassword", "Password required for client panel setup.");
    lblPassword->setBuddy(m_password);
    auto* serverGrid = new QGridLayout(frServer);
    serverGrid->addWidget(lblIP0, 0, 0);
    serverGrid->addWidget(m_address, 0, 1);
    serverGrid->addWidget(lblIP1, 1, 0);
    serverGrid->addWidget(m_port, 1, 1);
    serverGrid->addWidget(lblPassword, 2, 0, 1, 2);
    serverGrid->addWidget(m_password, 3, 0, 1, 2);
    serverGrid->setColumnStretch(1, 1);

    // Which logs are kept.
    auto* frmCheckBox = new QGroupBox(this);
    frmCheckBox->setObjectName("frmCheckBox");
    m_logFile = MakeCheck(frmCheckBox, "chkLogFile", "Log File",
                          "The Log File maintains a time stamped history of all message activity");
    m_errorFile = MakeCheck(frmCheckBox, "chkError", "Error File",
                            "The Error Log File maintains a time stamped history of all Errors");
    auto* checkRow = new QHBoxLayout(frmCheckBox);
    checkRow->addWidget(m_logFile);
    checkRow->addWidget(m_errorFile);
    checkRow->addStretch(1);

    // Activity log size and archiving.
    auto* frLogFile = new QGroupBox(this);
    frLogFile->setObjectName("frLogFile");
    auto* lblMax = MakeLabel(frLogFile, "lblMax", "Maximum Log File Size");
    m_maxSize = MakeEdit(frLogFile, "txtMaxSize", sizeTip);
    KeyFilter::Install(m_maxSize, AcceptsNumberKey);
    lblMax->setBuddy(m_maxSize);
    m_archive = MakeCheck(frLogFile, "chkArchive", "Archive Log Files", archiveTip);
    auto* logGrid = new QGridLayout(frLogFile);
    logGrid->addWidget(lblMax, 0, 0);
    logGrid->addWidget(m_maxSize, 0, 1);
    logGrid->addWidget(m_archive, 1, 0, 1, 2);

    // Error log size and archiving: the same texts as the activity log's.
    auto* frMaxErrorLog = new QGroupBox(this);
    frMaxErrorLog->setObjectName("frMaxErrorLog");
    auto* lblMaxErr = MakeLabel(frMaxErrorLog, "lblMaxErr", "Maximum Error Log Size");
    m_maxErrorLog = MakeEdit(frMaxErrorLog, "txtMaxErrorLog", sizeTip);
    KeyFilter::Install(m_maxErrorLog, AcceptsNumberKey);
    lblMaxErr->setBuddy(m_maxErrorLog);
    m_archiveError = MakeCheck(frMaxErrorLog, "chkArchiveError", "Archive Log Files", archiveTip);
    auto* errGrid = new QGridLayout(frMaxErrorLog);
    errGrid->addWidget(lblMaxErr, 0, 0);
    errGrid->addWidget(m_maxErrorLog, 0, 1);
    errGrid->addWidget(m_archiveError, 1, 0, 1, 2);

    // The two size boxes line up although their labels differ in length.
    const int labelWidth = std::max(lblMax->sizeHint().width(), lblMaxErr->sizeHint().width());
    lblMax->setMinimumWidth(labelWidth);
    lblMaxErr->setMinimumWidth(labelWidth);
    lblIP0->setMinimumWidth(labelWidth);

    auto* ok = new QPushButton("OK", this);
    ok->setObjectName("cmdOk");
    ok->setDefault(true);
    auto* cancel = new QPushButton("&Cancel", this);
    cancel->setObjectName("cmdCancel");
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(frServer);
    layout->addWidget(frmCheckBox);
    layout->addWidget(frLogFile);
    layout->addWidget(frMaxErrorLog);
    layout->addLayout(buttons);
    KeepNaturalSize(this);

    connect(ok, &QPushButton::clicked, this, &SetupDialog::Ok);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    LoadFromSettings();
}

void SetupDialog::LoadFromSettings() {
    m_address->setText(ToQt(m_state.serverAddress));
    m_port->setText(QString::number(m_state.serverPort));
    m_logFile->setChecked(m_settings.maintainLogFile);
    m_errorFile->setChecked(m_settings.maintainErrorFiles);
    m_archive->setChecked(m_settings.archiveLogFiles);
    m_archiveError->setChecked(m_settings.archiveErrorFiles);
    m_maxSize->setText(QString::number(m_settings.maxLogFileSize));
    m_maxErrorLog->setText(QString::number(m_settings.maxErrorLog));
    m_password->setText(ToQt(m_state.serverPassword));
}

void SetupDialog::Ok() {
    // The settings take the address and port from the link when they are written.
    const std::optional<bool> linkChanged =
        ApplyServerFields(this, m_address->text(), m_port->text(), m_normalisedAddress, m_state);
    if (!linkChanged) {
        return;
    }

    if (*linkChanged) {
        m_connection.Disconnect();
        m_connection.Connect();
    }

    m_settings.maintainLogFile = m_logFile->isChecked();
    m_settings.maintainErrorFiles = m_errorFile->isChecked();
    m_settings.archiveLogFiles = m_archive->isChecked();
    m_settings.archiveErrorFiles = m_archiveError->isChecked();
    m_settings.maxLogFileSize = LeadingNumber(FromQt(m_maxSize->text()));
    m_settings.maxErrorLog = LeadingNumber(FromQt(m_maxErrorLog->text()));

    const std::string password = FromQt(m_password->text());
    if (password != m_state.serverPassword) {
        m_state.serverPassword = password;
        m_connection.SendPassword();
        // Ask for the stored password only, so the server confirms the change
        // without a full download replacing edits that are not applied yet.
        m_connection.session().RequestParts({Part::Password});
        m_connection.FlushSession();
    }
    accept();
}

} // namespace lumeth
