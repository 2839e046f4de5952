// SPDX-License-Identifier: MIT
#include "apps/support/StandardStreams.h"
#include "apps/support/StopOnSignal.h"
#include "base/NativePath.h"
#include "watchfolder/VRXWatchFolder.h"

#include <CLI/CLI.hpp>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QUtf8StringView>

#include <algorithm>
#include <cstdio>
#include <system_error>

using namespace vantle;

namespace {

constexpr int kWrongUsage = 2;

struct Options
{
    std::string folder;
    bool deep = false;
    double latency = 1.0;
    std::vector<std::string> extensions;
    std::vector<std::string> types;
    bool includeSelf = false;
    std::string backend = "auto";
    bool json = false;
};

const std::map<std::string, WatchBackend> kBackends = {{"auto", WatchBackend::Automatic},
                                                       {"fanotify", WatchBackend::Fanotify},
                                                       {"inotify", WatchBackend::Inotify}};

QStringList toStrings(const std::vector<std::string> &texts)
{
    QStringList strings;
    for (const std::string &text : texts)
        strings.append(QString::fromStdString(text));
    return strings;
}

bool canBePrinted(QUtf8StringView character)
{
    if (!character.isValidUtf8())
        return false;
    const QString text = character.toString();
    return std::none_of(text.begin(), text.end(), [](QChar c) {
        return c == u'\\' || c.category() == QChar::Other_Control || c.category() == QChar::Other_Format ||
               c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
    });
}

/// A path on one line that says nothing to the terminal: bytes that are not UTF-8, control and format
/// characters and backslashes come as \xNN.
std::string printable(std::string_view path)
{
    std::string text;
    while (!path.empty()) {
        std::size_t size = 1;
        while (size < path.size() && (static_cast<unsigned char>(path[size]) & 0xC0) == 0x80)
            ++size; // to the next character's first byte
        const std::string_view character = path.substr(0, size);
        if (canBePrinted(QUtf8StringView(character.data(), static_cast<qsizetype>(size)))) {
            text += character;
        } else {
            for (const char byte : character) {
                char escape[sizeof "\\xNN"];
                std::snprintf(escape, sizeof escape, "\\x%02x", static_cast<unsigned char>(byte));
                text += escape;
            }
        }
        path.remove_prefix(size);
    }
    return text;
}

/// Prints each callback as a line: words, or with --json an object.
class Printer final : public VRXWatchFolderDelegate
{
public:
    explicit Printer(bool json) : m_json(json) {}

    void watchFolderFileAddedAtURL(VRXWatchFolder *, const QUrl &url, bool isDirectory) override
    {
        printItem("added", url, isDirectory);
    }
    void watchFolderFileRemovedAtURL(VRXWatchFolder *, const QUrl &url, bool isDirectory) override
    {
        printItem("removed", url, isDirectory);
    }
    void watchFolderFileUpdatedAtURL(VRXWatchFolder *, const QUrl &url, bool isDirectory) override
    {
        printItem("updated", url, isDirectory);
    }
    void watchFolderAddedURLsUpdatedURLsDeletedURLs(VRXWatchFolder *, const QList<QUrl> &added,
                                                    const QList<QUrl> &updated,
                                                    const QList<QUrl> &deleted) override
    {
        if (m_json)
            printObject("batch", {{QStringLiteral("added"), added.size()},
                                  {QStringLiteral("updated"), updated.size()},
                                  {QStringLiteral("removed"), deleted.size()}});
        else
            print("batch " + std::to_string(added.size()) + ' ' + std::to_string(updated.size()) + ' ' +
                  std::to_string(deleted.size()));
    }
    void watchFolderBecameUnreachable(VRXWatchFolder *) override { printWord("unreachable"); }
    void watchFolderDidReloadCurrentURLs(VRXWatchFolder *) override { printWord("reloaded"); }
    bool shouldContinueFileEnumerationForWatchFolder(VRXWatchFolder *, const std::error_code &error,
                                                     const QUrl &url) override
    {
        std::fprintf(stderr, "vrxwatch: %s: %s\n", printable(nativePathOfUrl(url)).c_str(),
                     error.message().c_str());
        return true;
    }

private:
    void printItem(const char *word, const QUrl &url, bool isDirectory)
    {
        const std::string path = nativePathOfUrl(url);
        if (m_json)
            printObject(word, {{QStringLiteral("path"), displayPath(path)},
                               {QStringLiteral("url"), QString::fromLatin1(url.toEncoded())},
                               {QStringLiteral("directory"), isDirectory}});
        else
            print(std::string(word) + ' ' + printable(path));
    }
    void printWord(const char *word)
    {
        if (m_json)
            printObject(word, {});
        else
            print(word);
    }
    void printObject(const char *word, QJsonObject object)
    {
        object.insert(QStringLiteral("event"), QString::fromLatin1(word));
        print(QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString());
    }
    // Whoever reads the other end of a pipe sees each line as it comes.
    void print(const std::string &line)
    {
        std::fprintf(stdout, "%s\n", line.c_str());
        std::fflush(stdout);
    }

    const bool m_json;
};

int watch(const Options &options)
{
    const auto printer = std::make_shared<Printer>(options.json);
    const QString folder = QDir(QString::fromStdString(options.folder)).absolutePath();
    VRXWatchFolder watcher(folder, printer, options.deep, options.latency, toStrings(options.types),
                           toStrings(options.extensions));
    watcher.setIgnoreSelf(!options.includeSelf);
    watcher.setBackend(kBackends.at(options.backend));
    WatchFolderError error;
    if (!watcher.startWatching(&error)) {
        const QString reason = error.reason.isEmpty() ? QString() : QStringLiteral(": ") + error.reason;
        std::fprintf(stderr, "vrxwatch: %s%s\n", printable(error.description.toStdString()).c_str(),
                     qUtf8Printable(reason));
        return 1;
    }
    const int result = QCoreApplication::exec();
    watcher.stopWatching();
    return result;
}

} // namespace

int main(int argc, char **argv)
try {
    reserveStandardStreams();
    Options options;
    CLI::App commandLine("Prints what appears, changes and disappears in a folder.", "vrxwatch");
    commandLine.add_option("DIR", options.folder, "The folder to watch")
        ->required()
        ->check(
            [](const std::string &text) { return text.empty() ? "the name of the folder is empty" : ""; });
    commandLine.add_flag("--deep", options.deep, "Watch the directories below it too");
    commandLine.add_option("--latency", options.latency, "Seconds for which events are collected")
        ->capture_default_str()
        ->check(CLI::Range(0.0, 3600.0));
    commandLine.add_option("--ext", options.extensions, "Only files with one of these extensions (a,b)")
        ->delimiter(',')
        ->allow_extra_args(false);
    commandLine.add_option("--type", options.types, "Only files of one of these MIME types (a,b)")
        ->delimiter(',')
        ->allow_extra_args(false);
    commandLine.add_flag("--include-self", options.includeSelf, "Report what vrxwatch itself changes");
    commandLine.add_option("--backend", options.backend, "Where events come from")
        ->capture_default_str()
        ->check(CLI::IsMember(kBackends));
    commandLine.add_flag("--json", options.json, "Print one JSON object per line");
    commandLine.set_version_flag("--version", "vrxwatch " VANTLE_VERSION);
    try {
        commandLine.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return commandLine.exit(error) == 0 ? 0 : kWrongUsage;
    }

    const QCoreApplication application(argc, argv);
    const StopOnSignal stopOnSignal;
    return watch(options);
} catch (const std::exception &error) {
    std::fprintf(stderr, "vrxwatch: %s\n", error.what());
    return 1;
}
