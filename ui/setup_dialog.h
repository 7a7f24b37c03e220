#pragma once

#include <QDialog>

#include <string>

class QCheckBox;
class QGroupBox;
class QLineEdit;

namespace lumeth {

class Connection;
struct LinkState;
struct Settings;

// frmSetup: the server module's address and port, the panel setup password
// and the log options. Changes stay in memory; the settings file is written
// when the main window closes.
class SetupDialog : public QDialog {
    Q_OBJECT
public:
    SetupDialog(Settings& settings, LinkState& state, Connection& connection,
                std::string& normalisedAddress, QWidget* parent = nullptr);

    // Form load: fill the controls from the settings and the link.
    void LoadFromSettings();
    // cmdOk's steps; the dialog closes unless the port is out of range.
    void Ok();

private:
    QGroupBox* createServerGroup();
    QGroupBox* createLogChoiceGroup();

    Settings& m_settings;
    LinkState& m_state;
    Connection& m_connection;
    std::string& m_normalisedAddress;

    QLineEdit* m_address = nullptr;
    QLineEdit* m_port = nullptr;
    QLineEdit* m_password = nullptr;
    QCheckBox* m_logFile = nullptr;
    QCheckBox* m_errorFile = nullptr;
    QLineEdit* m_maxSize = nullptr;
    QCheckBox* m_archive = nullptr;
    QLineEdit* m_maxErrorLog = nullptr;
    QCheckBox* m_archiveError = nullptr;
};

} // namespace lumeth
