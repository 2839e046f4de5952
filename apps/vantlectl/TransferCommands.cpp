// SPDX-License-Identifier: MIT
#include "apps/vantlectl/OutputFile.h"
#include "apps/vantlectl/PresetText.h"
#include "apps/vantlectl/StoreSession.h"
#include "apps/vantlectl/encoder/StreamAddress.h"

#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/model/RTMPVantlePreset.h"
#include "VantlePresets/model/SRTVantlePreset.h"
#include "VantlePresets/store/PresetImport.h"

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

struct ImportOptions : StoreOptions
{
    std::vector<std::string> files;
};

struct ExportOptions : StoreOptions
{
    std::string name;
    std::string file;
    bool withSecrets = false;
};

ExitCode import(const ImportOptions &options, Output &out)
{
    StoreSession session(options);
    PresetsManager &manager = session.manager();
    bool isComplete = true;
    QList<PresetImport> files = readPresetsToImport({options.files.begin(), options.files.end()});
    addImportedPresets(manager, files);
    PresetsList imported;
    QStringList wanted;
    for (const PresetImport &file : std::as_const(files)) {
        if (file.preset) {
            imported.append(file.preset);
            wanted.append(presetNameFromPath(QString::fromStdString(file.path.native())));
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

/// A copy without stream key and password, those in its address included: empty where the document requires
/// them.
std::shared_ptr<VantlePreset> withoutSecrets(const VantlePreset &preset)
{
    auto copy = decodePreset(preset.encoded(document::Format::compact));
    if (auto *const rtmp = dynamic_cast<RTMPVantlePreset *>(copy.get())) {
        rtmp->setStreamKey({});
        rtmp->setAuthenticationPassword({});
        rtmp->setStreamingURL(addressWithoutSecrets(rtmp->streamingURL()));
    } else if (auto *const srt = dynamic_cast<SRTVantlePreset *>(copy.get())) {
        srt->setStreamingURL(addressWithoutSecrets(srt->streamingURL()));
    }
    return copy;
}

ExitCode exportPreset(const ExportOptions &options, Output &out)
{
    StoreSession session(options);
    const auto preset = session.preset(options.name);
    const QByteArray document =
        (options.withSecrets ? preset : withoutSecrets(*preset))->encoded(document::Format::pretty);
    if (options.file == "-") {
        out.bytes(document);
        out.line();
        return ExitCode::good;
    }
    const fs::path target = options.file;
    try {
        requireFileOrNothing(target);
        using Access = StagedFile::Access;
        StagedFile file(target, document, options.withSecrets ? Access::ownerOnly : Access::asBefore);
        file.commit();
        file.syncFolder();
    } catch (const std::system_error &error) {
        throw Refusal(shown(target) + ": "_L1 + QString::fromUtf8(error.what()));
    }
    if (options.json)
        printPreset(out, *preset, true);
    return ExitCode::good;
}

} // namespace

void addTransferCommands(CLI::App &app, Command &chosen)
{
    CLI::App *const importing = app.add_subcommand("import", "Add presets from files, named after them");
    const auto imported = std::make_shared<ImportOptions>();
    imported->addTo(*importing);
    importing->add_option("FILE", imported->files, "Preset files")->required();
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
