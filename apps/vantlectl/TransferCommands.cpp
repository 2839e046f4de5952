// SPDX-License-Identifier: MIT
#include "apps/vantlectl/AdviceLines.h"
#include "apps/vantlectl/InputFile.h"
#include "apps/vantlectl/NamedPreset.h"
#include "apps/vantlectl/OutputFile.h"
#include "apps/vantlectl/PresetNames.h"
#include "apps/vantlectl/PresetText.h"
#include "apps/vantlectl/StoreSession.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/model/PresetFactory.h"
#include "VantlePresets/model/Secrets.h"
#include "VantlePresets/store/PresetImport.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <utility>

#include <sys/stat.h>

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

struct ImportOptions : StoreOptions
{
    std::optional<std::string> name;
    std::vector<std::string> files;
    bool replace = false;
};

struct ExportOptions : StoreOptions
{
    std::string name;
    std::string file;
    std::string folder; ///< "" for one preset
    bool withSecrets = false;
};

/// The files that the arguments stand for. Throws Refusal for a folder that has none.
std::vector<fs::path> filesToImport(const ImportOptions &options)
{
    std::vector<fs::path> files;
    for (const fs::path path : options.files) {
        try {
            std::ranges::copy(filesOfArgument(path), std::back_inserter(files));
        } catch (const fs::filesystem_error &error) {
            throw Refusal(shown(path) + ": "_L1 + QString::fromStdString(error.code().message()));
        }
    }
    if (files.empty())
        throw Refusal("no preset files in "_L1 + shown(options.files.front()));
    if (options.name && files.size() != 1)
        throw Refusal(u"--name is for one file"_s);
    return files;
}

QList<PresetImport> readFiles(const std::vector<fs::path> &paths, const QString &name)
{
    QList<PresetImport> files;
    if (paths.front() == kStandardStream) {
        try {
            files.append({kStandardStream, readPresetArgument(kStandardStream), {}, "/proc/self/fd/0"});
        } catch (const std::exception &error) {
            files.append({kStandardStream, nullptr, Failure(error).message()});
        }
    } else {
        files = readPresetsToImport(paths);
    }
    if (!name.isEmpty() && files.front().preset)
        files.front().preset->setName(name);
    for (PresetImport &file : files) {
        if (!file.preset)
            continue;
        QString fault = nameFault(file.preset->name());
        if (name.isEmpty() && !QByteArrayView(file.path.stem().native()).isValidUtf8())
            fault = u"its name is no UTF-8"_s;
        if (!fault.isEmpty()) {
            file.preset.reset();
            file.refusal = fault + "; name it with --name"_L1;
        }
    }
    return files;
}

/// A closed file stays closed: in a folder that is shared, its user may not expect that.
void tellOfClosedFile(const VantlePreset &preset, const StoreOptions &options)
{
    const fs::path path = fileInStore(preset.name().toStdString(), options);
    struct stat file = {};
    struct stat folder = {};
    if (::stat(path.c_str(), &file) == 0 && ::stat(path.parent_path().c_str(), &folder) == 0 &&
        (file.st_mode & S_IRGRP) == 0 && (folder.st_mode & S_IWGRP) != 0)
        remark("note: "_L1 + escapedControls(preset.name()) +
               ": its file is closed to the group, as what was imported is; chmod g+rw opens it"_L1);
}

/// Of the files of the folder that can't be read, which have told why.
QStringList unreadableNames(const PresetsManager &manager)
{
    QStringList names;
    for (const PresetsFailure &failure : manager.failures()) {
        if (failure.operation == PresetsFailure::Operation::load)
            names.append(failure.name);
    }
    return names;
}

void tellOfUnreadable(const PresetImport &import, bool replaces)
{
    const QString file = escapedControls(import.preset->name()) + ".json"_L1;
    if (import.isOverBrokenFile)
        remark("note: "_L1 + file + ", which holds no preset, is replaced"_L1);
    else if (replaces)
        complain(file +
                 " stays, since nothing can be read from it, and what is imported gets another name"_L1);
    else
        complain(file +
                 " stays, and what is imported gets another name; --replace replaces a file that holds "
                 "no preset"_L1);
}

