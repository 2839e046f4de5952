// SPDX-License-Identifier: MIT
#include "VantlePresets/check/Addresses.h"

#include <QtCore/QUrl>

#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include <netdb.h>
#include <sys/socket.h>

namespace vantle::check {
namespace {

using namespace Qt::StringLiterals;

/// What a look-up's thread finds.
struct Found
{
    int error = 0; ///< getaddrinfo()'s
    QList<QHostAddress> addresses;
};

Found lookUp(const QByteArray &name)
{
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM; // else each address comes once for each kind of socket
    hints.ai_flags = AI_ADDRCONFIG;
    addrinfo *list = nullptr;
    Found found;
    found.error = ::getaddrinfo(name.constData(), nullptr, &hints, &list);
    if (found.error != 0)
        return found;
    for (const addrinfo *entry = list; entry != nullptr; entry = entry->ai_next)
        found.addresses.append(QHostAddress(entry->ai_addr));
    ::freeaddrinfo(list);
    return found;
}

QString reasonOf(int error)
{
    switch (error) {
    case EAI_NONAME:
        return u"there is no host of this name"_s;
    case EAI_AGAIN:
        return u"no name server could be asked"_s;
    default:
        return QString::fromLocal8Bit(::gai_strerror(error));
    }
}

/// Nothing ends getaddrinfo() before it gives up by itself, and Qt's own look-up makes the process wait for
/// that when it quits. So each look-up has a thread of its own, which is left behind when its step goes
/// first; it uses nothing of Qt's that quitting takes away.
class NameLookUp : public StepWork
{
public:
    using StepWork::StepWork;
    ~NameLookUp() override
    {
        const std::lock_guard lock(m_link->mutex);
        m_link->step = nullptr;
    }

    void start() override
    {
        if (const QHostAddress address(target().host); !address.isNull()) {
            context().addresses = {address};
            good(target().host + " is an address"_L1);
            return;
        }
        const QByteArray name = QUrl::toAce(target().host);
        if (name.isEmpty()) {
            failed(target().host + ": is no host name"_L1);
            return;
        }
        m_link->step = this;
        try {
            std::thread([link = m_link, name] {
                Found found = lookUp(name);
                const std::lock_guard lock(link->mutex);
                if (NameLookUp *const step = link->step)
                    QMetaObject::invokeMethod(
                        step, [step, found] { step->take(found); }, Qt::QueuedConnection);
            }).detach();
        } catch (const std::system_error &error) {
            failed("can't make a thread: "_L1 + QString::fromLocal8Bit(error.what()));
        }
    }

    [[nodiscard]] QString whenLate() const override
    {
        return "no name server has answered for "_L1 + target().host;
    }

private:
    /// Between the step and its thread. The step is set while it lives.
    struct Link
    {
        std::mutex mutex;
        NameLookUp *step = nullptr;
    };

    void take(const Found &found)
    {
        context().addresses = found.addresses;
        if (found.addresses.isEmpty()) {
            failed(target().host + ": "_L1 + reasonOf(found.error));
            return;
        }
        QStringList texts;
        for (const QHostAddress &address : found.addresses)
            texts.append(address.toString());
        good(target().host + " is "_L1 + texts.join(", "_L1));
    }

    std::shared_ptr<Link> m_link = std::make_shared<Link>();
};

} // namespace

const StepKind kNameLookUp{"name look-up"_L1, [](CheckContext &context, StepWork::Done done) {
                               return std::unique_ptr<StepWork>(new NameLookUp(context, std::move(done)));
                           }};

QString shownPlace(const QHostAddress &address, quint16 port)
{
    return address.toString() + " port "_L1 + QString::number(port);
}

AddressWork::AddressWork(CheckContext &context, Done done)
    : StepWork(context, std::move(done)), m_left(context.limit)
{
    m_share.setSingleShot(true);
    connect(&m_share, &QTimer::timeout, this, [this] { failedHere(whenSilent()); });
}

void AddressWork::start()
{
    askNext();
}

QString AddressWork::whenLate() const
{
    return here() + ": "_L1 + whenSilent();
}

QString AddressWork::here() const
{
    return shownPlace(context().addresses[m_asked - 1], target().port);
}

void AddressWork::failedHere(const QString &reason)
{
    if (std::exchange(m_isGivenUp, true))
        return; // the share ended in the same turn of the event loop
    if (m_asked == context().addresses.size()) {
        m_share.stop();
        failed(here() + ": "_L1 + reason);
        return;
    }
    if (m_share.isActive())
        m_left -= m_share.intervalAsDuration() - m_share.remainingTimeAsDuration();
    else
        m_left -= m_share.intervalAsDuration();
    m_share.stop();
    // Whoever reports may still be at work with the address.
    QTimer::singleShot(0, this, [this] { askNext(); });
}

void AddressWork::askNext()
{
    // The address that was given up may have answered in the meantime.
    if (hasEnded())
        return;
    const auto left = context().addresses.size() - m_asked;
    ++m_asked;
    m_isGivenUp = false;
    if (left > 1)
        m_share.start(m_left / left);
    ask(context().addresses[m_asked - 1]);
}

} // namespace vantle::check
