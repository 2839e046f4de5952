// SPDX-License-Identifier: MIT
#include "tests/check/Servers.h"

#include "tests/support/ChildProcess.h"

#include <QtCore/QFile>
#include <QtNetwork/QSslKey>
#include <QtNetwork/QSslServer>

#include <srt/logging_api.h>
#include <srt/srt.h>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace vantle::test {
namespace {

constexpr qsizetype kBlock = 1536;

sockaddr_in loopback(quint16 port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

QByteArray contentOf(const std::filesystem::path &path)
{
    QFile file(QString::fromStdString(path.string()));
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("can't read " + path.string());
    return file.readAll();
}

/// Signs NAME for a host, and lets it end as said.
constexpr const char *kMakeCertificates = R"(
set -e
openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -subj "/CN=Test authority" \
    -days 2 -keyout ca.key -out ca.pem
printf '[ca]\ndefault_ca=d\n[d]\ndatabase=index\nserial=serial\nnew_certs_dir=.\npolicy=p\ndefault_md=sha256\n' >ca.cnf
printf 'unique_subject=no\ncopy_extensions=copy\nrand_serial=yes\n[p]\ncommonName=supplied\n' >>ca.cnf
: >index
sign() { # NAME HOST ALTERNATIVES END
    openssl req -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -subj "/CN=$2" -addext "subjectAltName=$3" \
        -keyout "$1.key" -out "$1.csr"
    openssl ca -batch -notext -config ca.cnf -cert ca.pem -keyfile ca.key -startdate 20200101000000Z -enddate "$4" \
        -in "$1.csr" -out "$1.pem"
}
end=$(date -u -d '+2 days' +%Y%m%d%H%M%SZ)
sign good localhost DNS:localhost,IP:127.0.0.1 "$end"
sign other other.example DNS:other.example "$end"
sign expired localhost DNS:localhost 20210101000000Z
openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -subj /CN=localhost \
    -addext subjectAltName=DNS:localhost -days 2 -keyout own.key -out own.pem
)";

} // namespace

Server::Server(Conversation conversation, const QSslConfiguration *tls)
    : m_conversation(std::move(conversation))
{
    if (tls) {
        auto server = std::make_unique<QSslServer>();
        server->setSslConfiguration(*tls);
        m_server = std::move(server);
    } else {
        m_server = std::make_unique<QTcpServer>();
    }
    if (!m_server->listen(QHostAddress::LocalHost))
        throw std::runtime_error("can't listen");
    QObject::connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, m_server.get(), [this] {
        QTcpSocket *const caller = m_server->nextPendingConnection();
        if (caller == nullptr)
            return;
        m_said.clear();
        m_isCallerGone = false;
        const auto take = [this, caller] {
            m_said += caller->readAll();
            m_conversation(*caller, m_said);
        };
        QObject::connect(caller, &QIODevice::readyRead, m_server.get(), take);
        QObject::connect(caller, &QAbstractSocket::disconnected, m_server.get(),
                         [this] { m_isCallerGone = true; });
        if (caller->bytesAvailable() > 0)
            take();
    });
}

void staySilent(QTcpSocket & /*caller*/, const QByteArray & /*said*/) {}

void shakeHands(QTcpSocket &caller, const QByteArray &said)
{
    if (said.size() != 1 + kBlock)
        return;
    const QByteArray answer = QByteArray("\3").append(kBlock, 's').append(said.last(kBlock));
    caller.write(answer.first(7));
    caller.flush();
    caller.write(answer.sliced(7));
}

Server::Conversation answerWith(const QByteArray &answer)
{
    return [answer](QTcpSocket &caller, const QByteArray &) { caller.write(answer); };
}

void hangUp(QTcpSocket &caller, const QByteArray & /*said*/)
{
    caller.disconnectFromHost();
}

Certificates::Certificates()
{
    runScript(m_folder.path(),
              "{ " + std::string(kMakeCertificates) + "} >log 2>&1 || { cat log >&2; exit 1; }");
}

QSslConfiguration Certificates::server(const std::string &name) const
{
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(QSslCertificate(contentOf(m_folder.path(name + ".pem"))));
    configuration.setPrivateKey(QSslKey(contentOf(m_folder.path(name + ".key")), QSsl::Ec));
    configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
    return configuration;
}

quint16 closedPort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

FullPort::FullPort()
{
    const auto newSocket = [&](int flags) {
        m_descriptors.append(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | flags, 0));
        return m_descriptors.last();
    };
    const int listener = newSocket(0);
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    if (::bind(listener, reinterpret_cast<sockaddr *>(&address), size) != 0 || ::listen(listener, 0) != 0 ||
        ::getsockname(listener, reinterpret_cast<sockaddr *>(&address), &size) != 0)
        throw std::system_error(errno, std::generic_category(), "listen");
    m_port = ntohs(address.sin_port);
    // A queue of length 0 holds one connection; a second one may be on its way.
    constexpr int kEnough = 4;
    for (int i = 0; i < kEnough; ++i)
        ::connect(newSocket(SOCK_NONBLOCK), reinterpret_cast<sockaddr *>(&address), size);
}

FullPort::~FullPort()
{
    for (const int descriptor : m_descriptors)
        ::close(descriptor);
}

SrtListener::SrtListener(const QByteArray &passphrase)
{
    srt_startup();
    srt_setloglevel(srt_logging::LogLevel::fatal); // it tells of every caller that it refuses
    m_socket = srt_create_socket();
    if (!passphrase.isEmpty())
        srt_setsockflag(m_socket, SRTO_PASSPHRASE, passphrase.constData(),
                        static_cast<int>(passphrase.size()));
    sockaddr_in address = loopback(0);
    int size = sizeof address;
    if (srt_bind(m_socket, reinterpret_cast<sockaddr *>(&address), size) == SRT_ERROR ||
        srt_listen(m_socket, 4) == SRT_ERROR ||
        srt_getsockname(m_socket, reinterpret_cast<sockaddr *>(&address), &size) == SRT_ERROR)
        throw std::runtime_error(srt_getlasterror_str());
    m_port = ntohs(address.sin_port);
}

SrtListener::~SrtListener()
{
    srt_close(m_socket);
    srt_cleanup();
}

} // namespace vantle::test
