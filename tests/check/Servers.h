// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TemporaryFolder.h"

#include <QtCore/QByteArray>
#include <QtNetwork/QSslConfiguration>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>

#include <functional>
#include <memory>

namespace vantle::test {

/// A server on the loopback and the caller's event loop.
class Server
{
public:
    /// What it does with all that a caller has said so far, each time that there is more.
    using Conversation = std::function<void(QTcpSocket &caller, const QByteArray &said)>;

    /// With a configuration, behind TLS.
    explicit Server(Conversation conversation, const QSslConfiguration *tls = nullptr);

    [[nodiscard]] quint16 port() const { return m_server->serverPort(); }
    /// All that the last caller has said.
    [[nodiscard]] const QByteArray &said() const { return m_said; }
    [[nodiscard]] bool isCallerGone() const { return m_isCallerGone; }

private:
    Conversation m_conversation;
    std::unique_ptr<QTcpServer> m_server;
    QByteArray m_said;
    bool m_isCallerGone = false;
};

/// Never says anything.
void staySilent(QTcpSocket &caller, const QByteArray &said);
/// RTMP's handshake, in two pieces.
void shakeHands(QTcpSocket &caller, const QByteArray &said);
/// The same bytes to whatever is said first.
[[nodiscard]] Server::Conversation answerWith(const QByteArray &answer);
void hangUp(QTcpSocket &caller, const QByteArray &said);

/// An authority of the test's own, and what it has signed.
class Certificates
{
public:
    Certificates();

    /// Of a server: "good", for localhost and 127.0.0.1; "other", for another host; "expired"; "own", signed
    /// by itself.
    [[nodiscard]] QSslConfiguration server(const std::string &name) const;
    [[nodiscard]] std::string authorityFile() const { return m_folder.path("ca.pem").string(); }

private:
    TemporaryFolder m_folder;
};

/// A port of the loopback on which nobody listens.
[[nodiscard]] quint16 closedPort();

/// A listening port whose queue is full, so that the kernel drops what else comes.
class FullPort
{
public:
    FullPort();
    ~FullPort();
    FullPort(const FullPort &) = delete;
    FullPort &operator=(const FullPort &) = delete;

    [[nodiscard]] quint16 port() const { return m_port; }

private:
    quint16 m_port = 0;
    QList<int> m_descriptors;
};

/// An SRT listener whose library answers callers.
class SrtListener
{
public:
    /// With an empty passphrase it asks for none.
    explicit SrtListener(const QByteArray &passphrase);
    ~SrtListener();
    SrtListener(const SrtListener &) = delete;
    SrtListener &operator=(const SrtListener &) = delete;

    [[nodiscard]] quint16 port() const { return m_port; }

private:
    int m_socket = -1;
    quint16 m_port = 0;
};

} // namespace vantle::test
