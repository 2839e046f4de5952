// SPDX-License-Identifier: MIT
#include "apps/vantlectl/obs/Access.h"

#include "VantlePresets/document/FileAccess.h"

#include <QtCore/QDir>
#include <QtCore/QHash>
#include <QtCore/QJsonDocument>
#include <QtCore/QStandardPaths>
#include <QtNetwork/QHostAddress>

namespace vantle::ctl::obs {

using namespace Qt::StringLiterals;

namespace {

constexpr auto kJsonFile = "plugin_config/obs-websocket/config.json"_L1;
constexpr auto kIniFile = "global.ini"_L1;

/// OBS writes line breaks and backslashes of a value as escapes.
QString unescaped(const QByteArray &value)
{
    QByteArray text;
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            text += value[i];
            continue;
        }
        const char next = value[++i];
        text += next == 'n' ? '\n' : next == 'r' ? '\r' : next;
    }
    return QString::fromUtf8(text);
}

QHash<QByteArray, QString> serverSection(const QByteArray &content)
{
    QHash<QByteArray, QString> values;
    bool isOurs = false;
    for (const QByteArray &raw : content.split('\n')) {
        const QByteArray line = raw.endsWith('\r') ? raw.chopped(1) : raw;
        if (line.startsWith('['))
            isOurs = line.trimmed() == "[OBSWebSocket]";
        else if (const qsizetype equals = line.indexOf('='); isOurs && equals > 0)
            values.insert(line.first(equals), unescaped(line.sliced(equals + 1)));
    }
    return values;
}

quint16 portOf(qint64 port)
{
    return port > 0 && port <= 65535 ? static_cast<quint16>(port) : ServerSettings().port;
}

std::optional<ServerSettings> settingsIn(const QDir &folder)
{
    const auto content = [&](QLatin1StringView name) {
        try {
            return readFile(fileSystemPath(folder.filePath(name)));
        } catch (const std::exception &) {
            return QByteArray(); // not there, or not for us
        }
    };
    const auto settings = settingsOfJson(content(kJsonFile));
    return settings ? settings : settingsOfIni(content(kIniFile));
}

} // namespace

std::optional<ServerSettings> settingsOfJson(const QByteArray &content)
{
    const QJsonObject object = QJsonDocument::fromJson(content).object();
    if (object.isEmpty())
        return std::nullopt;
    const bool asks = object["auth_required"_L1].toBool();
    return ServerSettings{portOf(object["server_port"_L1].toInteger()),
                          asks ? object["server_password"_L1].toString() : QString()};
}

std::optional<ServerSettings> settingsOfIni(const QByteArray &content)
{
    const QHash<QByteArray, QString> values = serverSection(content);
    if (values.isEmpty())
        return std::nullopt;
    const bool asks = values.value("AuthRequired") == "true"_L1;
    return ServerSettings{portOf(values.value("ServerPort").toLongLong()),
                          asks ? values.value("ServerPassword") : QString()};
}

std::optional<ServerSettings> ownServerSettings()
{
    const QDir configuration(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation));
    if (const auto settings = settingsIn(QDir(configuration.filePath(u"obs-studio"_s))))
        return settings;
    return settingsIn(QDir(QDir::home().filePath(u".var/app/com.obsproject.Studio/config/obs-studio"_s)));
}

bool isLoopback(const QString &host)
{
    return host.compare("localhost"_L1, Qt::CaseInsensitive) == 0 || QHostAddress(host).isLoopback();
}

} // namespace vantle::ctl::obs
