// SPDX-License-Identifier: MIT
#include "fuzz/FuzzTarget.h"

#include "VantlePresets/advice/Advice.h"
#include "VantlePresets/model/HLSVantlePreset.h"
#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "VantlePresets/model/SRTVantlePreset.h"
#include "apps/vantlectl/PresetView.h"

// Reads any bytes as preset documents. A byte that UTF-8 does not have separates two documents, of which the
// second updates the first.

namespace vantle::fuzz {
namespace {

using document::Format;

constexpr char kSeparator = '\xFF';

std::shared_ptr<VantlePreset> decodeAny(QByteArrayView text)
{
    return decodePreset(text);
}

template <class Preset>
std::shared_ptr<VantlePreset> decodeAs(QByteArrayView text)
{
    return Preset::decoded(text);
}

using Decode = std::shared_ptr<VantlePreset> (*)(QByteArrayView);

std::shared_ptr<VantlePreset> decodeOrNull(Decode decode, QByteArrayView text)
{
    try {
        return decode(text);
    } catch (const DecodingError &error) {
        require(!error.description().isEmpty(), "an error has a reason");
        return nullptr;
    }
}

/// What is written reads back as the same preset, and is then written as the same bytes.
void checkWriting(Decode decode, const VantlePreset &preset)
{
    for (const Format format : {Format::compact, Format::pretty}) {
        const QByteArray written = preset.encoded(format);
        const auto read = decodeOrNull(decode, written);
        require(read != nullptr, "what is written can be read");
        require(read->encoded(format) == written, "reading and writing again changes nothing");
    }
}

/// What hosts, the editor and the command line ask of every preset.
void checkQueries(const VantlePreset &preset)
{
    for (const bool reveal : {false, true}) {
        require(!ctl::presetAsText(preset, reveal).isEmpty(), "a preset has a text");
        require(!ctl::presetAsJson(preset, reveal).isEmpty(), "a preset has a listing");
    }
    for (const Advice &advice : adviceFor(preset))
        require(!advice.place.isEmpty() && !advice.text.isEmpty(), "advice has a place and a text");
    for (const auto &video : preset.videoSettings()) {
        require(!video->displayName().isEmpty() && !video->aggregateDescription().isEmpty(),
                "a rendition has texts");
        require(!video->variantName().contains(u' '), "a variant's name has no blanks");
    }
    for (const auto &track : preset.audioSettings())
        require(!track->displayName().isEmpty() && !track->aggregateDescription().isEmpty(),
                "a track has texts");
}

/// The document less the identifier, which its kind writes last, if at all; no update takes that over.
QByteArray withoutIdentifier(const VantlePreset &preset)
{
    QByteArray document = preset.encoded(Format::compact);
    const QByteArray identifier = ",\"id\":\"" + preset.uuid().toByteArray(QUuid::WithoutBraces) + "\"}";
    if (document.endsWith(identifier))
        document.chop(identifier.size());
    return document;
}

void checkUpdate(const std::shared_ptr<VantlePreset> &preset, const VantlePreset &source)
{
    const QByteArray before = withoutIdentifier(*preset);
    const QByteArray wanted = withoutIdentifier(source);
    const bool isUpdated = updatePreset(*preset, source);
    require(withoutIdentifier(*preset) == (isUpdated ? wanted : before),
            "an update takes over all that the document keeps, or nothing");
    checkWriting(decodeAny, *preset);
}

void checkDocument(QByteArrayView text)
{
    constexpr Decode kClasses[] = {decodeAs<VantlePreset>, decodeAs<HLSVantlePreset>,
                                   decodeAs<RTMPVantlePreset>, decodeAs<SRTVantlePreset>};
    for (const Decode decode : kClasses) {
        if (const auto preset = decodeOrNull(decode, text))
            checkWriting(decode, *preset);
    }
}

void run(QByteArrayView input)
{
    const qsizetype end = input.indexOf(kSeparator);
    const QByteArrayView first = end < 0 ? input : input.first(end);
    checkDocument(first);
    const auto preset = decodeOrNull(decodeAny, first);
    if (!preset)
        return;
    checkWriting(decodeAny, *preset);
    checkQueries(*preset);
    (void)adviceForDocument(first);
    if (end >= 0) {
        if (const auto source = decodeOrNull(decodeAny, input.sliced(end + 1)))
            checkUpdate(preset, *source);
    } else {
        for (const StreamingType type : streamingTypes().values())
            checkUpdate(makePreset(type, QStringLiteral("A")), *preset);
    }
}

} // namespace
} // namespace vantle::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    vantle::fuzz::run({reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)});
    return 0;
}
