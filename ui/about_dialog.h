#pragma once

#include <QDialog>

namespace lumeth {

struct LinkState;

// The program's version, its maker and the server module in use.
inline constexpr const char* kVersionInfo = "KOV Admin Panel\rVersion: 01.02.0001 - 10/19/2012";

// frmAbout: "KOV AdminPanel Information". Changes no setting.
class AboutDialog : public QDialog {
    Q_OBJECT
public:
    explicit AboutDialog(const LinkState& state, QWidget* parent = nullptr);

    // Opening: the server lines show the address and port in use now.
    void LoadFromState();

protected:
    void showEvent(QShowEvent* event) override;

private:
    const LinkState& m_state;
};

} // namespace lumeth
