// SPDX-License-Identifier: MIT
#include "apps/vantlectl/AdviceLines.h"

#include "apps/vantlectl/InputFile.h"
#include "apps/vantlectl/PresetText.h"

#include "VantlePresets/advice/ServiceConnection.h"
#include "VantlePresets/document/DocumentWriter.h"

namespace vantle::ctl {

using namespace Qt::StringLiterals;

namespace {

/// What a function says of a file's document; nothing when the file can't be read.
QList<Advice> ofDocument(const std::filesystem::path &file, QList<Advice> (*judge)(QByteArrayView))
{
    try {
        return judge(readDocumentArgument(file));
    } catch (const std::exception &) {
        return {}; // whoever reads the preset tells why
    }
}

} // namespace

QString adviceLine(const Advice &advice)
{
    return adviceSeverities().text(advice.severity) + ": "_L1 + advice.place + ": "_L1 + advice.text;
}

QList<Advice> adviceOnFile(const std::filesystem::path &file)
{
    return ofDocument(file, adviceForDocument);
}

void writeAdvice(document::DocumentWriter &writer, const QList<Advice> &advice)
{
    writer.key("advice");
    writer.beginArray();
    for (const Advice &piece : advice) {
        writer.beginObject();
        writer.string("severity", adviceSeverities().text(piece.severity));
        writer.string("place", piece.place);
        writer.string("text", piece.text);
        writer.string("source", piece.source);
        writer.endObject();
    }
    writer.endArray();
}

QList<Advice> adviceOn(const VantlePreset &preset, const std::filesystem::path &file)
{
    return ofDocument(file, adviceForTexts) + adviceFor(preset);
}

void tellAdvice(const VantlePreset &preset, const std::filesystem::path &file)
{
    for (const Advice &piece : adviceOn(preset, file))
        remark(adviceLine(piece));
}

void tellAdviceOnImport(const VantlePreset &preset, const std::filesystem::path &file)
{
    // The file may leave out secrets that the preset has; what it misspells, the preset has lost.
    const bool isMisread = !ofDocument(file, adviceForTexts).isEmpty();
    for (const Advice &piece : isMisread ? adviceOnFile(file) : adviceFor(preset))
        remark(shown(file) + ": "_L1 + adviceLine(piece));
}

void setForService(VantlePreset &preset)
{
    if (!setServiceConnection(preset))
        throw Refusal(displayName(preset.type()) + " presets belong to no service; nothing was changed"_L1);
}

} // namespace vantle::ctl
