// SPDX-License-Identifier: MIT
#include "apps/vantlectl/AdviceLines.h"
#include "apps/vantlectl/InputFile.h"
#include "apps/vantlectl/OutputFile.h"
#include "apps/vantlectl/PresetText.h"
#include "apps/vantlectl/StoreSession.h"

#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/model/Secrets.h"
#include "VantlePresets/store/NameRules.h"
#include "VantlePresets/store/PresetImport.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

struct ImportOptions : StoreOptions
{
    std::optional<std::string> name;
    std::vector<std::string> files;
};

struct ExportOptions : StoreOptions
{
    std::string name;
    std::string file;
    bool withSecrets = false;
};

/// The name that was asked for, or none.
QString wantedName(const ImportOptions &options)
{
    const bool isOne = options.files.size() == 1;
    if (!options.name) {
        if (std::find(options.files.begin(), options.files.end(), kStandardStream) != options.files.end())
            throw Refusal(u"what comes from standard input needs --name"_s);
        return {};
    }
    const QString name = trimmedName(QString::fromStdString(*options.name));
    if (!isOne)
        throw Refusal(u"--name is for one file"_s);
    if (name.isEmpty() || name.contains(u'/') || name.startsWith(u'.'))
        throw Refusal(u"This name is invalid or already taken."_s);
    return name;
}

QList<PresetImport> readFiles(const ImportOptions &options, const QString &name)
{
    QList<PresetImport> files;
    if (options.files.front() == kStandardStream) {
        try {
            files.append({kStandardStream, readPresetArgument(kStandardStream), {}, "/proc/self/fd/0"});
        } catch (const std::exception &error) {
            files.append({kStandardStream, nullptr, Failure(error).message()});
        }
    } else {
        files = readPresetsToImport({options.files.begin(), options.files.end()});
    }
    if (!name.isEmpty() && files.front().preset)
        files.front().preset->setName(name);
    for (PresetImport &file : files) {
        if (file.preset && file.preset->name().startsWith(u'.')) {
            file.preset.reset();
            file.refusal = u"a name that begins with \".\" would be hidden; name it with --name"_s;
        }
    }
    return files;
}

ExitCode import(const ImportOptions &options, Output &out)
{
    const QString name = wantedName(options);
    StoreSession session(options);
    PresetsManager &manager = session.manager();
    bool isComplete = true;
    QList<PresetImport> files = readFiles(options, name);
    addImportedPresets(manager, files);
    PresetsList imported;
    QStringList wanted;
    for (const PresetImport &file : std::as_const(files)) {
        if (file.preset) {
            imported.append(file.preset);
            wanted.append(file.preset->name());
            tellAdviceOnFile(file.path);
        } else {
            complain(shown(file.path) + ": "_L1 + file.refusal);
            isComplete = false;
        }
    }
    const ExitCode code = session.finish();
    for (qsizetype i = 0; i < imported.size(); ++i) {
        printPreset(out, *imported[i], options.json);
        isComplete = isComplete && imported[i]->name() == wanted[i];
    }
    return isComplete ? code : ExitCode::failed;
}

ExitCode exportPreset(const ExportOptions &options, Output &out)
{
    StoreSession session(options);
    const auto preset = session.preset(options.name);
    const QByteArray harmless = withoutSecrets(*preset)->encoded(document::Format::pretty);
    const QByteArray document = options.withSecrets ? preset->encoded(document::Format::pretty) : harmless;
    bool isReplaced = false;
    try {
        const OutputFile file(options.file);
        isReplaced = file.isReplaced();
        using Content = OutputFile::Content;
        file.write(document, document == harmless ? Content::open : Content::secret, out);
    } catch (const OutputError &) {
        throw;
    } catch (const std::system_error &error) {
        throw Refusal(shown(options.file) + ": "_L1 + QString::fromUtf8(error.what()));
    }
    if (options.json && isReplaced)
        printPreset(out, *preset, true);
    return ExitCode::good;
}

} // namespace

void addTransferCommands(CLI::App &app, Command &chosen)
{
    CLI::App *const importing = app.add_subcommand("import", "Add presets from files, named after them");
    const auto imported = std::make_shared<ImportOptions>();
    imported->addTo(*importing);
    importing->add_option("FILE", imported->files, "Preset files, or - for standard input")->required();
    importing->add_option("--name", imported->name, "Its name, in place of the file's");
    importing->callback([imported, &chosen] {
        chosen = [imported](Output &out) { return guarded([&] { return import(*imported, out); }); };
    });

    CLI::App *const exporting = app.add_subcommand("export", "Write a preset to a file, pretty-printed");
    const auto exported = std::make_shared<ExportOptions>();
    exported->readsOnly = true;
    exported->addTo(*exporting);
    exporting->add_option("NAME", exported->name, "The preset")->required();
    exporting->add_option("FILE", exported->file, "The file to write, or - for standard output")->required();
    exporting->add_flag("--with-secrets", exported->withSecrets,
                        "Keep stream key and password, which are left empty otherwise");
    exporting->callback([exported, &chosen] {
        chosen = [exported](Output &out) { return guarded([&] { return exportPreset(*exported, out); }); };
    });
}

} // namespace vantle::ctl
