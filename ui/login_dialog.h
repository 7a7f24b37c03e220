#pragma once

#include <QDialog>

#include <string>

class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace lumeth {

class Connection;
struct LinkState;

// frmLogin: asks for the panel password (checked against the one the server
// module sent) and lets the operator correct the server's address and port.
// Accepted when the password matched; rejected by Cancel or the close box, and
// then nobody is logged in.
class LoginDialog : public QDialog {
    Q_OBJECT
public:
    LoginDialog(LinkState& state, Connection& connection, std::string& normalisedAddress,
                QWidget* parent = nullptr);

    // Load: the address and port boxes show the link's current values and
    // the password box is empty.
    void LoadFromState();
    // cmdOk's steps; the dialog closes only on a matching password.
    void Ok();
    void Cancel();

protected:
    void showEvent(QShowEvent* event) override;
    void reject() override;

private:
    QGridLayout* createFields();

    LinkState& m_state;
    Connection& m_connection;
    std::string& m_normalisedAddress;
    QLineEdit* m_address = nullptr;
    QLineEdit* m_port = nullptr;
    QLineEdit* m_password = nullptr;
    QPushButton* m_ok = nullptr;
    QPushButton* m_cancel = nullptr;
    bool m_checking = false;
    bool m_cancelled = false; // Cancel pressed while OK was waiting
};

} // namespace lumeth
