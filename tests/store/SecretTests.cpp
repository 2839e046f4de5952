// SPDX-License-Identifier: MIT
#include "tests/support/LiveStore.h"
#include "tests/support/SecretDocuments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <thread>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using test::LiveStore;

void write(const std::filesystem::path &path, const QByteArray &content)
{
    std::ofstream(path, std::ios::binary).write(content.constData(), content.size());
}

TEST(Secrets, StayOutOfTheLog)
{
    LiveStore store;
    qsizetype errors = 0;
    for (const auto &document : test::secretDocuments()) {
        write(store.file(document.name + ".json"), document.text);
        errors += document.isGood ? 0 : 1;
    }
    const auto manager = store.makeManager();
    ASSERT_TRUE(manager);
    EXPECT_EQ(store.logOf("Error loading Preset "_L1).size(), errors);

    const auto withSecret = manager->presetWithName(u"YouTube"_s);
    ASSERT_TRUE(withSecret);
    EXPECT_TRUE(manager->rename(withSecret, u"YouTube"_s, u"in/valid"_s)); // can't be written
    manager->duplicate(withSecret);
    manager->save(manager->presetWithName(u"RTMP"_s));
    ASSERT_TRUE(store.runElsewhere(u"for f in *.json; do cp \"$f\" .t; mv .t \"$f\"; done;"
                                   "cat 'as port.json' > Facebook.json; mkfifo .f; mv .f Wowza.json"_s));
    ASSERT_TRUE(LiveStore::settle(*manager));
    EXPECT_FALSE(store.logOf("Error writing preset "_L1).isEmpty());
    EXPECT_FALSE(store.logOf("Error updating Preset "_L1).isEmpty());
    EXPECT_FALSE(store.logOf("Preset Saved: "_L1).isEmpty());
    EXPECT_FALSE(store.log().join(u'\n').contains(QLatin1StringView(test::kSecret)))
        << store.log().join(u'\n').toStdString();
}

TEST(SecretsDeathTest, StayOutOfProgrammingFaults)
{
    const PresetsManager manager([] { return QStringList(); });
    const auto preset = test::decodeAs(test::secretDocuments().front().text);
    EXPECT_DEATH(std::thread([&] { static_cast<void>(manager.rowOf(preset)); }).join(),
                 testing::AllOf(testing::HasSubstr("Programming fault: "),
                                testing::Not(testing::HasSubstr(test::kSecret))));
}

} // namespace
} // namespace vantle
