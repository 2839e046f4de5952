// SPDX-License-Identifier: MIT
#include "apps/support/StandardStreams.h"
#include "apps/vantlectl/Command.h"

#include "VantlePresets/advice/NearestText.h"
#include "VantlePresets/core/Log.h"

#include <QtCore/QCoreApplication>

#include <algorithm>
#include <clocale>
#include <csignal>
#include <sstream>

namespace {

using namespace vantle;
using namespace vantle::ctl;
using namespace Qt::StringLiterals;

/// Names what has no place on the command line, without values: "--streamKey=key" is easily written.
void complainOfExtras(const CLI::App &app)
{
    QStringList names;
    for (const std::string &extra : app.remaining(true))
        names.append(escapedControls(QString::fromStdString(extra).section(u'=', 0, 0)));
    complain("not expected: "_L1 + names.join(u' ') + "\nRun with --help for more information."_L1);
}

/// Prints what the parser has to say: help and version as output, everything else as a complaint.
ExitCode explain(const CLI::App &app, const CLI::ParseError &error, Output &out)
{
    if (dynamic_cast<const CLI::ExtrasError *>(&error)) {
        complainOfExtras(app);
        return ExitCode::usage;
    }
    std::ostringstream help;
    std::ostringstream complaint;
    const bool isError = app.exit(error, help, complaint) != 0;
    if (isError)
        complain(QString::fromStdString(complaint.str()).trimmed());
    out.bytes(help.str());
    out.flush();
    return isError ? ExitCode::usage : ExitCode::good;
}

/// Complains of a first word that is no subcommand, and names the one that looks like it.
bool isUnknownCommand(const CLI::App &app, const std::string &word)
{
    constexpr qsizetype kAlike = 2;
    const QString written = QString::fromStdString(word);
    QString alike;
    qsizetype least = kAlike + 1;
    for (const CLI::App *command : app.get_subcommands({})) {
        const QString name = QString::fromStdString(command->get_name());
        const qsizetype letters = advice::lettersBetween(written, name);
        if (letters == 0)
            return false;
        if (letters < least) {
            least = letters;
            alike = name;
        }
    }
    const QString hint = alike.isEmpty() ? QString() : "; did you mean \""_L1 + alike + "\"?"_L1;
    complain("there is no subcommand \""_L1 + escapedControls(written) + u'"' + hint +
             "\nRun with --help for more information."_L1);
    return true;
}

/// The option that a word is, of some subcommand; one that takes a value comes first. Null for none.
const CLI::Option *optionOf(const CLI::App &app, const std::string &word)
{
    const CLI::Option *found = nullptr;
    for (const CLI::App *command : app.get_subcommands({})) {
        const CLI::Option *const option = command->get_option_no_throw(word.substr(0, word.find('=')));
        if (option && (!found || option->get_items_expected_max() > found->get_items_expected_max()))
            found = option;
    }
    return found;
}

/// Puts the subcommand of a command line in front, before which options may stand. False, with a complaint,
/// when all words are options and values of theirs.
bool putCommandFirst(const CLI::App &app, std::vector<std::string> &words)
{
    auto word = words.begin();
    QString hint;
    bool isEachKnown = true; // the parser complains of the others
    while (word != words.end() && word->size() > 1 && word->front() == '-') {
        if (*word == "--" || *word == "--version" || *word == "--help" || *word == "-h")
            return true;
        const CLI::Option *const option = optionOf(app, *word);
        isEachKnown = isEachKnown && option;
        const QString name = QString::fromStdString(*word);
        hint.clear();
        if (++word == words.end() || !option || option->get_items_expected_max() == 0 || name.contains(u'='))
            continue;
        hint = ": \""_L1 + escapedControls(QString::fromStdString(*word)) +
               "\" was taken for the value of "_L1 + name;
        ++word;
    }
    if (word != words.end())
        std::rotate(words.begin(), word, word + 1);
    else if (!words.empty() && isEachKnown)
        complain("the subcommand is missing"_L1 + hint + "\nRun with --help for more information."_L1);
    return word != words.end() || words.empty() || !isEachKnown;
}

ExitCode run(int argc, char **argv)
{
    CLI::App app("Streaming presets from the command line: their files, and the live store of this machine.",
                 "vantlectl");
    app.set_version_flag("--version", "vantlectl " VANTLE_VERSION);
    app.require_subcommand(1);
    app.footer("Options may stand before and behind the subcommand. VANTLE_DATA_DIR stands for --data-dir.");
    Command chosen;
    addValidateCommand(app, chosen);
    addShowCommand(app, chosen);
    addConvertCommand(app, chosen);
    addFfmpegCommand(app, chosen);
    addCheckCommand(app, chosen);
    addObsCommand(app, chosen);
    addListCommand(app, chosen);
    addEditCommands(app, chosen);
    addSetCommand(app, chosen);
    addFieldCommands(app, chosen);
    addTransferCommands(app, chosen);
    addWatchCommand(app, chosen);
    addServeCommand(app, chosen);

    bool isQuiet = false;
    for (CLI::App *command : app.get_subcommands({}))
        command->add_flag("-q,--quiet", isQuiet, "Say nothing but what was asked for and what went wrong");

    std::vector<std::string> words(argv + 1, argv + argc);
    if (!putCommandFirst(app, words) ||
        (!words.empty() && !words.front().starts_with('-') && isUnknownCommand(app, words.front())))
        return ExitCode::usage;
    std::reverse(words.begin(), words.end()); // as the parser takes them
    Output out;
    try {
        app.parse(words);
    } catch (const CLI::ParseError &error) {
        return explain(app, error, out);
    }
    setQuiet(isQuiet);
    const ExitCode code = chosen(out);
    out.flush();
    return code;
}

} // namespace

int main(int argc, char **argv)
{
    reserveStandardStreams();
    std::signal(SIGPIPE, SIG_IGN);
    const QCoreApplication application(argc, argv);
    // The width of characters depends on the locale, which Qt has just taken from the environment; texts are
    // UTF-8 in every one.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    setLogSink(tellLogLine);
    ExitCode code = ExitCode::failed;
    try {
        code = run(argc, argv);
    } catch (const OutputError &error) {
        complain("can't write the output: "_L1 + QString::fromUtf8(error.what()));
    } catch (const std::exception &error) {
        complain(QString::fromUtf8(error.what()));
    }
    return static_cast<int>(code);
}