ExitCode import(const ImportOptions &options, Output &out)
{
    const QString name = options.name ? nameForPreset(*options.name) : QString();
    QList<PresetImport> files = readFiles(filesToImport(options), name);
    StoreSession session(options);
    const QStringList unreadable = unreadableNames(session.manager());
    addImportedPresets(session.manager(), files, options.replace ? NameClash::replace : NameClash::refuse);
    bool isComplete = true;
    QStringList wanted;
    for (const PresetImport &file : std::as_const(files)) {
        wanted.append(file.preset ? file.preset->name() : QString());
        if (file.preset) {
            if (unreadable.contains(wanted.last()))
                tellOfUnreadable(file, options.replace);
            tellAdviceOnImport(*file.preset, file.path);
        } else {
            complain(shown(file.path) + ": "_L1 + file.refusal);
            isComplete = false;
        }
    }
    const ExitCode code = session.finish();
    for (qsizetype i = 0; i < files.size(); ++i) {
        const auto &preset = files[i].preset;
        if (!preset || session.manager().hasUnsavedEdits(preset))
            continue;
        reportPreset(out, *preset, options.json);
        tellOfClosedFile(*preset, options);
        isComplete = isComplete && preset->name() == wanted[i];
    }
    return isComplete ? code : ExitCode::failed;
}

/// A preset's document as it is handed on.
struct Exported
{
    Exported(const VantlePreset &preset, bool withSecrets)
        : document(withoutSecrets(preset)->encoded(document::Format::pretty))
    {
        if (!withSecrets)
            return;
        const QByteArray whole = preset.encoded(document::Format::pretty);
        hasSecrets = whole != document;
        document = whole;
    }

    QByteArray document;
    bool hasSecrets = false;
};

ExitCode exportPreset(const ExportOptions &options, Output &out)
{
    StoreSession session(options);
    const auto preset = session.preset(options.name);
    const Exported exported(*preset, options.withSecrets);
    bool isReplaced = false;
    try {
        const OutputFile file(options.file);
        isReplaced = file.isReplaced();
        using Content = OutputFile::Content;
        file.write(exported.document, exported.hasSecrets ? Content::secret : Content::open, out);
    } catch (const OutputError &) {
        throw;
    } catch (const std::system_error &error) {
        throw Refusal(shown(options.file) + ": "_L1 + QString::fromUtf8(error.what()));
    }
    if (options.json && isReplaced)
        reportPreset(out, *preset, true);
    return ExitCode::good;
}

/// The folder of a backup, which is made when it is not there: with secrets, for the user alone.
class BackupFolder
{
public:
    /// Throws Refusal.
    BackupFolder(const fs::path &path, bool withSecrets, const fs::path &presetsFolder) : m_path(path)
    {
        constexpr mode_t kOwner = S_IRWXU;
        constexpr mode_t kAll = S_IRWXU | S_IRWXG | S_IRWXO; // less the umask
        const auto refuse = [&](const QString &reason) { throw Refusal(shown(path) + ": "_L1 + reason); };
        const bool isMade = ::mkdir(path.c_str(), withSecrets ? kOwner : kAll) == 0;
        struct stat status = {};
        if ((!isMade && errno != EEXIST) || ::stat(path.c_str(), &status) != 0)
            refuse(QString::fromStdString(std::generic_category().message(errno)));
        if (!S_ISDIR(status.st_mode))
            refuse(u"Not a directory"_s);
        std::error_code ignored;
        if (fs::equivalent(path, presetsFolder, ignored))
            refuse(u"these are the presets themselves"_s);
        m_isOpen = (status.st_mode & (S_IRWXG | S_IRWXO)) != 0;
        if (m_isOpen && withSecrets)
            remark("note: others may enter %1: files with secrets are for you alone there, whatever the "
                   "presets' modes"_L1.arg(shown(path)));
    }

