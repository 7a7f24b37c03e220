// The Qt connection against a peer on 127.0.0.1: connect and status texts,
// moving bytes both ways through the session, the peer closing and a peer
// streaming a message without end.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <memory>
#include <string>

#include "files/error_log.h"
#include "link/connection.h"
#include "link/frame_reader.h"
#include "link/link_state.h"
#include "model/panel_store.h"
#include "tests/link/messages.h"
#include "tests/support/temp_folder.h"

namespace lumeth {
namespace {

using testing::Raw;

// One listening peer that keeps the bytes it receives.
class Peer {
public:
    Peer() {
        EXPECT_TRUE(m_server.listen(QHostAddress::LocalHost, 0));
        QObject::connect(&m_server, &QTcpServer::newConnection, [this] {
            m_socket = m_server.nextPendingConnection();
            ++m_accepted;
            QObject::connect(m_socket, &QTcpSocket::readyRead,
                             [this] { m_received += m_socket->readAll().toStdString(); });
        });
    }
    int port() const { return m_server.serverPort(); }
    bool Accepted(int timeoutMs = 5000) {
        return QTest::qWaitFor([this] { return m_socket != nullptr; }, timeoutMs);
    }
    void Send(const std::string& bytes) {
        m_socket->write(bytes.data(), static_cast<qint64>(bytes.size()));
        m_socket->flush();
    }
    bool ReceivedAtLeast(size_t count, int timeoutMs = 5000) {
        return QTest::qWaitFor([&] { return m_received.size() >= count; }, timeoutMs);
    }
    void Close() { m_socket->close(); }
    int accepted() const { return m_accepted; }
    QTcpSocket* socket() { return m_socket; }
    std::string& received() { return m_received; }

private:
    QTcpServer m_server;
    QTcpSocket* m_socket = nullptr;
    std::string m_received;
    int m_accepted = 0;
};

class ConnectionTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_log = std::make_unique<ErrorLog>(m_folder.path(),
                                           [] { return std::string("01/02/2024 10:00:00"); });
        m_connection = std::make_unique<Connection>(m_store, m_state, *m_log);
        QObject::connect(m_connection.get(), &Connection::statusTextChanged,
                         [this](const QString& text) { m_status = text; });
    }

    bool ConnectTo(Peer& peer) {
        m_state.serverAddress = "127.0.0.1";
        m_state.serverPort = peer.port();
        m_connection->Connect();
        return peer.Accepted() &&
               QTest::qWaitFor([this] { return m_connection->IsConnected(); }, 5000);
    }

    test::TempFolder m_folder;
    PanelStore m_store;
    LinkState m_state;
    std::unique_ptr<ErrorLog> m_log;
    std::unique_ptr<Connection> m_connection;
    QString m_status;
};

TEST_F(ConnectionTest, ConnectsAndExchangesMessagesThroughTheSession) {
    Peer peer;
    ASSERT_TRUE(ConnectTo(peer));
    EXPECT_EQ(m_status, "Server Module Connected");

    // A poll is answered with exactly one poll answer.
    peer.Send(Raw({0xF5}));
    ASSERT_TRUE(peer.ReceivedAtLeast(1));
    QTest::qWait(50);
    EXPECT_EQ(peer.received(), Raw({0xF4}));
    peer.received().clear();

    // The identity query, split over two writes, is answered with the identity
    // answer and the request for everything.
    peer.Send(Raw({0x81, 0x64}));
    QTest::qWait(30);
    peer.Send(Raw({0x64, 0xFF}));
    const std::string expected =
        Raw({0x81, 0x11, 0x01, 0x12, 0xFF}) + testing::Request(0x03000302, 0, 0xFC);
    ASSERT_TRUE(peer.ReceivedAtLeast(expected.size()));
    EXPECT_EQ(peer.received(), expected);

    // The decode timer switches itself off once the buffer is drained.
    ASSERT_TRUE(QTest::qWaitFor([this] { return !m_connection->decodeTimer()->isActive(); }, 1000));
    EXPECT_TRUE(m_state.receiveBuffer.empty());

    // What the session stores is announced as a store change.
    int passwordChanges = 0;
    QObject::connect(m_connection.get(), &Connection::partReceived,
                     [&](Part part) { passwordChanges += part == Part::Password ? 1 : 0; });
    peer.Send(testing::PasswordAnswer("abc"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_state.passwordReceived; }, 2000));
    EXPECT_EQ(m_state.serverPassword, "abc");
    EXPECT_EQ(passwordChanges, 1);
}

TEST_F(ConnectionTest, PeerClosingDisconnectsAndForgetsTheLogin) {
    Peer peer;
    ASSERT_TRUE(ConnectTo(peer));
    int disconnects = 0;
    QObject::connect(m_connection.get(), &Connection::linkDisconnected, [&] { ++disconnects; });
    m_state.enteredPassword = "abc";
    m_state.passwordReceived = true;
    // A partial frame is waiting in the buffer when the peer goes away.
    peer.Send(Raw({0xDF, 0x0B}));
    ASSERT_TRUE(QTest::qWaitFor([this] { return !m_state.receiveBuffer.empty(); }, 2000));

    peer.Close();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !m_connection->IsConnected(); }, 5000));
    EXPECT_EQ(m_status, "Server Module Not Connected");
    EXPECT_TRUE(m_state.receiveBuffer.empty());
    EXPECT_TRUE(m_state.enteredPassword.empty());
    EXPECT_FALSE(m_state.passwordReceived);
    EXPECT_EQ(disconnects, 1);
}

// A peer that streams one message without end loses the link once the
// message passes the largest the protocol carries; the poll connects again.
TEST_F(ConnectionTest, EndlessMessageDropsTheLinkAndThePollReconnects) {
    Peer peer;
    ASSERT_TRUE(ConnectTo(peer));
    int disconnects = 0;
    int tooLong = 0;
    QObject::connect(m_connection.get(), &Connection::linkDisconnected, [&] { ++disconnects; });
    QObject::connect(m_connection.get(), &Connection::messageTooLong, [&] { ++tooLong; });
    QTcpSocket* streaming = peer.socket();
    streaming->write("\xDF", 1);
    const QByteArray piece(1 << 18, '\0');
    size_t sent = 1;
    while (sent <= kMaxMessageBytes + piece.size() && disconnects == 0) {
        streaming->write(piece);
        sent += static_cast<size_t>(piece.size());
        (void)QTest::qWaitFor([&] { return streaming->bytesToWrite() == 0 || disconnects > 0; },
                              1000);
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return disconnects > 0; }, 5000));
    EXPECT_EQ(tooLong, 1);
    EXPECT_EQ(m_status, "Server Module Not Connected");
    EXPECT_TRUE(m_state.receiveBuffer.empty());
    EXPECT_NE(m_folder.Read("Errorlog.txt").find("Message Too Long"), std::string::npos);

    m_connection->StartPolling();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_connection->IsConnected(); }, 5000));
    EXPECT_EQ(peer.accepted(), 2);
    EXPECT_EQ(disconnects, 1);
}

} // namespace
} // namespace lumeth

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
