// SPDX-License-Identifier: MIT
#include "VantlePresets/check/Addresses.h"
#include "VantlePresets/check/ConnectionCheck.h"

#include <QtNetwork/QUdpSocket>

#include <srt/srt.h>

#include <array>
#include <cstring>
#include <mutex>

#include <netinet/in.h>
#include <sys/socket.h>

namespace vantle::check {
namespace {

using namespace Qt::StringLiterals;

/// The library at work, for as long as anybody here needs it. It writes to standard error what its calls
/// return too, which is not for a host's output: meanwhile it says nothing.
class SrtLibrary
{
public:
    static std::shared_ptr<SrtLibrary> get()
    {
        static std::mutex mutex;
        static std::weak_ptr<SrtLibrary> shared;
        const std::lock_guard lock(mutex);
        auto library = shared.lock();
        if (!library)
            shared = library = std::make_shared<SrtLibrary>();
        return library;
    }

    SrtLibrary() { srt_startup(); }
    ~SrtLibrary() { srt_cleanup(); }
    SrtLibrary(const SrtLibrary &) = delete;
    SrtLibrary &operator=(const SrtLibrary &) = delete;
};

/// An address as the system's calls take it.
struct SystemAddress
{
    sockaddr_storage storage{};
    int size = 0;

    SystemAddress(const QHostAddress &address, quint16 port)
    {
        if (address.protocol() == QAbstractSocket::IPv6Protocol) {
            sockaddr_in6 v6{};
            v6.sin6_family = AF_INET6;
            v6.sin6_port = htons(port);
            v6.sin6_scope_id = address.scopeId().toUInt();
            const Q_IPV6ADDR bytes = address.toIPv6Address();
            std::memcpy(&v6.sin6_addr, &bytes, sizeof bytes);
            take(v6);
        } else {
            sockaddr_in v4{};
            v4.sin_family = AF_INET;
            v4.sin_port = htons(port);
            v4.sin_addr.s_addr = htonl(address.toIPv4Address());
            take(v4);
        }
    }

    [[nodiscard]] const sockaddr *get() const { return reinterpret_cast<const sockaddr *>(&storage); }

private:
    template <class Address>
    void take(const Address &address)
    {
        std::memcpy(&storage, &address, sizeof address);
        size = sizeof address;
    }
};

struct Rejection
{
    int reason;
    QLatin1StringView text;
};

constexpr std::array<Rejection, 4> kRejections{
    {{SRT_REJ_BADSECRET, "the listener has another passphrase"_L1},
     {SRT_REJ_VERSION, "the listener is too old for this version of SRT"_L1},
     {SRT_REJ_BACKLOG, "the listener has no place for another caller"_L1},
     {SRT_REJ_CLOSE, "the listener is about to end"_L1}}};

/// What an SRT listener answers to a caller with the preset's passphrase and stream identifier.
class SrtCall : public AddressWork
{
public:
    SrtCall(CheckContext &context, Done done) : AddressWork(context, std::move(done))
    {
        // The library tells of a connection on threads of its own or when it is asked, which keeps all of
        // this on one.
        constexpr int kMilliseconds = 10;
        m_look.setInterval(kMilliseconds);
        connect(&m_look, &QTimer::timeout, this, [this] { look(); });
    }
    ~SrtCall() override { close(); }

private:
    void ask(const QHostAddress &address) override
    {
        close();
        m_socket = srt_create_socket();
        if (m_socket == SRT_INVALID_SOCK) {
            failed(QString::fromUtf8(srt_getlasterror_str()));
            return;
        }
        const bool isBlocking = false;
        set(SRTO_RCVSYN, isBlocking);
        set(SRTO_SNDSYN, isBlocking);
        // This side's own limit comes first.
        constexpr int kSlack = 1000;
        set(SRTO_CONNTIMEO, static_cast<int>(context().limit.count()) + kSlack);
        if (!set(SRTO_PASSPHRASE, target().passphrase)) {
            failed(u"a passphrase has 10 to 79 characters"_s);
            return;
        }
        if (target().keyLength != 0 && !set(SRTO_PBKEYLEN, target().keyLength)) {
            failed(u"pbkeylen is 16, 24 or 32"_s);
            return;
        }
        if (!set(SRTO_STREAMID, target().streamId)) {
            failed(u"a stream identifier has at most 512 characters"_s);
            return;
        }
        const SystemAddress place(address, target().port);
        if (srt_connect(m_socket, place.get(), place.size) == SRT_ERROR)
            failedHere(QString::fromUtf8(srt_getlasterror_str()));
        else
            m_look.start();
    }

