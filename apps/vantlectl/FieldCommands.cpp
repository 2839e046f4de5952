// SPDX-License-Identifier: MIT
#include "apps/vantlectl/Command.h"
#include "apps/vantlectl/FieldTable.h"
#include "apps/vantlectl/Table.h"

#include "VantlePresets/document/DocumentWriter.h"
#include "VantlePresets/model/PresetSchema.h"
#include "VantlePresets/model/StreamingType.h"
#include "VantlePresets/settings/VideoSettings.h"

#include <QtCore/QRegularExpression>

#include <algorithm>
#include <memory>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

struct Options
{
    std::string kind;
    std::string field; ///< "" for all
    bool namesOnly = false;
    bool json = false;
};

QString valuesText(const Field &field)
{
    if (field.type() == Field::Type::choice)
        return field.choices().join(", "_L1);
    QStringList parts;
    if (field.minimum() && field.maximum())
        parts.append(u"%1 to %2"_s.arg(*field.minimum()).arg(*field.maximum()));
    if (!field.unit().isEmpty())
        parts.append(field.unit());
    return parts.join(u' ');
}

/// What can be written for a field, as far as it can be listed.
QStringList listedValues(const AssignableField &assignable)
{
    if (assignable.field.type() == Field::Type::boolean)
        return {u"true"_s, u"false"_s};
    if (assignable.path != "videoSettings.0.profile"_L1)
        return assignable.field.choices();
    QStringList names;
    const auto rendition = VideoSettings::create();
    for (const H264Profile &profile : rendition->availableH264Profiles())
        names.append(profile.displayName());
    for (const HEVCProfile &profile : rendition->availableHEVCProfiles())
        names.append(profile.displayName());
    return names;
}

/// Of the one field, wherever in its list it is.
ExitCode values(const Options &options, StreamingType type, Output &out)
{
    static const QRegularExpression position(u"[.\\[]\\d+\\]?\\."_s);
    const QString path = QString::fromStdString(options.field).replace(position, u".0."_s);
    const QList<AssignableField> list = assignableFields(type);
    const auto found =
        std::find_if(list.begin(), list.end(), [&](const AssignableField &one) { return one.path == path; });
    if (found == list.end()) {
        complain(displayName(type) + " presets have no field of this name"_L1);
        return ExitCode::failed;
    }
    for (const QString &value : listedValues(*found))
        out.line(value);
    return ExitCode::good;
}

ExitCode fields(const Options &options, Output &out)
{
    const auto type = streamingTypes().fromText(QString::fromStdString(options.kind)).value();
    if (!options.field.empty())
        return values(options, type, out);
    Table table(QString{});
    for (const AssignableField &assignable : assignableFields(type)) {
        if (options.json) {
            out.bytes(document::encode(document::Format::compact, [&](document::DocumentWriter &writer) {
                writeField(writer, assignable);
            }));
            out.line();
        } else if (options.namesOnly) {
            out.line(assignable.path);
        } else {
            table.add({assignable.path, assignable.field.label(), fieldTypeText(assignable.field),
                       valuesText(assignable.field)});
        }
    }
    for (const QString &line : table.lines())
        out.line(line);
    return ExitCode::good;
}

} // namespace

void addFieldCommands(CLI::App &app, Command &chosen)
{
    CLI::App *const listing = app.add_subcommand("fields", "List what can be set in presets of a kind");
    const auto options = std::make_shared<Options>();
    listing->add_option("KIND", options->kind, "HLS, YouTube, RTMP, Wowza, Facebook or SRT")
        ->required()
        ->check(kindLabel());
    listing->add_flag("--names", options->namesOnly, "Names alone, one a line");
    listing->add_option("--values", options->field, "The values that the field can have, one a line");
    listing->add_flag("--json", options->json, "For machines: one JSON object per line");
    listing->callback(
        [options, &chosen] { chosen = [options](Output &out) { return fields(*options, out); }; });

    CLI::App *const schema = app.add_subcommand("schema", "Print the JSON schema of preset files");
    schema->callback([&chosen] {
        chosen = [](Output &out) {
            out.bytes(presetSchema());
            out.line();
            return ExitCode::good;
        };
    });
}

} // namespace vantle::ctl
