// SPDX-License-Identifier: MIT
#include "VantlePresets/check/Addresses.h"
#include "VantlePresets/check/Spoken.h"

#include <QtCore/QLocale>
#include <QtNetwork/QNetworkProxy>
#include <QtNetwork/QSslConfiguration>

namespace vantle::check {
namespace {

using namespace Qt::StringLiterals;

class TcpConnection : public AddressWork
{
public:
    using AddressWork::AddressWork;

private:
    void ask(const QHostAddress &address) override
    {
        auto &socket = context().socket;
        socket = std::make_unique<QSslSocket>();
        // The encoder goes straight to the server, whatever the host application does.
        socket->setProxy(QNetworkProxy::NoProxy);
        connect(socket.get(), &QAbstractSocket::connected, this, [this] { good(here()); });
        connect(socket.get(), &QAbstractSocket::errorOccurred, this,
                [this](QAbstractSocket::SocketError error) {
                    failedHere(error == QAbstractSocket::ConnectionRefusedError
                                   ? u"refused: nothing listens there"_s
                                   : context().socket->errorString());
                });
        socket->connectToHost(address, target().port);
    }

    [[nodiscard]] QString whenSilent() const override
    {
        return u"no answer: the host is down, or a firewall drops what comes"_s;
    }
};

/// Whom a certificate is for, as far as a line holds it.
QString namesIn(const QSslCertificate &certificate)
{
    const auto alternatives = certificate.subjectAlternativeNames();
    QStringList names = alternatives.values(QSsl::DnsEntry) + alternatives.values(QSsl::IpAddressEntry);
    if (names.isEmpty())
        names = certificate.subjectInfo(QSslCertificate::CommonName);
    constexpr qsizetype kShown = 4;
    if (names.size() > kShown)
        names = names.first(kShown) << u"..."_s;
    return names.isEmpty() ? u"nobody"_s : names.join(u' ');
}

QString day(const QDateTime &time)
{
    return time.toUTC().date().toString(Qt::ISODate);
}

QString reasonOf(const QSslError &error, const QString &host)
{
    const QSslCertificate certificate = error.certificate();
    switch (error.error()) {
    case QSslError::HostNameMismatch:
        return "the certificate is for "_L1 + namesIn(certificate) + ", not for "_L1 + host;
    case QSslError::CertificateExpired:
        return "the certificate expired on "_L1 + day(certificate.expiryDate());
    case QSslError::CertificateNotYetValid:
        return "the certificate holds from "_L1 + day(certificate.effectiveDate()) + " on"_L1;
    case QSslError::SelfSignedCertificate:
    case QSslError::SelfSignedCertificateInChain:
    case QSslError::UnableToGetIssuerCertificate:
    case QSslError::UnableToGetLocalIssuerCertificate:
    case QSslError::UnableToVerifyFirstCertificate:
    case QSslError::CertificateUntrusted:
        return u"the certificate is signed by nobody that this machine trusts"_s;
    default:
        return error.errorString();
    }
}

class TlsHandshake : public StepWork
{
public:
    using StepWork::StepWork;

    void start() override
    {
        if (!QSslSocket::supportsSsl()) {
            failed(u"this machine has no TLS library that Qt can use"_s);
            return;
        }
        QSslSocket &socket = *context().socket;
        if (!context().authorityFile.isEmpty()) {
            const auto authorities = QSslCertificate::fromPath(context().authorityFile);
            if (authorities.isEmpty()) {
                failed(context().authorityFile + ": holds no certificate that can be read"_L1);
                return;
            }
            QSslConfiguration configuration = socket.sslConfiguration();
            configuration.addCaCertificates(authorities);
            socket.setSslConfiguration(configuration);
        }
        socket.setPeerVerifyName(target().host);
        connect(&socket, &QSslSocket::sslErrors, this,
                [this](const QList<QSslError> &errors) { take(errors); });
        connect(&socket, &QSslSocket::encrypted, this, [this] { tell(); });
        connect(&socket, &QAbstractSocket::errorOccurred, this, [this] { fail(); });
        socket.startClientEncryption();
    }

    [[nodiscard]] QString whenLate() const override
    {
        return u"the server does not answer: it may wait for a protocol without TLS"_s;
    }

private:
    void take(const QList<QSslError> &errors)
    {
        for (const QSslError &error : errors) {
            const QString reason = reasonOf(error, target().host);
            if (!m_reasons.contains(reason))
                m_reasons.append(reason);
        }
    }

    void tell()
    {
        const QSslSocket &socket = *context().socket;
        const bool isNewest = socket.sessionProtocol() == QSsl::TlsV1_3;
        good("TLS "_L1 + (isNewest ? "1.3"_L1 : "1.2"_L1) + ", certificate for "_L1 +
             namesIn(socket.peerCertificate()) + " until "_L1 + day(socket.peerCertificate().expiryDate()));
    }

    void fail()
    {
        if (!m_reasons.isEmpty()) {
            failed(m_reasons.join("; "_L1));
            return;
        }
        const QString error = context().socket->errorString();
        if (context().socket->error() == QAbstractSocket::RemoteHostClosedError)
            failed(u"the server closed the connection: it does not speak TLS on this port"_s);
        else if (error.contains("wrong version number"_L1) || error.contains("packet length too long"_L1))
            failed(u"the server does not speak TLS on this port"_s);
        else
            failed(error);
    }

    QStringList m_reasons;
};

} // namespace

const StepKind kTcp{"TCP"_L1, [](CheckContext &context, StepWork::Done done) {
                        return std::unique_ptr<StepWork>(new TcpConnection(context, std::move(done)));
                    }};

const StepKind kTls{"TLS"_L1, [](CheckContext &context, StepWork::Done done) {
                        return std::unique_ptr<StepWork>(new TlsHandshake(context, std::move(done)));
                    }};

} // namespace vantle::check
