#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QStringList>
#include <QTcpSocket>

#include <sys/resource.h>

#include <string>
#include <vector>

#include "link/frame_reader.h"

namespace lumeth::testing {

inline QCoreApplication& EnsureApp() {
    static int argc = 1;
    static char name[] = "sim_e2e_tests";
    static char* argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    return app;
}

inline QString SimBinary() {
    return QStringLiteral(LUMETH_BINARY_DIR "/tools/sim/lumeth-sim");
}

// A lumeth-sim process on a free loopback port, stopped when the test ends.
class SimProcess {
public:
    SimProcess() { EnsureApp(); }
    ~SimProcess() { Stop(); }

    // Start with `args` plus --listen 127.0.0.1:0 (unless given) and wait for
    // the line that names the port. False when it exits or says nothing.
    bool Start(QStringList args) {
        if (!args.contains("--listen")) {
            args << "--listen"
                 << "127.0.0.1:0";
        }
        m_process.start(SimBinary(), args);
        QElapsedTimer timer;
        timer.start();
        while (m_process.waitForStarted(5000) && timer.elapsed() < 15000 &&
               (m_process.canReadLine() || m_process.waitForReadyRead(100) || Running())) {
            if (m_process.canReadLine()) {
                const QString firstLine = QString::fromUtf8(m_process.readLine()).trimmed();
                const auto match =
                    QRegularExpression("listening on 127\\.0\\.0\\.1:(\\d+)").match(firstLine);
                port = match.captured(1).toInt();
                return match.hasMatch();
            }
        }
        return false;
    }

    // Start the emulator with at most `count` open descriptors.
    void LimitDescriptors(rlim_t count) {
        m_process.setChildProcessModifier([count] {
            const rlimit limit{count, count};
            setrlimit(RLIMIT_NOFILE, &limit);
        });
    }

    bool Running() { return m_process.state() == QProcess::Running; }
    qint64 pid() const { return m_process.processId(); }
    // Everything the emulator wrote to stderr so far.
    QString Log() {
        m_log += QString::fromUtf8(m_process.readAllStandardError());
        return m_log;
    }
    // Wait until the log holds `text`.
    bool WaitForLog(const QString& text, int timeoutMs = 10000) {
        QElapsedTimer timer;
        timer.start();
        while (!Log().contains(text)) {
            if (timer.elapsed() > timeoutMs || !Running()) {
                return Log().contains(text);
            }
            m_process.waitForReadyRead(50);
        }
        return true;
    }
    // Read what the emulator logs for up to `ms` (a full pipe would stop it).
    void Drain(int ms) {
        m_process.waitForReadyRead(ms);
        Log();
    }
    // Ends the emulator: asked first, then killed.
    void Stop() {
        if (m_process.state() != QProcess::NotRunning) {
            m_process.terminate();
            if (!m_process.waitForFinished(3000)) {
                m_process.kill();
                m_process.waitForFinished(3000);
            }
        }
    }

    int port = 0;

private:
    QProcess m_process;
    QString m_log;
};

// A bare TCP client that speaks bytes, for feeding the emulator bad input.
class RawClient {
public:
    RawClient() { EnsureApp(); }

    bool Connect(int port) {
        m_socket.connectToHost("127.0.0.1", static_cast<quint16>(port));
        return m_socket.waitForConnected(5000);
    }
    void Send(const std::string& bytes) {
        m_socket.write(bytes.data(), static_cast<qint64>(bytes.size()));
        m_socket.waitForBytesWritten(5000);
    }
    // The next `count` frames from the emulator (polls skipped).
    std::vector<std::string> Read(size_t count, int timeoutMs = 10000) {
        std::vector<std::string> frames;
        QElapsedTimer timer;
        timer.start();
        while (frames.size() < count && timer.elapsed() < timeoutMs) {
            while (auto event = m_reader.Next()) {
                if (event->kind == FrameEvent::Kind::Frame && event->bytes != "\xF5") {
                    frames.push_back(event->bytes);
                }
            }
            if (frames.size() < count && !m_socket.waitForReadyRead(100) &&
                m_socket.state() != QAbstractSocket::ConnectedState) {
                break;
            }
            const QByteArray bytes = m_socket.readAll();
            m_reader.Append(std::string_view(bytes.constData(), size_t(bytes.size())));
        }
        return frames;
    }

private:
    QTcpSocket m_socket;
    FrameReader m_reader;
};

} // namespace lumeth::testing