    [[nodiscard]] QString whenSilent() const override
    {
        return u"no answer: no SRT listener there, one that is taken, or a firewall"_s;
    }

    void look()
    {
        switch (srt_getsockstate(m_socket)) {
        case SRTS_INIT:
        case SRTS_OPENED:
        case SRTS_CONNECTING:
            return;
        case SRTS_CONNECTED: {
            const bool isEncrypted = !target().passphrase.isEmpty();
            close();
            good("the listener took the connection, "_L1 +
                 (isEncrypted ? "encrypted with the passphrase"_L1 : "not encrypted"_L1));
            return;
        }
        default: {
            const int reason = srt_getrejectreason(m_socket);
            close();
            failedHere(reasonText(reason));
        }
        }
    }

    [[nodiscard]] QString reasonText(int reason) const
    {
        if (reason == SRT_REJ_TIMEOUT || reason == SRT_REJ_UNKNOWN)
            return whenSilent();
        if (reason == SRT_REJ_UNSECURE)
            return target().passphrase.isEmpty()
                       ? u"the listener asks for a passphrase, and the preset has none"_s
                       : u"the listener has no passphrase, and the preset has one"_s;
        for (const Rejection &known : kRejections) {
            if (known.reason == reason)
                return known.text;
        }
        // From 1000 on reasons are the listener's own: 1000 and what HTTP's status would be (SRT Access
        // Control).
        if (reason >= SRT_REJC_PREDEFINED)
            return u"the listener refuses the stream identifier (%1)"_s.arg(reason);
        return "the listener refuses: "_L1 + QString::fromUtf8(srt_rejectreason_str(reason));
    }

    bool set(SRT_SOCKOPT option, const QByteArray &text)
    {
        return text.isEmpty() || srt_setsockflag(m_socket, option, text.constData(),
                                                 static_cast<int>(text.size())) != SRT_ERROR;
    }
    template <class Value>
    bool set(SRT_SOCKOPT option, const Value &value)
    {
        return srt_setsockflag(m_socket, option, &value, sizeof value) != SRT_ERROR;
    }

    void close()
    {
        m_look.stop();
        if (m_socket != SRT_INVALID_SOCK)
            srt_close(std::exchange(m_socket, SRT_INVALID_SOCK));
    }

    std::shared_ptr<SrtLibrary> m_library = SrtLibrary::get();
    SRTSOCKET m_socket = SRT_INVALID_SOCK;
    QTimer m_look;
};

/// Where the encoder itself listens: whether it could.
class SrtPort : public StepWork
{
public:
    using StepWork::StepWork;

    void start() override
    {
        const QHostAddress address =
            target().host.isEmpty() ? QHostAddress(QHostAddress::Any) : QHostAddress(target().host);
        const QString place = u"port %1"_s.arg(target().port);
        QUdpSocket socket;
        if (address.isNull())
            failed(target().host + ": a listener needs an address of this machine, not a name"_L1);
        else if (socket.bind(address, target().port, QAbstractSocket::DontShareAddress))
            good(place + " is free; the encoder is the listener, and waits for a caller"_L1);
        else
            failed(place + ": "_L1 + socket.errorString());
    }

    [[nodiscard]] QString whenLate() const override { return {}; }
};

} // namespace

const StepKind kSrtCall{"SRT"_L1, [](CheckContext &context, StepWork::Done done) {
                            return std::unique_ptr<StepWork>(new SrtCall(context, std::move(done)));
                        }};

const StepKind kSrtPort{"SRT"_L1, [](CheckContext &context, StepWork::Done done) {
                            return std::unique_ptr<StepWork>(new SrtPort(context, std::move(done)));
                        }};

} // namespace vantle::check

void vantle::silenceSrtLog()
{
    srt_setloghandler(nullptr, [](void *, int, const char *, int, const char *, const char *) {});
}
