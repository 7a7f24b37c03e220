#include "ui/login_dialog.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShowEvent>
#include <QTimer>

#include "files/settings.h"
#include "link/connection.h"
#include "link/link_state.h"
#include "ui/key_filter.h"
#include "ui/message_box.h"
#include "ui/named_widgets.h"
#include "ui/natural_size.h"
#include "ui/normalise_address.h"
#include "ui/password_star_style.h"
#include "ui/password_validator.h"
#include "ui/port_check.h"
#include "ui/qt_text.h"

namespace lumeth {

LoginDialog::LoginDialog(LinkState& state, Connection& connection, std::string& normalisedAddress,
                         QWidget* parent)
    : QDialog(parent), m_state(state), m_connection(connection),
      m_normalisedAddress(normalisedAddress) {
    setObjectName("frmLogin");
    setWindowTitle("KOV Admin Panel Login");
    setModal(true);

    QGridLayout* fields = createFields();
    m_ok = new QPushButton("&Ok", this);
    m_ok->setObjectName("cmdOk");
    m_ok->setDefault(true);
    m_cancel = new QPushButton("&Cancel", this);
    m_cancel->setObjectName("cmdCancel");

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addSpacing(6);
    layout->addLayout(ButtonRow({m_ok, m_cancel}));
    KeepNaturalSize(this);

    connect(m_ok, &QPushButton::clicked, this, &LoginDialog::Ok);
    connect(m_cancel, &QPushButton::clicked, this, &LoginDialog::Cancel);
}

QGridLayout* LoginDialog::createFields() {
    auto* lblAddress = MakeLabel(this, "lblAddress", "IP Address");
    m_address = new QLineEdit(this);
    m_address->setObjectName("txtAddress");
    KeyFilter::Install(m_address, AcceptsAddressKey);

    auto* lblPort = MakeLabel(this, "lblPort", "IP Port");
    m_port = new QLineEdit(this);
    m_port->setObjectName("txtPort");
    KeyFilter::Install(m_port, AcceptsNumberKey);

    auto* lblPassword = MakeLabel(this, "lblPassword", "Password");
    m_password = new QLineEdit(this);
    m_password->setObjectName("txtPassword");
    m_password->setEchoMode(QLineEdit::Password);
    PasswordValidator::Install(m_password);
    PasswordStarStyle::Install(m_password); // each character shown as "*"

    lblAddress->setBuddy(m_address);
    lblPort->setBuddy(m_port);
    lblPassword->setBuddy(m_password);

    auto* grid = new QGridLayout;
    grid->addWidget(lblAddress, 0, 0);
    grid->addWidget(m_address, 0, 1);
    grid->addWidget(lblPort, 1, 0);
    grid->addWidget(m_port, 1, 1);
    grid->addWidget(lblPassword, 2, 0);
    grid->addWidget(m_password, 2, 1);
    grid->setColumnStretch(1, 1);
    return grid;
}

void LoginDialog::LoadFromState() {
    m_address->setText(ToQt(m_state.serverAddress));
    m_port->setText(QString::number(m_state.serverPort));
    // Each login asks for the password afresh: after a reconnect the last
    // one typed must not be waiting in the box.
    m_password->clear();
}

void LoginDialog::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!event->spontaneous()) {
        LoadFromState();
        // Activate: the operator types the password first.
        m_password->setFocus();
    }
}

void LoginDialog::Ok() {
    if (m_checking)
        return;
    const std::optional<bool> fields =
        ApplyServerFields(this, m_address->text(), m_port->text(), m_normalisedAddress, m_state);
    if (!fields) {
        return;
    }
    const bool changed = *fields;

    // Waiting below keeps events flowing; a second OK meanwhile is ignored,
    // and Cancel (or the close box) abandons the check.
    m_checking = true;
    m_cancelled = false;
    m_ok->setEnabled(false);
    const auto done = [this] {
        m_checking = false;
        m_ok->setEnabled(true);
    };

    if (changed) {
        m_connection.Disconnect();
        m_connection.Connect();
        m_connection.Wait(1000, true);
        if (m_cancelled) {
            done();
            return;
        }
    }

    m_state.enteredPassword = FromQt(m_password->text());
    while (!m_state.passwordReceived) {
        m_connection.Wait(100, true);
        if (m_cancelled) {
            done();
            return;
        }
        if (!m_state.connected) {
            MessageBox::Show(this,
                             "Server not connected.\nPlease verify IP Address and Port of KOV "
                             "Server Module",
                             "Connection Error", QMessageBox::Critical);
            m_state.enteredPassword.clear();
            done();
            return;
        }
    }

    if (m_state.enteredPassword != m_state.serverPassword) {
        MessageBox::Show(this, "Incorrect password, Please try again", "Password Error",
                         QMessageBox::Critical);
        m_state.enteredPassword.clear();
        done();
        return;
    }
    done();
    accept();
}

void LoginDialog::Cancel() {
    m_cancelled = true;
    m_state.enteredPassword.clear();
    QDialog::reject();
}

void LoginDialog::reject() {
    // Escape and the close box end the login like Cancel, also while OK is
    // waiting for the server's password: there is no other way out of a
    // server that never sends one.
    Cancel();
}

} // namespace lumeth