    /// Writes a file like that of the preset: closed, to others, where the folder does not do that. Throws
    /// std::system_error.
    void write(const Exported &exported, const fs::path &presetFile, Output &out) const
    {
        const OutputFile file(m_path / presetFile.filename());
        if (exported.hasSecrets && m_isOpen)
            file.write(exported.document, OutputFile::Content::secret, out);
        else
            file.writeCopy(exported.document, presetFile, out);
    }

private:
    const fs::path m_path;
    bool m_isOpen = true;
};

ExitCode exportAll(const ExportOptions &options, Output &out)
{
    StoreSession session(options);
    const fs::path presetsFolder = fileSystemPath(session.manager().presetsFolderURL()->toLocalFile());
    const BackupFolder folder(options.folder, options.withSecrets, presetsFolder);
    // A file that can't be read is one that the backup lacks; the store has told which.
    ExitCode code = session.manager().failures().isEmpty() ? ExitCode::good : ExitCode::failed;
    for (const auto &preset : session.manager().presets()) {
        const fs::path file = fileInStore(preset->name().toStdString(), options);
        try {
            folder.write(Exported(*preset, options.withSecrets), file, out);
            if (options.json)
                reportPreset(out, *preset, true);
        } catch (const OutputError &) {
            throw;
        } catch (const std::system_error &error) {
            complain(shown(fs::path(options.folder) / file.filename()) + ": "_L1 +
                     QString::fromUtf8(error.what()));
            code = ExitCode::failed;
        }
    }
    return code;
}

void addImportCommand(CLI::App &app, Command &chosen)
{
    CLI::App *const command = app.add_subcommand("import", "Add presets from files, named after them");
    const auto options = std::make_shared<ImportOptions>();
    options->makesFolder = true;
    options->addTo(*command);
    command
        ->add_option("FILE", options->files,
                     "Preset files, folders with *.json files, or - for standard input")
        ->required();
    command->add_option("--name", options->name, "Its name, in place of the file's");
    command->add_flag("--replace", options->replace,
                      "Replace presets of these names, and files that hold none; secrets that a file leaves "
                      "out stay");
    command->callback([options, &chosen] {
        const bool isInput = std::count(options->files.begin(), options->files.end(), kStandardStream) > 0;
        if (isInput && !options->name)
            throw CLI::ValidationError("what comes from standard input needs --name");
        if (options->name && options->files.size() != 1)
            throw CLI::ValidationError("--name is for one file");
        chosen = [options](Output &out) { return guarded([&] { return import(*options, out); }); };
    });
}

void addExportCommand(CLI::App &app, Command &chosen)
{
    CLI::App *const command =
        app.add_subcommand("export", "Write a preset, or all of them, to files, pretty-printed");
    const auto options = std::make_shared<ExportOptions>();
    options->addTo(*command);
    CLI::Option *const name = command->add_option("NAME", options->name, "The preset");
    command->add_option("FILE", options->file, "The file to write, or - for standard output");
    command
        ->add_option("--all", options->folder,
                     "Write all presets into this folder, as import takes them back")
        ->excludes(name);
    command->add_flag("--with-secrets", options->withSecrets,
                      "Keep stream key and password, which are left empty otherwise");
    command->callback([options, &chosen] {
        if (options->folder.empty() && (options->name.empty() || options->file.empty()))
            throw CLI::RequiredError("NAME and FILE, or --all");
        chosen = [options](Output &out) {
            return guarded([&] {
                return options->folder.empty() ? exportPreset(*options, out) : exportAll(*options, out);
            });
        };
    });
}

} // namespace

void addTransferCommands(CLI::App &app, Command &chosen)
{
    addImportCommand(app, chosen);
    addExportCommand(app, chosen);
}

} // namespace vantle::ctl
