// SPDX-License-Identifier: MIT
#include "VantlePresets/check/Addresses.h"

#include <QtNetwork/QHostInfo>

namespace vantle::check {
namespace {

using namespace Qt::StringLiterals;

class NameLookUp : public StepWork
{
public:
    using StepWork::StepWork;
    ~NameLookUp() override
    {
        if (m_id >= 0)
            QHostInfo::abortHostLookup(m_id);
    }

    void start() override
    {
        if (const QHostAddress address(target().host); !address.isNull()) {
            context().addresses = {address};
            good(target().host + " is an address"_L1);
            return;
        }
        m_id = QHostInfo::lookupHost(target().host, this, [this](const QHostInfo &info) { take(info); });
    }

    [[nodiscard]] QString whenLate() const override
    {
        return "no name server has answered for "_L1 + target().host;
    }

private:
    void take(const QHostInfo &info)
    {
        m_id = -1;
        context().addresses = info.addresses();
        if (info.error() != QHostInfo::NoError || info.addresses().isEmpty()) {
            failed(target().host + ": "_L1 + info.errorString());
            return;
        }
        QStringList texts;
        for (const QHostAddress &address : info.addresses())
            texts.append(address.toString());
        good(target().host + " is "_L1 + texts.join(", "_L1));
    }

    int m_id = -1;
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
    const auto left = context().addresses.size() - m_asked;
    ++m_asked;
    if (left > 1)
        m_share.start(m_left / left);
    ask(context().addresses[m_asked - 1]);
}

} // namespace vantle::check
