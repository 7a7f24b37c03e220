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
#include "ui/named_widgets.h"
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

// A log's size limit and archiving: the activity log and the error log each
// have a frame of these, with their own names and the same tips.
struct LogSizeFrame {
    QGroupBox* frame;
    QLabel* label;
    QLineEdit* size;
    QCheckBox* archive;
};

struct LogSizeNames {
    const char* frame;
    const char* label;
    const char* caption;
    const char* size;
    const char* archive;
};

LogSizeFrame MakeLogSizeFrame(QWidget* parent, const LogSizeNames& names) {
    LogSizeFrame f{};
    f.frame = new QGroupBox(parent);
    f.frame->setObjectName(names.frame);
    f.label = MakeLabel(f.frame, names.label, names.caption);
    f.size = MakeEdit(f.frame, names.size, "Maximum Log File Size - 0 means no limit.");
    KeyFilter::Install(f.size, AcceptsNumberKey);
    f.label->setBuddy(f.size);
    f.archive = MakeCheck(f.frame, names.archive, "Archive Log Files",
                          "When maximum size of a log file is reached, archive the file.");
    auto* grid = new QGridLayout(f.frame);
    grid->addWidget(f.label, 0, 0);
    grid->addWidget(f.size, 0, 1);
    grid->addWidget(f.archive, 1, 0, 1, 2);
    return f;
}

} // namespace

SetupDialog::SetupDialog(Settings& settings, LinkState& state, Connection& connection,
                         std::string& normalisedAddress, QWidget* parent)
    : QDialog(parent), m_settings(settings), m_state(state), m_connection(connection),
      m_normalisedAddress(normalisedAddress) {
    setObjectName("frmSetup");
    setWindowTitle("Setup");
    setModal(true);

    QGroupBox* frServer = createServerGroup();
    QGroupBox* frmCheckBox = createLogChoiceGroup();
    const LogSizeFrame log = MakeLogSizeFrame(
        this, {"frLogFile", "lblMax", "Maximum Log File Size", "txtMaxSize", "chkArchive"});
    const LogSizeFrame errorLog =
        MakeLogSizeFrame(this, {"frMaxErrorLog", "lblMaxErr", "Maximum Error Log Size",
                                "txtMaxErrorLog", "chkArchiveError"});
    m_maxSize = log.size;
    m_archive = log.archive;
    m_maxErrorLog = errorLog.size;
    m_archiveError = errorLog.archive;

    // The size boxes and the address line up although their labels differ
    // in length.
    const int labelWidth =
        std::max(log.label->sizeHint().width(), errorLog.label->sizeHint().width());
    log.label->setMinimumWidth(labelWidth);
    errorLog.label->setMinimumWidth(labelWidth);
    frServer->findChild<QLabel*>("lblIP_0")->setMinimumWidth(labelWidth);

    auto* ok = new QPushButton("OK", this);
    ok->setObjectName("cmdOk");
    ok->setDefault(true);
    auto* cancel = new QPushButton("&Cancel", this);
    cancel->setObjectName("cmdCancel");

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(frServer);
    layout->addWidget(frmCheckBox);
    layout->addWidget(log.frame);
    layout->addWidget(errorLog.frame);
    layout->addLayout(ButtonRow({ok, cancel}));
    KeepNaturalSize(this);

    connect(ok, &QPushButton::clicked, this, &SetupDialog::Ok);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    LoadFromSettings();
}

QGroupBox* SetupDialog::createServerGroup() {
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
    auto* grid = new QGridLayout(frServer);
    grid->addWidget(lblIP0, 0, 0);
    grid->addWidget(m_address, 0, 1);
    grid->addWidget(lblIP1, 1, 0);
    grid->addWidget(m_port, 1, 1);
    grid->addWidget(lblPassword, 2, 0, 1, 2);
    grid->addWidget(m_password, 3, 0, 1, 2);
    grid->setColumnStretch(1, 1);
    return frServer;
}

QGroupBox* SetupDialog::createLogChoiceGroup() {
    // Which logs are kept.
    auto* frmCheckBox = new QGroupBox(this);
    frmCheckBox->setObjectName("frmCheckBox");
    m_logFile = MakeCheck(frmCheckBox, "chkLogFile", "Log File",
                          "The Log File maintains a time stamped history of all message activity");
    m_errorFile = MakeCheck(frmCheckBox, "chkError", "Error File",
                            "The Error Log File maintains a time stamped history of all Errors");
    auto* row = new QHBoxLayout(frmCheckBox);
    row->addWidget(m_logFile);
    row->addWidget(m_errorFile);
    row->addStretch(1);
    return frmCheckBox;
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
