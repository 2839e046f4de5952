// SPDX-License-Identifier: MIT
#include "apps/vantlectl/OutputFile.h"
#include "apps/vantlectl/PresetNames.h"
#include "apps/vantlectl/PresetText.h"
#include "apps/vantlectl/serve/Methods.h"

#include "VantlePresets/document/FileAccess.h"
#include "VantlePresets/model/Secrets.h"
#include "VantlePresets/store/PresetImport.h"

namespace vantle::ctl {
namespace {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

/// Relative paths would depend on where the host was started.
fs::path absolutePath(const QString &text)
{
    const fs::path path = fileSystemPath(text);
    if (!path.is_absolute() || text.contains(QChar(0)))
        throw ServeError(ErrorCode::invalidParams, u"a path has to be absolute"_s,
                         ObjectText().text("path", text));
    return path;
}

QByteArray importedFiles(ServedStore &store, const QStringList &texts)
{
    std::vector<fs::path> paths;
    for (const QString &text : texts)
        paths.push_back(absolutePath(text));
    QList<PresetImport> files = readPresetsToImport(paths);
    for (PresetImport &file : files) {
        if (const QString fault = file.preset ? nameFault(file.preset->name()) : QString();
            !fault.isEmpty()) {
            file.preset.reset();
            file.refusal = fault;
        }
    }
    addImportedPresets(store.manager(), files);
    QStringList wanted;
    for (const PresetImport &file : std::as_const(files))
        wanted.append(file.preset ? file.preset->name() : QString());
    store.settle();
    QByteArrayList imported;
    QByteArrayList refused;
    for (qsizetype i = 0; i < files.size(); ++i) {
        PresetImport &file = files[i];
        const auto failure = file.preset ? store.saveFailure(*file.preset) : std::nullopt;
        if (failure)
            file.refusal = *failure;
        else if (file.preset && file.preset->name() != wanted[i])
            file.refusal = u"a file of this name exists"_s; // of another process, or one that holds no preset
        if (file.preset && !file.refusal.isEmpty())
            store.manager().remove(file.preset);
        ObjectText entry;
        entry.text("path", texts[i]);
        if (file.refusal.isEmpty())
            imported.append(entry.text("name", file.preset->name())
                                .text("type", displayName(file.preset->type()))
                                .json());
        else
            refused.append(entry.text("reason", file.refusal).json());
    }
    store.settle();
    return ObjectText().raw("imported", jsonArray(imported)).raw("refused", jsonArray(refused)).json();
}

} // namespace

QByteArray importPresets(ServedStore &store, Params &params)
{
    const auto paths = params.optionalTexts("paths");
    const auto document = params.optionalObject("document");
    const auto name = params.optionalText("name");
    params.requireNoOthers();
    if (paths.has_value() == document.has_value() || document.has_value() != name.has_value())
        throw ServeError(ErrorCode::invalidParams,
                         u"either \"paths\" or \"document\" and \"name\" are wanted"_s);
    if (paths)
        return importedFiles(store, *paths);
    const auto preset = presetOfDocument(*document);
    preset->setName(freeName(store, *name));
    addToStore(store, preset);
    const QByteArray entry =
        ObjectText().text("name", preset->name()).text("type", displayName(preset->type())).json();
    return ObjectText().raw("imported", jsonArray({entry})).raw("refused", "[]").json();
}

QByteArray exportPreset(ServedStore &store, Params &params)
{
    const QString name = params.text("name");
    const QString path = params.text("path");
    const bool withSecrets = params.flag("withSecrets");
    params.requireNoOthers();
    const auto preset = store.preset(name);
    const QByteArray harmless = withoutSecrets(*preset)->encoded(document::Format::pretty);
    const QByteArray document = withSecrets ? preset->encoded(document::Format::pretty) : harmless;
    try {
        const OutputFile file(absolutePath(path));
        if (!file.isReplaced()) // it may block, and the store with it
            throw std::system_error(std::make_error_code(std::errc::invalid_argument), "not a regular file");
        Output unused;
        file.write(document, document == harmless ? OutputFile::Content::open : OutputFile::Content::secret,
                   unused);
    } catch (const std::system_error &error) {
        throw ServeError(ErrorCode::fileFailed, path + ": "_L1 + QString::fromUtf8(error.what()),
                         ObjectText().text("path", path).text("reason", QString::fromUtf8(error.what())));
    }
    return ObjectText().text("name", preset->name()).text("path", path).json();
}

} // namespace vantle::ctl
