// SPDX-License-Identifier: MIT
#include "tests/support/LiveStore.h"
#include "tests/support/OtherUser.h"

#include <QtCore/QTimer>

#include <gtest/gtest.h>

#include <thread>

#include <grp.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using test::LiveStore;
using test::waitFor;

constexpr uid_t kNobody = 65534;
constexpr gid_t kDaemon = 1;

/// What a host hears that connects after construction.
struct Heard
{
    explicit Heard(const PresetsManager &manager)
    {
        QObject::connect(&manager, &PresetsManager::startFailed, [this](const QString &e) { error = e; });
        QObject::connect(&manager, &PresetsManager::didLoad, [this] { isLoaded = true; });
    }
    std::optional<QString> error;
    bool isLoaded = false;
};

TEST(Start, AFailureIsKnownAtOnceAndHeardByThoseWhoConnectAfterwards)
{
    const bool isRoot = ::geteuid() == 0;
    const struct
    {
        const char *spoil; // run in the presets folder
        bool needsOtherUser;
        QLatin1StringView reason;
        bool isGroupNamed;
    } cases[] = {
        {"rmdir ../*Presets; touch '../Streaming Presets'", false,
         "/Orvalle/Streaming Presets: Not a directory"_L1, false},
        {"rm -r ../../Orvalle; touch ../../Orvalle", false, "/Orvalle/Streaming Presets: Not a directory"_L1,
         false},
        {"chgrp daemon .; chmod 2770 .", true, "/Orvalle/Streaming Presets: Permission denied"_L1, true},
        {"chgrp daemon ..; chmod 750 ..", true, "/Orvalle/Streaming Presets: Permission denied"_L1, true},
        {"chgrp daemon ..; chmod 775 ..; rmdir ../*Presets", true,
         "/Orvalle/Streaming Presets: Permission denied"_L1, true},
        {"chgrp daemon .; chmod 700 .", true, "/Orvalle/Streaming Presets: Permission denied"_L1, false},
        {"chgrp root .; chmod 770 .", true, "/Orvalle/Streaming Presets: Permission denied"_L1, false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.spoil);
        if (c.needsOtherUser && !isRoot)
            continue;
        const LiveStore store;
        ASSERT_EQ(::chmod(store.dataDirectory().toStdString().c_str(), 0755), 0);
        ASSERT_TRUE(store.runElsewhere(QString::fromLatin1(c.spoil)));
        std::optional<test::OtherUser> other;
        if (c.needsOtherUser)
            other.emplace(kNobody, kNobody);
        PresetsManager manager([&] { return QStringList{store.dataDirectory()}; });
        const auto error = manager.startError();
        ASSERT_TRUE(error);
        EXPECT_TRUE(error->startsWith(store.dataDirectory() + c.reason)) << error->toStdString();
        EXPECT_EQ(error->contains("usermod -aG daemon nobody"_L1), c.isGroupNamed) << error->toStdString();
        EXPECT_EQ(store.logOf("Error to create directory or start watching: "_L1), store.log());
        const Heard heard(manager);
        EXPECT_TRUE(waitFor([&] { return heard.error.has_value(); }));
        EXPECT_EQ(heard.error, error);
        EXPECT_FALSE(heard.isLoaded);
        manager.addNewPreset(StreamingType::hls); // works in memory whatever becomes of the file
        EXPECT_EQ(manager.presets().size(), 1);
    }
}

TEST(Start, AMemberOfTheGroupIsNotSentForIt)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs another user";
    const LiveStore store;
    ASSERT_EQ(::chmod(store.dataDirectory().toStdString().c_str(), 0755), 0);
    ASSERT_TRUE(store.runElsewhere(u"chgrp daemon .; chmod 2770 ."_s));
    const test::OtherUser other(kNobody, kDaemon);
    const PresetsManager manager([&] { return QStringList{store.dataDirectory()}; });
    EXPECT_FALSE(manager.startError()) << manager.startError()->toStdString();
    const Heard heard(manager);
    EXPECT_TRUE(waitFor([&] { return heard.isLoaded; }));
}

TEST(Start, WithFewDescriptorsItSaysSoOrLoads)
{
    LiveStore store;
    store.writePreset(u"A"_s);
    rlimit usual = {};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &usual), 0);
    int failures = 0;
    for (int spare = 0; spare < 14; ++spare) {
        const int next = ::dup(0);
        ::close(next);
        const rlimit few = {static_cast<rlim_t>(next + spare), usual.rlim_max};
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
        PresetsManager manager([&] { return QStringList{store.dataDirectory()}; });
        const Heard heard(manager);
        const bool isTold = waitFor([&] { return heard.isLoaded || heard.error.has_value(); });
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &usual), 0);
        EXPECT_TRUE(isTold) << spare << " descriptors";
        failures += heard.error ? 1 : 0;
    }
    EXPECT_GT(failures, 0);
}

TEST(Start, AFolderThatGoesBeforeItIsReadIsAFailure)
{
    for (int round = 0; round < 20; ++round) {
        const LiveStore store;
        const PresetsManager manager([&] { return QStringList{store.dataDirectory()}; });
        const Heard heard(manager);
        std::filesystem::remove(store.folder()); // the first inventory may be quicker
        ASSERT_TRUE(waitFor([&] { return heard.error || heard.isLoaded; }));
        EXPECT_NE(heard.error.has_value(), heard.isLoaded);
        EXPECT_EQ(heard.error, manager.startError());
    }
}

TEST(Quitting, SavesAreWaitedForWhileTheApplicationQuitsAndNotAfterwards)
{
    const LiveStore store;
    const auto manager = store.makeManager();
    ASSERT_TRUE(manager);
    const auto preset = manager->addNewPreset(StreamingType::hls);
    for (int run = 0; run < 2; ++run) {
        bool wasWaitedFor = false;
        const auto connection = QObject::connect(qApp, &QCoreApplication::aboutToQuit, [&] {
            manager->save(preset);
            wasWaitedFor = !manager->hasPendingSaves();
        });
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QCoreApplication::exec();
        EXPECT_TRUE(wasWaitedFor);
        QObject::disconnect(connection);
        manager->save(preset);
        EXPECT_TRUE(manager->hasPendingSaves());
    }
}

TEST(StartDeathTest, WhatTheCallerGotWrongIsAProgrammingFault)
{
    auto manager = std::make_unique<PresetsManager>([] { return QStringList(); });
    EXPECT_DEATH(std::thread([&] { static_cast<void>(manager->presets()); }).join(), "off the main thread");
    EXPECT_DEATH(std::thread([&] { manager->addNewPreset(StreamingType::hls); }).join(),
                 "off the main thread");
    EXPECT_DEATH(std::thread([&] { manager.reset(); }).join(), "off the main thread");
    EXPECT_DEATH(manager->save(nullptr), "save of no preset");
    EXPECT_DEATH(manager->duplicate(nullptr), "duplicate of no preset");
    EXPECT_DEATH(manager->rename(nullptr, u"A"_s, u"B"_s), "rename of no preset");
    EXPECT_DEATH(static_cast<void>(manager->listedName(nullptr)), "name of no preset");
}

} // namespace
} // namespace vantle
