// SPDX-License-Identifier: MIT
#include "apps/vantlectl/Command.h"
#include "apps/vantlectl/FieldTable.h"
#include "apps/vantlectl/Table.h"

#include "VantlePresets/document/DocumentWriter.h"
#include "VantlePresets/model/PresetSchema.h"
#include "VantlePresets/model/StreamingType.h"

#include <memory>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;

struct Options
{
    std::string kind;
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

ExitCode fields(const Options &options, Output &out)
{
    const auto type = streamingTypes().fromText(QString::fromStdString(options.kind)).value();
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
