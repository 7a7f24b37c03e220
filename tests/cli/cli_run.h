#pragma once

#include <QEventLoop>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tests/support/temp_folder.h"

namespace lumeth::testing {

struct CliResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

// Runs the real lumeth-cli in a fresh folder. This process's event loop keeps
// running meanwhile, so a scripted server in the test can serve it.
class CliTest : public ::testing::Test {
protected:
    // The demo configuration shipped with the sources.
    static inline const QString kDemo = QStringLiteral(LUMETH_SOURCE_DIR "/demo/demo-panel.json");

    // The inherited environment without the password variables.
    static QProcessEnvironment Environment(const QString& password = {}) {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.remove("LUMETH_PASSWORD");
        env.remove("LUMETH_NEW_PASSWORD");
        if (!password.isEmpty()) {
            env.insert("LUMETH_PASSWORD", password);
        }
        return env;
    }

    CliResult Run(const QStringList& args, const QProcessEnvironment& env = Environment()) {
        QProcess process;
        // The per-user data folder is the test's own, never the real one.
        QProcessEnvironment childEnv = env;
        if (!childEnv.contains("XDG_DATA_HOME")) {
            childEnv.insert("XDG_DATA_HOME", QString::fromStdString(m_data.path()));
        }
        process.setProcessEnvironment(childEnv);
        process.setWorkingDirectory(QString::fromStdString(m_dir.path()));
        if (m_childSetup) {
            process.setChildProcessModifier(m_childSetup);
        }
        process.start(QStringLiteral(LUMETH_CLI_PATH), args);
        EXPECT_TRUE(process.waitForStarted(5000));
        QEventLoop loop;
        QObject::connect(&process, &QProcess::finished, &loop, &QEventLoop::quit);
        QTimer::singleShot(30000, &loop, &QEventLoop::quit);
        if (process.state() != QProcess::NotRunning) {
            loop.exec();
        }
        if (process.state() != QProcess::NotRunning) {
            ADD_FAILURE() << "lumeth-cli did not finish";
            process.kill();
            process.waitForFinished(2000);
        }
        CliResult result;
        result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
        result.out = process.readAllStandardOutput().toStdString();
        result.err = process.readAllStandardError().toStdString();
        return result;
    }

    QString Path(const std::string& name) const { return QString::fromStdString(m_dir.file(name)); }

    test::TempFolder m_dir;
    test::TempFolder m_data; // $XDG_DATA_HOME of the commands run
    // Runs in the child before lumeth-cli starts (limits, signal dispositions).
    std::function<void()> m_childSetup;
};

} // namespace lumeth::testing
