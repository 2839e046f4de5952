// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/PresetDocuments.h"

#include <string>
#include <vector>

namespace vantle::test {

/// What must not show up anywhere unless it was asked for.
inline constexpr const char *kSecret = "s3cr3t-7d1f";

struct SecretDocument
{
    std::string name; ///< without ".json"
    QByteArray text;
    bool isGood;
};

/// Documents that hold the secret where presets keep theirs, and in every way in which such a place can be
/// broken. Only values that errors name on purpose (codec and resolution) never hold it.
inline std::vector<SecretDocument> secretDocuments()
{
    const QByteArray secret(kSecret);
    const QByteArray quoted = '"' + secret + '"';
    const auto of = [&](const char *kind) {
        return presetText(kind)
            .with("streamKey", quoted)
            .with("authenticationPassword", quoted)
            .with("passphrase", quoted);
    };
    const auto broken = [&](const char *key, const QByteArray &value) {
        return of("YouTube").with(key, value).text();
    };
    const QByteArray whole = of("YouTube").text();
    return {
        {"YouTube", whole, true},
        {"Facebook", of("Facebook").text(), true},
        {"RTMP", of("RTMP").text(), true},
        {"Wowza", of("Wowza").text(), true},
        {"SRT", of("SRT").text(), true},
        {"HLS", of("HLS").text(), true},
        {"in a URL",
         of("RTMP")
             .with("streamingURL",
                   R"("rtmp://me:)" + secret + "@host/app/" + secret + R"(?k=)" + secret + '"')
             .text(),
         true},
        {"as parameter", of("SRT").with("streamingURL", R"("srt://host?passphrase=)" + secret + '"').text(),
         true},
        {"in no URL", of("Wowza").with("streamingURL", R"("srt://host?passphrase= )" + secret + '"').text(),
         true},
        {"as kind", of("YouTube").with("type", quoted).text(), true},
        {"as identifier", of("HLS").with("id", quoted).text(), true},
        {"as protocol", of("RTMP").with("streamingProtocol", quoted).text(), true},
        {"as unknown key", of("YouTube").with(secret, quoted).text(), true},
        {"twice",
         of("YouTube").text().replace("\"streamKey\"",
                                      QByteArray("\"streamKey\":" + quoted + ",\"streamKey\"")),
         true},
        {"key in an object", broken("streamKey", "{" + quoted + ":" + quoted + "}"), false},
        {"password in a list", broken("authenticationPassword", "[" + quoted + "]"), false},
        {"as port", broken("portNumber", quoted), false},
        {"as flag", broken("isBackup", quoted), false},
        {"as rendition", broken("videoSettings", "[" + quoted + "]"), false},
        {"as list", broken("audioSettings", quoted), false},
        {"as bit rate", broken("audioSettings", list({audioText().with("bitRate", quoted)})), false},
        {"as channel", broken("audioSettings", list({audioText().with("inputChannels", "[" + quoted + "]")})),
         false},
        {"cut behind", whole.first(whole.indexOf(secret) + secret.size()), false},
        {"bad escape", broken("streamKey", '"' + secret + "\\q\""), false},
        {"bad number", broken("portNumber", "1" + secret), false},
        {"lone surrogate", broken("streamKey", '"' + secret + "\\udc00\""), false},
        {"line break", broken("streamKey", '"' + secret + "\n\""), false},
        {"not UTF-8", broken("streamKey", '"' + secret + "\xFF\""), false},
        {"no quotes", broken("streamKey", secret), false},
        {"no comma", QByteArray(whole).replace(QByteArray(quoted + ','), quoted), false},
        {"no colon", QByteArray(whole).replace(QByteArray(':' + quoted), quoted), false},
        {"alone", secret, false},
        {"behind the end", whole + secret, false},
    };
}

} // namespace vantle::test
