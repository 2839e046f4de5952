// SPDX-License-Identifier: MIT
#include "VantlePresets/advice/ServiceConnection.h"

#include "VantlePresets/model/ServiceIngest.h"
#include "VantlePresets/model/StreamAddress.h"

#include <algorithm>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

bool isOwnApplication(const RTMPVantlePreset &preset)
{
    const auto ingests = serviceIngests();
    return std::any_of(ingests.begin(), ingests.end(), [&](const ServiceIngest &ingest) {
        return ingest.type == preset.type() && ingest.application == preset.application();
    });
}

} // namespace

bool setServiceConnection(VantlePreset &preset)
{
    auto *const push = dynamic_cast<RTMPVantlePreset *>(&preset);
    if (!push || !firstIngestOf(push->type()))
        return false;
    std::optional<StreamAddress> address = StreamAddress::parse(push->streamingURL());
    const ServiceIngest *const named = address ? ingestOfHost(address->host) : nullptr;
    const bool isOwnHost = named && named->type == push->type();
    const bool isBackup = push->isBackup() || (isOwnHost && named->isBackup);
    const ServiceIngest &best = *bestIngestOf(push->type(), isBackup);
    push->setStreamingProtocol(best.protocol);
    push->setPortNumber(best.port);

    const bool isEmpty = push->streamingURL().isEmpty();
    if (!isEmpty && !isOwnHost)
        return true;
    if (isEmpty)
        address = StreamAddress{};
    if (!address->scheme.isEmpty())
        address->scheme = u"rtmps"_s;
    address->port.clear();
    address->host = best.host;
    push->setStreamingURL(address->text());
    const bool namesApplication = !address->path.isEmpty();
    if (!namesApplication && (push->application().isEmpty() || isOwnApplication(*push)))
        push->setApplication(best.application);
    return true;
}

} // namespace vantle
